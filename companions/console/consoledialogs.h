#pragma once
#include "platform/dialogs/dialogs.h"

#include <QStringList>

namespace companions {

/// Messages and questions on a terminal. Questions are answered as told, in order; one that nobody foresaw is
/// answered No (or with an empty text) and noted.
class ConsoleDialogs : public platform::dialogs::Dialogs {
 public:
  /// A question that contains `part` is answered with `answer`.
  void answer(const QString& part, int answer);

  int MsgBox(const QString& text, int options, const QString& title) override;
  QString InputBox(const QString& prompt, const QString& title, const QString& defaultText) override;
  int DoAlert(const QString& title, const QString& text, int buttons, int icon) override;

  /// Messages and questions that no answer was given for.
  QStringList unforeseen;

 private:
  int ask(const QString& text, bool yesNo);
  QList<QPair<QString, int>> answers_;
};

/// A line of UTF-8 on the standard output.
void say(const QString& line);

}  // namespace companions

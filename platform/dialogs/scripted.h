#pragma once
#include "platform/dialogs/dialogs.h"

#include <QList>
#include <QStringList>

#include <functional>
#include <optional>

namespace platform::dialogs {

/// One question or message as it was shown.
struct Shown {
  enum class Kind { MsgBox, InputBox, Alert };
  Kind kind;
  QString title;
  QString text;
  int options;               // MsgBox: options; Alert: buttons
  int icon;                  // Alert only
  QString answer;            // "OK", "Yes", "No", or what was typed
  QString defaultText = {};  // InputBox only
};

/// Answers from a queue, in order. A question that nobody scripted goes to `onUnexpected`, which a test sets
/// to fail the test (tests/support does); it is then answered like a closed box.
class ScriptedDialogs : public Dialogs {
 public:
  /// Expects a message box or assistant message whose text contains `part`, answered with `answer`.
  void expect(const QString& part, int answer);
  /// Expects an input box whose prompt contains `part`, answered with `typed`.
  void expectInput(const QString& part, const QString& typed);
  /// What was expected and has not come; empty at the end of a good test.
  QStringList outstanding() const;

  int MsgBox(const QString& text, int options, const QString& title) override;
  QString InputBox(const QString& prompt, const QString& title, const QString& defaultText) override;
  int DoAlert(const QString& title, const QString& text, int buttons, int icon) override;

  QList<Shown> shown;
  std::function<void(const Shown&)> onUnexpected;
  /// What happens while a box stands open, before it is answered.
  std::function<void(const Shown&)> whileOpen;

 private:
  struct Answer {
    bool input;
    QString part;
    int code;
    QString typed;
  };
  std::optional<Answer> takeAnswer(bool input, const QString& text);
  int answerBox(Shown box);

  QList<Answer> queue_;
};

}  // namespace platform::dialogs

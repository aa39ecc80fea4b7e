#include "companions/console/consoledialogs.h"

#include <cstdio>

namespace companions {

namespace dialogs = platform::dialogs;

void say(const QString& line) {
  std::fputs(line.toUtf8().constData(), stdout);
  std::fputc('\n', stdout);
  std::fflush(stdout);
}

void ConsoleDialogs::answer(const QString& part, int answer) {
  answers_.append({part, answer});
}

int ConsoleDialogs::MsgBox(const QString& text, int options, const QString& title) {
  Q_UNUSED(title);
  return ask(text, (options & 7) == dialogs::vbYesNo);
}

QString ConsoleDialogs::InputBox(const QString& prompt, const QString& title, const QString& defaultText) {
  Q_UNUSED(title);
  unforeseen.append(prompt);
  say(QStringLiteral("? ") + prompt);
  return defaultText;
}

int ConsoleDialogs::DoAlert(const QString& title, const QString& text, int buttons, int icon) {
  Q_UNUSED(title);
  Q_UNUSED(icon);
  return ask(text, buttons == dialogs::msoAlertButtonYesNo);
}

int ConsoleDialogs::ask(const QString& text, bool yesNo) {
  QString shown = text;
  shown.replace(QStringLiteral("\r\n"), QStringLiteral(" "));
  int answer = yesNo ? dialogs::vbNo : dialogs::vbOK;
  bool foreseen = false;
  for (qsizetype i = 0; i < answers_.size() && !foreseen; ++i) {
    if (!text.contains(answers_[i].first)) continue;
    answer = answers_.takeAt(i).second;
    foreseen = true;
  }
  if (!foreseen) unforeseen.append(text);
  const QString told = answer == dialogs::vbYes ? QStringLiteral("Yes") : QStringLiteral("No");
  say(yesNo ? QStringLiteral("? %1 -> %2").arg(shown, told) : QStringLiteral("! %1").arg(shown));
  return answer;
}

}  // namespace companions

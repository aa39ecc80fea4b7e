#include "platform/dialogs/scripted.h"

namespace platform::dialogs {

namespace {

/// What closing a box by its frame answers. The button set stands in the lowest four bits.
int closedAnswer(int options) {
  return (options & 0xF) == vbYesNo ? vbNo : vbOK;
}

QString codeName(int code) {
  switch (code) {
    case vbOK:
      return QStringLiteral("OK");
    case vbCancel:
      return QStringLiteral("Cancel");
    case vbYes:
      return QStringLiteral("Yes");
    case vbNo:
      return QStringLiteral("No");
    default:
      return QString::number(code);
  }
}

}  // namespace

void ScriptedDialogs::expect(const QString& part, int answer) {
  queue_.append({false, part, answer, {}});
}

void ScriptedDialogs::expectInput(const QString& part, const QString& typed) {
  queue_.append({true, part, vbOK, typed});
}

QStringList ScriptedDialogs::outstanding() const {
  QStringList parts;
  for (const Answer& answer : queue_) parts.append(answer.part);
  return parts;
}

std::optional<ScriptedDialogs::Answer> ScriptedDialogs::takeAnswer(bool input, const QString& text) {
  if (queue_.isEmpty() || queue_.first().input != input || !text.contains(queue_.first().part))
    return std::nullopt;
  return queue_.takeFirst();
}

int ScriptedDialogs::answerBox(Shown box) {
  const std::optional<Answer> answer = takeAnswer(false, box.text);
  const int code = answer ? answer->code : closedAnswer(box.options);
  box.answer = codeName(code);
  shown.append(box);
  if (!answer && onUnexpected) onUnexpected(box);
  if (whileOpen) whileOpen(box);
  return code;
}

int ScriptedDialogs::MsgBox(const QString& text, int options, const QString& title) {
  return answerBox({Shown::Kind::MsgBox, title, text, options, 0, {}});
}

QString ScriptedDialogs::InputBox(const QString& prompt, const QString& title, const QString& defaultText) {
  const std::optional<Answer> answer = takeAnswer(true, prompt);
  const Shown box{
      Shown::Kind::InputBox, title, prompt, 0, 0, answer ? answer->typed : QString(), defaultText};
  shown.append(box);
  if (!answer && onUnexpected) onUnexpected(box);
  return box.answer;
}

int ScriptedDialogs::DoAlert(const QString& title, const QString& text, int buttons, int icon) {
  return answerBox({Shown::Kind::Alert, title, text, buttons, icon, {}});
}

}  // namespace platform::dialogs

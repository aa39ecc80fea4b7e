#pragma once
#include "platform/dialogs/dialogs.h"

namespace platform::dialogs {

/// The tool kit's own boxes, over the active window. Texts are plain, with their line breaks. Object names:
/// "msgBox" with "cmdYes", "cmdNo", "cmdOK"; "inputBox" with "txtInput", "cmdOK", "cmdCancel"; "assistantBox"
/// with the same buttons.
class QtDialogs : public Dialogs {
 public:
  int MsgBox(const QString& text, int options, const QString& title) override;
  QString InputBox(const QString& prompt, const QString& title, const QString& defaultText = {}) override;
  int DoAlert(const QString& title, const QString& text, int buttons, int icon) override;
};

}  // namespace platform::dialogs

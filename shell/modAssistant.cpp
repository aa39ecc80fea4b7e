#include "shell/modAssistant.h"

#include "platform/dialogs/dialogs.h"
#include "platform/outlook/application.h"
#include "shell/modErrorReport.h"
#include "shell/ShellValues.h"
#include "shell/Tolerate.h"

namespace hourbook {

using namespace platform::dialogs;

namespace {

void activateWindow(const std::shared_ptr<platform::outlook::Application>& application) {
  tolerate([&] {
    if (!application) return;
    if (const auto window = application->ActiveExplorer()) window->Activate();
  });
}

void logAssistant(const QString& text) {
  subLog(QStringLiteral("Creating Assistant to display message ") + text);
}

}  // namespace

void fncShowAssistantMessage(const std::shared_ptr<platform::outlook::Application>& application,
                             const QString& text) {
  activateWindow(application);
  bool shown = false;
  if (application) {
    logAssistant(text);
    shown = !tolerate([&] { Dialogs::current().DoAlert(gTitle, text, msoAlertButtonOK, msoAlertIconInfo); });
  }
  if (!shown) Dialogs::current().MsgBox(text, vbInformation, gTitle);
}

int fncAskAssistant(const std::shared_ptr<platform::outlook::Application>& application, const QString& text) {
  activateWindow(application);
  if (!application) return Dialogs::current().MsgBox(text, vbYesNo + vbQuestion, gTitle);
  logAssistant(text);
  return Dialogs::current().DoAlert(gTitle, text, msoAlertButtonYesNo, msoAlertIconQuestion);
}

}  // namespace hourbook

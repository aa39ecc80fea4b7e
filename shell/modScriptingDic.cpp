#include "shell/modScriptingDic.h"

#include "platform/automation/components.h"
#include "platform/basic/text.h"
#include "platform/dialogs/dialogs.h"
#include "platform/process/process.h"
#include "shell/modErrorReport.h"
#include "shell/ShellValues.h"
#include "shell/Tolerate.h"

namespace hourbook {

using platform::automation::CreateObject;
using platform::basic::vbCrLf;

namespace {

void repair(const QString& library) {
  QString ignored;
  platform::process::Process::current().start(QStringLiteral("regsvr32"), {library, QStringLiteral("/s")},
                                              &ignored);
}

std::shared_ptr<platform::scripting::WshShell> makeShell() {
  std::shared_ptr<platform::scripting::WshShell> shell;
  tolerate([&] { shell = CreateObject<platform::scripting::WshShell>(QStringLiteral("Wscript.Shell")); });
  return shell;
}

}  // namespace

void subSetupDictionary() {
  subLog(QStringLiteral(
      "Attempting to create a new Scripting.Dictionary object. This component is usually installed "
      "with Internet Explorer 4.0 or later"));
  const auto make = [] {
    CreateObject<platform::scripting::DictionaryComponent>(QStringLiteral("Scripting.Dictionary"));
  };
  if (!tolerate(make)) return;
  const auto failure = tolerate(make);
  if (!failure) return;
  if (shellValues().dictionaryRepairTried)
    subHandleError(*failure, QStringLiteral("modScriptingDic.fncCreateDic"));
  repair(QStringLiteral("scrrun.dll"));
  shellValues().dictionaryRepairTried = true;
  subSetupDictionary();
}

std::shared_ptr<platform::scripting::WshShell> fncGetShell() {
  using namespace platform::dialogs;
  auto shell = makeShell();
  if (!shell) {
    repair(QStringLiteral("wshom.ocx"));
    shell = makeShell();
  }
  if (!shell) {
    // kept: the text speaks of the dictionary although the shell failed
    Dialogs::current().MsgBox(
        QStringLiteral("Attempting to create a new Scripting.Dictionary object.") + vbCrLf +
            QStringLiteral("This component is usually installed with Internet Explorer 4.0 or later") +
            vbCrLf +
            QStringLiteral("Please download the Windows Scripting Runtime from Microsoft Downloads to "
                           "resolve this issue!"),
        vbCritical, gTitle);
  }
  return shell;
}

}  // namespace hourbook

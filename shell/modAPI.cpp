#include "shell/modAPI.h"

#include "platform/locale/locale.h"
#include "platform/process/process.h"
#include "platform/registry/registry.h"
#include "shell/modErrorReport.h"
#include "shell/ShellValues.h"
#include "shell/Tolerate.h"

namespace hourbook {

using platform::process::Process;

QString fncGetListSeparator() {
  subLog(QStringLiteral("Getting List separator from computer settings!"));
  return platform::locale::current().listSeparator();
}

void subOpenInBrowser(const QString& url) {
  // As with the system's own call, a browser that does not start says nothing here.
  QString ignored;
  const QString browser = fncGetDefaultBrowser();
  if (browser.isEmpty())
    Process::current().open(url, &ignored);
  else
    Process::current().start(browser, {url}, &ignored);
}

QString fncGetDefaultBrowser() {
  QString& known = shellValues().defaultBrowser;
  if (!known.isEmpty()) return known;
  // The user's own part of the class registrations. It is not opened, since opening would make it.
  platform::basic::Value command;
  const int code = platform::registry::Registry::current().value(
      QStringLiteral("Software\\Classes\\http\\shell\\open\\command"), QString(), &command);
  const auto* text = std::get_if<QString>(&command);
  if (code == 0 && text) known = fncProgramOfCommand(*text);
  return known;
}

QString fncProgramOfCommand(const QString& command) {
  if (command.startsWith(u'"')) return command.section(u'"', 1, 1);
  const qsizetype lastFolder = qMax(qsizetype(0), command.lastIndexOf(u'\\'));
  const qsizetype blank = command.indexOf(u' ', lastFolder);
  return blank < 0 ? command : command.left(blank);
}

void subEnsureVisibleTaskBar(FormWindow& form) {
  subLog(QStringLiteral("Trying to make sure the form appears in the Activity bar"));
  constexpr qint32 applicationWindow = 0x40000;
  form.setExtendedStyle(form.ExtendedStyle() | applicationWindow);
  tolerate([&] { form.Activate(); });
  tolerate([&] {
    if (form.Visible()) form.SetFocus();
  });
}

}  // namespace hourbook

#include "app/components.h"
#include "app/Configuration.h"
#include "platform/dialogs/qt/qtdialogs.h"
#include "platform/process/process.h"
#include "platform/registry/ini/inifile.h"
#include "shell/start/modMain.h"
#include "shell/start/ProgramValues.h"
#include "workspace/frm2003Report.h"
#include "workspace/frm2KReport.h"
#include "workspace/frmXPReport.h"

#include <QApplication>
#include <QIcon>
#include <QTimer>

#include <cstdio>

namespace {

using namespace hourbook;

/// Later than the first rows: to read all of its sizes costs more than most steps of the start, and who
/// starts the program looks for his rows.
inline constexpr int iconAfterMs = 200;

/// The desktop's own where the program is installed, else the one that is linked in.
QIcon programIcon() {
  QIcon linkedIn;
  for (const int size : {16, 24, 32, 48, 64, 128, 256})
    linkedIn.addFile(QStringLiteral(":/icons/hourbook-%1.png").arg(size));
  return QIcon::fromTheme(QStringLiteral("hourbook"), linkedIn);
}

/// Told in a box and on the error output, for who starts the program from a terminal or a script.
int refuseToStart(const QString& text) {
  std::fprintf(stderr, "%s\n", qPrintable(text));
  platform::dialogs::Dialogs::current().MsgBox(text, platform::dialogs::vbCritical, gTitle);
  return 1;
}

int run(QApplication& application) {
  const Configuration configuration = Configuration::read(Configuration::defaultFolder());
  platform::automation::Components components;
  registerComponents(components, configuration);
  platform::registry::IniRegistry registry(configuration.registryFile());
  const platform::automation::ScopedComponents componentsInForce(components);
  const platform::registry::ScopedRegistry registryInForce(registry);
  const platform::process::ScopedProcess processInForce(platform::process::systemProcess());
  ProgramValues values;
  values.reporting->journalFolder = Configuration::journalFolder();
  StartParts parts;
  const QString places = Configuration::placesFile();
  parts.reportForms.insert(9, [places] { return frm2KReport(places); });
  parts.reportForms.insert(10, [places] { return frmXPReport(places); });
  parts.reportForms.insert(11, [places] { return frm2003Report(places); });
  Main(parts);
  // Without a form the start was left early, after its message.
  return values.workspace->gReportForm ? application.exec() : 0;
}

}  // namespace

int main(int argc, char** argv) {
  QApplication application(argc, argv);
  QApplication::setApplicationName(QStringLiteral("hourbook"));
  QApplication::setDesktopFileName(QStringLiteral("hourbook"));
  QTimer::singleShot(iconAfterMs, &application, [] { QApplication::setWindowIcon(programIcon()); });
  platform::dialogs::QtDialogs dialogs;
  const platform::dialogs::ScopedDialogs dialogsInForce(dialogs);
  try {
    return run(application);
  } catch (const ConfigurationError& error) {
    return refuseToStart(error.text());
  } catch (const platform::Failure& failure) {
    return refuseToStart(failure.description());
  }
}

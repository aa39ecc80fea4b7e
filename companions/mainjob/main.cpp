// hourbook-mainjob: does the program's main job once, in its real window, and proves that it was done. For
// machines without a display (under Xvfb) and for a first look.
#include "app/components.h"
#include "app/Configuration.h"
#include "companions/console/consoledialogs.h"
#include "companions/mainjob/proof.h"
#include "outlook/OutlookValues.h"
#include "platform/basic/clock.h"
#include "platform/process/process.h"
#include "platform/registry/ini/inifile.h"
#include "shell/start/modMain.h"
#include "shell/start/ProgramValues.h"
#include "workspace/frm2003Report.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QElapsedTimer>
#include <QPixmap>
#include <QWidget>

#include <cstdio>

using namespace Qt::StringLiterals;
using companions::say;
namespace dialogs = platform::dialogs;

namespace {

constexpr int daysBack = 13;

/// The real process, but for its end: that one is noted, since the proof comes after it.
class JobProcess : public platform::process::CatchingProcess {
 public:
  QString expandEnvironment(const QString& text) override {
    return platform::process::systemProcess().expandEnvironment(text);
  }
  QString programFolder() const override { return platform::process::systemProcess().programFolder(); }
};

int fail(const QString& text) {
  std::fprintf(stderr, "hourbook-mainjob: %s\n", qUtf8Printable(text));
  return 1;
}

/// Lets the window be drawn as a user would see it.
void settle() {
  QElapsedTimer timer;
  timer.start();
  while (timer.elapsed() < 400) QCoreApplication::processEvents(QEventLoop::AllEvents, 50);
}

QWidget* reportWindow() {
  for (QWidget* widget : QApplication::topLevelWidgets())
    if (widget->isVisible()) return widget;
  return nullptr;
}

QList<companions::ListedRow> listedRows(hourbook::ProgramValues& values) {
  QList<companions::ListedRow> rows;
  const auto& form = *values.workspace->gReportForm;
  for (int row = 2; row <= values.workspace->gLastRow; ++row) {
    const auto& item = values.outlook->gRowItems.Item(row - 1);
    rows.append({item->stored().key, item->Subject(), item->stored().start, form.exsThisWeek.text(row, 6),
                 form.exsThisWeek.text(row, 7)});
  }
  return rows;
}

bool takePicture(const QString& path) {
  settle();
  QWidget* window = reportWindow();
  if (!window || !window->grab().save(path)) return false;
  say(u"A picture of the window: "_s + path);
  return true;
}

/// Chooses the last two weeks, fetches, reports; what was listed before the report.
QList<companions::ListedRow> fetchAndReport(hourbook::ProgramValues& values, const QString& picture) {
  auto& form = *values.workspace->gReportForm;
  const platform::basic::Date today = platform::basic::Today();
  form.dtpStartDate->setValue(today.addDays(-daysBack));
  form.dtpEndDate->setValue(today);
  form.cmdGetValues.click();
  const QList<companions::ListedRow> rows = listedRows(values);
  if (!picture.isEmpty() && !takePicture(picture)) return {};
  form.cmdOK.click();
  settle();
  return rows;
}

int doTheJob(const QString& profile, const QString& picture) {
  const auto configuration = hourbook::Configuration::read(profile + u"/config"_s);
  platform::automation::Components components;
  hourbook::registerComponents(components, configuration);
  const platform::automation::ScopedComponents componentsInForce(components);
  platform::registry::IniRegistry registry(configuration.registryFile());
  const platform::registry::ScopedRegistry registryInForce(registry);
  JobProcess process;
  const platform::process::ScopedProcess processInForce(process);
  companions::ConsoleDialogs answers;
  const dialogs::ScopedDialogs dialogsInForce(answers);

  hourbook::ProgramValues values;
  hourbook::StartParts parts;
  parts.reportForms.insert(11, [] { return hourbook::frm2003Report(); });
  hourbook::Main(parts);
  if (!values.workspace->gReportForm) return fail(u"The program did not start."_s);
  answers.answer(values.shell->LNGHBREPORTSURE1, dialogs::vbYes);
  answers.answer(values.shell->LNGANOTHERWEEK, dialogs::vbNo);
  const auto rows = fetchAndReport(values, picture);
  if (!answers.unforeseen.isEmpty()) return fail(answers.unforeseen.first());
  return companions::proveReported(rows, configuration, profile + u"/database/Hourbook3.mdb"_s) ? 0 : 1;
}

}  // namespace

int main(int argc, char** argv) {
  const QApplication application(argc, argv);
  QCommandLineParser parser;
  parser.setApplicationDescription(u"Fetches and reports the last two weeks of a sample profile."_s);
  parser.addHelpOption();
  parser.addOption({u"profile"_s, u"a folder made by hourbook-sampledata"_s, u"folder"_s});
  parser.addOption({u"screenshot"_s, u"where a picture of the filled window goes"_s, u"file"_s});
  parser.process(application);
  if (!parser.isSet(u"profile"_s)) return fail(u"--profile is missing."_s);
  try {
    return doTheJob(parser.value(u"profile"_s), parser.value(u"screenshot"_s));
  } catch (const hourbook::ConfigurationError& error) {
    return fail(error.text());
  } catch (const platform::Failure& failure) {
    return fail(failure.description());
  } catch (const platform::process::EndSignal&) {
    return fail(u"The program ended early."_s);
  }
}

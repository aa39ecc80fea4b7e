#include "app/components.h"
#include "app/Configuration.h"
#include "bench/generator.h"
#include "bench/pairs.h"
#include "bench/roads.h"
#include "companions/sampledata/sampleprofile.h"
#include "platform/locale/locale.h"
#include "platform/process/process.h"
#include "platform/registry/ini/inifile.h"
#include "shell/modLanguage.h"
#include "shell/start/modMain.h"
#include "shell/start/ProgramValues.h"
#include "workspace/frm2003Report.h"

#include <QAbstractItemView>
#include <QApplication>
#include <QBarSeries>
#include <QBarSet>
#include <QChart>
#include <QChartView>
#include <QMainWindow>
#include <QMenuBar>
#include <QNetworkAccessManager>
#include <QProcess>
#include <QSqlDatabase>
#include <QStandardItemModel>
#include <QTableView>
#include <QTemporaryDir>
#include <QTimer>
#include <QToolBar>
#include <QVBoxLayout>

#include <cstdio>
#include <unistd.h>

// From the start of a process to the first rows on the screen: the program on a calendar of 10,000 items and
// a window that has the same parts and nothing in them but what is painted.
namespace bench {

using namespace Qt::StringLiterals;

namespace {

constexpr int items = 10'000;

/// Ends the process once a list with rows has been painted.
class EndWhenPainted : public QObject {
 public:
  explicit EndWhenPainted(int least) : least_(least) { qApp->installEventFilter(this); }
  bool eventFilter(QObject* object, QEvent* event) override {
    if (event->type() != QEvent::Paint || ending_) return false;
    const auto* list = object->parent() ? qobject_cast<QTableView*>(object->parent()) : nullptr;
    if (!list || object != list->viewport() || filled(*list) < least_) return false;
    ending_ = true;
    // behind this painting
    QTimer::singleShot(0, this, [] {
      std::fputs("painted\n", stdout);
      std::fflush(stdout);
      ::_exit(0);
    });
    return false;
  }

 private:
  int filled(const QTableView& list) const {
    int rows = 0;
    const QAbstractItemModel& model = *list.model();
    for (int row = 0; row < qMin(50, model.rowCount()); ++row)
      if (!model.index(row, 0).data().toString().isEmpty()) ++rows;
    return rows;
  }

  int least_;
  bool ending_ = false;
};

void startOurs(const QString& profile) {
  using namespace hourbook;
  const Configuration configuration = Configuration::read(profile + u"/config"_s);
  platform::automation::Components components;
  registerComponents(components, configuration);
  platform::registry::IniRegistry registry(configuration.registryFile());
  const platform::automation::ScopedComponents componentsInForce(components);
  const platform::registry::ScopedRegistry registryInForce(registry);
  const platform::process::ScopedProcess processInForce(platform::process::systemProcess());
  ProgramValues values;
  values.reporting->journalFolder = profile + u"/state/reports"_s;
  StartParts parts;
  parts.reportForms.insert(11, [] { return frm2003Report(); });
  const EndWhenPainted end(2);
  Main(parts);
  QApplication::exec();
}

void startBare(const QString& folder) {
  QMainWindow window;
  for (const QString& name : {u"File"_s, u"View"_s, u"Help"_s})
    window.menuBar()->addMenu(name)->addAction(name);
  window.addToolBar(u"Tools"_s)->addAction(u"OK"_s);
  QStandardItemModel model(199, 9);
  for (int row = 0; row < 199; ++row)
    for (int column = 0; column < 9; ++column)
      model.setItem(row, column, new QStandardItem(u"Cell %1, %2"_s.arg(row).arg(column)));
  QTableView table;
  table.setModel(&model);
  auto* bars = new QBarSeries;
  auto* set = new QBarSet(u"Hours"_s);
  for (int i = 0; i < 42; ++i) *set << i % 9;
  bars->append(set);
  auto* chart = new QChart;
  chart->addSeries(bars);
  QChartView view(chart);
  auto* middle = new QWidget;
  auto* layout = new QVBoxLayout(middle);
  layout->addWidget(&table);
  layout->addWidget(&view);
  window.setCentralWidget(middle);
  QSqlDatabase database = QSqlDatabase::addDatabase(u"QSQLITE"_s);
  database.setDatabaseName(folder + u"/bare.sqlite"_s);
  if (!database.open()) qFatal("no SQLite");
  QNetworkAccessManager network;
  window.resize(1100, 700);
  const EndWhenPainted end(2);
  window.show();
  QApplication::exec();
}

void makeProfile(const QString& folder) {
  platform::automation::Components components;
  hourbook::registerComponents(components, {});
  const platform::automation::ScopedComponents componentsInForce(components);
  const hourbook::ProgramValues values;
  hourbook::LoadLanguages(hourbook::fncGetlocalLanguage());
  sampledata::Plan plan;
  plan.today = QDate::currentDate();
  plan.zone = QTimeZone::systemTimeZone();
  plan.listSeparator = platform::locale::current().listSeparator();
  sampledata::makeProfile(folder, plan);
  folderOfFiles({items, 1, QDate::currentDate()}, folder + u"/calendar"_s);
}

/// This program as a process of its own, up to its first rows.
void run(const QString& which, const QString& profile) {
  QProcess process;
  QProcessEnvironment variables = QProcessEnvironment::systemEnvironment();
  for (const auto& [name, place] :
       {std::pair(u"XDG_CACHE_HOME"_s, u"/cache"_s), std::pair(u"XDG_STATE_HOME"_s, u"/state"_s),
        std::pair(u"HOURBOOK_CONFIG"_s, u"/config"_s)})
    variables.insert(name, profile + place);
  process.setProcessEnvironment(variables);
  process.setProcessChannelMode(QProcess::MergedChannels);
  process.start(QCoreApplication::applicationFilePath(), {which, profile});
  constexpr int patienceMs = 120'000;
  if (!process.waitForFinished(patienceMs) || !process.readAll().endsWith("painted\n"))
    qFatal("%s did not paint any rows", qPrintable(which));
}

}  // namespace

bool startedAs(const QStringList& arguments) {
  if (arguments.size() != 3) return false;
  if (arguments[1] == u"--start-ours")
    startOurs(arguments[2]);
  else if (arguments[1] == u"--start-bare")
    startBare(arguments[2]);
  else
    return false;
  return true;
}

void measureStart() {
  QTemporaryDir folder;
  const QString profile = folder.filePath(u"profile"_s);
  makeProfile(profile);
  compare(
      u"start to first painted rows, 10,000 items / bare"_s, 11, [&] { run(u"--start-ours"_s, profile); },
      [&] { run(u"--start-bare"_s, profile); });
}

}  // namespace bench

#include "database/modCreateDB.h"
#include "database/modDBCode.h"
#include "platform/ado/registration.h"
#include "platform/calendar/memory/memorystore.h"
#include "platform/dao/registration.h"
#include "platform/dialogs/dialogs.h"
#include "platform/outlook/application.h"
#include "platform/owc/chartspace.h"
#include "platform/scripting/dictionary.h"
#include "platform/scripting/filesystem.h"
#include "platform/scripting/shell.h"
#include "platform/sql/sqlite/engine.h"
#include "platform/sql/sqlite/session.h"
#include "settings/cGlobalSettings.h"
#include "settings/cPersonalSettings.h"
#include "shell/modRegistryEntry.h"
#include "shell/start/modMain.h"
#include "shell/start/ProgramValues.h"
#include "tests/support/testworld.h"
#include "workspace/modGetData.h"
#include "workspace/modReportForm.h"
#include "workspace/ReportForm.h"

#include <QFile>

namespace tests {
namespace {

using namespace hourbook;
using platform::dialogs::vbCritical;
using platform::dialogs::vbNo;
using platform::dialogs::vbYes;
using platform::outlook::Application;

/// A grid that fetches when it is laid over the list, as the real one does.
class FetchingGrid : public GridView {
 public:
  void subAddGrid(ReportForm&) override { subGetData(); }
  void subDisplayNonGridItems(bool, ReportForm&) override {}
  void subStartWeek() override { ++weeks; }
  void subAddAppToGrid(platform::outlook::AppointmentItem&, cMarking&) override {}
  void subFillGrid() override {}
  void subBuildMetaGrid() override {}
  void subSumRowToGrid(bool) override {}
  void subSaveGridChanges() override {}
  bool fncHasUnsavedHours() const override { return false; }
  int weeks = 0;
};

struct NotedScreen : ReportFormScreen {
  void setMousePointer(int pointer) override { fetches += pointer == 11; }
  void Refresh() override {}
  void Show() override {
    ++shows;
    fetchesBeforeShow = fetches;
  }
  void Unload() override {}
  qint32 GetPixel(int, int) const override { return -1; }
  int shows = 0, fetches = 0, fetchesBeforeShow = 0;
};

/// A machine on which everything is there that a start needs; a test takes something away.
class Start : public testing::Test {
 protected:
  Start() {
    using namespace platform;
    auto& components = world.components;
    components.add<scripting::DictionaryComponent>(QStringLiteral("Scripting.Dictionary"), [] {
      return std::make_shared<scripting::DictionaryComponent>();
    });
    components.add<scripting::FileSystemObject>(QStringLiteral("Scripting.FileSystemObject"), [] {
      return std::make_shared<scripting::FileSystemObject>();
    });
    components.add<scripting::WshShell>(QStringLiteral("Wscript.Shell"),
                                        [] { return std::make_shared<scripting::WshShell>(); });
    const auto driver = std::make_shared<sql::sqlite::SqliteDriver>();
    const auto drivers = std::make_shared<sql::Drivers>();
    drivers->add(QStringLiteral("Microsoft.Jet.OLEDB.4.0"), driver);
    ado::registerComponents(components, drivers);
    dao::registerComponents(components, driver, std::make_shared<sql::sqlite::SqliteEngine>());
    install(11);
    values.shell->documentsFolder = world.programFolder();
    world.process.folder = world.programFolder();
    calendar->addFolder({QStringLiteral("inbox"), QStringLiteral("Inbox"),
                         QStringLiteral("Mailbox - Jane Doe"), false, false});
    calendar->addFolder({QStringLiteral("cal"), QStringLiteral("Calendar"),
                         QStringLiteral("Mailbox - Jane Doe"), true, false});
    runOutlook(QStringLiteral("cal"));
    writeSettings();
    for (qint16 generation : {9, 10, 11})
      parts.reportForms.insert(generation, [this, generation] { return makeForm(generation); });
  }

  void install(int generation) {
    const QString progId = generation == 9    ? QStringLiteral("OWC.Chart")
                           : generation == 10 ? QStringLiteral("OWC10.Chartspace")
                                              : QStringLiteral("OWC11.ChartSpace");
    world.components.add<platform::owc::ChartSpace>(
        progId, [] { return std::make_shared<platform::owc::ChartSpace>(); });
  }
  void runOutlook(const QString& openFolder) {
    platform::outlook::Profile profile;
    profile.stores.append(calendar);
    profile.openFolder = openFolder;
    outlook = std::make_shared<Application>(profile);
    world.components.addRunning<Application>(QStringLiteral("Outlook.Application"),
                                             [this] { return outlook; });
  }
  void set(const char* name, const QString& value) {
    fncSaveRegistryValue(QStringLiteral("Settings"), QString::fromLatin1(name), value);
  }
  void writeSettings() {
    set("ReportChoice", QStringLiteral("2"));
    set("ReportValue", world.programFolder() + u'\\');
    set("MetadataList", QStringLiteral("Customer:Acme;\r\n"));
    set("StartGrid", QStringLiteral("False"));
  }
  /// Making one and bringing it up to date takes long on a slow disk, so each test gets a copy of the first.
  void makeDatabase() {
    static QByteArray upToDate;
    const QString path = world.programFolder() + QStringLiteral("/Hourbook3.mdb");
    QFile file(path);
    if (!upToDate.isEmpty()) {
      ASSERT_TRUE(file.open(QIODevice::WriteOnly));
      file.write(upToDate);
      return;
    }
    ASSERT_TRUE(subCreateHBDatabase(path));
    values.database->gReportValue = world.programFolder();
    subSetupConnection();
    ASSERT_NE(values.database->gConnection, nullptr);
    values.database->gConnection.reset();
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    upToDate = file.readAll();
  }
  std::shared_ptr<ReportForm> makeForm(qint16 generation) {
    auto form = std::make_shared<ReportForm>(reportFormVariant(generation));
    form->setScreen(&screen);
    subConnectEvents(*form);
    return form;
  }
  void start() { Main(parts); }
  void expectMessage(const QString& text) { world.dialogs.expect(text, 1); }
  const platform::dialogs::Shown& lastShown() const { return world.dialogs.shown.last(); }

  TestWorld world;
  NotedScreen screen;
  ProgramValues values;
  std::shared_ptr<platform::calendar::MemoryStore> calendar =
      std::make_shared<platform::calendar::MemoryStore>();
  std::shared_ptr<Application> outlook;
  StartParts parts;
};

TEST_F(Start, ShowsTheFormAfterItsFirstFetch) {
  makeDatabase();
  start();
  EXPECT_EQ(screen.shows, 1);
  EXPECT_EQ(screen.fetchesBeforeShow, 1);
  EXPECT_EQ(screen.fetches, 1);
  EXPECT_TRUE(world.dialogs.shown.isEmpty());
}

TEST_F(Start, FillsTheSharedValues) {
  makeDatabase();
  start();
  EXPECT_EQ(values.shell->gListSeparator, QStringLiteral(","));
  EXPECT_EQ(values.outlook->gOutlookApp, outlook);
  EXPECT_EQ(values.outlook->gCalendarFolder->Id(), QStringLiteral("cal"));
  EXPECT_EQ(values.outlook->gCurrentUser, QStringLiteral("Jane Doe"));
  EXPECT_EQ(values.database->gReportValue, world.programFolder());  // the database code drops the last "\"
  EXPECT_EQ(values.workspace->gOWCVersion, 11);
  EXPECT_EQ(values.settings->gGlobalSettings->MetaDataLists.Count(), 3);
  EXPECT_EQ(values.shell->LNGOK, QStringLiteral("OK"));
  EXPECT_EQ(values.workspace->gReportForm->Name(), QStringLiteral("frm2003Report"));
}

TEST_F(Start, TakesTheListSeparatorOfTheSystem) {
  makeDatabase();
  world.setLocale(QStringLiteral("sv_SE"));
  start();
  EXPECT_EQ(values.shell->gListSeparator, QStringLiteral(";"));
}

TEST_F(Start, KnowsTheListSeparatorBeforeItTouchesOutlook) {
  makeDatabase();
  world.setLocale(QStringLiteral("sv_SE"));
  QStringList known;
  world.components.addRunning<Application>(QStringLiteral("Outlook.Application"), [&] {
    known.append(values.shell->gListSeparator);
    return outlook;
  });
  start();
  ASSERT_FALSE(known.isEmpty());
  EXPECT_EQ(known.first(), QStringLiteral(";"));
}

TEST_F(Start, ReplacesTheSettingsOfItsFirstStep) {
  makeDatabase();
  std::shared_ptr<cPersonalSettings> first;
  world.components.addRunning<Application>(QStringLiteral("Outlook.Application"), [&] {
    if (!first) first = values.settings->gPersonalSettings;
    return outlook;
  });
  start();
  ASSERT_NE(first, nullptr);
  ASSERT_NE(values.settings->gPersonalSettings, nullptr);
  EXPECT_NE(values.settings->gPersonalSettings, first);
  EXPECT_EQ(first->MetaDataLists.Count(), 0);
}

/// A system whose settings cannot be read.
class BrokenLocale : public platform::locale::Locale {
 public:
  QString name() const override { return QStringLiteral("en_US"); }
  qint32 lcid() const override { return 1033; }
  QString listSeparator() const override {
    throw platform::Failure(platform::failure::invalidProcedureCall, QStringLiteral("No separator"));
  }
  QString decimalSign() const override { return QStringLiteral("."); }
  QString shortDatePattern() const override { return QStringLiteral("M/d/yyyy"); }
  QString weekdayName(int, bool) const override { return {}; }
  QString monthName(int, bool) const override { return {}; }
};

TEST_F(Start, DoesNotBlameTheCalendarForAFailureBeforeItsConnection) {
  const platform::locale::ScopedLocale locale(std::make_shared<BrokenLocale>());
  world.dialogs.expect(QStringLiteral("No separator"), vbNo);
  EXPECT_ENDS_PROCESS(start());
  EXPECT_EQ(world.dialogs.shown.size(), 1);
  // The phrases are not read yet.
  EXPECT_TRUE(lastShown().text.contains(QStringLiteral(" : Main")));
}

TEST_F(Start, EndsWithAMessageWithoutOutlook) {
  world.components.remove(QStringLiteral("Outlook.Application"));
  expectMessage(QStringLiteral("Please start Outlook manually before you execute this application!"));
  EXPECT_ENDS_PROCESS(start());
}

TEST_F(Start, GoesWithoutAWordFromAMailFolder) {
  runOutlook(QStringLiteral("inbox"));
  start();
  EXPECT_TRUE(world.dialogs.shown.isEmpty());
  EXPECT_EQ(values.workspace->gReportForm, nullptr);
  EXPECT_EQ(screen.shows, 0);
}

TEST_F(Start, OpensACalendarWindowWhenOutlookRunsWithoutOne) {
  makeDatabase();
  runOutlook(QString());
  start();
  EXPECT_EQ(values.outlook->gCalendarFolder->Id(), QStringLiteral("cal"));
  EXPECT_EQ(screen.shows, 1);
}

TEST_F(Start, SaysThatTheCalendarCannotBeReachedWhenNoWindowIsOpen) {
  calendar = std::make_shared<platform::calendar::MemoryStore>();
  runOutlook(QString());
  expectMessage(QStringLiteral("Failed to connect to your current Outlook calendar folder"));
  start();
  EXPECT_EQ(lastShown().options, vbCritical);
  EXPECT_EQ(lastShown().title, QStringLiteral("Hourbook for Outlook Reporting"));
  EXPECT_EQ(values.workspace->gReportForm, nullptr);
}

TEST_F(Start, StopsWithoutPersonalSettings) {
  world.registry = platform::registry::MemoryRegistry();
  expectMessage(QStringLiteral("Failed to read settings for the active Outlook folder!"));
  start();
  EXPECT_EQ(lastShown().options, vbCritical);
  EXPECT_EQ(values.workspace->gReportForm, nullptr);
}

TEST_F(Start, StopsWithoutAMetaListHoweverRightTheOtherSettingsAre) {
  set("MetadataList", QString());
  expectMessage(QStringLiteral("Failed to read settings for the active Outlook folder!"));
  start();
  EXPECT_EQ(values.workspace->gReportForm, nullptr);
}

TEST_F(Start, StopsWithSettingsThatCannotBeReadThoughTheirListsCan) {
  set("StartGrid", QStringLiteral("perhaps"));
  expectMessage(QStringLiteral("Failed to read settings for the active Outlook folder!"));
  start();
  EXPECT_EQ(values.settings->gPersonalSettings->MetaDataLists.Count(), 1);
  EXPECT_EQ(values.settings->gGlobalSettings, nullptr);
  EXPECT_EQ(values.workspace->gReportForm, nullptr);
}

TEST_F(Start, EndsWithThePathOfADatabaseThatCannotBeReached) {
  expectMessage(QStringLiteral("Unable to reach \r\n") + world.programFolder() +
                QStringLiteral("\\\\Hourbook3.mdb"));
  EXPECT_ENDS_PROCESS(start());
  EXPECT_EQ(lastShown().options, vbCritical);
}

TEST_F(Start, NamesTheFileOfTheOneDatabaseForAServerToo) {
  set("ReportChoice", QStringLiteral("3"));
  set("ReportValue", QString());
  expectMessage(QStringLiteral("Unable to reach \r\n\\Hourbook3.mdb"));
  EXPECT_ENDS_PROCESS(start());
  EXPECT_EQ(lastShown().title, QStringLiteral("Hourbook for Outlook Reporting"));
  EXPECT_EQ(values.workspace->gReportForm, nullptr);
}

TEST_F(Start, ReadsTheCommonSettingsThroughTheConnectionTextOfThePersonalOnes) {
  makeDatabase();
  QTemporaryDir elsewhere;
  const QString file = elsewhere.filePath(QStringLiteral("reports.db"));
  ASSERT_TRUE(QFile::rename(world.programFolder() + QStringLiteral("/Hourbook3.mdb"), file));
  const QString text = QStringLiteral("Provider=Microsoft.Jet.OLEDB.4.0;Data Source=") + file;
  set("ReportChoice", QStringLiteral("3"));
  set("ReportValue", text);
  start();
  EXPECT_EQ(values.settings->gGlobalSettings->ReportTo, 3);
  EXPECT_EQ(values.settings->gGlobalSettings->ReportToValue, text);
  EXPECT_EQ(values.settings->gGlobalSettings->MetaDataLists.Count(), 3);
  EXPECT_EQ(screen.shows, 1);
}

TEST_F(Start, ReportsAFailureUnderTheNameMainOnceTheFolderIsKnown) {
  makeDatabase();
  parts.reportForms.remove(11);
  world.dialogs.expect(QStringLiteral("Sub routine : Main"), vbNo);
  EXPECT_ENDS_PROCESS(start());
  EXPECT_TRUE(lastShown().text.contains(
      QStringLiteral("This version has no report form for generation 11 of the spreadsheet component")));
}

TEST_F(Start, PrefersTheFormOfGeneration10) {
  makeDatabase();
  install(9);
  install(10);
  start();
  EXPECT_EQ(values.workspace->gReportForm->Name(), QStringLiteral("frmXPReport"));
}

TEST_F(Start, PrefersTheFormOfGeneration9To11) {
  makeDatabase();
  install(9);
  start();
  EXPECT_EQ(values.workspace->gReportForm->Name(), QStringLiteral("frm2KReport"));
}

class WithoutAChart : public Start {
 protected:
  WithoutAChart() {
    makeDatabase();
    world.components.remove(QStringLiteral("OWC11.ChartSpace"));
  }
  const QString question = QStringLiteral(
      "Unable to start the MS Office Web Components!\r\n"
      "Please download these FREE component from Microsoft Download\r\n"
      "Do you want to go to that website now?");
};

TEST_F(WithoutAChart, OpensTheDownloadPageOnYesAndEnds) {
  world.dialogs.expect(question, vbYes);
  EXPECT_ENDS_PROCESS(start());
  ASSERT_EQ(world.dialogs.shown.size(), 1);
  EXPECT_EQ(world.dialogs.shown[0].kind, platform::dialogs::Shown::Kind::Alert);
  EXPECT_EQ(world.dialogs.shown[0].options, 4);
  EXPECT_EQ(world.process.opened, QStringList{QStringLiteral("https://www.microsoft.com/download")});
  EXPECT_TRUE(world.process.started.isEmpty());
}

TEST_F(WithoutAChart, SaysOnNoThatItShutsDownAndEnds) {
  world.dialogs.expect(question, vbNo);
  world.dialogs.expect(QStringLiteral("Hourbook for Outlook Reporting will now shut down!"), 1);
  EXPECT_ENDS_PROCESS(start());
  EXPECT_TRUE(world.process.opened.isEmpty());
}

TEST_F(WithoutAChart, AsksInAPlainBoxWhereThereIsNoAssistant) {
  class NoAssistant : public platform::dialogs::ScriptedDialogs {
   public:
    int DoAlert(const QString&, const QString&, int, int) override {
      throw platform::Failure(platform::failure::cantCreateObject, QStringLiteral("No assistant"));
    }
  };
  NoAssistant dialogs;
  const platform::dialogs::ScopedDialogs inForce(dialogs);
  dialogs.expect(question, vbNo);
  dialogs.expect(QStringLiteral("Hourbook for Outlook Reporting will now shut down!"), 1);
  EXPECT_ENDS_PROCESS(start());
  ASSERT_EQ(dialogs.shown.size(), 2);
  EXPECT_EQ(dialogs.shown[0].kind, platform::dialogs::Shown::Kind::MsgBox);
  EXPECT_EQ(dialogs.shown[0].options, platform::dialogs::vbYesNo + platform::dialogs::vbQuestion);
  EXPECT_EQ(dialogs.shown[0].title, QStringLiteral("Hourbook for Outlook Reporting"));
  EXPECT_EQ(dialogs.shown[1].options, platform::dialogs::vbInformation);
}

TEST_F(Start, InTheGridFetchesOnceMore) {
  makeDatabase();
  set("StartGrid", QStringLiteral("True"));
  auto grid = std::make_shared<FetchingGrid>();
  parts.newGridView = [grid] { return grid; };
  start();
  EXPECT_EQ(values.workspace->gReportForm->chkGrid.Value(), 1);
  EXPECT_EQ(screen.fetchesBeforeShow, 1);
  EXPECT_EQ(screen.fetches, 2);
  EXPECT_EQ(grid->weeks, 1);
}

TEST_F(Start, StaysInTheListWhereThereIsNoGrid) {
  makeDatabase();
  set("StartGrid", QStringLiteral("True"));
  start();
  EXPECT_EQ(values.workspace->gReportForm->chkGrid.Value(), 0);
  EXPECT_EQ(screen.fetches, 1);
}

}  // namespace
}  // namespace tests

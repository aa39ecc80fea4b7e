// From a machine on which nothing is set up, through the settings program's window, to the first report in a
// database on a PostgreSQL server.
#include "settingsuser.h"
#include "tests/contract/sqldriver/postgresqlserver.h"

#include <QProcess>

namespace tests {
namespace {

class ServerSettingsJourney : public testing::Test {
 protected:
  void SetUp() override {
    ASSERT_TRUE(server.problem().isEmpty()) << qPrintable(server.problem());
    psql(u"postgres"_s, {u"-f"_s, QStringLiteral(CREATION_SCRIPT)});
  }
  /// Lines that the server's own program answers with, columns joined by "|".
  QStringList psql(const QString& database, const QStringList& arguments) const {
    const QString said =
        outside::run(u"psql"_s, QStringList{u"-X"_s, u"-q"_s, u"-t"_s, u"-A"_s, u"-h"_s, server.dataSource(),
                                            u"-U"_s, server.user(), u"-d"_s, database} +
                                    arguments);
    return said.split(u'\n', Qt::SkipEmptyParts);
  }
  QString connection() const {
    return u"Provider=PostgreSQL;Data Source=%1;Initial Catalog=Hourbook3SQL;User ID=%2;"
           "Application Name=Hourbook"_s.arg(server.dataSource(), server.user());
  }
  static void chooseServer(Settings& settings, const QString& text) {
    settings.tabTo("optAccess");
    settings.key(Qt::Key_Down);
    settings.tabTo("optByLogin");
    settings.key(Qt::Key_Down);
    settings.type("txtConnection", text);
  }

  /// From nothing to the list of a week, with the settings leading to the server.
  void fetchOnTheServer(Journey& j) const {
    empty(j);
    {
      Settings settings(j);
      chooseCalendar(j, settings);
      chooseServer(settings, connection());
      chooseListsAndSave(settings);
    }
    j.start();
    ASSERT_TRUE(j.hasWindow());
    j.fetch(may(13), may(19));
  }

  /// What the program has stored, as the server's own program shows it.
  QStringList reported() const {
    return psql(u"Hourbook3SQL"_s,
                {u"-c"_s,
                 u"select \"strSubject\", \"numHours\", \"curCost\", \"strPersonName\" from \"tblReports\" "
                 "join \"tblPersons\" using (\"intPersonID\")"_s});
  }
  static QString tested(Settings& settings) {
    settings.press("cmdTest");
    EXPECT_TRUE(QTest::qWaitFor([&] { return settings.text("lblResult") != texts::testing; }, 60000));
    return settings.text("lblResult");
  }

  contract::PostgresqlServer server;
};

TEST_F(ServerSettingsJourney, WhoTypesAConnectionTextReportsTheFirstRowIntoTheServersDatabase) {
  Journey j;
  empty(j);
  {
    Settings settings(j);
    chooseCalendar(j, settings);
    chooseServer(settings, connection());
    EXPECT_EQ(tested(settings), u"Connection succeeded!\nTime reports in the database: 0"_s);
    chooseListsAndSave(settings);
  }
  const QByteArray registry = outside::content(j.configuration() + u"/registry.ini"_s);
  EXPECT_TRUE(registry.contains("Application Name=Hourbook")) << registry.constData();
  j.start();
  ASSERT_TRUE(j.hasWindow());
  j.fetch(may(13), may(19));
  j.reportAndStay();
  EXPECT_EQ(reported(), QStringList{u"Visit at the customer's|1.5|675.7500|Jane Doe"_s});
  EXPECT_FALSE(j.event(u"visit"_s).stamp.isEmpty());
}

TEST_F(ServerSettingsJourney, WhoMistypesTheDatabaseIsToldSoAndMayMendIt) {
  Journey j;
  empty(j);
  {
    Settings settings(j);
    chooseCalendar(j, settings);
    chooseServer(settings, connection().replace(u"Hourbook3SQL"_s, u"Hourbok3SQL"_s));
    EXPECT_TRUE(tested(settings).contains(u"database \"Hourbok3SQL\" does not exist"_s))
        << qPrintable(settings.text("lblResult"));
    settings.type("txtConnection", connection());
    EXPECT_EQ(tested(settings), u"Connection succeeded!\nTime reports in the database: 0"_s);
    chooseListsAndSave(settings);
  }
  j.start();
  ASSERT_TRUE(j.hasWindow());
  j.fetch(may(13), may(19));
  j.reportAndStay();
  EXPECT_EQ(reported().size(), 1);
}

TEST_F(ServerSettingsJourney, AServerThatIsGoneAtTheReportTakesItTheNextTime) {
  Journey j;
  ASSERT_NO_FATAL_FAILURE(fetchOnTheServer(j));
  server.kill();
  j.world.dialogs.expect(sureQuestion, platform::dialogs::vbYes);
  j.world.dialogs.expect(errorReport, platform::dialogs::vbNo);
  EXPECT_ENDS_PROCESS(j.click("cmdOK"));
  EXPECT_TRUE(j.world.dialogs.shown.last().text.contains(u"Cannot connect to the database Hourbook3SQL on"_s))
      << qPrintable(j.world.dialogs.shown.last().text);
  EXPECT_TRUE(j.event(u"visit"_s).stamp.isEmpty());
  server.restart();
  j.start();
  ASSERT_TRUE(j.hasWindow());
  j.fetch(may(13), may(19));
  j.reportAndStay();
  EXPECT_EQ(reported().size(), 1);
  EXPECT_FALSE(j.event(u"visit"_s).stamp.isEmpty());
}

TEST_F(ServerSettingsJourney, AReportThatWasInterruptedWaitsForAServerThatIsGoneAtTheStart) {
  Journey j;
  ASSERT_NO_FATAL_FAILURE(fetchOnTheServer(j));
  const QString file = j.calendar() + u"/visit.ics"_s;
  QFile::setPermissions(file, QFile::ReadOwner);  // the stamp cannot be written
  j.world.dialogs.expect(sureQuestion, platform::dialogs::vbYes);
  j.world.dialogs.expect(errorReport, platform::dialogs::vbNo);
  EXPECT_ENDS_PROCESS(j.click("cmdOK"));
  EXPECT_EQ(reported().size(), 1);
  QFile::setPermissions(file, QFile::ReadOwner | QFile::WriteOwner);
  const auto journals = [&] { return QDir(j.journal()).entryList({u"report-*.json"_s}).size(); };
  server.kill();
  j.world.dialogs.expect(u"Cannot connect to the database Hourbook3SQL on"_s, platform::dialogs::vbNo);
  EXPECT_ENDS_PROCESS(j.start());
  EXPECT_EQ(journals(), 1);
  server.restart();
  j.start();
  ASSERT_TRUE(j.hasWindow());
  EXPECT_FALSE(j.event(u"visit"_s).stamp.isEmpty());
  EXPECT_EQ(journals(), 0);
  j.fetch(may(13), may(19));
  j.pressOK();  // and there is nothing to report
  EXPECT_EQ(reported().size(), 1);
}

}  // namespace
}  // namespace tests

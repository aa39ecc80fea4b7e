// A server that cannot be reached, refuses, or is lost in the middle.
#include "postgresqlroad.h"
#include "tests/unit/reporting/reportingworld.h"

using namespace hourbook;
using platform::Failure;
using platform::basic::Value;
using tests::PostgresqlRoad;

class PostgresqlFailures : public testing::Test {
 protected:
  /// Throws everybody out of the database.
  static void cutOff() {
    PostgresqlRoad::administrator()->execute(
        u"WITH x AS (SELECT pid FROM pg_stat_activity WHERE datname = 'hours') "
        "SELECT pg_terminate_backend(pid) FROM x"_qs);
  }
  void expectRefused(const QString& text, const QString& part,
                     const QString& procedure = u"subSetupConnection"_qs) {
    w.database->gConnection.reset();
    reportTarget().ReportTo = 2;
    w.write(connectionFileName, text.toUtf8());
    w.expectFailure(procedure, part, [] { subSetupConnection(); });
    EXPECT_EQ(w.read(connectionFileName), text.toUtf8()) << "what is kept stays as it was";
  }
  void cutOffAtInsert(int n, bool carriedOut) {
    w.plan->clear();
    w.plan->rules.append(
        {u"insert into [tblReports]"_qs, n - 1, 1, carriedOut, std::nullopt, [] { cutOff(); }});
  }
  tests::ReportingWorld w;
};

TEST_F(PostgresqlFailures, AWrongPasswordIsReportedInTheServersWords) {
  const auto session = PostgresqlRoad::administrator();
  session->execute(
      u"DO $$ BEGIN IF NOT EXISTS (SELECT FROM pg_roles WHERE rolname = 'guarded') THEN CREATE ROLE "
      "guarded LOGIN PASSWORD 'right'; END IF; END $$"_qs);
  expectRefused(PostgresqlRoad::textFor(u"hours"_qs, u"guarded"_qs, u"wrong"_qs),
                u"password authentication failed for user \"guarded\""_qs);
  EXPECT_FALSE(w.world.dialogs.shown.last().text.contains(u"scram"_qs));
}

TEST_F(PostgresqlFailures, AMissingDatabaseServerOrPartOfTheTextIsReported) {
  expectRefused(PostgresqlRoad::textFor(u"gone"_qs), u"database \"gone\" does not exist"_qs);
  expectRefused(u"Provider=PostgreSQL;User ID=x;Data Source=/nowhere;Initial Catalog=hours"_qs,
                u"Cannot connect to the database hours on /nowhere"_qs);
  expectRefused(u"Provider=PostgreSQL;User ID=x;Initial Catalog=hours"_qs, u"names no server"_qs);
  const QString whole = w.road->connectionText();
  expectRefused(whole.left(whole.indexOf(u"Data Source"_qs) + 5), {});
  expectRefused(whole.left(14), u"Provider cannot be found"_qs);
}

TEST_F(PostgresqlFailures, ADatabaseOfAnotherKindIsReported) {
  expectRefused(PostgresqlRoad::textFor(u"postgres"_qs), u"tblPersons"_qs, u"subCheckSQLUpgrade"_qs);
  EXPECT_TRUE(PostgresqlRoad::administrator()->tables().isEmpty()) << "nothing of ours is left in it";
}

TEST_F(PostgresqlFailures, AServerThatIsLostBetweenTwoRowsKeepsThoseThatWereStored) {
  for (const char* subject : {"one", "two", "three"}) w.addComplete(QLatin1String(subject));
  cutOffAtInsert(2, false);
  w.expectFailure(u"fncReportToAccess"_qs, u"The connection to the database hours on"_qs,
                  [&] { w.report(); });
  EXPECT_EQ(w.storedRows(), 1);
  EXPECT_EQ(w.statuses(), QStringList({w.shell->LNGOK, w.shell->LNGNOTPOSTED, w.shell->LNGNOTPOSTED}));
  EXPECT_FALSE(w.stamp(1).isEmpty());
  EXPECT_TRUE(w.stamp(2).isEmpty());
  EXPECT_FALSE(w.database->gConnection);
  // the rest goes out the next time, and nothing twice
  w.plan->clear();
  w.shell->gInErrorReport = false;
  w.expectDone();
  w.report();
  EXPECT_EQ(w.storedRows(), 3);
  QStringList subjects;
  for (const Value& value : w.stored(u"strSubject"_qs)) subjects.append(std::get<QString>(value));
  EXPECT_EQ(subjects, QStringList({u"one"_qs, u"two"_qs, u"three"_qs}));
}

TEST_F(PostgresqlFailures, AServerThatIsLostBeforeTheFirstRowStoresNothing) {
  w.addComplete(u"one"_qs);
  cutOffAtInsert(1, false);
  w.expectFailure(u"fncReportToAccess"_qs, u"is broken"_qs, [&] { w.report(); });
  EXPECT_EQ(w.storedRows(), 0);
  EXPECT_EQ(w.statuses(), QStringList{w.shell->LNGNOTPOSTED});
}

TEST_F(PostgresqlFailures, ASaveThatIsCutOffIsReportedAndKeepsWhatItHeld) {
  w.common().MetaDataLists.Item(1)->AddMeta(u"New"_qs);
  w.plan->clear();
  w.plan->rules.append({u"insert into [tblMeta1]"_qs, 0, 1, false, std::nullopt, [] { cutOff(); }});
  w.expectFailure(u"fncSaveGlobalSettings"_qs, u"is broken"_qs, [&] { w.common().SaveGlobalSettings(); });
  EXPECT_EQ(w.rows(u"select * from tblMeta1"_qs), 2);
  w.plan->clear();
  w.database->gConnection.reset();
  w.shell->gInErrorReport = false;
  EXPECT_TRUE(w.common().SaveGlobalSettings());
  EXPECT_EQ(w.rows(u"select * from tblMeta1 where strName = 'New'"_qs), 1);
}

TEST_F(PostgresqlFailures, SomebodyWithoutTheRightToStoreIsTold) {
  const auto session = w.other();
  session->execute(
      u"DO $$ BEGIN IF NOT EXISTS (SELECT FROM pg_roles WHERE rolname = 'reader') THEN CREATE ROLE "
      "reader LOGIN; END IF; END $$"_qs);
  session->execute(u"GRANT SELECT ON ALL TABLES IN SCHEMA public TO reader"_qs);
  w.common().ReportTo = 3;
  w.common().ReportToValue = PostgresqlRoad::textFor(u"hours"_qs, u"reader"_qs);
  w.addComplete(u"one"_qs);
  w.expectFailure(u"fncGetPersonID"_qs, u"permission denied for table tblPersons"_qs, [&] { w.report(); });
  EXPECT_EQ(w.storedRows(), 0);
}

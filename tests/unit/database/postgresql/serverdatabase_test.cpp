// The database on a real PostgreSQL server: its script, connections, upgrades, and what a report stores.
#include "database/frmSQLLogon.h"
#include "database/modCreateSQLDB.h"
#include "database/modSchema.h"
#include "platform/sql/postgresql/driver.h"
#include "platform/sql/postgresql/session.h"
#include "postgresqlroad.h"
#include "tests/unit/database/golden.h"
#include "tests/unit/reporting/reportingworld.h"

using namespace hourbook;
using platform::Failure;
using platform::basic::Value;
using tests::PostgresqlRoad;

class PostgresqlDatabase : public testing::Test {
 protected:
  PostgresqlDatabase() { w.createCurrent(); }
  void run(const QString& sql) { w.other()->execute(sql); }
  QStringList names(const QString& sql) const {
    QStringList list;
    for (const auto& row : w.other()->execute(sql).rows)
      list.append(platform::basic::IsNull(row[0]) ? u"Null"_qs : platform::basic::CStr(row[0]));
    return list;
  }
  tests::DatabaseWorld w;
};

TEST_F(PostgresqlDatabase, TheScriptMakesTheTablesThatTheProgramKnows) {
  using platform::sql::Type;
  static const QMap<int, Type> types{
      {platform::dao::dbBoolean, Type::Boolean}, {platform::dao::dbInteger, Type::Integer},
      {platform::dao::dbLong, Type::Long},       {platform::dao::dbCurrency, Type::Currency},
      {platform::dao::dbSingle, Type::Single},   {platform::dao::dbDate, Type::Date},
      {platform::dao::dbText, Type::Text},       {platform::dao::dbMemo, Type::Memo}};
  const auto session = PostgresqlRoad::administrator(u"Hourbook3SQL"_qs);
  EXPECT_EQ(session->tables().size(), fncSchemaTables().size());
  for (const SchemaTable& table : fncSchemaTables()) {
    const auto columns = session->columns(table.strName);
    ASSERT_EQ(columns.size(), table.columns.size()) << qPrintable(table.strName);
    for (qsizetype i = 0; i < columns.size(); ++i) {
      EXPECT_EQ(columns[i].name, table.columns[i].strName);
      EXPECT_EQ(columns[i].type, types.value(table.columns[i].intType)) << qPrintable(columns[i].name);
      EXPECT_EQ(columns[i].caption, table.columns[i].strCaption);
      EXPECT_EQ(columns[i].autoIncrement, i == 0);
      EXPECT_EQ(columns[i].primaryKey, i == 0);
      if (columns[i].type == Type::Text) {
        EXPECT_EQ(columns[i].size, textColumnSize);
      }
    }
  }
  QStringList relations, expected;
  for (const auto& relation : platform::sql::postgresql::makeEngine()->relations(*session))
    relations.append(relation.name + relation.table + relation.foreignTable + relation.field);
  for (const auto& relation : fncSchemaRelations())
    expected.append(relation.name + relation.table + relation.foreignTable + relation.field);
  relations.sort();
  expected.sort();
  EXPECT_EQ(relations, expected);
}

TEST_F(PostgresqlDatabase, TheScriptLeavesADatabaseThatIsThereAlone) {
  QString said;
  EXPECT_NE(tests::runPsql(u"" HOURBOOK_RESOURCES "/CreateDBHB-PostgreSQL.sql"_qs, &said), 0);
  EXPECT_TRUE(said.contains(u"already exists"_qs)) << qPrintable(said);
}

TEST_F(PostgresqlDatabase, TheConnectionFileLeadsToItAndNothingIsToUpgrade) {
  w.plan->clear();
  subSetupConnection();
  ASSERT_TRUE(w.database->gConnection);
  EXPECT_EQ(reportTarget().ReportTo, 3);
  EXPECT_EQ(reportTarget().ReportToValue, w.road->connectionText());
  EXPECT_EQ(w.plan->statements, QStringList({u"connect"_qs, u"columns tblReports"_qs,
                                             u"select top 1 strBody from tblReports"_qs}))
      << "the connection that the look at its age opened is kept";
}

TEST_F(PostgresqlDatabase, TheTextOfTheSettingsLeadsToItWithoutAFile) {
  QFile::remove(w.path(u"HourbookConnection.txt"_qs));
  reportTarget().ReportTo = 3;
  reportTarget().ReportToValue = w.road->connectionText();
  const auto rows = fncReturnRecordset(u"tblPersons"_qs);
  ASSERT_TRUE(rows);
  rows->AddNew(u"strPersonName"_qs, u"Ann"_qs);
  EXPECT_EQ(names(u"select strPersonName from tblPersons"_qs), QStringList{u"Ann"_qs});
}

TEST_F(PostgresqlDatabase, ChangedRowsKeepTheirPlaceInATable) {
  for (const char* name : {"one", "two", "three"})
    run(u"insert into tblMetaLists (strMetaListCaption) values ('%1')"_qs.arg(QLatin1String(name)));
  const auto rows = fncReturnRecordset(u"tblMetaLists"_qs);
  (*rows)[u"strMetaListCaption"_qs].setValue(u"ONE"_qs);
  rows->Update();
  const auto again = fncReturnRecordset(u"tblMetaLists"_qs);
  EXPECT_TRUE((*again)[u"strMetaListCaption"_qs].Value() == Value(u"ONE"_qs));
}

TEST_F(PostgresqlDatabase, AScriptInTheProgramsFolderMakesADatabaseUnderTheTypedName) {
  QFile file(w.world.process.folder + u"/CreateDBHB.sql"_qs);
  ASSERT_TRUE(file.open(QIODevice::WriteOnly));
  file.write("DROP DATABASE IF EXISTS \"Hourbook3SQL\"\nGO\nCREATE DATABASE \"Hourbook3SQL\"\n");
  file.close();
  w.database->frmSQLLogon = [](frmSQLLogon& form) {
    form.strConnection = PostgresqlRoad::textFor(u"postgres"_qs);
    form.txtDatabase.setText(u"Zeiten O'Brien"_qs);
  };
  EXPECT_EQ(fncCreateSQLDB(u"Hourbook3SQL"_qs),
            PostgresqlRoad::textFor(u"postgres"_qs) + u";Initial Catalog=Zeiten O'Brien"_qs);
  EXPECT_NO_THROW(PostgresqlRoad::administrator(u"Zeiten O'Brien"_qs));
}

// ---- upgrades

struct OlderState {
  const char* name;
  bool otherSettings;       // they and the category are there
  QList<int> enabled;       // lists whose column is there
  QList<int> afterwards{};  // those that have it after the upgrade
  bool body = false;
};
void PrintTo(const OlderState& state, std::ostream* out) {
  *out << state.name;
}

class PostgresqlUpgrades : public PostgresqlDatabase, public testing::WithParamInterface<OlderState> {
 protected:
  void makeOlder(const OlderState& state) {
    if (!state.otherSettings) {
      run(u"DROP TABLE \"tblOtherSettings\""_qs);
      run(u"ALTER TABLE \"tblPersons\" DROP COLUMN \"strPersonCategory\""_qs);
    }
    for (int n = 1; n <= 3; ++n)
      if (!state.enabled.contains(n)) run(u"ALTER TABLE \"tblMeta%1\" DROP COLUMN \"blnEnabled\""_qs.arg(n));
    if (!state.body) run(u"ALTER TABLE \"tblReports\" DROP COLUMN \"strBody\""_qs);
    run(u"insert into tblPersons (strPersonName) values ('Ann')"_qs);
    for (int n = 1; n <= 3; ++n) run(u"insert into tblMeta%1 (strName) values ('there')"_qs.arg(n));
    run(u"insert into tblReports (strSubject, intPersonID, intMeta1ID) values ('kept', 1, 1)"_qs);
  }
  void expectCurrent(const OlderState& state, const std::string& when = {}) {
    EXPECT_EQ(names(u"select strSubject from tblReports"_qs), QStringList{u"kept"_qs}) << when;
    EXPECT_EQ(names(u"select strPersonName from tblPersons"_qs), QStringList{u"Ann"_qs}) << when;
    EXPECT_EQ(w.columns(u"tblReports"_qs).last(), u"strBody"_qs) << when;
    EXPECT_EQ(w.columns(u"tblPersons"_qs).size(), 3) << when;
    EXPECT_EQ(w.columns(u"tblOtherSettings"_qs).size(), 3) << when;
    for (int n = 1; n <= 3; ++n) {
      EXPECT_EQ(w.columns(u"tblMeta%1"_qs.arg(n)).contains(u"blnEnabled"_qs), state.afterwards.contains(n))
          << n << when;
      if (state.afterwards.contains(n) && !state.enabled.contains(n)) {
        EXPECT_EQ(w.rows(u"select * from tblMeta%1 where blnEnabled = -1"_qs.arg(n)), 1) << n << when;
      }
    }
  }
};

TEST_P(PostgresqlUpgrades, KeepWhatIsThereAndAddWhatIsMissing) {
  makeOlder(GetParam());
  subSetupConnection();
  ASSERT_TRUE(w.database->gConnection);
  expectCurrent(GetParam());
  // and reports, settings, values go into it
  const auto body = fncReturnRecordset(u"tblReports"_qs);
  (*body)[u"strBody"_qs].setValue(u"Текст"_qs);
  body->Update();
  EXPECT_EQ(names(u"select strBody from tblReports"_qs), QStringList{u"Текст"_qs});
  fncReturnRecordset(u"tblOtherSettings"_qs)->AddNew(u"strPropName"_qs, u"ADDepartment"_qs);
  EXPECT_EQ(w.rows(u"select * from tblOtherSettings where strPropName = 'addepartment'"_qs), 1);
}

TEST_P(PostgresqlUpgrades, HeldUpByAProgramThatWritesAreToldAndCompletedAtTheNextStart) {
  const auto impatient = std::make_shared<platform::sql::postgresql::PostgresqlDriver>(50);
  w.drivers->add(w.road->provider(), std::make_shared<platform::sql::FailingDriver>(impatient, w.plan));
  QStringList tables{u"tblReports"_qs};
  if (!GetParam().otherSettings) tables.append(u"tblPersons"_qs);
  for (int n = 1; n <= 3; ++n)
    if (GetParam().afterwards.contains(n) && !GetParam().enabled.contains(n))
      tables.append(u"tblMeta%1"_qs.arg(n));
  for (const QString& table : tables) {
    w.database->gConnection.reset();
    w.createCurrent();
    makeOlder(GetParam());
    const auto other = w.other();
    other->begin();
    other->execute(u"LOCK TABLE \"%1\" IN ROW EXCLUSIVE MODE"_qs.arg(table));
    reportTarget().ReportTo = 2;
    w.expectFailure(u"subCheckSQLUpgrade"_qs, u"The record or table is in use by another program"_qs,
                    [] { subSetupConnection(); });
    EXPECT_FALSE(w.columns(u"tblReports"_qs).contains(u"strBody"_qs)) << qPrintable(table);
    other->rollback();
    w.database->gConnection.reset();
    reportTarget().ReportTo = 2;
    subSetupConnection();
    expectCurrent(GetParam(), ' ' + table.toStdString());
  }
}

TEST_P(PostgresqlUpgrades, CutOffAtAnyStatementAreCompletedAtTheNextStart) {
  makeOlder(GetParam());
  int statements = 0;
  // at some of the statements, spread over all; HOURBOOK_SOAK=1: at each
  const int step = qEnvironmentVariableIsSet("HOURBOOK_SOAK") ? 1 : GetParam().otherSettings ? 9 : 4;
  for (int n = 1; statements == 0; n += step) {
    if (n > 1) {
      w.database->gConnection.reset();
      w.createCurrent();
      makeOlder(GetParam());
    }
    reportTarget().ReportTo = 2;
    w.plan->clear();
    w.plan->rules.append({{}, n, 1, false, std::nullopt, [] {
                            PostgresqlRoad::administrator()->execute(
                                u"WITH x AS (SELECT pid FROM pg_stat_activity WHERE datname = 'hours') "
                                "SELECT pg_terminate_backend(pid) FROM x"_qs);
                          }});
    // where the connection was lost behind the last statement, nobody has seen it
    w.world.dialogs.expect(w.shell->LNGSUBROUTINE, platform::dialogs::vbNo);
    w.shell->gInErrorReport = false;
    const bool ended = tests::endsProcess([] { subSetupConnection(); });
    if (!ended) {
      statements = n;
      platform::dialogs::Dialogs::current().MsgBox(w.shell->LNGSUBROUTINE, 0, QString());
    }
    w.plan->clear();
    w.database->gConnection.reset();
    reportTarget().ReportTo = 2;
    subSetupConnection();
    expectCurrent(GetParam(), " cut off at " + std::to_string(n));
  }
  EXPECT_GT(statements, step);
}

INSTANTIATE_TEST_SUITE_P(From, PostgresqlUpgrades,
                         testing::Values(OlderState{"TheFirstRelease", false, {}, {1, 2, 3}},
                                         OlderState{"OtherSettings", true, {}, {1, 2, 3}},
                                         OlderState{"Enabled", true, {1, 2, 3}, {1, 2, 3}},
                                         OlderState{"TheFirstListEnabledAlone", true, {1}, {1}}),
                         [](const auto& info) { return std::string(info.param.name); });

class PostgresqlStatements : public PostgresqlUpgrades {};

TEST_P(PostgresqlStatements, OfAnUpgrade) {
  makeOlder(GetParam());
  const auto sent = std::make_shared<QStringList>();
  w.drivers->add(w.road->provider(), std::make_shared<tests::RecordingDriver>(w.road->driver(), sent));
  reportTarget().ReportTo = 3;
  reportTarget().ReportToValue = w.road->connectionText();
  subCheckSQLUpgrade();
  tests::expectGolden(u"postgresql/upgrade-from-%1.txt"_qs.arg(QLatin1String(GetParam().name)), *sent);
}

INSTANTIATE_TEST_SUITE_P(From, PostgresqlStatements,
                         testing::Values(OlderState{"TheFirstRelease", false, {}},
                                         OlderState{"OtherSettings", true, {}},
                                         OlderState{"Enabled", true, {1, 2, 3}},
                                         OlderState{"TheFirstListEnabledAlone", true, {1}},
                                         OlderState{"BodyWithoutEnabled", true, {}, {}, true},
                                         OlderState{"Current", true, {1, 2, 3}, {}, true}),
                         [](const auto& info) { return std::string(info.param.name); });

TEST_F(PostgresqlDatabase, WithTheBodyThereNothingElseIsLookedFor) {
  run(u"ALTER TABLE \"tblMeta2\" DROP COLUMN \"blnEnabled\""_qs);
  subSetupConnection();
  EXPECT_FALSE(w.columns(u"tblMeta2"_qs).contains(u"blnEnabled"_qs));
}

// ---- what a report stores

TEST(PostgresqlReports, NamesWithAllKindsOfSignsAreStoredAndFoundAgain) {
  tests::ReportingWorld w;
  const QString customer = u"O'Brien & [Söhne] \"Ελλάς\" 株"_qs;
  w.other()->execute(u"insert into tblMeta1 (strName, curRate, blnEnabled) values (?, 12.3456, -1)"_qs,
                     {customer});
  w.common().ReadGlobalSettings(3, w.road->connectionText());
  w.personal().subPopulateMetadataList(
      u"Customer:%1;\r\nProject:Website;\r\nTask:Design;\r\n"_qs.arg(customer));
  w.outlook->gCurrentUser = u"Åsa Öberg-Müller"_qs;
  const QString subject = u"It's [done]; \"Ж\" ; -- ?"_qs;
  w.add(
      {subject, {customer, u"Website"_qs, u"Design"_qs}, u"2"_qs, u"'); drop table x; --\r\n\U0001F44B"_qs});
  w.expectDone();
  w.report();
  ASSERT_EQ(w.storedRows(), 1);
  EXPECT_TRUE(w.stored(u"strSubject"_qs)[0] == Value(subject));
  EXPECT_TRUE(w.stored(u"strBody"_qs)[0] == Value(u"'); drop table x; --\r\n\U0001F44B"_qs));
  EXPECT_TRUE(w.stored(u"curCost"_qs)[0] == Value(platform::basic::Currency::fromTenThousandths(246912)));
  EXPECT_EQ(w.rows(u"select * from tblPersons where strPersonName = 'ÅSA ÖBERG-MÜLLER'"_qs), 1);
  EXPECT_FALSE(w.stamp(1).isEmpty());
}

TEST(PostgresqlReports, APersonWhoseNameHasAnApostropheCannotBeLookedUp) {
  tests::ReportingWorld w;
  w.outlook->gCurrentUser = u"Pat O'Brien"_qs;
  w.addComplete(u"row"_qs);
  w.expectFailure(u"fncGetPersonID"_qs, {}, [&] { w.report(); });
  EXPECT_EQ(w.storedRows(), 0);
  EXPECT_EQ(w.statuses(), QStringList{u"Failed add person!"_qs});
}

TEST(PostgresqlReports, ADatabaseWithoutTheBodyStillTakesReports) {
  tests::ReportingWorld w;
  w.addComplete(u"row"_qs);
  subSetupConnection();  // the upgrade has run by now; the column goes behind its back
  w.other()->execute(u"ALTER TABLE \"tblReports\" DROP COLUMN \"strBody\""_qs);
  w.expectDone();
  w.report();
  EXPECT_EQ(w.storedRows(), 1);
}

// Bringing a server's database up to date.
#include "serverworld.h"

using namespace hourbook;
using platform::Failure;
using platform::basic::Value;

class ServerUpgrades : public testing::Test {
 protected:
  ServerUpgrades() {
    w.createOldOnServer();
    for (int n = 1; n <= 3; ++n) run(u"insert into tblMeta%1 (strName) values ('there')"_qs.arg(n));
    reportTarget().ReportTo = 3;
    reportTarget().ReportToValue = w.connectionTo(u"hours"_qs);
  }
  void run(const QString& sql) { w.server->open(u"hours"_qs)->execute(sql); }
  QStringList columns(const QString& table) const {
    QStringList names;
    for (const auto& column : w.server->open(u"hours"_qs)->columns(table)) names.append(column.name);
    return names;
  }
  int rows(const QString& sql) const {
    return static_cast<int>(w.server->open(u"hours"_qs)->execute(sql).rows.size());
  }
  /// What was sent but for questions.
  QStringList changes() const {
    QStringList list;
    for (const QString& sql : *w.sent)
      if (!sql.startsWith(u"select"_qs)) list.append(sql);
    return list;
  }
  void makeOtherSettings() {
    run(u"create table tblOtherSettings (intSettingID integer primary key autoincrement, strPropName "
        "varchar(255), strPropValue text)"_qs);
    run(u"alter table tblPersons add strPersonCategory varchar(255)"_qs);
  }
  void makeEnabled(int n) {
    run(u"alter table tblMeta%1 add blnEnabled bit"_qs.arg(n));
    run(u"update tblMeta%1 set blnEnabled = 0"_qs.arg(n));
  }
  static QStringList enabledStatements(int n) {
    return {u"ALTER TABLE tblMeta%1 ADD blnEnabled bit Null"_qs.arg(n),
            u"Update tblMeta%1 set blnEnabled =-1"_qs.arg(n)};
  }
  const QString otherSettings =
      u"CREATE TABLE [tblOtherSettings] ([intSettingID] [int] IDENTITY (1, 1) NOT NULL ,[strPropName] "
      "[varchar] (255) NULL ,[strPropValue] [text] NULL)"_qs;
  const QString category = u"ALTER TABLE tblPersons ADD strPersonCategory nvarchar(255) NULL"_qs;
  const QString body = u"ALTER TABLE tblReports ADD strBody [text] NULL"_qs;
  tests::ServerWorld w;
};

TEST_F(ServerUpgrades, TheFirstReleasesDatabaseGetsEverythingInItsOrder) {
  w.shell->gLogToFile = true;
  subCheckSQLUpgrade();
  EXPECT_EQ(changes(), QStringList({u"(begin)"_qs, otherSettings, category, u"(commit)"_qs, u"(begin)"_qs}) +
                           enabledStatements(1) + enabledStatements(2) + enabledStatements(3) +
                           QStringList({u"(commit)"_qs, body}));
  const QStringList log = w.log();
  for (const QString& text :
       {u"Creating Other Settings table in database"_qs,
        u"Adding Person category field in tblPerson table"_qs, u"Adding blnEnabled field to tblMeta1"_qs,
        u"Making all existing rows in tblMeta1 enabled!"_qs, u"Adding blnEnabled field to tblMeta3"_qs,
        u"Making all existing rows in tblMeta3 enabled!"_qs})
    EXPECT_TRUE(log.contains(text)) << qPrintable(text);
  EXPECT_TRUE(w.world.dialogs.shown.isEmpty());
  for (int n = 1; n <= 3; ++n)
    EXPECT_EQ(rows(u"select * from tblMeta%1 where strName = 'there' and blnEnabled <> 0"_qs.arg(n)), 1);
}

TEST_F(ServerUpgrades, ACurrentDatabaseIsAskedOnceAndNotChanged) {
  subCheckSQLUpgrade();
  w.sent->clear();
  subCheckSQLUpgrade();
  EXPECT_EQ(*w.sent, QStringList{u"select top 1 strBody from tblReports"_qs});
}

TEST_F(ServerUpgrades, WithOtherSettingsThereTheTableAndTheCategoryAreLeft) {
  makeOtherSettings();
  subCheckSQLUpgrade();
  EXPECT_FALSE(w.sent->contains(otherSettings));
  EXPECT_FALSE(w.sent->contains(category));
  EXPECT_TRUE(columns(u"tblMeta3"_qs).contains(u"blnEnabled"_qs));
  EXPECT_TRUE(columns(u"tblReports"_qs).contains(u"strBody"_qs));
}

TEST_F(ServerUpgrades, WithTheEnabledColumnsThereOnlyTheBodyIsAdded) {
  makeOtherSettings();
  for (int n = 1; n <= 3; ++n) makeEnabled(n);
  subCheckSQLUpgrade();
  EXPECT_EQ(changes(), QStringList{body});
  EXPECT_EQ(rows(u"select * from tblMeta1 where blnEnabled = 0"_qs), 1) << "values keep their state";
}

TEST_F(ServerUpgrades, WithTheBodyThereNothingElseIsLookedFor) {
  run(u"alter table tblReports add strBody text"_qs);
  subCheckSQLUpgrade();
  EXPECT_TRUE(changes().isEmpty());
  EXPECT_FALSE(columns(u"tblMeta1"_qs).contains(u"blnEnabled"_qs));
}

TEST_F(ServerUpgrades, TheFirstListSpeaksForAllThree) {
  makeOtherSettings();
  makeEnabled(1);
  subCheckSQLUpgrade();
  EXPECT_EQ(changes(), QStringList{body});
  EXPECT_FALSE(columns(u"tblMeta2"_qs).contains(u"blnEnabled"_qs));
}

TEST_F(ServerUpgrades, AListThatCannotBeChangedStopsThoseBehindItWithoutAWord) {
  makeOtherSettings();
  makeEnabled(2);
  subCheckSQLUpgrade();
  EXPECT_EQ(changes(), QStringList({u"(begin)"_qs}) + enabledStatements(1) +
                           QStringList({enabledStatements(2).first(), u"(commit)"_qs, body}));
  EXPECT_TRUE(columns(u"tblMeta1"_qs).contains(u"blnEnabled"_qs));
  EXPECT_FALSE(columns(u"tblMeta3"_qs).contains(u"blnEnabled"_qs));
  EXPECT_TRUE(columns(u"tblReports"_qs).contains(u"strBody"_qs)) << "the next step is taken all the same";
  EXPECT_TRUE(w.world.dialogs.shown.isEmpty());
}

TEST_F(ServerUpgrades, AnotherProgramThatIsQuickerByAStepIsNoFailure) {
  // it makes the table before this program does, and the newest column as well
  w.plan->rules.append({u"begin"_qs, 0, 1, false, std::nullopt, [this] { makeOtherSettings(); }});
  w.plan->rules.append({u"ADD strBody"_qs, 0, 1, false, std::nullopt,
                        [this] { run(u"alter table tblReports add strBody text"_qs); }});
  subCheckSQLUpgrade();
  EXPECT_TRUE(w.world.dialogs.shown.isEmpty());
  EXPECT_EQ(columns(u"tblOtherSettings"_qs).size(), 3);
  EXPECT_EQ(columns(u"tblReports"_qs).count(u"strBody"_qs), 1);
  for (int n = 1; n <= 3; ++n)
    EXPECT_EQ(rows(u"select * from tblMeta%1 where blnEnabled <> 0"_qs.arg(n)), 1) << n;
}

TEST_F(ServerUpgrades, AFailureInAnotherStepIsReportedAndEndsTheRoutine) {
  for (const QString& step : {otherSettings, category, body}) {
    w.plan->clear();
    w.plan->failContaining(step, Failure(3051, u"ALTER permission was denied."_qs));
    w.expectFailure(u"subCheckSQLUpgrade"_qs, u"ALTER permission was denied."_qs,
                    [] { subCheckSQLUpgrade(); });
    w.plan->clear();
  }
  EXPECT_FALSE(columns(u"tblReports"_qs).contains(u"strBody"_qs));
}

TEST_F(ServerUpgrades, AListThatAnotherProgramHoldsIsToldAndTheNextStartCompletesAllThree) {
  using namespace platform::sql;
  for (const qint32 number : {errors::locked, errors::timeout, errors::connectionFailed})
    for (int n = 1; n <= 3; ++n)
      for (const QString& statement : enabledStatements(n)) {
        w.createOldOnServer(u"held"_qs);
        for (int list = 1; list <= 3; ++list)
          w.server->open(u"held"_qs)->execute(u"insert into tblMeta%1 (strName) values ('v')"_qs.arg(list));
        reportTarget().ReportToValue = w.connectionTo(u"held"_qs);
        w.database->gConnection.reset();
        w.plan->clear();
        w.plan->failContaining(statement, Failure(number, u"The table is in use by another program."_qs));
        w.expectFailure(u"subCheckSQLUpgrade"_qs, u"in use by another program."_qs,
                        [] { subCheckSQLUpgrade(); });
        const auto session = w.server->open(u"held"_qs);
        EXPECT_EQ(session->columns(u"tblReports"_qs).size(), 12) << "which would count as up to date";
        EXPECT_EQ(session->columns(u"tblMeta1"_qs).size(), 5) << "by which all three are judged";
        w.plan->clear();
        w.database->gConnection.reset();
        subCheckSQLUpgrade();
        for (int list = 1; list <= 3; ++list)
          EXPECT_EQ(
              session->execute(u"select * from tblMeta%1 where blnEnabled <> 0"_qs.arg(list)).rows.size(), 1)
              << list << qPrintable(statement);
        EXPECT_EQ(session->columns(u"tblReports"_qs).size(), 13);
        w.server->drop(u"held"_qs);
      }
}

TEST_F(ServerUpgrades, ALockAtAnyStatementIsToldAndTheNextStartCompletesIt) {
  subCheckSQLUpgrade();
  const int statements = static_cast<int>(w.plan->statements.size());
  for (int n = 1; n <= statements; ++n) {
    const QString name = u"locked%1"_qs.arg(n);
    w.createOldOnServer(name);
    for (int list = 1; list <= 3; ++list)
      w.server->open(name)->execute(u"insert into tblMeta%1 (strName) values ('there')"_qs.arg(list));
    reportTarget().ReportToValue = w.connectionTo(name);
    w.database->gConnection.reset();
    w.plan->clear();
    w.plan->failStatement(n, Failure(platform::sql::errors::locked, u"In use by another program."_qs));
    w.expectFailure({}, u"In use by another program."_qs, [] { subCheckSQLUpgrade(); });
    w.plan->clear();
    w.database->gConnection.reset();
    subCheckSQLUpgrade();
    const auto session = w.server->open(name);
    EXPECT_EQ(session->columns(u"tblOtherSettings"_qs).size(), 3) << n;
    EXPECT_EQ(session->columns(u"tblPersons"_qs).size(), 3) << n;
    EXPECT_EQ(session->columns(u"tblReports"_qs).size(), 13) << n;
    for (int list = 1; list <= 3; ++list)
      EXPECT_EQ(session->execute(u"select * from tblMeta%1 where blnEnabled <> 0"_qs.arg(list)).rows.size(),
                1)
          << list << " after " << n;
  }
}

TEST_F(ServerUpgrades, AProbeThatFailsForAnotherReasonIsReportedAsItself) {
  w.plan->failContaining(u"select top 1 strBody"_qs, Failure(-2147467259, u"The server went away."_qs));
  w.expectFailure(u"fncReturnRecordset"_qs, u"The server went away."_qs, [] { subCheckSQLUpgrade(); });
  w.plan->clear();
  w.plan->failContaining(u"tblOtherSettings"_qs, Failure(-2147467259, u"The server went away."_qs));
  w.expectFailure(u"fncReturnRecordset"_qs, u"The server went away."_qs, [] { subCheckSQLUpgrade(); });
  EXPECT_TRUE(changes().isEmpty());
  EXPECT_FALSE(w.database->blnProbing);
}

TEST_F(ServerUpgrades, BrokenOffAtAnyStatementTheNextStartCompletesIt) {
  subCheckSQLUpgrade();
  const int statements = static_cast<int>(w.plan->statements.size());
  ASSERT_GT(statements, 12);
  for (int n = 1; n <= statements; ++n) {
    const QString name = u"attempt%1"_qs.arg(n);
    w.createOldOnServer(name);
    for (int list = 1; list <= 3; ++list)
      w.server->open(name)->execute(u"insert into tblMeta%1 (strName) values ('there')"_qs.arg(list));
    w.write(u"HourbookConnection.txt"_qs, w.connectionTo(name).toUtf8());
    reportTarget().ReportTo = 2;
    w.database->gConnection.reset();
    w.plan->clear();
    // the connection is lost, and all that would follow on it
    w.plan->rules.append({{}, n - 1, -1, false, Failure(-2147467259, u"The server went away."_qs), {}});
    w.expectFailure({}, u"The server went away."_qs, [] { subSetupConnection(); });
    w.plan->clear();
    w.database->gConnection.reset();
    w.database->blnCheckingServer = false;
    reportTarget().ReportTo = 2;
    subSetupConnection();
    const auto session = w.server->open(name);
    EXPECT_EQ(session->columns(u"tblOtherSettings"_qs).size(), 3) << n;
    EXPECT_EQ(session->columns(u"tblPersons"_qs).size(), 3) << n;
    EXPECT_EQ(session->columns(u"tblReports"_qs).size(), 13) << n;
    for (int list = 1; list <= 3; ++list)
      EXPECT_EQ(session->execute(u"select * from tblMeta%1 where blnEnabled <> 0"_qs.arg(list)).rows.size(),
                1)
          << list << " after " << n;
  }
}

TEST_F(ServerUpgrades, OtherSettingsAreSavedInATableThatHasACounterButNoKey) {
  subCheckSQLUpgrade();
  const auto rows = fncReturnRecordset(u"tblOtherSettings"_qs);
  rows->AddNew(u"strPropName"_qs, u"ADDepartment"_qs);
  rows->Fields().Item(u"strPropValue"_qs).setValue(u"1"_qs);
  rows->Update();
  EXPECT_EQ(this->rows(u"select * from tblOtherSettings where strPropValue = '1'"_qs), 1);
}

#include "databaseworld.h"
#include "shell/Tolerate.h"

using namespace hourbook;
using platform::Failure;
using platform::basic::Value;

class Upgrades : public testing::Test {
 protected:
  QStringList schemaChanges() const {
    QStringList changes;
    for (const QString& statement : w.plan->statements)
      if (statement.startsWith(u"createTable"_qs) || statement.startsWith(u"addColumn"_qs) ||
          statement.startsWith(u"Update"_qs))
        changes.append(statement);
    return changes;
  }
  tests::DatabaseWorld w;
};

TEST_F(Upgrades, ANewDatabaseGetsWhatHasComeSinceTheFirstRelease) {
  w.createOld();
  w.plan->statements.clear();
  subCheckUpgrade(w.shownPath());
  EXPECT_EQ(schemaChanges(),
            QStringList({u"createTable tblOtherSettings"_qs, u"addColumn tblPersons strPersonCategory"_qs,
                         u"addColumn tblMeta1 blnEnabled"_qs, u"Update tblMeta1 set blnEnabled = -1"_qs,
                         u"addColumn tblMeta2 blnEnabled"_qs, u"Update tblMeta2 set blnEnabled = -1"_qs,
                         u"addColumn tblMeta3 blnEnabled"_qs, u"Update tblMeta3 set blnEnabled = -1"_qs,
                         u"addColumn tblReports strBody"_qs}));
  const auto file = w.other();
  const auto other = file->columns(u"tblOtherSettings"_qs);
  ASSERT_EQ(other.size(), 3);
  EXPECT_EQ(other[0].name, u"intSettingID"_qs);
  EXPECT_EQ(other[0].caption, w.shell->LNGSETTINGS + u" ID"_qs);
  EXPECT_EQ(other[1].name, u"strPropName"_qs);
  EXPECT_EQ(other[1].size, 255);
  EXPECT_EQ(other[1].caption, QString());
  EXPECT_EQ(other[2].name, u"strPropValue"_qs);
  EXPECT_EQ(other[2].type, platform::sql::Type::Memo);
  EXPECT_EQ(other[2].caption, u"Value"_qs);
  EXPECT_FALSE(other[2].allowZeroLength) << "a memo column holds no empty text";
  EXPECT_EQ(file->columns(u"tblPersons"_qs)[2].caption, u"Category"_qs);
  EXPECT_EQ(file->columns(u"tblMeta1"_qs)[5].caption, u"Enabled"_qs);
  EXPECT_EQ(file->columns(u"tblReports"_qs)[12].name, u"strBody"_qs);
  EXPECT_EQ(file->columns(u"tblReports"_qs)[12].caption, u"Body"_qs);
  EXPECT_EQ(file->columns(u"tblReports"_qs)[12].type, platform::sql::Type::Memo);
  EXPECT_TRUE(w.world.dialogs.shown.isEmpty()) << "that the probe fails is no failure of the program";
}

TEST_F(Upgrades, ACurrentDatabaseIsAskedOnceAndNotChanged) {
  w.createCurrent();
  subCheckUpgrade(w.shownPath());
  EXPECT_TRUE(schemaChanges().isEmpty());
  EXPECT_EQ(w.plan->statements.filter(u"strBody"_qs),
            QStringList{u"select top 1 strBody from tblReports"_qs});
}

TEST_F(Upgrades, TheSharedConnectionIsNewAndOpenOnTheFile) {
  w.createCurrent();
  const auto before = platform::automation::CreateObject<platform::ado::Connection>(u"ADODB.Connection"_qs);
  w.database->gConnection = before;
  subCheckUpgrade(w.shownPath());
  EXPECT_NE(w.database->gConnection, before);
  EXPECT_EQ(w.database->gConnection->State(), platform::ado::adStateOpen);
  EXPECT_FALSE(w.database->blnProbing);
}

TEST_F(Upgrades, ExistingValuesAreEnabledAndKept) {
  w.createOld();
  w.other()->execute(u"insert into tblMeta2 (strName, curRate) values ('Acme', 100)"_qs);
  subCheckUpgrade(w.shownPath());
  const auto result =
      w.other()->execute(u"select strName, blnEnabled from tblMeta2 where blnEnabled = -1"_qs);
  ASSERT_EQ(result.rows.size(), 1);
  EXPECT_TRUE(result.rows[0][0] == Value(u"Acme"_qs));
}

TEST_F(Upgrades, WithOtherSettingsThereOnlyTheEnabledColumnsAndTheBodyAreAdded) {
  w.createOld();
  const auto file = w.other();
  file->execute(u"create table tblOtherSettings (intSettingID integer primary key)"_qs);
  w.plan->statements.clear();
  subCheckUpgrade(w.shownPath());
  EXPECT_EQ(schemaChanges().size(), 7);
  EXPECT_EQ(schemaChanges().first(), u"addColumn tblMeta1 blnEnabled"_qs);
  EXPECT_FALSE(w.columns(u"tblPersons"_qs).contains(u"strPersonCategory"_qs));
}

TEST_F(Upgrades, AnEnabledColumnThatIsThereIsLeftWithItsValues) {
  w.createOld();
  w.other()->execute(u"alter table tblMeta2 add column blnEnabled boolean"_qs);
  w.other()->execute(u"insert into tblMeta2 (strName, blnEnabled) values ('off', 0)"_qs);
  subCheckUpgrade(w.shownPath());
  EXPECT_EQ(w.rows(u"select * from tblMeta2 where blnEnabled = 0"_qs), 1);
  EXPECT_TRUE(w.columns(u"tblMeta3"_qs).contains(u"blnEnabled"_qs));
}

TEST_F(Upgrades, WithTheBodyThereNothingElseIsLookedFor) {
  w.createOld();
  w.other()->execute(u"alter table tblReports add column strBody longtext"_qs);
  subCheckUpgrade(w.shownPath());
  EXPECT_FALSE(w.columns(u"tblMeta1"_qs).contains(u"blnEnabled"_qs));
  EXPECT_FALSE(w.other()->tables().contains(u"tblOtherSettings"_qs));
}

TEST_F(Upgrades, TheFailureOfTheProbeIsLoggedUnderItsName) {
  w.createOld();
  w.plan->failContaining(u"createTable tblOtherSettings"_qs, Failure(3026, u"full"_qs));
  w.expectFailure(u"subCheckUpgrade"_qs, u"fncReturnRecordset: "_qs, [&] { subCheckUpgrade(w.shownPath()); });
  EXPECT_FALSE(w.database->blnProbing) << "after the probe, failures of recordsets are reported again";
}

TEST_F(Upgrades, AnotherProgramThatIsQuickerByAStepIsNoFailure) {
  // each of the steps, made by the other one right before this program begins with it
  const QString other =
      u"create table tblOtherSettings (intSettingID integer primary key autoincrement, "
      "strPropName varchar(255), strPropValue longtext)"_qs;
  const QString category = u"alter table tblPersons add column strPersonCategory varchar(255)"_qs;
  const QString enabled = u"alter table tblMeta%1 add column blnEnabled boolean not null default -1"_qs;
  const QString body = u"alter table tblReports add column strBody longtext"_qs;
  struct Step {
    QString before;
    int after;
    QStringList made;
  };
  const QList<Step> steps{{u"begin"_qs, 0, {other, category}},
                          {u"begin"_qs, 3, {enabled.arg(1)}},  // the second and third are within the first
                          {u"begin"_qs, 7, {enabled.arg(3)}},
                          {u"addColumn tblReports strBody"_qs, 0, {body}},
                          {u"begin"_qs, 9, {body}}};
  for (const Step& step : steps) {
    w.database->gConnection.reset();
    w.plan->clear();
    w.createOld();
    w.other()->execute(u"insert into tblMeta1 (strName) values ('kept')"_qs);
    w.plan->clear();
    w.plan->rules.append({step.before, step.after, 1, false, std::nullopt, [&] {
                            for (const QString& sql : step.made) w.other()->execute(sql);
                          }});
    subCheckUpgrade(w.shownPath());
    const auto file = w.other();
    EXPECT_EQ(file->columns(u"tblOtherSettings"_qs).size(), 3) << qPrintable(step.before);
    EXPECT_EQ(file->columns(u"tblPersons"_qs).size(), 3) << qPrintable(step.before);
    EXPECT_EQ(file->columns(u"tblReports"_qs).size(), 13) << qPrintable(step.before);
    for (int n = 1; n <= 3; ++n)
      EXPECT_EQ(file->columns(u"tblMeta%1"_qs.arg(n)).size(), 6) << n << qPrintable(step.before);
    EXPECT_EQ(file->execute(u"select * from tblMeta1 where blnEnabled = -1"_qs).rows.size(), 1);
  }
  EXPECT_TRUE(w.world.dialogs.shown.isEmpty());
}

TEST_F(Upgrades, AFailureEndsTheRoutineAtItsStep) {
  w.createOld();
  w.plan->failContaining(u"addColumn tblMeta2 blnEnabled"_qs, Failure(3026, u"Not enough space on disk."_qs));
  w.expectFailure(u"subCheckUpgrade"_qs, u"Not enough space on disk."_qs,
                  [&] { subCheckUpgrade(w.shownPath()); });
  EXPECT_TRUE(w.columns(u"tblMeta1"_qs).contains(u"blnEnabled"_qs));
  EXPECT_FALSE(w.columns(u"tblMeta2"_qs).contains(u"blnEnabled"_qs));
  EXPECT_FALSE(w.columns(u"tblReports"_qs).contains(u"strBody"_qs));
  // the next start takes it up again
  w.plan->clear();
  w.database->gConnection.reset();
  subCheckUpgrade(w.shownPath());
  EXPECT_TRUE(w.columns(u"tblReports"_qs).contains(u"strBody"_qs));
}

TEST_F(Upgrades, AMissingFileIsReported) {
  w.expectFailure(u"subCheckUpgrade"_qs, u"Could not find file"_qs, [&] { subCheckUpgrade(w.shownPath()); });
  EXPECT_TRUE(w.world.dialogs.shown.last().text.contains(
      u"Attempting to upgrade Access database in path "_qs + w.shownPath()));
  EXPECT_FALSE(w.exists());
}

TEST_F(Upgrades, BrokenOffAtAnyStatementTheNextStartCompletesIt) {
  w.createOld();
  for (int n = 1; n <= 3; ++n) w.other()->execute(u"insert into tblMeta%1 (strName) values ('v')"_qs.arg(n));
  const QByteArray old = w.read(u"Hourbook3.mdb"_qs);
  w.plan->clear();
  subCheckUpgrade(w.shownPath());
  const QStringList statements = w.plan->statements;
  ASSERT_GT(statements.size(), 30);
  // the last question before the first change is taken for a table that is not there
  const qsizetype looking = statements.lastIndexOf(u"tables"_qs, statements.indexOf(u"begin"_qs));
  ASSERT_GE(looking, 0);
  for (qsizetype n = 0; n < statements.size(); ++n) {
    w.database->gConnection.reset();
    w.write(u"Hourbook3.mdb"_qs, old);
    w.plan->clear();
    w.plan->failStatement(static_cast<int>(n + 1), Failure(3026, u"Not enough space on disk."_qs));
    const auto start = [&] { subCheckUpgrade(w.shownPath()); };
    if (n == looking)
      start();
    else
      w.expectFailure(QString(), u"Not enough space on disk."_qs, start);
    w.plan->clear();
    w.database->gConnection.reset();
    subCheckUpgrade(w.shownPath());
    const auto file = w.other();
    EXPECT_EQ(file->columns(u"tblOtherSettings"_qs).size(), 3) << qPrintable(statements[n]);
    EXPECT_EQ(file->columns(u"tblPersons"_qs).size(), 3) << qPrintable(statements[n]);
    EXPECT_EQ(file->columns(u"tblReports"_qs).size(), 13) << qPrintable(statements[n]);
    for (int list = 1; list <= 3; ++list)
      EXPECT_EQ(file->execute(u"select * from tblMeta%1 where blnEnabled = -1"_qs.arg(list)).rows.size(), 1)
          << list << " after " << qPrintable(statements[n]);
  }
}

TEST_F(Upgrades, ALockThatAnotherProgramTakesAtAnyStatementLeavesNothingHalfDone) {
  w.createOld();
  for (int n = 1; n <= 3; ++n) w.other()->execute(u"insert into tblMeta%1 (strName) values ('v')"_qs.arg(n));
  const QByteArray old = w.read(u"Hourbook3.mdb"_qs);
  w.plan->clear();
  subCheckUpgrade(w.shownPath());
  const int statements = static_cast<int>(w.plan->statements.size());
  const auto expectWhole = [&](int n) {
    const auto file = w.other();
    EXPECT_EQ(file->columns(u"tblOtherSettings"_qs).size(), 3) << n;
    EXPECT_EQ(file->columns(u"tblPersons"_qs).size(), 3) << n;
    EXPECT_EQ(file->columns(u"tblReports"_qs).size(), 13) << n;
    for (int list = 1; list <= 3; ++list)
      EXPECT_EQ(file->execute(u"select * from tblMeta%1 where blnEnabled = -1"_qs.arg(list)).rows.size(), 1)
          << list << " after " << n;
  };
  int told = 0;
  for (int n = 0; n < statements; ++n) {
    const QString lock = n % 2 == 0 ? u"BEGIN EXCLUSIVE"_qs : u"BEGIN IMMEDIATE"_qs;
    w.database->gConnection.reset();
    w.write(u"Hourbook3.mdb"_qs, old);
    w.plan->clear();
    std::unique_ptr<platform::sql::Session> other;
    w.plan->rules.append({{}, n, 1, false, std::nullopt, [&] {
                            auto session = w.other();
                            // within a transaction of the upgrade it has to wait itself
                            if (!tolerate([&] { session->execute(lock); })) other = std::move(session);
                          }});
    w.shell->gInErrorReport = false;
    if (w.world.dialogs.outstanding().isEmpty())
      w.world.dialogs.expect(u"is in use by another program"_qs, platform::dialogs::vbNo);
    const bool ended = tests::endsProcess([&] { subCheckUpgrade(w.shownPath()); });
    told += ended ? 1 : 0;
    other.reset();
    w.plan->clear();
    w.database->gConnection.reset();
    if (!ended) expectWhole(n);
    subCheckUpgrade(w.shownPath());
    expectWhole(n);
  }
  EXPECT_GT(told, 10);
  if (!w.world.dialogs.outstanding().isEmpty())
    w.world.dialogs.MsgBox(u"is in use by another program"_qs, 0, {});
}

TEST_F(Upgrades, AProbeThatFailsForAnotherReasonIsReportedAsItselfAndNothingIsChanged) {
  w.createCurrent();
  for (const qint32 number : {platform::sql::errors::locked, platform::sql::errors::diskError}) {
    w.plan->clear();
    w.plan->failContaining(u"select top 1 strBody"_qs, Failure(number, u"Why it could not be read."_qs));
    w.expectFailure(u"fncReturnRecordset"_qs, u"Why it could not be read."_qs,
                    [&] { subCheckUpgrade(w.shownPath()); });
    EXPECT_TRUE(w.world.dialogs.shown.last().text.contains(u'#' + QString::number(number)));
    EXPECT_TRUE(schemaChanges().isEmpty());
    EXPECT_FALSE(w.database->blnProbing);
  }
}

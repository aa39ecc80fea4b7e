#include "tests/unit/companions/common/commonworld.h"

namespace hourbook::tests {

using platform::Failure;
using platform::basic::Currency;
namespace errors = platform::sql::errors;

class CommonSaving : public CommonWorld {
 protected:
  CommonSaving() {
    fillDatabase();
    buffer = read();
  }
  void save(const QList<RemovedAnswer>& answers = {}) { writeCommonSettings(place(), buffer, answers); }
  QString saveFailure(const QList<RemovedAnswer>& answers = {}) {
    try {
      save(answers);
    } catch (const Failure& failure) {
      number = failure.number();
      return failure.description();
    }
    return u"none"_s;
  }
  CommonContent& edited() { return buffer.edited; }
  void editEverything() {
    edited().costCarrier = 3;
    edited().reportTo = 4;
    edited().reportToValue = u"elsewhere"_s;
    edited().lists[0].caption = u"Client"_s;
    edited().lists[2].caption = u"Kind"_s;
    edited().lists[2].values.append({u"Billable"_s, {}, {}, {}});
    edited().lists[0].values[0].rate = Currency::fromDouble(500);
    buffer.addValue(0, u"Beta"_s);
    edited().departmentAsked = true;
    edited().billing.location = u"sitecode=7"_s;
  }

  CommonBuffer buffer;
  qint32 number = 0;
};

TEST_F(CommonSaving, WritesEveryPart) {
  editEverything();
  save();
  EXPECT_EQ(column(u"select intCostCarrier & '/' & intReportTo & '/' & strReportToValue from tblSettings"_s),
            u"3/4/elsewhere"_s);
  EXPECT_EQ(column(u"select strMetaListCaption from tblMetaLists order by intMetaListID"_s),
            u"Client|Task|Kind"_s);
  EXPECT_EQ(column(u"select strName from tblMeta1 order by intMeta1ID"_s), u"Acme|Zeta|Beta"_s);
  EXPECT_EQ(column(u"select curRate from tblMeta1 where strName = 'Acme'"_s), u"500"_s);
  EXPECT_EQ(column(u"select strPropValue from tblOtherSettings where strPropName = 'ADDepartment'"_s),
            u"1"_s);
  EXPECT_EQ(column(u"select SHLocation from tblWFData"_s), u"sitecode=7"_s);
}

TEST_F(CommonSaving, LeavesTheBufferAsItIsStoredNow) {
  editEverything();
  save();
  EXPECT_FALSE(buffer.isChanged());
  EXPECT_EQ(differences(buffer.stored, read().stored), QStringList());
  EXPECT_TRUE(buffer.stored.billing.present);
  edited().costCarrier = 1;
  save();
  EXPECT_EQ(column(u"select intCostCarrier from tblSettings"_s), u"1"_s);
}

TEST_F(CommonSaving, KeepsTheKeysOfValues) {
  addReport(2);
  edited().lists[0].values[1].rate = Currency::fromDouble(7);
  save();
  EXPECT_EQ(column(u"select intMeta1ID from tblMeta1 where strName = 'Zeta'"_s), u"2"_s);
  EXPECT_EQ(column(u"select intMeta1ID from tblReports"_s), u"2"_s);
}

TEST_F(CommonSaving, KeepsTheRowOfANameThatChangesInCaseAlone) {
  addReport(1);
  EXPECT_EQ(buffer.renameValue(0, 0, u"ACME"_s), QString());
  save();
  EXPECT_EQ(column(u"select strName from tblMeta1 order by intMeta1ID"_s), u"ACME|Zeta"_s);
  EXPECT_EQ(buffer.stored.lists[0].values[0].name, u"ACME"_s);
}

TEST_F(CommonSaving, KeepsTheRowOfANameThatIsRemovedAndTypedInAnotherCase) {
  buffer.removeValues(0, {0});
  EXPECT_EQ(buffer.addValue(0, u"aCME"_s), QString());
  save();
  EXPECT_EQ(column(u"select strName from tblMeta1 order by intMeta1ID"_s), u"aCME|Zeta"_s);
}

TEST_F(CommonSaving, MovesTheReportsOfARemovedValue) {
  addReport(1);
  buffer.removeValues(0, {0});
  save({{2, u"Zeta"_s}});
  EXPECT_EQ(column(u"select intMeta1ID from tblReports"_s), u"2"_s);
  EXPECT_EQ(column(u"select strName from tblMeta1"_s), u"Zeta"_s);
  EXPECT_TRUE(asked.isEmpty()) << "the user was asked before the save";
}

TEST_F(CommonSaving, RemovesTheReportsOfARemovedValue) {
  addReport(1);
  addReport(2);
  buffer.removeValues(0, {0});
  save({{1, {}}});
  EXPECT_EQ(column(u"select intMeta1ID from tblReports"_s), u"2"_s);
  EXPECT_EQ(column(u"select strName from tblMeta1"_s), u"Zeta"_s);
}

TEST_F(CommonSaving, LeavesAValueWhoseReportsNothingWasChosenFor) {
  addReport(1);
  buffer.removeValues(0, {0});
  save({{3, {}}});
  EXPECT_EQ(column(u"select strName from tblMeta1"_s), u"Acme|Zeta"_s);
  EXPECT_EQ(buffer.edited.lists[0].values.size(), 2) << "it is shown again";
}

TEST_F(CommonSaving, AnswersForOneNameInTwoListsEachWithItsOwn) {
  run(u"insert into tblMeta2 (strName, blnEnabled) values ('Acme', -1)"_s);
  addReport(1);
  run(u"insert into tblReports (numHours, intPersonID, intMeta1ID, intMeta2ID) values (1, 1, 2, 2)"_s);
  buffer = read();
  buffer.removeValues(0, {0});
  buffer.removeValues(1, {0});
  save({{1, {}}, {2, u"Support"_s}});
  EXPECT_EQ(column(u"select intMeta1ID from tblReports"_s), u"2"_s);
  EXPECT_EQ(column(u"select intMeta2ID from tblReports"_s), u"1"_s);
  EXPECT_EQ(column(u"select strName from tblMeta2"_s), u"Support"_s);
}

TEST_F(CommonSaving, TakesTheThirdListOutOfUse) {
  edited().lists[2].caption = u"Kind"_s;
  save();
  edited().lists[2].caption.clear();
  save();
  EXPECT_EQ(column(u"select strMetaListCaption from tblMetaLists"_s), u"Customer|Task"_s);
  EXPECT_FALSE(buffer.isChanged());
}

TEST_F(CommonSaving, IsDoneEvenWhenWhatWasSavedCannotBeReadAgain) {
  edited().costCarrier = 1;
  db.plan->rules.append(
      {u"commit"_s, 0, 1, true, std::nullopt,
       [this] { db.plan->failContaining(u"tblMeta1"_s, Failure(errors::damaged, u"It is damaged."_s)); }});
  EXPECT_EQ(saveFailure(), u"none"_s);
  db.plan->clear();
  EXPECT_EQ(column(u"select intCostCarrier from tblSettings"_s), u"1"_s);
  EXPECT_FALSE(buffer.isChanged());
}

TEST_F(CommonSaving, LeavesOtherSettingsOfOtherNamesAlone) {
  run(u"insert into tblOtherSettings (strPropName, strPropValue) values ('Don''t', 'x')"_s);
  edited().departmentAsked = true;
  save();
  edited().departmentAsked = false;
  save();
  EXPECT_EQ(column(u"select strPropValue from tblOtherSettings order by intSettingID"_s), u"x|0"_s);
}

// ---- somebody else

TEST_F(CommonSaving, NoticesThatSomebodyElseHasChangedTheSettings) {
  edited().costCarrier = 1;
  run(u"update tblMeta1 set curRate = 9 where strName = 'Zeta'"_s);
  run(u"update tblSettings set intReportTo = 4"_s);
  const QString before = everything();
  EXPECT_EQ(saveFailure(),
            u"Somebody else has changed the common settings since they were read (cost and target, list 1). "
            "Nothing has been saved. Use \"Read again\" to see what is stored now; what you changed here is "
            "lost then."_s);
  EXPECT_EQ(number, changedByOthersNumber);
  EXPECT_EQ(everything(), before);
  EXPECT_TRUE(buffer.isChanged());
}

TEST_F(CommonSaving, NoticesAnotherDownloadAndAnotherDepartmentRule) {
  edited().costCarrier = 1;
  run(u"insert into tblOtherSettings (strPropName, strPropValue) values ('ADDepartment', '1')"_s);
  EXPECT_TRUE(saveFailure().contains(u"(other settings)"_s));
}

TEST_F(CommonSaving, IntoADatabaseThatWasJustMadeNeedsNoEarlierReading) {
  const QTemporaryDir folder;
  const ReportPlace fresh{2, folder.path() + u'\\', true};
  buffer = readCommonSettings(fresh);
  buffer.edited.costCarrier = 1;
  EXPECT_EQ(buffer.addValue(0, u"Acme"_s), QString());
  QFile::copy(db.path(), folder.filePath(u"Hourbook3.mdb"_s));
  {
    platform::sql::ConnectionString connection;
    connection.set(u"Data Source"_s, folder.filePath(u"Hourbook3.mdb"_s));
    const auto session = platform::sql::sqlite::SqliteDriver(0, ::tests::noWait).connect(connection);
    for (const QString& table : {u"tblMeta1"_s, u"tblMeta2"_s, u"tblMetaLists"_s, u"tblSettings"_s})
      session->execute(u"delete from "_s + table);
  }
  writeCommonSettings({2, fresh.value}, buffer, {});
  EXPECT_FALSE(buffer.isNew);
  EXPECT_EQ(buffer.stored.lists[0].values[0].name, u"Acme"_s);
  EXPECT_EQ(buffer.stored.costCarrier, 1);
}

// ---- nothing half saved

TEST_F(CommonSaving, LeavesTheTablesAsTheyWereWhereverItBreaksOff) {
  addReport(1);
  editEverything();
  buffer.removeValues(0, {1});
  const CommonBuffer full = buffer;
  const QString before = everything();
  int statement = 1;
  for (;; ++statement) {
    buffer = full;
    db.plan->clear();
    db.plan->failStatement(statement, Failure(errors::diskError, u"The connection is lost."_s));
    const QString failure = saveFailure({{2, u"Acme"_s}});
    db.plan->clear();
    if (failure == u"none"_s) break;
    ASSERT_TRUE(failure.contains(u"The connection is lost."_s)) << statement << qPrintable(failure);
    ASSERT_EQ(everything(), before) << "statement " << statement;
    ASSERT_TRUE(buffer.isChanged()) << "statement " << statement;
    ASSERT_LT(statement, 1000);
  }
  EXPECT_GT(statement, 40) << "the failures reached into the save";
  EXPECT_EQ(column(u"select strName from tblMeta1"_s), u"Acme|Beta"_s);
  EXPECT_EQ(db.world.process.ends, 0);
}

TEST_F(CommonSaving, OfSettingsThatAreNotFilledOutShowsTheProductsMessageAndWritesNothing) {
  edited().costCarrier = 0;
  const QString before = everything();
  db.world.dialogs.expect(u"All mandatory values are not filled out!"_s, platform::dialogs::vbOK);
  EXPECT_EQ(saveFailure(), u"Failed to save settings"_s);
  EXPECT_EQ(everything(), before);
}

TEST_F(CommonSaving, OfFiveThousandNewValuesIsOneTransaction) {
  for (int i = 0; i < 5000; ++i) edited().lists[1].values.append({u"Value %1"_s.arg(i), {}, {}, {}});
  save();
  EXPECT_EQ(db.rows(u"select * from tblMeta2"_s), 5001);
  EXPECT_EQ(db.plan->statements.filter(u"commit"_s).size(), 1);
}

// ---- billing

TEST_F(CommonSaving, MakesTheBillingTableWithTheColumnsThatBelongToIt) {
  edited().billing = {false, u"1"_s, u"C:\\books.qbw"_s, u"Ann Lee"_s, {}, {}};
  save();
  EXPECT_EQ(db.columns(u"tblWFData"_s),
            (QStringList{u"ReportTo"_s, u"Location"_s, u"SHLocation"_s, u"ServerName"_s, u"DatabaseName"_s,
                         u"UserId"_s, u"Password"_s, u"LastSyncDate"_s, u"Custom1"_s, u"Custom2"_s,
                         u"PaymentLink"_s}));
  EXPECT_EQ(db.columns(u"tblMeta1"_s).mid(6),
            (QStringList{u"lngProjId"_s, u"txtEditSequence"_s, u"txtListId"_s}));
  EXPECT_EQ(db.columns(u"tblMeta2"_s).mid(6),
            (QStringList{u"lngItemId"_s, u"txtEditSequence"_s, u"txtListId"_s}));
  EXPECT_EQ(db.columns(u"tblMeta3"_s).size(), 6);
  EXPECT_EQ(column(u"select ServerName & '/' & SHLocation & '/' & UserId & '/' & Password from tblWFData"_s),
            u"1/C:\\books.qbw/Ann Lee/"_s);
  EXPECT_EQ(buffer.stored.billing.lastSync.date(), QDate(2000, 1, 1));
  EXPECT_EQ(buffer.stored.lists[0].values.size(), 2);
}

TEST_F(CommonSaving, ChangesTheBillingRowThatIsThereAndLeavesItsOtherColumns) {
  edited().billing.location = u"sitecode=1"_s;
  save();
  run(u"update tblWFData set Custom1 = 'kept', LastSyncDate = '2024-03-14 16:01:02'"_s);
  buffer = read();
  edited().billing.userId = u"ann"_s;
  save();
  EXPECT_EQ(db.rows(u"select * from tblWFData"_s), 1);
  EXPECT_EQ(column(u"select UserId & '/' & Custom1 & '/' & SHLocation from tblWFData"_s),
            u"ann/kept/sitecode=1"_s);
  EXPECT_EQ(buffer.stored.billing.lastSync.date(), QDate(2024, 3, 14));
}

TEST_F(CommonSaving, MakesNoBillingTableForThoseWhoHaveNoBilling) {
  edited().costCarrier = 1;
  save();
  EXPECT_EQ(db.columns(u"tblWFData"_s), QStringList());
}

}  // namespace hourbook::tests

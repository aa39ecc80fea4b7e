#include "companions/settings/common/heldconnection.h"
#include "database/modDBCode.h"
#include "tests/unit/companions/common/commonworld.h"

namespace hourbook::tests {

using platform::Failure;
using platform::basic::Currency;
namespace errors = platform::sql::errors;

class CommonReading : public CommonWorld {
 protected:
  /// The failure that reading ends with.
  Failure readFailure(const ReportPlace& place) {
    try {
      readCommonSettings(place);
    } catch (const Failure& failure) {
      return failure;
    }
    return Failure(0, u"none"_s);
  }
};

TEST_F(CommonReading, GivesWhatTheTablesHold) {
  fillDatabase();
  run(u"insert into tblOtherSettings (strPropName, strPropValue) values ('ADDepartment', '1')"_s);
  const CommonBuffer buffer = read();
  const CommonContent& content = buffer.stored;
  EXPECT_EQ(content.costCarrier, 2);
  EXPECT_EQ(content.reportTo, 2);
  EXPECT_EQ(content.reportToValue, u"there"_s);
  EXPECT_EQ(content.lists[0].caption, u"Customer"_s);
  EXPECT_EQ(content.lists[0].categoryCaption, u"Branch"_s);
  EXPECT_EQ(content.lists[0].superCategoryCaption, u"Region"_s);
  EXPECT_EQ(content.lists[0].values.size(), 2);
  EXPECT_EQ(content.lists[0].values[0],
            (CommonValue{u"Acme"_s, u"Metal"_s, u"North"_s, Currency::fromDouble(450.5), true, u"Acme"_s}));
  EXPECT_FALSE(content.lists[0].values[1].enabled);
  EXPECT_EQ(content.lists[1].values[0].name, u"Support"_s);
  EXPECT_EQ(content.lists[2].caption, QString());
  EXPECT_TRUE(content.departmentAsked);
  EXPECT_FALSE(content.billing.present);
  EXPECT_FALSE(buffer.isChanged());
  EXPECT_EQ(buffer.notWritable, QString());
  EXPECT_TRUE(buffer.billingPossible);
  EXPECT_EQ(buffer.place, db.folder.path());
}

TEST_F(CommonReading, OfANewDatabaseGivesTheDefaultCaptionsAndWritesNone) {
  const QString before = everything();
  const CommonBuffer buffer = read();
  EXPECT_EQ(buffer.stored.lists[0].caption, u"Customer"_s);
  EXPECT_EQ(buffer.stored.lists[1].caption, u"Task"_s);
  EXPECT_EQ(buffer.stored.lists[2].caption, QString());
  EXPECT_EQ(buffer.stored.costCarrier, 0);
  EXPECT_EQ(buffer.stored.reportToValue, db.shownPath());
  EXPECT_EQ(everything(), before);
}

TEST_F(CommonReading, WritesNothing) {
  fillDatabase();
  const QByteArray before = db.read(u"Hourbook3.mdb"_s);
  read();
  EXPECT_EQ(db.read(u"Hourbook3.mdb"_s), before);
  EXPECT_EQ(db.database->gConnection, nullptr);
}

TEST_F(CommonReading, LeavesTheDatabaseCodesOwnValuesAlone) {
  db.database->gReportValue = u"elsewhere"_s;
  cGlobalSettings own;
  read();
  EXPECT_EQ(databaseValues().gReportValue, u"elsewhere"_s);
  EXPECT_EQ(databaseValues().target, &own);
}

TEST_F(CommonReading, GivesTheRowOfTheBillingRoads) {
  run(u"create table tblWFData (ReportTo integer primary key autoincrement, SHLocation varchar(100), "
      "ServerName varchar(20), UserId varchar(20), Password varchar(20), LastSyncDate datetime)"_s);
  EXPECT_EQ(read().stored.billing, BillingRow());
  run(u"insert into tblWFData (SHLocation, ServerName, UserId, Password, LastSyncDate) values "
      "(' C:\\books.qbw ', '1', 'Ann Lee', null, '2024-03-14 16:01:02')"_s);
  const BillingRow row = read().stored.billing;
  EXPECT_TRUE(row.present);
  EXPECT_EQ(row.serverName, u"1"_s);
  EXPECT_EQ(row.location, u"C:\\books.qbw"_s);
  EXPECT_EQ(row.userId, u"Ann Lee"_s);
  EXPECT_EQ(row.password, QString());
  EXPECT_EQ(row.lastSync.date(), QDate(2024, 3, 14));
}

TEST_F(CommonReading, OfAnEmptyFolderSaysThatThereIsNoDatabase) {
  const QTemporaryDir empty;
  EXPECT_EQ(readFailure({2, empty.path() + u'\\'}).description(),
            u"there is no database in %1."_s.arg(empty.path()));
}

TEST_F(CommonReading, OfADatabaseThatCannotBeOpenedTellsTheReason) {
  db.plan->onConnect = Failure(errors::noPermission, u"You may not open it."_s);
  const Failure failure = readFailure(place());
  EXPECT_EQ(failure.description(), u"You may not open it."_s);
  EXPECT_EQ(failure.number(), errors::noPermission);
  EXPECT_EQ(db.world.process.ends, 0);
  EXPECT_TRUE(db.world.dialogs.shown.isEmpty());
}

TEST_F(CommonReading, OfATableThatCannotBeReadTellsTheReason) {
  db.plan->failContaining(u"from tblMeta2"_s, Failure(errors::damaged, u"The table is damaged."_s));
  EXPECT_EQ(readFailure(place()).description(), u"The table is damaged."_s);
  EXPECT_FALSE(shellValues().gInErrorReport);
}

TEST_F(CommonReading, OfABusyDatabaseFails) {
  db.plan->failContaining(u"begin"_s, Failure(errors::locked, u"It is locked."_s));
  EXPECT_EQ(readFailure(place()).description(), u"It is locked."_s);
}

TEST_F(CommonReading, TellsThatADatabaseMayOnlyBeRead) {
  fillDatabase();
  db.plan->failContaining(u"begin"_s, Failure(errors::readOnly, u"It may only be read."_s));
  const CommonBuffer buffer = read();
  EXPECT_EQ(buffer.notWritable, u"It may only be read."_s);
  EXPECT_EQ(buffer.stored.lists[0].values.size(), 2);
}

TEST_F(CommonReading, TellsThatTheUserMayNotWrite) {
  fillDatabase();
  db.plan->failContaining(u"update tblSettings"_s, Failure(errors::noPermission, u"You may not write."_s));
  EXPECT_EQ(read().notWritable, u"You may not write."_s);
}

TEST_F(CommonReading, ForAnAspPageLooksIntoTheProgramsFolder) {
  EXPECT_EQ(readFailure({1, u"http://example.org/hours"_s}).description(),
            u"there is no database in %1."_s.arg(db.world.programFolder()));
  QFile::copy(db.path(), db.world.programFolder() + u"/Hourbook3.mdb"_s);
  EXPECT_EQ(readCommonSettings({1, u"http://example.org/hours"_s}).place, db.world.programFolder());
}

TEST_F(CommonReading, OfADatabaseYetToBeMadeTouchesNothing) {
  const QTemporaryDir empty;
  const CommonBuffer buffer = readCommonSettings({2, empty.path() + u'\\', true});
  EXPECT_TRUE(buffer.isNew);
  EXPECT_EQ(buffer.stored.lists[0].caption, u"Customer"_s);
  EXPECT_EQ(buffer.stored.reportToValue, empty.path() + u"\\Hourbook3.mdb"_s);
  EXPECT_TRUE(db.plan->statements.isEmpty());
  EXPECT_TRUE(QDir(empty.path()).isEmpty());
}

TEST_F(CommonReading, CallsAServersDatabaseByItsNameAndHidesThePassword) {
  EXPECT_EQ(placeName({3,
                       u"Provider=SQLOLEDB.1;User ID=sa;Password=secret;Data Source=srv;Initial "
                       "Catalog=Hours"_s}),
            u"Hours (srv)"_s);
  EXPECT_EQ(placeName({3, u"Provider=PostgreSQL;PWD=secret;Server=srv;Database=Hours"_s}), u"Hours (srv)"_s);
  EXPECT_EQ(placeName({3, u"Password=secret;torn"_s}), u"Server"_s);
}

TEST_F(CommonReading, OfFiveThousandValuesGivesThemAll) {
  const auto session = db.other();
  session->begin();
  for (int i = 0; i < 5000; ++i)
    session->execute(u"insert into tblMeta1 (strName, curRate, blnEnabled) values (?, 1, -1)"_s,
                     {u"Value %1"_s.arg(i)});
  session->commit();
  EXPECT_EQ(read().stored.lists[0].values.size(), 5000);
}

TEST_F(CommonReading, LendsAConnectionThatCanBeClosedWithoutLosingTheSession) {
  HeldConnection database(place());
  database.lend();
  EXPECT_TRUE(fncReturnRecordset(u"tblSettings"_s));
  database.settings().subCloseDBObjects();
  EXPECT_EQ(databaseValues().gConnection, nullptr);
  EXPECT_EQ(database.session().execute(u"select * from tblSettings"_s).rows.size(), 0);
  EXPECT_TRUE(database.isAccess());
}

TEST_F(CommonReading, OverALentConnectionAnEarlierSessionIsSettled) {
  HeldConnection database(place());
  database.lend();
  databaseValues().gConnection->session().settle(u"earlier"_s);
  EXPECT_TRUE(db.plan->statements.contains(u"settle earlier"_s));
}

}  // namespace hourbook::tests

#include "databaseworld.h"

using namespace hourbook;
using platform::Failure;
using platform::basic::Value;
namespace ado = platform::ado;

namespace {
const QString accessPrefix = QStringLiteral("Provider=Microsoft.Jet.OLEDB.4.0;Data Source=");
}

class Connections : public testing::Test {
 protected:
  tests::DatabaseWorld w;
};

// ---- fncGetConnection

TEST_F(Connections, AnAccessDatabaseInTheFolderIsUsed) {
  w.createCurrent();
  reportTarget().ReportTo = 2;
  EXPECT_EQ(fncGetConnection(), accessPrefix + w.shownPath());
  EXPECT_EQ(reportTarget().ReportTo, 2);
  EXPECT_EQ(reportTarget().ReportToValue, w.shownPath());
}

TEST_F(Connections, AnEmptyFolderTextMeansTheProgramsOwnFolder) {
  w.database->gReportValue.clear();
  w.world.process.folder = w.folder.path() + u'/';
  w.createCurrent();
  EXPECT_EQ(fncGetConnection(), accessPrefix + w.shownPath());
  EXPECT_EQ(w.database->gReportValue, w.folder.path());
}

TEST_F(Connections, ATrailingBackslashOfTheFolderIsRemoved) {
  w.createCurrent();
  w.database->gReportValue = w.folder.path() + u'\\';
  EXPECT_EQ(fncGetConnection(), accessPrefix + w.shownPath());
  EXPECT_EQ(w.database->gReportValue, w.folder.path());
}

TEST_F(Connections, WithoutAnyFileTheResultIsEmpty) {
  EXPECT_EQ(fncGetConnection(), QString());
  EXPECT_FALSE(w.exists());
}

TEST_F(Connections, WithBothFilesAccessIsUsedAndTheTextFileLeftAlone) {
  w.createCurrent();
  w.write(u"HourbookConnection.txt"_qs, "Provider=SQLOLEDB.1");
  EXPECT_EQ(fncGetConnection(), accessPrefix + w.shownPath());
  EXPECT_EQ(reportTarget().ReportTo, 2);
  EXPECT_EQ(w.read(u"HourbookConnection.txt"_qs), QByteArray("Provider=SQLOLEDB.1"));
}

TEST_F(Connections, AnEmptyConnectionFileIsDeletedAndCountsAsAbsent) {
  w.write(u"HourbookConnection.txt"_qs, {});
  reportTarget().ReportTo = 2;
  EXPECT_EQ(fncGetConnection(), QString());
  EXPECT_FALSE(w.exists(u"HourbookConnection.txt"_qs));
  EXPECT_EQ(reportTarget().ReportTo, 2);
}

TEST_F(Connections, AnEmptyConnectionFileIsDeletedThoughItIsReadOnly) {
  w.write(u"HourbookConnection.txt"_qs, {});
  ASSERT_TRUE(QFile::setPermissions(w.path(u"HourbookConnection.txt"_qs), QFile::ReadOwner));
  EXPECT_EQ(fncGetConnection(), QString());
  EXPECT_FALSE(w.exists(u"HourbookConnection.txt"_qs));
}

TEST_F(Connections, AnEmptyConnectionFileLeadsToTheDialogWhereADatabaseMayBeMade) {
  w.write(u"HourbookConnection.txt"_qs, {});
  w.database->blnMayCreateDatabase = true;
  int asked = 0;
  w.database->frmChooseConnection = [&](const QString&) {
    ++asked;
    return ConnectionChoice{1, false};
  };
  EXPECT_EQ(fncGetConnection(), accessPrefix + w.shownPath());
  EXPECT_EQ(asked, 1);
  EXPECT_FALSE(w.exists(u"HourbookConnection.txt"_qs));
}

TEST_F(Connections, AnEmptyConnectionFileThatCannotBeDeletedIsReported) {
  w.write(u"HourbookConnection.txt"_qs, {});
  w.files->failDelete = u"HourbookConnection.txt"_qs;
  w.expectFailure(u"fncGetConnection"_qs, u"Permission denied"_qs, [] { fncGetConnection(); });
}

TEST_F(Connections, TargetsAspAndBillingAreLeftAsTheyAre) {
  w.createCurrent();
  for (const qint32 target : {1, 4}) {
    reportTarget().ReportTo = target;
    reportTarget().ReportToValue = u"http://example.invalid/hb"_qs;
    EXPECT_EQ(fncGetConnection(), accessPrefix + w.shownPath());
    EXPECT_EQ(reportTarget().ReportTo, target);
    EXPECT_EQ(reportTarget().ReportToValue, u"http://example.invalid/hb"_qs);
  }
}

TEST_F(Connections, TheFirstStepIsLogged) {
  fncGetConnection();
  EXPECT_EQ(w.shell->gLastLogText, u"Checking if database .mdb file exists"_qs);
}

// ---- making a missing database

TEST_F(Connections, AMissingDatabaseThatMayBeMadeNeedsTheDialog) {
  w.database->blnMayCreateDatabase = true;
  w.expectFailure(u"fncGetConnection"_qs, u"this version of the program has no dialog to make one"_qs,
                  [] { fncGetConnection(); });
  EXPECT_TRUE(w.world.dialogs.shown.last().text.contains(w.folder.path()));
}

TEST_F(Connections, ANewAccessDatabaseIsMadeAndBroughtUpToDate) {
  w.database->blnMayCreateDatabase = true;
  QString script;
  w.database->frmChooseConnection = [&](const QString& name) {
    script = name;
    return ConnectionChoice{1, true};
  };
  reportTarget().ReportTo = 4;
  EXPECT_EQ(fncGetConnection(), accessPrefix + w.shownPath());
  EXPECT_EQ(script, u"CreateDBHB.sql"_qs);
  EXPECT_EQ(reportTarget().ReportTo, 2);
  EXPECT_EQ(reportTarget().ReportToValue, w.shownPath());
  EXPECT_TRUE(w.columns(u"tblReports"_qs).contains(u"strBody"_qs));
}

TEST_F(Connections, ADatabaseOnAServerNeedsTheDialogOfTheLogon) {
  w.database->blnMayCreateDatabase = true;
  for (const qint16 option : {qint16(2), qint16(3)}) {
    w.database->frmChooseConnection = [option](const QString&) { return ConnectionChoice{option, false}; };
    w.expectFailure(u"fncGetConnection"_qs, u"no dialog to ask for a server"_qs, [] { fncGetConnection(); });
  }
  EXPECT_FALSE(w.exists());
  EXPECT_FALSE(w.exists(u"HourbookConnection.txt"_qs));
}

TEST_F(Connections, AQuestionThatWasClosedWithoutAChoiceLeavesNoDatabase) {
  w.database->blnMayCreateDatabase = true;
  w.database->frmChooseConnection = [](const QString&) { return ConnectionChoice{0, false}; };
  EXPECT_EQ(fncGetConnection(), QString());
  EXPECT_FALSE(w.exists());
  EXPECT_EQ(reportTarget().ReportTo, 2);
}

// ---- subSetupConnection

TEST_F(Connections, AnAccessDatabaseIsOpenedOnce) {
  w.createCurrent();
  struct Counting : platform::sql::Driver {
    explicit Counting(platform::sql::Driver& inner) : inner_(inner) {}
    std::unique_ptr<platform::sql::Session> connect(
        const platform::sql::ConnectionString& connection) override {
      ++opened;
      return inner_.connect(connection);
    }
    int opened = 0;
    platform::sql::Driver& inner_;
  };
  const QString provider = QStringLiteral("Microsoft.Jet.OLEDB.4.0");
  platform::sql::sqlite::SqliteDriver sqlite(0, tests::noWait);
  const auto counting = std::make_shared<Counting>(sqlite);
  w.drivers->add(provider, counting);
  subSetupConnection();
  ASSERT_TRUE(w.database->gConnection);
  EXPECT_EQ(w.database->gConnection->ConnectionString(), accessPrefix + w.shownPath());
  EXPECT_EQ(w.database->gConnection->State(), ado::adStateOpen);
  EXPECT_EQ(counting->opened, 1);
}

TEST_F(Connections, TheSharedConnectionIsOpenedOnceAndKept) {
  w.createCurrent();
  subSetupConnection();
  const auto connection = w.database->gConnection;
  ASSERT_TRUE(connection);
  EXPECT_EQ(connection->State(), ado::adStateOpen);
  EXPECT_EQ(w.shell->gLastLogText,
            u"Trying to open a connection to the database with the connection string "_qs + accessPrefix +
                w.shownPath());
  subSetupConnection();
  EXPECT_EQ(w.database->gConnection, connection);
  EXPECT_EQ(w.shell->gLastLogText, u"Checking if the ADO connection is up or not"_qs);
}

TEST_F(Connections, AConnectionThatHasDroppedIsNotTested) {
  w.database->gConnection = platform::automation::CreateObject<ado::Connection>(u"ADODB.Connection"_qs);
  subSetupConnection();
  EXPECT_EQ(w.database->gConnection->State(), ado::adStateClosed);
  w.expectFailure(u"fncReturnRecordset"_qs, u"either closed or invalid"_qs,
                  [] { fncReturnRecordset(u"tblPersons"_qs); });
}

TEST_F(Connections, WithoutADatabaseTheConnectionStaysEmptyAndNothingIsSaid) {
  subSetupConnection();
  EXPECT_FALSE(w.database->gConnection);
  EXPECT_TRUE(w.world.dialogs.shown.isEmpty());
}

TEST_F(Connections, AServerTextThatStandsAlreadyLooksAtNoFile) {
  w.createCurrent();
  reportTarget().ReportTo = 3;
  reportTarget().ReportToValue = u"Provider=SQLOLEDB.1;Data Source=server"_qs;
  w.expectFailure(u"subSetupConnection"_qs, u"Provider cannot be found. It may not be properly installed."_qs,
                  [] { subSetupConnection(); });
  EXPECT_EQ(reportTarget().ReportTo, 3) << "the .mdb beside it was not looked at";
  ASSERT_TRUE(w.database->gConnection) << "the closed connection stays";
  EXPECT_EQ(w.database->gConnection->State(), ado::adStateClosed);
  EXPECT_EQ(w.database->gConnection->ConnectionString(), u"Provider=SQLOLEDB.1;Data Source=server"_qs);
}

TEST_F(Connections, AnOldServerTextIsReplacedByTheFolders) {
  w.createCurrent();
  reportTarget().ReportTo = 3;
  reportTarget().ReportToValue = u"old"_qs;
  // what the folder leads to is an .mdb now: its path is no connection string, and is handed on as it stands
  w.expectFailure(u"subSetupConnection"_qs, u"Format of the initialization string"_qs,
                  [] { subSetupConnection(); });
  EXPECT_EQ(reportTarget().ReportToValue, w.shownPath());
}

TEST_F(Connections, AnOldServerTextIsTriedWhenTheFolderHoldsNothing) {
  reportTarget().ReportTo = 3;
  reportTarget().ReportToValue = u"old"_qs;
  w.expectFailure(u"subSetupConnection"_qs, u"Format of the initialization string"_qs,
                  [] { subSetupConnection(); });
  EXPECT_EQ(w.database->gConnection->ConnectionString(), u"old"_qs);
}

TEST_F(Connections, AConnectionFileLeadsToAServerForWhichThereIsNoDriver) {
  w.write(u"HourbookConnection.txt"_qs, "Provider=SQLOLEDB.1;Data Source=server");
  w.expectFailure(u"subSetupConnection"_qs, u"Provider cannot be found. It may not be properly installed."_qs,
                  [] { subSetupConnection(); });
  EXPECT_EQ(reportTarget().ReportTo, 3);
}

// ---- files that are no database

TEST_F(Connections, ARealAccessFileIsRefusedWithAClearTextAndLeftAsItIs) {
  const QByteArray bytes = QByteArray("\0\1\0\0Standard Jet DB\0", 20) + QByteArray(5000, 'x');
  w.write(u"Hourbook3.mdb"_qs, bytes);
  w.expectFailure(u"subCheckUpgrade"_qs, u"is a Microsoft Access database"_qs, [] { subSetupConnection(); });
  EXPECT_TRUE(w.world.dialogs.shown.last().text.contains(u"has to be converted"_qs));
  EXPECT_EQ(w.read(u"Hourbook3.mdb"_qs), bytes);
}

TEST_F(Connections, AFileThatIsNoDatabaseIsRefused) {
  w.write(u"Hourbook3.mdb"_qs, "hello");
  w.expectFailure(u"subCheckUpgrade"_qs, u"the file is no database"_qs, [] { subSetupConnection(); });
  EXPECT_EQ(w.read(u"Hourbook3.mdb"_qs), QByteArray("hello"));
}

TEST_F(Connections, ALockedDatabaseIsSaidToBeInUse) {
  w.createCurrent();
  const auto other = w.other();
  other->execute(u"BEGIN EXCLUSIVE"_qs);
  w.expectFailure(u"subCheckUpgrade"_qs, u"is in use by another program"_qs, [] { subSetupConnection(); });
}

// ---- fncReturnRecordset, fncCreateCommand

TEST_F(Connections, ARecordsetIsNothingWithoutADatabase) {
  EXPECT_FALSE(fncReturnRecordset(u"tblPersons"_qs));
  EXPECT_EQ(w.shell->gLastLogText, u"Attempting to open a recordset from tblPersons"_qs);
  EXPECT_FALSE(fncCreateCommand());
  EXPECT_TRUE(w.world.dialogs.shown.isEmpty());
}

TEST_F(Connections, RecordsetsAreReadOnlyWritableOrBatched) {
  w.createCurrent();
  const auto reading = fncReturnRecordset(u"tblPersons"_qs, true);
  EXPECT_EQ(reading->LockType, ado::adLockReadOnly);
  EXPECT_EQ(reading->CursorType, ado::adOpenStatic);
  EXPECT_EQ(reading->CursorLocation, ado::adUseClient);
  const auto writing = fncReturnRecordset(u"select * from tblPersons"_qs);
  EXPECT_EQ(writing->LockType, ado::adLockOptimistic);
  EXPECT_EQ(writing->CursorType, ado::adOpenDynamic);
  EXPECT_EQ(fncReturnRecordset(u"tblPersons"_qs, false, true)->LockType, ado::adLockBatchOptimistic);
  EXPECT_EQ(fncReturnRecordset(u"tblPersons"_qs, true, true)->LockType, ado::adLockReadOnly);
}

TEST_F(Connections, ARecordsetThatCannotBeOpenedIsReported) {
  w.createCurrent();
  w.expectFailure(u"fncReturnRecordset"_qs, u"tblNone"_qs, [] { fncReturnRecordset(u"tblNone"_qs); });
}

TEST_F(Connections, ACommandWorksOnTheSharedConnection) {
  w.createCurrent();
  w.database->gConnection = platform::automation::CreateObject<ado::Connection>(u"ADODB.Connection"_qs);
  w.database->gConnection->setConnectionString(accessPrefix + w.shownPath());
  w.database->gConnection->Open();
  w.shell->gLogToFile = true;
  const auto command = fncCreateCommand();
  ASSERT_TRUE(command);
  const QStringList log = w.log();
  EXPECT_EQ(log, QStringList({u"Creating a new ADODB.Command object"_qs,
                              u"Checking if the ADO connection is up or not"_qs}));
  EXPECT_EQ(command->CommandType, ado::adCmdText);
  command->CommandText = u"insert into tblPersons (strPersonName) values ('Ann')"_qs;
  EXPECT_EQ(command->Execute().affected, 1);
  EXPECT_EQ(w.rows(u"select * from tblPersons"_qs), 1);
}

TEST_F(Connections, AMissingComponentIsReported) {
  w.createCurrent();
  w.world.components.remove(u"ADODB.Recordset"_qs);
  w.database->gConnection = platform::automation::CreateObject<ado::Connection>(u"ADODB.Connection"_qs);
  w.expectFailure(u"fncReturnRecordset"_qs, u"ActiveX component can't create object"_qs,
                  [] { fncReturnRecordset(u"tblPersons"_qs); });
  EXPECT_TRUE(w.world.dialogs.shown.last().text.contains(
      u"Creating a new ADOB.Recordset. If this fails, please try re-installing MDAC"_qs));
  EXPECT_EQ(w.shell->gLastLogText,
            u"Creating a new ADOB.Recordset. If this fails, please try re-installing MDAC"_qs);
  w.world.components.remove(u"ADODB.Command"_qs);
  w.expectFailure(u"fncCreateCommand"_qs, u"ActiveX component can't create object"_qs,
                  [] { fncCreateCommand(); });
}

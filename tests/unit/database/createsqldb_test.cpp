// Making a database on a server, and taking one that is there.
#include "database/modCreateSQLDB.h"
#include "serverworld.h"

#include <QFileInfo>

using namespace hourbook;
using platform::Failure;

class CreateSQLDB : public testing::Test {
 protected:
  CreateSQLDB() { w.installScript(w.shippedScript()); }
  QString create() { return fncCreateSQLDB(u"Hourbook3SQL"_qs); }
  void expectStop(const QString& text) { w.world.dialogs.expect(text, platform::dialogs::vbOK); }
  /// What an attempt that goes wrong leaves: no way on but Cancel, which ends the program.
  void expectEndsWithCancel() {
    w.answers.append(tests::ServerWorld::cancel);
    EXPECT_TRUE(tests::endsProcess([&] { create(); }));
  }
  const QString trusted =
      u"Provider=SQLOLEDB.1;Persist Security Info=True;Integrated Security=SSPI;Data Source=server"_qs;
  tests::ServerWorld w;
};

TEST_F(CreateSQLDB, TheShippedScriptMakesTheDatabaseUnderTheTypedName) {
  w.answers.append(w.logOn(u"Team Hours"_qs));
  EXPECT_EQ(create(), trusted + u";Initial Catalog=Team Hours"_qs);
  EXPECT_EQ(w.asked, 1);
  ASSERT_EQ(w.server->databases(), QStringList{u"Team Hours"_qs});
  EXPECT_EQ(w.server->open(u"Team Hours"_qs)->tables().size(), 8);
  EXPECT_TRUE(w.world.dialogs.shown.isEmpty());
}

TEST_F(CreateSQLDB, WithoutATypedNameTheScriptRunsUnchangedAndTheResultEndsWithoutOne) {
  w.answers.append(w.logOn(QString()));
  EXPECT_EQ(create(), trusted + u";Initial Catalog="_qs);
  EXPECT_EQ(w.server->databases(), QStringList{u"Hourbook3SQL"_qs});
}

TEST_F(CreateSQLDB, EveryOccurrenceOfTheNameIsReplaced) {
  w.installScript("CREATE DATABASE [Hourbook3SQL]GOUSE [Hourbook3SQL]GOCREATE TABLE tHourbook3SQL (a int)");
  w.answers.append(w.logOn(u"x"_qs));
  create();
  EXPECT_EQ(*w.sent, QStringList({u"CREATE DATABASE [x]"_qs, u"USE [x]"_qs, u"CREATE TABLE tx (a int)"_qs}));
}

TEST_F(CreateSQLDB, TheScriptIsSplitWhereverTheTwoLettersStand) {
  w.installScript("CREATE DATABASE [Hourbook3SQL]GOUSE [Hourbook3SQL]GOcreate table go (a int)");
  w.answers.append(w.logOn(u"x"_qs));
  create();
  EXPECT_EQ(w.sent->size(), 3) << "in small letters they are a word like any other";
  // a name that holds them is cut too
  w.sent->clear();
  w.answers.append(w.logOn(u"CARGO"_qs));
  expectStop(u"Failed to run sql command \r\nCREATE DATABASE [CAR"_qs);
  expectEndsWithCancel();
  EXPECT_EQ(w.sent->first(), u"CREATE DATABASE [CAR"_qs);
}

TEST_F(CreateSQLDB, AMissingScriptIsToldAndNobodyIsAsked) {
  QFile::remove(w.world.process.folder + u"/CreateDBHB.sql"_qs);
  expectStop(u"Failed to find file "_qs + w.world.process.folder + u"\\CreateDBHB.sql"_qs);
  EXPECT_EQ(create(), QString());
  EXPECT_EQ(w.asked, 0);
  EXPECT_EQ(w.world.dialogs.shown.last().title, u"Hourbook for Outlook Reporting"_qs);
  EXPECT_EQ(w.world.dialogs.shown.last().options, platform::dialogs::vbCritical);
}

TEST_F(CreateSQLDB, ALogonWithoutAResultIsAskedAgain) {
  w.answers.append([](frmSQLLogon& form) { form.Hide(); });
  w.answers.append(w.logOn(u"x"_qs));
  create();
  EXPECT_EQ(w.asked, 2);
}

TEST_F(CreateSQLDB, CancelEndsTheProgram) {
  expectEndsWithCancel();
  EXPECT_EQ(w.asked, 1);
  EXPECT_TRUE(w.server->databases().isEmpty());
}

TEST_F(CreateSQLDB, AFailedConnectionIsToldWithItsTextAndAskedAgainWithWhatWasTyped) {
  w.answers.append(w.logOn(u"x"_qs, u"wrong"_qs));
  const QString text =
      u"Provider=SQLOLEDB.1;Persist Security Info=True;User ID=ann;Password=wrong;Data Source=server"_qs;
  expectStop(u"Connection failed with connection string "_qs + text);
  w.answers.append([](frmSQLLogon& form) {
    EXPECT_EQ(form.txtDatabase.Text(), u"x"_qs);
    EXPECT_EQ(form.txtServer.Text(), u"server"_qs);
    form.cmdCancel.click();
  });
  EXPECT_TRUE(tests::endsProcess([&] { create(); }));
  EXPECT_EQ(w.asked, 2);
}

TEST_F(CreateSQLDB, AfterAFailedAttemptEachFurtherOneCountsAsFailedToo) {
  w.answers.append(w.logOn(u"x"_qs, {}, u"nowhere"_qs));
  w.answers.append(w.logOn(u"x"_qs));  // would do
  expectStop(
      u"Connection failed with connection string Provider=SQLOLEDB.1;Persist Security "
      "Info=True;Integrated Security=SSPI;Data Source=nowhere"_qs);
  expectStop(u"Connection failed with connection string "_qs + trusted);
  expectEndsWithCancel();
  EXPECT_EQ(w.asked, 3);
  EXPECT_TRUE(w.server->databases().isEmpty());
}

TEST_F(CreateSQLDB, APieceThatFailsIsToldAndThoseBehindItAreNotRun) {
  w.installScript(
      "CREATE DATABASE [Hourbook3SQL]GOUSE [Hourbook3SQL]GOnonsense hereGOCREATE TABLE t (a int)");
  w.answers.append(w.logOn(u"x"_qs));
  w.answers.append(w.logOn(u"y"_qs));
  expectStop(u"Failed to run sql command \r\nnonsense here"_qs);
  expectStop(u"Connection failed with connection string "_qs + trusted);
  expectEndsWithCancel();
  EXPECT_EQ(w.sent->last(), u"nonsense here"_qs);
  EXPECT_EQ(w.server->databases(), QStringList{u"x"_qs}) << "what was made stays";
  EXPECT_TRUE(w.server->open(u"x"_qs)->tables().isEmpty());
}

TEST_F(CreateSQLDB, ADatabaseThatIsThereAlreadyIsNotTouched) {
  w.createOldOnServer(u"x"_qs);
  w.answers.append(w.logOn(u"x"_qs));
  expectStop(u"Failed to run sql command "_qs);
  expectEndsWithCancel();
  EXPECT_EQ(w.server->open(u"x"_qs)->tables().size(), 7);
}

TEST_F(CreateSQLDB, AScriptThatCannotBeReadLeavesCancelAlone) {
  w.installScript({});
  w.answers.append(w.logOn(u"x"_qs));
  expectStop(u"Connection failed with connection string "_qs + trusted);
  expectEndsWithCancel();
}

TEST_F(CreateSQLDB, NamesWithApostrophesAndLettersOfAllAlphabetsAreTaken) {
  for (const QString& name : {u"O'Brien"_qs, u"Zeiten für Öl"_qs, u"Часы"_qs, u"a[b"_qs}) {
    w.answers.append(w.logOn(name));
    EXPECT_EQ(create(), trusted + u";Initial Catalog="_qs + name);
    EXPECT_TRUE(w.server->databases().contains(name));
  }
}

TEST_F(CreateSQLDB, WithoutADialogItFailsWithAClearText) {
  w.database->frmSQLLogon = nullptr;
  try {
    create();
    FAIL();
  } catch (const Failure& failure) {
    EXPECT_TRUE(failure.description().contains(u"there is no dialog to ask for the server"_qs));
  }
}

// ---- as a choice of who sets up the program

class ChooseServer : public CreateSQLDB {
 protected:
  void choose(qint16 option) {
    w.database->blnMayCreateDatabase = true;
    w.database->frmChooseConnection = [option](const QString&) { return ConnectionChoice{option, false}; };
  }
  QFile::Permissions modeOfFile() const {
    return QFileInfo(w.path(u"HourbookConnection.txt"_qs)).permissions();
  }
};

TEST_F(ChooseServer, ANewDatabaseIsMadeAndItsConnectionKept) {
  choose(2);
  w.answers.append(w.logOn(u"hours"_qs));
  EXPECT_EQ(fncGetConnection(), w.connectionTo(u"hours"_qs));
  EXPECT_EQ(w.read(u"HourbookConnection.txt"_qs), w.connectionTo(u"hours"_qs).toUtf8());
  EXPECT_EQ(reportTarget().ReportTo, 3);
  EXPECT_EQ(reportTarget().ReportToValue, w.connectionTo(u"hours"_qs));
  // and works from the next start on
  w.sent->clear();
  subSetupConnection();
  ASSERT_TRUE(w.database->gConnection);
  EXPECT_EQ(fncReturnRecordset(u"tblSettings"_qs)->RecordCount(), 0);
  EXPECT_EQ(w.sent->filter(u"ALTER"_qs), QStringList());
}

TEST_F(ChooseServer, AnExistingDatabaseIsTakenAsItIs) {
  w.createOldOnServer();
  choose(3);
  w.answers.append(w.logOn(u"hours"_qs));
  EXPECT_EQ(fncGetConnection(), w.connectionTo(u"hours"_qs));
  EXPECT_EQ(w.read(u"HourbookConnection.txt"_qs), w.connectionTo(u"hours"_qs).toUtf8());
  EXPECT_EQ(reportTarget().ReportTo, 3);
  EXPECT_TRUE(w.sent->isEmpty());
}

TEST_F(ChooseServer, AFileThatHoldsAPasswordIsItsOwnersAlone) {
  choose(3);
  w.answers.append(w.logOn(u"hours"_qs, u"secret;"_qs));
  fncGetConnection();
  EXPECT_TRUE(w.read(u"HourbookConnection.txt"_qs).contains("Password=secret;"));
  EXPECT_FALSE(modeOfFile() & (QFile::ReadGroup | QFile::ReadOther | QFile::WriteGroup | QFile::WriteOther));
}

TEST_F(ChooseServer, UnderTheKeysOtherNameAsWell) {
  choose(3);
  w.answers.append([](frmSQLLogon& form) {
    form.strConnection = u"Provider=SQLOLEDB.1;UID=ann;PWD=secret;Data Source=server"_qs;
  });
  fncGetConnection();
  EXPECT_TRUE(w.read(u"HourbookConnection.txt"_qs).contains("PWD=secret;"));
  EXPECT_FALSE(modeOfFile() & (QFile::ReadGroup | QFile::ReadOther | QFile::WriteGroup | QFile::WriteOther));
}

TEST_F(ChooseServer, CancelOfTheLogonToAnExistingDatabaseLeavesNoConnection) {
  choose(3);
  w.answers.append(w.cancel);
  EXPECT_EQ(fncGetConnection(), QString());
  EXPECT_EQ(w.read(u"HourbookConnection.txt"_qs), QByteArray());
  EXPECT_EQ(w.asked, 1) << "the program goes on";
  // the empty file counts as none
  w.database->blnMayCreateDatabase = false;
  EXPECT_EQ(fncGetConnection(), QString());
  EXPECT_FALSE(w.exists(u"HourbookConnection.txt"_qs));
}

TEST_F(ChooseServer, AConnectionThatCannotBeKeptIsReported) {
  choose(3);
  w.database->gReportValue = w.folder.path() + u"/missing"_qs;
  w.answers.append(w.logOn(u"hours"_qs));
  w.expectFailure(u"fncGetConnection"_qs, u"HourbookConnection.txt"_qs, [] { fncGetConnection(); });
}

// ---- connections of all kinds

class ServerConnections : public CreateSQLDB {};

TEST_F(ServerConnections, AFilledConnectionFileSelectsTheServer) {
  w.answers.append(w.logOn(u"hours"_qs));
  create();
  w.write(u"HourbookConnection.txt"_qs, w.connectionTo(u"hours"_qs).toUtf8());
  reportTarget().ReportTo = 4;
  w.sent->clear();
  EXPECT_EQ(fncGetConnection(), w.connectionTo(u"hours"_qs));
  EXPECT_EQ(reportTarget().ReportTo, 3);
  EXPECT_EQ(reportTarget().ReportToValue, w.connectionTo(u"hours"_qs));
  EXPECT_EQ(*w.sent, QStringList{u"select top 1 strBody from tblReports"_qs});
  EXPECT_EQ(w.database->gConnection->State(), platform::ado::adStateOpen);
}

TEST_F(ServerConnections, ATextThatBeginsOtherwiseIsLookedUpOnceAndNotForEver) {
  w.createOldOnServer();
  const QByteArray text = " " + w.connectionTo(u"hours"_qs).toLower().toUtf8();
  w.write(u"HourbookConnection.txt"_qs, text);
  subSetupConnection();
  ASSERT_TRUE(w.database->gConnection);
  EXPECT_EQ(reportTarget().ReportToValue, QString::fromUtf8(text));
  EXPECT_EQ(w.sent->filter(u"ADD strBody"_qs).size(), 1);
}

TEST_F(ServerConnections, AConnectionTextThatWasCutOffIsReported) {
  const QString whole = w.connectionTo(u"hours"_qs);
  w.createOldOnServer();
  for (const qsizetype length :
       {qsizetype(1), qsizetype(8), qsizetype(9), qsizetype(20), qsizetype(60), whole.size() - 3}) {
    w.database->gConnection.reset();
    reportTarget().ReportTo = 2;
    w.write(u"HourbookConnection.txt"_qs, whole.left(length).toUtf8());
    w.expectFailure(u"subSetupConnection"_qs, {}, [] { subSetupConnection(); });
    EXPECT_EQ(w.read(u"HourbookConnection.txt"_qs), whole.left(length).toUtf8()) << length;
  }
}

TEST_F(ServerConnections, AWrongPasswordAndAMissingDatabaseAreReportedAsTheServerSaysIt) {
  w.write(u"HourbookConnection.txt"_qs,
          "Provider=SQLOLEDB.1;User ID=ann;Password=wrong;Data Source=server;Initial Catalog=hours");
  w.expectFailure(u"subSetupConnection"_qs, u"Login failed for user 'ann'."_qs, [] { subSetupConnection(); });
  // the newest log text quotes the whole connection text; nothing else tells the password
  const QString told = w.world.dialogs.shown.last().text;
  EXPECT_TRUE(told.contains(
      u"Trying to open a connection to the database with the connection string Provider=SQLOLEDB.1;User "
      u"ID=ann;Password=wrong;Data Source=server;Initial Catalog=hours\r\n"_qs))
      << qPrintable(told);
  EXPECT_EQ(told.count(u"Password=wrong"_qs), 1);
  w.database->gConnection.reset();
  reportTarget().ReportTo = 2;
  w.write(u"HourbookConnection.txt"_qs, w.connectionTo(u"gone"_qs).toUtf8());
  w.expectFailure(u"subSetupConnection"_qs, u"Cannot open database \"gone\""_qs,
                  [] { subSetupConnection(); });
  EXPECT_TRUE(w.exists(u"HourbookConnection.txt"_qs));
}

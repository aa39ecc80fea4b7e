// The page for the reports' target where the target is a server, or is yet to be set up.
#include "database/DatabaseValues.h"
#include "database/frmSQLLogon.h"
#include "pages.h"

namespace hourbook::tests {
namespace {

const QString postgresql =
    u"Provider=PostgreSQL;Data Source=db.example.org;Initial Catalog=hours;User ID=jane"_s;

class ServerPage : public Pages {
 protected:
  void goToServer() {
    goTo(texts::targetPage);
    tabTo("optAccess");
    pressKey(Qt::Key_Down);
  }
  void goToText() {
    tabTo("optByLogin");
    pressKey(Qt::Key_Down);
  }
  /// A machine whose database folder is empty, on the page of the target.
  void openOnAnEmptyFolder() {
    openFilledIn(true);
    goTo(texts::targetPage);
    type("txtFolder", path(u"new/hours"_s));
  }
  /// The dialogs' answers. The logon: what is typed there; none: Cancel.
  void answer(qint16 option, std::optional<SqlServerLogin> logon = {}) {
    databaseForms = [option, logon](DatabaseValues& values) {
      values.blnMayCreateDatabase = true;
      values.frmChooseConnection = [option](const QString&) { return ConnectionChoice{option, false}; };
      values.frmSQLLogon = [logon](frmSQLLogon& form) {
        form.Show([&logon](frmSQLLogon& shown) {
          if (!logon) return shown.cmdCancel.click();
          shown.txtServer.setText(logon->server);
          shown.txtDatabase.setText(logon->database);
          shown.cmdOK.click();
        });
      };
    };
  }
};

// A connection text

TEST_F(ServerPage, AConnectionTextIsTypedAndSaved) {
  openFilledIn(true);
  goToServer();
  EXPECT_FALSE(control("txtConnection")->isVisible());
  goToText();
  EXPECT_FALSE(control("txtServer")->isVisible());
  EXPECT_TRUE(control("txtConnection")->isVisible());
  EXPECT_EQ(message("lblConnectionHint"), texts::connectionTextHint);
  expectRefused("txtConnection", texts::connectionTextMissing);
  type("txtConnection", u"Data Source=x"_s);
  expectRefused("txtConnection", texts::connectionTextBeginning);
  type("txtConnection", postgresql);
  EXPECT_EQ(message("msgConnection"), QString());
  EXPECT_EQ(message("lblPasswordNote"), QString());
  ok();
  EXPECT_FALSE(isOpen()) << qPrintable(message("lblProblem"));
  EXPECT_EQ(stored().serverText, postgresql);
  EXPECT_TRUE(stored().serverByText);
}

TEST_F(ServerPage, AConnectionTextWithAPasswordTellsWhereThatStands) {
  openFilledIn(true);
  goToServer();
  goToText();
  type("txtConnection", postgresql + u";Password=s3cret"_s);
  EXPECT_EQ(message("lblPasswordNote"),
            texts::passwordNote.arg(configFile(u"server/HourbookConnection.txt"_s)));
  ok();
  EXPECT_FALSE(isOpen());
  EXPECT_EQ(content(configFile(u"server/HourbookConnection.txt"_s)),
            (postgresql + u";Password=s3cret"_s).toUtf8());
}

TEST_F(ServerPage, AConnectionTextBeginsAsWhatTheFieldsSay) {
  openFilledIn(true);
  goToServer();
  type("txtServer", u"box"_s);
  type("txtDatabase", u"Hours"_s);
  goToText();
  EXPECT_EQ(
      control<QLineEdit>("txtConnection")->text(),
      u"Provider=SQLOLEDB.1;Persist Security Info=True;Integrated Security=SSPI;Data Source=box;Initial Catalog=Hours"_s);
  tabTo("optByText");
  pressKey(Qt::Key_Up);
  EXPECT_EQ(control<QLineEdit>("txtServer")->text(), u"box"_s);
}

TEST_F(ServerPage, AConnectionTextWithoutADriverIsRefusedPlainly) {
  openFilledIn(false);
  goToServer();
  goToText();
  type("txtConnection", postgresql);
  EXPECT_EQ(message("msgTarget"), texts::noDriverFor.arg(u"PostgreSQL"_s));
  press("cmdTest");
  EXPECT_TRUE(QTest::qWaitFor([this] { return message("lblResult") != texts::testing; }, 60000));
  EXPECT_TRUE(message("lblResult").startsWith(phrases().LNGCONNECTIONFAILED));
  expectRefused("optServer", texts::noDriverFor.arg(u"PostgreSQL"_s));
}

TEST_F(ServerPage, FurtherPartsOfAStoredTextAreShown) {
  SettingsStore first(config());
  SettingsBuffer buffer = filledIn(first);
  buffer.reportChoice = reportToSqlServer;
  buffer.storedServerText =
      u"Provider=SQLOLEDB.1;Data Source=box;Initial Catalog=Hours;Trusted_Connection=yes;Encrypt=yes;APP=x"_s;
  buffer.sqlServer = loginOf(buffer.storedServerText);
  first.save(buffer);
  open(false, true);
  goTo(texts::targetPage);
  EXPECT_EQ(message("lblFurtherNote"), texts::furtherParts.arg(u"Encrypt=yes;APP=x"_s));
  ok();
  EXPECT_EQ(stored().storedServerText, buffer.storedServerText);
}

// Setting up a database by the dialogs

TEST_F(ServerPage, FromAnEmptyFolderTheDialogLeadsToANewAccessDatabase) {
  answer(1);
  openOnAnEmptyFolder();
  press("cmdSetUp");
  EXPECT_EQ(message("lblResult"), texts::accessMade);
  EXPECT_EQ(message("msgFolder"), texts::databaseThere);
  EXPECT_TRUE(QFileInfo::exists(path(u"new/hours/Hourbook3.mdb"_s)));
  press("cmdTest");
  EXPECT_TRUE(QTest::qWaitFor([this] { return message("lblResult") != texts::testing; }, 60000));
  EXPECT_EQ(message("lblResult"), phrases().LNGCONNECTIONSUCCEEDED + u'\n' + texts::testReports.arg(0));
  ok();
  EXPECT_FALSE(isOpen()) << qPrintable(message("lblProblem"));
  EXPECT_EQ(stored().databaseFolder, path(u"new/hours"_s));
  EXPECT_EQ(stored().reportChoice, reportToAccess);
}

TEST_F(ServerPage, FromAnEmptyFolderTheDialogsLeadToAnExistingServer) {
  answer(3, SqlServerLogin{u"box"_s, u"Hours"_s, true, {}, {}});
  openOnAnEmptyFolder();
  press("cmdSetUp");
  EXPECT_EQ(message("lblResult"), texts::serverChosen.arg(path(u"new/hours"_s)));
  EXPECT_TRUE(control("fraServer")->isVisible());
  EXPECT_EQ(control<QLineEdit>("txtServer")->text(), u"box"_s);
  const QString text =
      u"Provider=SQLOLEDB.1;Persist Security Info=True;Integrated Security=SSPI;Data Source=box;Initial Catalog=Hours"_s;
  EXPECT_EQ(content(path(u"new/hours/HourbookConnection.txt"_s)), text.toUtf8());
  ok();
  EXPECT_FALSE(isOpen()) << qPrintable(message("lblProblem"));
  EXPECT_EQ(stored().reportChoice, reportToSqlServer);
  EXPECT_EQ(stored().storedServerText, text);
}

TEST_F(ServerPage, DialogsThatAreLeftWithoutAnAnswerLeaveNothing) {
  openOnAnEmptyFolder();
  close();
  const auto before = everything();
  for (const qint16 option : {qint16(0), qint16(3)}) {
    answer(option);
    open(false, true);
    goTo(texts::targetPage);
    type("txtFolder", path(u"new/hours"_s));
    press("cmdSetUp");
    EXPECT_EQ(message("lblResult"), texts::setUpCancelled);
    EXPECT_TRUE(isOpen());
    EXPECT_EQ(everything(), before);
    EXPECT_FALSE(QFileInfo::exists(path(u"new"_s)));
    close();
  }
}

TEST_F(ServerPage, CancelOfANewServerDatabaseEndsTheStepAndNotTheProgram) {
  write(world.programFolder() + u"/CreateDBHB.sql"_s, "create database Hourbook3SQL");
  answer(2);
  openOnAnEmptyFolder();
  press("cmdSetUp");
  EXPECT_EQ(message("lblResult"), texts::setUpCancelled);
  EXPECT_TRUE(isOpen());
  EXPECT_EQ(world.process.ends, 0);
  EXPECT_FALSE(QFileInfo::exists(path(u"new"_s)));
}

TEST_F(ServerPage, WhatFailsIsToldAndThePageStays) {
  databaseForms = [](DatabaseValues& values) { values.blnMayCreateDatabase = true; };
  openOnAnEmptyFolder();
  press("cmdSetUp");
  EXPECT_TRUE(message("lblResult").contains(u"has no dialog to make one"_s))
      << qPrintable(message("lblResult"));
  EXPECT_TRUE(isOpen());
  EXPECT_FALSE(QFileInfo::exists(path(u"new"_s)));
}

TEST_F(ServerPage, NoDialogComesForAFolderThatHoldsADatabaseOrIsNone) {
  openFilledIn();
  goTo(texts::targetPage);
  press("cmdSetUp");
  EXPECT_EQ(message("msgFolder"), texts::databaseExists);
  type("txtFolder", u"relative"_s);
  press("cmdSetUp");
  EXPECT_EQ(message("msgFolder"), texts::folderRelative);
  type("txtFolder", QString());
  press("cmdSetUp");
  EXPECT_EQ(message("msgFolder"), texts::folderMissing);
}

TEST_F(ServerPage, AFolderThatLeadsToAServerSaysSo) {
  write(path(u"shared/HourbookConnection.txt"_s), "Provider=SQLOLEDB.1;Data Source=box");
  openFilledIn();
  goTo(texts::targetPage);
  type("txtFolder", path(u"shared"_s));
  expectRefused("txtFolder", texts::folderLeadsToServer);
}

}  // namespace
}  // namespace hourbook::tests

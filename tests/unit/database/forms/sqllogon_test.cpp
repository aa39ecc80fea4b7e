// The connection strings of the logon dialog, and its form without the window.
#include "database/frmSQLLogon.h"
#include "database/modSQLLogon.h"
#include "windows.h"

using namespace Qt::StringLiterals;

namespace hourbook::tests {
namespace {

const QString trusted = u"Provider=SQLOLEDB.1;Persist Security Info=True;Integrated Security=SSPI;"_s;

// The string

TEST(SQLConnectionString, OfATrustedConnectionNamesNoUser) {
  const SQLLogon logon{u"box\\sql,1433"_s, u"Hours"_s, u"jane"_s, u"secret"_s, true};
  EXPECT_EQ(fncBuildSQLConnection(logon, false),
            u"Provider=SQLOLEDB.1;Persist Security Info=True;Integrated Security=SSPI;"
            "Data Source=box\\sql,1433;Initial Catalog=Hours"_s);
}

TEST(SQLConnectionString, WithAPasswordNamesUserAndPassword) {
  const SQLLogon logon{u"box"_s, u"Hours"_s, u"jane"_s, u"secret"_s, false};
  EXPECT_EQ(fncBuildSQLConnection(logon, false),
            u"Provider=SQLOLEDB.1;Persist Security Info=True;User ID=jane;Password=secret;"
            "Data Source=box;Initial Catalog=Hours"_s);
}

TEST(SQLConnectionString, ForTheServerAloneNamesNoDatabase) {
  SQLLogon logon{u"box"_s, u"Hours"_s, u"jane"_s, u"secret"_s, false};
  EXPECT_EQ(fncBuildSQLConnection(logon, true),
            u"Provider=SQLOLEDB.1;Persist Security Info=True;User ID=jane;Password=secret;Data Source=box"_s);
  logon.blnIntegratedSecurity = true;
  EXPECT_EQ(fncBuildSQLConnection(logon, true), trusted + u"Data Source=box"_s);
}

TEST(SQLConnectionString, OfEmptyFieldsKeepsItsKeys) {
  EXPECT_EQ(fncBuildSQLConnection({}, false),
            u"Provider=SQLOLEDB.1;Persist Security Info=True;User ID=;Password=;Data Source=;"
            "Initial Catalog="_s);
}

TEST(SQLConnectionString, HoldsTheTextsAsTheyWereTyped) {
  EXPECT_EQ(fncBuildSQLConnection({u" box "_s, u"a;b"_s, {}, {}, true}, false),
            trusted + u"Data Source= box ;Initial Catalog=a;b"_s);
}

TEST(SQLConnectionString, ComesBackIntoTheFields) {
  EXPECT_EQ(fncSplitSQLConnection(trusted + u"Data Source=box;Initial Catalog=Hours"_s),
            (SQLLogon{u"box"_s, u"Hours"_s, {}, {}, true}));
}

TEST(SQLConnectionString, DoesNotGiveAPlainUserNameBack) {
  EXPECT_EQ(fncSplitSQLConnection(
                u"Provider=SQLOLEDB.1;User ID=jane;Password=secret;Data Source=box;Initial Catalog=Hours"_s),
            (SQLLogon{u"box"_s, u"Hours"_s, {}, u"secret"_s, false}));
}

TEST(SQLConnectionString, GivesAUserNameBackThatIsAThirdPart) {
  EXPECT_EQ(fncSplitSQLConnection(u"User ID=x=jane"_s).strUserName, u"jane"_s);
  EXPECT_EQ(fncSplitSQLConnection(u"User ID=x=jane=doe"_s).strUserName, u"jane"_s);
}

TEST(SQLConnectionString, GivesOfAnyOtherValueWhatStandsBeforeAFurtherSign) {
  EXPECT_EQ(fncSplitSQLConnection(u"Password=a=b"_s).strPassword, u"a"_s);
  EXPECT_EQ(fncSplitSQLConnection(u"Data Source=a=b"_s).strServer, u"a"_s);
}

TEST(SQLConnectionString, IsOnlyReadForItsExactKeys) {
  EXPECT_EQ(fncSplitSQLConnection(u"data source=box; Initial Catalog=Hours;Server=other;PWD=x"_s),
            SQLLogon());
}

TEST(SQLConnectionString, OfOddPiecesGivesWhatIsThere) {
  EXPECT_EQ(fncSplitSQLConnection({}), SQLLogon());
  EXPECT_EQ(fncSplitSQLConnection(u";;Data Source;=;Integrated Security;Password=;"_s),
            (SQLLogon{{}, {}, {}, {}, true}));
}

TEST(SQLConnectionString, OfAKeyThatComesTwiceGivesTheLast) {
  EXPECT_EQ(fncSplitSQLConnection(u"Data Source=one;Data Source=two"_s).strServer, u"two"_s);
}

// The form

class SQLLogonForm : public DatabaseForms {
 protected:
  void type(const SQLLogon& logon) {
    form.chkIntegratedSecurity.setValue(logon.blnIntegratedSecurity ? 1 : 0);
    form.txtServer.setText(logon.strServer);
    form.txtDatabase.setText(logon.strDatabase);
    form.txtUserName.setText(logon.strUserName);
    form.txtPassword.setText(logon.strPassword);
  }
  frmSQLLogon form;
};

TEST_F(SQLLogonForm, BearsThePhrasesOfItsControls) {
  form.subSetCaptions();
  EXPECT_EQ(form.Name(), u"frmSQLLogon"_s);
  EXPECT_EQ(form.Caption(), u"Database connection"_s);
  EXPECT_EQ(form.lblServer.Caption(), u"Server"_s);
  EXPECT_EQ(form.lblDatabase.Caption(), u"Database"_s);
  EXPECT_EQ(form.lblUserName.Caption(), u"User name"_s);
  EXPECT_EQ(form.lblPassword.Caption(), u"Password"_s);
  EXPECT_EQ(form.chkIntegratedSecurity.Caption(), u"Use trusted connection  - recommended"_s);
  EXPECT_EQ(form.cmdTest.Caption(), u"Test"_s);
  EXPECT_EQ(form.cmdOK.Caption(), u"OK"_s);
  EXPECT_EQ(form.cmdCancel.Caption(), u"Cancel"_s);
}

TEST_F(SQLLogonForm, WithoutAStringBeginsWithTheTrustedConnection) {
  form.subSetCaptions();
  EXPECT_EQ(form.chkIntegratedSecurity.Value(), 1);
  EXPECT_FALSE(form.txtUserName.Enabled());
  EXPECT_FALSE(form.txtPassword.Enabled());
  EXPECT_TRUE(form.cmdTest.Visible());
}

TEST_F(SQLLogonForm, WithAStringBeginsWithItsParts) {
  form.strConnection =
      u"Provider=SQLOLEDB.1;User ID=jane;Password=secret;Data Source=box;Initial Catalog=Hours"_s;
  form.subSetCaptions();
  EXPECT_EQ(form.txtServer.Text(), u"box"_s);
  EXPECT_EQ(form.txtDatabase.Text(), u"Hours"_s);
  EXPECT_EQ(form.txtPassword.Text(), u"secret"_s);
  EXPECT_EQ(form.txtUserName.Text(), QString());
  EXPECT_EQ(form.chkIntegratedSecurity.Value(), 0);
  EXPECT_TRUE(form.txtUserName.Enabled());
}

TEST_F(SQLLogonForm, WithATrustedStringTicksTheBox) {
  form.strConnection = trusted + u"Data Source=box"_s;
  form.subSetCaptions();
  EXPECT_EQ(form.chkIntegratedSecurity.Value(), 1);
  EXPECT_FALSE(form.txtPassword.Enabled());
}

TEST_F(SQLLogonForm, TheBoxGreysUserAndPasswordInTheDesktopsColours) {
  form.subSetCaptions();
  EXPECT_EQ(form.txtUserName.BackColor(), static_cast<qint32>(0x8000000F));
  EXPECT_EQ(form.txtPassword.BackColor(), static_cast<qint32>(0x8000000F));
  form.chkIntegratedSecurity.setValue(0);
  for (const auto* field : {&form.txtUserName, &form.txtPassword}) {
    EXPECT_TRUE(field->Enabled());
    EXPECT_EQ(field->BackColor(), static_cast<qint32>(0x80000005));
  }
  EXPECT_TRUE(form.txtServer.Enabled());
  EXPECT_EQ(form.txtServer.BackColor(), -1);
}

TEST_F(SQLLogonForm, OkGivesTheStringWithTheDatabase) {
  form.Show([this](frmSQLLogon&) {
    type({u"box"_s, u"Hours"_s, {}, {}, true});
    form.cmdOK.click();
    EXPECT_FALSE(form.Visible());
  });
  EXPECT_EQ(form.strConnection, trusted + u"Data Source=box;Initial Catalog=Hours"_s);
}

TEST_F(SQLLogonForm, ForANewDatabaseOkLeavesItsNameOutAndThereIsNoTest) {
  form.blnNewDB = true;
  form.Show([this](frmSQLLogon&) {
    EXPECT_FALSE(form.cmdTest.Visible());
    type({u"box"_s, u"Hours"_s, {}, {}, true});
    form.cmdOK.click();
  });
  EXPECT_EQ(form.strConnection, trusted + u"Data Source=box"_s);
  EXPECT_EQ(form.txtDatabase.Text(), u"Hours"_s);
}

TEST_F(SQLLogonForm, CancelEmptiesTheStringAndGoesOn) {
  form.strConnection = trusted + u"Data Source=box"_s;
  form.Show([this](frmSQLLogon&) {
    form.cmdCancel.click();
    EXPECT_FALSE(form.Visible());
  });
  EXPECT_EQ(form.strConnection, QString());
  EXPECT_EQ(world.process.ends, 0);
}

TEST_F(SQLLogonForm, CancelOfANewDatabaseEndsTheProgramOnceTheWindowIsGone) {
  form.blnNewDB = true;
  EXPECT_ENDS_PROCESS(form.Show([this](frmSQLLogon&) {
    form.cmdCancel.click();
    EXPECT_EQ(world.process.ends, 0);
    EXPECT_FALSE(form.Visible());
  }));
  EXPECT_EQ(form.strConnection, QString());
}

TEST_F(SQLLogonForm, ShownAgainKeepsWhatWasTyped) {
  form.blnNewDB = true;
  form.Show([this](frmSQLLogon&) {
    type({u"box"_s, u"Hours"_s, u"jane"_s, u"secret"_s, false});
    form.cmdOK.click();
  });
  form.Show([this](frmSQLLogon&) {
    EXPECT_TRUE(form.Visible());
    EXPECT_EQ(form.txtUserName.Text(), u"jane"_s);
    EXPECT_EQ(form.txtDatabase.Text(), u"Hours"_s);
    form.cmdOK.click();
  });
  EXPECT_TRUE(form.strConnection.contains(u"User ID=jane"_s));
}

TEST_F(SQLLogonForm, ATestThatSucceedsSaysSoAndClosesTheConnection) {
  form.subSetCaptions();
  type({u"box"_s, u"Hours"_s, u"jane"_s, u"secret"_s, false});
  world.dialogs.expect(u"Connection succeeded!"_s, platform::dialogs::vbOK);
  form.setVisible(true);
  form.cmdTest.click();
  ASSERT_EQ(world.dialogs.shown.size(), 1);
  EXPECT_EQ(world.dialogs.shown[0].text, u"Connection succeeded!"_s);
  EXPECT_EQ(world.dialogs.shown[0].title, u"Hourbook for Outlook Reporting"_s);
  EXPECT_EQ(world.dialogs.shown[0].options, 64);
  EXPECT_EQ(notes->opened, QStringList{u"box|Hours|jane|secret"_s});
  EXPECT_EQ(notes->open, 0);
  EXPECT_TRUE(form.Visible());
}

TEST_F(SQLLogonForm, ATestThatFailsSaysWhyAndLeavesTheFormOpen) {
  form.subSetCaptions();
  notes->refusal = u"Login failed for user jane."_s;
  world.dialogs.expect(u"Connection failed!"_s, platform::dialogs::vbOK);
  form.setVisible(true);
  form.cmdTest.click();
  ASSERT_EQ(world.dialogs.shown.size(), 1);
  EXPECT_EQ(world.dialogs.shown[0].text, u"Connection failed!\r\nLogin failed for user jane."_s);
  EXPECT_EQ(world.dialogs.shown[0].title, u"Hourbook for Outlook Reporting"_s);
  EXPECT_EQ(world.dialogs.shown[0].options, 16);
  EXPECT_TRUE(form.Visible());
}

TEST_F(SQLLogonForm, ATestWithoutTheComponentFailsLikeAnyOther) {
  platform::automation::Components none;
  const platform::automation::ScopedComponents inForce(none);
  world.dialogs.expect(u"Connection failed!\r\n"_s, platform::dialogs::vbOK);
  form.cmdTest.click();
  EXPECT_EQ(world.dialogs.shown.size(), 1);
}

TEST_F(SQLLogonForm, ATestTellsWhenItBeginsAndWhenItIsOver) {
  QList<bool> told;
  QObject::connect(&form, &frmSQLLogon::testing, &form, [&](bool on) { told.append(on); });
  notes->refusal = u"no"_s;
  world.dialogs.expect(u"Connection failed!"_s, platform::dialogs::vbOK);
  form.cmdTest.click();
  EXPECT_EQ(told, (QList<bool>{true, false}));
}

}  // namespace
}  // namespace hourbook::tests

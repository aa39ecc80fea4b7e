#include "database/frmSQLLogon.h"

#include "database/modSQLLogon.h"
#include "platform/ado/connection.h"
#include "platform/automation/components.h"
#include "platform/basic/text.h"
#include "platform/dialogs/dialogs.h"
#include "shell/modErrorReport.h"
#include "shell/ShellValues.h"
#include "shell/Tolerate.h"

namespace hourbook {

using namespace Qt::StringLiterals;
using namespace platform::dialogs;
using platform::ado::Connection;

namespace {

/// How a server may be written, without a word to be translated.
const QString serverForms = u"sql.example.net\nsql.example.net,1433\nsql.example.net\\INSTANCE"_s;

// Colours of the desktop, by number: a window draws its own for them.
inline constexpr auto buttonFace = static_cast<qint32>(0x8000000F);
inline constexpr auto windowBackground = static_cast<qint32>(0x80000005);

}  // namespace

frmSQLLogon::frmSQLLogon() : Control(u"frmSQLLogon"_s) {
  setVisible(false);
  connect(&chkIntegratedSecurity, &platform::forms::CheckBox::Click, this,
          [this] { chkIntegratedSecurity_Click(); });
  connect(&cmdTest, &platform::forms::CommandButton::Click, this, [this] { cmdTest_Click(); });
  connect(&cmdOK, &platform::forms::CommandButton::Click, this, [this] { cmdOK_Click(); });
  connect(&cmdCancel, &platform::forms::CommandButton::Click, this, [this] { cmdCancel_Click(); });
}

void frmSQLLogon::Show(const std::function<void(frmSQLLogon&)>& show) {
  cancelled_ = false;
  if (!loaded_) subSetCaptions();
  loaded_ = true;
  setVisible(true);
  show(*this);
  setVisible(false);
  // only once the window has gone: the end may be one of this step alone
  if (cancelled_ && blnNewDB) subEndProcess();
}

void frmSQLLogon::subSetCaptions() {
  const Phrases& p = phrases();
  setCaption(p.LNGCHOOSECONNECTION);
  lblServer.setCaption(p.LNGSERVER);
  txtServer.setToolTipText(serverForms);
  lblDatabase.setCaption(p.LNGDATABASE);
  lblUserName.setCaption(p.LNGUSERNAME);
  lblPassword.setCaption(p.LNGPASSWORD);
  chkIntegratedSecurity.setCaption(p.LNGINTEGRATEDSECURITY);
  cmdTest.setCaption(p.LNGTEST);
  cmdOK.setCaption(p.LNGOK);
  cmdCancel.setCaption(p.LNGCANCEL);
  if (strConnection.isEmpty()) {
    chkIntegratedSecurity.setValue(1);
  } else {
    const SQLLogon logon = fncSplitSQLConnection(strConnection);
    if (logon.blnIntegratedSecurity) chkIntegratedSecurity.setValue(1);
    txtServer.setText(logon.strServer);
    txtDatabase.setText(logon.strDatabase);
    txtUserName.setText(logon.strUserName);
    txtPassword.setText(logon.strPassword);
  }
  if (blnNewDB) cmdTest.setVisible(false);
}

void frmSQLLogon::chkIntegratedSecurity_Click() {
  const bool on = chkIntegratedSecurity.Value() == 1;
  for (platform::forms::TextBox* field : {&txtUserName, &txtPassword}) {
    field->setEnabled(!on);
    field->setBackColor(on ? buttonFace : windowBackground);
  }
}

void frmSQLLogon::subBuildSQLConnection(bool blnServerConnOnly) {
  strConnection = fncBuildSQLConnection({txtServer.Text(), txtDatabase.Text(), txtUserName.Text(),
                                         txtPassword.Text(), chkIntegratedSecurity.Value() == 1},
                                        blnServerConnOnly);
}

void frmSQLLogon::cmdTest_Click() {
  subBuildSQLConnection(false);
  std::shared_ptr<Connection> connection;
  Q_EMIT testing(true);
  const auto failed = tolerate([&] {
    connection = platform::automation::CreateObject<Connection>(u"ADODB.Connection"_s);
    connection->setConnectionString(strConnection);
    connection->Open();
  });
  Q_EMIT testing(false);
  if (failed) {
    Dialogs::current().MsgBox(phrases().LNGCONNECTIONFAILED + platform::basic::vbCrLf + failed->description(),
                              vbCritical, gTitle);
    return;
  }
  Dialogs::current().MsgBox(phrases().LNGCONNECTIONSUCCEEDED, vbInformation, gTitle);
  connection->Close();
}

void frmSQLLogon::cmdOK_Click() {
  subBuildSQLConnection(blnNewDB);
  Hide();
}

void frmSQLLogon::cmdCancel_Click() {
  strConnection.clear();
  loaded_ = false;
  cancelled_ = true;
  Hide();
}

}  // namespace hourbook

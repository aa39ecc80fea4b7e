#pragma once
#include "platform/forms/controls.h"

#include <functional>

namespace hourbook {

/// Asks for a server, a database on it, and who logs on there. Its controls without pixels: a window follows
/// them, and a script can press them.
class frmSQLLogon : public platform::forms::Control {
  Q_OBJECT
 public:
  frmSQLLogon();

  /// To be set before the form is shown: the present connection string, or empty. Afterwards the one built of
  /// the fields; empty after Cancel.
  QString strConnection;
  /// The database is yet to be made: its name stands in `txtDatabase` and not in the string.
  bool blnNewDB = false;

  platform::forms::Label lblServer{QStringLiteral("lblServer")};
  platform::forms::TextBox txtServer{QStringLiteral("txtServer")};
  platform::forms::Label lblDatabase{QStringLiteral("lblDatabase")};
  platform::forms::TextBox txtDatabase{QStringLiteral("txtDatabase")};
  platform::forms::CheckBox chkIntegratedSecurity{QStringLiteral("chkIntegratedSecurity")};
  platform::forms::Label lblUserName{QStringLiteral("lblUserName")};
  platform::forms::TextBox txtUserName{QStringLiteral("txtUserName")};
  platform::forms::Label lblPassword{QStringLiteral("lblPassword")};
  platform::forms::TextBox txtPassword{QStringLiteral("txtPassword")};
  platform::forms::CommandButton cmdTest{QStringLiteral("cmdTest")};
  platform::forms::CommandButton cmdOK{QStringLiteral("cmdOK")};
  platform::forms::CommandButton cmdCancel{QStringLiteral("cmdCancel")};

  /// Loads the form, has it shown by `show`, which returns when it was hidden, and ends the program when a
  /// new database was cancelled. A form that was only hidden keeps its fields for the next time.
  void Show(const std::function<void(frmSQLLogon&)>& show);
  void Hide() { setVisible(false); }
  void subSetCaptions();
  /// Fills `strConnection` from the fields; `blnServerConnOnly`: without the database.
  void subBuildSQLConnection(bool blnServerConnOnly);

 Q_SIGNALS:
  /// A connection is being tried, which may take its time; false when that is over.
  void testing(bool on);

 private:
  void chkIntegratedSecurity_Click();
  void cmdTest_Click();
  void cmdOK_Click();
  void cmdCancel_Click();

  bool loaded_ = false;
  bool cancelled_ = false;
};

}  // namespace hourbook

#pragma once
#include "platform/forms/controls.h"
#include "shell/FormWindow.h"

namespace hourbook {

/// Asks which kind of database is to be used. Its controls without pixels: a window follows them, and a
/// script can press them.
class frmChooseConnection : public platform::forms::Control {
 public:
  static constexpr qint16 newAccessDatabase = 1;
  static constexpr qint16 newSQLDatabase = 2;
  static constexpr qint16 existingSQLDatabase = 3;

  frmChooseConnection();

  /// The choice, once OK was pressed; 0 before, and when the window was closed without it.
  qint16 intConnectionOption = 0;
  bool blnLoadExampleData = false;
  // To be set before the form is shown:
  QString strSQLScriptFileName;
  bool blnHideExampleDataOption = false;

  platform::forms::Label lblChooseDB{QStringLiteral("lblChooseDB")};
  platform::forms::OptionButton optNewAccessDatabase{QStringLiteral("optNewAccessDatabase"), this};
  platform::forms::OptionButton optCreateSQLDataBase{QStringLiteral("optCreateSQLDataBase"), this};
  platform::forms::OptionButton optSelectExistingSQLDB{QStringLiteral("optSelectExistingSQLDB"), this};
  platform::forms::CheckBox chkExampleData{QStringLiteral("chkExampleData")};
  platform::forms::CommandButton cmdOK{QStringLiteral("cmdOK")};
  platform::forms::Timer timSetFocus{QStringLiteral("timSetFocus")};

  /// The load event: captions, what is selected, and the window, when there is one, above all others.
  void Load(FormWindow* window);
  void Hide() { setVisible(false); }

 private:
  void subSetCaptions();
  void cmdOK_Click();
  void timSetFocus_Timer();

  FormWindow* window_ = nullptr;
};

}  // namespace hourbook

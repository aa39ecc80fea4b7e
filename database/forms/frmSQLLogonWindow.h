#pragma once
#include "database/forms/FormDialog.h"
#include "database/frmSQLLogon.h"
#include "platform/forms/widgets/mnemonics.h"

class QFormLayout;
class QLineEdit;

namespace hourbook {

/// The window of the form. Escape and its frame mean Cancel.
class frmSQLLogonWindow : public FormDialog {
  Q_OBJECT
 public:
  explicit frmSQLLogonWindow(frmSQLLogon& form, QWidget* parent = nullptr);
  void reject() override;

 private:
  QLayout* fields();
  QLayout* buttons();
  QLineEdit* addField(QFormLayout* fields, platform::forms::Label& label, platform::forms::TextBox& field);
  void showTesting(bool on);

  frmSQLLogon& form_;
  platform::forms::Mnemonics mnemonics_;
};

}  // namespace hourbook

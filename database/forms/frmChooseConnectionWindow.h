#pragma once
#include "database/forms/FormDialog.h"
#include "database/frmChooseConnection.h"

class QBoxLayout;

namespace hourbook {

/// The window of the form, which it loads. Escape and its frame close it without a choice.
class frmChooseConnectionWindow : public FormDialog {
  Q_OBJECT
 public:
  explicit frmChooseConnectionWindow(frmChooseConnection& form, QWidget* parent = nullptr);

 private:
  void makeOptions(QBoxLayout& page);
  void giveLetters(const QList<platform::forms::Control*>& controls);

  frmChooseConnection& form_;
};

}  // namespace hourbook

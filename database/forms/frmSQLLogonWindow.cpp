#include "database/forms/frmSQLLogonWindow.h"

#include "platform/forms/widgets/bind.h"

#include <QBoxLayout>
#include <QCheckBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QGuiApplication>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>

namespace hourbook {

namespace forms = platform::forms;

frmSQLLogonWindow::frmSQLLogonWindow(frmSQLLogon& form, QWidget* parent)
    : FormDialog(form, parent), form_(form) {
  setWindowTitle(form.Caption());
  auto* page = new QVBoxLayout(this);
  page->addLayout(fields());
  page->addSpacing(fontMetrics().height() / 2);
  page->addStretch();
  page->addLayout(buttons());
  fitTo(*page);
  connect(&form, &frmSQLLogon::testing, this, &frmSQLLogonWindow::showTesting);
}

void frmSQLLogonWindow::reject() {
  form_.cmdCancel.click();
}

/// The box above the two fields that it concerns.
QLayout* frmSQLLogonWindow::fields() {
  auto* fields = new QFormLayout;
  fields->setFieldGrowthPolicy(QFormLayout::AllNonFixedFieldsGrow);
  addField(fields, form_.lblServer, form_.txtServer);
  addField(fields, form_.lblDatabase, form_.txtDatabase);
  auto* trusted = new QCheckBox(this);
  forms::bind(form_.chkIntegratedSecurity, trusted);
  mnemonics_.add(form_.chkIntegratedSecurity, trusted);
  fields->addRow(trusted);
  addField(fields, form_.lblUserName, form_.txtUserName);
  addField(fields, form_.lblPassword, form_.txtPassword)->setEchoMode(QLineEdit::Password);
  return fields;
}

QLineEdit* frmSQLLogonWindow::addField(QFormLayout* fields, forms::Label& label, forms::TextBox& field) {
  auto* edit = new QLineEdit(this);
  auto* caption = new QLabel(this);
  caption->setBuddy(edit);
  forms::bind(label, caption);
  forms::bind(field, edit, label.Caption());
  mnemonics_.add(label, caption);
  const auto follow = [&field, caption] { caption->setEnabled(field.Enabled()); };
  connect(&field, &forms::Control::propertyChanged, caption, follow);
  follow();
  fields->addRow(caption, edit);
  return edit;
}

QLayout* frmSQLLogonWindow::buttons() {
  auto* row = new QHBoxLayout;
  auto* test = new QPushButton(this);
  test->setAutoDefault(false);
  auto* box = new QDialogButtonBox(this);
  QPushButton* ok = box->addButton(QDialogButtonBox::Ok);
  QPushButton* cancel = box->addButton(QDialogButtonBox::Cancel);
  ok->setDefault(true);
  for (const auto& [control, button] :
       {std::pair(&form_.cmdTest, test), std::pair(&form_.cmdOK, ok), std::pair(&form_.cmdCancel, cancel)}) {
    forms::bind(*control, button);
    mnemonics_.add(*control, button);
  }
  row->addWidget(test);
  row->addStretch();
  row->addWidget(box);
  return row;
}

/// A server that does not answer holds up the window for its time.
void frmSQLLogonWindow::showTesting(bool on) {
  if (on)
    QGuiApplication::setOverrideCursor(Qt::WaitCursor);
  else
    QGuiApplication::restoreOverrideCursor();
}

}  // namespace hourbook

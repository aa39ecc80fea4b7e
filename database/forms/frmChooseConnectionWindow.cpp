#include "database/forms/frmChooseConnectionWindow.h"

#include "platform/forms/widgets/bind.h"
#include "platform/forms/widgets/mnemonics.h"

#include <QBoxLayout>
#include <QCheckBox>
#include <QDialogButtonBox>
#include <QLabel>
#include <QPushButton>
#include <QRadioButton>

namespace hourbook {

namespace forms = platform::forms;

frmChooseConnectionWindow::frmChooseConnectionWindow(frmChooseConnection& form, QWidget* parent)
    : FormDialog(form, parent), form_(form) {
  form.Load(this);
  setWindowTitle(form.Caption());
  auto* page = new QVBoxLayout(this);
  auto* question = new QLabel(this);
  question->setWordWrap(true);
  forms::bind(form.lblChooseDB, question);
  page->addWidget(question);
  page->addSpacing(fontMetrics().height() / 2);
  makeOptions(*page);
  page->addStretch();
  auto* buttons = new QDialogButtonBox(this);
  QPushButton* ok = buttons->addButton(QDialogButtonBox::Ok);
  forms::bind(form.cmdOK, ok);
  ok->setDefault(true);
  page->addWidget(buttons);
  giveLetters({&form.optNewAccessDatabase, &form.optCreateSQLDataBase, &form.optSelectExistingSQLDB,
               &form.chkExampleData, &form.cmdOK});
  fitTo(*page);
}

void frmChooseConnectionWindow::makeOptions(QBoxLayout& page) {
  for (forms::OptionButton* control :
       {&form_.optNewAccessDatabase, &form_.optCreateSQLDataBase, &form_.optSelectExistingSQLDB}) {
    auto* option = new QRadioButton(this);
    forms::bind(*control, option);
    page.addWidget(option);
  }
  page.addSpacing(fontMetrics().height() / 2);
  auto* example = new QCheckBox(this);
  forms::bind(form_.chkExampleData, example);
  page.addWidget(example);
}

/// Once, since no caption changes while the form is shown; the lines of a long one are broken with its letter
/// in it.
void frmChooseConnectionWindow::giveLetters(const QList<forms::Control*>& controls) {
  QList<QAbstractButton*> buttons;
  QStringList captions;
  for (const forms::Control* control : controls) {
    if (!control->Visible()) continue;
    buttons.append(findChild<QAbstractButton*>(control->Name()));
    captions.append(control->Caption());
  }
  const QStringList texts = forms::Mnemonics::assigned(captions);
  for (qsizetype i = 0; i < buttons.size(); ++i) {
    buttons[i]->setText(texts[i]);
    breakLines(buttons[i]);
  }
}

}  // namespace hourbook

#include "settings/frmResolveRemovedItemWindow.h"

#include "platform/forms/widgets/bind.h"

#include <QApplication>
#include <QBoxLayout>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QLabel>
#include <QPushButton>
#include <QRadioButton>
#include <QStyle>

namespace hourbook {

namespace forms = platform::forms;

namespace {

/// Letters that the window has room for in a line.
inline constexpr int lettersInLine = 56;

}  // namespace

frmResolveRemovedItemWindow::frmResolveRemovedItemWindow(frmResolveRemovedItem& form, QWidget* parent)
    : QDialog(parent), form_(form) {
  setObjectName(form.Name());
  setWindowTitle(form.Caption());
  auto* page = new QVBoxLayout(this);
  auto* conflict = new QLabel(this);
  conflict->setWordWrap(true);
  forms::bind(form.lblConflict, conflict);
  page->addWidget(conflict);
  page->addWidget(valueLabel());
  page->addSpacing(fontMetrics().height() / 2);
  page->addWidget(option(form.optRemoveReports));
  page->addWidget(option(form.optMoveReportsTo));
  page->addLayout(choice());
  page->addStretch();
  page->addLayout(buttons());
  // a wrapped text is as high as the width makes it, which a window does not see to by itself
  const int width = qMax(page->totalMinimumSize().width(), fontMetrics().averageCharWidth() * lettersInLine);
  resize(width, page->totalHeightForWidth(width));
  connect(&form, &forms::Control::propertyChanged, this, [this] {
    if (!form_.Visible()) accept();
  });
}

/// A name of one long word is cut off rather than making the window as wide; the tooltip has all of it.
QWidget* frmResolveRemovedItemWindow::valueLabel() {
  auto* value = new QLabel(this);
  value->setWordWrap(true);
  value->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
  QFont bold = value->font();
  bold.setBold(true);
  value->setFont(bold);
  forms::bind(form_.lblValueToBeResolved, value);
  // bound labels take "&" for a mark; a value's name holds it as a letter
  value->setText(form_.lblValueToBeResolved.Caption());
  value->setToolTip(form_.lblValueToBeResolved.Caption().toHtmlEscaped());
  return value;
}

QWidget* frmResolveRemovedItemWindow::option(forms::OptionButton& control) {
  auto* button = new QRadioButton(this);
  forms::bind(control, button);
  mnemonics_.add(control, button);
  return button;
}

/// Under its option and as far in as the option's text, so that it fits in every language.
QLayout* frmResolveRemovedItemWindow::choice() {
  auto* row = new QHBoxLayout;
  row->addSpacing(style()->pixelMetric(QStyle::PM_ExclusiveIndicatorWidth) +
                  style()->pixelMetric(QStyle::PM_RadioButtonLabelSpacing));
  auto* box = new QComboBox(this);
  box->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
  forms::bind(form_.cmbMoveChoice, box, form_.optMoveReportsTo.Caption());
  row->addWidget(box, 1);
  return row;
}

QLayout* frmResolveRemovedItemWindow::buttons() {
  auto* box = new QDialogButtonBox(this);
  QPushButton* ok = box->addButton(QDialogButtonBox::Ok);
  QPushButton* cancel = box->addButton(QDialogButtonBox::Cancel);
  forms::bind(form_.cmdOK, ok);
  forms::bind(form_.cmdCancel, cancel);
  mnemonics_.add(form_.cmdOK, ok);
  mnemonics_.add(form_.cmdCancel, cancel);
  ok->setDefault(true);
  // the form is still open: it lacks a value to move the reports to
  connect(ok, &QPushButton::clicked, this, [this] {
    if (form_.Visible()) findChild<QComboBox*>(form_.cmbMoveChoice.Name())->setFocus();
  });
  auto* row = new QHBoxLayout;
  row->addWidget(box);
  return row;
}

void subShowResolveRemovedItem(frmResolveRemovedItem& form) {
  frmResolveRemovedItemWindow window(form, QApplication::activeWindow());
  window.exec();
}

}  // namespace hourbook

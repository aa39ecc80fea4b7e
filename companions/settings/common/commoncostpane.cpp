#include "companions/settings/common/commoncostpane.h"

#include "companions/settings/common/commontexts.h"

#include <QComboBox>
#include <QFormLayout>
#include <QLineEdit>
#include <QSignalBlocker>

namespace hourbook {

using namespace Qt::StringLiterals;
namespace texts = commontexts;

namespace {

struct Target {
  qint32 number;
  QString text;
  QString valueLabel;
};

const QList<Target>& targets() {
  static const QList<Target> all{{1, texts::targetAsp, texts::valueAspLabel},
                                 {2, texts::targetAccess, texts::valueAccessLabel},
                                 {3, texts::targetServer, texts::valueServerLabel},
                                 {4, texts::targetBilling, texts::valueBillingLabel}};
  return all;
}

QString valueLabel(qint32 target) {
  for (const Target& one : targets())
    if (one.number == target) return one.valueLabel;
  return texts::valueAccessLabel;
}

QString ruleOfList(const CommonContent& content, int list) {
  const QString& caption = content.lists[list].caption;
  return caption.isEmpty() ? texts::costOfListPlain.arg(list + 1)
                           : texts::costOfList.arg(QString::number(list + 1), caption);
}

/// Shows the entry of a number; one that is not among them stands as "not chosen".
void choose(QComboBox& combo, qint32 number) {
  combo.setCurrentIndex(qMax(0, combo.findData(number)));
}

}  // namespace

CommonCostPane::CommonCostPane(CommonBuffer& buffer, QWidget* parent) : QWidget(parent), buffer_(buffer) {
  makeControls();
  auto* form = new QFormLayout(this);
  const auto row = [form](QLabel* label, QWidget* field, ProblemLabel* problem) {
    label->setBuddy(field);
    form->addRow(label, field);
    form->addRow(QString(), problem);
  };
  row(new QLabel(texts::costLabel), cmbCostCarrier, lblCostProblem);
  row(new QLabel(texts::targetLabel), cmbReportTo, lblReportToProblem);
  row(lblReportToValue, txtReportToValue, lblValueProblem);
  connect(cmbCostCarrier, &QComboBox::activated, this, [this] {
    buffer_.edited.costCarrier = cmbCostCarrier->currentData().toInt();
    lblCostProblem->clear();
    Q_EMIT edited();
  });
  connect(cmbReportTo, &QComboBox::activated, this, &CommonCostPane::takeTarget);
  connect(txtReportToValue, &QLineEdit::textEdited, this, [this](const QString& text) {
    buffer_.edited.reportToValue = text.trimmed();
    lblValueProblem->show(buffer_.targetValueProblem());
    Q_EMIT edited();
  });
  reload();
}

void CommonCostPane::makeControls() {
  cmbCostCarrier = new QComboBox(this);
  nameControl(cmbCostCarrier, texts::costLabel, u"cmbCostCarrier"_s);
  cmbReportTo = new QComboBox(this);
  nameControl(cmbReportTo, texts::targetLabel, u"cmbReportTo"_s);
  cmbReportTo->addItem(texts::targetNotSet, 0);
  for (const Target& target : targets()) cmbReportTo->addItem(target.text, target.number);
  txtReportToValue = new QLineEdit(this);
  lblReportToValue = new QLabel(this);
  lblCostProblem = new ProblemLabel(cmbCostCarrier, this);
  lblReportToProblem = new ProblemLabel(cmbReportTo, this);
  lblValueProblem = new ProblemLabel(txtReportToValue, this);
}

void CommonCostPane::takeTarget() {
  buffer_.edited.reportTo = cmbReportTo->currentData().toInt();
  lblReportToProblem->clear();
  showTarget();
  lblValueProblem->show(buffer_.targetValueProblem());
  Q_EMIT edited();
}

void CommonCostPane::showTarget() {
  const QString label = valueLabel(buffer_.edited.reportTo);
  lblReportToValue->setText(label);
  nameControl(txtReportToValue, label, u"txtReportToValue"_s);
}

void CommonCostPane::reload() {
  reloadRules();
  choose(*cmbReportTo, buffer_.edited.reportTo);
  txtReportToValue->setText(buffer_.edited.reportToValue);
  showTarget();
  clearProblems();
  const bool writable = buffer_.notWritable.isEmpty();
  cmbCostCarrier->setEnabled(writable);
  cmbReportTo->setEnabled(writable);
  txtReportToValue->setReadOnly(!writable);
}

void CommonCostPane::reloadRules() {
  const QSignalBlocker quiet(cmbCostCarrier);
  cmbCostCarrier->clear();
  cmbCostCarrier->addItem(texts::costNotSet, 0);
  cmbCostCarrier->addItem(texts::costPerson, 1);
  for (int list = 0; list < 3; ++list) cmbCostCarrier->addItem(ruleOfList(buffer_.edited, list), list + 2);
  choose(*cmbCostCarrier, buffer_.edited.costCarrier);
}

void CommonCostPane::showProblem(const CommonProblem& problem) {
  if (problem.field == CommonField::CostCarrier) lblCostProblem->show(problem.text);
  if (problem.field == CommonField::ReportTo) lblReportToProblem->show(problem.text);
  if (problem.field == CommonField::ReportToValue) lblValueProblem->show(problem.text);
}

void CommonCostPane::focusProblem(const CommonProblem& problem) {
  if (problem.field == CommonField::CostCarrier) cmbCostCarrier->setFocus();
  if (problem.field == CommonField::ReportTo) cmbReportTo->setFocus();
  if (problem.field == CommonField::ReportToValue) txtReportToValue->setFocus();
}

void CommonCostPane::clearProblems() {
  for (ProblemLabel* label : {lblCostProblem, lblReportToProblem, lblValueProblem}) label->clear();
}

}  // namespace hourbook

#include "workspace/ReportForm.h"

#include "platform/automation/components.h"
#include "shell/Present.h"
#include "workspace/WorkspaceValues.h"

namespace hourbook {

using platform::forms::ComboBox;
using platform::forms::DTPicker;

ReportForm& reportForm() {
  return present(workspaceValues().gReportForm);
}

ReportForm::ReportForm(const ReportFormVariant& variant)
    : Control(variant.formName),
      exsThisWeek(QStringLiteral("exsThisWeek"), variant.generation),
      excThisWeek(QStringLiteral("excThisWeek"), variant.generation),
      variant_(variant) {
  vDaysBefore.Min = -59;
  vDaysBefore.Max = 0;
  // A year has 52 weeks or 53; the last one simply runs over into the next year where there are 52.
  for (int week = 1; week <= 53; ++week) cmbWeek.AddItem(QString::number(week));
  lnTo.setCaption(QStringLiteral("\u2013"));
  for (auto* gridOnly : std::initializer_list<Control*>{&lblWeek, &cmbWeek, &cmdAddNew, &cmdSaveChanges})
    gridOnly->setVisible(false);
  for (ComboBox* dropDown : {&cmbMeta1, &cmbMeta2, &cmbMeta3}) dropDown->setVisible(false);
  if (variant.hasChartType)
    cmbChartType = std::make_unique<ComboBox>(QStringLiteral("cmbChartType"), ComboBox::Style::DropdownCombo);
}

ReportForm::~ReportForm() = default;

void ReportForm::Load() {
  Q_EMIT Loading();
}

void ReportForm::Show() {
  if (screen_) screen_->Show();
}

void ReportForm::Unload() {
  if (screen_)
    screen_->Unload();
  else
    windowClosed();
}

void ReportForm::Refresh() {
  if (screen_) screen_->Refresh();
}

void ReportForm::setListScroll(const QPoint& scroll) {
  if (screen_) screen_->setListScroll(scroll);
}

const DeviceContext& ReportForm::hDC() const {
  struct Unpainted : DeviceContext {
    qint32 GetPixel(int, int) const override { return -1; }
  };
  static const Unpainted unpainted;
  if (screen_) return *screen_;
  return unpainted;
}

void ReportForm::setMousePointer(int pointer) {
  mousePointer_ = pointer;
  if (screen_) screen_->setMousePointer(pointer);
}

std::shared_ptr<DTPicker> ReportForm::addPicker(const QString& progId, const QString& name) {
  auto picker = platform::automation::CreateObject<DTPicker>(progId);
  picker->setObjectName(name);
  picker->setVisible(false);
  Q_EMIT pickerAdded(picker.get());
  return picker;
}

void ReportForm::removePicker(std::shared_ptr<DTPicker>& picker) {
  if (!picker) return;
  Q_EMIT pickerRemoved(picker.get());
  picker.reset();
}

}  // namespace hourbook

#include "workspace/modReportForm.h"

#include "platform/basic/text.h"
#include "platform/process/process.h"
#include "shell/modErrorReport.h"
#include "shell/modScriptingDic.h"
#include "shell/modXPlooks.h"
#include "shell/ShellValues.h"
#include "workspace/modChart.h"
#include "workspace/modDropDowns.h"
#include "workspace/modFollowCalendar.h"
#include "workspace/modGetData.h"
#include "workspace/modReportFlow.h"
#include "workspace/modRowEvents.h"
#include "workspace/modStatistics.h"
#include "workspace/ReportForm.h"
#include "workspace/WorkspaceValues.h"

namespace hourbook {

using platform::process::guardEvent;

namespace {

const QString chartTypes = QStringLiteral(
    "Area;BarClustered;ColumnClustered;Doughnut;Doughnut Exploded;Line;Line Markers;Line Stacked Markers;Pie;"
    "Pie Exploded;Radar Line;Radar Line Filled;Radar Line Markers;Radar Smoothline;Radar Smoothline Markers;"
    "Smoothline;Smoothline Markers");

void colourBackgrounds(ReportForm& form) {
  subApplyBackColorToControl(form.hDC(), form.tbsViews);
  subApplyBackColorToControl(form.hDC(), form.chkGrid);
  if (form.variant().coloursFrame) subApplyBackColorToControl(form.hDC(), form.fraPeriod);
}

void fillChartTypes(ReportForm& form) {
  const auto types = fncCreateDic<QString>();
  for (const QString& type : platform::basic::Split(chartTypes, QStringLiteral(";"))) types->Add(type, type);
  subFillcombo(*form.cmbChartType, *types);
}

void switchOff(std::initializer_list<platform::forms::Control*> controls, const QString& reason) {
  for (platform::forms::Control* control : controls) {
    control->setEnabled(false);
    control->setToolTipText(reason);
  }
}

/// What this version cannot do yet stands in the form, switched off, and says so.
void switchOffWhatIsMissing(ReportForm& form) {
  const WorkspaceValues& values = workspaceValues();
  if (!values.gGridView && !values.newGridView)
    switchOff({&form.chkGrid, &form.cmbWeek, &form.cmdAddNew, &form.cmdSaveChanges},
              QStringLiteral("The week grid is not available in this version yet."));
  switchOff({&form.cmdPrint}, QStringLiteral("Printing is not available in this version yet."));
}

void cmdGetValues_Click() {
  subGetData();
}

void cmbFilterCalendar_Click() {
  if (reportForm().cmbFilterCalendar.Visible()) subGetData();
}

void cmbWeek_Change() {
  subWeekChanged();
}

void cmbWeek_Click() {
  subWeekChanged();
}

void chkGrid_Click() {
  subGridCheckChanged();
}

void tbsViews_Click() {
  subCountSpreadSheet();
}

void cmdSaveChanges_Click() {
  if (const auto& grid = workspaceValues().gGridView) grid->subSaveGridChanges();
}

void Form_Unload() {
  subEndProcess();
}

void cmdCancel_Click() {
  reportForm().Unload();
  subEndProcess();
}

/// Connects a signal of the form to a handler; an end of the process stops at the event's edge.
template <class Sender, class Signal>
void on(Sender& sender, Signal signal, ReportForm& form, void (*handler)()) {
  QObject::connect(&sender, signal, &form, [handler] { guardEvent(handler); });
}

}  // namespace

void subConnectEvents(ReportForm& form) {
  using namespace platform::forms;
  on(form, &ReportForm::Loading, form, Form_Load);
  on(form, &ReportForm::Unloaded, form, Form_Unload);
  on(form.cmdCancel, &CommandButton::Click, form, cmdCancel_Click);
  on(form.cmdGetValues, &CommandButton::Click, form, cmdGetValues_Click);
  on(form.cmbFilterCalendar, &ComboBox::Click, form, cmbFilterCalendar_Click);
  on(form.cmbWeek, &ComboBox::Change, form, cmbWeek_Change);
  on(form.cmbWeek, &ComboBox::Click, form, cmbWeek_Click);
  on(form.chkGrid, &CheckBox::Click, form, chkGrid_Click);
  on(form.tbsViews, &TabStrip::Click, form, tbsViews_Click);
  on(form.cmdSaveChanges, &CommandButton::Click, form, cmdSaveChanges_Click);
  on(form.txtDays, &TextBox::Change, form, txtDays_Change);
  on(form.vDaysBefore, &ScrollBar::Change, form, vDaysBefore_Change);
  on(form.cmdOK, &CommandButton::Click, form, cmdOK_Click);
  on(form.timFollowCalendar, &Timer::Tick, form, timFollowCalendar_Timer);
  if (form.cmbChartType) on(*form.cmbChartType, &ComboBox::Click, form, cmbChartType_Click);
  subConnectRowEvents(form);
}

void Form_Load() try {
  ReportForm& form = reportForm();
  const ReportFormVariant& variant = form.variant();
  if (!variant.loadLogText.isEmpty()) subLog(variant.loadLogText);
  if (variant.coloursBeforeDates) colourBackgrounds(form);
  subSetupDateControls();
  if (!variant.coloursBeforeDates) colourBackgrounds(form);
  if (variant.hasChartType) fillChartTypes(form);
  subFillDropDowns();
  subSetLangCaptions();
  switchOffWhatIsMissing(form);
  if (variant.textFormatAtLoad)
    form.exsThisWeek.Range(QStringLiteral("B2:D200")).setNumberFormat(QStringLiteral("Text"));
  form.cmbFilterCalendar.setListIndex(0);  // its click does the first fetch, before the form is shown
  subStartFollowing();
} catch (const platform::Failure& failure) {
  subHandleError(failure, QStringLiteral("Form_Load"));
}

}  // namespace hourbook

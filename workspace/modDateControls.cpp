#include "platform/basic/clock.h"
#include "platform/basic/convert.h"
#include "platform/locale/locale.h"
#include "settings/cPersonalSettings.h"
#include "settings/SettingsValues.h"
#include "shell/genTools.h"
#include "shell/modErrorReport.h"
#include "shell/Present.h"
#include "shell/Tolerate.h"
#include "workspace/modGetData.h"
#include "workspace/modReportForm.h"
#include "workspace/ReportForm.h"
#include "workspace/WorkspaceValues.h"

namespace hourbook {

using platform::basic::CInt;
using platform::basic::Date;
using platform::basic::Value;
using platform::forms::DTPicker;

namespace {

const QString pickerProgId = QStringLiteral("MSComCtl2.DTPicker");

void placePicker(DTPicker& picker, int left) {
  picker.setVisible(true);
  picker.setValue(platform::basic::Today());
  picker.Height = 300;
  picker.Top = 240;
  picker.Left = left;
  picker.FontName = QStringLiteral("Tahoma");
  picker.FontSize = 8;
}

void addDatePickers(ReportForm& form) {
  subLog(QStringLiteral("Attempting to add the MS Date Picker control to the form"));
  const auto failed = tolerate([&] {
    form.dtpStartDate = form.addPicker(pickerProgId, QStringLiteral("dtpStartDate"));
    form.dtpEndDate = form.addPicker(pickerProgId, QStringLiteral("dtpEndDate"));
  });
  workspaceValues().gHasDatePickers = !failed;
  if (failed) {
    form.removePicker(form.dtpStartDate);
    form.removePicker(form.dtpEndDate);
    return;
  }
  subLog(QStringLiteral("Setting properties for dtpStartDate"));
  form.fraPeriod.setVisible(false);
  placePicker(*form.dtpStartDate, 120);
  placePicker(*form.dtpEndDate, 1900);
  form.Refresh();
}

void fillDateLists(ReportForm& form) {
  for (int month = 1; month <= 12; ++month)
    form.cmbMonth.AddItem(platform::locale::current().monthName(month, false));
  for (int day = 1; day <= 31; ++day) form.cmbDay.AddItem(QString::number(day));
  const int year = platform::basic::Today().year();
  for (int offered = year - 1; offered <= year + 4; ++offered) form.cmbYear.AddItem(QString::number(offered));
}

QString daysSinceLastReport() {
  const Date last = present(settingsValues().gPersonalSettings).DateLastReport;
  if (last.year() < 1900) return QStringLiteral("7");
  return QString::number(last.date().daysTo(platform::basic::Today().date()));
}

}  // namespace

void subSetupDateControls() try {
  ReportForm& form = reportForm();
  addDatePickers(form);
  fillDateLists(form);
  subSetDate(platform::basic::Today(), Date());
  form.txtDays.setText(daysSinceLastReport());
} catch (const platform::Failure& failure) {
  subHandleError(failure, QStringLiteral("subSetupDateControls"));
}

void subSetDate(const Date& first, const Date& second) {
  subLog(QStringLiteral("Attempting to set the current date to ") + platform::basic::CStr(Value(first)));
  ReportForm& form = reportForm();
  const bool hasSecond = second.year() > 1900;
  if (workspaceValues().gHasDatePickers) {
    form.dtpStartDate->setValue(first);
    if (hasSecond) form.dtpEndDate->setValue(second);
    return;
  }
  form.cmbYear.setText(QString::number(first.year()));
  form.cmbMonth.setListIndex(first.month() - 1);
  form.cmbDay.setListIndex(first.day() - 1);
  if (hasSecond) form.txtDays.setText(platform::basic::CStr(Value(second.serial() - first.serial() + 1)));
}

void subWeekChanged() try {
  if (workspaceValues().gIgnoreWeekChange) return;
  const Date shown = fncGetStartDate(fncGetEndDate());
  if (shown.year() <= 1900) return;
  const int week = CInt(Value(reportForm().cmbWeek.Text()));
  const Date start = MondayWeek1(shown.year()).addDays((week - 1) * 7);
  subSetDate(start, start.addDays(6));
  if (workspaceValues().gGridView) workspaceValues().gGridView->dteGridStartDate = start;
  subGetData();
} catch (const platform::Failure& failure) {
  subHandleError(failure, QStringLiteral("subWeekChanged"));
}

void txtDays_Change() try {
  ReportForm& form = reportForm();
  // Without a text the period is a week, so a text that is being typed anew is no failure.
  if (form.txtDays.Text().isEmpty()) return;
  const double days = platform::basic::CDbl(Value(form.txtDays.Text()));
  if (days > 1 && days < 60) form.vDaysBefore.setValue(CInt(Value(-days)));
} catch (const platform::Failure& failure) {
  subHandleError(failure, QStringLiteral("txtDays_Change"));
}

void vDaysBefore_Change() {
  ReportForm& form = reportForm();
  form.txtDays.setText(QString::number(-form.vDaysBefore.Value()));
}

void subGridCheckChanged() try {
  WorkspaceValues& values = workspaceValues();
  ReportForm& form = reportForm();
  if (!values.gGridView && values.newGridView) values.gGridView = values.newGridView();
  if (!values.gGridView) {
    if (form.chkGrid.Value() == 1)
      throw platform::Failure(platform::failure::cantCreateObject,
                              QStringLiteral("The week grid is not available in this version"));
    return;
  }
  if (form.chkGrid.Value() == 1) {
    values.gGridMode = true;
    values.gGridView->subAddGrid(form);
  } else {
    values.gGridMode = false;
    values.gGridView->subDisplayNonGridItems(true, form);
  }
} catch (const platform::Failure& failure) {
  subHandleError(failure, QStringLiteral("subGridCheckChanged"));
}

}  // namespace hourbook

#include "workspace/modReportFlow.h"

#include "platform/basic/text.h"
#include "platform/dialogs/dialogs.h"
#include "reporting/cReportRows.h"
#include "settings/cPersonalSettings.h"
#include "settings/SettingsValues.h"
#include "shell/modErrorReport.h"
#include "shell/Present.h"
#include "shell/ShellValues.h"
#include "workspace/modFollowCalendar.h"
#include "workspace/modGetData.h"
#include "workspace/ReportForm.h"
#include "workspace/WorkspaceValues.h"

namespace hourbook {

namespace dialogs = platform::dialogs;

namespace {

class FormAsHost : public ReportHost {
 public:
  /// Without a grid nobody could tick the box, so the stored wish stands.
  bool GridTicked() override {
    const WorkspaceValues& values = workspaceValues();
    if (!values.gGridView && !values.newGridView)
      return present(settingsValues().gPersonalSettings).StartGrid;
    return reportForm().chkGrid.Value() == 1;
  }
};

/// Reporting works on all marked rows of the period, never on another choice of rows.
void showMarkedRows(ReportForm& form) {
  if (form.cmbFilterCalendar.ListIndex() == 0) return;
  form.cmbFilterCalendar.setListIndex(0);  // fetches by its click, when it can be seen
  if (!form.cmbFilterCalendar.Visible()) subGetData();
}

bool userIsSure() {
  const QString question = phrases().LNGHBREPORTSURE1 + platform::basic::vbCrLf + phrases().LNGUNINSTALLDESC2;
  return dialogs::Dialogs::current().MsgBox(question, dialogs::vbYesNo + dialogs::vbQuestion, gTitle) ==
         dialogs::vbYes;
}

void report(ReportForm& form) {
  cReportRows rows;
  rows.ReportsRange = form.exsThisWeek.Range(QStringLiteral("a2:g%1").arg(workspaceValues().gLastRow));
  rows.ReadReportsFromRange();
  if (rows.Reports.Count() < 1) return;
  FormAsHost host;
  workspaceValues().gFetching = true;
  rows.Report(present(settingsValues().gPersonalSettings).ReportChoice, host);
  workspaceValues().gFetching = false;
}

}  // namespace

void cmdOK_Click() try {
  ReportForm& form = reportForm();
  form.exsThisWeek.Range(QStringLiteral("a1")).Select();
  showMarkedRows(form);
  subFetchWhatOthersChanged();  // what is asked about and reported is what stands in the calendar
  if (workspaceValues().gLastRow > 1 && userIsSure()) report(form);
} catch (const platform::Failure& failure) {
  subHandleError(failure, QStringLiteral("cmdOK_Click"));
}

}  // namespace hourbook

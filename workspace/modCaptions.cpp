#include "platform/basic/text.h"
#include "settings/cPersonalSettings.h"
#include "settings/SettingsValues.h"
#include "shell/modErrorReport.h"
#include "shell/Present.h"
#include "shell/ShellValues.h"
#include "workspace/modReportForm.h"
#include "workspace/ReportForm.h"
#include "workspace/WorkspaceValues.h"

namespace hourbook {

using platform::basic::Value;

namespace {

QStringList metaNames() {
  QStringList names;
  for (const auto& list : present(settingsValues().gPersonalSettings).MetaDataLists)
    names.append(list->MetaName());
  return names;
}

void captionPeriod(ReportForm& form) {
  form.lblYear.setCaption(phrases().LNGYEAR);
  form.lblYear.setToolTipText(phrases().LNGYEARDEF);
  form.lblMonth.setCaption(phrases().LNGMONTH);
  form.lblDay.setCaption(phrases().LNGDAY);
  form.lblDaysBefore.setCaption(phrases().LNGDAYSBEFORE);
  form.lblStart.setCaption(phrases().LNGFROM);
  form.lblEnd.setCaption(phrases().LNGTO);
  form.lblWeek.setCaption(phrases().LNGWEEK);
}

void captionFilter(ReportForm& form) {
  form.lblFilterCalendar.setCaption(phrases().LNGSHOW);
  form.cmbFilterCalendar.Clear();
  for (const QString& entry : platform::basic::Split(phrases().LNGFILTERS, QStringLiteral(",")))
    form.cmbFilterCalendar.AddItem(entry);
}

void captionMetaColumn(ReportForm& form, const QStringList& names, int list, const QString& column,
                       platform::forms::ComboBox& dropDown) {
  if (list <= names.size()) {
    form.exsThisWeek.Range(column + u'1').setValue(Value(names[list - 1]));
    return;
  }
  form.exsThisWeek.Range(column + u':' + column).setEntireColumnHidden(true);
  dropDown.setVisible(false);
}

void captionList(ReportForm& form) {
  platform::owc::Spreadsheet& sheet = form.exsThisWeek;
  sheet.setTitleBarCaption(gTitle);
  sheet.ActiveSheet.Protection.Enabled = false;
  sheet.Range(QStringLiteral("A1")).setValue(Value(phrases().LNGSUBJECT));
  const QStringList names = metaNames();
  if (!names.isEmpty()) sheet.Range(QStringLiteral("B1")).setValue(Value(names.first()));
  captionMetaColumn(form, names, 2, QStringLiteral("c"), form.cmbMeta2);
  captionMetaColumn(form, names, 3, QStringLiteral("d"), form.cmbMeta3);
  sheet.Range(QStringLiteral("e1")).setValue(Value(phrases().LNGWEEKDAY));
  sheet.Range(QStringLiteral("f1")).setValue(Value(phrases().LNGHOURS));
  sheet.Range(QStringLiteral("g1")).setValue(Value(phrases().LNGPOSTED));
  form.lblTotalHours.setCaption(phrases().LNGHOURS);
  form.excThisWeek.Extender.setAccessibleName(phrases().LNGHOURS);
}

void captionTabs(ReportForm& form) {
  form.tbsViews.Clear();
  form.tbsViews.Add(phrases().LNGBY + u' ' + phrases().LNGWEEKDAY.toLower());
  for (const QString& name : metaNames()) form.tbsViews.Add(phrases().LNGBY + u' ' + name);
}

/// What a screen reader says of the controls that no label stands beside.
void nameTheUnlabelled(ReportForm& form) {
  form.vDaysBefore.setAccessibleName(form.lblDaysBefore.Caption());
  form.tbsViews.setAccessibleName(phrases().LNGSTATISTICS);
  if (form.cmbChartType) form.cmbChartType->setAccessibleName(phrases().LNGSTATISTICS);
  const QStringList names = metaNames();
  form.cmbMeta1.setAccessibleName(names.value(0));
  form.cmbMeta2.setAccessibleName(names.value(1));
  form.cmbMeta3.setAccessibleName(names.value(2));
}

void captionButtons(ReportForm& form) {
  form.cmdOK.setCaption(phrases().LNGOK);
  form.cmdCancel.setCaption(phrases().LNGCANCEL);
  form.cmdGetValues.setCaption(phrases().LNGGETVALUES);
  form.cmdAddNew.setCaption(phrases().LNGADD);
  form.cmdSaveChanges.setCaption(phrases().LNGSAVE);
  form.chkGrid.setCaption(phrases().LNGGRID);
  form.cmdPrint.setCaption(phrases().LNGPRINT);
}

/// Where a caption alone does not tell enough, or a key does the same.
void explainControls(ReportForm& form) {
  form.cmdGetValues.setToolTipText(phrases().LNGGETVALUES + QStringLiteral(" (F5)"));
  form.cmdOK.setToolTipText(phrases().LNGREPORTTT);
  form.cmdCancel.setToolTipText(phrases().LNGEXIT);
  form.cmbFilterCalendar.setToolTipText(phrases().LNGFILTEROPTIONS);
  form.tbsViews.setToolTipText(phrases().LNGSTATSTT);
}

}  // namespace

void subSetLangCaptions() try {
  subLog(QStringLiteral("Setting captions for report form"));
  ReportForm& form = reportForm();
  form.setCaption(gTitle + u' ' + phrases().LNGREPORT);
  captionPeriod(form);
  captionFilter(form);
  captionList(form);
  captionTabs(form);
  captionButtons(form);
  explainControls(form);
  nameTheUnlabelled(form);
} catch (const platform::Failure& failure) {
  subHandleError(failure, QStringLiteral("subSetLangCaptions"));
}

}  // namespace hourbook

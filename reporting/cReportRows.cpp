#include "reporting/cReportRows.h"

#include "database/modUpgrade.h"
#include "outlook/modItemProperties.h"
#include "outlook/OutlookValues.h"
#include "platform/basic/clock.h"
#include "platform/basic/convert.h"
#include "platform/dialogs/dialogs.h"
#include "platform/process/process.h"
#include "reporting/ReportingValues.h"
#include "settings/cGlobalSettings.h"
#include "settings/cPersonalSettings.h"
#include "settings/SettingsValues.h"
#include "shell/modErrorReport.h"
#include "shell/ShellValues.h"
#include "shell/Tolerate.h"

namespace hourbook {

using platform::Failure;
using platform::ado::Recordset;
using platform::basic::CStr;
using platform::basic::Value;
namespace ado = platform::ado;
namespace dialogs = platform::dialogs;

namespace {

constexpr int longestText = 255;  // of a subject or name, in the recordset and in the tables
constexpr int columnSubject = 1, columnFirstMeta = 2, columnHours = 6, columnStatus = 7;
constexpr qint32 errNoSuchTarget = 445;  // "Object doesn't support this action"

/// The beginning of a text that is longer than its column, in whole characters.
QString shortened(const QString& text) {
  if (text.size() <= longestText) return text;
  return text.left(text[longestText - 1].isHighSurrogate() ? longestText - 1 : longestText);
}

void appendReportColumns(Recordset& rs) {
  ado::Fields fields = rs.Fields();
  fields.Append(QStringLiteral("intRowCounter"), ado::adBigInt);
  fields.Append(QStringLiteral("dteStartDate"), ado::adDBDate);
  fields.Append(QStringLiteral("strSubject"), ado::adVarWChar, longestText);
  fields.Append(QStringLiteral("intHours"), ado::adSingle);
  fields.Append(QStringLiteral("strMeta1"), ado::adVarWChar, longestText);
  fields.Append(QStringLiteral("strMeta2"), ado::adVarWChar, longestText);
  fields.Append(QStringLiteral("strMeta3"), ado::adVarWChar, longestText);
  fields.Append(QStringLiteral("curPersonalRate"), ado::adCurrency);
  fields.Append(QStringLiteral("intResult"), ado::adBigInt);
  fields.Append(QStringLiteral("strPerson"), ado::adVarWChar, longestText);
  fields.Append(QStringLiteral("strBody"), ado::adBSTR);
}

void addReportRow(Recordset& rs, const cRowInfo& row) {
  rs.AddNew();
  rs[QStringLiteral("intRowCounter")].setValue(qint64(row.RowNumber));
  rs[QStringLiteral("dteStartDate")].setValue(row.StartTime);
  // other calendars know longer subjects than the tables hold; the end of one is no reason to report nothing
  rs[QStringLiteral("strSubject")].setValue(shortened(row.Subject));
  rs[QStringLiteral("intHours")].setValue(row.Hours);
  rs[QStringLiteral("strPerson")].setValue(outlookValues().gCurrentUser);
  rs[QStringLiteral("strBody")].setValue(row.NotesField);
  const auto& positions = row.Marking->colMarkings;
  for (int n = 1; n <= 3 && n <= positions.Count(); ++n)
    rs[QStringLiteral("strMeta%1").arg(n)].setValue(positions.Item(n)->MetaName);
  rs[QStringLiteral("curPersonalRate")].setValue(settingsValues().gPersonalSettings->PersonalRate);
  rs.Update();
}

/// Would the stamps reach the calendar? Rows that are stored and cannot be stamped would be reported again.
bool canStamp() {
  const auto& folder = outlookValues().gCalendarFolder;
  if (!folder || !folder->ReadOnly()) return true;
  dialogs::Dialogs::current().MsgBox(
      QStringLiteral("The calendar \"%1\" is read-only: reported appointments could not be stamped. "
                     "Nothing was reported.")
          .arg(folder->Name()),
      dialogs::vbCritical, gTitle);
  return false;
}

/// The failure to tell, which comes first; with it the one that followed, since no other report will come.
Failure withLater(const Failure& failure, const std::optional<Failure>& later) {
  if (!later) return failure;
  return {failure.number(),
          failure.description() + platform::basic::vbCrLf +
              QStringLiteral("The results could not all be taken into the list either: ") +
              later->description(),
          failure.source()};
}

void sendBy(const std::function<void(Recordset&)>& target, Recordset& rs, const QString& name) {
  if (!target)
    throw Failure(errNoSuchTarget,
                  QStringLiteral("This version cannot report to %1 yet. Nothing was reported.").arg(name));
  target(rs);
}

}  // namespace

void cReportRows::ReadReportsFromRange() {
  try {
    subLog(QStringLiteral("Reading values to report from range"));
    for (int r = 1; r <= ReportsRange.value().RowsCount(); ++r)
      if (CStr(ReportsRange->Cells(r, columnStatus).Value()).contains(phrases().LNGNOTPOSTED)) subReadRow(r);
  } catch (const Failure& failure) {
    subHandleError(failure, QStringLiteral("ReadReportsFromRange"));
  }
}

void cReportRows::subReadRow(int r) {
  auto row = std::make_shared<cRowInfo>();
  row->RowNumber = platform::basic::CInt(qint32(r));
  row->Subject = CStr(ReportsRange->Cells(r, columnSubject).Value());
  auto& positions = row->Marking->colMarkings;
  for (int n = 1; n <= 3 && n <= positions.Count(); ++n)
    positions.Item(n)->MetaName = CStr(ReportsRange->Cells(r, columnFirstMeta + n - 1).Value());
  // by position: the fetch files the appointments under the row of the sheet, where the first one is row 2
  const auto& appointment = outlookValues().gRowItems.Item(r);
  row->NotesField = fncReadBodyThroughVcal(*appointment);
  row->StartTime = appointment->Start();
  row->Hours = ReportsRange->Cells(r, columnHours).Value();
  Reports.Add(row, QString::number(r));
}

QString cReportRows::ToTabSep() const {
  QString text;
  for (const auto& row : Reports) text += row->Subject + platform::basic::vbCrLf;
  return text;
}

std::shared_ptr<Recordset> cReportRows::ToRecordset() const {
  try {
    subLog(QStringLiteral("Creating a recordset from current appointments"));
    // kept: read and not used; the department is asked for where the person is found
    settingsValues().gGlobalSettings->OtherSettings->GetValue(QStringLiteral("ADDepartment"), 2);
    auto rs = std::make_shared<Recordset>();
    appendReportColumns(*rs);
    rs->Open();
    for (const auto& row : Reports)
      if (row->Marking->IsComplete()) addReportRow(*rs, *row);
    return rs;
  } catch (const Failure& failure) {
    subHandleError(failure, QStringLiteral("ToRecordset"));
  }
}

void cReportRows::Report(qint32 intTarget, ReportHost& host) {
  try {
    subLog(QStringLiteral("Reporting values to ") + QString::number(intTarget));
    if (!canStamp()) return;
    auto rs = ToRecordset();
    const auto pending = fncHandToTarget(intTarget, rs);
    int posted = 0;
    const auto notTaken = tolerate([&] { posted = fncTakeResults(*rs); });
    if (pending) subHandleError(withLater(pending->failure, notTaken), pending->procedure);
    if (notTaken) throw Failure(*notTaken);
    subAfterReport(intTarget);
    if (posted == rs->RecordCount()) subAskForAnotherPeriod(host);
  } catch (const Failure& failure) {
    subHandleError(failure, QStringLiteral("Report"));
  }
}

std::optional<PendingError> cReportRows::fncHandToTarget(qint32 intTarget, std::shared_ptr<Recordset>& rs) {
  std::optional<PendingError> pending;
  switch (intTarget) {
    case 1:
      sendBy(reportingValues().subSendXMLReport, *rs, QStringLiteral("an ASP page"));
      break;
    case 2:
    case 3:
      rs = fncReportToAccess(rs, true, &pending);
      break;
    case 4:
      sendBy(reportingValues().subSendToWF, *rs, QStringLiteral("a billing system"));
      break;
    default:
      break;  // no row gets a result
  }
  return pending;
}

int cReportRows::fncTakeResults(Recordset& rs) {
  int posted = 0;
  rs.MoveFirst();
  while (!rs.isEOF()) {
    const QString key = CStr(rs[QStringLiteral("intRowCounter")].Value());
    platform::owc::Range status = ReportsRange->Cells(key.toInt(), columnStatus);
    const Value result = rs[QStringLiteral("intResult")].Value();
    switch (std::holds_alternative<qint64>(result) ? std::get<qint64>(result) : 0) {
      case resultAccepted:
        status.setValue(phrases().LNGOK);
        Reports.Item(key)->SavePostedInfo();
        ++posted;
        break;
      case resultMissingValue:
        status.setValue(phrases().LNGMISSINGVALUE);
        break;
      case resultNoAnswer:
        status.setValue(QStringLiteral("Error!"));
        break;
      case resultNoPerson:
        status.setValue(QStringLiteral("Failed add person!"));
        break;
      default:
        break;
    }
    rs.MoveNext();
  }
  return posted;
}

void cReportRows::subAfterReport(qint32 intTarget) {
  if (intTarget == 2) {
    subCompactDatabase(true);
    if (reportingValues().subUpdateCommonCube) reportingValues().subUpdateCommonCube();
  }
  if (intTarget == 3 && settingsValues().gPersonalSettings->CreateLocalCube &&
      reportingValues().subRunCubeProgram)
    reportingValues().subRunCubeProgram();
}

void cReportRows::subAskForAnotherPeriod(ReportHost& host) {
  const int answer = dialogs::Dialogs::current().MsgBox(
      phrases().LNGREPORTINGDONE + platform::basic::vbCrLf + phrases().LNGANOTHERWEEK,
      dialogs::vbYesNo + dialogs::vbQuestion, gTitle);
  if (answer != dialogs::vbNo) return;
  cPersonalSettings& personal = *settingsValues().gPersonalSettings;
  if (host.GridTicked() != personal.StartGrid) {
    personal.StartGrid = host.GridTicked();
    personal.DateLastReport = platform::basic::Now();
    personal.SaveSettings();
  }
  platform::process::Process::current().end();
}

}  // namespace hourbook

#include "reporting/cReportRows.h"

#include "database/modUpgrade.h"
#include "outlook/modItemProperties.h"
#include "outlook/OutlookValues.h"
#include "platform/basic/clock.h"
#include "platform/basic/convert.h"
#include "platform/dialogs/dialogs.h"
#include "platform/process/process.h"
#include "reporting/modReportRecordset.h"
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
using platform::owc::Range;
namespace dialogs = platform::dialogs;

namespace {

constexpr int columnSubject = 1, columnFirstMeta = 2, columnHours = 6, columnStatus = 7;
const QString notStamped = QStringLiteral("Not stamped");  // stored, and that is all
constexpr qint32 errNoSuchTarget = 445;                    // "Object doesn't support this action"

/// The beginning of a text that is longer than its column, in whole characters.
QString shortened(const QString& text) {
  if (text.size() <= longestReportText) return text;
  return text.left(text[longestReportText - 1].isHighSurrogate() ? longestReportText - 1 : longestReportText);
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

void sendBy(const std::function<void(Recordset&)>& target, Recordset& rs, const QString& name,
            const std::function<void(qint16)>& note) {
  if (!target)
    throw Failure(errNoSuchTarget,
                  QStringLiteral("This version cannot report to %1 yet. Nothing was reported.").arg(name));
  note(0);
  target(rs);
}

/// A failure to stamp what is stored, with what becomes of it.
Failure stampFailure(const Failure& failure, qsizetype unsaved) {
  QString text = failure.description();
  if (unsaved > 1)
    text += platform::basic::vbCrLf + QStringLiteral("%1 appointments could not be stamped.").arg(unsaved);
  if (!reportingValues().journalFolder.isEmpty())
    text += platform::basic::vbCrLf +
            QStringLiteral("What is reported and not stamped yet will be stamped at the next start.");
  return {failure.number(), text, failure.source()};
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
    auto rs = fncReportRecordset();
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
    cReportMemory memory;
    if (!fncBegin(intTarget, memory)) return;
    subReport(intTarget, host, memory);
  } catch (const Failure& failure) {
    subHandleError(failure, QStringLiteral("Report"));
  }
}

/// False when nothing is left to be reported, or another program is at it.
bool cReportRows::fncBegin(qint32 intTarget, cReportMemory& memory) {
  if (!memory.Begin()) {
    dialogs::Dialogs::current().MsgBox(
        QStringLiteral("Another Hourbook is reporting at the moment. Nothing was reported. "
                       "Please try again when it has finished."),
        dialogs::vbExclamation, gTitle);
    return false;
  }
  if (!memory.Earlier().news.isEmpty())
    dialogs::Dialogs::current().MsgBox(
        memory.Earlier().news.join(platform::basic::vbCrLf + platform::basic::vbCrLf), dialogs::vbExclamation,
        gTitle);
  if (!memory.Earlier().blocked.isEmpty()) {
    dialogs::Dialogs::current().MsgBox(
        QStringLiteral(
            "It cannot be found out what an interrupted report has stored. Nothing was reported. Please try "
            "again later.") +
            platform::basic::vbCrLf + memory.Earlier().blocked,
        dialogs::vbExclamation, gTitle);
    return false;
  }
  const int found = Reports.Count();
  subLeaveOutStamped();
  subLeaveOutEarlier(memory);
  if (memory.Earlier().laterVersion) subLeaveOutEqual(intTarget);
  return Reports.Count() > 0 || found == 0;
}

void cReportRows::subReport(qint32 intTarget, ReportHost& host, cReportMemory& memory) {
  auto rs = ToRecordset();
  const auto pending = fncHandToTarget(intTarget, rs, memory);
  int posted = 0;
  const auto notTaken = tolerate([&] { posted = fncTakeResults(*rs); });
  // with a failure the journal stays: the next start asks the target what it has, and stamps the rest
  if (pending) subHandleError(withLater(pending->failure, notTaken), pending->procedure);
  if (notTaken) throw Failure(*notTaken);
  memory.Finish();
  subAfterReport(intTarget);
  if (posted == rs->RecordCount()) subAskForAnotherPeriod(host);
}

std::optional<PendingError> cReportRows::fncHandToTarget(qint32 intTarget, std::shared_ptr<Recordset>& rs,
                                                         cReportMemory& memory) {
  std::optional<PendingError> pending;
  const auto note = [&](qint16 intPersonID) { subNote(*rs, intTarget, intPersonID, memory); };
  switch (intTarget) {
    case 1:
      sendBy(reportingValues().subSendXMLReport, *rs, QStringLiteral("an ASP page"), note);
      break;
    case 2:
    case 3:
      rs = fncReportToAccess(rs, true, &pending, note);
      break;
    case 4:
      sendBy(reportingValues().subSendToWF, *rs, QStringLiteral("a billing system"), note);
      break;
    default:
      break;  // no row gets a result
  }
  return pending;
}

/// Writes down what is about to be stored. Rows that the target refuses are none of it.
void cReportRows::subNote(Recordset& rs, qint32 intTarget, qint16 intPersonID, cReportMemory& memory) {
  if (reportingValues().journalFolder.isEmpty() || rs.RecordCount() == 0) return;
  const auto target = fncAskableTarget(intTarget, intPersonID);
  if (!target) return;
  ReportRun run;
  run.target = intTarget;
  run.place = target->Place();
  run.person = outlookValues().gCurrentUser;
  run.begun = platform::basic::Now().toLocal().toString(QStringLiteral("yyyy-MM-dd HH:mm"));
  run.mark = target->Mark();
  for (rs.MoveFirst(); !rs.isEOF(); rs.MoveNext()) {
    const auto& row = Reports.Item(CStr(rs[QStringLiteral("intRowCounter")].Value()));
    ReportedRow noted = fncReportedRow(*outlookValues().gRowItems.Item(int(row->RowNumber)));
    noted.line = fncReportLine(rs);
    if (target->TakeKeys(noted.line)) run.rows.append(noted);
  }
  rs.MoveFirst();
  memory.Note(run);
}

Range cReportRows::fncStatus(const QString& key) const {
  return ReportsRange->Cells(key.toInt(), columnStatus);
}

/// The stamps of one file are written in one step, whatever comes between; what could not be written is told
/// behind the failure that the walk may have ended with.
int cReportRows::fncTakeResults(Recordset& rs) {
  const auto folder = outlookValues().gCalendarFolder;
  QHash<QString, QString> stamped;  // row by its appointment
  int posted = 0;
  if (folder) folder->HoldSaves();
  const auto broken = tolerate([&] { posted = fncWalkResults(rs, stamped); });
  QList<platform::outlook::UnsavedItem> unsaved;
  const auto unwritten = tolerate([&] {
    if (folder) unsaved = folder->FlushSaves();
  });
  if (unwritten)  // of none it is known that it was written
    for (const QString& key : std::as_const(stamped)) fncStatus(key).setValue(notStamped);
  for (const auto& item : unsaved) {
    const QString key = stamped.value(item.folder + u'\n' + item.entryId);
    if (!key.isEmpty()) fncStatus(key).setValue(notStamped);
  }
  if (unsaved.isEmpty() && !unwritten && !broken) return posted;
  const auto& first = broken ? broken : unwritten;
  if (stamped.isEmpty()) throw Failure(*first);
  throw stampFailure(first ? *first : unsaved.first().failure, unsaved.size());
}

int cReportRows::fncWalkResults(Recordset& rs, QHash<QString, QString>& stamped) {
  int posted = 0;
  rs.MoveFirst();
  while (!rs.isEOF()) {
    const QString key = CStr(rs[QStringLiteral("intRowCounter")].Value());
    const Value result = rs[QStringLiteral("intResult")].Value();
    switch (std::holds_alternative<qint64>(result) ? std::get<qint64>(result) : 0) {
      case resultAccepted:
        subTakeStamp(key, stamped);
        ++posted;
        break;
      case resultMissingValue:
        fncStatus(key).setValue(phrases().LNGMISSINGVALUE);
        break;
      case resultNoAnswer:
        fncStatus(key).setValue(QStringLiteral("Error!"));
        break;
      case resultNoPerson:
        fncStatus(key).setValue(QStringLiteral("Failed add person!"));
        break;
      default:
        break;
    }
    rs.MoveNext();
  }
  return posted;
}

void cReportRows::subTakeStamp(const QString& key, QHash<QString, QString>& stamped) {
  const cRowInfo& row = *Reports.Item(key);
  const auto& appointment = *outlookValues().gRowItems.Item(int(row.RowNumber));
  fncStatus(key).setValue(phrases().LNGOK);
  stamped.insert(appointment.FolderId() + u'\n' + appointment.EntryID(), key);
  const auto failure = tolerate([&] { row.SavePostedInfo(); });
  if (!failure) return;
  fncStatus(key).setValue(notStamped);
  throw Failure(*failure);
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

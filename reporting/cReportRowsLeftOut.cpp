// Which rows of the list are left out of a report, as they have been reported already or might have been.
#include "outlook/OutlookValues.h"
#include "platform/basic/clock.h"
#include "platform/basic/convert.h"
#include "platform/basic/text.h"
#include "platform/dialogs/dialogs.h"
#include "reporting/cReportRows.h"
#include "reporting/modReportRecordset.h"
#include "reporting/ReportingValues.h"
#include "shell/modErrorReport.h"
#include "shell/ShellValues.h"

namespace hourbook {

using namespace Qt::StringLiterals;
using platform::basic::Date;
using platform::basic::Format;
using platform::basic::Value;
using platform::basic::vbCrLf;
using platform::outlook::AppointmentItem;
namespace dialogs = platform::dialogs;

namespace {

const AppointmentItem& appointmentOf(const cRowInfo& row) {
  return *outlookValues().gRowItems.Item(int(row.RowNumber));
}

/// Stamps that stand in the calendar now, by appointment, of the days that the rows are of.
QHash<QString, QString> stampsOf(const platform::basic::Collection<std::shared_ptr<cRowInfo>>& rows) {
  Date first = rows.Item(1)->StartTime, last = first;
  for (const auto& row : rows) {
    first = qMin(first, row->StartTime);
    last = qMax(last, row->StartTime);
  }
  const auto filterDate = [](const Date& day) { return Format(Value(day), u"Short Date"_s); };
  auto items = outlookValues().gCalendarFolder->Items();
  items.Sort(u"[Start]"_s);
  items.setIncludeRecurrences(true);
  QHash<QString, QString> stamps;
  auto item = items.Find(
      u"[Start] >= \"%1 00:00\" and [Start] <= \"%2 23:59\""_s.arg(filterDate(first), filterDate(last)));
  for (; item; item = items.FindNext())
    if (!item->BillingInformation().isEmpty()) stamps.insert(item->EntryID(), item->BillingInformation());
  return stamps;
}

bool isYes(const QString& question) {
  return dialogs::Dialogs::current().MsgBox(question, dialogs::vbYesNo + dialogs::vbQuestion, gTitle) ==
         dialogs::vbYes;
}

QString namesOf(const QList<std::pair<QString, UnsettledRow>>& rows) {
  QStringList names;
  for (const auto& row : rows) names.append(fncShown(row.second.row));
  return fncNamed(names);
}

}  // namespace

void cReportRows::subLeaveOut(const QStringList& keys) {
  platform::basic::Collection<std::shared_ptr<cRowInfo>> left;
  for (const auto& row : Reports) {
    const QString key = QString::number(row->RowNumber);
    if (!keys.contains(key)) left.Add(row, key);
  }
  Reports = left;
}

/// The list may be older than a stamp: of another program of the user, or made a moment ago from the journal.
void cReportRows::subLeaveOutStamped() {
  if (Reports.Count() < 1 || !outlookValues().gCalendarFolder) return;
  const auto stamps = stampsOf(Reports);
  QStringList keys;
  for (const auto& row : Reports) {
    const AppointmentItem& appointment = appointmentOf(*row);
    if (appointment.FolderId() != outlookValues().gCalendarFolder->Id()) continue;
    const auto stamp = stamps.constFind(appointment.EntryID());
    if (stamp == stamps.cend()) continue;
    keys.append(QString::number(row->RowNumber));
    fncStatus(keys.last()).setValue(Format(Value(*stamp), u"YYYY-MM-DD"_s));
  }
  if (!keys.isEmpty()) subLog(u"%1 rows are reported already"_s.arg(keys.size()));
  subLeaveOut(keys);
}

/// What is stored is not stored again; where nobody knows, the user is asked.
void cReportRows::subLeaveOutEarlier(cReportMemory& memory) {
  QList<std::pair<QString, UnsettledRow>> stored, unknown;
  for (const auto& row : Reports)
    for (const UnsettledRow& earlier : memory.Earlier().unsettled)
      if (fncIsAbout(earlier.row, appointmentOf(*row)))
        (earlier.row.stored ? stored : unknown).append({QString::number(row->RowNumber), earlier});
  QStringList keys;
  for (const auto& [key, earlier] : stored) keys.append(key);
  if (!stored.isEmpty())
    dialogs::Dialogs::current().MsgBox(
        u"These appointments are reported already and could only not be stamped. They are left out:"_s +
            vbCrLf + namesOf(stored) + vbCrLf + stored.first().second.reason,
        dialogs::vbExclamation, gTitle);
  if (!unknown.isEmpty() &&
      !isYes(u"These appointments may have been reported already, by a report that was interrupted:"_s +
             vbCrLf + namesOf(unknown) + vbCrLf + unknown.first().second.reason + vbCrLf +
             u"Do you want to report them now? They would be reported twice if they were."_s)) {
    for (const auto& [key, earlier] : unknown) keys.append(key);
    subMarkByUser(unknown, memory);
  }
  subLeaveOut(keys);
}

/// Rows of which an equal line stands at the target, whoever stored it: which of them belong to a journal
/// that only a later version of the program can read, nobody knows here.
void cReportRows::subLeaveOutEqual(qint32 intTarget) {
  const auto target = fncAskableTarget(intTarget);
  if (!target || Reports.Count() < 1) return;
  ReportRun run;
  run.mark = target->MarkOfAll(outlookValues().gCurrentUser);
  if (run.mark.isEmpty()) return;
  QStringList keys, equal, names;
  const auto rs = ToRecordset();
  if (rs->RecordCount() > 0) rs->MoveFirst();
  for (; !rs->isEOF(); rs->MoveNext()) {
    ReportedRow row;
    row.line = fncReportLine(*rs);
    if (!target->TakeKeys(row.line)) continue;
    run.rows.append(row);
    keys.append(platform::basic::CStr((*rs)[u"intRowCounter"_s].Value()));
  }
  const auto stored = target->Stored(run);
  for (qsizetype i = 0; i < stored.size(); ++i) {
    if (!stored[i]) continue;
    equal.append(keys[i]);
    names.append(fncShown(run.rows[i]));
  }
  if (equal.isEmpty() ||
      isYes(u"Equal time reports stand in the database already. They may be of these appointments, from a "
            "report of a later version of this program that was interrupted:"_s +
            vbCrLf + fncNamed(names) + vbCrLf +
            u"Do you want to report them now? They would be reported twice if they were."_s))
    return;
  subLeaveOut(equal);
}

void cReportRows::subMarkByUser(const QList<std::pair<QString, UnsettledRow>>& rows, cReportMemory& memory) {
  if (!isYes(u"Shall they be stamped as reported, so that they are not asked about again?"_s + vbCrLf +
             namesOf(rows)))
    return;
  for (const auto& [key, earlier] : rows) {
    Reports.Item(key)->SavePostedInfo();
    fncStatus(key).setValue(Format(Value(platform::basic::Now()), u"YYYY-MM-DD"_s));
    memory.Forget(earlier);
  }
}

}  // namespace hourbook

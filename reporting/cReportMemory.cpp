#include "reporting/cReportMemory.h"

#include "platform/outlook/items.h"
#include "reporting/ReportingValues.h"
#include "shell/modErrorReport.h"
#include "shell/Tolerate.h"

namespace hourbook {

using namespace Qt::StringLiterals;

namespace {

bool same(const ReportedRow& a, const ReportedRow& b) {
  return a.folder == b.folder && a.entryId == b.entryId;
}

}  // namespace

cReportMemory::cReportMemory()
    : journal_(reportingValues().journalFolder), blnKept_(!reportingValues().journalFolder.isEmpty()) {}

bool cReportMemory::Begin() {
  if (!blnKept_) return true;
  lock_ = journal_.Lock();
  if (!lock_) return false;
  earlier_ = fncFinishReports(journal_);
  return true;
}

void cReportMemory::Note(const ReportRun& run) {
  if (!blnKept_ || run.rows.isEmpty()) return;
  subLog(u"Noting %1 rows in the journal of reports"_s.arg(run.rows.size()));
  run_ = run;
  file_ = journal_.Add(run);
}

void cReportMemory::Finish() {
  // what stays by mistake is worked off at the next start, and says nothing new then
  if (IsNoted()) tolerate([&] { cReportJournal::Remove(file_); });
  file_.clear();
  for (const UnsettledRow& earlier : std::as_const(earlier_.unsettled))
    for (const ReportedRow& row : std::as_const(run_.rows))
      if (same(earlier.row, row)) tolerate([&] { Forget(earlier); });
}

void cReportMemory::Forget(const UnsettledRow& settled) {
  ReportRun run = cReportJournal::Read(settled.file);
  run.rows.removeIf([&](const ReportedRow& row) { return same(row, settled.row); });
  if (run.rows.isEmpty())
    cReportJournal::Remove(settled.file);
  else
    cReportJournal::Write(settled.file, run);
}

bool fncIsAbout(const ReportedRow& row, const platform::outlook::AppointmentItem& appointment) {
  return row.folder == appointment.FolderId() && row.entryId == appointment.EntryID();
}

}  // namespace hourbook

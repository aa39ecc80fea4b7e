#pragma once
#include "reporting/modFinishReports.h"

#include <memory>

namespace hourbook {

/// The journal's part in one report. While it lives, no other program of the user works on the journal.
class cReportMemory {
 public:
  cReportMemory();

  /// Works off what earlier reports have left behind. False, and nothing is done, while another program is
  /// reporting. Throws Failure when the journal cannot be kept.
  bool Begin();
  /// What is still left of them.
  const FinishedReports& Earlier() const { return earlier_; }
  /// The run that begins now; durable before it returns. Throws Failure.
  void Note(const ReportRun& run);
  bool IsNoted() const { return !file_.isEmpty(); }
  /// The run is stored and stamped. Of its appointments nothing is left in earlier runs either: the user was
  /// asked before they were reported.
  void Finish();
  /// The user has said what became of an appointment of an earlier run.
  void Forget(const UnsettledRow& settled);

 private:
  cReportJournal journal_;
  bool blnKept_;
  std::unique_ptr<platform::files::FileLock> lock_;
  FinishedReports earlier_;
  ReportRun run_;
  QString file_;
};

/// Is this row of an earlier run about the appointment?
bool fncIsAbout(const ReportedRow& row, const platform::outlook::AppointmentItem& appointment);

}  // namespace hourbook

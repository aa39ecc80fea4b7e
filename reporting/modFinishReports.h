#pragma once
#include "reporting/cReportJournal.h"

#include <memory>

namespace platform::outlook {
class AppointmentItem;
class MAPIFolder;
}  // namespace platform::outlook

namespace hourbook {

/// An appointment that an interrupted report has left behind and that could not be seen to.
struct UnsettledRow {
  QString file;  // of the journal
  ReportedRow row;
  QString reason;
};

/// What came of working off the journal.
struct FinishedReports {
  QList<UnsettledRow> unsettled;
  /// What the user has to know and was not told yet; empty for most.
  QStringList news;
  /// Why it is not known at present what interrupted reports have stored; not empty: nothing may be reported,
  /// since what is stored next could be taken for theirs.
  QString blocked;
  /// Runs are left that only a later version of the program can read: which rows they hold is not known.
  bool laterVersion = false;
};

/// Works off the journal: asks the target which rows of interrupted reports it has stored, stamps their
/// appointments where that was not done yet, and forgets the others, which were never reported. What cannot
/// be asked or stamped now stays in the journal. A run is forgotten when nothing of it is left. The caller
/// holds the journal's lock.
FinishedReports fncFinishReports(const cReportJournal& journal);

/// The same at the start of the program. Says nothing when all went well, nothing twice, and never fails.
void subFinishReportsAtStart();

/// Stamps an appointment as reported at that moment and saves it. Throws what that throws.
void subStamp(platform::outlook::AppointmentItem& appointment, const platform::basic::Date& reported);

/// The appointment as a run notes it.
ReportedRow fncReportedRow(const platform::outlook::AppointmentItem& appointment);

/// How the target of that number is asked; null where it cannot be. The person is only needed for a new run.
std::unique_ptr<AskableTarget> fncAskableTarget(qint32 intTarget, qint16 intPersonID = 0);

/// Names of appointments for a message, one a line; not all where there are many.
QString fncNamed(const QStringList& appointments);
/// A row's subject and day for a message.
QString fncShown(const ReportedRow& row);

}  // namespace hourbook

#pragma once
#include "platform/ado/recordset.h"
#include "platform/basic/collection.h"
#include "platform/owc/spreadsheet.h"
#include "reporting/cReportMemory.h"
#include "reporting/modReportToAccess.h"
#include "reporting/ReportHost.h"
#include "settings/cRowInfo.h"

#include <QHash>

#include <memory>
#include <optional>

namespace hourbook {

/// The rows of the list that are not yet posted, on their way to a target and back. Made new for each run.
class cReportRows {
 public:
  /// Rows to be reported, under the row number (from 1 within the range) as text.
  platform::basic::Collection<std::shared_ptr<cRowInfo>> Reports;
  /// Columns A to G of the list's rows; its first row is sheet row 2. Set before reading.
  std::optional<platform::owc::Range> ReportsRange;

  /// Fills `Reports` from the range and from the appointments behind its rows.
  void ReadReportsFromRange();
  /// The subjects, each followed by CR LF. kept: the name, though nothing is separated by tabs.
  QString ToTabSep() const;
  /// The completely marked rows as a recordset without a database; `intResult` is Null.
  std::shared_ptr<platform::ado::Recordset> ToRecordset() const;
  /// Hands the rows to the target (1 ASP page, 2 Access, 3 SQL Server, 4 billing system), writes the results
  /// into the list and stamps what was accepted. Before, what earlier reports have left half done is brought
  /// to its end; rows that are reported by then are left out. May end the program, when the user has no other
  /// period to report.
  void Report(qint32 intTarget, ReportHost& host);

 private:
  void subReadRow(int r);
  bool fncBegin(qint32 intTarget, cReportMemory& memory);
  void subReport(qint32 intTarget, ReportHost& host, cReportMemory& memory);
  std::optional<PendingError> fncHandToTarget(qint32 intTarget, std::shared_ptr<platform::ado::Recordset>& rs,
                                              cReportMemory& memory);
  void subNote(platform::ado::Recordset& rs, qint32 intTarget, qint16 intPersonID, cReportMemory& memory);
  int fncTakeResults(platform::ado::Recordset& rs);
  int fncWalkResults(platform::ado::Recordset& rs, QHash<QString, QString>& stamped);
  void subTakeStamp(const QString& key, QHash<QString, QString>& stamped);
  // rows that are not to be stored (again)
  void subLeaveOutStamped();
  void subLeaveOutEarlier(cReportMemory& memory);
  void subLeaveOutEqual(qint32 intTarget);
  void subLeaveOut(const QStringList& keys);
  void subMarkByUser(const QList<std::pair<QString, UnsettledRow>>& rows, cReportMemory& memory);
  platform::owc::Range fncStatus(const QString& key) const;
  void subAfterReport(qint32 intTarget);
  void subAskForAnotherPeriod(ReportHost& host);
};

}  // namespace hourbook

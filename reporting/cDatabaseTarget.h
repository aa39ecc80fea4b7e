#pragma once
#include "reporting/ReportRun.h"

namespace hourbook {

/// The database of the common settings, asked about the rows in `tblReports`, on every kind of engine alike:
/// a line of a run has a higher `intReportID` than any before the run, since the counter never goes back, and
/// the run's person. Uses the shared connection, and lets go one that it had to open itself.
class cDatabaseTarget : public AskableTarget {
 public:
  /// The person is only needed for `Mark`.
  explicit cDatabaseTarget(qint16 intPersonID = 0);
  ~cDatabaseTarget() override;
  cDatabaseTarget(const cDatabaseTarget&) = delete;
  cDatabaseTarget& operator=(const cDatabaseTarget&) = delete;

  QString Place() override;
  bool TakeKeys(ReportLine& line) override;
  QJsonObject Mark() override;
  QJsonObject MarkOfAll(const QString& person) override;
  QList<std::optional<platform::basic::Date>> Stored(const ReportRun& run) override;
  QList<bool> StoredAgain(const ReportRun& run) override;

 private:
  qint16 intPersonID_;
  bool blnWasOpen_;
};

/// Which database a connection text leads to: provider, server, database or file; nothing of who logs on.
QString fncPlaceOfConnection(const QString& strConnection);

}  // namespace hourbook

#pragma once
#include "platform/ado/recordset.h"
#include "reporting/ReportRun.h"
#include "shell/SharedValues.h"

#include <functional>
#include <memory>

namespace hourbook {

/// The targets and companions that lie beyond the database. Who brings one fills its function; an empty one
/// means that this installation has none.
struct ReportingValues {
  /// Target 1: posts the rows to the ASP page and leaves an `intResult` for each.
  std::function<void(platform::ado::Recordset&)> subSendXMLReport;
  /// Target 4: sends the rows to the billing system and leaves an `intResult` for each.
  std::function<void(platform::ado::Recordset&)> subSendToWF;
  /// Brings the common cube up to date after a report to an Access database.
  std::function<void()> subUpdateCommonCube;
  /// Runs the cube program after a report to SQL Server, for who keeps a local cube.
  std::function<void()> subRunCubeProgram;

  /// Where interrupted reports are remembered (see cReportJournal). Filled by who starts the program; empty:
  /// nothing is remembered, and what a crash leaves between a row and its stamp is reported again.
  QString journalFolder;
  /// How a target besides the databases is asked which rows of an interrupted report it has. Whoever fills
  /// one of the functions above fills this with it; null for a target that cannot be asked: its reports are
  /// not remembered.
  std::function<std::unique_ptr<AskableTarget>(qint32 intTarget)> askableTarget;
};

inline ReportingValues& reportingValues() {
  return Shared<ReportingValues>::current();
}

}  // namespace hourbook

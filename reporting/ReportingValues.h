#pragma once
#include "platform/ado/recordset.h"
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
};

inline ReportingValues& reportingValues() {
  return Shared<ReportingValues>::current();
}

}  // namespace hourbook

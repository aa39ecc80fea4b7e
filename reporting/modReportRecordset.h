#pragma once
#include "platform/ado/recordset.h"
#include "reporting/ReportRun.h"

#include <memory>

namespace hourbook {

/// Longest subject or name, in the recordset and in the tables.
inline constexpr int longestReportText = 255;

/// What every target is handed: an empty recordset without a database, one row an appointment.
std::shared_ptr<platform::ado::Recordset> fncReportRecordset();

/// What of its current row tells the row's line at the target again.
ReportLine fncReportLine(platform::ado::Recordset& rs);

}  // namespace hourbook

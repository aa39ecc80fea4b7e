#pragma once
#include "workspace/ReportWindow.h"

namespace hourbook {

/// The report form for generation 10 of the spreadsheet component; see `windowedReportForm`.
std::shared_ptr<ReportForm> frmXPReport(const QString& placesFile = {});

}  // namespace hourbook

#pragma once
#include "workspace/ReportWindow.h"

namespace hourbook {

/// The report form for generation 9 of the spreadsheet component; see `windowedReportForm`.
std::shared_ptr<ReportForm> frm2KReport(const QString& placesFile = {});

}  // namespace hourbook

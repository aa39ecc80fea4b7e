#pragma once
#include "workspace/ReportWindow.h"

namespace hourbook {

/// The report form for generation 11 of the spreadsheet component; see `windowedReportForm`.
std::shared_ptr<ReportForm> frm2003Report(const QString& placesFile = {});

}  // namespace hourbook

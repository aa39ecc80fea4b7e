#pragma once
#include "workspace/ReportWindow.h"

#include <memory>

namespace hourbook {

/// The report form for generation 11 of the spreadsheet component: the form and its window, its events
/// connected. Not loaded and not shown yet.
std::shared_ptr<ReportForm> frm2003Report();

}  // namespace hourbook

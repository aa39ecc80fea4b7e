#pragma once

namespace hourbook {

class ReportForm;

/// Connects what the sheet and the meta drop-downs of a form tell to the handlers of its generation.
void subConnectRowEvents(ReportForm& form);

}  // namespace hourbook

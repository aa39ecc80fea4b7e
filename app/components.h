#pragma once
#include "app/Configuration.h"
#include "platform/automation/components.h"

namespace hourbook {

/// Makes the components of this machine known, each by its ProgID. Outlook runs from the start, with the
/// configured calendars; of the spreadsheet and chart component the configured generations are installed.
/// Throws platform::Failure when a calendar cannot be opened.
void registerComponents(platform::automation::Components& components, const Configuration& configuration);

}  // namespace hourbook

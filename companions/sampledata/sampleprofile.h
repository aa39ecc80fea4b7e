#pragma once
#include "companions/sampledata/samplecalendar.h"

namespace sampledata {

/// Writes a whole profile into a folder, which is made: `calendar/` (a folder of .ics files),
/// `database/Hourbook3.mdb`, `config/platform.ini` and `config/registry.ini`. The same plan gives the same
/// profile. Throws platform::Failure; refuses a folder that holds something already.
void makeProfile(const QString& folder, const Plan& plan);

}  // namespace sampledata

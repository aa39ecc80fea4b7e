#pragma once

namespace bench {

/// Opening a calendar and asking for one week, against libical parsing the same files.
void measureOpening();
/// Storing 199 rows, each committed by itself, against SQLite alone doing the same inserts.
void measureReporting();

}  // namespace bench

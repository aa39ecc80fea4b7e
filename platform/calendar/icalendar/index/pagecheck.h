#pragma once
#include <QByteArray>

// SQLite notices damage only where it breaks the structure of its pages. A flipped bit in a number would be
// believed, and an appointment would be missing from a report. So each page of an index carries a checksum.
namespace platform::calendar::icalendar::index {

inline constexpr int pageBytes = 4096;
inline constexpr int checkBytes = 8;  // at the end of each page

/// The name of a file system layer for sqlite3_open_v2() that seals each page when it is written and refuses
/// a page that is not as it was sealed: damaged, from another place, or from another index. `identity` tells
/// indexes apart. The layer lives as long as the process.
QByteArray checkedPages(quint64 identity);

}  // namespace platform::calendar::icalendar::index

#pragma once
#include <QtGlobal>

namespace platform::calendar::icalendar {

// Bounds for what comes from outside, far above real calendars. (Those of lines and components stand in
// syntax.h, those of series in recurrence.h.)
inline constexpr qint64 maxCalendarFileBytes = 1024LL * 1024 * 1024;  // of a calendar in one file
inline constexpr qint64 maxItemFileBytes = 64LL * 1024 * 1024;        // of one file among many

/// From this size on a copy of a calendar in one file is kept before its first change.
inline constexpr qint64 minBackupBytes = 1024 * 1024;

/// A file written so shortly before it was read may have been written once more with the same time: file
/// systems count in steps of up to two seconds (FAT; one second: ext3, HFS+, some network drives).
inline constexpr qint64 settlingNs = 2'000'000'000;

/// Whether the times of a file, read at `now`, will tell any later change of it: it was written long enough
/// ago. Of one that is dated ahead (by a copy that keeps times, say) the system's own time of its last change
/// tells that, which nobody can set; where that lies ahead as well, clocks differ, and nothing is sure.
/// `changedNs` is 0 where the system has no such time.
constexpr bool isSettled(qint64 nowNs, qint64 mtimeNs, qint64 changedNs) {
  if (nowNs - mtimeNs > settlingNs) return true;
  return mtimeNs > nowNs && changedNs != 0 && nowNs - changedNs > settlingNs;
}

}  // namespace platform::calendar::icalendar

#pragma once
#include "platform/calendar/icalendar/calendarfile.h"
#include "platform/calendar/icalendar/index/linescanner.h"

namespace platform::calendar::icalendar::index {

/// What the index keeps of one event. Names are kept as checksums: whatever is found by one is read from its
/// file and compared by name.
struct EventRow {
  quint64 uid = 0;
  bool hasUid = true;        // without one, `uid` depends on how many of its kind stand ahead in the file
  quint64 recurrenceId = 0;  // 0: none
  quint64 subject = 0;
  qint64 earliest = 0, latest = 0;  // as Bounds
  /// The search looks for short events near the period, and for all others that could reach into it.
  bool isShort() const;
};

/// A short event starts within so many milliseconds behind the earliest moment that it could.
inline constexpr qint64 shortMs = 8 * dayMs;

quint64 nameSum(const QString& name);
quint64 uidWithout(const QString& fileName, int number);
EventRow rowOf(const Piece& plainEvent);
EventRow rowOf(const Document& document, const Event& event);

}  // namespace platform::calendar::icalendar::index

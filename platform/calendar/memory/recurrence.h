#pragma once
#include <QDateTime>
#include <QStringList>

namespace platform::calendar {

/// A simple rule for series: every `interval` days or weeks, `count` times, counting the first.
struct Recurrence {
  enum class Unit { Day, Week };
  Unit unit = Unit::Day;
  int interval = 1;
  int count = 1;
  QStringList excluded;  // recurrence ids
};

/// Where the n-th occurrence (from 0) of a series stands, on the wall clock of the series itself.
struct Slot {
  QDate day;
  QTime time;
  QString recurrenceId;
};

/// All places of a series that starts at `start`, excluded ones left out.
QList<Slot> slotsOf(const Recurrence& rule, const QDateTime& start, bool allDay);

/// The original start in basic form: "20240219" all day, "20240219T090000Z" of a series in UTC, else without
/// "Z".
QString recurrenceIdOf(const QDate& day, const QTime& time, bool allDay, bool utc);

}  // namespace platform::calendar

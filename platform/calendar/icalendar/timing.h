#pragma once
#include "platform/calendar/icalendar/calendarfile.h"
#include "platform/calendar/icalendar/zones.h"

// What the dates of an event mean to the one who looks.
namespace platform::calendar::icalendar {

/// An event's start and length. Walls are clock readings in its own zone; of an all-day event its dates.
struct Timing {
  bool allDay = false;
  bool utc = false;  // counts in UTC
  bool zoneUnknown = false;
  Zone zone;  // the viewer's for floating times and dates
  QString tzid;
  Zone home;  // the zone in which the calendar was kept, as far as it tells
  Zone viewer;
  qint64 start = 0;  // wall
  Span length;

  qint64 startInstant(qint64 wall) const { return (allDay ? viewer : zone).toInstant(wall); }
  qint64 endInstant(qint64 wall, const Span& span) const;
  /// The reading that the clocks show at that occurrence: another one where they skip its own. A series that
  /// has both would show the same moment twice.
  qint64 shownAs(qint64 wall) const { return (allDay ? viewer : zone).toWall(startInstant(wall)); }
  /// All readings that stand for the same moment as that one.
  QList<qint64> namesOf(qint64 wall) const;
};

class Reader {
 public:
  Reader(ZoneBook& book, const QTimeZone& viewer) : book_(book), viewer_(viewer) {}

  /// The event must have a start.
  Timing timingOf(const CalendarFile& file, const Event& event);
  /// A date value of the event on the clock of `timing`: what an EXDATE, an RDATE or a RECURRENCE-ID means
  /// there.
  qint64 wallOn(const Timing& timing, const CalendarFile& file, const Event& event, const DateValue& value);
  /// The last moment (wall) of a rule that ends on that date.
  qint64 untilOn(const Timing& timing, const DateValue& until) const;
  qint64 instantOf(const CalendarFile& file, const Event& event, const DateValue& value);
  /// The zone of one date value; the viewer's for dates and floating times.
  Zone zoneOf(const CalendarFile& file, const Event& event, const DateValue& value, bool* unknown);
  const Zone& viewer() const { return viewer_; }
  /// What is wrong with the zone of the event's start or end that was not found.
  QString whyUnknown(const CalendarFile& file, const Event& event);

 private:
  Zone homeZone(const CalendarFile& file, const Event& event);
  static bool takeMarkedAllDay(Timing& timing, const Event& event);
  static void takeAllDay(Timing& timing, const QDate& start, const std::optional<QDate>& end,
                         const Event& event);

  ZoneBook& book_;
  Zone viewer_;
};

/// The name by which an occurrence is known within its series.
QString recurrenceIdText(const Timing& timing, qint64 wall);

}  // namespace platform::calendar::icalendar

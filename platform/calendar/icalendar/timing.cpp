#include "platform/calendar/icalendar/timing.h"

#include "platform/calendar/icalendar/text.h"

#include <algorithm>

namespace platform::calendar::icalendar {
namespace {

using Form = DateValue::Form;

constexpr qint64 longestDays = 36600;
constexpr int maxNamedLength = 100;  // of a zone's name in a text

/// The day that a value names. A moment in UTC is a day where the calendar was kept; midnight and the last
/// second in UTC are how some programs write the day itself.
QDate dayOf(const DateValue& value, const Zone& home) {
  if (value.form != Form::Utc || value.time == QTime(0, 0) || value.time == QTime(23, 59, 59))
    return value.date;
  return dateOfWall(home.toWall(value.wall()));
}

}  // namespace

qint64 Timing::endInstant(qint64 wall, const Span& span) const {
  if (allDay) return viewer.toInstant(wall + span.days * dayMs);
  return zone.toInstant(wall + span.days * dayMs) + span.exactMs;
}

QList<qint64> Timing::namesOf(qint64 wall) const {
  const qint64 instant = startInstant(wall), shown = shownAs(wall);
  QList<qint64> names{wall};
  for (const qint64 skipped : {qint64(0), hourMs / 2, hourMs, dayMs})  // what clocks are known to skip
    if (shown - skipped != wall && startInstant(shown - skipped) == instant) names.append(shown - skipped);
  return names;
}

Zone Reader::zoneOf(const CalendarFile& file, const Event& event, const DateValue& value, bool* unknown) {
  if (value.form == Form::Utc) return Zone(QTimeZone::utc());
  if (value.form == Form::Zoned) {
    if (const auto zone = book_.find(file.document, file.zones.get(), event.calendar, value.tzid))
      return *zone;
    *unknown = true;
    return viewer_;
  }
  if (value.form == Form::Floating && event.calendar) {
    // Google's feeds mean the calendar's own zone where they name none; from others a floating time floats
    const CalendarHead& head = file.zones->headOf(event.calendar);
    if (head.ofGoogle && head.zone)
      if (const auto known =
              book_.find(file.document, file.zones.get(), event.calendar, decoded(*head.zone).trimmed()))
        return *known;
  }
  return event.old ? homeZone(file, event) : viewer_;
}

QString Reader::whyUnknown(const CalendarFile& file, const Event& event) {
  bool byStart = false;
  zoneOf(file, event, *event.start, &byStart);
  const QString tzid = byStart || !event.end ? event.start->tzid : event.end->tzid;
  const QString text =
      book_.wasTooMuch(tzid)
          ? u"The definition of the time zone \"%1\" is too long; the times are taken in the viewer's zone."_qs
          : u"The time zone \"%1\" is defined nowhere; the times are taken in the viewer's zone."_qs;
  return text.arg(tzid.left(maxNamedLength));
}

qint64 Reader::instantOf(const CalendarFile& file, const Event& event, const DateValue& value) {
  bool unknown = false;
  return zoneOf(file, event, value, &unknown).toInstant(value.wall());
}

Zone Reader::homeZone(const CalendarFile& file, const Event& event) {
  if (!event.calendar) return viewer_;
  const CalendarHead& head = file.zones->headOf(event.calendar);
  if (event.old) return Zone::ofOldCalendar(file.document, head.clock, viewer_).value_or(viewer_);
  const auto named = [&](const QByteArray& name) {
    return book_.find(file.document, file.zones.get(), event.calendar, fromText(name).trimmed());
  };
  if (head.zone)
    if (const auto zone = named(*head.zone)) return *zone;
  for (const QByteArray& definition : head.definitions)
    if (const auto zone = named(definition)) return *zone;
  return viewer_;
}

void Reader::takeAllDay(Timing& timing, const QDate& start, const std::optional<QDate>& end,
                        const Event& event) {
  timing.allDay = true;
  timing.start = wallOf(start, QTime(0, 0));
  qint64 days = 1;
  if (end)
    days = start.daysTo(*end);
  else if (event.span)
    days = event.span->days + (event.span->exactMs + dayMs - 1) / dayMs;
  timing.length = Span{static_cast<int>(std::clamp<qint64>(days, 1, longestDays)), 0};
}

/// Older programs of Microsoft write a whole day as midnight to midnight and say in a property of their own
/// that it is one.
bool Reader::takeMarkedAllDay(Timing& timing, const Event& event) {
  if (!event.markedAllDay) return false;
  const auto midnightOf = [&](const DateValue& value) -> std::optional<QDate> {
    if (value.form == Form::Utc) {
      const qint64 wall = timing.home.toWall(value.wall());
      if (timeOfWall(wall) == QTime(0, 0)) return dateOfWall(wall);
    }
    return value.time == QTime(0, 0) ? std::optional(value.date) : std::nullopt;
  };
  const auto start = midnightOf(*event.start);
  const auto end = event.end ? midnightOf(*event.end) : std::nullopt;
  if (!start || (event.end && !end) || (event.span && event.span->exactMs % dayMs != 0)) return false;
  takeAllDay(timing, *start, end, event);
  return true;
}

Timing Reader::timingOf(const CalendarFile& file, const Event& event) {
  Timing timing;
  timing.viewer = viewer_;
  const DateValue& start = *event.start;
  const bool needsHome = start.form == Form::Date || event.markedAllDay;
  timing.home = needsHome ? homeZone(file, event) : viewer_;
  timing.zone = zoneOf(file, event, start, &timing.zoneUnknown);
  timing.tzid = start.tzid;
  timing.utc = start.form == Form::Utc;
  if (start.form == Form::Date) {
    timing.zoneUnknown = false;
    takeAllDay(timing, start.date, event.end ? std::optional(dayOf(*event.end, timing.home)) : std::nullopt,
               event);
    return timing;
  }
  if (takeMarkedAllDay(timing, event)) return timing;
  timing.start = start.wall();
  if (event.end) {
    const Zone zone =
        event.end->form == Form::Date
            ? timing.zone
            : zoneOf(file, event, *event.end, &timing.zoneUnknown);  // never takes the mark away
    const qint64 end = zone.toInstant(event.end->wall());
    timing.length.exactMs = qMax<qint64>(0, end - timing.zone.toInstant(timing.start));
  } else if (event.span) {
    timing.length = *event.span;
  }
  return timing;
}

qint64 Reader::wallOn(const Timing& timing, const CalendarFile& file, const Event& event,
                      const DateValue& value) {
  if (timing.allDay) return wallOf(dayOf(value, timing.home), QTime(0, 0));
  if (value.form == Form::Date) return wallOf(value.date, timeOfWall(timing.start));
  if (value.form == Form::Floating) return value.wall();
  if (value.form == Form::Zoned && value.tzid == timing.tzid) return value.wall();
  bool unknown = false;
  const Zone zone = zoneOf(file, event, value, &unknown);
  const qint64 instant = zone.toInstant(value.wall());
  const qint64 wall = timing.zone.toWall(instant);
  // in the night when the clocks go forward one moment has two names
  for (const qint64 skipped : {hourMs, hourMs / 2})
    if (timeOfWall(wall - skipped) == timeOfWall(timing.start) &&
        timing.zone.toInstant(wall - skipped) == instant)
      return wall - skipped;
  // some write the series' own wall-clock time under the name of another zone
  const bool meansItsOwnClock = value.form == Form::Zoned && timeOfWall(wall) != timeOfWall(timing.start) &&
                                value.time == timeOfWall(timing.start);
  return meansItsOwnClock ? value.wall() : wall;
}

qint64 Reader::untilOn(const Timing& timing, const DateValue& until) const {
  if (timing.allDay) return wallOf(dayOf(until, timing.home), QTime(0, 0)) + dayMs - 1;
  if (until.form == Form::Date) return until.wall() + dayMs - 1;
  return until.form == Form::Utc ? timing.zone.toWall(until.wall()) : until.wall();
}

QString recurrenceIdText(const Timing& timing, qint64 wall) {
  const QDate date = dateOfWall(wall);
  if (timing.allDay) return QString::fromLatin1(dateText(date));
  return QString::fromLatin1(dateTimeText(date, timeOfWall(wall))) + (timing.utc ? u"Z"_qs : QString());
}

}  // namespace platform::calendar::icalendar

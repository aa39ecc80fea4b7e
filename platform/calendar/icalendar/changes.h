#pragma once
#include "platform/calendar/icalendar/editor.h"
#include "platform/calendar/icalendar/expansion.h"

// What a change does to the lines of an event.
namespace platform::calendar::icalendar {

/// Where the component comes from: its zones are defined there.
struct Origin {
  const CalendarFile& file;
  const Component* calendar = nullptr;
  Reader& reader;
};

/// Makes the change. What already is as asked for is left as it stands; LAST-MODIFIED and DTSTAMP are brought
/// up to date (with `now`) where they are, and only together with another change; SEQUENCE is the organiser's
/// and stays.
void applyChange(ComponentEditor& editor, const Change& change, const Origin& origin, const QDateTime& now);

/// The component of an override for one occurrence: the event that describes it, byte for byte, without its
/// rules, at the occurrence's place, named by `masterHead` (the head of the master's DTSTART).
QByteArray overrideOf(const Occurrence& occurrence, const EventRef& master, Reader& reader);

/// Names an occurrence among the EXDATEs of its master.
void excludeOccurrence(ComponentEditor& editor, const EventRef& master, const Timing& timing, qint64 wall,
                       const QDateTime& now);

/// A new event without any content but its identity.
QByteArray emptyEvent(const QString& uid, const QDateTime& now, const QByteArray& lineEnd);
/// The calendar around the only event of a new file.
QByteArray calendarAround(const QByteArray& event, const QByteArray& lineEnd);

}  // namespace platform::calendar::icalendar

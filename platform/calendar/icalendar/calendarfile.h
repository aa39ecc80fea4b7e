#pragma once
#include "platform/calendar/icalendar/bounds.h"
#include "platform/calendar/icalendar/values.h"

#include <QHash>

// One file as it was read: its components, and of each event what is needed to find it.
namespace platform::calendar::icalendar {

class ZoneIndex;

/// One VEVENT. Dates are as written; what they mean depends on who looks, and is worked out only for what is
/// asked for.
struct Event {
  const Component* component = nullptr;
  const Component* calendar = nullptr;  // the VCALENDAR around it; null when there is none
  QString uid;                          // made from the place when the file gives none
  bool hasUid = false;
  QString place;
  std::optional<DateValue> start, end, recurrenceId;
  std::optional<Span> span;
  bool thisAndFuture = false;
  bool cancelled = false;
  bool markedAllDay = false;  // by Microsoft's own property, or as far as version 1.0 can tell
  bool old = false;           // of a calendar of version 1.0
  QList<QByteArray> rules, exceptionRules;
  QList<Period> moreStarts;
  QList<DateValue> excluded;

  Bounds bounds;  // of its own occurrences; its overrides have theirs

  bool isOverride() const { return recurrenceId.has_value(); }
  bool isSeries() const { return !recurrenceId && (!rules.isEmpty() || !moreStarts.isEmpty()); }
  qint64 earliest() const { return bounds.earliest; }
  qint64 latest() const { return bounds.latest; }
  qint64 latestEnd() const { return bounds.latestEnd; }
};

/// A file as it was read, or a part of it: a document of its own made of the calendar's head (its own
/// properties and the definitions of zones) and one event. Lines are counted as in the file.
struct CalendarFile {
  QString name;     // within its folder
  qint64 base = 0;  // of a part: an event's offset in `document` plus this is its offset in the file
  Document document;
  std::shared_ptr<const ZoneIndex> zones;  // the definitions of zones in `document`
  std::vector<Event> events;
  QList<Problem> problems;

  /// Identifies what is stored of one event: changes with any of its bytes.
  QString tag(const Event& event) const { return tagOf(document.raw(*event.component).toByteArray()); }
  static QString tagOf(const QByteArray& component);
};

/// One event by itself, as part of a calendar that stands elsewhere. `problems` gets what cannot be read of
/// it.
Event eventOf(const Document& document, const Component& component, const Component* calendar,
              QList<Problem>* problems = nullptr);

/// The key of the n-th of several alike in a file, from 1.
QString placeOf(const QString& name, int number);

/// Where an event stands that is read without its file.
struct PartPlace {
  QString name;       // of the file
  qint64 offset = 0;  // of its BEGIN in the file
  int line = 1;
  int number = 1;  // of several alike in the file
  Bounds bounds;   // of the event, as they were found when the file was taken in
};

/// One event between the head of its calendar and what closes that. Null when these bytes do not hold one
/// event.
std::shared_ptr<const CalendarFile> calendarPart(const PartPlace& place, const QByteArray& head,
                                                 const QByteArray& event, const QByteArray& tail);

std::shared_ptr<const CalendarFile> calendarFile(const QString& name, QByteArray bytes);

}  // namespace platform::calendar::icalendar

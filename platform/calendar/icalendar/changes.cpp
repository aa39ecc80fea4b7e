#include "platform/calendar/icalendar/changes.h"

#include "platform/basic/failure.h"
#include "platform/calendar/icalendar/text.h"
#include "platform/calendar/icalendar/vcalendar.h"

namespace platform::calendar::icalendar {
namespace {

using Form = DateValue::Form;

const QByteArrayList dateParameters{"VALUE", "TZID"};
constexpr const char* allDayMarks[] = {"X-MICROSOFT-CDO-ALLDAYEVENT", "X-MICROSOFT-MSNCALENDAR-ALLDAYEVENT"};

QByteArray utcText(qint64 instant) {
  return dateTimeText(dateOfWall(instant), timeOfWall(instant)) + 'Z';
}

/// A reading of the event's clock in the form in which one of its dates is written.
QByteArray textLike(const DateValue& pattern, const Timing& timing, qint64 wall) {
  if (pattern.form == Form::Date) return dateText(dateOfWall(wall));
  if (pattern.form == Form::Utc) {
    if (!timing.allDay) return utcText(wall);
    const bool atHome = timeOfWall(timing.home.toWall(pattern.wall())) == QTime(0, 0);
    return utcText(atHome ? timing.home.toInstant(wall) : wall);
  }
  return dateTimeText(dateOfWall(wall), timeOfWall(wall));
}

/// Start and length of a component, set each in the form in which it stands there.
class TimesEditor {
 public:
  TimesEditor(ComponentEditor& editor, const Origin& origin)
      : editor_(editor),
        origin_(origin),
        event_(eventOf(editor.document(), editor.component(), origin.calendar)) {
    if (event_.start) timing_ = origin.reader.timingOf(origin.file, event_);
  }

  bool hasStart() const { return event_.start.has_value(); }
  const Timing& timing() const { return timing_; }

  /// The form stays: all-day or not, and the zone.
  void place(qint64 startWall, const Span& length) {
    const QByteArray startHead = editor_.first("DTSTART")->head;
    editor_.set("DTSTART", startHead, textLike(*event_.start, timing_, startWall));
    if (event_.end)
      placeEnd(startWall, length, startHead);
    else if (event_.span)
      placeSpan(length);
    else
      addEnd(startWall, length, startHead);
    if (event_.end && event_.span) editor_.remove("DURATION");
  }

  /// The second of two times with one name has a name of its own in UTC only.
  void placeInUtc(qint64 instant, const Span& length) {
    if (event_.isSeries() || event_.isOverride())
      throw Failure(
          errAccessDenied,
          QStringLiteral("A series cannot begin in the second of two equal hours, when the clocks have been "
                         "set back."),
          QStringLiteral("IcalendarStore"));
    const QByteArray head = renamed(editor_.first("DTSTART")->head, "DTSTART", dateParameters);
    editor_.set("DTSTART", head, utcText(instant));
    TimesEditor(editor_, origin_)
        .place(instant, {0, timing_.endInstant(timing_.start, length) - timing_.startInstant(timing_.start)});
  }

  void makeAllDay(const QDate& first, int days) {
    if (event_.old) {  // version 1.0 knows days only as midnights of the one who looks
      const Zone& viewer = origin_.reader.viewer();
      const qint64 start = viewer.toInstant(wallOf(first, QTime(0, 0)));
      const qint64 end = viewer.toInstant(wallOf(first.addDays(days), QTime(0, 0)));
      return place(timing_.zone.toWall(start), {0, end - start});
    }
    editor_.set("DTSTART", renamed(editor_.first("DTSTART")->head, "DTSTART;VALUE=DATE", dateParameters),
                dateText(first));
    setEnd("DTEND;VALUE=DATE", dateText(first.addDays(days)));
    editor_.remove("DURATION");
    mark("TRUE");
  }

  /// A day is a day wherever one looks, and so is the time that takes its place: it names no zone. The
  /// calendar may have a zone of its own for such times; what counts is that it begins at the moment that was
  /// asked for.
  void makeTimed(qint64 instant, const Span& length) {
    const bool wholeDays = (length.days * dayMs + length.exactMs) % dayMs == 0 &&
                           (length.days > 0 || length.exactMs > 0) &&
                           timeOfWall(origin_.reader.viewer().toWall(instant)) == QTime(0, 0);
    if (event_.old && wholeDays)
      throw Failure(
          errAccessDenied,
          QStringLiteral("In a calendar of the old format (vCalendar 1.0) an appointment from midnight "
                         "to midnight is always one of whole days."),
          QStringLiteral("IcalendarStore"));
    if (event_.start->form != Form::Date) {
      mark("FALSE");
      Timing timed = timing_;
      timed.allDay = false;
      timing_ = timed;
      place(timing_.zone.toWall(instant), length);
      return;
    }
    bool unknown = false;
    const Zone zone = origin_.reader.zoneOf(origin_.file, event_, DateValue{}, &unknown);
    const qint64 startWall = zone.toWall(instant);
    const QByteArray start = dateTimeText(dateOfWall(startWall), timeOfWall(startWall));
    editor_.set("DTSTART", renamed(editor_.first("DTSTART")->head, "DTSTART", dateParameters), start);
    const qint64 end = zone.toWall(zone.toInstant(startWall) + length.days * dayMs + length.exactMs);
    setEnd("DTEND", dateTimeText(dateOfWall(end), timeOfWall(end)));
    editor_.remove("DURATION");
    mark("FALSE");
  }

 private:
  void placeEnd(qint64 startWall, const Span& length, const QByteArray& startHead) {
    const QByteArray endHead = editor_.first("DTEND")->head;
    if (timing_.allDay)
      return editor_.set("DTEND", endHead, textLike(*event_.end, timing_, startWall + length.days * dayMs));
    const qint64 instant = timing_.endInstant(startWall, length);
    if (event_.end->form == Form::Utc) return editor_.set("DTEND", endHead, utcText(instant));
    if (event_.end->form == Form::Date)
      return editor_.set("DTEND", renamed(startHead, "DTEND"),
                         textLike(*event_.start, timing_, timing_.zone.toWall(instant)));
    bool unknown = false;
    const Zone zone = origin_.reader.zoneOf(origin_.file, event_, *event_.end, &unknown);
    const qint64 wall = zone.toWall(instant);
    if (zone.toInstant(wall) != instant)  // the second of two times with one name can be told in UTC only
      return editor_.set("DTEND", renamed(endHead, "DTEND", dateParameters), utcText(instant));
    editor_.set("DTEND", endHead, dateTimeText(dateOfWall(wall), timeOfWall(wall)));
  }

  void placeSpan(const Span& length) {
    if (length.days == timing_.length.days && length.exactMs == timing_.length.exactMs) return;
    const QByteArray text = timing_.allDay ? 'P' + QByteArray::number(length.days) + 'D'
                                           : spanText((length.days * dayMs + length.exactMs) / minuteMs);
    editor_.set("DURATION", editor_.first("DURATION")->head, text);
  }

  void addEnd(qint64 startWall, const Span& length, const QByteArray& startHead) {
    if (timing_.allDay ? length.days == 1 : length.days == 0 && length.exactMs == 0) return;
    const qint64 end = timing_.allDay ? startWall + length.days * dayMs
                                      : timing_.zone.toWall(timing_.endInstant(startWall, length));
    editor_.remove("DURATION");  // one that cannot be read, like a DTEND that stands here
    if (!timing_.allDay && timing_.zone.toInstant(end) != timing_.endInstant(startWall, length))
      return setEnd("DTEND", utcText(timing_.endInstant(startWall, length)));
    setEnd(renamed(startHead, "DTEND"), textLike(*event_.start, timing_, end));
  }

  void setEnd(const QByteArray& head, const QByteArray& text) {
    if (editor_.first("DTEND"))
      editor_.set("DTEND", head, text);
    else
      editor_.insertAfter("DTSTART", head, text);
  }

  void mark(const QByteArray& value) {
    for (const char* name : allDayMarks)
      if (const auto property = editor_.first(name)) editor_.set(name, property->head, value);
  }

  ComponentEditor& editor_;
  const Origin& origin_;
  Event event_;
  Timing timing_;
};

void applyTimes(ComponentEditor& editor, const Change& change, const Origin& origin) {
  if (!change.start && !change.durationMinutes && !change.allDay) return;
  const Zone& viewer = origin.reader.viewer();
  if (!editor.first("DTSTART")) {
    if (!change.start)
      throw Failure(failure::invalidProcedureCall, QStringLiteral("The item has no start and needs one."),
                    QStringLiteral("IcalendarStore"));
    editor.append("DTSTART", utcText(change.start->toMSecsSinceEpoch()));
  }
  TimesEditor times(editor, origin);
  if (!times.hasStart())
    throw Failure(errStoreBroken, QStringLiteral("The item's start cannot be read, so it is left as it is."),
                  QStringLiteral("IcalendarStore"));
  const Timing& now = times.timing();
  const bool allDay = change.allDay.value_or(now.allDay);
  const qint64 instant = change.start ? change.start->toMSecsSinceEpoch() : now.startInstant(now.start);
  Span length = now.length;
  if (change.durationMinutes) length = {0, qMax(0, *change.durationMinutes) * minuteMs};
  if (allDay) {
    const qint64 lengthMs = length.days * dayMs + length.exactMs;
    const int days = static_cast<int>(qMax<qint64>(1, (lengthMs + dayMs - 1) / dayMs));
    const QDate first = dateOfWall(viewer.toWall(instant));
    if (now.allDay)
      times.place(wallOf(change.start ? first : dateOfWall(now.start), QTime(0, 0)), {days, 0});
    else
      times.makeAllDay(first, days);
  } else if (now.allDay) {
    times.makeTimed(instant, length);
  } else if (change.start && now.zone.toInstant(now.zone.toWall(instant)) != instant) {
    times.placeInUtc(instant, length);
  } else {
    times.place(change.start ? now.zone.toWall(instant) : now.start, length);
  }
}

/// What a head says of the form in which the value stands; this program writes plain UTF-8.
const QByteArrayList aboutForm{"ENCODING", "CHARSET", "QUOTED-PRINTABLE", "BASE64", "8BIT", "7BIT"};

void setText(ComponentEditor& editor, const char* name, const QString& text, bool old,
             const QByteArrayList& without = {}) {
  const auto present = editor.first(name);
  if (!present && text.isEmpty()) return;
  if (old) {
    const OldLine line = oldLine(present ? present->head : QByteArray(name), text);
    return editor.set(name, line.head, line.value);
  }
  editor.set(name, present ? renamed(present->head, name, aboutForm + without) : QByteArray(name),
             toText(text));
}

void setOrRemove(ComponentEditor& editor, const char* name, const QByteArray& value) {
  if (value.isEmpty()) return editor.remove(name);
  const auto present = editor.first(name);
  editor.set(name, present ? present->head : QByteArray(name), value);
}

void setCategories(ComponentEditor& editor, const QStringList& names, bool old) {
  if (names.isEmpty()) return editor.remove("CATEGORIES");
  const auto present = editor.first("CATEGORIES");
  if (!old)
    return editor.set("CATEGORIES",
                      present ? renamed(present->head, "CATEGORIES", aboutForm) : QByteArray("CATEGORIES"),
                      toTextList(names));
  const OldLine line = oldListLine(present ? present->head : QByteArray("CATEGORIES"), names);
  editor.set("CATEGORIES", line.head, line.value);
}

void applyCategories(ComponentEditor& editor, const Change& change, const Item& now, bool old) {
  if (!change.categories && !change.categoriesText) return;
  const QString text = change.categoriesText.value_or(QString());
  const QStringList names =
      change.categories ? *change.categories : categoryPieces(text, leadingSeparator(text));
  if (names != now.categories) setCategories(editor, names, old);
  setOrRemove(editor, "X-HOURBOOK-CATEGORIES", change.categoriesText ? toText(text) : QByteArray());
}

void applyTexts(ComponentEditor& editor, const Change& change, const Item& now, bool old) {
  if (change.subject && *change.subject != now.subject) setText(editor, "SUMMARY", *change.subject, old);
  if (change.body && *change.body != now.body) {
    // there a text's last line ends like the others
    const QString body = old && !change.body->isEmpty() ? *change.body + u'\n' : *change.body;
    setText(editor, "DESCRIPTION", body, old, {"ALTREP"});
    editor.remove("X-ALT-DESC");  // the same text as a page: it would go on showing the old one
  }
  if (change.sensitivity && *change.sensitivity != now.sensitivity) {
    static const QByteArray names[] = {"PUBLIC", "PERSONAL", "PRIVATE", "CONFIDENTIAL"};
    editor.set("CLASS", "CLASS", names[static_cast<int>(*change.sensitivity)]);
  }
  if (change.billingInformation && *change.billingInformation != now.billingInformation)
    setOrRemove(editor, "X-HOURBOOK-BILLINGINFORMATION", toText(*change.billingInformation));
}

void applyUserProperties(ComponentEditor& editor, const Change& change, const Item& now) {
  constexpr const char* name = "X-HOURBOOK-USERPROPERTY";
  for (auto wanted = change.userProperties.begin(); wanted != change.userProperties.end(); ++wanted) {
    const auto present = now.userProperties.constFind(wanted.key());
    if (present != now.userProperties.cend() && *present == *wanted) continue;
    editor.removeIf(name, [&](const Property& property) {
      return fromParameter(property.parameter("X-NAME")) == wanted.key();
    });
    editor.append(QByteArray(name) + ";X-NAME=" + toParameter(wanted.key()) +
                      ";X-TYPE=" + QByteArray::number(wanted->type),
                  toText(wanted->value));
  }
}

void stamp(ComponentEditor& editor, const QDateTime& now) {
  for (const char* name : {"LAST-MODIFIED", "DTSTAMP"})
    if (const auto property = editor.first(name))
      editor.set(name, name, utcText(now.toMSecsSinceEpoch() / secondMs * secondMs));
}

}  // namespace

void applyChange(ComponentEditor& editor, const Change& change, const Origin& origin, const QDateTime& now) {
  const QByteArray before = editor.bytes();
  Item present;
  const bool old = origin.calendar && origin.calendar->old;
  readTexts(editor.document(), editor.component(), present, old);
  applyTimes(editor, change, origin);
  applyTexts(editor, change, present, old);
  applyCategories(editor, change, present, old);
  applyUserProperties(editor, change, present);
  if (editor.bytes() != before) stamp(editor, now);
}

QByteArray overrideOf(const Occurrence& occurrence, const EventRef& master, Reader& reader) {
  const EventRef& from = occurrence.from;
  ComponentEditor editor(wholeLines(from.file->document, *from.event->component));
  editor.closeIfOpen();
  for (const char* rule : {"RRULE", "RDATE", "EXDATE", "EXRULE", "X-MICROSOFT-RRULE", "X-MICROSOFT-EXDATE"})
    editor.remove(rule);
  const Origin origin{*from.file, from.event->calendar, reader};
  TimesEditor(editor, origin).place(occurrence.start, occurrence.length);
  const Timing timing = reader.timingOf(*master.file, *master.event);
  const QByteArray head =
      renamed(firstOf(master.file->document, *master.event->component, "DTSTART")->head, "RECURRENCE-ID");
  const QByteArray id = textLike(*master.event->start, timing, occurrence.id);
  if (editor.first("RECURRENCE-ID"))
    editor.set("RECURRENCE-ID", head, id);
  else
    editor.insertAfter("UID", head, id);
  constexpr const char* kind = "X-MICROSOFT-CDO-INSTTYPE";
  if (const auto property = editor.first(kind)) editor.set(kind, property->head, "3");
  return editor.bytes();
}

void excludeOccurrence(ComponentEditor& editor, const EventRef& master, const Timing& timing, qint64 wall,
                       const QDateTime& now) {
  editor.insertAfter("RRULE", renamed(editor.first("DTSTART")->head, "EXDATE"),
                     textLike(*master.event->start, timing, wall));
  stamp(editor, now);
}

QByteArray emptyEvent(const QString& uid, const QDateTime& now, const QByteArray& lineEnd) {
  const QByteArray stamp = utcText(now.toMSecsSinceEpoch() / secondMs * secondMs);
  return QByteArrayList{"BEGIN:VEVENT",     "UID:" + toText(uid), "DTSTAMP:" + stamp,
                        "CREATED:" + stamp, "END:VEVENT",         {}}
      .join(lineEnd);
}

QByteArray calendarAround(const QByteArray& event, const QByteArray& lineEnd) {
  return QByteArrayList{"BEGIN:VCALENDAR", "VERSION:2.0", "PRODID:-//Hourbook//Hourbook 3//EN", {}}.join(
             lineEnd) +
         event + "END:VCALENDAR" + lineEnd;
}

}  // namespace platform::calendar::icalendar

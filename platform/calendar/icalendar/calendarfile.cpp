#include "platform/calendar/icalendar/calendarfile.h"

#include "platform/calendar/icalendar/recurrence.h"
#include "platform/calendar/icalendar/text.h"
#include "platform/calendar/icalendar/zones.h"

#include <QCryptographicHash>
#include <QSet>

namespace platform::calendar::icalendar {
namespace {

/// Before iCalendar a whole day could only be written as midnight to midnight.
void markMidnights(Event& event) {
  if (!event.start || !event.end || event.start->form == DateValue::Form::Date) return;
  const qint64 length = event.end->wall() - event.start->wall();
  const qint64 rest = ((length % dayMs) + dayMs) % dayMs;
  // a day on which the clocks are changed has 23 or 25 hours of UTC
  if (length > hourMs && (rest <= hourMs || rest >= dayMs - hourMs)) event.markedAllDay = true;
}

class EventReader {
 public:
  enum class Bounded { Yes, No };
  EventReader(const Document& document, QString name, QList<Problem>& problems,
              Bounded bounded = Bounded::Yes)
      : document_(document), name_(std::move(name)), problems_(problems), bounded_(bounded) {}

  Event read(const Component& component, const Component* calendar) {
    Event event;
    event.component = &component;
    event.calendar = calendar;
    event.cancelled = calendar && isCancelMessage(*calendar);
    taken_.clear();
    for (const Line& line : component.lines)
      if (line.nameLength > 0) takeLine(event, line);
    event.old = calendar && calendar->old;
    if (event.old) markMidnights(event);
    identify(event);
    if (!event.start)
      complain(component.line,
               QStringLiteral("An event has no start that can be read; it stands in no period."));
    if (bounded_ == Bounded::Yes) event.bounds = boundsOf(event);
    return event;
  }

 private:
  /// Looked for once in each calendar: its events may be as many as its lines.
  bool isCancelMessage(const Component& calendar) {
    if (asked_ == &calendar) return cancels_;
    const auto method = firstOf(document_, calendar, "METHOD");
    asked_ = &calendar;
    cancels_ = method && method->value.trimmed().toUpper() == "CANCEL";
    return cancels_;
  }

  /// The properties of time; the others are read when the event is shown.
  void takeLine(Event& event, const Line& line) {
    const Document& document = document_;
    const auto is = [&](const char* name) { return document.is(line, name); };
    if (is("UID")) {
      if (event.hasUid) return;
      event.uid = fromText(parsed(document, line).value).trimmed();
      event.hasUid = !event.uid.isEmpty();
    } else if (is("DTSTART")) {
      takeDate(event.start, line);
    } else if (is("DTEND")) {
      takeDate(event.end, line);
    } else if (is("RECURRENCE-ID")) {
      takeDate(event.recurrenceId, line);
      event.thisAndFuture = parsed(document, line).parameter("RANGE").toUpper() == "THISANDFUTURE";
    } else if (is("DURATION")) {
      event.span = spanValue(parsed(document, line).value);
      if (!event.span) complain(line.number, QStringLiteral("The duration cannot be read."));
    } else if (is("RRULE")) {
      takeRule(event.rules, line);
    } else if (is("EXRULE")) {
      takeRule(event.exceptionRules, line);
    } else if (is("RDATE")) {
      int unreadable = 0;
      event.moreStarts += periodList(parsed(document, line), &unreadable);
      countUnreadable(line, unreadable);
    } else if (is("EXDATE")) {
      int unreadable = 0;
      event.excluded += dateList(parsed(document, line), &unreadable);
      countUnreadable(line, unreadable);
    } else if (is("STATUS")) {
      if (parsed(document, line).value.trimmed().toUpper() == "CANCELLED") event.cancelled = true;
    } else if (is("X-MICROSOFT-CDO-ALLDAYEVENT") || is("X-MICROSOFT-MSNCALENDAR-ALLDAYEVENT")) {
      if (parsed(document, line).value.trimmed().toUpper() == "TRUE") event.markedAllDay = true;
    }
  }

  void takeDate(std::optional<DateValue>& into, const Line& line) {
    const Property property = parsed(document_, line);
    if (taken_.contains(property.name))
      return;  // the first one counts, readable or not: it is the one that is edited
    taken_.insert(property.name);
    into = dateValue(property.value, property);
    if (!into)
      complain(line.number,
               QStringLiteral("The date in %1 cannot be read.").arg(QString::fromLatin1(property.name)));
  }

  void takeRule(QList<QByteArray>& into, const Line& line) {
    const QByteArray text = parsed(document_, line).value.trimmed();
    QString why;
    if (text.isEmpty()) return;
    if (into.size() >= maxRulesPerEvent)
      complain(line.number,
               QStringLiteral("An event has more than %1 recurrence rules; this one was left out.")
                   .arg(maxRulesPerEvent));
    else if (ruleOf(text, &why))
      into.append(text);
    else
      complain(line.number, why + QStringLiteral(" Only the first occurrence is shown."));
  }

  void countUnreadable(const Line& line, int count) {
    if (count > 0) complain(line.number, QStringLiteral("%1 of the dates cannot be read.").arg(count));
  }

  /// The place is the file's name; of several alike the second has "#2" behind it, and so on.
  void identify(Event& event) {
    QString which = event.uid;
    if (event.recurrenceId)
      which += u'\n' + QString::fromLatin1(dateTimeText(event.recurrenceId->date, event.recurrenceId->time));
    const int number = ++seen_[which];
    event.place = placeOf(name_, number);
    if (!event.hasUid) event.uid = QStringLiteral("no-uid:") + event.place;
  }

  void complain(int line, const QString& text) {
    if (problems_.size() < maxProblemsPerFile) problems_.append({name_, line, text});
  }

  const Document& document_;
  QString name_;
  QList<Problem>& problems_;
  Bounded bounded_;
  QHash<QString, int> seen_;
  QSet<QByteArray> taken_;            // dates of the event at hand
  const Component* asked_ = nullptr;  // the calendar of the last event
  bool cancels_ = false;
};

void collectEvents(CalendarFile& file, const std::vector<Component>& components, const Component* calendar,
                   EventReader& reader) {
  for (const Component& component : components) {
    if (component.name == "VEVENT")
      file.events.push_back(reader.read(component, calendar));
    else
      collectEvents(file, component.children, component.name == "VCALENDAR" ? &component : calendar, reader);
  }
}

void moveLines(Component& component, int by) {
  component.line += by;
  for (Line& line : component.lines) line.number += by;
  for (Component& child : component.children) moveLines(child, by);
}

/// The event itself, by where it begins.
Component* componentAt(std::vector<Component>& components, int offset) {
  for (Component& component : components) {
    if (component.offset == offset) return &component;
    if (component.offset < offset && offset < component.end) return componentAt(component.children, offset);
  }
  return nullptr;
}

}  // namespace

QString CalendarFile::tagOf(const QByteArray& component) {
  return QString::fromLatin1(QCryptographicHash::hash(component, QCryptographicHash::Sha1).toHex());
}

QString placeOf(const QString& name, int number) {
  return number == 1 ? name : QStringLiteral("%1#%2").arg(name).arg(number);
}

Event eventOf(const Document& document, const Component& component, const Component* calendar,
              QList<Problem>* problems) {
  QList<Problem> unread;
  Event event = EventReader(document, {}, problems ? *problems : unread).read(component, nullptr);
  event.calendar = calendar;  // stands in another document
  event.old = calendar && calendar->old;
  if (event.old) markMidnights(event);
  event.bounds = boundsOf(event);
  return event;
}

std::shared_ptr<const CalendarFile> calendarPart(const PartPlace& place, const QByteArray& head,
                                                 const QByteArray& event, const QByteArray& tail) {
  auto part = std::make_shared<CalendarFile>();
  part->name = place.name;
  part->base = place.offset - head.size();
  part->document = scan(head + event + tail, place.name);
  Component* component = componentAt(part->document.components, static_cast<int>(head.size()));
  if (!component || component->name != "VEVENT" || component->end != head.size() + event.size())
    return nullptr;
  moveLines(*component, place.line - component->line);
  QList<Problem> known;  // since the file was taken in
  // its bounds are known, and to find them takes a while where a rule has a COUNT
  EventReader reader(part->document, place.name, known, EventReader::Bounded::No);
  part->zones = std::make_shared<ZoneIndex>(part->document);
  collectEvents(*part, part->document.components, nullptr, reader);
  if (part->events.size() != 1) return nullptr;
  Event& own = part->events.front();
  own.place = placeOf(place.name, place.number);
  own.bounds = place.bounds;
  if (!own.hasUid) own.uid = QStringLiteral("no-uid:") + own.place;
  part->document.problems.clear();
  return part;
}

std::shared_ptr<const CalendarFile> calendarFile(const QString& name, QByteArray bytes) {
  auto file = std::make_shared<CalendarFile>();
  file->name = name;
  file->document = scan(std::move(bytes), name);
  file->problems = file->document.problems;
  EventReader reader(file->document, name, file->problems);
  file->zones = std::make_shared<ZoneIndex>(file->document);
  collectEvents(*file, file->document.components, nullptr, reader);
  return file;
}

}  // namespace platform::calendar::icalendar

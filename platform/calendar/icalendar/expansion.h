#pragma once
#include "platform/calendar/icalendar/recurrence.h"
#include "platform/calendar/icalendar/timing.h"

// From events to items: series are expanded, their changed occurrences put in place.
namespace platform::calendar::icalendar {

struct EventRef {
  std::shared_ptr<const CalendarFile> file;
  const Event* event = nullptr;
};

/// All events of a folder with one UID.
struct Group {
  QList<EventRef> masters;  // and singles
  QList<EventRef> overrides;
};

/// One occurrence of a series as the file has it: where it stands and which event describes it.
struct Occurrence {
  EventRef from;     // the series' master, or the override that holds from some occurrence on
  qint64 id = 0;     // original start, wall, on the master's clock
  qint64 start = 0;  // wall, on the clock of `timing`
  Span length;
  Timing timing;  // of `from`
};

class Expansion {
 public:
  Expansion(ZoneBook& book, const Query& query, QList<Problem>* problems)
      : reader_(book, query.zone), query_(query), problems_(problems) {}

  /// Adds the group's items that the query asks for.
  void add(const Group& group, QList<Item>& items);

  /// The unchanged occurrence with that name; nothing when the series has none, or an override in its place.
  std::optional<Occurrence> occurrence(const Group& group, const EventRef& master,
                                       const QString& recurrenceId);
  /// The series that an override belongs to: in its own file, else in another one; null when there is none.
  const EventRef* masterOf(const Group& group, const EventRef& override) const;
  /// The name of an override within its series.
  QString overrideId(const Group& group, const EventRef& override);

  Item itemOf(const EventRef& ref, Kind kind, const QString& recurrenceId);
  Item itemOf(const Occurrence& occurrence, const Event& master, const QString& masterPlace,
              const QString& id);
  Reader& reader() { return reader_; }

 private:
  struct Starts;

  /// Of each override in the group its series, found once for all of them.
  QList<const EventRef*> ownersOf(const Group& group) const;
  QString overrideId(const EventRef* master, const EventRef& override);
  QList<Occurrence> occurrences(const Group& group, const QList<const EventRef*>& owners,
                                const EventRef& master, qint64 fromWall, qint64 toWall);
  Starts startsOf(const EventRef& master, const Timing& timing, qint64 from, qint64 to);
  void removeExcluded(const EventRef& master, const Timing& timing, Starts& starts);
  void apply(const Rule& rule, const EventRef& master, const Timing& timing, qint64 from, qint64 to,
             Starts& starts, bool excludes);
  bool inRange(const Item& item) const;
  void addItem(const EventRef& ref, Item item, QList<Item>& items);
  void note(const EventRef& ref, const QString& text);

  Reader reader_;
  Query query_;
  QList<Problem>* problems_;
  EventRef read_;  // the event whose texts were read for the last occurrence
  Item texts_;
};

/// A text's value, decoded where it says that it is encoded. `old`: of a calendar of version 1.0.
QString textOf(const Property& property, bool old = false);

/// The texts of an event, without its times and identity.
void readTexts(const Document& document, const Component& component, Item& item, bool old = false);

}  // namespace platform::calendar::icalendar

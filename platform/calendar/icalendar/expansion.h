#pragma once
#include "platform/calendar/icalendar/group.h"
#include "platform/calendar/icalendar/recurrence.h"
#include "platform/calendar/icalendar/timing.h"

// From events to items: series are expanded, their changed occurrences put in place.
namespace platform::calendar::icalendar {

/// One occurrence of a series as the file has it: where it stands and which event describes it.
struct Occurrence {
  EventRef from;     // the series' master, or the override that holds from some occurrence on
  qint64 id = 0;     // original start, wall, on the master's clock
  qint64 start = 0;  // wall, on the clock of `timing`
  Span length;
  Timing timing;  // of `from`
};

// For all series in one query together. A calendar in which these are used up is beyond all measure: of each
// series that is left only the beginning is followed.
struct WholeLimits {
  int steps = 10'000'000;
  int occurrences = 300'000;
};
inline constexpr int stepsOfTheRest = 500;  // of each rule
inline constexpr int occurrencesOfTheRest = 10;

class Expansion {
 public:
  Expansion(ZoneBook& book, const Query& query, QList<Problem>* problems, const WholeLimits& limits = {})
      : reader_(book, query.zone), query_(query), problems_(problems), limits_(limits) {}

  /// Adds the group's items that the query asks for.
  void add(const Group& group, QList<Item>& items);

  /// The unchanged occurrence with that name; nothing when the series has none, or an override in its place.
  std::optional<Occurrence> occurrence(const Owners& owners, const EventRef& master,
                                       const QString& recurrenceId);
  /// The name of the n-th override within its series.
  QString overrideId(const Owners& owners, qsizetype override);

  Item itemOf(const EventRef& ref, Kind kind, const QString& recurrenceId);
  Item itemOf(const Occurrence& occurrence, const Event& master, const QString& masterPlace,
              const QString& id);
  Reader& reader() { return reader_; }

 private:
  struct Starts;
  struct Changed;

  QList<Occurrence> occurrences(const Owners& owners, const EventRef& master, qint64 fromWall, qint64 toWall);
  Changed& changedOn(const Owners& owners, const EventRef& master, const Timing& timing, qint64 from,
                     qint64 to);
  void findReplaced(const Owners& owners, const EventRef& master, const Timing& timing, Changed& changed);
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
  WholeLimits limits_;
  int stepsLeft_ = limits_.steps;
  int occurrencesLeft_ = limits_.occurrences;
  QHash<QString, std::shared_ptr<Changed>> changed_;  // of the owners last asked about
  std::shared_ptr<const int> changedOf_;
  EventRef read_;  // the event whose texts were read for the last occurrence
  Item texts_;
};

/// A text's value, decoded where it says that it is encoded. `old`: of a calendar of version 1.0.
QString textOf(const Property& property, bool old = false);

/// The texts of an event, without its times and identity.
void readTexts(const Document& document, const Component& component, Item& item, bool old = false);

}  // namespace platform::calendar::icalendar

#include "platform/calendar/icalendar/group.h"

#include <algorithm>
#include <array>

namespace platform::calendar::icalendar {
namespace {

constexpr qsizetype none = -1;

bool isDay(const DateValue& value) {
  return value.form == DateValue::Form::Date;
}

qint64 placeOf(const EventRef& ref) {
  return ref.file->base + ref.event->component->offset;
}

/// Masters alike but for where they stand, by their places in their file.
class Alike {
 public:
  void add(const EventRef& master, qsizetype number) {
    if (first_ == none) first_ = number;
    places_.push_back({placeOf(master), number});
  }
  void sort() {
    std::sort(places_.begin(), places_.end(), [](const Place& a, const Place& b) { return a.at < b.at; });
    qsizetype last = none;
    for (Place& place : places_) place.master = last = qMax(last, place.master);
  }
  /// The last one given of those ahead of that place.
  qsizetype ahead(qint64 at) const {
    const auto behind = std::partition_point(places_.begin(), places_.end(),
                                             [&](const Place& place) { return place.at < at; });
    return behind == places_.begin() ? none : std::prev(behind)->master;
  }
  qsizetype first() const { return first_; }

 private:
  struct Place {
    qint64 at;
    qsizetype master;  // once sorted, the last one given up to here
  };
  std::vector<Place> places_;
  qsizetype first_ = none;
};

/// The masters of one file: single or series, with a time or of days.
using OfFile = std::array<std::array<Alike, 2>, 2>;

class Masters {
 public:
  explicit Masters(const QList<EventRef>& masters) {
    for (qsizetype i = 0; i < masters.size(); ++i) {
      const Event& event = *masters[i].event;
      if (!event.start) continue;
      const bool day = isDay(*event.start);
      files_[masters[i].file->name][event.isSeries()][day].add(masters[i], i);
      if (event.isSeries() && series_[day] == none) series_[day] = i;
    }
    for (OfFile& file : files_)
      for (auto& kind : file)
        for (Alike& alike : kind) alike.sort();
  }

  /// A series comes before a single event, then one that counts in days or times as the override does, then
  /// one that stands ahead of it: of these the nearest one, else the first.
  qsizetype of(const EventRef& override) const {
    const bool day = isDay(*override.event->recurrenceId);
    const auto file = files_.constFind(override.file->name);
    if (file == files_.cend()) return series_[day] != none ? series_[day] : series_[!day];
    for (const bool isSeries : {true, false})
      for (const bool sameKind : {true, false}) {
        const Alike& alike = (*file)[isSeries][sameKind == day];
        const qsizetype ahead = alike.ahead(placeOf(override));
        if (ahead != none) return ahead;
        if (alike.first() != none) return alike.first();
      }
    return none;
  }

 private:
  QHash<QString, OfFile> files_;
  std::array<qsizetype, 2> series_{none, none};  // the first one of all files, with a time or of days
};

}  // namespace

Owners::Owners(const Group& group) : group_(group) {
  if (group.overrides.isEmpty()) return;
  const Masters masters(group.masters);
  for (qsizetype i = 0; i < group.overrides.size(); ++i) {
    const qsizetype number = masters.of(group.overrides[i]);
    owners_.append(number == none ? nullptr : &group.masters[number]);
    if (number != none) byFile_[group.masters[number].file->name].append(i);
  }
}

const EventRef* Owners::of(const EventRef& override) const {
  for (qsizetype i = 0; i < owners_.size(); ++i)
    if (group_.overrides[i].event == override.event) return owners_[i];
  return nullptr;
}

const QList<qsizetype>& Owners::in(const QString& file) const {
  static const QList<qsizetype> nothing;
  const auto found = byFile_.constFind(file);
  return found == byFile_.cend() ? nothing : *found;
}

}  // namespace platform::calendar::icalendar

#include "platform/calendar/icalendar/expansion.h"

#include <QSet>

#include <algorithm>
#include <limits>
#include <map>
#include <set>

// Following a series: its rules, what they leave out and what overrides put in the place.
namespace platform::calendar::icalendar {
namespace {

constexpr qint64 widestOffset = 26 * hourMs;
/// How far the name that a file gives an occurrence can be from its start: two zones and a day lie between.
constexpr qint64 widestName = 2 * widestOffset + 2 * dayMs;
/// What it costs to find the occurrence that an override means, in steps of a rule's walk.
constexpr int stepsOfAName = 20;

/// An override for all that follow.
struct Future {
  qint64 id;
  EventRef ref;
  Timing timing;
};

}  // namespace

struct Expansion::Starts {
  std::set<qint64> walls;
  std::map<qint64, Span> lengths;  // of periods
  size_t most = 0;
};

/// What the overrides of a file change of a series that is on a certain clock, in a certain period.
struct Expansion::Changed {
  Zone zone, home;
  std::vector<Future> futures;  // by their ids
  qint64 from = 0, to = 0;      // with room for what those move
  std::optional<QSet<qint64>> replaced;
  bool tooMuch = false;
};

void Expansion::apply(const Rule& rule, const EventRef& master, const Timing& timing, qint64 from, qint64 to,
                      Starts& starts, bool excludes) {
  Rule plain = rule;
  if (timing.allDay) plain.clearTimes();
  const qint64 until =
      plain.until ? reader_.untilOn(timing, *plain.until) : std::numeric_limits<qint64>::max();
  bool tooMany = false;
  const auto take = [&](qint64 wall) {
    if (excludes) {
      starts.walls.erase(wall);
      return true;
    }
    starts.walls.insert(wall);
    tooMany = starts.walls.size() > starts.most;
    return !tooMany;
  };
  int steps = 0;
  const bool whole = walk(plain, timing.start, until, from, to, take,
                          stepsLeft_ > 0 ? maxRuleSteps : stepsOfTheRest, &steps);
  stepsLeft_ = qMax(0, stepsLeft_ - steps);
  if (tooMany && starts.most < maxOccurrencesPerQuery)
    note(master,
         QStringLiteral("The calendar's series have more than %1 occurrences in the period; of this one "
                        "the later ones are left out.")
             .arg(limits_.occurrences));
  else if (tooMany)
    note(master,
         QStringLiteral("A series has more than %1 occurrences in the period; the later ones are left out.")
             .arg(maxOccurrencesPerQuery));
  if (!whole)
    note(master,
         QStringLiteral("A series takes too long to be followed; the later occurrences are left out."));
}

Expansion::Starts Expansion::startsOf(const EventRef& master, const Timing& timing, qint64 from, qint64 to) {
  Starts starts;
  starts.most = static_cast<size_t>(occurrencesLeft_ > 0 ? maxOccurrencesPerQuery : occurrencesOfTheRest);
  const auto within = [&](qint64 wall) { return wall >= from && wall <= to; };
  const Event& event = *master.event;
  // a start that does not suit its own rule is an occurrence all the same
  if (within(timing.start)) starts.walls.insert(timing.start);
  QString why;
  for (const QByteArray& text : event.rules)
    if (const auto rule = ruleOf(text, &why)) apply(*rule, master, timing, from, to, starts, false);
  for (const Period& period : event.moreStarts) {
    const qint64 wall = reader_.wallOn(timing, *master.file, event, period.start);
    if (!within(wall)) continue;
    starts.walls.insert(wall);
    if (period.span) starts.lengths[wall] = *period.span;
    if (period.end)
      starts.lengths[wall] = {0, qMax<qint64>(0, reader_.instantOf(*master.file, event, *period.end) -
                                                     reader_.instantOf(*master.file, event, period.start))};
    const auto length = starts.lengths.find(wall);
    if (timing.allDay && length != starts.lengths.end())  // days are whole
      length->second = {
          qMax(1, length->second.days + static_cast<int>((length->second.exactMs + dayMs - 1) / dayMs)), 0};
  }
  for (const QByteArray& text : event.exceptionRules)
    if (const auto rule = ruleOf(text, &why)) apply(*rule, master, timing, from, to, starts, true);
  removeExcluded(master, timing, starts);
  while (starts.walls.size() > starts.most) starts.walls.erase(std::prev(starts.walls.end()));
  occurrencesLeft_ = qMax(0, occurrencesLeft_ - static_cast<int>(starts.walls.size()));
  return starts;
}

void Expansion::removeExcluded(const EventRef& master, const Timing& timing, Starts& starts) {
  for (const DateValue& value : master.event->excluded) {
    if (!timing.allDay && value.form == DateValue::Form::Date) {  // every occurrence of that day
      const qint64 midnight = wallOf(value.date, QTime(0, 0));
      starts.walls.erase(starts.walls.lower_bound(midnight), starts.walls.lower_bound(midnight + dayMs));
      continue;
    }
    const qint64 wall = reader_.wallOn(timing, *master.file, *master.event, value);
    starts.walls.erase(wall);
    if (value.form != DateValue::Form::Utc) continue;
    for (const qint64 name : timing.namesOf(wall)) starts.walls.erase(name);
  }
}

/// Copies of a calendar may hold thousands of series with one UID and as many overrides: what these mean is
/// worked out once for all that are on the same clock.
Expansion::Changed& Expansion::changedOn(const Owners& owners, const EventRef& master, const Timing& timing,
                                         qint64 from, qint64 to) {
  const QString key = QStringLiteral("%1 %2 %3 %4 %5 ")
                          .arg(timing.allDay)
                          .arg(timing.utc)
                          .arg(timeOfWall(timing.start).msecsSinceStartOfDay())
                          .arg(from)
                          .arg(to) +
                      timing.tzid + u'\0' + master.file->name;
  if (changedOf_ != owners.mark()) changed_.clear();
  changedOf_ = owners.mark();
  std::shared_ptr<Changed>& known = changed_[key];
  if (known && known->zone == timing.zone && known->home == timing.home) return *known;
  known = std::make_shared<Changed>();
  Changed& changed = *known;
  changed.zone = timing.zone;
  changed.home = timing.home;
  const QList<qsizetype>& numbers = owners.in(master.file->name);
  if (stepsLeft_ == 0 && numbers.size() > stepsOfTheRest / stepsOfAName) {
    changed.tooMuch = true;
    return changed;
  }
  qint64 widest = 0;
  for (const qsizetype i : numbers) {
    const EventRef& override = owners.group().overrides[i];
    if (!override.event->thisAndFuture || !override.event->start) continue;
    const qint64 id = reader_.wallOn(timing, *override.file, *override.event, *override.event->recurrenceId);
    changed.futures.push_back({id, override, reader_.timingOf(*override.file, *override.event)});
    widest = qMax(widest, qAbs(changed.futures.back().timing.start - id));
  }
  stepsLeft_ = qMax(0, stepsLeft_ - static_cast<int>(changed.futures.size()) * 2 * stepsOfAName);
  std::stable_sort(changed.futures.begin(), changed.futures.end(),
                   [](const Future& a, const Future& b) { return a.id < b.id; });
  changed.from = from - widest;
  changed.to = to + widest;
  return changed;
}

void Expansion::findReplaced(const Owners& owners, const EventRef& master, const Timing& timing,
                             Changed& changed) {
  changed.replaced.emplace();
  int named = 0;
  for (const qsizetype i : owners.in(master.file->name)) {
    const EventRef& override = owners.group().overrides[i];
    const DateValue& name = *override.event->recurrenceId;
    const qint64 written = name.wall();
    if (written < changed.from - widestName || written > changed.to + widestName) continue;
    const qint64 id = reader_.wallOn(timing, *override.file, *override.event, name);
    changed.replaced->insert(id);
    ++named;
    if (name.form == DateValue::Form::Utc)
      for (const qint64 other : timing.namesOf(id)) changed.replaced->insert(other);
  }
  stepsLeft_ = static_cast<int>(qMax<qint64>(0, stepsLeft_ - qint64(named) * stepsOfAName));
}

/// The occurrences whose original start lies between two wall-clock times, without those that overrides
/// replace.
QList<Occurrence> Expansion::occurrences(const Owners& owners, const EventRef& master, qint64 from,
                                         qint64 to) {
  const Timing timing = reader_.timingOf(*master.file, *master.event);
  Changed& changed = changedOn(owners, master, timing, from, to);
  if (changed.tooMuch) {
    note(master, QStringLiteral("A series has too many changed occurrences to be followed; it is left out."));
    return {};
  }
  const Starts starts = startsOf(master, timing, changed.from, changed.to);
  if (starts.walls.empty()) return {};
  if (!changed.replaced) findReplaced(owners, master, timing, changed);
  const QSet<qint64>& replaced = *changed.replaced;
  QList<Occurrence> result;
  for (const qint64 wall : starts.walls) {
    if (replaced.contains(wall)) continue;
    const qint64 shownAs = timing.shownAs(wall);
    if (shownAs != wall && starts.walls.count(shownAs) && !replaced.contains(shownAs)) continue;
    Occurrence occurrence{master, wall, wall, timing.length, timing};
    const auto length = starts.lengths.find(wall);
    if (length != starts.lengths.end()) occurrence.length = length->second;
    const auto later = std::partition_point(changed.futures.begin(), changed.futures.end(),
                                            [&](const Future& future) { return future.id < wall; });
    if (later != changed.futures.begin()) {
      const Future& future = *std::prev(later);
      occurrence = {future.ref, wall, wall + (future.timing.start - future.id), future.timing.length,
                    future.timing};
    }
    if (!occurrence.from.event->cancelled) result.append(occurrence);
  }
  return result;
}

std::optional<Occurrence> Expansion::occurrence(const Owners& owners, const EventRef& master,
                                                const QString& recurrenceId) {
  const auto value = dateValue(recurrenceId.toLatin1(), {});
  if (!value || !master.event->start || !master.event->isSeries()) return std::nullopt;
  for (const Occurrence& occurrence :
       occurrences(owners, master, value->wall() - 2 * dayMs, value->wall() + 2 * dayMs))
    if (occurrence.id == value->wall()) return occurrence;
  return std::nullopt;
}

}  // namespace platform::calendar::icalendar

#pragma once
#include "platform/calendar/icalendar/expansion.h"

#include <set>
#include <tuple>

// Asking a file for its items as a store does.
namespace fuzz {

inline QList<platform::calendar::icalendar::Group> groupsOf(
    const std::shared_ptr<const platform::calendar::icalendar::CalendarFile>& file) {
  using platform::calendar::icalendar::Group;
  QMap<QString, Group> groups;
  for (const auto& event : file->events) {
    Group& group = groups[event.uid];
    (event.isOverride() ? group.overrides : group.masters).append({file, &event});
  }
  return groups.values();
}

struct Found {
  QList<platform::calendar::Item> items;
  QList<platform::calendar::Problem> problems;
};

/// `zones` lives as long as one input: evaluating a definition is what costs most of the time.
inline Found find(platform::calendar::icalendar::ZoneBook& zones,
                  const QList<platform::calendar::icalendar::Group>& groups,
                  const platform::calendar::Query& query) {
  Found found;
  platform::calendar::icalendar::Expansion expansion(zones, query, &found.problems);
  for (const auto& group : groups) expansion.add(group, found.items);
  return found;
}

inline platform::calendar::Query occurrencesBetween(const QDateTime& from, const QDateTime& to) {
  platform::calendar::Query query;
  query.startFrom = from;
  query.startTo = to;
  query.expandSeries = true;
  query.zone = from.timeZone();
  return query;
}

/// What is shown of an item, in an order.
using Shown = std::tuple<qint64, qint64, QString, QString, QString>;
inline std::multiset<Shown> shown(const QList<platform::calendar::Item>& items) {
  std::multiset<Shown> all;
  for (const auto& item : items)
    all.insert({item.start.toMSecsSinceEpoch(), item.end.toMSecsSinceEpoch(), item.key.place, item.key.uid,
                item.key.recurrenceId});
  return all;
}

}  // namespace fuzz

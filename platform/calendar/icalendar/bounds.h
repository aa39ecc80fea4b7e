#pragma once
#include <QtGlobal>

// Between which moments an event can stand, whoever looks at it and from wherever.
namespace platform::calendar::icalendar {

struct Event;

/// Milliseconds of UTC. No occurrence starts before `earliest` or after `latest`, none ends after
/// `latestEnd`: not in any zone of a viewer, and whatever zones the file defines. The greatest and the least
/// value stand for "no bound"; an event without a readable start has `earliest` behind `latest`. Overrides
/// have bounds of their own, and one that holds for the occurrences that follow has no end.
struct Bounds {
  qint64 earliest = 0;
  qint64 latest = 0;
  qint64 latestEnd = 0;
};

/// Costs a walk only where a rule has a COUNT, and then a short one.
Bounds boundsOf(const Event& event);

}  // namespace platform::calendar::icalendar

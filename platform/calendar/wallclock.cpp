#include "platform/calendar/wallclock.h"

namespace platform::calendar {

namespace {

constexpr qint64 secondsOfDay = 24 * 60 * 60;

/// The moment that shows `asUtc` on a clock which is `offset` seconds ahead of UTC.
QDateTime withOffset(const QDateTime& asUtc, int offset) {
  return asUtc.addSecs(-offset);
}

}  // namespace

QDateTime instantAt(const QDate& day, const QTime& time, const QTimeZone& zone, Twice twice) {
  const QDateTime asUtc(day, time.isValid() ? time : QTime(0, 0), Qt::UTC);
  if (!asUtc.isValid() || !zone.isValid()) return {};
  const int before = zone.offsetFromUtc(asUtc.addSecs(-secondsOfDay));
  const int after = zone.offsetFromUtc(asUtc.addSecs(secondsOfDay));
  const QDateTime first = withOffset(asUtc, before);
  const QDateTime second = withOffset(asUtc, after);
  const bool secondHolds = zone.offsetFromUtc(second) == after;
  // where neither holds the clocks jump over the time; where both do it comes twice
  const bool firstHolds = zone.offsetFromUtc(first) == before;
  const bool takeSecond = secondHolds && (!firstHolds || twice == Twice::Second);
  return (takeSecond ? second : first).toTimeZone(zone);
}

}  // namespace platform::calendar

#include "platform/basic/clock.h"

#include <chrono>

namespace platform::basic {

namespace {

std::shared_ptr<const Clock> machineClock() {
  static const std::shared_ptr<const Clock> clock = std::make_shared<Clock>();
  return clock;
}

std::shared_ptr<const Clock>& inForce() {
  static std::shared_ptr<const Clock> clock = machineClock();
  return clock;
}

/// The instant at which the zone's wall clock shows this time; an hour that summer time leaves out is read
/// by the offset before the change, so it lies as long after it.
QDateTime instantOf(const QDate& day, const QTime& time, const QTimeZone& zone) {
  const QDateTime wall(day, time, zone);
  if (wall.isValid()) return wall;
  const QDateTime asUtc(day, time, Qt::UTC);
  return asUtc.addSecs(-zone.offsetFromUtc(asUtc.addDays(-1))).toTimeZone(zone);
}

}  // namespace

QDateTime Clock::now() const {
  return QDateTime::currentDateTimeUtc().toTimeZone(zone());
}

QTimeZone Clock::zone() const {
  return QTimeZone::systemTimeZone();
}

qint64 Clock::milliseconds() const {
  using namespace std::chrono;
  return duration_cast<std::chrono::milliseconds>(steady_clock::now().time_since_epoch()).count();
}

const Clock& Clock::current() {
  return *inForce();
}

ScopedClock::ScopedClock(std::shared_ptr<const Clock> clock) : previous_(inForce()) {
  inForce() = clock ? std::move(clock) : machineClock();
}

ScopedClock::~ScopedClock() {
  inForce() = previous_;
}

FixedClock::FixedClock(const QDateTime& local, const QByteArray& zoneId)
    : zone_(zoneId), now_(instantOf(local.date(), local.time(), zone_)) {}

Date Now() {
  const QDateTime now = Clock::current().now();
  const QTime time = now.time();
  return Date::of(now.date(), QTime(time.hour(), time.minute(), time.second()));
}

Date Today() {
  return Date::of(Clock::current().now().date());
}

int Weekday(const Date& date, int firstDay) {
  const int fromSunday = date.date().dayOfWeek() % 7;  // 0 = Sunday
  return (fromSunday - (firstDay - vbSunday) + 7) % 7 + 1;
}

}  // namespace platform::basic

#include "platform/outlook/times.h"

#include "platform/basic/clock.h"
#include "platform/calendar/wallclock.h"

namespace platform::outlook {

basic::Date onUsersClock(const QDateTime& moment) {
  return basic::Date::fromLocal(moment.toTimeZone(basic::Clock::current().zone()));
}

QDateTime momentOf(const basic::Date& wallClock) {
  return calendar::instantAt(wallClock.date(), wallClock.time(), basic::Clock::current().zone());
}

}  // namespace platform::outlook

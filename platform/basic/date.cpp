#include "platform/basic/numbers.h"
#include "platform/basic/value.h"

#include <cmath>

// Before 30 December 1899 the whole part counts days backwards while the fraction still runs forwards: -1.25
// is 6 o'clock on the 29th.

namespace platform::basic {

namespace {

constexpr int kSecondsOfDay = 86400;
constexpr int kFirstYear = 100;
constexpr int kLastYear = 9999;

QDate dayZero() {
  return QDate(1899, 12, 30);
}

struct DayAndSeconds {
  qint64 day = 0;
  int seconds = 0;
};

DayAndSeconds split(double serial) {
  const double day = std::trunc(serial);
  if (!(day >= firstDate && day < afterLastDate)) throwOverflow();
  DayAndSeconds parts{static_cast<qint64>(day),
                      static_cast<int>(std::lround(std::abs(serial - day) * kSecondsOfDay))};
  if (parts.seconds == kSecondsOfDay) {
    ++parts.day;
    parts.seconds = 0;
  }
  return parts;
}

}  // namespace

Date Date::of(const QDate& day, const QTime& time) {
  const double days = static_cast<double>(dayZero().daysTo(day));
  const double fraction = time.msecsSinceStartOfDay() / (kSecondsOfDay * 1000.0);
  return Date(days < 0 ? days - fraction : days + fraction);
}

Date Date::of(int year, int month, int day) {
  if (year < kFirstYear || year > kLastYear) throwOverflow();
  const QDate date = QDate(year, 1, 1).addMonths(month - 1).addDays(qint64(day) - 1);
  if (!date.isValid() || date.year() < kFirstYear || date.year() > kLastYear) throwOverflow();
  return of(date);
}

Date Date::fromLocal(const QDateTime& local) {
  return of(local.date(), local.time());
}

QDate Date::date() const {
  return dayZero().addDays(split(serial_).day);
}

QTime Date::time() const {
  return QTime::fromMSecsSinceStartOfDay(split(serial_).seconds * 1000);
}

QDateTime Date::toLocal() const {
  return QDateTime(date(), time());
}

Date Date::dateOnly() const {
  return Date(static_cast<double>(split(serial_).day));
}

Date Date::addDays(double days) const {
  const Date sum(serial_ + days);
  split(sum.serial_);
  return sum;
}

}  // namespace platform::basic

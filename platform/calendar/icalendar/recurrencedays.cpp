#include "platform/calendar/icalendar/recurrencedays.h"

#include <algorithm>
#include <numeric>

namespace platform::calendar::icalendar {
namespace {

using Frequency = Rule::Frequency;

// after so many years the Gregorian calendar comes again, weekdays included
constexpr int cycleYears = 400;
constexpr int cycleMonths = cycleYears * 12;
constexpr int anyCycle = 2000;                  // the year in which one begins
constexpr int kindsOfMonths = 13 * daysOfWeek;  // February is of two lengths
constexpr int firstKnownYear = 3;               // the years around those of a kind must be there

/// The day's place in a week that begins on the rule's own first weekday.
int placeInWeek(const Rule& rule, const QDate& date) {
  return (date.dayOfWeek() - rule.weekStart + daysOfWeek) % daysOfWeek;
}

/// The first day of the first week of a year: the week that holds its fourth day.
QDate firstWeekOf(const Rule& rule, int year) {
  const QDate fourth(year, 1, 4);
  return fourth.addDays(-placeInWeek(rule, fourth));
}

/// A week counts in the year that has most of its days, so the last days of a year may stand in the next
/// one's first week.
bool suitsWeek(const Rule& rule, const QDate& date) {
  if (rule.byWeekNo.isEmpty()) return true;
  int year = date.year() + 1;
  while (date < firstWeekOf(rule, year)) --year;
  const qint64 week = firstWeekOf(rule, year).daysTo(date) / daysOfWeek + 1;
  const qint64 weeks = firstWeekOf(rule, year).daysTo(firstWeekOf(rule, year + 1)) / daysOfWeek;
  return rule.byWeekNo.contains(static_cast<int>(week)) ||
         rule.byWeekNo.contains(static_cast<int>(week - weeks - 1));
}

/// "MO" is every Monday; "2MO" the second of the month, and of the year where a yearly rule names no month.
bool suitsWeekday(const Rule& rule, const QDate& date) {
  if (rule.byDay.isEmpty()) return true;
  const bool counts = rule.frequency >= Frequency::Monthly && rule.byWeekNo.isEmpty();
  const bool withinMonth = rule.frequency == Frequency::Monthly || !rule.byMonth.isEmpty();
  const int at = withinMonth ? date.day() : date.dayOfYear();
  const int size = withinMonth ? date.daysInMonth() : date.daysInYear();
  return std::any_of(rule.byDay.begin(), rule.byDay.end(), [&](const QPair<int, int>& day) {
    if (day.second != date.dayOfWeek() % daysOfWeek) return false;
    return day.first == 0 || !counts || day.first == (at - 1) / daysOfWeek + 1 ||
           day.first == -((size - at) / daysOfWeek + 1);
  });
}

/// The first number of a list that is not below that one; that one itself of an empty list, -1 when there is
/// none.
int nextOf(const QList<int>& list, int value) {
  if (list.isEmpty()) return value;
  const auto next = std::lower_bound(list.begin(), list.end(), value);
  return next == list.end() ? -1 : *next;
}

}  // namespace

bool suitsDay(const Rule& rule, const QDate& date) {
  if (!rule.byMonth.isEmpty() && !rule.byMonth.contains(date.month())) return false;
  if (!rule.byMonthDay.isEmpty() && !rule.byMonthDay.contains(date.day()) &&
      !rule.byMonthDay.contains(date.day() - date.daysInMonth() - 1))
    return false;
  if (!rule.byYearDay.isEmpty() && !rule.byYearDay.contains(date.dayOfYear()) &&
      !rule.byYearDay.contains(date.dayOfYear() - date.daysInYear() - 1))
    return false;
  return suitsWeekday(rule, date) && suitsWeek(rule, date);
}

QList<qint64> timesOf(const Rule& rule, const QTime& own) {
  const auto named = [](const QList<int>& by, int value) { return by.isEmpty() ? QList<int>{value} : by; };
  QList<qint64> times;
  for (const int hour : named(rule.byHour, own.hour()))
    for (const int minute : named(rule.byMinute, own.minute()))
      for (const int second : named(rule.bySecond, own.second()))
        times.append(hour * hourMs + minute * minuteMs + second * secondMs);
  return times;
}

qint64 nextTimeOf(const Rule& rule, qint64 step) {
  const QTime time = timeOfWall(step);
  const qint64 midnight = step - time.msecsSinceStartOfDay();
  const int hour = nextOf(rule.byHour, time.hour());
  if (hour < 0) return midnight + dayMs;
  if (hour > time.hour()) return midnight + hour * hourMs;
  if (rule.frequency == Frequency::Hourly) return step;
  const qint64 thisHour = midnight + hour * hourMs;
  const int minute = nextOf(rule.byMinute, time.minute());
  if (minute < 0) return thisHour + hourMs;
  if (minute > time.minute()) return thisHour + minute * minuteMs;
  if (rule.frequency == Frequency::Minutely) return step;
  const qint64 thisMinute = thisHour + minute * minuteMs;
  const int second = nextOf(rule.bySecond, time.second());
  if (second < 0) return thisMinute + minuteMs;
  return second > time.second() ? thisMinute + second * secondMs : step;
}

bool meetsATime(const Rule& rule, qint64 start, qint64 stride) {
  const qint64 apart =
      std::gcd(stride, dayMs);  // day after day it comes upon all times so far from each other
  const qint64 first = timeOfWall(start).msecsSinceStartOfDay() % apart;
  for (qint64 time = first; time < dayMs;) {
    const qint64 next = nextTimeOf(rule, time);
    if (next == time) return true;
    time = first + (next - first + apart - 1) / apart * apart;
  }
  return false;
}

Periods::Periods(const Rule& rule, qint64 start) : rule_(rule), first_(dateOfWall(start)) {
  if (rule.frequency == Frequency::Weekly) first_ = first_.addDays(-placeInWeek(rule, first_));
  if (rule.frequency == Frequency::Monthly) first_ = QDate(first_.year(), first_.month(), 1);
  if (rule.frequency == Frequency::Yearly) first_ = QDate(first_.year(), 1, 1);
}

qint64 Periods::before(const QDate& day) const {
  const qint64 years = day.year() - first_.year();
  const qint64 units = rule_.frequency == Frequency::Yearly    ? years
                       : rule_.frequency == Frequency::Monthly ? years * 12 + day.month() - first_.month()
                       : rule_.frequency == Frequency::Weekly  ? first_.daysTo(day) / daysOfWeek
                                                               : first_.daysTo(day);
  return qMax<qint64>(0, units / rule_.interval);
}

QDate Periods::begin(qint64 number) const {
  const qint64 units = number * rule_.interval;
  if (rule_.frequency == Frequency::Yearly) return first_.addYears(static_cast<int>(units));
  if (rule_.frequency == Frequency::Monthly) {  // (addMonths goes there year by year)
    const qint64 months = first_.month() - 1 + units;
    return QDate(first_.year() + static_cast<int>(months / 12), static_cast<int>(months % 12) + 1, 1);
  }
  return first_.addDays(rule_.frequency == Frequency::Weekly ? units * daysOfWeek : units);
}

/// What a month's or a year's days depend on; -1 where each period is one of its own.
int Periods::kindOf(const QDate& begin) const {
  const int year = begin.year(), weekday = begin.dayOfWeek() - 1;
  if (rule_.frequency == Frequency::Monthly)
    return (begin.month() * daysOfWeek + weekday) * 2 + (begin.daysInMonth() == 29);
  if (rule_.frequency != Frequency::Yearly || year < firstKnownYear) return -1;
  // the weeks of a year may begin in the one before and end in the next one
  return ((weekday * 2 + QDate::isLeapYear(year - 1)) * 2 + QDate::isLeapYear(year)) * 2 +
         QDate::isLeapYear(year + 1);
}

QList<int> Periods::found(const QDate& begin) const {
  QList<int> days;
  const auto take = [&](const QDate& from, int count) {
    const int ahead = static_cast<int>(begin.daysTo(from));
    for (int i = 0; i < count; ++i)
      if (suitsDay(rule_, from.addDays(i))) days.append(ahead + i);
  };
  const auto takeMonth = [&](const QDate& first) {
    const QList<int>& named = rule_.byMonthDay;
    const int size = first.daysInMonth();
    if (named.isEmpty()) return take(first, size);
    for (int day = 1; day <= size; ++day)  // before any date is made, which is what costs time
      if (named.contains(day) || named.contains(day - size - 1)) take(first.addDays(day - 1), 1);
  };
  if (rule_.frequency == Frequency::Daily) take(begin, 1);
  if (rule_.frequency == Frequency::Weekly) take(begin, daysOfWeek);
  if (rule_.frequency == Frequency::Monthly) takeMonth(begin);
  if (rule_.frequency == Frequency::Yearly)
    for (QDate month = begin; month.year() == begin.year(); month = month.addMonths(1))
      if (rule_.byMonth.isEmpty() || rule_.byMonth.contains(month.month())) takeMonth(month);
  return days;
}

const QList<int>& Periods::days(const QDate& begin) {
  const int kind = kindOf(begin);
  if (kind < 0) return last_ = found(begin);
  const auto known = known_.constFind(kind);
  return known != known_.cend() ? *known : *known_.insert(kind, found(begin));
}

/// Of that many starts of one period, whether the rule takes any.
bool Periods::hasPlace(qint64 starts) const {
  if (rule_.bySetPos.isEmpty()) return starts > 0;
  return std::any_of(rule_.bySetPos.begin(), rule_.bySetPos.end(),
                     [&](int position) { return qAbs(position) <= starts; });
}

bool Periods::anyKindMeets(qint64 times) {
  const bool byMonth = rule_.frequency == Frequency::Monthly;
  const int cycle = byMonth ? cycleMonths : cycleYears;
  const int apart = std::gcd(rule_.interval, cycle);  // beat after beat it comes upon all so far apart
  const int first = byMonth ? first_.year() * 12 + first_.month() - 1 : first_.year();
  const auto meets = [&](const QList<int>& days) { return hasPlace(days.size() * times); };
  if (std::any_of(known_.begin(), known_.end(), meets)) return true;
  for (int unit = first; unit < first + cycle; unit += apart) {
    if (byMonth && known_.size() == kindsOfMonths) return false;
    const int place = (unit % cycle + cycle) % cycle;
    const QDate begin =
        byMonth ? QDate(anyCycle + place / 12, place % 12 + 1, 1) : QDate(anyCycle + place, 1, 1);
    if (meets(days(begin))) return true;
  }
  return false;
}

bool Periods::everMeet(qint64 times) {
  if (rule_.frequency >= Frequency::Monthly) return anyKindMeets(times);
  if (rule_.frequency == Frequency::Weekly) return hasPlace(daysOfWeek * times);
  const bool onOneWeekday = rule_.interval % daysOfWeek == 0;
  const auto isIt = [&](const QPair<int, int>& day) { return day.second == first_.dayOfWeek() % daysOfWeek; };
  return hasPlace(times) && (!onOneWeekday || rule_.byDay.isEmpty() ||
                             std::any_of(rule_.byDay.begin(), rule_.byDay.end(), isIt));
}

}  // namespace platform::calendar::icalendar

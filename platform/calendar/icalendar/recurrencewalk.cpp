#include "platform/calendar/icalendar/recurrence.h"

#include <algorithm>

namespace platform::calendar::icalendar {
namespace {

using Frequency = Rule::Frequency;

constexpr int daysOfWeek = 7;

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

/// Minds COUNT, UNTIL and the window for a rule's walk.
class Counter {
 public:
  Counter(const Rule& rule, qint64 start, qint64 until, qint64 from, qint64 to,
          const std::function<bool(qint64)>& take, int maxSteps)
      : rule_(rule), start_(start), last_(qMin(until, to)), from_(from), take_(take), maxSteps_(maxSteps) {}

  /// False when the walk is at its end.
  bool offer(qint64 wall) {
    if (++steps_ > maxSteps_) {
      brokenOff_ = true;
      return false;
    }
    if (wall > last_) return false;
    if (rule_.count > 0) {
      if (counted_ == 0 && wall != start_)
        counted_ = 1;  // the series' own start counts, whether it suits or not
      if (++counted_ > rule_.count) return false;
    }
    return wall < from_ || take_(wall);
  }
  bool pass() {  // a step that made nothing
    brokenOff_ = ++steps_ > maxSteps_;
    return !brokenOff_;
  }
  bool whole() const { return !brokenOff_; }

 private:
  const Rule& rule_;
  qint64 start_, last_, from_;
  const std::function<bool(qint64)>& take_;
  int maxSteps_;
  int counted_ = 0;
  int steps_ = 0;
  bool brokenOff_ = false;
};

bool holds(const QList<int>& list, int value) {
  return list.isEmpty() || list.contains(value);
}

/// The starts within one step: an hourly rule may name minutes, a minutely one seconds.
QList<qint64> startsInStep(const Rule& rule, qint64 step) {
  const QTime time = timeOfWall(step);
  const auto values = [](const QList<int>& by, int own) {
    QList<int> list = by.isEmpty() ? QList<int>{own} : by;
    std::sort(list.begin(), list.end());
    return list;
  };
  QList<qint64> starts;
  if (rule.frequency == Rule::Frequency::Hourly) {
    const qint64 hour = step - time.minute() * minuteMs - time.second() * secondMs;
    for (const int minute : values(rule.byMinute, time.minute()))
      for (const int second : values(rule.bySecond, time.second()))
        starts.append(hour + minute * minuteMs + second * secondMs);
  } else if (rule.frequency == Rule::Frequency::Minutely) {
    if (!holds(rule.byMinute, time.minute())) return {};
    for (const int second : values(rule.bySecond, time.second()))
      starts.append(step - time.second() * secondMs + second * secondMs);
  } else if (holds(rule.byMinute, time.minute()) && holds(rule.bySecond, time.second())) {
    starts.append(step);
  }
  return starts;
}

/// Hours, minutes and seconds are of one length and are stepped one by one.
bool walkSubDaily(const Rule& rule, qint64 start, qint64 from, qint64 to, Counter& counter) {
  const qint64 unit = rule.frequency == Rule::Frequency::Hourly     ? hourMs
                      : rule.frequency == Rule::Frequency::Minutely ? minuteMs
                                                                    : secondMs;
  const qint64 stride = unit * rule.interval;
  const auto alignedFrom = [&](qint64 wall) { return start + (wall - start + stride - 1) / stride * stride; };
  qint64 step = rule.count > 0 || from <= start ? start : alignedFrom(from - hourMs);
  step = qMax(step, start);
  while (step <= to) {
    if (!suitsDay(rule, dateOfWall(step))) {
      if (!counter.pass()) break;
      step = alignedFrom(wallOf(dateOfWall(step).addDays(1), QTime(0, 0)));
      continue;
    }
    if (holds(rule.byHour, timeOfWall(step).hour()))
      for (const qint64 wall : startsInStep(rule, step))
        if (wall >= start && !counter.offer(wall)) return counter.whole();
    if (!counter.pass()) break;
    step += stride;
  }
  return counter.whole();
}

/// The times of a day, in order, as milliseconds behind its midnight.
QList<qint64> timesOf(const Rule& rule, const QTime& own) {
  const auto named = [](const QList<int>& by, int value) { return by.isEmpty() ? QList<int>{value} : by; };
  QList<qint64> times;
  for (const int hour : named(rule.byHour, own.hour()))
    for (const int minute : named(rule.byMinute, own.minute()))
      for (const int second : named(rule.bySecond, own.second()))
        times.append(hour * hourMs + minute * minuteMs + second * secondMs);
  return times;
}

/// The days, weeks, months or years of a rule, one beat apart; the first one holds the start.
class Periods {
 public:
  Periods(const Rule& rule, qint64 start) : rule_(rule), first_(dateOfWall(start)) {
    if (rule.frequency == Frequency::Weekly) first_ = first_.addDays(-placeInWeek(rule, first_));
    if (rule.frequency == Frequency::Monthly) first_ = QDate(first_.year(), first_.month(), 1);
    if (rule.frequency == Frequency::Yearly) first_ = QDate(first_.year(), 1, 1);
  }

  /// The number of a period that begins on that day or before.
  qint64 before(const QDate& day) const {
    const qint64 years = day.year() - first_.year();
    const qint64 units = rule_.frequency == Frequency::Yearly    ? years
                         : rule_.frequency == Frequency::Monthly ? years * 12 + day.month() - first_.month()
                         : rule_.frequency == Frequency::Weekly  ? first_.daysTo(day) / daysOfWeek
                                                                 : first_.daysTo(day);
    return qMax<qint64>(0, units / rule_.interval);
  }

  QDate begin(qint64 number) const {
    const qint64 units = number * rule_.interval;
    if (rule_.frequency == Frequency::Yearly) return first_.addYears(static_cast<int>(units));
    if (rule_.frequency == Frequency::Monthly) return first_.addMonths(static_cast<int>(units));
    return first_.addDays(rule_.frequency == Frequency::Weekly ? units * daysOfWeek : units);
  }

  /// The days that suit the rule, of the period that begins on that day.
  QList<QDate> days(const QDate& begin) const {
    QList<QDate> found;
    const auto take = [&](QDate day, qint64 count) {
      for (; count > 0; --count, day = day.addDays(1))
        if (suitsDay(rule_, day)) found.append(day);
    };
    if (rule_.frequency == Frequency::Daily) take(begin, 1);
    if (rule_.frequency == Frequency::Weekly) take(begin, daysOfWeek);
    if (rule_.frequency == Frequency::Monthly) take(begin, begin.daysInMonth());
    if (rule_.frequency == Frequency::Yearly)
      for (QDate month = begin; month.year() == begin.year(); month = month.addMonths(1))
        if (rule_.byMonth.isEmpty() || rule_.byMonth.contains(month.month()))
          take(month, month.daysInMonth());
    return found;
  }

 private:
  const Rule& rule_;
  QDate first_;
};

/// The starts of one period, each counted as it is made: a rule that names hours, minutes and seconds makes
/// millions. False when the walk is at its end.
bool offerAll(const QList<QDate>& days, const QList<qint64>& times, qint64 start, Counter& counter) {
  for (const QDate& day : days) {
    const qint64 midnight = wallOf(day, QTime(0, 0));
    for (const qint64 time : times)
      if (midnight + time >= start && !counter.offer(midnight + time)) return false;
  }
  return true;
}

/// Of the starts of one period those at the rule's positions, in order.
bool offerAtPositions(const Rule& rule, const QList<QDate>& days, const QList<qint64>& times, qint64 start,
                      Counter& counter) {
  const qint64 count = days.size() * times.size();
  QList<qint64> places;
  for (const int position : rule.bySetPos) {
    const qint64 place = position > 0 ? position - 1 : count + position;
    if (place >= 0 && place < count) places.append(place);
  }
  std::sort(places.begin(), places.end());
  places.erase(std::unique(places.begin(), places.end()), places.end());
  for (const qint64 place : std::as_const(places)) {
    const qint64 wall = wallOf(days[place / times.size()], QTime(0, 0)) + times[place % times.size()];
    if (wall >= start && !counter.offer(wall)) return false;
  }
  return true;
}

bool walkPeriods(const Rule& rule, qint64 start, qint64 from, qint64 last, Counter& counter) {
  const Periods periods(rule, start);
  const QList<qint64> times = timesOf(rule, timeOfWall(start));
  qint64 number = rule.count == 0 && from > start ? periods.before(dateOfWall(from)) : 0;
  for (;; ++number) {
    const QDate begin = periods.begin(number);
    if (!begin.isValid() || wallOf(begin, QTime(0, 0)) > last) return counter.whole();
    if (!(rule.bySetPos.isEmpty() ? offerAll(periods.days(begin), times, start, counter)
                                  : offerAtPositions(rule, periods.days(begin), times, start, counter)) ||
        !counter.pass())
      return counter.whole();
  }
}

}  // namespace

Rule Rule::completed(qint64 start) const {
  Rule rule = *this;
  const QDate first = dateOfWall(start);
  const QList<QPair<int, int>> ownWeekday{{0, first.dayOfWeek() % daysOfWeek}};
  const bool namesDays = !byDay.isEmpty() || !byMonthDay.isEmpty() || !byYearDay.isEmpty();
  if (namesDays || frequency <= Frequency::Daily) return rule;
  if (frequency == Frequency::Weekly || !byWeekNo.isEmpty()) {
    rule.byDay = ownWeekday;
    return rule;
  }
  rule.byMonthDay = {first.day()};
  if (frequency == Frequency::Yearly && byMonth.isEmpty()) rule.byMonth = {first.month()};
  return rule;
}

bool walk(const Rule& rule, qint64 start, qint64 until, qint64 from, qint64 to,
          const std::function<bool(qint64)>& take, int maxSteps) {
  Counter counter(rule, start, until, from, to, take, maxSteps);
  if (start > to || until < start) return true;
  if (rule.isSubDaily()) return walkSubDaily(rule, start, from, to, counter);
  return walkPeriods(rule.completed(start), start, from, qMin(until, to), counter);
}

}  // namespace platform::calendar::icalendar

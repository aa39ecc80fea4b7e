#include "platform/calendar/icalendar/recurrencedays.h"

#include <algorithm>
#include <limits>

namespace platform::calendar::icalendar {
namespace {

using Frequency = Rule::Frequency;

// so many periods or steps in a row may have no start before it is asked whether any can
constexpr int patience = 50;
constexpr int shortestMonth = 28;  // days

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
    ++offered_;
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
  /// So many starts lie ahead of the window, the series' own among them.
  void skip(qint64 starts) {
    counted_ = static_cast<int>(qMin<qint64>(starts, std::numeric_limits<int>::max() - 1));
  }
  int steps() const { return steps_; }
  int offered() const { return offered_; }

 private:
  const Rule& rule_;
  qint64 start_, last_, from_;
  const std::function<bool(qint64)>& take_;
  int maxSteps_;
  int counted_ = 0;
  int steps_ = 0;
  int offered_ = 0;
  bool brokenOff_ = false;
};

/// The starts within one step that the rule names: an hourly rule may name minutes, a minutely one seconds.
QList<qint64> startsInStep(const Rule& rule, qint64 step) {
  if (rule.frequency == Frequency::Secondly) return {step};
  const QTime time = timeOfWall(step);
  const auto named = [](const QList<int>& by, int own) { return by.isEmpty() ? QList<int>{own} : by; };
  const qint64 minute = step - time.second() * secondMs;
  QList<qint64> starts;
  if (rule.frequency == Frequency::Minutely) {
    for (const int second : named(rule.bySecond, time.second())) starts.append(minute + second * secondMs);
    return starts;
  }
  const qint64 hour = minute - time.minute() * minuteMs;
  for (const int ofHour : named(rule.byMinute, time.minute()))
    for (const int second : named(rule.bySecond, time.second()))
      starts.append(hour + ofHour * minuteMs + second * secondMs);
  return starts;
}

/// Whether every period has one start, as of a rule that names nothing besides its frequency: then they need
/// not be counted one by one.
bool comesOnceAPeriod(const Rule& written, qint64 start) {
  const bool namesNothing =
      written.byMonth.isEmpty() && written.byMonthDay.isEmpty() && written.byYearDay.isEmpty() &&
      written.byWeekNo.isEmpty() && written.byDay.isEmpty() && written.byHour.isEmpty() &&
      written.byMinute.isEmpty() && written.bySecond.isEmpty() && written.bySetPos.isEmpty();
  return namesNothing && (written.frequency <= Frequency::Weekly || dateOfWall(start).day() <= shortestMonth);
}

/// Hours, minutes and seconds are of one length and are stepped one by one.
bool walkSubDaily(const Rule& rule, qint64 start, qint64 from, qint64 to, Counter& counter) {
  const qint64 unit = rule.frequency == Frequency::Hourly     ? hourMs
                      : rule.frequency == Frequency::Minutely ? minuteMs
                                                              : secondMs;
  const qint64 stride = unit * rule.interval;
  const auto alignedFrom = [&](qint64 wall) { return start + (wall - start + stride - 1) / stride * stride; };
  qint64 step = start;
  if (from > start + hourMs && (rule.count == 0 || comesOnceAPeriod(rule, start))) {
    step = alignedFrom(from - hourMs);
    counter.skip((step - start) / stride);
  }
  int fruitless = 0;
  while (step - unit < to) {  // its starts may come ahead of it
    const qint64 next = suitsDay(rule, dateOfWall(step)) ? nextTimeOf(rule, step)
                                                         : wallOf(dateOfWall(step).addDays(1), QTime(0, 0));
    if (next == step)
      for (const qint64 wall : startsInStep(rule, step))
        if (wall >= start && !counter.offer(wall)) return counter.whole();
    if (!counter.pass()) break;
    fruitless = next == step ? 0 : fruitless + 1;
    if (fruitless == patience && !meetsATime(rule, start, stride)) break;
    step = next == step ? step + stride : alignedFrom(next);
  }
  return counter.whole();
}

/// The starts of one period, each counted as it is made: a rule that names hours, minutes and seconds makes
/// millions. False when the walk is at its end.
bool offerAll(const QDate& begin, const QList<int>& days, const QList<qint64>& times, qint64 start,
              Counter& counter) {
  for (const int day : days) {
    const qint64 midnight = wallOf(begin, QTime(0, 0)) + day * dayMs;
    for (const qint64 time : times)
      if (midnight + time >= start && !counter.offer(midnight + time)) return false;
  }
  return true;
}

/// Of the starts of one period those at the rule's positions, in order.
bool offerAtPositions(const Rule& rule, const QDate& begin, const QList<int>& days,
                      const QList<qint64>& times, qint64 start, Counter& counter) {
  const qint64 count = days.size() * times.size();
  QList<qint64> places;
  for (const int position : rule.bySetPos) {
    const qint64 place = position > 0 ? position - 1 : count + position;
    if (place >= 0 && place < count) places.append(place);
  }
  std::sort(places.begin(), places.end());
  places.erase(std::unique(places.begin(), places.end()), places.end());
  for (const qint64 place : std::as_const(places)) {
    const qint64 wall =
        wallOf(begin, QTime(0, 0)) + days[place / times.size()] * dayMs + times[place % times.size()];
    if (wall >= start && !counter.offer(wall)) return false;
  }
  return true;
}

bool walkPeriods(const Rule& written, qint64 start, qint64 from, qint64 last, Counter& counter) {
  const Rule rule = written.completed(start);
  Periods periods(rule, start);
  const QList<qint64> times = timesOf(rule, timeOfWall(start));
  qint64 number = 0;
  if (from > start && (rule.count == 0 || comesOnceAPeriod(written, start))) {
    number = periods.before(dateOfWall(from));
    counter.skip(number);
  }
  for (int fruitless = 0;; ++number) {
    const QDate begin = periods.begin(number);
    if (!begin.isValid() || wallOf(begin, QTime(0, 0)) > last) return counter.whole();
    const QList<int>& days = periods.days(begin);
    const int offered = counter.offered();
    if (!(rule.bySetPos.isEmpty() ? offerAll(begin, days, times, start, counter)
                                  : offerAtPositions(rule, begin, days, times, start, counter)) ||
        !counter.pass())
      return counter.whole();
    fruitless = counter.offered() > offered ? 0 : fruitless + 1;
    if (fruitless == patience && !periods.everMeet(times.size())) return counter.whole();
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
          const std::function<bool(qint64)>& take, int maxSteps, int* steps) {
  Counter counter(rule, start, until, from, to, take, maxSteps);
  if (start > to || until < start) return true;
  const bool whole = rule.isSubDaily() ? walkSubDaily(rule, start, from, qMin(until, to), counter)
                                       : walkPeriods(rule, start, from, qMin(until, to), counter);
  if (steps) *steps += counter.steps();
  return whole;
}

}  // namespace platform::calendar::icalendar

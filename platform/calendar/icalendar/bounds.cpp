#include "platform/calendar/icalendar/bounds.h"

#include "platform/calendar/icalendar/calendarfile.h"
#include "platform/calendar/icalendar/recurrence.h"

#include <algorithm>
#include <limits>

namespace platform::calendar::icalendar {
namespace {

using Form = DateValue::Form;
using Frequency = Rule::Frequency;

constexpr qint64 without = std::numeric_limits<qint64>::max();
/// A definition in a file may be a day off UTC, and a skipped hour comes on top.
constexpr qint64 widestOffset = 26 * hourMs;
/// A moment in UTC that names a day: the day is that of the calendar's home, seen from the viewer's zone.
constexpr qint64 widestDay = 3 * dayMs;
/// From the start to the end the clocks can be changed once forth and once back, each by a day (Samoa did).
constexpr qint64 widestJumps = 2 * widestOffset;
constexpr qint64 longestDays = 36600;
constexpr int maxBoundSteps = 2000;

bool mayBeAllDay(const Event& event) {
  return event.start->form == Form::Date || event.markedAllDay;
}

/// How far the moment that a value means can be from its reading.
qint64 marginOf(const Event& event, const DateValue& value) {
  if (mayBeAllDay(event)) return value.form == Form::Date ? widestOffset : widestDay;
  const bool exact = value.form == Form::Utc && event.start->form == Form::Utc;
  return exact ? 0 : widestOffset;
}

qint64 plus(qint64 a, qint64 b) {
  return a > without - b ? without : a + b;
}

/// The days of a period that have to be looked at; years of one kind are looked at once.
int weightOf(const Rule& rule) {
  switch (rule.frequency) {
    case Frequency::Yearly:
    case Frequency::Monthly:
      return 31;
    case Frequency::Weekly:
      return 7;
    default:
      return 1;
  }
}

/// Whether each period surely has a start: then the number of periods is no greater than COUNT.
bool comesEachPeriod(const Rule& rule) {
  if (!rule.bySetPos.isEmpty() || !rule.byWeekNo.isEmpty() || !rule.byYearDay.isEmpty()) return false;
  const auto isSafeDay = [](int day) { return day <= 28 && day >= -28; };
  const auto isSafeWeekday = [](const QPair<int, int>& day) { return qAbs(day.first) <= 4; };
  const bool safeDays = std::any_of(rule.byMonthDay.begin(), rule.byMonthDay.end(), isSafeDay);
  const bool safeWeekdays = std::any_of(rule.byDay.begin(), rule.byDay.end(), isSafeWeekday);
  switch (rule.frequency) {
    case Frequency::Daily:
      return rule.byDay.isEmpty() && rule.byMonthDay.isEmpty() && rule.byMonth.isEmpty();
    case Frequency::Weekly:
      return rule.byMonth.isEmpty();
    case Frequency::Monthly:
      return rule.byMonth.isEmpty() &&
             ((rule.byDay.isEmpty() && safeDays) || (rule.byMonthDay.isEmpty() && safeWeekdays));
    case Frequency::Yearly:
      return (rule.byDay.isEmpty() && safeDays) || (rule.byMonthDay.isEmpty() && safeWeekdays);
    default:
      return rule.byDay.isEmpty() && rule.byMonthDay.isEmpty() && rule.byMonth.isEmpty() &&
             rule.byHour.isEmpty() && rule.byMinute.isEmpty() && rule.bySecond.isEmpty();
  }
}

qint64 longestPeriod(const Rule& rule) {
  switch (rule.frequency) {
    case Frequency::Yearly:
      return 366 * dayMs;
    case Frequency::Monthly:
      return 31 * dayMs;
    case Frequency::Weekly:
      return 7 * dayMs;
    case Frequency::Daily:
      return dayMs;
    case Frequency::Hourly:
      return hourMs;
    case Frequency::Minutely:
      return minuteMs;
    case Frequency::Secondly:
      break;
  }
  return secondMs;
}

/// The last start of a rule with COUNT, walked where that is short, else what cannot be passed.
qint64 lastCounted(const Rule& rule, qint64 start) {
  if (qint64(rule.count) * weightOf(rule) <= 4 * maxBoundSteps) {
    qint64 last = start;
    const auto remember = [&](qint64 wall) {
      last = wall;
      return true;
    };
    // each start is a step, and so is each period; of a rule whose days never meet only so many are looked at
    const int periods = 4 * maxBoundSteps / weightOf(rule.completed(start));
    const int steps = qMin(maxBoundSteps, qMax(2 * rule.count + 2, periods));
    if (walk(rule, start, without, start, without, remember, steps)) return last;
  }
  const qint64 stride = longestPeriod(rule) * rule.interval;
  const qint64 periods = qint64(rule.count) + 1;
  if (!comesEachPeriod(rule.completed(start)) || periods > (without - dayMs) / 2 / stride) return without;
  return start + periods * stride + dayMs;
}

/// The last reading that a rule with COUNT makes. An event that is only marked as lasting all day may turn
/// out to be one of days or one at a time, and its day is that of a zone that is not known here: the later
/// counts.
qint64 lastCountedOf(const Event& event, const Rule& rule) {
  const qint64 start = event.start->wall();
  Rule ofDays = rule;
  ofDays.clearTimes();
  if (event.start->form == Form::Date) return lastCounted(ofDays, start);
  if (!event.markedAllDay) return lastCounted(rule, start);
  if (rule.isSubDaily()) return without;  // of how many hours a day has what the rule names, depends on that
  qint64 last = qMax(lastCounted(rule, start), lastCounted(ofDays, start));
  if (event.start->form == Form::Utc)
    for (const qint64 shift : {-dayMs, dayMs}) last = qMax(last, lastCounted(ofDays, start + shift));
  return last;
}

/// The last reading that the rules of a series make.
qint64 lastByRules(const Event& event) {
  qint64 last = std::numeric_limits<qint64>::min();
  for (const QByteArray& text : event.rules) {
    QString why;
    const auto rule = ruleOf(text, &why);
    if (!rule) continue;
    qint64 ofRule = without;
    if (rule->until)
      ofRule = rule->until->wall() + marginOf(event, *rule->until) +
               (rule->until->form == Form::Date || mayBeAllDay(event) ? dayMs : 0);
    if (rule->count > 0)
      ofRule = qMin(ofRule, plus(lastCountedOf(event, *rule), marginOf(event, *event.start)));
    last = qMax(last, ofRule);
  }
  return last;
}

qint64 widestLength(const DateValue& start, const std::optional<DateValue>& end,
                    const std::optional<Span>& span) {
  if (end) return qMax<qint64>(0, end->wall() - start.wall()) + widestJumps + 2 * dayMs;
  if (span) return span->days * dayMs + span->exactMs + widestJumps;
  return widestJumps;
}

qint64 longestOf(const Event& event) {
  qint64 longest = widestLength(*event.start, event.end, event.span);
  if (mayBeAllDay(event)) longest = qMin(longest, longestDays * dayMs) + 2 * dayMs;
  for (const Period& period : event.moreStarts)
    longest = qMax(longest, widestLength(period.start, period.end, period.span));
  return longest;
}

}  // namespace

Bounds boundsOf(const Event& event) {
  if (!event.start) return {without, std::numeric_limits<qint64>::min(), std::numeric_limits<qint64>::min()};
  const qint64 start = event.start->wall(), margin = marginOf(event, *event.start);
  Bounds bounds{start - margin, start + margin, 0};
  if (event.isOverride()) {
    if (event.thisAndFuture) bounds.latest = without;
  } else {
    for (const Period& period : event.moreStarts) {
      const qint64 wall = period.start.wall(), own = marginOf(event, period.start);
      bounds.earliest = qMin(bounds.earliest, wall - own);
      // a date alone takes the time of the series
      bounds.latest = qMax(bounds.latest, wall + own + (period.start.form == Form::Date ? dayMs : 0));
    }
    bounds.latest = qMax(bounds.latest, lastByRules(event));
  }
  bounds.latestEnd = plus(bounds.latest, longestOf(event));
  return bounds;
}

}  // namespace platform::calendar::icalendar

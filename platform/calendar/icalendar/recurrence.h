#pragma once
#include "platform/calendar/icalendar/values.h"

#include <functional>

// Recurrence rules on the wall clock. Whoever asks turns the wall-clock times into instants. They are
// followed here and not by libical: its 3.0.16 loses the beat of weekly rules with some first days of the
// week, days of numbered weeks around New Year, and seconds at rules whose days never meet.
namespace platform::calendar::icalendar {

inline constexpr int maxOccurrencesPerQuery = 10'000;  // of one series
inline constexpr int maxRulesPerEvent = 10;            // each is walked; the format knows one
inline constexpr int maxRuleSteps = 500'000;           // walked for one rule in one query, shown or not

/// A rule whose every part has been checked. Lists of numbers are in order.
struct Rule {
  enum class Frequency { Secondly, Minutely, Hourly, Daily, Weekly, Monthly, Yearly };
  Frequency frequency = Frequency::Daily;
  int interval = 1;
  int count = 0;  // 0: without
  std::optional<DateValue> until;
  QList<int> byMonth, byMonthDay, byYearDay, byWeekNo, byHour, byMinute, bySecond, bySetPos;
  QList<QPair<int, int>> byDay;  // n-th (0: every), weekday from 0 = Sunday
  int weekStart = 1;

  bool isSubDaily() const { return frequency <= Frequency::Hourly; }
  /// The rule with what it leaves to its start put in: the weekday, the day of the month, the month.
  Rule completed(qint64 start) const;
  /// Of days alone, as an all-day series counts.
  void clearTimes() {
    byHour.clear();
    byMinute.clear();
    bySecond.clear();
  }
};

/// Nothing when the rule cannot be understood; `why` then says it.
std::optional<Rule> ruleOf(const QByteArray& text, QString* why);

/// Hands over, in order, the starts between `from` and `to` (wall clock, both included) that the rule makes
/// from `start` on, none behind `until`. `start` itself is not handed over unless it suits the rule, but
/// counts in COUNT. `take` gives false to stop. The result is false when the walk became too long and was
/// broken off. `steps`, when given, grows by what the walk took.
bool walk(const Rule& rule, qint64 start, qint64 until, qint64 from, qint64 to,
          const std::function<bool(qint64)>& take, int maxSteps = maxRuleSteps, int* steps = nullptr);

}  // namespace platform::calendar::icalendar

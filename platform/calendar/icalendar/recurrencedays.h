#pragma once
#include "platform/calendar/icalendar/recurrence.h"

#include <QHash>

// Which days and times of a day a rule names.
namespace platform::calendar::icalendar {

inline constexpr int daysOfWeek = 7;

bool suitsDay(const Rule& rule, const QDate& date);

/// The times of a day of a rule by the day or longer, in order, as milliseconds behind its midnight.
QList<qint64> timesOf(const Rule& rule, const QTime& own);

/// For rules by the hour or finer: that step, when the rule names its time of the day as far as it steps by
/// it; else a later moment, on the same day or the next midnight, ahead of which there is none.
qint64 nextTimeOf(const Rule& rule, qint64 step);

/// Whether a rule by the hour or finer that steps by `stride` comes upon a time of the day that it names.
bool meetsATime(const Rule& rule, qint64 start, qint64 stride);

/// The days, weeks, months or years of a rule, one beat apart; the first one holds the start.
class Periods {
 public:
  Periods(const Rule& rule, qint64 start);

  /// The number of a period that begins on that day or before.
  qint64 before(const QDate& day) const;
  QDate begin(qint64 number) const;
  /// The days that suit the rule, of the period that begins on that day, counted from it. Months and years of
  /// one kind have the same ones, which are found once. Valid up to the next call.
  const QList<int>& days(const QDate& begin);

  /// Whether any period ever has a start, `times` of them on a day. "Yes" where that is not known: the years
  /// repeat after 400, so that months and years can all be looked at; for days and weeks it is seen from the
  /// rule.
  bool everMeet(qint64 times);

 private:
  int kindOf(const QDate& begin) const;
  QList<int> found(const QDate& begin) const;
  bool hasPlace(qint64 starts) const;
  bool anyKindMeets(qint64 times);

  const Rule& rule_;
  QDate first_;
  QHash<int, QList<int>> known_;
  QList<int> last_;
};

}  // namespace platform::calendar::icalendar

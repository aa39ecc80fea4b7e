#pragma once
#include "platform/calendar/icalendar/syntax.h"

#include <QDate>
#include <QTime>

// Dates and durations as the file writes them, checked for their range before anybody calculates with them.
namespace platform::calendar::icalendar {

inline constexpr qint64 secondMs = 1000;
inline constexpr qint64 minuteMs = 60 * secondMs;
inline constexpr qint64 hourMs = 60 * minuteMs;
inline constexpr qint64 dayMs = 24 * hourMs;

struct DateValue {
  enum class Form { Date, Floating, Utc, Zoned };
  Form form = Form::Floating;
  QDate date;
  QTime time{0, 0};
  QString tzid;  // of a zoned value, as meant

  /// Wall-clock time in milliseconds, counted as if it were UTC.
  qint64 wall() const;
};

qint64 wallOf(const QDate& date, const QTime& time);
QDate dateOfWall(qint64 wall);
QTime timeOfWall(qint64 wall);

/// Weeks and days are days on the wall clock, the rest is exact.
struct Span {
  int days = 0;
  qint64 exactMs = 0;
};

/// An RDATE: a start, or a period with its own end.
struct Period {
  DateValue start;
  std::optional<DateValue> end;
  std::optional<Span> span;
};

std::optional<DateValue> dateValue(const QByteArray& text, const Property& property);
std::optional<Span> spanValue(const QByteArray& text);
/// The values of an EXDATE; what cannot be read is counted.
QList<DateValue> dateList(const Property& property, int* unreadable);
QList<Period> periodList(const Property& property, int* unreadable);

QByteArray dateText(const QDate& date);                         // 20240219
QByteArray dateTimeText(const QDate& date, const QTime& time);  // 20240219T090000
QByteArray spanText(qint64 minutes);                            // PT1H30M

}  // namespace platform::calendar::icalendar

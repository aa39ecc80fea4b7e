#include "shell/genTools.h"

#include "platform/basic/clock.h"
#include "platform/basic/convert.h"
#include "shell/modErrorReport.h"

#include <cmath>

namespace hourbook {

using namespace Qt::StringLiterals;
using platform::basic::CDate;
using platform::basic::CStr;
using platform::basic::Date;
using platform::basic::Value;
using platform::basic::vbSunday;
using platform::basic::Weekday;

qint16 fncSwWeekNo(const Date& date) try {
  subLog(QStringLiteral("the Week No (Swedish Style) of the date ") + CStr(date));
  // Back to the Sunday before, then on to the Thursday: its year is the year of the week.
  const int year = date.addDays(4 - Weekday(date.addDays(-1), vbSunday)).year();
  const Date third = Date::of(year, 1, 3);
  return static_cast<qint16>(std::floor((date.serial() - third.serial() + Weekday(third, vbSunday) + 5) / 7));
} catch (const platform::Failure& failure) {
  subHandleError(failure, QStringLiteral("genTools.fncSwWeekNo"));
}

Date MondayWeek1(int year) try {
  subLog(QStringLiteral("Calculates the date of the monday in week 1 of the year supplied"));
  const Date newYear = CDate(Value(QString::number(year) + u"-01-01"_s));
  const int weekday = Weekday(newYear, vbSunday);
  if (weekday == 1) return newYear.addDays(1);
  return newYear.addDays(weekday <= 5 ? 2 - weekday : 9 - weekday);
} catch (const platform::Failure& failure) {
  subHandleError(failure, QStringLiteral("genTools.MondayWeek1"));
}

QString fncNullToEmpty(const Value& value) {
  return platform::basic::IsNull(value) ? QString() : CStr(value);
}

}  // namespace hourbook

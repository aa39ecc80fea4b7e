#pragma once
#include "platform/basic/value.h"

namespace hourbook {

/// ISO week number of the week that holds a date, 1 to 53.
qint16 fncSwWeekNo(const platform::basic::Date& date);
/// The Monday of week 1 of a year; the Monday of week n lies (n - 1) * 7 days later.
platform::basic::Date MondayWeek1(int year);

/// A database's "no value" as an empty text, anything else as its text.
QString fncNullToEmpty(const platform::basic::Value& value);

}  // namespace hourbook

#pragma once
#include "platform/basic/value.h"

// Conversions of the language's run-time. They follow the system's number and date format
// (platform/locale), as the product's own conversions do. What cannot be converted throws Failure 13
// ("Type mismatch"), Null throws 94 ("Invalid use of Null"), a number out of range 6 ("Overflow").
namespace platform::basic {

/// Empty gives "". Numbers take the locale's decimal sign, booleans are "True" and "False" in every
/// language, dates the short date, a blank and the long time (the time only when it is not midnight, only
/// the time when the day is 0).
QString CStr(const Value& v);
/// Texts "True"/"False" in any case, and numeric texts (not 0 is true).
bool CBool(const Value& v);
/// Rounding halves to even.
qint16 CInt(const Value& v);
qint32 CLng(const Value& v);
float CSng(const Value& v);
double CDbl(const Value& v);
Currency CCur(const Value& v);
Date CDate(const Value& v);

/// Empty, booleans and numbers are numeric; a text is when it reads as a number in the system's format.
bool IsNumeric(const Value& v);
/// Dates are; a text is when it reads as a date or time in the system's format or as "yyyy-mm-dd".
bool IsDate(const Value& v);

/// A number written with "." as decimal point, as the list holds hours, whatever the locale; a text with the
/// locale's own decimal sign is taken too ("7.25", and "7,25" on a German system). Failure 13 otherwise.
double decimalNumber(const QString& text);

/// Nearest whole number, halves to even.
double roundHalfEven(double value);

}  // namespace platform::basic

#pragma once
#include "platform/basic/value.h"

#include <optional>

namespace platform::basic {

[[noreturn]] void throwTypeMismatch();
[[noreturn]] void throwOverflow();
[[noreturn]] void throwInvalidUseOfNull();

/// Serial numbers of the language's dates: from 1 January 100 up to the day after 31 December 9999.
inline constexpr double firstDate = -657434;
inline constexpr double afterLastDate = 2958466;

/// A number as it is written in a text: "-", digits, "." and an exponent, in the form that C reads. Nothing
/// when the text is no number of the system's format.
std::optional<QByteArray> plainNumber(const QString& text);
/// The value of such a number: infinite when it is too large for a double, 0 when too small.
double valueOfPlain(const QByteArray& plain);

/// Its decimal digits, without a sign: 0.digits times ten to the power of `exponent`. At most `significant`
/// digits, no zero at either end; no digits at all for 0.
struct DecimalDigits {
  bool negative = false;
  QByteArray digits;
  int exponent = 0;
};
DecimalDigits decimalDigits(double value, int significant);
/// Rounded to so many places after the decimal sign, halves away from zero.
DecimalDigits roundedTo(DecimalDigits number, int places);

/// As the language writes a number: up to `significant` digits, "." as decimal sign, an exponent ("1E+15",
/// "3.3E-06") where the digits alone would not show it.
QString numberText(double value, int significant);

}  // namespace platform::basic

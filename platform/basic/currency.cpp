#include "platform/basic/convert.h"
#include "platform/basic/numbers.h"

#include <cmath>
#include <limits>

namespace platform::basic {

namespace {

__extension__ using Wide = __int128;

constexpr Wide kUnitsOfOne = 10000;

/// Quotient with halves to even.
Wide dividedHalfEven(Wide number, Wide divisor) {
  const bool negative = number < 0;
  const Wide magnitude = negative ? -number : number;
  Wide quotient = magnitude / divisor;
  const Wide twiceRest = 2 * (magnitude % divisor);
  if (twiceRest > divisor || (twiceRest == divisor && quotient % 2 == 1)) ++quotient;
  return negative ? -quotient : quotient;
}

}  // namespace

Currency Currency::fromDouble(double value) {
  const double units = roundHalfEven(value * 10000.0);
  // 2^63 itself is a double and the first one too large
  if (!(units >= -9223372036854775808.0 && units < 9223372036854775808.0)) throwOverflow();
  return fromTenThousandths(static_cast<qint64>(units));
}

QString Currency::toPlainText() const {
  const bool negative = units_ < 0;
  const quint64 magnitude = negative ? 0 - static_cast<quint64>(units_) : static_cast<quint64>(units_);
  QString text = QString::number(magnitude / 10000);
  QString places = QStringLiteral("%1").arg(magnitude % 10000, 4, 10, QLatin1Char('0'));
  while (places.endsWith(u'0')) places.chop(1);
  if (!places.isEmpty()) text += u'.' + places;
  return negative ? u'-' + text : text;
}

Currency operator*(const Currency& a, const Currency& b) {
  const Wide product = static_cast<Wide>(a.tenThousandths()) * b.tenThousandths();
  const Wide units = dividedHalfEven(product, kUnitsOfOne);
  if (units > std::numeric_limits<qint64>::max() || units < std::numeric_limits<qint64>::min())
    throwOverflow();
  return Currency::fromTenThousandths(static_cast<qint64>(units));
}

}  // namespace platform::basic

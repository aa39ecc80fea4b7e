#include "platform/sql/postgresql/values.h"

#include "platform/basic/failure.h"
#include "platform/sql/errors.h"
#include "platform/sql/literals.h"

#include <charconv>
#include <cmath>
#include <limits>

namespace platform::sql::postgresql {

namespace {

// the engine's numbers for its types; they never change
enum TypeNumber : unsigned {
  typeBool = 16,
  typeName = 19,
  typeInt8 = 20,
  typeInt2 = 21,
  typeInt4 = 23,
  typeText = 25,
  typeOid = 26,
  typeFloat4 = 700,
  typeFloat8 = 701,
  typeMoney = 790,
  typeChar = 1042,
  typeVarchar = 1043,
  typeDate = 1082,
  typeTimestamp = 1114,
  typeTimestampZone = 1184,
  typeNumeric = 1700
};

constexpr int defaultTextSize = 255;
constexpr int modifierOffset = 4;  // of the server's own bookkeeping, in sizes
constexpr int currencyDecimals = 4;
constexpr int currencyDigits = 19;
constexpr int longestName = 63;

template <class Number>
QByteArray shortest(Number value) {
  if (std::isnan(value)) return "NaN";
  if (std::isinf(value)) return value < 0 ? "-Infinity" : "Infinity";
  char digits[64];
  return QByteArray(digits, std::to_chars(digits, digits + sizeof digits, value).ptr - digits);
}

struct Plain {
  Parameter operator()(std::monostate) const { return std::nullopt; }
  Parameter operator()(basic::Null) const { return std::nullopt; }
  Parameter operator()(bool value) const { return QByteArray(value ? "-1" : "0"); }
  Parameter operator()(qint16 value) const { return QByteArray::number(value); }
  Parameter operator()(qint32 value) const { return QByteArray::number(value); }
  Parameter operator()(qint64 value) const { return QByteArray::number(value); }
  Parameter operator()(float value) const { return shortest(value); }
  Parameter operator()(double value) const { return shortest(value); }
  Parameter operator()(basic::Currency value) const { return value.toPlainText().toLatin1(); }
  Parameter operator()(const basic::Date& value) const { return isoText(value).toLatin1(); }
  Parameter operator()(const QString& value) const { return wholeText(value).toUtf8(); }
};

/// A number, or Yes and No; anything else is not one and is left to the server.
std::optional<bool> asYesNo(const basic::Value& value) {
  return std::visit(
      [](const auto& held) -> std::optional<bool> {
        using Held = std::decay_t<decltype(held)>;
        if constexpr (std::is_same_v<Held, basic::Currency>)
          return held.tenThousandths() != 0;
        else if constexpr (std::is_arithmetic_v<Held>)
          return held != Held{};
        else
          return std::nullopt;
      },
      value);
}

[[noreturn]] void unreadable(const QByteArray& text, const char* what) {
  throw Failure(errors::unreadableValue, QStringLiteral("Data type conversion error: \"%1\" is no %2.")
                                             .arg(QString::fromUtf8(text), QLatin1String(what)));
}

basic::Value readWhole(const QByteArray& text, Type type) {
  bool readable = false;
  const qint64 number = text.toLongLong(&readable);
  if (!readable) unreadable(text, "whole number");
  const auto fits = [number](auto smallest, auto largest) { return number >= smallest && number <= largest; };
  if (type == Type::Integer && fits(std::numeric_limits<qint16>::min(), std::numeric_limits<qint16>::max()))
    return static_cast<qint16>(number);
  if (fits(std::numeric_limits<qint32>::min(), std::numeric_limits<qint32>::max()))
    return static_cast<qint32>(number);
  return number;
}

double readNumber(const QByteArray& text) {
  bool readable = false;
  const double number = text.toDouble(&readable);
  if (!readable || !std::isfinite(number)) unreadable(text, "number");
  return number;
}

/// In ten-thousandths; nothing when there are more decimals than four, or too many digits.
std::optional<qint64> tenThousandths(QByteArray text) {
  // the server's own money type has signs in between
  for (const char sign : {'$', ','}) text.replace(QByteArray(1, sign), QByteArray());
  const bool negative = text.startsWith('-') || text.startsWith('(');
  const qsizetype point = text.indexOf('.');
  const QByteArray decimals = point < 0 ? QByteArray() : text.mid(point + 1);
  if (decimals.size() > currencyDecimals) return std::nullopt;
  QByteArray digits = point < 0 ? text : text.left(point) + decimals;
  digits += QByteArray(currencyDecimals - decimals.size(), '0');
  bool readable = false;
  const qint64 units = digits.toLongLong(&readable);
  if (!readable) return std::nullopt;
  return negative && units > 0 ? -units : units;
}

basic::Value readCurrency(const QByteArray& text) {
  const auto units = tenThousandths(text);
  if (!units) unreadable(text, "amount");
  return basic::Currency::fromTenThousandths(*units);
}

basic::Value readDate(const QByteArray& text) {
  const QString plain = QString::fromUtf8(text);
  if (const auto date = dateOfIsoText(plain)) return *date;
  return plain;
}

Column sized(Type type, int modifier) {
  Column column;
  column.type = type;
  column.size = modifier > modifierOffset ? modifier - modifierOffset : 0;
  return column;
}

}  // namespace

Parameter parameterOf(const basic::Value& value, unsigned type, bool writes) {
  if (type == typeBool) {
    if (const auto yes = asYesNo(value)) return QByteArray(*yes ? "t" : "f");
    if (writes && (basic::IsNull(value) || basic::IsEmpty(value))) return QByteArray("f");
  }
  if (const basic::Date* date = std::get_if<basic::Date>(&value))
    if (type == typeFloat4 || type == typeFloat8 || type == typeNumeric) return shortest(date->serial());
  return std::visit(Plain{}, value);
}

basic::Value valueOfText(const QByteArray& text, Type type) {
  switch (type) {
    case Type::Boolean:
      if (text != "t" && text != "f") unreadable(text, "Yes or No");
      return text == "t";
    case Type::Integer:
    case Type::Long:
      return readWhole(text, type);
    case Type::Single:
      return static_cast<float>(readNumber(text));
    case Type::Double:
      return readNumber(text);
    case Type::Currency:
      return readCurrency(text);
    case Type::Date:
      return readDate(text);
    case Type::Text:
    case Type::Memo:
      break;
  }
  return wholeText(QString::fromUtf8(text));
}

bool isUnboundNumber(unsigned type, int modifier) {
  return type == typeNumeric && modifier < modifierOffset;
}

bool fitsCurrency(const QByteArray& text) {
  return tenThousandths(text).has_value();
}

Column columnOfType(unsigned type, int modifier) {
  switch (type) {
    case typeBool:
      return sized(Type::Boolean, 0);
    case typeInt2:
      return sized(Type::Integer, 0);
    case typeInt4:
    case typeInt8:
    case typeOid:
      return sized(Type::Long, 0);
    case typeFloat4:
      return sized(Type::Single, 0);
    case typeFloat8:
      return sized(Type::Double, 0);
    case typeMoney:
      return sized(Type::Currency, 0);
    case typeNumeric: {
      const int packed = modifier - modifierOffset;
      const int digits = packed >> 16, decimals = packed & 0x7ff;
      const bool amount = !isUnboundNumber(type, modifier) && decimals <= currencyDecimals &&
                          digits - decimals <= currencyDigits - currencyDecimals;
      return sized(amount ? Type::Currency : Type::Double, 0);
    }
    case typeDate:
    case typeTimestamp:
    case typeTimestampZone:
      return sized(Type::Date, 0);
    case typeText:
      return sized(Type::Memo, 0);
    case typeName:
      return sized(Type::Text, longestName + modifierOffset);
    case typeChar:
    case typeVarchar:
      return sized(Type::Text, modifier);
    default:
      return sized(Type::Text, 0);
  }
}

QString declaredType(const Column& column) {
  switch (column.type) {
    case Type::Boolean:
      return QStringLiteral("boolean");
    case Type::Integer:
      return QStringLiteral("smallint");
    case Type::Long:
      return QStringLiteral("integer");
    case Type::Single:
      return QStringLiteral("real");
    case Type::Double:
      return QStringLiteral("double precision");
    case Type::Currency:
      return QStringLiteral("numeric(19,4)");
    case Type::Date:
      return QStringLiteral("timestamp without time zone");
    case Type::Text:
      return QStringLiteral("varchar(%1)").arg(column.size > 0 ? column.size : defaultTextSize);
    case Type::Memo:
      break;
  }
  return QStringLiteral("text");
}

}  // namespace platform::sql::postgresql

#include "platform/basic/convert.h"

#include "platform/basic/failure.h"
#include "platform/basic/numbers.h"
#include "platform/locale/locale.h"

#include <cmath>
#include <limits>

namespace platform::basic {

namespace {

template <class... Cases>
struct Overloaded : Cases... {
  using Cases::operator()...;
};
template <class... Cases>
Overloaded(Cases...) -> Overloaded<Cases...>;

constexpr int kDigitsOfSingle = 7;
constexpr int kDigitsOfDouble = 15;

QString withDecimalSign(QString plain) {
  return plain.replace(u'.', locale::current().decimalSign());
}

QString dateText(const Date& date) {
  const locale::Locale& locale = locale::current();
  const QString day = locale.shortDate(date.date());
  const QTime time = date.time();
  if (date.dateOnly() == Date()) return locale.longTime(time);
  return time == QTime(0, 0) ? day : day + u' ' + locale.longTime(time);
}

/// The language knows no infinite numbers.
double numberOf(const QByteArray& plain) {
  const double value = valueOfPlain(plain);
  if (std::isinf(value)) throwOverflow();
  return value;
}

double numberOfText(const QString& text) {
  const std::optional<QByteArray> plain = plainNumber(text);
  if (!plain) throwTypeMismatch();
  return numberOf(*plain);
}

/// The one road of every conversion to a number.
double number(const Value& v) {
  return std::visit(Overloaded{
                        [](std::monostate) { return 0.0; },
                        [](Null) -> double { throwInvalidUseOfNull(); },
                        [](bool b) { return b ? -1.0 : 0.0; },
                        [](const Currency& c) { return c.toDouble(); },
                        [](const Date& d) { return d.serial(); },
                        [](const QString& s) { return numberOfText(s); },
                        [](auto n) { return static_cast<double>(n); },
                    },
                    v);
}

template <class Whole>
Whole wholeNumber(const Value& v) {
  const double rounded = roundHalfEven(number(v));
  if (!(rounded >= static_cast<double>(std::numeric_limits<Whole>::min()) &&
        rounded <= static_cast<double>(std::numeric_limits<Whole>::max())))
    throwOverflow();
  return static_cast<Whole>(rounded);
}

std::optional<Date> dateOfText(const QString& text) {
  const locale::Locale& locale = locale::current();
  if (const QDateTime moment = locale.parseDate(text); moment.isValid()) return Date::fromLocal(moment);
  if (const QTime time = locale.parseTime(text); time.isValid()) return Date::of(Date().date(), time);
  return std::nullopt;
}

/// Digit by digit, for a double could not hold the last places of a large amount.
Currency currencyOfPlain(const QByteArray& plain) {
  if (plain.contains('e')) return Currency::fromDouble(numberOf(plain));
  const bool negative = plain.startsWith('-');
  const QByteArray unsignedPlain = negative ? plain.mid(1) : plain;
  const qsizetype point = unsignedPlain.indexOf('.');
  const QByteArray whole = point < 0 ? unsignedPlain : unsignedPlain.left(point);
  const QByteArray places = point < 0 ? QByteArray() : unsignedPlain.mid(point + 1);

  bool ok = true;
  const quint64 units = QByteArray(whole + places.left(4).leftJustified(4, '0')).toULongLong(&ok);
  const QByteArray dropped = places.mid(4);
  const int next = dropped.isEmpty() ? 0 : dropped[0] - '0';
  const bool half = next == 5 && dropped.mid(1).count('0') == dropped.size() - 1;
  const quint64 rounded = units + (half ? units % 2 : next >= 5 ? 1 : 0);
  const quint64 limit = static_cast<quint64>(std::numeric_limits<qint64>::max()) + (negative ? 1 : 0);
  if (!ok || rounded > limit) throwOverflow();
  return Currency::fromTenThousandths(static_cast<qint64>(negative ? 0 - rounded : rounded));
}

}  // namespace

double roundHalfEven(double value) {
  if (std::abs(value - std::trunc(value)) != 0.5) return std::round(value);
  return 2.0 * std::round(value / 2.0);
}

QString CStr(const Value& v) {
  return std::visit(
      Overloaded{
          [](std::monostate) { return QString(); },
          [](Null) -> QString { throwInvalidUseOfNull(); },
          [](bool b) { return b ? QStringLiteral("True") : QStringLiteral("False"); },
          [](float n) { return withDecimalSign(numberText(static_cast<double>(n), kDigitsOfSingle)); },
          [](double n) { return withDecimalSign(numberText(n, kDigitsOfDouble)); },
          [](const Currency& c) { return withDecimalSign(c.toPlainText()); },
          [](const Date& d) { return dateText(d); },
          [](const QString& s) { return s; },
          [](auto n) { return QString::number(n); },
      },
      v);
}

bool CBool(const Value& v) {
  if (const auto* text = std::get_if<QString>(&v)) {
    if (text->compare(u"True", Qt::CaseInsensitive) == 0) return true;
    if (text->compare(u"False", Qt::CaseInsensitive) == 0) return false;
  }
  return number(v) != 0;
}

qint16 CInt(const Value& v) {
  return wholeNumber<qint16>(v);
}

qint32 CLng(const Value& v) {
  return wholeNumber<qint32>(v);
}

float CSng(const Value& v) {
  const double value = number(v);
  const float narrowed = static_cast<float>(value);
  if (std::isinf(narrowed) || std::isnan(narrowed)) throwOverflow();
  return narrowed;
}

double CDbl(const Value& v) {
  return number(v);
}

Currency CCur(const Value& v) {
  if (const auto* amount = std::get_if<Currency>(&v)) return *amount;
  const auto* text = std::get_if<QString>(&v);
  if (!text) return Currency::fromDouble(number(v));
  const std::optional<QByteArray> plain = plainNumber(*text);
  if (!plain) throwTypeMismatch();
  return currencyOfPlain(*plain);
}

Date CDate(const Value& v) {
  if (const auto* date = std::get_if<Date>(&v)) return *date;
  if (const auto* text = std::get_if<QString>(&v)) {
    const std::optional<Date> date = dateOfText(*text);
    if (!date) throwTypeMismatch();
    return *date;
  }
  const double serial = number(v);
  if (!(serial >= firstDate && serial < afterLastDate)) throwOverflow();
  return Date(serial);
}

bool IsNumeric(const Value& v) {
  if (IsNull(v) || std::holds_alternative<Date>(v)) return false;
  const auto* text = std::get_if<QString>(&v);
  if (!text) return true;
  const std::optional<QByteArray> plain = plainNumber(*text);
  return plain && !std::isinf(valueOfPlain(*plain));
}

bool IsDate(const Value& v) {
  if (std::holds_alternative<Date>(v)) return true;
  const auto* text = std::get_if<QString>(&v);
  return text && dateOfText(*text).has_value();
}

double decimalNumber(const QString& text) {
  QString plain = text.trimmed();
  if (!plain.contains(u'.')) plain.replace(locale::current().decimalSign(), QStringLiteral("."));
  bool sound = !plain.isEmpty();
  for (const QChar c : plain) sound = sound && (c.isDigit() || QStringLiteral("+-.eE").contains(c));
  bool ok = false;
  const double value = plain.toLatin1().toDouble(&ok);
  if (!sound || !ok) throwTypeMismatch();
  return value;
}

}  // namespace platform::basic

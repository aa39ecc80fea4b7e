#include "platform/basic/numbers.h"

#include "platform/basic/failure.h"
#include "platform/locale/locale.h"

#include <cmath>
#include <limits>

namespace platform::basic {

void throwTypeMismatch() {
  throw Failure(failure::typeMismatch, QStringLiteral("Type mismatch"));
}
void throwOverflow() {
  throw Failure(failure::overflow, QStringLiteral("Overflow"));
}
void throwInvalidUseOfNull() {
  throw Failure(failure::invalidUseOfNull, QStringLiteral("Invalid use of Null"));
}

namespace {

bool isDigit(QChar c) {
  return c >= u'0' && c <= u'9';
}

bool isBlankSign(QChar c) {
  return c == u' ' || c == QChar(0xa0) || c == QChar(0x202f);
}

/// One group sign of the system's, or another that looks alike: blanks of every width stand for each other,
/// and so do the two apostrophes.
bool isGroupSign(QChar c, const QString& sign) {
  if (sign.size() != 1) return false;
  if (isBlankSign(sign[0])) return isBlankSign(c);
  if (sign[0] == QChar(0x2019)) return c == QChar(0x2019) || c == u'\'';
  return c == sign[0];
}

/// Reads the digits of one number; leaves what follows.
class NumberReader {
 public:
  NumberReader(const QString& text, const locale::Locale& locale)
      : text_(text), decimal_(locale.decimalSign()), group_(locale.groupSign()) {}

  std::optional<QByteArray> read() {
    whole();
    if (!decimal_.isEmpty() && text_.mid(at_, decimal_.size()) == decimal_) {
      at_ += decimal_.size();
      plain_ += '.';
      digits();
    }
    if (!anyDigit_ || !exponent() || at_ != text_.size()) return std::nullopt;
    return plain_;
  }

 private:
  void digits() {
    for (; at_ < text_.size() && isDigit(text_[at_]); ++at_) {
      plain_ += text_[at_].toLatin1();
      anyDigit_ = true;
    }
  }
  void whole() {
    digits();
    while (anyDigit_ && at_ < text_.size() && isGroupSign(text_[at_], group_)) {
      ++at_;
      digits();
    }
  }
  bool exponent() {
    if (at_ >= text_.size() || !QStringLiteral("eEdD").contains(text_[at_])) return true;
    ++at_;
    plain_ += 'e';
    if (at_ < text_.size() && (text_[at_] == u'+' || text_[at_] == u'-')) plain_ += text_[at_++].toLatin1();
    const qsizetype before = at_;
    digits();
    return at_ > before;
  }

  const QString& text_;
  QString decimal_;
  QString group_;
  qsizetype at_ = 0;
  QByteArray plain_;
  bool anyDigit_ = false;
};

/// Takes the sign away: in front, behind, or as a pair of parentheses.
bool takeSign(QString& text) {
  bool negative = false;
  if (text.size() > 2 && text.startsWith(u'(') && text.endsWith(u')')) {
    text = text.mid(1, text.size() - 2);
    negative = true;
  } else if (text.startsWith(u'-') || text.startsWith(u'+')) {
    negative = text.startsWith(u'-');
    text = text.mid(1);
  } else if (text.endsWith(u'-') || text.endsWith(u'+')) {
    negative = text.endsWith(u'-');
    text.chop(1);
  }
  text = text.trimmed();
  return negative;
}

}  // namespace

std::optional<QByteArray> plainNumber(const QString& text) {
  QString unsignedText = text.trimmed();
  const bool negative = takeSign(unsignedText);
  std::optional<QByteArray> plain = NumberReader(unsignedText, locale::current()).read();
  if (plain && negative) plain->prepend('-');
  return plain;
}

// QByteArray reports a number too large and one too small alike, so the place of the first digit decides.
double valueOfPlain(const QByteArray& plain) {
  bool ok = false;
  const double value = plain.toDouble(&ok);
  if (ok && !std::isinf(value)) return value;
  const qsizetype e = plain.indexOf('e');
  const qsizetype from = plain.startsWith('-') ? 1 : 0;
  const QByteArray digits = plain.mid(from, e < 0 ? -1 : e - from);
  qsizetype first = 0;
  while (first < digits.size() && (digits[first] == '0' || digits[first] == '.')) ++first;
  if (first == digits.size()) return 0;
  const qsizetype point = digits.contains('.') ? digits.indexOf('.') : digits.size();
  const bool negativePower = e >= 0 && plain.mid(e + 1).startsWith('-');
  const bool tooSmall = e < 0 ? first > point : negativePower;
  if (tooSmall) return 0;
  return std::copysign(std::numeric_limits<double>::infinity(), plain.startsWith('-') ? -1 : 1);
}

DecimalDigits decimalDigits(double value, int significant) {
  DecimalDigits number;
  number.negative = std::signbit(value);
  if (value == 0) return number;
  const QByteArray written = QByteArray::number(std::abs(value), 'e', significant - 1);
  const qsizetype e = written.indexOf('e');
  number.digits = written.left(e).replace(".", "");
  number.exponent = written.mid(e + 1).toInt() + 1;
  while (number.digits.endsWith('0')) number.digits.chop(1);
  return number;
}

DecimalDigits roundedTo(DecimalDigits number, int places) {
  const qsizetype kept = number.exponent + places;
  if (kept >= number.digits.size()) return number;
  if (kept < 0) return DecimalDigits{number.negative, {}, 0};
  const QByteArray dropped = number.digits.mid(kept);
  number.digits.truncate(kept);
  if (dropped[0] >= '5') {
    while (number.digits.endsWith('9')) number.digits.chop(1);
    if (number.digits.isEmpty()) {
      number.digits = "1";
      ++number.exponent;
    } else {
      number.digits.back() = static_cast<char>(number.digits.back() + 1);
    }
  }
  while (number.digits.endsWith('0')) number.digits.chop(1);
  if (number.digits.isEmpty()) number.exponent = 0;
  return number;
}

QString numberText(double value, int significant) {
  if (std::isnan(value)) return QStringLiteral("-1.#IND");
  if (std::isinf(value)) return value < 0 ? QStringLiteral("-1.#INF") : QStringLiteral("1.#INF");
  const DecimalDigits number = decimalDigits(value, significant);
  if (number.digits.isEmpty()) return QStringLiteral("0");
  const int places = static_cast<int>(number.digits.size()) - number.exponent;
  QByteArray text;
  if (number.exponent > significant || places > significant) {
    text = number.digits;
    if (text.size() > 1) text.insert(1, '.');
    const int power = number.exponent - 1;
    text += (power < 0 ? "E-" : "E+") + QByteArray::number(std::abs(power)).rightJustified(2, '0');
  } else if (number.exponent <= 0) {
    text = "0." + QByteArray(-number.exponent, '0') + number.digits;
  } else if (places <= 0) {
    text = number.digits + QByteArray(-places, '0');
  } else {
    text = number.digits;
    text.insert(number.exponent, '.');
  }
  return QString::fromLatin1(number.negative ? '-' + text : text);
}

}  // namespace platform::basic

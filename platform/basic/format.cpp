#include "platform/basic/convert.h"
#include "platform/basic/failure.h"
#include "platform/basic/numbers.h"
#include "platform/basic/text.h"
#include "platform/locale/locale.h"

#include <cmath>

namespace platform::basic {

namespace {

constexpr int kSignificantDigits = 15;

QString padded(int number, int width) {
  return QStringLiteral("%1").arg(number, width, 10, QLatin1Char('0'));
}

/// Sections, text formats, exponents, quarters and half days: the language has them, this run-time has not.
[[noreturn]] void throwUnknownSign(QChar c) {
  throw Failure(failure::invalidProcedureCall, QStringLiteral("Invalid procedure call or argument: the "
                                                              "format sign \"%1\" is not known")
                                                   .arg(c));
}

// --- dates ---

/// A run of one letter of a date format.
struct Run {
  QChar letter;
  int length;
};

/// The sign that parts the system's short dates.
QString dateSeparator() {
  for (const QChar c : locale::current().shortDatePattern())
    if (!c.isLetter() && c != u'\'') return c;
  return QStringLiteral("/");
}

QString dayText(const QDate& day, int length) {
  if (length <= 2) return padded(day.day(), length);
  return locale::current().weekdayName(day.dayOfWeek(), length == 3);
}

QString monthText(const QDate& day, int length) {
  if (length <= 2) return padded(day.month(), length);
  return locale::current().monthName(day.month(), length == 3);
}

QString yearText(const QDate& day, int length) {
  if (length == 1) return QString::number(day.dayOfYear());
  return length == 2 ? padded(day.year() % 100, 2) : padded(day.year(), 4);
}

/// `m` behind hours or before seconds is minutes, everywhere else months.
QString runText(const Run& run, const Date& date, QChar previousLetter, QChar nextLetter) {
  const QTime time = date.time();
  if (run.letter == u'd') return dayText(date.date(), run.length);
  if (run.letter == u'y') return yearText(date.date(), run.length);
  if (run.letter == u'h') return padded(time.hour(), run.length);
  if (run.letter == u'n') return padded(time.minute(), run.length);
  if (run.letter == u's') return padded(time.second(), run.length);
  const bool minutes = run.length <= 2 && (previousLetter == u'h' || nextLetter == u's');
  return minutes ? padded(time.minute(), run.length) : monthText(date.date(), run.length);
}

bool isDateLetter(QChar c) {
  return QStringLiteral("dmyhns").contains(c.toLower());
}

QChar nextDateLetter(const QString& format, qsizetype from) {
  for (qsizetype i = from; i < format.size(); ++i)
    if (isDateLetter(format[i])) return format[i].toLower();
  return {};
}

QString datePatternText(const Date& date, const QString& format) {
  QString text;
  QChar previous;
  for (qsizetype i = 0; i < format.size();) {
    const QChar c = format[i].toLower();
    if (isDateLetter(c)) {
      qsizetype end = i;
      while (end < format.size() && format[end].toLower() == c) ++end;
      text += runText(Run{c, static_cast<int>(end - i)}, date, previous, nextDateLetter(format, end));
      previous = c;
      i = end;
      continue;
    }
    if (c == u'"') {
      const qsizetype close = format.indexOf(u'"', i + 1);
      const qsizetype end = close < 0 ? format.size() : close;
      text += format.mid(i + 1, end - i - 1);
      i = end + 1;
      continue;
    }
    if (QStringLiteral("wqact").contains(c)) throwUnknownSign(format[i]);
    text += c == u'/' ? dateSeparator() : QString(format[i]);
    ++i;
  }
  return text;
}

bool isDatePattern(const QString& format) {
  bool quoted = false;
  for (const QChar c : format) {
    if (c == u'"') quoted = !quoted;
    if (!quoted && isDateLetter(c)) return true;
  }
  return false;
}

/// The moment that a value means in a date format; none for a text that is no date.
std::optional<Date> dateMeant(const Value& v) {
  if (std::holds_alternative<QString>(v) && !IsDate(v)) return std::nullopt;
  return CDate(v);
}

// --- numbers ---

/// A number format, read: how many digits at least and at most, and what stands around them.
struct NumberPattern {
  QString before;
  QString after;
  int leastWhole = 0;
  int leastPlaces = 0;
  int mostPlaces = 0;
  bool decimalSign = false;
  bool grouped = false;
  bool percent = false;
  bool anyDigit = false;
};

class NumberPatternReader {
 public:
  static NumberPattern read(const QString& format) {
    NumberPatternReader reader;
    for (qsizetype i = 0; i < format.size(); ++i) {
      if (format[i] == u'"') {
        const qsizetype close = format.indexOf(u'"', i + 1);
        const qsizetype end = close < 0 ? format.size() : close;
        reader.literal(format.mid(i + 1, end - i - 1));
        i = end;
      } else if (format[i] == u'\\' && i + 1 < format.size()) {
        reader.literal(format[++i]);
      } else {
        reader.sign(format[i]);
      }
    }
    return reader.pattern_;
  }

 private:
  void literal(const QString& text) { (pattern_.anyDigit ? pattern_.after : pattern_.before) += text; }

  void sign(QChar c) {
    if (c == u'0' || c == u'#') {
      digit(c == u'0');
    } else if (c == u'.' && !pattern_.decimalSign) {
      pattern_.decimalSign = true;
      pattern_.anyDigit = true;
    } else if (c == u',' && pattern_.anyDigit) {
      pattern_.grouped = true;
    } else if (QStringLiteral(";@&<>!").contains(c) || c.toLower() == u'e') {
      throwUnknownSign(c);
    } else {
      pattern_.percent = pattern_.percent || c == u'%';
      literal(c);
    }
  }

  void digit(bool always) {
    pattern_.anyDigit = true;
    if (pattern_.decimalSign) {
      ++pattern_.mostPlaces;
      if (always) pattern_.leastPlaces = pattern_.mostPlaces;
    } else if (always || pattern_.leastWhole > 0) {
      ++pattern_.leastWhole;
    }
  }

  NumberPattern pattern_;
};

QString grouped(QString whole) {
  const QString sign = locale::current().groupSign();
  for (qsizetype i = whole.size() - 3; i > 0; i -= 3) whole.insert(i, sign);
  return whole;
}

QString numberPatternText(double value, const QString& format) {
  const NumberPattern pattern = NumberPatternReader::read(format);
  if (!pattern.anyDigit) return pattern.before;
  const DecimalDigits number =
      roundedTo(decimalDigits(pattern.percent ? value * 100 : value, kSignificantDigits), pattern.mostPlaces);
  const auto wholeDigits = qMax(0, number.exponent);
  QString digits = QString::fromLatin1(QByteArray(qMax(0, -number.exponent), '0') + number.digits);
  digits = digits.leftJustified(wholeDigits, u'0');
  QString whole = digits.left(wholeDigits).rightJustified(pattern.leastWhole, u'0');
  const QString places = digits.mid(wholeDigits).leftJustified(pattern.leastPlaces, u'0');
  if (pattern.grouped) whole = grouped(whole);
  // kept: the decimal sign stands even when no digit follows it ("8."); callers drop it by converting back
  QString text = pattern.before + whole;
  if (pattern.decimalSign) text += locale::current().decimalSign() + places;
  text += pattern.after;
  return number.negative && !number.digits.isEmpty() ? u'-' + text : text;
}

bool isNumberMeant(const Value& v) {
  return !std::holds_alternative<QString>(v) || IsNumeric(v) || IsDate(v);
}

double numberMeant(const Value& v) {
  const bool dateText = std::holds_alternative<QString>(v) && !IsNumeric(v);
  return dateText ? CDate(v).serial() : CDbl(v);
}

// --- both ---

bool isNamed(const QString& format, QStringView name) {
  return format.compare(name, Qt::CaseInsensitive) == 0;
}

/// The formats that have a name; nothing for others.
std::optional<QString> namedText(const Value& v, const QString& format) {
  if (isNamed(format, u"General Number")) return isNumberMeant(v) ? CStr(numberMeant(v)) : CStr(v);
  const bool shortDate = isNamed(format, u"Short Date");
  const bool generalDate = isNamed(format, u"General Date");
  const bool longTime = isNamed(format, u"Long Time");
  if (!shortDate && !generalDate && !longTime) return std::nullopt;
  const std::optional<Date> date = dateMeant(v);
  if (!date) return CStr(v);
  if (shortDate) return locale::current().shortDate(date->date());
  return longTime ? locale::current().longTime(date->time()) : CStr(*date);
}

}  // namespace

QString Format(const Value& v, const QString& format) {
  if (IsEmpty(v) || IsNull(v)) return {};
  if (format.isEmpty()) return CStr(v);
  if (const std::optional<QString> named = namedText(v, format)) return *named;
  if (isDatePattern(format)) {
    const std::optional<Date> date = dateMeant(v);
    return date ? datePatternText(*date, format) : CStr(v);
  }
  return isNumberMeant(v) ? numberPatternText(numberMeant(v), format) : CStr(v);
}

}  // namespace platform::basic

#include "platform/locale/locale.h"
#include "platform/locale/patterns.h"

#include <QLocale>

#include <optional>

// Reading of dates and times. Written out instead of taken from QLocale, which reads only the very pattern
// it is given: people leave out leading zeros and swap "." for "/", and so do the texts of other programs.

namespace platform::locale {

namespace {

constexpr int kWindowOfTwoDigitYears = 30;  // 30 to 99 are the 1900s, 0 to 29 the 2000s
constexpr int kFirstYear = 100;

/// What is still to be read of a text.
class Rest {
 public:
  explicit Rest(const QString& text) : text_(text) {}

  bool atEnd() const { return at_ >= text_.size(); }
  QChar peek() const { return atEnd() ? QChar() : text_[at_]; }
  void skip() { ++at_; }
  int skipBlanks() {
    return static_cast<int>(takeWhile([](QChar c) { return c == u' '; }).size());
  }
  bool take(QChar c) {
    if (peek() != c) return false;
    skip();
    return true;
  }
  QString digits() {
    return takeWhile([](QChar c) { return c >= u'0' && c <= u'9'; });
  }
  QString letters() {
    return takeWhile([](QChar c) { return c.isLetter() || c.isMark(); });
  }
  qsizetype position() const { return at_; }
  void back(qsizetype position) { at_ = position; }

 private:
  template <class Predicate>
  QString takeWhile(Predicate wanted) {
    const qsizetype from = at_;
    while (!atEnd() && wanted(text_[at_])) ++at_;
    return text_.mid(from, at_ - from);
  }
  QString text_;
  qsizetype at_ = 0;
};

/// One of the three parts of a date: a number, or a month that is given by its name.
struct DatePart {
  int number = 0;
  qsizetype digits = 0;
  bool isMonthName = false;
};

QString withPlainBlanks(QString text) {
  for (QChar& c : text)
    if (c.isSpace()) c = u' ';
  return text.remove(QChar(0x200e)).remove(QChar(0x200f)).trimmed();
}

QString withoutPoint(const QString& name) {
  return name.endsWith(u'.') ? name.chopped(1) : name;
}

bool sameWord(const QString& a, const QString& b) {
  return !a.isEmpty() && a.compare(b, Qt::CaseInsensitive) == 0;
}

int monthOfName(const Locale& locale, const QString& word) {
  for (int month = 1; month <= 12; ++month)
    if (sameWord(word, locale.monthName(month, false)) ||
        sameWord(word, withoutPoint(locale.monthName(month, true))))
      return month;
  return 0;
}

/// Words of the pattern itself, such as the Bulgarian "г.", say nothing and may stand or be missing.
bool isWordOfPattern(const QString& pattern, const QString& word) {
  for (const PatternPiece& piece : cutPattern(pattern))
    if (piece.letter.isNull() && piece.literal.contains(word, Qt::CaseInsensitive)) return true;
  return false;
}

/// Between two parts: blanks, and at most one sign among them. False when nothing stands there.
bool skipSeparator(Rest& rest) {
  const int blanks = rest.skipBlanks();
  const QChar c = rest.peek();
  const bool sign = c == u'.' || c == u'/' || c == u'-' || c == u',' || c == u'\'';
  if (sign) rest.skip();
  return rest.skipBlanks() > 0 || sign || blanks > 0;
}

std::optional<DatePart> readPart(const Locale& locale, const QString& pattern, Rest& rest) {
  if (rest.peek().isLetter()) {
    const QString word = rest.letters();
    if (const int month = monthOfName(locale, word)) return DatePart{month, 0, true};
    if (!isWordOfPattern(pattern, word)) return std::nullopt;
    skipSeparator(rest);
  }
  const QString digits = rest.digits();
  if (digits.isEmpty() || digits.size() > 4 || digits.size() == 3) return std::nullopt;
  return DatePart{digits.toInt(), digits.size(), false};
}

/// After the third part: a sign or word with which the pattern itself ends.
void skipEndOfPattern(const QString& pattern, Rest& rest) {
  const QList<PatternPiece> pieces = cutPattern(pattern);
  if (pieces.isEmpty() || !pieces.last().letter.isNull()) return;
  for (const QChar c : pieces.last().literal) {
    const qsizetype before = rest.position();
    if (c == u' ') {
      rest.skipBlanks();
    } else if (!rest.take(c)) {
      rest.back(before);
      return;
    }
  }
}

std::optional<QList<DatePart>> readParts(const Locale& locale, const QString& pattern, Rest& rest) {
  QList<DatePart> parts;
  for (int i = 0; i < 3; ++i) {
    if (i > 0 && !skipSeparator(rest)) return std::nullopt;
    const std::optional<DatePart> part = readPart(locale, pattern, rest);
    if (!part) return std::nullopt;
    parts.append(*part);
  }
  skipEndOfPattern(pattern, rest);
  return parts;
}

/// A year of four digits in front is a year in every country, and a month's name a month.
QString orderOf(const QList<DatePart>& parts, const QString& pattern) {
  QString order = orderOfParts(pattern);
  if (order.size() != 3) order = QStringLiteral("yMd");
  if (parts[0].digits == 4) order = order.startsWith(u'y') ? order : QStringLiteral("yMd");
  for (qsizetype i = 0; i < 3; ++i) {
    if (!parts[i].isMonthName) continue;
    order.remove(u'M');
    if (parts[i == 0 ? 1 : 0].digits == 4) order = QStringLiteral("yd");
    if (parts[i == 2 ? 1 : 2].digits == 4) order = QStringLiteral("dy");
    order.insert(i, u'M');
  }
  return order;
}

std::optional<int> yearOf(const DatePart& part) {
  if (part.digits == 4) return part.number >= kFirstYear ? std::optional(part.number) : std::nullopt;
  return part.number + (part.number < kWindowOfTwoDigitYears ? 2000 : 1900);
}

QDate dateOf(const QList<DatePart>& parts, const QString& order) {
  const DatePart& year = parts[order.indexOf(u'y')];
  const DatePart& month = parts[order.indexOf(u'M')];
  const DatePart& day = parts[order.indexOf(u'd')];
  const std::optional<int> fullYear = yearOf(year);
  if (year.isMonthName || day.isMonthName) return {};
  if (!fullYear || month.digits == 4 || day.digits == 4) return {};
  if (month.number > 12 && !order.startsWith(u'y')) return QDate(*fullYear, day.number, month.number);
  return QDate(*fullYear, month.number, day.number);
}

/// -1 no mark, 0 before noon, 1 after it.
std::optional<int> readNoonMark(const Locale& locale, Rest& rest) {
  const qsizetype before = rest.position();
  rest.skipBlanks();
  if (rest.atEnd()) return -1;
  QString mark;
  while (!rest.atEnd()) {
    if (rest.peek().isLetter() || rest.peek().isMark()) mark += rest.peek();
    if (!rest.peek().isLetter() && !rest.peek().isMark() && rest.peek() != u'.' && rest.peek() != u' ')
      return std::nullopt;
    rest.skip();
  }
  const QLocale names(locale.name());
  const auto isMark = [&](const QString& full) {
    QString plain = full;
    plain.remove(u'.').remove(u' ').remove(QChar(0xa0)).remove(QChar(0x202f));
    return sameWord(mark, plain);
  };
  if (sameWord(mark, QStringLiteral("AM")) || sameWord(mark, QStringLiteral("A")) || isMark(names.amText()))
    return 0;
  if (sameWord(mark, QStringLiteral("PM")) || sameWord(mark, QStringLiteral("P")) || isMark(names.pmText()))
    return 1;
  rest.back(before);
  return std::nullopt;
}

std::optional<int> readTwoDigits(Rest& rest) {
  const QString digits = rest.digits();
  if (digits.isEmpty() || digits.size() > 2) return std::nullopt;
  return digits.toInt();
}

QTime readTime(const Locale& locale, Rest& rest) {
  const std::optional<int> hour = readTwoDigits(rest);
  std::optional<int> minute = 0;
  std::optional<int> second = 0;
  const bool hasMinutes = rest.take(u':');
  if (hasMinutes) minute = readTwoDigits(rest);
  if (hasMinutes && minute && rest.take(u':')) second = readTwoDigits(rest);
  if (!hour || !minute || !second) return {};
  const std::optional<int> afterNoon = readNoonMark(locale, rest);
  if (!afterNoon || !rest.atEnd()) return {};
  if (*afterNoon < 0) return hasMinutes ? QTime(*hour, *minute, *second) : QTime();
  if (*hour > 12) return {};
  return QTime(*hour % 12 + 12 * *afterNoon, *minute, *second);
}

}  // namespace

QDateTime Locale::parseDate(const QString& text) const {
  Rest rest(withPlainBlanks(text));
  const QString pattern = shortDatePattern();
  const std::optional<QList<DatePart>> parts = readParts(*this, pattern, rest);
  if (!parts) return {};
  const QDate day = dateOf(*parts, orderOf(*parts, pattern));
  if (!day.isValid()) return {};
  if (rest.atEnd()) return QDateTime(day, QTime(0, 0), Qt::UTC);
  if (rest.skipBlanks() == 0) return {};
  const QTime time = readTime(*this, rest);
  return time.isValid() ? QDateTime(day, time, Qt::UTC) : QDateTime();
}

QTime Locale::parseTime(const QString& text) const {
  Rest rest(withPlainBlanks(text));
  return readTime(*this, rest);
}

}  // namespace platform::locale

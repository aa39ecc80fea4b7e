#include "platform/locale/locale.h"

#include "platform/locale/patterns.h"

namespace platform::locale {

namespace {

QString padded(int number, int width) {
  return QStringLiteral("%1").arg(number, width, 10, QLatin1Char('0'));
}

QString dayPart(const Locale& locale, const QDate& day, int length) {
  return length > 2 ? locale.weekdayName(day.dayOfWeek(), length == 3) : padded(day.day(), length);
}

QString monthPart(const Locale& locale, const QDate& day, int length) {
  return length > 2 ? locale.monthName(day.month(), length == 3) : padded(day.month(), length);
}

QString yearPart(const QDate& day, int length) {
  return length > 2 ? padded(day.year(), 4) : padded(day.year() % 100, 2);
}

}  // namespace

QString Locale::groupSign() const {
  return decimalSign() == u"," ? QStringLiteral(".") : QStringLiteral(",");
}

QString Locale::shortDate(const QDate& day) const {
  QString text;
  if (!day.isValid()) return text;
  for (const PatternPiece& piece : cutPattern(shortDatePattern())) {
    if (piece.letter == u'd')
      text += dayPart(*this, day, piece.length);
    else if (piece.letter == u'M')
      text += monthPart(*this, day, piece.length);
    else if (piece.letter == u'y')
      text += yearPart(day, piece.length);
    else
      text += piece.literal;
  }
  return text;
}

QString Locale::longTime(const QTime& time) const {
  if (!time.isValid()) return {};
  const QString rest = u':' + padded(time.minute(), 2) + u':' + padded(time.second(), 2);
  if (name() != u"en_US") return QString::number(time.hour()) + rest;
  const int hour = time.hour() % 12 == 0 ? 12 : time.hour() % 12;
  return QString::number(hour) + rest + (time.hour() < 12 ? QStringLiteral(" AM") : QStringLiteral(" PM"));
}

}  // namespace platform::locale

#include "platform/calendar/icalendar/values.h"

#include "platform/calendar/icalendar/text.h"

#include <QDateTime>

namespace platform::calendar::icalendar {
namespace {

std::optional<int> digits(const QByteArray& text, qsizetype at, qsizetype count) {
  if (at + count > text.size()) return std::nullopt;
  int value = 0;
  for (qsizetype i = at; i < at + count; ++i) {
    if (text[i] < '0' || text[i] > '9') return std::nullopt;
    value = value * 10 + (text[i] - '0');
  }
  return value;
}

std::optional<QDate> dateIn(const QByteArray& text) {
  const auto year = digits(text, 0, 4), month = digits(text, 4, 2), day = digits(text, 6, 2);
  if (!year || !month || !day) return std::nullopt;
  const QDate date(*year, *month, *day);
  return date.isValid() && *year >= 1 ? std::optional(date) : std::nullopt;
}

/// Separated by commas; before iCalendar by semicolons.
QByteArrayList listed(QByteArray value) {
  return value.replace(';', ',').split(',');
}

}  // namespace

qint64 wallOf(const QDate& date, const QTime& time) {
  return (date.toJulianDay() - QDate(1970, 1, 1).toJulianDay()) * dayMs + time.msecsSinceStartOfDay();
}
QDate dateOfWall(qint64 wall) {
  const qint64 day = wall >= 0 ? wall / dayMs : -((-wall + dayMs - 1) / dayMs);
  return QDate::fromJulianDay(QDate(1970, 1, 1).toJulianDay() + day);
}
QTime timeOfWall(qint64 wall) {
  const qint64 rest = ((wall % dayMs) + dayMs) % dayMs;
  return QTime::fromMSecsSinceStartOfDay(static_cast<int>(rest));
}
qint64 DateValue::wall() const {
  return wallOf(date, time);
}

std::optional<DateValue> dateValue(const QByteArray& written, const Property& property) {
  QByteArray text = written.trimmed().toUpper();
  if (text.endsWith('"')) text.chop(1);  // closes a zone's name that was opened before the colon
  const auto date = dateIn(text);
  if (!date) return std::nullopt;
  DateValue value;
  value.date = *date;
  const bool dateOnly = property.parameter("VALUE").trimmed().toUpper() == "DATE";
  if (text.size() == 8 || dateOnly) {
    if (text.size() != 8 && text[8] != 'T') return std::nullopt;
    value.form = DateValue::Form::Date;
    return value;
  }
  const bool utc = text.endsWith('Z');
  const qsizetype length = text.size() - (utc ? 1 : 0);
  if (text[8] != 'T' || (length != 13 && length != 15)) return std::nullopt;
  auto hour = digits(text, 9, 2), minute = digits(text, 11, 2);
  auto second = length == 15 ? digits(text, 13, 2) : std::optional(0);
  if (!hour || !minute || !second || *second > 60) return std::nullopt;
  if (*hour == 24 && *minute == 0 && *second == 0) {  // the end of the day, as some write it
    hour = 0;
    value.date = value.date.addDays(1);
  }
  value.time = QTime(*hour, *minute, qMin(*second, 59));
  if (!value.time.isValid()) return std::nullopt;
  const QByteArray tzid = property.parameter("TZID");
  if (utc) {
    value.form = DateValue::Form::Utc;
  } else if (!tzid.isNull()) {
    value.form = DateValue::Form::Zoned;
    value.tzid = decoded(tzid);
  }
  return value;
}

std::optional<Span> spanValue(const QByteArray& written) {
  const QByteArray text = written.trimmed().toUpper();
  constexpr qint64 longest = 3660;  // days; ten years is no appointment
  qsizetype at = 0;
  if (at < text.size() && text[at] == '+') ++at;
  if (at >= text.size() || text[at] != 'P') return std::nullopt;  // negative ones are none
  Span span;
  bool inTime = false, any = false;
  for (++at; at < text.size(); ++at) {
    if (text[at] == 'T') {
      inTime = true;
      continue;
    }
    qint64 number = 0;
    const qsizetype from = at;
    while (at < text.size() && text[at] >= '0' && text[at] <= '9' && at - from < 12)
      number = number * 10 + (text[at++] - '0');
    if (at == from || at >= text.size()) return std::nullopt;
    switch (text[at]) {
      case 'W':
        number *= 7;
        [[fallthrough]];
      case 'D':
        if (number > longest) return std::nullopt;
        span.days += static_cast<int>(number);
        break;
      case 'H':
        span.exactMs += number * hourMs;
        break;
      case 'M':
        if (!inTime) return std::nullopt;
        span.exactMs += number * minuteMs;
        break;
      case 'S':
        span.exactMs += number * secondMs;
        break;
      default:
        return std::nullopt;
    }
    if (span.days > longest || span.exactMs > longest * dayMs || number > longest * 86400)
      return std::nullopt;
    any = true;
  }
  return any ? std::optional(span) : std::nullopt;
}

QList<DateValue> dateList(const Property& property, int* unreadable) {
  QList<DateValue> result;
  for (const QByteArray& text : listed(property.value)) {
    if (text.trimmed().isEmpty()) continue;
    if (const auto value = dateValue(text, property))
      result.append(*value);
    else
      ++*unreadable;
  }
  return result;
}

QList<Period> periodList(const Property& property, int* unreadable) {
  QList<Period> result;
  for (const QByteArray& text : listed(property.value)) {
    if (text.trimmed().isEmpty()) continue;
    const qsizetype slash = text.indexOf('/');
    Period period;
    const auto start = dateValue(slash < 0 ? text : text.left(slash), property);
    if (start) period.start = *start;
    bool good = start.has_value();
    if (good && slash >= 0) {
      const QByteArray rest = text.mid(slash + 1).trimmed();
      if (rest.startsWith('P') || rest.startsWith('+') || rest.startsWith('p'))
        good = (period.span = spanValue(rest)).has_value();
      else
        good = (period.end = dateValue(rest, property)).has_value();
    }
    if (good)
      result.append(period);
    else
      ++*unreadable;
  }
  return result;
}

namespace {

void putDigits(char* at, int count, int value) {
  for (; count > 0; value /= 10) at[--count] = static_cast<char>('0' + value % 10);
}

}  // namespace

QByteArray dateText(const QDate& date) {
  const int year = date.year();
  if (!date.isValid() || year < 1 || year > 9999) return date.toString(u"yyyyMMdd"_qs).toLatin1();
  QByteArray text(8, Qt::Uninitialized);
  putDigits(text.data(), 4, year);
  putDigits(text.data() + 4, 2, date.month());
  putDigits(text.data() + 6, 2, date.day());
  return text;
}
QByteArray dateTimeText(const QDate& date, const QTime& time) {
  if (!time.isValid()) return dateText(date) + 'T';
  QByteArray text(7, 'T');
  putDigits(text.data() + 1, 2, time.hour());
  putDigits(text.data() + 3, 2, time.minute());
  putDigits(text.data() + 5, 2, time.second());
  return dateText(date) + text;
}
QByteArray spanText(qint64 minutes) {
  if (minutes <= 0) return "PT0S";
  QByteArray text = "PT";
  if (minutes >= 60) text += QByteArray::number(minutes / 60) + 'H';
  if (minutes % 60) text += QByteArray::number(minutes % 60) + 'M';
  return text;
}

}  // namespace platform::calendar::icalendar

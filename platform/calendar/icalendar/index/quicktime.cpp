#include "platform/calendar/icalendar/index/quicktime.h"

#include <cstring>

namespace platform::calendar::icalendar::index {
namespace {

/// Less than 0 when one of them is no digit.
int number(const char* text, int count) {
  int value = 0;
  for (int i = 0; i < count; ++i) {
    if (text[i] < '0' || text[i] > '9') return -1;
    value = value * 10 + (text[i] - '0');
  }
  return value;
}

bool startsWith(QByteArrayView text, const char* with) {
  const auto length = static_cast<qsizetype>(std::strlen(with));
  return text.size() >= length && std::memcmp(text.data(), with, static_cast<size_t>(length)) == 0;
}

bool isZoneByte(char c) {
  return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '/' || c == '_' ||
         c == '-' || c == '+' || c == ' ' || c == '.';
}

}  // namespace

std::optional<DateValue> quickDate(QByteArrayView rest) {
  DateValue value;
  bool dateOnly = false;
  QByteArrayView zone;
  if (startsWith(rest, ";TZID=")) {
    qsizetype end = 6;
    while (end < rest.size() && isZoneByte(rest[end])) ++end;
    if (end == rest.size() || end == 6) return std::nullopt;
    zone = rest.sliced(6, end - 6);
    rest = rest.sliced(end);
  } else if (startsWith(rest, ";VALUE=DATE:")) {
    dateOnly = true;
    rest = rest.sliced(11);
  }
  if (rest.isEmpty() || rest[0] != ':') return std::nullopt;
  const char* text = rest.data() + 1;
  const qsizetype length = rest.size() - 1;
  if (length < 8) return std::nullopt;
  const int year = number(text, 4), month = number(text + 4, 2), day = number(text + 6, 2);
  if (year < 1 || month < 1 || day < 1) return std::nullopt;
  value.date = QDate(year, month, day);
  if (!value.date.isValid()) return std::nullopt;
  if (length == 8) {
    value.form = DateValue::Form::Date;
    return value;
  }
  const bool utc = length == 16 && text[15] == 'Z';
  if (dateOnly || text[8] != 'T' || (length != 15 && !utc)) return std::nullopt;
  const int hour = number(text + 9, 2), minute = number(text + 11, 2), second = number(text + 13, 2);
  if (hour < 0 || hour > 23 || minute < 0 || minute > 59 || second < 0 || second > 59) return std::nullopt;
  value.time = QTime(hour, minute, second);
  value.form = utc              ? DateValue::Form::Utc
               : zone.isEmpty() ? DateValue::Form::Floating
                                : DateValue::Form::Zoned;
  if (value.form == DateValue::Form::Zoned) value.tzid = QString::fromLatin1(zone);
  return value;
}

std::optional<Span> quickSpan(QByteArrayView rest) {
  if (!startsWith(rest, ":P")) return std::nullopt;
  Span span;
  bool inTime = false, any = false;
  qsizetype at = 2;
  while (at < rest.size()) {
    if (rest[at] == 'T' && !inTime) {
      inTime = true;
      ++at;
      continue;
    }
    const qsizetype from = at;
    qint64 value = 0;
    while (at < rest.size() && rest[at] >= '0' && rest[at] <= '9' && at - from < 4)
      value = value * 10 + (rest[at++] - '0');
    if (at == from || at == rest.size()) return std::nullopt;
    const char unit = rest[at++];
    any = true;
    if (unit == 'D' && !inTime && value < 1000)
      span.days += static_cast<int>(value);
    else if (unit == 'H' && inTime)
      span.exactMs += value * hourMs;
    else if (unit == 'M' && inTime)
      span.exactMs += value * minuteMs;
    else if (unit == 'S' && inTime)
      span.exactMs += value * secondMs;
    else
      return std::nullopt;
    if (at > 16) return std::nullopt;
  }
  return any ? std::optional(span) : std::nullopt;
}

}  // namespace platform::calendar::icalendar::index

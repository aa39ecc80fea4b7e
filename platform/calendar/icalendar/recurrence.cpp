#include "platform/calendar/icalendar/recurrence.h"

#include "platform/calendar/icalendar/vcalendar.h"

#include <algorithm>

namespace platform::calendar::icalendar {
namespace {

constexpr const char* weekdays[] = {"SU", "MO", "TU", "WE", "TH", "FR", "SA"};
constexpr const char* frequencies[] = {"SECONDLY", "MINUTELY", "HOURLY", "DAILY",
                                       "WEEKLY",   "MONTHLY",  "YEARLY"};

/// Numbers of one part; false when one is no number or lies outside. `low` below zero allows the same below
/// zero, where a zero then means nothing.
bool numbers(const QByteArray& text, int low, int high, QList<int>& into) {
  for (const QByteArray& piece : text.split(',')) {
    bool good = false;
    const int value = piece.trimmed().toInt(&good);
    if (!good || value < low || value > high || (low < 0 && value == 0)) return false;
    if (!into.contains(value)) into.append(value);
  }
  std::sort(into.begin(), into.end());
  return true;
}

bool weekdayList(const QByteArray& text, QList<QPair<int, int>>& into) {
  for (const QByteArray& raw : text.split(',')) {
    const QByteArray piece = raw.trimmed();
    int day = -1;
    for (int i = 0; i < 7; ++i)
      if (piece.endsWith(weekdays[i])) day = i;
    if (day < 0) return false;
    int nth = 0;
    if (piece.size() > 2) {
      bool good = false;
      nth = piece.left(piece.size() - 2).toInt(&good);
      if (!good || nth == 0 || nth < -53 || nth > 53) return false;
    }
    if (!into.contains({nth, day})) into.append({nth, day});
  }
  return true;
}

bool takePart(Rule& rule, const QByteArray& key, const QByteArray& value) {
  bool good = true;
  if (key == "FREQ") {
    const auto found = std::find_if(std::begin(frequencies), std::end(frequencies),
                                    [&](const char* name) { return value == name; });
    good = found != std::end(frequencies);
    if (good) rule.frequency = static_cast<Rule::Frequency>(found - std::begin(frequencies));
  } else if (key == "INTERVAL") {
    rule.interval = value.toInt(&good);
    good = good && rule.interval >= 1 && rule.interval <= 32767;
  } else if (key == "COUNT") {
    rule.count = value.toInt(&good);
    good = good && rule.count >= 1;
  } else if (key == "UNTIL") {
    rule.until = dateValue(value, {});
    good = rule.until.has_value();
  } else if (key == "WKST") {
    QList<QPair<int, int>> days;
    good = weekdayList(value, days) && days.size() == 1;
    if (good) rule.weekStart = days[0].second;
  } else if (key == "BYDAY") {
    good = weekdayList(value, rule.byDay);
  } else if (key == "BYMONTH") {
    good = numbers(value, 1, 12, rule.byMonth);
  } else if (key == "BYMONTHDAY") {
    good = numbers(value, -31, 31, rule.byMonthDay);
  } else if (key == "BYYEARDAY") {
    good = numbers(value, -366, 366, rule.byYearDay);
  } else if (key == "BYWEEKNO") {
    good = numbers(value, -53, 53, rule.byWeekNo);
  } else if (key == "BYHOUR") {
    good = numbers(value, 0, 23, rule.byHour);
  } else if (key == "BYMINUTE") {
    good = numbers(value, 0, 59, rule.byMinute);
  } else if (key == "BYSECOND") {
    good = numbers(value, 0, 59, rule.bySecond);
  } else if (key == "BYSETPOS") {
    good = numbers(value, -366, 366, rule.bySetPos);
  } else if (key == "RSCALE") {
    good = value == "GREGORIAN";
  }  // what is unknown besides says nothing about the dates
  return good;
}

/// A 30 February never comes, nor does a sixth Sunday of a month: whoever wrote that meant something else,
/// and it is better said than shown as a series that ends at once.
bool neverComes(const Rule& rule) {
  const bool withinMonths = rule.frequency == Rule::Frequency::Monthly || !rule.byMonth.isEmpty();
  const auto isTooMany = [](const QPair<int, int>& day) { return qAbs(day.first) > 5; };
  if (rule.frequency >= Rule::Frequency::Monthly && withinMonths && !rule.byDay.isEmpty() &&
      std::all_of(rule.byDay.begin(), rule.byDay.end(), isTooMany))
    return true;
  if (rule.byMonth.isEmpty() || rule.byMonthDay.isEmpty()) return false;
  for (const int month : rule.byMonth)
    for (const int day : rule.byMonthDay)
      if (qAbs(day) <= QDate(2024, month, 1).daysInMonth()) return false;
  return true;
}

/// What the format forbids to stand together.
bool contradicts(const Rule& rule) {
  using Frequency = Rule::Frequency;
  if (!rule.byWeekNo.isEmpty() && rule.frequency != Frequency::Yearly) return true;
  if (!rule.byMonthDay.isEmpty() && rule.frequency == Frequency::Weekly) return true;
  return !rule.byYearDay.isEmpty() && rule.frequency >= Frequency::Daily &&
         rule.frequency <= Frequency::Monthly;
}

}  // namespace

std::optional<Rule> ruleOf(const QByteArray& text, QString* why) {
  Rule rule;
  bool hasFrequency = false;
  const QByteArray old = text.contains('=') ? QByteArray() : ruleFromOld(text);
  for (const QByteArray& part : (old.isEmpty() ? text : old).toUpper().replace('\\', "").split(';')) {
    const qsizetype equals = part.indexOf('=');
    if (part.trimmed().isEmpty()) continue;
    const QByteArray key = part.left(qMax<qsizetype>(equals, 0)).trimmed();
    hasFrequency = hasFrequency || key == "FREQ";
    if (equals <= 0 || !takePart(rule, key, part.mid(equals + 1).trimmed())) {
      *why = QStringLiteral("The part \"%1\" of a recurrence rule is not understood.")
                 .arg(QString::fromLatin1(part.left(60)));
      return std::nullopt;
    }
  }
  if (!hasFrequency) *why = QStringLiteral("A recurrence rule names no frequency.");
  if (neverComes(rule)) {
    *why = QStringLiteral("A recurrence rule names only days that never come.");
    return std::nullopt;
  }
  if (rule.isSubDaily() && (!rule.bySetPos.isEmpty() || !rule.byWeekNo.isEmpty())) {
    *why = QStringLiteral("A recurrence rule by the hour or finer names positions or weeks.");
    return std::nullopt;
  }
  if (contradicts(rule)) {
    *why = QStringLiteral("A recurrence rule joins parts that cannot go together.");
    return std::nullopt;
  }
  return hasFrequency ? std::optional(rule) : std::nullopt;
}

}  // namespace platform::calendar::icalendar

#include "platform/calendar/icalendar/recurrence.h"

#include <libical/ical.h>
#include <memory>

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
  std::sort(into.begin(),
            into.end());  // libical takes the hours of a day in the order in which they are written
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
    into.append({nth, day});
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

/// A 30 February never comes, nor does a sixth Sunday of a month, and looking for them takes libical its
/// whole range of years.
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

QByteArray joined(const char* key, const QList<int>& values) {
  if (values.isEmpty()) return {};
  QByteArrayList texts;
  for (const int value : values) texts.append(QByteArray::number(value));
  return ';' + QByteArray(key) + '=' + texts.join(',');
}

/// The rule in its plainest form, without its end.
QByteArray plain(const Rule& rule) {
  QByteArray text = QByteArray("FREQ=") + frequencies[static_cast<int>(rule.frequency)];
  text += ";INTERVAL=" + QByteArray::number(rule.interval);
  if (!rule.byDay.isEmpty()) {
    const bool ordinals =
        rule.frequency >= Rule::Frequency::Monthly;  // elsewhere an n-th weekday means nothing
    QByteArrayList days;
    for (const auto& [nth, day] : rule.byDay)
      days.append((nth != 0 && ordinals ? QByteArray::number(nth) : QByteArray()) + weekdays[day]);
    text += ";BYDAY=" + days.join(',');
  }
  text += joined("BYMONTH", rule.byMonth) + joined("BYMONTHDAY", rule.byMonthDay) +
          joined("BYYEARDAY", rule.byYearDay) + joined("BYWEEKNO", rule.byWeekNo) +
          joined("BYHOUR", rule.byHour) + joined("BYMINUTE", rule.byMinute) +
          joined("BYSECOND", rule.bySecond) + joined("BYSETPOS", rule.bySetPos);
  return text + ";WKST=" + weekdays[rule.weekStart];
}

icaltimetype timeOf(qint64 wall) {
  const QDate date = dateOfWall(wall);
  const QTime time = timeOfWall(wall);
  icaltimetype value = icaltime_null_time();
  value.year = date.year();
  value.month = date.month();
  value.day = date.day();
  value.hour = time.hour();
  value.minute = time.minute();
  value.second = time.second();
  return value;
}

std::optional<qint64> wallOfTime(const icaltimetype& value) {
  const QDate date(value.year, value.month, value.day);
  const QTime time(value.hour, value.minute, value.second);
  if (!date.isValid() || !time.isValid()) return std::nullopt;
  return wallOf(date, time);
}

using Iterator = std::unique_ptr<icalrecur_iterator, decltype(&icalrecur_iterator_free)>;

Iterator iteratorOf(const Rule& rule, qint64 start) {
  icalerror_set_errors_are_fatal(0);
  const icalrecurrencetype recurrence = icalrecurrencetype_from_string(plain(rule).constData());
  if (recurrence.freq == ICAL_NO_RECURRENCE) return {nullptr, &icalrecur_iterator_free};
  return {icalrecur_iterator_new(recurrence, timeOf(start)), &icalrecur_iterator_free};
}

/// Minds COUNT, UNTIL and the window for a rule's walk.
class Counter {
 public:
  Counter(const Rule& rule, qint64 start, qint64 until, qint64 from, qint64 to,
          const std::function<bool(qint64)>& take)
      : rule_(rule), start_(start), last_(qMin(until, to)), from_(from), take_(take) {}

  /// False when the walk is at its end.
  bool offer(qint64 wall) {
    if (++steps_ > maxRuleSteps) {
      brokenOff_ = true;
      return false;
    }
    if (wall > last_) return false;
    if (rule_.count > 0) {
      if (counted_ == 0 && wall != start_)
        counted_ = 1;  // the series' own start counts, whether it suits or not
      if (++counted_ > rule_.count) return false;
    }
    return wall < from_ || take_(wall);
  }
  bool pass() {  // a step that made nothing
    brokenOff_ = ++steps_ > maxRuleSteps;
    return !brokenOff_;
  }
  bool whole() const { return !brokenOff_; }

 private:
  const Rule& rule_;
  qint64 start_, last_, from_;
  const std::function<bool(qint64)>& take_;
  int counted_ = 0;
  int steps_ = 0;
  bool brokenOff_ = false;
};

bool suitsDay(const Rule& rule, const QDate& date) {
  if (!rule.byMonth.isEmpty() && !rule.byMonth.contains(date.month())) return false;
  if (!rule.byMonthDay.isEmpty() && !rule.byMonthDay.contains(date.day()) &&
      !rule.byMonthDay.contains(date.day() - date.daysInMonth() - 1))
    return false;
  if (!rule.byYearDay.isEmpty() && !rule.byYearDay.contains(date.dayOfYear()) &&
      !rule.byYearDay.contains(date.dayOfYear() - date.daysInYear() - 1))
    return false;
  return rule.byDay.isEmpty() || std::any_of(rule.byDay.begin(), rule.byDay.end(), [&](const auto& day) {
           return day.second == date.dayOfWeek() % 7;
         });
}

bool holds(const QList<int>& list, int value) {
  return list.isEmpty() || list.contains(value);
}

/// The starts within one step: an hourly rule may name minutes, a minutely one seconds.
QList<qint64> startsInStep(const Rule& rule, qint64 step) {
  const QTime time = timeOfWall(step);
  const auto values = [](const QList<int>& by, int own) {
    QList<int> list = by.isEmpty() ? QList<int>{own} : by;
    std::sort(list.begin(), list.end());
    return list;
  };
  QList<qint64> starts;
  if (rule.frequency == Rule::Frequency::Hourly) {
    const qint64 hour = step - time.minute() * minuteMs - time.second() * secondMs;
    for (const int minute : values(rule.byMinute, time.minute()))
      for (const int second : values(rule.bySecond, time.second()))
        starts.append(hour + minute * minuteMs + second * secondMs);
  } else if (rule.frequency == Rule::Frequency::Minutely) {
    if (!holds(rule.byMinute, time.minute())) return {};
    for (const int second : values(rule.bySecond, time.second()))
      starts.append(step - time.second() * secondMs + second * secondMs);
  } else if (holds(rule.byMinute, time.minute()) && holds(rule.bySecond, time.second())) {
    starts.append(step);
  }
  return starts;
}

/// Hours, minutes and seconds are stepped here: libical loses the beat when it is set into the midst of such
/// a rule.
bool walkSubDaily(const Rule& rule, qint64 start, qint64 from, qint64 to, Counter& counter) {
  const qint64 unit = rule.frequency == Rule::Frequency::Hourly     ? hourMs
                      : rule.frequency == Rule::Frequency::Minutely ? minuteMs
                                                                    : secondMs;
  const qint64 stride = unit * rule.interval;
  const auto alignedFrom = [&](qint64 wall) { return start + (wall - start + stride - 1) / stride * stride; };
  qint64 step = rule.count > 0 || from <= start ? start : alignedFrom(from - hourMs);
  step = qMax(step, start);
  while (step <= to) {
    if (!suitsDay(rule, dateOfWall(step))) {
      if (!counter.pass()) break;
      step = alignedFrom(wallOf(dateOfWall(step).addDays(1), QTime(0, 0)));
      continue;
    }
    if (holds(rule.byHour, timeOfWall(step).hour()))
      for (const qint64 wall : startsInStep(rule, step))
        if (wall >= start && !counter.offer(wall)) return counter.whole();
    if (!counter.pass()) break;
    step += stride;
  }
  return counter.whole();
}

/// A weekly rule for one weekday begins on that weekday and then needs to name none. (With an interval
/// libical is a week off where a rule names Sunday alone.)
qint64 startOnItsWeekday(Rule& rule, qint64 start) {
  if (rule.frequency != Rule::Frequency::Weekly || rule.byDay.size() != 1) return start;
  const auto placeInWeek = [&](int weekday) { return (weekday - rule.weekStart + 7) % 7; };
  const int days = placeInWeek(rule.byDay[0].second) - placeInWeek(dateOfWall(start).dayOfWeek() % 7);
  rule.byDay.clear();
  if (days == 0) return start;
  const QTime time = timeOfWall(start);  // on a later day also the hours before that of the start count
  const QTime earliest(rule.byHour.isEmpty() ? time.hour() : 0, rule.byMinute.isEmpty() ? time.minute() : 0,
                       rule.bySecond.isEmpty() ? time.second() : 0);
  return wallOf(dateOfWall(start).addDays(days + (days < 0 ? rule.interval * 7 : 0)), earliest);
}

/// Days and weeks are all of one length, so such a rule may as well begin some whole beats later.
qint64 alignedBefore(const Rule& rule, qint64 start, qint64 from) {
  const qint64 beat = rule.interval * (rule.frequency == Rule::Frequency::Weekly  ? 7 * dayMs
                                       : rule.frequency == Rule::Frequency::Daily ? dayMs
                                                                                  : 0);
  return beat == 0 || from < start ? start : start + (from - start) / beat * beat;
}

}  // namespace

std::optional<Rule> ruleOf(const QByteArray& text, QString* why) {
  Rule rule;
  bool hasFrequency = false;
  for (const QByteArray& part : text.toUpper().replace('\\', "").split(';')) {
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
  if (!rule.bySetPos.isEmpty() &&
      (rule.byHour.size() > 1 || rule.byMinute.size() > 1 || rule.bySecond.size() > 1)) {
    *why = QStringLiteral(
        "A recurrence rule counts positions among several times of a day.");  // libical miscounts them
    return std::nullopt;
  }
  if (hasFrequency && !rule.isSubDaily() && !iteratorOf(rule, wallOf(QDate(2024, 1, 1), QTime(9, 0)))) {
    *why = QStringLiteral("A recurrence rule joins parts that cannot go together.");
    return std::nullopt;
  }
  return hasFrequency ? std::optional(rule) : std::nullopt;
}

bool walk(const Rule& rule, qint64 start, qint64 until, qint64 from, qint64 to,
          const std::function<bool(qint64)>& take) {
  Counter counter(rule, start, until, from, to, take);
  if (start > to || until < start) return true;
  if (rule.isSubDaily()) return walkSubDaily(rule, start, from, to, counter);
  const bool midst = rule.count == 0 && from > start && from <= until;
  Rule walked = rule;
  const qint64 first = startOnItsWeekday(walked, start);
  const Iterator iterator = iteratorOf(walked, midst ? alignedBefore(rule, first, from) : first);
  if (!iterator) return true;
  if (midst && rule.frequency >= Rule::Frequency::Monthly)
    icalrecur_iterator_set_start(iterator.get(), timeOf(from));
  for (;;) {
    const icaltimetype next = icalrecur_iterator_next(iterator.get());
    const std::optional<qint64> wall = icaltime_is_null_time(next) ? std::nullopt : wallOfTime(next);
    if (!wall || !counter.offer(*wall)) return counter.whole();
  }
}

}  // namespace platform::calendar::icalendar

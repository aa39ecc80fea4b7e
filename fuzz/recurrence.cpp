// One series. The first line of an input is the period that is looked at (days since 1970, length in days,
// number of a zone), the rest are properties of an event: DTSTART, RRULE, EXDATE, RDATE and whatever else.
// The series must be followed in bounded time, in order, within the period, and alike in two halves of it.
#include "fuzz/expanded.h"
#include "fuzz/fuzz.h"

namespace ical = platform::calendar::icalendar;
using namespace platform::calendar;

namespace {

constexpr double secondsForOneInput = 20;
constexpr const char* zones[] = {"Europe/Stockholm",    "America/New_York",  "UTC",
                                 "Australia/Lord_Howe", "Africa/Casablanca", "Pacific/Apia",
                                 "America/St_Johns"};

struct Period {
  QDateTime from, to;
};

Period periodOf(const QByteArray& line) {
  const QByteArrayList words = line.simplified().split(' ');
  const auto number = [&](int i, int low, int high, int otherwise) {
    bool good = false;
    const int value = words.value(i).toInt(&good);
    return good && value >= low && value <= high ? value : otherwise;
  };
  const QTimeZone zone(zones[number(2, 0, int(std::size(zones)) - 1, 0)]);
  const QDate first = QDate(1970, 1, 1).addDays(number(0, -100'000, 200'000, 19'723));
  return {QDateTime(first, QTime(0, 0), zone),
          QDateTime(first.addDays(number(1, 0, 8000, 366)), QTime(23, 59, 59, 999), zone)};
}

void checkWalk(const ical::Event& event, const QByteArray& text) {
  QString why;
  const std::optional<ical::Rule> rule = ical::ruleOf(text, &why);
  PROMISED(rule || !why.isEmpty(), QString::fromLatin1(text));
  if (!rule || !event.start) return;
  const qint64 start = event.start->wall();
  const qint64 until = rule->until ? rule->until->wall() : std::numeric_limits<qint64>::max();
  const qint64 from = start + 30 * ical::dayMs, to = start + 4000 * ical::dayMs;
  qint64 last = std::numeric_limits<qint64>::min();
  int taken = 0;
  ical::walk(*rule, start, until, from, to, [&](qint64 wall) {
    PROMISED(wall > last, QString::fromLatin1(text));
    PROMISED(wall >= from && wall <= to && wall <= until, QString::fromLatin1(text));
    last = wall;
    ++taken;
    PROMISED(rule->count == 0 || taken <= rule->count, QString::fromLatin1(text));
    return taken < ical::maxOccurrencesPerQuery;
  });
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
  qputenv("TZ", fuzz::viewerZone);
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const fuzz::Budget budget(secondsForOneInput);
  const QByteArray input(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size));
  const qsizetype lineEnd = input.indexOf('\n');
  if (lineEnd < 0) return -1;
  const Period period = periodOf(input.left(lineEnd));
  const QByteArray bytes =
      "BEGIN:VCALENDAR\nBEGIN:VEVENT\nUID:fuzz\n" + input.mid(lineEnd + 1) + "\nEND:VEVENT\nEND:VCALENDAR\n";
  const auto file = ical::calendarFile(QStringLiteral("fuzz.ics"), bytes);
  for (const ical::Event& event : file->events)
    for (const QByteArray& rule : event.rules) checkWalk(event, rule);

  ical::ZoneBook zones;
  const QList<ical::Group> groups = fuzz::groupsOf(file);
  const fuzz::Found found = fuzz::find(zones, groups, fuzz::occurrencesBetween(period.from, period.to));
  for (const Item& item : found.items)
    PROMISED(item.start >= period.from && item.start <= period.to && item.end >= item.start,
             fuzz::textOf(item));
  const QDateTime middle = period.from.addMSecs(period.from.msecsTo(period.to) / 2);
  const fuzz::Found first = fuzz::find(zones, groups, fuzz::occurrencesBetween(period.from, middle));
  const fuzz::Found second =
      fuzz::find(zones, groups, fuzz::occurrencesBetween(middle.addMSecs(1), period.to));
  if (found.problems.isEmpty() && first.problems.isEmpty() && second.problems.isEmpty())
    PROMISED(fuzz::shown(found.items) == fuzz::shown(first.items + second.items),
             QStringLiteral("%1 items at once, %2 and %3 in halves")
                 .arg(found.items.size())
                 .arg(first.items.size())
                 .arg(second.items.size()));
  return 0;
}

// Any bytes as a calendar file: nothing may crash, hang or read outside of the file, and what is shown of a
// period is the same whether it is asked for at once or in two halves.
#include "fuzz/expanded.h"
#include "fuzz/fuzz.h"

namespace ical = platform::calendar::icalendar;
using namespace platform::calendar;

namespace {

constexpr double secondsForOneInput = 20;

/// Components stand within each other and in order, and their lines between their children.
void checkPlaces(const ical::Document& document, const std::vector<ical::Component>& components, int from,
                 int to, int depth) {
  PROMISED(components.empty() || depth <= ical::maxDepth, QString::number(depth));
  int at = from;
  for (const ical::Component& component : components) {
    PROMISED(component.offset >= at && component.bodyEnd >= component.offset,
             QString::number(component.offset));
    PROMISED(component.end >= component.bodyEnd && component.end <= to, QString::number(component.offset));
    int line = component.offset;
    for (const ical::Line& own : component.lines) {
      PROMISED(own.offset >= line && own.length >= 0 && own.offset + own.length <= component.bodyEnd,
               QString::number(own.number));
      line = own.offset + own.length;
      ical::parsed(document, own);
    }
    checkPlaces(document, component.children, component.offset, component.bodyEnd, depth + 1);
    at = component.end;
  }
}

void checkItems(const fuzz::Found& found, const Query& query) {
  for (const Item& item : found.items) {
    PROMISED(!query.startFrom.isValid() || (item.start >= query.startFrom && item.start <= query.startTo),
             fuzz::textOf(item));
    PROMISED(!item.start.isValid() || item.end >= item.start, fuzz::textOf(item));
    PROMISED(!item.key.uid.isEmpty() && !item.tag.isEmpty(), fuzz::textOf(item));
  }
  PROMISED(found.problems.size() <= ical::maxProblemsPerFile, QString::number(found.problems.size()));
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
  qputenv("TZ", fuzz::viewerZone);
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const fuzz::Budget budget(secondsForOneInput);
  const QByteArray bytes(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size));
  const auto file = ical::calendarFile(QStringLiteral("fuzz.ics"), bytes);
  PROMISED(file->document.bytes == bytes, QStringLiteral("reading has changed the bytes"));
  PROMISED(file->problems.size() <= ical::maxProblemsPerFile + 1, QString::number(file->problems.size()));
  checkPlaces(file->document, file->document.components, 0, static_cast<int>(bytes.size()), 1);

  const QTimeZone zone(fuzz::viewerZone);
  ical::ZoneBook zones;
  const QList<ical::Group> groups = fuzz::groupsOf(file);
  Query all;
  all.zone = zone;
  const fuzz::Found everything = fuzz::find(zones, groups, all);
  checkItems(everything, all);

  // A year that holds most of what calendars are about, and a week around whatever this one is about.
  QDateTime from(QDate(2024, 1, 1), QTime(0, 0), zone);
  QDateTime to(QDate(2024, 12, 31), QTime(23, 59, 59), zone);
  for (int round = 0; round < 2; ++round) {
    const Query whole = fuzz::occurrencesBetween(from, to);
    const fuzz::Found found = fuzz::find(zones, groups, whole);
    checkItems(found, whole);
    const QDateTime middle = from.addMSecs(from.msecsTo(to) / 2);
    const fuzz::Found first = fuzz::find(zones, groups, fuzz::occurrencesBetween(from, middle));
    const fuzz::Found second = fuzz::find(zones, groups, fuzz::occurrencesBetween(middle.addMSecs(1), to));
    // series that are broken off, because they are too long or too many, are named among the problems
    if (found.problems.isEmpty() && first.problems.isEmpty() && second.problems.isEmpty()) {
      const auto together = fuzz::shown(first.items + second.items);
      PROMISED(fuzz::shown(found.items) == together,
               QStringLiteral("%1 items at once, %2 in halves").arg(found.items.size()).arg(together.size()));
    }
    QDateTime some;
    for (const Item& item : everything.items)
      if (item.start.isValid() && !some.isValid()) some = item.start;
    if (!some.isValid()) break;
    from = some.addDays(-3);
    to = some.addDays(4);
  }
  return 0;
}

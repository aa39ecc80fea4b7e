#include "platform/calendar/icalendar/expansion.h"

#include <QProcess>

#include <gtest/gtest.h>
#include <iostream>

// Random series, weighted to the weeks in which clocks are changed, against an expansion by python3-dateutil
// and zoneinfo (recurrences.py, which also lists what the two understand differently). 2,000 series of a
// fixed seed; HOURBOOK_RULES names another number, HOURBOOK_RULES_SEED another seed.
using namespace platform::calendar;
using namespace platform::calendar::icalendar;

namespace {

constexpr int usualRules = 2000;

struct Case {
  QByteArray number, text;
  QByteArray viewer;
  qint64 from = 0, to = 0;
  QByteArrayList expected;
};

/// The cases as the script writes them, one after the other.
class Cases {
 public:
  Cases(int seed, int count) {
    process_.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    process_.start(u"/usr/bin/python3"_qs,
                   {u"-B"_qs, QStringLiteral(RECURRENCES), QString::number(seed), QString::number(count)});
  }

  std::optional<Case> next() {
    QByteArray line = nextLine();
    if (!line.startsWith("CASE ")) return std::nullopt;
    const QByteArrayList head = line.split(' ');
    Case one{head.value(1), {}, head.value(2), head.value(3).toLongLong(), head.value(4).toLongLong(), {}};
    while ((line = nextLine()) != "EXPECT" && !line.isNull()) one.text += line + "\r\n";
    while ((line = nextLine()) != "DONE" && !line.isNull()) one.expected.append(line);
    return one;
  }
  bool endedWell() {
    if (process_.state() != QProcess::NotRunning && !process_.waitForFinished(-1)) return false;
    return process_.exitStatus() == QProcess::NormalExit && process_.exitCode() == 0;
  }

 private:
  QByteArray nextLine() {
    while (!process_.canReadLine())
      if (!process_.waitForReadyRead(-1) && !process_.canReadLine()) return {};
    return process_.readLine().trimmed();
  }
  QProcess process_;
};

struct Shown {
  QByteArrayList items;
  bool withinBounds = true;
  QStringList problems;
};

Shown shown(const Case& one) {
  const auto file = calendarFile(u"series.ics"_qs, "BEGIN:VCALENDAR\r\n" + one.text + "END:VCALENDAR\r\n");
  Group group;
  for (const Event& event : file->events)
    (event.isOverride() ? group.overrides : group.masters).append({file, &event});
  Query query;
  query.zone = QTimeZone(one.viewer);
  query.expandSeries = true;
  query.startFrom = QDateTime::fromSecsSinceEpoch(one.from, Qt::UTC);
  query.startTo = QDateTime::fromSecsSinceEpoch(one.to, Qt::UTC);
  static ZoneBook book;
  QList<Problem> problems = file->problems;
  QList<Item> items;
  Expansion(book, query, &problems).add(group, items);
  Shown result;
  for (const Item& item : items) {
    const bool isOverride = item.kind == Kind::Exception;
    result.items.append(QByteArray::number(item.start.toSecsSinceEpoch()) + ' ' +
                        QByteArray::number(item.end.toSecsSinceEpoch()) + (isOverride ? " X" : " O"));
    const qint64 start = item.start.toMSecsSinceEpoch(), end = item.end.toMSecsSinceEpoch();
    result.withinBounds &= std::any_of(file->events.begin(), file->events.end(), [&](const Event& event) {
      return event.earliest() <= start && start <= event.latest() && end <= event.latestEnd();
    });
  }
  for (const Problem& problem : problems) result.problems.append(problem.text);
  std::sort(result.items.begin(), result.items.end());
  return result;
}

}  // namespace

TEST(Recurrences, OfRandomRulesAreThoseOfAnIndependentExpansion) {
  bool given = false;
  const int asked = qEnvironmentVariableIntValue("HOURBOOK_RULES", &given);
  const int count = given && asked > 0 ? asked : usualRules;
  const int seed = qEnvironmentVariableIntValue("HOURBOOK_RULES_SEED", &given);
  Cases cases(given ? seed : 1, count);
  int seen = 0, occurrences = 0, differing = 0;
  while (const auto one = cases.next()) {
    ++seen;
    const Shown ours = shown(*one);
    QByteArrayList expected = one->expected;
    std::sort(expected.begin(), expected.end());
    occurrences += static_cast<int>(expected.size());
    if (ours.items == expected && ours.withinBounds && ours.problems.isEmpty()) continue;
    if (++differing > 5) continue;  // the first ones tell enough
    QByteArrayList missing = expected, more = ours.items;
    for (const QByteArray& item : expected) more.removeOne(item);
    for (const QByteArray& item : ours.items) missing.removeOne(item);
    ADD_FAILURE() << "Case " << one->number.constData() << " seen from " << one->viewer.constData() << ", "
                  << one->from << " to " << one->to << ":\n"
                  << one->text.constData() << "missing: " << missing.join(", ").constData()
                  << "\ntoo many: " << more.join(", ").constData()
                  << (ours.withinBounds ? "" : "\noutside of the bounds of its events")
                  << qPrintable(ours.problems.join(u"\n"_qs));
  }
  EXPECT_TRUE(cases.endedWell());
  EXPECT_EQ(seen, count);
  EXPECT_EQ(differing, 0);
  EXPECT_GT(occurrences, count);  // the cases show something
  std::cout << seen << " series, " << occurrences << " occurrences\n";
}

#include "platform/calendar/icalendar/expansion.h"
#include "tests/unit/platform/calendar/icalendar/fixture.h"

#include <random>

// Thousands of series, and series with thousands of changes: copies of calendars, and what means harm.
using namespace platform::calendar::icalendar;
using namespace icalendar_tests;

namespace {

struct Shown {
  QList<Item> items;
  QList<Problem> problems;

  int of(const QString& uid) const {
    return static_cast<int>(
        std::count_if(items.begin(), items.end(), [&](const Item& item) { return item.key.uid == uid; }));
  }
};

Shown shownOf(const QByteArray& events, const QString& from, const QString& to,
              const WholeLimits& limits = {}) {
  const auto file = calendarFile(u"a.ics"_qs, calendar(events));
  QMap<QString, Group> groups;
  for (const Event& one : file->events)
    (one.isOverride() ? groups[one.uid].overrides : groups[one.uid].masters).append({file, &one});
  Query query;
  query.zone = QTimeZone("Europe/Stockholm");
  query.expandSeries = true;
  query.startFrom = moment(from);
  query.startTo = moment(to);
  Shown shown;
  ZoneBook book;
  Expansion expansion(book, query, &shown.problems, limits);
  for (const Group& group : std::as_const(groups)) expansion.add(group, shown.items);
  return shown;
}

QByteArray series(const QByteArray& uid, const QByteArray& rule,
                  const QByteArray& start = "20240101T090000Z") {
  return event({"UID:" + uid, "DTSTART:" + start, "RRULE:" + rule});
}

QByteArray changed(const QByteArray& uid, const QByteArray& id, const QByteArray& start) {
  return event({"UID:" + uid, "RECURRENCE-ID:" + id, "DTSTART:" + start});
}

/// The series of an override, looked for among all of them.
const EventRef* searched(const Group& group, const EventRef& override) {
  const auto isDay = [](const DateValue& value) { return value.form == DateValue::Form::Date; };
  const EventRef* best = nullptr;
  int bestScore = 0;
  for (const EventRef& master : group.masters) {
    const Event& event = *master.event;
    const bool here = master.file->name == override.file->name;
    if (!event.start || (!here && !event.isSeries())) continue;
    const bool ahead = here && event.component->offset < override.event->component->offset;
    const int score = (here ? 8 : 1) + (event.isSeries() ? 4 : 0) + (ahead ? 1 : 0) +
                      (isDay(*event.start) == isDay(*override.event->recurrenceId) ? 2 : 0);
    if (score < bestScore || (score == bestScore && !ahead)) continue;  // of equals the nearest one ahead
    best = &master;
    bestScore = score;
  }
  return best;
}

}  // namespace

TEST(Multitudes, OfSeriesAndChangedOccurrencesOfOneNameAreShownOneByOne) {
  constexpr int count = 6000;  // each change looked for in each series takes an hour
  QByteArray events;
  for (int i = 0; i < count; ++i)
    events += series("a", "FREQ=DAILY;COUNT=3") + changed("a", "20240102T090000Z", "20240102T100000Z");
  const Shown shown = shownOf(events, u"2024-01-01 00:00"_qs, u"2024-01-04 00:00"_qs);
  EXPECT_EQ(shown.items.size(), 3 * count);
  EXPECT_TRUE(shown.problems.isEmpty());
}

TEST(Multitudes, OfChangesThatHoldForAllThatFollowTheLastOneAheadCounts) {
  QByteArray events = series("a", "FREQ=DAILY;COUNT=9");
  for (int day = 2; day < 8; day += 2)
    for (int i = 0; i < 3; ++i)
      events +=
          event({"UID:a", "RECURRENCE-ID;RANGE=THISANDFUTURE:2024010" + QByteArray::number(day) + "T090000Z",
                 "SUMMARY:" + QByteArray::number(day) + "-" + QByteArray::number(i),
                 "DTSTART:2024010" + QByteArray::number(day) + "T110000Z"});
  QStringList subjects;
  for (const Item& item : shownOf(events, u"2024-01-01 00:00"_qs, u"2024-01-10 00:00"_qs).items)
    if (item.kind == Kind::Occurrence) subjects.append(item.start.toString(u"d H:mm "_qs) + item.subject);
  EXPECT_EQ(subjects, (QStringList{u"1 10:00 "_qs, u"3 12:00 2-2"_qs, u"5 12:00 4-2"_qs, u"7 12:00 6-2"_qs,
                                   u"8 12:00 6-2"_qs, u"9 12:00 6-2"_qs}));
}

TEST(Multitudes, AChangedOccurrenceFindsItsSeriesAmongMany) {
  std::mt19937 random(7);
  const auto oneIn = [&](unsigned n) { return random() % n == 0; };
  int elsewhere = 0, without = 0;
  for (int trial = 0; trial < 300; ++trial) {
    Group group;
    QList<std::shared_ptr<const CalendarFile>> files;
    for (const QString& name : {u"a.ics"_qs, u"b.ics"_qs, u"c.ics"_qs}) {
      QByteArray events;
      for (unsigned i = random() % 6; i > 0; --i) {
        QByteArrayList lines{"UID:a"};
        if (oneIn(2))
          lines.append(oneIn(2) ? "RECURRENCE-ID:20240102T090000Z" : "RECURRENCE-ID;VALUE=DATE:20240102");
        if (!oneIn(8)) lines.append(oneIn(2) ? "DTSTART:20240101T090000Z" : "DTSTART;VALUE=DATE:20240101");
        if (oneIn(2)) lines.append("RRULE:FREQ=DAILY");
        events += event(lines);
      }
      files.append(calendarFile(name, calendar(events)));
    }
    std::shuffle(files.begin(), files.end(), random);
    for (const auto& file : files)
      for (const Event& one : file->events)
        (one.isOverride() ? group.overrides : group.masters).append({file, &one});
    if (oneIn(2)) std::shuffle(group.masters.begin(), group.masters.end(), random);
    const Owners owners(group);
    for (qsizetype i = 0; i < group.overrides.size(); ++i) {
      const EventRef& override = group.overrides[i];
      const EventRef* master = searched(group, override);
      EXPECT_EQ(owners.of(i), master) << "trial " << trial;
      EXPECT_EQ(owners.of(override), master);
      EXPECT_TRUE(!master || owners.in(master->file->name).contains(i));
      elsewhere += master && master->file != override.file;
      without += !master;
    }
  }
  EXPECT_GT(elsewhere, 100);
  EXPECT_GT(without, 10);
}

TEST(Multitudes, OfSeriesBeyondAllMeasureOnlyTheBeginningIsShown) {
  const QByteArray events = series("a", "FREQ=DAILY") + series("b", "FREQ=DAILY") +
                            series("c", "FREQ=DAILY") + series("d", "FREQ=WEEKLY");
  const Shown shown = shownOf(events, u"2024-01-01 00:00"_qs, u"2024-02-01 00:00"_qs,
                              {.steps = 1'000'000, .occurrences = 40});
  EXPECT_EQ(shown.of(u"a"_qs), 31);
  EXPECT_EQ(shown.of(u"b"_qs), 31);
  EXPECT_EQ(shown.of(u"c"_qs), 10);
  EXPECT_EQ(shown.of(u"d"_qs), 5);
  ASSERT_EQ(shown.problems.size(), 1);
  EXPECT_EQ(
      shown.problems[0].text,
      u"The calendar's series have more than 40 occurrences in the period; of this one the later ones are "
      "left out."_qs);
}

TEST(Multitudes, OfRulesThatTogetherTakeTooLongTheLaterOnesAreFollowedForAWhile) {
  const QByteArray longOne = "FREQ=WEEKLY;BYDAY=MO;COUNT=5000";
  const QByteArray events = series("a", longOne, "19600104T090000Z") +
                            series("b", longOne, "19600104T090000Z") +
                            series("c", longOne, "20200106T090000Z");
  const auto shown = [&](int steps) {
    return shownOf(events, u"2024-01-01 00:00"_qs, u"2024-02-01 00:00"_qs,
                   {.steps = steps, .occurrences = 1000});
  };
  EXPECT_EQ(shown(1'000'000).items.size(), 15);
  EXPECT_TRUE(shown(1'000'000).problems.isEmpty());
  EXPECT_EQ(shown(6000).of(u"a"_qs), 5);
  EXPECT_EQ(shown(6000).of(u"b"_qs), 0);
  EXPECT_EQ(shown(6000).of(u"c"_qs), 5);
  ASSERT_EQ(shown(6000).problems.size(), 1);
  EXPECT_EQ(shown(6000).problems[0].text,
            u"A series takes too long to be followed; the later occurrences are left out."_qs);
}

TEST(Multitudes, OfChangesThatTogetherTakeTooLongThoseOfLaterSeriesAreLeftOutWithTheirSeries) {
  QByteArray events;
  for (int i = 0; i < 150; ++i) events += changed("a", "20240102T090000Z", "20240102T100000Z");
  for (const char* clock : {"0900", "0901", "0902"})
    events += series("a", "FREQ=DAILY;COUNT=3", QByteArray("20240101T") + clock + "00Z");
  for (int i = 0; i < 20; ++i) events += changed("b", "20240102T090000Z", "20240102T100000Z");
  events += series("b", "FREQ=DAILY;COUNT=3");
  const Shown shown =
      shownOf(events, u"2024-01-01 00:00"_qs, u"2024-01-05 00:00"_qs, {.steps = 5000, .occurrences = 1000});
  EXPECT_EQ(shown.of(u"a"_qs), 150 + 2 + 3);
  EXPECT_EQ(shown.of(u"b"_qs), 20 + 2);
  ASSERT_EQ(shown.problems.size(), 1);
  EXPECT_EQ(shown.problems[0].text,
            u"A series has too many changed occurrences to be followed; it is left out."_qs);
}

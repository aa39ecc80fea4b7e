#include "platform/calendar/icalendar/bounds.h"

#include "platform/calendar/icalendar/expansion.h"
#include "tests/unit/platform/calendar/icalendar/fixture.h"

#include <limits>

// Bounds tell which events need not be looked at for a period. One that is too narrow hides an appointment.
using namespace platform::calendar::icalendar;
using namespace icalendar_tests;

namespace {

constexpr qint64 without = std::numeric_limits<qint64>::max();

Bounds boundsOfLines(const QByteArrayList& lines) {
  return calendarFile(u"a.ics"_qs, calendar(event(lines)))->events.front().bounds;
}

/// All that an event shows in a century, from both ends of the world.
QList<Item> everything(const std::shared_ptr<const CalendarFile>& file) {
  QList<Item> all;
  for (const char* zone : {"Pacific/Kiritimati", "Pacific/Midway"}) {
    Query query;
    query.zone = QTimeZone(zone);
    query.expandSeries = true;
    query.startFrom = QDateTime(QDate(1980, 1, 1), QTime(0, 0), Qt::UTC);
    query.startTo = QDateTime(QDate(2080, 1, 1), QTime(0, 0), Qt::UTC);
    ZoneBook book;
    QList<Problem> problems;
    Group group;
    for (const Event& one : file->events)
      (one.isOverride() ? group.overrides : group.masters).append({file, &one});
    Expansion(book, query, &problems).add(group, all);
  }
  return all;
}

qint64 at(const QString& text) {
  return moment(text, "UTC").toMSecsSinceEpoch();
}

double daysBeyond(const QByteArrayList& lines) {
  const auto file = calendarFile(u"a.ics"_qs, calendar(event(QByteArrayList{"UID:1"} + lines)));
  qint64 last = std::numeric_limits<qint64>::min();
  for (const Item& item : everything(file)) last = qMax(last, item.start.toMSecsSinceEpoch());
  return double(file->events.front().latest() - last) / dayMs;
}

}  // namespace

TEST(Bounds, EncloseEveryOccurrenceForEveryViewer) {
  const QByteArrayList starts{"DTSTART:20240219T233000Z",
                              "DTSTART:20240219T003000",
                              "DTSTART;TZID=Pacific/Apia:20240219T003000",
                              "DTSTART;TZID=America/St_Johns:20240229T233000",
                              "DTSTART;TZID=Nowhere at all:20240131T120000",
                              "DTSTART;VALUE=DATE:20240229"};
  const QByteArrayList rules{"FREQ=DAILY;COUNT=1",
                             "FREQ=DAILY;COUNT=400;INTERVAL=3",
                             "FREQ=DAILY;COUNT=30;BYMONTH=2",
                             "FREQ=DAILY;COUNT=2100",
                             "FREQ=DAILY;COUNT=30;BYHOUR=3,17,20",
                             "FREQ=WEEKLY;COUNT=12;BYDAY=MO,FR",
                             "FREQ=WEEKLY;COUNT=1200;INTERVAL=2",
                             "FREQ=WEEKLY;COUNT=200;BYDAY=SU;WKST=WE",
                             "FREQ=MONTHLY;COUNT=20",
                             "FREQ=MONTHLY;COUNT=400",
                             "FREQ=MONTHLY;COUNT=400;BYDAY=-1FR,2MO",
                             "FREQ=MONTHLY;COUNT=300;BYDAY=5MO",
                             "FREQ=MONTHLY;COUNT=8;BYMONTHDAY=31",
                             "FREQ=YEARLY;COUNT=10",
                             "FREQ=YEARLY;COUNT=40;BYMONTH=3;BYDAY=1SU",
                             "FREQ=YEARLY;COUNT=50;BYWEEKNO=53",
                             "FREQ=YEARLY;COUNT=6;BYYEARDAY=366",
                             "FREQ=HOURLY;COUNT=1100;INTERVAL=5",
                             "FREQ=HOURLY;COUNT=300;BYDAY=MO;BYHOUR=9",
                             "FREQ=MINUTELY;COUNT=90;INTERVAL=50",
                             "FREQ=DAILY;UNTIL=20240305",
                             "FREQ=DAILY;UNTIL=20240305T120000",
                             "FREQ=DAILY;UNTIL=20240305T235959Z",
                             "FREQ=WEEKLY;UNTIL=20250305T000000Z;BYDAY=MO,TU"};
  for (const QByteArray& start : starts)
    for (const QByteArray& rule : rules)
      for (const QByteArray& end : {QByteArray("DURATION:P3DT5H"), QByteArray("DTEND:20240303T000000Z")}) {
        SCOPED_TRACE((start + ' ' + rule + ' ' + end).constData());
        const auto file = calendarFile(
            u"a.ics"_qs,
            calendar(event({"UID:1", start, end, "RRULE:" + rule, "RDATE;VALUE=DATE:20240101"})));
        const Event& of = file->events.front();
        const QList<Item> items = everything(file);
        ASSERT_FALSE(items.isEmpty());
        qint64 first = without, last = -without, lastEnd = -without;
        for (const Item& item : items) {
          first = qMin(first, item.start.toMSecsSinceEpoch());
          last = qMax(last, item.start.toMSecsSinceEpoch());
          lastEnd = qMax(lastEnd, item.end.toMSecsSinceEpoch());
        }
        EXPECT_LE(of.earliest(), first);
        EXPECT_GE(of.latest(), last);
        EXPECT_GE(of.latestEnd(), lastEnd);
        EXPECT_LT(first - of.earliest(), 5 * dayMs);
      }
}

TEST(Bounds, OfShortSeriesAreTight) {
  EXPECT_LT(daysBeyond({"DTSTART:20240219T233000Z", "RRULE:FREQ=DAILY;COUNT=10"}), 0.001);
  EXPECT_LT(daysBeyond({"DTSTART;TZID=Europe/Stockholm:20240219T090000", "RRULE:FREQ=DAILY;COUNT=10"}), 2.5);
  EXPECT_LT(daysBeyond({"DTSTART:20240219T090000", "RRULE:FREQ=WEEKLY;BYDAY=MO,TU,WE,TH,FR;COUNT=50"}), 2.5);
  EXPECT_LT(daysBeyond({"DTSTART;VALUE=DATE:20240229", "RRULE:FREQ=YEARLY;COUNT=5"}), 2.5);
  EXPECT_LT(daysBeyond({"DTSTART:20240219T090000Z", "RRULE:FREQ=YEARLY;COUNT=20"}), 2.5);
  EXPECT_LT(daysBeyond({"DTSTART:20240219T090000Z", "RRULE:FREQ=YEARLY;COUNT=20;BYDAY=20MO"}), 2.5);
  EXPECT_LT(daysBeyond({"DTSTART:20240219T090000Z", "RRULE:FREQ=MONTHLY;COUNT=50;BYDAY=5MO"}), 2.5);
  EXPECT_LT(daysBeyond({"DTSTART:20240219T090000Z", "RRULE:FREQ=DAILY;UNTIL=20240301T090000Z"}), 0.001);
}

TEST(Bounds, OfLongSeriesWithCountAreNotWalked) {
  // 9,000 days after the start: not one more than a few, and no walk of 9,000 steps
  EXPECT_LT(daysBeyond({"DTSTART:20240219T090000Z", "RRULE:FREQ=DAILY;COUNT=9000"}), 3.5);
  EXPECT_LT(daysBeyond({"DTSTART:20240219T090000Z", "RRULE:FREQ=WEEKLY;COUNT=1300"}), 15.5);
  EXPECT_EQ(boundsOfLines({"UID:1", "DTSTART:20240219T090000Z",
                           "RRULE:FREQ=SECONDLY;COUNT=2000000000;BYHOUR=3;BYMONTH=1"})
                .latest,
            without);
}

TEST(Bounds, OfARuleWhoseDaysNeverMeetEndWithItsStart) {
  for (const char* rule :
       {"FREQ=YEARLY;COUNT=5;BYDAY=53MO;BYMONTHDAY=1", "FREQ=YEARLY;COUNT=5;BYWEEKNO=53;BYMONTH=6",
        "FREQ=MONTHLY;COUNT=50;BYDAY=5MO;BYMONTHDAY=1", "FREQ=DAILY;INTERVAL=7;BYDAY=TU;COUNT=5",
        "FREQ=SECONDLY;INTERVAL=60;BYSECOND=3;COUNT=5"})
    EXPECT_EQ(boundsOfLines({"DTSTART:20240219T090000Z", QByteArray("RRULE:") + rule}).latest,
              at(u"2024-02-19 09:00"_qs))
        << rule;
}

TEST(Bounds, OfAnEndlessSeriesHaveNoEnd) {
  const Bounds bounds = boundsOfLines({"UID:1", "DTSTART:20240219T090000Z", "RRULE:FREQ=DAILY"});
  EXPECT_EQ(bounds.earliest, at(u"2024-02-19 09:00"_qs));
  EXPECT_EQ(bounds.latest, without);
  EXPECT_EQ(bounds.latestEnd, without);
}

TEST(Bounds, OfAnEventInUtcAreItsOwnStart) {
  const Bounds bounds = boundsOfLines({"UID:1", "DTSTART:20240219T090000Z"});
  EXPECT_EQ(bounds.earliest, at(u"2024-02-19 09:00"_qs));
  EXPECT_EQ(bounds.latest, at(u"2024-02-19 09:00"_qs));
}

TEST(Bounds, OfAnEventWithoutStartEncloseNothing) {
  const Bounds bounds = boundsOfLines({"UID:1", "SUMMARY:x"});
  EXPECT_GT(bounds.earliest, bounds.latest);
}

TEST(Bounds, OfAnOverrideForAllThatFollowBeginWithItAndHaveNoEnd) {
  const Bounds bounds = boundsOfLines(
      {"UID:1", "RECURRENCE-ID;RANGE=THISANDFUTURE:20240226T090000Z", "DTSTART:20240225T080000Z"});
  EXPECT_EQ(bounds.earliest, at(u"2024-02-25 08:00"_qs));
  EXPECT_EQ(bounds.latest, without);
}

TEST(Bounds, AWholeDayThatMidnightsInUtcNameIsEnclosedToo) {
  const auto file = calendarFile(
      u"a.ics"_qs, joined({"BEGIN:VCALENDAR", "X-WR-TIMEZONE:Pacific/Auckland"}) +
                       event({"UID:1", "X-MICROSOFT-CDO-ALLDAYEVENT:TRUE", "DTSTART:20240218T110000Z",
                              "DTEND:20240219T110000Z", "RRULE:FREQ=MONTHLY;BYDAY=MO;COUNT=9"}) +
                       joined({"END:VCALENDAR"}));
  const QList<Item> items = everything(file);
  ASSERT_EQ(items.size(), 18);
  for (const Item& item : items) {
    EXPECT_TRUE(item.allDay);
    EXPECT_LE(file->events.front().earliest(), item.start.toMSecsSinceEpoch());
    EXPECT_GE(file->events.front().latest(), item.start.toMSecsSinceEpoch());
    EXPECT_GE(file->events.front().latestEnd(), item.end.toMSecsSinceEpoch());
  }
}

TEST(Bounds, OfWhatIsOnlyMarkedAsAWholeDayEncloseTheTimesAsWellAsTheDays) {
  for (const char* start : {"DTSTART:20240219T000000", "DTSTART:20240219T093000", "DTSTART:20240218T230000Z",
                            "DTSTART:20240219T103000Z", "DTSTART;TZID=Asia/Tokyo:20240219T000000"})
    for (const char* rule :
         {"FREQ=HOURLY;BYHOUR=9;COUNT=60", "FREQ=HOURLY;INTERVAL=5;BYDAY=MO;COUNT=40",
          "FREQ=HOURLY;INTERVAL=158;BYDAY=MO;COUNT=8", "FREQ=MINUTELY;INTERVAL=30;BYHOUR=23;COUNT=50",
          "FREQ=DAILY;BYHOUR=9,10;COUNT=20", "FREQ=DAILY;BYHOUR=9,10;BYSETPOS=2;COUNT=30",
          "FREQ=MONTHLY;BYDAY=MO;BYHOUR=8,9,10;BYSETPOS=-1;COUNT=12",
          "FREQ=HOURLY;BYHOUR=9;COUNT=60;UNTIL=20240401T000000Z"}) {
      SCOPED_TRACE(std::string(start) + ' ' + rule);
      const auto file = calendarFile(
          u"a.ics"_qs,
          joined({"BEGIN:VCALENDAR", "X-WR-TIMEZONE:Europe/Stockholm"}) +
              event({"UID:1", "X-MICROSOFT-CDO-ALLDAYEVENT:TRUE", start, "RRULE:" + QByteArray(rule)}) +
              joined({"END:VCALENDAR"}));
      const QList<Item> items = everything(file);
      ASSERT_FALSE(items.isEmpty());
      for (const Item& item : items) {
        EXPECT_LE(file->events.front().earliest(), item.start.toMSecsSinceEpoch());
        EXPECT_GE(file->events.front().latest(), item.start.toMSecsSinceEpoch());
        EXPECT_GE(file->events.front().latestEnd(), item.end.toMSecsSinceEpoch());
      }
    }
}

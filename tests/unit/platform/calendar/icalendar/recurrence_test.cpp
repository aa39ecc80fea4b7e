#include "platform/calendar/icalendar/recurrence.h"

#include "platform/calendar/icalendar/calendarfile.h"
#include "tests/unit/platform/calendar/icalendar/fixture.h"

#include <gtest/gtest.h>
#include <limits>

using namespace platform::calendar::icalendar;

namespace {

constexpr qint64 never = std::numeric_limits<qint64>::max();

qint64 wall(const QString& text) {
  const QDateTime time = QDateTime::fromString(text, u"yyyy-MM-dd HH:mm"_qs);
  return wallOf(time.date(), time.time());
}

QStringList starts(const QByteArray& text, const QString& start, const QString& from, const QString& to,
                   const QString& until = {}) {
  QString why;
  const auto rule = ruleOf(text, &why);
  if (!rule) return {why};
  QStringList result;
  const bool whole =
      walk(*rule, wall(start), until.isEmpty() ? never : wall(until), wall(from), wall(to), [&](qint64 at) {
        result.append(dateOfWall(at).toString(u"yyyy-MM-dd "_qs) + timeOfWall(at).toString(u"HH:mm"_qs));
        return true;
      });
  if (!whole) result.append(u"..."_qs);
  return result;
}

}  // namespace

TEST(Rules, StartInTheMidstKeepsTheBeat) {
  EXPECT_EQ(starts("FREQ=WEEKLY;INTERVAL=2;BYDAY=MO,WE;WKST=SU", u"2020-01-06 09:00"_qs,
                   u"2024-01-01 00:00"_qs, u"2024-01-20 00:00"_qs),
            (QStringList{u"2024-01-01 09:00"_qs, u"2024-01-03 09:00"_qs, u"2024-01-15 09:00"_qs,
                         u"2024-01-17 09:00"_qs}));
  EXPECT_EQ(
      starts("FREQ=DAILY;INTERVAL=3", u"2020-01-01 10:00"_qs, u"2024-01-01 12:00"_qs, u"2024-01-05 00:00"_qs),
      QStringList{u"2024-01-04 10:00"_qs});
  EXPECT_EQ(starts("FREQ=MONTHLY;INTERVAL=5;BYDAY=-1FR", u"2020-01-31 09:00"_qs, u"2024-01-01 00:00"_qs,
                   u"2024-12-31 00:00"_qs),
            (QStringList{u"2024-03-29 09:00"_qs, u"2024-08-30 09:00"_qs}));
}

TEST(Rules, SundaysKeepTheBeatToo) {
  EXPECT_EQ(starts("FREQ=WEEKLY;INTERVAL=3;BYDAY=SU", u"2023-06-13 09:00"_qs, u"2025-01-09 09:00"_qs,
                   u"2025-02-20 00:00"_qs),
            (QStringList{u"2025-01-26 09:00"_qs, u"2025-02-16 09:00"_qs}));
}

TEST(Rules, OneWeekdayMayComeAtHoursBeforeThatOfTheStart) {
  EXPECT_EQ(starts("FREQ=WEEKLY;INTERVAL=4;BYDAY=TU;BYHOUR=8", u"2019-02-20 23:30"_qs, u"2019-02-20 00:00"_qs,
                   u"2019-05-01 00:00"_qs),
            (QStringList{u"2019-03-19 08:30"_qs, u"2019-04-16 08:30"_qs}));
}

TEST(Rules, TheHoursOfADayComeInTheirOrder) {
  EXPECT_EQ(starts("FREQ=DAILY;BYHOUR=14,8;COUNT=2", u"2024-01-01 08:00"_qs, u"2024-01-01 00:00"_qs,
                   u"2024-01-20 00:00"_qs),
            (QStringList{u"2024-01-01 08:00"_qs, u"2024-01-01 14:00"_qs}));
}

TEST(Rules, HoursAndMinutesKeepTheBeatToo) {
  EXPECT_EQ(starts("FREQ=HOURLY;INTERVAL=5", u"2000-01-01 09:00"_qs, u"2024-01-01 00:00"_qs,
                   u"2024-01-01 11:00"_qs),
            (QStringList{u"2024-01-01 00:00"_qs, u"2024-01-01 05:00"_qs, u"2024-01-01 10:00"_qs}));
  EXPECT_EQ(starts("FREQ=MINUTELY;INTERVAL=20;BYHOUR=9", u"2000-01-01 09:00"_qs, u"2024-01-01 00:00"_qs,
                   u"2024-01-01 23:00"_qs),
            (QStringList{u"2024-01-01 09:00"_qs, u"2024-01-01 09:20"_qs, u"2024-01-01 09:40"_qs}));
  EXPECT_EQ(starts("FREQ=HOURLY;BYDAY=MO;BYHOUR=8,9;BYMINUTE=0,30", u"2024-01-01 08:00"_qs,
                   u"2024-01-02 00:00"_qs, u"2024-01-08 08:30"_qs),
            (QStringList{u"2024-01-08 08:00"_qs, u"2024-01-08 08:30"_qs}));
}

TEST(Rules, CountIsCountedFromTheStartOfTheSeries) {
  EXPECT_EQ(
      starts("FREQ=DAILY;COUNT=4", u"2024-01-01 09:00"_qs, u"2024-01-03 00:00"_qs, u"2024-12-31 00:00"_qs),
      (QStringList{u"2024-01-03 09:00"_qs, u"2024-01-04 09:00"_qs}));
  EXPECT_EQ(
      starts("FREQ=HOURLY;COUNT=3", u"2024-01-01 09:00"_qs, u"2024-01-01 10:30"_qs, u"2024-12-31 00:00"_qs),
      QStringList{u"2024-01-01 11:00"_qs});
}

TEST(Rules, AStartThatDoesNotSuitItsRuleCountsAsTheFirst) {
  EXPECT_EQ(starts("FREQ=WEEKLY;BYDAY=TH,FR;COUNT=3", u"2020-11-02 13:30"_qs, u"2020-11-01 00:00"_qs,
                   u"2021-01-01 00:00"_qs),
            (QStringList{u"2020-11-05 13:30"_qs, u"2020-11-06 13:30"_qs}));
}

TEST(Rules, TheLastMomentIsIncluded) {
  EXPECT_EQ(starts("FREQ=DAILY", u"2024-01-01 09:00"_qs, u"2024-01-01 00:00"_qs, u"2024-12-31 00:00"_qs,
                   u"2024-01-02 09:00"_qs),
            (QStringList{u"2024-01-01 09:00"_qs, u"2024-01-02 09:00"_qs}));
  EXPECT_TRUE(starts("FREQ=DAILY", u"2024-01-01 09:00"_qs, u"2024-06-01 00:00"_qs, u"2024-12-31 00:00"_qs,
                     u"2024-01-02 09:00"_qs)
                  .isEmpty());
}

TEST(Rules, MonthsWithoutTheDayAreLeftOut) {
  EXPECT_EQ(starts("FREQ=MONTHLY;BYMONTHDAY=31", u"2024-01-31 09:00"_qs, u"2024-02-01 00:00"_qs,
                   u"2024-06-01 00:00"_qs),
            (QStringList{u"2024-03-31 09:00"_qs, u"2024-05-31 09:00"_qs}));
  EXPECT_EQ(starts("FREQ=YEARLY", u"1604-02-29 00:00"_qs, u"2023-01-01 00:00"_qs, u"2025-01-01 00:00"_qs),
            QStringList{u"2024-02-29 00:00"_qs});
}

TEST(Rules, WorkdaysAndPositionsAreUnderstood) {
  EXPECT_EQ(starts("FREQ=MONTHLY;BYDAY=MO,TU,WE,TH,FR;BYSETPOS=-1", u"2020-01-31 10:00"_qs,
                   u"2024-01-01 00:00"_qs, u"2024-03-01 00:00"_qs),
            (QStringList{u"2024-01-31 10:00"_qs, u"2024-02-29 10:00"_qs}));
  EXPECT_EQ(starts("FREQ=YEARLY;BYWEEKNO=20;BYDAY=MO", u"1997-05-12 09:00"_qs, u"2024-01-01 00:00"_qs,
                   u"2024-12-31 00:00"_qs),
            QStringList{u"2024-05-13 09:00"_qs});
}

TEST(Rules, AWeekMayBeginOnAnyDay) {
  EXPECT_EQ(starts("FREQ=WEEKLY;INTERVAL=4;WKST=SA;BYDAY=FR,MO;COUNT=4", u"2015-07-03 02:30"_qs,
                   u"2015-07-01 00:00"_qs, u"2015-12-31 00:00"_qs),
            (QStringList{u"2015-07-03 02:30"_qs, u"2015-07-27 02:30"_qs, u"2015-07-31 02:30"_qs,
                         u"2015-08-24 02:30"_qs}));
  EXPECT_EQ(starts("FREQ=WEEKLY;INTERVAL=3;WKST=TH;BYDAY=MO,TU", u"2024-02-21 02:30"_qs,
                   u"2027-02-10 00:00"_qs, u"2027-03-08 23:00"_qs),
            (QStringList{u"2027-02-15 02:30"_qs, u"2027-02-16 02:30"_qs, u"2027-03-08 02:30"_qs}));
}

TEST(Rules, NumberedWeeksReachOverNewYear) {
  EXPECT_EQ(starts("FREQ=YEARLY;BYWEEKNO=52;BYDAY=FR,SU", u"2015-12-25 02:30"_qs, u"2027-12-01 00:00"_qs,
                   u"2028-12-31 00:00"_qs),
            (QStringList{u"2027-12-31 02:30"_qs, u"2028-01-02 02:30"_qs, u"2028-12-29 02:30"_qs}));
  EXPECT_EQ(starts("FREQ=YEARLY;BYWEEKNO=1,53;BYDAY=TU,WE", u"2020-12-29 00:00"_qs, u"2020-12-29 00:00"_qs,
                   u"2021-02-01 00:00"_qs),
            (QStringList{u"2020-12-29 00:00"_qs, u"2020-12-30 00:00"_qs, u"2021-01-05 00:00"_qs,
                         u"2021-01-06 00:00"_qs}));
  EXPECT_EQ(starts("FREQ=YEARLY;BYWEEKNO=-1", u"2024-12-25 09:00"_qs, u"2024-01-01 00:00"_qs,
                   u"2026-12-31 23:00"_qs),
            (QStringList{u"2024-12-25 09:00"_qs, u"2025-12-24 09:00"_qs, u"2026-12-30 09:00"_qs}));
}

TEST(Rules, PositionsCountAmongSeveralTimesOfADay) {
  EXPECT_EQ(starts("FREQ=MONTHLY;BYDAY=MO;BYSETPOS=2,-1;BYHOUR=9,14", u"2024-01-01 14:00"_qs,
                   u"2024-01-01 00:00"_qs, u"2024-02-28 00:00"_qs),
            (QStringList{u"2024-01-01 14:00"_qs, u"2024-01-29 14:00"_qs, u"2024-02-05 14:00"_qs,
                         u"2024-02-26 14:00"_qs}));
}

TEST(Rules, WhatCannotBeUnderstoodSaysWhy) {
  for (const char* text : {"",
                           "INTERVAL=2",
                           "FREQ=SOMETIMES",
                           "FREQ=DAILY;INTERVAL=0",
                           "FREQ=DAILY;INTERVAL=-1",
                           "FREQ=DAILY;COUNT=0",
                           "FREQ=DAILY;UNTIL=never",
                           "FREQ=MONTHLY;BYDAY=0TH",
                           "FREQ=MONTHLY;BYDAY=XX",
                           "FREQ=MONTHLY;BYMONTHDAY=0",
                           "FREQ=MONTHLY;BYMONTHDAY=32",
                           "FREQ=YEARLY;BYMONTH=13",
                           "FREQ=YEARLY;BYMONTH=",
                           "FREQ=DAILY;BYHOUR=24",
                           "FREQ=YEARLY;BYWEEKNO=54",
                           "FREQ=YEARLY;BYMONTH=2;BYMONTHDAY=30",
                           "FREQ=YEARLY;BYMONTH=3;BYDAY=-9SU",
                           "FREQ=MONTHLY;BYDAY=6MO",
                           "FREQ=YEARLY;RSCALE=CHINESE",
                           "FREQ=HOURLY;BYSETPOS=1",
                           "FREQ=MONTHLY;BYWEEKNO=20",
                           "FREQ=WEEKLY;BYMONTHDAY=1",
                           "FREQ=DAILY;BYYEARDAY=1",
                           "%n;BYMONTH=",
                           "FREQ=DAILY;COUNT"}) {
    QString why;
    EXPECT_FALSE(ruleOf(text, &why)) << text;
    EXPECT_FALSE(why.isEmpty()) << text;
  }
}

TEST(Rules, OddButClearPartsAreTaken) {
  QString why;
  for (const char* text :
       {"freq=daily", "FREQ=DAILY;", ";FREQ=DAILY;X-OTHER=1", "FREQ = DAILY ; COUNT = 3",
        "FREQ=WEEKLY;BYDAY=1MO", "RSCALE=GREGORIAN;FREQ=YEARLY;SKIP=OMIT", "FREQ=DAILY\\;COUNT=10"})
    EXPECT_TRUE(ruleOf(text, &why)) << text << ' ' << qPrintable(why);
}

TEST(Rules, DaysThatNeverMeetEndTheWalkWithThePeriod) {
  for (const char* text : {"FREQ=MONTHLY;BYDAY=5MO;BYMONTHDAY=1", "FREQ=MONTHLY;BYDAY=MO;BYSETPOS=300",
                           "FREQ=YEARLY;BYDAY=53MO;BYMONTHDAY=1", "FREQ=DAILY;INTERVAL=7;BYDAY=TU"})
    EXPECT_EQ(starts(text, u"1601-01-01 09:00"_qs, u"1601-01-01 00:00"_qs, u"2024-12-31 00:00"_qs),
              QStringList())
        << text;
}

TEST(Rules, AWeekdayThatIsNamedAgainIsOne) {
  QString why;
  const auto rule = ruleOf("FREQ=WEEKLY;BYDAY=MO,MO,TU,MO,1MO", &why);
  ASSERT_TRUE(rule);
  EXPECT_EQ(rule->byDay.size(), 3);
}

TEST(Rules, OfOneEventAreAFewAndTheOthersAreNamed) {
  QByteArrayList lines{"UID:1", "DTSTART:20240219T090000Z"};
  for (int i = 0; i < 12; ++i) lines.append("RRULE:FREQ=DAILY;COUNT=3");
  const auto file = calendarFile(u"a.ics"_qs, icalendar_tests::calendar(icalendar_tests::event(lines)));
  EXPECT_EQ(file->events.front().rules.size(), 10);
  ASSERT_EQ(file->problems.size(), 2);
  EXPECT_EQ(file->problems.at(0).text,
            u"An event has more than 10 recurrence rules; this one was left out."_qs);
}

TEST(Rules, AWalkWithoutEndIsBrokenOff) {
  EXPECT_EQ(starts("FREQ=SECONDLY;BYDAY=MO,TU,WE,TH,FR,SA;COUNT=2000000000", u"2000-01-01 00:00"_qs,
                   u"2024-01-01 00:00"_qs, u"2024-01-02 00:00"_qs),
            QStringList{u"..."_qs});
}

TEST(Rules, WhatNeverComesIsFoundOutAfterAFewSteps) {
  for (const char* text :
       {"FREQ=YEARLY;BYMONTH=2;BYMONTHDAY=29;BYDAY=5MO;BYSETPOS=2", "FREQ=YEARLY;BYDAY=53MO;BYMONTHDAY=1",
        "FREQ=YEARLY;BYDAY=MO;BYSETPOS=300", "FREQ=YEARLY;BYWEEKNO=53;BYMONTH=6",
        "FREQ=YEARLY;BYYEARDAY=366;BYMONTH=6", "FREQ=YEARLY;INTERVAL=4;BYYEARDAY=366",
        "FREQ=YEARLY;INTERVAL=100;BYMONTH=2;BYMONTHDAY=29", "FREQ=MONTHLY;BYDAY=5MO;BYMONTHDAY=1",
        "FREQ=MONTHLY;BYDAY=MO;BYSETPOS=-6", "FREQ=MONTHLY;INTERVAL=12;BYMONTHDAY=31;BYMONTH=3",
        "FREQ=WEEKLY;BYDAY=MO,TU;BYSETPOS=8", "FREQ=DAILY;INTERVAL=14;BYDAY=TU,WE",
        "FREQ=DAILY;BYHOUR=8,9;BYSETPOS=3", "FREQ=HOURLY;INTERVAL=24;BYHOUR=3",
        "FREQ=HOURLY;INTERVAL=10;BYHOUR=8,10", "FREQ=MINUTELY;INTERVAL=60;BYMINUTE=3",
        "FREQ=SECONDLY;INTERVAL=60;BYSECOND=3", "FREQ=SECONDLY;INTERVAL=7200;BYHOUR=8;BYMINUTE=0"}) {
    for (const char* count : {"", ";COUNT=5", ";COUNT=500"}) {
      QString why;
      const auto rule = ruleOf(QByteArray(text) + count, &why);
      ASSERT_TRUE(rule) << text << qPrintable(why);
      int found = 0, steps = 0;
      EXPECT_TRUE(walk(
          *rule, wall(u"1601-01-01 09:00"_qs), never, wall(u"1601-01-01 00:00"_qs),
          wall(u"2399-12-31 00:00"_qs), [&](qint64) { return ++found < 10; }, maxRuleSteps, &steps))
          << text;
      EXPECT_EQ(found, 0) << text;
      EXPECT_LT(steps, 200) << text << count;
    }
  }
}

TEST(Rules, WhatComesAfterALongPauseIsNotTakenForNever) {
  const QString start = u"1896-02-29 03:03"_qs, to = u"1909-12-31 00:00"_qs;
  const QStringList leapDays{u"1896-02-29 03:03"_qs, u"1904-02-29 03:03"_qs, u"1908-02-29 03:03"_qs};
  for (const char* text : {"FREQ=MONTHLY;BYMONTH=2;BYMONTHDAY=29", "FREQ=DAILY;BYMONTH=2;BYMONTHDAY=29",
                           "FREQ=HOURLY;BYMONTH=2;BYMONTHDAY=29;BYHOUR=3", "FREQ=YEARLY",
                           "FREQ=MINUTELY;BYMONTH=2;BYMONTHDAY=29;BYHOUR=3;BYMINUTE=3"})
    for (const char* count : {"", ";COUNT=3"})
      EXPECT_EQ(starts(QByteArray(text) + count, start, start, to), leapDays) << text << count;
  // of the Sundays among the leap days the next one comes after forty years
  EXPECT_EQ(starts("FREQ=MONTHLY;BYMONTH=2;BYMONTHDAY=29;BYDAY=SU;COUNT=3", u"1880-02-29 09:00"_qs,
                   u"1880-02-29 00:00"_qs, u"2000-01-01 00:00"_qs),
            (QStringList{u"1880-02-29 09:00"_qs, u"1920-02-29 09:00"_qs, u"1948-02-29 09:00"_qs}));
  EXPECT_EQ(starts("FREQ=SECONDLY;INTERVAL=61;BYHOUR=3;BYMINUTE=3;BYSECOND=1;COUNT=3", u"2024-01-01 00:00"_qs,
                   u"2024-01-01 00:00"_qs, u"2024-12-31 00:00"_qs)
                .size(),
            2);
}

TEST(Rules, MinutesAndSecondsThatNameATimeOfTheDayAreFollowedForYears) {
  for (const char* text :
       {"FREQ=MINUTELY;BYHOUR=3;BYMINUTE=3", "FREQ=SECONDLY;BYHOUR=3;BYMINUTE=3;BYSECOND=0",
        "FREQ=MINUTELY;BYHOUR=3;BYMINUTE=3;COUNT=5000"}) {
    const QStringList found =
        starts(text, u"2020-01-01 09:00"_qs, u"2024-01-01 00:00"_qs, u"2024-12-31 23:00"_qs);
    EXPECT_EQ(found.size(), 366) << text;
    EXPECT_EQ(found.value(365), u"2024-12-31 03:03"_qs) << text;
  }
}

TEST(Rules, StartsAheadOfTheirStepAreFoundUpToTheLastMoment) {
  EXPECT_EQ(starts("FREQ=HOURLY;BYMINUTE=0,20", u"2024-01-01 09:30"_qs, u"2024-01-01 00:00"_qs,
                   u"2024-01-01 11:10"_qs),
            (QStringList{u"2024-01-01 10:00"_qs, u"2024-01-01 10:20"_qs, u"2024-01-01 11:00"_qs}));
  EXPECT_EQ(starts("FREQ=HOURLY;BYMINUTE=0", u"2024-01-01 09:30"_qs, u"2024-01-01 00:00"_qs,
                   u"2024-12-31 00:00"_qs, u"2024-01-01 11:10"_qs),
            (QStringList{u"2024-01-01 10:00"_qs, u"2024-01-01 11:00"_qs}));
}

TEST(Rules, StartsAheadOfThePeriodAreCountedWithoutBeingFollowed) {
  struct {
    const char* rule;
    QString last;
  } const cases[] = {
      {"FREQ=SECONDLY;INTERVAL=20;COUNT=10000001", u"2030-05-03 19:33"_qs},
      {"FREQ=MINUTELY;INTERVAL=5;COUNT=1000001", u"2033-07-04 05:20"_qs},
      {"FREQ=HOURLY;COUNT=100001", u"2035-05-29 16:00"_qs},
      {"FREQ=DAILY;INTERVAL=2;COUNT=1001", u"2029-06-23 00:00"_qs},
      {"FREQ=WEEKLY;WKST=WE;COUNT=1001", u"2043-03-02 00:00"_qs},
      {"FREQ=MONTHLY;INTERVAL=5;COUNT=241", u"2124-01-01 00:00"_qs},
      {"FREQ=YEARLY;COUNT=101", u"2124-01-01 00:00"_qs},
  };
  for (const auto& one : cases) {
    QString why;
    int steps = 0;
    QStringList found;
    const qint64 from = wall(one.last) - 3 * dayMs;
    EXPECT_TRUE(walk(
        *ruleOf(one.rule, &why), wall(u"2024-01-01 00:00"_qs), never, from, from + 4000 * dayMs,
        [&](qint64 at) {
          found.append(QDateTime(dateOfWall(at), timeOfWall(at)).toString(u"yyyy-MM-dd HH:mm"_qs));
          return true;
        },
        maxRuleSteps, &steps))
        << one.rule;
    EXPECT_EQ(found.isEmpty() ? QString() : found.last(), one.last) << one.rule;
    EXPECT_LT(steps, 30000) << one.rule;
  }
}

TEST(Rules, EverySecondOfAYearIsCountedAsItComesAndItsPlacesAreFoundWithoutThem) {
  const auto upTo = [](int from, int to) {
    QByteArray list = QByteArray::number(from);
    for (int i = from + 1; i <= to; ++i) list += ',' + QByteArray::number(i);
    return list;
  };
  const QByteArray all = "FREQ=YEARLY;BYMONTHDAY=" + upTo(1, 31) + ";BYHOUR=" + upTo(0, 23) +
                         ";BYMINUTE=" + upTo(0, 59) + ";BYSECOND=" + upTo(0, 59);
  const QString start = u"1601-01-01 00:00"_qs, from = u"2023-12-31 00:00"_qs, to = u"2024-12-31 23:59"_qs;
  EXPECT_EQ(starts(all, start, from, to), QStringList{u"..."_qs});
  EXPECT_EQ(starts(all + ";BYSETPOS=-60,1,-61,61", start, from, to),
            (QStringList{u"2023-12-31 23:58"_qs, u"2023-12-31 23:59"_qs, u"2024-01-01 00:00"_qs,
                         u"2024-01-01 00:01"_qs, u"2024-12-31 23:58"_qs, u"2024-12-31 23:59"_qs}));
  EXPECT_EQ(starts("FREQ=MONTHLY;BYMONTHDAY=1;BYHOUR=9,10;BYSETPOS=1,-2,2,-1", u"2024-01-01 09:00"_qs,
                   u"2024-01-01 00:00"_qs, u"2024-02-01 09:30"_qs),
            (QStringList{u"2024-01-01 09:00"_qs, u"2024-01-01 10:00"_qs, u"2024-02-01 09:00"_qs}));
}

#include "tests/unit/platform/calendar/icalendar/fixture.h"

using namespace icalendar_tests;

namespace {

const QByteArray nine = "DTSTART;TZID=Europe/Stockholm:20240205T090000";
const QByteArray ten = "DTEND;TZID=Europe/Stockholm:20240205T100000";

}  // namespace

class SeriesTest : public IcalendarTest {
 protected:
  void series(const QByteArrayList& lines, const QByteArray& others = {}) {
    write(u"s.ics"_qs, calendar(event(QByteArrayList{"UID:s", "SUMMARY:S"} + lines) + others));
  }
  QStringList days(const QString& from, const QString& to, const QByteArray& zone = "Europe/Stockholm") {
    QStringList result;
    for (const QString& text : shown(from, to, zone))
      result.append(text.mid(5, text.contains(u"all day"_qs) ? 5 : 11));
    return result;
  }
};

TEST_F(SeriesTest, CountUntilIntervalAndWeekdaysAreMinded) {
  series({nine, ten, "RRULE:FREQ=WEEKLY;INTERVAL=2;BYDAY=MO,WE;COUNT=5"});
  EXPECT_EQ(days(u"2024-01-01"_qs, u"2024-12-31"_qs),
            (QStringList{u"02-05 09:00"_qs, u"02-07 09:00"_qs, u"02-19 09:00"_qs, u"02-21 09:00"_qs,
                         u"03-04 09:00"_qs}));
  EXPECT_EQ(days(u"2024-02-20"_qs, u"2024-03-01"_qs), QStringList{u"02-21 09:00"_qs});
}

TEST_F(SeriesTest, TheLastOccurrenceMayBeNamedInUtcOnTheOwnClockOrByItsDay) {
  for (const char* until : {"20240207T080000Z", "20240207T090000", "20240207", "20240207T225959Z"}) {
    series({nine, ten, QByteArray("RRULE:FREQ=DAILY;UNTIL=") + until});
    EXPECT_EQ(days(u"2024-01-01"_qs, u"2024-12-31"_qs),
              (QStringList{u"02-05 09:00"_qs, u"02-06 09:00"_qs, u"02-07 09:00"_qs}))
        << until;
  }
  series({nine, ten, "RRULE:FREQ=DAILY;UNTIL=20240207T075959Z"});
  EXPECT_EQ(days(u"2024-01-01"_qs, u"2024-12-31"_qs).size(), 2);
}

TEST_F(SeriesTest, TheLastDayOfAnAllDaySeriesMayBeNamedByItsMidnightInUtc) {
  const QByteArray zone = joined({"BEGIN:VTIMEZONE", "TZID:W. Europe Standard Time", "END:VTIMEZONE"});
  write(u"s.ics"_qs,
        calendar(zone + event({"UID:s", "SUMMARY:S", "DTSTART;VALUE=DATE:20260219",
                               "RRULE:FREQ=WEEKLY;UNTIL=20260817T220000Z;BYDAY=TU,TH;WKST=MO"})));
  // 22:00 in UTC is the midnight of the 18th where the calendar was kept, wherever one looks from
  for (const char* viewer : {"Europe/Stockholm", "America/New_York", "Asia/Tokyo"})
    EXPECT_EQ(days(u"2026-08-13"_qs, u"2026-08-31"_qs, viewer), (QStringList{u"08-13"_qs, u"08-18"_qs}))
        << viewer;
}

TEST_F(SeriesTest, ASeriesKeepsItsWallClockTimeOverAChangeOfTheClocks) {
  series({"DTSTART;TZID=Europe/Stockholm:20240329T090000", "DTEND;TZID=Europe/Stockholm:20240329T100000",
          "RRULE:FREQ=DAILY;COUNT=5"});
  for (const Item& item : expanded(u"2024-03-01"_qs, u"2024-04-30"_qs)) {
    EXPECT_EQ(item.start.time(), QTime(9, 0)) << qPrintable(item.start.toString());
    EXPECT_EQ(item.durationMinutes(), 60);
  }
  EXPECT_EQ(days(u"2024-03-01"_qs, u"2024-04-30"_qs, "America/New_York"),
            (QStringList{u"03-29 04:00"_qs, u"03-30 04:00"_qs, u"03-31 03:00"_qs, u"04-01 03:00"_qs,
                         u"04-02 03:00"_qs}));
}

TEST_F(SeriesTest, AnOccurrenceInTheHourThatTheClocksSkipComesAnHourLater) {
  series({"DTSTART;TZID=Europe/Stockholm:20240330T023000", "DTEND;TZID=Europe/Stockholm:20240330T033000",
          "RRULE:FREQ=DAILY;COUNT=3"});
  EXPECT_EQ(shown(u"2024-03-30"_qs, u"2024-04-01"_qs),
            (QStringList{u"2024-03-30 02:30 - 03:30 S"_qs, u"2024-03-31 03:30 - 04:30 S"_qs,
                         u"2024-04-01 02:30 - 03:30 S"_qs}));
  series({"DTSTART;TZID=Europe/Stockholm:20240330T023000", "RRULE:FREQ=DAILY;COUNT=3",
          "EXDATE:20240331T013000Z"});
  EXPECT_EQ(days(u"2024-03-30"_qs, u"2024-04-01"_qs), (QStringList{u"03-30 02:30"_qs, u"04-01 02:30"_qs}));
}

TEST_F(SeriesTest, AStartThatDoesNotSuitItsRuleIsShownAllTheSame) {
  series({nine, ten, "RRULE:FREQ=WEEKLY;BYDAY=TH;COUNT=3"});
  EXPECT_EQ(days(u"2024-01-01"_qs, u"2024-12-31"_qs),
            (QStringList{u"02-05 09:00"_qs, u"02-08 09:00"_qs, u"02-15 09:00"_qs}));
}

TEST_F(SeriesTest, FurtherDatesJoinTheSeriesAndPeriodsHaveALengthOfTheirOwn) {
  series({nine, ten, "RDATE;TZID=Europe/Stockholm:20240210T120000,20240211T120000", "RDATE:20240205T080000Z",
          "RDATE;VALUE=PERIOD:20240212T080000Z/PT3H,20240213T080000Z/20240213T083000Z",
          "RDATE;VALUE=DATE:20240214"});
  EXPECT_EQ(shown(u"2024-02-01"_qs, u"2024-02-28"_qs),
            (QStringList{u"2024-02-05 09:00 - 10:00 S"_qs, u"2024-02-10 12:00 - 13:00 S"_qs,
                         u"2024-02-11 12:00 - 13:00 S"_qs, u"2024-02-12 09:00 - 12:00 S"_qs,
                         u"2024-02-13 09:00 - 09:30 S"_qs, u"2024-02-14 09:00 - 10:00 S"_qs}));
  EXPECT_EQ(plain().value(0).kind, Kind::Master);
}

TEST_F(SeriesTest, ExcludedDatesMayStandInOneLineOrManyAndInAnyForm) {
  series({nine, ten, "RRULE:FREQ=DAILY;COUNT=9",
          "EXDATE;TZID=Europe/Stockholm:20240206T090000,20240207T090000", "EXDATE:20240208T080000Z",
          "EXDATE:20240209T090000", "EXDATE;VALUE=DATE:20240210",
          "EXDATE;TZID=America/New_York:20240211T030000", "EXDATE;TZID=America/Los_Angeles:20240212T090000"});
  EXPECT_EQ(days(u"2024-01-01"_qs, u"2024-12-31"_qs), (QStringList{u"02-05 09:00"_qs, u"02-13 09:00"_qs}));
}

TEST_F(SeriesTest, ExcludedDaysOfAnAllDaySeriesAreComparedByTheirLocalDate) {
  series({"DTSTART;VALUE=DATE:20240205", "RRULE:FREQ=DAILY;COUNT=6", "EXDATE;VALUE=DATE:20240206",
          "EXDATE;TZID=W. Europe Standard Time:20240207T000000", "EXDATE:20240208T000000",
          "EXDATE:20240209T000000Z"});
  for (const char* viewer : {"Europe/Stockholm", "America/New_York"})
    EXPECT_EQ(days(u"2024-01-01"_qs, u"2024-12-31"_qs, viewer), (QStringList{u"02-05"_qs, u"02-10"_qs}))
        << viewer;
}

TEST_F(SeriesTest, AnExclusionRuleTakesItsDaysAway) {
  series({nine, ten, "RRULE:FREQ=DAILY;COUNT=7", "EXRULE:FREQ=WEEKLY;BYDAY=WE,TH,FR,SA"});
  EXPECT_EQ(days(u"2024-01-01"_qs, u"2024-12-31"_qs),
            (QStringList{u"02-05 09:00"_qs, u"02-06 09:00"_qs, u"02-11 09:00"_qs}));
}

TEST_F(SeriesTest, SeveralRulesTogetherAreOneSeries) {
  series({nine, ten, "RRULE:FREQ=WEEKLY;COUNT=2", "RRULE:FREQ=MONTHLY;BYMONTHDAY=7;COUNT=2"});
  EXPECT_EQ(days(u"2024-01-01"_qs, u"2024-12-31"_qs),
            (QStringList{u"02-05 09:00"_qs, u"02-07 09:00"_qs, u"02-12 09:00"_qs}));
}

TEST_F(SeriesTest, ARuleThatIsNotUnderstoodLeavesTheFirstOccurrenceAndIsNamed) {
  series({nine, ten, "RRULE:FREQ=SOMETIMES"});
  EXPECT_EQ(days(u"2024-01-01"_qs, u"2024-12-31"_qs), QStringList{u"02-05 09:00"_qs});
  EXPECT_TRUE(problemTexts().value(0).startsWith(u"s.ics:9: "_qs)) << qPrintable(problemTexts().value(0));
}

TEST_F(SeriesTest, AnEmptyRuleIsNone) {
  series({nine, ten, "RRULE:"});
  EXPECT_EQ(plain().value(0).kind, Kind::Single);
  EXPECT_TRUE(problemTexts().isEmpty());
}

TEST_F(SeriesTest, AnEndlessSeriesIsShownFarFromItsStart) {
  series({nine, ten, "RRULE:FREQ=WEEKLY;BYDAY=MO"});
  EXPECT_EQ(days(u"2049-12-27"_qs, u"2050-01-03"_qs), (QStringList{u"12-27 09:00"_qs, u"01-03 09:00"_qs}));
}

TEST_F(SeriesTest, OneSeriesShowsTenThousandOccurrencesAtMostAndSaysSo) {
  series({nine, "RRULE:FREQ=MINUTELY"});
  EXPECT_EQ(expanded(u"2024-02-05"_qs, u"2024-02-20"_qs).size(), 10'000);
  EXPECT_TRUE(problemTexts().value(0).contains(u"10000"_qs)) << qPrintable(problemTexts().value(0));
  EXPECT_LT(expanded(u"2024-02-06"_qs, u"2024-02-06"_qs).size(), 1500);
  EXPECT_TRUE(problemTexts().isEmpty());
}

TEST_F(SeriesTest, ACancelledSeriesIsNotShownNorAreItsExceptions) {
  series({nine, ten, "RRULE:FREQ=DAILY;COUNT=3", "STATUS:CANCELLED"},
         event({"UID:s", "RECURRENCE-ID;TZID=Europe/Stockholm:20240206T090000", "DTSTART:20240206T150000"}));
  EXPECT_TRUE(shown(u"2024-01-01"_qs, u"2024-12-31"_qs).isEmpty());
  EXPECT_TRUE(plain().isEmpty());
}

TEST_F(SeriesTest, ACancelledItemAndAMessageOfCancellationAreNotShown) {
  series({nine, ten, "STATUS:CANCELLED"});
  EXPECT_TRUE(plain().isEmpty());
  QByteArray message = calendar(event({"UID:s", nine, ten}));
  message.replace("VERSION:2.0\r\n", "VERSION:2.0\r\nMETHOD:CANCEL\r\n");
  write(u"s.ics"_qs, message);
  EXPECT_TRUE(plain().isEmpty());
}

TEST_F(SeriesTest, ASeriesWithoutUidIsASeriesOfItsOwn) {
  write(u"s.ics"_qs, calendar(event({"SUMMARY:One", nine, "RRULE:FREQ=DAILY;COUNT=2"}) +
                              event({"SUMMARY:Two", nine, "RRULE:FREQ=DAILY;COUNT=2"})));
  const QList<Item> items = expanded(u"2024-01-01"_qs, u"2024-12-31"_qs);
  ASSERT_EQ(items.size(), 4);
  EXPECT_NE(items[0].key.place, items[1].key.place);
  EXPECT_NE(items[0].key.uid, items[1].key.uid);
  Query query;
  query.uid = items[1].key.uid;
  const QList<Item> masters = store->items(folder, query);
  ASSERT_EQ(masters.size(), 1);
  EXPECT_EQ(masters[0].subject, items[1].subject);
}

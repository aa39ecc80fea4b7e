#include "tests/unit/platform/calendar/icalendar/fixture.h"

using namespace icalendar_tests;

namespace {

QByteArray timed(const QByteArrayList& lines) {
  return calendar(event(QByteArrayList{"UID:a", "SUMMARY:A"} + lines));
}

}  // namespace

TEST_F(IcalendarTest, TimesOfEveryFormAreShownOnTheViewersClock) {
  write(u"utc.ics"_qs, timed({"DTSTART:20240205T080000Z", "DTEND:20240205T093000Z"}));
  EXPECT_EQ(shown(u"2024-02-05"_qs, u"2024-02-05"_qs), QStringList{u"2024-02-05 09:00 - 10:30 A"_qs});
  write(u"utc.ics"_qs,
        timed({"DTSTART;TZID=America/New_York:20240205T080000", "DTEND;TZID=Europe/London:20240205T140000"}));
  EXPECT_EQ(shown(u"2024-02-05"_qs, u"2024-02-05"_qs), QStringList{u"2024-02-05 14:00 - 15:00 A"_qs});
  write(u"utc.ics"_qs, timed({"DTSTART:20240205T080000", "DURATION:PT45M"}));
  EXPECT_EQ(shown(u"2024-02-05"_qs, u"2024-02-05"_qs, "Asia/Tokyo"),
            QStringList{u"2024-02-05 08:00 - 08:45 A"_qs});
}

TEST_F(IcalendarTest, WithoutAnEndATimedItemHasNoLengthAndADayIsOne) {
  write(u"a.ics"_qs, timed({"DTSTART:20240205T080000"}));
  EXPECT_EQ(single().durationMinutes(), 0);
  write(u"a.ics"_qs, timed({"DTSTART;VALUE=DATE:20240205"}));
  EXPECT_EQ(described({single()}), QStringList{u"2024-02-05 - 2024-02-06 all day A"_qs});
}

TEST_F(IcalendarTest, AnAllDayItemEndsBeforeTheDayOfItsEnd) {
  write(u"a.ics"_qs, timed({"DTSTART;VALUE=DATE:20240205", "DTEND;VALUE=DATE:20240208"}));
  EXPECT_EQ(described({single()}), QStringList{u"2024-02-05 - 2024-02-08 all day A"_qs});
  EXPECT_EQ(single().durationMinutes(), 3 * 1440);
}

TEST_F(IcalendarTest, AnAllDayItemLastsADayAtLeast) {
  for (const QByteArray& end :
       {QByteArray("DTEND;VALUE=DATE:20240205"), QByteArray("DTEND;VALUE=DATE:20240201"),
        QByteArray("DURATION:PT0S"), QByteArray("DURATION:PT24H"), QByteArray("DURATION:P1D"),
        QByteArray("DURATION:-PT1W1D2H3M4S"), QByteArray("DTEND:20240206T000000")}) {
    write(u"a.ics"_qs, timed({"DTSTART;VALUE=DATE:20240205", end}));
    EXPECT_EQ(described({single()}), QStringList{u"2024-02-05 - 2024-02-06 all day A"_qs}) << end.constData();
  }
}

TEST_F(IcalendarTest, ADateNeedsNoWordThatItIsOne) {
  write(u"a.ics"_qs, timed({"DTSTART:20240205", "DTEND:20240207"}));
  EXPECT_EQ(described({single()}), QStringList{u"2024-02-05 - 2024-02-07 all day A"_qs});
}

TEST_F(IcalendarTest, AnEndBeforeTheStartIsNoLength) {
  write(u"a.ics"_qs, timed({"DTSTART:20240205T080000", "DTEND:20240205T070000"}));
  EXPECT_EQ(single().durationMinutes(), 0);
}

TEST_F(IcalendarTest, MicrosoftsMarkMakesMidnightToMidnightAWholeDay) {
  const QByteArray mark = "X-MICROSOFT-CDO-ALLDAYEVENT:TRUE";
  write(u"a.ics"_qs, timed({"DTSTART;TZID=W. Europe Standard Time:20240205T000000",
                            "DTEND;TZID=W. Europe Standard Time:20240207T000000", mark}));
  for (const char* zone : {"Europe/Stockholm", "America/New_York"})
    EXPECT_EQ(described(plain(zone)), QStringList{u"2024-02-05 - 2024-02-07 all day A"_qs}) << zone;
  write(u"a.ics"_qs, timed({"DTSTART:20240204T230000Z", "DTEND:20240205T230000Z", mark}));
  EXPECT_EQ(described({single()}), QStringList{u"2024-02-05 - 2024-02-06 all day A"_qs});
  write(u"a.ics"_qs, timed({"DTSTART:20240205T000000Z", "DTEND:20240206T000000Z", mark}));
  EXPECT_EQ(described({single()}), QStringList{u"2024-02-05 - 2024-02-06 all day A"_qs});
}

TEST_F(IcalendarTest, TheMarkIsNotBelievedAboutOtherTimesAndTheTimesNotWithoutTheMark) {
  write(u"a.ics"_qs,
        timed({"DTSTART:20240205T080000", "DTEND:20240206T080000", "X-MICROSOFT-CDO-ALLDAYEVENT:TRUE"}));
  EXPECT_FALSE(single().allDay);
  write(u"a.ics"_qs, timed({"DTSTART:20240205T000000", "DTEND:20240206T000000"}));
  EXPECT_FALSE(single().allDay);
  EXPECT_EQ(single().durationMinutes(), 1440);
  write(u"a.ics"_qs, timed({"DTSTART;VALUE=DATE:20240205", "X-MICROSOFT-CDO-ALLDAYEVENT:FALSE"}));
  EXPECT_TRUE(single().allDay);
}

TEST_F(IcalendarTest, DaysOf23And25HoursAreCountedAsTheyAre) {
  write(u"a.ics"_qs, timed({"DTSTART;TZID=Europe/Stockholm:20240331T000000",
                            "DTEND;TZID=Europe/Stockholm:20240401T000000"}));
  EXPECT_EQ(single().durationMinutes(), 23 * 60);
  write(u"a.ics"_qs, timed({"DTSTART;TZID=Europe/Stockholm:20241027T000000",
                            "DTEND;TZID=Europe/Stockholm:20241028T000000"}));
  EXPECT_EQ(single().durationMinutes(), 25 * 60);
  write(u"a.ics"_qs, timed({"DTSTART;TZID=Europe/Stockholm:20240330T120000", "DURATION:P1D"}));
  EXPECT_EQ(single().durationMinutes(), 23 * 60);
  write(u"a.ics"_qs, timed({"DTSTART;TZID=Europe/Stockholm:20240330T120000", "DURATION:PT24H"}));
  EXPECT_EQ(single().durationMinutes(), 24 * 60);
}

TEST_F(IcalendarTest, AnAllDayItemAtAMidnightThatTheClocksSkipStaysOnItsDay) {
  write(u"a.ics"_qs,
        timed({"DTSTART;VALUE=DATE:20181104", "DTEND;VALUE=DATE:20181105"}));  // Sao Paulo: 00:00 -> 01:00
  const QList<Item> there = plain("America/Sao_Paulo");
  ASSERT_EQ(there.size(), 1);
  EXPECT_EQ(there[0].start.date(), QDate(2018, 11, 4));
  EXPECT_EQ(there[0].durationMinutes(), 1440);
}

TEST_F(IcalendarTest, AZoneThatNobodyDefinesIsTheViewersAndSaidSo) {
  write(u"a.ics"_qs, timed({"DTSTART;TZID=Customized Time Zone 1:20240205T080000",
                            "DTEND;TZID=Customized Time Zone 1:20240205T090000"}));
  for (const char* zone : {"Europe/Stockholm", "America/New_York"}) {
    const QList<Item> items = plain(zone);
    EXPECT_EQ(described(items), QStringList{u"2024-02-05 08:00 - 09:00 A"_qs});
    EXPECT_TRUE(items.value(0).zoneUnknown);
  }
  ASSERT_EQ(problemTexts().size(), 1);
  EXPECT_TRUE(problemTexts().at(0).contains(u"Customized Time Zone 1"_qs));
}

TEST_F(IcalendarTest, AnEndInAZoneThatNobodyDefinesIsMarkedAndNamedAsWell) {
  write(u"a.ics"_qs,
        timed({"DTSTART;TZID=Europe/Berlin:20240205T160000", "DTEND;TZID=Nobody's Zone:20240205T110000"}));
  const QList<Item> items = plain("America/New_York");
  EXPECT_EQ(described(items), QStringList{u"2024-02-05 10:00 - 11:00 A"_qs});
  EXPECT_TRUE(items.value(0).zoneUnknown);
  ASSERT_EQ(problemTexts().size(), 1);
  EXPECT_TRUE(problemTexts().at(0).contains(u"\"Nobody's Zone\""_qs));
}

TEST_F(IcalendarTest, AZoneThatTheFileDefinesIsEvaluated) {
  write(u"a.ics"_qs,
        calendar(joined({"BEGIN:VTIMEZONE", "TZID:Customized Time Zone", "BEGIN:STANDARD",
                         "DTSTART:16010101T000000", "TZOFFSETFROM:-0500", "TZOFFSETTO:-0500", "END:STANDARD",
                         "END:VTIMEZONE"}) +
                 event({"UID:a", "SUMMARY:A", "DTSTART;TZID=\"Customized Time Zone\":20240705T080000"})));
  EXPECT_EQ(described({single()}), QStringList{u"2024-07-05 15:00 - 15:00 A"_qs});
  EXPECT_FALSE(single().zoneUnknown);
}

TEST_F(IcalendarTest, GooglesCalendarZoneIsTheOneOfItsFloatingTimesAndNobodyElses) {
  const QByteArray lines =
      joined({"X-WR-TIMEZONE:America/New_York"}) + event({"UID:a", "SUMMARY:A", "DTSTART:20240205T080000"});
  write(u"a.ics"_qs, calendar(lines));
  EXPECT_EQ(described({single()}), QStringList{u"2024-02-05 08:00 - 08:00 A"_qs});
  QByteArray google = calendar(lines);
  google.replace("-//Another//Program//EN", "-//Google Inc//Google Calendar 70.9054//EN");
  write(u"a.ics"_qs, google);
  EXPECT_EQ(described({single()}), QStringList{u"2024-02-05 14:00 - 14:00 A"_qs});
}

TEST_F(IcalendarTest, AnItemWithoutAStartStandsInNoPeriodButIsListedAndNamed) {
  write(u"a.ics"_qs, calendar(event({"UID:a", "SUMMARY:A", "CATEGORIES:x,y"})));
  EXPECT_TRUE(shown(u"2000-01-01"_qs, u"2099-12-31"_qs).isEmpty());
  EXPECT_FALSE(single().start.isValid());
  EXPECT_EQ(single().categories, (QStringList{u"x"_qs, u"y"_qs}));
  EXPECT_EQ(problemTexts().size(), 1);
}

TEST_F(IcalendarTest, AStartOutOfRangeIsNamedByFileAndLineAndTheOthersAreShown) {
  write(u"a.ics"_qs, calendar(event({"UID:bad", "DTSTART:73523665T010000", "RRULE:FREQ=DAILY;COUNT=100"}) +
                              event({"UID:good", "SUMMARY:Good", "DTSTART:20240205T080000"})));
  EXPECT_EQ(shown(u"2024-01-01"_qs, u"2024-12-31"_qs), QStringList{u"2024-02-05 08:00 - 08:00 Good"_qs});
  ASSERT_FALSE(problemTexts().isEmpty());
  EXPECT_TRUE(problemTexts().at(0).startsWith(u"a.ics:6: "_qs)) << qPrintable(problemTexts().at(0));
}

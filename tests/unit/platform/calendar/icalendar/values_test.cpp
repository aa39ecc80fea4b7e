#include "platform/calendar/icalendar/values.h"

#include <gtest/gtest.h>

using namespace platform::calendar::icalendar;

namespace {

std::optional<DateValue> dateOf(const QByteArray& line) {
  const Property property = parsed(line);
  return dateValue(property.value, property);
}

}  // namespace

TEST(Dates, EachFormIsTold) {
  EXPECT_EQ(dateOf("DTSTART;VALUE=DATE:20240219")->form, DateValue::Form::Date);
  EXPECT_EQ(dateOf("DTSTART:20240219")->form, DateValue::Form::Date);
  EXPECT_EQ(dateOf("DTSTART:20240219T090000")->form, DateValue::Form::Floating);
  EXPECT_EQ(dateOf("DTSTART:20240219T090000Z")->form, DateValue::Form::Utc);
  EXPECT_EQ(dateOf("DTSTART;TZID=Europe/Paris:20240219T090000")->tzid, u"Europe/Paris"_qs);
  EXPECT_EQ(dateOf("DTSTART;TZID=Europe/Paris:20240219T090000Z")->form, DateValue::Form::Utc);
  EXPECT_EQ(dateOf("DTSTART;TZID=\"Europe/Paris:20240219T090000\"")->tzid, u"Europe/Paris"_qs);
  EXPECT_EQ(dateOf("DTSTART:20240219T0915")->time, QTime(9, 15));
}

TEST(Dates, WhatIsOutOfRangeIsNoDate) {
  for (const char* text :
       {"73523665T010000", "20243017", "20240230", "20240219T250000", "20240219T096000", "20240219T090061",
        "00000101", "2024", "", "T103012", "9999999T9999999X", "2024021", "199709T180000Z",
        "18640549T165845Z", "20240219X090000", "20240219T0900000"})
    EXPECT_FALSE(dateOf(QByteArray("DTSTART:") + text)) << text;
}

TEST(Dates, TheEndOfTheDayIsTheNextMidnight) {
  const auto value = dateOf("DTEND:20241231T240000");
  ASSERT_TRUE(value);
  EXPECT_EQ(value->date, QDate(2025, 1, 1));
  EXPECT_EQ(value->time, QTime(0, 0));
}

TEST(Dates, WallClockReadingsGoBackAndForthAcrossTheEpoch) {
  for (const QDate& date : {QDate(1601, 1, 1), QDate(1969, 12, 31), QDate(1970, 1, 1), QDate(2050, 1, 1)}) {
    const qint64 wall = wallOf(date, QTime(23, 59, 59));
    EXPECT_EQ(dateOfWall(wall), date);
    EXPECT_EQ(timeOfWall(wall), QTime(23, 59, 59));
  }
}

TEST(Durations, AreDaysOnTheClockAndAnExactRest) {
  EXPECT_EQ(spanValue("PT1H30M")->exactMs, 90 * minuteMs);
  EXPECT_EQ(spanValue("P1DT12H")->days, 1);
  EXPECT_EQ(spanValue("P2W")->days, 14);
  EXPECT_EQ(spanValue("+PT45S")->exactMs, 45 * secondMs);
  EXPECT_EQ(spanValue("PT00H15M00S")->exactMs, 15 * minuteMs);
  EXPECT_EQ(spanText(90), "PT1H30M");
  EXPECT_EQ(spanText(60), "PT1H");
  EXPECT_EQ(spanText(0), "PT0S");
}

TEST(Durations, NonsenseIsNone) {
  for (const char* text : {"", "P", "PT", "-PT1H", "-PT1W1D2H3M4S", "P999999999999999999W",
                           "PT99999999999999H", "PT5", "P1M", "1H", "PT1X"})
    EXPECT_FALSE(spanValue(text)) << text;
}

TEST(Lists, WhatCannotBeReadIsCountedAndTheRestKept) {
  int unreadable = 0;
  EXPECT_EQ(dateList(parsed("EXDATE:20240219,nonsense,20240220T090000Z,"), &unreadable).size(), 2);
  EXPECT_EQ(unreadable, 1);
  const auto periods = periodList(parsed("RDATE;VALUE=PERIOD:19970101T180000Z/"
                                         "19970102T070000Z,199709T180000Z/PT5H,19970109T180000Z/PT5H30M"),
                                  &unreadable);
  EXPECT_EQ(unreadable, 2);
  ASSERT_EQ(periods.size(), 2);
  EXPECT_EQ(periods[0].end->date, QDate(1997, 1, 2));
  EXPECT_EQ(periods[1].span->exactMs, 330 * minuteMs);
}

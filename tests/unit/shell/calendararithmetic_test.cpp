#include "shell/genTools.h"
#include "shell/modErrorReport.h"
#include "tests/unit/shell/shellworld.h"

using namespace Qt::StringLiterals;

namespace hourbook::tests {

using platform::basic::Date;

class CalendarArithmetic : public ShellWorld {};

TEST_F(CalendarArithmetic, ADateAtTheTurnOfTheYearHasTheNumberOfItsThursdaysWeek) {
  EXPECT_EQ(fncSwWeekNo(Date::of(2005, 1, 1)), 53);    // Saturday
  EXPECT_EQ(fncSwWeekNo(Date::of(2003, 12, 31)), 1);   // Wednesday
  EXPECT_EQ(fncSwWeekNo(Date::of(2006, 1, 1)), 52);    // Sunday
  EXPECT_EQ(fncSwWeekNo(Date::of(2007, 1, 1)), 1);     // Monday
  EXPECT_EQ(fncSwWeekNo(Date::of(2026, 12, 31)), 53);  // Thursday
}

TEST_F(CalendarArithmetic, TheWeekNumberIsTheIsoOneOnEveryDayOfThirtyYears) {
  for (QDate day(2000, 1, 1); day.year() < 2030; day = day.addDays(1))
    ASSERT_EQ(fncSwWeekNo(Date::of(day)), day.weekNumber()) << qPrintable(day.toString(Qt::ISODate));
}

TEST_F(CalendarArithmetic, TheTimeOfDayDoesNotMoveTheWeekNumber) {
  EXPECT_EQ(fncSwWeekNo(Date::of(QDate(2005, 1, 2), QTime(23, 59, 59))), 53);
  EXPECT_EQ(fncSwWeekNo(Date::of(QDate(2005, 1, 3), QTime(0, 0, 1))), 1);
}

TEST_F(CalendarArithmetic, TheFirstMondayFollowsTheWeekdayOfNewYearsDay) {
  EXPECT_EQ(MondayWeek1(2005).date(), QDate(2005, 1, 3));    // Saturday
  EXPECT_EQ(MondayWeek1(2007).date(), QDate(2007, 1, 1));    // Monday
  EXPECT_EQ(MondayWeek1(2006).date(), QDate(2006, 1, 2));    // Sunday
  EXPECT_EQ(MondayWeek1(2009).date(), QDate(2008, 12, 29));  // Thursday
  EXPECT_EQ(MondayWeek1(2010).date(), QDate(2010, 1, 4));    // Friday
  EXPECT_EQ(MondayWeek1(2008).date(), QDate(2007, 12, 31));  // Tuesday
  EXPECT_EQ(MondayWeek1(2014).date(), QDate(2013, 12, 30));  // Wednesday
}

TEST_F(CalendarArithmetic, TheFirstMondayLiesInWeekOneInAHundredYears) {
  for (int year = 1950; year < 2050; ++year) {
    EXPECT_EQ(MondayWeek1(year).date().dayOfWeek(), 1) << year;
    EXPECT_EQ(fncSwWeekNo(MondayWeek1(year)), 1) << year;
  }
}

TEST_F(CalendarArithmetic, Week53OfAYearWith52WeeksIsTheFirstOfTheNext) {
  EXPECT_EQ(MondayWeek1(2023).addDays((53 - 1) * 7), MondayWeek1(2024));
}

TEST_F(CalendarArithmetic, TheFirstMondayIsTheSameInEveryLocale) {
  for (const QString& locale : {u"de_DE"_s, u"sv_SE"_s, u"en_US"_s}) {
    world.setLocale(locale);
    EXPECT_EQ(MondayWeek1(2005).date(), QDate(2005, 1, 3)) << qPrintable(locale);
  }
}

TEST_F(CalendarArithmetic, BothLogWhatTheyDo) {
  fncSwWeekNo(Date::of(2005, 1, 1));
  EXPECT_EQ(fncLastLogText(), u"the Week No (Swedish Style) of the date 1/1/2005"_s);
  MondayWeek1(2005);
  EXPECT_EQ(fncLastLogText(), u"Calculates the date of the monday in week 1 of the year supplied"_s);
}

TEST_F(CalendarArithmetic, AYearThatIsNoneIsReported) {
  EXPECT_REPORTED(world, "genTools.MondayWeek1", MondayWeek1(123456));
}

TEST_F(CalendarArithmetic, ADateBehindTheLastYearIsReported) {
  EXPECT_REPORTED(world, "genTools.fncSwWeekNo", fncSwWeekNo(Date(3e6)));
}

TEST_F(CalendarArithmetic, NullReadsAsAnEmptyText) {
  EXPECT_EQ(fncNullToEmpty(platform::basic::Null()), QString());
  EXPECT_EQ(fncNullToEmpty(u"a"_s), u"a"_s);
  EXPECT_EQ(fncNullToEmpty(qint32(7)), u"7"_s);
}

}  // namespace hourbook::tests

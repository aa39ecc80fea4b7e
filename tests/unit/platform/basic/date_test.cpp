#include "failures.h"
#include "platform/basic/clock.h"
#include "platform/basic/value.h"

#include <gtest/gtest.h>
#include <limits>

using namespace platform::basic;

namespace {

TEST(Date, CountsDaysFrom30December1899) {
  EXPECT_EQ(Date::of(1899, 12, 30).serial(), 0);
  EXPECT_EQ(Date::of(1900, 1, 1).serial(), 2);
  EXPECT_EQ(Date::of(2024, 3, 5).serial(), 45356);
  EXPECT_EQ(Date::of(2050, 1, 1).serial(), 54789);
  EXPECT_EQ(Date(36526).date(), QDate(2000, 1, 1));
}

TEST(Date, NeverSetIsAYearBefore1900) {
  EXPECT_EQ(Date().date(), QDate(1899, 12, 30));
  EXPECT_LT(Date().year(), 1900);
}

TEST(Date, HoldsTheTimeAsItsFraction) {
  EXPECT_EQ(Date::of(QDate(2024, 3, 5), QTime(6, 0)).serial(), 45356.25);
  EXPECT_EQ(Date(45356.75).time(), QTime(18, 0));
}

TEST(Date, GivesBackEverySecondOfTheDay) {
  for (int second = 0; second < 86400; second += 7) {
    const QTime time = QTime(0, 0).addSecs(second);
    const Date date = Date::of(QDate(2024, 3, 5), time);
    ASSERT_EQ(date.time(), time);
    ASSERT_EQ(date.date(), QDate(2024, 3, 5));
  }
}

TEST(Date, RoundsToWholeSecondsIntoTheNextDayIfNeedBe) {
  const Date date(45356.9999999);
  EXPECT_EQ(date.time(), QTime(0, 0));
  EXPECT_EQ(date.date(), QDate(2024, 3, 6));
  EXPECT_EQ(date.dateOnly(), Date::of(2024, 3, 6));
}

TEST(Date, RunsForwardsWithinADayBeforeItsZeroToo) {
  const Date date = Date::of(QDate(1899, 12, 29), QTime(6, 0));
  EXPECT_EQ(date.serial(), -1.25);
  EXPECT_EQ(date.date(), QDate(1899, 12, 29));
  EXPECT_EQ(date.time(), QTime(6, 0));
  EXPECT_EQ(date.dateOnly().serial(), -1);
}

TEST(Date, CarriesMonthsAndDaysThatOverflow) {
  EXPECT_EQ(Date::of(2023, 13, 1).date(), QDate(2024, 1, 1));
  EXPECT_EQ(Date::of(2024, 3, 0).date(), QDate(2024, 2, 29));
  EXPECT_EQ(Date::of(2024, 0, 31).date(), QDate(2023, 12, 31));
  EXPECT_EQ(Date::of(2023, 2, 29).date(), QDate(2023, 3, 1));
}

TEST(Date, LosesItsTimeOnRequest) {
  EXPECT_EQ(Date::of(QDate(2024, 3, 5), QTime(14, 30)).dateOnly(), Date::of(2024, 3, 5));
}

TEST(Date, TakesTheWallClockAsItStandsAndIgnoresTheZone) {
  const QDateTime tokyo(QDate(2024, 3, 5), QTime(1, 0), QTimeZone("Asia/Tokyo"));
  EXPECT_EQ(Date::fromLocal(tokyo), Date::of(QDate(2024, 3, 5), QTime(1, 0)));
}

TEST(Date, GivesTheWallClockBack) {
  const QDateTime local = Date::of(QDate(2024, 6, 5), QTime(14, 30)).toLocal();
  EXPECT_EQ(local.date(), QDate(2024, 6, 5));
  EXPECT_EQ(local.time(), QTime(14, 30));
}

TEST(Date, KnowsTheYears100To9999Alone) {
  EXPECT_EQ(Date::of(100, 1, 1).serial(), -657434);
  EXPECT_EQ(Date::of(9999, 12, 31).serial(), 2958465);
  for (const int year : {-1, 0, 99, 10000, 20000, 32767, std::numeric_limits<int>::max()})
    EXPECT_EQ(failureNumber([&] { Date::of(year, 5, 15); }), 6) << year;
  EXPECT_EQ(failureNumber([] { Date::of(9999, 13, 1); }), 6);
  EXPECT_EQ(failureNumber([] { Date::of(100, 1, 0); }), 6);
  EXPECT_EQ(failureNumber([] { Date::of(2024, 1, std::numeric_limits<int>::max()); }), 6);
}

TEST(Date, CannotBeCountedBeyondItsYears) {
  const Date date = Date::of(2024, 5, 15);
  EXPECT_EQ(Date::of(9999, 12, 30).addDays(1.5).date(), QDate(9999, 12, 31));
  EXPECT_EQ(Date::of(100, 1, 2).addDays(-1).date(), QDate(100, 1, 1));
  for (const double days : {-99999999.0, 99999999.0, 1e300, -std::numeric_limits<double>::infinity(),
                            std::numeric_limits<double>::quiet_NaN()})
    EXPECT_EQ(failureNumber([&] { date.addDays(days); }), 6) << days;
}

TEST(Date, BeyondItsYearsHasNoParts) {
  for (const double serial : {-657435.0, 2958466.0, 1e300, std::numeric_limits<double>::quiet_NaN()}) {
    const Date date(serial);
    EXPECT_EQ(failureNumber([&] { date.date(); }), 6) << serial;
    EXPECT_EQ(failureNumber([&] { date.time(); }), 6) << serial;
    EXPECT_EQ(failureNumber([&] { date.dateOnly(); }), 6) << serial;
  }
}

TEST(Date, AddsDaysAndComparesByTime) {
  const Date date = Date::of(2024, 2, 28);
  EXPECT_EQ(date.addDays(2).date(), QDate(2024, 3, 1));
  EXPECT_LT(date, date.addDays(0.001));
  EXPECT_EQ(date.year(), 2024);
  EXPECT_EQ(date.month(), 2);
  EXPECT_EQ(date.day(), 28);
}

TEST(Weekday, CountsFromTheDayThatIsAskedFor) {
  const Date sunday = Date::of(2024, 3, 3);
  const Date tuesday = Date::of(2024, 3, 5);
  EXPECT_EQ(Weekday(sunday), 1);
  EXPECT_EQ(Weekday(tuesday), 3);
  EXPECT_EQ(Weekday(sunday, vbMonday), 7);
  EXPECT_EQ(Weekday(tuesday, vbMonday), 2);
  EXPECT_EQ(Weekday(tuesday, 4), 7) << "from Wednesday";
}

}  // namespace

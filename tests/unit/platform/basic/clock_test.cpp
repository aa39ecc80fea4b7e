#include "platform/basic/clock.h"

#include <gtest/gtest.h>

using namespace platform::basic;

namespace {

std::shared_ptr<FixedClock> clockAt(const QDate& day, const QTime& time, const QByteArray& zone) {
  return std::make_shared<FixedClock>(QDateTime(day, time), zone);
}

class FixedClockIn : public testing::TestWithParam<const char*> {};

TEST_P(FixedClockIn, ShowsItsWallClockWhateverTheZone) {
  const ScopedClock scope(clockAt(QDate(2024, 7, 14), QTime(23, 59, 58), GetParam()));

  EXPECT_EQ(Now(), Date::of(QDate(2024, 7, 14), QTime(23, 59, 58)));
  EXPECT_EQ(Today(), Date::of(2024, 7, 14));
  EXPECT_EQ(Clock::current().zone().id(), QByteArray(GetParam()));
}

INSTANTIATE_TEST_SUITE_P(Zones, FixedClockIn,
                         testing::Values("Europe/Stockholm", "America/Los_Angeles", "Pacific/Kiritimati",
                                         "Asia/Kolkata", "Australia/Lord_Howe", "UTC"),
                         [](const auto& info) {
                           return QString::fromLatin1(info.param).remove(u'/').remove(u'_').toStdString();
                         });

TEST(FixedClock, StandsStillUntilMovedOn) {
  const auto clock = clockAt(QDate(2024, 5, 15), QTime(10, 0), "Europe/Berlin");
  const ScopedClock scope(clock);

  EXPECT_EQ(Now(), Now());
  clock->advance(90);
  EXPECT_EQ(Now().time(), QTime(10, 1, 30));
}

TEST(FixedClock, MovesThroughTheChangeToSummerTimeAsTimePasses) {
  const auto clock = clockAt(QDate(2024, 3, 31), QTime(1, 59, 0), "Europe/Berlin");
  const ScopedClock scope(clock);

  clock->advance(60);

  EXPECT_EQ(Now().time(), QTime(3, 0)) << "from two to three there is no time";
}

TEST(FixedClock, ReadsAnHourThatSummerTimeLeavesOutByTheTimeBefore) {
  const auto clock = clockAt(QDate(2024, 3, 31), QTime(2, 30), "Europe/Berlin");

  EXPECT_EQ(clock->now().toUTC(), QDateTime(QDate(2024, 3, 31), QTime(1, 30), Qt::UTC));
  EXPECT_EQ(clock->now().time(), QTime(3, 30));
}

TEST(Clock, IsThatOfTheInnermostScope) {
  const ScopedClock outer(clockAt(QDate(2024, 1, 1), QTime(0, 0), "UTC"));
  {
    const ScopedClock inner(clockAt(QDate(2025, 1, 1), QTime(0, 0), "UTC"));
    EXPECT_EQ(Today().year(), 2025);
  }
  EXPECT_EQ(Today().year(), 2024);
}

TEST(Clock, IsTheMachinesWhenNoneIsGiven) {
  const ScopedClock fixed(clockAt(QDate(2001, 1, 1), QTime(0, 0), "UTC"));
  const ScopedClock machine(nullptr);

  const QDateTime before = QDateTime::currentDateTimeUtc();
  const QDateTime now = Clock::current().now();
  const QDateTime after = QDateTime::currentDateTimeUtc();

  EXPECT_LE(before, now);
  EXPECT_LE(now, after);
  EXPECT_EQ(Clock::current().zone(), QTimeZone::systemTimeZone());
}

TEST(Now, DropsFractionsOfASecond) {
  const ScopedClock scope(clockAt(QDate(2024, 5, 15), QTime(10, 0, 0, 999), "UTC"));
  EXPECT_EQ(Now(), Date::of(QDate(2024, 5, 15), QTime(10, 0, 0)));
}

}  // namespace

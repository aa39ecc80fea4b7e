#include "platform/calendar/wallclock.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using namespace platform::calendar;

namespace {

QString utcOf(const QDate& day, const QTime& time, const char* zone, Twice twice = Twice::First) {
  return instantAt(day, time, QTimeZone(zone), twice).toUTC().toString(u"yyyy-MM-dd HH:mm:ss"_s);
}

}  // namespace

TEST(WallClock, AnOrdinaryTimeIsTakenWithTheOffsetOfItsSeason) {
  EXPECT_EQ(utcOf({2024, 1, 15}, {9, 0}, "Europe/Stockholm"), u"2024-01-15 08:00:00"_s);
  EXPECT_EQ(utcOf({2024, 7, 15}, {9, 0}, "Europe/Stockholm"), u"2024-07-15 07:00:00"_s);
  EXPECT_EQ(utcOf({2024, 7, 15}, {9, 0, 30}, "Asia/Kathmandu"), u"2024-07-15 03:15:30"_s);
  EXPECT_EQ(utcOf({2024, 7, 15}, {9, 0}, "UTC"), u"2024-07-15 09:00:00"_s);
}

TEST(WallClock, TheHoursAroundAChangeOfTheClocksAreRight) {
  EXPECT_EQ(utcOf({2024, 3, 31}, {1, 59}, "Europe/Stockholm"), u"2024-03-31 00:59:00"_s);
  EXPECT_EQ(utcOf({2024, 3, 31}, {3, 0}, "Europe/Stockholm"), u"2024-03-31 01:00:00"_s);
  EXPECT_EQ(utcOf({2024, 10, 27}, {1, 59}, "Europe/Stockholm"), u"2024-10-26 23:59:00"_s);
  EXPECT_EQ(utcOf({2024, 10, 27}, {3, 0}, "Europe/Stockholm"), u"2024-10-27 02:00:00"_s);
  EXPECT_EQ(utcOf({2024, 3, 10}, {1, 30}, "America/New_York"), u"2024-03-10 06:30:00"_s);
  EXPECT_EQ(utcOf({2024, 11, 3}, {2, 0}, "America/New_York"), u"2024-11-03 07:00:00"_s);
}

TEST(WallClock, ATimeThatTheClocksJumpOverMovesOnByTheJump) {
  const QDateTime moment = instantAt({2024, 3, 31}, {2, 30}, QTimeZone("Europe/Stockholm"));
  EXPECT_TRUE(moment.isValid());
  EXPECT_EQ(moment.toUTC().time(), QTime(1, 30));
  EXPECT_EQ(moment.time(), QTime(3, 30));
  // half an hour only
  EXPECT_EQ(instantAt({2024, 10, 6}, {2, 10}, QTimeZone("Australia/Lord_Howe")).time(), QTime(2, 40));
}

TEST(WallClock, AMidnightThatTheClocksJumpOverStaysOnItsDay) {
  const QDateTime moment = instantAt({2018, 11, 4}, {0, 0}, QTimeZone("America/Sao_Paulo"));
  EXPECT_EQ(moment.date(), QDate(2018, 11, 4));
  EXPECT_EQ(moment.time(), QTime(1, 0));
}

TEST(WallClock, ATimeThatComesTwiceIsTheFirstUnlessTheSecondIsAskedFor) {
  EXPECT_EQ(utcOf({2024, 10, 27}, {2, 30}, "Europe/Stockholm"), u"2024-10-27 00:30:00"_s);
  EXPECT_EQ(utcOf({2024, 10, 27}, {2, 30}, "Europe/Stockholm", Twice::Second), u"2024-10-27 01:30:00"_s);
  EXPECT_EQ(utcOf({2024, 10, 27}, {4, 0}, "Europe/Stockholm", Twice::Second), u"2024-10-27 03:00:00"_s);
}

TEST(WallClock, EveryQuarterOfAYearComesBackToItsOwnClock) {
  for (const char* id :
       {"Europe/Stockholm", "America/St_Johns", "Australia/Lord_Howe", "Africa/Casablanca", "Asia/Beirut"}) {
    const QTimeZone zone(id);
    int jumped = 0;
    for (QDateTime local({2024, 1, 1}, {0, 0}, Qt::UTC); local.date().year() == 2024;
         local = local.addSecs(900)) {
      const QDateTime moment = instantAt(local.date(), local.time(), zone);
      if (moment.date() != local.date() || moment.time() != local.time()) ++jumped;
    }
    EXPECT_EQ(jumped, QByteArray(id) == "Australia/Lord_Howe" ? 2 : 4) << id;
  }
}

TEST(WallClock, WithoutADateOrAZoneThereIsNoMoment) {
  EXPECT_FALSE(instantAt(QDate(), QTime(9, 0), QTimeZone::utc()).isValid());
  EXPECT_FALSE(instantAt(QDate(2024, 1, 1), QTime(9, 0), QTimeZone()).isValid());
  EXPECT_EQ(instantAt(QDate(2024, 1, 1), QTime(), QTimeZone::utc()).time(), QTime(0, 0));
}

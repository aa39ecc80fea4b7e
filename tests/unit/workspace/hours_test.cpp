#include "platform/basic/convert.h"
#include "workspace/modGetData.h"
#include "workspaceworld.h"

namespace tests {
namespace {

using platform::basic::CDbl;
using platform::basic::Value;

class Hours : public testing::Test {
 protected:
  double of(int minutes) const { return CDbl(fncHoursFromMinutes(minutes)); }
  QString shown(int minutes) const { return fncHoursText(fncHoursFromMinutes(minutes)); }
  WorkspaceWorld w;
};

TEST_F(Hours, AreMinutesBySixtyWithoutFurtherRules) {
  EXPECT_EQ(of(60), 1);
  EXPECT_EQ(of(50), 50 / 60.0);
  EXPECT_EQ(of(1440), 24);
  EXPECT_EQ(of(2880), 48);
}

TEST_F(Hours, OfAWholeDayAreTheSettingsAmount) {
  w.personal().Convert24 = true;
  EXPECT_EQ(of(1440), 8);
  w.personal().Convert24Hours = Value(QStringLiteral("7.5"));
  EXPECT_EQ(of(1440), 7.5);
}

TEST_F(Hours, OfSeveralWholeDaysAreThatManyAmounts) {
  w.personal().Convert24 = true;
  EXPECT_EQ(of(3 * 1440), 24);
}

TEST_F(Hours, OfADayAndAHalfStayClockHours) {
  w.personal().Convert24 = true;
  EXPECT_EQ(of(36 * 60), 36);
}

TEST_F(Hours, LoseLunchOnlyAboveSeven) {
  w.personal().RemoveLunch = true;
  EXPECT_EQ(of(7 * 60), 7);
  EXPECT_EQ(of(7 * 60 + 30), 6.75);
  EXPECT_EQ(of(8 * 60), 7.25);
}

TEST_F(Hours, OfAWholeDayNeverLoseLunch) {
  w.personal().Convert24 = true;
  w.personal().RemoveLunch = true;
  EXPECT_EQ(of(1440), 8);
  EXPECT_EQ(of(2 * 1440), 16);
}

TEST_F(Hours, OfAWholeDayKeepTheClockWithoutConversionAndLoseNoLunch) {
  w.personal().RemoveLunch = true;
  EXPECT_EQ(of(1440), 24);
}

TEST_F(Hours, ReadTheSettingsTextsByTheSystemsNumberFormat) {
  w.world.setLocale(QStringLiteral("sv_SE"));
  w.personal().RemoveLunch = true;
  w.personal().RemoveLunchHours = Value(QStringLiteral("0,5"));
  EXPECT_EQ(of(8 * 60), 7.5);
}

TEST_F(Hours, AreShownWithAPointAndAtMostTwoDecimalsInEveryLanguage) {
  for (const char* locale : {"en_US", "sv_SE", "de_DE", "fr_FR", "fa_IR"}) {
    w.world.setLocale(QString::fromLatin1(locale));
    EXPECT_EQ(shown(8 * 60), QStringLiteral("8")) << locale;
    EXPECT_EQ(shown(7 * 60 + 15), QStringLiteral("7.25")) << locale;
    EXPECT_EQ(shown(80), QStringLiteral("1.33")) << locale;
    EXPECT_EQ(shown(15), QStringLiteral("0.25")) << locale;
    EXPECT_EQ(shown(0), QStringLiteral("0")) << locale;
  }
}

TEST_F(Hours, OfTheSettingsAreShownAsANumberToo) {
  w.personal().Convert24 = true;
  w.personal().Convert24Hours = Value(QStringLiteral("8"));
  EXPECT_EQ(shown(1440), QStringLiteral("8"));
}

TEST_F(Hours, ThatAreNoWholeDaysStayClockHoursWhicheverWayTheirDaysRound) {
  w.personal().Convert24 = true;
  EXPECT_EQ(of(1440 * 2 + 720), 60);
  EXPECT_EQ(of(1440 * 3 + 720), 84);
  EXPECT_EQ(of(1440 * 2 + 1), 2881 / 60.0);
  EXPECT_EQ(of(1440 * 3 - 1), 4319 / 60.0);
}

TEST_F(Hours, OfNegativeWholeDaysStayClockHours) {
  EXPECT_EQ(CDbl(fncWholeDaysToHours(-2 * 1440)), -48);
}

TEST_F(Hours, AreShownRoundedAwayFromZero) {
  EXPECT_EQ(fncHoursText(Value(7.125)), QStringLiteral("7.13"));
  EXPECT_EQ(fncHoursText(Value(0.005)), QStringLiteral("0.01"));
}

TEST_F(Hours, AreShownWithPlainDigitsAndAPointWhereTheSystemHasOtherOnes) {
  for (const char* locale : {"fa_IR", "ar_EG", "ar_SA", "ur_PK", "hi_IN"}) {
    w.world.setLocale(QString::fromLatin1(locale));
    EXPECT_EQ(shown(7 * 60 + 15), QStringLiteral("7.25")) << locale;
    EXPECT_EQ(shown(8 * 60), QStringLiteral("8")) << locale;
  }
}

}  // namespace
}  // namespace tests

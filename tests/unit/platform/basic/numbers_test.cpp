#include "platform/basic/numbers.h"

#include <gtest/gtest.h>
#include <limits>

using namespace platform::basic;

namespace {

QString rounded(double value, int places) {
  const DecimalDigits number = roundedTo(decimalDigits(value, 15), places);
  return QString::fromLatin1(number.digits) + u'e' + QString::number(number.exponent);
}

TEST(NumberText, ShowsUpToFifteenDigitsOfADouble) {
  EXPECT_EQ(numberText(8, 15), u"8");
  EXPECT_EQ(numberText(-7.25, 15), u"-7.25");
  EXPECT_EQ(numberText(0, 15), u"0");
  EXPECT_EQ(numberText(-0.0, 15), u"0");
  EXPECT_EQ(numberText(0.1 + 0.2, 15), u"0.3");
  EXPECT_EQ(numberText(1.0 / 3.0, 15), u"0.333333333333333");
  EXPECT_EQ(numberText(1200, 15), u"1200");
  EXPECT_EQ(numberText(0.00001, 15), u"0.00001");
  EXPECT_EQ(numberText(123456789012345, 15), u"123456789012345");
}

TEST(NumberText, ShowsUpToSevenDigitsOfASingle) {
  EXPECT_EQ(numberText(static_cast<double>(7.1F), 7), u"7.1");
  EXPECT_EQ(numberText(static_cast<double>(1.0F / 3.0F), 7), u"0.3333333");
}

TEST(NumberText, TakesAnExponentWhereTheDigitsDoNotSuffice) {
  EXPECT_EQ(numberText(1e15, 15), u"1E+15");
  EXPECT_EQ(numberText(1.5e300, 15), u"1.5E+300");
  EXPECT_EQ(numberText(1e-16, 15), u"1E-16");
  EXPECT_EQ(numberText(1.0 / 300000.0, 15), u"3.33333333333333E-06");
  EXPECT_EQ(numberText(-1e7, 7), u"-1E+07");
}

TEST(NumberText, NamesWhatIsNoNumber) {
  EXPECT_EQ(numberText(std::numeric_limits<double>::infinity(), 15), u"1.#INF");
  EXPECT_EQ(numberText(-std::numeric_limits<double>::infinity(), 15), u"-1.#INF");
  EXPECT_EQ(numberText(std::numeric_limits<double>::quiet_NaN(), 15), u"-1.#IND");
}

TEST(RoundedDigits, GoHalvesAwayFromZeroByTheDigitsThatAreSeen) {
  EXPECT_EQ(rounded(0.125, 2), u"13e0");
  EXPECT_EQ(rounded(-0.125, 2), u"13e0");
  EXPECT_EQ(rounded(0.375, 2), u"38e0");
  EXPECT_EQ(rounded(1.005, 2), u"101e1") << "the double is a little less, its digits are not";
  EXPECT_EQ(rounded(1.015, 2), u"102e1");
  EXPECT_EQ(rounded(2.5, 0), u"3e1");
  EXPECT_EQ(rounded(3.5, 0), u"4e1");
  EXPECT_EQ(rounded(2.49999, 0), u"2e1");
  EXPECT_EQ(rounded(0.5, 0), u"1e1");
  EXPECT_EQ(rounded(0.05, 1), u"1e0");
}

TEST(RoundedDigits, CarryOver) {
  EXPECT_EQ(rounded(9.999, 2), u"1e2");
  EXPECT_EQ(rounded(1.999, 2), u"2e1");
  EXPECT_EQ(rounded(0.96, 1), u"1e1");
  EXPECT_EQ(rounded(0.6, 0), u"1e1");
}

TEST(RoundedDigits, MayVanish) {
  EXPECT_EQ(rounded(0.4, 0), u"e0");
  EXPECT_EQ(rounded(0.004, 2), u"e0");
  EXPECT_EQ(rounded(0.0004, 2), u"e0");
  EXPECT_EQ(rounded(0, 2), u"e0");
  EXPECT_EQ(rounded(0.04, 1), u"e0");
}

TEST(RoundedDigits, StayWhereNothingIsToBeDropped) {
  EXPECT_EQ(rounded(7.25, 2), u"725e1");
  EXPECT_EQ(rounded(1200, 2), u"12e4");
  EXPECT_EQ(rounded(0.05, 2), u"5e-1");
}

}  // namespace

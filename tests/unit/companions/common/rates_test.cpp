#include "companions/settings/common/rates.h"

#include "tests/support/testworld.h"

using namespace Qt::StringLiterals;

namespace hourbook::tests {

using platform::basic::Currency;

namespace {

QString readBack(const QString& text) {
  const ReadRate read = readRate(text);
  return read.problem.isEmpty() ? read.rate.toPlainText() : read.problem;
}

}  // namespace

class Rates : public testing::Test {
 protected:
  ::tests::TestWorld world;
};

TEST_F(Rates, AreShownWithTheDecimalSignOfTheSystem) {
  EXPECT_EQ(rateText(Currency::fromDouble(450.5)), u"450.50"_s);
  EXPECT_EQ(rateText(Currency::fromDouble(450)), u"450"_s);
  EXPECT_EQ(rateText(Currency::fromDouble(0.1234)), u"0.1234"_s);
  world.setLocale(u"sv_SE"_s);
  EXPECT_EQ(rateText(Currency::fromDouble(-450.5)), u"-450,50"_s);
}

TEST_F(Rates, AreReadAsTheyAreShown) {
  for (const char* locale : {"en_US", "sv_SE", "de_DE", "de_CH"}) {
    world.setLocale(QString::fromLatin1(locale));
    for (const double rate : {0.0, 1.0, 450.5, -3.25, 0.1234, 1234567.0})
      EXPECT_EQ(readRate(rateText(Currency::fromDouble(rate))).rate, Currency::fromDouble(rate)) << locale;
  }
}

TEST_F(Rates, TakeSignsBetweenThousandsWhereTheyBelong) {
  EXPECT_EQ(readBack(u"1,234.5"_s), u"1234.5"_s);
  EXPECT_EQ(readBack(u"12,34"_s), u"A rate is a number such as 450.50."_s);
  EXPECT_EQ(readBack(u",234"_s), u"A rate is a number such as 450.50."_s);
  world.setLocale(u"sv_SE"_s);
  EXPECT_EQ(readBack(u"1 234,5"_s), u"1234.5"_s);
  EXPECT_EQ(readBack(u"1\u00a0234,5"_s), u"1234.5"_s);
}

TEST_F(Rates, WithTheDecimalSignOfAnotherSystemAreRefusedAndNotReadAsSomethingElse) {
  EXPECT_EQ(readBack(u"450,5"_s), u"A rate is a number such as 450.50."_s);
  world.setLocale(u"sv_SE"_s);
  EXPECT_EQ(readBack(u"450.5"_s), u"A rate is a number such as 450,50."_s);
}

TEST_F(Rates, ThatAreNoNumbersAreRefused) {
  for (const char16_t* text : {u"abc", u"12kr", u"1.2.3", u"-", u".", u"--1", u"1e3", u"\u0661"})
    EXPECT_EQ(readBack(QString::fromUtf16(text)), u"A rate is a number such as 450.50."_s)
        << qPrintable(QString::fromUtf16(text));
}

TEST_F(Rates, WithoutATextAreNought) {
  EXPECT_EQ(readBack(u""_s), u"0"_s);
  EXPECT_EQ(readBack(u"  "_s), u"0"_s);
}

TEST_F(Rates, MayLeaveOutOneSideOfTheDecimalSign) {
  EXPECT_EQ(readBack(u".5"_s), u"0.5"_s);
  EXPECT_EQ(readBack(u"5."_s), u"5"_s);
}

TEST_F(Rates, HaveAtMostFourDecimals) {
  EXPECT_EQ(readBack(u"1.2345"_s), u"1.2345"_s);
  EXPECT_EQ(readBack(u"1.23456"_s), u"A rate has at most four decimals."_s);
}

TEST_F(Rates, AreRefusedWhereTheColumnEnds) {
  EXPECT_EQ(readBack(u"922337203685477.5807"_s), u"922337203685477.5807"_s);
  EXPECT_EQ(readBack(u"922337203685477.5808"_s), u"This rate is too large."_s);
}

}  // namespace hourbook::tests

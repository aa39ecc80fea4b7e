#include "failures.h"
#include "platform/basic/convert.h"
#include "platform/locale/locale.h"

#include <limits>

using platform::locale::ScopedLocale;
using namespace platform::basic;

namespace {

Currency units(qint64 n) {
  return Currency::fromTenThousandths(n);
}

constexpr qint64 kMost = std::numeric_limits<qint64>::max();
constexpr qint64 kLeast = std::numeric_limits<qint64>::min();

TEST(CurrencyFromDouble, RoundsToFourDecimalsHalvesToEven) {
  EXPECT_EQ(Currency::fromDouble(450.5), units(4505000));
  EXPECT_EQ(Currency::fromDouble(0.03125), units(312));
  EXPECT_EQ(Currency::fromDouble(0.09375), units(938));
  EXPECT_EQ(Currency::fromDouble(-0.03125), units(-312));
  EXPECT_EQ(Currency::fromDouble(1.0 / 3.0), units(3333));
}

TEST(CurrencyFromDouble, FailsWith6OutsideOfItsRange) {
  EXPECT_EQ(failureNumber([] { Currency::fromDouble(922337203685478.0); }), 6);
  EXPECT_EQ(failureNumber([] { Currency::fromDouble(-922337203685478.0); }), 6);
  EXPECT_EQ(failureNumber([] { Currency::fromDouble(std::numeric_limits<double>::infinity()); }), 6);
  EXPECT_EQ(failureNumber([] { Currency::fromDouble(std::numeric_limits<double>::quiet_NaN()); }), 6);
  EXPECT_EQ(failureNumber([] { Currency::fromDouble(922337203685000.0); }), 0);
}

TEST(CurrencyProduct, IsExactAndRoundedHalvesToEven) {
  EXPECT_EQ(units(1000000) * units(25000), units(2500000));
  EXPECT_EQ(units(1) * units(5000), units(0)) << "0.0001 * 0.5 = 0.00005";
  EXPECT_EQ(units(3) * units(5000), units(2)) << "0.0003 * 0.5 = 0.00015";
  EXPECT_EQ(units(-3) * units(5000), units(-2));
  EXPECT_EQ(units(-5) * units(-5000), units(2)) << "0.00025";
}

TEST(CurrencyProduct, KeepsTheLastPlaceOfLargeAmounts) {
  EXPECT_EQ(units(kMost) * units(10000), units(kMost));
  EXPECT_EQ(units(kLeast) * units(10000), units(kLeast));
  EXPECT_EQ(units(9007199254740993) * units(20000), units(18014398509481986)) << "no double holds this";
}

TEST(CurrencyProduct, FailsWith6WhenItGrowsTooLarge) {
  EXPECT_EQ(failureNumber([] { units(kMost) * units(10001); }), 6);
  EXPECT_EQ(failureNumber([] { units(kLeast) * units(-10000); }), 6);
}

TEST(CurrencyText, IsPlainInEveryLocale) {
  const ScopedLocale german(u"de_DE"_qs);
  EXPECT_EQ(units(4505000).toPlainText(), u"450.5");
  EXPECT_EQ(units(-1).toPlainText(), u"-0.0001");
  EXPECT_EQ(units(10000).toPlainText(), u"1");
  EXPECT_EQ(Currency().toPlainText(), u"0");
  EXPECT_EQ(units(12345678).toPlainText(), u"1234.5678");
  EXPECT_EQ(units(kMost).toPlainText(), u"922337203685477.5807");
  EXPECT_EQ(units(kLeast).toPlainText(), u"-922337203685477.5808");
}

TEST(CCur, ReadsATextDigitByDigit) {
  const ScopedLocale american(u"en_US"_qs);
  EXPECT_EQ(CCur(u"922337203685477.5807"_qs), units(kMost));
  EXPECT_EQ(CCur(u"-922337203685477.5808"_qs), units(kLeast));
  EXPECT_EQ(CCur(u"1,234.5"_qs), units(12345000));
  EXPECT_EQ(CCur(u".5"_qs), units(5000));
  EXPECT_EQ(CCur(u"1.5e2"_qs), units(1500000));
}

TEST(CCur, RoundsATextHalvesToEven) {
  const ScopedLocale american(u"en_US"_qs);
  EXPECT_EQ(CCur(u"0.00005"_qs), units(0));
  EXPECT_EQ(CCur(u"0.00015"_qs), units(2));
  EXPECT_EQ(CCur(u"0.000050001"_qs), units(1));
  EXPECT_EQ(CCur(u"0.00005000"_qs), units(0));
  EXPECT_EQ(CCur(u"-0.00025"_qs), units(-2));
  EXPECT_EQ(CCur(u"0.00014999"_qs), units(1));
}

TEST(CCur, TakesTheSystemsDecimalSign) {
  const ScopedLocale german(u"de_DE"_qs);
  EXPECT_EQ(CCur(u"1.234,5"_qs), units(12345000));
  const ScopedLocale swiss(u"de_CH"_qs);
  EXPECT_EQ(CCur(u"1’234.5"_qs), units(12345000));
}

TEST(CCur, FailsOnWhatIsNoAmount) {
  const ScopedLocale american(u"en_US"_qs);
  EXPECT_EQ(failureNumber([] { CCur(u"922337203685477.5808"_qs); }), 6);
  EXPECT_EQ(failureNumber([] { CCur(u"922337203685477.58075"_qs); }), 6);
  EXPECT_EQ(failureNumber([] { CCur(u"99999999999999999999999"_qs); }), 6);
  EXPECT_EQ(failureNumber([] { CCur(u"12 kr"_qs); }), 13);
  EXPECT_EQ(failureNumber([] { CCur(u""_qs); }), 13);
  EXPECT_EQ(failureNumber([] { CCur(Null()); }), 94);
}

TEST(CCur, TakesEveryOtherValue) {
  EXPECT_EQ(CCur(Value()), units(0));
  EXPECT_EQ(CCur(true), units(-10000));
  EXPECT_EQ(CCur(qint32(12)), units(120000));
  EXPECT_EQ(CCur(2.5F), units(25000));
  EXPECT_EQ(CCur(units(kMost)), units(kMost));
}

}  // namespace

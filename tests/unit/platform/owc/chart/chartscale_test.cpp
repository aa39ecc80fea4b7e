#include "platform/locale/locale.h"
#include "platform/owc/chartview/valuescale.h"

#include <cmath>
#include <limits>

using namespace platform::owc;
using namespace Qt::StringLiterals;
using platform::locale::ScopedLocale;

namespace {

QString labels(const ValueScale& scale) {
  QStringList all;
  for (int tick = scale.from; tick <= scale.to; ++tick) all.append(scale.label(tick));
  return all.join(u' ');
}

class Scales : public testing::Test {
 protected:
  const ScopedLocale locale{u"en_US"_s};
};

}  // namespace

TEST_F(Scales, HaveRoundSteps) {
  EXPECT_EQ(labels(scaleFor(0, 9, 5)), u"0 2 4 6 8 10"_s);
  EXPECT_EQ(labels(scaleFor(0, 8, 8)), u"0 1 2 3 4 5 6 7 8"_s);
  EXPECT_EQ(labels(scaleFor(0, 41, 5)), u"0 10 20 30 40 50"_s);
  EXPECT_EQ(labels(scaleFor(0, 12, 5)), u"0.0 2.5 5.0 7.5 10.0 12.5"_s);
}

TEST_F(Scales, HoldZeroAndBothValues) {
  EXPECT_EQ(labels(scaleFor(-3, 4, 8)), u"-3 -2 -1 0 1 2 3 4"_s);
  EXPECT_EQ(labels(scaleFor(5, 9, 5)), u"0 2 4 6 8 10"_s);
  EXPECT_EQ(labels(scaleFor(-9, -5, 5)), u"-10 -8 -6 -4 -2 0"_s);
}

TEST_F(Scales, NeverHaveMoreStepsThanAllowed) {
  for (const double high : {0.001, 0.37, 1.0, 9.99, 24.0, 1234.5, 7e200})
    for (const double low : {0.0, -0.3, -high, -10 * high})
      for (int most = 2; most <= 9; ++most) {
        const ValueScale scale = scaleFor(low, high, most);
        EXPECT_LE(scale.steps(), most);
        EXPECT_GE(scale.to * scale.step, high - 1e-8 * scale.step);
        EXPECT_LE(scale.from * scale.step, low + 1e-8 * scale.step);
      }
}

TEST_F(Scales, OfNothingGoFromZeroToOne) {
  EXPECT_EQ(labels(scaleFor(0, 0, 8)), u"0 1"_s);
  EXPECT_EQ(labels(scaleFor(0, std::numeric_limits<double>::denorm_min(), 8)), u"0 1"_s);
}

TEST_F(Scales, OfHugeAndTinyValuesAreStillAFewSteps) {
  EXPECT_EQ(labels(scaleFor(0, 1e300, 2)), u"0 5E+299 1E+300"_s);
  EXPECT_EQ(labels(scaleFor(0, 1e-200, 2)), u"0 5E-201 1E-200"_s);
}

TEST_F(Scales, AreLabelledAsTheRegionalSettingsSay) {
  EXPECT_EQ(labels(scaleFor(0, 5000, 2)), u"0 2,500 5,000"_s);
  const ScopedLocale german(u"de_DE"_s);
  EXPECT_EQ(labels(scaleFor(0, 1, 2)), u"0,0 0,5 1,0"_s);
  EXPECT_EQ(labels(scaleFor(0, 5000, 2)), u"0 2.500 5.000"_s);
}

TEST_F(Scales, OfPercentsSaySo) {
  EXPECT_EQ(labels(scaleFor(0, 100, 5, true)), u"0% 20% 40% 60% 80% 100%"_s);
}

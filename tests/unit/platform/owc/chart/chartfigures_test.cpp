#include "platform/owc/chartview/chartfigures.h"

#include "platform/locale/locale.h"
#include "platform/owc/chartview/smoothing.h"
#include "tests/unit/platform/owc/chart/charts.h"

#include <algorithm>
#include <cmath>

using namespace platform::owc;
using namespace Qt::StringLiterals;
using platform::locale::ScopedLocale;
using tests::fill;

namespace {

class Figures : public testing::Test {
 protected:
  ChartFigures of(int type, const QList<QList<double>>& values, const QStringList& categories = {}) {
    QStringList names;
    for (qsizetype i = 0; i < values.size(); ++i) names.append(u"S%1"_s.arg(i + 1));
    fill(space, type, names, categories, values);
    return figuresOf(space);
  }
  const ScopedLocale locale{u"en_US"_s};
  ChartSpace space;
};

}  // namespace

TEST_F(Figures, AreEmptyWithoutAChart) {
  EXPECT_TRUE(figuresOf(space).isEmpty());
  EXPECT_TRUE(figuresInWords(figuresOf(space)).isEmpty());
  EXPECT_TRUE(of(chChartTypePie, {{}}).isEmpty());
}

TEST_F(Figures, NumberCategoriesWithoutANameAndMissValuesThatAreNotThere) {
  const ChartFigures figures = of(chChartTypeLine, {{1, 2, 3}, {4}}, {u"a"_s});
  EXPECT_EQ(figures.categories, (QStringList{u"a"_s, u"2"_s, u"3"_s}));
  EXPECT_EQ(figures.values[1].size(), 3);
  EXPECT_TRUE(std::isnan(figures.values[1][1]));
}

TEST_F(Figures, TakeWhatIsNoNumberForMissing) {
  const ChartFigures figures = of(chChartTypeLine, {{tests::nan, tests::infinite, -tests::infinite, 1}});
  for (int i = 0; i < 3; ++i) EXPECT_TRUE(std::isnan(figures.drawn[0][i]));
  EXPECT_EQ(figures.lowest(), 0);
  EXPECT_EQ(figures.highest(), 1);
  EXPECT_EQ(categoryInWords(figures, 1), u"2: \u2013"_s);
}

TEST_F(Figures, PileUpLinesAndAreas) {
  const ChartFigures figures = of(chChartTypeAreaStacked, {{1, 2}, {3, tests::nan}});
  EXPECT_EQ(figures.drawn[0], (QList<double>{1, 2}));
  EXPECT_EQ(figures.drawn[1], (QList<double>{4, 2}));
  EXPECT_EQ(figures.values[1][0], 3);
}

TEST_F(Figures, LeaveThePilingOfColumnsToTheColumns) {
  const ChartFigures figures = of(chChartTypeColumnStacked, {{1, 2}, {3, -4}});
  EXPECT_EQ(figures.drawn[1], (QList<double>{3, -4}));
  EXPECT_EQ(figures.highest(), 4);
  EXPECT_EQ(figures.lowest(), -4);
}

TEST_F(Figures, OfAHundredPercentShareEachCategory) {
  const ChartFigures columns = of(chChartTypeColumnStacked100, {{1, 0}, {3, 0}});
  EXPECT_EQ(columns.drawn[0], (QList<double>{25, 0}));
  EXPECT_EQ(columns.drawn[1], (QList<double>{75, 0}));
  const ChartFigures lines = of(chChartTypeLineStacked100, {{1}, {3}});
  EXPECT_EQ(lines.drawn[1], QList<double>{100});
}

TEST_F(Figures, ReachFromZeroToTheHighest) {
  EXPECT_EQ(of(chChartTypeLine, {{5, 7}}).lowest(), 0);
  EXPECT_EQ(of(chChartTypeLine, {{5, 7}}).highest(), 7);
  EXPECT_EQ(of(chChartTypeLine, {{-5, -7}}).lowest(), -7);
  EXPECT_EQ(of(chChartTypeLine, {{-5, -7}}).highest(), 0);
}

TEST_F(Figures, OfHugeValuesHaveAFiniteSum) {
  const double most = std::numeric_limits<double>::max();
  const ChartFigures figures = of(chChartTypeColumnStacked, {{most}, {most}, {-most}});
  EXPECT_TRUE(std::isfinite(figures.highest()));
  EXPECT_TRUE(std::isfinite(figures.lowest()));
}

TEST_F(Figures, AreReadableAsText) {
  const ChartFigures one = of(chChartTypePie, {{7.5, 1234.25}}, {u"Mon"_s, u""_s});
  EXPECT_EQ(figuresInWords(one), u"Mon: 7.5\n\u2013: 1,234.25"_s);
  const ChartFigures two = of(chChartTypeLine, {{7.5}, {1}}, {u"Mon"_s});
  EXPECT_EQ(figuresInWords(two), u"Mon: S1 7.5, S2 1"_s);
}

TEST_F(Figures, AreWrittenAsTheRegionalSettingsSay) {
  EXPECT_EQ(localNumber(-1234567.5), u"-1,234,567.5"_s);
  EXPECT_EQ(localNumber(999), u"999"_s);
  EXPECT_EQ(localNumber(0.1 + 0.2), u"0.3"_s);
  EXPECT_EQ(localNumber(1e300), u"1E+300"_s);
  const ScopedLocale german(u"de_DE"_s);
  EXPECT_EQ(localNumber(1234.5), u"1.234,5"_s);
}

TEST_F(Figures, KeepNamesInOneLineOfATolerableLength) {
  const ChartFigures figures = of(chChartTypeLine, {{1, 2}}, {u"a\nb\tc"_s, QString(100'000, u'x')});
  EXPECT_EQ(figures.categories[0], u"a b c"_s);
  EXPECT_EQ(figures.categories[1].size(), 200);
}

TEST_F(Figures, ShareAPieByAmounts) {
  EXPECT_EQ(sharesOf({1, -3}), (QList<double>{0.25, 0.75}));
  EXPECT_EQ(sharesOf({0, 0}), (QList<double>{0, 0}));
  EXPECT_EQ(sharesOf({tests::nan, 2}), (QList<double>{0, 1}));
  EXPECT_EQ(sharesOf({1e308, 1e308}), (QList<double>{0.5, 0.5}));
}

TEST(Smoothing, GoesThroughEveryValue) {
  const QList<double> line = smoothed(QList<double>{1, 5, 2, 2}, 3, false);
  ASSERT_EQ(line.size(), 13);
  EXPECT_EQ(line[0], 1);
  EXPECT_EQ(line[4], 5);
  EXPECT_EQ(line[8], 2);
  EXPECT_EQ(line[12], 2);
}

TEST(Smoothing, NeverSwingsOutOfItsNeighbours) {
  const QList<double> line = smoothed(QList<double>{0, 0, 8, 0, 0.5}, 20, false);
  EXPECT_GE(*std::min_element(line.begin(), line.end()), 0);
  EXPECT_LE(*std::max_element(line.begin(), line.end()), 8);
}

TEST(Smoothing, ComesBackToTheFirstValueWhenClosed) {
  const QList<double> line = smoothed(QList<double>{1, 2, 3}, 1, true);
  ASSERT_EQ(line.size(), 7);
  EXPECT_EQ(line.back(), 1);
}

TEST(Smoothing, LeavesOneValueAndNoneAsTheyAre) {
  EXPECT_TRUE(smoothed(QList<double>{}, 5, true).isEmpty());
  EXPECT_EQ(smoothed(QList<double>{3}, 5, true), QList<double>{3});
}

TEST(Smoothing, KeepsPlacesAtEqualDistances) {
  const QList<QPointF> line = smoothed(QList<QPointF>{{0, 1}, {1, 5}, {2, 2}}, 3);
  ASSERT_EQ(line.size(), 9);
  for (qsizetype i = 0; i < line.size(); ++i) EXPECT_NEAR(line[i].x(), 0.25 * static_cast<double>(i), 1e-12);
}

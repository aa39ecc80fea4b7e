#include "platform/owc/chartview/labelfit.h"

#include <QFont>

using namespace platform::owc;
using namespace Qt::StringLiterals;

namespace {

class Labels : public testing::Test {
 protected:
  static QFont font() {
    QFont font;
    font.setPixelSize(12);
    return font;
  }
  const QFontMetricsF metrics{font()};
  const QStringList week{u"Mon"_s, u"Tue"_s, u"Wed"_s};
  const QStringList longNames{QString(60, u'a'), QString(40, u'b')};
};

}  // namespace

TEST_F(Labels, StandLevelAndWholeWhereTheyFit) {
  const LabelFit fit = fitBelow(week, 100, 80, metrics);
  EXPECT_FALSE(fit.upright);
  EXPECT_EQ(fit.every, 1);
  EXPECT_EQ(fit.texts, week);
}

TEST_F(Labels, AreBrokenAtABlankWhereOneLineIsTooLong) {
  const double slot = metrics.horizontalAdvance(u"5/13/2024"_s) + 2 * metrics.averageCharWidth();
  const LabelFit fit = fitBelow({u"Mon 5/13/2024"_s, u"Tue"_s}, slot, 80, metrics);
  EXPECT_FALSE(fit.upright);
  EXPECT_EQ(fit.texts, (QStringList{u"Mon\n5/13/2024"_s, u"Tue"_s}));
  EXPECT_EQ(fit.depth, 2 * metrics.height());
}

TEST_F(Labels, AreShortenedWhereThatShowsMoreThanUpright) {
  const LabelFit fit = fitBelow(longNames, 120, 80, metrics);
  EXPECT_FALSE(fit.upright);
  for (const QString& text : fit.texts) {
    EXPECT_TRUE(text.endsWith(u'\u2026'));
    EXPECT_LE(metrics.horizontalAdvance(text), 120);
    EXPECT_GE(metrics.horizontalAdvance(text), 80);
  }
}

TEST_F(Labels, AreShortenedInTwoLinesWhereTheyHaveBlanks) {
  const double width = metrics.horizontalAdvance(u"10/13/20"_s) + metrics.averageCharWidth();
  const LabelFit fit = fitBelow({u"Mon 10/13/2024"_s, u"X"_s}, width, 3 * metrics.height(), metrics);
  EXPECT_FALSE(fit.upright);
  EXPECT_TRUE(fit.texts[0].startsWith(u"Mon\n10/"_s)) << fit.texts[0].toStdString();
  EXPECT_TRUE(fit.texts[0].endsWith(u'\u2026'));
  EXPECT_EQ(fit.texts[1], u"X"_s);
  EXPECT_EQ(fit.depth, 2 * metrics.height());
  for (const QString& line : fit.texts[0].split(u'\n')) EXPECT_LE(metrics.horizontalAdvance(line), width);
}

TEST_F(Labels, FillTheFirstOfTwoLinesAsFarAsItGoes) {
  const QString name = u"one two three four five six seven eight"_s;
  const double width = metrics.horizontalAdvance(u"one two three"_s) + metrics.averageCharWidth() + 1;
  const LabelFit fit = fitBelow({name}, width, 3 * metrics.height(), metrics);
  EXPECT_TRUE(fit.texts[0].startsWith(u"one two three\nfour"_s)) << fit.texts[0].toStdString();
}

TEST_F(Labels, StandUprightWhereTheSlotIsNarrow) {
  const LabelFit fit = fitBelow(longNames, 60, 80, metrics);
  EXPECT_TRUE(fit.upright);
  EXPECT_EQ(fit.every, 1);
  EXPECT_LE(fit.depth, 80);
  for (const QString& text : fit.texts) EXPECT_LE(metrics.horizontalAdvance(text), 80);
}

TEST_F(Labels, AreLeftOutWhereTheyWouldTouch) {
  const LabelFit below = fitBelow(longNames, 5, 80, metrics);
  EXPECT_GE(5 * static_cast<double>(below.every), metrics.height());
  const LabelFit beside = fitBeside(longNames, 5, 80, metrics);
  EXPECT_GE(5 * static_cast<double>(beside.every), metrics.height());
  EXPECT_FALSE(beside.upright);
}

TEST_F(Labels, BesideAnAxisTakeNoMoreThanTheirPart) {
  const LabelFit fit = fitBeside(longNames, 40, 90, metrics);
  EXPECT_EQ(fit.every, 1);
  EXPECT_LE(fit.depth, 90);
  for (const QString& text : fit.texts) EXPECT_LE(metrics.horizontalAdvance(text), 90);
}

TEST_F(Labels, OfNoWidthAtAllAreNoTrouble) {
  EXPECT_EQ(fitBelow({QString()}, 0, 0, metrics).texts, QStringList{QString()});
  EXPECT_GE(fitBelow(longNames, 0, 0, metrics).every, 1);
}

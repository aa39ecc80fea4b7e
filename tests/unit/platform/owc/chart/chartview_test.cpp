#include "platform/owc/chartview/chartview.h"

#include "platform/owc/chartview/chartdrawing.h"
#include "tests/support/testworld.h"
#include "tests/unit/platform/owc/chart/charts.h"

#include <QAccessible>
#include <QApplication>
#include <QHelpEvent>
#include <QImage>
#include <QPainter>
#include <QSignalSpy>
#include <QTest>
#include <QtMath>
#include <QToolTip>

#include <cmath>

using namespace platform::owc;
using namespace Qt::StringLiterals;
using tests::fill;
using tests::fillWeek;
using Part = ChartText::Part;

namespace {

class ChartViews : public testing::Test {
 protected:
  ChartViews() {
    QFont font;
    font.setPixelSize(12);
    view.setFont(font);
    QPalette palette;
    palette.setColor(QPalette::Base, Qt::white);
    palette.setColor(QPalette::Text, Qt::black);
    view.setPalette(palette);
    view.resize(600, 326);
    image();  // the size is told to the view now, so that a drawing outlives the first look at a pixel
  }
  const ChartFrame& frame() const { return view.drawing().frame(); }
  QStringList texts(Part part) const {
    QStringList all;
    for (const ChartText& text : frame().texts)
      if (text.part == part) all.append(text.text);
    return all;
  }
  /// One point of the picture for each of the view's, whatever the screen's density.
  QImage image() {
    QImage image(view.size(), QImage::Format_RGB32);
    view.render(&image);
    return image;
  }
  QColor colorAt(const QPointF& place) { return image().pixelColor(place.toPoint()); }
  QPointF barAt(qsizetype category) const {
    const QRectF area = view.drawing().areaOf(category);
    return {area.center().x(), area.bottom() - 4};
  }
  QAccessibleInterface* heard() { return QAccessible::queryAccessibleInterface(&view); }

  /// Texts keep within the picture and off each other.
  void expectTidy(const QSize& size, const char* what) const {
    const ChartFrame laidOut =
        frameFor(figuresOf(space), QRectF(QPointF(), size), view.font(), ChartColors(view.palette()));
    const QList<ChartText>& all = laidOut.texts;
    const QRectF picture = QRectF(QPointF(), size).adjusted(-1, -1, 1, 1);
    QList<QRectF> inks;
    for (const ChartText& text : all) inks.append(inkOf(text));
    for (qsizetype a = 0; a < all.size(); ++a) {
      EXPECT_TRUE(picture.contains(inks[a])) << what << ": " << qUtf8Printable(all[a].text);
      for (qsizetype b = a + 1; b < all.size(); ++b)
        EXPECT_FALSE(inks[a].intersects(inks[b]))
            << what << ": " << qUtf8Printable(all[a].text + u" and "_s + all[b].text);
    }
  }
  /// Where the letters of a text stand within its place.
  QRectF inkOf(const ChartText& text) const {
    constexpr double grain = 0.5;
    const QFontMetricsF metrics(view.font());
    QSizeF size(0, metrics.ascent() + metrics.height() * static_cast<double>(text.text.count(u'\n')));
    for (const QString& line : text.text.split(u'\n'))
      size.setWidth(std::max(size.width(), metrics.horizontalAdvance(line)));
    if (text.upright) size.transpose();
    QRectF ink(QPointF(), size);
    ink.moveCenter(text.place.center());
    if (text.upright && text.alignment.testFlag(Qt::AlignRight)) ink.moveTop(text.place.top());
    if (!text.upright && text.alignment.testFlag(Qt::AlignRight)) ink.moveRight(text.place.right());
    if (!text.upright && text.alignment.testFlag(Qt::AlignLeft)) ink.moveLeft(text.place.left());
    return ink.adjusted(grain, grain, -grain, -grain);
  }

  const tests::TestWorld world;
  ChartSpace space;
  ChartView view{space};
};

QList<int> drawnTypes() {
  QList<int> types;
  for (int type = 0; type <= 45; ++type)
    if (chartKind(type)) types.append(type);
  return types;
}

/// One of each sort that is laid out in its own way.
QList<int> laidOutTypes() {
  QList<int> types;
  const auto alike = [](const ChartKind& a, const ChartKind& b) {
    const bool percents = a.stacking == Stacking::Percent, others = b.stacking == Stacking::Percent;
    return a.family == b.family && a.exploded == b.exploded && percents == others;
  };
  for (const int type : drawnTypes())
    if (std::none_of(types.begin(), types.end(),
                     [&](int other) { return alike(*chartKind(other), *chartKind(type)); }))
      types.append(type);
  return types;
}

QStringList named(const QString& name, int count) {
  QStringList all;
  for (int i = 1; i <= count; ++i) all.append(name.arg(i));
  return all;
}

QList<double> risingTo(int count) {
  QList<double> values;
  for (int i = 1; i <= count; ++i) values.append(i * 0.75);
  return values;
}

}  // namespace

TEST_F(ChartViews, WithoutDataAreAnEmptyFrame) {
  EXPECT_FALSE(image().isNull());
  EXPECT_TRUE(frame().texts.isEmpty());
  EXPECT_NE(colorAt({frame().plot.left(), frame().plot.center().y()}), QColor(Qt::white));
  EXPECT_EQ(colorAt(frame().plot.center()), QColor(Qt::white));
}

TEST_F(ChartViews, OfEveryTypeAreDrawnWithoutCategories) {
  for (const int type : drawnTypes()) {
    fill(space, type, {u"Hours"_s}, {}, {{}});
    EXPECT_FALSE(image().isNull()) << type;
    EXPECT_EQ(texts(Part::Category), QStringList()) << type;
  }
}

TEST_F(ChartViews, ShowColumnsOfTheirSeriesColour) {
  fillWeek(space, chChartTypeColumnClustered);
  for (int category = 0; category < 5; ++category)
    EXPECT_EQ(colorAt(barAt(category)), view.drawing().colors().fill(0)) << category;
}

TEST_F(ChartViews, ShowColumnsAsHighAsTheirValues) {
  fillWeek(space, chChartTypeColumnClustered);
  const QImage picture = image();
  const QColor fill = view.drawing().colors().fill(0);
  const QList<double> values{7.5, 8, 3.25, 9, 6};
  const ValueScale& scale = frame().values;
  for (int category = 0; category < 5; ++category) {
    const double part = (scale.inSteps(values[category]) - scale.from) / scale.steps();
    const double top = frame().plot.bottom() - frame().plot.height() * part;
    const int x = view.drawing().areaOf(category).center().toPoint().x();
    EXPECT_EQ(picture.pixelColor(x, qRound(top) + 3), fill) << category;
    EXPECT_NE(picture.pixelColor(x, qRound(top) - 3), fill) << category;
  }
}

TEST_F(ChartViews, ShowBarsFromTopToBottom) {
  fill(space, chChartTypeBarClustered, {u"Hours"_s}, {u"first"_s, u"second"_s}, {{8, 2}});
  const QPointF far(frame().plot.left() + frame().plot.width() * 0.6, 0);
  const QColor fill = view.drawing().colors().fill(0);
  EXPECT_EQ(colorAt({far.x(), view.drawing().areaOf(0).center().y()}), fill);
  EXPECT_NE(colorAt({far.x(), view.drawing().areaOf(1).center().y()}), fill);
  EXPECT_LT(view.drawing().areaOf(0).top(), view.drawing().areaOf(1).top());
}

TEST_F(ChartViews, ShowTheFirstOfSeveralBarsOnTop) {
  fill(space, chChartTypeBarClustered, {u"Hours"_s, u"Travel"_s}, {u"a"_s, u"b"_s}, {{8, 8}, {8, 8}});
  for (const qsizetype category : {0, 1}) {
    const QRectF area = view.drawing().areaOf(category);
    const QPointF off(0, area.height() * 0.15);
    EXPECT_EQ(colorAt(area.center() - off), view.drawing().colors().fill(0));
    EXPECT_EQ(colorAt(area.center() + off), view.drawing().colors().fill(1));
  }
}

TEST_F(ChartViews, NameTheirCategoriesValuesAndSeries) {
  fill(space, chChartTypeColumnClustered, {u"Hours"_s}, {u"Mon"_s, u"Tue"_s}, {{7.5, 8}});
  EXPECT_EQ(texts(Part::Category), (QStringList{u"Mon"_s, u"Tue"_s}));
  EXPECT_EQ(texts(Part::Value).first(), u"0"_s);
  EXPECT_EQ(texts(Part::Value).last(), u"8"_s);
  EXPECT_EQ(texts(Part::Legend), QStringList{u"Hours"_s});
}

TEST_F(ChartViews, HaveALineForEachStepOfTheValues) {
  fill(space, chChartTypeColumnClustered, {u"Hours"_s}, {u"Mon"_s}, {{4}});
  const QRectF plot = frame().plot;
  const int steps = frame().values.steps();
  for (int tick = 1; tick <= steps; ++tick) {
    const double y = plot.bottom() - plot.height() * tick / steps;
    EXPECT_EQ(colorAt({plot.left() + 20, std::floor(y)}), view.drawing().colors().grid()) << tick;
    EXPECT_EQ(colorAt({plot.left() + 20, std::floor(y) + 5}), QColor(Qt::white)) << tick;
  }
  EXPECT_EQ(colorAt({plot.left() + 20, std::floor(plot.bottom())}), view.drawing().colors().axis());
}

TEST_F(ChartViews, HaveNoLegendUnlessTold) {
  fillWeek(space, chChartTypeColumnClustered).setHasLegend(false);
  EXPECT_TRUE(texts(Part::Legend).isEmpty());
  EXPECT_TRUE(frame().swatches.isEmpty());
}

TEST_F(ChartViews, OfSlicesNameTheCategoriesInTheLegend) {
  fill(space, chChartTypePie, {u"Hours"_s}, {u"A"_s, u"B"_s}, {{1, 3}});
  EXPECT_EQ(texts(Part::Legend), (QStringList{u"A"_s, u"B"_s}));
  EXPECT_EQ(texts(Part::Share), (QStringList{u"25%"_s, u"75%"_s}));
  EXPECT_NE(frame().swatches[0].fill, frame().swatches[1].fill);
}

TEST_F(ChartViews, ShowSlicesClockwiseFromTheTop) {
  for (const int type : {chChartTypePie, chChartTypeDoughnut}) {
    fill(space, type, {u"Hours"_s}, {u"A"_s, u"B"_s}, {{1, 3}});
    const SliceRings& slices = frame().slices;
    const double out = slices.rings[0].outer * 0.9 / std::sqrt(2.0);
    const ChartColors& colors = view.drawing().colors();
    EXPECT_EQ(colorAt(slices.centre + QPointF(out, -out)), colors.fill(0)) << type;
    EXPECT_EQ(colorAt(slices.centre + QPointF(out, out)), colors.fill(1)) << type;
    EXPECT_EQ(colorAt(slices.centre + QPointF(-out, -out)), colors.fill(1)) << type;
  }
}

TEST_F(ChartViews, OfRingsHaveAHole) {
  fill(space, chChartTypeDoughnut, {u"Hours"_s}, {u"A"_s, u"B"_s}, {{1, 3}});
  EXPECT_EQ(colorAt(frame().slices.centre), QColor(Qt::white));
  EXPECT_FALSE(view.drawing().categoryAt(frame().slices.centre));
}

TEST_F(ChartViews, HaveTheirLegendWhereItTakesLess) {
  fillWeek(space, chChartTypeColumnClustered);
  const auto legend = [&] { return frame().swatches.value(0).place; };
  view.resize(400, 300);
  image();
  EXPECT_LE(legend().bottom(), frame().plot.top());
  EXPECT_GT(frame().plot.right(), legend().left());
  view.resize(900, 130);
  image();
  EXPECT_GT(legend().left(), frame().plot.right());
}

TEST_F(ChartViews, OfSlicesHaveTheirLegendCloseByInAsManyColumnsAsItNeeds) {
  view.resize(900, 150);
  fill(space, chChartTypePie, {u"Hours"_s}, named(u"Category %1"_s, 18), {risingTo(18)});
  EXPECT_EQ(texts(Part::Legend).size(), 18);
  EXPECT_EQ(texts(Part::Legend).last(), u"Category 18"_s);
  const QList<ChartSwatch>& swatches = frame().swatches;
  EXPECT_GT(swatches[0].place.left(), frame().slices.centre.x() + frame().slices.half);
  EXPECT_LT(swatches[0].place.left(), frame().slices.centre.x() + frame().slices.half + 40);
  EXPECT_EQ(swatches[1].place.left(), swatches[0].place.left());
  EXPECT_GT(swatches[17].place.left(), swatches[0].place.left());
  expectTidy(view.size(), "columns");
}

TEST_F(ChartViews, OfThinBarsAndSlicesAreMoreThanOutlines) {
  fill(space, chChartTypeColumnClustered, {u"Hours"_s}, named(u"%1"_s, 150), {QList<double>(150, 4)});
  const QImage picture = image();
  int own = 0;
  for (int x = qCeil(frame().plot.left()); x < frame().plot.right(); ++x)
    own += picture.pixelColor(x, qRound(frame().plot.center().y())) == view.drawing().colors().fill(0);
  EXPECT_GE(own, 150);
  fill(space, chChartTypePie, {u"Hours"_s}, {u"a"_s, u"b"_s}, {{1000, 1}});
  const SliceRings& slices = frame().slices;
  EXPECT_NE(colorAt(slices.centre - QPointF(1, slices.half * 0.8)), view.drawing().colors().outline(1));
}

TEST_F(ChartViews, LeaveValuesOutWhereThereIsNoRoomForThem) {
  view.resize(398, 66);
  fillWeek(space, chChartTypeColumnClustered);
  EXPECT_LT(texts(Part::Value).size(), frame().values.steps() + 1);
  fillWeek(space, chChartTypeRadarLine);
  EXPECT_TRUE(texts(Part::Value).isEmpty());
}

TEST_F(ChartViews, HaveAnEmptyLabelForAnEmptyName) {
  for (const int type : drawnTypes()) {
    fill(space, type, {u"Hours"_s}, {QString(), u"Acme"_s}, {{1, 2}});
    EXPECT_FALSE(image().isNull()) << type;
    EXPECT_FALSE(texts(Part::Category).contains(QString())) << type;
  }
  EXPECT_EQ(categoryInWords(view.drawing().figures(), 0), u"\u2013: 1"_s);
}

TEST_F(ChartViews, SayHowManyMoreTheLegendHasNoRoomFor) {
  fill(space, chChartTypePie, {u"Hours"_s}, named(u"Category %1"_s, 60), {risingTo(60)});
  const QStringList legend = texts(Part::Legend);
  EXPECT_LT(legend.size(), 60);
  EXPECT_EQ(legend.last(), u"+%1"_s.arg(60 - (legend.size() - 1)));
  expectTidy(view.size(), "legend");
}

TEST_F(ChartViews, KeepTheirTextsTidyWhateverTheyShow) {
  const QList<QPair<QStringList, QList<double>>> data{
      {{u"only"_s}, {4}},
      {named(u"Mon 5/%1/2024"_s, 7), risingTo(7)},
      {named(u"A category with a name that nobody could write in a few letters, number %1"_s, 9),
       risingTo(9)},
      {named(u"Category number %1"_s, 60), risingTo(60)},
      {named(u"%1"_s, 198), risingTo(198)},
      {{u"down"_s, u"up"_s, u"none"_s}, {-123456.75, 98765, tests::nan}},
  };
  for (const QSize& size :
       {QSize(600, 326), QSize(1100, 220), QSize(260, 200), QSize(780, 110), QSize(398, 66), QSize(180, 420)})
    for (const auto& [categories, values] : data)
      for (const int type : laidOutTypes()) {
        fill(space, type, {u"Hours"_s}, categories, {values});
        const QByteArray what = u"%1, %2 categories, %3 wide"_s.arg(chartTypeName(type))
                                    .arg(categories.size())
                                    .arg(size.width())
                                    .toUtf8();
        expectTidy(size, what.constData());
      }
}

TEST_F(ChartViews, OfEveryTypeAreDrawnWithAnyValues) {
  const double most = std::numeric_limits<double>::max(), least = std::numeric_limits<double>::denorm_min();
  const QList<QList<double>> data{{1},       {0, 0, 0},           {-3, -4},
                                  {-3, 4},   {tests::nan},        {1, tests::nan, 3},
                                  {most, 1}, {-most, most, most}, {tests::infinite, 2},
                                  {least},   {1e-300, 2e-300}};
  view.resize(160, 100);
  for (const int type : drawnTypes())
    for (const QList<double>& values : data) {
      fill(space, type, {u"Hours"_s}, {}, {values});
      EXPECT_FALSE(image().isNull()) << type;
      fill(space, type, {u"Hours"_s, u"More"_s}, {}, {values, values});
      EXPECT_FALSE(image().isNull()) << type;
    }
}

TEST_F(ChartViews, HangNegativeColumnsFromZero) {
  fill(space, chChartTypeColumnClustered, {u"Hours"_s}, {u"a"_s, u"b"_s}, {{-4, 4}});
  const QRectF plot = frame().plot;
  const QColor fill = view.drawing().colors().fill(0);
  const double left = view.drawing().areaOf(0).center().x(), right = view.drawing().areaOf(1).center().x();
  EXPECT_EQ(colorAt({left, plot.center().y() + 5}), fill);
  EXPECT_NE(colorAt({left, plot.center().y() - 5}), fill);
  EXPECT_EQ(colorAt({right, plot.center().y() - 5}), fill);
  EXPECT_NE(colorAt({right, plot.center().y() + 5}), fill);
}

TEST_F(ChartViews, ShowTinyValuesAsHighAsLargeOnes) {
  fill(space, chChartTypeColumnClustered, {u"Hours"_s}, {u"a"_s}, {{1e-200}});
  EXPECT_EQ(colorAt({view.drawing().areaOf(0).center().x(), frame().plot.top() + 5}),
            view.drawing().colors().fill(0));
}

TEST_F(ChartViews, AreDrawnAtAnySize) {
  fillWeek(space, chChartTypeColumnClustered);
  for (const QSize& size : {QSize(1, 1), QSize(10, 300), QSize(300, 10), QSize(40, 40), QSize(3000, 2000)})
    for (const int type : {chChartTypeColumnClustered, chChartTypePie, chChartTypeRadarLine}) {
      space.Charts()[0].setType(type);
      view.resize(size);
      EXPECT_EQ(image().size(), size);
    }
}

TEST_F(ChartViews, TakeNamesForTextAndNotForMarkup) {
  fill(space, chChartTypeColumnClustered, {u"<b>H</b>"_s}, {u"<i>A & B</i>"_s}, {{1}});
  EXPECT_EQ(texts(Part::Category), QStringList{u"<i>A & B</i>"_s});
  EXPECT_EQ(texts(Part::Legend), QStringList{u"<b>H</b>"_s});
}

TEST_F(ChartViews, ShowTheValuesOfTheCategoryUnderTheMouse) {
  fill(space, chChartTypeColumnClustered, {u"Hours"_s}, {u"<Mon>"_s, u"Tue"_s}, {{7.5, 0}});
  view.show();
  const auto restAt = [&](const QPointF& place) {
    QHelpEvent rest(QEvent::ToolTip, place.toPoint(), view.mapToGlobal(place.toPoint()));
    QApplication::sendEvent(&view, &rest);
  };
  restAt(barAt(0));
  EXPECT_EQ(QToolTip::text(), u"<span>&lt;Mon&gt;: 7.5</span>"_s);
  EXPECT_EQ(view.textAt(barAt(1).toPoint()), u"Tue: 0"_s);
  EXPECT_EQ(view.textAt({1, 1}), QString());
}

TEST_F(ChartViews, FindTheCategoryUnderAPlaceInEveryType) {
  for (const int type : drawnTypes()) {
    fill(space, type, {u"Hours"_s}, {u"a"_s, u"b"_s, u"c"_s}, {{1, 2, 3}});
    const bool round = chartKind(type)->isRound() || chartKind(type)->isPolar();
    for (qsizetype i = 0; i < 3; ++i) {
      QPointF place = view.drawing().areaOf(i).center();
      if (round) {
        const double turn =
            chartKind(type)->isPolar() ? static_cast<double>(i) / 3 : QList<double>{0.08, 0.33, 0.75}[i];
        const double radians = turn * 2 * M_PI, out = frame().plot.height() * 0.36;
        place = frame().plot.center() + QPointF(std::sin(radians), -std::cos(radians)) * out;
      }
      EXPECT_EQ(view.drawing().categoryAt(place), i) << qUtf8Printable(chartTypeName(type));
    }
  }
}

TEST_F(ChartViews, ShowTheValuesToTheKeyboardToo) {
  fillWeek(space, chChartTypeColumnClustered);
  view.show();
  view.setFocus();
  EXPECT_FALSE(view.currentCategory());
  QTest::keyClick(&view, Qt::Key_Right);
  EXPECT_EQ(view.currentCategory(), 0);
  QTest::keyClick(&view, Qt::Key_Right);
  EXPECT_EQ(view.currentCategory(), 1);
  EXPECT_EQ(QToolTip::text(), u"<span>Tue 5/14/2024: 8</span>"_s);
  QTest::keyClick(&view, Qt::Key_End);
  QTest::keyClick(&view, Qt::Key_Right);
  EXPECT_EQ(view.currentCategory(), 4);
  QTest::keyClick(&view, Qt::Key_Home);
  QTest::keyClick(&view, Qt::Key_Left);
  EXPECT_EQ(view.currentCategory(), 0);
  space.Clear();
  EXPECT_FALSE(view.currentCategory());
  QTest::keyClick(&view, Qt::Key_Right);
  EXPECT_FALSE(view.currentCategory());
}

TEST_F(ChartViews, AreHeardAsAChartWithItsDataAsText) {
  fill(space, chChartTypePie, {u"Hours"_s}, {u"Mon"_s, u"Tue"_s}, {{7.5, 8}});
  ASSERT_NE(heard(), nullptr);
  EXPECT_EQ(heard()->role(), QAccessible::Chart);
  EXPECT_EQ(heard()->text(QAccessible::Name), u"Hours"_s);
  EXPECT_EQ(heard()->text(QAccessible::Description), u"Mon: 7.5\nTue: 8"_s);
  view.setAccessibleName(u"Statistics"_s);
  EXPECT_EQ(heard()->text(QAccessible::Name), u"Statistics"_s);
}

TEST_F(ChartViews, FollowTheirChartSpace) {
  fillWeek(space, chChartTypeColumnClustered);
  const QImage before = image();
  space.Charts()[0].SeriesCollection()[0].SetData(chDimValues, chDataLiteral, QList<double>{1, 1, 1, 1, 9});
  EXPECT_NE(image(), before);
  space.Clear();
  EXPECT_TRUE(frame().texts.isEmpty());
}

TEST_F(ChartViews, AreEmptyWhenTheirChartSpaceIsGone) {
  auto gone = std::make_unique<ChartSpace>();
  fillWeek(*gone, chChartTypePie);
  ChartView orphan(*gone);
  orphan.resize(300, 200);
  gone.reset();
  EXPECT_FALSE(orphan.grab().toImage().isNull());
  EXPECT_TRUE(orphan.drawing().figures().isEmpty());
}

TEST_F(ChartViews, ShowWhiteAsTheDesktopsOwnBackground) {
  QPalette dark;
  dark.setColor(QPalette::Base, QColor(30, 30, 30));
  dark.setColor(QPalette::Text, QColor(230, 230, 230));
  view.setPalette(dark);
  fillWeek(space, chChartTypeColumnClustered);
  EXPECT_EQ(colorAt({2, 2}), QColor(30, 30, 30));
  EXPECT_EQ(view.drawing().colors().text(), QColor(230, 230, 230));
}

TEST_F(ChartViews, ShowAnotherInteriorAsTold) {
  Chart& chart = fillWeek(space, chChartTypeColumnClustered);
  chart.Interior().setColor(0x800000);  // a dark blue
  EXPECT_EQ(colorAt({2, 2}), QColor(0, 0, 0x80));
  EXPECT_EQ(view.drawing().colors().text(), QColor(Qt::white));
}

TEST_F(ChartViews, HaveABorderOfTheToldWeight) {
  Chart& chart = fillWeek(space, chChartTypeColumnClustered);
  EXPECT_EQ(colorAt({1, 1}), QColor(Qt::white));
  chart.border().setColor(0x0000FF);
  chart.border().setWeight(4);
  EXPECT_EQ(colorAt({1, 1}), QColor(Qt::red));
  EXPECT_EQ(colorAt({599, 325}), QColor(Qt::red));
}

TEST_F(ChartViews, HaveColoursThatDiffer) {
  for (const bool dark : {false, true}) {
    QPalette palette;
    palette.setColor(QPalette::Base, dark ? QColor(30, 30, 30) : QColor(Qt::white));
    const ChartColors colors(palette);
    QSet<QRgb> seen;
    for (qsizetype i = 0; i < 24; ++i) seen.insert(colors.fill(i).rgb());
    EXPECT_EQ(seen.size(), 24);
    EXPECT_FALSE(seen.contains(colors.background().rgb()));
  }
}

TEST_F(ChartViews, PutScatteredValuesWhereTheirCategoriesSay) {
  fill(space, chChartTypeScatterMarkers, {u"Hours"_s}, {u"0"_s, u"10"_s, u"40"_s}, {{1, 2, 3}});
  EXPECT_EQ(frame().places, (QList<double>{0, 10, 40}));
  EXPECT_EQ(texts(Part::Category).last(), u"40"_s);
  fill(space, chChartTypeScatterMarkers, {u"Hours"_s}, {u"a"_s, u"10"_s}, {{1, 2}});
  EXPECT_EQ(frame().places, (QList<double>{1, 2}));
}

TEST_F(ChartViews, ScatterHugeNumbersToo) {
  fill(space, chChartTypeScatterLineMarkers, {u"Hours"_s}, {u"-1e308"_s, u"1e308"_s, u"1e999"_s},
       {{1, 2, 3}});
  EXPECT_FALSE(image().isNull());
  EXPECT_GE(frame().across.steps(), 2);
  EXPECT_GE(texts(Part::Category).size(), 2);
}

TEST_F(ChartViews, ShowSpotsOnTheEdgeOfThePlotInWhole) {
  fill(space, chChartTypeScatterMarkers, {u"Hours"_s}, {u"0"_s, u"40"_s}, {{0, 8}});
  ASSERT_EQ(frame().values.label(frame().values.to), u"8"_s);
  const QRectF plot = frame().plot;
  EXPECT_EQ(colorAt(plot.topRight() + QPointF(2, -1)), view.drawing().colors().fill(0));
  EXPECT_EQ(colorAt(plot.bottomLeft() + QPointF(-1, 2)), view.drawing().colors().fill(0));
}

TEST_F(ChartViews, WriteSharesSoThatTheyCanBeRead) {
  fill(space, chChartTypePie, {u"Hours"_s}, named(u"%1"_s, 8), {QList<double>(8, 1)});
  for (const ChartText& text : frame().texts) {
    if (text.part != Part::Share) continue;
    const QColor fill = view.drawing().colors().fill(text.index);
    EXPECT_EQ(text.color, fill == QColor(0, 0x72, 0xb2) || fill == QColor(0x5a, 0x5a, 0x5a)
                              ? QColor(Qt::white)
                              : QColor(Qt::black))
        << text.index;
  }
}

TEST_F(ChartViews, ShowAPieOfOneSliceWithoutASeam) {
  fill(space, chChartTypePie, {u"Hours"_s}, {u"all"_s}, {{8}});
  const SliceRings& slices = frame().slices;
  EXPECT_EQ(colorAt(slices.centre - QPointF(0, slices.half / 2)), view.drawing().colors().fill(0));
}

TEST_F(ChartViews, PutPolarValuesAtTheDegreesOfTheirCategories) {
  fill(space, chChartTypePolarMarkers, {u"Hours"_s}, {u"0"_s, u"90"_s, u"-90"_s}, {{1, 2, 3}});
  EXPECT_EQ(frame().places, (QList<double>{0, 90, 270}));
}

TEST_F(ChartViews, OfPercentsReachToAHundred) {
  fill(space, chChartTypeColumnStacked100, {u"A"_s, u"B"_s}, {u"x"_s}, {{1}, {3}});
  EXPECT_EQ(texts(Part::Value).last(), u"100%"_s);
  const double x = view.drawing().areaOf(0).center().x();
  const ChartColors& colors = view.drawing().colors();
  const QRectF plot = frame().plot;
  EXPECT_EQ(colorAt({x, plot.bottom() - plot.height() * 0.12}), colors.fill(0));
  EXPECT_EQ(colorAt({x, plot.bottom() - plot.height() * 0.6}), colors.fill(1));
}

TEST_F(ChartViews, AreDrawnSharplyOnDenseScreens) {
  fillWeek(space, chChartTypeColumnClustered);
  QImage dense(QSize(1200, 652), QImage::Format_RGB32);
  dense.setDevicePixelRatio(2);
  QPainter painter(&dense);
  view.drawing().paint(painter);
  painter.end();
  EXPECT_EQ(dense.pixelColor((barAt(0) * 2).toPoint()), view.drawing().colors().fill(0));
  EXPECT_EQ(dense.pixelColor(1199, 651), QColor(Qt::white));
}

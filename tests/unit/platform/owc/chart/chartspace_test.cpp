#include "platform/owc/chartspace.h"

#include "platform/basic/failure.h"
#include "tests/unit/platform/owc/chart/charts.h"

#include <QFile>
#include <QSignalSpy>

using namespace platform::owc;
using namespace Qt::StringLiterals;
using platform::Failure;

namespace {

template <class Act>
Failure failureOf(Act act) {
  try {
    act();
  } catch (const Failure& failure) {
    return failure;
  }
  ADD_FAILURE() << "It did not fail.";
  return Failure(0, {});
}

/// Notes what it was asked for.
class NotedPainter : public ChartPainter {
 public:
  QByteArray picture(const ChartSpace&, const QString& filter, const QSize& pixels) const override {
    asked = u"%1 %2x%3"_s.arg(filter).arg(pixels.width()).arg(pixels.height());
    return "picture";
  }
  mutable QString asked;
};

class Spaces : public testing::Test {
 protected:
  ChartSpace space;
};

}  // namespace

TEST_F(Spaces, AreOfTheNewestGenerationUnlessToldOtherwise) {
  EXPECT_EQ(space.generation(), Generation::Office2003);
  EXPECT_EQ(ChartSpace(Generation::Office2000).generation(), Generation::Office2000);
}

TEST_F(Spaces, BeginWithoutAChart) {
  EXPECT_EQ(space.Charts().Count(), 0);
  EXPECT_EQ(failureOf([&] { space.Charts()[0]; }).number(), platform::failure::subscriptOutOfRange);
}

TEST_F(Spaces, GiveTheirChartByItsIndexFromZero) {
  Chart& added = space.Charts().Add();
  EXPECT_EQ(&space.Charts()[0], &added);
  EXPECT_EQ(&space.Charts().Item(0), &added);
  EXPECT_EQ(failureOf([&] { space.Charts()[1]; }).number(), platform::failure::subscriptOutOfRange);
  EXPECT_EQ(failureOf([&] { space.Charts()[-1]; }).number(), platform::failure::subscriptOutOfRange);
}

TEST_F(Spaces, HaveRoomForOneChart) {
  space.Charts().Add();
  EXPECT_EQ(failureOf([&] { space.Charts().Add(); }).description(),
            u"A chart space has room for one chart."_s);
}

TEST_F(Spaces, BeginAChartAsColumnsWithoutALegend) {
  const Chart& chart = space.Charts().Add();
  EXPECT_FALSE(chart.HasLegend());
  EXPECT_EQ(chart.Type(), chChartTypeColumnClustered);
  EXPECT_EQ(chart.Interior().Color(), chartWhite);
  EXPECT_EQ(chart.border().Weight(), 1);
  EXPECT_EQ(chart.border().Color(), 0);
  EXPECT_TRUE(chart.seriesNames().isEmpty());
}

TEST_F(Spaces, AreEmptyAndWhiteAfterClear) {
  tests::fillWeek(space, chChartTypePie);
  space.Interior().setColor(0x123456);
  space.Clear();
  EXPECT_EQ(space.Charts().Count(), 0);
  EXPECT_EQ(space.Interior().Color(), 0xFFFFFF);
  const Chart& chart = space.Charts().Add();
  EXPECT_EQ(chart.Type(), chChartTypeColumnClustered);
  EXPECT_TRUE(chart.categories().isEmpty());
}

TEST_F(Spaces, KeepWhatTheReportFormTellsThem) {
  const Chart& chart = tests::fillWeek(space, chChartTypeLine);
  EXPECT_TRUE(chart.HasLegend());
  EXPECT_EQ(chart.Type(), chChartTypeLine);
  EXPECT_EQ(chart.border().Weight(), 0);
  EXPECT_EQ(chart.seriesNames(), QStringList{u"Hours"_s});
  EXPECT_EQ(chart.categories().size(), 5);
  EXPECT_EQ(chart.values(0), (QList<double>{7.5, 8, 3.25, 9, 6}));
}

TEST_F(Spaces, TakeASingleTextAsOneSeries) {
  Chart& chart = space.Charts().Add();
  chart.SetData(chDimSeriesNames, chDataLiteral, u"Hours"_s);
  ASSERT_EQ(chart.SeriesCollection().size(), 1);
  EXPECT_EQ(chart.SeriesCollection().front().Name(), u"Hours"_s);
}

TEST_F(Spaces, KeepTheValuesOfSeriesThatAreNamedAnew) {
  Chart& chart = space.Charts().Add();
  chart.SetData(chDimSeriesNames, chDataLiteral, u"Hours"_s);
  chart.SeriesCollection().front().SetData(chDimValues, chDataLiteral, QList<double>{1, 2});
  chart.SetData(chDimSeriesNames, chDataLiteral, QStringList{u"Work"_s, u"Breaks"_s});
  EXPECT_EQ(chart.values(0), (QList<double>{1, 2}));
  EXPECT_TRUE(chart.values(1).isEmpty());
}

TEST_F(Spaces, RefuseATypeThatCannotBeDrawnAndKeepTheOldOne) {
  Chart& chart = tests::fillWeek(space, chChartTypePie);
  const QSignalSpy changes(&space, &ChartSpace::changed);
  const Failure failure = failureOf([&] { chart.setType(chChartTypeBubble); });
  EXPECT_EQ(failure.number(), platform::failure::invalidProcedureCall);
  EXPECT_EQ(failure.description(), u"The chart type 27 (Bubble) cannot be drawn."_s);
  EXPECT_EQ(failure.source(), u"ChartSpace"_s);
  EXPECT_EQ(chart.Type(), chChartTypePie);
  EXPECT_EQ(changes.size(), 0);
}

TEST_F(Spaces, RefuseATypeThatIsNone) {
  Chart& chart = space.Charts().Add();
  for (const int type : {-1, 46, 32767})
    EXPECT_EQ(failureOf([&] { chart.setType(type); }).description(),
              u"There is no chart type %1."_s.arg(type));
}

TEST_F(Spaces, TakeEveryTypeButTheFiveThatCannotBeDrawn) {
  Chart& chart = space.Charts().Add();
  QList<int> refused;
  for (int type = 0; type <= 45; ++type) {
    try {
      chart.setType(type);
      EXPECT_EQ(chart.Type(), type);
    } catch (const Failure&) {
      refused.append(type);
    }
  }
  EXPECT_EQ(refused, (QList<int>{chChartTypePieStacked, chChartTypeBubble, chChartTypeBubbleLine,
                                 chChartTypeStockHLC, chChartTypeStockOHLC}));
}

TEST_F(Spaces, KnowTheirTypesByName) {
  EXPECT_EQ(chartTypeName(chChartTypeColumnClustered), u"ColumnClustered"_s);
  EXPECT_EQ(chartTypeName(chChartTypeBarClustered), u"BarClustered"_s);
  EXPECT_EQ(chartTypeName(chChartTypeLineStackedMarkers), u"Line Stacked Markers"_s);
  EXPECT_EQ(chartTypeName(chChartTypeArea), u"Area"_s);
  EXPECT_EQ(chartTypeName(chChartTypeDoughnutExploded), u"Doughnut Exploded"_s);
  EXPECT_EQ(chartTypeName(chChartTypeRadarSmoothLineMarkers), u"Radar Smoothline Markers"_s);
  EXPECT_EQ(chartTypeName(chChartTypePolarSmoothLineMarkers), u"Polar Smooth Line Markers"_s);
  EXPECT_TRUE(chartTypeName(46).isEmpty());
  EXPECT_EQ(chartKind(chChartTypeRadarLineFilled)->family, ChartFamily::Radar);
  EXPECT_TRUE(chartKind(chChartTypeRadarLineFilled)->filled);
  EXPECT_FALSE(chartKind(chChartTypeStockHLC));
}

TEST_F(Spaces, RefuseADataSourceBesideLiteralData) {
  Chart& chart = space.Charts().Add();
  chart.SetData(chDimSeriesNames, chDataLiteral, u"Hours"_s);
  const auto number = platform::failure::invalidProcedureCall;
  EXPECT_EQ(failureOf([&] { chart.SetData(chDimCategories, 0, u"a"_s); }).number(), number);
  EXPECT_EQ(failureOf([&] { chart.SeriesCollection()[0].SetData(chDimValues, 0, QList<double>{}); }).number(),
            number);
}

TEST_F(Spaces, RefuseADimensionInTheWrongPlace) {
  Chart& chart = space.Charts().Add();
  chart.SetData(chDimSeriesNames, chDataLiteral, u"Hours"_s);
  EXPECT_EQ(failureOf([&] { chart.SetData(chDimValues, chDataLiteral, QList<double>{1}); }).description(),
            u"The data dimension 2 cannot be set here; series names (0) and categories (1) can."_s);
  EXPECT_EQ(failureOf([&] {
              chart.SeriesCollection()[0].SetData(chDimCategories, chDataLiteral, u"a"_s);
            }).description(),
            u"The data dimension 1 cannot be set here; the values (2) can."_s);
}

TEST_F(Spaces, RefuseDataOfTheWrongKind) {
  Chart& chart = space.Charts().Add();
  chart.SetData(chDimSeriesNames, chDataLiteral, u"Hours"_s);
  const auto mismatch = platform::failure::typeMismatch;
  EXPECT_EQ(failureOf([&] { chart.SetData(chDimCategories, chDataLiteral, QList<double>{1}); }).number(),
            mismatch);
  EXPECT_EQ(
      failureOf([&] { chart.SeriesCollection()[0].SetData(chDimValues, chDataLiteral, u"1"_s); }).number(),
      mismatch);
}

TEST_F(Spaces, TellEveryChangeAndNothingElse) {
  Chart& chart = tests::fillWeek(space, chChartTypeLine);
  QSignalSpy changes(&space, &ChartSpace::changed);
  const auto changesOf = [&](auto act) {
    changes.clear();
    act();
    return changes.size();
  };
  EXPECT_EQ(changesOf([&] { chart.setType(chChartTypeArea); }), 1);
  EXPECT_EQ(changesOf([&] { chart.setType(chChartTypeArea); }), 0);
  EXPECT_EQ(changesOf([&] { chart.setHasLegend(false); }), 1);
  EXPECT_EQ(changesOf([&] { chart.setHasLegend(false); }), 0);
  EXPECT_EQ(changesOf([&] { chart.border().setWeight(2); }), 1);
  EXPECT_EQ(changesOf([&] { chart.border().setColor(255); }), 1);
  EXPECT_EQ(changesOf([&] { chart.border().setColor(255); }), 0);
  EXPECT_EQ(changesOf([&] { chart.Interior().setColor(255); }), 1);
  EXPECT_EQ(changesOf([&] { space.Interior().setColor(255); }), 1);
  EXPECT_EQ(changesOf([&] { chart.SetData(chDimCategories, chDataLiteral, u"a"_s); }), 1);
  EXPECT_EQ(
      changesOf([&] { chart.SeriesCollection()[0].SetData(chDimValues, chDataLiteral, QList<double>{1}); }),
      1);
  EXPECT_GE(changesOf([&] { space.Clear(); }), 1);
}

TEST_F(Spaces, AskTheirPainterForPictures) {
  const NotedPainter painter;
  space.setPainter(&painter);
  EXPECT_EQ(space.GetPicture(u"GIF"_s, 600, 326), "picture");
  EXPECT_EQ(painter.asked, u"gif 600x326"_s);
}

TEST_F(Spaces, GiveNoPictureWhenNothingDrawsThem) {
  EXPECT_EQ(failureOf([&] { space.GetPicture(u"gif"_s, 600, 326); }).description(),
            u"Nothing draws this chart."_s);
}

TEST_F(Spaces, RefusePicturesOfOtherKindsAndSizes) {
  const NotedPainter painter;
  space.setPainter(&painter);
  EXPECT_EQ(failureOf([&] { space.GetPicture(u"jpg"_s, 600, 326); }).description(),
            u"A picture of the chart can be \"gif\" or \"png\", not \"jpg\"."_s);
  for (const QSize& size : {QSize(0, 10), QSize(10, 0), QSize(-1, 10), QSize(10, 10'001)})
    EXPECT_EQ(failureOf([&] { space.GetPicture(u"gif"_s, size.width(), size.height()); }).number(),
              platform::failure::invalidProcedureCall);
  EXPECT_TRUE(painter.asked.isEmpty());
}

TEST_F(Spaces, ExportAPictureInPlaceOfTheOldOne) {
  const NotedPainter painter;
  space.setPainter(&painter);
  const QTemporaryDir folder;
  const QString path = folder.filePath(u"HBKReport.gif"_s);
  for (int round = 0; round < 2; ++round) {
    space.ExportPicture(path, u"gif"_s, 600, 326);
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_EQ(file.readAll(), "picture");
  }
}

TEST_F(Spaces, SayWhyAPictureCannotBeExported) {
  const NotedPainter painter;
  space.setPainter(&painter);
  const QTemporaryDir folder;
  const QString path = folder.filePath(u"no such folder/HBKReport.gif"_s);
  const Failure failure = failureOf([&] { space.ExportPicture(path, u"gif"_s, 600, 326); });
  EXPECT_EQ(failure.number(), platform::failure::pathNotFound);
  EXPECT_TRUE(failure.description().contains(u"HBKReport.gif"_s));
}

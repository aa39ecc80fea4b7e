#include "platform/locale/locale.h"
#include "platform/owc/chartview/chartdrawing.h"
#include "tests/unit/platform/owc/chart/charts.h"

#include <QDir>
#include <QImage>
#include <QPainter>

#include <algorithm>

using namespace platform::owc;
using namespace Qt::StringLiterals;

// Pictures of the types that the report form offers, kept as PNG files. They are drawn with letters of one
// pixel, which leave next to no trace and take no room, so that fonts do not matter; and they are compared
// at a quarter of their size with some tolerance, so that rounding of edges does not either.
//
// HOURBOOK_CHARTS_OUT names a folder to put the pictures into: "<type>.png" to keep, and "<type>-light.png",
// "<type>-dark.png" with letters of the usual size to look at.

namespace {

constexpr QSize fullSize(600, 328);
constexpr QSize keptSize(150, 82);

struct Shown {
  std::string name;
  int type = 0;
};

void PrintTo(const Shown& each, std::ostream* out) {
  *out << each.name;
}

/// Every type that can be drawn; "Line Stacked 100% Markers" is called "LineStacked100Markers" here.
std::vector<Shown> allShown() {
  std::vector<Shown> all;
  for (int type = 0; type <= chChartTypePolarSmoothLineMarkers; ++type)
    if (chartKind(type)) all.push_back({chartTypeName(type).remove(u' ').remove(u'%').toStdString(), type});
  return all;
}

/// The types of which the report form offers a choice.
constexpr int offered[] = {chChartTypeArea,
                           chChartTypeBarClustered,
                           chChartTypeColumnClustered,
                           chChartTypeDoughnut,
                           chChartTypeDoughnutExploded,
                           chChartTypeLine,
                           chChartTypeLineMarkers,
                           chChartTypeLineStackedMarkers,
                           chChartTypePie,
                           chChartTypePieExploded,
                           chChartTypeRadarLine,
                           chChartTypeRadarLineFilled,
                           chChartTypeRadarLineMarkers,
                           chChartTypeRadarSmoothLine,
                           chChartTypeRadarSmoothLineMarkers,
                           chChartTypeSmoothLine,
                           chChartTypeSmoothLineMarkers};

/// Those with the one series that the report form has, the others with two.
void fillFor(ChartSpace& space, int type) {
  if (std::find(std::begin(offered), std::end(offered), type) != std::end(offered)) {
    tests::fillWeek(space, type);
    return;
  }
  tests::fill(space, type, {u"Hours"_s, u"Travel"_s},
              {u"10"_s, u"20"_s, u"45"_s, u"90"_s, u"120"_s, u"200"_s},
              {{7.5, 8, 3.25, 9, 6, 2}, {1, 2.5, 4, 0, 3, 1.5}});
}

ChartLook look(bool dark, int letters) {
  ChartLook look;
  look.palette.setColor(QPalette::Base, dark ? QColor(30, 30, 30) : QColor(Qt::white));
  look.palette.setColor(QPalette::Text, dark ? QColor(230, 230, 230) : QColor(Qt::black));
  look.font.setPixelSize(letters);
  return look;
}

QImage draw(const ChartSpace& space, const ChartLook& look, const QSize& size = fullSize) {
  QImage image(size, QImage::Format_RGB32);
  image.fill(Qt::white);
  QPainter painter(&image);
  ChartDrawing(space, look, QSizeF(size)).paint(painter);
  return image;
}

QImage kept(const ChartSpace& space) {
  return draw(space, look(false, 1))
      .scaled(keptSize, Qt::IgnoreAspectRatio, Qt::SmoothTransformation)
      .convertToFormat(QImage::Format_RGB32);
}

int difference(QRgb a, QRgb b) {
  return std::max(
      {std::abs(qRed(a) - qRed(b)), std::abs(qGreen(a) - qGreen(b)), std::abs(qBlue(a) - qBlue(b))});
}

/// The part of the points that have no like in the other picture within one point around.
double strangers(const QImage& picture, const QImage& other) {
  constexpr int tolerance = 40;
  int strange = 0;
  for (int y = 0; y < picture.height(); ++y)
    for (int x = 0; x < picture.width(); ++x) {
      int least = 255;
      for (int dy = -1; dy <= 1; ++dy)
        for (int dx = -1; dx <= 1; ++dx)
          if (other.valid(x + dx, y + dy))
            least = std::min(least, difference(picture.pixel(x, y), other.pixel(x + dx, y + dy)));
      if (least > tolerance) ++strange;
    }
  return static_cast<double>(strange) / (picture.width() * picture.height());
}

class ChartPictures : public testing::TestWithParam<Shown> {
 protected:
  ChartPictures() { fillFor(space, GetParam().type); }
  QString name() const { return QString::fromStdString(GetParam().name); }
  const platform::locale::ScopedLocale locale{u"en_US"_s};
  ChartSpace space;
};

void writeForLooking(ChartSpace& space, const QString& folder, const QString& name) {
  constexpr int usual = 12;
  const QDir out(folder);
  kept(space).save(out.filePath(name + u".png"_s));
  draw(space, look(false, usual)).save(out.filePath(name + u"-light.png"_s));
  draw(space, look(true, usual)).save(out.filePath(name + u"-dark.png"_s));
}

}  // namespace

TEST_P(ChartPictures, LookAsTheyDid) {
  const QString out = qEnvironmentVariable("HOURBOOK_CHARTS_OUT");
  if (!out.isEmpty()) writeForLooking(space, out, name());
  const QImage golden = QImage(QStringLiteral(HOURBOOK_GOLDEN_CHARTS "/") + name() + u".png"_s)
                            .convertToFormat(QImage::Format_RGB32);
  ASSERT_EQ(golden.size(), keptSize) << "There is no picture to compare with.";
  const QImage now = kept(space);
  constexpr double tolerated = 0.002;
  EXPECT_LE(strangers(now, golden), tolerated) << "Something is drawn that was not.";
  EXPECT_LE(strangers(golden, now), tolerated) << "Something that was drawn is missing.";
}

INSTANTIATE_TEST_SUITE_P(AllTypes, ChartPictures, testing::ValuesIn(allShown()),
                         [](const auto& each) { return each.param.name; });

TEST(OfferedCharts, AllDifferFromEachOther) {
  const platform::locale::ScopedLocale locale(u"en_US"_s);
  ChartSpace space;
  QList<QImage> pictures;
  for (const int type : offered) {
    fillFor(space, type);
    pictures.append(kept(space));
  }
  for (qsizetype a = 0; a < pictures.size(); ++a)
    for (qsizetype b = a + 1; b < pictures.size(); ++b) {
      const bool sameForOneSeries =
          offered[a] == chChartTypeLineMarkers && offered[b] == chChartTypeLineStackedMarkers;
      EXPECT_EQ(pictures[a] == pictures[b], sameForOneSeries) << offered[a] << ", " << offered[b];
    }
}

TEST(OfferedCharts, CanBeLookedAtWithManyAndLongNames) {
  const QString out = qEnvironmentVariable("HOURBOOK_CHARTS_OUT");
  const platform::locale::ScopedLocale locale(u"en_US"_s);
  ChartSpace space;
  for (const int count : {1, 7, 60}) {
    QStringList names;
    QList<double> values;
    for (int i = 1; i <= count; ++i) {
      names.append(u"Customer number %1, a name of some length & <more>"_s.arg(i));
      values.append(i % 5 == 3 ? -i : i * 1.25);
    }
    for (const int type : {chChartTypeColumnClustered, chChartTypeBarClustered, chChartTypePie,
                           chChartTypeRadarLineFilled, chChartTypeSmoothLineMarkers}) {
      tests::fill(space, type, {u"Hours"_s}, names, {values});
      const QImage picture = draw(space, look(false, 12));
      EXPECT_NE(picture.pixelColor(0, 0), QColor(Qt::black));
      if (!out.isEmpty()) picture.save(QDir(out).filePath(u"many-%1-%2.png"_s.arg(count).arg(type)));
    }
  }
}

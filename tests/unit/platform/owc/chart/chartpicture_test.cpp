#include "platform/owc/chartview/chartpicture.h"

#include "platform/owc/chartview/chartview.h"
#include "platform/owc/chartview/gifwriter.h"
#include "tests/support/testworld.h"
#include "tests/unit/platform/owc/chart/charts.h"

#include <QFile>
#include <QImage>

using namespace platform::owc;
using namespace Qt::StringLiterals;

namespace {

class Pictures : public testing::Test {
 protected:
  const tests::TestWorld world;
  ChartSpace space;
  ChartView view{space};
};

}  // namespace

TEST_F(Pictures, AreGifsOfTheToldSize) {
  tests::fillWeek(space, chChartTypeColumnClustered);
  const QByteArray bytes = space.GetPicture(u"gif"_s, 600, 326);
  EXPECT_TRUE(bytes.startsWith("GIF8"));
  EXPECT_TRUE(bytes.endsWith(';'));
  EXPECT_EQ(bytes.mid(6, 4), QByteArray("\x58\x02\x46\x01", 4));
}

TEST_F(Pictures, HaveTheColoursOfTheChartInAGif) {
  tests::fillWeek(space, chChartTypePie);
  const QImage read =
      QImage::fromData(space.GetPicture(u"gif"_s, 600, 326), "GIF").convertToFormat(QImage::Format_RGB32);
  const QImage drawn = chartOnPaper(space, QSize(600, 326));
  ASSERT_EQ(read.size(), drawn.size());
  qint64 equal = 0;
  int farthest = 0;
  for (int y = 0; y < drawn.height(); ++y)
    for (int x = 0; x < drawn.width(); ++x) {
      const QColor is = read.pixelColor(x, y), was = drawn.pixelColor(x, y);
      equal += is == was;
      farthest = std::max({farthest, std::abs(is.red() - was.red()), std::abs(is.green() - was.green()),
                           std::abs(is.blue() - was.blue())});
    }
  EXPECT_GT(static_cast<double>(equal) / (600 * 326), 0.95);
  EXPECT_LE(farthest, 64);
}

TEST_F(Pictures, ArePngsToThePixel) {
  tests::fillWeek(space, chChartTypeLineMarkers);
  const QByteArray bytes = space.GetPicture(u"PNG"_s, 400, 200);
  EXPECT_EQ(QImage::fromData(bytes, "PNG").convertToFormat(QImage::Format_RGB32),
            chartOnPaper(space, QSize(400, 200)));
}

TEST_F(Pictures, AreOnPaperWhateverTheDesktopsColours) {
  QPalette dark;
  dark.setColor(QPalette::Base, Qt::black);
  dark.setColor(QPalette::Text, Qt::white);
  view.setPalette(dark);
  tests::fillWeek(space, chChartTypeColumnClustered);
  EXPECT_EQ(chartOnPaper(space, QSize(600, 326)).pixelColor(2, 2), QColor(Qt::white));
}

TEST_F(Pictures, AreTheSameForTheSameChart) {
  tests::fillWeek(space, chChartTypeArea);
  EXPECT_EQ(space.GetPicture(u"gif"_s, 600, 326), space.GetPicture(u"gif"_s, 600, 326));
}

TEST_F(Pictures, ShowAnEmptyChartToo) {
  space.Clear();
  EXPECT_FALSE(space.GetPicture(u"gif"_s, 600, 326).isEmpty());
  EXPECT_FALSE(space.GetPicture(u"gif"_s, 1, 1).isEmpty());
}

TEST_F(Pictures, AreStillMadeWhenTheViewIsGone) {
  ChartSpace other;
  { const ChartView passing(other); }
  tests::fillWeek(other, chChartTypeArea);
  EXPECT_FALSE(other.GetPicture(u"png"_s, 60, 40).isEmpty());
}

TEST_F(Pictures, AreExportedToAFile) {
  tests::fillWeek(space, chChartTypeColumnClustered);
  const QTemporaryDir folder;
  const QString path = folder.filePath(u"HBKReport.gif"_s);
  space.ExportPicture(path, u"gif"_s, 600, 326);
  QFile file(path);
  ASSERT_TRUE(file.open(QIODevice::ReadOnly));
  EXPECT_EQ(file.readAll(), space.GetPicture(u"gif"_s, 600, 326));
}

TEST(Gifs, KeepEveryColourOfAPictureThatHasFew) {
  QImage image(16, 16, QImage::Format_RGB32);
  for (int y = 0; y < 16; ++y)
    for (int x = 0; x < 16; ++x) image.setPixel(x, y, qRgb(x * 17, y * 17, (x ^ y) * 16));
  EXPECT_EQ(QImage::fromData(gifOf(image), "GIF").convertToFormat(QImage::Format_RGB32), image);
}

TEST(Gifs, OfManyColoursKeepTheFrequentOnes) {
  QImage image(256, 256, QImage::Format_RGB32);
  const QRgb flat = qRgb(0, 0x72, 0xb2);
  for (int y = 0; y < 256; ++y)
    for (int x = 0; x < 256; ++x) image.setPixel(x, y, y < 128 ? flat : qRgb(x, y, 255 - x));
  const QImage read = QImage::fromData(gifOf(image), "GIF").convertToFormat(QImage::Format_RGB32);
  ASSERT_EQ(read.size(), image.size());
  EXPECT_EQ(read.pixel(10, 10), flat);
  EXPECT_EQ(read.pixel(255, 127), flat);
  for (int x = 0; x < 256; x += 5) {
    EXPECT_NEAR(qRed(read.pixel(x, 200)), x, 64);
    EXPECT_NEAR(qBlue(read.pixel(x, 200)), 255 - x, 64);
  }
}

TEST(Gifs, OfNothingAreNothing) {
  EXPECT_TRUE(gifOf(QImage()).isEmpty());
}

TEST(Gifs, OfASinglePointAreReadable) {
  QImage image(1, 1, QImage::Format_RGB32);
  image.fill(Qt::red);
  EXPECT_EQ(QImage::fromData(gifOf(image), "GIF").pixelColor(0, 0), QColor(Qt::red));
}

#include "platform/owc/chartview/chartpicture.h"

#include "platform/basic/failure.h"
#include "platform/owc/chartview/chartdrawing.h"
#include "platform/owc/chartview/gifwriter.h"

#include <QBuffer>
#include <QGuiApplication>
#include <QPainter>

namespace platform::owc {

namespace {

QPalette paper() {
  QPalette palette(Qt::white);
  palette.setColor(QPalette::Base, Qt::white);
  palette.setColor(QPalette::Text, Qt::black);
  return palette;
}

QByteArray pngOf(const QImage& image) {
  QByteArray bytes;
  QBuffer buffer(&bytes);
  return image.save(&buffer, "PNG") ? bytes : QByteArray();
}

class PaperPainter : public ChartPainter {
 public:
  QByteArray picture(const ChartSpace& space, const QString& filter, const QSize& pixels) const override {
    const QImage image = chartOnPaper(space, pixels);
    const QByteArray bytes = filter == QLatin1String("gif") ? gifOf(image) : pngOf(image);
    if (bytes.isEmpty())
      throw Failure(failure::invalidProcedureCall,
                    QStringLiteral("The picture of the chart could not be made."),
                    QStringLiteral("ChartSpace"));
    return bytes;
  }
};

}  // namespace

QImage chartOnPaper(const ChartSpace& space, const QSize& pixels) {
  constexpr int letters = 12, dotsPerMeter = 3780;  // 96 to the inch
  ChartLook look{paper(), QGuiApplication::font()};
  look.font.setPixelSize(letters);
  QImage image(pixels, QImage::Format_RGB32);
  if (image.isNull()) return image;
  image.setDotsPerMeterX(dotsPerMeter);
  image.setDotsPerMeterY(dotsPerMeter);
  image.fill(Qt::white);
  QPainter painter(&image);
  ChartDrawing(space, look, QSizeF(pixels)).paint(painter);
  return image;
}

const ChartPainter& paperPainter() {
  static const PaperPainter only;
  return only;
}

}  // namespace platform::owc

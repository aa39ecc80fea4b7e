#include "platform/owc/chartview/chartdrawing.h"

#include "platform/forms/widgets/look.h"
#include "platform/owc/chartspace.h"
#include "platform/owc/chartview/chartgrid.h"
#include "platform/owc/chartview/chartseries.h"

#include <QGraphicsScene>
#include <QPainter>
#include <QtCharts/QLegend>
#include <QtCharts/QPolarChart>

namespace platform::owc {

ChartDrawing::ChartDrawing(const ChartSpace& space, const ChartLook& look, const QSizeF& size)
    : size_(size), font_(look.font), colors_(look.palette), figures_(figuresOf(space)) {
  colors_.putOn(space.Interior().Color());
  outer_ = colors_.background();
  if (const Chart* chart = space.firstChart()) {
    colors_.putOn(chart->Interior().Color());
    borderWeight_ = chart->border().Weight();
    border_ = forms::colorFromBgr(chart->border().Color());
  }
  frame_ = frameFor(figures_, QRectF(QPointF(), size), font_, colors_);
  if (!figures_.isEmpty() && !frame_.plot.isEmpty()) buildScene();
}

ChartDrawing::~ChartDrawing() = default;

void ChartDrawing::buildScene() {
  scene_ = std::make_unique<QGraphicsScene>(QRectF(QPointF(), size_));
  scene_->setItemIndexMethod(QGraphicsScene::NoIndex);
  const ChartKind& kind = figures_.kind;
  QChart* chart = kind.isPolar() ? new QPolarChart : new QChart;
  scene_->addItem(chart);
  chart->setAnimationOptions(QChart::NoAnimation);
  chart->setBackgroundVisible(false);
  chart->setMargins({});
  chart->legend()->hide();
  chart->setMinimumSize(0, 0);
  chart->resize(size_);
  const bool flat = !kind.isRound() && !kind.isPolar();
  constexpr double bleed = ChartFrame::bleed;
  chart->setPlotArea(flat ? frame_.plot.adjusted(-bleed, -bleed, bleed, bleed) : frame_.plot);
  if (flat)
    addFlatSeries(*chart, figures_, frame_, colors_);
  else
    addRoundSeries(*chart, figures_, frame_, colors_);
}

void ChartDrawing::paint(QPainter& painter) const {
  painter.save();
  painter.setRenderHint(QPainter::Antialiasing);
  paintGround(painter);
  if (scene_) {
    paintGrid(painter, figures_, frame_, colors_);
    scene_->render(&painter, QRectF(QPointF(), size_), QRectF(QPointF(), size_));
    paintAxes(painter, figures_, frame_, colors_);
  }
  paintLegend(painter);
  paintTexts(painter);
  painter.restore();
}

void ChartDrawing::paintGround(QPainter& painter) const {
  const QRectF all(QPointF(), size_);
  painter.fillRect(all, outer_);
  painter.fillRect(all, colors_.background());
  painter.setBrush(Qt::NoBrush);
  if (borderWeight_ > 0) {
    const double half = borderWeight_ / 2.0;
    QPen pen(border_, borderWeight_);
    pen.setJoinStyle(Qt::MiterJoin);
    painter.setPen(pen);
    painter.drawRect(all.adjusted(half, half, -half, -half));
  }
  if (!figures_.isEmpty() || frame_.plot.isEmpty()) return;
  painter.setPen(QPen(colors_.grid(), 1));
  painter.drawRect(QRectF(frame_.plot.toRect()).translated(0.5, 0.5));
}

void ChartDrawing::paintLegend(QPainter& painter) const {
  for (const ChartSwatch& swatch : frame_.swatches) {
    painter.setPen(QPen(swatch.outline, 1));
    painter.setBrush(swatch.fill);
    painter.drawRect(swatch.place.adjusted(0.5, 0.5, -0.5, -0.5));
  }
}

void ChartDrawing::paintTexts(QPainter& painter) const {
  painter.setFont(font_);
  for (const ChartText& text : frame_.texts) {
    painter.setPen(text.color);
    const int lines = text.text.contains(u'\n') ? 0 : Qt::TextSingleLine;
    const int flags = static_cast<int>(text.alignment) | lines | Qt::TextDontClip;
    if (!text.upright) {
      painter.drawText(text.place, flags, text.text);
      continue;
    }
    painter.save();
    painter.translate(text.place.center());
    painter.rotate(-90);
    const QSizeF turned = text.place.size().transposed();
    painter.drawText(QRectF(QPointF(-turned.width() / 2, -turned.height() / 2), turned), flags, text.text);
    painter.restore();
  }
}

}  // namespace platform::owc

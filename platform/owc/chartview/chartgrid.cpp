#include "platform/owc/chartview/chartgrid.h"

#include <QPainter>
#include <QPolygonF>

#include <cmath>

namespace platform::owc {

namespace {

/// In the middle of a pixel, so that a line of one pixel is sharp.
double sharp(double place) {
  return std::floor(place) + 0.5;
}

class Lines {
 public:
  Lines(QPainter& painter, const ChartFigures& figures, const ChartFrame& frame)
      : painter_(painter), kind_(figures.kind), count_(figures.count()), frame_(frame), plot_(frame.plot) {}

  void grid() {
    if (kind_.isPolar()) {
      web();
      return;
    }
    const bool lying = kind_.family == ChartFamily::Bar;
    for (int tick = 0; tick <= frame_.values.steps(); ++tick)
      lying ? upright(partOf(frame_.values, tick)) : level(partOf(frame_.values, tick));
    if (kind_.family != ChartFamily::Scatter) return;
    for (int tick = 0; tick <= frame_.across.steps(); ++tick) upright(partOf(frame_.across, tick));
  }

  /// At zero, where bars hang down too.
  void axes() {
    if (kind_.isPolar()) {
      painter_.drawLine(frame_.outFromCentre(0, 0), frame_.outFromCentre(0, 1));
      return;
    }
    const double zero = partOf(frame_.values, -frame_.values.from);
    const bool lying = kind_.family == ChartFamily::Bar, scatter = kind_.family == ChartFamily::Scatter;
    level(lying ? 0 : zero);
    upright(lying ? zero : scatter ? partOf(frame_.across, -frame_.across.from) : 0);
  }

 private:
  static double partOf(const ValueScale& scale, int tick) {
    return static_cast<double>(tick) / scale.steps();
  }
  void level(double part) {
    const double y = sharp(plot_.bottom() - plot_.height() * part);
    painter_.drawLine(QPointF(plot_.left(), y), QPointF(plot_.right(), y));
  }
  void upright(double part) {
    const double x = sharp(plot_.left() + plot_.width() * part);
    painter_.drawLine(QPointF(x, plot_.top()), QPointF(x, plot_.bottom()));
  }
  /// A radar's grid has a corner for each category; a polar chart's is round.
  void web() {
    constexpr qsizetype leastCorners = 3, mostCorners = 36, usual = 12;
    const bool corners =
        kind_.family == ChartFamily::Radar && count_ >= leastCorners && count_ <= mostCorners;
    const qsizetype spokes = corners ? count_ : usual;
    for (int tick = 1; tick <= frame_.values.steps(); ++tick) {
      const double part = partOf(frame_.values, tick);
      QPolygonF ring;
      for (qsizetype i = 0; i < spokes; ++i) ring << frame_.outFromCentre(turnOf(i, spokes), part);
      if (corners)
        painter_.drawPolygon(ring);
      else
        painter_.drawEllipse(plot_.center(), plot_.width() / 2 * part, plot_.height() / 2 * part);
    }
    for (qsizetype i = 0; i < spokes; ++i)
      painter_.drawLine(plot_.center(), frame_.outFromCentre(turnOf(i, spokes), 1));
  }
  static double turnOf(qsizetype i, qsizetype spokes) {
    return 360 * static_cast<double>(i) / static_cast<double>(spokes);
  }

  QPainter& painter_;
  const ChartKind& kind_;
  qsizetype count_;
  const ChartFrame& frame_;
  const QRectF& plot_;
};

}  // namespace

void paintGrid(QPainter& painter, const ChartFigures& figures, const ChartFrame& frame,
               const ChartColors& colors) {
  if (figures.kind.isRound()) return;
  painter.setPen(QPen(colors.grid(), 1));
  painter.setBrush(Qt::NoBrush);
  Lines(painter, figures, frame).grid();
}

void paintAxes(QPainter& painter, const ChartFigures& figures, const ChartFrame& frame,
               const ChartColors& colors) {
  if (figures.kind.isRound()) return;
  painter.setPen(QPen(colors.axis(), 1));
  Lines(painter, figures, frame).axes();
}

}  // namespace platform::owc

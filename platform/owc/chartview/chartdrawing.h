#pragma once
#include "platform/owc/chartview/chartframe.h"

#include <QFont>
#include <QPalette>
#include <QSizeF>

#include <memory>

class QChart;
class QGraphicsScene;
class QPainter;

namespace platform::owc {

class ChartSpace;

/// The desktop's part in how a chart looks.
struct ChartLook {
  QPalette palette;
  QFont font;
};

/// A chart space as it stands, drawn at a size. It is made anew when anything changes; it does not follow.
class ChartDrawing {
 public:
  ChartDrawing(const ChartSpace& space, const ChartLook& look, const QSizeF& size);
  ~ChartDrawing();

  /// At the painter's origin.
  void paint(QPainter& painter) const;

  const ChartFigures& figures() const { return figures_; }
  const ChartFrame& frame() const { return frame_; }
  const ChartColors& colors() const { return colors_; }
  std::optional<qsizetype> categoryAt(const QPointF& point) const {
    return frame_.categoryAt(figures_, point);
  }
  QRectF areaOf(qsizetype category) const { return frame_.areaOf(figures_, category); }

 private:
  void buildScene();
  void paintGround(QPainter& painter) const;
  void paintLegend(QPainter& painter) const;
  void paintTexts(QPainter& painter) const;

  QSizeF size_;
  QFont font_;
  ChartColors colors_;
  QColor outer_;  // around the chart
  QColor border_;
  int borderWeight_ = 0;
  ChartFigures figures_;
  ChartFrame frame_;
  std::unique_ptr<QGraphicsScene> scene_;
};

}  // namespace platform::owc

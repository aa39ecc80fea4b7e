#include "platform/owc/chartview/chartseries.h"

#include "platform/owc/chartview/smoothing.h"

#include <QPen>
#include <QtCharts/QAreaSeries>
#include <QtCharts/QBarSeries>
#include <QtCharts/QBarSet>
#include <QtCharts/QHorizontalBarSeries>
#include <QtCharts/QHorizontalStackedBarSeries>
#include <QtCharts/QLineSeries>
#include <QtCharts/QScatterSeries>
#include <QtCharts/QStackedBarSeries>
#include <QtCharts/QValueAxis>

#include <algorithm>
#include <array>
#include <cmath>
#include <memory>

namespace platform::owc {

namespace {

double orZero(double value) {
  return std::isnan(value) ? 0 : value;
}

/// An axis over the plot's pixels and what bleeds out of them at both ends.
std::unique_ptr<QValueAxis> bleedingAxis(double from, double to, double pixels) {
  const double bleed = ChartFrame::bleed * (to - from) / pixels;
  return scalingAxis(from - bleed, to + bleed);
}

/// Category i stands at i, in a slot of width 1.
void addAxes(QChart& chart, const ChartFigures& figures, const ChartFrame& frame) {
  const bool lying = figures.kind.family == ChartFamily::Bar;
  const double width = frame.plot.width(), height = frame.plot.height();
  auto values = bleedingAxis(frame.values.from, frame.values.to, lying ? width : height);
  const bool scatter = figures.kind.family == ChartFamily::Scatter;
  const double first = scatter ? frame.across.from : -0.5;
  const double last = scatter ? frame.across.to : static_cast<double>(figures.count()) - 0.5;
  auto others = bleedingAxis(first, last, lying ? height : width);
  chart.addAxis(values.release(), lying ? Qt::AlignBottom : Qt::AlignLeft);
  chart.addAxis(others.release(), lying ? Qt::AlignLeft : Qt::AlignBottom);
}

std::unique_ptr<QAbstractBarSeries> barSeries(const ChartKind& kind) {
  const bool lying = kind.family == ChartFamily::Bar, piled = kind.stacking != Stacking::None;
  if (lying && piled) return std::make_unique<QHorizontalStackedBarSeries>();
  if (lying) return std::make_unique<QHorizontalBarSeries>();
  if (piled) return std::make_unique<QStackedBarSeries>();
  return std::make_unique<QBarSeries>();
}

std::unique_ptr<QBarSet> barSet(const ChartFigures& figures, const ChartFrame& frame,
                                const ChartColors& colors, qsizetype series) {
  QList<double> values;
  for (const double value : figures.drawn[series]) values.append(frame.values.inSteps(orZero(value)));
  if (figures.kind.family == ChartFamily::Bar) std::reverse(values.begin(), values.end());
  auto set = std::make_unique<QBarSet>(QString());
  set->append(values);
  set->setBrush(colors.fill(series));
  return set;
}

/// Lying bars are counted from below; so that the first category, and of several bars beside each other the
/// first, comes on top, as one reads, they are put in from the last to the first.
void addBars(QChart& chart, const ChartFigures& figures, const ChartFrame& frame, const ChartColors& colors) {
  constexpr double usual = 0.6, widest = 90;  // of the slot; in pixels
  const bool piled = figures.kind.stacking != Stacking::None;
  const bool backwards = figures.kind.family == ChartFamily::Bar && !piled;
  const qsizetype count = figures.names.size();
  const double beside = piled ? 1 : static_cast<double>(count);
  const double width = std::min(usual, widest * beside / frame.slot(figures));
  const bool outlined = width * frame.slot(figures) / beside >= leastOutlined;
  auto series = barSeries(figures.kind);
  for (qsizetype i = 0; i < count; ++i) {
    const qsizetype index = backwards ? count - 1 - i : i;
    auto set = barSet(figures, frame, colors, index);
    set->setPen(outlined ? QPen(colors.outline(index), 1) : QPen(Qt::NoPen));
    series->append(set.release());
  }
  series->setLabelsVisible(false);
  series->setBarWidth(width);
  addTo(chart, series.release());
}

void addLines(QChart& chart, const ChartFigures& figures, const ChartFrame& frame,
              const ChartColors& colors) {
  for (qsizetype i = 0; i < figures.names.size(); ++i) {
    QList<QPointF> spots;
    for (const QList<QPointF>& run : runsOf(figures, frame, i)) {
      if (figures.kind.lines && run.size() > 1)
        addLine(chart, figures.kind.smooth ? smoothed(run, smoothPlaces) : run, colors, i);
      if (figures.kind.markers || run.size() == 1) spots.append(run);
    }
    if (!spots.isEmpty()) addMarkers(chart, spots, colors, i);
  }
}

/// A single category would be an area without width: it becomes a band.
QList<QPointF> widened(QList<QPointF> points) {
  constexpr double half = 0.2;
  if (points.size() != 1) return points;
  const QPointF only = points.front();
  return {only - QPointF(half, 0), only + QPointF(half, 0)};
}

void addAreas(QChart& chart, const ChartFigures& figures, const ChartFrame& frame,
              const ChartColors& colors) {
  constexpr float solid = 0.85F, lucid = 0.6F;  // areas that may cover each other are shone through
  const bool piled = figures.kind.stacking != Stacking::None;
  for (qsizetype i = 0; i < figures.names.size(); ++i) {
    QColor fill = colors.fill(i);
    fill.setAlphaF(piled || figures.names.size() == 1 ? solid : lucid);
    for (const QList<QPointF>& run : runsOf(figures, frame, i)) {
      const QList<QPointF> upper = widened(run);
      QList<QPointF> lower = upper;
      for (QPointF& point : lower) point.setY(0);
      if (piled && i > 0) lower = widened(runsOf(figures, frame, i - 1).value(0));
      if (upper.size() == lower.size()) addArea(chart, upper, lower, fill);
      if (figures.kind.family == ChartFamily::Area) addLine(chart, upper, colors, i);
    }
  }
}

}  // namespace

QList<QList<QPointF>> runsOf(const ChartFigures& figures, const ChartFrame& frame, qsizetype series) {
  const bool scatter = figures.kind.family == ChartFamily::Scatter;
  QList<QList<QPointF>> runs;
  bool open = false;
  for (qsizetype i = 0; i < figures.count(); ++i) {
    const double value = figures.drawn[series][i];
    if (std::isnan(value)) {
      open = false;
      continue;
    }
    if (!open) runs.append(QList<QPointF>());
    open = true;
    const double place = frame.places[i];
    runs.back().append({scatter ? frame.across.inSteps(place) : place, frame.values.inSteps(value)});
  }
  return runs;
}

QPen linePen(const ChartColors& colors, qsizetype series) {
  QPen pen(colors.fill(series), lineWidth);
  pen.setJoinStyle(Qt::RoundJoin);
  pen.setCapStyle(Qt::RoundCap);
  return pen;
}

void addTo(QChart& chart, QAbstractSeries* series) {
  chart.addSeries(series);
  for (QAbstractAxis* axis : chart.axes()) series->attachAxis(axis);
}

void addLine(QChart& chart, const QList<QPointF>& points, const ChartColors& colors, qsizetype series) {
  auto line = std::make_unique<QLineSeries>();
  line->append(points);
  line->setPen(linePen(colors, series));
  addTo(chart, line.release());
}

void addMarkers(QChart& chart, const QList<QPointF>& points, const ChartColors& colors, qsizetype series) {
  using Shape = QScatterSeries;
  static constexpr std::array shapes{Shape::MarkerShapeCircle,   Shape::MarkerShapeRectangle,
                                     Shape::MarkerShapeTriangle, Shape::MarkerShapeRotatedRectangle,
                                     Shape::MarkerShapePentagon, Shape::MarkerShapeStar};
  constexpr double size = 9;
  auto spots = std::make_unique<QScatterSeries>();
  spots->append(points);
  spots->setMarkerShape(shapes[static_cast<std::size_t>(series) % shapes.size()]);
  spots->setMarkerSize(size);
  spots->setBrush(colors.fill(series));
  spots->setPen(QPen(colors.background(), 1));
  addTo(chart, spots.release());
}

void addArea(QChart& chart, const QList<QPointF>& upper, const QList<QPointF>& lower, const QColor& fill) {
  auto area = std::make_unique<QAreaSeries>();
  const auto line = [&](const QList<QPointF>& points) {
    auto* series = new QLineSeries(area.get());
    series->append(points);
    return series;
  };
  area->setUpperSeries(line(upper));
  if (!lower.isEmpty()) area->setLowerSeries(line(lower));
  area->setBrush(fill);
  area->setPen(Qt::NoPen);
  addTo(chart, area.release());
}

std::unique_ptr<QValueAxis> scalingAxis(double from, double to) {
  auto axis = std::make_unique<QValueAxis>();
  axis->setRange(from, to);
  axis->setVisible(false);
  return axis;
}

void addFlatSeries(QChart& chart, const ChartFigures& figures, const ChartFrame& frame,
                   const ChartColors& colors) {
  addAxes(chart, figures, frame);
  switch (figures.kind.family) {
    case ChartFamily::Column:
    case ChartFamily::Bar:
      addBars(chart, figures, frame, colors);
      break;
    case ChartFamily::Scatter:
      if (figures.kind.filled) addAreas(chart, figures, frame, colors);
      addLines(chart, figures, frame, colors);
      break;
    case ChartFamily::Area:
      addAreas(chart, figures, frame, colors);
      break;
    default:
      addLines(chart, figures, frame, colors);
  }
}

}  // namespace platform::owc

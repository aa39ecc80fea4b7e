#include "platform/owc/chartview/chartseries.h"
#include "platform/owc/chartview/smoothing.h"

#include <QPen>
#include <QtCharts/QPieSeries>
#include <QtCharts/QPieSlice>
#include <QtCharts/QPolarChart>
#include <QtCharts/QValueAxis>

#include <cmath>
#include <memory>
#include <numbers>

namespace platform::owc {

namespace {

void addSlices(QChart& chart, const SliceRings& slices, const ChartColors& colors) {
  if (slices.half <= 0) return;
  for (const SliceRings::Ring& ring : slices.rings) {
    auto pie = std::make_unique<QPieSeries>();
    for (qsizetype i = 0; i < ring.shares.size(); ++i) {
      auto slice = std::make_unique<QPieSlice>(QString(), ring.shares[i]);
      slice->setBrush(colors.fill(i));
      const bool whole = ring.shares[i] > 0.999;  // its edges would lie on each other, as a line
      const bool thin = ring.shares[i] * ring.outer * 2 * std::numbers::pi < leastOutlined;
      slice->setPen(whole || thin ? QPen(Qt::NoPen) : QPen(colors.outline(i), 1));
      slice->setLabelVisible(false);
      slice->setExplodeDistanceFactor(SliceRings::explosion);
      slice->setExploded(slices.exploded);
      pie->append(slice.release());
    }
    pie->setPieSize(ring.outer / slices.half);
    pie->setHoleSize(ring.inner / slices.half);
    chart.addSeries(pie.release());
  }
}

/// A radar's line goes once around: back to the first value. Missing values count as 0 in it.
QList<QPointF> aroundOnce(const ChartFigures& figures, const ChartFrame& frame, qsizetype series) {
  QList<double> radii;
  for (const double value : figures.drawn[series])
    radii.append(std::isnan(value) ? 0 : frame.values.inSteps(value));
  if (figures.kind.smooth)
    radii = smoothed(radii, smoothPlaces, true);
  else
    radii.append(radii.front());
  QList<QPointF> points;
  for (qsizetype i = 0; i < radii.size(); ++i)
    points.append({360.0 * static_cast<double>(i) / static_cast<double>(radii.size() - 1), radii[i]});
  return points;
}

void addRadar(QChart& chart, const ChartFigures& figures, const ChartFrame& frame,
              const ChartColors& colors) {
  constexpr float lucid = 0.5F;
  for (qsizetype i = 0; i < figures.names.size(); ++i) {
    const QList<QPointF> points = aroundOnce(figures, frame, i);
    if (figures.kind.filled) {
      QColor fill = colors.fill(i);
      fill.setAlphaF(lucid);
      addArea(chart, points, {}, fill);
    }
    if (points.size() > 1) addLine(chart, points, colors, i);
    QList<QPointF> spots;
    for (const QList<QPointF>& run : runsOf(figures, frame, i)) spots.append(run);
    if (figures.kind.markers || figures.count() == 1) addMarkers(chart, spots, colors, i);
  }
}

void addPolar(QChart& chart, const ChartFigures& figures, const ChartFrame& frame,
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

}  // namespace

void addRoundSeries(QChart& chart, const ChartFigures& figures, const ChartFrame& frame,
                    const ChartColors& colors) {
  if (figures.kind.isRound()) {
    addSlices(chart, frame.slices, colors);
    return;
  }
  auto& polar = static_cast<QPolarChart&>(chart);
  polar.addAxis(scalingAxis(0, 360).release(), QPolarChart::PolarOrientationAngular);
  polar.addAxis(scalingAxis(frame.values.from, frame.values.to).release(),
                QPolarChart::PolarOrientationRadial);
  if (figures.kind.family == ChartFamily::Radar)
    addRadar(chart, figures, frame, colors);
  else
    addPolar(chart, figures, frame, colors);
}

}  // namespace platform::owc

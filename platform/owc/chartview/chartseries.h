#pragma once
#include "platform/owc/chartview/chartframe.h"

#include <QtCharts/QChart>

#include <memory>

class QValueAxis;

namespace platform::owc {

/// Puts the series of a chart with two axes, and the axes, into a QChart. Values are told in steps of
/// the frame's scale.
void addFlatSeries(QChart& chart, const ChartFigures& figures, const ChartFrame& frame,
                   const ChartColors& colors);
/// The same of a pie, a doughnut, a radar or a polar chart; the latter two need a QPolarChart.
void addRoundSeries(QChart& chart, const ChartFigures& figures, const ChartFrame& frame,
                    const ChartColors& colors);

// What both have in common

inline constexpr double lineWidth = 2.5;
/// Bars and slices narrower than so many pixels have no outline: it would be all that is seen of them.
inline constexpr double leastOutlined = 5;
inline constexpr int smoothPlaces = 12;  // drawn between two values of a smooth line

/// The values of a series as points, cut where a value is missing.
QList<QList<QPointF>> runsOf(const ChartFigures& figures, const ChartFrame& frame, qsizetype series);
QPen linePen(const ChartColors& colors, qsizetype series);
/// Adds a series with its axes.
void addTo(QChart& chart, QAbstractSeries* series);
void addLine(QChart& chart, const QList<QPointF>& points, const ChartColors& colors, qsizetype series);
/// Spots of a series; each series has a shape of its own.
void addMarkers(QChart& chart, const QList<QPointF>& points, const ChartColors& colors, qsizetype series);
/// An area between two lines of the same length, in the chart's ownership.
void addArea(QChart& chart, const QList<QPointF>& upper, const QList<QPointF>& lower, const QColor& fill);
/// An axis that only scales: lines and labels are painted by the drawing, which can keep them off each other
/// and needs no second pass of layout.
std::unique_ptr<QValueAxis> scalingAxis(double from, double to);

}  // namespace platform::owc

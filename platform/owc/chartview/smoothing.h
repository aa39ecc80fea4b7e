#pragma once
#include <QList>
#include <QPointF>

namespace platform::owc {

/// A smooth line through values that stand at equal distances, with `between` places added between each two.
/// It never leaves the range of its two neighbours: a curve of hours does not dip below zero between two
/// days. `closed`: behind the last value comes the first again, which is then also the last of the result.
QList<double> smoothed(const QList<double>& values, int between, bool closed);
/// The same through points of the plane, in their order.
QList<QPointF> smoothed(const QList<QPointF>& points, int between);

}  // namespace platform::owc

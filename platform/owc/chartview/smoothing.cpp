#include "platform/owc/chartview/smoothing.h"

#include <algorithm>
#include <cmath>

namespace platform::owc {

namespace {

/// Steepness at a value between two differences: none at a peak, and never so much that the curve would
/// swing out (the harmonic mean of Fritsch and Butland).
double steepness(double before, double after) {
  if (before * after <= 0) return 0;
  return 2 / (1 / before + 1 / after);
}

QList<double> steepnesses(const QList<double>& values, bool closed) {
  const qsizetype count = values.size();
  const auto difference = [&](qsizetype i) {
    const qsizetype from = (i + count) % count;
    return values[(from + 1) % count] - values[from];
  };
  QList<double> all;
  for (qsizetype i = 0; i < count; ++i) {
    const bool first = i == 0 && !closed, last = i == count - 1 && !closed;
    all.append(first  ? difference(0)
               : last ? difference(count - 2)
                      : steepness(difference(i - 1), difference(i)));
  }
  return all;
}

double between(double a, double b, double steepA, double steepB, double t) {
  const double t2 = t * t, t3 = t2 * t;
  const double place =
      (2 * t3 - 3 * t2 + 1) * a + (t3 - 2 * t2 + t) * steepA + (3 * t2 - 2 * t3) * b + (t3 - t2) * steepB;
  return std::clamp(place, std::min(a, b), std::max(a, b));
}

}  // namespace

QList<double> smoothed(const QList<double>& values, int places, bool closed) {
  if (values.size() < 2) return values;
  const QList<double> steep = steepnesses(values, closed);
  const qsizetype count = values.size(), parts = closed ? count : count - 1;
  QList<double> line{values[0]};
  for (qsizetype i = 0; i < parts; ++i) {
    const qsizetype next = (i + 1) % count;
    for (int place = 1; place <= places; ++place)
      line.append(
          between(values[i], values[next], steep[i], steep[next], static_cast<double>(place) / (places + 1)));
    line.append(values[next]);
  }
  return line;
}

QList<QPointF> smoothed(const QList<QPointF>& points, int places) {
  QList<double> xs, ys;
  for (const QPointF& point : points) {
    xs.append(point.x());
    ys.append(point.y());
  }
  xs = smoothed(xs, places, false);
  ys = smoothed(ys, places, false);
  QList<QPointF> line;
  for (qsizetype i = 0; i < xs.size(); ++i) line.append({xs[i], ys[i]});
  return line;
}

}  // namespace platform::owc

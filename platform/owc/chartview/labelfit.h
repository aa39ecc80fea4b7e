#pragma once
#include <QFontMetricsF>
#include <QStringList>

namespace platform::owc {

/// How the names of categories stand along an axis.
struct LabelFit {
  bool upright = false;  // turned by 90 degrees, read from below
  qsizetype every = 1;   // only each so many-th has its label
  QStringList texts;     // shortened where they must be; of all categories
  double depth = 0;      // the room they take across the axis
};

/// Along a horizontal axis where each category has `slot` pixels. Names stand level in one line or, broken at
/// a blank, in two. Where neither has room for them whole, they stand as more of them can be read: level and
/// shortened, in two lines or one, or upright and `mostDepth` pixels long at most. No two touch.
LabelFit fitBelow(const QStringList& names, double slot, double mostDepth, const QFontMetricsF& metrics);
/// Beside a vertical axis, level, at most `mostDepth` pixels wide.
LabelFit fitBeside(const QStringList& names, double slot, double mostDepth, const QFontMetricsF& metrics);

}  // namespace platform::owc

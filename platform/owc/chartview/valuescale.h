#pragma once
#include <QString>

namespace platform::owc {

/// A value axis with round steps. Places on it are told in steps, so that values of any size are drawn with
/// numbers near 1: charts take a range of 1e-300 for an empty one.
struct ValueScale {
  double step = 1;
  int from = 0, to = 1;  // in steps
  bool percent = false;

  double inSteps(double value) const { return value / step; }
  int steps() const { return to - from; }
  /// The number at a step, in the user's regional settings; all labels of an axis have the same decimals.
  QString label(int tick) const;
};

/// The finest scale of at most `mostSteps` steps (two at the least) that holds 0 and both values.
ValueScale scaleFor(double low, double high, int mostSteps, bool percent = false);

}  // namespace platform::owc

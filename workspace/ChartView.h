#pragma once
#include "platform/scripting/dictionary.h"

namespace hourbook {

/// What draws the hours of the list. Without one the hours are counted all the same.
class ChartView {
 public:
  virtual ~ChartView() = default;
  /// `hours` by group, in the order in which they are to stand in the chart.
  virtual void LoadChartWithLiteral(const platform::scripting::Dictionary<double>& hours) = 0;
};

}  // namespace hourbook

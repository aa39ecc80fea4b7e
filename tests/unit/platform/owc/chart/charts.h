#pragma once
#include "platform/owc/chartspace.h"

#include <limits>

namespace tests {

inline constexpr double nan = std::numeric_limits<double>::quiet_NaN();
inline constexpr double infinite = std::numeric_limits<double>::infinity();

/// A chart filled as the report form fills it: series, categories, values, white everywhere.
inline platform::owc::Chart& fill(platform::owc::ChartSpace& space, int type, const QStringList& names,
                                  const QStringList& categories, const QList<QList<double>>& values) {
  using namespace platform::owc;
  space.Clear();
  Chart& chart = space.Charts().Add();
  chart.setHasLegend(true);
  space.Interior().setColor(chartWhite);
  chart.border().setColor(chartWhite);
  chart.border().setWeight(0);
  chart.Interior().setColor(chartWhite);
  chart.setType(type);
  chart.SetData(chDimSeriesNames, chDataLiteral, names);
  chart.SetData(chDimCategories, chDataLiteral, categories);
  qsizetype index = 0;
  for (Series& series : chart.SeriesCollection()) series.SetData(chDimValues, chDataLiteral, values[index++]);
  return chart;
}

inline platform::owc::Chart& fillWeek(platform::owc::ChartSpace& space, int type) {
  return fill(
      space, type, {QStringLiteral("Hours")},
      {QStringLiteral("Mon 5/13/2024"), QStringLiteral("Tue 5/14/2024"), QStringLiteral("Wed 5/15/2024"),
       QStringLiteral("Thu 5/16/2024"), QStringLiteral("Fri 5/17/2024")},
      {{7.5, 8, 3.25, 9, 6}});
}

}  // namespace tests

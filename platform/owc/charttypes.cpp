#include "platform/owc/charttypes.h"

#include <iterator>

namespace platform::owc {

namespace {

struct Row {
  const char* name;
  std::optional<ChartKind> kind;
};

constexpr ChartKind bars(ChartFamily family, Stacking stacking) {
  return {.family = family, .stacking = stacking};
}

constexpr ChartKind line(Stacking stacking, bool markers, bool smooth = false) {
  return {
      .family = ChartFamily::Line, .stacking = stacking, .lines = true, .markers = markers, .smooth = smooth};
}

constexpr ChartKind around(ChartFamily family, bool lines, bool markers, bool smooth, bool filled = false) {
  return {.family = family, .lines = lines, .markers = markers, .smooth = smooth, .filled = filled};
}

constexpr ChartKind area(Stacking stacking) {
  return {.family = ChartFamily::Area, .stacking = stacking, .filled = true};
}

constexpr ChartKind slices(ChartFamily family, bool exploded) {
  return {.family = family, .exploded = exploded};
}

using enum ChartFamily;
using enum Stacking;

/// In the order of the constants.
const Row rows[] = {
    {"ColumnClustered", bars(Column, None)},
    {"ColumnStacked", bars(Column, Stacked)},
    {"ColumnStacked100%", bars(Column, Percent)},
    {"BarClustered", bars(Bar, None)},
    {"BarStacked", bars(Bar, Stacked)},
    {"BarStacked100%", bars(Bar, Percent)},
    {"Line", line(None, false)},
    {"Line Markers", line(None, true)},
    {"Line Stacked", line(Stacked, false)},
    {"Line Stacked Markers", line(Stacked, true)},
    {"Line Stacked 100%", line(Percent, false)},
    {"Line Stacked 100% Markers", line(Percent, true)},
    {"Smoothline", line(None, false, true)},
    {"Smoothline Markers", line(None, true, true)},
    {"Smoothline Stacked", line(Stacked, false, true)},
    {"Smoothline Stacked Markers", line(Stacked, true, true)},
    {"Smoothline Stacked 100%", line(Percent, false, true)},
    {"Smoothline Stacked 100% Markers", line(Percent, true, true)},
    {"Pie", slices(Pie, false)},
    {"Pie Exploded", slices(Pie, true)},
    {"Pie Stacked", {}},
    {"Scatter Markers", around(Scatter, false, true, false)},
    {"Scatter Smoothline Markers", around(Scatter, true, true, true)},
    {"Scatter Smoothline", around(Scatter, true, false, true)},
    {"Scatter Line Markers", around(Scatter, true, true, false)},
    {"Scatter Line", around(Scatter, true, false, false)},
    {"Scatter Line Filled", around(Scatter, true, false, false, true)},
    {"Bubble", {}},
    {"BubbleLine", {}},
    {"Area", area(None)},
    {"AreaStacked", area(Stacked)},
    {"AreaStacked100%", area(Percent)},
    {"Doughnut", slices(Doughnut, false)},
    {"Doughnut Exploded", slices(Doughnut, true)},
    {"Radar Line", around(Radar, true, false, false)},
    {"Radar Line Markers", around(Radar, true, true, false)},
    {"Radar Line Filled", around(Radar, true, false, false, true)},
    {"Radar Smoothline", around(Radar, true, false, true)},
    {"Radar Smoothline Markers", around(Radar, true, true, true)},
    {"Stock HLC", {}},
    {"Stock OHLC", {}},
    {"Polar Markers", around(Polar, false, true, false)},
    {"Polar Line", around(Polar, true, false, false)},
    {"Polar Line Markers", around(Polar, true, true, false)},
    {"Polar Smooth Line", around(Polar, true, false, true)},
    {"Polar Smooth Line Markers", around(Polar, true, true, true)},
};
static_assert(std::size(rows) == chChartTypePolarSmoothLineMarkers + 1);

const Row* rowOf(int type) {
  return type >= 0 && type < static_cast<int>(std::size(rows)) ? &rows[type] : nullptr;
}

}  // namespace

std::optional<ChartKind> chartKind(int type) {
  const Row* row = rowOf(type);
  return row ? row->kind : std::nullopt;
}

QString chartTypeName(int type) {
  const Row* row = rowOf(type);
  return row ? QString::fromLatin1(row->name) : QString();
}

}  // namespace platform::owc

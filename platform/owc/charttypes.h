#pragma once
#include <QString>

#include <optional>

namespace platform::owc {

// `Type` of a chart. 20, 27, 28, 39 and 40 are types of the component that are not drawn here: pies within
// pies, and what needs sizes of bubbles or stock prices.
inline constexpr int chChartTypeColumnClustered = 0;
inline constexpr int chChartTypeColumnStacked = 1;
inline constexpr int chChartTypeColumnStacked100 = 2;
inline constexpr int chChartTypeBarClustered = 3;
inline constexpr int chChartTypeBarStacked = 4;
inline constexpr int chChartTypeBarStacked100 = 5;
inline constexpr int chChartTypeLine = 6;
inline constexpr int chChartTypeLineMarkers = 7;
inline constexpr int chChartTypeLineStacked = 8;
inline constexpr int chChartTypeLineStackedMarkers = 9;
inline constexpr int chChartTypeLineStacked100 = 10;
inline constexpr int chChartTypeLineStacked100Markers = 11;
inline constexpr int chChartTypeSmoothLine = 12;
inline constexpr int chChartTypeSmoothLineMarkers = 13;
inline constexpr int chChartTypeSmoothLineStacked = 14;
inline constexpr int chChartTypeSmoothLineStackedMarkers = 15;
inline constexpr int chChartTypeSmoothLineStacked100 = 16;
inline constexpr int chChartTypeSmoothLineStacked100Markers = 17;
inline constexpr int chChartTypePie = 18;
inline constexpr int chChartTypePieExploded = 19;
inline constexpr int chChartTypePieStacked = 20;
inline constexpr int chChartTypeScatterMarkers = 21;
inline constexpr int chChartTypeScatterSmoothLineMarkers = 22;
inline constexpr int chChartTypeScatterSmoothLine = 23;
inline constexpr int chChartTypeScatterLineMarkers = 24;
inline constexpr int chChartTypeScatterLine = 25;
inline constexpr int chChartTypeScatterLineFilled = 26;
inline constexpr int chChartTypeBubble = 27;
inline constexpr int chChartTypeBubbleLine = 28;
inline constexpr int chChartTypeArea = 29;
inline constexpr int chChartTypeAreaStacked = 30;
inline constexpr int chChartTypeAreaStacked100 = 31;
inline constexpr int chChartTypeDoughnut = 32;
inline constexpr int chChartTypeDoughnutExploded = 33;
inline constexpr int chChartTypeRadarLine = 34;
inline constexpr int chChartTypeRadarLineMarkers = 35;
inline constexpr int chChartTypeRadarLineFilled = 36;
inline constexpr int chChartTypeRadarSmoothLine = 37;
inline constexpr int chChartTypeRadarSmoothLineMarkers = 38;
inline constexpr int chChartTypeStockHLC = 39;
inline constexpr int chChartTypeStockOHLC = 40;
inline constexpr int chChartTypePolarMarkers = 41;
inline constexpr int chChartTypePolarLine = 42;
inline constexpr int chChartTypePolarLineMarkers = 43;
inline constexpr int chChartTypePolarSmoothLine = 44;
inline constexpr int chChartTypePolarSmoothLineMarkers = 45;

enum class ChartFamily { Column, Bar, Line, Area, Pie, Doughnut, Scatter, Radar, Polar };
enum class Stacking { None, Stacked, Percent };

/// What a type means to whoever draws it.
struct ChartKind {
  ChartFamily family = ChartFamily::Column;
  Stacking stacking = Stacking::None;
  bool lines = false;
  bool markers = false;
  bool smooth = false;
  bool filled = false;
  bool exploded = false;

  /// One colour for each category instead of each series.
  bool isRound() const { return family == ChartFamily::Pie || family == ChartFamily::Doughnut; }
  /// Drawn around a centre.
  bool isPolar() const { return family == ChartFamily::Radar || family == ChartFamily::Polar; }
  friend bool operator==(const ChartKind&, const ChartKind&) = default;
};

/// Nothing for a type that cannot be drawn, or that is none.
std::optional<ChartKind> chartKind(int type);
/// "ColumnClustered", "Line Markers"; empty for what is no type.
QString chartTypeName(int type);

}  // namespace platform::owc

#include "workspace/modChart.h"

#include "platform/dialogs/dialogs.h"
#include "shell/modErrorReport.h"
#include "shell/Present.h"
#include "shell/ShellValues.h"
#include "shell/Tolerate.h"
#include "workspace/ReportForm.h"
#include "workspace/WorkspaceValues.h"

namespace hourbook {

using namespace platform::owc;
using HoursByGroup = platform::scripting::Dictionary<double>;

namespace {

constexpr qint16 generationWithTypes = 9;

struct NamedType {
  const char* name;
  qint16 value;
};

// kept: 17, 39 and 40 have no name here, and 15 bears the name that would be 17's. So "Smoothline Stacked
// Markers" and the stock charts come out as clustered columns.
constexpr NamedType namedTypes[] = {
    {"ColumnClustered", chChartTypeColumnClustered},
    {"ColumnStacked", chChartTypeColumnStacked},
    {"ColumnStacked100%", chChartTypeColumnStacked100},
    {"BarClustered", chChartTypeBarClustered},
    {"BarStacked", chChartTypeBarStacked},
    {"BarStacked100%", chChartTypeBarStacked100},
    {"Line", chChartTypeLine},
    {"Line Markers", chChartTypeLineMarkers},
    {"Line Stacked", chChartTypeLineStacked},
    {"Line Stacked Markers", chChartTypeLineStackedMarkers},
    {"Line Stacked 100%", chChartTypeLineStacked100},
    {"Line Stacked 100% Markers", chChartTypeLineStacked100Markers},
    {"Smoothline", chChartTypeSmoothLine},
    {"Smoothline Markers", chChartTypeSmoothLineMarkers},
    {"Smoothline Stacked", chChartTypeSmoothLineStacked},
    {"Smoothline Stacked 100% Markers", chChartTypeSmoothLineStackedMarkers},
    {"Smoothline Stacked 100%", chChartTypeSmoothLineStacked100},
    {"Pie", chChartTypePie},
    {"Pie Exploded", chChartTypePieExploded},
    {"Pie Stacked", chChartTypePieStacked},
    {"Scatter Markers", chChartTypeScatterMarkers},
    {"Scatter Smoothline Markers", chChartTypeScatterSmoothLineMarkers},
    {"Scatter Smoothline", chChartTypeScatterSmoothLine},
    {"Scatter Line Markers", chChartTypeScatterLineMarkers},
    {"Scatter Line", chChartTypeScatterLine},
    {"Scatter Line Filled", chChartTypeScatterLineFilled},
    {"Bubble", chChartTypeBubble},
    {"BubbleLine", chChartTypeBubbleLine},
    {"Area", chChartTypeArea},
    {"AreaStacked", chChartTypeAreaStacked},
    {"AreaStacked100%", chChartTypeAreaStacked100},
    {"Doughnut", chChartTypeDoughnut},
    {"Doughnut Exploded", chChartTypeDoughnutExploded},
    {"Radar Line", chChartTypeRadarLine},
    {"Radar Line Markers", chChartTypeRadarLineMarkers},
    {"Radar Line Filled", chChartTypeRadarLineFilled},
    {"Radar Smoothline", chChartTypeRadarSmoothLine},
    {"Radar Smoothline Markers", chChartTypeRadarSmoothLineMarkers},
    {"Polar Markers", chChartTypePolarMarkers},
    {"Polar Line", chChartTypePolarLine},
    {"Polar Line Markers", chChartTypePolarLineMarkers},
    {"Polar Smooth Line", chChartTypePolarSmoothLine},
    {"Polar Smooth Line Markers", chChartTypePolarSmoothLineMarkers},
};

void colourWhite(ChartSpace& chartSpace, Chart& chart) {
  chartSpace.Interior().setColor(chartWhite);
  chart.border().setColor(chartWhite);
  chart.border().setWeight(0);
  chart.Interior().setColor(chartWhite);
}

void setChosenType(Chart& chart) {
  if (workspaceValues().gOWCVersion != generationWithTypes) {
    chart.setType(chChartTypeColumnClustered);
    return;
  }
  platform::forms::ComboBox& types = present(reportForm().cmbChartType);
  if (types.Text().isEmpty()) {
    chart.setType(chChartTypeColumnClustered);
    types.setText(QStringLiteral("ColumnClustered"));
  } else {
    chart.setType(fncChartType(types.Text()));
  }
}

void setData(Chart& chart, const HoursByGroup& dictionary) {
  chart.SetData(chDimSeriesNames, chDataLiteral, phrases().LNGHOURS);
  chart.SetData(chDimCategories, chDataLiteral, dictionary.Keys());
  for (Series& series : chart.SeriesCollection())
    series.SetData(chDimValues, chDataLiteral, dictionary.Items());
}

}  // namespace

void LoadChartWithLiteral(ChartSpace& chartSpace, HoursByGroup& dictionary) try {
  subLog(QStringLiteral("Fixing graph with %1 items").arg(dictionary.Count()));
  chartSpace.Clear();
  Chart& chart = chartSpace.Charts().Add();
  chart.setHasLegend(true);
  colourWhite(chartSpace, chart);
  setChosenType(chart);
  setData(chart, dictionary);
} catch (const platform::Failure& failure) {
  subHandleError(failure, QStringLiteral("LoadChartWithLiteral"));
}

qint16 fncChartType(const QString& name) {
  for (const NamedType& type : namedTypes)
    if (name == QLatin1String(type.name)) return type.value;
  return chChartTypeColumnClustered;
}

void cmbChartType_Click() {
  const auto failed = tolerate([] {
    ReportForm& form = reportForm();
    const QString name = present(form.cmbChartType).Text();
    if (!name.isEmpty()) form.excThisWeek.Charts()[0].setType(fncChartType(name));
  });
  if (!failed) return;
  platform::dialogs::Dialogs::current().MsgBox(phrases().LNGERRCHART, platform::dialogs::vbCritical, gTitle);
}

}  // namespace hourbook

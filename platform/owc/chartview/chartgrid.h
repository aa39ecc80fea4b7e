#pragma once
#include "platform/owc/chartview/chartframe.h"

class QPainter;

namespace platform::owc {

/// The lines behind the series: one for each step of the values, and a radar's web.
void paintGrid(QPainter& painter, const ChartFigures& figures, const ChartFrame& frame,
               const ChartColors& colors);
/// The lines that the series stand on, painted over them.
void paintAxes(QPainter& painter, const ChartFigures& figures, const ChartFrame& frame,
               const ChartColors& colors);

}  // namespace platform::owc

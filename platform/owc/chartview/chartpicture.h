#pragma once
#include "platform/owc/chartspace.h"

#include <QImage>

namespace platform::owc {

/// The chart as it looks on paper: dark on white whatever the desktop's palette, with letters of twelve
/// pixels whatever the screen's resolution.
QImage chartOnPaper(const ChartSpace& space, const QSize& pixels);

/// Pictures of that kind, as PNG or GIF. There is one, for the whole life of the process.
const ChartPainter& paperPainter();

}  // namespace platform::owc

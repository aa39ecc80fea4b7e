#pragma once
#include <QColor>
#include <QFont>
#include <QPalette>

namespace platform::forms {

/// A colour in blue-green-red order; -1 is none and gives an invalid colour.
QColor colorFromBgr(qint32 color);
/// Black or white, whichever reads better on the background.
QColor readableOn(const QColor& background);

/// A font as the product names it, on today's desktop: "Tahoma" (and no name at all) means the desktop's own
/// interface font, 8 points (and no size) mean that font's own size, other sizes keep their proportion to 8.
/// Any other family is taken as it is named.
QFont fontFor(const QString& family, double points, const QFont& desktop);

}  // namespace platform::forms

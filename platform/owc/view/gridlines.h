#pragma once
#include <QTableView>

namespace platform::owc {

/// The lines between a table's cells, once more and in sight, where the style's own hardly differ from the
/// cells' ground (as they do on most dark desktops). Call it behind the table's own painting.
void paintGridOver(QTableView& view, const QRect& area);

/// The colour in which they are drawn; the style's own where that one can be seen.
QColor gridColor(const QTableView& view);

}  // namespace platform::owc

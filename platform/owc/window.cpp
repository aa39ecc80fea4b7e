#include "platform/owc/window.h"

#include "platform/owc/sheetdata.h"

#include <algorithm>

namespace platform::owc {

Window::Window(Spreadsheet& sheet, SheetDisplay& display)
    : DisplayHorizontalScrollBar("DisplayHorizontalScrollBar", true, display.horizontalScrollBar,
                                 [&sheet] { Q_EMIT sheet.layoutChanged(); }),
      DisplayVerticalScrollBar("DisplayVerticalScrollBar", true, display.verticalScrollBar,
                               [&sheet] { Q_EMIT sheet.layoutChanged(); }),
      EnableResize("EnableResize", true, display.resize),
      FreezePanes(
          "FreezePanes", true, display.freezePanes,
          [this, &display] {
            const CellRect& selected = sheet_->d_->selection;
            sheet_->freezeAt(display.freezePanes ? FrozenAt{selected.row, selected.column} : FrozenAt{});
          }),
      sheet_(&sheet) {}

std::optional<Range> Window::RangeFromPoint(int x, int y) const {
  if (x < 0 || y < 0) return {};
  const std::optional<CellRect> cell = sheet_->screen().cellAtPoint({x, y});
  if (!cell) return {};
  return Range(*sheet_, *cell);
}

std::optional<CellRect> PlainScreen::cellAtPoint(const QPoint& point) const {
  const CellRect viewable = sheet_->viewableRect();
  const SheetDisplay& display = sheet_->display();
  int x = point.x() - (display.rowHeadings ? headingWidth : 0);
  const int y = point.y() - topOfRow(viewable.row);
  if (x < 0 || y < 0) return {};
  const int row = viewable.row + y / rowHeight;
  if (row > viewable.lastRow()) return {};
  for (int column = viewable.column; column <= viewable.lastColumn(); ++column) {
    if (sheet_->columnHidden(column)) continue;
    const double width = sheet_->columnWidth(column);
    x -= width > 0 ? sheet_->widthInPixels(width) : columnWidth;
    if (x < 0) return CellRect{row, column, 1, 1};
  }
  return {};
}

/// A sheet that begins with row 1 shows that row in the place of the columns' letters.
int PlainScreen::topOfRow(int row) const {
  const CellRect viewable = sheet_->viewableRect();
  const bool letters = viewable.row > 1 && sheet_->display().columnHeadings;
  return (row - viewable.row) * rowHeight + (letters ? rowHeight : 0);
}

int PlainScreen::fittingWidth(int column) const {
  constexpr int character = 7, air = 12;
  qsizetype longest = 0;
  sheet_->d_->cells.forEachFilled({1, column, maxRows, 1}, [&](int row, int, const basic::Value&) {
    longest = std::max(longest, sheet_->text(row, column).size());
  });
  constexpr qsizetype widest = 255;
  return static_cast<int>(std::min(longest, widest)) * character + air;
}

}  // namespace platform::owc

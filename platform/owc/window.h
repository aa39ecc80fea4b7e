#pragma once
#include "platform/owc/property.h"
#include "platform/owc/range.h"

#include <QPoint>

namespace platform::owc {

/// What the sheet asks of the view that shows it, in pixels of the control. A sheet that nothing shows
/// answers as a view would that begins with its first viewable row, all rows and columns of one size.
class SheetScreen {
 public:
  virtual ~SheetScreen() = default;
  virtual std::optional<CellRect> cellAtPoint(const QPoint& point) const = 0;
  virtual int topOfRow(int row) const = 0;
  virtual int fittingWidth(int column) const = 0;
};

/// What surrounds the cells, for the view. The view draws no title bar, tool bar or tabs.
struct SheetDisplay {
  bool columnHeadings = true, rowHeadings = true;
  bool horizontalScrollBar = true, verticalScrollBar = true;
  bool workbookTabs = true, resize = true, gridlines = true;
  bool freezePanes = false;
};

/// The rows above and the columns left of this cell stay in sight.
struct FrozenAt {
  int row = 1, column = 1;
  friend bool operator==(const FrozenAt&, const FrozenAt&) = default;
};

/// `ActiveWindow` of generations 10 and 11.
class Window {
 public:
  Window(Spreadsheet& sheet, SheetDisplay& display);
  Property<bool> DisplayHorizontalScrollBar, DisplayVerticalScrollBar, EnableResize;
  /// Set to true: what lies above and left of the selection's first cell stays in sight. False: nothing.
  Property<bool> FreezePanes;
  /// The cell at a place of the control, in pixels; none outside of the cells.
  std::optional<Range> RangeFromPoint(int x, int y) const;

 private:
  Spreadsheet* sheet_;
};

/// The places of a sheet that nothing shows.
class PlainScreen : public SheetScreen {
 public:
  explicit PlainScreen(const Spreadsheet& sheet) : sheet_(&sheet) {}
  std::optional<CellRect> cellAtPoint(const QPoint& point) const override;
  int topOfRow(int row) const override;
  int fittingWidth(int column) const override;
  static constexpr int rowHeight = 20, columnWidth = 64, headingWidth = 32;

 private:
  const Spreadsheet* sheet_;
};

}  // namespace platform::owc

#pragma once
#include "platform/owc/spreadsheet.h"

#include <QPointer>
#include <QTableView>

namespace platform::owc {

class CellEditing;
class FrozenPanes;
class SheetDelegate;
class SheetModel;

/// Shows the viewable range of a sheet and follows its changes. The user moves the selection (the sheet is
/// told), copies (tab-separated, as spreadsheets exchange text) and sizes columns.
///
/// He changes no cell until `setEditable(true)`. Then he edits the cells that protection leaves open: by
/// typing, F2 or a double click; Enter moves as the sheet's MoveAfterReturn says, Tab and the arrows to the
/// side, Escape gives up. Cut, paste, Delete and undo work on the selection, Ctrl and an arrow go to the edge
/// of the data. Tab leaves the list at the end of a row, so that the keyboard reaches every control.
///
/// Row 1 is the header, which is always in sight; what else the sheet freezes stands in panes over the view,
/// counted from the first viewable row and column.
///
/// Fonts: the sheet's "Tahoma" of 8 points is shown as the desktop's own interface font in its own size (see
/// forms::fontFor). Widths: columns fit their contents when the view is first shown and when it first has
/// rows; the first visible column takes what is left of the width, as long as the user has not sized it. What
/// the user or the sheet has sized keeps its width over new contents. The sheet may be destroyed first; the
/// view is then empty.
class SheetView : public QTableView, public SheetScreen {
  Q_OBJECT
 public:
  explicit SheetView(Spreadsheet& sheet, QWidget* parent = nullptr);
  ~SheetView() override;

  void setEditable(bool editable);  // false at first
  bool isEditable() const { return editing_; }
  bool isBeingEdited() const;  // an editor is open

  /// Where a cell of the sheet stands on the view, in the view's own pixels; empty while it is not in sight.
  QRect cellGeometry(int row, int column) const;
  /// The cell of the sheet at a place of the view, if there is one.
  std::optional<CellRect> cellAt(const QPoint& place) const;
  /// The selected cells as text: rows by line breaks, cells by tabs, hidden columns left out.
  QString selectedText() const;

  void keyboardSearch(const QString&) override {}  // a typed letter is no wish to move

  // for the sheet
  std::optional<CellRect> cellAtPoint(const QPoint& point) const override;  // the header is row 1
  int topOfRow(int row) const override;
  int fittingWidth(int column) const override;

  // for the editor
  CellRect bodyRect() const;
  CellRect movingCell() const;  // the corner of the selection that Shift moves
  void extendSelection(const CellRect& from, const CellRect& to);
  void beginEdit(const QModelIndex& index);
  void endEdit();
  bool bringIntoSight(const CellRect& cell);  // false when the view does not show the cell
  QWidget* groundOf(const CellRect& cell);    // what the editor of the cell lies on
  QRect placeOf(const CellRect& cell) const;  // there; empty when the view does not show the cell
  QFont fontOf(const CellRect& cell) const;
  QString headingOf(const CellRect& cell) const;
  bool copySelection();
  void scrollTo(const QModelIndex& index, ScrollHint hint = EnsureVisible) override;
  void turnPage(bool down);

  /// How far the view is scrolled: x in pixels, y in rows.
  QPoint scrolledTo() const;
  /// As far as there is something to see there.
  void scrollBackTo(const QPoint& place);

 Q_SIGNALS:
  /// Cells stand elsewhere: scrolled, sized or another range. For what lies over the view.
  void cellsMoved();

 protected:
  void paintEvent(QPaintEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  void inputMethodEvent(QInputMethodEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseDoubleClickEvent(QMouseEvent* event) override;
  bool focusNextPrevChild(bool next) override;
  void showEvent(QShowEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;
  void changeEvent(QEvent* event) override;
  void updateGeometries() override;

 private:
  void setUpLook();
  void followFont();
  void followLayout();  // hidden columns, widths, title
  void followDisplay();
  void followReshape();
  void showSelection();  // the sheet's
  void tellSelection();  // the user's
  std::optional<CellRect> selectedRect() const;
  CellRect activeIn(const CellRect& rect) const;
  void noteUserWidth(int section, int oldWidth, int width);
  void restoreWidths();
  void fitColumns();
  int sectionFittingWidth(int section) const;
  int firstVisibleSection() const;
  void stretchFirst();

  QPointer<Spreadsheet> sheet_;
  SheetModel* model_;
  FrozenPanes* panes_ = nullptr;
  CellEditing* editing_ = nullptr;  // while the view may be edited
  QHash<int, int> userWidths_;      // by column of the sheet, in pixels
  QHash<int, double> sheetWidths_;  // the sheet's widths as last followed
  int shownColumn_ = 0, shownColumns_ = 0;
  bool following_ = false;  // what changes now is not the user's doing
  bool fitted_ = false;
};

}  // namespace platform::owc

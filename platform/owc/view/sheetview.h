#pragma once
#include "platform/owc/spreadsheet.h"

#include <QPointer>
#include <QTableView>

namespace platform::owc {

class SheetDelegate;
class SheetModel;

/// Shows the viewable range of a sheet and follows its changes. The user moves the selection (the sheet is
/// told), copies (tab-separated, as spreadsheets exchange text) and sizes columns; he changes no cell.
///
/// Fonts: the sheet's "Tahoma" of 8 points is shown as the desktop's own interface font in its own size (see
/// forms::fontFor). Widths: columns fit their contents when the view is first shown and when it first has
/// rows; the first visible column takes what is left of the width, as long as the user has not sized it. What
/// the user or the sheet has sized keeps its width over new contents. The sheet may be destroyed first; the
/// view is then empty.
class SheetView : public QTableView {
  Q_OBJECT
 public:
  explicit SheetView(Spreadsheet& sheet, QWidget* parent = nullptr);

  /// Where a cell of the sheet stands on the view, in the view's own pixels; empty while it is not in sight.
  QRect cellGeometry(int row, int column) const;
  /// The cell of the sheet at a place of the view, if there is one.
  std::optional<CellRect> cellAt(const QPoint& place) const;
  /// The selected cells as text: rows by line breaks, cells by tabs, hidden columns left out.
  QString selectedText() const;

  void keyboardSearch(const QString&) override {}  // a typed letter is no wish to move

 Q_SIGNALS:
  /// Cells stand elsewhere: scrolled, sized or another range. For what lies over the view.
  void cellsMoved();

 protected:
  void keyPressEvent(QKeyEvent* event) override;
  void showEvent(QShowEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;
  void changeEvent(QEvent* event) override;
  void updateGeometries() override;

 private:
  void setUpLook();
  void followFont();
  void followLayout();  // hidden columns, widths, title
  void followReshape();
  void showSelection();  // the sheet's
  void tellSelection();  // the user's
  std::optional<CellRect> selectedRect() const;
  void noteUserWidth(int section, int oldWidth, int width);
  void restoreWidths();
  void fitColumns();
  int fittingWidth(int section) const;
  int widthInPixels(double width) const;
  int firstVisibleSection() const;
  void stretchFirst();

  QPointer<Spreadsheet> sheet_;
  SheetModel* model_;
  QHash<int, int> userWidths_;      // by column of the sheet, in pixels
  QHash<int, double> sheetWidths_;  // the sheet's widths as last followed
  int shownColumn_ = 0, shownColumns_ = 0;
  bool following_ = false;  // what changes now is not the user's doing
  bool fitted_ = false;
};

}  // namespace platform::owc

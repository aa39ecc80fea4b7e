#pragma once
#include "platform/owc/window.h"

#include <QTableView>

#include <array>

namespace platform::owc {

class FrozenPane;
class SheetModel;
class SheetView;

/// The rows and columns that stay in sight while the rest scrolls: up to three small tables over the view,
/// with its model, selection and widths. Row 1 as the view's header needs none.
class FrozenPanes : public QObject {
  Q_OBJECT
 public:
  FrozenPanes(SheetView& view, SheetModel& model);
  /// Where the sheet's panes stand now, how large they are and how far scrolled.
  void follow(const FrozenAt& frozen);
  bool freezesRow(int row) const { return row < rows_; }  // of the table
  bool freezesColumn(int column) const { return column < columns_; }
  /// The pane that shows a cell; the view itself for all others.
  QTableView& paneOf(const QModelIndex& index) const;
  /// The cell of a pane at a place of the view's viewport.
  QModelIndex indexAt(const QPoint& place) const;
  /// What is in sight of a cell, on the view's viewport.
  QRect seenOf(const QModelIndex& index) const;
  /// What the panes leave of the view's viewport.
  QRect openPart() const;
  /// Scrolls the view so that no pane covers the cell.
  void uncover(const QModelIndex& index);

 private:
  enum Place { Rows, Columns, Corner };
  void show(Place place, const QSize& size);
  int widthOf(int columns) const;
  SheetView* view_;
  SheetModel* model_;
  std::array<FrozenPane*, 3> panes_{};  // by Place; made when first needed
  int rows_ = 0, columns_ = 0;          // of the table, frozen
  QSize size_;
};

}  // namespace platform::owc

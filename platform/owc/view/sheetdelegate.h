#pragma once
#include <QStyledItemDelegate>

namespace platform::owc {

/// Paints cells: interior colours fitted to the desktop's palette, right-to-left texts from the right, and a
/// tooltip for what the column cuts off (the whole text, as far as a screen shows it); the lines at a cell's
/// edges over the grid.
class SheetDelegate : public QStyledItemDelegate {
  Q_OBJECT
 public:
  using QStyledItemDelegate::QStyledItemDelegate;
  void paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const override;
  bool helpEvent(QHelpEvent* event, QAbstractItemView* view, const QStyleOptionViewItem& option,
                 const QModelIndex& index) override;
  /// The tooltip of a cell of that width, as text for QToolTip; "" when the cell shows everything.
  QString toolTip(const QStyleOptionViewItem& option, const QModelIndex& index) const;

 protected:
  void initStyleOption(QStyleOptionViewItem* option, const QModelIndex& index) const override;
};

}  // namespace platform::owc

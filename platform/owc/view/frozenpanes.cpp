#include "platform/owc/view/frozenpanes.h"

#include "platform/owc/view/gridlines.h"
#include "platform/owc/view/sheetmodel.h"
#include "platform/owc/view/sheetview.h"

#include <QCoreApplication>
#include <QHeaderView>
#include <QMouseEvent>
#include <QPaintEvent>
#include <QScrollBar>
#include <QWheelEvent>

#include <algorithm>

namespace platform::owc {

/// One of the tables. What the mouse does in it counts as done in the view.
class FrozenPane : public QTableView {
 public:
  explicit FrozenPane(SheetView& view) : QTableView(&view), view_(&view) {
    setModel(view.model());
    delete selectionModel();
    setSelectionModel(view.selectionModel());
    setItemDelegate(view.itemDelegate());
    setFocusPolicy(Qt::NoFocus);
    setFocusProxy(&view);
    setFrameShape(NoFrame);
    setEditTriggers(NoEditTriggers);
    setSelectionMode(view.selectionMode());
    setAutoScroll(false);
    setWordWrap(false);
    setTextElideMode(Qt::ElideRight);
    horizontalHeader()->hide();
    verticalHeader()->hide();
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setHorizontalScrollMode(view.horizontalScrollMode());
    setVerticalScrollMode(view.verticalScrollMode());
  }

  void takeSizes() {
    verticalHeader()->setMinimumSectionSize(view_->verticalHeader()->minimumSectionSize());
    verticalHeader()->setDefaultSectionSize(view_->verticalHeader()->defaultSectionSize());
    horizontalHeader()->setMinimumSectionSize(view_->horizontalHeader()->minimumSectionSize());
    for (int column = 0; column < model()->columnCount(); ++column) {
      if (isColumnHidden(column) != view_->isColumnHidden(column))
        setColumnHidden(column, view_->isColumnHidden(column));
      if (columnWidth(column) != view_->columnWidth(column))
        setColumnWidth(column, view_->columnWidth(column));
    }
    setShowGrid(view_->showGrid());
  }
  /// Scroll bars whose ends are those of the present size.
  void settle() {
    executeDelayedItemsLayout();
    updateGeometries();
  }

 protected:
  void paintEvent(QPaintEvent* event) override {
    QTableView::paintEvent(event);
    paintGridOver(*this, event->rect());
  }
  void mousePressEvent(QMouseEvent* event) override {
    view_->endEdit();
    QTableView::mousePressEvent(event);
  }
  void mouseDoubleClickEvent(QMouseEvent* event) override {
    QTableView::mouseDoubleClickEvent(event);
    if (event->button() == Qt::LeftButton) view_->beginEdit(indexAt(event->pos()));
  }
  void wheelEvent(QWheelEvent* event) override { QCoreApplication::sendEvent(view_->viewport(), event); }

 private:
  SheetView* view_;
};

FrozenPanes::FrozenPanes(SheetView& view, SheetModel& model) : QObject(&view), view_(&view), model_(&model) {}

int FrozenPanes::widthOf(int columns) const {
  int width = 0;
  for (int column = 0; column < columns; ++column)
    if (!view_->isColumnHidden(column)) width += view_->columnWidth(column);
  return width;
}

void FrozenPanes::follow(const FrozenAt& frozen) {
  const CellRect& body = model_->body();
  rows_ = std::clamp(frozen.row - body.row, 0, body.rows);
  columns_ = std::clamp(frozen.column - body.column, 0, body.columns);
  size_ = {widthOf(columns_), rows_ * view_->verticalHeader()->defaultSectionSize()};
  const QSize whole = view_->viewport()->size();
  const auto shown = [&](int width, int height) { return QSize(width, height).boundedTo(whole); };
  show(Rows, rows_ ? shown(whole.width(), size_.height()) : QSize());
  show(Columns, columns_ ? shown(size_.width(), whole.height()) : QSize());
  show(Corner, rows_ && columns_ ? shown(size_.width(), size_.height()) : QSize());
}

void FrozenPanes::show(Place place, const QSize& size) {
  FrozenPane*& pane = panes_[place];
  if (size.isEmpty()) {
    if (pane) pane->hide();
    return;
  }
  if (!pane) pane = new FrozenPane(*view_);
  pane->takeSizes();
  pane->setGeometry({view_->viewport()->pos(), size});
  pane->settle();
  pane->horizontalScrollBar()->setValue(place == Rows ? view_->horizontalScrollBar()->value() : 0);
  pane->verticalScrollBar()->setValue(place == Columns ? view_->verticalScrollBar()->value() : 0);
  pane->show();
  pane->raise();
}

QTableView& FrozenPanes::paneOf(const QModelIndex& index) const {
  const bool inRows = index.row() < rows_, inColumns = index.column() < columns_;
  FrozenPane* pane = inRows && inColumns ? panes_[Corner]
                     : inRows            ? panes_[Rows]
                     : inColumns         ? panes_[Columns]
                                         : nullptr;
  if (pane && !pane->isHidden()) return *pane;
  return *view_;
}

QModelIndex FrozenPanes::indexAt(const QPoint& place) const {
  for (const Place one : {Corner, Rows, Columns}) {
    const FrozenPane* pane = panes_[one];
    if (pane && !pane->isHidden() && pane->rect().contains(place)) return pane->indexAt(place);
  }
  return {};
}

QRect FrozenPanes::openPart() const {
  return view_->viewport()->rect().adjusted(size_.width(), size_.height(), 0, 0);
}

QRect FrozenPanes::seenOf(const QModelIndex& index) const {
  const int left = index.column() < columns_ ? 0 : size_.width();
  const int top = index.row() < rows_ ? 0 : size_.height();
  return paneOf(index).visualRect(index) & view_->viewport()->rect().adjusted(left, top, 0, 0);
}

void FrozenPanes::uncover(const QModelIndex& index) {
  const QRect cell = view_->visualRect(index);
  if (columns_ && index.column() >= columns_ && cell.left() < size_.width()) {
    QScrollBar* bar = view_->horizontalScrollBar();
    bar->setValue(bar->value() - (size_.width() - cell.left()));
  }
  if (rows_ && index.row() >= rows_ && cell.top() < size_.height()) {
    const int height = view_->verticalHeader()->defaultSectionSize();
    QScrollBar* bar = view_->verticalScrollBar();  // counts rows
    bar->setValue(bar->value() - (size_.height() - cell.top() + height - 1) / height);
  }
}

}  // namespace platform::owc

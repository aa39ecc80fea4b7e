#include "workspace/FlowLayout.h"

#include <QSpacerItem>
#include <QStyle>
#include <QWidget>

namespace hourbook {

FlowLayout::~FlowLayout() {
  while (QLayoutItem* item = takeAt(0)) delete item;
}

void FlowLayout::addLayout(QLayout* layout) {
  addChildLayout(layout);
  addItem(layout);
}

void FlowLayout::addStretch() {
  addItem(new QSpacerItem(0, 0, QSizePolicy::Expanding, QSizePolicy::Minimum));
}

QLayoutItem* FlowLayout::takeAt(int index) {
  if (index < 0 || index >= count()) return nullptr;
  QLayoutItem* item = items_.takeAt(index);
  // A layout that still had this one for its parent would ask to be taken out again when it is deleted.
  if (QLayout* layout = item->layout(); layout && layout->parent() == this) layout->setParent(nullptr);
  return item;
}

int FlowLayout::gap() const {
  if (spacing() >= 0) return spacing();
  const QWidget* parent = parentWidget();
  return parent ? parent->style()->pixelMetric(QStyle::PM_LayoutHorizontalSpacing, nullptr, parent) : 6;
}

QList<FlowLayout::Row> FlowLayout::rowsFor(int width) const {
  QList<Row> rows{Row{}};
  bool stretched = false;
  for (QLayoutItem* item : items_) {
    const bool stretch = item->spacerItem() != nullptr;
    if (item->isEmpty() && !stretch) continue;
    const QSize size = item->sizeHint();
    const int needed = rows.last().items.isEmpty() || stretch ? size.width() : size.width() + gap();
    if (!rows.last().items.isEmpty() && rows.last().width + needed > width) {
      rows.append(Row{});
      rows.last().atFarEnd = stretched;
    }
    Row& row = rows.last();
    row.width += row.items.isEmpty() || stretch ? size.width() : size.width() + gap();
    row.height = qMax(row.height, size.height());
    row.items.append(item);
    stretched = stretched || stretch;
  }
  return rows;
}

void FlowLayout::placeRow(const Row& row, const QRect& area, int top) const {
  int left = area.left() + (row.atFarEnd ? qMax(0, area.width() - row.width) : 0);
  bool first = true;
  for (QLayoutItem* item : row.items) {
    if (item->spacerItem()) {
      left += qMax(0, area.width() - row.width);
      continue;
    }
    if (!first) left += gap();
    first = false;
    const QSize size = item->sizeHint().boundedTo(QSize(area.width(), row.height));
    QRect place(QPoint(left, top + row.height - size.height()), size);
    const Qt::LayoutDirection direction =
        parentWidget() ? parentWidget()->layoutDirection() : Qt::LeftToRight;
    item->setGeometry(QStyle::visualRect(direction, area, place));
    left += size.width();
  }
}

int FlowLayout::arrange(const QRect& rect, bool place) const {
  const QMargins margins = contentsMargins();
  const QRect area = rect.marginsRemoved(margins);
  int top = area.top();
  for (const Row& row : rowsFor(area.width())) {
    if (row.items.isEmpty()) continue;
    if (top > area.top()) top += gap();
    if (place) placeRow(row, area, top);
    top += row.height;
  }
  return top - rect.top() + margins.bottom();
}

void FlowLayout::setGeometry(const QRect& rect) {
  QLayout::setGeometry(rect);
  arrange(rect, true);
}

QSize FlowLayout::sizeHint() const {
  const QList<Row> rows = rowsFor(QLAYOUTSIZE_MAX);
  return QSize(rows.first().width, rows.first().height).grownBy(contentsMargins());
}

QSize FlowLayout::minimumSize() const {
  QSize size;
  for (const QLayoutItem* item : items_)
    if (!item->isEmpty()) size = size.expandedTo(item->minimumSize());
  return size.grownBy(contentsMargins());
}

}  // namespace hourbook

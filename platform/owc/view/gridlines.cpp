#include "platform/owc/view/gridlines.h"

#include <QHeaderView>
#include <QPainter>
#include <QStyle>

#include <cmath>

namespace platform::owc {

namespace {

constexpr double leastDifference = 0.12;  // of lightness, 0 to 1
constexpr double shareOfText = 0.28;      // of our own colour

QColor styleColor(const QTableView& view) {
  QStyleOptionViewItem option;
  option.initFrom(&view);
  const int hint = view.style()->styleHint(QStyle::SH_Table_GridLineColor, &option, &view);
  return QColor::fromRgb(static_cast<QRgb>(hint));
}

bool differs(const QColor& one, const QColor& other) {
  return std::abs(one.lightnessF() - other.lightnessF()) >= leastDifference;
}

QColor mixed(const QColor& ground, const QColor& text) {
  const auto part = [](float a, float b) { return static_cast<float>(a + (b - a) * shareOfText); };
  return QColor::fromRgbF(part(ground.redF(), text.redF()), part(ground.greenF(), text.greenF()),
                          part(ground.blueF(), text.blueF()));
}

}  // namespace

QColor gridColor(const QTableView& view) {
  const QColor ground = view.palette().color(QPalette::Base);
  const QColor usual = styleColor(view);
  return differs(usual, ground) ? usual : mixed(ground, view.palette().color(QPalette::Text));
}

void paintGridOver(QTableView& view, const QRect& area) {
  if (!view.showGrid() || !view.model() || view.model()->rowCount() == 0) return;
  const QColor color = gridColor(view);
  if (color == styleColor(view)) return;
  const int columns = view.model()->columnCount();
  const int last = view.model()->rowCount() - 1;
  const int bottom = std::min(area.bottom(), view.rowViewportPosition(last) + view.rowHeight(last) - 1);
  QPainter painter(view.viewport());
  painter.setPen(color);
  const int firstRow = std::max(0, view.rowAt(area.top()));
  for (int row = firstRow; row <= last; ++row) {
    const int y = view.rowViewportPosition(row) + view.rowHeight(row) - 1;
    if (y > area.bottom()) break;
    const QHeaderView& header = *view.horizontalHeader();
    const int width = std::min(header.length() - header.offset(), view.viewport()->width());
    const int left = view.isRightToLeft() ? view.viewport()->width() - width : 0;
    painter.drawLine(left, y, left + width - 1, y);
  }
  for (int column = 0; column < columns; ++column) {
    if (view.isColumnHidden(column)) continue;
    int x = view.columnViewportPosition(column);
    if (!view.isRightToLeft()) x += view.columnWidth(column) - 1;
    if (x >= area.left() && x <= area.right()) painter.drawLine(x, area.top(), x, bottom);
  }
}

}  // namespace platform::owc

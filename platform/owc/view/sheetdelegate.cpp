#include "platform/owc/view/sheetdelegate.h"

#include "platform/forms/widgets/look.h"
#include "platform/owc/view/sheetmodel.h"

#include <QAbstractItemView>
#include <QHelpEvent>
#include <QPainter>
#include <QToolTip>

#include <algorithm>

namespace platform::owc {

namespace {

/// White and the grey of classic buttons are what a sheet of its time took for "no colour" and "a heading's
/// colour". They follow the desktop, so that a dark one stays dark; every other colour is shown as it is.
QBrush fittedInterior(const QBrush& interior, const QPalette& palette) {
  const QColor classicButton(236, 233, 216);
  if (interior.style() == Qt::NoBrush || interior.color() == QColor(Qt::white)) return {};
  if (interior.color() == classicButton) return palette.brush(QPalette::Window);
  return interior;
}

QPen penOf(const BorderLine& line) {
  static const QHash<LineStyle, Qt::PenStyle> styles{
      {LineStyle::Solid, Qt::SolidLine}, {LineStyle::Dash, Qt::DashLine}, {LineStyle::Dot, Qt::DotLine}};
  constexpr int hairlineAndThin = 2;
  const int width = line.weight <= hairlineAndThin ? 1 : line.weight - 1;
  return {forms::colorFromBgr(line.color), static_cast<qreal>(width), styles.value(line.style), Qt::FlatCap};
}

/// What a tooltip can show without filling the screen.
QString bounded(QString text) {
  constexpr qsizetype mostLetters = 2000, mostLines = 25;
  qsizetype end = std::min(text.size(), mostLetters), line = 0;
  for (qsizetype at = text.indexOf(u'\n'); at >= 0 && at < end; at = text.indexOf(u'\n', at + 1))
    if (++line == mostLines) end = at;
  if (end == text.size()) return text;
  if (text[end - 1].isHighSurrogate()) --end;
  text.truncate(end);
  return text.append(u'\u2026');
}

void paintBorders(QPainter& painter, const QRect& cell, const CellFormat& format) {
  const std::pair<Edge, QLine> edges[] = {{Edge::Left, {cell.topLeft(), cell.bottomLeft()}},
                                          {Edge::Top, {cell.topLeft(), cell.topRight()}},
                                          {Edge::Right, {cell.topRight(), cell.bottomRight()}},
                                          {Edge::Bottom, {cell.bottomLeft(), cell.bottomRight()}}};
  painter.save();
  for (const auto& [edge, place] : edges) {
    if (format.border(edge).style == LineStyle::None) continue;
    painter.setPen(penOf(format.border(edge)));
    painter.drawLine(place);
  }
  painter.restore();
}

}  // namespace

void SheetDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option,
                          const QModelIndex& index) const {
  QStyledItemDelegate::paint(painter, option, index);
  if (const auto* model = qobject_cast<const SheetModel*>(index.model()))
    paintBorders(*painter, option.rect, model->formatAt(index));
}

void SheetDelegate::initStyleOption(QStyleOptionViewItem* option, const QModelIndex& index) const {
  QStyledItemDelegate::initStyleOption(option, index);
  option->backgroundBrush = fittedInterior(option->backgroundBrush, option->palette);
  if (option->backgroundBrush.style() != Qt::NoBrush)
    option->palette.setColor(QPalette::Text, forms::readableOn(option->backgroundBrush.color()));
  // A text decides its own direction; the alignment told by the sheet is left and right as one sees them.
  option->displayAlignment |= Qt::AlignAbsolute;
  if (option->text.isRightToLeft()) {
    option->direction = Qt::RightToLeft;
    if (option->displayAlignment & Qt::AlignLeft)
      option->displayAlignment = (option->displayAlignment & ~Qt::AlignLeft) | Qt::AlignRight;
  }
}

QString SheetDelegate::toolTip(const QStyleOptionViewItem& option, const QModelIndex& index) const {
  QStyleOptionViewItem shown = option;
  initStyleOption(&shown, index);
  QString whole = index.data(SheetModel::wholeTextRole).toString();
  const int needed = sizeHint(option, index).width();
  if (needed <= option.rect.width() && whole == shown.text) return {};
  // As plain text, whatever it looks like, with its line breaks.
  whole.replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
  whole.replace(u'\r', u'\n');
  return QStringLiteral("<p style='white-space:pre-wrap'>%1</p>").arg(bounded(whole).toHtmlEscaped());
}

bool SheetDelegate::helpEvent(QHelpEvent* event, QAbstractItemView* view, const QStyleOptionViewItem& option,
                              const QModelIndex& index) {
  if (event->type() != QEvent::ToolTip) return QStyledItemDelegate::helpEvent(event, view, option, index);
  QToolTip::showText(event->globalPos(), index.isValid() ? toolTip(option, index) : QString(),
                     view->viewport(), option.rect);
  return true;
}

}  // namespace platform::owc

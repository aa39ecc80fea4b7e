#include "platform/owc/chartview/chartframe.h"

#include <QFontMetricsF>

#include <algorithm>
#include <cmath>

namespace platform::owc {

namespace {

bool isFlat(const ChartKind& kind) {
  const bool points = kind.lines || kind.markers;
  return points && !kind.filled;
}

/// Lines and points are thin: their spot is in the pure colour.
ChartSwatch swatchFor(const ChartKind& kind, const QRectF& place, qsizetype index,
                      const ChartColors& colors) {
  const QColor fill = colors.fill(index);
  return {place, fill, isFlat(kind) ? fill : colors.outline(index)};
}

QStringList entriesOf(const ChartFigures& figures) {
  const QStringList& entries = figures.kind.isRound() ? figures.categories : figures.names;
  const bool empty =
      std::all_of(entries.begin(), entries.end(), [](const QString& s) { return s.isEmpty(); });
  return empty ? QStringList() : entries;
}

}  // namespace

QRectF addLegend(ChartFrame& frame, const ChartFigures& figures, const QRectF& room, const QFont& font,
                 const ChartColors& colors) {
  constexpr double mostPart = 0.3, leastPlot = 8;  // of the width; in lines of text
  const QFontMetricsF metrics(font);
  const QStringList entries = figures.legend ? entriesOf(figures) : QStringList();
  const double line = std::ceil(metrics.height() * 1.25), spot = std::round(metrics.height() * 0.7);
  const double gap = metrics.averageCharWidth();
  double widest = 0;
  for (const QString& entry : entries) widest = std::max(widest, metrics.horizontalAdvance(entry));
  const double textWidth = std::min(std::ceil(widest), room.width() * mostPart);
  const double width = 2 * gap + spot + gap + textWidth;
  const auto rows = static_cast<qsizetype>(room.height() / line);
  if (entries.isEmpty() || rows < 1 || room.width() - width < leastPlot * metrics.height()) return room;

  const bool all = entries.size() <= rows;
  const qsizetype shown = all ? entries.size() : rows - 1;
  const double left = room.right() - width + 2 * gap;
  double top = room.center().y() - line * static_cast<double>(all ? shown : rows) / 2;
  const auto addText = [&](qsizetype index, const QString& text) {
    const QRectF place(left + spot + gap, top, textWidth, line);
    frame.texts.append({ChartText::Part::Legend, index, metrics.elidedText(text, Qt::ElideRight, textWidth),
                        place, colors.text(), Qt::AlignLeft | Qt::AlignVCenter});
    top += line;
  };
  for (qsizetype i = 0; i < shown; ++i) {
    const QRectF place(left, std::round(top + (line - spot) / 2), spot, spot);
    frame.swatches.append(swatchFor(figures.kind, place, i, colors));
    addText(i, entries[i]);
  }
  if (!all) addText(shown, u'+' + QString::number(entries.size() - shown));
  return room.adjusted(0, 0, -width, 0);
}

}  // namespace platform::owc

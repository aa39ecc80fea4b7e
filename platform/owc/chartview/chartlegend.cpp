#include "platform/owc/chartview/chartframe.h"

#include <QFontMetricsF>
#include <QtMath>

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

/// What the legend is laid out with.
class Legend {
 public:
  Legend(ChartFrame& frame, const ChartFigures& figures, const QFont& font, const ChartColors& colors)
      : frame_(frame), kind_(figures.kind), entries_(entriesOf(figures)), metrics_(font), colors_(colors) {}

  /// Beside the plot or, where that takes less from it, in one line above. What is round has width to spare.
  QRectF layOut(const QRectF& room) {
    const double sideWidth = widthOf(beside(room));
    const bool fitsAbove =
        room.height() - line_ > leastAbove * metrics_.height() && lineWidth() < room.width();
    const bool above =
        !kind_.isRound() && !kind_.isPolar() && fitsAbove && line_ / room.height() < sideWidth / room.width();
    if (above) return layOutAbove(room);
    const bool fitsBeside =
        room.height() >= line_ && room.width() - sideWidth >= leastBeside * metrics_.height();
    return fitsBeside ? layOutBeside(room) : room;
  }

 private:
  static constexpr double leastBeside = 8, leastAbove = 8;  // of the plot, in lines of text

  /// The room of the texts beside the plot.
  double beside(const QRectF& room) const {
    constexpr double mostPart = 0.3;  // of the width
    double widest = 0;
    for (const QString& entry : entries_) widest = std::max(widest, metrics_.horizontalAdvance(entry));
    return std::min(std::ceil(widest), room.width() * mostPart);
  }
  /// Of an entry with the gap before it.
  double widthOf(double text) const { return 2 * gap_ + spot_ + gap_ + text; }
  double lineWidth() const {
    double width = 0;
    for (const QString& entry : entries_) width += widthOf(std::ceil(metrics_.horizontalAdvance(entry)));
    return width;
  }

  QRectF layOutAbove(const QRectF& room) {
    double left = room.right() - lineWidth();
    for (qsizetype i = 0; i < entries_.size(); ++i) {
      const double width = std::ceil(metrics_.horizontalAdvance(entries_[i]));
      addEntry(i, QPointF(left + 2 * gap_, room.top()), width);
      left += widthOf(width);
    }
    return room.adjusted(0, line_, 0, 0);
  }

  /// A pie leaves room for more than one column; the entries run down each of them.
  QRectF layOutBeside(const QRectF& room) {
    const double textWidth = beside(room), columnWidth = widthOf(textWidth);
    const double spare = kind_.isRound() ? room.width() - room.height() : 0;
    const qsizetype count = entries_.size(), most = std::max<qsizetype>(1, qFloor(spare / columnWidth));
    const qsizetype fullRows = std::max<qsizetype>(1, qFloor(room.height() / line_));
    const qsizetype columns = std::min(most, upTo(count, fullRows));
    const bool all = count <= columns * fullRows;
    const qsizetype rows = all ? upTo(count, columns) : fullRows;
    const qsizetype shown = all ? count : columns * rows - 1;
    const double left = room.right() - columnWidth * static_cast<double>(columns) + 2 * gap_;
    const double top = room.center().y() - line_ * static_cast<double>(rows) / 2;
    const auto placeOf = [&](qsizetype i) {
      return QPointF(left + columnWidth * static_cast<double>(i / rows),
                     top + line_ * static_cast<double>(i % rows));
    };
    for (qsizetype i = 0; i < shown; ++i) addEntry(i, placeOf(i), textWidth);
    if (!all) addText(shown, u'+' + QString::number(count - shown), placeOf(shown), textWidth);
    return room.adjusted(0, 0, -columnWidth * static_cast<double>(columns), 0);
  }
  /// How many parts of a size it takes to hold a number of things.
  static qsizetype upTo(qsizetype things, qsizetype size) { return (things + size - 1) / size; }

  void addEntry(qsizetype index, const QPointF& place, double textWidth) {
    const QRectF spot(place.x(), std::round(place.y() + (line_ - spot_) / 2), spot_, spot_);
    frame_.swatches.append(swatchFor(kind_, spot, index, colors_));
    addText(index, entries_[index], place, textWidth);
  }
  void addText(qsizetype index, const QString& text, const QPointF& place, double width) {
    frame_.texts.append({ChartText::Part::Legend, index, metrics_.elidedText(text, Qt::ElideRight, width),
                         QRectF(place.x() + spot_ + gap_, place.y(), width, line_), colors_.text(),
                         Qt::AlignLeft | Qt::AlignVCenter});
  }

  ChartFrame& frame_;
  const ChartKind& kind_;
  const QStringList entries_;
  const QFontMetricsF metrics_;
  const ChartColors& colors_;
  const double line_ = std::ceil(metrics_.height() * 1.25);
  const double spot_ = std::round(metrics_.height() * 0.7);
  const double gap_ = metrics_.averageCharWidth();
};

/// A pie is as wide as it is high: the legend beside it comes along to it.
QRectF drawnTogether(ChartFrame& frame, const QRectF& room) {
  const double spare = (room.width() - room.height()) / 2;
  if (frame.swatches.isEmpty() || spare <= 0) return room;
  for (ChartSwatch& swatch : frame.swatches) swatch.place.translate(-spare, 0);
  for (ChartText& text : frame.texts) text.place.translate(-spare, 0);
  return room.adjusted(spare, 0, -spare, 0);
}

}  // namespace

QRectF addLegend(ChartFrame& frame, const ChartFigures& figures, const QRectF& room, const QFont& font,
                 const ChartColors& colors) {
  if (!figures.legend || entriesOf(figures).isEmpty()) return room;
  const QRectF rest = Legend(frame, figures, font, colors).layOut(room);
  return figures.kind.isRound() ? drawnTogether(frame, rest) : rest;
}

}  // namespace platform::owc

#include "platform/owc/borders.h"

#include "platform/basic/failure.h"
#include "platform/owc/sheetdata.h"

#include <span>

namespace platform::owc {

namespace {

struct EdgeNumber {
  int number;
  Edge edge;
};
constexpr EdgeNumber oldEdges[] = {{ssEdgeRight, Edge::Right}, {ssEdgeTop, Edge::Top}};
constexpr EdgeNumber newEdges[] = {{xlEdgeLeft, Edge::Left},
                                   {xlEdgeTop, Edge::Top},
                                   {xlEdgeBottom, Edge::Bottom},
                                   {xlEdgeRight, Edge::Right}};

struct StyleNumber {
  int number;
  LineStyle style;
};
constexpr StyleNumber oldStyles[] = {
    {ssLineNone, LineStyle::None}, {ssLineSolid, LineStyle::Solid}, {ssLineDash, LineStyle::Dash}};
constexpr StyleNumber newStyles[] = {{xlLineStyleNone, LineStyle::None},
                                     {xlContinuous, LineStyle::Solid},
                                     {xlDash, LineStyle::Dash},
                                     {xlDot, LineStyle::Dot}};

std::span<const StyleNumber> stylesOf(bool generation9) {
  return generation9 ? std::span<const StyleNumber>(oldStyles) : newStyles;
}

[[noreturn]] void refuse(const QString& text, int number) {
  throw Failure(sheetFailure, text.arg(number), sheetComponent);
}

constexpr int mediumWeight = 3;

}  // namespace

Borders::Borders(Spreadsheet& sheet, const CellRect& rect)
    : sheet_(&sheet), rect_(rect), edges_{Edge::Left, Edge::Top, Edge::Right, Edge::Bottom} {}

Borders Borders::Item(int edge) const {
  const bool old = sheet_->isGeneration9();
  for (const EdgeNumber& one : old ? std::span<const EdgeNumber>(oldEdges) : newEdges) {
    if (one.number != edge) continue;
    Borders item(*this);
    item.edges_ = {one.edge};
    CellRect& rect = item.rect_;
    if (one.edge == Edge::Left || one.edge == Edge::Right) {
      if (one.edge == Edge::Right) rect.column = rect.lastColumn();
      rect.columns = 1;
    } else {
      if (one.edge == Edge::Bottom) rect.row = rect.lastRow();
      rect.rows = 1;
    }
    return item;
  }
  refuse(QStringLiteral("A range has no border %1"), edge);
}

template <class Change>
void Borders::change(Change change) {
  Range(*sheet_, rect_).changeBorders([&](CellFormat& format) {
    for (const Edge edge : edges_) change(format.border(edge));
  });
}

void Borders::setColor(qint32 color) {
  change([&](BorderLine& line) {
    line.color = color;
    if (line.style == LineStyle::None) line.style = LineStyle::Solid;
  });
}

void Borders::setWeight(int weight) {
  const int own = !sheet_->isGeneration9() && weight == xlMedium ? mediumWeight : weight;
  if (own < xlHairline || own > xlThick) refuse(QStringLiteral("A border cannot have the weight %1"), weight);
  change([&](BorderLine& line) {
    line.weight = own;
    if (line.style == LineStyle::None) line.style = LineStyle::Solid;
  });
}

void Borders::setLineStyle(int style) {
  for (const StyleNumber& one : stylesOf(sheet_->isGeneration9())) {
    if (one.number != style) continue;
    change([&](BorderLine& line) { line.style = one.style; });
    return;
  }
  refuse(QStringLiteral("A border cannot have the line style %1"), style);
}

BorderLine Borders::first() const {
  return sheet_->format(rect_.row, rect_.column).border(edges_.first());
}

qint32 Borders::Color() const {
  return first().color;
}

int Borders::Weight() const {
  const int weight = first().weight;
  return !sheet_->isGeneration9() && weight == mediumWeight ? xlMedium : weight;
}

int Borders::LineStyle() const {
  for (const StyleNumber& one : stylesOf(sheet_->isGeneration9()))
    if (one.style == first().style) return one.number;
  return 0;
}

}  // namespace platform::owc

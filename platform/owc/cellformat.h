#pragma once
#include <QString>

#include <array>

namespace platform::owc {

enum class LineStyle { None, Solid, Dash, Dot };

/// The line at one edge of a cell.
struct BorderLine {
  LineStyle style = LineStyle::None;
  int weight = 2;    // 1 hairline, 2 thin, 3 medium, 4 thick
  qint32 color = 0;  // blue-green-red
  friend bool operator==(const BorderLine&, const BorderLine&) = default;
};
enum class Edge { Left, Top, Right, Bottom };

struct CellFormat {
  QString fontName = QStringLiteral("Tahoma");
  double fontSize = 8;
  bool bold = false;
  qint32 color = -1;            // interior, blue-green-red; -1 for none
  int horizontalAlignment = 0;  // 0 general, 1 left, 2 centre, 3 right
  bool locked = true;
  QString numberFormat = QStringLiteral("General");
  std::array<BorderLine, 4> borders{};  // by Edge
  const BorderLine& border(Edge edge) const { return borders[static_cast<std::size_t>(edge)]; }
  BorderLine& border(Edge edge) { return borders[static_cast<std::size_t>(edge)]; }
  friend bool operator==(const CellFormat&, const CellFormat&) = default;
};

}  // namespace platform::owc

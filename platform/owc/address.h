#pragma once
#include <QString>

#include <optional>

namespace platform::owc {

/// A rectangle of cells; rows and columns count from 1.
struct CellRect {
  int row = 1, column = 1, rows = 1, columns = 1;
  int lastRow() const { return row + rows - 1; }
  int lastColumn() const { return column + columns - 1; }
  bool contains(int r, int c) const { return r >= row && r <= lastRow() && c >= column && c <= lastColumn(); }
  bool intersects(const CellRect& other) const {
    return row <= other.lastRow() && other.row <= lastRow() && column <= other.lastColumn() &&
           other.column <= lastColumn();
  }
  friend bool operator==(const CellRect&, const CellRect&) = default;
};
inline constexpr int maxRows = 65536;
inline constexpr int maxColumns = 256;

/// The smallest rectangle that holds both.
CellRect unitedWith(const CellRect& a, const CellRect& b);
/// What both have in common; nullopt when that is nothing.
std::optional<CellRect> commonTo(const CellRect& a, const CellRect& b);

/// "A1", "a2:g199", "c:c", "1:1", "$B$3", in any case, corners in any order; nullopt when the text is no
/// address or leaves the sheet.
std::optional<CellRect> parseAddress(const QString& address);
/// "$A$2:$F$2", "$A$1"; "$C:$C" and "$1:$1" for whole columns and rows.
QString addressOf(const CellRect& rect);
/// "A" for 1, "IV" for 256.
QString columnLetters(int column);

}  // namespace platform::owc

#include "platform/owc/navigation.h"

#include "platform/owc/spreadsheet.h"

namespace platform::owc {

std::optional<CellRect> neighbour(const Spreadsheet& sheet, const CellRect& cell, Step step,
                                  const CellRect& bounds) {
  CellRect next{cell.row + step.down, cell.column + step.right, 1, 1};
  while (bounds.contains(next.row, next.column) && sheet.columnHidden(next.column) && step.right != 0)
    next.column += step.right;
  if (!bounds.contains(next.row, next.column)) return {};
  return next;
}

CellRect edgeOfData(const Spreadsheet& sheet, const CellRect& cell, Step step, const CellRect& bounds) {
  const auto filled = [&](const CellRect& at) { return !basic::IsEmpty(sheet.value(at.row, at.column)); };
  CellRect at = cell;
  std::optional<CellRect> next = neighbour(sheet, at, step, bounds);
  if (!next) return at;
  const bool alongStretch = filled(at) && filled(*next);
  for (; next; next = neighbour(sheet, at, step, bounds)) {
    if (alongStretch && !filled(*next)) return at;
    at = *next;
    if (!alongStretch && filled(at)) return at;
  }
  return at;
}

std::optional<CellRect> afterReturn(const Spreadsheet& sheet, const CellRect& cell, bool backwards,
                                    const CellRect& bounds) {
  if (!sheet.MoveAfterReturn) return {};
  const auto [down, right] = sheet.returnStep();
  const int sign = backwards ? -1 : 1;
  return neighbour(sheet, cell, {down * sign, right * sign}, bounds);
}

}  // namespace platform::owc

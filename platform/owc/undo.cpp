#include "platform/owc/undo.h"

namespace platform::owc {

void UndoStep::remember(const CellStore& cells, int row, int column) {
  const CellRect cell{row, column, 1, 1};
  rect_ = before_.isEmpty() ? cell : unitedWith(rect_, cell);
  before_.append({row, column, cells.value(row, column), cells.formula(row, column)});
}

QList<CellRect> UndoStep::cells() const {
  QList<CellRect> rects;
  for (const Before& cell : before_) rects.append({cell.row, cell.column, 1, 1});
  return rects;
}

void UndoStep::takeBack(CellStore& cells) const {
  for (const Before& cell : before_) {
    if (cell.formula.isEmpty())
      cells.setValue({cell.row, cell.column, 1, 1}, cell.value);
    else
      cells.setFormula(cell.row, cell.column, cell.formula);
  }
}

}  // namespace platform::owc

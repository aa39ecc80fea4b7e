#include "platform/owc/sorting.h"

#include "platform/basic/text.h"
#include "platform/owc/formulas.h"

#include <algorithm>

namespace platform::owc {

namespace {

struct SortedCell {
  basic::Value value;
  QString formula;
};

struct SortedRow {
  int row = 0;
  int rank = 3;  // 0 number, 1 text, 2 truth value, 3 blank
  double number = 0;
  QString text;
  std::map<int, SortedCell> cells;  // by column
};

bool comesBefore(const SortedRow& a, const SortedRow& b) {
  if (a.rank != b.rank) return a.rank < b.rank;
  if (a.rank == 1) return basic::compareText(a.text, b.text) < 0;
  return a.number < b.number;
}

void readKey(SortedRow& row, const basic::Value& value, const CellFormat& format) {
  if (const std::optional<double> number = numberOf(value, format)) {
    row.rank = 0;
    row.number = *number;
  } else if (const auto* truth = std::get_if<bool>(&value)) {
    row.rank = 2;
    row.number = *truth ? 1 : 0;
  } else if (const auto* text = std::get_if<QString>(&value)) {
    row.rank = 1;
    row.text = *text;
  }
}

}  // namespace

void sortRows(CellStore& cells, const CellRect& rect) {
  std::map<int, SortedRow> byRow;
  cells.forEachFilled(rect, [&](int row, int column, const basic::Value& value) {
    SortedRow& sorted = byRow[row];
    sorted.row = row;
    sorted.cells[column] = {value, cells.formula(row, column)};
    if (column == rect.column) readKey(sorted, value, cells.format(row, column));
  });
  QList<SortedRow> rows;
  for (auto& [number, row] : byRow) rows.append(std::move(row));
  std::stable_sort(rows.begin(), rows.end(), comesBefore);

  cells.setValue(rect, {});
  int target = rect.row;
  for (const SortedRow& row : rows) {
    for (const auto& [column, cell] : row.cells) {
      if (cell.formula.isEmpty())
        cells.setValue({target, column, 1, 1}, cell.value);
      else
        cells.setFormula(target, column, shiftedFormula(cell.formula, target - row.row, 0));
    }
    ++target;
  }
}

}  // namespace platform::owc

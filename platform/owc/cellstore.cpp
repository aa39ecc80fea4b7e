#include "platform/owc/cellstore.h"

#include <iterator>

namespace platform::owc {

const basic::Value& CellStore::value(int row, int column) const {
  static const basic::Value empty;
  const auto found = columns_.find(column);
  if (found == columns_.end()) return empty;
  const auto cell = found->second.cells.find(row);
  return cell == found->second.cells.end() ? empty : cell->second.value;
}

const CellFormat& CellStore::format(int row, int column) const {
  const auto found = columns_.find(column);
  if (found == columns_.end()) return formats_.first();
  return formats_[std::prev(found->second.runs.upper_bound(row))->second];
}

QString CellStore::formula(int row, int column) const {
  const auto found = formulas_.find({row, column});
  return found == formulas_.end() ? QString() : found->second.text;
}

void CellStore::setValue(const CellRect& rect, const basic::Value& value) {
  forgetFormulas(rect);
  if (basic::IsEmpty(value)) {
    for (auto at = columns_.lower_bound(rect.column); at != columns_.end() && at->first <= rect.lastColumn();
         ++at) {
      auto& cells = at->second.cells;
      cells.erase(cells.lower_bound(rect.row), cells.upper_bound(rect.lastRow()));
    }
    return;
  }
  for (int column = rect.column; column <= rect.lastColumn(); ++column) {
    auto& cells = columns_[column].cells;
    for (int row = rect.row; row <= rect.lastRow(); ++row) cells[row].value = value;
  }
}

void CellStore::setFormula(int row, int column, const QString& formula) {
  formulas_[{row, column}] = {formula, FormulaText::read(formula), false};
  columns_[column].cells[row].value = {};
}

bool CellStore::setResult(int row, int column, const basic::Value& value, bool failed) {
  CellFormula& formula = formulas_.at({row, column});
  basic::Value& held = columns_[column].cells[row].value;
  if (formula.failed == failed && held == value) return false;
  formula.failed = failed;
  held = value;
  return true;
}

void CellStore::forgetFormulas(const CellRect& rect) {
  auto at = formulas_.lower_bound({rect.row, 0});
  while (at != formulas_.end() && at->first.first <= rect.lastRow())
    at = rect.contains(at->first.first, at->first.second) ? formulas_.erase(at) : std::next(at);
}

void CellStore::forEachFilled(
    const CellRect& rect, const std::function<void(int row, int column, const basic::Value&)>& visit) const {
  for (auto column = columns_.lower_bound(rect.column);
       column != columns_.end() && column->first <= rect.lastColumn(); ++column) {
    const auto end = column->second.cells.upper_bound(rect.lastRow());
    for (auto cell = column->second.cells.lower_bound(rect.row); cell != end; ++cell)
      visit(cell->first, column->first, cell->second.value);
  }
}

std::optional<CellRect> CellStore::usedRect() const {
  std::optional<CellRect> used;
  for (const auto& [number, column] : columns_) {
    if (column.cells.empty()) continue;
    const int first = column.cells.begin()->first, last = column.cells.rbegin()->first;
    const CellRect ofColumn{first, number, last - first + 1, 1};
    used = used ? unitedWith(*used, ofColumn) : ofColumn;
  }
  return used;
}

void CellStore::changeFormat(const CellRect& rect, const std::function<void(CellFormat&)>& change) {
  QHash<FormatId, FormatId> changed;
  for (int number = rect.column; number <= rect.lastColumn(); ++number) {
    Column& column = columns_[number];
    splitRun(column, rect.row);
    splitRun(column, rect.lastRow() + 1);
    const auto end = column.runs.upper_bound(rect.lastRow());
    for (auto run = column.runs.find(rect.row); run != end; ++run) {
      auto known = changed.constFind(run->second);
      if (known == changed.cend()) {
        CellFormat format = formats_[run->second];
        change(format);
        known = changed.insert(run->second, formatId(format));
      }
      run->second = *known;
    }
    joinRuns(column, rect.row, rect.lastRow() + 1);
  }
}

std::optional<CellRect> CellStore::firstLocked(const CellRect& rect) const {
  std::optional<CellRect> first;
  for (int number = rect.column; number <= rect.lastColumn(); ++number) {
    const auto found = columns_.find(number);
    int row = rect.row;
    if (found == columns_.end()) {
      if (!formats_.first().locked) continue;
    } else {
      const auto& runs = found->second.runs;
      auto run = std::prev(runs.upper_bound(rect.row));
      while (run != runs.end() && run->first <= rect.lastRow() && !formats_[run->second].locked) ++run;
      if (run == runs.end() || run->first > rect.lastRow()) continue;
      row = std::max(rect.row, run->first);
    }
    if (!first || row < first->row) first = CellRect{row, number, 1, 1};
  }
  return first;
}

qsizetype CellStore::filled() const {
  qsizetype count = 0;
  for (const auto& [number, column] : columns_) count += static_cast<qsizetype>(column.cells.size());
  return count;
}

CellStore::FormatId CellStore::formatId(const CellFormat& format) {
  qsizetype at = formats_.indexOf(format);
  if (at < 0) {
    at = formats_.size();
    formats_.append(format);
  }
  return static_cast<FormatId>(at);
}

/// Makes a run begin at the row.
void CellStore::splitRun(Column& column, int row) {
  if (row <= maxRows) column.runs.emplace(row, std::prev(column.runs.upper_bound(row))->second);
}

/// Takes away the borders between equal runs that lie from the first to the last row.
void CellStore::joinRuns(Column& column, int firstRow, int lastRow) {
  auto run = column.runs.lower_bound(firstRow);
  while (run != column.runs.end() && run->first <= lastRow) {
    const bool needless = run != column.runs.begin() && std::prev(run)->second == run->second;
    run = needless ? column.runs.erase(run) : std::next(run);
  }
}

}  // namespace platform::owc

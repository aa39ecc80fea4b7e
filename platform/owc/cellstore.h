#pragma once
#include "platform/owc/spreadsheet.h"

#include <functional>
#include <map>

namespace platform::owc {

/// Contents and formats of a sheet, kept by column. Only filled cells take room; formats are runs of rows, so
/// that formatting a whole column or row costs no more than formatting one cell of each column.
class CellStore {
 public:
  const basic::Value& value(int row, int column) const;
  const CellFormat& format(int row, int column) const;

  /// Empty takes the cells away.
  void setValue(const CellRect& rect, const basic::Value& value);
  void changeFormat(const CellRect& rect, const std::function<void(CellFormat&)>& change);
  /// The first locked cell in reading order.
  std::optional<CellRect> firstLocked(const CellRect& rect) const;
  /// How many cells are filled.
  qsizetype filled() const;

 private:
  using FormatId = int;
  /// What a cell holds. A formula will stand beside the value that it came to.
  struct Cell {
    basic::Value value;
  };
  struct Column {
    std::map<int, Cell> cells;
    /// First row of each run, and its format; the last run reaches the end of the sheet. There is one from
    /// row 1.
    std::map<int, FormatId> runs{{1, 0}};
  };

  FormatId formatId(const CellFormat& format);
  static void splitRun(Column& column, int row);
  static void joinRuns(Column& column, int firstRow, int lastRow);

  std::map<int, Column> columns_;
  QList<CellFormat> formats_{CellFormat{}};  // each once; a sheet has a handful
};

}  // namespace platform::owc

#pragma once
#include "platform/basic/value.h"
#include "platform/owc/address.h"
#include "platform/owc/cellformat.h"
#include "platform/owc/formulatext.h"

#include <QHash>

#include <functional>
#include <map>

namespace platform::owc {

/// A formula beside the cell's value, which is what it came to.
struct CellFormula {
  QString text;  // with "="
  FormulaText read;
  bool failed = false;  // the value is the text of an error
};

/// Contents and formats of a sheet, kept by column. Only filled cells take room; formats are runs of rows, so
/// that formatting a whole column or row costs no more than formatting one cell of each column.
class CellStore {
 public:
  using Place = std::pair<int, int>;  // row, column

  const basic::Value& value(int row, int column) const;
  const CellFormat& format(int row, int column) const;
  QString formula(int row, int column) const;  // "" when there is none
  const std::map<Place, CellFormula>& formulas() const { return formulas_; }

  /// Empty takes the cells away. Formulas give way to the value.
  void setValue(const CellRect& rect, const basic::Value& value);
  /// The cell is empty until the formula has a result.
  void setFormula(int row, int column, const QString& formula);
  /// What the cell's formula came to. True when that is something new.
  bool setResult(int row, int column, const basic::Value& value, bool failed);
  void changeFormat(const CellRect& rect, const std::function<void(CellFormat&)>& change);
  /// The first locked cell in reading order.
  std::optional<CellRect> firstLocked(const CellRect& rect) const;
  /// How many cells are filled.
  qsizetype filled() const;
  /// Column by column. The cells may not change meanwhile.
  void forEachFilled(const CellRect& rect,
                     const std::function<void(int row, int column, const basic::Value&)>& visit) const;
  /// Around all filled cells.
  std::optional<CellRect> usedRect() const;

 private:
  using FormatId = int;
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
  void forgetFormulas(const CellRect& rect);

  std::map<int, Column> columns_;
  std::map<Place, CellFormula> formulas_;
  QList<CellFormat> formats_{CellFormat{}};  // each once; a sheet has a handful
};

}  // namespace platform::owc

#pragma once
#include "platform/owc/property.h"
#include "platform/owc/range.h"

namespace platform::owc {

/// `Enabled` keeps the user, and code, out of locked cells. Of the allowances the sheet acts on sorting and
/// on sizing columns by the user (`AllowSizingAllColumns`, `AllowFormattingColumns`); it offers no inserting
/// and deleting, and rows of one height, so the others are kept as told.
class Protection {
  bool columns_ = true, rows_ = true;

 public:
  Protection(Spreadsheet& sheet, Generation generation);
  bool Enabled = false;
  bool AllowDeletingColumns = false, AllowInsertingColumns = false, AllowInsertingRows = false;
  bool AllowFiltering = false, AllowSorting = false;
  Property<bool> AllowSizingAllColumns, AllowSizingAllRows;    // generation 9
  Property<bool> AllowFormattingColumns, AllowFormattingRows;  // generations 10 and 11
  bool userMaySizeColumns() const { return !Enabled || columns_; }
};

/// The one sheet of a spreadsheet.
class Worksheet {
 public:
  Worksheet(Spreadsheet& sheet, Generation generation) : Protection(sheet, generation), sheet_(&sheet) {}
  owc::Protection Protection;
  bool EnableAutoFilter = false;
  bool AutoFilterMode = false;  // set by Range::AutoFilter
  /// All formulas anew, also while calculation is manual; raises `Calculate` in generations 10 and 11.
  void Calculate();
  Range Columns() { return {*sheet_, {1, 1, maxRows, maxColumns}}; }
  Range Rows() { return {*sheet_, {1, 1, maxRows, maxColumns}}; }
  Range UsedRange();  // around all filled cells; A1 when there are none

 private:
  Spreadsheet* sheet_;
};

}  // namespace platform::owc

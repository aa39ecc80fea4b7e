#pragma once
#include "platform/basic/value.h"
#include "platform/owc/address.h"
#include "platform/owc/borders.h"
#include "platform/owc/cellformat.h"

#include <functional>

namespace platform::owc {

class Spreadsheet;

/// A range of the active sheet; a light handle that must not outlive its sheet. Writing a locked cell
/// (contents, format or lock) while protection is on is Failure 1004, for code as for the user; then no cell
/// of the range is changed. Hiding and sizing columns is always allowed. A change of a range is one signal,
/// however large. A member that the sheet's generation does not have fails with 438.
class Range {
 public:
  Range(Spreadsheet& sheet, CellRect rect) : sheet_(&sheet), rect_(rect) {}
  /// Of the first cell; an empty cell yields Empty, a formula its result or the text of its failure
  /// ("#DIV/0!", "#VALUE!", "#NAME?", "#REF!").
  basic::Value Value() const;
  /// Every cell of the range; Empty and Null clear. A text stays the text that it is: it is not read as a
  /// number, a date or a formula.
  void setValue(const basic::Value& value);
  QString Text() const;  // of the first cell, as shown
  /// Of the first cell, with its "="; a cell without one gives its contents as text.
  QString Formula() const;
  /// Every cell of the range, the references adapted to each; "" clears, a text without "=" is a value. In
  /// English form in every locale: "." in numbers, "," between arguments. What is no formula (a bracket that
  /// is not closed) is Failure 1004.
  void setFormula(const QString& formula);
  void Clear();  // contents and formats, the lock of the cells stays
  void ClearContents();
  void ClearFormats();  // the lock of the cells stays
  /// Its rows by their first cells, ascending: numbers, texts, truth values; blanks last. Numbers in texts
  /// count as numbers. On a protected sheet this needs `AllowSorting` and unlocked cells (Failure 1004).
  void Sort();
  /// Cell relative to the range, from 1; may lie outside of it, but not outside of the sheet (Failure 1004).
  Range Cells(int row, int column) const;
  Range Cells() const { return *this; }
  Range EntireColumn() const { return {*sheet_, {1, rect_.column, maxRows, rect_.columns}}; }
  Range EntireRow() const { return {*sheet_, {rect_.row, 1, rect_.rows, maxColumns}}; }
  QString Address() const { return addressOf(rect_); }
  int Row() const { return rect_.row; }
  int Column() const { return rect_.column; }
  int RowsCount() const { return rect_.rows; }
  int ColumnsCount() const { return rect_.columns; }
  int Count() const { return rect_.rows * rect_.columns; }
  /// Pixels from the control's upper edge to the range's, as scrolled now: negative or below the control
  /// when it is not in sight.
  int Top() const;
  void Select();
  /// The filled part of the range as an HTML table, texts escaped, hidden columns left out; "" when it holds
  /// nothing.
  QString HTMLData() const;

  void setFontName(const QString& name);
  void setFontSize(double points);
  void setFontBold(bool on);
  void setInteriorColor(qint32 color);
  qint32 InteriorColor() const;  // white where none is set
  owc::Borders Borders() { return {*sheet_, rect_}; }
  void setHAlignment(int alignment);  // generation 9: 0 left, 2 centre, 1 right
  int HAlignment() const;
  void setHorizontalAlignment(int alignment);  // generations 10 and 11: xlLeft, xlCenter, xlRight, xlGeneral
  int HorizontalAlignment() const;
  void setLocked(bool on);
  bool Locked() const { return format().locked; }
  /// "General", "Text", "General Date", "0", "0.00", "yyyy-mm-dd" and what else basic::Format knows; another
  /// is Failure 1004.
  void setNumberFormat(const QString& numberFormat);
  QString NumberFormat() const { return format().numberFormat; }
  CellFormat format() const;  // of the first cell
  void setEntireColumnHidden(bool hidden);
  bool EntireColumnHidden() const;  // all of them
  /// In the generation's own measure: pixels in generation 9, characters in the newer ones. 0 hides, as in
  /// the component; any other width shows.
  void setEntireColumnWidth(double width);
  void setColumnWidth(double width) { setEntireColumnWidth(width); }
  double ColumnWidth() const;  // of the first column; 0 while it is hidden or its width is the view's own
  void AutoFitColumns();       // generation 9
  void AutoFit();              // generations 10 and 11, on whole columns (1004 otherwise)
  void FreezePanes(int mode);  // generation 9: 4 what lies above and left of the range, 16 nothing
  void AutoFilter();           // on and off in turn; only while the sheet's EnableAutoFilter is on

  const CellRect& rect() const { return rect_; }

 private:
  friend class owc::Borders;
  template <class Change>
  void changeFormat(Change change);
  void changeBorders(const std::function<void(CellFormat&)>& change);
  void fitColumns();
  Spreadsheet* sheet_;
  CellRect rect_;
};

}  // namespace platform::owc

#pragma once
#include "platform/basic/value.h"

#include <QHash>
#include <QObject>
#include <QSet>

#include <memory>

namespace platform::owc {

enum class Generation { Office2000 = 9, OfficeXP = 10, Office2003 = 11 };

/// The component's one failure number: no such address, a locked cell, a value that a property cannot take.
inline constexpr qint32 sheetFailure = 1004;

inline constexpr int xlCalculationManual = -4135;
inline constexpr int xlCalculationAutomatic = -4105;

/// A rectangle of cells; rows and columns count from 1.
struct CellRect {
  int row = 1, column = 1, rows = 1, columns = 1;
  int lastRow() const { return row + rows - 1; }
  int lastColumn() const { return column + columns - 1; }
  bool contains(int r, int c) const { return r >= row && r <= lastRow() && c >= column && c <= lastColumn(); }
  friend bool operator==(const CellRect&, const CellRect&) = default;
};
inline constexpr int maxRows = 65536;
inline constexpr int maxColumns = 256;
/// "A1", "a2:g199", "c:c", "1:1", "$B$3", in any case, corners in any order; nullopt when the text is no
/// address or leaves the sheet.
std::optional<CellRect> parseAddress(const QString& address);
/// "$A$2:$F$2", "$A$1"; "$C:$C" and "$1:$1" for whole columns and rows.
QString addressOf(const CellRect& rect);
/// "A" for 1, "IV" for 256.
QString columnLetters(int column);

struct CellFormat {
  QString fontName = QStringLiteral("Tahoma");
  double fontSize = 8;
  bool bold = false;
  qint32 color = -1;            // interior, blue-green-red; -1 for none
  int horizontalAlignment = 0;  // 0 general, 1 left, 2 centre, 3 right
  bool locked = true;
  QString numberFormat = QStringLiteral("General");
  friend bool operator==(const CellFormat&, const CellFormat&) = default;
};

class Spreadsheet;

/// A range of the active sheet; a light handle that must not outlive its sheet. Writing a locked cell
/// (contents, format or lock) while protection is on is Failure 1004, for code as for the user; then no cell
/// of the range is changed. Hiding and sizing columns is always allowed. A change of a range is one signal,
/// however large.
class Range {
 public:
  Range(Spreadsheet& sheet, CellRect rect) : sheet_(&sheet), rect_(rect) {}
  /// Of the first cell; an empty cell yields Empty.
  basic::Value Value() const;
  /// Every cell of the range; Empty and Null clear. A text stays the text that it is: it is not read as a
  /// number, a date or a formula.
  void setValue(const basic::Value& value);
  QString Text() const;  // of the first cell, as shown
  void Clear();          // contents and formats, the lock of the cells stays
  void ClearContents();
  /// Cell relative to the range, from 1; may lie outside of it, but not outside of the sheet (Failure 1004).
  Range Cells(int row, int column) const;
  QString Address() const { return addressOf(rect_); }
  int Row() const { return rect_.row; }
  int Column() const { return rect_.column; }
  int RowsCount() const { return rect_.rows; }
  int ColumnsCount() const { return rect_.columns; }
  int Count() const { return rect_.rows * rect_.columns; }
  void Select();

  void setFontName(const QString& name);
  void setFontSize(double points);
  void setFontBold(bool on);
  void setInteriorColor(qint32 color);
  void setHorizontalAlignment(int alignment);
  void setLocked(bool on);
  void setNumberFormat(const QString& numberFormat);
  CellFormat format() const;  // of the first cell
  void setEntireColumnHidden(bool hidden);
  bool EntireColumnHidden() const;  // all of them
  /// In the generation's own measure: pixels in generation 9, characters in the newer ones. 0 hides, as in
  /// the component; any other width shows.
  void setEntireColumnWidth(double width);

  const CellRect& rect() const { return rect_; }

 private:
  template <class Change>
  void changeFormat(Change change);
  Spreadsheet* sheet_;
  CellRect rect_;
};

struct Protection {
  bool Enabled = false;
};

struct Worksheet {
  owc::Protection Protection;
};

/// `OWCn.Spreadsheet`: one engine for all generations, with one sheet. It needs no screen; a view follows it
/// through the signals below. `EnableEvents` false holds back only what the form would handle; the view's
/// signals always come.
class Spreadsheet : public QObject {
  Q_OBJECT
 public:
  explicit Spreadsheet(Generation generation = Generation::Office2003, QObject* parent = nullptr);
  ~Spreadsheet() override;
  Generation generation() const { return generation_; }

  owc::Range Range(const QString& address);  // Failure 1004 for what is no address
  owc::Range Cell(int row, int column) { return {*this, {row, column, 1, 1}}; }
  Worksheet ActiveSheet;
  /// What the user sees of the sheet, as the address text that was set; the whole sheet ("1:65536") at first.
  QString ViewableRange() const { return viewable_; }
  void setViewableRange(const QString& address);  // Failure 1004 for what is no address
  bool EnableEvents = true;
  bool EnableAutoCalculate = true;           // generation 9
  int Calculation = xlCalculationAutomatic;  // generations 10 and 11
  QString TitleBarCaption() const { return title_; }
  void setTitleBarCaption(const QString& text);
  owc::Range Selection();  // A1 at first

  // for the view
  CellRect viewableRect() const;
  CellRect selectionRect() const;
  basic::Value value(int row, int column) const;
  QString text(int row, int column) const;  // as shown
  CellFormat format(int row, int column) const;
  bool columnHidden(int column) const { return hidden_.contains(column); }
  double columnWidth(int column) const { return widths_.value(column, 0); }  // 0: the view's own

 Q_SIGNALS:
  void cellsChanged(const platform::owc::CellRect& rect);
  void layoutChanged();   // viewable range, hidden columns, widths, title
  void selectionMoved();  // by code or by the user

 private:
  friend class owc::Range;
  struct Data;
  void refuseLocked(const CellRect& rect) const;
  std::unique_ptr<Data> d_;
  Generation generation_;
  QString viewable_;
  QString title_;
  QSet<int> hidden_;
  QHash<int, double> widths_;
};

}  // namespace platform::owc

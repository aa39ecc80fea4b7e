#include "platform/owc/range.h"

#include "platform/basic/convert.h"
#include "platform/basic/failure.h"
#include "platform/basic/text.h"
#include "platform/owc/htmldata.h"
#include "platform/owc/sheetdata.h"
#include "platform/owc/sorting.h"

namespace platform::owc {

namespace {

[[noreturn]] void refuse(const QString& text) {
  throw Failure(sheetFailure, text, sheetComponent);
}

/// The format of a cleared cell.
void clearFormat(CellFormat& format) {
  const bool locked = format.locked;
  format = CellFormat{};
  format.locked = locked;
}

struct AlignmentNumber {
  int number, own;
};
constexpr AlignmentNumber oldAlignments[] = {{ssAlignLeft, 1}, {ssAlignCenter, 2}, {ssAlignRight, 3}};
constexpr AlignmentNumber newAlignments[] = {{xlGeneral, 0}, {xlLeft, 1}, {xlCenter, 2}, {xlRight, 3}};

template <std::size_t size>
int ownAlignment(const AlignmentNumber (&numbers)[size], int number) {
  for (const AlignmentNumber& one : numbers)
    if (one.number == number) return one.own;
  refuse(QStringLiteral("A cell cannot have the alignment %1").arg(number));
}

template <std::size_t size>
int alignmentNumber(const AlignmentNumber (&numbers)[size], int own) {
  for (const AlignmentNumber& one : numbers)
    if (one.own == own) return one.number;
  return numbers[0].number;
}

}  // namespace

// Contents

void Range::setValue(const basic::Value& value) {
  sheet_->refuseLocked(rect_);
  sheet_->changeContents(
      rect_, [&] { sheet_->d_->cells.setValue(rect_, basic::IsNull(value) ? basic::Value() : value); });
}

basic::Value Range::Value() const {
  return sheet_->value(rect_.row, rect_.column);
}

QString Range::Text() const {
  return sheet_->text(rect_.row, rect_.column);
}

QString Range::Formula() const {
  const QString formula = sheet_->formula(rect_.row, rect_.column);
  return formula.isEmpty() ? basic::CStr(Value()) : formula;
}

void Range::setFormula(const QString& formula) {
  if (!formula.startsWith(u'=')) {
    setValue(formula.isEmpty() ? basic::Value() : basic::Value(formula));
    return;
  }
  if (!FormulaText::read(formula).wellFormed) refuse(QStringLiteral("'%1' is no formula").arg(formula));
  sheet_->refuseLocked(rect_);
  sheet_->changeContents(rect_, [&] {
    for (int row = rect_.row; row <= rect_.lastRow(); ++row)
      for (int column = rect_.column; column <= rect_.lastColumn(); ++column)
        sheet_->d_->cells.setFormula(row, column,
                                     shiftedFormula(formula, row - rect_.row, column - rect_.column));
    if (!sheet_->calculatesItself()) sheet_->d_->formulas.calculateOnly(rect_);
  });
}

void Range::Clear() {
  sheet_->refuseLocked(rect_);
  sheet_->changeContents(rect_, [&] {
    sheet_->d_->cells.setValue(rect_, {});
    sheet_->d_->cells.changeFormat(rect_, clearFormat);
  });
}

void Range::ClearContents() {
  setValue({});
}

void Range::ClearFormats() {
  changeFormat(clearFormat);
}

void Range::Sort() {
  if (sheet_->ActiveSheet.Protection.Enabled && !sheet_->ActiveSheet.Protection.AllowSorting)
    refuse(QStringLiteral("The sheet is protected and does not allow sorting"));
  sheet_->refuseLocked(rect_);
  sheet_->changeContents(rect_, [&] { sortRows(sheet_->d_->cells, rect_); });
}

Range Range::Cells(int row, int column) const {
  const qint64 absoluteRow = qint64(rect_.row) + row - 1, absoluteColumn = qint64(rect_.column) + column - 1;
  if (absoluteRow < 1 || absoluteRow > maxRows || absoluteColumn < 1 || absoluteColumn > maxColumns)
    refuse(QStringLiteral("The cell (%1, %2) of %3 lies outside of the sheet")
               .arg(row)
               .arg(column)
               .arg(Address()));
  return {*sheet_, {static_cast<int>(absoluteRow), static_cast<int>(absoluteColumn), 1, 1}};
}

int Range::Top() const {
  return sheet_->screen().topOfRow(rect_.row);
}

void Range::Select() {
  sheet_->select(rect_, {rect_.row, rect_.column, 1, 1});
}

QString Range::HTMLData() const {
  const std::optional<CellRect> used = sheet_->d_->cells.usedRect();
  const std::optional<CellRect> filled = used ? commonTo(*used, rect_) : used;
  return filled ? htmlTable(*sheet_, *filled) : QString();
}

// Formats

template <class Change>
void Range::changeFormat(Change change) {
  sheet_->refuseLocked(rect_);
  sheet_->d_->cells.changeFormat(rect_, change);
  Q_EMIT sheet_->cellsChanged(rect_);
}

void Range::changeBorders(const std::function<void(CellFormat&)>& change) {
  changeFormat(change);
}

void Range::setFontName(const QString& name) {
  changeFormat([&](CellFormat& format) { format.fontName = name; });
}

void Range::setFontSize(double points) {
  if (!(points >= 1 && points <= 409)) refuse(QStringLiteral("A font cannot have the size %1").arg(points));
  changeFormat([&](CellFormat& format) { format.fontSize = points; });
}

void Range::setFontBold(bool on) {
  changeFormat([&](CellFormat& format) { format.bold = on; });
}

void Range::setInteriorColor(qint32 color) {
  changeFormat([&](CellFormat& format) { format.color = color; });
}

qint32 Range::InteriorColor() const {
  constexpr qint32 white = 0xFFFFFF;
  const qint32 color = format().color;
  return color < 0 ? white : color;
}

void Range::setHAlignment(int alignment) {
  requireMember(sheet_->isGeneration9(), "HAlignment");
  const int own = ownAlignment(oldAlignments, alignment);
  changeFormat([&](CellFormat& format) { format.horizontalAlignment = own; });
}

int Range::HAlignment() const {
  requireMember(sheet_->isGeneration9(), "HAlignment");
  return alignmentNumber(oldAlignments, format().horizontalAlignment);
}

void Range::setHorizontalAlignment(int alignment) {
  requireMember(!sheet_->isGeneration9(), "HorizontalAlignment");
  const int own = ownAlignment(newAlignments, alignment);
  changeFormat([&](CellFormat& format) { format.horizontalAlignment = own; });
}

int Range::HorizontalAlignment() const {
  requireMember(!sheet_->isGeneration9(), "HorizontalAlignment");
  return alignmentNumber(newAlignments, format().horizontalAlignment);
}

void Range::setLocked(bool on) {
  changeFormat([&](CellFormat& format) { format.locked = on; });
}

void Range::setNumberFormat(const QString& numberFormat) {
  if (numberFormat != QLatin1String("General") && numberFormat != QLatin1String("Text")) {
    try {  // what can't be shown must fail here and not while painting
      (void)basic::Format(basic::Value(1.5), numberFormat);
    } catch (const Failure&) {
      refuse(QStringLiteral("'%1' is no number format that the sheet knows").arg(numberFormat));
    }
  }
  changeFormat([&](CellFormat& format) { format.numberFormat = numberFormat; });
}

CellFormat Range::format() const {
  return sheet_->format(rect_.row, rect_.column);
}

// Columns and panes

void Range::setEntireColumnHidden(bool hidden) {
  for (int column = rect_.column; column <= rect_.lastColumn(); ++column) {
    if (hidden)
      sheet_->hidden_.insert(column);
    else
      sheet_->hidden_.remove(column);
  }
  Q_EMIT sheet_->layoutChanged();
}

bool Range::EntireColumnHidden() const {
  for (int column = rect_.column; column <= rect_.lastColumn(); ++column)
    if (!sheet_->columnHidden(column)) return false;
  return true;
}

void Range::setEntireColumnWidth(double width) {
  if (!(width >= 0)) refuse(QStringLiteral("A column cannot have the width %1").arg(width));
  if (width > 0)
    for (int column = rect_.column; column <= rect_.lastColumn(); ++column) sheet_->widths_[column] = width;
  setEntireColumnHidden(width == 0);
}

double Range::ColumnWidth() const {
  return sheet_->columnHidden(rect_.column) ? 0 : sheet_->columnWidth(rect_.column);
}

void Range::AutoFitColumns() {
  requireMember(sheet_->isGeneration9(), "AutoFitColumns");
  fitColumns();
}

void Range::AutoFit() {
  requireMember(!sheet_->isGeneration9(), "AutoFit");
  if (rect_.rows != maxRows) refuse(QStringLiteral("Only whole columns can be fitted"));
  fitColumns();
}

void Range::fitColumns() {
  for (int column = rect_.column; column <= rect_.lastColumn(); ++column)
    if (!sheet_->columnHidden(column))
      sheet_->widths_[column] = sheet_->widthFromPixels(sheet_->screen().fittingWidth(column));
  Q_EMIT sheet_->layoutChanged();
}

void Range::FreezePanes(int mode) {
  requireMember(sheet_->isGeneration9(), "FreezePanes");
  if (mode != ssFreezeTopLeft && mode != ssUnfreeze)
    refuse(QStringLiteral("Panes cannot be frozen in the mode %1").arg(mode));
  sheet_->freezeAt(mode == ssFreezeTopLeft ? FrozenAt{rect_.row, rect_.column} : FrozenAt{});
}

void Range::AutoFilter() {
  Worksheet& sheet = sheet_->ActiveSheet;
  sheet.AutoFilterMode = sheet.EnableAutoFilter && !sheet.AutoFilterMode;
}

}  // namespace platform::owc

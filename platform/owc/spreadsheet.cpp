#include "platform/owc/spreadsheet.h"

#include "platform/basic/convert.h"
#include "platform/basic/failure.h"
#include "platform/basic/text.h"
#include "platform/owc/cellstore.h"

namespace platform::owc {

namespace {

const QString component = QStringLiteral("Spreadsheet");

CellRect rectOf(const QString& address) {
  const std::optional<CellRect> rect = parseAddress(address);
  if (!rect)
    throw Failure(sheetFailure, QStringLiteral("'%1' is no address of a range").arg(address), component);
  return *rect;
}

QString shown(const basic::Value& value, const QString& numberFormat) {
  if (const auto* text = std::get_if<QString>(&value)) return *text;
  if (const auto* truth = std::get_if<bool>(&value))
    return *truth ? QStringLiteral("TRUE") : QStringLiteral("FALSE");
  if (basic::IsEmpty(value) || numberFormat == QLatin1String("General") ||
      numberFormat == QLatin1String("Text"))
    return basic::CStr(value);
  return basic::Format(value, numberFormat);
}

}  // namespace

struct Spreadsheet::Data {
  CellStore cells;
  CellRect viewable{1, 1, maxRows, maxColumns};
  CellRect selection;
};

Spreadsheet::Spreadsheet(Generation generation, QObject* parent)
    : QObject(parent),
      d_(std::make_unique<Data>()),
      generation_(generation),
      viewable_(QStringLiteral("1:65536")) {}

Spreadsheet::~Spreadsheet() = default;

Range Spreadsheet::Range(const QString& address) {
  return {*this, rectOf(address)};
}

void Spreadsheet::setViewableRange(const QString& address) {
  const CellRect rect = rectOf(address);
  if (viewable_ == address) return;
  viewable_ = address;
  d_->viewable = rect;
  Q_EMIT layoutChanged();
}

void Spreadsheet::setTitleBarCaption(const QString& text) {
  if (title_ == text) return;
  title_ = text;
  Q_EMIT layoutChanged();
}

Range Spreadsheet::Selection() {
  return {*this, d_->selection};
}

CellRect Spreadsheet::viewableRect() const {
  return d_->viewable;
}

CellRect Spreadsheet::selectionRect() const {
  return d_->selection;
}

basic::Value Spreadsheet::value(int row, int column) const {
  return d_->cells.value(row, column);
}

QString Spreadsheet::text(int row, int column) const {
  return shown(d_->cells.value(row, column), d_->cells.format(row, column).numberFormat);
}

CellFormat Spreadsheet::format(int row, int column) const {
  return d_->cells.format(row, column);
}

void Spreadsheet::refuseLocked(const CellRect& rect) const {
  if (!ActiveSheet.Protection.Enabled) return;
  if (const auto locked = d_->cells.firstLocked(rect))
    throw Failure(sheetFailure,
                  QStringLiteral("The cell %1 is locked and the sheet is protected").arg(addressOf(*locked)),
                  component);
}

// Range: every change goes through one of the two first functions below, so that what must know of each
// change (a record for undo, a recalculation, the form's events) has one place to stand.

void Range::setValue(const basic::Value& value) {
  sheet_->refuseLocked(rect_);
  sheet_->d_->cells.setValue(rect_, basic::IsNull(value) ? basic::Value() : value);
  Q_EMIT sheet_->cellsChanged(rect_);
}

template <class Change>
void Range::changeFormat(Change change) {
  sheet_->refuseLocked(rect_);
  sheet_->d_->cells.changeFormat(rect_, change);
  Q_EMIT sheet_->cellsChanged(rect_);
}

basic::Value Range::Value() const {
  return sheet_->value(rect_.row, rect_.column);
}

QString Range::Text() const {
  return sheet_->text(rect_.row, rect_.column);
}

void Range::Clear() {
  sheet_->refuseLocked(rect_);
  sheet_->d_->cells.setValue(rect_, {});
  changeFormat([](CellFormat& format) {
    const bool locked = format.locked;
    format = CellFormat{};
    format.locked = locked;
  });
}

void Range::ClearContents() {
  setValue({});
}

Range Range::Cells(int row, int column) const {
  const qint64 absoluteRow = qint64(rect_.row) + row - 1, absoluteColumn = qint64(rect_.column) + column - 1;
  if (absoluteRow < 1 || absoluteRow > maxRows || absoluteColumn < 1 || absoluteColumn > maxColumns)
    throw Failure(sheetFailure,
                  QStringLiteral("The cell (%1, %2) of %3 lies outside of the sheet")
                      .arg(row)
                      .arg(column)
                      .arg(Address()),
                  component);
  return {*sheet_, {static_cast<int>(absoluteRow), static_cast<int>(absoluteColumn), 1, 1}};
}

void Range::Select() {
  if (sheet_->d_->selection == rect_) return;
  sheet_->d_->selection = rect_;
  Q_EMIT sheet_->selectionMoved();
}

void Range::setFontName(const QString& name) {
  changeFormat([&](CellFormat& format) { format.fontName = name; });
}

void Range::setFontSize(double points) {
  if (!(points >= 1 && points <= 409))
    throw Failure(sheetFailure, QStringLiteral("A font cannot have the size %1").arg(points), component);
  changeFormat([&](CellFormat& format) { format.fontSize = points; });
}

void Range::setFontBold(bool on) {
  changeFormat([&](CellFormat& format) { format.bold = on; });
}

void Range::setInteriorColor(qint32 color) {
  changeFormat([&](CellFormat& format) { format.color = color; });
}

void Range::setHorizontalAlignment(int alignment) {
  changeFormat([&](CellFormat& format) { format.horizontalAlignment = alignment; });
}

void Range::setLocked(bool on) {
  changeFormat([&](CellFormat& format) { format.locked = on; });
}

void Range::setNumberFormat(const QString& numberFormat) {
  changeFormat([&](CellFormat& format) { format.numberFormat = numberFormat; });
}

CellFormat Range::format() const {
  return sheet_->format(rect_.row, rect_.column);
}

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
  if (!(width >= 0))
    throw Failure(sheetFailure, QStringLiteral("A column cannot have the width %1").arg(width), component);
  if (width > 0)
    for (int column = rect_.column; column <= rect_.lastColumn(); ++column) sheet_->widths_[column] = width;
  setEntireColumnHidden(width == 0);
}

}  // namespace platform::owc

#include "platform/owc/spreadsheet.h"

#include "platform/basic/convert.h"
#include "platform/basic/failure.h"
#include "platform/basic/text.h"
#include "platform/owc/sheetdata.h"

#include <span>
#include <utility>

namespace platform::owc {

namespace {

CellRect rectOf(const QString& address) {
  const std::optional<CellRect> rect = parseAddress(address);
  if (!rect)
    throw Failure(sheetFailure, QStringLiteral("'%1' is no address of a range").arg(address), sheetComponent);
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

void throwNoSuchMember(const char* member) {
  throw Failure(noSuchMember, QStringLiteral("Object doesn't support this property or method"),
                QString::fromLatin1(member));
}

Spreadsheet::Spreadsheet(Generation generation, QObject* parent)
    : QObject(parent),
      d_(std::make_unique<Data>(*this)),
      generation_(generation),
      ActiveSheet(*this, generation),
      EnableAutoCalculate("EnableAutoCalculate", isGeneration9(), d_->autoCalculate,
                          [this] { calculationTurned(); }),
      Calculation("Calculation", !isGeneration9(), d_->calculation, [this] { calculationTurned(); }),
      ScreenUpdating("ScreenUpdating", true, d_->screenUpdating, [this] { Q_EMIT layoutChanged(); }),
      DisplayGridlines("DisplayGridlines", true, d_->display.gridlines, [this] { Q_EMIT layoutChanged(); }),
      DisplayColHeaders("DisplayColHeaders", isGeneration9(), d_->display.columnHeadings,
                        [this] { Q_EMIT layoutChanged(); }),
      DisplayRowHeaders("DisplayRowHeaders", isGeneration9(), d_->display.rowHeadings,
                        [this] { Q_EMIT layoutChanged(); }),
      DisplayHorizontalScrollBar("DisplayHorizontalScrollBar", isGeneration9(),
                                 d_->display.horizontalScrollBar, [this] { Q_EMIT layoutChanged(); }),
      DisplayVerticalScrollBar("DisplayVerticalScrollBar", isGeneration9(), d_->display.verticalScrollBar,
                               [this] { Q_EMIT layoutChanged(); }),
      DisplayColumnHeadings("DisplayColumnHeadings", !isGeneration9(), d_->display.columnHeadings,
                            [this] { Q_EMIT layoutChanged(); }),
      DisplayRowHeadings("DisplayRowHeadings", !isGeneration9(), d_->display.rowHeadings,
                         [this] { Q_EMIT layoutChanged(); }),
      DisplayWorkbookTabs("DisplayWorkbookTabs", !isGeneration9(), d_->display.workbookTabs),
      viewable_(QStringLiteral("1:65536")) {}

Spreadsheet::~Spreadsheet() = default;

Range Spreadsheet::Range(const QString& address) {
  return {*this, rectOf(address)};
}

Window& Spreadsheet::ActiveWindow() {
  requireMember(!isGeneration9(), "ActiveWindow");
  return d_->window;
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

// Selection

Range Spreadsheet::Selection() {
  return {*this, d_->selection};
}

Range Spreadsheet::ActiveCell() {
  return {*this, d_->active};
}

void Spreadsheet::select(const CellRect& rect, const CellRect& active) {
  if (rect == d_->selection) {
    d_->active = active;
    return;
  }
  if (isGeneration9() && EnableEvents) Q_EMIT SelectionChanging({owc::Range(*this, rect)});
  d_->selection = rect;
  d_->active = active;
  Q_EMIT selectionMoved();
  if (!isGeneration9() && EnableEvents) Q_EMIT SelectionChange();
}

namespace {

struct Direction {
  int number, down, right;
};
constexpr Direction oldDirections[] = {{ssMoveDown, 1, 0}, {ssMoveRight, 0, 1}};
constexpr Direction newDirections[] = {{xlDown, 1, 0}, {xlToRight, 0, 1}, {xlUp, -1, 0}, {xlToLeft, 0, -1}};

std::span<const Direction> directionsOf(bool generation9) {
  return generation9 ? std::span<const Direction>(oldDirections) : newDirections;
}

}  // namespace

int Spreadsheet::MoveAfterReturnDirection() const {
  for (const Direction& one : directionsOf(isGeneration9()))
    if (one.down == d_->moveDown && one.right == d_->moveRight) return one.number;
  return 0;
}

void Spreadsheet::setMoveAfterReturnDirection(int direction) {
  for (const Direction& one : directionsOf(isGeneration9())) {
    if (one.number != direction) continue;
    d_->moveDown = one.down;
    d_->moveRight = one.right;
    return;
  }
  throw Failure(sheetFailure, QStringLiteral("Enter cannot move in the direction %1").arg(direction),
                sheetComponent);
}

std::pair<int, int> Spreadsheet::returnStep() const {
  return {d_->moveDown, d_->moveRight};
}

// For the view

CellRect Spreadsheet::viewableRect() const {
  return d_->viewable;
}

CellRect Spreadsheet::selectionRect() const {
  return d_->selection;
}

CellRect Spreadsheet::activeCell() const {
  return d_->active;
}

basic::Value Spreadsheet::value(int row, int column) const {
  return d_->cells.value(row, column);
}

QString Spreadsheet::text(int row, int column) const {
  return shown(d_->cells.value(row, column), d_->cells.format(row, column).numberFormat);
}

QString Spreadsheet::formula(int row, int column) const {
  return d_->cells.formula(row, column);
}

CellFormat Spreadsheet::format(int row, int column) const {
  return d_->cells.format(row, column);
}

const SheetDisplay& Spreadsheet::display() const {
  return d_->display;
}

FrozenAt Spreadsheet::frozenAt() const {
  return d_->frozen;
}

void Spreadsheet::freezeAt(const FrozenAt& cell) {
  d_->display.freezePanes = cell != FrozenAt();
  if (d_->frozen == cell) return;
  d_->frozen = cell;
  Q_EMIT layoutChanged();
}

void Spreadsheet::setScreen(const SheetScreen* screen) {
  d_->screen = screen;
}

const SheetScreen& Spreadsheet::screen() const {
  return d_->screen ? *d_->screen : d_->plainScreen;
}

bool Spreadsheet::mayChange(int row, int column) const {
  return !ActiveSheet.Protection.Enabled || !d_->cells.format(row, column).locked;
}

void Spreadsheet::refuseLocked(const CellRect& rect) const {
  if (!ActiveSheet.Protection.Enabled) return;
  if (const auto locked = d_->cells.firstLocked(rect))
    throw Failure(sheetFailure,
                  QStringLiteral("The cell %1 is locked and the sheet is protected").arg(addressOf(*locked)),
                  sheetComponent);
}

// Changes of contents: all go through these, so that what must know of each of them (the step for undo, the
// calculation, the events) has one place to stand.

/// A change by code. Of several cells, or with the events off, it can't be taken back, and what could be
/// before is not any more.
void Spreadsheet::changeContents(const CellRect& rect, const std::function<void()>& change) {
  UndoStep step;
  if (EnableEvents && rect.rows == 1 && rect.columns == 1) step.remember(d_->cells, rect.row, rect.column);
  d_->undo = step;
  change();
  contentsChanged(rect);
  tellChange(rect);
  tellCalculation();
}

void Spreadsheet::contentsChanged(const CellRect& rect) {
  Q_EMIT cellsChanged(rect);
  if (calculatesItself())
    calculate(rect);
  else
    d_->calculationWaits = true;
}

void Spreadsheet::calculate(const std::optional<CellRect>& changed) {
  for (const CellRect& rect : d_->formulas.calculate(changed)) Q_EMIT cellsChanged(rect);
}

bool Spreadsheet::calculatesItself() const {
  return isGeneration9() ? d_->autoCalculate : d_->calculation != xlCalculationManual;
}

void Spreadsheet::calculationTurned() {
  if (!calculatesItself() || !d_->calculationWaits) return;
  d_->calculationWaits = false;
  calculate({});
  tellCalculation();
}

void Spreadsheet::tellChange(const CellRect& rect) {
  if (EnableEvents && !isGeneration9()) Q_EMIT SheetChange(owc::Range(*this, rect));
}

void Spreadsheet::tellCalculation() {
  if (EnableEvents && !isGeneration9() && calculatesItself()) Q_EMIT Calculate();
}

void Spreadsheet::Undo() {
  if (d_->undo.isEmpty()) return;
  for (const CellRect& cell : d_->undo.cells()) refuseLocked(cell);
  const UndoStep step = std::exchange(d_->undo, {});
  step.takeBack(d_->cells);
  contentsChanged(step.rect());
  tellChange(step.rect());
  tellCalculation();
}

}  // namespace platform::owc

#include "platform/owc/view/sheetview.h"

#include "platform/owc/clipboard.h"
#include "platform/owc/view/cellediting.h"
#include "platform/owc/view/frozenpanes.h"
#include "platform/owc/view/gridlines.h"
#include "platform/owc/view/sheetdelegate.h"
#include "platform/owc/view/sheetmodel.h"
#include "platform/process/process.h"

#include <QApplication>
#include <QClipboard>
#include <QHeaderView>
#include <QKeyEvent>
#include <QScopedValueRollback>
#include <QScrollBar>

#include <algorithm>
#include <utility>

namespace platform::owc {

namespace {

constexpr int narrowest = 48, widest = 200;  // of a column that fits its contents
constexpr int air = 12;                      // so that a right-aligned column keeps off its neighbour
constexpr int narrowestFirst = 120, lettersOfFirst = 14;  // whichever is more
constexpr int sampledRows = 50;

}  // namespace

SheetView::SheetView(Spreadsheet& sheet, QWidget* parent)
    : QTableView(parent), sheet_(&sheet), model_(new SheetModel(sheet, this)) {
  setItemDelegate(new SheetDelegate(this));
  // before the rows come, which may be all that a sheet has: a header tells of each one that has got another
  // height, and one that is in sight measures its sections
  setUpLook();
  followFont();
  setModel(model_);
  connect(model_, &SheetModel::reshaping, this, [this] { following_ = true; });
  connect(model_, &SheetModel::reshaped, this, &SheetView::followReshape);
  connect(&sheet, &Spreadsheet::layoutChanged, this, &SheetView::followLayout);
  connect(&sheet, &Spreadsheet::selectionMoved, this, &SheetView::showSelection);
  connect(selectionModel(), &QItemSelectionModel::selectionChanged, this, &SheetView::tellSelection);
  connect(horizontalHeader(), &QHeaderView::sectionResized, this, &SheetView::noteUserWidth);
  for (QScrollBar* bar : {horizontalScrollBar(), verticalScrollBar()})
    connect(bar, &QScrollBar::valueChanged, this, &SheetView::cellsMoved);
  panes_ = new FrozenPanes(*this, *model_);
  connect(this, &SheetView::cellsMoved, panes_,
          [this] { panes_->follow(sheet_ ? sheet_->frozenAt() : FrozenAt()); });
  sheet.setScreen(this);
  restoreWidths();
  followLayout();
  showSelection();
}

SheetView::~SheetView() {
  if (sheet_ && &sheet_->screen() == this) sheet_->setScreen(nullptr);
}

void SheetView::setEditable(bool editable) {
  if (editable == isEditable()) return;
  if (editing_) {
    editing_->cancel();
    delete std::exchange(editing_, nullptr);
  } else if (sheet_) {
    editing_ = new CellEditing(*this, *sheet_);
  }
  model_->setEditable(isEditable());  // lets input methods in, too
  setAttribute(Qt::WA_InputMethodEnabled, isEditable());
}

bool SheetView::isBeingEdited() const {
  return editing_ && editing_->isOpen();
}

void SheetView::setUpLook() {
  for (QHeaderView* header : {horizontalHeader(), verticalHeader()})
    header->hide();  // until the sheet is known
  setEditTriggers(NoEditTriggers);
  setSelectionMode(ContiguousSelection);
  setSelectionBehavior(SelectItems);
  setWordWrap(false);
  setTextElideMode(Qt::ElideRight);
  setTabKeyNavigation(false);  // the Tab key leaves the list, so that the keyboard reaches every control
  setHorizontalScrollMode(ScrollPerPixel);
  setCornerButtonEnabled(false);
  horizontalHeader()->setHighlightSections(false);
  horizontalHeader()->setTextElideMode(Qt::ElideRight);
  horizontalHeader()->setMinimumSectionSize(24);
  verticalHeader()->setHighlightSections(false);
  verticalHeader()->setSectionResizeMode(
      QHeaderView::Fixed);  // one height for all rows, which keeps painting cheap
  verticalHeader()->setDefaultAlignment(Qt::AlignRight | Qt::AlignVCenter);
}

void SheetView::followFont() {
  model_->setDesktopFont(font());
  constexpr int padding = 8;
  verticalHeader()->setMinimumSectionSize(fontMetrics().height());
  verticalHeader()->setDefaultSectionSize(fontMetrics().height() + padding);
}

void SheetView::paintEvent(QPaintEvent* event) {
  QTableView::paintEvent(event);
  paintGridOver(*this, event->rect());
}

void SheetView::changeEvent(QEvent* event) {
  QTableView::changeEvent(event);
  if (event->type() == QEvent::FontChange || event->type() == QEvent::StyleChange) followFont();
}

void SheetView::followLayout() {
  if (!sheet_) return;
  if (accessibleName() != sheet_->TitleBarCaption()) setAccessibleName(sheet_->TitleBarCaption());
  followDisplay();
  {
    const QScopedValueRollback following(following_, true);
    for (int section = 0; section < model_->columnCount(); ++section) {
      const int column = model_->body().column + section;
      if (isColumnHidden(section) != sheet_->columnHidden(column))
        setColumnHidden(section, sheet_->columnHidden(column));
      const double width = sheet_->columnWidth(column);
      if (width <= 0 || sheetWidths_.value(column) == width) continue;
      sheetWidths_[column] = width;
      userWidths_.remove(column);
      setColumnWidth(section, sheet_->widthInPixels(width));
    }
  }
  stretchFirst();
  Q_EMIT cellsMoved();
}

/// What surrounds the cells, as the sheet wants it.
void SheetView::followDisplay() {
  const SheetDisplay& display = sheet_->display();
  setShowGrid(display.gridlines);
  verticalHeader()->setVisible(display.rowHeadings);
  // A range that begins with row 1 shows that row there, which is no heading of letters.
  horizontalHeader()->setVisible(display.columnHeadings || sheet_->viewableRect().row == 1);
  setHorizontalScrollBarPolicy(display.horizontalScrollBar ? Qt::ScrollBarAsNeeded : Qt::ScrollBarAlwaysOff);
  setVerticalScrollBarPolicy(display.verticalScrollBar ? Qt::ScrollBarAsNeeded : Qt::ScrollBarAlwaysOff);
  horizontalHeader()->setSectionResizeMode(
      sheet_->ActiveSheet.Protection.userMaySizeColumns() ? QHeaderView::Interactive : QHeaderView::Fixed);
}

void SheetView::followReshape() {
  following_ = false;
  const CellRect& body = model_->body();
  if (body.column != shownColumn_ || body.columns != shownColumns_) {
    restoreWidths();
    fitted_ = false;
  }
  followLayout();
  showSelection();
  if (isVisible() && !fitted_) fitColumns();
}

// Selection

void SheetView::showSelection() {
  if (!sheet_ || following_) return;
  const CellRect wanted = sheet_->selectionRect();
  const CellRect& body = model_->body();
  const int bottom = std::min(wanted.lastRow(), body.lastRow());
  const int right = std::min(wanted.lastColumn(), body.lastColumn());
  const QModelIndex first =
      model_->indexOf(std::max(wanted.row, body.row), std::max(wanted.column, body.column));
  const QModelIndex last = model_->indexOf(bottom, right);
  const QScopedValueRollback following(following_, true);
  if (!first.isValid() || !last.isValid() || wanted.lastRow() < body.row ||
      wanted.lastColumn() < body.column) {
    selectionModel()->clear();
    return;
  }
  const QItemSelection selection(first, last);
  if (selectionModel()->selection() == selection) return;
  setCurrentIndex(first);  // the view's own, so that Shift goes on from there
  selectionModel()->select(selection, QItemSelectionModel::ClearAndSelect);
  scrollTo(first);
}

std::optional<CellRect> SheetView::selectedRect() const {
  const QItemSelection selection = selectionModel()->selection();
  if (selection.isEmpty()) return {};
  int top = maxRows, left = maxColumns, bottom = 0, right = 0;
  for (const QItemSelectionRange& range : selection) {
    top = std::min(top, range.top());
    left = std::min(left, range.left());
    bottom = std::max(bottom, range.bottom());
    right = std::max(right, range.right());
  }
  const CellRect& body = model_->body();
  return CellRect{body.row + top, body.column + left, bottom - top + 1, right - left + 1};
}

void SheetView::tellSelection() {
  if (following_ || !sheet_) return;
  if (const std::optional<CellRect> rect = selectedRect())
    process::guardEvent([&] { sheet_->select(*rect, activeIn(*rect)); });
}

/// The cell that the selection was widened from; a new selection begins with its first.
CellRect SheetView::activeIn(const CellRect& rect) const {
  const CellRect active = sheet_->activeCell();
  const bool widened = rect.contains(active.row, active.column);
  return widened ? active : CellRect{rect.row, rect.column, 1, 1};
}

QString SheetView::selectedText() const {
  const std::optional<CellRect> rect = selectedRect();
  if (!rect || !sheet_) return {};
  QList<QStringList> lines;
  for (int row = rect->row; row <= rect->lastRow(); ++row) {
    QStringList cells;
    for (int column = rect->column; column <= rect->lastColumn(); ++column)
      if (!sheet_->columnHidden(column)) cells.append(sheet_->text(row, column));
    lines.append(cells);
  }
  return textOfTable(lines);
}

bool SheetView::copySelection() {
  if (!selectedRect()) return false;
  QApplication::clipboard()->setText(selectedText());
  return true;
}

CellRect SheetView::bodyRect() const {
  return model_->body();
}

CellRect SheetView::movingCell() const {
  const QModelIndex current = currentIndex();
  if (!current.isValid()) return sheet_->activeCell();
  return {model_->body().row + current.row(), model_->body().column + current.column(), 1, 1};
}

void SheetView::extendSelection(const CellRect& from, const CellRect& to) {
  const QModelIndex first = model_->indexOf(from.row, from.column), last = model_->indexOf(to.row, to.column);
  if (!first.isValid() || !last.isValid()) return;
  const CellRect rect = unitedWith(from, to);
  selectionModel()->setCurrentIndex(last, QItemSelectionModel::NoUpdate);
  selectionModel()->select(QItemSelection(model_->indexOf(rect.row, rect.column),
                                          model_->indexOf(rect.lastRow(), rect.lastColumn())),
                           QItemSelectionModel::ClearAndSelect);
  scrollTo(last);
}

// Keys and mouse

void SheetView::keyPressEvent(QKeyEvent* event) {
  if (event->matches(QKeySequence::Copy)) {
    copySelection();
    event->accept();
  } else if (editing_ && editing_->keyPressed(*event)) {
    event->accept();
  } else {
    QTableView::keyPressEvent(event);
  }
}

void SheetView::inputMethodEvent(QInputMethodEvent* event) {
  if (!editing_ || !editing_->beginForInput(*event)) QTableView::inputMethodEvent(event);
}

void SheetView::mousePressEvent(QMouseEvent* event) {
  endEdit();
  QTableView::mousePressEvent(event);
}

void SheetView::mouseDoubleClickEvent(QMouseEvent* event) {
  QTableView::mouseDoubleClickEvent(event);
  if (event->button() == Qt::LeftButton) beginEdit(indexAt(event->pos()));
}

void SheetView::beginEdit(const QModelIndex& index) {
  if (editing_ && index.isValid())
    editing_->beginOnText({model_->body().row + index.row(), model_->body().column + index.column(), 1, 1});
}

void SheetView::endEdit() {
  if (editing_) editing_->end(CellEditor::Way::Stay);
}

bool SheetView::focusNextPrevChild(bool next) {
  return (editing_ && !editing_->isOpen() && editing_->moveAside(next)) ||
         QTableView::focusNextPrevChild(next);
}

void SheetView::turnPage(bool down) {
  const QModelIndex index = moveCursor(down ? MovePageDown : MovePageUp, Qt::NoModifier);
  if (index.isValid()) setCurrentIndex(index);
}

// Places

QRect SheetView::cellGeometry(int row, int column) const {
  const QModelIndex index = model_->indexOf(row, column);
  if (!index.isValid() || isColumnHidden(index.column())) return {};
  const QRect seen = panes_->seenOf(index);
  return seen.isEmpty() ? QRect() : seen.translated(viewport()->pos());
}

std::optional<CellRect> SheetView::cellAt(const QPoint& place) const {
  const QPoint onViewport = place - viewport()->pos();
  const bool open = panes_->openPart().contains(onViewport);
  const QModelIndex index = open ? indexAt(onViewport) : panes_->indexAt(onViewport);
  if (!index.isValid()) return {};
  return CellRect{model_->body().row + index.row(), model_->body().column + index.column(), 1, 1};
}

std::optional<CellRect> SheetView::cellAtPoint(const QPoint& point) const {
  if (!rect().contains(point)) return {};
  if (sheet_ && sheet_->viewableRect().row == 1 && horizontalHeader()->geometry().contains(point)) {
    const int section = horizontalHeader()->logicalIndexAt(point.x() - horizontalHeader()->geometry().left());
    if (section < 0) return {};
    return CellRect{1, model_->body().column + section, 1, 1};
  }
  return viewport()->geometry().contains(point) ? cellAt(point) : std::nullopt;
}

int SheetView::topOfRow(int row) const {
  if (row < model_->body().row) return horizontalHeader()->geometry().top();
  const bool frozen = sheet_ && row < sheet_->frozenAt().row;
  const int scrolled = frozen ? 0 : verticalHeader()->offset();
  return viewport()->y() + (row - model_->body().row) * verticalHeader()->defaultSectionSize() - scrolled;
}

int SheetView::fittingWidth(int column) const {
  const int section = column - model_->body().column;
  const bool shown = section >= 0 && section < model_->columnCount();
  return shown ? sectionFittingWidth(section) : horizontalHeader()->defaultSectionSize();
}

bool SheetView::bringIntoSight(const CellRect& cell) {
  const QModelIndex index = model_->indexOf(cell.row, cell.column);
  if (!index.isValid() || isColumnHidden(index.column())) return false;
  scrollTo(index);
  return true;
}

void SheetView::scrollTo(const QModelIndex& index, ScrollHint hint) {
  const int across = horizontalScrollBar()->value(), down = verticalScrollBar()->value();
  QTableView::scrollTo(index, hint);
  if (!panes_) return;
  if (panes_->freezesColumn(index.column())) horizontalScrollBar()->setValue(across);
  if (panes_->freezesRow(index.row())) verticalScrollBar()->setValue(down);
  panes_->uncover(index);
}

QPoint SheetView::scrolledTo() const {
  return {horizontalScrollBar()->value(), verticalScrollBar()->value()};
}

void SheetView::scrollBackTo(const QPoint& place) {
  executeDelayedItemsLayout();
  updateGeometries();  // the bars' ends are those of the present rows
  horizontalScrollBar()->setValue(place.x());
  verticalScrollBar()->setValue(place.y());
}

QWidget* SheetView::groundOf(const CellRect& cell) {
  return panes_->paneOf(model_->indexOf(cell.row, cell.column)).viewport();
}

QRect SheetView::placeOf(const CellRect& cell) const {
  const QModelIndex index = model_->indexOf(cell.row, cell.column);
  if (!index.isValid() || isColumnHidden(index.column())) return {};
  return panes_->paneOf(index).visualRect(index);
}

QFont SheetView::fontOf(const CellRect& cell) const {
  const QVariant font = model_->data(model_->indexOf(cell.row, cell.column), Qt::FontRole);
  return font.isValid() ? font.value<QFont>() : this->font();
}

QString SheetView::headingOf(const CellRect& cell) const {
  const int section = cell.column - model_->body().column;
  return model_->headerData(section, Qt::Horizontal, Qt::AccessibleTextRole).toString();
}

// Widths

void SheetView::showEvent(QShowEvent* event) {
  QTableView::showEvent(event);
  if (!fitted_) fitColumns();
}

void SheetView::resizeEvent(QResizeEvent* event) {
  QTableView::resizeEvent(event);
  stretchFirst();
}

void SheetView::updateGeometries() {
  QTableView::updateGeometries();
  Q_EMIT cellsMoved();
}

void SheetView::noteUserWidth(int section, int, int width) {
  if (!following_ && width > 0) userWidths_[model_->body().column + section] = width;
}

/// The table's sections are new; they begin with the widths that their columns have.
void SheetView::restoreWidths() {
  const QScopedValueRollback following(following_, true);
  shownColumn_ = model_->body().column;
  shownColumns_ = model_->body().columns;
  for (int section = 0; section < shownColumns_; ++section) {
    const int column = shownColumn_ + section;
    const double ofSheet = sheet_ ? sheet_->columnWidth(column) : 0;
    if (userWidths_.contains(column))
      setColumnWidth(section, userWidths_[column]);
    else if (ofSheet > 0)
      setColumnWidth(section, sheet_->widthInPixels(ofSheet));
  }
}

void SheetView::fitColumns() {
  // A list without rows, or with nothing but a message in its first, tells nothing of the widths to come.
  fitted_ = model_->rowCount() > 1;
  {
    const QScopedValueRollback following(following_, true);
    for (int section = 0; section < model_->columnCount(); ++section) {
      const int column = model_->body().column + section;
      const bool sized = userWidths_.contains(column) || (sheet_ && sheet_->columnWidth(column) > 0);
      if (!sized && !isColumnHidden(section)) setColumnWidth(section, sectionFittingWidth(section));
    }
  }
  stretchFirst();
}

int SheetView::sectionFittingWidth(int section) const {
  int width = horizontalHeader()->sectionSizeHint(section);
  const int rows = std::min(model_->rowCount(), sampledRows);
  for (int row = 0; row < rows && width < widest; ++row)
    width = std::max(width, sizeHintForIndex(model_->index(row, section)).width());
  return std::clamp(width + air, narrowest, widest);
}

int SheetView::firstVisibleSection() const {
  for (int section = 0; section < model_->columnCount(); ++section)
    if (!isColumnHidden(section)) return section;
  return -1;
}

void SheetView::stretchFirst() {
  const int first = firstVisibleSection();
  if (first < 0 || !sheet_) return;
  const int column = model_->body().column + first;
  if (userWidths_.contains(column) || sheet_->columnWidth(column) > 0) return;
  const int others = horizontalHeader()->length() - columnWidth(first);
  const QScopedValueRollback following(following_, true);
  const int narrowest = std::max(narrowestFirst, fontMetrics().averageCharWidth() * lettersOfFirst);
  setColumnWidth(first, std::max(narrowest, viewport()->width() - others));
}

}  // namespace platform::owc

#include "platform/owc/editing.h"

#include "platform/owc/sheetdata.h"

#include <algorithm>

namespace platform::owc {

/// A cell and the text that it is to hold.
struct Editing::Change {
  int row, column;
  QString text;
};

namespace {

bool wouldReadOtherwise(const QString& text) {
  return text.startsWith(u'=') || text.startsWith(u'\'');
}

void put(CellStore& cells, int row, int column, const QString& text) {
  cells.setValue({row, column, 1, 1}, text.isEmpty() ? basic::Value() : basic::Value(text));
}

void putTyped(CellStore& cells, int row, int column, const QString& text) {
  if (text.startsWith(u'=') && text.size() > 1)
    cells.setFormula(row, column, text);
  else
    put(cells, row, column, text.startsWith(u'\'') ? text.mid(1) : text);
}

}  // namespace

QString Editing::textToEdit(int row, int column) const {
  const QString formula = sheet_->formula(row, column);
  if (!formula.isEmpty()) return formula;
  const QString text = sheet_->text(row, column);
  return wouldReadOtherwise(text) ? u'\'' + text : text;
}

bool Editing::end(const CellRect& cell, const std::optional<QString>& text,
                  const std::optional<CellRect>& next) {
  EndEditEvent event{Range(*sheet_, cell), text.value_or(textToEdit(cell.row, cell.column))};
  if (sheet_->EnableEvents) Q_EMIT sheet_->EndEdit(event);
  if (event.Cancel) return false;
  // The handler may have rebuilt the sheet.
  const bool changes = text && sheet_->mayChange(cell.row, cell.column);
  if (changes) {
    UndoStep step;
    step.remember(sheet_->d_->cells, cell.row, cell.column);
    sheet_->d_->undo = step;
    putTyped(sheet_->d_->cells, cell.row, cell.column, *text);
    if (!sheet_->calculatesItself()) sheet_->d_->formulas.calculateOnly(cell);
    sheet_->contentsChanged(cell);
    sheet_->tellChange(cell);
  }
  if (next) sheet_->select(*next, *next);
  if (changes) sheet_->tellCalculation();
  return true;
}

void Editing::apply(const QList<Change>& changes) {
  UndoStep step;
  for (const Change& change : changes) step.remember(sheet_->d_->cells, change.row, change.column);
  sheet_->d_->undo = step;
  for (const Change& change : changes) put(sheet_->d_->cells, change.row, change.column, change.text);
  sheet_->contentsChanged(step.rect());
  sheet_->tellChange(step.rect());
}

void Editing::clear(const CellRect& rect) {
  QList<Change> changes;
  sheet_->d_->cells.forEachFilled(rect, [&](int row, int column, const basic::Value&) {
    if (sheet_->mayChange(row, column)) changes.append({row, column, QString()});
  });
  if (changes.isEmpty()) return;
  apply(changes);
  sheet_->tellCalculation();
}

void Editing::undo() {
  for (const CellRect& cell : sheet_->d_->undo.cells())
    if (!sheet_->mayChange(cell.row, cell.column)) return;
  sheet_->Undo();
}

QList<int> Editing::shownColumns(int first, int last) const {
  QList<int> columns;
  for (int column = first; column <= last; ++column)
    if (!sheet_->columnHidden(column)) columns.append(column);
  return columns;
}

void Editing::paste(const CellRect& rect, const QList<QStringList>& table) {
  const bool one = table.size() == 1 && table.first().size() == 1;
  const CellRect bounds = sheet_->viewableRect();
  const int lastColumn = one ? std::min(rect.lastColumn(), bounds.lastColumn()) : bounds.lastColumn();
  const int lastRow =
      std::min(one ? rect.lastRow() : rect.row + static_cast<int>(table.size()) - 1, bounds.lastRow());
  const QList<int> columns = shownColumns(rect.column, lastColumn);
  QList<Change> changes;
  CellRect pasted{rect.row, rect.column, 1, 1};
  for (int row = rect.row; row <= lastRow; ++row) {
    const QStringList& texts = one ? table.first() : table[row - rect.row];
    for (qsizetype at = 0; at < columns.size() && (one || at < texts.size()); ++at) {
      if (sheet_->mayChange(row, columns[at]))
        changes.append({row, columns[at], one ? texts.first() : texts[at]});
      pasted = unitedWith(pasted, {row, columns[at], 1, 1});
    }
  }
  if (changes.isEmpty()) return;
  apply(changes);
  sheet_->select(pasted, {pasted.row, pasted.column, 1, 1});
  sheet_->tellCalculation();
}

}  // namespace platform::owc

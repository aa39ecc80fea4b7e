#include "platform/owc/view/cellediting.h"

#include "platform/owc/clipboard.h"
#include "platform/owc/editing.h"
#include "platform/owc/navigation.h"
#include "platform/process/process.h"

#include <QApplication>
#include <QClipboard>
#include <QInputMethodEvent>
#include <QKeyEvent>

#include <algorithm>

namespace platform::owc {

using Way = CellEditor::Way;

CellEditing::CellEditing(SheetView& view, Spreadsheet& sheet) : QObject(&view), view_(&view), sheet_(&sheet) {
  connect(view_, &SheetView::cellsMoved, this, &CellEditing::followCell);
  connect(&sheet, &QObject::destroyed, this, &CellEditing::close);
  // Another row may have taken its place, and what is being typed is not meant for that.
  connect(&sheet, &Spreadsheet::cellsChanged, this, [this](const CellRect& changed) {
    if (editor_ && changed.contains(cell_.row, cell_.column)) cancel();
  });
}

CellEditing::~CellEditing() {
  if (editor_) editor_->disconnect(this);
}

// The editor

void CellEditing::beginOnText(const CellRect& cell) {
  if (sheet_) begin(cell, CellEditor::Begun::OnText, Editing(*sheet_).textToEdit(cell.row, cell.column));
}

bool CellEditing::beginForInput(QInputMethodEvent& event) {
  if (!sheet_ || (event.preeditString().isEmpty() && event.commitString().isEmpty())) return false;
  if (!begin(sheet_->activeCell(), CellEditor::Begun::ByTyping, {})) return false;
  QCoreApplication::sendEvent(editor_, &event);
  return true;
}

bool CellEditing::begin(const CellRect& cell, CellEditor::Begun begun, const QString& text) {
  if (editor_) end(Way::Stay);
  if (!sheet_ || !sheet_->mayChange(cell.row, cell.column) || !view_->bringIntoSight(cell)) return false;
  cell_ = cell;
  typed_ = begun == CellEditor::Begun::ByTyping;
  editor_ = new CellEditor(begun, view_->groundOf(cell));
  editor_->setFont(view_->fontOf(cell));
  editor_->setAccessibleName(view_->headingOf(cell));
  editor_->setText(text);
  connect(editor_, &CellEditor::ended, this, &CellEditing::end);
  connect(editor_, &CellEditor::escaped, this, &CellEditing::cancel);
  followCell();
  editor_->show();
  editor_->setFocus(Qt::OtherFocusReason);
  return true;
}

void CellEditing::end(Way way) {
  if (!editor_ || !sheet_) return;
  const bool changed = typed_ || editor_->isModified();
  const QString text = editor_->text();
  close();
  process::guardEvent([&] {
    const bool ended =
        Editing(*sheet_).end(cell_, changed ? std::optional(text) : std::nullopt, goal(cell_, way));
    if (ended && (way == Way::PageUp || way == Way::PageDown)) view_->turnPage(way == Way::PageDown);
  });
}

void CellEditing::cancel() {
  if (editor_) close();
}

/// The editor goes before anything is told: a handler may show a window or rebuild the sheet.
void CellEditing::close() {
  if (!editor_) return;
  CellEditor* editor = editor_;
  editor_.clear();
  editor->disconnect(this);
  if (editor->hasFocus()) view_->setFocus(Qt::OtherFocusReason);  // hidden with it, it would pass it on
  editor->hide();
  editor->deleteLater();
}

void CellEditing::followCell() {
  if (!editor_) return;
  const QRect place = view_->placeOf(cell_);
  if (place.isEmpty())
    cancel();  // the range is another
  else
    editor_->setGeometry(place);
}

// Moving

std::optional<CellRect> CellEditing::goal(const CellRect& cell, Way way) const {
  const CellRect bounds = view_->bodyRect();
  switch (way) {
    case Way::Return:
    case Way::ReturnBack:
      return afterReturn(*sheet_, cell, way == Way::ReturnBack, bounds);
    case Way::Right:
      return neighbour(*sheet_, cell, {0, 1}, bounds);
    case Way::Left:
      return neighbour(*sheet_, cell, {0, -1}, bounds);
    case Way::Up:
      return neighbour(*sheet_, cell, {-1, 0}, bounds);
    case Way::Down:
      return neighbour(*sheet_, cell, {1, 0}, bounds);
    default:
      return {};
  }
}

bool CellEditing::moveAside(bool right) {
  if (!sheet_) return false;
  const std::optional<CellRect> next = goal(sheet_->activeCell(), right ? Way::Right : Way::Left);
  if (next) process::guardEvent([&] { sheet_->select(*next, *next); });
  return next.has_value();
}

void CellEditing::jump(const Step& step, bool extend) {
  const CellRect active = sheet_->activeCell();
  const CellRect from = extend ? view_->movingCell() : active;
  const CellRect to = edgeOfData(*sheet_, from, step, view_->bodyRect());
  process::guardEvent([&] {
    if (extend)
      view_->extendSelection(active, to);
    else
      sheet_->select(to, to);
  });
}

// Keys

bool CellEditing::keyPressed(QKeyEvent& event) {
  return sheet_ && (navigates(event) || changes(event) || types(event));
}

bool CellEditing::navigates(const QKeyEvent& event) {
  const bool control = event.modifiers() & Qt::ControlModifier, shift = event.modifiers() & Qt::ShiftModifier;
  if (event.key() == Qt::Key_Return || event.key() == Qt::Key_Enter) {
    if (control || event.modifiers() & Qt::AltModifier) return false;
    if (const auto next = goal(sheet_->activeCell(), shift ? Way::ReturnBack : Way::Return))
      process::guardEvent([&] { sheet_->select(*next, *next); });
    return true;
  }
  if (!control) return false;
  static const std::pair<int, Step> arrows[] = {
      {Qt::Key_Up, {-1, 0}}, {Qt::Key_Down, {1, 0}}, {Qt::Key_Left, {0, -1}}, {Qt::Key_Right, {0, 1}}};
  for (const auto& [key, step] : arrows) {
    if (event.key() != key) continue;
    jump(step, shift);
    return true;
  }
  return false;
}

bool CellEditing::changes(const QKeyEvent& event) {
  const bool plain = event.modifiers() == Qt::NoModifier;
  if (event.key() == Qt::Key_F2 && plain) {
    beginOnText(sheet_->activeCell());
    return true;
  }
  const CellRect selected = sheet_->selectionRect();
  if (event.matches(QKeySequence::Cut)) {
    if (view_->copySelection()) process::guardEvent([&] { Editing(*sheet_).clear(selected); });
    return true;
  }
  if (event.matches(QKeySequence::Paste)) {
    const QString text = QApplication::clipboard()->text();
    if (!text.isEmpty()) process::guardEvent([&] { Editing(*sheet_).paste(selected, tableOfText(text)); });
    return true;
  }
  if (event.matches(QKeySequence::Undo)) {
    process::guardEvent([&] { Editing(*sheet_).undo(); });
    return true;
  }
  if ((event.key() == Qt::Key_Delete || event.key() == Qt::Key_Backspace) && plain) {
    process::guardEvent([&] { Editing(*sheet_).clear(selected); });
    return true;
  }
  return false;
}

bool CellEditing::types(const QKeyEvent& event) {
  // Control and Alt together are the third level of many keyboards.
  const Qt::KeyboardModifiers held =
      event.modifiers() & (Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier);
  if (held != Qt::NoModifier && held != (Qt::ControlModifier | Qt::AltModifier)) return false;
  const QString text = event.text();
  if (text.isEmpty() || !text.front().isPrint()) return false;
  begin(sheet_->activeCell(), CellEditor::Begun::ByTyping, text);
  return true;
}

}  // namespace platform::owc

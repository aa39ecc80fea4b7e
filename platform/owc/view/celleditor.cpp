#include "platform/owc/view/celleditor.h"

#include <QFocusEvent>
#include <QKeyEvent>

namespace platform::owc {

CellEditor::CellEditor(Begun begun, QWidget* parent) : QLineEdit(parent), begun_(begun) {
  setObjectName(QStringLiteral("cellEditor"));
  setFrame(false);
  setAutoFillBackground(true);
}

std::optional<CellEditor::Way> CellEditor::wayOf(const QKeyEvent& event) const {
  if (event.modifiers() & (Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier)) return {};
  const bool shift = event.modifiers() & Qt::ShiftModifier;
  const bool typed = begun_ == Begun::ByTyping && !shift;
  switch (event.key()) {
    case Qt::Key_Return:
    case Qt::Key_Enter:
      return shift ? Way::ReturnBack : Way::Return;
    case Qt::Key_Tab:
      return Way::Right;
    case Qt::Key_Backtab:
      return Way::Left;
    case Qt::Key_Up:
      return Way::Up;
    case Qt::Key_Down:
      return Way::Down;
    case Qt::Key_PageUp:
      return Way::PageUp;
    case Qt::Key_PageDown:
      return Way::PageDown;
    case Qt::Key_Left:
      return typed ? std::optional(Way::Left) : std::nullopt;
    case Qt::Key_Right:
      return typed ? std::optional(Way::Right) : std::nullopt;
    default:
      return {};
  }
}

bool CellEditor::event(QEvent* event) {
  const bool press = event->type() == QEvent::KeyPress;
  if (press || event->type() == QEvent::ShortcutOverride) {
    const auto& key = *static_cast<QKeyEvent*>(event);
    const std::optional<Way> way = wayOf(key);
    const bool own = way || key.key() == Qt::Key_Escape || key.key() == Qt::Key_F2;
    if (own) {
      event->accept();  // nothing of the form around may take it
      if (!press) return true;
      if (way)
        Q_EMIT ended(*way);
      else if (key.key() == Qt::Key_Escape)
        Q_EMIT escaped();
      else
        begun_ = begun_ == Begun::ByTyping ? Begun::OnText : Begun::ByTyping;
      return true;
    }
  }
  return QLineEdit::event(event);
}

void CellEditor::focusOutEvent(QFocusEvent* event) {
  QLineEdit::focusOutEvent(event);
  // Another window in front, or the editor's own menu, is no end.
  if (event->reason() != Qt::ActiveWindowFocusReason && event->reason() != Qt::PopupFocusReason)
    Q_EMIT ended(Way::Stay);
}

}  // namespace platform::owc

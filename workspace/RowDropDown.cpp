#include "workspace/RowDropDown.h"

#include <QAbstractItemView>
#include <QCompleter>
#include <QCoreApplication>
#include <QFocusEvent>
#include <QKeyEvent>
#include <QLineEdit>
#include <QScreen>
#include <QScrollBar>
#include <QWheelEvent>

namespace hourbook {

/// Becomes editable without what the tool kit makes along with it: three lists that drop down and three
/// completers are a good part of making the window, and a row has to be selected before one is seen. Of its
/// size a list that drops down would be a part as well, but this one is laid over a cell.
RowDropDown::RowDropDown(QWidget* parent) : QComboBox(parent) {
  auto* edit = new QLineEdit(this);
  edit->setPalette(palette());
  edit->setCompleter(new QCompleter(edit));  // or one over all entries would be made
  setLineEdit(edit);
  setCompleter(nullptr);
  connect(lineEdit(), &QLineEdit::textEdited, this, [this] { typed_ = true; });
}

/// As wide as its values, since the column may be narrow.
void RowDropDown::showPopup() {
  const int wanted = view()->sizeHintForColumn(0) + view()->verticalScrollBar()->sizeHint().width() +
                     2 * view()->frameWidth();
  view()->setMinimumWidth(qBound(width(), wanted, qMax(width(), screen()->availableGeometry().width() / 2)));
  QComboBox::showPopup();
}

/// Takes a text that is an entry, in this case or another, and gives up any other.
void RowDropDown::settle() {
  if (!typed_) return;
  typed_ = false;
  const QString text = currentText();
  int entry = findText(text, Qt::MatchExactly | Qt::MatchCaseSensitive);
  if (entry < 0) entry = findText(text, Qt::MatchFixedString);
  if (entry >= 0)
    Q_EMIT activated(entry);
  else
    Q_EMIT givenUp();
}

void RowDropDown::keyPressEvent(QKeyEvent* event) {
  switch (event->key()) {
    case Qt::Key_Up:
    case Qt::Key_Down:
    case Qt::Key_PageUp:
    case Qt::Key_PageDown:
    case Qt::Key_F4:
      showPopup();
      event->accept();
      return;
    case Qt::Key_Return:
    case Qt::Key_Enter:
      event->accept();  // else it would press the window's default button
      settle();
      Q_EMIT done();
      return;
    case Qt::Key_Escape:
      event->accept();
      typed_ = false;
      Q_EMIT givenUp();
      Q_EMIT done();
      return;
    default:
      QComboBox::keyPressEvent(event);
  }
}

void RowDropDown::focusOutEvent(QFocusEvent* event) {
  if (event->reason() != Qt::PopupFocusReason && event->reason() != Qt::ActiveWindowFocusReason) settle();
  QComboBox::focusOutEvent(event);
}

void RowDropDown::wheelEvent(QWheelEvent* event) {
  QCoreApplication::sendEvent(parentWidget(), event);
}

}  // namespace hourbook

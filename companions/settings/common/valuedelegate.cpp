#include "companions/settings/common/valuedelegate.h"

#include <QKeyEvent>
#include <QLineEdit>

namespace hourbook {

namespace {

constexpr char problemProperty[] = "problem";

bool leavesCell(const QEvent& event) {
  if (event.type() != QEvent::KeyPress) return false;
  const int key = static_cast<const QKeyEvent&>(event).key();
  return key == Qt::Key_Return || key == Qt::Key_Enter || key == Qt::Key_Tab || key == Qt::Key_Backtab;
}

}  // namespace

ValueDelegate::ValueDelegate(Check check, Heading heading, QObject* parent)
    : QStyledItemDelegate(parent), check_(std::move(check)), heading_(std::move(heading)) {}

QWidget* ValueDelegate::createEditor(QWidget* parent, const QStyleOptionViewItem& /*option*/,
                                     const QModelIndex& index) const {
  auto* editor = new QLineEdit(parent);
  editor->setFrame(false);
  editor->setAutoFillBackground(true);
  editor->setObjectName(QStringLiteral("txtCell"));
  editor->setAccessibleName(heading_(index.column()));
  editor->setAlignment(Qt::Alignment(index.data(Qt::TextAlignmentRole).toInt()));
  const QPersistentModelIndex cell(index);
  connect(editor, &QLineEdit::textEdited, this, [this, editor, cell](const QString& text) {
    const QString problem = check_(cell, text);
    editor->setProperty(problemProperty, problem);
    editor->setAccessibleDescription(problem);
    Q_EMIT typed(problem);
  });
  return editor;
}

void ValueDelegate::setModelData(QWidget* editor, QAbstractItemModel* model, const QModelIndex& index) const {
  model->setData(index, static_cast<QLineEdit*>(editor)->text(), Qt::EditRole);
}

bool ValueDelegate::eventFilter(QObject* watched, QEvent* event) {
  if (leavesCell(*event) && !watched->property(problemProperty).toString().isEmpty()) return true;
  const bool escaped =
      event->type() == QEvent::KeyPress && static_cast<QKeyEvent*>(event)->key() == Qt::Key_Escape;
  if (escaped) Q_EMIT typed(QString());
  return QStyledItemDelegate::eventFilter(watched, event);
}

}  // namespace hourbook

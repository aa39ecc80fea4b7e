#include "platform/forms/widgets/bind.h"
#include "platform/forms/widgets/follower.h"

#include <QComboBox>
#include <QLineEdit>

namespace platform::forms {

namespace {

/// The entries change by Clear and AddItem alone, and each is told: what the widget has is always the
/// beginning of the list. So adding an entry costs one entry, however long the list.
void showEntries(const ComboBox& control, QComboBox* widget) {
  const QSignalBlocker held(widget);
  if (widget->count() > control.ListCount()) widget->clear();
  for (int i = widget->count(); i < control.ListCount(); ++i) widget->addItem(control.List(i));
}

void showChoice(const ComboBox& control, QComboBox* widget) {
  QLineEdit* edit = widget->lineEdit();
  const int cursor = edit ? edit->cursorPosition() : 0;
  const bool typing = edit && edit->text() == control.Text();
  if (widget->currentIndex() != control.ListIndex()) widget->setCurrentIndex(control.ListIndex());
  if (!edit) return;
  if (edit->text() != control.Text()) edit->setText(control.Text());
  if (typing && edit->cursorPosition() != cursor) edit->setCursorPosition(cursor);  // it ends a selection
}

}  // namespace

void bind(ComboBox& control, QComboBox* widget, const QString& accessibleName) {
  widget->clear();
  if (control.style() == ComboBox::Style::DropdownCombo) {
    widget->setEditable(true);
    widget->setInsertPolicy(QComboBox::NoInsert);
    widget->setCompleter(nullptr);  // the text is what the user types, not what a list makes of it
  }
  auto* follower = new Follower(control, widget, accessibleName, [&control, widget] {
    showEntries(control, widget);
    showChoice(control, widget);
  });
  follower->keepWheelForFocus();
  QObject::connect(&control, &ComboBox::listChanged, follower, [follower] { follower->follow(); });
  QObject::connect(widget, &QComboBox::activated, follower, [follower, &control](int index) {
    follower->feedBack([&control, index] { control.setListIndex(index); });
  });
  if (widget->lineEdit())
    QObject::connect(widget->lineEdit(), &QLineEdit::textEdited, follower,
                     [follower, &control](const QString& text) {
                       follower->feedBack([&control, text] { control.setText(text); });
                     });
}

}  // namespace platform::forms

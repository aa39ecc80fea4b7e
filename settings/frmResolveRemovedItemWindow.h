#pragma once
#include "platform/forms/widgets/mnemonics.h"
#include "settings/frmResolveRemovedItem.h"

#include <QDialog>

namespace hourbook {

/// The window of the form: lays the controls out and follows them. Escape and its frame close it, which
/// leaves the form's outcome as it is.
class frmResolveRemovedItemWindow : public QDialog {
  Q_OBJECT
 public:
  explicit frmResolveRemovedItemWindow(frmResolveRemovedItem& form, QWidget* parent = nullptr);

 private:
  QWidget* valueLabel();
  QWidget* option(platform::forms::OptionButton& control);
  QLayout* choice();
  QLayout* buttons();

  frmResolveRemovedItem& form_;
  platform::forms::Mnemonics mnemonics_;
};

/// Shows the form modally over the window in front, and returns when it was hidden or its window closed.
void subShowResolveRemovedItem(frmResolveRemovedItem& form);

}  // namespace hourbook

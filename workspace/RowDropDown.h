#pragma once
#include <QComboBox>

namespace hourbook {

/// A drop-down that lies over a cell of the list. Only a choice that the user has made for good activates an
/// entry: in the list that drops down, or by Enter and by leaving it on a text that is an entry. The arrow
/// keys of a closed one drop the list down, and the mouse wheel belongs to what lies behind.
class RowDropDown : public QComboBox {
  Q_OBJECT
 public:
  explicit RowDropDown(QWidget* parent);
  void showPopup() override;
  /// Something was typed that is neither taken nor given up yet.
  bool isBeingTyped() const { return typed_; }

 Q_SIGNALS:
  /// The text is no entry, or the user does not want it any more.
  void givenUp();
  /// The user is done and goes on in the list.
  void done();

 protected:
  void keyPressEvent(QKeyEvent* event) override;
  void focusOutEvent(QFocusEvent* event) override;
  void wheelEvent(QWheelEvent* event) override;

 private:
  void settle();
  bool typed_ = false;  // since something was last settled
};

}  // namespace hourbook

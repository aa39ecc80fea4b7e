#pragma once
#include "platform/forms/controls.h"
#include "shell/FormWindow.h"

#include <QDialog>

class QAbstractButton;
class QLayout;

namespace hourbook {

/// What the windows of the database's forms have in common: a modal dialog that closes as soon as its form is
/// hidden.
class FormDialog : public QDialog, public FormWindow {
  Q_OBJECT
 public:
  FormDialog(platform::forms::Control& form, QWidget* parent);

  qint32 ExtendedStyle() const override { return style_; }
  void setExtendedStyle(qint32 style) override { style_ = style; }
  void Activate() override;
  bool Visible() const override { return isVisible(); }
  void SetFocus() override { setFocus(Qt::OtherFocusReason); }
  void SetWindowPos(int insertAfter, quint32 flags) override;

 protected:
  /// Pixels that a line of text may take: a comfortable length, or what the screen has room for.
  int lineWidth() const;
  /// Breaks the text of a button into several lines where it is longer than one may be.
  void breakLines(QAbstractButton* button) const;
  /// As wide as the contents and a line of text ask for, and as high as that makes them.
  void fitTo(const QLayout& page);

 private:
  qint32 style_ = 0;  // kept for who asks: a desktop of today lists each window anyway
};

}  // namespace hourbook

#pragma once
#include "platform/forms/controls.h"
#include "platform/process/process.h"

#include <QPointer>
#include <QSignalBlocker>
#include <QWidget>

#include <functional>

namespace platform::forms {

/// Ties one widget to one control. It is the widget's child and its event filter, and knows the control only
/// weakly.
class Follower : public QObject {
  Q_OBJECT
 public:
  /// `show` brings the widget to the control's state; it runs with the widget's signals held back.
  Follower(Control& control, QWidget* widget, const QString& accessibleName, std::function<void()> show);

  void follow();
  /// Runs what the user did, unless the control is gone. The control may take the value in another form, or
  /// not at all: the widget then shows the control's state again.
  void feedBack(const std::function<void()>& act);
  /// Lets wheel events pass to the parent while the widget has no focus.
  void keepWheelForFocus();

 private:
  bool eventFilter(QObject* watched, QEvent* event) override;
  void showCommon();
  void showBackColor();
  void showPlace();
  void readPlace();
  bool layoutOwnsWidget() const;

  QPointer<Control> control_;
  QWidget* widget_;
  QString accessibleName_;
  std::function<void()> show_;
  QString shownName_;
  bool shownVisible_ = true;
  qint32 shownColor_ = -1;
  bool placing_ = false;
  bool wheelForFocus_ = false;
};

}  // namespace platform::forms

#include "platform/forms/widgets/follower.h"

#include "platform/forms/twips.h"
#include "platform/forms/widgets/bind.h"
#include "platform/forms/widgets/look.h"

#include <QEvent>
#include <QLayout>
#include <QTextDocument>

namespace platform::forms {

namespace {

bool holds(const QLayout* layout, const QWidget* widget) {
  if (!layout) return false;
  if (layout->indexOf(widget) >= 0) return true;
  for (int i = 0; i < layout->count(); ++i)
    if (holds(layout->itemAt(i)->layout(), widget)) return true;
  return false;
}

}  // namespace

Follower::Follower(Control& control, QWidget* widget, const QString& accessibleName,
                   std::function<void()> show)
    : QObject(widget),
      control_(&control),
      widget_(widget),
      accessibleName_(accessibleName),
      show_(std::move(show)) {
  widget->setObjectName(control.Name());
  connect(&control, &Control::propertyChanged, this, &Follower::follow);
  connect(&control, &Control::placed, this, &Follower::showPlace);
  if (control.Width > 0 && control.Height > 0) showPlace();
  widget->installEventFilter(this);
  follow();
}

void Follower::follow() {
  if (!control_) return;
  showCommon();
  const QSignalBlocker held(widget_);
  show_();
}

void Follower::feedBack(const std::function<void()>& act) {
  if (!control_) return;
  const QPointer<Follower> alive(this);
  process::guardEvent(act);
  if (alive) follow();
}

void Follower::keepWheelForFocus() {
  wheelForFocus_ = true;
  widget_->setFocusPolicy(Qt::StrongFocus);
}

bool Follower::eventFilter(QObject* watched, QEvent* event) {
  if (watched == widget_) {
    if (event->type() == QEvent::Wheel && wheelForFocus_ && !widget_->hasFocus()) {
      event->ignore();
      return true;
    }
    if (event->type() == QEvent::Move || event->type() == QEvent::Resize) readPlace();
  }
  return QObject::eventFilter(watched, event);
}

void Follower::showCommon() {
  widget_->setEnabled(control_->Enabled());
  // A fresh widget is not shown by hand: its parent shows it, and without a parent it would become a window.
  if (shownVisible_ != control_->Visible()) {
    shownVisible_ = control_->Visible();
    widget_->setVisible(shownVisible_);
  }
  // As plain text: a tooltip that looks like HTML would be shown as HTML.
  const QString tip = control_->ToolTipText();
  widget_->setToolTip(Qt::mightBeRichText(tip) ? QStringLiteral("<span>%1</span>").arg(tip.toHtmlEscaped())
                                               : tip);
  QString name = accessibleName_;
  if (name.isEmpty()) name = control_->AccessibleName();
  if (name.isEmpty()) name = withoutMnemonic(control_->Caption());
  if (name.isEmpty()) name = tip;
  if (shownName_ != name) {  // a widget that names itself keeps its name as long as the control has none
    shownName_ = name;
    widget_->setAccessibleName(name);
  }
  showBackColor();
}

void Follower::showBackColor() {
  if (shownColor_ == control_->BackColor()) return;
  shownColor_ = control_->BackColor();
  const QColor color = colorFromBgr(shownColor_);
  widget_->setAutoFillBackground(color.isValid());
  QPalette palette;  // without a colour, everything comes from the parent again
  if (color.isValid()) {
    for (const auto role : {QPalette::Window, QPalette::Base, QPalette::Button})
      palette.setColor(role, color);
    for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText})
      palette.setColor(role, readableOn(color));
  }
  widget_->setPalette(palette);
}

void Follower::showPlace() {
  if (!control_ || layoutOwnsWidget()) return;
  placing_ = true;  // what rounding to pixels makes of the place is not read back
  widget_->setGeometry(twipsToPixels(control_->Left), twipsToPixels(control_->Top),
                       twipsToPixels(control_->Width), twipsToPixels(control_->Height));
  placing_ = false;
}

void Follower::readPlace() {
  if (!control_ || placing_) return;
  control_->Left = pixelsToTwips(widget_->x());
  control_->Top = pixelsToTwips(widget_->y());
  control_->Width = pixelsToTwips(widget_->width());
  control_->Height = pixelsToTwips(widget_->height());
}

bool Follower::layoutOwnsWidget() const {
  return widget_->parentWidget() && holds(widget_->parentWidget()->layout(), widget_);
}

}  // namespace platform::forms

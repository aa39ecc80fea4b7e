#include "platform/forms/controls.h"

#include "platform/basic/failure.h"
#include "platform/process/process.h"

#include <QPointer>
#include <QTimerEvent>

#include <algorithm>
#include <cmath>

namespace platform::forms {

namespace {

[[noreturn]] void refuseValue(const Control& control) {
  throw Failure(380, QStringLiteral("Invalid property value"), control.Name());
}

/// Stores the value and says whether it is another one.
template <class T>
bool store(T& field, const T& value) {
  if (field == value) return false;
  field = value;
  return true;
}

}  // namespace

Control::Control(QString name, QObject* parent) : QObject(parent) {
  setObjectName(name);
}

void Control::setVisible(bool on) {
  if (store(visible_, on)) Q_EMIT propertyChanged();
}

void Control::setEnabled(bool on) {
  if (store(enabled_, on)) Q_EMIT propertyChanged();
}

void Control::setToolTipText(const QString& text) {
  if (store(tip_, text)) Q_EMIT propertyChanged();
}

void Control::setCaption(const QString& text) {
  if (store(caption_, text)) Q_EMIT propertyChanged();
}

void Control::setAccessibleName(const QString& text) {
  if (store(accessibleName_, text)) Q_EMIT propertyChanged();
}

void Control::setBackColor(qint32 color) {
  if (store(backColor_, color)) Q_EMIT propertyChanged();
}

void Control::place(int left, int top, int width, int height) {
  Left = left;
  Top = top;
  Width = width;
  Height = height;
  Q_EMIT placed();
}

void CheckBox::setValue(int value) {
  if (value != 0 && value != 1) refuseValue(*this);
  if (!store(value_, value)) return;
  Q_EMIT propertyChanged();
  Q_EMIT Click();
}

void TextBox::setText(const QString& text) {
  if (!store(text_, text)) return;
  Q_EMIT propertyChanged();
  Q_EMIT Change();
}

void ScrollBar::setValue(int value) {
  const auto [low, high] = std::minmax(Min, Max);
  if (!store(value_, std::clamp(value, low, high))) return;
  Q_EMIT propertyChanged();
  Q_EMIT Change();
}

ComboBox::ComboBox(QString name, Style style, QObject* parent)
    : Control(std::move(name), parent), style_(style) {}

void ComboBox::Clear() {
  items_.clear();
  index_ = -1;
  text_.clear();
  Q_EMIT listChanged();
  Q_EMIT propertyChanged();
}

void ComboBox::AddItem(const QString& text) {
  items_.append(text);
  Q_EMIT listChanged();
}

QString ComboBox::List(int index) const {
  return items_.value(index);
}

void ComboBox::setListIndex(int index) {
  if (index < -1 || index >= ListCount()) refuseValue(*this);
  index_ = index;
  text_ = List(index);
  Q_EMIT propertyChanged();
  Q_EMIT Click();
}

void ComboBox::setText(const QString& text) {
  // The present choice is kept among equal entries.
  const int equal = index_ >= 0 && List(index_) == text ? index_ : static_cast<int>(items_.indexOf(text));
  if (equal < 0 && style_ == Style::DropdownList)
    throw Failure(383, QStringLiteral("'Text' property is read-only"), Name());
  index_ = equal;
  const bool differs = store(text_, text);
  Q_EMIT propertyChanged();
  if (differs) Q_EMIT Change();
}

void OptionButton::setValue(bool on) {
  if (!store(value_, on)) return;
  if (on && parent()) {
    const auto siblings = parent()->findChildren<OptionButton*>(Qt::FindDirectChildrenOnly);
    for (OptionButton* other : siblings)
      if (other != this) other->setValue(false);
  }
  Q_EMIT propertyChanged();
  if (on) Q_EMIT Click();
}

void TabStrip::Clear() {
  tabs_.clear();
  index_ = -1;
  Q_EMIT tabsChanged();
}

void TabStrip::Add(const QString& caption) {
  tabs_.append(caption);
  if (index_ < 0) index_ = 0;
  Q_EMIT tabsChanged();
}

void TabStrip::setIndex(int index) {
  if (index < 0 || index >= Count()) refuseValue(*this);
  if (!store(index_, index)) return;
  Q_EMIT propertyChanged();
  Q_EMIT Click();
}

void DTPicker::setValue(const basic::Date& date) {
  if (!std::isfinite(date.serial())) refuseValue(*this);
  if (store(value_, date)) Q_EMIT propertyChanged();
}

Timer::Timer(QString name, QObject* parent) : Control(std::move(name), parent) {}

void Timer::setInterval(int milliseconds) {
  if (milliseconds < 0) refuseValue(*this);
  if (!store(interval_, milliseconds)) return;
  restart();
  Q_EMIT propertyChanged();
}

void Timer::setTimerEnabled(bool on) {
  if (!store(on_, on)) return;
  restart();
  Q_EMIT propertyChanged();
}

void Timer::restart() {
  if (id_ != 0) killTimer(id_);
  id_ = on_ && interval_ > 0 ? startTimer(interval_) : 0;
}

void Timer::timerEvent(QTimerEvent* event) {
  if (event->timerId() != id_) {
    Control::timerEvent(event);
    return;
  }
  if (ticking_) return;
  ticking_ = true;
  const QPointer<Timer> alive(this);
  process::guardEvent([this] { Q_EMIT Tick(); });
  if (alive) ticking_ = false;
}

}  // namespace platform::forms

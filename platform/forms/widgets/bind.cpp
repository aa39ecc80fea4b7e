#include "platform/forms/widgets/bind.h"

#include "platform/forms/widgets/follower.h"

#include <QAbstractSlider>
#include <QCheckBox>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QSpinBox>
#include <QTabBar>

#include <algorithm>
#include <optional>

namespace platform::forms {

namespace {

/// Tells a caption that the widget does not show yet from the one it was given last. What the form has made
/// of that one since, such as a mnemonic, must not be overwritten.
class NewCaption {
 public:
  bool operator()(const QString& caption) {
    if (last_ == caption) return false;
    last_ = caption;
    return true;
  }

 private:
  std::optional<QString> last_;
};

}  // namespace

QString withoutMnemonic(const QString& caption) {
  QString plain;
  plain.reserve(caption.size());
  for (qsizetype i = 0; i < caption.size(); ++i) {
    if (caption[i] == u'&' && i + 1 < caption.size()) ++i;
    plain.append(caption[i]);
  }
  return plain;
}

void bind(Label& control, QLabel* widget, const QString& accessibleName) {
  widget->setTextFormat(Qt::PlainText);
  new Follower(control, widget, accessibleName, [&control, widget, isNew = NewCaption()]() mutable {
    // Without a buddy the tool kit would show the "&".
    if (isNew(control.Caption()))
      widget->setText(widget->buddy() ? control.Caption() : withoutMnemonic(control.Caption()));
  });
}

void bind(Frame& control, QGroupBox* widget, const QString& accessibleName) {
  new Follower(control, widget, accessibleName, [&control, widget, isNew = NewCaption()]() mutable {
    if (isNew(control.Caption())) widget->setTitle(control.Caption());
  });
}

void bindExtender(Control& control, QWidget* widget, const QString& accessibleName) {
  new Follower(control, widget, accessibleName, [] {});
}

void bind(CommandButton& control, QPushButton* widget, const QString& accessibleName) {
  auto* follower =
      new Follower(control, widget, accessibleName, [&control, widget, isNew = NewCaption()]() mutable {
        if (isNew(control.Caption())) widget->setText(control.Caption());
      });
  QObject::connect(widget, &QPushButton::clicked, follower,
                   [follower, &control] { follower->feedBack([&control] { control.click(); }); });
}

void bind(CheckBox& control, QCheckBox* widget, const QString& accessibleName) {
  auto* follower =
      new Follower(control, widget, accessibleName, [&control, widget, isNew = NewCaption()]() mutable {
        if (isNew(control.Caption())) widget->setText(control.Caption());
        widget->setChecked(control.Value() == 1);
      });
  QObject::connect(widget, &QCheckBox::toggled, follower, [follower, &control](bool on) {
    follower->feedBack([&control, on] { control.setValue(on ? 1 : 0); });
  });
}

void bind(OptionButton& control, QRadioButton* widget, const QString& accessibleName) {
  auto* follower =
      new Follower(control, widget, accessibleName, [&control, widget, isNew = NewCaption()]() mutable {
        if (isNew(control.Caption())) widget->setText(control.Caption());
        if (widget->isChecked() == control.Value()) return;
        // A chosen button of a group cannot be let go by itself; code can.
        const bool exclusive = widget->autoExclusive();
        if (!control.Value()) widget->setAutoExclusive(false);
        widget->setChecked(control.Value());
        widget->setAutoExclusive(exclusive);
      });
  QObject::connect(widget, &QRadioButton::toggled, follower, [follower, &control](bool on) {
    follower->feedBack([&control, on] { control.setValue(on); });
  });
}

void bind(TextBox& control, QLineEdit* widget, const QString& accessibleName) {
  auto* follower = new Follower(control, widget, accessibleName, [&control, widget] {
    if (widget->text() != control.Text()) widget->setText(control.Text());  // setting moves the cursor
  });
  QObject::connect(widget, &QLineEdit::textChanged, follower, [follower, &control](const QString& text) {
    follower->feedBack([&control, text] { control.setText(text); });
  });
}

void bind(ScrollBar& control, QAbstractSlider* widget, const QString& accessibleName) {
  auto* follower = new Follower(control, widget, accessibleName, [&control, widget] {
    widget->setRange(std::min(control.Min, control.Max), std::max(control.Min, control.Max));
    widget->setInvertedAppearance(control.Min > control.Max);
    widget->setValue(control.Value());
  });
  QObject::connect(widget, &QAbstractSlider::valueChanged, follower, [follower, &control](int value) {
    follower->feedBack([&control, value] { control.setValue(value); });
  });
}

void bind(ScrollBar& control, QSpinBox* widget, const QString& accessibleName) {
  auto* follower = new Follower(control, widget, accessibleName, [&control, widget] {
    widget->setRange(std::min(control.Min, control.Max), std::max(control.Min, control.Max));
    widget->setValue(control.Value());
  });
  QObject::connect(widget, &QSpinBox::valueChanged, follower, [follower, &control](int value) {
    follower->feedBack([&control, value] { control.setValue(value); });
  });
  follower->keepWheelForFocus();
}

void bind(TabStrip& control, QTabBar* widget, const QString& accessibleName) {
  auto* follower = new Follower(control, widget, accessibleName, [&control, widget] {
    while (widget->count() > control.Count()) widget->removeTab(widget->count() - 1);
    for (int i = 0; i < control.Count(); ++i) {
      const QString text = control.TabCaption(i).replace(u'&', QStringLiteral("&&"));
      if (i == widget->count())
        widget->addTab(text);
      else if (widget->tabText(i) != text)
        widget->setTabText(i, text);
    }
    widget->setCurrentIndex(control.Index());
    widget->updateGeometry();  // a bar that is not shown yet does not tell its layout that it has grown
  });
  QObject::connect(&control, &TabStrip::tabsChanged, follower, &Follower::follow);
  QObject::connect(widget, &QTabBar::currentChanged, follower, [follower, &control](int index) {
    follower->feedBack([&control, index] { control.setIndex(index); });
  });
}

}  // namespace platform::forms

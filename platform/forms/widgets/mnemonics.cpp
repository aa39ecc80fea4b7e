#include "platform/forms/widgets/mnemonics.h"

#include <QAbstractButton>
#include <QLabel>
#include <QPointer>
#include <QSet>

namespace platform::forms {

namespace {

/// Position of the letter for a caption, or -1.
qsizetype choose(const QString& caption, const QSet<QChar>& taken) {
  const auto isFree = [&](qsizetype i) {
    return caption[i].isLetterOrNumber() && !taken.contains(caption[i].toLower());
  };
  for (qsizetype i = 0; i < caption.size(); ++i)
    if ((i == 0 || caption[i - 1].isSpace()) && isFree(i)) return i;
  for (qsizetype i = 0; i < caption.size(); ++i)
    if (isFree(i)) return i;
  return -1;
}

/// Is it shown as soon as its window is? A widget of a window that was never shown is not hidden by anybody.
bool isShown(const QWidget* widget) {
  for (; widget && !widget->isWindow(); widget = widget->parentWidget())
    if (widget->isHidden() && widget->testAttribute(Qt::WA_WState_ExplicitShowHide)) return false;
  return true;
}

QString escaped(QString text) {
  return text.replace(u'&', QStringLiteral("&&"));
}

void setText(QWidget* widget, const QString& text) {
  if (auto* button = qobject_cast<QAbstractButton*>(widget))
    button->setText(text);
  else if (auto* label = qobject_cast<QLabel*>(widget))
    label->setText(text);
}

}  // namespace

QStringList Mnemonics::assigned(const QStringList& captions) {
  QSet<QChar> taken;
  QStringList texts;
  for (const QString& caption : captions) {
    const qsizetype at = choose(caption, taken);
    if (at >= 0) taken.insert(caption[at].toLower());
    texts.append(at < 0 ? escaped(caption) : escaped(caption.left(at)) + u'&' + escaped(caption.mid(at)));
  }
  return texts;
}

void Mnemonics::add(Control& control, QWidget* widget) {
  captioned_.append({&control, widget});
  watch(control);
  apply();
}

void Mnemonics::watch(Control& container) {
  connect(&container, &Control::propertyChanged, this, &Mnemonics::apply, Qt::UniqueConnection);
}

void Mnemonics::apply() {
  captioned_.removeIf([](const Captioned& entry) { return !entry.control || !entry.widget; });
  QStringList captions;
  for (const Captioned& entry : captioned_)
    captions.append(isShown(entry.widget) ? entry.control->Caption() : QString());
  const QStringList texts = assigned(captions);
  for (qsizetype i = 0; i < captioned_.size(); ++i)
    setText(captioned_[i].widget,
            captions[i].isEmpty() ? escaped(captioned_[i].control->Caption()) : texts[i]);
}

}  // namespace platform::forms

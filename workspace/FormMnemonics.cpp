#include "workspace/FormMnemonics.h"

#include <QAbstractButton>
#include <QLabel>
#include <QPointer>
#include <QSet>

namespace hourbook {

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

void setText(QWidget* widget, const QString& text) {
  if (auto* button = qobject_cast<QAbstractButton*>(widget))
    button->setText(text);
  else if (auto* label = qobject_cast<QLabel*>(widget))
    label->setText(text);
}

}  // namespace

QStringList FormMnemonics::assigned(const QStringList& captions) {
  QSet<QChar> taken;
  QStringList texts;
  for (const QString& caption : captions) {
    const qsizetype at = choose(caption, taken);
    QString text = caption;
    if (at >= 0) {
      taken.insert(caption[at].toLower());
      text = QString(caption.left(at)).replace(u'&', QStringLiteral("&&")) + u'&' +
             QString(caption.mid(at)).replace(u'&', QStringLiteral("&&"));
    }
    texts.append(text);
  }
  return texts;
}

void FormMnemonics::add(platform::forms::Control& control, QWidget* widget) {
  captioned_.append({&control, widget});
  connect(&control, &platform::forms::Control::propertyChanged, this, &FormMnemonics::apply);
  apply();
}

void FormMnemonics::apply() {
  QStringList captions;
  for (const Captioned& entry : captioned_)
    captions.append(entry.control ? entry.control->Caption() : QString());
  const QStringList texts = assigned(captions);
  for (qsizetype i = 0; i < captioned_.size(); ++i)
    if (captioned_[i].widget) setText(captioned_[i].widget, texts[i]);
}

}  // namespace hourbook

#include "platform/forms/widgets/mnemonics.h"

#include <QAbstractButton>
#include <QHash>
#include <QLabel>
#include <QPointer>
#include <QSet>

namespace platform::forms {

namespace {

/// Gives letters to captions; a letter that stands in two is given so that both have one, where that can be.
class Letters {
 public:
  explicit Letters(const QStringList& captions) : captions_(captions), chosen_(captions.size(), -1) {
    for (qsizetype i = 0; i < captions.size(); ++i) {
      QSet<QChar> asked;
      give(i, asked);
    }
  }
  /// Position of the letter, or -1.
  qsizetype of(qsizetype caption) const { return chosen_[caption]; }

 private:
  /// The initials of words first, then all.
  QList<qsizetype> wishes(const QString& caption) const {
    QList<qsizetype> initials, others;
    for (qsizetype i = 0; i < caption.size(); ++i)
      if (caption[i].isLetterOrNumber()) (i == 0 || caption[i - 1].isSpace() ? initials : others).append(i);
    return initials + others;
  }

  bool give(qsizetype caption, QSet<QChar>& asked) {
    const QString& text = captions_[caption];
    const QList<qsizetype> wished = wishes(text);
    for (const qsizetype at : wished)
      if (!owners_.contains(text[at].toLower())) return take(caption, at);
    for (const qsizetype at : wished) {
      const QChar letter = text[at].toLower();
      if (asked.contains(letter)) continue;
      asked.insert(letter);
      if (give(owners_[letter], asked)) return take(caption, at);
    }
    return false;
  }

  bool take(qsizetype caption, qsizetype at) {
    owners_[captions_[caption][at].toLower()] = caption;
    chosen_[caption] = at;
    return true;
  }

  const QStringList& captions_;
  QList<qsizetype> chosen_;
  QHash<QChar, qsizetype> owners_;  // by letter
};

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
  const Letters letters(captions);
  QStringList texts;
  for (qsizetype i = 0; i < captions.size(); ++i) {
    const QString& caption = captions[i];
    const qsizetype at = letters.of(i);
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

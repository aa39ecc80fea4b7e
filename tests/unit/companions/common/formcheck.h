#pragma once
#include <QAbstractButton>
#include <QAbstractItemView>
#include <QAbstractSpinBox>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QSet>
#include <QTabBar>
#include <QTextEdit>
#include <QWidget>

#include <algorithm>

namespace tests {

/// Is it one that a user works with, and not a part of one that is made of several?
inline bool isControl(const QWidget& widget) {
  const bool kind = qobject_cast<const QAbstractButton*>(&widget) ||
                    qobject_cast<const QLineEdit*>(&widget) || qobject_cast<const QComboBox*>(&widget) ||
                    qobject_cast<const QAbstractItemView*>(&widget) ||
                    qobject_cast<const QTextEdit*>(&widget) ||
                    qobject_cast<const QAbstractSpinBox*>(&widget) || qobject_cast<const QTabBar*>(&widget);
  if (!kind || widget.objectName().startsWith(QStringLiteral("qt_"))) return false;
  for (const QWidget* parent = widget.parentWidget(); parent; parent = parent->parentWidget())
    if (qobject_cast<const QComboBox*>(parent) || qobject_cast<const QLineEdit*>(parent) ||
        qobject_cast<const QAbstractItemView*>(parent) || qobject_cast<const QTabBar*>(parent) ||
        qobject_cast<const QAbstractSpinBox*>(parent))
      return false;
  return true;
}

inline QString accessibleNameOf(const QWidget& widget) {
  if (!widget.accessibleName().isEmpty()) return widget.accessibleName();
  if (const auto* button = qobject_cast<const QAbstractButton*>(&widget)) return button->text();
  // A tab bar's pages bear the names.
  if (const auto* bar = qobject_cast<const QTabBar*>(&widget)) return bar->tabText(0);
  return {};
}

/// What is wrong with a form in the state it is in: controls without an accessible name, controls in sight
/// that Tab does not reach, mnemonics that two controls share.
inline QStringList formFaults(QWidget& form) {
  QStringList faults;
  QSet<const QWidget*> inChain;
  for (QWidget* next = form.nextInFocusChain(); next && next != &form; next = next->nextInFocusChain())
    inChain.insert(next);
  QMap<QChar, QString> mnemonics;
  const auto takeMnemonic = [&](const QString& text) {
    for (qsizetype at = text.indexOf(u'&'); at >= 0; at = text.indexOf(u'&', at + 2)) {
      const QChar letter = text.mid(at + 1, 1).toLower().append(u' ').front();
      if (letter == u'&') continue;
      if (mnemonics.contains(letter))
        faults.append(QStringLiteral("\"%1\" and \"%2\" share a mnemonic").arg(mnemonics[letter], text));
      mnemonics[letter] = text;
    }
  };
  for (QWidget* widget : form.findChildren<QWidget*>()) {
    if (!widget->isVisible()) continue;
    if (const auto* label = qobject_cast<QLabel*>(widget); label && label->buddy())
      takeMnemonic(label->text());
    if (!isControl(*widget)) continue;
    if (const auto* button = qobject_cast<QAbstractButton*>(widget)) takeMnemonic(button->text());
    const QString called =
        QStringLiteral("%1 \"%2\"")
            .arg(QString::fromLatin1(widget->metaObject()->className()), widget->objectName());
    if (accessibleNameOf(*widget).isEmpty())
      faults.append(called + QStringLiteral(" has no accessible name"));
    if (accessibleNameOf(*widget).contains(u'&') && !qobject_cast<QAbstractButton*>(widget) &&
        !qobject_cast<QTabBar*>(widget))
      faults.append(called + QStringLiteral(" is called with the mark of a mnemonic"));
    const bool reached = inChain.contains(widget) && (widget->focusPolicy() & Qt::TabFocus);
    if (widget->isEnabled() && !reached) faults.append(called + QStringLiteral(" is not reached by Tab"));
  }
  return faults;
}

}  // namespace tests

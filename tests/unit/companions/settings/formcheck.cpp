#include "formcheck.h"

#include <QAbstractButton>
#include <QAbstractItemView>
#include <QAbstractSpinBox>
#include <QAccessible>
#include <QApplication>
#include <QComboBox>
#include <QKeySequence>
#include <QLabel>
#include <QLineEdit>
#include <QMap>
#include <QScrollArea>
#include <QScrollBar>
#include <QTabBar>
#include <QTest>

namespace hourbook::tests {

namespace {

bool isControl(const QWidget* widget) {
  if (qobject_cast<const QScrollBar*>(widget->parentWidget())) return false;
  // parts of a control, such as the field of a combo box
  if (qobject_cast<const QAbstractSpinBox*>(widget->parentWidget()) ||
      qobject_cast<const QComboBox*>(widget->parentWidget()) ||
      qobject_cast<const QAbstractItemView*>(widget->parentWidget()) ||
      qobject_cast<const QTabBar*>(widget->parentWidget()))
    return false;
  return qobject_cast<const QLineEdit*>(widget) || qobject_cast<const QAbstractButton*>(widget) ||
         qobject_cast<const QComboBox*>(widget) || qobject_cast<const QAbstractItemView*>(widget) ||
         qobject_cast<const QAbstractSpinBox*>(widget) || qobject_cast<const QTabBar*>(widget);
}

QList<QWidget*> controlsOf(QWidget& form) {
  QList<QWidget*> controls;
  for (QWidget* widget : form.findChildren<QWidget*>())
    if (widget->isVisible() && isControl(widget)) controls.append(widget);
  return controls;
}

QString nameOf(const QWidget* widget) {
  return widget->objectName().isEmpty() ? QString::fromLatin1(widget->metaObject()->className())
                                        : widget->objectName();
}

QString accessibleName(QWidget* widget) {
  QAccessibleInterface* interface = QAccessible::queryAccessibleInterface(widget);
  return interface ? interface->text(QAccessible::Name) : QString();
}

/// The letter behind "&" that is not another "&".
QString letterOf(const QString& text) {
  return QKeySequence::mnemonic(text).toString();
}

QStringList letterFaults(QWidget& form) {
  QStringList faults;
  QMap<QString, QString> takers;
  const auto take = [&](const QString& text, const QWidget* widget) {
    const QString letter = letterOf(text);
    if (letter.isEmpty()) return;
    const QString taker = nameOf(widget) + u" \""_qs + text + u'"';
    if (takers.contains(letter)) faults.append(takers[letter] + u" and "_qs + taker + u" share a letter"_qs);
    takers.insert(letter, taker);
  };
  for (QWidget* widget : form.findChildren<QWidget*>()) {
    if (!widget->isVisible()) continue;
    if (const auto* button = qobject_cast<QAbstractButton*>(widget)) take(button->text(), button);
    const auto* label = qobject_cast<QLabel*>(widget);
    if (!label) continue;
    if (label->buddy()) take(label->text(), label);
    if (!label->buddy() && label->textFormat() != Qt::PlainText && !letterOf(label->text()).isEmpty())
      faults.append(u"the label \"%1\" has a letter and leads nowhere"_qs.arg(label->text()));
  }
  return faults;
}

/// What scrolls a control; null for one that stands still.
const QWidget* scrollerOf(const QWidget* control) {
  for (const QWidget* around = control->parentWidget(); around; around = around->parentWidget())
    if (qobject_cast<const QScrollArea*>(around)) return around;
  return nullptr;
}

/// Of a control and the one behind it in Tab's order: is the second above the first, in the same column or
/// row of the form?
bool goesBack(const QWidget& form, const QWidget* first, const QWidget* second) {
  // what is scrolled stands nowhere in particular beside what is not
  if (scrollerOf(first) != scrollerOf(second)) return false;
  const QRect one(first->mapTo(&form, QPoint()), first->size());
  const QRect two(second->mapTo(&form, QPoint()), second->size());
  const bool sameRow = one.top() <= two.bottom() && two.top() <= one.bottom();
  if (sameRow) return two.right() < one.left();
  const bool sameColumn = one.left() <= two.right() && two.left() <= one.right();
  return sameColumn && two.bottom() < one.top();
}

}  // namespace

QList<QWidget*> tabRound(QWidget& window) {
  QList<QWidget*> round;
  constexpr int most = 300;
  for (int i = 0; i < most; ++i) {
    QWidget* now = QApplication::focusWidget();
    if (!now || round.contains(now)) break;
    round.append(now);
    QTest::keyClick(now, Qt::Key_Tab);
  }
  Q_UNUSED(window)
  return round;
}

QStringList formFaults(QWidget& form) {
  QStringList faults = letterFaults(form);
  const QList<QWidget*> controls = controlsOf(form);
  for (QWidget* control : controls) {
    if (accessibleName(control).trimmed().isEmpty())
      faults.append(nameOf(control) + u" has no accessible name"_qs);
    if (control->objectName().isEmpty() && !qobject_cast<QTabBar*>(control))
      faults.append(nameOf(control) + u" \""_qs + accessibleName(control) + u"\" has no object name"_qs);
  }
  const QList<QWidget*> round = tabRound(*form.window());
  for (QWidget* control : controls) {
    const auto* radio = qobject_cast<QAbstractButton*>(control);
    // of radio buttons the chosen one is reached, the others by the arrow keys
    const bool byArrows = radio && radio->autoExclusive() && !radio->isChecked();
    if (control->isEnabled() && !byArrows && control->focusPolicy() & Qt::TabFocus &&
        !round.contains(control))
      faults.append(nameOf(control) + u" is not reached by Tab"_qs);
    if (control->isEnabled() && !(control->focusPolicy() & Qt::TabFocus) && !byArrows)
      faults.append(nameOf(control) + u" takes no focus"_qs);
  }
  QWidget* before = nullptr;
  for (QWidget* control : round) {
    if (!form.isAncestorOf(control)) continue;
    if (before && goesBack(form, before, control))
      faults.append(u"Tab goes back from %1 to %2"_qs.arg(nameOf(before), nameOf(control)));
    before = control;
  }
  return faults;
}

}  // namespace hourbook::tests

#pragma once
#include <QString>
#include <QStringList>
#include <QWidget>

namespace hourbook::tests {

/// What keeps a shown form from being used by keyboard alone or with a screen reader; empty: nothing. Looked
/// at are the controls that can be seen: each needs an accessible name and an object name, each enabled one
/// has to be reached by Tab, in the order in which the eye meets it, and no two may share a letter; a label
/// with a letter leads to a field.
QStringList formFaults(QWidget& form);

/// The controls that Tab leads to from the first one on, once round.
QList<QWidget*> tabRound(QWidget& window);

}  // namespace hourbook::tests

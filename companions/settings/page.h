#pragma once
#include "companions/settings/namedlist.h"

#include <QList>
#include <QString>
#include <QStringList>
#include <QWidget>

namespace hourbook {

/// One page of the settings window. It edits a copy of its own: nothing is written before apply(), and a page
/// that is thrown away has changed nothing.
class SettingsPage : public QWidget {
  Q_OBJECT

 public:
  using QWidget::QWidget;

  /// As the list of pages shows it.
  virtual QString title() const = 0;
  /// Whether apply() would write something else than what was read.
  virtual bool isChanged() const = 0;
  /// Empty: may be saved. Otherwise a clear text of what is wrong, which the page shows at the field, too;
  /// the field has the focus then.
  virtual QString problem() = 0;
  /// Writes. Called only when no page has a problem. Throws platform::Failure; what was written by then is
  /// told in its description.
  virtual void apply() = 0;
  /// The page is about to come to the front: what another page holds may have changed meanwhile.
  virtual void aboutToShow() {}
  /// The lists that all users share, as this page holds them; empty when it has none or cannot reach them.
  virtual QList<NamedList> commonLists() { return {}; }

 Q_SIGNALS:
  /// The user changed something.
  void changed();
};

}  // namespace hourbook

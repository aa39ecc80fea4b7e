#pragma once
#include "companions/settings/common/valuesmodel.h"

#include <QSortFilterProxyModel>

namespace hourbook {

/// Shows the values one of whose texts holds what was typed, sorted as the user wants.
class TextFilter : public QSortFilterProxyModel {
 public:
  explicit TextFilter(QObject* parent) : QSortFilterProxyModel(parent) {
    setSortRole(ValuesModel::sortRole);
    setSortCaseSensitivity(Qt::CaseInsensitive);
    setSortLocaleAware(true);
  }
  void setText(const QString& text) {
    text_ = text;
    invalidateFilter();
  }

 protected:
  bool filterAcceptsRow(int row, const QModelIndex& parent) const override {
    if (text_.isEmpty()) return true;
    for (const int column : {ValuesModel::Name, ValuesModel::Category, ValuesModel::SuperCategory}) {
      const QModelIndex cell = sourceModel()->index(row, column, parent);
      if (cell.data(Qt::EditRole).toString().contains(text_, Qt::CaseInsensitive)) return true;
    }
    return false;
  }

 private:
  QString text_;
};

}  // namespace hourbook

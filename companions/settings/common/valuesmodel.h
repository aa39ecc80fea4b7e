#pragma once
#include "companions/settings/common/commonbuffer.h"

#include <QAbstractTableModel>

namespace hourbook {

/// The values of one list as a table over the buffer, without a copy of its own, so that thousands of values
/// cost no more than the rows in sight.
class ValuesModel : public QAbstractTableModel {
  Q_OBJECT

 public:
  enum Column { Name, Category, SuperCategory, Rate, Enabled, ColumnCount };
  /// What a column is sorted by.
  static constexpr int sortRole = Qt::UserRole;

  ValuesModel(CommonBuffer& buffer, int list, QObject* parent = nullptr);

  int rowCount(const QModelIndex& parent = {}) const override;
  int columnCount(const QModelIndex& parent = {}) const override;
  QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
  bool setData(const QModelIndex& index, const QVariant& value, int role = Qt::EditRole) override;
  QVariant headerData(int section, Qt::Orientation orientation, int role = Qt::DisplayRole) const override;
  Qt::ItemFlags flags(const QModelIndex& index) const override;

  /// What is wrong with a text for a cell; empty: it may be set.
  QString problem(const QModelIndex& index, const QString& text) const;
  /// The same as a heading, by the user's own names where the list has them.
  QString heading(int column) const;

  /// Adds a value by its name and returns its row, or -1 with the reason.
  int addValue(const QString& name, QString& reason);
  void removeValues(const QList<int>& rows);
  /// What the buffer holds has been replaced.
  void reload();
  /// The headings have changed.
  void reloadHeadings() { Q_EMIT headerDataChanged(Qt::Horizontal, 0, ColumnCount - 1); }
  void setWritable(bool writable) { writable_ = writable; }

 Q_SIGNALS:
  /// A text was not taken; the value is as it was.
  void refused(const QString& text, const QString& reason);
  void renamed(const QString& from);
  void edited();

 private:
  QList<CommonValue>& values() const { return buffer_.edited.lists[list_].values; }
  QString setText(const QModelIndex& index, const QString& text);

  CommonBuffer& buffer_;
  int list_;
  bool writable_ = true;
};

}  // namespace hourbook

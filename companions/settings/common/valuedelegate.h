#pragma once
#include <QStyledItemDelegate>

#include <functional>

namespace hourbook {

/// Edits a cell in a line. A text that may not stand is told at once, and Enter or Tab do not leave the cell
/// with it; Escape does.
class ValueDelegate : public QStyledItemDelegate {
  Q_OBJECT

 public:
  using Check = std::function<QString(const QModelIndex& index, const QString& text)>;
  using Heading = std::function<QString(int column)>;
  ValueDelegate(Check check, Heading heading, QObject* parent);

  QWidget* createEditor(QWidget* parent, const QStyleOptionViewItem& option,
                        const QModelIndex& index) const override;
  void setModelData(QWidget* editor, QAbstractItemModel* model, const QModelIndex& index) const override;
  bool eventFilter(QObject* watched, QEvent* event) override;

 Q_SIGNALS:
  /// What is wrong with the text that is being typed; empty: nothing.
  void typed(const QString& problem) const;

 private:
  Check check_;
  Heading heading_;
};

}  // namespace hourbook

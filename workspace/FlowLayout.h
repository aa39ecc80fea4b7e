#pragma once
#include <QLayout>

namespace hourbook {

/// Lays its items out in rows as text is set: left to right (right to left in such languages), the next row
/// when one is full. Items of a row stand on its lower edge. Items without visible content take no room.
class FlowLayout : public QLayout {
 public:
  explicit FlowLayout(QWidget* parent = nullptr) : QLayout(parent) {}
  ~FlowLayout() override;

  void addLayout(QLayout* layout);
  /// What follows goes to the far end of its row, in the rows below too.
  void addStretch();

  void addItem(QLayoutItem* item) override { items_.append(item); }
  int count() const override { return static_cast<int>(items_.size()); }
  QLayoutItem* itemAt(int index) const override { return items_.value(index); }
  QLayoutItem* takeAt(int index) override;
  Qt::Orientations expandingDirections() const override { return {}; }
  bool hasHeightForWidth() const override { return true; }
  int heightForWidth(int width) const override { return arrange(QRect(0, 0, width, 0), false); }
  QSize sizeHint() const override;
  QSize minimumSize() const override;
  void setGeometry(const QRect& rect) override;

 private:
  struct Row {
    QList<QLayoutItem*> items;
    bool atFarEnd = false;  // begins behind a stretch
    int width = 0;
    int height = 0;
  };
  QList<Row> rowsFor(int width) const;
  int arrange(const QRect& rect, bool place) const;
  void placeRow(const Row& row, const QRect& area, int top) const;
  int gap() const;

  QList<QLayoutItem*> items_;
};

}  // namespace hourbook

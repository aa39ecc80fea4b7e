#pragma once
#include "platform/owc/cellstore.h"

namespace platform::owc {

/// The contents that a change of cells took away; one step, which is used up by taking it back.
class UndoStep {
 public:
  /// Remembers a cell as it is now, before it changes.
  void remember(const CellStore& cells, int row, int column);
  bool isEmpty() const { return before_.isEmpty(); }
  /// Around all remembered cells.
  const CellRect& rect() const { return rect_; }
  QList<CellRect> cells() const;
  void takeBack(CellStore& cells) const;

 private:
  struct Before {
    int row, column;
    basic::Value value;
    QString formula;
  };
  QList<Before> before_;
  CellRect rect_;
};

}  // namespace platform::owc

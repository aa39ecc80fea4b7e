#pragma once
#include "platform/owc/address.h"
#include "platform/owc/cellformat.h"

#include <QList>

namespace platform::owc {

class Spreadsheet;

/// `Borders` of a range: of all edges of all its cells, or, after `Item`, of one outer edge of the range.
/// Numbers are those of the sheet's generation; others fail with 1004. A colour or weight given to a line
/// that is not there draws it solid. Locked cells of a protected sheet refuse, as with every format.
class Borders {
 public:
  Borders(Spreadsheet& sheet, const CellRect& rect);
  /// Generation 9: 3 right, 4 top. Generations 10 and 11: 7 left, 8 top, 9 bottom, 10 right.
  Borders Item(int edge) const;
  void setColor(qint32 color);   // blue-green-red
  void setWeight(int weight);    // 1 hairline, 2 thin, 4 thick; medium is 3, or -4138 in 10 and 11
  void setLineStyle(int style);  // 9: 0 none, 1 solid, 3 dashes; 10 and 11: xlContinuous and the like
  qint32 Color() const;          // of the first cell's first edge of these
  int Weight() const;
  int LineStyle() const;

 private:
  template <class Change>
  void change(Change change);
  BorderLine first() const;
  Spreadsheet* sheet_;
  CellRect rect_;
  QList<Edge> edges_;
};

}  // namespace platform::owc

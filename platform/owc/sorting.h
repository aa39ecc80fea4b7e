#pragma once
#include "platform/owc/cellstore.h"

namespace platform::owc {

/// Sorts the rows of a range by their first cells, ascending: numbers (also those in texts), texts without
/// regard to case, truth values, blanks. Rows of equal first cells keep their order, empty rows come last.
/// Contents move, formats stay; formulas read on from their new row.
void sortRows(CellStore& cells, const CellRect& rect);

}  // namespace platform::owc

#pragma once
#include "platform/owc/address.h"

namespace platform::owc {

class Spreadsheet;

/// Cells as an HTML table that stands by itself: one row and cell for each, what is shown as escaped text,
/// fonts, colours and alignments in the cells' own styles. Hidden columns are left out.
QString htmlTable(const Spreadsheet& sheet, const CellRect& rect);

}  // namespace platform::owc

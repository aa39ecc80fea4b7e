#pragma once
#include "platform/owc/address.h"

namespace platform::owc {

class Spreadsheet;

/// One step in a direction of the four; hidden columns are passed over. nullopt at the end of the bounds.
struct Step {
  int down = 0, right = 0;
};
std::optional<CellRect> neighbour(const Spreadsheet& sheet, const CellRect& cell, Step step,
                                  const CellRect& bounds);
/// As Ctrl and an arrow go: to the last cell of a filled stretch, else to the next filled cell, else to the
/// end of the bounds.
CellRect edgeOfData(const Spreadsheet& sheet, const CellRect& cell, Step step, const CellRect& bounds);
/// Where Enter goes, or against it; nullopt when it stays.
std::optional<CellRect> afterReturn(const Spreadsheet& sheet, const CellRect& cell, bool backwards,
                                    const CellRect& bounds);

}  // namespace platform::owc

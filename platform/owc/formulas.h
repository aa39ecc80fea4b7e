#pragma once
#include "platform/owc/cellstore.h"

namespace platform::owc {

/// A cell's number, as formulas and sorting see it: numbers, dates and money are, and so is a text that reads
/// as a decimal number with "." or with the system's own sign, unless its cell has the format "Text".
std::optional<double> numberOf(const basic::Value& value, const CellFormat& format);

/// Calculates formulas, each by itself with the values that it reads, so that one that cannot be calculated
/// spoils only its own cell and those that read it. Formulas that read each other in a circle show "#REF!".
///
/// In a range of several cells only numbers count, except for COUNTA, which counts whatever is filled.
/// Comparisons give 1 and 0.
class FormulaBook {
 public:
  explicit FormulaBook(CellStore& cells) : cells_(&cells) {}
  /// All formulas, or those that a change of some cells reaches, themselves among these. The cells that came
  /// to something new.
  QList<CellRect> calculate(const std::optional<CellRect>& changed);
  /// The formulas of a range alone, from what the others came to before.
  void calculateOnly(const CellRect& rect);

 private:
  using Place = CellStore::Place;
  QSet<Place> reachedFrom(const CellRect& changed) const;
  CellStore* cells_;
};

}  // namespace platform::owc

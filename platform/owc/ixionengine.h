#pragma once
#include "platform/basic/value.h"
#include "platform/owc/formulatext.h"

namespace platform::owc {

/// A cell that a formula reads.
struct FormulaInput {
  int row = 1, column = 1;
  std::optional<double> number;
  QString text;  // when it is no number
};

struct FormulaResult {
  basic::Value value;
  bool failed = false;  // the value is the text of an error
};

/// What a formula comes to with these cells, through ixion. A function that ixion does not have gives
/// "#NAME?". Never throws.
FormulaResult calculated(const FormulaText& formula, const QList<FormulaInput>& inputs);

}  // namespace platform::owc

#pragma once
#include "platform/basic/value.h"

namespace hourbook {

/// A rate as the user's system writes numbers: its decimal sign, two decimals or four.
QString rateText(const platform::basic::Currency& rate);

struct ReadRate {
  platform::basic::Currency rate;
  QString problem;  // why the text is no rate, for the user; empty: it is one
};
/// Reads a rate typed or pasted in the system's format; signs between thousands may stand where they belong.
/// An empty text is 0.
ReadRate readRate(const QString& text);

}  // namespace hourbook

#pragma once
#include <QDateTime>

namespace platform::outlook {

/// The starts that a filter lets through, both ends included; an invalid end is open.
struct StartRange {
  QDateTime from, to;
};

/// Reads a filter such as `[Start] >="#1/2/2024 00:00#" and [Start]<= "1/3/2024 23:59#"`. Failure with the
/// filter in its description when it cannot be read.
StartRange readFilter(const QString& filter);

}  // namespace platform::outlook

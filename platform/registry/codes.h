#pragma once
#include "platform/basic/value.h"

#include <optional>

namespace platform::registry {

/// What the registry keeps of a value: texts, and whole numbers of 32 or 64 bits (a boolean becomes 0 or 1).
/// Nothing for what it has no kind for: dates, money, fractions, Empty and Null.
std::optional<basic::Value> storable(const basic::Value& value);

}  // namespace platform::registry

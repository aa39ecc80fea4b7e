#pragma once
#include "platform/basic/failure.h"

#include <optional>

namespace hourbook {

/// Runs exactly the statements given and goes on when they fail. What was caught is the pending error; nothing else
/// in the program swallows a failure.
template <class Statements>
std::optional<platform::Failure> tolerate(Statements&& statements) {
  try {
    statements();
    return std::nullopt;
  } catch (const platform::Failure& failure) {
    return failure;
  }
}

}  // namespace hourbook

#pragma once
#include "platform/basic/failure.h"

namespace hourbook {

/// What a pointer leads to; Failure 91 when it leads to nothing.
template <class Pointer>
auto& present(const Pointer& pointer) {
  if (!pointer)
    throw platform::Failure(platform::failure::objectNotSet,
                            QStringLiteral("Object variable or With block variable not set"));
  return *pointer;
}

}  // namespace hourbook

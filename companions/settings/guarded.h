#pragma once
#include "platform/basic/failure.h"

#include <functional>

namespace hourbook {

/// Runs procedures of the product, which end the process when they fail, so that what they failed with comes
/// out as platform::Failure and this program goes on. Their failure report is not shown; any other question
/// they ask is.
void guarded(const std::function<void()>& work);

}  // namespace hourbook

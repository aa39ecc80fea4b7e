#pragma once
#include "platform/basic/failure.h"

#include <functional>

namespace hourbook {

/// A step that a procedure of the product has ended without a failure, by ending the process.
class StepEnded : public platform::Failure {
 public:
  using Failure::Failure;
};

/// Runs procedures of the product, which end the process when they fail, so that what they failed with comes
/// out as platform::Failure and this program goes on. Their failure report is not shown; any other question
/// they ask is. An end without a failure comes out as StepEnded.
void guarded(const std::function<void()>& work);

}  // namespace hourbook

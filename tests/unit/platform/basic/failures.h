#pragma once
#include "platform/basic/failure.h"

#include <gtest/gtest.h>

/// The number of the failure that an action ends in; 0 when it ends well.
template <class Action>
qint32 failureNumber(Action action) {
  try {
    action();
  } catch (const platform::Failure& failure) {
    return failure.number();
  }
  return 0;
}

#pragma once
#include <QString>

#include <functional>

namespace bench {

/// Runs ours and the floor in turns, `rounds` times each after one warm-up, and prints both medians and the
/// median of the ratios. A machine's speed drifts; only the ratio of one run says anything.
void compare(const QString& name, int rounds, const std::function<void()>& ours,
             const std::function<void()>& floor);

}  // namespace bench

#pragma once
#include <QStringList>

#include <functional>
#include <vector>

namespace hourbook {

/// What takes back the steps of a save, the last first. Steps that stay are dropped with it.
class Undo {
 public:
  void add(std::function<void()> step) { steps_.push_back(std::move(step)); }
  /// Each step throws platform::Failure when it cannot be taken back; the others are taken back all the same.
  /// The texts of those that could not.
  QStringList takeBack();

 private:
  std::vector<std::function<void()>> steps_;
};

}  // namespace hourbook

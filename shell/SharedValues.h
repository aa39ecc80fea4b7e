#pragma once
#include "platform/basic/failure.h"

#include <QString>

namespace hourbook {

/// The program-wide values of one folder. They are made in `Main` and live for the whole run; a test makes its own
/// with a scope. There are no other mutable globals. Use before they are made throws Failure 91.
template <class Values>
class Shared {
 public:
  static Values& current() {
    if (!slot())
      throw platform::Failure(platform::failure::objectNotSet,
                              QStringLiteral("Object variable or With block variable not set"));
    return *slot();
  }
  static bool exists() { return slot() != nullptr; }

  /// Makes fresh values and puts them in force for the life of the scope. Scopes nest.
  class Scope {
   public:
    Scope() : previous_(slot()) { slot() = &values_; }
    ~Scope() { slot() = previous_; }
    Scope(const Scope&) = delete;
    Scope& operator=(const Scope&) = delete;
    Values& operator*() { return values_; }
    Values* operator->() { return &values_; }

   private:
    Values values_;
    Values* previous_;
  };

 private:
  static Values*& slot() {
    static Values* inForce = nullptr;
    return inForce;
  }
};

}  // namespace hourbook

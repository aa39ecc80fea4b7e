#pragma once
#include "platform/owc/generation.h"

#include <functional>

namespace platform::owc {

/// A property that is read and set like a field, as the component's is. Where the generation does not have
/// it, both fail with 438. Two names of one thing (`DisplayColHeaders`, `DisplayColumnHeadings`) share their
/// value.
template <class T>
class Property {
 public:
  Property(const char* name, bool exists, T& value, std::function<void()> changed = {})
      : name_(name), exists_(exists), value_(&value), changed_(std::move(changed)) {}
  Property(const Property&) = delete;
  Property& operator=(const Property&) = delete;

  operator T() const {
    requireMember(exists_, name_);
    return *value_;
  }
  Property& operator=(T value) {
    requireMember(exists_, name_);
    if (*value_ == value) return *this;
    *value_ = value;
    if (changed_) changed_();
    return *this;
  }

 private:
  const char* name_;
  bool exists_;
  T* value_;
  std::function<void()> changed_;
};

}  // namespace platform::owc

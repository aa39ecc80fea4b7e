#include "platform/registry/registry.h"

#include "platform/basic/failure.h"

namespace platform::registry {

namespace {

Registry*& inForce() {
  static Registry* registry = nullptr;
  return registry;
}

}  // namespace

Registry& Registry::current() {
  if (!inForce())
    throw Failure(failure::objectNotSet, QStringLiteral("Object variable or With block variable not set"),
                  QStringLiteral("Registry"));
  return *inForce();
}

ScopedRegistry::ScopedRegistry(Registry& registry) : previous_(inForce()) {
  inForce() = &registry;
}

ScopedRegistry::~ScopedRegistry() {
  inForce() = previous_;
}

}  // namespace platform::registry

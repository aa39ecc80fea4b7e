#include "platform/automation/components.h"

namespace platform::automation {

namespace {

Components*& inForce() {
  static Components* components = nullptr;
  return components;
}

[[noreturn]] void cannotCreate(const QString& progId) {
  throw Failure(failure::cantCreateObject, QStringLiteral("ActiveX component can't create object"), progId);
}

}  // namespace

std::any Components::create(const QString& progId) const {
  const auto found = factories_.constFind(progId.toLower());
  if (found == factories_.cend()) cannotCreate(progId);
  return (*found)();
}

std::any Components::getRunning(const QString& progId) const {
  const auto found = running_.constFind(progId.toLower());
  if (found == running_.cend()) cannotCreate(progId);
  return (*found)();
}

Components& Components::current() {
  if (!inForce())
    throw Failure(failure::objectNotSet, QStringLiteral("Object variable or With block variable not set"));
  return *inForce();
}

ScopedComponents::ScopedComponents(Components& components) : previous_(inForce()) {
  inForce() = &components;
}

ScopedComponents::~ScopedComponents() {
  inForce() = previous_;
}

}  // namespace platform::automation

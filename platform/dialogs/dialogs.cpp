#include "platform/dialogs/dialogs.h"

#include "platform/basic/failure.h"

namespace platform::dialogs {

namespace {

Dialogs*& inForce() {
  static Dialogs* dialogs = nullptr;
  return dialogs;
}

}  // namespace

Dialogs& Dialogs::current() {
  if (!inForce())
    throw Failure(failure::objectNotSet, QStringLiteral("Object variable or With block variable not set"),
                  QStringLiteral("Dialogs"));
  return *inForce();
}

ScopedDialogs::ScopedDialogs(Dialogs& dialogs) : previous_(inForce()) {
  inForce() = &dialogs;
}

ScopedDialogs::~ScopedDialogs() {
  inForce() = previous_;
}

}  // namespace platform::dialogs

#include "platform/registry/memory/memory.h"

#include "platform/registry/codes.h"

namespace platform::registry {

// Key and value names compare without regard to case, as in the registry.

int MemoryRegistry::openKey(const QString& key) {
  if (failOpenWith != codeSuccess) {
    lastError_ = QStringLiteral("%1: the key could not be opened (%2)").arg(key).arg(failOpenWith);
    return failOpenWith;
  }
  keys_[key.toLower()];
  return codeSuccess;
}

int MemoryRegistry::setValue(const QString& key, const QString& name, const basic::Value& value) {
  if (failWriteWith != codeSuccess && --passWrites < 0) {
    lastError_ =
        QStringLiteral("%1: the value \"%2\" could not be set (%3)").arg(key, name).arg(failWriteWith);
    return failWriteWith;
  }
  const std::optional<basic::Value> stored = storable(value);
  if (!stored) {
    lastError_ = QStringLiteral("%1: a value of the type %2 cannot be stored").arg(name, TypeName(value));
    return codeInvalidParameter;
  }
  keys_[key.toLower()].insert(name.toLower(), *stored);
  return codeSuccess;
}

int MemoryRegistry::value(const QString& key, const QString& name, basic::Value* out) {
  const auto values = keys_.constFind(key.toLower());
  const bool found = values != keys_.cend() && values->contains(name.toLower());
  if (!found) {
    lastError_ = QStringLiteral("%1: there is no value \"%2\"").arg(key, name);
    return codeNotFound;
  }
  *out = values->value(name.toLower());
  return codeSuccess;
}

}  // namespace platform::registry

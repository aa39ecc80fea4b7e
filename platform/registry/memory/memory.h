#pragma once
#include "platform/registry/registry.h"

#include <QHash>

namespace platform::registry {

/// Lives and dies with the object. Can be told to fail.
class MemoryRegistry : public Registry {
 public:
  int openKey(const QString& key) override;
  int setValue(const QString& key, const QString& name, const basic::Value& value) override;
  int value(const QString& key, const QString& name, basic::Value* out) override;
  QString lastError() const override { return lastError_; }

  int failOpenWith = 0;   // not 0: every openKey answers this
  int failWriteWith = 0;  // not 0: every setValue answers this
  int passWrites = 0;     // so many of them pass first

 private:
  QHash<QString, QHash<QString, basic::Value>> keys_;
  QString lastError_;
};

}  // namespace platform::registry

#pragma once
#include "platform/registry/registry.h"

namespace platform::registry {

/// One INI file, read and formatted by QSettings, written by the one function that replaces files safely. A key
/// is a group; texts stand as they are, other types are marked ("@dword:1") as in an exported registry file.
class IniRegistry : public Registry {
 public:
  explicit IniRegistry(QString filePath);
  int openKey(const QString& key) override;
  int setValue(const QString& key, const QString& name, const basic::Value& value) override;
  int value(const QString& key, const QString& name, basic::Value* out) override;
  QString lastError() const override { return lastError_; }

 private:
  QString path_;
  QString lastError_;
};

}  // namespace platform::registry

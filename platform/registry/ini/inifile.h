#pragma once
#include "platform/registry/registry.h"

#include <QHash>

#include <optional>

namespace platform::registry {

/// One INI file, read and formatted by QSettings, written by the one function that replaces files safely. A
/// key is a group; texts stand as they are, other types are marked ("@dword:1") as in an exported registry
/// file. The file is the user's alone (0600), and so is a folder made for it. What another process has
/// written since is kept. A file that is no INI file is refused and stays as it is. Comments do not outlive a
/// write.
class IniRegistry : public Registry {
 public:
  explicit IniRegistry(QString filePath);
  /// A missing file is a store without keys; it and its folder are made by the first value.
  int openKey(const QString& key) override;
  int setValue(const QString& key, const QString& name, const basic::Value& value) override;
  int value(const QString& key, const QString& name, basic::Value* out) override;
  QString lastError() const override { return lastError_; }

 private:
  int failed(int code, const QString& error);
  int writeOnce(const QString& key, const QString& name, const QString& text, bool* changedMeanwhile);

  QString path_;
  QString lastError_;
  bool swept_ = false;
  QByteArray read_;                  // what entries_ was read from
  QHash<QString, QString> entries_;  // by folded key and name
};

}  // namespace platform::registry

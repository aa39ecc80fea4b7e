#pragma once
#include "platform/basic/value.h"

#include <QString>

namespace platform::registry {

// The system's own return codes, as far as they occur here.
inline constexpr int codeSuccess = 0;
inline constexpr int codeNotFound = 2;
inline constexpr int codeAccessDenied = 5;
inline constexpr int codeInvalidData = 13;
inline constexpr int codeWriteFault = 29;
inline constexpr int codeReadFault = 30;
inline constexpr int codeInvalidParameter = 87;

/// Values under HKEY_CURRENT_USER. A key is a path with "\" ("Software\Norrdalen\Hourbook for
/// Outlook\Settings"). Codes are the system's: 0 is success, 2 "not found", 5 "access denied", 13 "invalid
/// data", 29 "write fault". Key and value names compare without regard to case.
class Registry {
 public:
  virtual ~Registry() = default;
  /// Opens the key, making it when it is not there. Not 0 when the store behind it cannot be read or made.
  virtual int openKey(const QString& key) = 0;
  virtual int setValue(const QString& key, const QString& name, const basic::Value& value) = 0;
  /// 0 and the value; 2 when there is none.
  virtual int value(const QString& key, const QString& name, basic::Value* out) = 0;
  /// What the last failing call met, for the failure's text ("/home/ann/.config/...: Permission denied").
  virtual QString lastError() const = 0;

  static Registry& current();  // Failure 91 before any is put in force
};

class ScopedRegistry {
 public:
  explicit ScopedRegistry(Registry& registry);
  ~ScopedRegistry();
  ScopedRegistry(const ScopedRegistry&) = delete;
  ScopedRegistry& operator=(const ScopedRegistry&) = delete;

 private:
  Registry* previous_;
};

}  // namespace platform::registry

#include "shell/modRegistryEntry.h"

#include "platform/basic/failure.h"
#include "platform/basic/text.h"
#include "platform/registry/registry.h"
#include "shell/modErrorReport.h"

namespace hourbook {

using platform::Failure;
using platform::registry::Registry;

namespace {

constexpr int success = 0;
constexpr int notFound = 2;

[[noreturn]] void refuse(const QString& text, int code = success) {
  throw Failure(registryFailure + code, text, QStringLiteral("modRegistryEntry"));
}

/// What the system said is noted as a step: so the dialog of the failure quotes it.
[[noreturn]] void refuseCall(const QString& text, int code) {
  const QString said = Registry::current().lastError();
  if (!said.isEmpty()) subLog(said);
  refuse(text, code);
}

void check(const QString& application, const QString& section, const QString& key) {
  const auto isBlank = [](const QString& text) { return platform::basic::Trim(text).isEmpty(); };
  if (isBlank(application)) refuse(QStringLiteral("AppName may not be empty"));
  if (isBlank(section)) refuse(QStringLiteral("Section may not be empty"));
  if (isBlank(key)) refuse(QStringLiteral("Key may not be empty"));
}

QString sectionKey(const QString& application, const QString& section) {
  return QStringLiteral("Software\\Norrdalen\\") + application + u'\\' + section;
}

}  // namespace

void fncSaveRegistryValue(const QString& application, const QString& section, const QString& key,
                          const QString& value) {
  check(application, section, key);
  const QString path = sectionKey(application, section);
  Registry& registry = Registry::current();
  if (const int code = registry.openKey(path); code != success)
    refuseCall(QStringLiteral("Could not open/create registry section"), code);
  if (const int code = registry.setValue(path, key, value); code != success)
    refuseCall(QStringLiteral("Could not set key value"), code);
}

QString fncGetRegistryValue(const QString& application, const QString& section, const QString& key,
                            const QString& defaultValue) {
  check(application, section, key);
  const QString path = sectionKey(application, section);
  Registry& registry = Registry::current();
  const QString refused = QStringLiteral("Could not open registry section");
  if (const int code = registry.openKey(path); code != success) refuseCall(refused, code);
  platform::basic::Value value;
  const int code = registry.value(path, key, &value);
  if (code == notFound) return defaultValue;
  if (code != success) refuseCall(refused, code);
  if (const auto* text = std::get_if<QString>(&value)) return *text;
  refuse(QStringLiteral("Registry data not a string"));
}

}  // namespace hourbook

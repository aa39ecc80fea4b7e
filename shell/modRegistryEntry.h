#pragma once
#include <QString>

namespace hourbook {

/// The application name under which this program keeps its settings.
inline const QString registryApplication = QStringLiteral("Hourbook for Outlook");
/// Failures of the registry bear this number plus the code of the system's call.
inline constexpr qint32 registryFailure = static_cast<qint32>(0x800407D0);

/// Both work on the key `Software\Norrdalen\<application>\<section>`, which is made when it is not there.
/// They throw when application, section or key is empty, and when the registry refuses.
void fncSaveRegistryValue(const QString& application, const QString& section, const QString& key,
                          const QString& value);
inline void fncSaveRegistryValue(const QString& section, const QString& key, const QString& value) {
  fncSaveRegistryValue(registryApplication, section, key, value);
}
QString fncGetRegistryValue(const QString& application, const QString& section, const QString& key,
                            const QString& defaultValue);
inline QString fncGetRegistryValue(const QString& section, const QString& key, const QString& defaultValue) {
  return fncGetRegistryValue(registryApplication, section, key, defaultValue);
}

}  // namespace hourbook

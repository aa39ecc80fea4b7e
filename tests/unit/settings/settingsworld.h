#pragma once
#include "settings/cPersonalSettings.h"
#include "settings/SettingsValues.h"
#include "tests/unit/outlook/outlookworld.h"

namespace hourbook::tests {

/// Outlook is connected; the personal settings are there, without lists.
class SettingsWorld : public OutlookWorld {
 protected:
  SettingsWorld() {
    connect();
    settings.gPersonalSettings = std::make_shared<cPersonalSettings>();
  }

  /// A list of values that are known by name alone, as the personal settings load them.
  static std::shared_ptr<cMetaDictionary> listOf(const QString& name, const QStringList& metaNames) {
    auto list = std::make_shared<cMetaDictionary>();
    list->Caption = name;
    for (const QString& metaName : metaNames) list->AddMeta(metaName);
    return list;
  }
  void useLists(const QList<QStringList>& lists) {
    auto& inUse = settings.gPersonalSettings->MetaDataLists;
    inUse = {};
    for (const QStringList& names : lists)
      inUse.Add(listOf(QStringLiteral("List %1").arg(inUse.Count() + 1), names));
  }

  Shared<SettingsValues>::Scope settingsScope;
  SettingsValues& settings = *settingsScope;
};

}  // namespace hourbook::tests

#pragma once
#include "shell/SharedValues.h"

#include <QString>

#include <functional>
#include <memory>

namespace platform::ado {
class Recordset;
}

namespace hourbook {

class cPersonalSettings;
class cGlobalSettings;
class frmResolveRemovedItem;

struct SettingsValues {
  /// The user's own settings; made twice by `Main`.
  std::shared_ptr<cPersonalSettings> gPersonalSettings;
  /// What all users share; made by `Main` after the personal settings are read.
  std::shared_ptr<cGlobalSettings> gGlobalSettings;

  /// Shows the dialog and returns when it was hidden or its window closed. Filled by who has a screen
  /// (`subShowResolveRemovedItem`) or the answers; empty: a value that was removed from a list cannot be
  /// saved.
  std::function<void(frmResolveRemovedItem& form)> showResolveRemovedItem;

  // The XML copies of the common settings. Both are filled by who can read and write them; empty: an ASP page
  // as target fails with a clear text.
  /// The recordset at an address; null when there is none. Throws nothing.
  std::function<std::shared_ptr<platform::ado::Recordset>(const QString& strAddress)> fncXMLFileToRS;
  /// Saves an open recordset as a file, over one that is there. Throws what that fails with.
  std::function<void(platform::ado::Recordset& rs, const QString& strPath)> subSaveADRToXML;
};

inline SettingsValues& settingsValues() {
  return Shared<SettingsValues>::current();
}

}  // namespace hourbook

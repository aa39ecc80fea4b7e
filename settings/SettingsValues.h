#pragma once
#include "shell/SharedValues.h"

#include <memory>

namespace hourbook {

class cPersonalSettings;
class cGlobalSettings;

struct SettingsValues {
  /// The user's own settings; made twice by `Main`.
  std::shared_ptr<cPersonalSettings> gPersonalSettings;
  /// What all users share; made by `Main` after the personal settings are read.
  std::shared_ptr<cGlobalSettings> gGlobalSettings;
};

inline SettingsValues& settingsValues() {
  return Shared<SettingsValues>::current();
}

}  // namespace hourbook

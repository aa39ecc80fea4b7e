#pragma once
#include "database/DatabaseValues.h"
#include "outlook/OutlookValues.h"
#include "reporting/ReportingValues.h"
#include "settings/SettingsValues.h"
#include "shell/ShellValues.h"
#include "workspace/WorkspaceValues.h"

namespace hourbook {

/// Fresh program-wide values of every folder, in force for the life of the object: the whole run.
struct ProgramValues {
  Shared<ShellValues>::Scope shell;
  Shared<OutlookValues>::Scope outlook;
  Shared<DatabaseValues>::Scope database;
  Shared<SettingsValues>::Scope settings;
  Shared<ReportingValues>::Scope reporting;
  Shared<WorkspaceValues>::Scope workspace;
};

}  // namespace hourbook

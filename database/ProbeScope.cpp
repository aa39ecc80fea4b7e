#include "database/ProbeScope.h"

#include "database/DatabaseValues.h"
#include "shell/modErrorReport.h"

namespace hourbook {

ProbeScope::ProbeScope() {
  ++databaseValues().probes;
}

ProbeScope::~ProbeScope() {
  --databaseValues().probes;
}

void subReportUnlessProbing(const platform::Failure& failure, const QString& procedure) {
  if (databaseValues().probes == 0) subHandleError(failure, procedure);
  subLog(procedure + QStringLiteral(": ") + failure.description());
}

}  // namespace hourbook

#pragma once
#include "platform/basic/failure.h"

namespace hourbook {

/// While one lives, the connection code may fail: the failure is logged under the procedure's name and the
/// procedure returns nothing. The upgrade needs it, which finds out by failing whether the newest column is
/// there; everywhere else a failure of the connection ends the program.
class ProbeScope {
 public:
  ProbeScope();
  ~ProbeScope();
  ProbeScope(const ProbeScope&) = delete;
  ProbeScope& operator=(const ProbeScope&) = delete;
};

/// Reports the failure, which ends the process, or only logs it inside a ProbeScope.
void subReportUnlessProbing(const platform::Failure& failure, const QString& procedure);

}  // namespace hourbook

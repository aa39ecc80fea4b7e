#pragma once
#include "database/DatabaseValues.h"

namespace hourbook {

/// While it lives, a failure of `fncReturnRecordset` is logged under its name and gives no recordset, instead
/// of ending the process: to look for a column that an old database lacks has to be possible.
class ProbeScope {
 public:
  ProbeScope() : previous_(databaseValues().blnProbing) {
    databaseValues().blnProbing = true;
    databaseValues().probeFailure.reset();
  }
  ~ProbeScope() { databaseValues().blnProbing = previous_; }
  ProbeScope(const ProbeScope&) = delete;
  ProbeScope& operator=(const ProbeScope&) = delete;

 private:
  bool previous_;
};

}  // namespace hourbook

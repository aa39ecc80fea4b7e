#pragma once
#include "database/DatabaseValues.h"
#include "shell/modErrorReport.h"

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

/// While it lives, a failure to reach the database is thrown instead of ending the process: for a question
/// that may as well be asked another time.
class AskingScope {
 public:
  AskingScope() : previous_(databaseValues().blnAsking) { databaseValues().blnAsking = true; }
  ~AskingScope() { databaseValues().blnAsking = previous_; }
  AskingScope(const AskingScope&) = delete;
  AskingScope& operator=(const AskingScope&) = delete;

 private:
  bool previous_;
};

/// The end of a procedure of the database that has failed.
[[noreturn]] inline void subDatabaseFailed(const platform::Failure& failure, const QString& procedure) {
  if (databaseValues().blnAsking) throw platform::Failure(failure);
  subHandleError(failure, procedure);
}

}  // namespace hourbook

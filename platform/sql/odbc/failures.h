#pragma once
#include "platform/basic/failure.h"
#include "platform/sql/odbc/handles.h"

namespace platform::sql::odbc {

/// What the driver manager, the driver or the server says of a call.
struct Diagnosis {
  QString state;   // of the first record
  int number = 0;  // the server's own; the client library's where the server said nothing
  QString text;    // of all records; the server's alone where it said something
  bool fromServer = false;
};
Diagnosis diagnosisOf(const Handle& handle);

/// The connection is of no more use: the server, or the way to it, is gone.
bool isLost(const Diagnosis& diagnosis);
/// Nobody answered in time.
bool isTimeout(const Diagnosis& diagnosis);

Failure failureOf(const Diagnosis& diagnosis, const QString& statement, const QString& label);

}  // namespace platform::sql::odbc

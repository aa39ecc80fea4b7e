#pragma once
#include "platform/basic/failure.h"
#include "platform/sql/driver.h"

#include <sql.h>
#include <sqlext.h>
#include <sqlucode.h>

namespace platform::sql::odbc {

/// A handle of the driver manager, freed when it goes.
class Handle {
 public:
  Handle(SQLSMALLINT kind, SQLHANDLE parent);
  ~Handle();
  Handle(const Handle&) = delete;
  Handle& operator=(const Handle&) = delete;
  SQLHANDLE get() const { return handle_; }
  SQLSMALLINT kind() const { return kind_; }

 private:
  SQLSMALLINT kind_;
  SQLHANDLE handle_ = SQL_NULL_HANDLE;
};

/// What the driver manager, the driver or the server says of a call.
struct Diagnosis {
  QString state;   // of the first record
  int number = 0;  // the server's, of the first record that has one
  QString text;    // of all records
};
Diagnosis diagnosisOf(const Handle& handle);

Failure failureOf(const Diagnosis& diagnosis, const QString& statement, const QString& label);

/// A text as the driver manager takes it; lives as long as its owner.
inline SQLWCHAR* wide(const QString& text) {
  return const_cast<SQLWCHAR*>(reinterpret_cast<const SQLWCHAR*>(text.utf16()));
}
inline QString fromWide(const SQLWCHAR* text, qsizetype length) {
  return QString::fromUtf16(reinterpret_cast<const char16_t*>(text), length);
}

}  // namespace platform::sql::odbc

#pragma once
#include "platform/basic/value.h"
#include "platform/sql/odbc/handles.h"

#include <vector>

namespace platform::sql::odbc {

/// The values of a statement's parameters, in the form in which the driver reads them while the statement
/// runs.
class Parameters {
 public:
  explicit Parameters(const QList<basic::Value>& values);
  void bind(const Handle& statement) const;  // to be alive when the statement runs

 private:
  struct Slot {
    SQLSMALLINT given = SQL_C_WCHAR, taken = SQL_WVARCHAR;
    SQLULEN size = 1;
    SQLSMALLINT decimals = 0;
    QByteArray bytes;
    SQLLEN length = SQL_NULL_DATA;
  };
  static Slot slotOf(const basic::Value& value);
  mutable std::vector<Slot> slots_;
};

}  // namespace platform::sql::odbc

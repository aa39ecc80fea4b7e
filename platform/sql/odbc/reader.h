#pragma once
#include "platform/sql/driver.h"
#include "platform/sql/odbc/handles.h"

#include <functional>

namespace platform::sql::odbc {

/// Reads the rows that a statement has given. `require` throws for a call that has failed.
class Reader {
 public:
  using Require = std::function<void(SQLRETURN)>;
  Reader(const Handle& statement, SQLSMALLINT width, QString label, Require require);
  const QList<Column>& columns() const { return columns_; }
  QList<QList<basic::Value>> rows();

 private:
  void describe(SQLSMALLINT width);
  basic::Value value(SQLUSMALLINT column, Type type);
  QString text(SQLUSMALLINT column, bool* isNull);

  const Handle& statement_;
  QString label_;
  Require require_;
  QList<Column> columns_;
};

}  // namespace platform::sql::odbc

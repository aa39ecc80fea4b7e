#pragma once
#include "platform/sql/odbc/handles.h"

namespace platform::sql::odbc {

/// Reads the rows that a statement has given.
class Reader {
 public:
  Reader(const Handle& statement, SQLSMALLINT width, const QString& label);
  Reader(const Handle& statement, const QString& label);  // of as many columns as there are
  const QList<Column>& columns() const { return columns_; }
  QList<QList<basic::Value>> rows();

 private:
  void describe(SQLSMALLINT width);
  basic::Value value(SQLUSMALLINT column, Type type);
  QString text(SQLUSMALLINT column, bool* isNull);
  void require(SQLRETURN code) const;

  const Handle& statement_;
  QString label_;
  QList<Column> columns_;
};

/// Type and size of a column in the answer of SQLColumns.
Column columnOfCatalogue(const QList<basic::Value>& row);

}  // namespace platform::sql::odbc

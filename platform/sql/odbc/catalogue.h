#pragma once
#include "platform/sql/driver.h"
#include "platform/sql/odbc/connection.h"

// The tables of a database, as the server's own catalogue has them.
namespace platform::sql::odbc {

struct CatalogueColumn {
  Column column;
  bool takesNull = true;
};

/// Those that a statement may name without their schema, in the order of their names; no views, and none of
/// the server's own tools.
QStringList tablesOf(Connection& connection, int seconds);

/// Of a table or view, by any spelling of its name; empty when there is none. Where a table has no primary
/// key, its counter counts as one: it leads to one row as well.
QList<CatalogueColumn> columnsOf(Connection& connection, const QString& table, int seconds);

}  // namespace platform::sql::odbc

#pragma once
#include "sqldriver_context.h"

namespace contract {

/// An empty database on the server of this test program, dropped when it goes.
class PostgresqlDatabase {
 public:
  PostgresqlDatabase();
  ~PostgresqlDatabase();
  PostgresqlDatabase(const PostgresqlDatabase&) = delete;
  PostgresqlDatabase& operator=(const PostgresqlDatabase&) = delete;
  const QString& name() const { return name_; }

 private:
  QString name_;
};

/// Leads to a database of that server; to the one that databases are made from when it has no name.
platform::sql::ConnectionString toServer(const QString& database);

}  // namespace contract

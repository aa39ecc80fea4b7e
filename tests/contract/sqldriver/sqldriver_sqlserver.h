#pragma once
#include "sqldriver_context.h"

namespace contract {

/// A connection string for a server where databases may be made; empty when there is none. The database that
/// it names is only passed through.
QString realSqlServer();

/// An empty database on that server, dropped when it goes.
class SqlServerDatabase {
 public:
  SqlServerDatabase();
  ~SqlServerDatabase();
  SqlServerDatabase(const SqlServerDatabase&) = delete;
  SqlServerDatabase& operator=(const SqlServerDatabase&) = delete;
  platform::sql::ConnectionString connection() const;

 private:
  QString name_;
};

}  // namespace contract

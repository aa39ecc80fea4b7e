#pragma once
#include "platform/sql/driver.h"

#include <QMap>
#include <QTemporaryDir>

namespace tests {

/// What stands for an SQL Server where there is none: its databases are embedded ones, made by CREATE
/// DATABASE and chosen by USE or by the connection's catalog. It takes the server's own way to declare
/// columns, and refuses a user whose password is "wrong".
class SqlServerDouble : public platform::sql::Driver {
 public:
  std::unique_ptr<platform::sql::Session> connect(const platform::sql::ConnectionString& connection) override;
  QStringList databases() const { return files_.keys(); }
  /// A session on one of the databases.
  std::unique_ptr<platform::sql::Session> open(const QString& database) const;
  void drop(const QString& database) { files_.remove(database); }
  /// Makes an empty database.
  void create(const QString& database);

 private:
  friend class SqlServerSession;
  QTemporaryDir folder_;
  QMap<QString, QString> files_;
  int made_ = 0;
  QStringList keyless_;  // tables that were declared without a key, though with a counter
};

}  // namespace tests

#pragma once
#include "serverworld.h"

namespace tests {

/// A database "hours" on what stands for an SQL Server, made by the script that the program brings along.
class SqlServerRoad : public DatabaseRoad {
 public:
  QString name() const override { return QStringLiteral("sqlserver"); }
  QString provider() const override { return QStringLiteral("SQLOLEDB.1"); }
  std::shared_ptr<platform::sql::Driver> driver() override { return server_; }
  QString connectionText() const override { return ServerWorld::connectionTo(QStringLiteral("hours")); }
  void create() override {
    server_->drop(QStringLiteral("hours"));
    platform::sql::ConnectionString connection;
    connection.set(QStringLiteral("Data Source"), QStringLiteral("server"));
    const auto session = server_->connect(connection);
    const QString script = QString::fromUtf8(ServerWorld::shippedScript())
                               .replace(QStringLiteral("Hourbook3SQL"), QStringLiteral("hours"));
    for (const QString& piece : script.split(QStringLiteral("GO"))) session->execute(piece);
  }
  std::unique_ptr<platform::sql::Session> connect() const override {
    return server_->open(QStringLiteral("hours"));
  }
  QByteArray copy() const override { return {}; }
  void restore(const QByteArray&) override { create(); }

 private:
  std::shared_ptr<SqlServerDouble> server_ = std::make_shared<SqlServerDouble>();
};

}  // namespace tests

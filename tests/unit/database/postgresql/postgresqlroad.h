#pragma once
#include "tests/contract/sqldriver/postgresqlserver.h"
#include "tests/unit/database/databaseworld.h"
#include "tests/unit/database/recordingdriver.h"

namespace tests {

/// The one server of this program of tests.
contract::PostgresqlServer& postgresqlServer();
/// Runs a file of statements as an administrator would; its exit code, and what was said in `said`.
int runPsql(const QString& file, QString* said = nullptr);

/// A database "hours" on a real PostgreSQL server, made by the script that the program brings along.
class PostgresqlRoad : public DatabaseRoad {
 public:
  QString name() const override { return QStringLiteral("postgresql"); }
  QString provider() const override { return QStringLiteral("PostgreSQL"); }
  std::shared_ptr<platform::sql::Driver> driver() override;
  QString connectionText() const override { return textFor(QStringLiteral("hours")); }
  void create() override;
  std::unique_ptr<platform::sql::Session> connect() const override;
  QByteArray copy() const override;
  void restore(const QByteArray& rows) override;

  static QString textFor(const QString& database, const QString& user = {}, const QString& password = {});
  /// A session of the server's administrator.
  static std::unique_ptr<platform::sql::Session> administrator(
      const QString& database = QStringLiteral("postgres"));
};

}  // namespace tests

#include "sqlserverdouble.h"

#include "platform/basic/failure.h"
#include "platform/sql/errors.h"
#include "platform/sql/sqlite/engine.h"
#include "platform/sql/sqlite/session.h"

#include <QRegularExpression>

namespace tests {

using namespace platform::sql;
using platform::Failure;

namespace {

constexpr auto noWait = sqlite::Durability::ProcessEnd;

/// A declaration of the server's as the embedded engine knows it.
QString embedded(QString sql) {
  static const QRegularExpression identity(
      QStringLiteral("\\[int\\] IDENTITY \\(1, 1\\) NOT NULL(?: CONSTRAINT \\[\\w+\\] PRIMARY KEY)?"));
  static const QRegularExpression type(
      QStringLiteral("\\[(int|smallint|nvarchar|varchar|datetime|money|bit|text|real)\\]"));
  sql.replace(identity, QStringLiteral("INTEGER PRIMARY KEY AUTOINCREMENT"));
  sql.replace(QStringLiteral("[real]"), QStringLiteral("FLOAT4"));
  return sql.replace(type, QStringLiteral("\\1"));
}

/// Without the comments, which the server passes over.
QString plain(const QString& sql) {
  static const QRegularExpression comment(QStringLiteral("--[^\\n]*"));
  return QString(sql).remove(comment).trimmed();
}

}  // namespace

class SqlServerSession : public Session {
 public:
  SqlServerSession(SqlServerDouble& server, std::unique_ptr<Session> inner)
      : server_(server), inner_(std::move(inner)) {}

  Result execute(const QString& sql, const QList<platform::basic::Value>& parameters) override {
    static const QRegularExpression create(QStringLiteral("^CREATE DATABASE \\[([^\\]]*)\\]$"));
    static const QRegularExpression use(QStringLiteral("^USE \\[([^\\]]*)\\]$"));
    const QString statement = plain(sql);
    if (const auto match = create.match(statement); match.hasMatch()) {
      server_.create(match.captured(1));
      return {};
    }
    if (const auto match = use.match(statement); match.hasMatch()) {
      inner_ = server_.open(match.captured(1));
      return {};
    }
    const bool declares = statement.startsWith(u"CREATE TABLE") || statement.startsWith(u"ALTER TABLE");
    const Result result = inner().execute(declares ? embedded(statement) : statement, parameters);
    static const QRegularExpression withoutKey(QStringLiteral("^CREATE TABLE \\[(\\w+)\\](?!.*PRIMARY KEY)"),
                                               QRegularExpression::DotMatchesEverythingOption);
    if (const auto match = withoutKey.match(statement); match.hasMatch())
      server_.keyless_.append(match.captured(1));
    return result;
  }
  void begin() override { inner().begin(); }
  void commit() override { inner().commit(); }
  void rollback() override { inner().rollback(); }
  QStringList tables() override { return inner().tables(); }
  QList<Column> columns(const QString& table) override {
    auto columns = inner().columns(table);
    if (server_.keyless_.contains(table))
      for (Column& column : columns) column.primaryKey = false;
    return columns;
  }

 private:
  Session& inner() {
    if (!inner_)
      throw Failure(errors::statementFailed, QStringLiteral("Incorrect syntax, or no database was chosen."));
    return *inner_;
  }

  SqlServerDouble& server_;
  std::unique_ptr<Session> inner_;
};

void SqlServerDouble::create(const QString& database) {
  if (files_.contains(database))
    throw Failure(
        errors::databaseExists,
        QStringLiteral("Database '%1' already exists. Choose a different database name.").arg(database));
  const QString path = folder_.filePath(QStringLiteral("database%1").arg(++made_));
  sqlite::SqliteEngine(0, noWait).createDatabase(path);
  files_.insert(database, path);
}

std::unique_ptr<Session> SqlServerDouble::open(const QString& database) const {
  if (!files_.contains(database))
    throw Failure(errors::connectionFailed,
                  QStringLiteral("Cannot open database \"%1\" requested by the login. The login failed.")
                      .arg(database));
  ConnectionString connection;
  connection.set(QStringLiteral("Data Source"), files_.value(database));
  return sqlite::SqliteDriver(0, noWait).connect(connection);
}

std::unique_ptr<Session> SqlServerDouble::connect(const ConnectionString& connection) {
  if (connection.value(QStringLiteral("Password")) == u"wrong")
    throw Failure(
        errors::loginFailed,
        QStringLiteral("Login failed for user '%1'.").arg(connection.value(QStringLiteral("User ID"))));
  if (connection.value(QStringLiteral("Data Source")) != u"server")
    throw Failure(errors::connectionFailed, QStringLiteral("SQL Server does not exist or access denied."));
  const QString catalog = connection.value(QStringLiteral("Initial Catalog"));
  return std::make_unique<SqlServerSession>(*this, catalog.isEmpty() ? nullptr : open(catalog));
}

}  // namespace tests

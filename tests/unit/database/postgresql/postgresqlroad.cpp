#include "postgresqlroad.h"

#include "database/modSchema.h"
#include "platform/sql/postgresql/driver.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>

namespace tests {

using namespace platform::sql;
using platform::basic::Value;

namespace {

std::unique_ptr<contract::PostgresqlServer> server;

class ServerOfTheRun : public testing::Environment {
 public:
  void SetUp() override {
    server = std::make_unique<contract::PostgresqlServer>();
    ASSERT_TRUE(server->problem().isEmpty()) << qPrintable(server->problem());
    QString said;
    ASSERT_EQ(runPsql(QStringLiteral(HOURBOOK_RESOURCES "/CreateDBHB-PostgreSQL.sql"), &said), 0)
        << qPrintable(said);
    DatabaseRoad::maker() = [] { return std::make_unique<PostgresqlRoad>(); };
  }
  void TearDown() override {
    DatabaseRoad::maker() = nullptr;
    server.reset();
  }
};

[[maybe_unused]] const testing::Environment* const environment =
    testing::AddGlobalTestEnvironment(new ServerOfTheRun);

/// A table stands before those that refer to it.
QStringList tables() {
  return {QStringLiteral("tblPersons"),   QStringLiteral("tblMeta1"),        QStringLiteral("tblMeta2"),
          QStringLiteral("tblMeta3"),     QStringLiteral("tblReports"),      QStringLiteral("tblSettings"),
          QStringLiteral("tblMetaLists"), QStringLiteral("tblOtherSettings")};
}

QString quoted(const QStringList& names) {
  return u'"' + names.join(QStringLiteral("\", \"")) + u'"';
}

/// One text that tells all columns of the tables.
QString shape(Session& session) {
  return std::get<QString>(
      session
          .execute(QStringLiteral("WITH x AS (SELECT 1) SELECT coalesce(string_agg(table_name || column_name "
                                  "|| data_type, ' ' ORDER BY "
                                  "table_name, ordinal_position), '') FROM information_schema.columns WHERE "
                                  "table_schema = 'public'"))
          .rows[0][0]);
}

}  // namespace

contract::PostgresqlServer& postgresqlServer() {
  return *server;
}

int runPsql(const QString& file, QString* said) {
  QProcess psql;
  psql.setProcessChannelMode(QProcess::MergedChannels);
  psql.start(QStringLiteral("psql"),
             {QStringLiteral("-X"), QStringLiteral("-q"), QStringLiteral("-h"), server->dataSource(),
              QStringLiteral("-U"), server->user(), QStringLiteral("-d"), QStringLiteral("postgres"),
              QStringLiteral("-f"), file});
  psql.waitForFinished(60000);
  if (said) *said = psql.errorString() + u' ' + QString::fromUtf8(psql.readAll());
  return psql.exitStatus() == QProcess::NormalExit ? psql.exitCode() : -1;
}

QString PostgresqlRoad::textFor(const QString& database, const QString& user, const QString& password) {
  return QStringLiteral(
             "Provider=PostgreSQL;Persist Security Info=True;User ID=%1;Password=%2;Data "
             "Source=%3;Initial Catalog=%4")
      .arg(user.isEmpty() ? server->user() : user, password, server->dataSource(), database);
}

std::unique_ptr<Session> PostgresqlRoad::administrator(const QString& database) {
  return postgresql::makeDriver()->connect(ConnectionString(textFor(database)));
}

std::shared_ptr<Driver> PostgresqlRoad::driver() {
  return postgresql::makeDriver();
}

/// Emptied where it is as it was made, and made anew where a test has changed its columns.
void PostgresqlRoad::create() {
  static const QString asMade = shape(*administrator(QStringLiteral("Hourbook3SQL")));
  try {
    const auto session = connect();
    if (shape(*session) == asMade) {
      session->execute(QStringLiteral("TRUNCATE %1 RESTART IDENTITY").arg(quoted(tables())));
      return;
    }
  } catch (const platform::Failure&) {
    // there is none yet
  }
  const auto session = administrator();
  session->execute(QStringLiteral("DROP DATABASE IF EXISTS hours WITH (FORCE)"));
  session->execute(QStringLiteral("CREATE DATABASE hours TEMPLATE \"Hourbook3SQL\""));
}

std::unique_ptr<Session> PostgresqlRoad::connect() const {
  return administrator(QStringLiteral("hours"));
}

QByteArray PostgresqlRoad::copy() const {
  const auto session = connect();
  QJsonObject rows;
  for (const QString& table : tables())
    rows.insert(table,
                std::get<QString>(session
                                      ->execute(QStringLiteral("WITH x AS (SELECT * FROM \"%1\") SELECT "
                                                               "coalesce(json_agg(x)::text, '[]') FROM x")
                                                    .arg(table))
                                      .rows[0][0]));
  return QJsonDocument(rows).toJson();
}

void PostgresqlRoad::restore(const QByteArray& rows) {
  create();
  const auto session = connect();
  const QJsonObject all = QJsonDocument::fromJson(rows).object();
  for (const QString& table : tables()) {
    const QString name = quoted({table});
    const QString key = hourbook::fncSchemaTable(table).columns.first().strName;
    const QString text = all.value(table).toString().replace(u"'"_qs, u"''"_qs);
    session->execute(QStringLiteral("WITH x AS (SELECT 1) INSERT INTO %1 SELECT * FROM "
                                    "json_populate_recordset(null::%1, '%2')")
                         .arg(name, text));
    session->execute(QStringLiteral("DO $$ BEGIN PERFORM setval(pg_get_serial_sequence('%1', '%2'), "
                                    "coalesce(max(\"%2\"), 0) + 1, false) FROM %1; END $$")
                         .arg(name, key));
  }
}

}  // namespace tests

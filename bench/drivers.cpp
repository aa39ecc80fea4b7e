#include "bench/pairs.h"
#include "bench/roads.h"
#include "database/modSchema.h"
#include "platform/basic/convert.h"
#include "platform/sql/postgresql/driver.h"
#include "platform/sql/sqlite/engine.h"
#include "tests/contract/sqldriver/postgresqlserver.h"

#include <QTemporaryDir>

#include <libpq-fe.h>
#include <sqlite3.h>

namespace bench {

using namespace Qt::StringLiterals;
using platform::basic::Value;
using platform::sql::Session;

namespace {

constexpr int rows = 10000;
const QString insertText =
    u"insert into tblReports (numHours, strSubject, dtmDate, curCost, strBody) values (?, ?, ?, ?, ?)"_s;
const QString subjects = u"Meeting with the customer about the next delivery, number %1"_s;

QList<platform::sql::Column> columnsOfReports() {
  using platform::sql::Type;
  QList<platform::sql::Column> columns(6);
  columns[0] = {
      .name = u"intReportID"_s, .type = Type::Long, .autoIncrement = true, .primaryKey = true, .caption = {}};
  columns[1] = {.name = u"numHours"_s, .type = Type::Single, .caption = {}};
  columns[2] = {.name = u"strSubject"_s, .type = Type::Text, .size = 255, .caption = {}};
  columns[3] = {.name = u"dtmDate"_s, .type = Type::Date, .caption = {}};
  columns[4] = {.name = u"curCost"_s, .type = Type::Currency, .caption = {}};
  columns[5] = {.name = u"strBody"_s, .type = Type::Memo, .caption = {}};
  return columns;
}

void insertAll(Session& session) {
  const Value date(platform::basic::Date::of(2024, 6, 10));
  const Value cost(platform::basic::Currency::fromTenThousandths(11875000));
  for (int i = 1; i <= rows; ++i)
    session.execute(insertText, {Value(1.25F), Value(subjects.arg(i)), date, cost, Value(u"Some notes"_s)});
}

void readAll(Session& session) {
  if (session.execute(u"select * from tblReports"_s).rows.size() < rows) qFatal("rows are missing");
}

void require(bool good, const char* what) {
  if (!good) qFatal("%s", what);
}

// ---- the engines alone: the same statements, each value taken over as the type that it has

void insertWithSqlite(sqlite3* db) {
  sqlite3_stmt* insert = nullptr;
  require(sqlite3_prepare_v2(db, insertText.toUtf8().constData(), -1, &insert, nullptr) == SQLITE_OK,
          sqlite3_errmsg(db));
  for (int i = 1; i <= rows; ++i) {
    const QByteArray subject = subjects.arg(i).toUtf8();
    sqlite3_bind_double(insert, 1, 1.25);
    sqlite3_bind_text(insert, 2, subject.constData(), int(subject.size()), SQLITE_TRANSIENT);
    sqlite3_bind_text(insert, 3, "2024-06-10T00:00:00", -1, SQLITE_STATIC);
    sqlite3_bind_double(insert, 4, 1187.5);
    sqlite3_bind_text(insert, 5, "Some notes", -1, SQLITE_STATIC);
    require(sqlite3_step(insert) == SQLITE_DONE, sqlite3_errmsg(db));
    sqlite3_reset(insert);
  }
  sqlite3_finalize(insert);
}

void readWithSqlite(sqlite3* db) {
  sqlite3_stmt* select = nullptr;
  require(sqlite3_prepare_v2(db, "select * from tblReports", -1, &select, nullptr) == SQLITE_OK,
          sqlite3_errmsg(db));
  QList<QList<QVariant>> found;
  while (sqlite3_step(select) == SQLITE_ROW) {
    const auto text = [&](int column) {
      return QString(static_cast<const QChar*>(sqlite3_column_text16(select, column)),
                     sqlite3_column_bytes16(select, column) / 2);
    };
    found.append({sqlite3_column_int(select, 0), sqlite3_column_double(select, 1), text(2),
                  QDateTime::fromString(text(3), Qt::ISODate), sqlite3_column_double(select, 4), text(5)});
  }
  sqlite3_finalize(select);
  require(found.size() >= rows, "rows are missing");
}

void insertWithLibpq(PGconn* connection) {
  for (int i = 1; i <= rows; ++i) {
    const QByteArray subject = subjects.arg(i).toUtf8();
    const char* values[] = {"1.25", subject.constData(), "2024-06-10 00:00:00", "1187.5", "Some notes"};
    PGresult* result =
        PQexecParams(connection,
                     "insert into \"tblReports\" (\"numHours\", \"strSubject\", \"dtmDate\", \"curCost\", "
                     "\"strBody\") values ($1, $2, $3, $4, $5) returning \"intReportID\"",
                     5, nullptr, values, nullptr, nullptr, 0);
    require(PQresultStatus(result) == PGRES_TUPLES_OK, PQerrorMessage(connection));
    PQclear(result);
  }
}

void readWithLibpq(PGconn* connection) {
  PGresult* result = PQexec(connection, "select * from \"tblReports\"");
  require(PQntuples(result) >= rows, PQerrorMessage(connection));
  QList<QList<QVariant>> found;
  for (int row = 0; row < PQntuples(result); ++row) {
    const auto text = [&](int column) {
      return QString::fromUtf8(PQgetvalue(result, row, column), PQgetlength(result, row, column));
    };
    found.append({text(0).toInt(), text(1).toDouble(), text(2), QDateTime::fromString(text(3), Qt::ISODate),
                  text(4).toDouble(), text(5)});
  }
  PQclear(result);
}

std::unique_ptr<Session> opened(platform::sql::Driver& driver, const QString& text) {
  return driver.connect(platform::sql::ConnectionString(text));
}

void measureSqlite() {
  QTemporaryDir folder;
  platform::sql::sqlite::SqliteEngine engine;
  platform::sql::sqlite::SqliteDriver driver;
  const QString ours = folder.filePath(u"ours.mdb"_s), bare = folder.filePath(u"bare.mdb"_s);
  for (const QString& path : {ours, bare}) {
    engine.createDatabase(path);
    engine.createTable(*opened(driver, u"Data Source="_s + path), u"tblReports"_s, columnsOfReports());
  }
  const auto session = opened(driver, u"Data Source="_s + ours);
  sqlite3* db = nullptr;
  require(sqlite3_open(bare.toUtf8().constData(), &db) == SQLITE_OK, "open");
  sqlite3_exec(db, "PRAGMA foreign_keys=ON; PRAGMA synchronous=EXTRA", nullptr, nullptr, nullptr);
  compare(
      u"SQLite: write 10,000 rows, each committed"_s, 3, [&] { insertAll(*session); },
      [&] { insertWithSqlite(db); });
  session->begin();
  sqlite3_exec(db, "BEGIN", nullptr, nullptr, nullptr);
  compare(
      u"SQLite: write 10,000 rows in one transaction"_s, 5, [&] { insertAll(*session); },
      [&] { insertWithSqlite(db); });
  session->commit();
  sqlite3_exec(db, "COMMIT", nullptr, nullptr, nullptr);
  for (const char* cut : {"delete from tblReports where intReportID > 10000"}) {
    session->execute(QString::fromLatin1(cut));
    sqlite3_exec(db, cut, nullptr, nullptr, nullptr);
  }
  compare(
      u"SQLite: read 10,000 rows"_s, 9, [&] { readAll(*session); }, [&] { readWithSqlite(db); });
  sqlite3_close(db);
}

void measurePostgresql() {
  const contract::PostgresqlServer server;
  if (!server.problem().isEmpty()) return qWarning("PostgreSQL: %s", qUtf8Printable(server.problem()));
  const auto driver = platform::sql::postgresql::makeDriver();
  const auto engine = platform::sql::postgresql::makeEngine();
  const QString text = u"Provider=PostgreSQL;User ID=%1;Data Source=%2;Initial Catalog="_s.arg(
      server.user(), server.dataSource());
  const auto first = opened(*driver, text + u"postgres"_s);
  for (const auto* name : {"ours", "bare"}) first->execute(u"CREATE DATABASE %1"_s.arg(QLatin1String(name)));
  const auto session = opened(*driver, text + u"ours"_s);
  engine->createTable(*session, u"tblReports"_s, columnsOfReports());
  engine->createTable(*opened(*driver, text + u"bare"_s), u"tblReports"_s, columnsOfReports());
  PGconn* connection = PQconnectdb(
      u"host='%1' user='%2' dbname=bare"_s.arg(server.dataSource(), server.user()).toUtf8().constData());
  require(PQstatus(connection) == CONNECTION_OK, PQerrorMessage(connection));
  compare(
      u"PostgreSQL: write 10,000 rows, each committed"_s, 3, [&] { insertAll(*session); },
      [&] { insertWithLibpq(connection); });
  session->execute(u"delete from tblReports where intReportID > 10000"_s);
  PQclear(PQexec(connection, "delete from \"tblReports\" where \"intReportID\" > 10000"));
  compare(
      u"PostgreSQL: read 10,000 rows"_s, 9, [&] { readAll(*session); }, [&] { readWithLibpq(connection); });
  PQfinish(connection);
}

}  // namespace

void measureDrivers() {
  measureSqlite();
  measurePostgresql();
}

}  // namespace bench

#include "bench/pairs.h"
#include "bench/roads.h"
#include "database/modSchema.h"
#include "platform/basic/convert.h"
#include "platform/sql/odbc/driver.h"
#include "platform/sql/postgresql/driver.h"
#include "platform/sql/sqlite/engine.h"
#include "tests/contract/sqldriver/postgresqlserver.h"
#include "tests/contract/sqldriver/tdspeer.h"

#include <QTemporaryDir>

#include <libpq-fe.h>
#include <sql.h>
#include <sqlext.h>
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

/// One connection of the driver manager, and one statement on it that is used for all.
class BareOdbc {
 public:
  explicit BareOdbc(const QString& text) {
    SQLAllocHandle(SQL_HANDLE_ENV, SQL_NULL_HANDLE, &environment_);
    SQLSetEnvAttr(environment_, SQL_ATTR_ODBC_VERSION, reinterpret_cast<SQLPOINTER>(SQL_OV_ODBC3), 0);
    SQLAllocHandle(SQL_HANDLE_DBC, environment_, &connection_);
    SQLSMALLINT length = 0;
    require(SQL_SUCCEEDED(SQLDriverConnectW(connection_, nullptr, wide(text), SQL_NTS, nullptr, 0, &length,
                                            SQL_DRIVER_NOPROMPT)),
            "no connection");
    SQLAllocHandle(SQL_HANDLE_STMT, connection_, &statement);
  }
  ~BareOdbc() {
    SQLFreeHandle(SQL_HANDLE_STMT, statement);
    SQLDisconnect(connection_);
    SQLFreeHandle(SQL_HANDLE_DBC, connection_);
    SQLFreeHandle(SQL_HANDLE_ENV, environment_);
  }
  BareOdbc(const BareOdbc&) = delete;
  BareOdbc& operator=(const BareOdbc&) = delete;
  static SQLWCHAR* wide(const QString& text) {
    return reinterpret_cast<SQLWCHAR*>(const_cast<ushort*>(text.utf16()));
  }

  SQLHANDLE statement = nullptr;

 private:
  SQLHANDLE environment_ = nullptr, connection_ = nullptr;
};

/// The key of each row is asked for along with it, as whoever stores rows needs it.
void insertWithOdbc(const BareOdbc& odbc) {
  const QString text = insertText + u"\nSELECT @@ROWCOUNT, CAST(SCOPE_IDENTITY() AS bigint)"_s;
  SQLHANDLE statement = odbc.statement;
  float hours = 1.25F;
  SQLWCHAR subject[256] = {}, body[] = {'S', 'o', 'm', 'e', ' ', 'n', 'o', 't', 'e', 's'};
  SQL_TIMESTAMP_STRUCT day{2024, 6, 10, 0, 0, 0, 0};
  char cost[] = "1187.5";
  SQLLEN subjectBytes = 0, bodyBytes = sizeof body, costBytes = SQL_NTS;
  const auto bind = [&](SQLUSMALLINT number, SQLSMALLINT given, SQLSMALLINT taken, SQLULEN size,
                        SQLSMALLINT decimals, auto* value, SQLLEN* bytes) {
    SQLBindParameter(statement, number, SQL_PARAM_INPUT, given, taken, size, decimals, value, 0, bytes);
  };
  bind(1, SQL_C_FLOAT, SQL_REAL, 0, 0, &hours, nullptr);
  bind(2, SQL_C_WCHAR, SQL_WVARCHAR, 255, 0, subject, &subjectBytes);
  bind(3, SQL_C_TYPE_TIMESTAMP, SQL_TYPE_TIMESTAMP, 23, 3, &day, nullptr);
  bind(4, SQL_C_CHAR, SQL_DECIMAL, 19, 4, cost, &costBytes);
  bind(5, SQL_C_WCHAR, SQL_WVARCHAR, 255, 0, body, &bodyBytes);
  for (int i = 1; i <= rows; ++i) {
    const QString told = subjects.arg(i);
    std::copy_n(told.utf16(), told.size(), subject);
    subjectBytes = told.size() * 2;
    require(SQL_SUCCEEDED(SQLExecDirectW(statement, BareOdbc::wide(text), SQL_NTS)), "no row");
    SQLINTEGER count = 0;
    SQLBIGINT key = 0;
    require(SQL_SUCCEEDED(SQLFetch(statement)), "no key");
    SQLGetData(statement, 1, SQL_C_SLONG, &count, sizeof count, nullptr);
    SQLGetData(statement, 2, SQL_C_SBIGINT, &key, sizeof key, nullptr);
    require(count == 1 && key > 0, "no key");
    SQLFreeStmt(statement, SQL_CLOSE);
  }
  SQLFreeStmt(statement, SQL_RESET_PARAMS);
}

QDateTime momentOf(const SQL_TIMESTAMP_STRUCT& stamp) {
  return {QDate(stamp.year, stamp.month, stamp.day), QTime(stamp.hour, stamp.minute, stamp.second)};
}

void readWithOdbc(const BareOdbc& odbc) {
  SQLHANDLE statement = odbc.statement;
  require(SQL_SUCCEEDED(SQLExecDirectW(statement, BareOdbc::wide(u"select * from tblReports"_s), SQL_NTS)),
          "no answer");
  SQLINTEGER key = 0;
  float hours = 0;
  double cost = 0;
  SQLWCHAR subject[256], body[4096];
  SQL_TIMESTAMP_STRUCT day{};
  SQLLEN subjectBytes = 0, bodyBytes = 0;
  QList<QList<QVariant>> found;
  while (SQL_SUCCEEDED(SQLFetch(statement))) {
    SQLGetData(statement, 1, SQL_C_SLONG, &key, sizeof key, nullptr);
    SQLGetData(statement, 2, SQL_C_FLOAT, &hours, sizeof hours, nullptr);
    SQLGetData(statement, 3, SQL_C_WCHAR, subject, sizeof subject, &subjectBytes);
    SQLGetData(statement, 4, SQL_C_TYPE_TIMESTAMP, &day, sizeof day, nullptr);
    SQLGetData(statement, 5, SQL_C_DOUBLE, &cost, sizeof cost, nullptr);
    SQLGetData(statement, 6, SQL_C_WCHAR, body, sizeof body, &bodyBytes);
    const auto text = [](const SQLWCHAR* from, SQLLEN bytes) {
      return QString::fromUtf16(reinterpret_cast<const char16_t*>(from), bytes / 2);
    };
    found.append(
        {key, double(hours), text(subject, subjectBytes), momentOf(day), cost, text(body, bodyBytes)});
  }
  SQLFreeStmt(statement, SQL_CLOSE);
  require(found.size() >= rows, "rows are missing");
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

/// What a server would say that stores each row, and has them all.
contract::TdsAnswer serverWithRows() {
  using contract::TdsType;
  contract::TdsAnswer answer;
  answer.columns({{u"intReportID"_s, TdsType::Int},
                  {u"numHours"_s, TdsType::Real},
                  {u"strSubject"_s, TdsType::NVarChar},
                  {u"dtmDate"_s, TdsType::DateTime},
                  {u"curCost"_s, TdsType::Money},
                  {u"strBody"_s, TdsType::NText}});
  const Value date(platform::basic::Date::of(2024, 6, 10));
  const Value cost(platform::basic::Currency::fromTenThousandths(11875000));
  for (qint32 i = 1; i <= rows; ++i) answer.row({i, 1.25F, subjects.arg(i), date, cost, u"Some notes"_s});
  return answer.done();
}

/// There is no server to be had here: both talk to a scripted one on this machine, whose share of the time is
/// the same in both.
void measureOdbc() {
  using contract::TdsAnswer, contract::TdsType, contract::TdsRequest;
  const TdsAnswer all = serverWithRows();
  const TdsAnswer stored =
      TdsAnswer().columns({{{}, TdsType::Int}, {{}, TdsType::BigInt}}).row({1, qint64{7}}).done();
  contract::TdsPeer peer, barePeer;
  for (contract::TdsPeer* each : {&peer, &barePeer}) {
    each->forgetRequests();
    each->answerWith([&](const TdsRequest& request) {
      return request.statement.startsWith(u"insert")     ? stored
             : request.statement.startsWith(u"select *") ? all
                                                         : TdsAnswer();
    });
  }
  const auto driver = platform::sql::odbc::makeDriver();
  const auto session = opened(
      *driver, u"Provider=SQLOLEDB.1;User ID=ann;Password=x;Data Source=127.0.0.1,%1"_s.arg(peer.port()));
  const BareOdbc odbc(
      u"DRIVER=FreeTDS;SERVER=127.0.0.1;PORT=%1;UID=ann;PWD=x;TDS_Version=7.4;ClientCharset=UTF-8"_s.arg(
          barePeer.port()));
  compare(
      u"ODBC: write 10,000 rows, each committed"_s, 5, [&] { insertAll(*session); },
      [&] { insertWithOdbc(odbc); });
  compare(
      u"ODBC: read 10,000 rows"_s, 9, [&] { readAll(*session); }, [&] { readWithOdbc(odbc); });
}

}  // namespace

void measureDrivers() {
  measureOdbc();  // the quickest of them
  measurePostgresql();
  measureSqlite();
}

}  // namespace bench

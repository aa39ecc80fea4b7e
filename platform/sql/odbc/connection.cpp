#include "platform/sql/odbc/connection.h"

#include "platform/basic/failure.h"
#include "platform/sql/errors.h"
#include "platform/sql/literals.h"
#include "platform/sql/odbc/connectstring.h"
#include "platform/sql/odbc/parameters.h"
#include "platform/sql/odbc/reader.h"
#include "platform/sql/oledbkeys.h"

#include <QCoreApplication>

namespace platform::sql::odbc {

namespace {

SQLHANDLE modern(const Handle& environment) {
  SQLSetEnvAttr(environment.get(), SQL_ATTR_ODBC_VERSION, reinterpret_cast<SQLPOINTER>(SQL_OV_ODBC3), 0);
  return environment.get();
}

SQLPOINTER number(SQLULEN value) {
  return reinterpret_cast<SQLPOINTER>(value);
}

/// The server's administrator sees who is connected.
ConnectionString withProgramsName(ConnectionString connection) {
  if (oledbkeys::firstValue(connection, {"Application Name", "APP"}).isEmpty())
    connection.set(QStringLiteral("Application Name"), QCoreApplication::applicationName());
  return connection;
}

// the client library's own numbers
constexpr int refusedEarly = 20002, nobodyThere = 20009, unknownHost = 20013, unknownSetting = 20214;

/// What the client library's word for it, which speaks of another maker's server, means here.
QString reasonOf(const Diagnosis& diagnosis, const ConnectionString& connection) {
  if (isTimeout(diagnosis))
    return QStringLiteral("the server did not answer within %1 s.").arg(connectTimeout(connection));
  switch (diagnosis.number) {
    case nobodyThere:
      return QStringLiteral(
          "no server answers under this name and port, or its firewall lets nobody through.");
    case unknownHost:
      return QStringLiteral("no machine is known by this name.");
    case unknownSetting:
      return QStringLiteral(
          "this driver cannot encrypt as Encrypt=Strict asks for; Encrypt=Mandatory may do instead.");
    case refusedEarly:
      break;
    default:
      return QStringLiteral("it cannot be reached.");
  }
  if (isTrusted(connection))
    return QStringLiteral(
        "there is no valid Kerberos ticket for the trusted connection. \"kinit\" gets one, \"klist\" shows "
        "it; the server has to be given by its full name. User ID and Password do without one.");
  const QString asked = oledbkeys::firstValue(connection, {"Use Encryption for Data", "Encrypt"});
  if (oledbkeys::isYes(asked))
    return QStringLiteral("the server does not encrypt, as Encrypt=%1 asks for.").arg(asked);
  return QStringLiteral("the server broke off before the login.");
}

}  // namespace

Connection::Connection(const ConnectionString& connection, const Options& options)
    : environment_(SQL_HANDLE_ENV, SQL_NULL_HANDLE),
      connection_(SQL_HANDLE_DBC, modern(environment_)),
      label_(labelOf(connection)) {
  open(connection, options);
  try {
    setUp(options);
  } catch (...) {
    SQLDisconnect(connection_.get());
    throw;
  }
}

Connection::~Connection() {
  if (connected_) SQLDisconnect(connection_.get());
}

void Connection::open(const ConnectionString& connection, const Options& options) {
  const QString text = connectString(withProgramsName(connection), options.driver);
  const SQLULEN seconds = static_cast<SQLULEN>(connectTimeout(connection));
  SQLSetConnectAttrW(connection_.get(), SQL_ATTR_LOGIN_TIMEOUT, number(seconds), SQL_IS_UINTEGER);
  SQLSMALLINT length = 0;
  const SQLRETURN code = SQLDriverConnectW(connection_.get(), nullptr, wide(text), SQL_NTS, nullptr, 0,
                                           &length, SQL_DRIVER_NOPROMPT);
  if (!SQL_SUCCEEDED(code)) failToConnect(connection);
  connected_ = true;
}

void Connection::failToConnect(const ConnectionString& connection) {
  const Diagnosis diagnosis = diagnosisOf(connection_);
  qint32 failureNumber = failureOf(diagnosis, {}, label_).number();
  if (isTimeout(diagnosis)) failureNumber = errors::connectionFailed;
  QString text = QStringLiteral("Cannot connect to the database %1: ").arg(label_);
  if (!diagnosis.fromServer && failureNumber == errors::connectionFailed)
    text += reasonOf(diagnosis, connection) + u" ("_qs + diagnosis.text + u')';
  else
    text += diagnosis.text;
  if (diagnosis.number != 0) text += QStringLiteral(" [%1]").arg(diagnosis.number);
  throw Failure(failureNumber, text);
}

/// What the meaning of statements depends on is set here, whatever the server's and the client library's own
/// settings are: the rules that indexed views and computed columns ask for, long texts whole, and counts of
/// rows from nowhere but the statement itself.
void Connection::setUp(const Options& options) {
  QString batch;
  for (const char* on : {"QUOTED_IDENTIFIER", "ANSI_NULLS", "ANSI_PADDING", "ANSI_WARNINGS", "ARITHABORT",
                         "CONCAT_NULL_YIELDS_NULL", "ANSI_NULL_DFLT_ON", "NOCOUNT"})
    batch += QStringLiteral("SET %1 ON; ").arg(QLatin1String(on));
  for (const char* off : {"NUMERIC_ROUNDABORT", "XACT_ABORT", "IMPLICIT_TRANSACTIONS"})
    batch += QStringLiteral("SET %1 OFF; ").arg(QLatin1String(off));
  batch += QStringLiteral("SET TEXTSIZE 2147483647; SET LOCK_TIMEOUT %1").arg(options.lockTimeoutMs);
  run(batch, {}, options.statementSeconds);
}

void Connection::require(SQLRETURN code, const Handle& handle, const QString& statement) {
  if (SQL_SUCCEEDED(code) || code == SQL_NO_DATA) return;
  const Diagnosis diagnosis = diagnosisOf(handle);
  SQLUINTEGER dead = SQL_CD_FALSE;
  SQLGetConnectAttrW(connection_.get(), SQL_ATTR_CONNECTION_DEAD, &dead, sizeof dead, nullptr);
  lost_ = lost_ || odbc::isLost(diagnosis) || dead == SQL_CD_TRUE;
  Failure told = failureOf(diagnosis, statement, label_);
  if (!lost_) throw told;
  QString text =
      QStringLiteral("The connection to the database %1 is broken: %2").arg(label_, diagnosis.text);
  if (!statement.isEmpty() && !isSelectStatement(statement))
    text += QStringLiteral(" Whether the last statement was carried out is not known.");
  throw Failure(isTimeout(diagnosis) ? errors::timeout : errors::connectionFailed, text);
}

QList<ResultSet> Connection::run(const QString& statement, const QList<basic::Value>& parameters,
                                 int seconds) {
  if (lost_)
    throw Failure(
        errors::connectionFailed,
        QStringLiteral("The connection to the database %1 is broken since an earlier failure; it has to be "
                       "opened anew.")
            .arg(label_));
  const Handle handle(SQL_HANDLE_STMT, connection_.get());
  SQLSetStmtAttrW(handle.get(), SQL_ATTR_QUERY_TIMEOUT, number(static_cast<SQLULEN>(seconds)),
                  SQL_IS_UINTEGER);
  const Parameters bound(parameters);
  bound.bind(handle);
  require(SQLExecDirectW(handle.get(), wide(statement), SQL_NTS), handle, statement);
  QList<ResultSet> results;
  while (takeResult(handle, statement, results)) continue;
  return results;
}

/// One of the answers of a batch; false when it was the last one.
bool Connection::takeResult(const Handle& statement, const QString& sql, QList<ResultSet>& results) {
  SQLSMALLINT width = 0;
  require(SQLNumResultCols(statement.get(), &width), statement, sql);
  ResultSet result;
  if (width == 0) {
    SQLLEN touched = 0;
    if (SQL_SUCCEEDED(SQLRowCount(statement.get(), &touched)) && touched > 0)
      result.affected = static_cast<int>(touched);
  } else {
    Reader reader(statement, width, label_, [&](SQLRETURN code) { require(code, statement, sql); });
    result.columns = reader.columns();
    result.rows = reader.rows();
  }
  results.append(result);
  const SQLRETURN code = SQLMoreResults(statement.get());
  require(code, statement, sql);
  return code != SQL_NO_DATA;
}

}  // namespace platform::sql::odbc

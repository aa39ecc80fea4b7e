#include "platform/sql/odbc/session.h"

#include "platform/sql/errors.h"
#include "platform/sql/literals.h"
#include "platform/sql/odbc/connectstring.h"
#include "platform/sql/odbc/driver.h"
#include "platform/sql/odbc/parameters.h"
#include "platform/sql/odbc/reader.h"

#include <QRegularExpression>

namespace platform::sql::odbc {

namespace {

class OdbcSession : public Session {
 public:
  OdbcSession(const ConnectionString& connection, const QString& driver);
  ~OdbcSession() override;
  Result execute(const QString& sql, const QList<basic::Value>& parameters = {}) override;
  void begin() override;
  void commit() override;
  void rollback() override;
  QStringList tables() override;
  QList<Column> columns(const QString& table) override;

 private:
  void run(const QString& sql) { execute(sql); }
  void finish(SQLSMALLINT how);
  void setAutocommit(bool on);
  bool takeResults(const Handle& statement, const QString& sql, bool counts, Result& result);
  QString spelled(const QString& table);
  QStringList keysOf(const QString& table);
  void require(SQLRETURN code, const Handle& handle, const QString& statement = {}) const;

  Handle environment_;
  Handle connection_;
  QString label_;
  bool connected_ = false;
  bool isSqlServer_ = false;
  int depth_ = 0;  // of transactions
};

SQLHANDLE modern(const Handle& environment) {
  SQLSetEnvAttr(environment.get(), SQL_ATTR_ODBC_VERSION, reinterpret_cast<SQLPOINTER>(SQL_OV_ODBC3), 0);
  return environment.get();
}

SQLPOINTER number(SQLULEN value) {
  return reinterpret_cast<SQLPOINTER>(value);
}

OdbcSession::OdbcSession(const ConnectionString& connection, const QString& driver)
    : environment_(SQL_HANDLE_ENV, SQL_NULL_HANDLE),
      connection_(SQL_HANDLE_DBC, modern(environment_)),
      label_(labelOf(connection)) {
  if (label_.isEmpty())
    throw Failure(errors::connectionFailed,
                  QStringLiteral("The connection string names no server (Data Source)."));
  const SQLULEN seconds = static_cast<SQLULEN>(connectTimeout(connection));
  SQLSetConnectAttrW(connection_.get(), SQL_ATTR_LOGIN_TIMEOUT, number(seconds), SQL_IS_UINTEGER);
  const QString text = connectString(connection, driver);
  SQLSMALLINT length = 0;
  const SQLRETURN code = SQLDriverConnectW(connection_.get(), nullptr, wide(text), SQL_NTS, nullptr, 0,
                                           &length, SQL_DRIVER_NOPROMPT);
  if (!SQL_SUCCEEDED(code)) {
    const Failure told = failureOf(diagnosisOf(connection_), {}, label_);
    throw Failure(told.number(),
                  QStringLiteral("Cannot connect to the database %1: %2").arg(label_, told.description()));
  }
  connected_ = true;
  SQLWCHAR product[128] = {};
  SQLSMALLINT bytes = 0;
  if (SQL_SUCCEEDED(SQLGetInfoW(connection_.get(), SQL_DBMS_NAME, product, sizeof product, &bytes)))
    isSqlServer_ = fromWide(product, bytes / 2).contains(u"SQL Server", Qt::CaseInsensitive);
  try {
    if (isSqlServer_) run(QStringLiteral("SET LOCK_TIMEOUT %1").arg(lockTimeoutMs));
  } catch (...) {
    SQLDisconnect(connection_.get());
    throw;
  }
}

OdbcSession::~OdbcSession() {
  if (depth_ > 0) SQLEndTran(SQL_HANDLE_DBC, connection_.get(), SQL_ROLLBACK);
  if (connected_) SQLDisconnect(connection_.get());
}

void OdbcSession::require(SQLRETURN code, const Handle& handle, const QString& statement) const {
  if (SQL_SUCCEEDED(code) || code == SQL_NO_DATA) return;
  throw failureOf(diagnosisOf(handle), statement, label_);
}

Result OdbcSession::execute(const QString& sql, const QList<basic::Value>& parameters) {
  static const QRegularExpression inserts(QStringLiteral("^\\s*insert\\b"),
                                          QRegularExpression::CaseInsensitiveOption);
  QString text = fromAccess(wholeText(sql));
  const bool counts = isSqlServer_ && inserts.match(text).hasMatch();
  // in the same batch, since another one is another scope
  if (counts) text += u"; SELECT CAST(SCOPE_IDENTITY() AS bigint)"_qs;
  const Handle statement(SQL_HANDLE_STMT, connection_.get());
  const Parameters bound(parameters);
  if (parameters.isEmpty()) {
    require(SQLExecDirectW(statement.get(), wide(text), SQL_NTS), statement, text);
  } else {
    require(SQLPrepareW(statement.get(), wide(text), SQL_NTS), statement, text);
    bound.bind(statement);
    require(SQLExecute(statement.get()), statement, text);
  }
  Result result;
  while (takeResults(statement, text, counts, result)) continue;
  return result;
}

/// One of the results of a batch; false when it was the last one.
bool OdbcSession::takeResults(const Handle& statement, const QString& sql, bool counts, Result& result) {
  SQLSMALLINT width = 0;
  require(SQLNumResultCols(statement.get(), &width), statement, sql);
  if (width == 0) {
    SQLLEN touched = 0;
    if (SQL_SUCCEEDED(SQLRowCount(statement.get(), &touched)) && touched > 0)
      result.affected += static_cast<int>(touched);
  } else {
    Reader reader(statement, width, label_);
    const QList<Column> columns = reader.columns();
    const QList<QList<basic::Value>> rows = reader.rows();
    if (!counts) {
      // of several the last one
      result.columns = columns;
      result.rows = rows;
    } else if (!rows.isEmpty()) {
      if (const auto* small = std::get_if<qint32>(&rows.first().first())) result.lastId = *small;
      if (const auto* large = std::get_if<qint64>(&rows.first().first())) result.lastId = *large;
    }
  }
  const SQLRETURN code = SQLMoreResults(statement.get());
  require(code, statement, sql);
  return code != SQL_NO_DATA;
}

void OdbcSession::setAutocommit(bool on) {
  require(SQLSetConnectAttrW(connection_.get(), SQL_ATTR_AUTOCOMMIT,
                             number(on ? SQL_AUTOCOMMIT_ON : SQL_AUTOCOMMIT_OFF), SQL_IS_UINTEGER),
          connection_);
}

void OdbcSession::begin() {
  if (depth_ == 0)
    setAutocommit(false);
  else
    run((isSqlServer_ ? QStringLiteral("SAVE TRANSACTION level%1") : QStringLiteral("SAVEPOINT level%1"))
            .arg(depth_));
  ++depth_;
}

void OdbcSession::finish(SQLSMALLINT how) {
  require(SQLEndTran(SQL_HANDLE_DBC, connection_.get(), how), connection_);
  depth_ = 0;
  setAutocommit(true);
}

void OdbcSession::commit() {
  if (depth_ <= 1)
    finish(SQL_COMMIT);
  else
    --depth_;  // a part of a transaction is committed with it
}

void OdbcSession::rollback() {
  if (depth_ <= 1) {
    finish(SQL_ROLLBACK);
    return;
  }
  --depth_;
  run((isSqlServer_ ? QStringLiteral("ROLLBACK TRANSACTION level%1") : QStringLiteral("ROLLBACK TO level%1"))
          .arg(depth_));
}

const QString* textIn(const QList<basic::Value>& row, int column) {
  return column < row.size() ? std::get_if<QString>(&row[column]) : nullptr;
}

// where the answers of the driver's own catalogue have what is needed
constexpr int schemaAt = 1, tableAt = 2, kindAt = 3, columnAt = 3, typeNameAt = 5;

QStringList OdbcSession::tables() {
  const Handle statement(SQL_HANDLE_STMT, connection_.get());
  const QString kind = QStringLiteral("TABLE");
  require(SQLTablesW(statement.get(), nullptr, 0, nullptr, 0, nullptr, 0, wide(kind), SQL_NTS), statement);
  QStringList names;
  for (const auto& row : Reader(statement, label_).rows()) {
    const QString *schema = textIn(row, schemaAt), *name = textIn(row, tableAt), *type = textIn(row, kindAt);
    const bool own = schema && (*schema == u"sys" || *schema == u"INFORMATION_SCHEMA");
    if (name && type && *type == kind && !own) names.append(*name);
  }
  names.sort(Qt::CaseInsensitive);
  return names;
}

QString OdbcSession::spelled(const QString& table) {
  QString found;
  for (const QString& name : tables()) {
    if (name == table) return name;
    if (found.isEmpty() && name.compare(table, Qt::CaseInsensitive) == 0) found = name;
  }
  return found;
}

QStringList OdbcSession::keysOf(const QString& table) {
  const Handle statement(SQL_HANDLE_STMT, connection_.get());
  require(SQLPrimaryKeysW(statement.get(), nullptr, 0, nullptr, 0, wide(table), SQL_NTS), statement);
  QStringList keys;
  for (const auto& row : Reader(statement, label_).rows())
    if (const QString* name = textIn(row, columnAt)) keys.append(*name);
  return keys;
}

QList<Column> OdbcSession::columns(const QString& table) {
  const QString name = spelled(table);
  if (name.isEmpty()) return {};
  const QStringList keys = keysOf(name);
  const Handle statement(SQL_HANDLE_STMT, connection_.get());
  require(SQLColumnsW(statement.get(), nullptr, 0, nullptr, 0, wide(name), SQL_NTS, nullptr, 0), statement);
  QList<Column> columns;
  for (const auto& row : Reader(statement, label_).rows()) {
    const QString *of = textIn(row, tableAt), *column = textIn(row, columnAt),
                  *type = textIn(row, typeNameAt);
    if (!of || *of != name || !column) continue;  // "_" in a name stands for any sign here
    Column made = columnOfCatalogue(row);
    made.name = *column;
    made.primaryKey = keys.contains(*column);
    made.autoIncrement = type && (type->contains(u"identity", Qt::CaseInsensitive) ||
                                  type->contains(u"serial", Qt::CaseInsensitive));
    columns.append(made);
  }
  return columns;
}

}  // namespace

QString fromAccess(const QString& sql) {
  if (!isAccessStatement(sql)) return sql;
  QString out;
  QChar closing;
  const QString statement = withoutDeleteStar(sql);
  for (qsizetype at = 0; at < statement.size(); ++at) {
    const QChar c = statement[at];
    if (!closing.isNull()) {
      if (c == closing) closing = QChar();
    } else if (c == u'\'' || c == u'"') {
      closing = c;
    } else if (c == u'[') {
      closing = u']';
    } else if (c == u'#' && (out.isEmpty() || !isWordSign(out.back()))) {
      // not the first sign of a temporary table's name
      const qsizetype end = statement.indexOf(u'#', at + 1);
      if (end > at + 1 && statement[at + 1].isDigit()) {
        const basic::Date date = dateOfLiteral(statement.mid(at + 1, end - at - 1));
        out += u"{ts '"_qs + isoText(date).replace(u'T', u' ') + u"'}"_qs;
        at = end;
        continue;
      }
    }
    out += c;
  }
  return out;
}

std::unique_ptr<Session> OdbcDriver::connect(const ConnectionString& connection) {
  return std::make_unique<OdbcSession>(connection, driver_);
}

std::shared_ptr<Driver> makeDriver() {
  return std::make_shared<OdbcDriver>();
}

}  // namespace platform::sql::odbc

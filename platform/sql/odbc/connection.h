#pragma once
#include "platform/sql/driver.h"
#include "platform/sql/odbc/failures.h"
#include "platform/sql/odbc/options.h"

namespace platform::sql::odbc {

/// One answer of a statement.
struct ResultSet {
  QList<Column> columns;  // none: rows were only counted
  QList<QList<basic::Value>> rows;
  int affected = 0;
};

/// A connection to a server, and what it says to a statement. One answer stands open at a time: it is read to
/// its end before the next statement goes out.
///
/// When the server or the way to it is lost, the connection is of no more use: every further statement fails
/// with -2147467259 and is not sent, so that nothing is done twice.
class Connection {
 public:
  Connection(const ConnectionString& connection, const Options& options);
  ~Connection();
  Connection(const Connection&) = delete;
  Connection& operator=(const Connection&) = delete;

  /// What failures call the database: "database on server".
  const QString& label() const { return label_; }
  bool isLost() const { return lost_; }
  /// All answers of a batch, in their order; waits for each at most so many seconds. Parameters stand as
  /// "?".
  QList<ResultSet> run(const QString& statement, const QList<basic::Value>& parameters, int seconds);

 private:
  void open(const ConnectionString& connection, const Options& options);
  void setUp(const Options& options);
  bool takeResult(const Handle& statement, const QString& sql, QList<ResultSet>& results);
  void require(SQLRETURN code, const Handle& handle, const QString& statement);
  [[noreturn]] void failToConnect(const ConnectionString& connection);

  Handle environment_;
  Handle connection_;
  QString label_;
  bool connected_ = false;
  bool lost_ = false;
};

}  // namespace platform::sql::odbc

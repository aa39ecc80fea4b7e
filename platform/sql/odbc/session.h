#pragma once
#include "platform/sql/driver.h"

namespace platform::sql::odbc {

/// How long a statement waits for a row or table that another program holds.
inline constexpr int lockTimeoutMs = 5000;

/// The driver for SQL Server through ODBC: "Provider=SQLOLEDB.1;Data Source=server;Initial Catalog=database"
/// with "Integrated Security=SSPI" or "User ID" and "Password". `driver` is the driver manager's name for a
/// driver, or its file.
///
/// Statements are the server's own, since that is what the product sends to it; only dates in number signs
/// and the star of "delete * from" are turned. A value of the counter comes from the server's scope of the
/// insert. Failures carry the server's number in square brackets, and its text.
class OdbcDriver : public Driver {
 public:
  explicit OdbcDriver(QString driver = QStringLiteral("FreeTDS")) : driver_(std::move(driver)) {}
  /// Failure 3706 without such a driver, -2147217843 when user or password are refused, -2147467259 when the
  /// server cannot be reached or does not have the database.
  std::unique_ptr<Session> connect(const ConnectionString& connection) override;

 private:
  QString driver_;
};

/// What of a statement is turned. Failure 3075 for a date that cannot be read.
QString fromAccess(const QString& sql);

}  // namespace platform::sql::odbc

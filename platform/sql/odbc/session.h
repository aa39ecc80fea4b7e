#pragma once
#include "platform/sql/driver.h"
#include "platform/sql/odbc/connection.h"
#include "platform/sql/odbc/dialect.h"

namespace platform::sql::odbc {

/// A database of an SQL Server (2008 or later). Statements of the Access kind are turned where they are not
/// the server's own (see dialect.h); all others pass as they stand and may be in the server's whole language.
///
/// A statement that fails leaves the transaction around it as it was, unless the server itself gives the
/// whole transaction up (as it does after a deadlock, or a value that cannot be converted): then every
/// further statement and the commit fail until `rollback`, so that no half of it is stored.
class OdbcSession : public Session {
 public:
  OdbcSession(const ConnectionString& connection, const Options& options);
  Result execute(const QString& sql, const QList<basic::Value>& parameters = {}) override;
  void begin() override;
  void commit() override;
  void rollback() override;
  QStringList tables() override;  // views are not among them
  QList<Column> columns(const QString& table) override;
  /// The name of a lock that the session holds up to its end, which needs no right in the database. Empty
  /// where the server gives none.
  QString token() override;
  /// Waits for the end of that session, since to end another one takes an administrator; 10 s at most.
  void settle(const QString& token) override;

 private:
  qint64 lockOf(const QString& name, int milliseconds);
  Result executeNative(const QString& sql, const QList<basic::Value>& parameters);
  Translation translated(const QString& sql, const QList<basic::Value>& parameters);
  Result executeAccess(const QString& sql, const QList<basic::Value>& parameters);
  QList<YesNoColumn> yesNoColumns(const QString& table);
  void control(const QString& statement);
  void requireTransaction() const;
  void noteGivenUp() noexcept;

  Connection connection_;
  const Options options_;
  const bool readOnly_;
  QHash<QString, QList<YesNoColumn>> yesNoColumns_;  // by table; another program may have changed it since
  QHash<QString, Translation> translations_;         // of statements with parameters, by these as well
  int depth_ = 0;                                    // of transactions
  bool givenUp_ = false;                             // the transaction, by the server
  QString token_;
};

/// The driver for SQL Server through ODBC. Keys of its connection strings, without regard to case:
///
///   Data Source              the server, see connectstring.h; also Server, Address, Addr, Network Address.
///                            Required.
///   Port                     where Data Source names none; 1433 unless told
///   Initial Catalog          the database; also Database. Without it the user's default one.
///   User ID, Password        also UID, User, User Name; PWD. DOMAIN\user for a Windows user.
///   Integrated Security      SSPI, Yes or True: the user's Kerberos ticket; also Trusted_Connection
///   Connect Timeout          seconds to wait for the server, 1 to 600, else 15; also Connection Timeout,
///                            Timeout
///   Use Encryption for Data  Yes or Mandatory: nothing without encryption; Strict; else where the server
///                            offers it. Also Encrypt.
///   Application Name         what the server's administrator sees, else this program's; also APP
///   Mode                     Read: nothing is changed
///   Workstation ID, Packet Size, Current Language, Initial File Name, Application Intent, Server SPN
///
/// All others are left out, Persist Security Info among them.
class OdbcDriver : public Driver {
 public:
  explicit OdbcDriver(Options options = {}) : options_(std::move(options)) {}
  /// Failure 3706 without such a driver, -2147217843 when user or password are refused, -2147467259 when the
  /// server cannot be reached or does not have the database; never with the password.
  std::unique_ptr<Session> connect(const ConnectionString& connection) override;

 private:
  Options options_;
};

}  // namespace platform::sql::odbc

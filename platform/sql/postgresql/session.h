#pragma once
#include "platform/sql/postgresql/catalogue.h"
#include "platform/sql/postgresql/connection.h"
#include "platform/sql/postgresql/dialect.h"

namespace platform::sql::postgresql {

/// A database of a PostgreSQL server (version 12 or later, built with ICU). Statements of the Access kind are
/// turned into the server's; all others pass as they stand, several at once included, and may be in the
/// server's whole language.
///
/// A transaction whose `commit` fails is rolled back as a whole by the server itself.
///
/// As with the embedded database a statement that fails leaves the transaction around it as it was; it is set
/// back by itself. A row or table that another program holds is waited for, `lockTimeoutMs` at most.
class PostgresqlSession : public Session {
 public:
  PostgresqlSession(const ConnectionString& connection, int lockTimeout, int patience = statementSeconds);
  ~PostgresqlSession() override;
  Result execute(const QString& sql, const QList<basic::Value>& parameters = {}) override;
  void begin() override;
  void commit() override;
  void rollback() override;
  QStringList tables() override;  // views are not among them
  QList<Column> columns(const QString& table) override;
  /// Process and start of the server's side. Behind a connection that the client has lost, or whose client
  /// was killed, that one goes on with what it was sent, and stores it.
  QString token() override;
  /// Needs the login of that session, or a right to end those of others.
  void settle(const QString& token) override;

 private:
  Result executeNative(const QString& sql, const QList<basic::Value>& parameters);
  Translation translated(const QString& sql);
  Result executeAccess(const QString& sql, const QList<basic::Value>& parameters);
  ResultPointer run(const Translation& translation, const QList<basic::Value>& parameters);
  void takeCounter(const Translation& translation, Result& result);
  void advanceCounter(const CatalogueTable& table, qint64 value);
  Result resultOf(const ResultPointer& answer);
  QList<Column> describe(const ResultPointer& answer);
  const Catalogue& catalogue();
  void readCatalogue();
  void forget();

  Connection connection_;
  std::optional<Catalogue> catalogue_;  // of the last reading; another program may have changed it since
  bool catalogueIsNew_ = false;         // read within the running statement
  /// What the server takes the parameters of a statement for, so that it need not be asked for each row.
  QHash<QString, QList<unsigned>> typesOf_;
  QHash<QString, Translation> translations_;  // of statements with parameters, under the present catalogue
  bool typesWereKnown_ = false;               // to the running statement
  qint64 lastIdentity_ = 0;
  int depth_ = 0;  // of transactions
};

/// The driver for PostgreSQL servers. Keys of its connection strings, without regard to case:
///
///   Provider                 PostgreSQL
///   Data Source              the server: "host", "host,port", "(local)", or the folder of a local socket
///                            ("/run/postgresql", "/run/postgresql,5433"); also Server, Address, Addr,
///                            Network Address. Required.
///   Initial Catalog          the database; also Database. Without it "postgres", from which databases are
///                            made.
///   Port                     where Data Source names none; 5432 unless told
///   User ID, Password        also UID, User, User Name; PWD. What is not given comes from the user's own
///   surroundings
///                            (the name he is logged in by, ~/.pgpass).
///   Integrated Security      SSPI, Yes or True: user and password are left out; also Trusted_Connection
///   Connect Timeout          seconds to wait for the server, 1 to 600, else 15; also Connection Timeout.
///   (The
///                            time that the system takes to look up a host's name is not counted.)
///   Use Encryption for Data  Yes: nothing without encryption; also Encrypt
///   SSL Mode                 a word of the client library instead: disable, require, verify-ca, verify-full
///   Application Name         what the server's administrator sees; also APP
///   Mode                     Read: nothing is changed
///
/// All others are left out, Persist Security Info among them.
class PostgresqlDriver : public Driver {
 public:
  explicit PostgresqlDriver(int lockTimeout = lockTimeoutMs, int patience = statementSeconds)
      : lockTimeout_(lockTimeout), patience_(patience) {}
  /// Failure -2147217843 when user or password are refused, -2147467259 when the server cannot be reached or
  /// does not have the database; with the server's text, and never the password.
  std::unique_ptr<Session> connect(const ConnectionString& connection) override;

 private:
  int lockTimeout_;
  int patience_;  // seconds
};

}  // namespace platform::sql::postgresql

#pragma once
#include "platform/sql/driver.h"

#include <QByteArray>

#include <memory>
#include <optional>

class QDeadlineTimer;
struct pg_conn;
struct pg_result;

namespace platform::sql::postgresql {

/// How long a statement waits for a row or table that another program holds.
inline constexpr int lockTimeoutMs = 5000;
inline constexpr int connectTimeoutSeconds = 15;
/// How long the server may keep silent upon a statement, and upon one in its own language, such as CREATE
/// DATABASE.
inline constexpr int statementSeconds = 30;
inline constexpr int definitionSeconds = 600;

struct ResultDeleter {
  void operator()(pg_result* result) const;
};
using ResultPointer = std::unique_ptr<pg_result, ResultDeleter>;

/// A text as the server takes it; nothing is Null.
using Parameter = std::optional<QByteArray>;

/// What a connection string means for the client library: keyword and value.
QList<std::pair<QByteArray, QByteArray>> libraryOptions(const ConnectionString& connection);
/// Seconds to wait for the server: "Connect Timeout", "Connection Timeout" or "Timeout", 1 to 600; 15 for any
/// other.
int connectTimeout(const ConnectionString& connection);

/// A connection to a server, and what it says to a statement. Failures carry the interface's numbers and the
/// server's own text.
class Connection {
 public:
  Connection(const ConnectionString& connection, int lockTimeout, int patience = statementSeconds);
  ~Connection();
  Connection(const Connection&) = delete;
  Connection& operator=(const Connection&) = delete;

  /// What failures call the database: "database on server".
  const QString& label() const { return label_; }
  /// One or several statements without parameters. After `seconds` in which nothing of the answer comes,
  /// the usual time when none are told, the connection is closed: the server may still carry the statement
  /// out, and nothing is to be sent behind that.
  ResultPointer run(const QString& statements, int seconds = 0);
  /// One statement, whose parameters stand as $1, $2 ...; `types` are the engine's numbers for them, which
  /// it finds itself where none are given.
  ResultPointer run(const QString& statement, const QList<Parameter>& parameters, int seconds = 0,
                    const QList<unsigned>& types = {});
  /// Has the server read a statement, and tells the types that it takes the parameters for.
  QList<unsigned> prepare(const QString& statement);
  ResultPointer runPrepared(const QString& statement, const QList<Parameter>& parameters);
  bool inTransaction() const;

 private:
  void open(const ConnectionString& connection);
  void setUp(const ConnectionString& connection, int lockTimeout);
  bool takeMore(QDeadlineTimer& deadline, int seconds);
  ResultPointer answered(int sent, const QString& statement, int seconds = 0);
  ResultPointer checked(pg_result* result, const QString& statement);
  [[noreturn]] void failToConnect() const;

  struct Closer {
    void operator()(pg_conn* connection) const;
  };
  std::unique_ptr<pg_conn, Closer> connection_;
  QString label_;
  int patience_;
};

}  // namespace platform::sql::postgresql

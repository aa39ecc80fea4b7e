#pragma once
#include <QProcess>
#include <QString>
#include <QTemporaryDir>

namespace contract {

/// A PostgreSQL server of this test program's own, in a temporary folder: made and started when it is
/// created, stopped when it goes, and with the program when that one crashes. It listens on a socket in its
/// folder alone, so that any number of them run side by side, and keeps nothing on the disk with care. As
/// root, whom the server refuses to run for, it runs as an ordinary user.
class PostgresqlServer {
 public:
  PostgresqlServer();
  ~PostgresqlServer();
  PostgresqlServer(const PostgresqlServer&) = delete;
  PostgresqlServer& operator=(const PostgresqlServer&) = delete;

  /// Why there is none; empty when it runs.
  const QString& problem() const { return problem_; }
  /// What a connection string names as its server.
  QString dataSource() const { return folder_.path(); }
  /// The owner, who needs no password; nor does any other user but "guarded".
  QString user() const { return QStringLiteral("contract"); }
  /// Ends it as a power cut would, without a word to its clients; what it has committed stays.
  void kill();
  /// Starts it again on what it has stored.
  void restart();

 private:
  void make();
  void start();
  void letIn(const QString& data);
  QString program(const QString& name) const;
  void prepare(QProcess& process) const;

  QTemporaryDir folder_;
  QProcess server_;
  QString problem_;
};

}  // namespace contract

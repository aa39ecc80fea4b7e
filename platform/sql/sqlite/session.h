#pragma once
#include "platform/sql/driver.h"
#include "platform/sql/sqlite/lockfile.h"
#include "platform/sql/sqlite/patience.h"

#include <QAtomicInt>
#include <QHash>
#include <QVariant>

class QSqlDatabase;
class QSqlQuery;
class QSqlError;
class QSqlRecord;

namespace platform::sql::sqlite {

/// How long a statement waits for another program to let go of the file before it fails.
inline constexpr int busyTimeoutMs = 10000;

/// Tables of this engine's own, hidden from `tables()`: captions and further properties of columns, and
/// relations.
inline constexpr char columnCatalogue[] = "MSysColumns";
inline constexpr char relationCatalogue[] = "MSysRelationships";

/// What has to survive once a statement has returned. Databases that are thrown away anyway, as a test's, can
/// spare the waiting for the disk.
enum class Durability { PowerCut, ProcessEnd };

struct OpenOptions {
  int busyTimeout = busyTimeoutMs;
  Durability durability = Durability::PowerCut;
  bool create = false;
  bool readOnly = false;
};

/// An SQLite database. Foreign keys are on. In a file the rollback journal is used, not the write-ahead log,
/// because that one needs shared memory and so damages databases on a folder shared between machines.
/// `synchronous` is EXTRA: when a statement returns, its row survives a power cut, the removal of the journal
/// included; what is stamped elsewhere after that can rely on it.
class SqliteSession : public Session {
 public:
  /// `uri` is what SQLite opens, `label` what failures call it. `lock` is let go once the database is closed.
  SqliteSession(const QString& uri, const QString& label, const OpenOptions& options,
                std::shared_ptr<const LockFile> lock = nullptr);
  ~SqliteSession() override;
  Result execute(const QString& sql, const QList<basic::Value>& parameters = {}) override;
  void begin() override;
  void commit() override;
  void rollback() override;
  QStringList tables() override;
  QList<Column> columns(const QString& table) override;

 private:
  QSqlDatabase database() const;
  std::shared_ptr<QSqlQuery> tablesHeld(const QString& sql) const;
  std::shared_ptr<QSqlQuery> prepared(const QString& sql, const QString& key);
  void keep(const QString& key, const std::shared_ptr<QSqlQuery>& query);
  QList<Column> columnsNow(const QString& table);
  QList<Column> describe(const QSqlRecord& record, const QList<QList<QVariant>>& rows);
  QList<basic::Value> valuesOf(const QSqlRecord& record, const QList<Column>& columns,
                               const QList<QVariant>& row) const;
  [[noreturn]] void fail(const QSqlError& error, const QString& statement) const;
  void close();

  struct KnownColumns {
    quint32 version;
    QList<Column> columns;
  };

  Patience patience_;
  QString connection_;
  QString label_;
  std::shared_ptr<const LockFile> lock_;
  QHash<QString, std::shared_ptr<QSqlQuery>> prepared_;  // by number of parameters and text
  QHash<QString, KnownColumns> known_;                   // by table
  int depth_ = 0;                                        // of transactions
};

/// The driver for files: "Provider=Microsoft.Jet.OLEDB.4.0;Data Source=path". A missing file is never made.
/// "Mode=Read" opens it read-only. While a database is being compacted, connecting waits for it.
class SqliteDriver : public Driver {
 public:
  explicit SqliteDriver(int busyTimeout = busyTimeoutMs, Durability durability = Durability::PowerCut)
      : busyTimeout_(busyTimeout), durability_(durability) {}
  std::unique_ptr<Session> connect(const ConnectionString& connection) override;

 private:
  int busyTimeout_;
  Durability durability_;
};

/// SQLite's address of a file.
QString fileUri(const QString& path, const QString& mode);

}  // namespace platform::sql::sqlite

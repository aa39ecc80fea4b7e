#pragma once
#include "platform/basic/value.h"

#include <QList>
#include <QMap>
#include <QString>
#include <QStringList>

#include <memory>

// What a database driver must do. SQL is of the kind that the product sends: Access's and, on a server, the
// server's; a driver turns it into its engine's own. Parameters stand as "?". All failures are
// platform::Failure with the engine's number and text, and name the database.
namespace platform::sql {

enum class Type { Boolean, Integer, Long, Single, Double, Currency, Date, Text, Memo };

struct Column {
  QString name;
  Type type = Type::Text;
  int size = 0;  // characters, for Text
  bool autoIncrement = false;
  bool primaryKey = false;
  bool allowZeroLength = true;
  QString caption;
};

struct Relation {
  QString name, table, foreignTable, field;
};

struct Result {
  QList<Column> columns;  // name and type as far as the engine tells; of a statement without rows, none
  QList<QList<basic::Value>> rows;
  int affected = 0;
  qint64 lastId = 0;  // of an insert into a table with an auto-increment key
};

/// A connection string taken apart: keys without regard to case, values as they stand (quotes taken off). Of
/// a key that comes twice the last value counts, of "Provider" the first. Failure -2147217805 for a text of
/// another form.
class ConnectionString {
 public:
  ConnectionString() = default;
  explicit ConnectionString(const QString& text);
  QString value(const QString& key) const { return values_.value(key.toLower()); }
  bool has(const QString& key) const { return values_.contains(key.toLower()); }
  void set(const QString& key, const QString& value) { values_.insert(key.toLower(), value); }
  QString provider() const { return value(QStringLiteral("Provider")); }

 private:
  QMap<QString, QString> values_;
};

/// An open connection. Closed when destroyed. Each statement stands by itself (is committed when `execute`
/// returns), unless a transaction has begun; see `Transaction`, which is the way to begin one.
class Session {
 public:
  virtual ~Session() = default;
  virtual Result execute(const QString& sql, const QList<basic::Value>& parameters = {}) = 0;
  /// A transaction within another one can be rolled back by itself, and is committed with the outer one.
  virtual void begin() = 0;
  virtual void commit() = 0;  // when it fails, the transaction still stands
  virtual void rollback() = 0;
  virtual QStringList tables() = 0;
  virtual QList<Column> columns(const QString& table) = 0;  // empty when there is no such table
  /// Tells this session from all others of its database, for `settle` of a later one. Empty: once its program
  /// is gone, nothing of it is carried out any more.
  virtual QString token() { return {}; }
  /// Ends the session of a token, if it is still there: what it was sent has been carried out then, or never
  /// will be. Throws when that cannot be made sure of.
  virtual void settle(const QString& token) { Q_UNUSED(token) }
};

class Driver {
 public:
  virtual ~Driver() = default;
  virtual std::unique_ptr<Session> connect(const ConnectionString& connection) = 0;
};

/// Statements that are carried out together. Rolled back when it ends without `commit`; a destructor must not
/// throw, and the failure that led there is the one to tell.
class Transaction {
 public:
  explicit Transaction(Session& session);
  ~Transaction();
  void commit();
  Transaction(const Transaction&) = delete;
  Transaction& operator=(const Transaction&) = delete;

 private:
  Session& session_;
  bool committed_ = false;
};

/// A database file of which a compacted copy was made. As long as it lives nobody else gets at the file.
class CompactedSource {
 public:
  virtual ~CompactedSource() = default;
  /// To be called right before the copy takes the file's place: a failure when another file stands there by
  /// now, or another one under the copy's name. A copy that is out of date then is removed.
  virtual void requireUnchanged() const = 0;
};

/// What else the file-database engine must do, for creating, upgrading and compacting. Adding a relation is a
/// transaction of its own and cannot stand within another one.
class FileEngine {
 public:
  virtual ~FileEngine() = default;
  virtual void createDatabase(const QString& path) = 0;  // fails when the file exists
  virtual void createTable(Session& session, const QString& table, const QList<Column>& columns) = 0;
  virtual void addColumn(Session& session, const QString& table, const Column& column) = 0;
  virtual void addRelation(Session& session, const Relation& relation) = 0;
  virtual QList<Relation> relations(Session& session) = 0;
  virtual void setCaption(Session& session, const QString& table, const QString& column,
                          const QString& caption) = 0;
  /// Writes a compacted copy, which only its owner can read until it is whole. Fails at once when another
  /// program has the source open, busy with it or not, and when the target exists, and leaves no target of
  /// its own behind then. What is returned keeps the source locked against all others until it is let go, so
  /// that nobody writes into a file that is about to be replaced.
  virtual std::shared_ptr<CompactedSource> compact(const QString& source, const QString& target) = 0;
};

/// Drivers by provider name ("Microsoft.Jet.OLEDB.4.0", without regard to case).
class Drivers {
 public:
  void add(const QString& provider, std::shared_ptr<Driver> driver) {
    drivers_.insert(provider.toLower(), std::move(driver));
  }
  /// Failure 3706 ("Provider cannot be found. It may not be properly installed.") when there is none.
  Driver& find(const QString& provider) const;

 private:
  QMap<QString, std::shared_ptr<Driver>> drivers_;
};

}  // namespace platform::sql

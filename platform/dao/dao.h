#pragma once
#include "platform/sql/driver.h"

#include <memory>

namespace platform::dao {

enum DataTypeEnum {
  dbBoolean = 1,
  dbInteger = 3,
  dbLong = 4,
  dbCurrency = 5,
  dbSingle = 6,
  dbDouble = 7,
  dbDate = 8,
  dbText = 10,
  dbMemo = 12
};
inline constexpr int dbAutoIncrField = 16;
inline constexpr int dbVersion40 = 64;

class Database;
class TableDef;

/// A column. Made by `TableDef.CreateField`, part of the table once it is appended.
struct Field {
  QString Name;
  int Type = dbText;
  int Size = 0;
  int Attributes = 0;
  bool AllowZeroLength = false;
  QString Caption;  // the property "Caption"; empty when it has none
};

struct Index {
  QString Name;
  bool Primary = false;
  QStringList Fields;
};

/// A table, new (until it is appended to the database) or existing. A field or caption given to an existing
/// table reaches the file at once.
class TableDef {
 public:
  QString Name() const { return name_; }
  Field CreateField(const QString& name, int type, int size = 0) const;
  void AppendField(const Field& field);
  Index CreateIndex(const QString& name) const;
  /// The primary key, which bears the name "PrimaryKey". Any other index is refused with Failure 3251.
  void AppendIndex(const Index& index);
  const QList<Field>& Fields() const { return fields_; }
  const QList<Index>& Indexes() const { return indexes_; }
  /// `Field.CreateProperty("Caption", dbText, text)` and its append.
  void setCaption(const QString& field, const QString& caption);

 private:
  friend class Database;
  TableDef(Database* database, QString name) : database_(database), name_(std::move(name)) {}
  [[noreturn]] void refuseIndex(const Index& index) const;
  Database* database_;
  QString name_;
  bool appended_ = false;
  QList<Field> fields_;
  QList<Index> indexes_;
};

class Database {
 public:
  Database(std::unique_ptr<sql::Session> session, std::shared_ptr<sql::FileEngine> engine);
  std::shared_ptr<TableDef> CreateTableDef(const QString& name);
  /// A table needs at least one field to be appended (Failure 3264).
  void AppendTableDef(const std::shared_ptr<TableDef>& table);
  QStringList TableDefNames() const;
  std::shared_ptr<TableDef> TableDefs(const QString& name);  // Failure 3265 when there is none
  void AppendRelation(const sql::Relation& relation);
  QList<sql::Relation> Relations() const;
  void Execute(const QString& sql);
  void Close();

 private:
  friend class TableDef;
  friend class Transaction;
  sql::Session& session() const;  // Failure 3420 after Close
  std::unique_ptr<sql::Session> session_;
  std::shared_ptr<sql::FileEngine> engine_;
};

/// Changes to a database that are carried out together: `BeginTrans`, `CommitTrans`, and `Rollback` when it
/// ends without. `AppendRelation` cannot stand in one.
class Transaction {
 public:
  explicit Transaction(Database& database) : transaction_(database.session()) {}
  void CommitTrans() { transaction_.commit(); }

 private:
  sql::Transaction transaction_;
};

/// `DAO.DBEngine` over the embedded engine.
class DBEngine {
 public:
  DBEngine(std::shared_ptr<sql::Driver> driver, std::shared_ptr<sql::FileEngine> engine);
  virtual ~DBEngine() = default;
  /// `locale` and `options` are taken as they stand; the embedded engine sorts by its own rules. Failure 3204
  /// when the file exists.
  virtual std::shared_ptr<Database> CreateDatabase(const QString& path, const QString& locale, int options);
  std::shared_ptr<Database> OpenDatabase(const QString& path);
  /// The database that a session of this engine has open, so that a table or column becomes part of the
  /// session's transaction.
  std::shared_ptr<Database> DatabaseOver(std::unique_ptr<sql::Session> session) const;
  /// The source stays locked against others as long as the returned object lives; who ignores it lets go at
  /// once.
  std::shared_ptr<sql::CompactedSource> CompactDatabase(const QString& source, const QString& target);

 private:
  std::shared_ptr<sql::Driver> driver_;
  std::shared_ptr<sql::FileEngine> engine_;
};

}  // namespace platform::dao

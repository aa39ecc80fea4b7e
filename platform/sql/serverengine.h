#pragma once
#include "platform/sql/driver.h"

namespace platform::sql {

/// Making and changing the tables of a server's database. Works on any session of the server's driver, a
/// wrapped one included, because it speaks through `execute` alone. Each operation is carried out whole or
/// not at all, and everything is told in the server's own terms, so that other programs see it too: a server
/// says its words, and what is done in which order stands here.
class ServerEngine : public FileEngine {
 public:
  /// Failure -2147217900: a server's database is no file, and is made by a statement.
  void createDatabase(const QString& path) override;
  void createTable(Session& session, const QString& table, const QList<Column>& columns) override;
  void addColumn(Session& session, const QString& table, const Column& column) override;
  void addRelation(Session& session, const Relation& relation) override;
  QList<Relation> relations(Session& session) override;
  void setCaption(Session& session, const QString& table, const QString& column,
                  const QString& caption) override;
  /// Failure -2147217900: the server cares for its files by itself.
  std::shared_ptr<CompactedSource> compact(const QString& source, const QString& target) override;

 protected:
  struct Words {
    QString addColumn, addConstraint;  // behind ALTER TABLE and the name
    QString relations;                 // asks for name, table, foreign table and field of each, oldest first
  };
  explicit ServerEngine(Words words) : words_(std::move(words)) {}

  virtual QString quoted(const QString& name) const = 0;
  /// Name, type and conditions of a column, with its key when it is a counter.
  virtual QString definition(const QString& table, const Column& column) const = 0;
  virtual void describe(Session& session, const QString& table, const QString& column,
                        const QString& caption) const = 0;
  /// What the columns ask for that is none of their table.
  virtual void prepare(Session& session, const QList<Column>& columns) const;

 private:
  Words words_;
};

}  // namespace platform::sql

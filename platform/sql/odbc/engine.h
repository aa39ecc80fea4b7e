#pragma once
#include "platform/sql/driver.h"

namespace platform::sql::odbc {

/// Making and changing the tables of a server database. Works on any session of this driver, a wrapped one
/// included, because it speaks through `execute` alone. Each operation is carried out whole or not at all.
///
/// Everything is told in the server's own terms, so that other programs see it too: counters are identities,
/// captions are the descriptions of columns that the server's own tools show (MS_Description), relations are
/// foreign keys under their names. Texts are Unicode and compare as the database does, usually without regard
/// to case. Names have at most 64 characters.
class OdbcEngine : public FileEngine {
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
};

}  // namespace platform::sql::odbc

#include "platform/sql/serverengine.h"

#include "platform/sql/schema.h"

namespace platform::sql {

void ServerEngine::createDatabase(const QString& path) {
  schema::refuseFile(path);
}

std::shared_ptr<CompactedSource> ServerEngine::compact(const QString& source, const QString&) {
  schema::refuseCompaction(source);
}

void ServerEngine::prepare(Session&, const QList<Column>&) const {}

void ServerEngine::createTable(Session& session, const QString& table, const QList<Column>& columns) {
  const QString name = quoted(table);
  schema::requireNewTable(session, table, columns);
  QStringList parts, keys;
  bool counted = false;
  for (const Column& column : columns) {
    parts.append(definition(table, column));
    counted = counted || column.autoIncrement;
    if (column.primaryKey) keys.append(quoted(column.name));
  }
  if (!counted && !keys.isEmpty()) parts.append(u"PRIMARY KEY ("_qs + keys.join(u", "_qs) + u')');
  Transaction transaction(session);
  prepare(session, columns);
  session.execute(u"CREATE TABLE "_qs + name + u" ("_qs + parts.join(u", "_qs) + u')');
  for (const Column& column : columns)
    if (!column.caption.isEmpty()) describe(session, table, column.name, column.caption);
  transaction.commit();
}

void ServerEngine::addColumn(Session& session, const QString& table, const Column& column) {
  const QString name = schema::requireNewColumn(session, table, column);
  const QString added = definition(name, column);
  Transaction transaction(session);
  prepare(session, {column});
  session.execute(QStringLiteral("ALTER TABLE %1 %2 ").arg(quoted(name), words_.addColumn) + added);
  if (!column.caption.isEmpty()) describe(session, name, column.name, column.caption);
  transaction.commit();
}

void ServerEngine::addRelation(Session& session, const Relation& relation) {
  const schema::Ends ends = schema::requireNewRelation(session, relation, relations(session));
  session.execute(QStringLiteral("ALTER TABLE %1 %2 %3 FOREIGN KEY (%4) REFERENCES %5 (%6)")
                      .arg(quoted(ends.foreignTable), words_.addConstraint, quoted(relation.name),
                           quoted(ends.foreignKey.name), quoted(ends.table), quoted(ends.key.name)));
}

QList<Relation> ServerEngine::relations(Session& session) {
  const Result result = session.execute(words_.relations);
  QList<Relation> list;
  for (const QList<basic::Value>& row : result.rows)
    list.append({std::get<QString>(row[0]), std::get<QString>(row[1]), std::get<QString>(row[2]),
                 std::get<QString>(row[3])});
  return list;
}

void ServerEngine::setCaption(Session& session, const QString& table, const QString& column,
                              const QString& caption) {
  const QString name = schema::requireTable(session, table);
  const Column present = schema::requireColumn(session, name, column);
  Transaction transaction(session);
  describe(session, name, present.name, caption);
  transaction.commit();
}

}  // namespace platform::sql

#include "platform/sql/schema.h"

#include "platform/basic/failure.h"
#include "platform/sql/errors.h"

#include <algorithm>

namespace platform::sql::schema {

namespace {

constexpr int longestName = 64;

bool same(const QString& a, const QString& b) {
  return a.compare(b, Qt::CaseInsensitive) == 0;
}

}  // namespace

QString spelled(Session& session, const QString& table) {
  QString found;
  for (const QString& name : session.tables()) {
    if (name == table) return name;
    if (found.isEmpty() && same(name, table)) found = name;
  }
  return found;
}

QString requireTable(Session& session, const QString& table) {
  const QString name = spelled(session, table);
  if (name.isEmpty())
    throw Failure(
        errors::tableNotFound,
        QStringLiteral("The database engine cannot find the input table or query '%1'.").arg(table));
  return name;
}

const Column* findColumn(const QList<Column>& columns, const QString& name) {
  for (const Column& column : columns)
    if (same(column.name, name)) return &column;
  return nullptr;
}

Column requireColumn(Session& session, const QString& table, const QString& name) {
  const QList<Column> columns = session.columns(table);
  if (const Column* found = findColumn(columns, name)) return *found;
  throw Failure(errors::itemNotFound,
                QStringLiteral("Item not found in this collection: the field '%1' of the table '%2'.")
                    .arg(name, table));
}

void requireNewTable(Session& session, const QString& table, const QList<Column>& columns) {
  if (columns.isEmpty())
    throw Failure(errors::noFieldDefined,
                  QStringLiteral("No field defined--cannot append TableDef or Index."));
  // a view, or a table of the engine's own, has columns and is no table of the list
  if (!spelled(session, table).isEmpty() || !session.columns(table).isEmpty())
    throw Failure(errors::tableExists, QStringLiteral("Table '%1' already exists.").arg(table));
}

QString requireNewColumn(Session& session, const QString& table, const Column& column) {
  const QString name = requireTable(session, table);
  if (findColumn(session.columns(name), column.name))
    throw Failure(errors::duplicateField,
                  QStringLiteral("Cannot define field '%1' more than once.").arg(column.name));
  if (column.autoIncrement || column.primaryKey)
    throw Failure(errors::primaryKeyExists,
                  QStringLiteral("A key column can only be given to a new table: '%1'.").arg(column.name));
  return name;
}

Ends requireNewRelation(Session& session, const Relation& relation, const QList<Relation>& present) {
  Ends ends;
  ends.table = requireTable(session, relation.table);
  ends.foreignTable = requireTable(session, relation.foreignTable);
  ends.key = requireColumn(session, ends.table, relation.field);
  ends.foreignKey = requireColumn(session, ends.foreignTable, relation.field);
  if (!ends.key.primaryKey)
    throw Failure(
        errors::noUniqueIndex,
        QStringLiteral("No unique index found for the referenced field '%1' of the primary table '%2'.")
            .arg(relation.field, relation.table));
  for (const Relation& other : present)
    if (same(other.name, relation.name))
      throw Failure(errors::objectExists, QStringLiteral("Object '%1' already exists.").arg(relation.name));
  return ends;
}

void requireName(const QString& name, bool shortEnough) {
  bool valid = !name.isEmpty() && shortEnough;
  for (const QChar c : name)
    if (c == u'[' || c == u']' || c == u'.' || c == u'!' || c == u'`' || c == u'"' || c.unicode() < 32)
      valid = false;
  if (!valid)
    throw Failure(
        errors::invalidName,
        QStringLiteral("'%1' is not a valid name. Make sure that it does not include invalid characters or "
                       "punctuation and that it is not too long.")
            .arg(name));
}

QString bracketed(const QString& name) {
  requireName(name, name.size() <= longestName);
  return u'[' + name + u']';
}

void sortNames(QStringList& names) {
  std::sort(names.begin(), names.end(), [](const QString& a, const QString& b) {
    const int order = a.compare(b, Qt::CaseInsensitive);
    return order != 0 ? order < 0 : a < b;
  });
}

void refuseFile(const QString& path) {
  throw Failure(
      errors::statementFailed,
      QStringLiteral("A database of a server is made by the statement CREATE DATABASE, not as the file '%1'.")
          .arg(path));
}

void refuseCompaction(const QString& source) {
  throw Failure(
      errors::statementFailed,
      QStringLiteral("The database '%1' of a server is not compacted; the server does so by itself.")
          .arg(source));
}

}  // namespace platform::sql::schema

#pragma once
#include "platform/sql/driver.h"

// What making and changing tables asks for first, alike in all engines. Names are found without regard to
// case.
namespace platform::sql::schema {

/// A table's own name by any spelling of it; empty when there is none.
QString spelled(Session& session, const QString& table);
QString requireTable(Session& session, const QString& table);  // Failure 3078
const Column* findColumn(const QList<Column>& columns, const QString& name);
Column requireColumn(Session& session, const QString& table, const QString& name);  // Failure 3265

/// Failure 3264 without columns, 3010 for a table that is there.
void requireNewTable(Session& session, const QString& table, const QList<Column>& columns);
/// Gives the table's own name. Failure 3078 without the table, 3191 for a column that is there, 3283 for a
/// key.
QString requireNewColumn(Session& session, const QString& table, const Column& column);

/// The two sides of a relation, by their own names.
struct Ends {
  QString table, foreignTable;
  Column key, foreignKey;
};
/// Failure 3078 and 3265 for a side that is missing, 3609 when the key is none, 3012 when `present` has one
/// of this name.
Ends requireNewRelation(Session& session, const Relation& relation, const QList<Relation>& present);

/// Failure 3125 for what can be none: empty, too long for the engine, with brackets, dots, quotes or control
/// signs.
void requireName(const QString& name, bool shortEnough);
/// A name in brackets; at most 64 characters.
QString bracketed(const QString& name);

/// In the order of their names, without regard to case.
void sortNames(QStringList& names);

// a server's database is no file: Failure -2147217900
[[noreturn]] void refuseFile(const QString& path);
[[noreturn]] void refuseCompaction(const QString& source);

}  // namespace platform::sql::schema

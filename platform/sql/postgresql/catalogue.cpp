#include "platform/sql/postgresql/catalogue.h"

#include "platform/sql/postgresql/library.h"
#include "platform/sql/postgresql/values.h"
#include "platform/sql/servererrors.h"

namespace platform::sql::postgresql {

namespace {

/// A key that counts by itself is an identity, or takes its default from a sequence as older databases do.
/// The type of a domain is that of what it stands on.
const QString statement = QStringLiteral(
    "SELECT c.oid, c.relname, c.relkind NOT IN ('r', 'p'), a.attnum, a.attname, "
    "CASE WHEN t.typtype = 'd' THEN t.typbasetype ELSE a.atttypid END, "
    "CASE WHEN t.typtype = 'd' THEN t.typtypmod ELSE a.atttypmod END, "
    "a.attidentity <> '' OR coalesce(pg_get_expr(d.adbin, d.adrelid) LIKE 'nextval(%', false), "
    "EXISTS (SELECT 1 FROM pg_index i WHERE i.indrelid = c.oid AND i.indisprimary AND a.attnum = "
    "ANY (i.indkey)), "
    "NOT EXISTS (SELECT 1 FROM pg_constraint k WHERE k.conrelid = c.oid AND k.contype = 'c' AND k.conkey = "
    "ARRAY[a.attnum] AND right(k.conname, $1) = $2), "
    "col_description(c.oid, a.attnum) "
    "FROM pg_class c JOIN pg_namespace n ON n.oid = c.relnamespace "
    "LEFT JOIN pg_attribute a ON a.attrelid = c.oid AND a.attnum > 0 AND NOT a.attisdropped "
    "LEFT JOIN pg_type t ON t.oid = a.atttypid "
    "LEFT JOIN pg_attrdef d ON d.adrelid = c.oid AND d.adnum = a.attnum "
    "WHERE c.relkind IN ('r', 'p', 'v', 'm', 'f') AND n.nspname = ANY (current_schemas(false)) AND "
    "pg_table_is_visible(c.oid) ORDER BY c.oid, a.attnum");

template <class List, class Name>
auto find(const List& list, const QString& name, Name nameOf) -> decltype(&list.first()) {
  decltype(&list.first()) found = nullptr;
  for (const auto& each : list) {
    if (nameOf(each) == name) return &each;
    if (!found && nameOf(each).compare(name, Qt::CaseInsensitive) == 0) found = &each;
  }
  return found;
}

}  // namespace

const Column* CatalogueTable::column(const QString& wanted) const {
  const Entry* found = find(entries, wanted, [](const Entry& entry) { return entry.column.name; });
  return found ? &found->column : nullptr;
}

const Column* CatalogueTable::columnOfNumber(int number) const {
  for (const Entry& entry : entries)
    if (entry.number == number) return &entry.column;
  return nullptr;
}

const Column* CatalogueTable::counter() const {
  for (const Entry& entry : entries)
    if (entry.column.autoIncrement) return &entry.column;
  return nullptr;
}

const CatalogueTable* Catalogue::table(const QString& name) const {
  return find(tables_, name, [](const CatalogueTable& table) { return table.name; });
}

const CatalogueTable* Catalogue::tableOfId(unsigned id) const {
  for (const CatalogueTable& table : tables_)
    if (table.id == id) return &table;
  return nullptr;
}

Catalogue Catalogue::read(Connection& connection) {
  const QByteArray suffix(zeroLengthSuffix.data(), zeroLengthSuffix.size());
  const ResultPointer result = connection.run(statement, {QByteArray::number(suffix.size()), suffix});
  Catalogue catalogue;
  for (int row = 0; row < PQntuples(result.get()); ++row) {
    const auto text = [&](int column) { return QByteArray(PQgetvalue(result.get(), row, column)); };
    const unsigned id = text(0).toUInt();
    if (catalogue.tables_.isEmpty() || catalogue.tables_.last().id != id)
      catalogue.tables_.append({id, QString::fromUtf8(text(1)), text(2) == "t", {}});
    if (PQgetisnull(result.get(), row, 3)) continue;  // a table without columns
    CatalogueTable::Entry entry;
    entry.number = text(3).toInt();
    entry.column = columnOfType(text(5).toUInt(), text(6).toInt());
    entry.column.name = QString::fromUtf8(text(4));
    entry.column.autoIncrement = text(7) == "t";
    entry.column.primaryKey = text(8) == "t";
    entry.column.allowZeroLength = text(9) == "t";
    entry.column.caption = QString::fromUtf8(text(10));
    catalogue.tables_.last().entries.append(entry);
  }
  return catalogue;
}

}  // namespace platform::sql::postgresql

#include "platform/sql/odbc/catalogue.h"

#include "platform/sql/odbc/dialect.h"
#include "platform/sql/schema.h"

#include <QHash>

namespace platform::sql::odbc {

namespace {

constexpr int unlimited = -1;  // size of a text of any length

QString textAt(const QList<basic::Value>& row, int column) {
  const QString* text = column < row.size() ? std::get_if<QString>(&row[column]) : nullptr;
  return text ? *text : QString();
}

int numberAt(const QList<basic::Value>& row, int column) {
  if (column >= row.size()) return 0;
  if (const auto* small = std::get_if<qint16>(&row[column])) return *small;
  if (const auto* middle = std::get_if<qint32>(&row[column])) return *middle;
  return 0;
}

Type typeNamed(const QString& name, int digits, int decimals) {
  static const QHash<QString, Type> types{{u"bit"_qs, Type::Boolean},
                                          {u"tinyint"_qs, Type::Integer},
                                          {u"smallint"_qs, Type::Integer},
                                          {u"int"_qs, Type::Long},
                                          {u"bigint"_qs, Type::Long},
                                          {u"real"_qs, Type::Single},
                                          {u"float"_qs, Type::Double},
                                          {u"money"_qs, Type::Currency},
                                          {u"smallmoney"_qs, Type::Currency},
                                          {u"datetime"_qs, Type::Date},
                                          {u"date"_qs, Type::Date},
                                          {u"smalldatetime"_qs, Type::Date},
                                          {u"datetime2"_qs, Type::Date},
                                          {u"datetimeoffset"_qs, Type::Date},
                                          {u"text"_qs, Type::Memo},
                                          {u"ntext"_qs, Type::Memo},
                                          {u"xml"_qs, Type::Memo}};
  constexpr int amountDigits = 15, amountDecimals = 4;
  if (name == u"decimal" || name == u"numeric")
    return decimals <= amountDecimals && digits - decimals <= amountDigits ? Type::Currency : Type::Double;
  return types.value(name, Type::Text);
}

// of the statement below
enum At { name, type, bytes, precision, scale, counter, takesNull, key, strict, caption };

CatalogueColumn columnOf(const QList<basic::Value>& row) {
  CatalogueColumn made;
  Column& column = made.column;
  const QString typeName = textAt(row, type);
  const int length = numberAt(row, bytes);
  column.name = textAt(row, name);
  column.type = typeNamed(typeName, numberAt(row, precision), numberAt(row, scale));
  if (column.type == Type::Text && typeName.endsWith(u"char")) {
    if (length == unlimited)
      column.type = Type::Memo;
    else
      column.size = typeName.startsWith(u'n') ? length / 2 : length;
  }
  column.autoIncrement = numberAt(row, counter) != 0;
  column.primaryKey = numberAt(row, key) != 0;
  column.allowZeroLength = numberAt(row, strict) == 0;
  column.caption = textAt(row, caption);
  made.takesNull = numberAt(row, takesNull) != 0;
  return made;
}

/// The numbers are ints, so that they come as such.
const QString columnStatement = QStringLiteral(
    "SELECT c.name, TYPE_NAME(c.system_type_id), CAST(c.max_length AS int), CAST(c.precision AS int), "
    "CAST(c.scale AS int), CAST(c.is_identity AS int), CAST(c.is_nullable AS int), "
    "CASE WHEN EXISTS (SELECT 1 FROM sys.indexes i JOIN sys.index_columns k ON k.object_id = i.object_id AND "
    "k.index_id = i.index_id WHERE i.object_id = c.object_id AND i.is_primary_key = 1 AND k.column_id = "
    "c.column_id) THEN 1 ELSE 0 END, "
    "CASE WHEN EXISTS (SELECT 1 FROM sys.check_constraints z WHERE z.parent_object_id = c.object_id AND "
    "z.parent_column_id = c.column_id AND z.name LIKE N'% zero-length') THEN 1 ELSE 0 END, "
    "(SELECT CAST(p.value AS nvarchar(4000)) FROM sys.extended_properties p WHERE p.class = 1 AND p.major_id "
    "= c.object_id AND p.minor_id = c.column_id AND p.name = N'MS_Description') "
    "FROM sys.columns c WHERE c.object_id = (SELECT TOP 1 o.object_id FROM sys.objects o WHERE o.type IN "
    "('U', 'V') AND o.name = %1 COLLATE Latin1_General_CI_AS AND OBJECT_ID(QUOTENAME(o.name)) = o.object_id "
    "ORDER BY CASE WHEN o.name = %1 COLLATE Latin1_General_BIN THEN 0 ELSE 1 END) ORDER BY c.column_id");

}  // namespace

QStringList tablesOf(Connection& connection, int seconds) {
  const QList<ResultSet> answers = connection.run(
      QStringLiteral("SELECT t.name FROM sys.tables t WHERE t.is_ms_shipped = 0 AND "
                     "OBJECT_ID(QUOTENAME(t.name)) = t.object_id AND NOT EXISTS (SELECT 1 FROM "
                     "sys.extended_properties p WHERE p.class = 1 AND p.major_id = t.object_id AND "
                     "p.minor_id = 0 AND p.name = N'microsoft_database_tools_support')"),
      {}, seconds);
  QStringList names;
  for (const QList<basic::Value>& row : answers.last().rows) names.append(textAt(row, 0));
  schema::sortNames(names);
  return names;
}

QList<CatalogueColumn> columnsOf(Connection& connection, const QString& table, int seconds) {
  QString statement = columnStatement;
  statement.replace(u"%1"_qs, nationalText(table));
  const QList<ResultSet> answers = connection.run(statement, {}, seconds);
  QList<CatalogueColumn> columns;
  bool keyed = false;
  for (const QList<basic::Value>& row : answers.last().rows) {
    columns.append(columnOf(row));
    keyed = keyed || columns.last().column.primaryKey;
  }
  if (!keyed)
    for (CatalogueColumn& each : columns) each.column.primaryKey = each.column.autoIncrement;
  return columns;
}

}  // namespace platform::sql::odbc

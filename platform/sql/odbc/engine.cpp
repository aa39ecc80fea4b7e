#include "platform/sql/odbc/engine.h"

#include "platform/sql/odbc/dialect.h"
#include "platform/sql/odbc/driver.h"
#include "platform/sql/schema.h"
#include "platform/sql/servererrors.h"

#include <QCryptographicHash>

namespace platform::sql::odbc {

using schema::bracketed;

namespace {

constexpr int defaultTextSize = 255;
constexpr int longestText = 4000;  // characters that a text of bounded size can have
constexpr int longestName = 128;   // the server's own bound, for a constraint
constexpr int hashSigns = 8;

QString declaredType(const Column& column) {
  switch (column.type) {
    case Type::Boolean:
      return QStringLiteral("bit");
    case Type::Integer:
      return QStringLiteral("smallint");
    case Type::Long:
      return QStringLiteral("int");
    case Type::Single:
      return QStringLiteral("real");
    case Type::Double:
      return QStringLiteral("float");
    case Type::Currency:
      return QStringLiteral("money");
    case Type::Date:
      return QStringLiteral("datetime");
    case Type::Text:
      if (column.size <= longestText)
        return QStringLiteral("nvarchar(%1)").arg(column.size > 0 ? column.size : defaultTextSize);
      break;
    case Type::Memo:
      break;
  }
  return QStringLiteral("nvarchar(max)");
}

/// The name of the constraint that refuses empty texts. Unlike those of columns it is the only one in the
/// whole database; a long one is cut and told apart by a hash, so that the end stays.
QString zeroLengthConstraint(const QString& table, const QString& column) {
  QString name = table + u'.' + column;
  if (name.size() + zeroLengthSuffix.size() > longestName) {
    const QByteArray hash = QCryptographicHash::hash(name.toUtf8(), QCryptographicHash::Sha256).toHex();
    name = name.left(longestName - zeroLengthSuffix.size() - hashSigns) +
           QString::fromLatin1(hash.left(hashSigns));
  }
  return u'[' + name + zeroLengthSuffix + u']';
}

// begins in a way that no statement of the Access kind does
const QString relationsQuestion = QStringLiteral(
    "WITH r AS (SELECT k.name, OBJECT_NAME(k.referenced_object_id) AS one, OBJECT_NAME(k.parent_object_id) "
    "AS "
    "many, COL_NAME(c.parent_object_id, c.parent_column_id) AS field, k.create_date, k.object_id FROM "
    "sys.foreign_keys k JOIN sys.foreign_key_columns c ON c.constraint_object_id = k.object_id AND "
    "c.constraint_column_id = 1 WHERE OBJECT_ID(QUOTENAME(OBJECT_NAME(k.parent_object_id))) = "
    "k.parent_object_id) SELECT name, one, many, field FROM r ORDER BY create_date, object_id");

}  // namespace

OdbcEngine::OdbcEngine()
    : ServerEngine({QStringLiteral("ADD"), QStringLiteral("WITH CHECK ADD CONSTRAINT"), relationsQuestion}) {}

QString OdbcEngine::quoted(const QString& name) const {
  return bracketed(name);
}

QString OdbcEngine::definition(const QString& table, const Column& column) const {
  const QString name = bracketed(column.name);
  if (column.autoIncrement) return name + u" int IDENTITY (1, 1) NOT NULL PRIMARY KEY"_qs;
  QString text = name + u' ' + declaredType(column);
  // a Yes/No column knows no Null: what is not given is No
  if (column.type == Type::Boolean) return text + u" NOT NULL DEFAULT 0"_qs;
  text += column.primaryKey ? u" NOT NULL"_qs : u" NULL"_qs;
  const bool isText = column.type == Type::Text || column.type == Type::Memo;
  if (isText && !column.allowZeroLength)
    // the length in bytes, since blanks at the end do not count otherwise
    text += QStringLiteral(" CONSTRAINT %1 CHECK (DATALENGTH(%2) > 0)")
                .arg(zeroLengthConstraint(table, column.name), name);
  return text;
}

/// The description of the column that is there already is replaced.
void OdbcEngine::describe(Session& session, const QString& table, const QString& column,
                          const QString& caption) const {
  const QString of = QStringLiteral("N'SCHEMA', @schema, N'TABLE', %1, N'COLUMN', %2")
                         .arg(nationalText(table), nationalText(column));
  QString statement = QStringLiteral(
      "DECLARE @table int, @schema sysname; "
      "SET @table = OBJECT_ID(%1); SET @schema = OBJECT_SCHEMA_NAME(@table); "
      "IF EXISTS (SELECT 1 FROM sys.extended_properties WHERE class = 1 AND major_id = @table AND minor_id = "
      "COLUMNPROPERTY(@table, %2, 'ColumnId') AND name = N'MS_Description') "
      "EXEC sys.sp_dropextendedproperty N'MS_Description', %3");
  statement = statement.arg(nationalText(bracketed(table)), nationalText(column), of);
  if (!caption.isEmpty())
    statement +=
        u"; EXEC sys.sp_addextendedproperty N'MS_Description', "_qs + nationalText(caption) + u", "_qs + of;
  session.execute(statement);
}

std::shared_ptr<FileEngine> makeEngine() {
  return std::make_shared<OdbcEngine>();
}

}  // namespace platform::sql::odbc

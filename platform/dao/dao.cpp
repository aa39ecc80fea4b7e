#include "platform/dao/dao.h"

#include "platform/basic/failure.h"
#include "platform/sql/errors.h"

namespace platform::dao {

namespace {

const QString primaryKeyName = QStringLiteral("PrimaryKey");

Failure itemNotFound(const QString& name) {
  return {sql::errors::itemNotFound, QStringLiteral("Item not found in this collection. (%1)").arg(name),
          QStringLiteral("DAO")};
}

struct TypePair {
  int dao;
  sql::Type sql;
};
constexpr TypePair types[] = {
    {dbBoolean, sql::Type::Boolean},   {dbInteger, sql::Type::Integer}, {dbLong, sql::Type::Long},
    {dbCurrency, sql::Type::Currency}, {dbSingle, sql::Type::Single},   {dbDouble, sql::Type::Double},
    {dbDate, sql::Type::Date},         {dbText, sql::Type::Text},       {dbMemo, sql::Type::Memo}};

sql::Column columnOf(const Field& field) {
  sql::Column column;
  column.name = field.Name;
  bool known = false;
  for (const TypePair& pair : types)
    if (pair.dao == field.Type) {
      column.type = pair.sql;
      known = true;
    }
  if (!known)
    throw Failure(3259, QStringLiteral("Invalid field data type. (%1, %2)").arg(field.Name).arg(field.Type),
                  QStringLiteral("DAO"));
  column.size = field.Size;
  column.autoIncrement = (field.Attributes & dbAutoIncrField) != 0;
  column.primaryKey = column.autoIncrement;  // the engine knows no counter that is not the key
  column.allowZeroLength =
      field.AllowZeroLength || (column.type != sql::Type::Text && column.type != sql::Type::Memo);
  column.caption = field.Caption;
  return column;
}

Field fieldOf(const sql::Column& column) {
  Field field;
  field.Name = column.name;
  for (const TypePair& pair : types)
    if (pair.sql == column.type) field.Type = pair.dao;
  field.Size = column.size;
  field.Attributes = column.autoIncrement ? dbAutoIncrField : 0;
  field.AllowZeroLength = column.allowZeroLength;
  field.Caption = column.caption;
  return field;
}

}  // namespace

// ---- TableDef

Field TableDef::CreateField(const QString& name, int type, int size) const {
  Field field;
  field.Name = name;
  field.Type = type;
  field.Size = size;
  return field;
}

void TableDef::AppendField(const Field& field) {
  for (const Field& present : fields_)
    if (present.Name.compare(field.Name, Qt::CaseInsensitive) == 0)
      throw Failure(sql::errors::duplicateField,
                    QStringLiteral("Cannot define field '%1' more than once.").arg(field.Name),
                    QStringLiteral("DAO"));
  const sql::Column column = columnOf(field);
  if (appended_) database_->engine_->addColumn(database_->session(), name_, column);
  fields_.append(field);
}

Index TableDef::CreateIndex(const QString& name) const {
  Index index;
  index.Name = name;
  return index;
}

void TableDef::refuseIndex(const Index& index) const {
  throw Failure(3251,
                QStringLiteral("Operation is not supported for this type of object: the index '%1' of '%2'.")
                    .arg(index.Name, name_),
                QStringLiteral("DAO"));
}

void TableDef::AppendIndex(const Index& index) {
  if (index.Name != primaryKeyName) refuseIndex(index);
  for (const Index& present : indexes_)
    if (present.Name.compare(index.Name, Qt::CaseInsensitive) == 0 || (present.Primary && index.Primary))
      throw Failure(sql::errors::primaryKeyExists, QStringLiteral("Primary key already exists."),
                    QStringLiteral("DAO"));
  for (const QString& name : index.Fields) {
    const Field* found = nullptr;
    for (const Field& field : fields_)
      if (field.Name.compare(name, Qt::CaseInsensitive) == 0) found = &field;
    if (!found) throw itemNotFound(name);
    // A counter is the key of its table from the outset. A key on other columns of a table that stands
    // already would have to move its rows, and other indexes only speed up: nothing asks for either.
    const bool counter = (found->Attributes & dbAutoIncrField) != 0;
    if (!index.Primary || (appended_ && !counter) || (counter && index.Fields.size() > 1)) refuseIndex(index);
  }
  indexes_.append(index);
}

void TableDef::setCaption(const QString& field, const QString& caption) {
  for (Field& present : fields_) {
    if (present.Name.compare(field, Qt::CaseInsensitive) != 0) continue;
    if (appended_) database_->engine_->setCaption(database_->session(), name_, present.Name, caption);
    present.Caption = caption;
    return;
  }
  throw itemNotFound(field);
}

// ---- Database

Database::Database(std::unique_ptr<sql::Session> session, std::shared_ptr<sql::FileEngine> engine)
    : session_(std::move(session)), engine_(std::move(engine)) {}

sql::Session& Database::session() const {
  if (!session_)
    throw Failure(sql::errors::objectInvalid, QStringLiteral("Object invalid or no longer set."),
                  QStringLiteral("DAO"));
  return *session_;
}

std::shared_ptr<TableDef> Database::CreateTableDef(const QString& name) {
  return std::shared_ptr<TableDef>(new TableDef(this, name));
}

void Database::AppendTableDef(const std::shared_ptr<TableDef>& table) {
  if (table->fields_.isEmpty())
    throw Failure(sql::errors::noFieldDefined,
                  QStringLiteral("No field defined--cannot append TableDef or Index."),
                  QStringLiteral("DAO"));
  QList<sql::Column> columns;
  for (const Field& field : table->fields_) {
    sql::Column column = columnOf(field);
    for (const Index& index : table->indexes_)
      if (index.Primary && index.Fields.contains(field.Name, Qt::CaseInsensitive)) column.primaryKey = true;
    columns.append(column);
  }
  engine_->createTable(session(), table->name_, columns);
  table->appended_ = true;
}

QStringList Database::TableDefNames() const {
  return session().tables();
}

std::shared_ptr<TableDef> Database::TableDefs(const QString& name) {
  QString stored;
  for (const QString& present : session().tables())
    if (present.compare(name, Qt::CaseInsensitive) == 0) stored = present;
  if (stored.isEmpty()) throw itemNotFound(name);
  auto table = std::shared_ptr<TableDef>(new TableDef(this, stored));
  Index key{primaryKeyName, true, {}};
  for (const sql::Column& column : session().columns(stored)) {
    table->fields_.append(fieldOf(column));
    if (column.primaryKey) key.Fields.append(column.name);
  }
  if (!key.Fields.isEmpty()) table->indexes_.append(key);
  table->appended_ = true;
  return table;
}

void Database::AppendRelation(const sql::Relation& relation) {
  engine_->addRelation(session(), relation);
}
QList<sql::Relation> Database::Relations() const {
  return engine_->relations(session());
}
void Database::Execute(const QString& sql) {
  session().execute(sql);
}
void Database::Close() {
  session();
  session_.reset();
}

// ---- DBEngine

DBEngine::DBEngine(std::shared_ptr<sql::Driver> driver, std::shared_ptr<sql::FileEngine> engine)
    : driver_(std::move(driver)), engine_(std::move(engine)) {}

std::shared_ptr<Database> DBEngine::CreateDatabase(const QString& path, const QString& locale, int options) {
  Q_UNUSED(locale)
  Q_UNUSED(options)
  engine_->createDatabase(path);
  return OpenDatabase(path);
}

std::shared_ptr<Database> DBEngine::OpenDatabase(const QString& path) {
  sql::ConnectionString connection;
  connection.set(QStringLiteral("Data Source"), path);
  return std::make_shared<Database>(driver_->connect(connection), engine_);
}

std::shared_ptr<Database> DBEngine::DatabaseOver(std::unique_ptr<sql::Session> session) const {
  return std::make_shared<Database>(std::move(session), engine_);
}

std::shared_ptr<sql::CompactedSource> DBEngine::CompactDatabase(const QString& source,
                                                                const QString& target) {
  return engine_->compact(source, target);
}

}  // namespace platform::dao

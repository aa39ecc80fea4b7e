#include "platform/sql/sqlite/engine.h"

#include "platform/basic/failure.h"
#include "platform/sql/errors.h"
#include "platform/sql/schema.h"
#include "platform/sql/sqlite/databasefile.h"
#include "platform/sql/sqlite/values.h"

namespace platform::sql::sqlite {

using schema::bracketed;

namespace {

const QString rebuildName = QStringLiteral("MSysRebuild");

/// Foreign keys are off while a table is exchanged under its children; has to stand outside of the
/// transaction.
class ForeignKeysOff {
 public:
  explicit ForeignKeysOff(Session& session) : session_(session) {
    session_.execute(QStringLiteral("PRAGMA foreign_keys=OFF"));
  }
  ~ForeignKeysOff() {
    try {
      session_.execute(QStringLiteral("PRAGMA foreign_keys=ON"));
    } catch (const Failure&) {
      // a session that fails here fails at its next statement too
    }
  }
  ForeignKeysOff(const ForeignKeysOff&) = delete;
  ForeignKeysOff& operator=(const ForeignKeysOff&) = delete;

 private:
  Session& session_;
};

QString definition(const Column& column) {
  const QString name = bracketed(column.name);
  if (column.autoIncrement) return name + u" INTEGER CONSTRAINT [PrimaryKey] PRIMARY KEY AUTOINCREMENT"_qs;
  QString text = name + u' ' + declaredType(column);
  // a Yes/No column knows no Null: what is not given is No
  if (column.type == Type::Boolean) text += u" NOT NULL ON CONFLICT REPLACE DEFAULT 0"_qs;
  if (column.type != Type::Text && column.type != Type::Memo) return text;
  text += u" COLLATE NOCASE"_qs;
  if (column.type == Type::Text)
    text += QStringLiteral(" CONSTRAINT [%1 size] CHECK (length(%2) <= %3)")
                .arg(column.name, name)
                .arg(column.size > 0 ? column.size : 255);
  if (!column.allowZeroLength)
    text += QStringLiteral(" CONSTRAINT [%1 zero-length] CHECK (%2 <> '')").arg(column.name, name);
  return text;
}

void keepProperties(Session& session, const QString& table, const Column& column) {
  session.execute(
      QStringLiteral("CREATE TABLE IF NOT EXISTS [MSysColumns] ([TableName] TEXT NOT NULL COLLATE NOCASE, "
                     "[ColumnName] TEXT NOT NULL COLLATE NOCASE, [Caption] TEXT, [ZeroLength] INTEGER, "
                     "PRIMARY KEY ([TableName], [ColumnName]))"));
  session.execute(
      QStringLiteral("INSERT OR REPLACE INTO [MSysColumns] ([TableName], [ColumnName], [Caption], "
                     "[ZeroLength]) VALUES (?, ?, ?, ?)"),
      {table, column.name, column.caption, column.allowZeroLength});
}

QString firstText(const Result& result) {
  if (result.rows.isEmpty()) return {};
  const QString* text = std::get_if<QString>(&result.rows.first().first());
  return text ? *text : QString();
}

qint64 firstNumber(const Result& result) {
  if (result.rows.isEmpty()) return 0;
  const basic::Value& value = result.rows.first().first();
  if (const auto* small = std::get_if<qint32>(&value)) return *small;
  if (const auto* large = std::get_if<qint64>(&value)) return *large;
  return 0;
}

/// Where the counter of a table stands; numbers that were given out once are not given out again.
qint64 counter(Session& session, const QString& table) {
  if (firstNumber(session.execute(
          QStringLiteral("SELECT count(*) FROM sqlite_master WHERE name = 'sqlite_sequence'"))) == 0)
    return 0;
  return firstNumber(
      session.execute(QStringLiteral("SELECT seq FROM sqlite_sequence WHERE name = ?"), {table}));
}

void setCounter(Session& session, const QString& table, qint64 value) {
  session.execute(QStringLiteral("DELETE FROM sqlite_sequence WHERE name = ?"), {table});
  session.execute(QStringLiteral("INSERT INTO sqlite_sequence (name, seq) VALUES (?, ?)"), {table, value});
}

/// Where the columns begin in a "CREATE TABLE": the first bracket that is not part of the table's name.
qsizetype columnsOf(const QString& sql) {
  QChar closing;
  for (qsizetype at = 0; at < sql.size(); ++at) {
    const QChar c = sql[at];
    if (!closing.isNull()) {
      if (c == closing) closing = QChar();
    } else if (c == u'(') {
      return at;
    } else if (c == u'[') {
      closing = u']';
    } else if (c == u'"' || c == u'`' || c == u'\'') {
      closing = c;
    }
  }
  return -1;
}

/// Exchanges a table for one that has a further constraint, by the procedure that the engine's makers give
/// for it: new table, copy, drop, rename. Indexes and triggers are made again.
void rebuildWith(Session& session, const QString& table, const QString& constraint) {
  const QString name = bracketed(table);
  const QString sql = firstText(session.execute(
      QStringLiteral("SELECT sql FROM sqlite_master WHERE type = 'table' AND name = ? COLLATE NOCASE"),
      {table}));
  const Result others = session.execute(
      QStringLiteral(
          "SELECT sql FROM sqlite_master WHERE type IN ('index', 'trigger') AND tbl_name = ? COLLATE NOCASE "
          "AND sql IS NOT NULL"),
      {table});
  const qint64 count = counter(session, table);
  const qsizetype open = columnsOf(sql);
  const qsizetype close = sql.lastIndexOf(u')');
  session.execute(u"CREATE TABLE ["_qs + rebuildName + u"] "_qs + sql.mid(open, close - open) + u", "_qs +
                  constraint + sql.mid(close));
  session.execute(u"INSERT INTO ["_qs + rebuildName + u"] SELECT * FROM "_qs + name);
  session.execute(u"DROP TABLE "_qs + name);
  session.execute(u"ALTER TABLE ["_qs + rebuildName + u"] RENAME TO "_qs + name);
  if (count > 0) setCounter(session, table, count);
  for (const QList<basic::Value>& row : others.rows) session.execute(std::get<QString>(row.first()));
}

}  // namespace

void SqliteEngine::createDatabase(const QString& path) {
  const QString file = systemForm(path);
  if (lookAt(file) == FileKind::FolderMissing) requireFile(file);  // says so
  const std::shared_ptr<const LockFile> lock =
      LockFile::take(realPath(file), LockFile::Use::Shared, busyTimeout_);
  const FileIdentity made = createFile(file, CreationMode::Usual);
  OpenOptions options;
  options.busyTimeout = busyTimeout_;
  options.durability = durability_;
  try {
    SqliteSession session(fileUri(file, QStringLiteral("rw")), file, options, lock);
    // the file is empty until something is written into it
    session.execute(QStringLiteral("PRAGMA encoding='UTF-8'"));
    Transaction transaction(session);
    session.execute(
        QStringLiteral("CREATE TABLE [MSysRelationships] ([Name] TEXT NOT NULL PRIMARY KEY COLLATE NOCASE, "
                       "[TableName] TEXT NOT NULL, [ForeignTable] TEXT NOT NULL, [FieldName] TEXT NOT "
                       "NULL)"));
    transaction.commit();
  } catch (const Failure&) {
    removeOwn(file, made);
    throw;
  }
}

void SqliteEngine::createTable(Session& session, const QString& table, const QList<Column>& columns) {
  const QString name = bracketed(table);
  schema::requireNewTable(session, table, columns);
  QStringList parts, keys;
  bool counted = false;
  for (const Column& column : columns) {
    parts.append(definition(column));
    counted = counted || column.autoIncrement;
    if (column.primaryKey) keys.append(bracketed(column.name));
  }
  if (!counted && !keys.isEmpty())
    parts.append(u"CONSTRAINT [PrimaryKey] PRIMARY KEY ("_qs + keys.join(u", "_qs) + u')');
  Transaction transaction(session);
  session.execute(u"CREATE TABLE "_qs + name + u" ("_qs + parts.join(u", "_qs) + u')');
  for (const Column& column : columns) keepProperties(session, table, column);
  transaction.commit();
}

void SqliteEngine::addColumn(Session& session, const QString& table, const Column& column) {
  const QString name = bracketed(table);
  schema::requireNewColumn(session, table, column);
  Transaction transaction(session);
  session.execute(u"ALTER TABLE "_qs + name + u" ADD COLUMN "_qs + definition(column));
  keepProperties(session, table, column);
  transaction.commit();
}

void SqliteEngine::addRelation(Session& session, const Relation& relation) {
  schema::requireNewRelation(session, relation, relations(session));
  const QString constraint =
      QStringLiteral("CONSTRAINT %1 FOREIGN KEY (%2) REFERENCES %3 (%2)")
          .arg(bracketed(relation.name), bracketed(relation.field), bracketed(relation.table));
  const ForeignKeysOff off(session);
  Transaction transaction(session);
  rebuildWith(session, relation.foreignTable, constraint);
  if (!session.execute(u"PRAGMA foreign_key_check("_qs + bracketed(relation.foreignTable) + u')')
           .rows.isEmpty())
    throw Failure(
        errors::relatedRecordRequired,
        QStringLiteral("The relation '%1' cannot be made: rows of '%2' have no related record in '%3'.")
            .arg(relation.name, relation.foreignTable, relation.table));
  session.execute(
      QStringLiteral("CREATE TABLE IF NOT EXISTS [MSysRelationships] ([Name] TEXT NOT NULL PRIMARY KEY "
                     "COLLATE NOCASE, [TableName] TEXT NOT NULL, [ForeignTable] TEXT NOT NULL, "
                     "[FieldName] TEXT NOT NULL)"));
  session.execute(
      QStringLiteral(
          "INSERT INTO [MSysRelationships] ([Name], [TableName], [ForeignTable], [FieldName]) VALUES (?, ?, "
          "?, ?)"),
      {relation.name, relation.table, relation.foreignTable, relation.field});
  transaction.commit();
}

QList<Relation> SqliteEngine::relations(Session& session) {
  if (session.columns(QLatin1String(relationCatalogue)).isEmpty()) return {};
  QList<Relation> list;
  const Result result = session.execute(QStringLiteral(
      "SELECT [Name], [TableName], [ForeignTable], [FieldName] FROM [MSysRelationships] ORDER BY rowid"));
  for (const QList<basic::Value>& row : result.rows)
    list.append({std::get<QString>(row[0]), std::get<QString>(row[1]), std::get<QString>(row[2]),
                 std::get<QString>(row[3])});
  return list;
}

void SqliteEngine::setCaption(Session& session, const QString& table, const QString& column,
                              const QString& caption) {
  Column present = schema::requireColumn(session, table, column);
  present.caption = caption;
  Transaction transaction(session);
  keepProperties(session, table, present);
  transaction.commit();
}

namespace {

/// The database that was copied, kept from all others: by the lock file from those that know it, by an
/// exclusive lock on the database itself from those that do not.
class HeldSource : public CompactedSource {
 public:
  HeldSource(QString source, QString target, const OpenOptions& options)
      : source_(std::move(source)),
        target_(std::move(target)),
        options_(options),
        lock_(LockFile::take(source_, LockFile::Use::Alone, 0)),
        sourceFile_(identityOf(source_)),
        session_(fileUri(source_, QStringLiteral("rw")), source_, options) {
    session_.execute(QStringLiteral("PRAGMA locking_mode=EXCLUSIVE"));
    session_.execute(QStringLiteral("BEGIN EXCLUSIVE"));
    session_.execute(QStringLiteral("COMMIT"));
    // who has waited for a program without the lock file may hold a file that is no longer in its place
    if (!sourceFile_ || identityOf(source_) != sourceFile_) throw replacedFailure(source_);
  }

  void copy() {
    targetFile_ = createFile(target_, CreationMode::OwnerOnly);
    try {
      session_.execute(QStringLiteral("VACUUM INTO ?"), {target_});
      requireSound();
      takeAccessRights(source_, target_);
      if (options_.durability == Durability::PowerCut) syncToDisk(target_);
      requireUnchanged();
    } catch (const Failure&) {
      removeOwn(target_, targetFile_);
      throw;
    }
  }

  void requireUnchanged() const override {
    if (identityOf(source_) != sourceFile_) {
      removeOwn(target_, targetFile_);
      throw replacedFailure(source_);
    }
    if (identityOf(target_) != targetFile_) throw replacedFailure(target_);
  }

 private:
  void requireSound() const {
    SqliteSession copy(fileUri(target_, QStringLiteral("rw")), target_, options_);
    if (firstText(copy.execute(QStringLiteral("PRAGMA quick_check"))) != u"ok")
      throw Failure(errors::damaged,
                    QStringLiteral("The compacted copy '%1' of the database is damaged.").arg(target_));
  }

  const QString source_, target_;
  const OpenOptions options_;
  const std::unique_ptr<LockFile> lock_;  // let go last
  const std::optional<FileIdentity> sourceFile_;
  FileIdentity targetFile_;
  SqliteSession session_;
};

}  // namespace

std::shared_ptr<CompactedSource> SqliteEngine::compact(const QString& source, const QString& target) {
  const QString from = systemForm(source);
  const QString to = systemForm(target);
  requireFile(from);
  if (lookAt(to) == FileKind::FolderMissing) requireFile(to);
  OpenOptions options;
  options.busyTimeout = busyTimeout_;
  options.durability = durability_;
  std::shared_ptr<HeldSource> held;
  try {
    held = std::make_shared<HeldSource>(realPath(from), to, options);
  } catch (const Failure& failure) {
    if (failure.number() == errors::damaged) refuseForeignFile(from);
    throw;
  }
  held->copy();
  return held;
}

}  // namespace platform::sql::sqlite

#include "platform/sql/sqlite/session.h"

#include "platform/basic/failure.h"
#include "platform/sql/errors.h"
#include "platform/sql/sqlite/databasefile.h"
#include "platform/sql/sqlite/dataversion.h"
#include "platform/sql/sqlite/dialect.h"
#include "platform/sql/sqlite/values.h"

#include <QFileInfo>
#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlField>
#include <QSqlQuery>
#include <QSqlRecord>
#include <QUrl>

namespace platform::sql::sqlite {

namespace {

// result codes of the engine (the low byte; the rest tells details)
enum Code {
  codeError = 1,
  codeBusy = 5,
  codeLocked = 6,
  codeReadOnly = 8,
  codeIoError = 10,
  codeCorrupt = 11,
  codeFull = 13,
  codeCantOpen = 14,
  codeConstraint = 19,
  codeMismatch = 20,
  codeNotADatabase = 26
};
constexpr int codeMask = 0xff;
constexpr int mostOpenings = 2;
constexpr int mostPrepared = 16;
constexpr int codeMoved = 1032;  // another file stands under the name of the one that is open

QString nextConnectionName() {
  static QAtomicInt counter;
  return QStringLiteral("platform.sql.sqlite.%1").arg(counter.fetchAndAddRelaxed(1));
}

/// The name that a constraint's failure ends with: "CHECK constraint failed: strName size" -> "strName size".
QString constraintName(const QString& text) {
  const qsizetype colon = text.lastIndexOf(u": ");
  const QString name = colon < 0 ? text : text.mid(colon + 2);
  const qsizetype space = name.indexOf(u" Unable to fetch row");
  return (space < 0 ? name : name.left(space)).trimmed();
}

Failure constraintFailure(const QString& text, const QString& statement, const QString& label) {
  const QString name = constraintName(text);
  const QString in = QStringLiteral(" (%1)").arg(label);
  if (text.contains(u"FOREIGN KEY")) {
    if (statement.trimmed().startsWith(u"delete", Qt::CaseInsensitive))
      return {errors::relatedRecords,
              QStringLiteral(
                  "The record cannot be deleted or changed because other tables include related records.") +
                  in};
    return {errors::relatedRecordRequired,
            QStringLiteral("You cannot add or change a record because a related record is required.") + in};
  }
  if (text.contains(u"UNIQUE") || text.contains(u"PRIMARY KEY"))
    return {
        errors::duplicateKey,
        QStringLiteral("The changes you requested to the table were not successful because they would create "
                       "duplicate values in the index, primary key, or relationship: ") +
            name + u'.' + in};
  if (text.contains(u"NOT NULL"))
    return {errors::valueRequired,
            QStringLiteral("The field '%1' cannot contain a Null value.").arg(name) + in};
  if (name.endsWith(u" size"))
    return {errors::fieldTooSmall,
            QStringLiteral(
                "The field is too small to accept the amount of data you attempted to add. Try inserting or "
                "pasting less data. (Field '%1')")
                    .arg(name.chopped(5)) +
                in};
  if (name.endsWith(u" zero-length"))
    return {errors::zeroLength,
            QStringLiteral("Field '%1' cannot be a zero-length string.").arg(name.chopped(12)) + in};
  return {errors::statementFailed, text + in};
}

Failure failureOf(int code, const QString& text, const QString& statement, const QString& label) {
  if (code == codeMoved) return replacedFailure(label);
  switch (code & codeMask) {
    case codeBusy:
    case codeLocked:
      return {errors::locked, QStringLiteral("The database '%1' is in use by another program.").arg(label)};
    case codeReadOnly:
      return {errors::readOnly, QStringLiteral("Cannot update. The database '%1' is read-only.").arg(label)};
    case codeIoError:
      return {errors::diskError,
              QStringLiteral("Disk or network error in the database '%1': %2").arg(label, text)};
    case codeFull:
      return {errors::diskFull, QStringLiteral("Not enough space on disk for the database '%1'.").arg(label)};
    case codeCantOpen:
      return {errors::noPermission,
              QStringLiteral(
                  "The database '%1' or the journal beside it cannot be opened: you need permission to its "
                  "file and folder.")
                  .arg(label)};
    case codeCorrupt:
    case codeNotADatabase:
      return {errors::damaged,
              QStringLiteral("The database '%1' is damaged: a part of the file is missing or "
                             "unreadable.")
                  .arg(label)};
    case codeConstraint:
      return constraintFailure(text, statement, label);
    default:
      break;
  }
  if (text.contains(u"no such table"))
    return {
        errors::tableNotFound,
        QStringLiteral("The database engine cannot find the input table or query: %1 (%2)").arg(text, label)};
  if (text.contains(u"no such column"))
    return {errors::noSuchColumn,
            QStringLiteral("No value given for one or more required parameters: %1 (%2)").arg(text, label)};
  if (text.contains(u"duplicate column name"))
    return {errors::duplicateField,
            QStringLiteral("Cannot define a field more than once: %1 (%2)").arg(text, label)};
  if (text.contains(u"table ") && text.contains(u" already exists"))
    return {errors::tableExists, QStringLiteral("The table already exists: %1 (%2)").arg(text, label)};
  return {errors::statementFailed, QStringLiteral("%1 (%2)").arg(text, label)};
}

}  // namespace

QString fileUri(const QString& path, const QString& mode) {
  return QStringLiteral("file:") + QString::fromLatin1(QUrl::toPercentEncoding(path, "/")) + u"?mode="_qs +
         mode;
}

SqliteSession::SqliteSession(const QString& uri, const QString& label, const OpenOptions& options,
                             std::shared_ptr<const LockFile> lock)
    : patience_(options.busyTimeout),
      connection_(nextConnectionName()),
      label_(label),
      lock_(std::move(lock)) {
  {
    QSqlDatabase base = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), connection_);
    if (!base.isValid()) {
      base = QSqlDatabase();
      QSqlDatabase::removeDatabase(connection_);
      throw Failure(errors::providerNotFound,
                    QStringLiteral("The SQLite driver of Qt is not installed (Debian: libqt6sql6-sqlite)."));
    }
    base.setDatabaseName(uri);
    base.setConnectOptions(
        QStringLiteral("QSQLITE_OPEN_URI;QSQLITE_BUSY_TIMEOUT=%1").arg(qMax(0, options.busyTimeout)));
  }
  try {
    QSqlDatabase base = database();
    if (!base.open()) fail(base.lastError(), {});
    patience_.governs(base);
    execute(QStringLiteral("PRAGMA foreign_keys=ON"));
    execute(options.durability == Durability::PowerCut ? QStringLiteral("PRAGMA synchronous=EXTRA")
                                                       : QStringLiteral("PRAGMA synchronous=OFF"));
    if (!options.readOnly) execute(QStringLiteral("PRAGMA journal_mode=DELETE"));
    // the first look into the file: damage and locks show here and not in the middle of the work
    execute(QStringLiteral("SELECT count(*) FROM sqlite_master"));
  } catch (...) {
    close();
    throw;
  }
}

SqliteSession::~SqliteSession() {
  close();
}

void SqliteSession::close() {
  prepared_.clear();
  QSqlDatabase::removeDatabase(connection_);
}

QSqlDatabase SqliteSession::database() const {
  return QSqlDatabase::database(connection_, false);
}

void SqliteSession::fail(const QSqlError& error, const QString& statement) const {
  throw failureOf(error.nativeErrorCode().toInt(),
                  error.databaseText().isEmpty() ? error.driverText() : error.databaseText(), statement,
                  label_);
}

std::shared_ptr<QSqlQuery> SqliteSession::prepared(const QString& sql, const QString& key) {
  if (const auto known = key.isEmpty() ? nullptr : prepared_.value(key)) return known;
  const QString statement = storedText(fromAccess(sql));
  auto query = std::make_shared<QSqlQuery>(database());
  query->setForwardOnly(true);
  if (!query->prepare(statement)) fail(query->lastError(), statement);
  return query;
}

/// Where another program has changed a table, the engine shows of it only while a statement is carried out;
/// it reads the statement anew then, and of a question for all columns Qt writes those that are new past the
/// end of the row that it has made room for. So the engine looks before such a question is read, and what is
/// returned keeps others from changing a table until it ends.
std::shared_ptr<QSqlQuery> SqliteSession::tablesHeld(const QString& sql) const {
  if (!sql.contains(u'*') || !sql.trimmed().startsWith(u"select", Qt::CaseInsensitive)) return nullptr;
  auto look = std::make_shared<QSqlQuery>(database());
  look->setForwardOnly(true);
  if (!look->exec(QStringLiteral("SELECT count(*) FROM sqlite_master"))) fail(look->lastError(), sql);
  return look;
}

/// A statement that writes is kept as the engine has read it: a report sends the same one for each row. One
/// that reads is read anew, since what it answers may have got other columns; which of the two it is shows
/// once it has been carried out.
void SqliteSession::keep(const QString& key, const std::shared_ptr<QSqlQuery>& query) {
  if (key.isEmpty() || prepared_.contains(key)) return;
  if (prepared_.size() >= mostPrepared) prepared_.clear();
  prepared_.insert(key, query);
}

Result SqliteSession::execute(const QString& sql, const QList<basic::Value>& parameters) {
  // by their number as well: a kept query would take what is missing from the values of last time
  const QString key = parameters.isEmpty() ? QString() : QString::number(parameters.size()) + u' ' + sql;
  auto tables = tablesHeld(sql);
  const std::shared_ptr<QSqlQuery> held = prepared(sql, key);
  QSqlQuery& query = *held;
  for (int i = 0; i < parameters.size(); ++i) query.bindValue(i, toStored(parameters[i]));
  if (!query.exec()) {
    prepared_.remove(key);
    known_.clear();  // a transaction may have been rolled back along with it
    fail(query.lastError(), query.lastQuery());
  }
  tables.reset();

  Result result;
  if (!query.isSelect()) {
    known_.clear();  // what is not committed yet has no version of its own
    result.affected = qMax(0, query.numRowsAffected());
    result.lastId = query.lastInsertId().toLongLong();
    query.finish();
    keep(key, held);
    return result;
  }
  QList<QVariantList> stored;
  const QSqlRecord record = query.record();
  while (query.next()) {
    QVariantList row;
    for (int i = 0; i < record.count(); ++i) row.append(query.value(i));
    stored.append(row);
  }
  if (query.lastError().isValid()) fail(query.lastError(), query.lastQuery());

  result.columns = describe(record, stored);
  for (const QVariantList& row : stored) result.rows.append(valuesOf(record, result.columns, row));
  return result;
}

QList<basic::Value> SqliteSession::valuesOf(const QSqlRecord& record, const QList<Column>& columns,
                                            const QVariantList& row) const {
  QList<basic::Value> values;
  for (int i = 0; i < record.count(); ++i) {
    try {
      values.append(fromStored(row[i], columns[i].type));
    } catch (const Failure& failure) {
      throw Failure(failure.number(),
                    QStringLiteral("%1 It stands in the column '%2' of the table '%3' (%4).")
                        .arg(failure.description(), columns[i].name, record.field(i).tableName(), label_));
    }
  }
  return values;
}

void SqliteSession::begin() {
  execute(depth_ == 0 ? QStringLiteral("BEGIN IMMEDIATE") : QStringLiteral("SAVEPOINT level%1").arg(depth_));
  ++depth_;
}

void SqliteSession::commit() {
  execute(depth_ <= 1 ? QStringLiteral("COMMIT") : QStringLiteral("RELEASE level%1").arg(depth_ - 1));
  --depth_;
}

void SqliteSession::rollback() {
  const int level = depth_ = qMax(0, depth_ - 1);
  if (level == 0) {
    execute(QStringLiteral("ROLLBACK"));
    return;
  }
  execute(QStringLiteral("ROLLBACK TO level%1").arg(level));
  execute(QStringLiteral("RELEASE level%1").arg(level));
}

/// The columns as their tables declare them; a computed one by the values that it holds.
QList<Column> SqliteSession::describe(const QSqlRecord& record, const QList<QVariantList>& rows) {
  QList<Column> list;
  QHash<QString, QList<Column>> origins;
  for (int i = 0; i < record.count(); ++i) {
    Column column;
    column.name = record.fieldName(i);
    QVariantList held;
    for (const QVariantList& row : rows) held.append(row[i]);
    column.type = typeOfValues(held);
    QString table = record.field(i).tableName();
    if (table.startsWith(u"sqlite_")) table.clear();  // the engine's own declare no types
    if (!table.isEmpty() && !origins.contains(table)) origins.insert(table, columnsNow(table));
    for (const Column& origin : origins.value(table))
      if (origin.name.compare(column.name, Qt::CaseInsensitive) == 0) column = origin;
    list.append(column);
  }
  return list;
}

QStringList SqliteSession::tables() {
  QSqlQuery query(database());
  if (!query.exec(QStringLiteral(
          "SELECT name FROM sqlite_master WHERE type = 'table' AND name NOT LIKE 'sqlite%' AND "
          "name NOT LIKE 'MSys%' ORDER BY name COLLATE NOCASE")))
    fail(query.lastError(), {});
  QStringList names;
  while (query.next()) names.append(query.value(0).toString());
  if (query.lastError().isValid()) fail(query.lastError(), {});
  return names;
}

namespace {

QString questionForColumns(const QString& table, bool catalogued) {
  const QString name = u'\'' + QString(table).replace(u"'"_qs, u"''"_qs) + u'\'';
  QString statement = QStringLiteral(
      "SELECT t.name, t.type, t.pk, (SELECT sql LIKE '%AUTOINCREMENT%' FROM sqlite_master m WHERE m.type = "
      "'table' AND "
      "m.name = @ COLLATE NOCASE), ");
  statement += catalogued
                   ? QStringLiteral(
                         "c.Caption, c.ZeroLength FROM pragma_table_info(@) t LEFT JOIN MSysColumns c ON "
                         "c.TableName = @ COLLATE NOCASE AND c.ColumnName = t.name COLLATE NOCASE")
                   : QStringLiteral("NULL, NULL FROM pragma_table_info(@) t");
  statement += u" ORDER BY t.cid"_qs;
  return statement.replace(u'@', name);
}

bool hasNoCatalogue(const QSqlError& error) {
  return error.databaseText().contains(u"no such table: "_qs + QLatin1String(columnCatalogue));
}

}  // namespace

QList<Column> SqliteSession::columns(const QString& table) {
  QSqlQuery query(database());
  if (!query.exec(questionForColumns(table, true)) &&
      !(hasNoCatalogue(query.lastError()) && query.exec(questionForColumns(table, false))))
    fail(query.lastError(), {});
  const auto version = dataVersion(database());  // while the question keeps others from changing anything
  QList<Column> columns;
  while (query.next()) {
    Column column = typeOfDeclaration(query.value(1).toString());
    column.name = query.value(0).toString();
    column.primaryKey = query.value(2).toInt() > 0;
    column.autoIncrement = column.primaryKey && column.type == Type::Long && query.value(3).toBool();
    column.caption = query.value(4).toString();
    column.allowZeroLength = query.value(5).isNull() || query.value(5).toInt() != 0;
    columns.append(column);
  }
  if (query.lastError().isValid()) fail(query.lastError(), {});
  if (version && !columns.isEmpty()) known_.insert(table, {*version, columns});
  return columns;
}

/// As the statement that has just been carried out has found them.
QList<Column> SqliteSession::columnsNow(const QString& table) {
  const auto known = known_.constFind(table);
  if (known != known_.cend() && known->version == dataVersion(database())) return known->columns;
  return columns(table);
}

namespace {

std::unique_ptr<SqliteSession> openFile(const QString& file, const QString& label, const OpenOptions& options,
                                        const std::shared_ptr<const LockFile>& lock) {
  const QString mode = options.readOnly ? QStringLiteral("ro") : QStringLiteral("rw");
  try {
    return std::make_unique<SqliteSession>(fileUri(file, mode), label, options, lock);
  } catch (const Failure& failure) {
    // What is no database reads as a damaged one. Only then are its bytes looked at: closing a file takes
    // the process's locks off it, and a database that is merely busy may be so through this program.
    if (failure.number() == errors::damaged) refuseForeignFile(label);
    throw;
  }
}

}  // namespace

std::unique_ptr<Session> SqliteDriver::connect(const ConnectionString& connection) {
  const QString path = systemForm(connection.value(QStringLiteral("Data Source")));
  // a compaction takes the file away for a moment: whether it is missing shows under the lock
  if (lookAt(path) != FileKind::Missing || QFileInfo(path).isSymLink()) requireFile(path);
  const QString file = realPath(path);
  const std::shared_ptr<const LockFile> lock = LockFile::take(file, LockFile::Use::Shared, busyTimeout_);
  requireFile(path);
  OpenOptions options;
  options.busyTimeout = busyTimeout_;
  options.durability = durability_;
  options.readOnly = connection.value(QStringLiteral("Mode")).compare(u"Read", Qt::CaseInsensitive) == 0;
  // a program that does not know the lock file may exchange the database while this one waits for it
  for (int attempt = 1;; ++attempt) {
    const auto before = identityOf(file);
    auto session = openFile(file, path, options, lock);
    if (before == identityOf(file)) return session;
    if (attempt == mostOpenings) throw replacedFailure(path);
  }
}

}  // namespace platform::sql::sqlite

#include "companions/accessimport/conversion.h"

#include "companions/accessimport/accessfile.h"
#include "database/modCreateDB.h"
#include "platform/basic/failure.h"
#include "platform/dao/dao.h"
#include "platform/files/atomicfile.h"
#include "platform/sql/errors.h"
#include "platform/sql/sqlite/engine.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QUuid>

#include <algorithm>

namespace accessimport {

using namespace Qt::StringLiterals;
using namespace hourbook;
using namespace platform::dao;
using platform::Failure;
using platform::basic::Value;
using platform::sql::Type;

namespace {

/// What the tables are filled in, so that what a row refers to is there.
constexpr std::array fillingOrder{"tblPersons",  "tblMeta1",     "tblMeta2",         "tblMeta3",
                                  "tblSettings", "tblMetaLists", "tblOtherSettings", "tblReports"};

[[noreturn]] void fail(const QString& text) {
  throw Failure(platform::sql::errors::unrecognizedFormat, text, u"accessimport"_s);
}

int daoType(Type type) {
  switch (type) {
    case Type::Boolean:
      return dbBoolean;
    case Type::Integer:
      return dbInteger;
    case Type::Long:
      return dbLong;
    case Type::Single:
      return dbSingle;
    case Type::Double:
      return dbDouble;
    case Type::Currency:
      return dbCurrency;
    case Type::Date:
      return dbDate;
    case Type::Text:
      return dbText;
    case Type::Memo:
      return dbMemo;
  }
  return dbMemo;
}

bool same(const QString& a, const QString& b) {
  return a.compare(b, Qt::CaseInsensitive) == 0;
}

const AccessColumn* find(const QList<AccessColumn>& columns, const QString& name) {
  const auto found = std::find_if(columns.begin(), columns.end(),
                                  [&](const AccessColumn& column) { return same(column.name, name); });
  return found == columns.end() ? nullptr : &*found;
}

/// Access takes quotation marks in names, the program's own form does not.
bool hasNoPlace(const QString& name) {
  return name.contains(u'"');
}

/// The columns that can be taken over, in the order of the file; the others are noted.
QList<AccessColumn> takenOver(const QString& table, QList<AccessColumn> columns, QStringList& notes) {
  columns.removeIf([&](const AccessColumn& column) {
    if (hasNoPlace(column.name)) {
      notes.append(u"The column \"%1\" of \"%2\" is left out: its name has a quotation mark in it."_s.arg(
          column.name, table));
      return true;
    }
    if (column.foreignKind.isEmpty()) return false;
    notes.append(u"The column \"%1\" of \"%2\" is left out: it holds values of the kind \"%3\"."_s.arg(
        column.name, table, column.foreignKind));
    return true;
  });
  return columns;
}

/// A column of the product that somebody has given a kind of his own would come out empty.
void refuseForeignKinds(const SchemaTable& plan, const QList<AccessColumn>& columns) {
  for (const SchemaColumn& wanted : plan.columns) {
    const AccessColumn* const there = find(columns, wanted.strName);
    if (there && !there->foreignKind.isEmpty())
      fail(
          u"The column \"%1\" of \"%2\" holds values of the kind \"%3\", which cannot be read. Give it the "
          u"kind "
          u"that it had in Access and begin again."_s.arg(there->name, plan.strName, there->foreignKind));
  }
}

void addOwnColumn(TableDef& table, const AccessColumn& column) {
  subCreateDAOField(table, column.name, column.caption, daoType(column.type), column.size);
}

/// A table of the product in its present state, with the captions of the file and the user's own columns.
void makeProductTable(Database& db, const SchemaTable& plan, const QList<AccessColumn>& there) {
  const auto caption = [&](const SchemaColumn& column) {
    const AccessColumn* old = find(there, column.strName);
    return old && !old->caption.isEmpty() ? old->caption : column.strCaption;
  };
  const SchemaColumn& key = plan.columns.first();
  const auto table = fncNewDAOTable(db, plan.strName, key.strName, caption(key));
  QList<SchemaColumn> columns = plan.columns.mid(1);
  for (SchemaColumn& column : columns) column.strCaption = caption(column);
  subAddDAOFields(*table, columns);
  for (const AccessColumn& own : there)
    if (std::none_of(plan.columns.begin(), plan.columns.end(),
                     [&](const SchemaColumn& column) { return same(column.strName, own.name); }))
      addOwnColumn(*table, own);
  db.AppendTableDef(table);
}

void makeOwnTable(Database& db, const QString& name, const QList<AccessColumn>& columns) {
  const auto table = db.CreateTableDef(name);
  for (const AccessColumn& column : columns) addOwnColumn(*table, column);
  db.AppendTableDef(table);
}

QString bracketed(const QString& name) {
  return u'[' + name + u']';
}

/// Values of a database from before they could be put out of use are all in use.
bool lacksEnabled(const QString& table, const QList<AccessColumn>& columns) {
  return table.startsWith(u"tblMeta"_s, Qt::CaseInsensitive) && !same(table, u"tblMetaLists"_s) &&
         !find(columns, u"blnEnabled"_s);
}

int fill(platform::sql::Session& session, const AccessFile& file, const QString& table,
         const QList<AccessColumn>& columns) {
  QStringList names, marks;
  for (const AccessColumn& column : columns) {
    names.append(bracketed(column.name));
    marks.append(u"?"_s);
  }
  const bool enable = lacksEnabled(table, columns);
  if (enable) {
    names.append(u"[blnEnabled]"_s);
    marks.append(u"?"_s);
  }
  const QString sql =
      u"insert into %1 (%2) values (%3)"_s.arg(bracketed(table), names.join(u", "_s), marks.join(u", "_s));
  int count = 0;
  file.rows(table, columns, [&](QList<Value> values) {
    if (enable) values.append(Value(true));
    try {
      session.execute(sql, values);
    } catch (const Failure& failure) {
      fail(u"Row %1 of \"%2\" cannot be taken over: %3"_s.arg(count + 1).arg(table, failure.description()));
    }
    ++count;
  });
  const int told = file.rowCount(table);
  if (told != count)
    fail(
        u"\"%1\" holds %2 rows, but %3 could be read: the file may be damaged. Compact and repair it in "
        u"Access and begin again."_s.arg(table)
            .arg(told)
            .arg(count));
  return count;
}

struct Plan {
  QString table;
  QList<AccessColumn> columns;
  bool own = false;  // the user's own table
};

/// Of a table of the user's own; empty for one that can be taken over.
QString reasonToLeaveOut(const QString& table) {
  if (table.startsWith(u'-'))  // mdbtools has no way to be told that it is none
    return u"its name begins like an option of the program that reads it."_s;
  if (hasNoPlace(table)) return u"its name has a quotation mark in it."_s;
  return {};
}

QList<Plan> planOf(const AccessFile& file, QStringList& notes) {
  QList<Plan> plans;
  for (const char* name : fillingOrder) {
    const QString table = QLatin1String(name);
    if (file.has(table)) {
      const QList<AccessColumn> columns = file.columns(table);
      refuseForeignKinds(fncSchemaTable(table), columns);
      plans.append({table, takenOver(table, columns, notes), false});
    } else if (table != u"tblOtherSettings")  // older databases have none
      fail(u"The Access database holds no table \"%1\", so it is none of this program's."_s.arg(table));
  }
  for (const QString& table : file.tables()) {
    if (std::any_of(plans.begin(), plans.end(), [&](const Plan& plan) { return same(plan.table, table); }))
      continue;
    if (const QString reason = reasonToLeaveOut(table); !reason.isEmpty()) {
      notes.append(u"The table \"%1\" is left out: %2"_s.arg(table, reason));
      continue;
    }
    const QList<AccessColumn> columns = takenOver(table, file.columns(table), notes);
    if (columns.isEmpty()) continue;
    plans.append({table, columns, true});
    notes.append(
        u"The table \"%1\" is not of this program; it was taken over without its keys."_s.arg(table));
  }
  return plans;
}

void makeTables(Database& db, const QList<Plan>& plans) {
  for (const SchemaTable& table : fncSchemaTables()) {
    const auto plan = std::find_if(plans.begin(), plans.end(),
                                   [&](const Plan& one) { return same(one.table, table.strName); });
    makeProductTable(db, table, plan == plans.end() ? QList<AccessColumn>() : plan->columns);
  }
  for (const Plan& plan : plans)
    if (plan.own) makeOwnTable(db, plan.table, plan.columns);
  for (const platform::sql::Relation& relation : fncSchemaRelations()) db.AppendRelation(relation);
}

/// What tells that the source is still what it was.
struct Look {
  qint64 size = 0;
  QDateTime written;
  bool operator==(const Look&) const = default;
  static Look at(const QString& path) {
    const QFileInfo info(path);
    return {info.size(), info.lastModified()};
  }
};

/// A folder with those above it, of which the ones that were made for it go away again when nothing is in
/// them.
class Folder {
 public:
  explicit Folder(const QString& path) {
    for (QDir above(path); !above.exists() && !above.isRoot(); above.setPath(QFileInfo(above.path()).path()))
      made_.append(above.path());
    if (!QDir().mkpath(path)) fail(u"The folder \"%1\" cannot be made."_s.arg(path));
  }
  ~Folder() {
    for (const QString& path : made_) QDir().rmdir(path);
  }
  Folder(const Folder&) = delete;
  Folder& operator=(const Folder&) = delete;

 private:
  QStringList made_;  // the innermost first
};

/// A file that goes away unless it was kept.
class Unfinished {
 public:
  explicit Unfinished(QString path) : path_(std::move(path)) {}
  ~Unfinished() {
    if (!kept_)
      for (const auto* suffix : {"", "-journal"}) QFile::remove(path_ + QLatin1String(suffix));
  }
  Unfinished(const Unfinished&) = delete;
  Unfinished& operator=(const Unfinished&) = delete;
  const QString& path() const { return path_; }
  void keep() { kept_ = true; }

 private:
  QString path_;
  bool kept_ = false;
};

}  // namespace

Outcome convert(const QString& source, const QString& target) {
  const QFileInfo wanted(target);
  if (wanted.exists() || wanted.isSymLink()) fail(u"\"%1\" is there already."_s.arg(target));
  const Look before = Look::at(source);
  const AccessFile file(source);
  Outcome outcome;
  const QList<Plan> plans = planOf(file, outcome.notes);

  const Folder folder(wanted.absolutePath());
  Unfinished made(wanted.dir().filePath(
      u".%1.%2.tmp"_s.arg(wanted.fileName(), QUuid::createUuid().toString(QUuid::Id128).left(6))));
  const auto driver = std::make_shared<platform::sql::sqlite::SqliteDriver>();
  DBEngine engine(driver, std::make_shared<platform::sql::sqlite::SqliteEngine>());
  const auto db = engine.CreateDatabase(made.path(), u";LANGID=0x0409;CP=1252;COUNTRY=0"_s, dbVersion40);
  makeTables(*db, plans);
  db->Close();
  {
    platform::sql::ConnectionString connection;
    connection.set(u"Provider"_s, u"Microsoft.Jet.OLEDB.4.0"_s);
    connection.set(u"Data Source"_s, made.path());
    const auto session = driver->connect(connection);
    platform::sql::Transaction transaction(*session);
    for (const Plan& plan : plans) {
      outcome.rows += fill(*session, file, plan.table, plan.columns);
      ++outcome.tables;
    }
    transaction.commit();
  }
  if (Look::at(source) != before)
    fail(u"\"%1\" was written to while it was read. Close it in Access and begin again."_s.arg(source));
  const platform::files::WriteResult renamed = platform::files::renameFile(made.path(), wanted.fileName());
  if (renamed.outcome != platform::files::Outcome::Written)
    fail(renamed.outcome == platform::files::Outcome::ChangedMeanwhile
             ? u"\"%1\" is there already."_s.arg(target)
             : renamed.error);
  made.keep();
  return outcome;
}

}  // namespace accessimport

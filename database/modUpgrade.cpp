#include "database/modUpgrade.h"

#include "database/DatabaseValues.h"
#include "database/modCreateDB.h"
#include "database/modDBCode.h"
#include "database/modServerSchema.h"
#include "database/ProbeScope.h"
#include "platform/automation/components.h"
#include "platform/sql/errors.h"
#include "shell/modErrorReport.h"
#include "shell/modFileHandling.h"
#include "shell/Present.h"
#include "shell/ShellValues.h"
#include "shell/Tolerate.h"

#include <QFileInfo>

namespace hourbook {

using namespace Qt::StringLiterals;
using namespace platform::dao;
using platform::Failure;
using platform::automation::CreateObject;

namespace {

/// Is the table or column there? A database of an earlier release lacks it, and then the question itself
/// fails. Failing for another reason says nothing of the database's age and is reported as it is.
bool isThere(const QString& source) {
  const ProbeScope probe;
  const auto recordset = fncReturnRecordset(source, true);
  const auto& failure = databaseValues().probeFailure;
  const bool older = failure && (failure->number() == platform::sql::errors::noSuchColumn ||
                                 failure->number() == platform::sql::errors::tableNotFound);
  if (failure && !older) subDatabaseFailed(*failure, u"fncReturnRecordset"_s);
  if (!recordset) return false;
  recordset->Close();
  return true;
}

const QString newestColumn = u"select top 1 strBody from tblReports"_s;

/// More than there are steps in which another program may be quicker.
constexpr int mostAttempts = 8;

/// What was about to be made is there by now.
bool isMadeMeanwhile(const Failure& failure) {
  using namespace platform::sql::errors;
  for (const qint32 number : {tableExists, duplicateField, objectExists, duplicateKey})
    if (failure.number() == number) return true;
  return false;
}

/// Two programs of a new release may be started at the same moment, and both find the database old. Where the
/// other one was quicker by a step, the database is asked again, and what it still lacks is made.
template <class Steps>
void bringUpToDate(Steps&& steps) {
  for (int attempt = 1; !isThere(newestColumn); ++attempt) {
    const auto failure = tolerate(steps);
    if (!failure) return;
    if (attempt == mostAttempts || !isMadeMeanwhile(*failure)) throw Failure(*failure);
    subLog(u"Another program brings the database up to date as well"_s);
  }
}

bool isEnabledColumn(const QString& name) {
  return name.compare(u"blnEnabled"_s, Qt::CaseInsensitive) == 0;
}

void addColumns(Database& db, const QString& table, SchemaState state) {
  subAddDAOFields(*db.TableDefs(table), fncSchemaTable(table).columnsOf(state));
}

/// Rows keep a relation from being added where one of them leads nowhere.
bool hasReports() {
  const auto reports = fncReturnRecordset(u"select top 1 intReportID from tblReports"_s, true);
  return !present(reports).isEOF();
}

/// What a creation that was broken off, as by a power cut, has not come to. A table is made in several steps
/// and holds no rows then: one that lacks columns of its first form is still empty.
void completeCreation(Database& db) {
  const QStringList tables = db.TableDefNames();
  for (const SchemaTable& plan : fncSchemaTables()) {
    if (!tables.contains(plan.strName, Qt::CaseInsensitive)) {
      subCreateSchemaTable(db, plan);
      continue;
    }
    const auto table = db.TableDefs(plan.strName);
    QStringList columns;
    for (const Field& field : table->Fields()) columns.append(field.Name);
    for (const SchemaColumn& column : plan.columnsOf(SchemaState::First))
      if (!columns.contains(column.strName, Qt::CaseInsensitive)) subAddDAOFields(*table, {column});
  }
  QStringList relations;
  for (const auto& relation : db.Relations()) relations.append(relation.name);
  for (const auto& [name, table, foreignTable, field] : fncSchemaRelations())
    if (!relations.contains(name, Qt::CaseInsensitive) && !hasReports())
      subDAOCreateForeignKey(db, name, table, foreignTable, field);
}

// Each of these steps is carried out whole or not at all: where one was broken off, the next start finds what
// it asks for still missing and takes the step again.

void addOtherSettings(Database& db) {
  const SchemaTable plan = fncSchemaTable(u"tblOtherSettings"_s);
  if (fncTableExists(plan.strName, db)) return;
  Transaction transaction(db);
  const auto table =
      fncNewDAOTable(db, plan.strName, plan.columns.first().strName, plan.columns.first().strCaption);
  subAddDAOFields(*table, plan.columns.mid(1));
  db.AppendTableDef(table);
  addColumns(db, u"tblPersons"_s, SchemaState::OtherSettings);
  transaction.CommitTrans();
}

void addEnabled(Database& db, int n) {
  const QString table = u"tblMeta%1"_s.arg(n);
  const auto there = db.TableDefs(table);
  for (const Field& field : there->Fields())
    if (isEnabledColumn(field.Name)) return;
  Transaction transaction(db);
  addColumns(db, table, SchemaState::Enabled);
  db.Execute(u"Update tblMeta%1 set blnEnabled = -1"_s.arg(n));
  transaction.CommitTrans();
}

// ---- the same on a server

void execute(platform::ado::Command& command, const QStringList& statements) {
  for (const QString& statement : statements) {
    command.CommandText = statement;
    command.Execute();
  }
}

void addOtherSettings(const ServerUpgrade& upgrade, platform::ado::Command& command) {
  platform::sql::Transaction transaction(databaseValues().gConnection->session());
  subLog(u"Creating Other Settings table in database"_s);
  execute(command, upgrade.addOtherSettings);
  // kept: the text of the log names another table
  subLog(u"Adding Person category field in tblPerson table"_s);
  execute(command, upgrade.addPersonCategory);
  transaction.commit();
}

/// kept: one list is looked at for all three
bool listsHaveEnabled() {
  const auto values = fncReturnRecordset(u"tblMeta1"_s);
  platform::ado::Fields fields = present(values).Fields();
  bool found = false;
  for (int i = 0; i < fields.Count(); ++i) found = found || isEnabledColumn(fields.Item(i).Name());
  values->Close();
  return found;
}

/// Says nothing of what was to be changed: it may be changed the next time.
bool isOfTheMoment(const Failure& failure) {
  using namespace platform::sql::errors;
  return failure.number() == locked || failure.number() == timeout || failure.number() == connectionFailed;
}

/// kept: a list that cannot be changed is not told, and those behind it are left as they are; the database
/// still counts as up to date afterwards. That does not hold where another program only had the list at that
/// moment, longer than a statement waits. All three are one transaction, as only the first is looked at: one
/// that was broken off between two lists would never be completed.
void addEnabled(const ServerUpgrade& upgrade, platform::ado::Command& command) {
  platform::sql::Transaction transaction(databaseValues().gConnection->session());
  const auto failure = tolerate([&] {
    for (int n = 1; n <= metaListCount; ++n) {
      subLog(u"Adding blnEnabled field to tblMeta%1"_s.arg(n));
      execute(command, upgrade.addEnabled[n - 1]);
      subLog(u"Making all existing rows in tblMeta%1 enabled!"_s.arg(n));
      execute(command, upgrade.enableAll[n - 1]);
    }
  });
  if (failure && isOfTheMoment(*failure)) throw Failure(*failure);
  transaction.commit();
}

// ---- compaction

/// The file that the path leads to. Where that is a link, the real file beside its target is the one to
/// exchange, or the others who share it would go on with the old one.
QString realDatabase(const QString& path) {
  const QFileInfo file(QString(path).replace(u'\\', u'/'));
  return file.isSymLink() ? file.canonicalFilePath().replace(u'/', u'\\') : path;
}

QString lastPart(const QString& path) {
  return path.mid(path.lastIndexOf(u'\\') + 1);
}

std::shared_ptr<platform::sql::CompactedSource> compactedCopy(const QString& database,
                                                              const QString& temporary) {
  const auto engine = CreateObject<DBEngine>(u"DAO.DBEngine"_s);
  try {
    return engine->CompactDatabase(database, temporary);
  } catch (const Failure& failure) {
    if (failure.number() != platform::sql::errors::databaseExists) throw;
    throw Failure(failure.number(),
                  failure.description() +
                      u" It is left from a compaction that was interrupted, and may be removed as long as "
                      u"\"%1\" stands beside it."_s.arg(lastPart(database)));
  }
}

}  // namespace

void subCheckUpgrade(const QString& strPath) try {
  subLog(u"Attempting to upgrade Access database in path "_s + strPath);
  auto& connection = databaseValues().gConnection;
  connection = CreateObject<platform::ado::Connection>(u"ADODB.Connection"_s);
  connection->setConnectionString(fncAccessConnection(strPath));
  connection->Open();
  bringUpToDate([&] {
    const auto db = CreateObject<DBEngine>(u"DAO.DBEngine"_s)->OpenDatabase(strPath);
    completeCreation(*db);
    addOtherSettings(*db);
    for (int n = 1; n <= metaListCount; ++n) addEnabled(*db, n);
    addColumns(*db, u"tblReports"_s, SchemaState::Body);
  });
} catch (const Failure& failure) {
  subDatabaseFailed(failure, u"subCheckUpgrade"_s);
}

void subCheckSQLUpgrade() try {
  bringUpToDate([] {
    const bool hasOtherSettings = isThere(u"tblOtherSettings"_s);
    const auto command = fncCreateCommand();
    const ServerUpgrade upgrade = fncServerUpgrade(reportTarget().ReportToValue);
    if (!hasOtherSettings) addOtherSettings(upgrade, present(command));
    if (!listsHaveEnabled()) addEnabled(upgrade, present(command));
    execute(present(command), upgrade.addBody);
  });
} catch (const Failure& failure) {
  subDatabaseFailed(failure, u"subCheckSQLUpgrade"_s);
}

void subCompactDatabase(bool /*blnAfterReport*/) try {
  QString folder = fncStripSlash(reportTarget().ReportToValue);
  folder = fncStripSlash(folder.remove(databaseFileName));
  subLog(u"Attempting to compact the database at "_s + folder);
  const QString database = realDatabase(folder + u'\\' + databaseFileName);
  const QString name = lastPart(database);
  const QString temporary = database.chopped(name.size()) + u"tmp"_s + name + u".mdb"_s;
  // Until the copy stands in its place, nobody else gets at the old file: what was stored there would be
  // lost.
  const auto held = compactedCopy(database, temporary);
  subSetupFS();
  auto& files = *shellValues().gFileSystem;
  held->requireUnchanged();
  files.DeleteFile(database);
  files.GetFile(temporary)->setName(name);
} catch (const Failure& failure) {
  subHandleError(failure, u"subCompactDatabase"_s);
}

}  // namespace hourbook

#include "database/modUpgrade.h"

#include "database/DatabaseValues.h"
#include "database/modCreateDB.h"
#include "database/modDBCode.h"
#include "database/ProbeScope.h"
#include "platform/automation/components.h"
#include "platform/sql/errors.h"
#include "shell/modErrorReport.h"
#include "shell/modFileHandling.h"
#include "shell/ShellValues.h"

#include <QFileInfo>

namespace hourbook {

using namespace Qt::StringLiterals;
using namespace platform::dao;
using platform::Failure;
using platform::automation::CreateObject;

namespace {

/// Is the newest column there? A database of an earlier release has none, and then the question itself fails.
/// Failing for another reason says nothing of the database's age and is reported as it is.
bool isCurrent() {
  const ProbeScope probe;
  const auto recordset = fncReturnRecordset(u"select top 1 strBody from tblReports"_s, true);
  const auto& failure = databaseValues().probeFailure;
  const bool older = failure && (failure->number() == platform::sql::errors::noSuchColumn ||
                                 failure->number() == platform::sql::errors::tableNotFound);
  if (failure && !older) subHandleError(*failure, u"fncReturnRecordset"_s);
  if (!recordset) return false;
  recordset->Close();
  return true;
}

// Each of these steps is carried out whole or not at all: where one was broken off, the next start finds what
// it asks for still missing and takes the step again.

void addOtherSettings(Database& db) {
  if (fncTableExists(u"tblOtherSettings"_s, db)) return;
  Transaction transaction(db);
  const auto table =
      fncNewDAOTable(db, u"tblOtherSettings"_s, u"intSettingID"_s, phrases().LNGSETTINGS + u" ID"_s);
  subCreateDAOField(*table, u"strPropName"_s, {}, dbText, textColumnSize);
  subCreateDAOField(*table, u"strPropValue"_s, u"Value"_s, dbMemo);
  db.AppendTableDef(table);
  subCreateDAOField(*db.TableDefs(u"tblPersons"_s), u"strPersonCategory"_s, phrases().LNGCATEGORY, dbText,
                    textColumnSize);
  transaction.CommitTrans();
}

void addEnabled(Database& db, int n) {
  const auto table = db.TableDefs(u"tblMeta%1"_s.arg(n));
  for (const Field& field : table->Fields())
    if (field.Name.compare(u"blnEnabled"_s, Qt::CaseInsensitive) == 0) return;
  Transaction transaction(db);
  subCreateDAOField(*table, u"blnEnabled"_s, phrases().LNGENABLE, dbBoolean);
  db.Execute(u"Update tblMeta%1 set blnEnabled = -1"_s.arg(n));
  transaction.CommitTrans();
}

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
  if (isCurrent()) return;
  const auto db = CreateObject<DBEngine>(u"DAO.DBEngine"_s)->OpenDatabase(strPath);
  addOtherSettings(*db);
  for (int n = 1; n <= 3; ++n) addEnabled(*db, n);
  subCreateDAOField(*db->TableDefs(u"tblReports"_s), u"strBody"_s, u"Body"_s, dbMemo);
} catch (const Failure& failure) {
  subHandleError(failure, u"subCheckUpgrade"_s);
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

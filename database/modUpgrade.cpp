#include "database/modUpgrade.h"

#include "database/DatabaseValues.h"
#include "database/modCreateDB.h"
#include "database/modDBCode.h"
#include "database/ProbeScope.h"
#include "platform/automation/components.h"
#include "shell/modErrorReport.h"
#include "shell/modFileHandling.h"
#include "shell/ShellValues.h"

namespace hourbook {

using namespace Qt::StringLiterals;
using namespace platform::dao;
using platform::Failure;
using platform::automation::CreateObject;

namespace {

/// Is the newest column there? A database of an earlier release has none, and then the question itself fails.
bool isCurrent() {
  const ProbeScope probe;
  const auto recordset = fncReturnRecordset(u"select top 1 strBody from tblReports"_s, true);
  if (!recordset) return false;
  recordset->Close();
  return true;
}

void addOtherSettings(Database& db) {
  if (fncTableExists(u"tblOtherSettings"_s, db)) return;
  const auto table =
      fncCreateDAOTable(db, u"tblOtherSettings"_s, u"intSettingID"_s, phrases().LNGSETTINGS + u" ID"_s);
  subCreateDAOField(*table, u"strPropName"_s, {}, dbText, textColumnSize);
  subCreateDAOField(*table, u"strPropValue"_s, u"Value"_s, dbMemo);
  subCreateDAOField(*db.TableDefs(u"tblPersons"_s), u"strPersonCategory"_s, phrases().LNGCATEGORY, dbText,
                    textColumnSize);
}

void addEnabled(Database& db, int n) {
  const auto table = db.TableDefs(u"tblMeta%1"_s.arg(n));
  for (const Field& field : table->Fields())
    if (field.Name.compare(u"blnEnabled"_s, Qt::CaseInsensitive) == 0) return;
  subCreateDAOField(*table, u"blnEnabled"_s, phrases().LNGENABLE, dbBoolean);
  db.Execute(u"Update tblMeta%1 set blnEnabled = -1"_s.arg(n));
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
  const QString database = folder + u'\\' + databaseFileName;
  const QString temporary = folder + u"\\tmp"_s + databaseFileName + u".mdb"_s;
  // Until the copy stands in its place, nobody else can write into the old file: such a row would be lost.
  const auto held = CreateObject<DBEngine>(u"DAO.DBEngine"_s)->CompactDatabase(database, temporary);
  subSetupFS();
  auto& files = *shellValues().gFileSystem;
  files.DeleteFile(database);
  files.GetFile(temporary)->setName(databaseFileName);
} catch (const Failure& failure) {
  subHandleError(failure, u"subCompactDatabase"_s);
}

}  // namespace hourbook

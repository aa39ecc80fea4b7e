#include "database/modUpgrade.h"

#include "database/DatabaseValues.h"
#include "database/modCreateDB.h"
#include "database/modDBCode.h"
#include "database/ProbeScope.h"
#include "platform/automation/components.h"
#include "platform/scripting/filesystem.h"
#include "shell/modErrorReport.h"
#include "shell/modFileHandling.h"
#include "shell/ShellValues.h"

namespace hourbook {

using platform::Failure;
namespace dao = platform::dao;

namespace {

const QString databaseName = QStringLiteral("Hourbook3.mdb");

void openSharedConnection(const QString& path) {
  auto connection =
      platform::automation::CreateObject<platform::ado::Connection>(QStringLiteral("ADODB.Connection"));
  connection->setConnectionString(fncAccessConnection(path));
  databaseValues().gConnection = connection;
  connection->Open();
}

bool isCurrent() {
  const ProbeScope mayFail;
  const auto newest = fncReturnRecordset(QStringLiteral("select top 1 strBody from tblReports"), true);
  if (!newest) return false;
  newest->Close();
  return true;
}

void addOtherSettings(dao::Database& db) {
  if (fncTableExists(QStringLiteral("tblOtherSettings"), db)) return;
  const auto table = fncCreateDAOTable(db, QStringLiteral("tblOtherSettings"), QStringLiteral("intSettingID"),
                                       phrases().LNGSETTINGS + QStringLiteral(" ID"));
  subCreateDAOField(*table, QStringLiteral("strPropName"), QString(), dao::dbText, 255);
  subCreateDAOField(*table, QStringLiteral("strPropValue"), QStringLiteral("Value"), dao::dbMemo);
  subCreateDAOField(*db.TableDefs(QStringLiteral("tblPersons")), QStringLiteral("strPersonCategory"),
                    phrases().LNGCATEGORY, dao::dbText, 255);
}

bool hasField(const dao::TableDef& table, const QString& name) {
  for (const dao::Field& field : table.Fields())
    if (field.Name == name) return true;
  return false;
}

void addEnabled(dao::Database& db, int n) {
  const QString name = QStringLiteral("tblMeta%1").arg(n);
  const auto table = db.TableDefs(name);
  if (hasField(*table, QStringLiteral("blnEnabled"))) return;
  subCreateDAOField(*table, QStringLiteral("blnEnabled"), phrases().LNGENABLE, dao::dbBoolean);
  db.Execute(QStringLiteral("Update ") + name + QStringLiteral(" set blnEnabled = -1"));
}

void upgrade(const QString& path) {
  const auto engine = platform::automation::CreateObject<dao::DBEngine>(QStringLiteral("DAO.DBEngine"));
  const auto db = engine->OpenDatabase(path);
  addOtherSettings(*db);
  for (int n = 1; n <= 3; ++n) addEnabled(*db, n);
  subCreateDAOField(*db->TableDefs(QStringLiteral("tblReports")), QStringLiteral("strBody"),
                    QStringLiteral("Body"), dao::dbMemo);
  db->Close();
}

/// The folder that the target names, whether it names the folder itself or the file.
QString targetFolder() {
  QString folder = fncStripSlash(reportTarget().ReportToValue);
  folder.remove(databaseName);
  return fncStripSlash(folder);
}

}  // namespace

void subCheckUpgrade(const QString& strPath) try {
  subLog(QStringLiteral("Attempting to upgrade Access database in path ") + strPath);
  openSharedConnection(strPath);
  if (!isCurrent()) upgrade(strPath);
} catch (const Failure& failure) {
  subReportUnlessProbing(failure, QStringLiteral("subCheckUpgrade"));
}

void subCompactDatabase(bool blnAfterReport) try {
  Q_UNUSED(blnAfterReport);
  const QString folder = targetFolder();
  subLog(QStringLiteral("Attempting to compact the database at ") + folder);
  const QString path = folder + QStringLiteral("\\") + databaseName;
  const QString temporary = folder + QStringLiteral("\\tmp") + databaseName + QStringLiteral(".mdb");
  const auto engine = platform::automation::CreateObject<dao::DBEngine>(QStringLiteral("DAO.DBEngine"));
  const auto locked = engine->CompactDatabase(path, temporary);
  subSetupFS();
  shellValues().gFileSystem->DeleteFile(path);
  shellValues().gFileSystem->GetFile(temporary)->setName(databaseName);
} catch (const Failure& failure) {
  subHandleError(failure, QStringLiteral("subCompactDatabase"));
}

}  // namespace hourbook

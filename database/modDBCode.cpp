#include "database/modDBCode.h"

#include "database/DatabaseValues.h"
#include "database/modUpgrade.h"
#include "database/ProbeScope.h"
#include "platform/automation/components.h"
#include "platform/process/process.h"
#include "platform/scripting/filesystem.h"
#include "shell/modErrorReport.h"
#include "shell/modFileHandling.h"
#include "shell/ShellValues.h"

namespace hourbook {

using platform::Failure;
namespace ado = platform::ado;

namespace {

constexpr qint32 targetASP = 1, targetAccess = 2, targetSQLServer = 3, targetBilling = 4;

/// A target of a server keeps its own string, as long as it looks like one ("Provider=...").
QString connectionText() {
  ReportTarget& target = reportTarget();
  if (target.ReportTo != targetSQLServer) return fncGetConnection();
  if (!target.ReportToValue.startsWith(QStringLiteral("Pro"))) fncGetConnection();
  return reportTarget().ReportToValue;
}

QString databaseFolder() {
  QString& folder = databaseValues().gReportValue;
  if (folder.isEmpty()) folder = platform::process::Process::current().programFolder();
  folder = fncStripSlash(folder);
  return folder;
}

QString useAccess(const QString& path) {
  ReportTarget& target = reportTarget();
  if (target.ReportTo != targetBilling && target.ReportTo != targetASP) {
    target.ReportTo = targetAccess;
    target.ReportToValue = path;
  }
  subCheckUpgrade(path);
  return fncAccessConnection(path);
}

QString readConnectionFile(const QString& file) {
  const auto stream = shellValues().gFileSystem->OpenTextFile(file);
  const QString text = stream->AtEndOfStream() ? QString() : stream->ReadAll();
  stream->Close();
  return text;
}

QString chooseDatabase(const QString& path) {
  DatabaseValues& values = databaseValues();
  if (!values.blnMayCreateDatabase) return {};
  if (!values.chooseConnection)
    throw Failure(
        445, QStringLiteral("There is no database in %1, and this version cannot ask for one.").arg(path));
  return values.chooseConnection(path);
}

/// The cursor and the lock that the caller's purpose needs.
void prepare(ado::Recordset& rs, bool blnReadOnly, bool blnBatch) {
  rs.CursorLocation = ado::adUseClient;
  rs.CursorType = blnReadOnly ? ado::adOpenStatic : ado::adOpenDynamic;
  if (blnReadOnly)
    rs.LockType = ado::adLockReadOnly;
  else
    rs.LockType = blnBatch ? ado::adLockBatchOptimistic : ado::adLockOptimistic;
}

}  // namespace

QString fncAccessConnection(const QString& path) {
  return QStringLiteral("Provider=Microsoft.Jet.OLEDB.4.0;Data Source=") + path;
}

void subSetupConnection() try {
  subLog(QStringLiteral("Checking if the ADO connection is up or not"));
  if (databaseValues().gConnection) return;  // not tested: a dropped one shows at the next statement
  const QString text = connectionText();
  if (text.isEmpty()) {
    databaseValues().gConnection.reset();
    return;
  }
  subLog(QStringLiteral("Trying to open a connection to the database with the connection string ") + text);
  auto connection = platform::automation::CreateObject<ado::Connection>(QStringLiteral("ADODB.Connection"));
  databaseValues().gConnection = connection;  // kept: a failed Open leaves a closed object here
  connection->setConnectionString(text);
  connection->Open();
} catch (const Failure& failure) {
  subReportUnlessProbing(failure, QStringLiteral("subSetupConnection"));
}

std::shared_ptr<ado::Recordset> fncReturnRecordset(const QString& strSource, bool blnReadOnly,
                                                   bool blnBatch) try {
  subSetupConnection();
  subLog(QStringLiteral("Creating a new ADOB.Recordset. If this fails, please try re-installing MDAC"));
  auto rs = platform::automation::CreateObject<ado::Recordset>(QStringLiteral("ADODB.Recordset"));
  subLog(QStringLiteral("Attempting to open a recordset from ") + strSource);
  const auto& connection = databaseValues().gConnection;
  if (!connection) return nullptr;
  rs->setActiveConnection(connection);
  rs->setSource(strSource);
  prepare(*rs, blnReadOnly, blnBatch);
  rs->Open();
  return rs;
} catch (const Failure& failure) {
  subReportUnlessProbing(failure, QStringLiteral("fncReturnRecordset"));
  return nullptr;
}

std::shared_ptr<ado::Command> fncCreateCommand() try {
  subLog(QStringLiteral("Creating a new ADODB.Command object"));
  subSetupConnection();
  const auto& connection = databaseValues().gConnection;
  if (!connection) return nullptr;
  auto command = platform::automation::CreateObject<ado::Command>(QStringLiteral("ADODB.Command"));
  command->setActiveConnection(connection);
  command->CommandType = ado::adCmdText;
  return command;
} catch (const Failure& failure) {
  subReportUnlessProbing(failure, QStringLiteral("fncCreateCommand"));
  return nullptr;
}

QString fncGetConnection() try {
  for (;;) {
    subLog(QStringLiteral("Checking if database .mdb file exists"));
    subSetupFS();
    auto& files = *shellValues().gFileSystem;
    const QString folder = databaseFolder();
    const QString path = folder + QStringLiteral("\\Hourbook3.mdb");
    if (files.FileExists(path)) return useAccess(path);
    const QString connectionFile = folder + QStringLiteral("\\HourbookConnection.txt");
    if (!files.FileExists(connectionFile)) return chooseDatabase(path);
    const QString text = readConnectionFile(connectionFile);
    if (!text.isEmpty()) {
      // the target is set before anything else reads it: opening a recordset comes back to subSetupConnection
      reportTarget().ReportTo = targetSQLServer;
      reportTarget().ReportToValue = text;
      return text;
    }
    files.DeleteFile(connectionFile, true);
  }
} catch (const Failure& failure) {
  subReportUnlessProbing(failure, QStringLiteral("fncGetConnection"));
  return {};
}

}  // namespace hourbook

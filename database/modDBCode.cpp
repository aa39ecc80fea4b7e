#include "database/modDBCode.h"

#include "database/DatabaseValues.h"
#include "database/frmChooseConnection.h"
#include "database/frmSQLLogon.h"
#include "database/modCreateDB.h"
#include "database/modCreateSQLDB.h"
#include "database/modUpgrade.h"
#include "database/ProbeScope.h"
#include "platform/automation/components.h"
#include "platform/dao/dao.h"
#include "platform/files/atomicfile.h"
#include "platform/process/process.h"
#include "platform/sql/errors.h"
#include "platform/sql/oledbkeys.h"
#include "shell/modErrorReport.h"
#include "shell/modFileHandling.h"
#include "shell/ShellValues.h"
#include "shell/Tolerate.h"

#include <QFile>
#include <QFileInfo>
#include <QScopeGuard>

namespace hourbook {

using namespace Qt::StringLiterals;
using platform::Failure;
using platform::ado::Command;
using platform::ado::Connection;
using platform::ado::Recordset;
using platform::automation::CreateObject;

namespace {

constexpr qint32 targetAsp = 1;
constexpr qint32 targetAccess = 2;
constexpr qint32 targetSqlServer = 3;
constexpr qint32 targetBilling = 4;

constexpr qint32 errNotSupported = 445;  // "Object doesn't support this action"

platform::scripting::FileSystemObject& files() {
  subSetupFS();
  return *shellValues().gFileSystem;
}

/// The whole connection text; an empty file is deleted, as it says nothing.
QString readConnectionFile(const QString& path) {
  QString text;
  const auto stream = files().OpenTextFile(path, 1, false);
  const bool empty = stream->AtEndOfStream();
  if (!empty) text = stream->ReadAll();
  stream->Close();
  if (empty) files().DeleteFile(path, true);
  return text;
}

QString useAccessFile(const QString& path) {
  ReportTarget& target = reportTarget();
  if (target.ReportTo != targetBilling && target.ReportTo != targetAsp) {
    target.ReportTo = targetAccess;
    target.ReportToValue = path;
  }
  subCheckUpgrade(path);
  return fncAccessConnection(path);
}

void setServer(const QString& connection) {
  ReportTarget& target = reportTarget();
  target.ReportTo = targetSqlServer;
  target.ReportToValue = connection;
}

QString useServer(const QString& connection) {
  // before anything connects: `subSetupConnection` then takes this text without looking into the folder again
  setServer(connection);
  // but for a text that does not begin as it expects, which leads here a second time
  bool& checking = databaseValues().blnCheckingServer;
  if (checking) return connection;
  checking = true;
  const auto done = qScopeGuard([&checking] { checking = false; });
  subCheckSQLUpgrade();
  return connection;
}

/// Whoever may read the file may read the password in it.
void writeConnectionFile(const QString& path, const QString& connection) {
  namespace files = platform::files;
  bool secret = true;
  // a text that cannot be read is taken for one with a password
  tolerate([&] {
    const platform::sql::ConnectionString text(connection);
    secret = !platform::sql::oledbkeys::firstValue(text, {"Password", "PWD"}).isEmpty();
  });
  const auto result =
      files::replaceFile(platform::scripting::systemPath(path), connection.toUtf8(), std::nullopt,
                         secret ? files::FileMode::OwnerOnly : files::FileMode::Usual);
  if (result.outcome != files::Outcome::Written)
    throw Failure(result.missing ? platform::failure::pathNotFound : platform::failure::permissionDenied,
                  result.error);
}

/// kept: what the dialog gives is taken as it is, an empty text after Cancel too: an empty file counts as
/// none
QString useNewConnection(const QString& path, const QString& connection) {
  writeConnectionFile(path, connection);
  setServer(connection);
  return connection;
}

QString askForServer() {
  frmSQLLogon form;
  databaseValues().frmSQLLogon(form);
  return form.strConnection;
}

QString createAccess(const QString& path) {
  subCreateHBDatabase(path);
  subCheckUpgrade(path);
  ReportTarget& target = reportTarget();
  target.ReportTo = targetAccess;
  target.ReportToValue = path;
  return fncAccessConnection(path);
}

QString createByUsersChoice(const QString& database, const QString& connectionFile) {
  const DatabaseValues& values = databaseValues();
  if (!values.frmChooseConnection)
    throw Failure(errNotSupported, u"There is no database in \""_s + values.gReportValue +
                                       u"\", and this version of the program has no dialog to make one."_s);
  const qint16 option = values.frmChooseConnection(creationScriptName).intConnectionOption;
  if (option == frmChooseConnection::newAccessDatabase) return createAccess(database);
  if (option == 0) return {};  // closed without a choice
  if (!values.frmSQLLogon)
    throw Failure(errNotSupported,
                  u"This version of the program has no dialog to ask for a server and a database on it."_s);
  return useNewConnection(connectionFile, option == frmChooseConnection::newSQLDatabase
                                              ? fncCreateSQLDB(scriptDatabaseName)
                                              : askForServer());
}

QString behindLinks(const QString& path) {
  constexpr int mostLinks = 16;
  QString real = platform::scripting::systemPath(path);
  for (int followed = 0; followed < mostLinks; ++followed) {
    const QString target = QFile::symLinkTarget(real);
    if (target.isEmpty()) break;
    real = target;
  }
  return real;
}

QString compactedName(const QFileInfo& database) {
  return u"tmp"_s + database.fileName() + u".mdb"_s;
}

/// A missing database whose compacted copy stands alone: a compaction was interrupted between removing the
/// old file and renaming the copy. Giving it its name is left to who can see what else happened in the
/// folder; what must not happen is that a missing database is taken for one that never was, and a new one is
/// made beside it.
[[noreturn]] void refuseCopyAlone(const QFileInfo& database) {
  throw Failure(
      platform::failure::fileNotFound,
      u"The database \"%1\" is missing from \"%2\", and its compacted copy \"%3\" stands there: a "
      u"compaction was interrupted before the copy was renamed. Unless somebody has taken the database away, "
      u"the copy holds all that was stored. Rename it to \"%1\", and start again."_s.arg(
          database.fileName(), database.path(), compactedName(database)));
}

enum class Missing { BackAgain, CopyAlone, Absent };

/// Of a database that was missing a moment ago, as it is whenever another program compacts it: that one holds
/// its lock, and is waited for.
Missing lookAgain(const QString& database) {
  const QFileInfo file(behindLinks(database));
  // the copy first: once it is gone, the database is there
  const bool copied = files().FileExists(file.path() + u'/' + compactedName(file));
  if (files().FileExists(database)) return Missing::BackAgain;
  if (!copied) return Missing::Absent;
  const auto failure = tolerate(
      [&] { CreateObject<platform::dao::DBEngine>(u"DAO.DBEngine"_s)->OpenDatabase(file.filePath()); });
  if (!failure) return Missing::BackAgain;
  if (failure->number() != platform::sql::errors::fileNotFound) throw Failure(*failure);
  return Missing::CopyAlone;
}

/// What the folder leads to; none when the search has to begin again.
std::optional<QString> lookIntoFolder() {
  DatabaseValues& values = databaseValues();
  if (values.gReportValue.isEmpty())
    values.gReportValue = platform::process::Process::current().programFolder();
  values.gReportValue = fncStripSlash(values.gReportValue);
  const QString database = values.gReportValue + u'\\' + databaseFileName;
  if (files().FileExists(database)) return useAccessFile(database);
  // before the connection file is looked for: the database wins over it, also while it is exchanged
  const Missing missing = lookAgain(database);
  if (missing == Missing::BackAgain) return std::nullopt;
  const QString connection = values.gReportValue + u'\\' + connectionFileName;
  if (files().FileExists(connection)) {
    const QString text = readConnectionFile(connection);
    if (text.isEmpty()) return std::nullopt;
    return useServer(text);
  }
  if (missing == Missing::CopyAlone) refuseCopyAlone(QFileInfo(behindLinks(database)));
  return values.blnMayCreateDatabase ? createByUsersChoice(database, connection) : QString();
}

QString connectionString() {
  ReportTarget& target = reportTarget();
  if (target.ReportTo != targetSqlServer) return fncGetConnection();
  // the result is not looked at: where a connection file was found, it stands in the target now
  if (!target.ReportToValue.startsWith(u"Pro"_s)) fncGetConnection();
  return target.ReportToValue;
}

bool isOpenFor(const std::shared_ptr<Connection>& connection, const QString& text) {
  return connection && connection->State() == platform::ado::adStateOpen &&
         connection->ConnectionString() == text;
}

}  // namespace

QString fncAccessConnection(const QString& path) {
  return u"Provider=Microsoft.Jet.OLEDB.4.0;Data Source="_s + path;
}

void subSetupConnection() try {
  subLog(u"Checking if the ADO connection is up or not"_s);
  auto& connection = databaseValues().gConnection;
  if (connection) return;
  const QString text = connectionString();
  if (text.isEmpty()) return;
  // kept: the whole text, its password too; whoever is sent an error mail about it can read that
  subLog(u"Trying to open a connection to the database with the connection string "_s + text);
  // the look at the database's age has just opened this very one; another would cost a start its time again
  if (isOpenFor(connection, text)) return;
  connection = CreateObject<Connection>(u"ADODB.Connection"_s);
  connection->setConnectionString(text);
  // kept: when this fails, the closed connection stays; the next use fails at the statement that needs it
  connection->Open();
} catch (const Failure& failure) {
  subDatabaseFailed(failure, u"subSetupConnection"_s);
}

std::shared_ptr<Recordset> fncReturnRecordset(const QString& strSource, bool blnReadOnly, bool blnBatch) try {
  namespace ado = platform::ado;
  subSetupConnection();
  subLog(u"Creating a new ADOB.Recordset. If this fails, please try re-installing MDAC"_s);
  auto recordset = CreateObject<Recordset>(u"ADODB.Recordset"_s);
  subLog(u"Attempting to open a recordset from "_s + strSource);
  if (!databaseValues().gConnection) return nullptr;
  recordset->setActiveConnection(databaseValues().gConnection);
  recordset->setSource(strSource);
  recordset->CursorLocation = ado::adUseClient;
  recordset->CursorType = blnReadOnly ? ado::adOpenStatic : ado::adOpenDynamic;
  recordset->LockType = ado::adLockReadOnly;
  if (!blnReadOnly) recordset->LockType = blnBatch ? ado::adLockBatchOptimistic : ado::adLockOptimistic;
  recordset->Open();
  return recordset;
} catch (const Failure& failure) {
  if (!databaseValues().blnProbing) subDatabaseFailed(failure, u"fncReturnRecordset"_s);
  databaseValues().probeFailure = failure;
  subLog(u"fncReturnRecordset: "_s + failure.description());
  return nullptr;
}

std::shared_ptr<Command> fncCreateCommand() try {
  subLog(u"Creating a new ADODB.Command object"_s);
  subSetupConnection();
  if (!databaseValues().gConnection) return nullptr;
  auto command = CreateObject<Command>(u"ADODB.Command"_s);
  command->setActiveConnection(databaseValues().gConnection);
  command->CommandType = platform::ado::adCmdText;
  return command;
} catch (const Failure& failure) {
  subDatabaseFailed(failure, u"fncCreateCommand"_s);
}

QString fncGetConnection() try {
  subLog(u"Checking if database .mdb file exists"_s);
  std::optional<QString> found;
  while (!found) found = lookIntoFolder();
  return *found;
} catch (const Failure& failure) {
  subDatabaseFailed(failure, u"fncGetConnection"_s);
}

}  // namespace hourbook

#pragma once
#include "database/ReportTarget.h"
#include "platform/ado/connection.h"
#include "platform/basic/failure.h"
#include "shell/SharedValues.h"

#include <functional>
#include <optional>

namespace hourbook {

class frmSQLLogon;

/// What the user chose in the dialog for a new database.
struct ConnectionChoice {
  // 1 new Access database, 2 new and 3 existing SQL Server database, 0 when the dialog was closed without one
  qint16 intConnectionOption = 1;
  bool blnLoadExampleData = false;
};

struct DatabaseValues {
  /// The one connection; null until the first use and after it was closed.
  std::shared_ptr<platform::ado::Connection> gConnection;
  /// The database folder or connection text, as the personal settings held it at start. Empty: the program's
  /// folder.
  QString gReportValue;
  /// May a missing database be made by asking the user? Nothing in the report program turns it on.
  bool blnMayCreateDatabase = false;
  /// Shows `frmChooseConnection`, given the name of the creation script. Filled by who has the dialog; empty:
  /// a missing database cannot be made.
  std::function<ConnectionChoice(const QString& strSQLScriptFileName)> frmChooseConnection;
  /// Shows the logon dialog until it is hidden. The caller keeps the form, so that its fields stand when it
  /// is shown again. Filled by who has the window; empty: no server can be chosen.
  std::function<void(hourbook::frmSQLLogon& form)> frmSQLLogon;
  /// True while the upgrade looks for the newest column: a failing recordset is then only logged.
  bool blnProbing = false;
  /// True while an AskingScope lives.
  bool blnAsking = false;
  /// True while the database of a connection file is brought up to date.
  bool blnCheckingServer = false;
  /// What the question failed with, inside or after the newest ProbeScope.
  std::optional<platform::Failure> probeFailure;
  /// The common settings' target; owned by them. Null until they are made: then `fallbackTarget` is used.
  ReportTarget* target = nullptr;
  ReportTarget fallbackTarget;
};

inline DatabaseValues& databaseValues() {
  return Shared<DatabaseValues>::current();
}
inline ReportTarget& reportTarget() {
  DatabaseValues& values = databaseValues();
  return values.target ? *values.target : values.fallbackTarget;
}

/// Names of the files in the database folder.
inline const QString databaseFileName = QStringLiteral("Hourbook3.mdb");
inline const QString connectionFileName = QStringLiteral("HourbookConnection.txt");
inline const QString creationScriptName = QStringLiteral("CreateDBHB.sql");

}  // namespace hourbook

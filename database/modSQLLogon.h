#pragma once
#include <QString>

namespace hourbook {

/// What the fields of the logon dialog hold.
struct SQLLogon {
  QString strServer, strDatabase, strUserName, strPassword;
  bool blnIntegratedSecurity = false;
  bool operator==(const SQLLogon&) const = default;
};

/// The connection string for an SQL Server database, in the fixed order of its parts. The texts stand in it
/// as they were typed: nothing is trimmed, and a ";" in one of them begins a new part. `blnServerConnOnly`:
/// without the database, for one that is yet to be made.
QString fncBuildSQLConnection(const SQLLogon& logon, bool blnServerConnOnly);

/// What of a connection string stands in fields. Keys are looked for exactly, with case; all others are
/// passed over. A value ends at its first "=". kept: of the key "User ID" a third part is taken, behind a
/// further "=", so that a plain user name does not come back.
SQLLogon fncSplitSQLConnection(const QString& strConnection);

}  // namespace hourbook

#pragma once
#include "platform/sql/driver.h"

namespace platform::sql::odbc {

inline constexpr int connectTimeoutSeconds = 15;

/// What an OLE DB connection string for SQL Server is in the driver manager's own keys. `driver` is the name
/// or the file of a driver for it. Keys that only OLE DB knows are left out, Persist Security Info among
/// them.
///
/// The server is "host", "host,port", "host\instance" (whose port the server tells over UDP), each with
/// "tcp:" before it or not; "." and "(local)" are this machine. Where it names no port, the key Port may.
/// Failure -2147467259 for none, for one that is reached by other means than TCP, for one that holds a "=",
/// where a ";" is missing before the next key, and for a port that is none.
QString connectString(const ConnectionString& connection, const QString& driver);

/// "database on server", what failures call it; never with the password.
QString labelOf(const ConnectionString& connection);

/// Windows' own user; a Kerberos ticket stands for him here.
bool isTrusted(const ConnectionString& connection);

/// Seconds to wait for the server: "Connect Timeout", "Connection Timeout" or "Timeout", 1 to 600; 15 for any
/// other.
int connectTimeout(const ConnectionString& connection);

}  // namespace platform::sql::odbc

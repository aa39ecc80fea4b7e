#pragma once
#include "platform/sql/driver.h"

namespace platform::sql::odbc {

inline constexpr int connectTimeoutSeconds = 15;

/// What an OLE DB connection string for SQL Server is in the driver manager's own keys. `driver` is the name
/// or the file of a driver for it. Keys that only OLE DB knows are left out, Persist Security Info among
/// them.
QString connectString(const ConnectionString& connection, const QString& driver);

/// "database on server", what failures call it; never with the password.
QString labelOf(const ConnectionString& connection);

/// Seconds to wait for the server: "Connect Timeout" or "Connection Timeout", 1 to 600; 15 for any other.
int connectTimeout(const ConnectionString& connection);

}  // namespace platform::sql::odbc

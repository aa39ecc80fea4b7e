#pragma once
#include "platform/sql/driver.h"

#include <initializer_list>

// The keys of an OLE DB connection string, each under all the names that it goes by.
namespace platform::sql::oledbkeys {

inline constexpr int longestTimeoutSeconds = 600;

/// The value of the first of these keys that has one.
inline QString firstValue(const ConnectionString& connection, std::initializer_list<const char*> keys) {
  for (const char* key : keys) {
    const QString value = connection.value(QString::fromLatin1(key));
    if (!value.isEmpty()) return value;
  }
  return {};
}

inline bool isYes(const QString& value) {
  for (const char* yes : {"yes", "true", "sspi", "1", "mandatory", "strict"})
    if (value.compare(QLatin1String(yes), Qt::CaseInsensitive) == 0) return true;
  return false;
}

inline QString server(const ConnectionString& connection) {
  return firstValue(connection, {"Data Source", "Server", "Address", "Addr", "Network Address"});
}

inline QString database(const ConnectionString& connection) {
  return firstValue(connection, {"Initial Catalog", "Database"});
}

}  // namespace platform::sql::oledbkeys

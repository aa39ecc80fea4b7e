#include "platform/sql/sqlite/dataversion.h"

#include <QSqlDatabase>
#include <QSqlDriver>
#include <QVariant>

#include <sqlite3.h>

namespace platform::sql::sqlite {

std::optional<quint32> dataVersion(const QSqlDatabase& database) {
  const QVariant handle = database.driver()->handle();
  if (qstrcmp(handle.typeName(), "sqlite3*") != 0) return std::nullopt;
  auto* const connection = *static_cast<sqlite3* const*>(handle.data());
  unsigned version = 0;
  if (!connection ||
      sqlite3_file_control(connection, "main", SQLITE_FCNTL_DATA_VERSION, &version) != SQLITE_OK)
    return std::nullopt;
  return version;
}

}  // namespace platform::sql::sqlite

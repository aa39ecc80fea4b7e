#pragma once
#include <QtGlobal>

#include <optional>

class QSqlDatabase;

namespace platform::sql::sqlite {

/// A number that is another one after each committed change of the database, whoever has made it: as the
/// connection has found it when it last read. It stays the same while a statement is being read. None where
/// the engine does not tell.
std::optional<quint32> dataVersion(const QSqlDatabase& database);

}  // namespace platform::sql::sqlite

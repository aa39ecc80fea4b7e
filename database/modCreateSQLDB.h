#pragma once
#include <QString>

namespace hourbook {

/// Makes a database on a server by the creation script beside the program, and asks for the server as often
/// as it takes. `strDBName` is the database's name in the script, for which the typed one is put in. The
/// connection string of the new database, or an empty text when there is no script. Cancel ends the program.
QString fncCreateSQLDB(const QString& strDBName);

/// The database's name in the creation script.
inline const QString scriptDatabaseName = QStringLiteral("Hourbook3SQL");

}  // namespace hourbook

#pragma once
#include <QString>

namespace hourbook {

/// Brings the Access database at the path up to date, and leaves the shared connection open on it. Only the
/// newest column is looked for: a database that has it is current.
void subCheckUpgrade(const QString& strPath);

/// The same for a server's database, through the shared connection. The report target must hold the
/// connection string already.
void subCheckSQLUpgrade();

/// Compacts the database that the report target names. The shared connection must be closed, and nobody else
/// may be using the file. kept: the argument is not looked at.
void subCompactDatabase(bool blnAfterReport);

}  // namespace hourbook

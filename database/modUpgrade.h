#pragma once
#include <QString>

namespace hourbook {

/// Brings an Access database up to date. It looks for the newest column alone; when that is there, nothing is
/// done. Leaves the shared connection open on the file.
void subCheckUpgrade(const QString& strPath);

/// Compacts the Access database that the report target names. The shared connection must be closed.
/// kept: the argument is not looked at.
void subCompactDatabase(bool blnAfterReport);

}  // namespace hourbook

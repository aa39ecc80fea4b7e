#pragma once
#include "platform/ado/recordset.h"

#include <memory>

namespace hourbook {

/// Opens the shared connection when there is none yet. Afterwards it is open, or null when no database was
/// found; nothing is reported then, callers test for it.
void subSetupConnection();

/// An open recordset over `strSource`, a table name or a select statement; null when there is no database.
/// Writable unless `blnReadOnly`.
std::shared_ptr<platform::ado::Recordset> fncReturnRecordset(const QString& strSource,
                                                             bool blnReadOnly = false, bool blnBatch = false);

/// A text command on the shared connection; null when there is no database.
std::shared_ptr<platform::ado::Command> fncCreateCommand();

/// The connection string that the database folder (`gReportValue`) leads to, or an empty text. May change the
/// report target: an .mdb selects Access, a filled HourbookConnection.txt the server.
QString fncGetConnection();

/// The connection string of an Access database file.
QString fncAccessConnection(const QString& path);

}  // namespace hourbook

#pragma once
#include "platform/ado/recordset.h"
#include "platform/basic/failure.h"

#include <functional>
#include <memory>
#include <optional>

namespace hourbook {

/// Results of a row.
inline constexpr qint64 resultAccepted = 1;
inline constexpr qint64 resultNoAnswer = 4;
inline constexpr qint64 resultNoPerson = 5;
inline constexpr qint64 resultMissingValue = 6;

/// A failure whose report has to wait: telling it ends the process, and the rows stored so far still need
/// stamps.
struct PendingError {
  platform::Failure failure;
  QString procedure;
};

/// Stores the rows of a report recordset in `tblReports` and gives each its result, row by row, each
/// committed by itself. With `blnUpdateInput` the results are written into `rs`, which is returned, else into
/// a recordset of its own. Afterwards the shared connection is closed. A failure leaves the rows not reached
/// without a result; it is put into `pending`, or reported (which ends the process) when the caller has given
/// none. `beforeFirstRow` is called, with the person's key, when rows are about to be stored; where it fails,
/// none is.
std::shared_ptr<platform::ado::Recordset> fncReportToAccess(
    const std::shared_ptr<platform::ado::Recordset>& rs, bool blnUpdateInput,
    std::optional<PendingError>* pending = nullptr,
    const std::function<void(qint16 intPersonID)>& beforeFirstRow = {});

/// Key of a value in list 1 to 3 of the common settings; nothing when the list does not have it.
std::optional<qint32> fncMetaKey(int n, const QString& name);

/// An empty recordset of results: `intRowCounter`, `intResult`.
std::shared_ptr<platform::ado::Recordset> fncSetupReturRS();

/// Key of the current user in `tblPersons`, who is added if need be; 0 when that failed.
qint16 fncGetPersonID(std::optional<PendingError>* pending = nullptr);

/// Asks until there is an answer.
QString fncAskDepartment();

}  // namespace hourbook

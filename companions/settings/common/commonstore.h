#pragma once
#include "companions/settings/common/commonbuffer.h"
#include "companions/settings/page.h"
#include "platform/basic/failure.h"

namespace hourbook {

/// What was chosen for the reports of a value that is no longer in its list.
struct RemovedAnswer {
  qint16 outcome = 3;  // as frmResolveRemovedItem gives it: 1 remove, 2 move, 3 nothing
  QString moveTo;      // for 2
};

/// Number of the failure of a save that found the settings changed by somebody else.
inline constexpr qint32 changedByOthersNumber = -2147217864;

/// The common settings of the place, read through `cGlobalSettings`. Nothing is written: the rows that the
/// product adds to a new database while reading are rolled back. Throws platform::Failure when they cannot be
/// read. A database that is yet to be made gives what it will hold then.
CommonBuffer readCommonSettings(const ReportPlace& place);

/// Saves through `SaveGlobalSettings` and writes the billing row, all in one transaction: whole or not at
/// all. `answers` belong to `buffer.removedValues()`, in its order. The stored and the edited side are the
/// saved one afterwards. Throws platform::Failure, with the number above when somebody else has changed the
/// settings.
void writeCommonSettings(const ReportPlace& place, CommonBuffer& buffer, const QList<RemovedAnswer>& answers);

}  // namespace hourbook

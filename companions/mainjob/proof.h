#pragma once
#include "app/Configuration.h"
#include "platform/calendar/store.h"

namespace companions {

/// A row as it stood in the list before it was reported.
struct ListedRow {
  platform::calendar::ItemKey key;
  QString subject;
  QDateTime start;
  QString hours;
  QString status;
};

/// Reads database and calendar anew, without the program's own connections, and prints what was reported row
/// by row. True only when each row that was not posted stands in the database once and its appointment is
/// stamped, and there was at least one.
bool proveReported(const QList<ListedRow>& listed, const hourbook::Configuration& configuration,
                   const QString& databaseFile);

}  // namespace companions

#pragma once
#include "platform/basic/value.h"
#include "shell/SharedValues.h"
#include "workspace/GridView.h"

#include <QList>
#include <QStringList>

#include <functional>
#include <memory>
#include <optional>

namespace platform::outlook {
class AppointmentItem;
}

namespace hourbook {

class cRowInfo;
class ReportForm;

struct ListedPeriod {
  platform::basic::Date start, end;
};

struct WorkspaceValues {
  /// The report form in use; set by `Main` just before the form loads.
  std::shared_ptr<ReportForm> gReportForm;
  /// Generation of the spreadsheet and chart component: 9, 10 or 11. Set by `Main`.
  qint16 gOWCVersion = 0;
  /// Row of the list that was written last; 1 means that it has none. Set by each fetch.
  qint16 gLastRow = 1;
  /// How long the last fetch took; none before there was one. Set by each fetch.
  std::optional<qint64> fetchMilliseconds;
  /// The period of the rows; none as long as there was no fetch, or none that could compute it.
  std::optional<ListedPeriod> listed;
  /// What the calendar said of others' changes just before the rows were fetched; none: it could not say. Set
  /// by each fetch.
  std::optional<QString> othersTag;
  /// The rows as the last fetch wrote them, from row 2 on.
  QList<QStringList> textsFetched;
  /// True while the list follows the calendar: nothing of what happens to it is the user's business yet.
  bool following = false;
  /// Until then the list does not follow the calendar again; of the clock that only goes on.
  qint64 restsUntil = 0;
  /// True while the list is being rebuilt or reported: the sheet's own events then do nothing.
  bool gFetching = false;
  /// True while `chkGrid` is set.
  bool gGridMode = false;
  /// True when the date pickers could be added to the form. Set while the form loads.
  bool gHasDatePickers = false;
  /// True while code sets `cmbWeek`, so that the change fetches nothing.
  bool gIgnoreWeekChange = false;
  /// Sheet row of the last selection or edit; the row before and after the edit.
  qint16 gCurrentRow = 0;
  std::shared_ptr<cRowInfo> gOldRow;
  std::shared_ptr<cRowInfo> gNewRow;
  /// The appointment whose row `gOldRow` was read for the change to come; null when that change has come. Set
  /// by the newer forms. A fetch makes the appointments anew, so what was read before it fits none of them.
  std::shared_ptr<platform::outlook::AppointmentItem> oldRowOf;
  /// The appointment whose row has the drop-downs, in sight or not; null: none has. Set by each selection.
  std::shared_ptr<platform::outlook::AppointmentItem> dropDownsOf;

  /// The week grid; null as long as nothing makes one. Made by `Main`, or when `chkGrid` is first touched.
  std::shared_ptr<GridView> gGridView;
  std::function<std::shared_ptr<GridView>()> newGridView;
};

inline WorkspaceValues& workspaceValues() {
  return Shared<WorkspaceValues>::current();
}

/// The report form in use; Failure 91 before `Main` has made one.
ReportForm& reportForm();

}  // namespace hourbook

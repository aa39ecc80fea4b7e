#pragma once
#include "platform/basic/value.h"

#include <memory>

namespace platform::outlook {
class AppointmentItem;
}

namespace hourbook {

class cMarking;
class ReportForm;

/// The week grid as the fetch and the report form see it.
class GridView {
 public:
  virtual ~GridView() = default;
  /// Lays the grid over the list, starts the watch over the date controls and fetches the week.
  virtual void subAddGrid(ReportForm& form) = 0;
  /// True shows what belongs to the list, false what belongs to the grid.
  virtual void subDisplayNonGridItems(bool blnDisplay, ReportForm& form) = 0;
  /// Forgets the rows and the hours of the week shown; the fetch fills them anew.
  virtual void subStartWeek() = 0;
  virtual void subAddAppToGrid(platform::outlook::AppointmentItem& item, cMarking& marking) = 0;
  virtual void subFillGrid() = 0;
  virtual void subBuildMetaGrid() = 0;
  virtual void subSumRowToGrid(bool blnAdd) = 0;
  virtual void subSaveGridChanges() = 0;
  /// Hours stand in the grid that are not saved yet, or are being typed: a fetch would take them away.
  virtual bool fncHasUnsavedHours() const = 0;

  /// Rows on the grid, without the sum row.
  qint16 intVisibleRows = 0;
  /// Monday of the week shown.
  platform::basic::Date dteGridStartDate;
};

}  // namespace hourbook

#pragma once
#include "platform/basic/failure.h"
#include "platform/basic/value.h"
#include "platform/owc/range.h"
#include "settings/cMetaDictionary.h"
#include "workspace/WorkspaceValues.h"

#include <optional>

namespace hourbook {

class cRowInfo;

using MetaNames = platform::scripting::Dictionary<std::shared_ptr<cMetaData>>;

/// Keeps the sheet's handlers from running inside one another, until the end of the scope on any way out.
class FetchingHeld {
 public:
  FetchingHeld() : values_(workspaceValues()) { values_.gFetching = true; }
  ~FetchingHeld() { values_.gFetching = false; }
  FetchingHeld(const FetchingHeld&) = delete;
  FetchingHeld& operator=(const FetchingHeld&) = delete;

 private:
  WorkspaceValues& values_;
};

/// One row, and an appointment stands behind it.
bool fncIsListRow(const platform::owc::Range& range);
/// The appointment behind a row of the list; null behind any other.
std::shared_ptr<platform::outlook::AppointmentItem> fncAppointmentOf(int row);

/// Reads the row of a range, which becomes the row's columns A to G. What cannot be read is left empty and
/// told in a message; the rest is read all the same.
std::shared_ptr<cRowInfo> fncGetRowInfo(platform::owc::Range& range);
/// A row as it was before a change of some of its cells that nothing announced: what stands in these cells
/// is taken from the appointment. Throws what the calendar throws.
std::shared_ptr<cRowInfo> fncRowBefore(const platform::owc::Range& changed, const cRowInfo& now);

/// Saves what differs between the two, and takes back in the sheet what is not accepted. `gNewRow` must be
/// the new one. Does nothing when one is missing.
void subHandleRowChange(const std::shared_ptr<cRowInfo>& oldRow, const std::shared_ptr<cRowInfo>& newRow);

/// Writes the whole of `gNewRow` to the appointment behind the row; `value` is what of it has changed. With
/// `check` false comes back, and nothing is written, when the value is not in the list. A failure ends the
/// program, unless there is a place for it: then false comes back, and the caller has to report it under
/// "fncSaveChanges" when it has taken back what was not saved.
bool fncSaveChanges(const QString& value, const MetaNames* dictionary, bool check, int row,
                    std::optional<platform::Failure>* pending = nullptr);

/// The number of hours in a cell: the list writes "." in every language, a user as the system's format has
/// it. Failure 13 for what is no number.
double fncHoursNumber(const platform::basic::Value& hours);

}  // namespace hourbook

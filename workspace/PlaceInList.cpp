#include "workspace/PlaceInList.h"

#include "outlook/OutlookValues.h"
#include "platform/forms/twips.h"
#include "workspace/modDropDowns.h"
#include "workspace/modRowEditing.h"
#include "workspace/ReportForm.h"
#include "workspace/WorkspaceValues.h"

#include <algorithm>
#include <utility>

namespace hourbook {

using platform::outlook::AppointmentItem;
using platform::owc::CellRect;

namespace {

inline constexpr int firstRow = 2;
/// Column E is the list's own: nothing of the user's gets there.
inline constexpr int userColumns[] = {1, 2, 3, 4, 6, 7};

/// Two files may hold the same one, and a file may get another name.
QString occurrenceOf(const AppointmentItem& item) {
  const auto& key = item.stored().key;
  return key.uid + u'\n' + key.recurrenceId;
}

}  // namespace

PlaceInList::PlaceInList() : before_(outlookValues().gRowItems) {
  WorkspaceValues& values = workspaceValues();
  ReportForm& form = reportForm();
  selection_ = form.exsThisWeek.selectionRect();
  active_ = form.exsThisWeek.activeCell();
  scroll_ = form.ListScroll();
  anchor_ = rowInSight(scroll_);
  for (int position = 1; position <= before_.Count(); ++position)
    idsBefore_.insert(before_.Item(position)->EntryID());
  if (values.dropDownsOf && before(values.gCurrentRow) == values.dropDownsOf)
    dropDownsOf_ = values.dropDownsOf;
  noteLeftovers();
  values.following = true;
}

PlaceInList::~PlaceInList() {
  workspaceValues().following = false;
}

PlaceInList::Appointment PlaceInList::before(int row) const {
  const int position = row - firstRow + 1;
  return position >= 1 && position <= before_.Count() ? before_.Item(position) : nullptr;
}

/// The selected row, or the uppermost where that is out of sight. Who looks at the beginning of the list goes
/// on looking at its beginning.
int PlaceInList::rowInSight(const QPoint& scroll) const {
  ReportForm& form = reportForm();
  const int uppermost = firstRow + scroll.y();
  const int height = platform::forms::twipsToPixels(form.exsThisWeek.Height());
  const bool seen = selection_.row >= uppermost && form.exsThisWeek.Cell(selection_.row, 1).Top() < height;
  if (seen) return selection_.row;
  return scroll.y() > 0 ? uppermost : 0;
}

void PlaceInList::noteLeftovers() {
  const WorkspaceValues& values = workspaceValues();
  platform::owc::Spreadsheet& sheet = reportForm().exsThisWeek;
  for (int row = firstRow; row <= values.gLastRow; ++row) {
    const QStringList fetched = values.textsFetched.value(row - firstRow);
    const Appointment appointment = before(row);
    if (!appointment) continue;
    for (const int column : userColumns)
      if (sheet.text(row, column) != fetched.value(column - 1))
        leftovers_.append({appointment, column, sheet.value(row, column)});
  }
}

void PlaceInList::restore() {
  auto& items = outlookValues().gRowItems;
  for (int position = 1; position <= items.Count(); ++position) {
    const int row = position + firstRow - 1;
    byId_.insert(items.Item(position)->EntryID(), row);
    byOccurrence_[occurrenceOf(*items.Item(position))].append(row);
  }
  {
    const FetchingHeld held;
    restoreLeftovers();
    restoreSelection();
    restoreScroll();
    restoreDropDowns();
  }
  workspaceValues().following = false;
  reportForm().tellFetched();
}

std::optional<int> PlaceInList::rowNow(const Appointment& appointment) const {
  if (!appointment) return {};
  if (const auto row = byId_.constFind(appointment->EntryID()); row != byId_.cend()) return *row;
  const QList<int> rows = byOccurrence_.value(occurrenceOf(*appointment));
  if (rows.size() != 1) return {};
  // one that stood beside it before is another one
  const bool isAnother = idsBefore_.contains(fncAppointmentOf(rows.first())->EntryID());
  return isAnother ? std::nullopt : std::optional(rows.first());
}

std::optional<int> PlaceInList::rowNow(int rowBefore) const {
  return rowNow(before(rowBefore));
}

void PlaceInList::restoreLeftovers() const {
  platform::owc::Spreadsheet& sheet = reportForm().exsThisWeek;
  const bool protection = std::exchange(sheet.ActiveSheet.Protection.Enabled, false);
  const bool events = std::exchange(sheet.EnableEvents, false);
  for (const Leftover& leftover : leftovers_) {
    const auto row = rowNow(leftover.of);
    if (row && fncAppointmentOf(*row)->stored().tag == leftover.of->stored().tag)
      sheet.Cell(*row, leftover.column).setValue(leftover.value);
  }
  sheet.EnableEvents = events;
  sheet.ActiveSheet.Protection.Enabled = protection;
}

void PlaceInList::restoreSelection() const {
  if (selection_.row < firstRow) return;
  platform::owc::Spreadsheet& sheet = reportForm().exsThisWeek;
  const auto top = rowNow(selection_.row), bottom = rowNow(selection_.lastRow());
  const auto active = rowNow(active_.row);
  if (!active) {
    sheet.select({1, 1, 1, 1}, {1, 1, 1, 1});  // the header, which nobody can type into
    return;
  }
  const auto [first, last] = std::minmax({top.value_or(*active), bottom.value_or(*active)});
  const CellRect rect{first, selection_.column, last - first + 1, selection_.columns};
  sheet.select(rect, {rect.contains(*active, active_.column) ? *active : first, active_.column, 1, 1});
}

void PlaceInList::restoreScroll() const {
  const auto row = rowNow(anchor_);
  const int moved = row ? *row - anchor_ : 0;
  reportForm().setListScroll({scroll_.x(), std::max(0, scroll_.y() + moved)});
}

void PlaceInList::restoreDropDowns() const {
  WorkspaceValues& values = workspaceValues();
  const auto row = rowNow(dropDownsOf_);
  if (!row) {
    values.dropDownsOf.reset();
    subHideDropDowns();
    return;
  }
  values.gCurrentRow = static_cast<qint16>(*row);
  subFollowSelection(reportForm().exsThisWeek.Cell(*row, 1));
}

}  // namespace hourbook

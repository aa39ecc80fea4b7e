#include "workspace/modRowEvents.h"

#include "platform/basic/convert.h"
#include "platform/process/process.h"
#include "settings/cPersonalSettings.h"
#include "settings/cRowInfo.h"
#include "settings/SettingsValues.h"
#include "shell/modErrorReport.h"
#include "shell/Present.h"
#include "workspace/modDropDowns.h"
#include "workspace/modRowEditing.h"
#include "workspace/modStatistics.h"
#include "workspace/ReportForm.h"

namespace hourbook {

using platform::basic::Value;
using platform::owc::Range;
using platform::owc::Spreadsheet;
using platform::process::guardEvent;

namespace {

/// kept: the newer forms save no change of this row and those below it
inline constexpr int firstUnsavedRow = 100;

void setCurrentRow(int row) {
  workspaceValues().gCurrentRow = platform::basic::CInt(Value(qint32(row)));
}

// The form of generation 9

/// kept: what was typed counts as hours, whichever column it was typed in
void endEditOf2K(platform::owc::EndEditEvent& event) try {
  WorkspaceValues& values = workspaceValues();
  if (values.gFetching) return;
  setCurrentRow(event.Range.Row());
  if (!fncIsListRow(event.Range)) return;
  Range before = event.Range, after = event.Range;
  values.gOldRow = fncGetRowInfo(before);
  values.gNewRow = fncGetRowInfo(after);
  values.gNewRow->Hours = Value(event.EditData);
  const auto appointment = fncAppointmentOf(event.Range.Row());
  subHandleRowChange(values.gOldRow, values.gNewRow);
  // After a fetch another appointment may stand in the row: the text must not get there.
  if (fncAppointmentOf(event.Range.Row()) != appointment) event.Cancel = true;
} catch (const platform::Failure& failure) {
  subHandleError(failure, QStringLiteral("exsThisWeek_EndEdit"));
}

void selectionChangingOf2K(const platform::owc::SelectionChangingEvent& event) try {
  if (workspaceValues().gFetching) return;
  const FetchingHeld held;
  setCurrentRow(event.Range.Row());
  subFollowSelection(event.Range);
} catch (const platform::Failure& failure) {
  subHandleError(failure, QStringLiteral("exsThisWeek_SelectionChanging"));
}

// The newer forms

void endEdit() try {
  WorkspaceValues& values = workspaceValues();
  if (values.gFetching) return;
  Range row = reportForm().exsThisWeek.ActiveCell();
  setCurrentRow(row.Row());
  if (!fncIsListRow(row)) return;
  values.oldRowOf = fncAppointmentOf(row.Row());
  values.gOldRow = fncGetRowInfo(row);
} catch (const platform::Failure& failure) {
  subHandleError(failure, QStringLiteral("exsThisWeek_EndEdit"));
}

/// Would every meta value that has changed be accepted?
bool listsKnowMarking(const cRowInfo& oldRow, const cRowInfo& newRow) {
  const auto& lists = present(settingsValues().gPersonalSettings).MetaDataLists;
  for (int n = 1; n <= newRow.Marking->colMarkings.Count(); ++n) {
    const QString value = newRow.Marking->colMarkings.Item(n)->MetaName;
    if (value != oldRow.Marking->colMarkings.Item(n)->MetaName &&
        !present(lists.Item(n)->MetaDic).Exists(value))
      return false;
  }
  return true;
}

bool touchesList(const Range& range) {
  return range.rect().lastRow() >= 2 && range.Row() <= workspaceValues().gLastRow;
}

/// `EndEdit` read the row for this change, or the change came without one (pasted, cleared, taken back).
void findOldRow(const Range& target) {
  WorkspaceValues& values = workspaceValues();
  const auto appointment = fncAppointmentOf(target.Row());
  const bool announced = values.oldRowOf && values.oldRowOf == appointment && values.gOldRow &&
                         values.gOldRow->RowNumber == target.Row();
  values.oldRowOf.reset();
  if (!announced) values.gOldRow = fncRowBefore(target, *values.gNewRow);
}

/// What was taken back may stand in another row than the one selected, which the drop-downs are for.
void returnToSelection() {
  const WorkspaceValues& values = workspaceValues();
  if (values.dropDownsOf && fncAppointmentOf(values.gCurrentRow) != values.dropDownsOf)
    setCurrentRow(reportForm().exsThisWeek.Selection().Row());
}

void sheetChange(const Range& target) try {
  WorkspaceValues& values = workspaceValues();
  if (values.gFetching) return;
  subLog(QStringLiteral("Reacting to sheetchange"));
  if (target.Row() >= firstUnsavedRow) return;
  setCurrentRow(target.Row());
  const FetchingHeld held;
  if (!fncIsListRow(target)) {
    // Several appointments cannot be changed at once; the sheet must not show what was not saved.
    if (touchesList(target)) reportForm().exsThisWeek.Undo();
    return;
  }
  Range row = target;
  values.gNewRow = fncGetRowInfo(row);
  findOldRow(target);
  // A row is written whole, so of several cells all are accepted or none.
  if (target.Count() > 1 && !listsKnowMarking(*values.gOldRow, *values.gNewRow))
    reportForm().exsThisWeek.Undo();
  else
    subHandleRowChange(values.gOldRow, values.gNewRow);
  returnToSelection();
} catch (const platform::Failure& failure) {
  subHandleError(failure, QStringLiteral("exsThisWeek_SheetChange"));
}

void selectionChange() try {
  if (workspaceValues().gFetching) return;
  subLog(QStringLiteral("Reacting to selectionchange"));
  const FetchingHeld held;
  const Range selected = reportForm().exsThisWeek.Selection();
  setCurrentRow(selected.Row());
  subFollowSelection(selected);
} catch (const platform::Failure& failure) {
  subHandleError(failure, QStringLiteral("exsThisWeek_SelectionChange"));
}

void calculate() {
  if (!workspaceValues().gFetching) subCountSpreadSheet();
}

}  // namespace

void subConnectRowEvents(ReportForm& form) {
  Spreadsheet& sheet = form.exsThisWeek;
  if (sheet.isGeneration9()) {
    QObject::connect(&sheet, &Spreadsheet::EndEdit, &form,
                     [](auto& event) { guardEvent([&] { endEditOf2K(event); }); });
    QObject::connect(&sheet, &Spreadsheet::SelectionChanging, &form,
                     [](const auto& event) { guardEvent([&] { selectionChangingOf2K(event); }); });
  } else {
    QObject::connect(&sheet, &Spreadsheet::EndEdit, &form, [](auto&) { guardEvent(endEdit); });
    QObject::connect(&sheet, &Spreadsheet::SheetChange, &form,
                     [](const Range& target) { guardEvent([&] { sheetChange(target); }); });
    QObject::connect(&sheet, &Spreadsheet::SelectionChange, &form, [] { guardEvent(selectionChange); });
    QObject::connect(&sheet, &Spreadsheet::Calculate, &form, [] { guardEvent(calculate); });
  }
  const std::pair<platform::forms::ComboBox*, const char*> dropDowns[] = {
      {&form.cmbMeta1, "b"}, {&form.cmbMeta2, "c"}, {&form.cmbMeta3, "d"}};
  for (const auto& [dropDown, column] : dropDowns)
    QObject::connect(dropDown, &platform::forms::ComboBox::Click, &form, [dropDown, column] {
      guardEvent([&] { subHandleMetaDropClick(dropDown->Text(), QString::fromLatin1(column)); });
    });
}

}  // namespace hourbook

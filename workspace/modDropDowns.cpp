#include "workspace/modDropDowns.h"

#include "platform/dialogs/dialogs.h"
#include "platform/forms/twips.h"
#include "platform/outlook/items.h"
#include "settings/cMetaDictionary.h"
#include "settings/cPersonalSettings.h"
#include "settings/cRowInfo.h"
#include "settings/SettingsValues.h"
#include "shell/modErrorReport.h"
#include "shell/Present.h"
#include "shell/ShellValues.h"
#include "shell/Tolerate.h"
#include "workspace/modReportForm.h"
#include "workspace/modRowEditing.h"
#include "workspace/modStatistics.h"
#include "workspace/ReportForm.h"
#include "workspace/WorkspaceValues.h"

#include <limits>
#include <optional>

namespace hourbook {

using platform::basic::Value;
using platform::forms::ComboBox;
using platform::forms::twipsPerPixel;
using platform::owc::Range;

namespace {

QList<ComboBox*> dropDowns() {
  ReportForm& form = reportForm();
  return {&form.cmbMeta1, &form.cmbMeta2, &form.cmbMeta3};
}

/// None for a place that 16 bits cannot hold: it is far out of sight.
std::optional<int> comboTopOf2K(int row) {
  ReportForm& form = reportForm();
  const qint64 top =
      form.exsThisWeek.Top() + qint64(form.exsThisWeek.Cell(row, 1).Top()) * twipsPerPixel + twipsPerPixel;
  using Limits = std::numeric_limits<qint16>;
  if (top < Limits::min() || top > Limits::max()) return {};
  return int(top);
}

std::optional<int> comboTop(int row) {
  if (reportForm().exsThisWeek.isGeneration9()) return comboTopOf2K(row);
  const int top = fncGetComboTop(row);
  return top > 0 ? std::optional(top) : std::nullopt;
}

Range rowCell(const QString& column) {
  return reportForm().exsThisWeek.Range(column + QString::number(workspaceValues().gCurrentRow));
}

void show(int row, int top) {
  Range range = reportForm().exsThisWeek.Cell(row, 1);
  subShowDropDowns(*fncGetRowInfo(range)->Marking, top);
}

void chooseOnNewerForms(const QString& text, const QString& column) {
  WorkspaceValues& values = workspaceValues();
  if (values.gFetching) return;
  Range row = rowCell(QStringLiteral("b"));
  values.oldRowOf = fncAppointmentOf(row.Row());
  values.gOldRow = fncGetRowInfo(row);
  rowCell(column).setValue(Value(text));  // the sheet's change event does the rest
}

}  // namespace

void subFillDropDowns() try {
  const auto& lists = present(settingsValues().gPersonalSettings).MetaDataLists;
  const QList<ComboBox*> boxes = dropDowns();
  for (int list = 1; list <= lists.Count() && list <= boxes.size(); ++list)
    subFillcombo(*boxes[list - 1], present(lists.Item(list)->MetaDic));
} catch (const platform::Failure& failure) {
  subHandleError(failure, QStringLiteral("subFillDropDowns"));
}

void subFillcombo(ComboBox& combo, const QStringList& keys) try {
  combo.Clear();
  for (const QString& key : keys) combo.AddItem(key);
} catch (const platform::Failure& failure) {
  subHandleError(failure, QStringLiteral("subFillcombo"));
}

void subShowDropDowns(const cMarking& marking, int top) {
  const QList<ComboBox*> boxes = dropDowns();
  for (int n = 1; n <= marking.colMarkings.Count() && n <= boxes.size(); ++n) {
    boxes[n - 1]->setVisible(true);
    boxes[n - 1]->setText(marking.colMarkings.Item(n)->MetaName);
    boxes[n - 1]->setTop(top);
  }
}

void subHideDropDowns() {
  for (ComboBox* box : dropDowns()) box->setVisible(false);
}

/// The component tells no place of a scrolled row, so it is looked for.
int fncGetComboTop(int row) {
  subLog(QStringLiteral("Trying to determine where to place the combobox"));
  constexpr int within = 150, step = 2;  // pixels
  ReportForm& form = reportForm();
  const qint32 limit = form.exsThisWeek.Height() / twipsPerPixel + 3;
  for (int y = 0; y <= limit; y += step) {
    const auto found = form.exsThisWeek.ActiveWindow().RangeFromPoint(within, y);
    if (found && found->Row() == row) return form.exsThisWeek.Top() + y * twipsPerPixel - twipsPerPixel;
  }
  return 0;
}

void subFollowSelection(const Range& selected) {
  WorkspaceValues& values = workspaceValues();
  values.dropDownsOf = fncIsListRow(selected) ? fncAppointmentOf(selected.Row()) : nullptr;
  const std::optional<int> top = values.dropDownsOf ? comboTop(selected.Row()) : std::nullopt;
  if (top)
    show(selected.Row(), *top);
  else
    subHideDropDowns();
}

void subFollowScrolling(bool rowInSight) {
  WorkspaceValues& values = workspaceValues();
  const int row = values.gCurrentRow;
  if (values.gFetching || !values.dropDownsOf || fncAppointmentOf(row) != values.dropDownsOf) return;
  const FetchingHeld held;
  const std::optional<int> top = rowInSight ? comboTop(row) : std::nullopt;
  if (!top)
    subHideDropDowns();
  else if (!reportForm().cmbMeta1.Visible())
    show(row, *top);
  else  // what is being typed in one of them stays
    for (ComboBox* box : dropDowns())
      if (box->Visible()) box->setTop(*top);
}

void subHandleMetaDropClick(const QString& strText, const QString& strCol) {
  const auto failure = tolerate([&] {
    if (reportForm().exsThisWeek.isGeneration9())
      subHandleMetaDropChange(strText, strCol);
    else
      chooseOnNewerForms(strText, strCol);
  });
  if (failure)
    platform::dialogs::Dialogs::current().MsgBox(phrases().LNGFAILEDSAVEVALUE, platform::dialogs::vbCritical,
                                                 gTitle);
}

void subHandleMetaDropChange(const QString& strText, const QString& strCol) {
  WorkspaceValues& values = workspaceValues();
  if (values.gFetching) return;
  {
    const FetchingHeld held;
    Range before = rowCell(QStringLiteral("b"));
    values.gOldRow = fncGetRowInfo(before);
    rowCell(strCol).setValue(Value(strText));
    Range after = rowCell(QStringLiteral("b"));
    values.gNewRow = fncGetRowInfo(after);
    subHandleRowChange(values.gOldRow, values.gNewRow);
  }
  subCountSpreadSheet();
}

}  // namespace hourbook

#include "workspace/modRowEditing.h"

#include "outlook/OutlookValues.h"
#include "platform/basic/convert.h"
#include "platform/outlook/items.h"
#include "settings/cPersonalSettings.h"
#include "settings/cRowInfo.h"
#include "settings/SettingsValues.h"
#include "shell/modAssistant.h"
#include "shell/modErrorReport.h"
#include "shell/Present.h"
#include "shell/ShellValues.h"
#include "shell/Tolerate.h"
#include "workspace/modFollowCalendar.h"
#include "workspace/modGetData.h"
#include "workspace/modStatistics.h"
#include "workspace/ReportForm.h"

#include <cmath>
#include <utility>

namespace hourbook {

using platform::Failure;
using platform::basic::CStr;
using platform::basic::Value;
using platform::owc::Range;
using Appointment = std::shared_ptr<platform::outlook::AppointmentItem>;

namespace {

inline constexpr int subjectColumn = 1, firstMetaColumn = 2, weekdayColumn = 5, hoursColumn = 6,
                     postedColumn = 7;

const MetaDataCollection& lists() {
  return present(settingsValues().gPersonalSettings).MetaDataLists;
}

/// The rows of the list begin with 2.
int positionOf(int row) {
  return row - 1;
}

void readMarking(const Range& row, cMarking& marking) {
  marking.colMarkings = {};
  for (int list = 1; list <= lists().Count(); ++list) {
    const auto position = std::make_shared<cMetaData>();
    position->MetaName = row.Cells(1, list + 1).Text();
    marking.colMarkings.Add(position, QString::number(list + 1));
  }
}

bool sameHours(const Value& a, const Value& b) {
  return CStr(a) == CStr(b);
}

void put(platform::outlook::AppointmentItem& appointment, const cRowInfo& row) {
  const qint32 minutes = platform::basic::CLng(Value(fncHoursNumber(row.Hours) * 60));
  appointment.setSubject(row.Subject);
  // kept: another category of the user's own goes, since the text is written whole
  appointment.setCategories(row.Marking->MarkingCategories());
  // kept: the hours of the list are written, less their lunch and rounded to two decimals as they may be
  appointment.setDuration(minutes);
}

/// The series is read only now, so it does not know itself what the row was made from.
void refuseChangedOccurrence(platform::outlook::AppointmentItem& occurrence, const cRowInfo& row) {
  const auto failure = tolerate([&] {
    put(occurrence, row);
    occurrence.RefuseIfChanged();
  });
  occurrence.Close(platform::outlook::olDiscard);
  if (failure) throw Failure(*failure);
}

void write(platform::outlook::AppointmentItem& appointment, const cRowInfo& row) try {
  put(appointment, row);
  appointment.Close(platform::outlook::olSave);
} catch (const Failure&) {
  tolerate([&] { appointment.Close(platform::outlook::olDiscard); });
  throw;
}

/// Somebody else was there before.
bool isConflict(const Failure& failure) {
  return failure.number() == platform::calendar::errChangedMeanwhile ||
         failure.number() == platform::calendar::errNotFound;
}

/// The report quotes the step that failed and not what was done since.
void showWhatStandsThere() {
  ShellValues& shell = shellValues();
  const QString step = shell.gLastLogText;
  const qint16 line = shell.lastLogLine;
  tolerate([] { subFollowCalendar(); });
  shell.gLastLogText = step;
  shell.lastLogLine = line;
}

/// Writes a cell that the user may not change, and lets nobody react to it.
void putBack(int row, int column, const Value& value) {
  platform::owc::Spreadsheet& sheet = reportForm().exsThisWeek;
  const bool protection = std::exchange(sheet.ActiveSheet.Protection.Enabled, false);
  const auto failure = tolerate([&] { sheet.Cell(row, column).setValue(value); });
  sheet.ActiveSheet.Protection.Enabled = protection;
  if (failure) throw *failure;
}

/// Handles one change of a row.
class RowChange {
 public:
  RowChange(const cRowInfo& oldRow, cRowInfo& newRow)
      : old_(oldRow), new_(newRow), appointment_(fncAppointmentOf(newRow.RowNumber)) {}
  void run() {
    saveMarking();
    if (listIsAnother()) return;  // all of the row has been written, and its number may be another's now
    if (!sameHours(new_.Hours, old_.Hours))
      saveHours();
    else if (new_.Subject != old_.Subject)
      saveSubject();
  }

 private:
  void saveMarking();
  void saveSubject();
  void saveHours();
  bool save(const QString& value, const MetaNames* dictionary = nullptr) {
    if (!fncSaveChanges(value, dictionary, dictionary != nullptr, new_.RowNumber, &pending_)) return false;
    subCountSpreadSheet();
    return true;
  }
  bool takeListedSpelling(int position, const MetaNames& dictionary);
  void showSpelling(int position);
  /// What could not be saved is told when the sheet shows again what the calendar holds.
  void tellPending() const {
    if (!pending_) return;
    if (isConflict(*pending_)) showWhatStandsThere();
    subHandleError(*pending_, QStringLiteral("fncSaveChanges"));
  }
  void tellNotSaved() const {
    fncShowAssistantMessage(outlookValues().gOutlookApp, phrases().LNGERREDITFAILS);
  }
  bool listIsAnother() const { return fncAppointmentOf(new_.RowNumber) != appointment_; }

  const cRowInfo& old_;
  cRowInfo& new_;
  Appointment appointment_;
  std::optional<Failure> pending_;
};

void RowChange::saveMarking() {
  const int positions = new_.Marking->colMarkings.Count();
  for (int n = 1; n <= positions && !listIsAnother(); ++n) {
    const QString before = old_.Marking->colMarkings.Item(n)->MetaName;
    if (new_.Marking->colMarkings.Item(n)->MetaName == before) continue;
    const MetaNames& dictionary = present(lists().Item(n)->MetaDic);
    const bool respelled = takeListedSpelling(n, dictionary);
    if (save(new_.Marking->colMarkings.Item(n)->MetaName, &dictionary)) {
      if (respelled && !listIsAnother()) showSpelling(n);
      continue;
    }
    reportForm().exsThisWeek.Undo();
    tellPending();
  }
}

/// The list takes a value in any case, but what reads an appointment's marking knows it only as it is
/// spelled there.
bool RowChange::takeListedSpelling(int position, const MetaNames& dictionary) {
  QString& value = new_.Marking->colMarkings.Item(position)->MetaName;
  if (!dictionary.Exists(value) || dictionary.Item(value)->MetaName == value) return false;
  value = dictionary.Item(value)->MetaName;
  return true;
}

void RowChange::showSpelling(int position) {
  platform::owc::Spreadsheet& sheet = reportForm().exsThisWeek;
  const bool events = std::exchange(sheet.EnableEvents, false);
  const auto failure = tolerate([&] {
    sheet.Cell(new_.RowNumber, position + 1)
        .setValue(Value(new_.Marking->colMarkings.Item(position)->MetaName));
  });
  sheet.EnableEvents = events;
  if (failure) throw *failure;
}

void RowChange::saveSubject() {
  if (save(new_.Subject)) return;
  tellNotSaved();
  putBack(workspaceValues().gCurrentRow, subjectColumn, Value(old_.Subject));
  tellPending();
}

void RowChange::saveHours() {
  // kept: what is no number stays in the cell, without a word
  if (tolerate([&] { fncHoursNumber(new_.Hours); })) return;
  if (save(CStr(new_.Hours))) return;
  tellNotSaved();
  // kept: the hours go to the column of the weekday and not to their own
  putBack(workspaceValues().gCurrentRow, weekdayColumn, old_.Hours);
  tellPending();
}

}  // namespace

bool fncIsListRow(const Range& range) {
  return range.RowsCount() == 1 && range.Row() >= 2 && range.Row() <= workspaceValues().gLastRow;
}

Appointment fncAppointmentOf(int row) {
  auto& items = outlookValues().gRowItems;
  const int position = positionOf(row);
  return position >= 1 && position <= items.Count() ? items.Item(position) : nullptr;
}

double fncHoursNumber(const Value& hours) {
  if (const auto* text = std::get_if<QString>(&hours)) {
    bool plain = false;
    const double number = text->trimmed().toDouble(&plain);
    if (plain && std::isfinite(number)) return number;
  }
  return platform::basic::CDbl(hours);
}

std::shared_ptr<cRowInfo> fncGetRowInfo(Range& range) {
  const auto info = std::make_shared<cRowInfo>();
  bool failed = false;
  const auto step = [&failed](const auto& statement) { failed |= tolerate(statement).has_value(); };
  const int row = range.Row();
  step([&] { range = reportForm().exsThisWeek.Range(QStringLiteral("a%1:g%1").arg(row)); });
  step([&] { info->Subject = range.Cells(1, subjectColumn).Text(); });
  step([&] { readMarking(range, *info->Marking); });
  step([&] { info->RowNumber = platform::basic::CInt(Value(qint32(row))); });
  step([&] { info->StartTime = fncDateOfWeekdayText(range.Cells(1, weekdayColumn).Text()); });
  step([&] { info->Hours = range.Cells(1, hoursColumn).Value(); });
  step([&] {
    const Value posted = range.Cells(1, postedColumn).Value();
    if (platform::basic::IsDate(posted)) info->Posted = platform::basic::CDate(posted);
  });
  if (failed) fncShowAssistantMessage(outlookValues().gOutlookApp, phrases().LNGERRROWREAD);
  return info;
}

std::shared_ptr<cRowInfo> fncRowBefore(const Range& changed, const cRowInfo& now) {
  auto before = std::make_shared<cRowInfo>(now);
  before->Marking = std::make_shared<cMarking>();
  const auto appointment = fncAppointmentOf(now.RowNumber);
  const auto series = present(appointment).Parent();
  const auto isChanged = [&](int column) { return changed.rect().contains(changed.Row(), column); };
  if (isChanged(subjectColumn)) before->Subject = appointment->Subject();
  if (isChanged(hoursColumn))
    before->Hours = Value(fncHoursText(fncHoursFromMinutes(appointment->Duration())));
  before->Marking->BillingToMarkings((series ? series : appointment)->Categories());
  auto& positions = before->Marking->colMarkings;
  for (int n = 1; n <= positions.Count() && n <= now.Marking->colMarkings.Count(); ++n)
    if (!isChanged(firstMetaColumn + n - 1))
      positions.Item(n)->MetaName = now.Marking->colMarkings.Item(n)->MetaName;
  return before;
}

void subHandleRowChange(const std::shared_ptr<cRowInfo>& oldRow,
                        const std::shared_ptr<cRowInfo>& newRow) try {
  if (!oldRow || !newRow) return;
  subLog(QStringLiteral("Handling the row change event"));
  RowChange(*oldRow, *newRow).run();
} catch (const Failure& failure) {
  subHandleError(failure, QStringLiteral("subHandleRowChange"));
}

bool fncSaveChanges(const QString& value, const MetaNames* dictionary, bool check, int row,
                    std::optional<Failure>* pending) try {
  subLog(QStringLiteral("Saving the value ") + value + QStringLiteral(" to the appointment in the calendar"));
  if (check && !(dictionary && dictionary->Exists(value))) return false;
  Appointment appointment = outlookValues().gRowItems.Item(positionOf(row));
  // A series is changed as a whole, by each of its occurrences: the list reads the marking of the series, so
  // what only one of them carried would be gone with the next fetch.
  const Appointment series = appointment->Parent();
  if (series) {
    refuseChangedOccurrence(*appointment, present(workspaceValues().gNewRow));
    appointment = series;
  }
  // kept: all of the row, not only the value
  write(*appointment, present(workspaceValues().gNewRow));
  if (series) subGetData();
  return true;
} catch (const Failure& failure) {
  if (!pending) subHandleError(failure, QStringLiteral("fncSaveChanges"));
  *pending = failure;
  return false;
}

}  // namespace hourbook

#include "workspace/modGetData.h"

#include "outlook/OutlookValues.h"
#include "platform/basic/clock.h"
#include "platform/basic/convert.h"
#include "platform/basic/text.h"
#include "platform/outlook/items.h"
#include "settings/cMarking.h"
#include "shell/genTools.h"
#include "shell/modAssistant.h"
#include "shell/modErrorReport.h"
#include "shell/Present.h"
#include "shell/ShellValues.h"
#include "shell/Tolerate.h"
#include "workspace/modFollowCalendar.h"
#include "workspace/modReportForm.h"
#include "workspace/modStatistics.h"
#include "workspace/ReportForm.h"
#include "workspace/WorkspaceValues.h"

#include <algorithm>

namespace hourbook {

using platform::basic::Date;
using platform::basic::Format;
using platform::basic::Value;
using platform::outlook::AppointmentItem;
using Appointment = std::shared_ptr<AppointmentItem>;

namespace {

inline constexpr int lastListRow = 199;
inline constexpr qint64 signOfLifeEvery = 100;  // milliseconds

/// Eight digits, so that dates compare as texts.
QString dayKey(const Date& day) {
  return Format(Value(day), QStringLiteral("yyyy")) +
         Format(Value(qint32(day.month())), QStringLiteral("00")) +
         Format(Value(qint32(day.day())), QStringLiteral("00"));
}

/// kept: the second date has no opening "#"; the margin of a day at the end is made up for by the exact test
/// of each item's date.
QString startFilter(const Date& startDate, const Date& endDate) {
  const QChar q = u'"';
  const QString shortDate = QStringLiteral("Short Date");
  return QStringLiteral("[Start] >=") + q + u'#' + Format(Value(startDate), shortDate) +
         QStringLiteral(" 00:00#") + q + QStringLiteral(" and [Start]<= ") + q +
         Format(Value(endDate.addDays(1)), shortDate) + QStringLiteral(" 23:59#") + q;
}

/// One run of `subGetData`. A quiet one shows the same period anew as if it had always stood there: nothing
/// of it is seen but what is another.
class Fetch {
 public:
  enum class Way { Shown, Quiet };
  explicit Fetch(Way way) : quiet_(way == Way::Quiet) {}
  void startGrid();
  void clearList();
  void openCalendar();
  void noteOthers();
  bool setPeriod();
  void takePeriodListed();
  void search();
  void refuseUnread() const;
  void walk();
  void showResults();

 private:
  /// Runs a statement whose failure is passed over.
  template <class Statement>
  void step(Statement&& statement) {
    if (auto failure = tolerate(statement)) pending_ = std::move(failure);
  }
  void forceWholeWeek();
  void hideDropDowns();
  void showSignOfLife();
  void showProgress();
  void consider(Appointment item);
  void list(const Appointment& item);
  void unlockCalculation();
  void protect();

  const bool quiet_;
  ReportForm& form_ = reportForm();
  WorkspaceValues& values_ = workspaceValues();
  platform::owc::Spreadsheet& sheet_ = form_.exsThisWeek;
  GridView* grid_ = values_.gGridMode ? values_.gGridView.get() : nullptr;
  std::optional<platform::outlook::Items> items_;
  Appointment first_;              // that was found
  std::optional<QString> others_;  // what the calendar said of others' changes before that
  std::optional<platform::Failure> pending_;
  Date startDate_, endDate_;
  QString firstKey_, lastKey_;
  // Of the item at hand; what cannot be read of it stays that of the item before.
  Date itemDay_;
  QString itemKey_;
  std::shared_ptr<cMarking> marking_;
  const qint64 begun_ = platform::basic::Clock::current().milliseconds();
  qint64 shownAt_ = begun_;
};

void Fetch::startGrid() {
  if (values_.gGridView) values_.gGridView->intVisibleRows = 0;
  if (grid_) grid_->subStartWeek();
  subLog(QStringLiteral("Looping through current appointments"));
  if (!quiet_) form_.setMousePointer(vbHourglass);
}

void Fetch::clearList() {
  subLog(QStringLiteral("Clearing the list"));
  values_.gFetching = true;
  sheet_.EnableEvents = false;
  sheet_.ActiveSheet.Protection.Enabled = false;
  if (form_.variant().hasEnableAutoCalculate)
    sheet_.EnableAutoCalculate = false;
  else
    sheet_.Calculation = platform::owc::xlCalculationManual;
  // kept: row 200 is not part of the range, so it can keep an old row until the next row 200 is written
  platform::owc::Range range = sheet_.Range(QStringLiteral("a2:g199"));
  range.Clear();
  range.setFontName(QStringLiteral("Tahoma"));
  range.setFontSize(8);
  if (!quiet_) hideDropDowns();
  marking_ = std::make_shared<cMarking>();
  if (!quiet_) showSignOfLife();
}

void Fetch::hideDropDowns() {
  for (platform::forms::ComboBox* dropDown : {&form_.cmbMeta1, &form_.cmbMeta2, &form_.cmbMeta3})
    dropDown->setVisible(false);
}

void Fetch::showSignOfLife() {
  sheet_.Range(QStringLiteral("a2")).setValue(Value(phrases().LNGFETCHINGAPPS));
  form_.tellFetching(0);
  form_.Refresh();
}

void Fetch::openCalendar() {
  subLog(QStringLiteral("Setting an object reference to all apps in the calendar"));
  items_ = present(outlookValues().gCalendarFolder).Items();
  subLog(QStringLiteral("Getting values for this week"));
}

/// Before anything is read: what changes from here on may be missing in the list.
void Fetch::noteOthers() {
  tolerate([&] {
    others_ = present(outlookValues().gCalendarFolder).OthersTag(platform::calendar::Look::Glance);
  });
}

/// The controls may show another one by now, which nobody has asked for yet.
void Fetch::takePeriodListed() {
  startDate_ = values_.listed->start;
  endDate_ = values_.listed->end;
  firstKey_ = dayKey(startDate_);
  lastKey_ = dayKey(endDate_);
}

bool Fetch::setPeriod() {
  outlookValues().gRowItems = {};
  values_.listed.reset();
  step([&] { endDate_ = fncGetEndDate(); });
  step([&] { startDate_ = fncGetStartDate(endDate_); });
  if (values_.gGridMode) forceWholeWeek();
  step([&] { firstKey_ = dayKey(startDate_); });
  // kept: with a period that cannot be computed the hourglass, the flag, the switched-off events and the
  // missing protection stay as they are until the next fetch
  if (pending_) return false;
  step([&] { lastKey_ = dayKey(endDate_); });
  values_.listed = ListedPeriod{startDate_, endDate_};
  return true;
}

void Fetch::forceWholeWeek() {
  const int weekday = platform::basic::Weekday(endDate_, platform::basic::vbMonday);
  step([&] { startDate_ = weekday == 1 ? endDate_ : endDate_.addDays(1 - weekday); });
  step([&] { endDate_ = startDate_.addDays(6); });
  step([&] { subSetDate(startDate_, endDate_); });
  values_.gIgnoreWeekChange = true;
  step([&] { form_.cmbWeek.setText(QString::number(fncSwWeekNo(startDate_))); });
  values_.gIgnoreWeekChange = false;
  if (grid_) grid_->dteGridStartDate = startDate_;
}

void Fetch::search() {
  subLog(QStringLiteral("Building an sql string to find all appointment in this time span"));
  QString filter;
  step([&] { filter = startFilter(startDate_, endDate_); });
  subLog(QStringLiteral("Beginning search with the string ") + filter);
  step([&] { items_->Sort(QStringLiteral("[Start]")); });
  step([&] { items_->setIncludeRecurrences(true); });
  if (endDate_.year() <= 1900) return;
  const auto failure = tolerate([&] { first_ = items_->Find(filter); });
  if (!failure) return;
  pending_ = failure;
  others_.reset();  // the list has nothing of the calendar, so anything is news
}

/// An unread calendar is no reason to take the list away from a user who has not asked for another.
void Fetch::refuseUnread() const {
  if (pending_) throw *pending_;
}

void Fetch::walk() {
  values_.gLastRow = 1;
  Appointment item = first_;
  while (item) {
    consider(item);
    if (values_.gLastRow > lastListRow) {
      // kept: the phrase speaks of 99 appointments while the list holds 199
      if (!quiet_)
        step([&] { fncShowAssistantMessage(outlookValues().gOutlookApp, phrases().LNGERRTOMANYROWS); });
      return;
    }
    item.reset();
    step([&] { item = items_->FindNext(); });
  }
}

/// The items come in the order of their starts, so the day at hand says how much of the period is done.
void Fetch::showProgress() {
  if (quiet_) return;
  const qint64 now = platform::basic::Clock::current().milliseconds();
  if (now - shownAt_ < signOfLifeEvery) return;
  shownAt_ = now;
  const double whole = endDate_.serial() + 1 - startDate_.serial();
  const double done = itemDay_.serial() - startDate_.serial();
  form_.tellFetching(whole > 0 ? std::clamp(done / whole, 0.0, 1.0) : 0);
}

void Fetch::consider(Appointment item) {
  step([&] { itemDay_ = item->Start().dateOnly(); });
  showProgress();
  bool isRequest = false;
  step([&] { isRequest = item->MessageClass() == platform::outlook::classMeetingRequest; });
  if (isRequest) {
    subLog(QStringLiteral("Getting the appointment from a meeting request"));
    step([&] { item = item->GetAssociatedAppointment(false); });
    if (!item) return;
  }
  step([&] { itemKey_ = dayKey(itemDay_); });
  if (itemKey_ < firstKey_ || itemKey_ > lastKey_) return;
  subLog(QStringLiteral("Fetching values and adding rows"));
  step([&] { marking_ = std::make_shared<cMarking>(); });
  step([&] {
    const bool changedOccurrence = item->MessageClass() == platform::outlook::classException;
    const Appointment source = changedOccurrence ? item->Parent() : item;
    if (source) marking_->BillingToMarkings(source->Categories());
  });
  if (!fncCheckInclude(*item)) return;
  step([&] { list(item); });
  if (grid_) step([&] { grid_->subAddAppToGrid(*item, *marking_); });
}

void Fetch::list(const Appointment& item) {
  const cMarking& marking = *marking_;
  switch (form_.cmbFilterCalendar.ListIndex()) {
    case 0:
      if (marking.IsComplete()) subAddRow(item, marking);
      break;
    case 1:
      if (!marking.IsComplete()) subAddRow(item, marking);
      break;
    case 2:
      subAddRow(item, marking);
      break;
    default:
      break;
  }
}

void Fetch::showResults() {
  subCountSpreadSheet();
  if (grid_) step([&] { grid_->subFillGrid(); });
  if (values_.gLastRow == 1)
    step([&] { sheet_.Range(QStringLiteral("a2")).setValue(Value(phrases().LNGNOAPPSFOUND)); });
  values_.gFetching = false;
  sheet_.EnableEvents = true;
  step([&] {
    sheet_.setViewableRange(values_.gLastRow < 2 ? QStringLiteral("A1:G2")
                                                 : QStringLiteral("A1:G%1").arg(values_.gLastRow));
  });
  unlockCalculation();
  protect();
  if (grid_) {
    step([&] { grid_->subBuildMetaGrid(); });
    step([&] { grid_->subSumRowToGrid(true); });
  }
  values_.othersTag = others_;
  values_.textsFetched = fncTextsOfRows();
  if (quiet_) return;
  values_.fetchMilliseconds = platform::basic::Clock::current().milliseconds() - begun_;
  form_.tellFetched();
  form_.setMousePointer(vbDefault);
}

void Fetch::unlockCalculation() {
  if (form_.variant().hasEnableAutoCalculate)
    sheet_.EnableAutoCalculate = true;
  else  // kept: it stays manual, since the list has no formula that depends on it
    sheet_.Calculation = platform::owc::xlCalculationManual;
}

void Fetch::protect() {
  step([&] { sheet_.Range(QStringLiteral("A1:J1")).setLocked(true); });
  step([&] { sheet_.Range(QStringLiteral("A2:D200")).setLocked(false); });
  step([&] { sheet_.Range(QStringLiteral("f2:g200")).setLocked(false); });
  sheet_.ActiveSheet.Protection.Enabled = true;
}

}  // namespace

void subGetData() try {
  Fetch fetch(Fetch::Way::Shown);
  fetch.noteOthers();
  fetch.startGrid();
  fetch.clearList();
  fetch.openCalendar();
  // From here on every failure is passed over and the next step runs.
  if (!fetch.setPeriod()) return;
  fetch.search();
  fetch.walk();
  fetch.showResults();
} catch (const platform::Failure& failure) {
  subHandleError(failure, QStringLiteral("subGetData"));
}

void subGetDataAgain() {
  Fetch fetch(Fetch::Way::Quiet);
  fetch.noteOthers();
  fetch.takePeriodListed();
  fetch.openCalendar();
  fetch.search();
  fetch.refuseUnread();
  fetch.startGrid();
  fetch.clearList();
  outlookValues().gRowItems = {};
  fetch.walk();
  fetch.showResults();
}

}  // namespace hourbook

#include "workspace/modFollowCalendar.h"

#include "outlook/OutlookValues.h"
#include "platform/basic/clock.h"
#include "platform/process/process.h"
#include "shell/modErrorReport.h"
#include "shell/Present.h"
#include "shell/Tolerate.h"
#include "workspace/modGetData.h"
#include "workspace/PlaceInList.h"
#include "workspace/ReportForm.h"
#include "workspace/WorkspaceValues.h"

namespace hourbook {

using platform::basic::Clock;
using platform::calendar::Look;

namespace {

inline constexpr int followEvery = 500;  // milliseconds
/// Of the time that following takes, so much again belongs to the user: a calendar may change all the time.
inline constexpr int restFactor = 3;

bool isIdle() {
  const WorkspaceValues& values = workspaceValues();
  if (values.gFetching || !values.listed) return false;
  if (values.gGridMode && values.gGridView && values.gGridView->fncHasUnsavedHours()) return false;
  return Clock::current().milliseconds() >= values.restsUntil && !reportForm().UserIsBusy();
}

/// None when it cannot be said.
std::optional<bool> othersChanged(Look look) {
  QString tag;
  if (tolerate([&] { tag = present(outlookValues().gCalendarFolder).OthersTag(look); })) return std::nullopt;
  return workspaceValues().othersTag != tag;
}

class Hourglass {
 public:
  explicit Hourglass(ReportForm& form) : form_(form) { form_.setMousePointer(vbHourglass); }
  ~Hourglass() { form_.setMousePointer(vbDefault); }
  Hourglass(const Hourglass&) = delete;
  Hourglass& operator=(const Hourglass&) = delete;

 private:
  ReportForm& form_;
};

std::optional<bool> othersChangedByNow() {
  const Hourglass hourglass(reportForm());
  return othersChanged(Look::Thorough);
}

}  // namespace

void subStartFollowing() {
  ReportForm& form = reportForm();
  form.timFollowCalendar.setInterval(followEvery);
  form.timFollowCalendar.setTimerEnabled(true);
}

void timFollowCalendar_Timer() try {
  if (!isIdle() || !othersChanged(Look::Glance).value_or(false)) return;
  const qint64 begun = Clock::current().milliseconds();
  const auto failure = tolerate([] { subFollowCalendar(); });
  const qint64 ended = Clock::current().milliseconds();
  workspaceValues().restsUntil = ended + restFactor * (ended - begun);
  if (failure) subLog(QStringLiteral("The list cannot follow the calendar: ") + failure->description());
} catch (const platform::Failure& failure) {
  subHandleError(failure, QStringLiteral("timFollowCalendar_Timer"));
}

void subFetchWhatOthersChanged() {
  if (workspaceValues().listed && othersChangedByNow().value_or(false)) subFollowCalendar();
}

void subFollowCalendar() {
  if (!workspaceValues().listed) return;
  PlaceInList place;
  subGetDataAgain();
  place.restore();
}

QList<QStringList> fncTextsOfRows() {
  constexpr int columns = 7;
  const platform::owc::Spreadsheet& sheet = reportForm().exsThisWeek;
  QList<QStringList> rows;
  for (int row = 2; row <= workspaceValues().gLastRow; ++row) {
    QStringList texts;
    for (int column = 1; column <= columns; ++column) texts.append(sheet.text(row, column));
    rows.append(texts);
  }
  return rows;
}

}  // namespace hourbook

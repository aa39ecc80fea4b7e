#include "platform/basic/clock.h"
#include "platform/outlook/constants.h"
#include "workspace/modGetData.h"
#include "workspace/modReportForm.h"
#include "workspaceworld.h"

namespace tests {
namespace {

namespace calendar = platform::calendar;
using testing::ElementsAre;

const QString complete = QStringLiteral(";Acme;Website;Design");

calendar::Recurrence daily(int count) {
  calendar::Recurrence rule;
  rule.count = count;
  return rule;
}

/// The list shows all appointments of Monday, 13 May, to Friday, 17 May 2024, unless a test says otherwise.
/// All of it holds for each generation of the spreadsheet component.
class Fetching : public testing::TestWithParam<int> {
 protected:
  Fetching() {
    w.withDatePickers();
    w.loadForm(static_cast<qint16>(GetParam()));
    w.setPeriod(QDate(2024, 5, 13), QDate(2024, 5, 17));
    w.form->cmbFilterCalendar.setText(QStringLiteral("All appointments"));
  }
  void fetch() { subGetData(); }
  void showMarked() { w.form->cmbFilterCalendar.setListIndex(0); }
  void showNotMarked() { w.form->cmbFilterCalendar.setListIndex(1); }
  /// Puts the same calendar behind a store that fails where it is told to.
  std::shared_ptr<calendar::FailingStore> failing() {
    auto store = std::make_shared<calendar::FailingStore>(w.calendar);
    platform::outlook::Profile profile;
    profile.stores.append(store);
    profile.openFolder = w.folder;
    w.outlook->gOutlookApp = std::make_shared<platform::outlook::Application>(profile);
    w.outlook->gCalendarFolder = w.outlook->gOutlookApp->ActiveExplorer()->CurrentFolder();
    return store;
  }
  calendar::Item meetingRequest(const QDateTime& start) const {
    calendar::Item request = w.appointment(QStringLiteral("Request"), start);
    request.messageClass = platform::outlook::classMeetingRequest;
    return request;
  }
  WorkspaceWorld w;
};
INSTANTIATE_TEST_SUITE_P(Generation, Fetching, testing::Values(9, 10, 11), testing::PrintToStringParamName());

TEST_P(Fetching, ShowsTheStartInBoldWhereItsTimeZoneIsUnknown) {
  calendar::Item elsewhere = w.appointment(QStringLiteral("Elsewhere"), at(14, 9));
  elsewhere.zoneUnknown = true;
  w.calendar->add(w.folder, elsewhere);
  w.add(QStringLiteral("Here"), at(15, 9));
  fetch();
  EXPECT_TRUE(w.form->exsThisWeek.Range(QStringLiteral("E2")).format().bold);
  EXPECT_FALSE(w.form->exsThisWeek.Range(QStringLiteral("A2")).format().bold);
  EXPECT_FALSE(w.form->exsThisWeek.Range(QStringLiteral("E3")).format().bold);
  EXPECT_EQ(w.cell(QStringLiteral("E2")), QStringLiteral("Tue 5/14/2024"));
  w.setPeriod(QDate(2024, 5, 15), QDate(2024, 5, 17));
  fetch();
  EXPECT_FALSE(w.form->exsThisWeek.Range(QStringLiteral("E2")).format().bold);
}

TEST_P(Fetching, PutsOneRowForEachAppointmentInOrderOfTime) {
  w.add(QStringLiteral("Later"), at(15, 14));
  w.add(QStringLiteral("Earlier"), at(14, 9));
  fetch();
  EXPECT_THAT(w.subjects(), ElementsAre(QStringLiteral("Earlier"), QStringLiteral("Later")));
  EXPECT_EQ(w.workspace->gLastRow, 3);
}

TEST_P(Fetching, FillsTheColumnsOfARow) {
  w.add(QStringLiteral("Workshop"), at(15, 9), 75, complete);
  fetch();
  EXPECT_EQ(w.cell(QStringLiteral("A2")), QStringLiteral("Workshop"));
  EXPECT_EQ(w.cell(QStringLiteral("B2")), QStringLiteral("Acme"));
  EXPECT_EQ(w.cell(QStringLiteral("C2")), QStringLiteral("Website"));
  EXPECT_EQ(w.cell(QStringLiteral("D2")), QStringLiteral("Design"));
  EXPECT_EQ(w.cell(QStringLiteral("E2")), QStringLiteral("Wed 5/15/2024"));
  EXPECT_EQ(w.cell(QStringLiteral("F2")), QStringLiteral("1.25"));
  EXPECT_EQ(w.cell(QStringLiteral("G2")), QStringLiteral("Not Posted"));
  EXPECT_EQ(w.cell(QStringLiteral("H2")), QStringLiteral("5"));
}

TEST_P(Fetching, LeavesCellsOfEmptyMarkingsEmptyAndCountsThemAllTheSame) {
  w.add(QStringLiteral("Half marked"), at(15, 9), 60, QStringLiteral(";Website"));
  fetch();
  EXPECT_EQ(w.cell(QStringLiteral("B2")), QString());
  EXPECT_EQ(w.cell(QStringLiteral("C2")), QStringLiteral("Website"));
  EXPECT_EQ(w.cell(QStringLiteral("H2")), QStringLiteral("5"));
}

TEST_P(Fetching, ShowsTheWeekdayAndTheDateInTheSystemsFormat) {
  w.world.setLocale(QStringLiteral("sv_SE"));
  w.add(QStringLiteral("Workshop"), at(15, 9));
  fetch();
  EXPECT_EQ(w.cell(QStringLiteral("E2")), QStringLiteral("ons 2024-05-15"));
}

TEST_P(Fetching, ShowsTheDayOnWhichARowWasReported) {
  calendar::Item item = w.appointment(QStringLiteral("Done"), at(15, 9));
  item.billingInformation = QStringLiteral("5/15/2024 4:30:00 PM");
  w.calendar->add(w.folder, item);
  fetch();
  EXPECT_EQ(w.cell(QStringLiteral("G2")), QStringLiteral("2024-05-15"));
}

TEST_P(Fetching, ShowsABillingTextThatIsNoDateAsItStands) {
  calendar::Item item = w.appointment(QStringLiteral("Odd"), at(15, 9));
  item.billingInformation = QStringLiteral("by hand");
  w.calendar->add(w.folder, item);
  fetch();
  EXPECT_EQ(w.cell(QStringLiteral("G2")), QStringLiteral("by hand"));
}

TEST_P(Fetching, KeepsTheAppointmentBehindEachRowUnderItsNumber) {
  w.add(QStringLiteral("First"), at(14, 9));
  w.add(QStringLiteral("Second"), at(15, 9));
  fetch();
  ASSERT_EQ(w.outlook->gRowItems.Count(), 2);
  EXPECT_EQ(w.outlook->gRowItems.Item(QStringLiteral("2"))->Subject(), QStringLiteral("First"));
  EXPECT_EQ(w.outlook->gRowItems.Item(QStringLiteral("3"))->Subject(), QStringLiteral("Second"));
  fetch();
  EXPECT_EQ(w.outlook->gRowItems.Count(), 2);
}

TEST_P(Fetching, TakesNothingOutsideOfThePeriod) {
  w.add(QStringLiteral("Day before"), at(12, 23, 30));
  w.add(QStringLiteral("First minute"), at(13, 0, 0));
  w.add(QStringLiteral("Last minute"), at(17, 23, 59));
  w.add(QStringLiteral("Late on the day after"), at(18, 23, 30));
  fetch();
  EXPECT_THAT(w.subjects(), ElementsAre(QStringLiteral("First minute"), QStringLiteral("Last minute")));
}

TEST_P(Fetching, SaysThatAnEmptyPeriodHasNoAppointments) {
  fetch();
  EXPECT_EQ(w.cell(QStringLiteral("A2")), QStringLiteral("No appointments found!"));
  EXPECT_EQ(w.form->exsThisWeek.ViewableRange(), QStringLiteral("A1:G2"));
  EXPECT_EQ(w.workspace->gLastRow, 1);
}

TEST_P(Fetching, ShowsAllRowsAndNoMore) {
  for (int hour = 8; hour < 12; ++hour) w.add(QStringLiteral("Meeting"), at(15, hour));
  fetch();
  EXPECT_EQ(w.form->exsThisWeek.ViewableRange(), QStringLiteral("A1:G5"));
}

TEST_P(Fetching, ForgetsTheRowsOfTheFetchBefore) {
  w.add(QStringLiteral("Only on Tuesday"), at(14, 9), 60, complete);
  fetch();
  w.setPeriod(QDate(2024, 5, 15), QDate(2024, 5, 15));
  fetch();
  EXPECT_EQ(w.cell(QStringLiteral("A2")), QStringLiteral("No appointments found!"));
  for (const char* address : {"B2", "C2", "D2", "E2", "F2", "G2"})
    EXPECT_EQ(w.cell(QString::fromLatin1(address)), QString()) << address;
}

TEST_P(Fetching, SaysThatItIsFetchingWhileItDoes) {
  QString meanwhile;
  int pointer = 0;
  w.screen->onRefresh = [&] {
    meanwhile = w.cell(QStringLiteral("A2"));
    pointer = w.form->MousePointer();
  };
  fetch();
  EXPECT_EQ(meanwhile, QStringLiteral("Fetching appointments ..."));
  EXPECT_EQ(pointer, 11);
  EXPECT_EQ(w.form->MousePointer(), 0);
}

TEST_P(Fetching, KeepsTheSheetsEventsOutMeanwhile) {
  bool fetching = false, events = true;
  w.screen->onRefresh = [&] {
    fetching = w.workspace->gFetching;
    events = w.form->exsThisWeek.EnableEvents;
  };
  fetch();
  EXPECT_TRUE(fetching);
  EXPECT_FALSE(events);
  EXPECT_FALSE(w.workspace->gFetching);
  EXPECT_TRUE(w.form->exsThisWeek.EnableEvents);
}

TEST_P(Fetching, LocksTheHeaderAndTheWeekdayAndLeavesTheRestToTheUser) {
  w.add(QStringLiteral("Meeting"), at(15, 9));
  fetch();
  EXPECT_TRUE(w.form->exsThisWeek.ActiveSheet.Protection.Enabled);
  const auto locked = [&](const char* address) {
    return w.form->exsThisWeek.Range(QString::fromLatin1(address)).format().locked;
  };
  for (const char* address : {"A1", "G1", "J1", "E2", "E200", "H2"}) EXPECT_TRUE(locked(address)) << address;
  for (const char* address : {"A2", "D200", "F2", "G200"}) EXPECT_FALSE(locked(address)) << address;
}

TEST_P(Fetching, HidesTheDropDownsOfTheRow) {
  w.form->cmbMeta1.setVisible(true);
  w.form->cmbMeta2.setVisible(true);
  w.form->cmbMeta3.setVisible(true);
  fetch();
  EXPECT_FALSE(w.form->cmbMeta1.Visible() || w.form->cmbMeta2.Visible() || w.form->cmbMeta3.Visible());
}

TEST_P(Fetching, StopsTheCalculationMeanwhileAndOnTheNewerGenerationsForGood) {
  platform::owc::Spreadsheet& sheet = w.form->exsThisWeek;
  if (GetParam() != 9) {
    fetch();
    EXPECT_EQ(sheet.Calculation, platform::owc::xlCalculationManual);
    return;
  }
  bool meanwhile = true;
  w.screen->onRefresh = [&] { meanwhile = sheet.EnableAutoCalculate; };
  fetch();
  EXPECT_FALSE(meanwhile);
  EXPECT_TRUE(sheet.EnableAutoCalculate);
}

TEST_P(Fetching, ShowsOnlyCompletelyMarkedAppointmentsWhenAsked) {
  w.add(QStringLiteral("Complete"), at(15, 9), 60, complete);
  w.add(QStringLiteral("One value is missing"), at(15, 10), 60, QStringLiteral(";Acme;Website"));
  w.add(QStringLiteral("Unmarked"), at(15, 11));
  showMarked();
  EXPECT_THAT(w.subjects(), ElementsAre(QStringLiteral("Complete")));
  showNotMarked();
  EXPECT_THAT(w.subjects(), ElementsAre(QStringLiteral("One value is missing"), QStringLiteral("Unmarked")));
}

TEST_P(Fetching, LeavesOutAllDayEventsWhenTheSettingsSaySo) {
  w.addAllDay(QStringLiteral("Fair"), QDate(2024, 5, 14), 2);
  w.add(QStringLiteral("A day long"), at(15, 8), 1440);
  w.add(QStringLiteral("Longer than a day"), at(16, 8), 1441);
  w.personal().FilterEvents = true;
  fetch();
  EXPECT_THAT(w.subjects(), ElementsAre(QStringLiteral("Longer than a day")));
  w.personal().FilterEvents = false;
  fetch();
  EXPECT_THAT(w.subjects().size(), 3);
}

TEST_P(Fetching, CountsAnAllDayEventAs24HoursWithoutConversion) {
  w.addAllDay(QStringLiteral("Fair"), QDate(2024, 5, 14));
  fetch();
  EXPECT_EQ(w.cell(QStringLiteral("F2")), QStringLiteral("24"));
}

TEST_P(Fetching, CountsAnAllDayEventAsTheSettingsHoursWithoutLunch) {
  w.personal().Convert24 = true;
  w.personal().RemoveLunch = true;
  w.addAllDay(QStringLiteral("Fair"), QDate(2024, 5, 14));
  fetch();
  EXPECT_EQ(w.cell(QStringLiteral("F2")), QStringLiteral("8"));
}

TEST_P(Fetching, LeavesOutEverySensitivityButNormalWhenTheSettingsSaySo) {
  using calendar::Sensitivity;
  int hour = 8;
  for (Sensitivity each :
       {Sensitivity::Normal, Sensitivity::Personal, Sensitivity::Private, Sensitivity::Confidential}) {
    calendar::Item item = w.appointment(QString::number(int(each)), at(15, hour++));
    item.sensitivity = each;
    w.calendar->add(w.folder, item);
  }
  w.personal().FilterPrivate = true;
  fetch();
  EXPECT_THAT(w.subjects(), ElementsAre(QStringLiteral("0")));
}

TEST_P(Fetching, ShowsEachOccurrenceOfASeries) {
  w.calendar->addSeries(w.folder, w.appointment(QStringLiteral("Daily"), at(14, 9), 30, complete), daily(3));
  fetch();
  EXPECT_THAT(w.subjects(),
              ElementsAre(QStringLiteral("Daily"), QStringLiteral("Daily"), QStringLiteral("Daily")));
  EXPECT_EQ(w.cell(QStringLiteral("E4")), QStringLiteral("Thu 5/16/2024"));
  EXPECT_EQ(w.cell(QStringLiteral("B4")), QStringLiteral("Acme"));
}

TEST_P(Fetching, LeavesOutSeriesWhenTheSettingsSaySo) {
  w.calendar->addSeries(w.folder, w.appointment(QStringLiteral("Daily"), at(14, 9)), daily(3));
  w.add(QStringLiteral("Once"), at(15, 12));
  w.personal().FilterRecurring = true;
  fetch();
  EXPECT_THAT(w.subjects(), ElementsAre(QStringLiteral("Once")));
}

TEST_P(Fetching, TakesTheMarkingOfAChangedOccurrenceFromItsSeries) {
  const auto master = w.calendar->addSeries(
      w.folder, w.appointment(QStringLiteral("Weekly"), at(14, 9), 60, complete), daily(2));
  w.calendar->addException(w.folder, master, QStringLiteral("20240515T090000"),
                           w.appointment(QStringLiteral("Moved"), at(15, 13), 60, QStringLiteral(";Beta")));
  fetch();
  EXPECT_EQ(w.cell(QStringLiteral("A3")), QStringLiteral("Moved"));
  EXPECT_EQ(w.cell(QStringLiteral("B3")), QStringLiteral("Acme"));
}

TEST_P(Fetching, ShowsAMeetingRequestAsItsAppointmentOnTheRequestsDate) {
  const calendar::Item request = meetingRequest(at(15, 9));
  w.calendar->addMeetingRequest(w.folder, request,
                                w.appointment(QStringLiteral("Meeting"), at(28, 10), 90, complete));
  fetch();
  EXPECT_THAT(w.subjects(), ElementsAre(QStringLiteral("Meeting")));
  EXPECT_EQ(w.cell(QStringLiteral("B2")), QStringLiteral("Acme"));
  EXPECT_EQ(w.cell(QStringLiteral("E2")), QStringLiteral("Tue 5/28/2024"));
  EXPECT_EQ(w.cell(QStringLiteral("F2")), QStringLiteral("1.5"));
}

TEST_P(Fetching, LeavesOutAMeetingRequestWithoutAnAppointmentAndGoesOn) {
  w.calendar->addMeetingRequest(w.folder, meetingRequest(at(14, 9)), std::nullopt);
  w.add(QStringLiteral("Next"), at(15, 9));
  fetch();
  EXPECT_THAT(w.subjects(), ElementsAre(QStringLiteral("Next")));
}

TEST_P(Fetching, LeavesOutARequestFromOutsideOfThePeriodThoughItsAppointmentLiesInside) {
  w.calendar->addMeetingRequest(w.folder, meetingRequest(at(28, 9)),
                                w.appointment(QStringLiteral("Meeting"), at(15, 10), 60, complete));
  w.calendar->addMeetingRequest(w.folder, meetingRequest(at(18, 9)),
                                w.appointment(QStringLiteral("On the margin"), at(15, 11), 60, complete));
  fetch();
  EXPECT_EQ(w.workspace->gLastRow, 1);
}

TEST_P(Fetching, LogsThatItTakesTheAppointmentOfARequest) {
  w.calendar->addMeetingRequest(w.folder, meetingRequest(at(15, 9)),
                                w.appointment(QStringLiteral("Meeting"), at(15, 10)));
  w.startLog();
  fetch();
  EXPECT_TRUE(w.logged().contains(QStringLiteral("Getting the appointment from a meeting request")));
}

TEST_P(Fetching, ListsAChangedOccurrenceAsMarkedWhenItsSeriesIs) {
  const auto master = w.calendar->addSeries(
      w.folder, w.appointment(QStringLiteral("Weekly"), at(14, 9), 60, complete), daily(2));
  w.calendar->addException(w.folder, master, QStringLiteral("20240515T090000"),
                           w.appointment(QStringLiteral("Moved"), at(15, 13)));
  showMarked();
  EXPECT_THAT(w.subjects(), ElementsAre(QStringLiteral("Weekly"), QStringLiteral("Moved")));
  EXPECT_EQ(w.cell(QStringLiteral("B3")), QStringLiteral("Acme"));
}

TEST_P(Fetching, ListsAChangedOccurrenceOfALostSeriesAsNotMarkedAndGoesOn) {
  const auto master = w.calendar->addSeries(
      w.folder, w.appointment(QStringLiteral("Daily"), at(14, 9), 60, complete), daily(1));
  w.calendar->addException(w.folder, master, QStringLiteral("20240514T090000"),
                           w.appointment(QStringLiteral("Moved"), at(14, 13), 60, complete));
  w.add(QStringLiteral("Next"), at(15, 9));
  const auto store = failing();
  store->onCall = [this, store = store.get(), master](calendar::FailingStore::Operation operation) {
    using Operation = calendar::FailingStore::Operation;
    if (operation == Operation::Items && store->calls(Operation::Items) == 2)
      w.calendar->removeByAnother(w.folder, master);
  };
  showNotMarked();
  EXPECT_THAT(w.subjects(), ElementsAre(QStringLiteral("Moved"), QStringLiteral("Next")));
  EXPECT_EQ(w.cell(QStringLiteral("B2")), QString());
  EXPECT_FALSE(w.workspace->gFetching);
}

TEST_P(Fetching, RunsOnOverTheTurnOfTheYear) {
  const auto winter = [](int year, int month, int day) {
    return QDateTime(QDate(year, month, day), QTime(9, 0), QTimeZone("Europe/Stockholm"));
  };
  w.add(QStringLiteral("Last year"), winter(2024, 12, 31));
  w.add(QStringLiteral("New year"), winter(2025, 1, 1));
  w.add(QStringLiteral("A year later"), winter(2025, 12, 31));
  w.setPeriod(QDate(2024, 12, 30), QDate(2025, 1, 2));
  fetch();
  EXPECT_THAT(w.subjects(), ElementsAre(QStringLiteral("Last year"), QStringLiteral("New year")));
  EXPECT_EQ(w.cell(QStringLiteral("E3")), QStringLiteral("Wed 1/1/2025"));
}

TEST_P(Fetching, TakesTheWholeOfADayOnWhichTheClocksAreSet) {
  for (const QDate& day : {QDate(2024, 3, 31), QDate(2024, 10, 27)}) {
    const QTimeZone zone("Europe/Stockholm");
    w.addAllDay(QStringLiteral("Fair"), day);
    w.add(QStringLiteral("Midnight"), QDateTime(day, QTime(0, 0), zone), 15);
    w.add(QStringLiteral("Late"), QDateTime(day, QTime(23, 30), zone), 15);
    w.add(QStringLiteral("Too late"), QDateTime(day.addDays(1), QTime(0, 0), zone), 15);
    w.setPeriod(day.addDays(-1), day);
    fetch();
    EXPECT_THAT(w.subjects(),
                ElementsAre(QStringLiteral("Fair"), QStringLiteral("Midnight"), QStringLiteral("Late")));
    EXPECT_EQ(w.cell(QStringLiteral("F2")), QStringLiteral("24"));
  }
}

TEST_P(Fetching, SetsTheFontOfItsRowsAndLeavesRow200Alone) {
  platform::owc::Spreadsheet& sheet = w.form->exsThisWeek;
  sheet.ActiveSheet.Protection.Enabled = false;
  sheet.Range(QStringLiteral("a1:g200")).setFontName(QStringLiteral("Courier"));
  sheet.Range(QStringLiteral("a1:g200")).setFontSize(12);
  fetch();
  for (const char* address : {"A2", "G2", "A199", "G199"}) {
    const auto format = sheet.Range(QString::fromLatin1(address)).format();
    EXPECT_EQ(format.fontName, QStringLiteral("Tahoma")) << address;
    EXPECT_EQ(format.fontSize, 8) << address;
  }
  for (const char* address : {"A1", "A200", "G200"}) {
    const auto format = sheet.Range(QString::fromLatin1(address)).format();
    EXPECT_EQ(format.fontName, QStringLiteral("Courier")) << address;
    EXPECT_EQ(format.fontSize, 12) << address;
  }
}

TEST_P(Fetching, SaysNothingOf198Rows) {
  for (int n = 0; n < 198; ++n) w.add(QString::number(n + 1), at(15, 8).addSecs(n * 60));
  fetch();
  EXPECT_EQ(w.workspace->gLastRow, 199);
  EXPECT_TRUE(w.world.dialogs.shown.isEmpty());
}

TEST_P(Fetching, WarnsAt199RowsAndReadsNoFurther) {
  for (int n = 0; n < 199; ++n) w.add(QString::number(n + 1), at(15, 8).addSecs(n * 60));
  w.world.dialogs.expect(QStringLiteral("more than 99"), 1);
  fetch();
  EXPECT_EQ(w.workspace->gLastRow, 200);
  EXPECT_TRUE(w.world.dialogs.outstanding().isEmpty());
  w.add(QStringLiteral("200"), at(16, 8));
  w.world.dialogs.expect(QStringLiteral("more than 99"), 1);
  fetch();
  EXPECT_EQ(w.workspace->gLastRow, 200);
  EXPECT_EQ(w.outlook->gRowItems.Count(), 199);
  EXPECT_EQ(w.cell(QStringLiteral("A201")), QString());
}

TEST_P(Fetching, EndsTheProgramWithoutSettings) {
  w.settings->gPersonalSettings.reset();
  w.world.dialogs.expect(QStringLiteral("Sub routine : subGetData"), 7);
  EXPECT_ENDS_PROCESS(fetch());
  EXPECT_TRUE(w.world.dialogs.shown.last().text.contains(QStringLiteral("#91")));
}

TEST_P(Fetching, EndsTheProgramUnderTheNameOfTheRowForHoursThatAreNoNumber) {
  w.personal().Convert24 = true;
  w.personal().Convert24Hours = platform::basic::Value(QStringLiteral("abc"));
  w.addAllDay(QStringLiteral("Fair"), QDate(2024, 5, 14));
  w.world.dialogs.expect(QStringLiteral("Sub routine : subAddRow"), 7);
  EXPECT_ENDS_PROCESS(fetch());
}

TEST_P(Fetching, StopsAfterTheRow200AndSaysSo) {
  for (int n = 0; n < 205; ++n) w.add(QString::number(n + 1), at(15, 8).addSecs(n * 60));
  w.world.dialogs.expect(QStringLiteral("more than 99 appointments\" & vbCrLf & \"Choose"), 1);
  fetch();
  EXPECT_EQ(w.workspace->gLastRow, 200);
  EXPECT_EQ(w.cell(QStringLiteral("A200")), QStringLiteral("199"));
  EXPECT_EQ(w.form->exsThisWeek.ViewableRange(), QStringLiteral("A1:G200"));
  EXPECT_FALSE(w.workspace->gFetching);
}

TEST_P(Fetching, KeepsAnOldRow200UntilTheNextOneIsWritten) {
  for (int n = 0; n < 199; ++n) w.add(QString::number(n + 1), at(15, 8).addSecs(n * 60));
  w.world.dialogs.expect(QStringLiteral("more than 99"), 1);
  fetch();
  w.setPeriod(QDate(2024, 5, 13), QDate(2024, 5, 13));
  fetch();
  EXPECT_EQ(w.cell(QStringLiteral("A199")), QString());
  EXPECT_EQ(w.cell(QStringLiteral("A200")), QStringLiteral("199"));
}

TEST_P(Fetching, ShowsNothingWhenTheCalendarCannotBeSearched) {
  w.add(QStringLiteral("Unreachable"), at(15, 9));
  failing()->failAlways(calendar::FailingStore::Operation::Items,
                        platform::Failure(calendar::errStoreBroken, QStringLiteral("The disk is gone")));
  fetch();
  EXPECT_EQ(w.cell(QStringLiteral("A2")), QStringLiteral("No appointments found!"));
  EXPECT_FALSE(w.workspace->gFetching);
}

TEST_P(Fetching, EndsTheProgramWithoutACalendar) {
  w.outlook->gCalendarFolder.reset();
  w.world.dialogs.expect(QStringLiteral("Sub routine : subGetData"), 7);
  EXPECT_ENDS_PROCESS(fetch());
}

TEST_P(Fetching, LogsTheFilterOfItsSearch) {
  w.add(QStringLiteral("Meeting"), at(15, 9));
  w.setPeriod(QDate(2024, 5, 13), QDate(2024, 5, 17));
  w.startLog();
  fetch();
  const QString text = w.logged().join(u'\n');
  qsizetype from = 0;
  for (const QString& step :
       {QStringLiteral("Looping through current appointments"), QStringLiteral("Clearing the list"),
        QStringLiteral("Setting an object reference to all apps in the calendar"),
        QStringLiteral("Getting values for this week"),
        QStringLiteral("Building an sql string to find all appointment in this time span"),
        QStringLiteral("Beginning search with the string [Start] >=\"#5/13/2024 00:00#\" and [Start]<= "
                       "\"5/18/2024 23:59#\""),
        QStringLiteral("Fetching values and adding rows"),
        QStringLiteral("Attempting to determine if the current item is properly filled out"),
        QStringLiteral("Looping through values to build graph")}) {
    const qsizetype found = text.indexOf(step, from);
    EXPECT_GE(found, from) << step.toStdString();
    from = found;
  }
}

TEST_P(Fetching, LogsEachMarkingThatItWrites) {
  w.add(QStringLiteral("Meeting"), at(15, 9), 60, complete);
  w.startLog();
  fetch();
  EXPECT_TRUE(w.logged().contains(QStringLiteral("Setting value of cell 2 in range $A$2:$F$2 to Acme")));
}

TEST(PersonalFilter, ThatCannotBeReadEndsTheProgramUnderItsName) {
  WorkspaceWorld w;
  w.add(QStringLiteral("Meeting"), at(15, 9));
  const auto found = w.outlook->gCalendarFolder->Items().Item(1);
  w.settings->gPersonalSettings.reset();
  w.world.dialogs.expect(QStringLiteral("Sub routine : fncCheckInclude"), 7);
  EXPECT_ENDS_PROCESS(fncCheckInclude(*found));
  EXPECT_TRUE(w.world.dialogs.shown.last().text.contains(QStringLiteral("#91")));
}

TEST(PersonalFilter, LetsEverythingThroughWithoutFilters) {
  WorkspaceWorld w;
  calendar::Item item = w.appointment(QStringLiteral("Private fair"), at(15, 0), 1440);
  item.sensitivity = calendar::Sensitivity::Private;
  item.allDay = true;
  w.calendar->add(w.folder, item);
  const auto found = w.outlook->gCalendarFolder->Items().Item(1);
  EXPECT_TRUE(fncCheckInclude(*found));
  w.personal().FilterEvents = true;
  EXPECT_FALSE(fncCheckInclude(*found));
}

}  // namespace
}  // namespace tests

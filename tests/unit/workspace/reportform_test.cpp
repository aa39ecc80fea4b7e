#include "settings/cMetaDictionary.h"
#include "workspace/modDropDowns.h"
#include "workspace/modReportForm.h"
#include "workspaceworld.h"

namespace tests {
namespace {

using testing::ElementsAre;

QStringList entriesOf(const platform::forms::ComboBox& combo) {
  QStringList entries;
  for (int i = 0; i < combo.ListCount(); ++i) entries.append(combo.List(i));
  return entries;
}

TEST(ReportFormAtLoad, FetchesTodaysMarkedAppointmentsBeforeItIsShown) {
  WorkspaceWorld w;
  w.withDatePickers();
  w.add(QStringLiteral("Yesterday"), at(14, 9), 60, QStringLiteral(";Acme;Website;Design"));
  w.add(QStringLiteral("Today"), at(15, 9), 60, QStringLiteral(";Acme;Website;Design"));
  w.add(QStringLiteral("Today, unmarked"), at(15, 10));
  w.loadForm();
  EXPECT_THAT(w.subjects(), ElementsAre(QStringLiteral("Today")));
  EXPECT_EQ(w.form->cmbFilterCalendar.ListIndex(), 0);
  EXPECT_EQ(w.screen->shows, 0);
}

TEST(ReportFormAtLoad, FetchesTheWeekUpToTodayWithoutDatePickers) {
  WorkspaceWorld w;
  w.add(QStringLiteral("A week ago"), at(8, 9), 60, QStringLiteral(";Acme;Website;Design"));
  w.loadForm();
  EXPECT_THAT(w.subjects(), ElementsAre(QStringLiteral("A week ago")));
}

TEST(ReportFormAtLoad, AddsTheDatePickersWhereTheyAreInstalled) {
  WorkspaceWorld w;
  w.withDatePickers();
  w.loadForm();
  EXPECT_TRUE(w.workspace->gHasDatePickers);
  EXPECT_FALSE(w.form->fraPeriod.Visible());
  int left = 120;
  for (const auto& picker : {w.form->dtpStartDate, w.form->dtpEndDate}) {
    ASSERT_NE(picker, nullptr);
    EXPECT_TRUE(picker->Visible());
    EXPECT_EQ(picker->Value(), Date::of(2024, 5, 15));
    EXPECT_EQ(picker->Height, 300);
    EXPECT_EQ(picker->Top, 240);
    EXPECT_EQ(picker->Left, left);
    EXPECT_EQ(picker->FontName, QStringLiteral("Tahoma"));
    EXPECT_EQ(picker->FontSize, 8);
    left = 1900;
  }
  EXPECT_EQ(w.form->dtpStartDate->Name(), QStringLiteral("dtpStartDate"));
  EXPECT_EQ(w.form->dtpEndDate->Name(), QStringLiteral("dtpEndDate"));
}

TEST(ReportFormAtLoad, FallsBackToTheDropDownsWithoutDatePickers) {
  WorkspaceWorld w;
  w.loadForm();
  EXPECT_FALSE(w.workspace->gHasDatePickers);
  EXPECT_TRUE(w.form->fraPeriod.Visible());
  EXPECT_EQ(w.form->dtpStartDate, nullptr);
  EXPECT_EQ(w.form->cmbYear.Text(), QStringLiteral("2024"));
  EXPECT_EQ(w.form->cmbMonth.Text(), QStringLiteral("May"));
  EXPECT_EQ(w.form->cmbDay.Text(), QStringLiteral("15"));
}

TEST(ReportFormAtLoad, TakesTheFirstPickerAwayWhenTheSecondCannotBeMade) {
  WorkspaceWorld w;
  int made = 0;
  w.world.components.add<platform::forms::DTPicker>(QStringLiteral("MSComCtl2.DTPicker"), [&made] {
    if (++made == 2) throw platform::Failure(429, QStringLiteral("no more"));
    return std::make_shared<platform::forms::DTPicker>(QString());
  });
  w.loadForm();
  EXPECT_FALSE(w.workspace->gHasDatePickers);
  EXPECT_EQ(w.form->dtpStartDate, nullptr);
  EXPECT_TRUE(w.form->fraPeriod.Visible());
}

TEST(ReportFormAtLoad, OffersMonthsDaysAndSixYears) {
  WorkspaceWorld w;
  w.world.setLocale(QStringLiteral("de_DE"));
  w.loadForm();
  EXPECT_EQ(w.form->cmbMonth.ListCount(), 12);
  EXPECT_EQ(w.form->cmbMonth.List(2), QStringLiteral("März"));
  EXPECT_EQ(w.form->cmbDay.ListCount(), 31);
  EXPECT_THAT(entriesOf(w.form->cmbYear),
              ElementsAre(QStringLiteral("2023"), QStringLiteral("2024"), QStringLiteral("2025"),
                          QStringLiteral("2026"), QStringLiteral("2027"), QStringLiteral("2028")));
}

TEST(ReportFormAtLoad, StartsSevenDaysBackWhenNothingWasReportedYet) {
  WorkspaceWorld w;
  w.loadForm();
  EXPECT_EQ(w.form->txtDays.Text(), QStringLiteral("7"));
}

TEST(ReportFormAtLoad, StartsAtTheLastReport) {
  WorkspaceWorld w;
  w.personal().DateLastReport = Date::of(QDate(2024, 5, 3), QTime(17, 0));
  w.loadForm();
  EXPECT_EQ(w.form->txtDays.Text(), QStringLiteral("12"));
}

TEST(ReportFormAtLoad, FillsTheDropDownsFromTheMetaLists) {
  WorkspaceWorld w;
  w.setLists({QStringLiteral("Customer:Acme;Beta;"), QStringLiteral("Project:Website;")});
  w.loadForm();
  EXPECT_THAT(entriesOf(w.form->cmbMeta1), ElementsAre(QStringLiteral("Acme"), QStringLiteral("Beta")));
  EXPECT_THAT(entriesOf(w.form->cmbMeta2), ElementsAre(QStringLiteral("Website")));
  EXPECT_THAT(entriesOf(w.form->cmbMeta3), ElementsAre());
}

TEST(ReportFormAtLoad, TakesTheColoursBehindItsControls) {
  struct Case {
    qint16 generation;
    bool frame;
  };
  for (const Case& each : {Case{9, false}, Case{10, true}, Case{11, true}}) {
    WorkspaceWorld w;
    w.makeForm(each.generation);
    w.screen->pixel = 0xD8E9EC;
    w.form->Load();
    EXPECT_EQ(w.form->tbsViews.BackColor(), 0xD8E9EC);
    EXPECT_EQ(w.form->chkGrid.BackColor(), 0xD8E9EC);
    EXPECT_EQ(w.form->fraPeriod.BackColor(), each.frame ? 0xD8E9EC : -1) << each.generation;
  }
}

class Generations : public testing::Test {
 protected:
  /// The log of the load.
  QStringList logOf(qint16 generation) {
    w.startLog();
    w.loadForm(generation);
    return w.logged();
  }
  static qsizetype colours(const QStringList& log) {
    return log.indexOf(QStringLiteral("Setting the background color of the control"));
  }
  static qsizetype dates(const QStringList& log) {
    return log.indexOf(QStringLiteral("Attempting to add the MS Date Picker control to the form"));
  }
  WorkspaceWorld w;
};

TEST_F(Generations, NineHasAChartTypeAndTextCellsAndLogsNoLoading) {
  const QStringList log = logOf(9);
  EXPECT_TRUE(log.filter(QStringLiteral("Loading the frm")).isEmpty());
  EXPECT_LT(dates(log), colours(log));
  ASSERT_NE(w.form->cmbChartType, nullptr);
  EXPECT_EQ(w.form->cmbChartType->ListCount(), 17);
  EXPECT_EQ(w.form->cmbChartType->List(0), QStringLiteral("Area"));
  EXPECT_EQ(w.form->cmbChartType->List(16), QStringLiteral("Smoothline Markers"));
  EXPECT_EQ(w.form->exsThisWeek.Range(QStringLiteral("D200")).format().numberFormat, QStringLiteral("Text"));
  EXPECT_EQ(w.form->Name(), QStringLiteral("frm2KReport"));
}

TEST_F(Generations, TenSetsItsDatesUpBeforeItsColours) {
  const QStringList log = logOf(10);
  EXPECT_TRUE(log.contains(QStringLiteral("Loading the frmXPReport")));
  EXPECT_LT(dates(log), colours(log));
  EXPECT_EQ(w.form->cmbChartType, nullptr);
  EXPECT_EQ(w.form->exsThisWeek.Range(QStringLiteral("D200")).format().numberFormat,
            QStringLiteral("General"));
}

TEST_F(Generations, ElevenSetsItsColoursUpFirst) {
  const QStringList log = logOf(11);
  EXPECT_TRUE(log.contains(QStringLiteral("Loading the frm2003Report")));
  EXPECT_LT(colours(log), dates(log));
  EXPECT_EQ(w.form->cmbChartType, nullptr);
}

TEST_F(Generations, LogTheStepsOfTheirStart) {
  w.withDatePickers();
  QStringList steps = logOf(11);
  const QStringList wanted{QStringLiteral("Attempting to add the MS Date Picker control to the form"),
                           QStringLiteral("Setting properties for dtpStartDate"),
                           QStringLiteral("Attempting to set the current date to 5/15/2024"),
                           QStringLiteral("Setting captions for report form")};
  steps.removeIf([&](const QString& step) { return !wanted.contains(step); });
  EXPECT_EQ(steps, wanted);
}

class FailingStep : public testing::Test {
 protected:
  void expectFailureIn(const char* procedure) {
    w.world.dialogs.expect(QStringLiteral("Sub routine : ") + QString::fromLatin1(procedure), 7);
  }
  WorkspaceWorld w;
};

TEST_F(FailingStep, OfTheDateControlsEndsTheProgramUnderItsName) {
  w.makeForm();
  w.settings->gPersonalSettings.reset();
  expectFailureIn("subSetupDateControls");
  EXPECT_ENDS_PROCESS(subSetupDateControls());
}

TEST_F(FailingStep, OfTheMetaListsEndsTheProgramUnderItsName) {
  w.makeForm();
  w.personal().MetaDataLists.Item(1)->MetaDic.reset();
  expectFailureIn("subFillDropDowns");
  EXPECT_ENDS_PROCESS(subFillDropDowns());
}

TEST_F(FailingStep, OfTheCaptionsEndsTheProgramUnderItsName) {
  w.makeForm();
  w.settings->gPersonalSettings.reset();
  expectFailureIn("subSetLangCaptions");
  EXPECT_ENDS_PROCESS(subSetLangCaptions());
}

TEST_F(FailingStep, OfTheLoadItselfEndsTheProgramUnderItsName) {
  w.makeForm();
  w.shell->LNGFILTERS.clear();  // so there is no first filter to choose
  expectFailureIn("Form_Load");
  EXPECT_ENDS_PROCESS(w.form->Load());
}

TEST(Captions, ComeFromThePhrases) {
  WorkspaceWorld w;
  w.loadForm();
  const ReportForm& form = *w.form;
  EXPECT_EQ(form.Caption(), QStringLiteral("Hourbook for Outlook Reporting Report"));
  EXPECT_EQ(form.lblYear.Caption(), w.shell->LNGYEAR);
  EXPECT_EQ(form.lblYear.ToolTipText(), QStringLiteral("This year is default."));
  EXPECT_EQ(form.lblMonth.Caption(), w.shell->LNGMONTH);
  EXPECT_EQ(form.lblDay.Caption(), w.shell->LNGDAY);
  EXPECT_EQ(form.lblFilterCalendar.Caption(), w.shell->LNGSHOW);
  EXPECT_THAT(entriesOf(form.cmbFilterCalendar),
              ElementsAre(QStringLiteral("Marked appointments"), QStringLiteral("Not marked appointments"),
                          QStringLiteral("All appointments")));
  EXPECT_EQ(form.exsThisWeek.TitleBarCaption(), QStringLiteral("Hourbook for Outlook Reporting"));
  EXPECT_EQ(form.lblTotalHours.Caption(), QStringLiteral("Hours"));
  EXPECT_EQ(form.cmdOK.Caption(), w.shell->LNGOK);
  EXPECT_EQ(form.cmdCancel.Caption(), w.shell->LNGCANCEL);
  EXPECT_EQ(form.cmdGetValues.Caption(), QStringLiteral("Get values"));
  EXPECT_EQ(form.lblDaysBefore.Caption(), QStringLiteral("Days before"));
  EXPECT_EQ(form.lblStart.Caption(), w.shell->LNGFROM);
  EXPECT_EQ(form.lblEnd.Caption(), w.shell->LNGTO);
  EXPECT_EQ(form.cmdAddNew.Caption(), w.shell->LNGADD);
  EXPECT_EQ(form.cmdSaveChanges.Caption(), w.shell->LNGSAVE);
  EXPECT_EQ(form.chkGrid.Caption(), w.shell->LNGGRID);
  EXPECT_EQ(form.lblWeek.Caption(), w.shell->LNGWEEK);
  EXPECT_EQ(form.cmdPrint.Caption(), w.shell->LNGPRINT);
}

TEST(Captions, HeadTheColumnsOfThreeMetaLists) {
  WorkspaceWorld w;
  w.loadForm();
  const QStringList heads{QStringLiteral("Subject"), QStringLiteral("Customer"), QStringLiteral("Project"),
                          QStringLiteral("Task"),    QStringLiteral("Weekday"),  QStringLiteral("Hours"),
                          QStringLiteral("Posted")};
  for (int column = 1; column <= heads.size(); ++column) {
    EXPECT_EQ(w.form->exsThisWeek.Cell(1, column).Text(), heads[column - 1]);
    EXPECT_FALSE(w.form->exsThisWeek.columnHidden(column));
  }
  EXPECT_EQ(w.form->tbsViews.Count(), 4);
  EXPECT_EQ(w.form->tbsViews.TabCaption(0), QStringLiteral("By weekday"));
  EXPECT_EQ(w.form->tbsViews.TabCaption(3), QStringLiteral("By Task"));
}

TEST(Captions, HideTheThirdListsColumnWithTwoLists) {
  WorkspaceWorld w;
  w.setLists({QStringLiteral("Customer:Acme;"), QStringLiteral("Project:Website;")});
  w.loadForm();
  EXPECT_FALSE(w.form->exsThisWeek.columnHidden(3));
  EXPECT_TRUE(w.form->exsThisWeek.columnHidden(4));
  EXPECT_EQ(w.form->tbsViews.Count(), 3);
}

TEST(Captions, HideBothColumnsWithOneList) {
  WorkspaceWorld w;
  w.setLists({QStringLiteral("Customer:Acme;")});
  w.makeForm();
  for (auto* dropDown : {&w.form->cmbMeta1, &w.form->cmbMeta2, &w.form->cmbMeta3}) dropDown->setVisible(true);
  subSetLangCaptions();
  EXPECT_TRUE(w.form->cmbMeta1.Visible());
  EXPECT_FALSE(w.form->exsThisWeek.columnHidden(2));
  EXPECT_TRUE(w.form->exsThisWeek.columnHidden(3));
  EXPECT_TRUE(w.form->exsThisWeek.columnHidden(4));
  EXPECT_EQ(w.form->tbsViews.Count(), 2);
  EXPECT_FALSE(w.form->cmbMeta2.Visible());
  EXPECT_FALSE(w.form->cmbMeta3.Visible());
}

TEST(Captions, NameWhatNoLabelStandsBeside) {
  WorkspaceWorld w;
  w.setLists({QStringLiteral("Customer:Acme;"), QStringLiteral("Project:Website;")});
  w.loadForm();
  EXPECT_EQ(w.form->vDaysBefore.AccessibleName(), QStringLiteral("Days before"));
  EXPECT_EQ(w.form->tbsViews.AccessibleName(), QStringLiteral("Statistics"));
  EXPECT_EQ(w.form->cmbMeta1.AccessibleName(), QStringLiteral("Customer"));
  EXPECT_EQ(w.form->cmbMeta2.AccessibleName(), QStringLiteral("Project"));
  EXPECT_EQ(w.form->cmbMeta3.AccessibleName(), QString());
}

class DaysBefore : public testing::Test {
 protected:
  DaysBefore() { w.loadForm(); }
  void type(const char* text) { w.form->txtDays.setText(QString::fromLatin1(text)); }
  WorkspaceWorld w;
};

TEST_F(DaysBefore, MoveTheScrollBarBetweenTwoAndFiftyNine) {
  type("2");
  EXPECT_EQ(w.form->vDaysBefore.Value(), -2);
  type("59");
  EXPECT_EQ(w.form->vDaysBefore.Value(), -59);
}

TEST_F(DaysBefore, LeaveTheScrollBarWhereItWasOutsideOfThat) {
  type("14");
  for (const char* text : {"60", "365", "1", "0"}) {
    type(text);
    EXPECT_EQ(w.form->vDaysBefore.Value(), -14) << text;
    EXPECT_EQ(w.form->txtDays.Text(), QString::fromLatin1(text));
  }
}

TEST_F(DaysBefore, FollowTheScrollBar) {
  w.form->vDaysBefore.setValue(-30);
  EXPECT_EQ(w.form->txtDays.Text(), QStringLiteral("30"));
  w.form->vDaysBefore.setValue(0);
  EXPECT_EQ(w.form->txtDays.Text(), QStringLiteral("0"));
}

TEST_F(DaysBefore, MayBeEmptyWhileTheyAreTyped) {
  type("");
  EXPECT_EQ(w.form->vDaysBefore.Value(), -7);
}

TEST_F(DaysBefore, ThatAreNoNumberEndTheProgram) {
  w.world.dialogs.expect(QStringLiteral("Sub routine : txtDays_Change"), 7);
  EXPECT_ENDS_PROCESS(type("soon"));
}

TEST(SettingTheDate, ShowsBothDatesInThePickers) {
  WorkspaceWorld w;
  w.withDatePickers();
  w.loadForm();
  subSetDate(Date::of(2024, 1, 29), Date::of(2024, 2, 4));
  EXPECT_EQ(w.form->dtpStartDate->Value(), Date::of(2024, 1, 29));
  EXPECT_EQ(w.form->dtpEndDate->Value(), Date::of(2024, 2, 4));
  subSetDate(Date::of(2024, 3, 1), Date());
  EXPECT_EQ(w.form->dtpStartDate->Value(), Date::of(2024, 3, 1));
  EXPECT_EQ(w.form->dtpEndDate->Value(), Date::of(2024, 2, 4));
}

TEST(SettingTheDate, ShowsTheFirstDateAndTheNumberOfDaysInTheDropDowns) {
  WorkspaceWorld w;
  w.loadForm();
  subSetDate(Date::of(2024, 1, 29), Date::of(2024, 2, 4));
  EXPECT_EQ(w.form->cmbYear.Text(), QStringLiteral("2024"));
  EXPECT_EQ(w.form->cmbMonth.ListIndex(), 0);
  EXPECT_EQ(w.form->cmbDay.ListIndex(), 28);
  EXPECT_EQ(w.form->txtDays.Text(), QStringLiteral("7"));
}

TEST(SettingTheDate, TakesAYearThatIsNotOffered) {
  WorkspaceWorld w;
  w.loadForm();
  subSetDate(Date::of(2019, 12, 30), Date());
  EXPECT_EQ(w.form->cmbYear.Text(), QStringLiteral("2019"));
}

TEST(Events, GetValuesFetches) {
  WorkspaceWorld w;
  w.loadForm();
  w.add(QStringLiteral("New"), at(15, 9), 60, QStringLiteral(";Acme;Website;Design"));
  w.form->cmdGetValues.click();
  EXPECT_THAT(w.subjects(), ElementsAre(QStringLiteral("New")));
}

TEST(Events, FetchOnceAtLoadAndForEachRequestAndForNothingElse) {
  for (const qint16 generation : {9, 10, 11}) {
    WorkspaceWorld w;
    w.startLog();
    w.loadForm(generation);
    const auto fetches = [&] { return w.logged().count(QStringLiteral("Clearing the list")); };
    EXPECT_EQ(fetches(), 1) << generation;
    w.form->cmdGetValues.click();
    EXPECT_EQ(fetches(), 2) << generation;
    w.form->cmbFilterCalendar.setListIndex(2);
    EXPECT_EQ(fetches(), 3) << generation;
    w.form->tbsViews.setIndex(1);
    w.form->txtDays.setText(QStringLiteral("14"));
    w.form->vDaysBefore.setValue(-3);
    w.form->cmbYear.setText(QStringLiteral("2023"));
    w.form->cmbMonth.setListIndex(0);
    w.form->cmbDay.setListIndex(0);
    EXPECT_EQ(fetches(), 3) << generation;
  }
}

TEST(Events, ChoosingAFilterFetchesOnlyWhileItCanBeSeen) {
  WorkspaceWorld w;
  w.loadForm();
  w.add(QStringLiteral("New"), at(15, 9));
  w.form->cmbFilterCalendar.setListIndex(2);
  EXPECT_EQ(w.workspace->gLastRow, 2);
  w.form->cmbFilterCalendar.setVisible(false);
  w.form->cmbFilterCalendar.setListIndex(0);
  EXPECT_EQ(w.workspace->gLastRow, 2);
}

TEST(Events, CancelUnloadsTheFormAndEndsTheProgramWithoutAQuestion) {
  WorkspaceWorld w;
  w.loadForm();
  EXPECT_ENDS_PROCESS(w.form->cmdCancel.click());
  EXPECT_EQ(w.screen->unloads, 1);
}

TEST(Events, ClosingTheWindowEndsTheProgramWithoutAQuestion) {
  WorkspaceWorld w;
  w.loadForm();
  EXPECT_ENDS_PROCESS(w.form->windowClosed());
}

TEST(Events, ThatAreNotThereYetAreSwitchedOffAndSayWhy) {
  WorkspaceWorld w;
  w.loadForm();
  for (platform::forms::Control* control : std::initializer_list<platform::forms::Control*>{
           &w.form->cmdPrint, &w.form->cmbWeek, &w.form->cmdAddNew, &w.form->cmdSaveChanges}) {
    EXPECT_FALSE(control->Enabled()) << control->Name().toStdString();
    EXPECT_TRUE(control->ToolTipText().contains(QStringLiteral("not available in this version yet")));
  }
}

TEST(UsingTheForm, BeforeThereIsOneFails) {
  WorkspaceWorld w;
  try {
    reportForm();
    FAIL();
  } catch (const platform::Failure& failure) {
    EXPECT_EQ(failure.number(), platform::failure::objectNotSet);
  }
}

TEST(UsingTheForm, OfAnUnknownGenerationFails) {
  EXPECT_THROW(reportFormVariant(12), platform::Failure);
}

}  // namespace
}  // namespace tests

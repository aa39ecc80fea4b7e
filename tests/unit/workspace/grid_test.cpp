#include "platform/outlook/items.h"
#include "settings/cMarking.h"
#include "workspace/modGetData.h"
#include "workspace/modReportForm.h"
#include "workspaceworld.h"

namespace tests {
namespace {

using testing::ElementsAre;

/// Notes what is asked of the grid.
class NotedGrid : public GridView {
 public:
  void subAddGrid(ReportForm&) override {
    calls.append(QStringLiteral("subAddGrid"));
    subGetData();
  }
  void subDisplayNonGridItems(bool blnDisplay, ReportForm&) override {
    calls.append(QStringLiteral("subDisplayNonGridItems ") +
                 QString::fromLatin1(blnDisplay ? "list" : "grid"));
  }
  void subStartWeek() override { calls.append(QStringLiteral("subStartWeek")); }
  void subAddAppToGrid(platform::outlook::AppointmentItem& item, cMarking& marking) override {
    calls.append(QStringLiteral("subAddAppToGrid ") + item.Subject() + marking.MarkingCategories());
  }
  void subFillGrid() override { calls.append(QStringLiteral("subFillGrid")); }
  void subBuildMetaGrid() override { calls.append(QStringLiteral("subBuildMetaGrid")); }
  void subSumRowToGrid(bool blnAdd) override {
    calls.append(QStringLiteral("subSumRowToGrid ") + QString::fromLatin1(blnAdd ? "true" : "false"));
  }
  void subSaveGridChanges() override { calls.append(QStringLiteral("subSaveGridChanges")); }
  bool fncHasUnsavedHours() const override { return hasUnsavedHours; }
  bool hasUnsavedHours = false;
  QStringList calls;
};

class FetchingForTheGrid : public testing::Test {
 protected:
  FetchingForTheGrid() {
    w.workspace->newGridView = [this] { return grid = std::make_shared<NotedGrid>(); };
    w.withDatePickers();
    w.loadForm();
  }
  WorkspaceWorld w;
  std::shared_ptr<NotedGrid> grid;
};

TEST_F(FetchingForTheGrid, BeginsWhenTheBoxIsTicked) {
  EXPECT_EQ(grid, nullptr);
  w.form->chkGrid.setValue(1);
  ASSERT_NE(grid, nullptr);
  EXPECT_TRUE(w.workspace->gGridMode);
  EXPECT_THAT(grid->calls, ElementsAre(QStringLiteral("subAddGrid"), QStringLiteral("subStartWeek"),
                                       QStringLiteral("subFillGrid"), QStringLiteral("subBuildMetaGrid"),
                                       QStringLiteral("subSumRowToGrid true")));
}

TEST_F(FetchingForTheGrid, EndsWhenTheBoxIsCleared) {
  w.form->chkGrid.setValue(1);
  grid->calls.clear();
  w.form->chkGrid.setValue(0);
  EXPECT_FALSE(w.workspace->gGridMode);
  EXPECT_THAT(grid->calls, ElementsAre(QStringLiteral("subDisplayNonGridItems list")));
}

TEST_F(FetchingForTheGrid, TakesTheWholeWeekOfTheDate) {
  w.form->dtpStartDate->setValue(Date::of(2024, 5, 16));
  w.form->chkGrid.setValue(1);
  // The end lies six days behind the start, so the week is the one that holds that end.
  EXPECT_EQ(w.form->dtpStartDate->Value(), Date::of(2024, 5, 20));
  EXPECT_EQ(w.form->dtpEndDate->Value(), Date::of(2024, 5, 26));
  EXPECT_EQ(grid->dteGridStartDate, Date::of(2024, 5, 20));
  EXPECT_EQ(w.form->cmbWeek.Text(), QStringLiteral("21"));
  EXPECT_FALSE(w.workspace->gIgnoreWeekChange);
}

TEST_F(FetchingForTheGrid, FollowsTheCalendarUnlessHoursWouldGetLost) {
  const auto key = w.add(QStringLiteral("First"), at(21, 9), 60, QStringLiteral(";Acme;Website;Design"));
  w.form->chkGrid.setValue(1);
  platform::calendar::Change change;
  change.subject = QStringLiteral("Moved");
  w.calendar->changeByAnother(w.folder, key, change);
  grid->calls.clear();
  grid->hasUnsavedHours = true;
  Q_EMIT w.form->timFollowCalendar.Tick();
  EXPECT_TRUE(grid->calls.isEmpty());
  grid->hasUnsavedHours = false;
  Q_EMIT w.form->timFollowCalendar.Tick();
  EXPECT_THAT(grid->calls, ElementsAre(QStringLiteral("subStartWeek"),
                                       QStringLiteral("subAddAppToGrid Moved;Acme;Website;Design"),
                                       QStringLiteral("subFillGrid"), QStringLiteral("subBuildMetaGrid"),
                                       QStringLiteral("subSumRowToGrid true")));
}

TEST_F(FetchingForTheGrid, KeepsAMondayAsItIs) {
  w.form->dtpStartDate->setValue(Date::of(2024, 5, 13));
  w.form->chkGrid.setValue(1);
  EXPECT_EQ(grid->dteGridStartDate, Date::of(2024, 5, 13));
}

TEST_F(FetchingForTheGrid, HandsOverEveryAppointmentWhateverTheFilterSays) {
  w.form->dtpStartDate->setValue(Date::of(2024, 5, 13));
  w.add(QStringLiteral("Marked"), at(14, 9), 60, QStringLiteral(";Acme;Website;Design"));
  w.add(QStringLiteral("Unmarked"), at(15, 9));
  w.form->chkGrid.setValue(1);
  EXPECT_TRUE(grid->calls.contains(QStringLiteral("subAddAppToGrid Marked;Acme;Website;Design")));
  EXPECT_TRUE(grid->calls.contains(QStringLiteral("subAddAppToGrid Unmarked")));
  EXPECT_THAT(w.subjects(), ElementsAre(QStringLiteral("Marked")));
}

TEST_F(FetchingForTheGrid, ForgetsItsRowsFirst) {
  w.form->chkGrid.setValue(1);
  grid->intVisibleRows = 7;
  subGetData();
  EXPECT_EQ(grid->intVisibleRows, 0);
}

TEST_F(FetchingForTheGrid, FollowsTheWeekThatTheUserPicks) {
  w.form->dtpStartDate->setValue(Date::of(2024, 5, 13));
  w.form->chkGrid.setValue(1);
  w.form->cmbWeek.setText(QStringLiteral("1"));
  EXPECT_EQ(w.form->dtpStartDate->Value(), Date::of(2024, 1, 1));
  EXPECT_EQ(w.form->dtpEndDate->Value(), Date::of(2024, 1, 7));
  EXPECT_EQ(grid->dteGridStartDate, Date::of(2024, 1, 1));
}

TEST_F(FetchingForTheGrid, ShowsTheNextYearsFirstWeekForAWeek53ThatTheYearLacks) {
  w.form->dtpStartDate->setValue(Date::of(2024, 5, 13));
  w.form->chkGrid.setValue(1);
  w.form->cmbWeek.setText(QStringLiteral("53"));
  EXPECT_EQ(w.form->dtpStartDate->Value(), Date::of(2024, 12, 30));
  EXPECT_EQ(w.form->cmbWeek.Text(), QStringLiteral("1"));
}

TEST_F(FetchingForTheGrid, LeavesTheWeekAloneWhileCodeSetsIt) {
  w.form->dtpStartDate->setValue(Date::of(2024, 5, 13));
  w.form->chkGrid.setValue(1);
  grid->calls.clear();
  w.workspace->gIgnoreWeekChange = true;
  w.form->cmbWeek.setText(QStringLiteral("3"));
  EXPECT_TRUE(grid->calls.isEmpty());
}

TEST_F(FetchingForTheGrid, TakesTheWeekThatHoldsNewYearsDay) {
  const auto winter = [](int year, int month, int day) {
    return QDateTime(QDate(year, month, day), QTime(9, 0), QTimeZone("Europe/Stockholm"));
  };
  w.add(QStringLiteral("Sunday before"), winter(2024, 12, 29));
  w.add(QStringLiteral("New Year's Eve"), winter(2024, 12, 31));
  w.add(QStringLiteral("New Year's Day"), winter(2025, 1, 1));
  w.add(QStringLiteral("Monday after"), winter(2025, 1, 6));
  w.form->dtpStartDate->setValue(Date::of(2024, 12, 30));
  w.form->chkGrid.setValue(1);
  EXPECT_THAT(grid->calls.filter(QStringLiteral("subAddAppToGrid")),
              ElementsAre(QStringLiteral("subAddAppToGrid New Year's Eve"),
                          QStringLiteral("subAddAppToGrid New Year's Day")));
  EXPECT_EQ(grid->dteGridStartDate, Date::of(2024, 12, 30));
  EXPECT_EQ(w.form->dtpEndDate->Value(), Date::of(2025, 1, 5));
  EXPECT_EQ(w.form->cmbWeek.Text(), QStringLiteral("1"));
}

TEST_F(FetchingForTheGrid, FetchesOnceForAWeekThatTheUserClicks) {
  w.form->dtpStartDate->setValue(Date::of(2024, 5, 13));
  w.form->chkGrid.setValue(1);
  const int before = w.screen->refreshes;
  w.form->cmbWeek.setListIndex(2);
  EXPECT_EQ(w.screen->refreshes, before + 1);
  EXPECT_EQ(w.form->dtpStartDate->Value(), Date::of(2024, 1, 15));
  w.form->cmbWeek.setText(QStringLiteral("4"));
  EXPECT_EQ(w.screen->refreshes, before + 2);
}

TEST_F(FetchingForTheGrid, OffersTheWeeksOfAYearAndNothingElse) {
  EXPECT_EQ(w.form->cmbWeek.ListCount(), 53);
  for (const char* text : {"0", "54", "x", ""})
    EXPECT_THROW(w.form->cmbWeek.setText(QString::fromLatin1(text)), platform::Failure) << text;
}

TEST_F(FetchingForTheGrid, LeavesItsControlsToTheUser) {
  for (const platform::forms::Control* control : std::initializer_list<const platform::forms::Control*>{
           &w.form->chkGrid, &w.form->cmbWeek, &w.form->cmdAddNew, &w.form->cmdSaveChanges}) {
    EXPECT_TRUE(control->Enabled()) << control->Name().toStdString();
    EXPECT_EQ(control->ToolTipText(), QString()) << control->Name().toStdString();
  }
}

TEST_F(FetchingForTheGrid, SavesItsChangesOnRequest) {
  w.form->chkGrid.setValue(1);
  grid->calls.clear();
  w.form->cmdSaveChanges.click();
  EXPECT_THAT(grid->calls, ElementsAre(QStringLiteral("subSaveGridChanges")));
}

TEST(GridOfDropDowns, ShowsItsMondayAndSevenDays) {
  WorkspaceWorld w;
  w.workspace->newGridView = [] { return std::make_shared<NotedGrid>(); };
  w.loadForm();
  w.form->chkGrid.setValue(1);  // it is Wednesday, 15 May
  EXPECT_EQ(w.form->cmbYear.Text(), QStringLiteral("2024"));
  EXPECT_EQ(w.form->cmbMonth.ListIndex(), 4);
  EXPECT_EQ(w.form->cmbDay.Text(), QStringLiteral("13"));
  EXPECT_EQ(w.form->txtDays.Text(), QStringLiteral("7"));
  EXPECT_EQ(w.workspace->gGridView->dteGridStartDate, Date::of(2024, 5, 13));
}

TEST(ChoosingAWeek, ChangesNothingUpToTheYear1900) {
  WorkspaceWorld w;
  w.withDatePickers();
  w.loadForm();
  w.setPeriod(QDate(1900, 6, 4), QDate(1900, 6, 10));
  const int before = w.screen->refreshes;
  w.form->cmbWeek.setText(QStringLiteral("3"));
  EXPECT_EQ(w.form->dtpStartDate->Value(), Date::of(1900, 6, 4));
  EXPECT_EQ(w.screen->refreshes, before);
  w.setPeriod(QDate(1901, 6, 3), QDate(1901, 6, 9));
  w.form->cmbWeek.setText(QStringLiteral("4"));
  EXPECT_EQ(w.form->dtpStartDate->Value(), Date::of(1901, 1, 21));
  EXPECT_EQ(w.screen->refreshes, before + 1);
}

TEST(ChoosingAWeek, OfAYearThatIsNoneEndsTheProgram) {
  WorkspaceWorld w;
  w.loadForm();
  w.form->cmbYear.setText(QStringLiteral("20000"));
  w.world.dialogs.expect(QStringLiteral("Sub routine : subWeekChanged"), 7);
  EXPECT_ENDS_PROCESS(w.form->cmbWeek.setText(QStringLiteral("3")));
}

TEST(WithoutAGrid, ItsControlsAreSwitchedOffAndSayWhy) {
  WorkspaceWorld w;
  w.loadForm();
  for (const platform::forms::Control* control : std::initializer_list<const platform::forms::Control*>{
           &w.form->chkGrid, &w.form->cmbWeek, &w.form->cmdAddNew, &w.form->cmdSaveChanges}) {
    EXPECT_FALSE(control->Enabled()) << control->Name().toStdString();
    EXPECT_EQ(control->ToolTipText(), QStringLiteral("The week grid is not available in this version yet."));
  }
}

TEST(WithoutAGrid, TickingTheBoxByCodeFailsWithAClearText) {
  WorkspaceWorld w;
  w.loadForm();
  w.world.dialogs.expect(QStringLiteral("The week grid is not available in this version"), 7);
  EXPECT_ENDS_PROCESS(w.form->chkGrid.setValue(1));
}

}  // namespace
}  // namespace tests

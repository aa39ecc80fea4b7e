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

TEST(WithoutAGrid, TheBoxIsSwitchedOffAndSaysWhy) {
  WorkspaceWorld w;
  w.loadForm();
  EXPECT_FALSE(w.form->chkGrid.Enabled());
  EXPECT_EQ(w.form->chkGrid.ToolTipText(),
            QStringLiteral("The week grid is not available in this version yet."));
}

TEST(WithoutAGrid, TickingTheBoxByCodeFailsWithAClearText) {
  WorkspaceWorld w;
  w.loadForm();
  w.world.dialogs.expect(QStringLiteral("The week grid is not available in this version"), 7);
  EXPECT_ENDS_PROCESS(w.form->chkGrid.setValue(1));
}

}  // namespace
}  // namespace tests

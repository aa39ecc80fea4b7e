#include "roweditingworld.h"
#include "settings/cMetaDictionary.h"
#include "settings/SettingsValues.h"

namespace tests {
namespace {

INSTANTIATE_TEST_SUITE_P(Generations, EditedListOfEach, testing::Values(9, 10, 11));

std::shared_ptr<cRowInfo> rowOf(RowEditing& list, const char* address) {
  platform::owc::Range range = list.sheet().Range(QString::fromLatin1(address));
  return fncGetRowInfo(range);
}

// Reading a row

TEST_P(EditedListOfEach, ReadsARowFromColumnAToG) {
  platform::owc::Range range = sheet().Range(QStringLiteral("C3"));
  const auto row = fncGetRowInfo(range);
  EXPECT_EQ(range.Address(), QStringLiteral("$A$3:$G$3"));
  EXPECT_EQ(row->Subject, QStringLiteral("Second"));
  EXPECT_EQ(row->RowNumber, 3);
  EXPECT_EQ(row->StartTime, Date::of(2024, 5, 14));
  EXPECT_EQ(row->Hours, Value(QStringLiteral("1.5")));
  EXPECT_EQ(row->Posted, Date());
  ASSERT_EQ(row->Marking->colMarkings.Count(), 3);
  EXPECT_EQ(row->Marking->colMarkings.Item(QStringLiteral("2"))->MetaName, QStringLiteral("Beta"));
  EXPECT_EQ(row->Marking->colMarkings.Item(QStringLiteral("4"))->MetaName, QStringLiteral("Support"));
}

TEST_P(EditedListOfEach, ReadsAPostedDateWhereThereIsOne) {
  w.workspace->gFetching = true;
  sheet().Range(QStringLiteral("G2")).setValue(Value(QStringLiteral("2024-05-02")));
  EXPECT_EQ(rowOf(*this, "A2")->Posted, Date::of(2024, 5, 2));
}

TEST_P(EditedListOfEach, TellsARowThatCannotBeReadAndReadsTheRest) {
  w.workspace->gFetching = true;
  sheet().ActiveSheet.Protection.Enabled = false;
  sheet().Range(QStringLiteral("E2")).setValue(Value(QStringLiteral("no date at all")));
  w.world.dialogs.expect(QStringLiteral("Unable to read info from a row."), platform::dialogs::vbOK);
  const auto row = rowOf(*this, "A2");
  EXPECT_EQ(row->Subject, QStringLiteral("First"));
  EXPECT_EQ(row->Hours, Value(QStringLiteral("1")));
  EXPECT_EQ(row->StartTime, Date());
}

TEST(RowOfAnotherLanguage, HasItsDateBehindAWeekdayWithAPoint) {
  RowEditing list(11, QStringLiteral("de_DE"));
  list.w.add(QStringLiteral("Erster"), at(13, 9), 60, marked);
  subGetData();
  EXPECT_EQ(rowOf(list, "A2")->StartTime, Date::of(2024, 5, 13));
}

// Handling a change

TEST_P(EditedListOfEach, DoesNothingWhenARowIsMissing) {
  const auto row = rowOf(*this, "A2");
  subHandleRowChange(nullptr, row);
  subHandleRowChange(row, nullptr);
  EXPECT_EQ(saves(), 0);
}

TEST_P(EditedListOfEach, GoesOnWithTheNextMetaValueBehindARejectedOne) {
  const auto before = rowOf(*this, "A2");
  const auto after = w.workspace->gNewRow = rowOf(*this, "A2");
  after->Marking->colMarkings.Item(1)->MetaName = QStringLiteral("Nobody");
  after->Marking->colMarkings.Item(2)->MetaName = QStringLiteral("Intranet");
  subHandleRowChange(before, after);
  EXPECT_EQ(saves(), 1);
  EXPECT_TRUE(stored(0).categoriesText.contains(QStringLiteral(";Intranet;Design")));
}

TEST_P(EditedListOfEach, SavesHoursAndSubjectTogetherWhenBothDiffer) {
  const auto before = rowOf(*this, "A2");
  const auto after = w.workspace->gNewRow = rowOf(*this, "A2");
  after->Subject = QStringLiteral("Both");
  after->Hours = Value(QStringLiteral("2"));
  subHandleRowChange(before, after);
  EXPECT_EQ(saves(), 1);
  EXPECT_EQ(stored(0).subject, QStringLiteral("Both"));
  EXPECT_EQ(stored(0).durationMinutes(), 120);
}

TEST_P(EditedListOfEach, SavesNoSubjectBesideHoursThatAreNoNumber) {
  const auto before = rowOf(*this, "A2");
  const auto after = w.workspace->gNewRow = rowOf(*this, "A2");
  after->Subject = QStringLiteral("Both");
  after->Hours = Value(QStringLiteral("abc"));
  subHandleRowChange(before, after);
  EXPECT_EQ(saves(), 0);
}

// Saving

TEST_P(EditedListOfEach, SavesNothingThatIsNotInTheListToBeChecked) {
  w.workspace->gNewRow = rowOf(*this, "A2");
  const MetaNames& customers = *settingsValues().gPersonalSettings->MetaDataLists.Item(1)->MetaDic;
  EXPECT_FALSE(fncSaveChanges(QStringLiteral("Nobody"), &customers, true, 2));
  EXPECT_FALSE(fncSaveChanges(QString(), &customers, true, 2));
  EXPECT_EQ(saves(), 0);
  EXPECT_TRUE(fncSaveChanges(QStringLiteral("Nobody"), &customers, false, 2));
  EXPECT_TRUE(fncSaveChanges(QStringLiteral("Acme"), &customers, true, 2));
}

TEST_P(EditedListOfEach, LogsWhatItSaves) {
  w.workspace->gNewRow = rowOf(*this, "A2");
  w.startLog();
  fncSaveChanges(QStringLiteral("Nobody"), nullptr, true, 2);
  EXPECT_EQ(w.logged().value(0),
            QStringLiteral("Saving the value Nobody to the appointment in the calendar"));
}

TEST_P(EditedListOfEach, LosesAnotherCategoryOfTheUsersWhenItSaves) {
  w.add(QStringLiteral("Third"), at(15, 9), 60, QStringLiteral(";Acme;Private;Website"));
  subGetData();
  w.workspace->gNewRow = rowOf(*this, "A4");
  EXPECT_TRUE(fncSaveChanges(QStringLiteral("Third"), nullptr, false, 4));
  EXPECT_EQ(stored(2).categoriesText, QStringLiteral(";Acme;Website"));
}

TEST_P(EditedListOfEach, ReportsARowWithoutAnAppointment) {
  w.workspace->gNewRow = rowOf(*this, "A2");
  expectReport("fncSaveChanges");
  EXPECT_ENDS_PROCESS(fncSaveChanges(QStringLiteral("x"), nullptr, false, 9));
}

TEST_P(EditedListOfEach, ReportsARowThatWasNeverRead) {
  expectReport("fncSaveChanges");
  EXPECT_ENDS_PROCESS(fncSaveChanges(QStringLiteral("x"), nullptr, false, 2));
}

// Series

TEST_P(EditedListOfEach, ChangesTheSeriesOfAnOccurrenceAndFetchesAnew) {
  platform::calendar::Recurrence daily;
  daily.count = 4;
  w.calendar->addSeries(w.folder, w.appointment(QStringLiteral("Daily"), at(15, 7), 30, marked), daily);
  subGetData();
  ASSERT_EQ(w.workspace->gLastRow, 7);
  select(QStringLiteral("A5"));
  choose(1, QStringLiteral("Beta"));
  for (int row = 4; row <= 7; ++row)
    EXPECT_EQ(w.cell(QStringLiteral("B%1").arg(row)), QStringLiteral("Beta"));
  EXPECT_EQ(stored(2).categoriesText, QStringLiteral(";Beta;Website;Design"));
  EXPECT_FALSE(box(1).Visible()) << "a fetch hides them";
  EXPECT_FALSE(w.workspace->gFetching);
}

TEST_P(EditedListOfEach, ChangesTheSeriesOfAnOccurrenceThatWasChangedAlone) {
  platform::calendar::Recurrence daily;
  daily.count = 2;
  const auto master =
      w.calendar->addSeries(w.folder, w.appointment(QStringLiteral("Daily"), at(15, 7), 30, marked), daily);
  w.calendar->addException(w.folder, master, QStringLiteral("20240516T070000"),
                           w.appointment(QStringLiteral("Moved"), at(16, 12), 30, marked));
  subGetData();
  ASSERT_EQ(w.cell(QStringLiteral("A5")), QStringLiteral("Moved"));
  type(QStringLiteral("F5"), QStringLiteral("2"));
  EXPECT_EQ(stored(2).durationMinutes(), 120);
  EXPECT_EQ(w.cell(QStringLiteral("F4")), QStringLiteral("2"));
}

// Failures

TEST_P(EditedListOfEach, ShowsThatHoursCouldNotBeSavedAndWritesTheOldOnesToTheWeekday) {
  select(QStringLiteral("F2"));
  failSaving();
  w.world.dialogs.expect(notSaved, platform::dialogs::vbOK);
  expectReport("fncSaveChanges");
  EXPECT_ENDS_PROCESS(type(QStringLiteral("F2"), QStringLiteral("4")));
  EXPECT_TRUE(w.world.dialogs.shown.last().text.contains(QStringLiteral("The calendar is read-only.")));
  EXPECT_EQ(w.cell(QStringLiteral("E2")), QStringLiteral("1"));
  EXPECT_TRUE(sheet().ActiveSheet.Protection.Enabled);
  EXPECT_FALSE(w.workspace->gFetching);
  EXPECT_EQ(stored(0).durationMinutes(), 60);
}

TEST_P(EditedListOfTheNewerForms, PutASubjectBackThatCouldNotBeSaved) {
  select(QStringLiteral("A2"));
  failSaving();
  w.world.dialogs.expect(notSaved, platform::dialogs::vbOK);
  expectReport("fncSaveChanges");
  EXPECT_ENDS_PROCESS(type(QStringLiteral("A2"), QStringLiteral("Other")));
  EXPECT_EQ(w.cell(QStringLiteral("A2")), QStringLiteral("First"));
  EXPECT_FALSE(w.workspace->gFetching);
}

TEST_P(EditedListOfEach, PutsAChoiceBackThatCouldNotBeSaved) {
  select(QStringLiteral("A2"));
  failSaving();
  expectReport("fncSaveChanges");
  EXPECT_ENDS_PROCESS(choose(1, QStringLiteral("Beta")));
  EXPECT_EQ(w.cell(QStringLiteral("B2")), QStringLiteral("Acme"));
  EXPECT_FALSE(w.workspace->gFetching);
}

TEST_P(EditedListOfEach, DoesNotOverwriteAnAppointmentThatAnotherProgramHasChanged) {
  select(QStringLiteral("A2"));
  platform::calendar::Change change;
  change.subject = QStringLiteral("Changed elsewhere");
  w.calendar->changeByAnother(w.folder, stored(0).key, change);
  expectReport("fncSaveChanges");
  EXPECT_ENDS_PROCESS(choose(1, QStringLiteral("Beta")));
  EXPECT_EQ(stored(0).subject, QStringLiteral("Changed elsewhere"));
  EXPECT_EQ(stored(0).categoriesText, marked);
  EXPECT_EQ(w.cell(QStringLiteral("B2")), QStringLiteral("Acme"));
}

TEST_P(EditedListOfEach, TellsThatAnAppointmentIsGone) {
  select(QStringLiteral("A2"));
  w.calendar->removeByAnother(w.folder, stored(0).key);
  expectReport("fncSaveChanges");
  EXPECT_ENDS_PROCESS(choose(1, QStringLiteral("Beta")));
  EXPECT_EQ(stored().size(), 1);
}

TEST_P(EditedListOfEach, KeepsNothingOfAFailedSaveForTheNext) {
  select(QStringLiteral("A2"));
  failSaving();
  expectReport("fncSaveChanges");
  EXPECT_ENDS_PROCESS(choose(1, QStringLiteral("Beta")));
  EXPECT_EQ(fncAppointmentOf(2)->Categories(), marked);
}

TEST_P(EditedListOfEach, ReportsAFailureOfTheChangeItself) {
  const auto before = rowOf(*this, "A2"), after = rowOf(*this, "A2");
  before->Marking->colMarkings = {};
  expectReport("subHandleRowChange");
  EXPECT_ENDS_PROCESS(subHandleRowChange(before, after));
}

// The drop-downs

TEST_P(EditedListOfTheNewerForms, FindTheRowForTheDropDownsInStepsOfTwoPixels) {
  EXPECT_EQ(fncGetComboTop(2), 300 + 20 * 15 - 15);
  EXPECT_EQ(fncGetComboTop(3), 300 + 40 * 15 - 15);
  EXPECT_EQ(fncGetComboTop(9), 0);
}

TEST_P(EditedListOfTheNewerForms, LookNoFartherThanTheListIsHigh) {
  w.form->exsThisWeek.Extender.place(0, 300, 9000, 36 * 15);  // with 3 more just short of the third row
  EXPECT_EQ(fncGetComboTop(3), 0);
  w.form->exsThisWeek.Extender.place(0, 300, 9000, 37 * 15);
  EXPECT_NE(fncGetComboTop(3), 0);
}

TEST_P(EditedListOfTheNewerForms, ShowTheDropDownsWithTheMarkingOfTheSelectedRow) {
  select(QStringLiteral("F3"));
  for (int n = 1; n <= 3; ++n) {
    EXPECT_TRUE(box(n).Visible());
    EXPECT_EQ(box(n).Top, 300 + 40 * 15 - 15);
  }
  EXPECT_EQ(box(1).Text(), QStringLiteral("Beta"));
  EXPECT_EQ(box(3).Text(), QStringLiteral("Support"));
  EXPECT_EQ(w.workspace->gCurrentRow, 3);
  EXPECT_FALSE(w.workspace->gFetching);
}

TEST_P(EditedListOfTheNewerForms, HideTheDropDownsForTheHeaderAndForSeveralRows) {
  for (const char* range : {"A1", "A2:A3", "A4"}) {
    select(QStringLiteral("B2"));
    EXPECT_TRUE(box(1).Visible());
    select(QString::fromLatin1(range));
    for (int n = 1; n <= 3; ++n) EXPECT_FALSE(box(n).Visible()) << range;
  }
}

TEST_P(EditedListOfTheNewerForms, HideTheDropDownsForARowOutOfView) {
  for (int i = 0; i < 30; ++i) w.add(QStringLiteral("no"), at(15, 0).addSecs(i * 600), 60, marked);
  subGetData();
  select(QStringLiteral("A2"));
  EXPECT_TRUE(box(1).Visible());
  select(QStringLiteral("A30"));
  EXPECT_FALSE(box(1).Visible());
}

TEST_P(EditedListOfEach, ShowsNoMoreDropDownsThanThereAreLists) {
  w.setLists({QStringLiteral("Customer:Acme;"), QStringLiteral("Project:Website;")});
  select(QStringLiteral("A2"));
  EXPECT_TRUE(box(1).Visible() && box(2).Visible());
  EXPECT_FALSE(box(3).Visible());
}

TEST_P(EditedListOfEach, CanUseTheDropDowns) {
  for (int n = 1; n <= 3; ++n) {
    EXPECT_TRUE(box(n).Enabled());
    EXPECT_TRUE(box(n).ToolTipText().isEmpty());
  }
  EXPECT_EQ(box(2).AccessibleName(), QStringLiteral("Project"));
}

TEST_P(EditedListOfEach, ReportsAFailureOfASelection) {
  w.settings->gPersonalSettings.reset();
  expectReport("exsThisWeek_Selection");
  EXPECT_ENDS_PROCESS(select(QStringLiteral("A2")));
  EXPECT_FALSE(w.workspace->gFetching);
}

}  // namespace
}  // namespace tests

#include "roweditingworld.h"

namespace tests {
namespace {

TEST_F(EditedListOf2K, SavesTypedHoursAtOnceAndTheWholeRow) {
  type(QStringLiteral("F2"), QStringLiteral("1.5"));
  EXPECT_EQ(stored(0).durationMinutes(), 90);
  EXPECT_EQ(stored(0).subject, QStringLiteral("First"));
  EXPECT_EQ(stored(0).categoriesText, marked);
  EXPECT_EQ(w.form->lblHours.Caption().isEmpty(), false);
}

/// kept: the older form takes what is typed in any column for hours.
TEST_F(EditedListOf2K, SavesANumberTypedInAnyColumnAsHours) {
  for (const char* cell : {"A2", "B2", "C2", "D2"}) {
    type(QString::fromLatin1(cell), QStringLiteral("3"));
    EXPECT_EQ(stored(0).durationMinutes(), 180) << cell;
    type(QStringLiteral("F2"), QStringLiteral("1"));
  }
}

TEST_F(EditedListOf2K, LeavesAnyOtherTextInItsCellAndTheCalendarAsItIs) {
  for (const char* cell : {"A2", "B2", "C2", "D2", "F2"}) {
    type(QString::fromLatin1(cell), QStringLiteral("Beta"));
    EXPECT_EQ(w.cell(QString::fromLatin1(cell)), QStringLiteral("Beta"));
  }
  EXPECT_EQ(saves(), 0);
  EXPECT_TRUE(w.world.dialogs.shown.isEmpty());
}

TEST_F(EditedListOf2K, SavesRowsFrom100OnToo) {
  for (int i = 0; i < 110; ++i) w.add(QStringLiteral("no"), at(15, 0).addSecs(i * 600), 60, marked);
  subGetData();
  type(QStringLiteral("F105"), QStringLiteral("2"));
  EXPECT_EQ(stored(103).durationMinutes(), 120);
}

TEST_F(EditedListOf2K, HearsNothingOfPastedAndClearedCells) {
  paste(QStringLiteral("A2"), {{QStringLiteral("Pasted")}});
  clear(QStringLiteral("F3"));
  EXPECT_EQ(saves(), 0);
  EXPECT_EQ(w.cell(QStringLiteral("A2")), QStringLiteral("Pasted"));
}

TEST_F(EditedListOf2K, DoesNothingWhileTheListIsRebuilt) {
  w.workspace->gFetching = true;
  type(QStringLiteral("F2"), QStringLiteral("4"));
  choose(1, QStringLiteral("Beta"));
  EXPECT_EQ(saves(), 0);
  EXPECT_FALSE(w.form->cmbMeta1.Visible());
}

TEST_F(EditedListOf2K, SavesAValueChosenInADropDown) {
  select(QStringLiteral("A2"));
  choose(2, QStringLiteral("Intranet"));
  EXPECT_EQ(stored(0).categoriesText, QStringLiteral(";Acme;Intranet;Design"));
  EXPECT_EQ(w.cell(QStringLiteral("C2")), QStringLiteral("Intranet"));
  EXPECT_FALSE(w.workspace->gFetching);
  ASSERT_TRUE(w.workspace->gOldRow);
  EXPECT_EQ(w.workspace->gOldRow->Marking->colMarkings.Item(2)->MetaName, QStringLiteral("Website"));
}

TEST_F(EditedListOf2K, TellsAChoiceThatHasNoRow) {
  w.workspace->gCurrentRow = 0;
  w.world.dialogs.expect(QStringLiteral("Unable to save this value!"), platform::dialogs::vbOK);
  subHandleMetaDropClick(QStringLiteral("Beta"), QStringLiteral("b"));
  EXPECT_EQ(w.world.dialogs.shown.last().options, platform::dialogs::vbCritical);
  EXPECT_FALSE(w.workspace->gFetching);
}

// Where the drop-downs stand

TEST_F(EditedListOf2K, ShowsTheDropDownsOnePixelBelowTheTopOfTheSelectedRow) {
  select(QStringLiteral("A3"));
  for (int n = 1; n <= 3; ++n) {
    EXPECT_TRUE(box(n).Visible());
    EXPECT_EQ(box(n).Top, 300 + 40 * 15 + 15);  // the list's top; two rows of 20 pixels above
  }
  EXPECT_EQ(box(1).Text(), QStringLiteral("Beta"));
  EXPECT_EQ(box(2).Text(), QStringLiteral("Intranet"));
  EXPECT_EQ(box(3).Text(), QStringLiteral("Support"));
  EXPECT_EQ(w.workspace->gCurrentRow, 3);
  EXPECT_FALSE(w.workspace->gFetching);
}

TEST_F(EditedListOf2K, HidesTheDropDownsForTheHeaderSeveralRowsAndRowsWithoutAppointment) {
  for (const char* range : {"A1", "A2:A3", "A4"}) {
    select(QStringLiteral("B2"));
    EXPECT_TRUE(box(1).Visible());
    select(QString::fromLatin1(range));
    for (int n = 1; n <= 3; ++n) EXPECT_FALSE(box(n).Visible()) << range;
  }
}

TEST_F(EditedListOf2K, ShowsThemForSeveralCellsOfOneRow) {
  select(QStringLiteral("B2:D2"));
  EXPECT_TRUE(box(1).Visible());
}

TEST_F(EditedListOf2K, HidesThemForAPlaceFarBelowTheScreen) {
  for (int i = 0; i < 150; ++i) w.add(QStringLiteral("no"), at(15, 0).addSecs(i * 60), 60, marked);
  subGetData();
  select(QStringLiteral("A100"));
  EXPECT_TRUE(box(1).Visible());
  select(QStringLiteral("A150"));  // 149 rows of 20 pixels are more than 16 bits of twips
  EXPECT_FALSE(box(1).Visible());
}

TEST_F(EditedListOf2K, RefetchesAfterAChangeOfASeriesWithoutPuttingTheTextIntoTheNewList) {
  platform::calendar::Recurrence daily;
  daily.count = 5;
  w.calendar->addSeries(w.folder, w.appointment(QStringLiteral("Daily"), at(13, 7), 30, marked), daily);
  subGetData();
  ASSERT_EQ(w.cell(QStringLiteral("A2")), QStringLiteral("Daily"));
  type(QStringLiteral("A2"), QStringLiteral("2"));
  EXPECT_EQ(w.cell(QStringLiteral("A2")), QStringLiteral("Daily"));
  EXPECT_EQ(w.cell(QStringLiteral("F2")), QStringLiteral("2"));
}

}  // namespace
}  // namespace tests

#include "roweditingworld.h"

namespace tests {
namespace {

using platform::calendar::Change;
using Operation = platform::calendar::FailingStore::Operation;

const QString second = QStringLiteral(";Beta;Intranet;Support");

/// A list of two appointments that others change as well.
class FollowedList : public testing::TestWithParam<int>, public RowEditing {
 protected:
  FollowedList() : RowEditing(qint16(GetParam())) {
    firstKey = w.add(QStringLiteral("First"), at(13, 9), 60, marked);
    secondKey = w.add(QStringLiteral("Second"), at(14, 9), 90, second);
    subGetData();
    QObject::connect(w.form.get(), &ReportForm::listFetched, w.form.get(), [this] { ++fetches; });
    QObject::connect(w.form.get(), &ReportForm::listFetching, w.form.get(), [this] { ++signsOfWork; });
    w.screen->pointers.clear();
    w.screen->refreshes = 0;
  }
  void tick() { Q_EMIT w.form->timFollowCalendar.Tick(); }
  void theyRename(const platform::calendar::ItemKey& key, const char* subject) {
    Change change;
    change.subject = QString::fromLatin1(subject);
    w.calendar->changeByAnother(w.folder, key, change);
  }
  void theyAdd(const char* subject, int day, int hour = 8) {
    w.add(QString::fromLatin1(subject), at(day, hour), 60, marked);
  }
  QString selected() { return sheet().Selection().Address(); }
  void broken(Operation operation) {
    store->failAlways(operation, platform::Failure(platform::calendar::errStoreBroken,
                                                   QStringLiteral("The folder is gone.")));
  }
  QString status(int row) const { return w.cell(QStringLiteral("G%1").arg(row)); }

  platform::calendar::ItemKey firstKey, secondKey;
  int fetches = 0, signsOfWork = 0;
};
INSTANTIATE_TEST_SUITE_P(Generations, FollowedList, testing::Values(9, 10, 11));

TEST_P(FollowedList, ShowsWhatSomebodyElseHasChanged) {
  Change change;
  change.subject = QStringLiteral("Moved");
  change.durationMinutes = 120;
  change.categoriesText = second;
  w.calendar->changeByAnother(w.folder, firstKey, change);
  EXPECT_EQ(w.cell(QStringLiteral("A2")), QStringLiteral("First"));
  tick();
  EXPECT_EQ(w.cell(QStringLiteral("A2")), QStringLiteral("Moved"));
  EXPECT_EQ(w.cell(QStringLiteral("B2")), QStringLiteral("Beta"));
  EXPECT_EQ(w.cell(QStringLiteral("F2")), QStringLiteral("2"));
  EXPECT_EQ(w.form->lblHours.Caption(), QStringLiteral("3.5"));
}

TEST_P(FollowedList, ShowsWhatSomebodyElseHasAddedAndRemoved) {
  theyAdd("Before", 13);
  tick();
  EXPECT_EQ(w.subjects(),
            (QStringList{QStringLiteral("Before"), QStringLiteral("First"), QStringLiteral("Second")}));
  w.calendar->removeByAnother(w.folder, firstKey);
  tick();
  EXPECT_EQ(w.subjects(), (QStringList{QStringLiteral("Before"), QStringLiteral("Second")}));
  EXPECT_EQ(sheet().ViewableRange(), QStringLiteral("A1:G3"));
}

TEST_P(FollowedList, IsNotFetchedWhenNobodyHasChangedAnything) {
  tick();
  tick();
  EXPECT_EQ(fetches, 0);
}

TEST_P(FollowedList, IsFetchedOnceForAChange) {
  theyRename(firstKey, "Moved");
  tick();
  tick();
  EXPECT_EQ(fetches, 1);
}

TEST_P(FollowedList, IsNotFetchedForTheUsersOwnEdits) {
  type(QStringLiteral("F2"), QStringLiteral("2"));
  select(QStringLiteral("A3"));
  choose(1, QStringLiteral("Acme"));
  EXPECT_EQ(saves(), 2);
  tick();
  EXPECT_EQ(fetches, 0);
}

TEST_P(FollowedList, IsNotFetchedTwiceWhenTheUserHasFetchedIt) {
  theyRename(firstKey, "Moved");
  subGetData();
  tick();
  EXPECT_EQ(fetches, 1);
}

TEST_P(FollowedList, MissesNoChangeThatComesWhileItIsBeingFetched) {
  bool done = false;
  store->onCall = [&](Operation operation) {
    if (operation != Operation::Items || std::exchange(done, true)) return;
    theyRename(firstKey, "Moved");
  };
  subGetData();
  fetches = 0;
  tick();
  EXPECT_EQ(fetches, 1);
  tick();
  EXPECT_EQ(fetches, 1);
}

TEST_P(FollowedList, ShowsNoSignOfWork) {
  theyRename(firstKey, "Moved");
  const auto took = w.workspace->fetchMilliseconds = 1234;
  tick();
  EXPECT_EQ(fetches, 1);
  EXPECT_EQ(signsOfWork, 0);
  EXPECT_EQ(w.screen->refreshes, 0);
  EXPECT_TRUE(w.screen->pointers.isEmpty());
  EXPECT_EQ(w.workspace->fetchMilliseconds, took);
  EXPECT_FALSE(w.workspace->gFetching);
  EXPECT_FALSE(w.workspace->following);
  EXPECT_TRUE(sheet().EnableEvents);
  EXPECT_TRUE(sheet().ActiveSheet.Protection.Enabled);
}

TEST_P(FollowedList, TellsNothingWhenTheRowsDoNotSuffice) {
  for (int i = 0; i < 200; ++i) theyAdd("One of many", 13);
  tick();
  EXPECT_EQ(w.workspace->gLastRow, 200);
  EXPECT_TRUE(w.world.dialogs.shown.isEmpty());
}

TEST_P(FollowedList, WaitsUntilTheListIsFree) {
  theyRename(firstKey, "Moved");
  w.workspace->gFetching = true;
  tick();
  EXPECT_EQ(fetches, 0);
  w.workspace->gFetching = false;
  w.screen->busy = true;
  tick();
  EXPECT_EQ(fetches, 0);
  w.screen->busy = false;
  tick();
  EXPECT_EQ(w.cell(QStringLiteral("A2")), QStringLiteral("Moved"));
}

TEST_P(FollowedList, StaysAsItIsWhileTheCalendarCannotBeAskedAndFollowsAgain) {
  theyRename(firstKey, "Moved");
  broken(Operation::OthersTag);
  tick();
  EXPECT_EQ(w.subjects(), (QStringList{QStringLiteral("First"), QStringLiteral("Second")}));
  EXPECT_TRUE(w.world.dialogs.shown.isEmpty());
  store->heal();
  tick();
  EXPECT_EQ(w.cell(QStringLiteral("A2")), QStringLiteral("Moved"));
}

TEST_P(FollowedList, StaysAsItIsWhileTheCalendarCannotBeReadAndFollowsAgain) {
  select(QStringLiteral("B3"));
  theyRename(firstKey, "Moved");
  broken(Operation::Items);
  tick();
  tick();
  EXPECT_EQ(w.subjects(), (QStringList{QStringLiteral("First"), QStringLiteral("Second")}));
  EXPECT_EQ(fncAppointmentOf(2)->Subject(), QStringLiteral("First"));
  EXPECT_TRUE(box(1).Visible());
  EXPECT_FALSE(w.workspace->following);
  EXPECT_TRUE(w.world.dialogs.shown.isEmpty());
  store->heal();
  tick();
  EXPECT_EQ(w.cell(QStringLiteral("A2")), QStringLiteral("Moved"));
}

TEST_P(FollowedList, ComesBackWhereTheUserHasFetchedFromACalendarThatWasAway) {
  broken(Operation::Items);
  subGetData();
  EXPECT_EQ(w.cell(QStringLiteral("A2")), QStringLiteral("No appointments found!"));
  store->heal();
  tick();
  EXPECT_EQ(w.subjects(), (QStringList{QStringLiteral("First"), QStringLiteral("Second")}));
}

TEST_P(FollowedList, KeepsItsPeriodWhateverTheControlsShowByNow) {
  w.setPeriod(QDate(2024, 6, 1), QDate(2024, 6, 30));
  theyRename(firstKey, "Moved");
  tick();
  EXPECT_EQ(w.subjects(), (QStringList{QStringLiteral("Moved"), QStringLiteral("Second")}));
}

TEST_P(FollowedList, KeepsTheTabOfTheChart) {
  w.form->tbsViews.setIndex(1);
  theyRename(firstKey, "Moved");
  tick();
  EXPECT_EQ(w.form->tbsViews.Index(), 1);
}

TEST_P(FollowedList, LeavesTimeToTheUserWhereFetchingTakesLong) {
  store->onCall = [&](Operation operation) {
    if (operation == Operation::Items) w.world.clock->advanceMilliseconds(200);
  };
  theyRename(firstKey, "Moved");
  tick();
  theyRename(firstKey, "Moved again");
  w.world.clock->advanceMilliseconds(599);
  tick();
  EXPECT_EQ(w.cell(QStringLiteral("A2")), QStringLiteral("Moved"));
  w.world.clock->advanceMilliseconds(1);
  tick();
  EXPECT_EQ(w.cell(QStringLiteral("A2")), QStringLiteral("Moved again"));
}

// What stays where it is

TEST_P(FollowedList, KeepsTheSelectionOnItsAppointment) {
  select(QStringLiteral("C3"));
  theyAdd("Before", 13);
  tick();
  EXPECT_EQ(selected(), QStringLiteral("$C$4"));
  EXPECT_EQ(sheet().ActiveCell().Address(), QStringLiteral("$C$4"));
  EXPECT_EQ(w.workspace->gCurrentRow, 4);
}

TEST_P(FollowedList, KeepsTheSelectionOfSeveralRowsAndItsActiveCell) {
  sheet().select({2, 1, 2, 3}, {3, 2, 1, 1});
  theyAdd("Before", 13);
  tick();
  EXPECT_EQ(selected(), QStringLiteral("$A$3:$C$4"));
  EXPECT_EQ(sheet().ActiveCell().Address(), QStringLiteral("$B$4"));
  w.calendar->removeByAnother(w.folder, firstKey);
  tick();
  EXPECT_EQ(selected(), QStringLiteral("$A$3:$C$3"));
}

TEST_P(FollowedList, LetsGoOfASelectionWhoseActiveAppointmentIsGone) {
  sheet().select({2, 1, 2, 3}, {2, 2, 1, 1});
  w.calendar->removeByAnother(w.folder, firstKey);
  tick();
  EXPECT_EQ(selected(), QStringLiteral("$A$1"));
}

TEST_P(FollowedList, KeepsTheHeaderSelected) {
  select(QStringLiteral("B1"));
  theyAdd("Before", 13);
  tick();
  EXPECT_EQ(selected(), QStringLiteral("$B$1"));
}

TEST_P(FollowedList, KeepsTheDropDownsOverTheirAppointment) {
  select(QStringLiteral("A3"));
  const int top = box(1).Top;
  theyAdd("Before", 13);
  tick();
  for (int n = 1; n <= 3; ++n) EXPECT_TRUE(box(n).Visible());
  EXPECT_EQ(box(1).Text(), QStringLiteral("Beta"));
  EXPECT_GT(box(1).Top, top);
  choose(1, QStringLiteral("Acme"));
  EXPECT_EQ(stored(2).subject, QStringLiteral("Second"));
  EXPECT_TRUE(stored(2).categoriesText.contains(QStringLiteral("Acme")));
  EXPECT_EQ(stored(0).categoriesText, marked);
}

TEST_P(FollowedList, ShowsInTheDropDownsWhatSomebodyElseHasChosen) {
  select(QStringLiteral("A2"));
  Change change;
  change.categoriesText = second;
  w.calendar->changeByAnother(w.folder, firstKey, change);
  tick();
  EXPECT_EQ(box(1).Text(), QStringLiteral("Beta"));
  EXPECT_EQ(box(3).Text(), QStringLiteral("Support"));
}

TEST_P(FollowedList, ShowsNoDropDownsWhereThereWereNone) {
  select(QStringLiteral("A2"));
  select(QStringLiteral("A1"));
  theyRename(firstKey, "Moved");
  tick();
  EXPECT_FALSE(box(1).Visible());
}

TEST_P(FollowedList, TakesSelectionAndDropDownsAlongWithARemovedAppointment) {
  select(QStringLiteral("A2"));
  w.calendar->removeByAnother(w.folder, firstKey);
  tick();
  EXPECT_EQ(w.subjects(), QStringList{QStringLiteral("Second")});
  EXPECT_FALSE(box(1).Visible());
  EXPECT_EQ(selected(), QStringLiteral("$A$1")) << "what is typed next must not go to the next appointment";
  EXPECT_EQ(w.workspace->dropDownsOf, nullptr);
}

TEST_P(FollowedList, KnowsAnAppointmentWhoseFileHasGotAnotherName) {
  select(QStringLiteral("A3"));
  auto item = stored(1);
  w.calendar->removeByAnother(w.folder, secondKey);
  item.key.place = QStringLiteral("renamed.ics");
  w.calendar->add(w.folder, item);
  theyAdd("Before", 13);
  tick();
  EXPECT_EQ(selected(), QStringLiteral("$A$4"));
  EXPECT_TRUE(box(1).Visible());
}

TEST_P(FollowedList, TakesNeitherOfTwoForTheOneThatWasThere) {
  select(QStringLiteral("A3"));
  auto item = stored(1);
  w.calendar->removeByAnother(w.folder, secondKey);
  for (const char* place : {"one.ics", "other.ics"}) {
    item.key.place = QString::fromLatin1(place);
    w.calendar->add(w.folder, item);
  }
  tick();
  EXPECT_EQ(selected(), QStringLiteral("$A$1"));
}

TEST_P(FollowedList, KeepsWhatStandsInACellOfAnAppointmentThatNobodyHasChanged) {
  type(QStringLiteral("F3"), QStringLiteral("abc"));
  w.workspace->gFetching = true;
  sheet().Range(QStringLiteral("G3")).setValue(Value(QStringLiteral("Customer is not known")));
  w.workspace->gFetching = false;
  theyAdd("Before", 13);
  tick();
  EXPECT_EQ(w.cell(QStringLiteral("A4")), QStringLiteral("Second"));
  EXPECT_EQ(w.cell(QStringLiteral("F4")), QStringLiteral("abc"));
  EXPECT_EQ(status(4), QStringLiteral("Customer is not known"));
  EXPECT_EQ(status(3), QStringLiteral("Not Posted"));
  theyAdd("Before that", 13, 7);
  tick();
  EXPECT_EQ(status(5), QStringLiteral("Customer is not known")) << "and once more";
  theyRename(secondKey, "Moved");
  tick();
  EXPECT_EQ(status(5), QStringLiteral("Not Posted"));
  EXPECT_EQ(w.cell(QStringLiteral("F5")), QStringLiteral("1.5"));
}

TEST_P(FollowedList, TakesAChangeAfterwardsForTheRowThatItIsIn) {
  theyAdd("Before", 13);
  tick();
  type(QStringLiteral("F3"), QStringLiteral("3"));
  EXPECT_EQ(stored(1).subject, QStringLiteral("First"));
  EXPECT_EQ(stored(1).durationMinutes(), 180);
  EXPECT_EQ(stored(0).durationMinutes(), 60);
}

TEST_P(FollowedList, StopsWithoutAPeriod) {
  w.form->dtpStartDate->setValue(Date());
  w.workspace->listed.reset();
  theyRename(firstKey, "Moved");
  tick();
  EXPECT_EQ(fetches, 0);
}

TEST(Following, BeginsWhenTheFormIsLoadedAndLooksOftenEnough) {
  WorkspaceWorld w;
  w.loadForm();
  EXPECT_TRUE(w.form->timFollowCalendar.TimerEnabled());
  EXPECT_GE(w.form->timFollowCalendar.Interval(), 500);
  EXPECT_LE(w.form->timFollowCalendar.Interval(), 1000);
}

// Somebody else was quicker

TEST_P(FollowedList, AfterAConflictShowsBothVersionsAndWhatStandsInTheCalendar) {
  theyRename(firstKey, "Moved");
  select(QStringLiteral("A2"));
  expectReport("fncSaveChanges");
  EXPECT_ENDS_PROCESS(choose(1, QStringLiteral("Beta")));
  const QString told = w.world.dialogs.shown.last().text;
  EXPECT_TRUE(told.contains(QStringLiteral("Subject: when read \"First\", in the calendar now \"Moved\"")))
      << told.toStdString();
  EXPECT_TRUE(told.contains(QStringLiteral(
      "Categories: to be written \";Beta;Website;Design\", in the calendar now \";Acme;Website;Design\"")))
      << told.toStdString();
  EXPECT_TRUE(
      told.contains(QStringLiteral("Building a categories string from the currently selected markings")))
      << told.toStdString();
  EXPECT_EQ(w.subjects(), (QStringList{QStringLiteral("Moved"), QStringLiteral("Second")}));
  EXPECT_EQ(w.cell(QStringLiteral("B2")), QStringLiteral("Acme"));
  EXPECT_EQ(stored(0).categoriesText, marked);
}

TEST_P(FollowedList, AfterAnEditOfARemovedAppointmentShowsTheRowsThatThereAre) {
  w.calendar->removeByAnother(w.folder, firstKey);
  w.world.dialogs.expect(notSaved, platform::dialogs::vbOK);
  expectReport("fncSaveChanges");
  EXPECT_ENDS_PROCESS(type(QStringLiteral("F2"), QStringLiteral("2")));
  const QString told = w.world.dialogs.shown.last().text;
  EXPECT_TRUE(told.contains(QStringLiteral("It stands in the calendar no longer."))) << told.toStdString();
  EXPECT_TRUE(told.contains(QStringLiteral("Duration: 120 minutes"))) << told.toStdString();
  EXPECT_EQ(w.subjects(), QStringList{QStringLiteral("Second")});
}

TEST_P(FollowedList, OverwritesNothingOfASeriesThatSomebodyElseHasChanged) {
  const auto key =
      w.calendar->addSeries(w.folder, w.appointment(QStringLiteral("Series"), at(15, 9), 60, marked),
                            {platform::calendar::Recurrence::Unit::Day, 1, 2, {}});
  subGetData();
  select(QStringLiteral("A4"));
  choose(1, QStringLiteral("Beta"));
  EXPECT_EQ(stored(2).categoriesText, QStringLiteral(";Beta;Website;Design"))
      << "one's own edits are in nobody's way";
  type(QStringLiteral("F5"), QStringLiteral("2"));
  EXPECT_EQ(stored(2).durationMinutes(), 120);
  theyRename(key, "Moved");
  select(QStringLiteral("A4"));
  expectReport("fncSaveChanges");
  EXPECT_ENDS_PROCESS(choose(1, QStringLiteral("Acme")));
  const QString told = w.world.dialogs.shown.last().text;
  EXPECT_TRUE(told.contains(QStringLiteral("Another program has changed \"Series\" meanwhile.")))
      << told.toStdString();
  EXPECT_TRUE(told.contains(QStringLiteral("Subject: when read \"Series\", in the calendar now \"Moved\"")))
      << told.toStdString();
  EXPECT_TRUE(told.contains(QStringLiteral("Categories: to be written \";Acme;Website;Design\"")))
      << told.toStdString();
  EXPECT_EQ(stored(2).subject, QStringLiteral("Moved"));
  EXPECT_EQ(stored(2).categoriesText, QStringLiteral(";Beta;Website;Design"));
  EXPECT_EQ(w.cell(QStringLiteral("A4")), QStringLiteral("Moved"));
}

TEST_P(FollowedList, OverwritesNothingOfASeriesThatAChangedOccurrenceLeadsTo) {
  const auto key =
      w.calendar->addSeries(w.folder, w.appointment(QStringLiteral("Series"), at(15, 9), 60, marked),
                            {platform::calendar::Recurrence::Unit::Day, 1, 2, {}});
  subGetData();
  const QString id = outlookValues().gRowItems.Item(4)->stored().key.recurrenceId;
  w.calendar->addException(w.folder, key, id,
                           w.appointment(QStringLiteral("By itself"), at(16, 10), 60, marked));
  subGetData();
  ASSERT_EQ(w.cell(QStringLiteral("A5")), QStringLiteral("By itself"));
  theyRename(key, "Moved");
  select(QStringLiteral("A5"));
  expectReport("fncSaveChanges");
  EXPECT_ENDS_PROCESS(choose(1, QStringLiteral("Beta")));
  EXPECT_EQ(stored(2).subject, QStringLiteral("Moved"));
  EXPECT_EQ(stored(2).categoriesText, marked);
}

TEST_P(FollowedList, AfterAnotherFailureIsNotFetched) {
  failSaving();
  select(QStringLiteral("A2"));
  expectReport("fncSaveChanges");
  EXPECT_ENDS_PROCESS(choose(1, QStringLiteral("Beta")));
  EXPECT_EQ(fetches, 0);
}

}  // namespace
}  // namespace tests

#include "tests/unit/platform/outlook/calendarfixture.h"

using namespace Qt::StringLiterals;
using namespace platform;
using namespace platform::outlook;
using Operation = calendar::FailingStore::Operation;

namespace {

class ItemsTest : public tests::CalendarTest {
 protected:
  ItemsTest() {
    memory->add(folder, appointment(u"Late"_s, u"2024-05-15 15:00"_s));
    memory->add(folder, appointment(u"Early"_s, u"2024-05-15 08:00"_s));
    memory->addSeries(folder, appointment(u"Stand-up"_s, u"2024-05-13 09:00"_s),
                      {calendar::Recurrence::Unit::Day, 1, 4, {}});
  }
  QStringList walkOver(Items& all, const QString& filter) {
    QStringList found;
    for (auto item = all.Find(filter); item; item = all.FindNext())
      found.append(item->Subject() + u' ' + shown(item->Start()).mid(5, 11));
    return found;
  }
  const QString days = u"[Start] >=\"#5/14/2024 00:00#\" and [Start]<= \"5/15/2024 23:59#\""_s;
};

}  // namespace

TEST_F(ItemsTest, SinglesAndSeriesCountOnceEachInOrderOfTheirStart) {
  const Items all = items();
  ASSERT_EQ(all.Count(), 3);
  EXPECT_EQ(all.Item(1)->Subject(), u"Stand-up"_s);
  EXPECT_EQ(all.Item(2)->Subject(), u"Early"_s);
  EXPECT_EQ(all.Item(3)->Subject(), u"Late"_s);
}

TEST_F(ItemsTest, PositionsOutsideFail) {
  EXPECT_EQ(failureOf([&] { items().Item(0); }), failure::subscriptOutOfRange);
  EXPECT_EQ(failureOf([&] { items().Item(4); }), failure::subscriptOutOfRange);
}

TEST_F(ItemsTest, AWalkByPositionReadsTheFolderOnceUntilItChanges) {
  const Items all = items();
  for (int i = 1; i <= all.Count(); ++i) all.Item(i);
  EXPECT_EQ(store->calls(Operation::Items), 1);
  memory->add(folder, appointment(u"New"_s, u"2024-05-20 08:00"_s));
  EXPECT_EQ(all.Count(), 4);
}

TEST_F(ItemsTest, AFailedReadOfTheFolderIsNotTakenForAnEmptyFolder) {
  const Items all = items();
  store->failCall(Operation::Items, 1, broken);
  EXPECT_EQ(failureOf([&] { all.Count(); }), calendar::errStoreBroken);
  EXPECT_EQ(all.Count(), 3);
}

TEST_F(ItemsTest, AnItemIsFoundByItsSubject) {
  EXPECT_EQ(shown(items().Item(u"Late"_s)->Start()), u"2024-05-15 15:00:00"_s);
  EXPECT_TRUE(items().Item(u"Stand-up"_s)->IsRecurring());
  EXPECT_EQ(failureOf([&] { items().Item(u"late"_s); }), calendar::errNotFound);
}

TEST_F(ItemsTest, TheFirstOfSeveralEqualSubjectsIsFound) {
  memory->add(folder, appointment(u"Late"_s, u"2024-05-14 15:00"_s));
  EXPECT_EQ(shown(items().Item(u"Late"_s)->Start()), u"2024-05-14 15:00:00"_s);
}

TEST_F(ItemsTest, AServerFaultOfTheLookUpIsPassedOn) {
  store->failLookups({RPC_E_SERVERFAULT, u"The server threw an exception."_s});
  EXPECT_EQ(failureOf([&] { items().Item(u"Late"_s); }), RPC_E_SERVERFAULT);
  EXPECT_EQ(items().Count(), 3);
}

TEST_F(ItemsTest, FindWalksTheOccurrencesInOrderOfTheirStart) {
  Items all = items();
  all.Sort(u"[Start]"_s);
  all.setIncludeRecurrences(true);
  EXPECT_EQ(walkOver(all, days), (QStringList{u"Stand-up 05-14 09:00"_s, u"Early 05-15 08:00"_s,
                                              u"Stand-up 05-15 09:00"_s, u"Late 05-15 15:00"_s}));
}

TEST_F(ItemsTest, WithoutSortTheOrderIsTheSame) {
  Items all = items();
  all.setIncludeRecurrences(true);
  EXPECT_EQ(walkOver(all, days).value(1), u"Early 05-15 08:00"_s);
}

TEST_F(ItemsTest, WithoutRecurrencesASeriesMatchesByItsOwnStart) {
  Items all = items();
  EXPECT_EQ(walkOver(all, days), (QStringList{u"Early 05-15 08:00"_s, u"Late 05-15 15:00"_s}));
  EXPECT_EQ(walkOver(all, u"[Start] < \"5/14/2024\""_s), QStringList{u"Stand-up 05-13 09:00"_s});
}

TEST_F(ItemsTest, RecurrencesNeedBothEndsOfTheRange) {
  Items all = items();
  all.setIncludeRecurrences(true);
  EXPECT_EQ(failureOf([&] { all.Find(u"[Start] >= \"5/14/2024\""_s); }), failure::invalidProcedureCall);
}

TEST_F(ItemsTest, NothingIsFoundInAnEmptyRange) {
  Items all = items();
  all.setIncludeRecurrences(true);
  EXPECT_EQ(all.Find(u"[Start] >= \"5/16/2025\" and [Start] <= \"5/17/2025\""_s), nullptr);
  EXPECT_EQ(all.Find(u"[Start] >= \"5/16/2024\" and [Start] <= \"5/15/2024\""_s), nullptr);
  EXPECT_EQ(all.FindNext(), nullptr);
}

TEST_F(ItemsTest, FindNextWithoutFindFindsNothing) {
  Items all = items();
  EXPECT_EQ(all.FindNext(), nullptr);
}

TEST_F(ItemsTest, AFailedFindLeavesNothingToWalk) {
  Items all = items();
  ASSERT_TRUE(all.Find(days));
  EXPECT_NE(failureOf([&] { all.Find(u"nonsense"_s); }), 0);
  EXPECT_EQ(all.FindNext(), nullptr);
  ASSERT_TRUE(all.Find(days));
  store->failCall(Operation::Items, 1, broken);
  EXPECT_EQ(failureOf([&] { all.Find(days); }), calendar::errStoreBroken);
  EXPECT_EQ(all.FindNext(), nullptr);
}

TEST_F(ItemsTest, FindBeginsAnewEachTime) {
  Items all = items();
  EXPECT_EQ(all.Find(days)->Subject(), u"Early"_s);
  EXPECT_EQ(all.Find(days)->Subject(), u"Early"_s);
  EXPECT_EQ(all.FindNext()->Subject(), u"Late"_s);
  EXPECT_EQ(all.FindNext(), nullptr);
  EXPECT_EQ(all.FindNext(), nullptr);
}

TEST_F(ItemsTest, OnlyTheStartCanBeSortedBy) {
  Items all = items();
  EXPECT_NO_THROW(all.Sort(u"[Start]"_s));
  EXPECT_NO_THROW(all.Sort(u"start"_s));
  EXPECT_EQ(failureOf([&] { all.Sort(u"[Subject]"_s); }), failure::invalidProcedureCall);
}

TEST_F(ItemsTest, ANewAppointmentStartsAtTheNextHalfHourAndReachesTheCalendarWithItsFirstSave) {
  world.setTime(QDateTime(QDate(2024, 5, 15), QTime(10, 10)));
  const auto item = items().Add();
  EXPECT_EQ(shown(item->Start()), u"2024-05-15 10:30:00"_s);
  EXPECT_EQ(item->Duration(), 30);
  EXPECT_EQ(items().Count(), 3);
  item->setSubject(u"New"_s);
  item->Save();
  EXPECT_EQ(items().Count(), 4);
  const auto stored = items().Item(u"New"_s);
  EXPECT_EQ(shown(stored->Start()), u"2024-05-15 10:30:00"_s);
  EXPECT_EQ(stored->Duration(), 30);
  item->setSubject(u"Renamed"_s);
  item->Save();
  EXPECT_EQ(items().Count(), 4);
}

TEST_F(ItemsTest, AHalfHourThatJustBeginsIsTheNextOne) {
  for (int half = 0; half < 48; ++half) {
    const QDateTime now(QDate(2024, 5, 15), QTime(half / 2, half % 2 * 30));
    world.setTime(now);
    EXPECT_EQ(shown(items().Add()->Start()), now.toString(u"yyyy-MM-dd HH:mm:ss"_s));
  }
  world.setTime(QDateTime(QDate(2024, 5, 15), QTime(10, 30, 1)));
  EXPECT_EQ(shown(items().Add()->Start()), u"2024-05-15 11:00:00"_s);
}

TEST_F(ItemsTest, ANewAppointmentTakesTheTimesItIsGiven) {
  const auto item = items().Add();
  item->setStart(basic::Date::of(QDate(2024, 5, 17), QTime(8, 0)));
  item->setCategories(u",Acme"_s);
  item->setDuration(120);
  item->setSubject(u"Acme"_s);
  item->setReminderSet(false);
  item->Close(olSave);
  const auto stored = items().Item(u"Acme"_s);
  EXPECT_EQ(shown(stored->Start()), u"2024-05-17 08:00:00"_s);
  EXPECT_EQ(stored->Duration(), 120);
  EXPECT_EQ(stored->Categories(), u",Acme"_s);
}

TEST_F(ItemsTest, ADiscardedNewAppointmentNeverWasThere) {
  const auto item = items().Add();
  item->setSubject(u"New"_s);
  item->Close(olDiscard);
  EXPECT_EQ(items().Count(), 3);
}

#include "platform/calendar/memory/memorystore.h"

#include "platform/basic/failure.h"
#include "tests/support/testworld.h"

using namespace Qt::StringLiterals;
using namespace platform::calendar;

namespace {

class MemoryStoreTest : public testing::Test {
 protected:
  MemoryStoreTest() {
    FolderInfo info;
    info.name = u"Calendar"_s;
    info.storeName = u"Mailbox - Jane Doe"_s;
    folder = store.addFolder(info);
  }
  static Item meeting(const QString& subject, const QTime& time = QTime(9, 0)) {
    Item item;
    item.subject = subject;
    item.start = QDateTime(QDate(2024, 5, 15), time, QTimeZone("Europe/Stockholm"));
    item.end = item.start.addSecs(3600);
    return item;
  }
  QList<Item> all() { return store.items(folder, {}); }
  QStringList occurrences() {
    Query query;
    query.expandSeries = true;
    query.zone = QTimeZone("Europe/Stockholm");
    query.startFrom = QDateTime(QDate(2024, 1, 1), QTime(0, 0), Qt::UTC);
    query.startTo = query.startFrom.addYears(1);
    QStringList list;
    for (const Item& item : store.items(folder, query)) list.append(item.start.toString(u"MM-dd HH:mm"_s));
    return list;
  }

  tests::TestWorld world;
  MemoryStore store;
  QString folder;
};

}  // namespace

TEST_F(MemoryStoreTest, FoldersGetIdentitiesUnlessTheyHaveOne) {
  FolderInfo named;
  named.id = u"mine"_s;
  EXPECT_EQ(store.addFolder(named), u"mine"_s);
  EXPECT_NE(store.addFolder({}), folder);
  EXPECT_EQ(store.folders().value(0).storeName, u"Mailbox - Jane Doe"_s);
}

TEST_F(MemoryStoreTest, ItemsWithoutIdentityGetOneEach) {
  const ItemKey first = store.add(folder, meeting(u"A"_s));
  const ItemKey second = store.add(folder, meeting(u"B"_s));
  EXPECT_FALSE(first.uid.isEmpty());
  EXPECT_NE(first.uid, second.uid);
}

TEST_F(MemoryStoreTest, TwoItemsOfOneUidAreToldApartByTheirPlace) {
  Item first = meeting(u"A"_s), second = meeting(u"B"_s);
  first.key = {u"one"_s, u"same"_s, {}};
  second.key = {u"two"_s, u"same"_s, {}};
  store.add(folder, first);
  store.add(folder, second);
  Change change;
  change.subject = u"Changed"_s;
  store.save(folder, all().value(1).key, all().value(1).tag, change);
  EXPECT_EQ(all().value(0).subject, u"A"_s);
  EXPECT_EQ(all().value(1).subject, u"Changed"_s);
}

TEST_F(MemoryStoreTest, DailyAndWeeklyRulesStepByTheirInterval) {
  store.addSeries(folder, meeting(u"Daily"_s), {Recurrence::Unit::Day, 3, 3, {u"20240518T090000"_s}});
  EXPECT_EQ(occurrences(), (QStringList{u"05-15 09:00"_s, u"05-21 09:00"_s}));
  store.addSeries(folder, meeting(u"Weekly"_s, QTime(10, 0)), {Recurrence::Unit::Week, 2, 2, {}});
  EXPECT_EQ(occurrences(),
            (QStringList{u"05-15 09:00"_s, u"05-15 10:00"_s, u"05-21 09:00"_s, u"05-29 10:00"_s}));
}

TEST_F(MemoryStoreTest, ASeriesInUniversalTimeNamesItsOccurrencesSo) {
  Item item = meeting(u"A"_s);
  item.start = QDateTime(QDate(2024, 5, 15), QTime(9, 0), Qt::UTC);
  item.end = item.start.addSecs(3600);
  store.addSeries(folder, item, {Recurrence::Unit::Day, 1, 1, {}});
  Query query;
  query.expandSeries = true;
  query.startFrom = item.start;
  query.startTo = item.start;
  EXPECT_EQ(store.items(folder, query).value(0).key.recurrenceId, u"20240515T090000Z"_s);
}

TEST_F(MemoryStoreTest, ExpandingWithoutBothBoundsFails) {
  Query query;
  query.expandSeries = true;
  query.startFrom = QDateTime::currentDateTimeUtc();
  EXPECT_THROW(store.items(folder, query), platform::Failure);
}

TEST_F(MemoryStoreTest, AMeetingRequestShowsAndTheAppointmentBehindItDoesNot) {
  Item request = meeting(u"Request"_s);
  request.messageClass = u"IPM.Schedule.Meeting.Request"_s;
  store.addMeetingRequest(folder, request, meeting(u"Appointment"_s, QTime(14, 0)));
  ASSERT_EQ(all().size(), 1);
  EXPECT_EQ(all()[0].subject, u"Request"_s);
  ASSERT_TRUE(all()[0].associated);
  EXPECT_EQ(all()[0].associated->subject, u"Appointment"_s);
}

TEST_F(MemoryStoreTest, TheAppointmentBehindAMeetingRequestCanBeSaved) {
  store.addMeetingRequest(folder, meeting(u"Request"_s), meeting(u"Appointment"_s));
  const Item behind = *all().value(0).associated;
  Change change;
  change.billingInformation = u"paid"_s;
  store.save(folder, behind.key, behind.tag, change);
  EXPECT_EQ(all().value(0).associated->billingInformation, u"paid"_s);
}

TEST_F(MemoryStoreTest, AMeetingRequestMayHaveNoAppointment) {
  store.addMeetingRequest(folder, meeting(u"Request"_s), std::nullopt);
  EXPECT_FALSE(all().value(0).associated);
}

TEST_F(MemoryStoreTest, AnotherProgramCanTurnAnOccurrenceIntoAnException) {
  const ItemKey key = store.addSeries(folder, meeting(u"Daily"_s), {Recurrence::Unit::Day, 1, 2, {}});
  Change change;
  change.start = QDateTime(QDate(2024, 5, 16), QTime(17, 0), QTimeZone("Europe/Stockholm"));
  store.changeByAnother(folder, {{}, key.uid, u"20240516T090000"_s}, change);
  EXPECT_EQ(occurrences(), (QStringList{u"05-15 09:00"_s, u"05-16 17:00"_s}));
  EXPECT_THROW(store.changeByAnother(folder, {{}, u"nobody"_s, {}}, change), platform::Failure);
}

TEST_F(MemoryStoreTest, SavedItemsComeBackOnTheClockOfTheUser) {
  Item item = meeting(u"A"_s);
  item.start = QDateTime(QDate(2024, 5, 15), QTime(9, 0), Qt::LocalTime);
  item.end = item.start.addSecs(3600);
  store.add(folder, item);
  world.setTime(QDateTime(QDate(2024, 5, 15), QTime(10, 0)), "America/New_York");
  Change change;
  change.subject = u"B"_s;
  const Item saved = store.save(folder, all().value(0).key, all().value(0).tag, change);
  EXPECT_EQ(saved.start, QDateTime(QDate(2024, 5, 15), QTime(9, 0), QTimeZone("America/New_York")));
}

TEST_F(MemoryStoreTest, ANewItemNeedsAStart) {
  Change change;
  change.subject = u"A"_s;
  EXPECT_THROW(store.save(folder, {}, {}, change), platform::Failure);
  EXPECT_TRUE(all().isEmpty());
}

TEST_F(MemoryStoreTest, ProblemsAreTheOnesThatWereGiven) {
  store.addProblem(folder, {u"broken.ics"_s, 12, u"no END:VEVENT"_s});
  ASSERT_EQ(store.problems(folder).size(), 1);
  EXPECT_EQ(store.problems(folder)[0].line, 12);
}

TEST_F(MemoryStoreTest, FailuresNameTheCalendar) {
  const ItemKey key = store.add(folder, meeting(u"A"_s));
  try {
    store.save(folder, key, u"an old tag"_s, {});
    FAIL();
  } catch (const platform::Failure& failure) {
    EXPECT_EQ(failure.number(), errChangedMeanwhile);
    EXPECT_TRUE(failure.description().contains(u"\"Calendar\""_s));
    EXPECT_TRUE(failure.description().contains(u"\"A\""_s));
  }
}

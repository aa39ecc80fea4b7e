#include "tests/contract/calendarstore/calendarstore.h"

using namespace Qt::StringLiterals;
using namespace platform::calendar;

namespace contract {

TEST_P(CalendarStoreContract, FoldersComeInOrderWithTheirNamesAndStableIdentities) {
  if (!maker->hasSeveralFolders()) {
    open({});
    ASSERT_EQ(store->folders().size(), 1);
    EXPECT_EQ(maker->reopened()->folders().value(0).id, folder);
    return;
  }
  store = maker->make({{u"Calendar"_s, {}}, {u"Projects"_s, {}}});
  const QList<FolderInfo> folders = store->folders();
  ASSERT_EQ(folders.size(), 2);
  EXPECT_EQ(folders[0].name, u"Calendar"_s);
  EXPECT_EQ(folders[1].name, u"Projects"_s);
  EXPECT_FALSE(folders[0].id.isEmpty());
  EXPECT_NE(folders[0].id, folders[1].id);
  EXPECT_TRUE(folders[0].holdsAppointments);
  EXPECT_FALSE(folders[0].readOnly);
  EXPECT_EQ(maker->reopened()->folders().value(1).id, folders[1].id);
}

TEST_P(CalendarStoreContract, AFolderShowsOnlyItsOwnItems) {
  if (!maker->hasSeveralFolders()) return;
  store = maker->make({{u"Calendar"_s, {timed(u"a"_s, u"Mine"_s, u"2024-03-04 09:00"_s)}},
                       {u"Projects"_s, {timed(u"a"_s, u"Theirs"_s, u"2024-03-04 09:00"_s)}}});
  folder = store->folders().at(1).id;
  EXPECT_EQ(subjectsOf(plain()), QStringList{u"Theirs"_s});
}

TEST_P(CalendarStoreContract, AMailFolderHoldsNoAppointments) {
  if (!maker->hasMailFolders()) return;
  store = maker->make({{u"Inbox"_s, {}, false, false}});
  EXPECT_FALSE(store->folders().value(0).holdsAppointments);
}

TEST_P(CalendarStoreContract, AFolderThatIsNotThereIsNotFound) {
  open({});
  EXPECT_EQ(failureOf([&] { store->items(u"no such folder"_s, {}); }), errNotFound);
  EXPECT_EQ(failureOf([&] { store->changeTag(u"no such folder"_s); }), errNotFound);
}

TEST_P(CalendarStoreContract, AnEmptyFolderHasNoItemsAndNoProblems) {
  open({});
  EXPECT_TRUE(plain().isEmpty());
  EXPECT_TRUE(expanded().isEmpty());
  EXPECT_TRUE(store->problems(folder).isEmpty());
}

TEST_P(CalendarStoreContract, AnItemComesBackAsItWasWritten) {
  Described written =
      timed(u"a"_s, u"Möte; \"plan, do\" \\ 会議 🙂"_s, u"2024-03-04 09:00"_s, "Europe/Stockholm", 90);
  written.item.body = u"First line\r\nsecond; with, signs \\ and åäö\r\n\r\nlast\r\n"_s;
  written.item.categories = {u"Acme"_s, u"Key, one"_s, u"Ärende"_s};
  open({written});
  const QList<Item> items = plain();
  ASSERT_EQ(items.size(), 1);
  const Item& item = items[0];
  EXPECT_EQ(item.key.uid, u"a"_s);
  EXPECT_TRUE(item.key.recurrenceId.isEmpty());
  EXPECT_FALSE(item.tag.isEmpty());
  EXPECT_EQ(item.kind, Kind::Single);
  EXPECT_EQ(item.subject, written.item.subject);
  EXPECT_EQ(item.body, written.item.body);
  EXPECT_EQ(item.start, written.item.start);
  EXPECT_EQ(item.durationMinutes(), 90);
  EXPECT_FALSE(item.allDay);
  EXPECT_FALSE(item.zoneUnknown);
  EXPECT_EQ(item.categories, written.item.categories);
  EXPECT_TRUE(item.billingInformation.isEmpty());
  EXPECT_TRUE(item.userProperties.isEmpty());
  EXPECT_TRUE(item.messageClass.isEmpty());
}

TEST_P(CalendarStoreContract, CategoriesOfAnotherProgramHaveNoTextOfTheirOwn) {
  Described written = timed(u"a"_s, u"A"_s, u"2024-03-04 09:00"_s);
  written.item.categories = {u"Acme"_s, u"Task"_s};
  open({written});
  EXPECT_TRUE(single(u"A"_s).categoriesText.isNull());
}

TEST_P(CalendarStoreContract, EachSensitivityIsRead) {
  QList<Described> items;
  for (const auto sensitivity :
       {Sensitivity::Normal, Sensitivity::Personal, Sensitivity::Private, Sensitivity::Confidential}) {
    const QString n = QString::number(static_cast<int>(sensitivity));
    items.append(timed(u"uid-"_s + n, n, u"2024-03-04 09:00"_s));
    items.last().item.sensitivity = sensitivity;
  }
  open(items);
  for (const Item& item : plain()) EXPECT_EQ(static_cast<int>(item.sensitivity), item.subject.toInt());
}

TEST_P(CalendarStoreContract, TimesAreShownInTheZoneOfTheQuery) {
  open({timed(u"a"_s, u"A"_s, u"2024-03-04 09:00"_s, "America/New_York"),
        timed(u"b"_s, u"B"_s, u"2024-03-04 22:30"_s, "UTC")});
  Query query;
  query.zone = QTimeZone("Asia/Kathmandu");
  const QList<Item> items = store->items(folder, query);
  EXPECT_EQ(startsOf(items), (QStringList{u"2024-03-04 19:45"_s, u"2024-03-05 04:15"_s}));
  EXPECT_EQ(items.value(0).end.toString(u"HH:mm"_s), u"20:45"_s);
}

TEST_P(CalendarStoreContract, AFloatingTimeStandsOnTheClockOfEveryZone) {
  open({timed(u"a"_s, u"A"_s, u"2024-03-04 09:00"_s, "")});
  for (const char* zone : {"Europe/Stockholm", "America/St_Johns", "Pacific/Kiritimati"}) {
    Query query;
    query.zone = QTimeZone(zone);
    const QList<Item> items = store->items(folder, query);
    EXPECT_EQ(startsOf(items), QStringList{u"2024-03-04 09:00"_s}) << zone;
    EXPECT_EQ(items.value(0).start, moment(u"2024-03-04 09:00"_s, zone)) << zone;
  }
}

TEST_P(CalendarStoreContract, AnAllDayItemKeepsItsDatesInEveryZoneAndCountsWholeDays) {
  // the clocks of Stockholm leave out an hour of the 31st
  open({wholeDay(u"a"_s, u"A"_s, QDate(2024, 3, 30), 2)});
  for (const char* zone : {"Europe/Stockholm", "America/New_York", "Pacific/Kiritimati"}) {
    Query query;
    query.zone = QTimeZone(zone);
    const QList<Item> items = store->items(folder, query);
    ASSERT_EQ(items.size(), 1) << zone;
    EXPECT_TRUE(items[0].allDay);
    EXPECT_EQ(items[0].start.date(), QDate(2024, 3, 30)) << zone;
    EXPECT_EQ(items[0].end.date(), QDate(2024, 4, 1)) << zone;
    EXPECT_EQ(items[0].durationMinutes(), 2880) << zone;
  }
}

TEST_P(CalendarStoreContract, ADurationCountsTheMinutesThatReallyPass) {
  open({timed(u"a"_s, u"Spring"_s, u"2024-03-31 01:00"_s, "Europe/Stockholm", 120),
        timed(u"b"_s, u"Autumn"_s, u"2024-10-27 01:00"_s, "Europe/Stockholm", 240)});
  EXPECT_EQ(single(u"Spring"_s).durationMinutes(), 120);
  EXPECT_EQ(single(u"Spring"_s).end.toString(u"HH:mm"_s), u"04:00"_s);
  EXPECT_EQ(single(u"Autumn"_s).durationMinutes(), 240);
  EXPECT_EQ(single(u"Autumn"_s).end.toString(u"HH:mm"_s), u"04:00"_s);
}

TEST_P(CalendarStoreContract, BothBoundsOfTheStartAreIncluded) {
  open({timed(u"a"_s, u"Before"_s, u"2024-03-04 08:59"_s), timed(u"b"_s, u"First"_s, u"2024-03-04 09:00"_s),
        timed(u"c"_s, u"Last"_s, u"2024-03-05 17:00"_s), timed(u"d"_s, u"Behind"_s, u"2024-03-05 17:01"_s)});
  Query query;
  query.startFrom = moment(u"2024-03-04 09:00"_s);
  query.startTo = moment(u"2024-03-05 17:00"_s);
  EXPECT_EQ(subjectsOf(store->items(folder, query)), (QStringList{u"First"_s, u"Last"_s}));
  query.expandSeries = true;
  EXPECT_EQ(subjectsOf(store->items(folder, query)), (QStringList{u"First"_s, u"Last"_s}));
  query.expandSeries = false;
  query.startTo = {};
  EXPECT_EQ(subjectsOf(store->items(folder, query)), (QStringList{u"First"_s, u"Last"_s, u"Behind"_s}));
  query.startFrom = {};
  query.startTo = moment(u"2024-03-04 09:00"_s);
  EXPECT_EQ(subjectsOf(store->items(folder, query)), (QStringList{u"Before"_s, u"First"_s}));
}

TEST_P(CalendarStoreContract, AnItemThatOnlyReachesIntoTheRangeIsLeftOut) {
  open({timed(u"a"_s, u"Night shift"_s, u"2024-03-04 22:00"_s, "Europe/Stockholm", 480)});
  Query query;
  query.startFrom = moment(u"2024-03-05 00:00"_s);
  query.startTo = moment(u"2024-03-05 23:59"_s);
  EXPECT_TRUE(store->items(folder, query).isEmpty());
}

TEST_P(CalendarStoreContract, TheRangeMeetsAnAllDayItemAtTheMidnightOfTheQuerysZone) {
  open({wholeDay(u"a"_s, u"Holiday"_s, QDate(2024, 5, 1))});
  for (const char* zone : {"Europe/Stockholm", "America/New_York", "Pacific/Kiritimati"}) {
    Query query;
    query.zone = QTimeZone(zone);
    query.startFrom = moment(u"2024-05-01 00:00"_s, zone);
    query.startTo = moment(u"2024-05-01 00:00"_s, zone);
    EXPECT_EQ(store->items(folder, query).size(), 1) << zone;
    query.expandSeries = true;
    EXPECT_EQ(store->items(folder, query).size(), 1) << zone;
  }
}

TEST_P(CalendarStoreContract, ItemsAreOrderedByStartThenSubjectThenIdentity) {
  open({timed(u"d"_s, u"Late"_s, u"2024-03-04 15:00"_s), timed(u"c"_s, u"Same"_s, u"2024-03-04 09:00"_s),
        timed(u"b"_s, u"Same"_s, u"2024-03-04 09:00"_s), timed(u"e"_s, u"Again"_s, u"2024-03-04 09:00"_s),
        timed(u"a"_s, u"Early"_s, u"2024-03-04 12:00"_s, "Asia/Tokyo")});
  QStringList uids;
  for (const Item& item : plain()) uids.append(item.key.uid);
  EXPECT_EQ(uids, (QStringList{u"a"_s, u"e"_s, u"b"_s, u"c"_s, u"d"_s}));
}

TEST_P(CalendarStoreContract, ASubjectIsFoundExactly) {
  open({timed(u"a"_s, u"Plan"_s, u"2024-03-04 09:00"_s), timed(u"b"_s, u"plan"_s, u"2024-03-04 10:00"_s),
        timed(u"c"_s, u"Plan B"_s, u"2024-03-04 11:00"_s)});
  Query query;
  query.subject = u"Plan"_s;
  const QList<Item> found = store->items(folder, query);
  ASSERT_EQ(found.size(), 1);
  EXPECT_EQ(found[0].key.uid, u"a"_s);
  query.subject = u"Nothing like it"_s;
  EXPECT_TRUE(store->items(folder, query).isEmpty());
}

TEST_P(CalendarStoreContract, AUidNamesOneItemAndNoOther) {
  open({timed(u"a"_s, u"A"_s, u"2024-03-04 09:00"_s), timed(u"ab"_s, u"B"_s, u"2024-03-04 10:00"_s),
        standUp()});
  Query query;
  query.uid = u"a"_s;
  EXPECT_EQ(subjectsOf(store->items(folder, query)), QStringList{u"A"_s});
  query.uid = u"nobody"_s;
  EXPECT_TRUE(store->items(folder, query).isEmpty());
}

TEST_P(CalendarStoreContract, ASeriesStandsOnceAmongTheItemsOfAFolder) {
  open({standUp(),
        changedOccurrence(timed(u"series"_s, u"Moved"_s, u"2024-02-13 10:00"_s), u"20240212T090000"_s)});
  const QList<Item> items = plain();
  ASSERT_EQ(subjectsOf(items), QStringList{u"Stand-up"_s});
  EXPECT_EQ(items[0].kind, Kind::Master);
  EXPECT_TRUE(items[0].key.recurrenceId.isEmpty());
}

TEST_P(CalendarStoreContract, AnExpandedSeriesShowsItsOccurrencesInPlaceOfItself) {
  open({standUp()});
  const QList<Item> items = expanded();
  EXPECT_EQ(startsOf(items), (QStringList{u"2024-02-05 09:00"_s, u"2024-02-12 09:00"_s, u"2024-02-19 09:00"_s,
                                          u"2024-02-26 09:00"_s}));
  for (const Item& item : items) {
    EXPECT_EQ(item.kind, Kind::Occurrence);
    EXPECT_EQ(item.key.uid, u"series"_s);
    EXPECT_EQ(item.subject, u"Stand-up"_s);
    EXPECT_EQ(item.durationMinutes(), 60);
  }
  EXPECT_EQ(items.value(2).key.recurrenceId, u"20240219T090000"_s);
}

TEST_P(CalendarStoreContract, OnlyTheOccurrencesOfTheRangeAreShown) {
  open({repeated(timed(u"series"_s, u"Daily"_s, u"2024-02-05 09:00"_s), day, 2, 100)});
  Query query;
  query.expandSeries = true;
  query.zone = QTimeZone("Europe/Stockholm");
  query.startFrom = moment(u"2024-02-07 09:00"_s);
  query.startTo = moment(u"2024-02-11 09:00"_s);
  EXPECT_EQ(startsOf(store->items(folder, query)),
            (QStringList{u"2024-02-07 09:00"_s, u"2024-02-09 09:00"_s, u"2024-02-11 09:00"_s}));
}

TEST_P(CalendarStoreContract, AnExcludedOccurrenceIsNotShown) {
  open({repeated(timed(u"series"_s, u"Daily"_s, u"2024-02-05 09:00"_s), day, 1, 3, {u"20240206T090000"_s})});
  EXPECT_EQ(startsOf(expanded()), (QStringList{u"2024-02-05 09:00"_s, u"2024-02-07 09:00"_s}));
}

TEST_P(CalendarStoreContract, AnExceptionTakesThePlaceOfItsOccurrence) {
  open({standUp(),
        changedOccurrence(timed(u"series"_s, u"Moved"_s, u"2024-02-13 10:00"_s), u"20240212T090000"_s)});
  const QList<Item> items = expanded();
  EXPECT_EQ(startsOf(items), (QStringList{u"2024-02-05 09:00"_s, u"2024-02-13 10:00"_s, u"2024-02-19 09:00"_s,
                                          u"2024-02-26 09:00"_s}));
  const Item moved = named(items, u"Moved"_s);
  EXPECT_EQ(moved.kind, Kind::Exception);
  EXPECT_EQ(moved.key.uid, u"series"_s);
  EXPECT_EQ(moved.key.recurrenceId, u"20240212T090000"_s);
}

TEST_P(CalendarStoreContract, AnExceptionIsFoundWhereItWasMovedToAndNotWhereItCameFrom) {
  open({standUp(),
        changedOccurrence(timed(u"series"_s, u"Moved"_s, u"2024-06-03 10:00"_s), u"20240212T090000"_s)});
  Query query;
  query.expandSeries = true;
  query.startFrom = moment(u"2024-02-12 00:00"_s);
  query.startTo = moment(u"2024-02-12 23:59"_s);
  EXPECT_TRUE(store->items(folder, query).isEmpty());
  query.startFrom = moment(u"2024-06-03 00:00"_s);
  query.startTo = moment(u"2024-06-03 23:59"_s);
  EXPECT_EQ(subjectsOf(store->items(folder, query)), QStringList{u"Moved"_s});
}

TEST_P(CalendarStoreContract, ASeriesKeepsItsTimeOnItsOwnClockWhenTheClocksChange) {
  open({repeated(timed(u"series"_s, u"Daily"_s, u"2024-03-09 09:00"_s, "America/New_York"), day, 1, 2)});
  // New York changes three weeks ahead of Stockholm
  EXPECT_EQ(startsOf(expanded()), (QStringList{u"2024-03-09 15:00"_s, u"2024-03-10 14:00"_s}));
}

TEST_P(CalendarStoreContract, AnAllDaySeriesCountsInDates) {
  open({repeated(wholeDay(u"series"_s, u"On call"_s, QDate(2024, 3, 30)), day, 1, 3)});
  const QList<Item> items = expanded();
  EXPECT_EQ(startsOf(items),
            (QStringList{u"2024-03-30 00:00"_s, u"2024-03-31 00:00"_s, u"2024-04-01 00:00"_s}));
  EXPECT_EQ(items.value(1).key.recurrenceId, u"20240331"_s);
  EXPECT_TRUE(items.value(1).allDay);
  EXPECT_EQ(items.value(1).durationMinutes(), 1440);
}

TEST_P(CalendarStoreContract, TheMasterOfAnOccurrenceIsFoundByItsUid) {
  open({standUp(), timed(u"a"_s, u"A"_s, u"2024-03-04 09:00"_s)});
  Query query;
  query.uid = expanded().value(0).key.uid;
  int masters = 0;
  for (const Item& item : store->items(folder, query))
    if (item.kind == Kind::Master) ++masters;
  EXPECT_EQ(masters, 1);
}

}  // namespace contract

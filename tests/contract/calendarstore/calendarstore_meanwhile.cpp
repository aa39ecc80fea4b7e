#include "tests/contract/calendarstore/calendarstore.h"

using namespace Qt::StringLiterals;
using namespace platform::calendar;

namespace contract {

TEST_P(CalendarStoreContract, AnItemThatAnotherProgramChangedIsNotOverwritten) {
  open({timed(u"a"_s, u"A"_s, u"2024-03-04 09:00"_s)});
  const Item read = single(u"A"_s);
  maker->changeSubjectByAnother(0, u"a"_s, u"Theirs"_s);
  Change change;
  change.subject = u"Mine"_s;
  EXPECT_EQ(failureOf([&] { save(read, change); }), errChangedMeanwhile);
  EXPECT_EQ(subjectsOf(plain()), QStringList{u"Theirs"_s});
}

TEST_P(CalendarStoreContract, AnOccurrenceOfASeriesThatAnotherProgramChangedIsNotSaved) {
  open({standUp()});
  const Item read = expanded().value(1);
  maker->changeSubjectByAnother(0, u"series"_s, u"Theirs"_s);
  Change change;
  change.billingInformation = u"paid"_s;
  EXPECT_EQ(failureOf([&] { save(read, change); }), errChangedMeanwhile);
  EXPECT_EQ(expanded().value(1).kind, Kind::Occurrence);
}

TEST_P(CalendarStoreContract, AChangeOfAnotherItemIsKeptBesideOnesOwn) {
  open({timed(u"a"_s, u"A"_s, u"2024-03-04 09:00"_s), timed(u"b"_s, u"B"_s, u"2024-03-05 09:00"_s)});
  const Item read = single(u"A"_s);
  maker->changeSubjectByAnother(0, u"b"_s, u"Theirs"_s);
  Change change;
  change.subject = u"Mine"_s;
  save(read, change);
  reopen();
  EXPECT_EQ(subjectsOf(plain()), (QStringList{u"Mine"_s, u"Theirs"_s}));
}

TEST_P(CalendarStoreContract, AnItemThatAnotherProgramRemovedIsNotMadeAgain) {
  open({timed(u"a"_s, u"A"_s, u"2024-03-04 09:00"_s), timed(u"b"_s, u"B"_s, u"2024-03-05 09:00"_s)});
  const Item read = single(u"A"_s);
  maker->removeByAnother(0, u"a"_s);
  Change change;
  change.subject = u"Mine"_s;
  const qint32 number = failureOf([&] { save(read, change); });
  EXPECT_TRUE(number == errNotFound || number == errChangedMeanwhile) << number;
  EXPECT_EQ(subjectsOf(plain()), QStringList{u"B"_s});
}

TEST_P(CalendarStoreContract, AnItemThatNeverWasThereIsNotFound) {
  open({timed(u"a"_s, u"A"_s, u"2024-03-04 09:00"_s)});
  Item other = single(u"A"_s);
  other.key.uid = u"nobody"_s;
  Change change;
  change.subject = u"Mine"_s;
  EXPECT_EQ(failureOf([&] { save(other, change); }), errNotFound);
  EXPECT_EQ(failureOf([&] { store->remove(folder, other.key, other.tag); }), errNotFound);
}

TEST_P(CalendarStoreContract, AReadOnlyFolderRefusesEveryChange) {
  if (!maker->hasReadOnlyFolders()) return;
  open({timed(u"a"_s, u"A"_s, u"2024-03-04 09:00"_s)}, true);
  EXPECT_TRUE(store->folders().value(0).readOnly);
  const Item item = single(u"A"_s);
  Change change;
  change.subject = u"Mine"_s;
  change.start = moment(u"2024-03-04 13:00"_s);
  EXPECT_EQ(failureOf([&] { save(item, change); }), errAccessDenied);
  EXPECT_EQ(failureOf([&] { store->save(folder, {}, {}, change); }), errAccessDenied);
  EXPECT_EQ(failureOf([&] { store->remove(folder, item.key, item.tag); }), errAccessDenied);
  EXPECT_EQ(subjectsOf(plain()), QStringList{u"A"_s});
}

TEST_P(CalendarStoreContract, ARemovedItemIsGoneAndTheOthersStay) {
  open({timed(u"a"_s, u"A"_s, u"2024-03-04 09:00"_s), timed(u"b"_s, u"B"_s, u"2024-03-05 09:00"_s)});
  const Item item = single(u"A"_s);
  store->remove(folder, item.key, item.tag);
  EXPECT_EQ(subjectsOf(plain()), QStringList{u"B"_s});
  reopen();
  EXPECT_EQ(subjectsOf(plain()), QStringList{u"B"_s});
}

TEST_P(CalendarStoreContract, ARemovedSeriesTakesItsExceptionsAlong) {
  open({standUp(),
        changedOccurrence(timed(u"series"_s, u"Moved"_s, u"2024-02-13 10:00"_s), u"20240212T090000"_s)});
  const Item master = single(u"Stand-up"_s);
  store->remove(folder, master.key, master.tag);
  reopen();
  EXPECT_TRUE(expanded().isEmpty());
}

TEST_P(CalendarStoreContract, ARemovedOccurrenceLeavesTheRestOfItsSeries) {
  open({standUp(),
        changedOccurrence(timed(u"series"_s, u"Moved"_s, u"2024-02-13 10:00"_s), u"20240212T090000"_s)});
  const Item plainOccurrence = expanded().value(2);
  store->remove(folder, plainOccurrence.key, plainOccurrence.tag);
  const Item moved = named(expanded(), u"Moved"_s);
  store->remove(folder, moved.key, moved.tag);
  reopen();
  EXPECT_EQ(startsOf(expanded()), (QStringList{u"2024-02-05 09:00"_s, u"2024-02-26 09:00"_s}));
}

TEST_P(CalendarStoreContract, AnItemThatAnotherProgramChangedIsNotRemoved) {
  open({timed(u"a"_s, u"A"_s, u"2024-03-04 09:00"_s)});
  const Item read = single(u"A"_s);
  maker->changeSubjectByAnother(0, u"a"_s, u"Theirs"_s);
  EXPECT_EQ(failureOf([&] { store->remove(folder, read.key, read.tag); }), errChangedMeanwhile);
  EXPECT_EQ(subjectsOf(plain()), QStringList{u"Theirs"_s});
}

TEST_P(CalendarStoreContract, TheFoldersTagChangesWithEveryChangeAndOnlyThen) {
  open({timed(u"a"_s, u"A"_s, u"2024-03-04 09:00"_s), timed(u"b"_s, u"B"_s, u"2024-03-05 09:00"_s)});
  QStringList tags{store->changeTag(folder)};
  const auto expectNew = [&] {
    const QString tag = store->changeTag(folder);
    EXPECT_FALSE(tags.contains(tag));
    EXPECT_EQ(store->changeTag(folder), tag);
    tags.append(tag);
  };
  plain();
  EXPECT_EQ(store->changeTag(folder), tags.last());
  Change change;
  change.subject = u"Changed"_s;
  save(single(u"A"_s), change);
  expectNew();
  maker->changeSubjectByAnother(0, u"b"_s, u"Changed by another"_s);
  expectNew();
  const Item item = single(u"Changed"_s);
  store->remove(folder, item.key, item.tag);
  expectNew();
}

TEST_P(CalendarStoreContract, TheOthersTagTellsOfWhatOthersDidAndNotOfOnesOwn) {
  open({timed(u"a"_s, u"A"_s, u"2024-03-04 09:00"_s), timed(u"b"_s, u"B"_s, u"2024-03-05 09:00"_s),
        standUp()});
  QString tag = store->othersTag(folder, Look::Thorough);
  const auto expectSame = [&] {
    EXPECT_EQ(store->othersTag(folder, Look::Glance), tag);
    plain();
    EXPECT_EQ(store->othersTag(folder, Look::Thorough), tag);
  };
  expectSame();
  Change change;
  change.subject = u"Changed"_s;
  save(single(u"A"_s), change);
  expectSame();
  change.subject = u"Changed by itself"_s;
  save(expanded().value(1), change);
  expectSame();
  change.subject = u"New"_s;
  change.start = QDateTime(QDate(2024, 3, 6), QTime(9, 0), Qt::UTC);
  store->save(folder, {}, {}, change);
  expectSame();
  store->hold();
  change.subject = u"Held"_s;
  save(single(u"B"_s), change);
  store->flush();
  expectSame();
  const Item item = single(u"Changed"_s);
  store->remove(folder, item.key, item.tag);
  expectSame();
  maker->changeSubjectByAnother(0, u"series"_s, u"Changed by another"_s);
  EXPECT_NE(store->othersTag(folder, Look::Thorough), std::exchange(tag, QString()));
  tag = store->othersTag(folder, Look::Thorough);
  expectSame();
  maker->removeByAnother(0, u"series"_s);
  EXPECT_NE(store->othersTag(folder, Look::Thorough), tag);
  EXPECT_EQ(failureOf([&] { store->othersTag(u"no such folder"_s, Look::Glance); }), errNotFound);
}

TEST_P(CalendarStoreContract, WhatAnotherProgramDidIsSeenByTheNextLook) {
  open({timed(u"a"_s, u"A"_s, u"2024-03-04 09:00"_s), timed(u"b"_s, u"B"_s, u"2024-03-05 09:00"_s)});
  EXPECT_EQ(plain().size(), 2);
  maker->changeSubjectByAnother(0, u"a"_s, u"Changed by another"_s);
  EXPECT_EQ(subjectsOf(plain()), (QStringList{u"Changed by another"_s, u"B"_s}));
  maker->removeByAnother(0, u"b"_s);
  EXPECT_EQ(subjectsOf(plain()), QStringList{u"Changed by another"_s});
}

}  // namespace contract

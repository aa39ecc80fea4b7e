#include "tests/contract/calendarstore/calendarstore.h"

using namespace Qt::StringLiterals;
using namespace platform::calendar;

// Changes that are held look stored to whoever reads through the store, and are there after the flush.
namespace contract {

namespace {

Change paid(const QString& text) {
  Change change;
  change.billingInformation = text;
  return change;
}

}  // namespace

TEST_P(CalendarStoreContract, AHeldChangeIsReadAsStoredAndIsThereAfterTheFlush) {
  open({timed(u"a"_s, u"A"_s, u"2024-03-04 09:00"_s), timed(u"b"_s, u"B"_s, u"2024-03-04 11:00"_s)});
  const QString tag = store->changeTag(folder);
  store->hold();
  const Item saved = save(single(u"A"_s), paid(u"yes"_s));
  EXPECT_EQ(saved.billingInformation, u"yes"_s);
  EXPECT_EQ(single(u"A"_s).billingInformation, u"yes"_s);
  EXPECT_EQ(single(u"A"_s).tag, saved.tag);
  EXPECT_NE(store->changeTag(folder), tag);
  Query query;
  query.uid = u"a"_s;
  EXPECT_EQ(store->items(folder, query).value(0).billingInformation, u"yes"_s);
  EXPECT_TRUE(store->flush().isEmpty());
  EXPECT_EQ(single(u"A"_s).tag, saved.tag) << "what was read while it was held stays good";
  reopen();
  EXPECT_EQ(single(u"A"_s).billingInformation, u"yes"_s);
  EXPECT_EQ(single(u"B"_s).billingInformation, QString());
}

TEST_P(CalendarStoreContract, AHeldItemCanBeChangedAgain) {
  open({timed(u"a"_s, u"A"_s, u"2024-03-04 09:00"_s)});
  store->hold();
  const Item first = save(single(u"A"_s), paid(u"once"_s));
  Change change = paid(u"twice"_s);
  change.subject = u"Changed"_s;
  change.start = moment(u"2024-03-05 10:00"_s);
  save(first, change);
  EXPECT_EQ(failureOf([&] { save(first, paid(u"late"_s)); }), errChangedMeanwhile);
  EXPECT_TRUE(store->flush().isEmpty());
  reopen();
  EXPECT_EQ(subjectsOf(plain()), QStringList{u"Changed"_s});
  EXPECT_EQ(single(u"Changed"_s).billingInformation, u"twice"_s);
  EXPECT_EQ(single(u"Changed"_s).start, *change.start);
}

TEST_P(CalendarStoreContract, AnOccurrenceBecomesAnExceptionWhileItIsHeld) {
  open({standUp()});
  store->hold();
  const QList<Item> items = expanded();
  const Item second = save(items.value(1), paid(u"second"_s));
  EXPECT_EQ(second.kind, Kind::Exception);
  save(items.value(2), paid(u"third"_s));
  save(second, paid(u"second again"_s));
  ASSERT_EQ(expanded().size(), 4);
  EXPECT_EQ(expanded().value(1).kind, Kind::Exception);
  EXPECT_EQ(expanded().value(1).billingInformation, u"second again"_s);
  EXPECT_EQ(expanded().value(3).kind, Kind::Occurrence);
  EXPECT_TRUE(store->flush().isEmpty());
  reopen();
  ASSERT_EQ(expanded().size(), 4);
  EXPECT_EQ(expanded().value(1).billingInformation, u"second again"_s);
  EXPECT_EQ(expanded().value(2).billingInformation, u"third"_s);
  EXPECT_EQ(single(u"Stand-up"_s).kind, Kind::Master);
}

TEST_P(CalendarStoreContract, ItemsAreMadeAndRemovedWhileOthersAreHeld) {
  open({timed(u"a"_s, u"A"_s, u"2024-03-04 09:00"_s), timed(u"b"_s, u"B"_s, u"2024-03-04 11:00"_s),
        timed(u"c"_s, u"C"_s, u"2024-03-04 13:00"_s)});
  store->hold();
  save(single(u"A"_s), paid(u"yes"_s));
  const Item b = single(u"B"_s), changedC = save(single(u"C"_s), paid(u"no"_s));
  store->remove(folder, b.key, b.tag);
  store->remove(folder, changedC.key, changedC.tag);
  Change change;
  change.subject = u"New"_s;
  change.start = moment(u"2024-03-04 15:00"_s);
  const Item made = store->save(folder, {}, {}, change);
  save(made, paid(u"new"_s));
  EXPECT_EQ(subjectsOf(plain()), (QStringList{u"A"_s, u"New"_s}));
  EXPECT_TRUE(store->flush().isEmpty());
  reopen();
  EXPECT_EQ(subjectsOf(plain()), (QStringList{u"A"_s, u"New"_s}));
  EXPECT_EQ(single(u"A"_s).billingInformation, u"yes"_s);
  EXPECT_EQ(single(u"New"_s).billingInformation, u"new"_s);
}

TEST_P(CalendarStoreContract, AnOccurrenceIsRemovedWhileItIsHeld) {
  open({standUp()});
  store->hold();
  const QList<Item> items = expanded();
  const Item exception = save(items.value(1), paid(u"yes"_s));
  store->remove(folder, exception.key, exception.tag);
  EXPECT_EQ(startsOf(expanded()),
            (QStringList{u"2024-02-05 09:00"_s, u"2024-02-19 09:00"_s, u"2024-02-26 09:00"_s}));
  EXPECT_TRUE(store->flush().isEmpty());
  reopen();
  EXPECT_EQ(expanded().size(), 3);
}

TEST_P(CalendarStoreContract, WhatCannotBeSavedIsRefusedAtOnceWhileHolding) {
  open({timed(u"a"_s, u"A"_s, u"2024-03-04 09:00"_s), timed(u"b"_s, u"B"_s, u"2024-03-04 11:00"_s)});
  store->hold();
  const Item a = single(u"A"_s), b = single(u"B"_s);
  maker->changeSubjectByAnother(0, u"a"_s, u"Theirs"_s);
  EXPECT_EQ(failureOf([&] { save(a, paid(u"yes"_s)); }), errChangedMeanwhile);
  maker->removeByAnother(0, u"b"_s);
  EXPECT_EQ(failureOf([&] { save(b, paid(u"yes"_s)); }), errNotFound);
  EXPECT_EQ(subjectsOf(plain()), QStringList{u"Theirs"_s});
  EXPECT_TRUE(store->flush().isEmpty());
  reopen();
  EXPECT_EQ(subjectsOf(plain()), QStringList{u"Theirs"_s});
}

TEST_P(CalendarStoreContract, AReadOnlyFolderRefusesWhileHolding) {
  if (!maker->hasReadOnlyFolders()) return;
  open({timed(u"a"_s, u"A"_s, u"2024-03-04 09:00"_s)}, true);
  store->hold();
  EXPECT_EQ(failureOf([&] { save(single(u"A"_s), paid(u"yes"_s)); }), errAccessDenied);
  EXPECT_TRUE(store->flush().isEmpty());
}

TEST_P(CalendarStoreContract, AFlushKeepsWhatAnotherProgramDidAndNamesWhatNoLongerFits) {
  open({timed(u"a"_s, u"A"_s, u"2024-03-04 09:00"_s), timed(u"b"_s, u"B"_s, u"2024-03-04 11:00"_s),
        timed(u"c"_s, u"C"_s, u"2024-03-04 13:00"_s), timed(u"d"_s, u"D"_s, u"2024-03-04 15:00"_s)});
  store->hold();
  for (const QString& subject : {u"A"_s, u"B"_s, u"C"_s}) save(single(subject), paid(u"yes"_s));
  const ItemKey a = single(u"A"_s).key, b = single(u"B"_s).key;
  maker->changeSubjectByAnother(0, u"a"_s, u"Theirs"_s);
  maker->removeByAnother(0, u"b"_s);
  maker->changeSubjectByAnother(0, u"d"_s, u"Theirs too"_s);
  const QList<Unwritten> unwritten = store->flush();
  EXPECT_EQ(subjectsOf(plain()), (QStringList{u"Theirs"_s, u"C"_s, u"Theirs too"_s}));
  EXPECT_EQ(single(u"C"_s).billingInformation, u"yes"_s);
  reopen();
  EXPECT_EQ(subjectsOf(plain()), (QStringList{u"Theirs"_s, u"C"_s, u"Theirs too"_s}));
  EXPECT_EQ(single(u"C"_s).billingInformation, u"yes"_s);
  if (!maker->keepsChangesBack()) {
    EXPECT_TRUE(unwritten.isEmpty());
    return;
  }
  ASSERT_EQ(unwritten.size(), 2);
  EXPECT_EQ(unwritten[0].folder, folder);
  EXPECT_EQ(unwritten[0].key, a);
  EXPECT_EQ(unwritten[0].failure.number(), errChangedMeanwhile);
  EXPECT_EQ(unwritten[1].key, b);
  EXPECT_EQ(unwritten[1].failure.number(), errNotFound);
  EXPECT_TRUE(single(u"Theirs"_s).billingInformation.isEmpty());
}

TEST_P(CalendarStoreContract, AnItemWhoseSeriesAnotherProgramChangedIsStillWritten) {
  // an exception that was there before: its own lines are what counts
  Described exception =
      changedOccurrence(timed(u"series"_s, u"Guests"_s, u"2024-02-12 10:00"_s), u"20240212T090000"_s);
  open({standUp(), exception});
  store->hold();
  save(named(expanded(), u"Guests"_s), paid(u"yes"_s));
  save(named(expanded(), u"Guests"_s), paid(u"very much"_s));
  maker->changeSubjectByAnother(0, u"series"_s, u"Theirs"_s);
  EXPECT_TRUE(store->flush().isEmpty());
  reopen();
  EXPECT_EQ(named(expanded(), u"Guests"_s).billingInformation, u"very much"_s);
  EXPECT_EQ(single(u"Theirs"_s).kind, Kind::Master);
}

TEST_P(CalendarStoreContract, AFlushWithoutHoldingDoesNothingAndHoldingCanBeginAgain) {
  open({timed(u"a"_s, u"A"_s, u"2024-03-04 09:00"_s)});
  EXPECT_TRUE(store->flush().isEmpty());
  save(single(u"A"_s), paid(u"1"_s));
  for (const QString& text : {u"2"_s, u"3"_s}) {
    store->hold();
    save(single(u"A"_s), paid(text));
    EXPECT_TRUE(store->flush().isEmpty());
    EXPECT_TRUE(store->flush().isEmpty());
  }
  save(single(u"A"_s), paid(single(u"A"_s).billingInformation + u"4"_s));
  reopen();
  EXPECT_EQ(single(u"A"_s).billingInformation, u"34"_s);
}

}  // namespace contract

#include "platform/basic/failure.h"
#include "platform/files/posix/systemcalls.h"
#include "tests/unit/platform/calendar/icalendar/fixture.h"

using namespace icalendar_tests;

namespace {

const QByteArray master = event({"UID:s", "SUMMARY:S", "DTSTART;TZID=Europe/Stockholm:20240205T090000",
                                 "DTEND;TZID=Europe/Stockholm:20240205T100000", "RRULE:FREQ=DAILY;COUNT=4"});

QByteArray override(const QByteArray& id, const QByteArray& start, const QByteArray& end,
                    const QByteArrayList& more = {"SUMMARY:Moved"}) {
  return event(QByteArrayList{"UID:s", id, start, end} + more);
}

const QByteArray secondId = "RECURRENCE-ID;TZID=Europe/Stockholm:20240206T090000";
const QByteArray movedStart = "DTSTART;TZID=Europe/Stockholm:20240206T150000";
const QByteArray movedEnd = "DTEND;TZID=Europe/Stockholm:20240206T170000";

const QStringList expectedWhenMoved{u"2024-02-05 09:00 - 10:00 S"_qs, u"2024-02-06 15:00 - 17:00 Moved"_qs,
                                    u"2024-02-07 09:00 - 10:00 S"_qs, u"2024-02-08 09:00 - 10:00 S"_qs};

}  // namespace

TEST_F(IcalendarTest, AnExceptionReplacesItsOccurrenceWhereverItStandsInTheFile) {
  const QByteArray moved = override(secondId, movedStart, movedEnd);
  for (const QByteArray& content : {master + moved, moved + master}) {
    write(u"s.ics"_qs, calendar(content));
    EXPECT_EQ(shown(u"2024-02-01"_qs, u"2024-02-28"_qs), expectedWhenMoved);
  }
  write(u"s.ics"_qs, calendar(moved) + calendar(master));  // in another calendar of the file
  EXPECT_EQ(shown(u"2024-02-01"_qs, u"2024-02-28"_qs), expectedWhenMoved);
  write(u"s.ics"_qs, calendar(master));  // in a file of its own
  write(u"t.ics"_qs, calendar(moved));
  EXPECT_EQ(shown(u"2024-02-01"_qs, u"2024-02-28"_qs), expectedWhenMoved);
}

TEST_F(IcalendarTest, TheNameOfAnOccurrenceMayBeWrittenInAnyForm) {
  for (const char* id :
       {"RECURRENCE-ID:20240206T080000Z", "RECURRENCE-ID:20240206T090000",
        "RECURRENCE-ID;VALUE=DATE:20240206", "RECURRENCE-ID;TZID=America/New_York:20240206T030000",
        "RECURRENCE-ID;TZID=W. Europe Standard Time:20240206T090000",
        "RECURRENCE-ID;TZID=Asia/Tokyo:20240206T090000"}) {
    write(u"s.ics"_qs, calendar(master + override(id, movedStart, movedEnd)));
    EXPECT_EQ(shown(u"2024-02-01"_qs, u"2024-02-28"_qs), expectedWhenMoved) << id;
    EXPECT_EQ(expanded(u"2024-02-06"_qs, u"2024-02-06"_qs).value(0).key.recurrenceId, u"20240206T090000"_qs)
        << id;
  }
}

TEST_F(IcalendarTest, AnExceptionMovedOutOfThePeriodIsNotShownAndOneMovedInIs) {
  write(u"s.ics"_qs,
        calendar(master + override(secondId, "DTSTART:20240601T080000Z", "DTEND:20240601T090000Z")));
  EXPECT_TRUE(shown(u"2024-02-06"_qs, u"2024-02-06"_qs).isEmpty());
  EXPECT_EQ(shown(u"2024-06-01"_qs, u"2024-06-01"_qs), QStringList{u"2024-06-01 10:00 - 11:00 Moved"_qs});
}

TEST_F(IcalendarTest, ACancelledOccurrenceIsNotShown) {
  write(u"s.ics"_qs, calendar(master + override(secondId, movedStart, movedEnd, {"STATUS:CANCELLED"})));
  EXPECT_EQ(shown(u"2024-02-06"_qs, u"2024-02-07"_qs), QStringList{u"2024-02-07 09:00 - 10:00 S"_qs});
}

TEST_F(IcalendarTest, AnExceptionWithoutItsSeriesIsShownByItself) {
  write(u"s.ics"_qs, calendar(override(secondId, movedStart, movedEnd)));
  const QList<Item> items = expanded(u"2024-02-01"_qs, u"2024-02-28"_qs);
  ASSERT_EQ(items.size(), 1);
  EXPECT_EQ(items[0].kind, Kind::Exception);
  EXPECT_EQ(items[0].key.recurrenceId, u"20240206T090000"_qs);
  EXPECT_EQ(plain().size(), 1);
}

TEST_F(IcalendarTest, AnAllDayExceptionIsNamedByAMidnightOfAnyZone) {
  const QByteArray days =
      event({"UID:s", "SUMMARY:S", "DTSTART;VALUE=DATE:20260219", "DTEND;VALUE=DATE:20260220",
             "RRULE:FREQ=WEEKLY;COUNT=4;BYDAY=TU,TH;WKST=MO"});
  for (const char* id : {"RECURRENCE-ID;TZID=W. Europe Standard Time:20260226T000000",
                         "RECURRENCE-ID;TZID=UTC+01:20260226T000000", "RECURRENCE-ID;VALUE=DATE:20260226",
                         "RECURRENCE-ID:20260226T000000Z"}) {
    write(u"s.ics"_qs,
          calendar(days + override(id, "DTSTART;VALUE=DATE:20260227", "DTEND;VALUE=DATE:20260228")));
    for (const char* viewer : {"Europe/Stockholm", "America/New_York", "Asia/Tokyo"})
      EXPECT_EQ(
          shown(u"2026-02-01"_qs, u"2026-03-31"_qs, viewer),
          (QStringList{u"2026-02-19 - 2026-02-20 all day S"_qs, u"2026-02-24 - 2026-02-25 all day S"_qs,
                       u"2026-02-27 - 2026-02-28 all day Moved"_qs, u"2026-03-03 - 2026-03-04 all day S"_qs}))
          << id << ' ' << viewer;
  }
}

TEST_F(IcalendarTest, AnExceptionMayHoldForAllThatFollow) {
  write(u"s.ics"_qs,
        calendar(master + override("RECURRENCE-ID;RANGE=THISANDFUTURE;TZID=Europe/Stockholm:20240206T090000",
                                   movedStart, movedEnd)));
  EXPECT_EQ(shown(u"2024-02-01"_qs, u"2024-02-28"_qs),
            (QStringList{u"2024-02-05 09:00 - 10:00 S"_qs, u"2024-02-06 15:00 - 17:00 Moved"_qs,
                         u"2024-02-07 15:00 - 17:00 Moved"_qs, u"2024-02-08 15:00 - 17:00 Moved"_qs}));
  const QList<Item> items = expanded(u"2024-02-07"_qs, u"2024-02-07"_qs);
  ASSERT_EQ(items.size(), 1);
  EXPECT_EQ(items[0].kind, Kind::Occurrence);
  EXPECT_EQ(items[0].key.recurrenceId, u"20240207T090000"_qs);
}

TEST_F(IcalendarTest, TwoItemsOfOneUidAreToldApartByTheirPlace) {
  write(u"a.ics"_qs, calendar(event({"UID:x", "SUMMARY:First", "DTSTART:20240205T080000Z"}) +
                              event({"UID:x", "SUMMARY:Second", "DTSTART:20240205T090000Z"})));
  write(u"b.ics"_qs, calendar(event({"UID:x", "SUMMARY:Third", "DTSTART:20240205T100000Z"})));
  const QList<Item> items = plain();
  ASSERT_EQ(items.size(), 3);
  EXPECT_EQ(items[0].key.place, u"a.ics"_qs);
  EXPECT_EQ(items[1].key.place, u"a.ics#2"_qs);
  EXPECT_EQ(items[2].key.place, u"b.ics"_qs);
  Change change;
  change.subject = u"Changed"_qs;
  save(items[1], change);
  EXPECT_EQ(described(plain()),
            (QStringList{u"2024-02-05 09:00 - 09:00 First"_qs, u"2024-02-05 10:00 - 10:00 Changed"_qs,
                         u"2024-02-05 11:00 - 11:00 Third"_qs}));
}

TEST_F(IcalendarTest, AnExceptionBelongsToTheSeriesAndNotToASingleItemOfTheSameUid) {
  const QByteArray other = event({"UID:s", "SUMMARY:Day", "DTSTART;VALUE=DATE:20240101"});
  for (const QByteArray& content : {other + master, master + other}) {
    write(u"s.ics"_qs, calendar(content));
    Change change;
    change.subject = u"Once"_qs;
    const Item saved = save(expanded(u"2024-02-06"_qs, u"2024-02-06"_qs).at(0), change);
    EXPECT_EQ(saved.kind, Kind::Exception);
    EXPECT_EQ(saved.key.recurrenceId, u"20240206T090000"_qs);
    EXPECT_EQ(shown(u"2024-02-06"_qs, u"2024-02-06"_qs), QStringList{u"2024-02-06 09:00 - 10:00 Once"_qs});
  }
}

namespace {

/// The first removal of "t.ics" is met by this.
platform::files::SystemCalls meeting(const std::function<int()>& what) {
  using platform::files::SystemCalls;
  SystemCalls calls = SystemCalls::ofTheSystem();
  const auto met = std::make_shared<bool>(false);
  calls.renameatNoReplace = [=](int at, const char* from, const char* to) {
    if (QByteArray(from) == "t.ics" && !std::exchange(*met, true) && what() < 0) return -1;
    return SystemCalls::ofTheSystem().renameatNoReplace(at, from, to);
  };
  return calls;
}

const QByteArray exdate = "EXDATE;TZID=Europe/Stockholm:20240206T090000\r\n";

}  // namespace

TEST_F(IcalendarTest, AnExceptionThatWasNotRemovedAtOnceIsExcludedFromItsSeriesOnlyOnce) {
  const platform::files::SystemCalls calls = meeting([] {
    errno = EIO;
    return -1;
  });
  const platform::files::ScopedSystemCalls scope(calls);
  write(u"s.ics"_qs, calendar(master));
  write(u"t.ics"_qs, calendar(override(secondId, movedStart, movedEnd)));
  const Item moved = expanded(u"2024-02-06"_qs, u"2024-02-06"_qs).value(0);
  EXPECT_THROW(store->remove(folder, moved.key, moved.tag), platform::Failure);
  EXPECT_EQ(read(u"s.ics"_qs).count(exdate), 1);
  EXPECT_EQ(shown(u"2024-02-06"_qs, u"2024-02-06"_qs).size(), 1);
  store->remove(folder, moved.key, moved.tag);
  EXPECT_EQ(read(u"s.ics"_qs).count(exdate), 1);
  EXPECT_TRUE(shown(u"2024-02-06"_qs, u"2024-02-06"_qs).isEmpty());
}

TEST_F(IcalendarTest, AnExceptionRemovedWhileItsFileIsChangedIsExcludedFromItsSeriesOnlyOnce) {
  const QByteArray moved = override(secondId, movedStart, movedEnd);
  const QByteArray other = event({"UID:other", "SUMMARY:Other", "DTSTART:20240301T080000Z"});
  const platform::files::SystemCalls calls = meeting([&] {
    write(u"t.ics"_qs, calendar(moved + other));
    return 0;
  });
  const platform::files::ScopedSystemCalls scope(calls);
  write(u"s.ics"_qs, calendar(master));
  write(u"t.ics"_qs, calendar(moved));
  const Item item = expanded(u"2024-02-06"_qs, u"2024-02-06"_qs).value(0);
  store->remove(folder, item.key, item.tag);
  EXPECT_EQ(read(u"s.ics"_qs).count(exdate), 1);
  EXPECT_EQ(read(u"t.ics"_qs), calendar(other));
}

TEST_F(IcalendarTest, ASeriesIsRemovedWithItsExceptionsInOtherFiles) {
  const QByteArray other = event({"UID:other", "SUMMARY:Other", "DTSTART:20240301T080000Z"});
  const QByteArray foreign =
      event({"UID:z", "RECURRENCE-ID:20240206T080000Z", "DTSTART:20240306T080000Z", "SUMMARY:Of another"});
  write(u"s.ics"_qs, calendar(master));
  write(u"t.ics"_qs, calendar(override(secondId, movedStart, movedEnd)));
  write(u"u.ics"_qs, calendar(other + override("RECURRENCE-ID;TZID=Europe/Stockholm:20240207T090000",
                                               "DTSTART;TZID=Europe/Stockholm:20240207T150000",
                                               "DTEND;TZID=Europe/Stockholm:20240207T160000")));
  write(u"z.ics"_qs, calendar(foreign));
  for (const Item& item : plain())
    if (item.kind == Kind::Master) store->remove(folder, item.key, item.tag);
  EXPECT_TRUE(shown(u"2024-02-01"_qs, u"2024-02-28"_qs).isEmpty());
  EXPECT_EQ(fileNames(), (QStringList{u"u.ics"_qs, u"z.ics"_qs}));
  EXPECT_EQ(read(u"u.ics"_qs), calendar(other));
  EXPECT_EQ(read(u"z.ics"_qs), calendar(foreign));
}

TEST_F(IcalendarTest, OneOfTwoSeriesWithOneUidGoesWithItsOwnExceptionsOnly) {
  const QByteArray second =
      event({"UID:s", "SUMMARY:T", "DTSTART;VALUE=DATE:20240301", "RRULE:FREQ=DAILY;COUNT=4"});
  const QByteArray ofSecond =
      event({"UID:s", "SUMMARY:Day", "RECURRENCE-ID;VALUE=DATE:20240302", "DTSTART;VALUE=DATE:20240310"});
  write(u"a.ics"_qs, calendar(master));
  write(u"b.ics"_qs, calendar(second));
  write(u"t.ics"_qs, calendar(override(secondId, movedStart, movedEnd)));
  write(u"u.ics"_qs, calendar(ofSecond));
  for (const Item& item : plain())
    if (item.kind == Kind::Master && item.subject == u"S"_qs) store->remove(folder, item.key, item.tag);
  EXPECT_EQ(fileNames(), (QStringList{u"b.ics"_qs, u"u.ics"_qs}));
}

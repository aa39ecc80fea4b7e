#include "platform/basic/failure.h"
#include "tests/unit/platform/calendar/icalendar/fixture.h"

#include <gmock/gmock.h>

// Edges of series and of clocks: what is shown once, what is refused, and what is written there.
using namespace icalendar_tests;

class Edges : public IcalendarTest {
 protected:
  void open(const QByteArrayList& lines) {
    write(u"a.ics"_qs, calendar(event(QByteArrayList{"UID:1", "SUMMARY:x"} + lines)));
  }
  QString refusal(const Item& item, const Change& change) {
    const QByteArray before = read(u"a.ics"_qs);
    try {
      save(item, change);
    } catch (const platform::Failure& failure) {
      EXPECT_EQ(read(u"a.ics"_qs), before);
      return failure.description();
    }
    return {};
  }
  /// Whether the start of a series with that rule can be moved there.
  bool moves(const QByteArray& rule, const QString& start) {
    open({"DTSTART;TZID=Europe/Stockholm:20240219T090000", "DTEND;TZID=Europe/Stockholm:20240219T100000",
          "RRULE:" + rule});
    Change change;
    change.start = moment(start);
    const QString text = refusal(single(), change);
    if (!text.isEmpty()) {
      EXPECT_THAT(text.toStdString(), testing::HasSubstr("whose rule names"));
    }
    return text.isEmpty();
  }
};

TEST_F(Edges, AMomentThatASeriesNamesTwiceIsShownOnce) {
  // 02:00 is skipped and stands for 03:00, which the series has, too
  open({"DTSTART;TZID=Europe/Stockholm:20240331T000000", "RRULE:FREQ=HOURLY;COUNT=5"});
  EXPECT_EQ(shown(u"2024-03-31"_qs, u"2024-03-31"_qs),
            (QStringList{u"2024-03-31 00:00 - 00:00 x"_qs, u"2024-03-31 01:00 - 01:00 x"_qs,
                         u"2024-03-31 03:00 - 03:00 x"_qs, u"2024-03-31 04:00 - 04:00 x"_qs}));
  // Samoa had no 30 December 2011
  open({"DTSTART;TZID=Pacific/Apia:20111229T090000", "RRULE:FREQ=DAILY;COUNT=3"});
  EXPECT_EQ(shown(u"2011-12-28"_qs, u"2012-01-02"_qs, "Pacific/Apia"),
            (QStringList{u"2011-12-29 09:00 - 09:00 x"_qs, u"2011-12-31 09:00 - 09:00 x"_qs}));
}

TEST_F(Edges, ASkippedStartStandsForTheLaterOneWhereNothingElseIsThere) {
  open({"DTSTART;TZID=Europe/Stockholm:20240330T023000", "DURATION:PT1H", "RRULE:FREQ=DAILY;COUNT=3"});
  EXPECT_EQ(shown(u"2024-03-30"_qs, u"2024-04-02"_qs),
            (QStringList{u"2024-03-30 02:30 - 03:30 x"_qs, u"2024-03-31 03:30 - 04:30 x"_qs,
                         u"2024-04-01 02:30 - 03:30 x"_qs}));
}

TEST_F(Edges, AMomentInUtcExcludesWhateverNameTheSeriesHasForIt) {
  open({"DTSTART;TZID=Europe/Stockholm:20240331T000000", "RRULE:FREQ=HOURLY;COUNT=5",
        "EXDATE:20240331T010000Z"});
  EXPECT_EQ(shown(u"2024-03-31"_qs, u"2024-03-31"_qs).size(), 3);
}

TEST_F(Edges, ALengthOfHoursIsExactInTheNightOfTheClocks) {
  open({"DTSTART;TZID=Europe/Stockholm:20240330T220000", "DTEND;TZID=Europe/Stockholm:20240331T060000",
        "RRULE:FREQ=DAILY;COUNT=2"});
  EXPECT_EQ(shown(u"2024-03-30"_qs, u"2024-04-02"_qs),
            (QStringList{u"2024-03-30 22:00 - 06:00 x"_qs, u"2024-03-31 22:00 - 05:00 x"_qs}));
}

TEST_F(Edges, APeriodOfAnAllDaySeriesHasWholeDays) {
  open({"DTSTART;VALUE=DATE:20240219", "RDATE;VALUE=PERIOD:20240226T000000/PT36H"});
  EXPECT_EQ(shown(u"2024-02-01"_qs, u"2024-03-31"_qs),
            (QStringList{u"2024-02-19 - 2024-02-20 all day x"_qs, u"2024-02-26 - 2024-02-28 all day x"_qs}));
}

TEST_F(Edges, AnOccurrenceMovedIntoAPeriodIsShownAndOneMovedOutIsNot) {
  write(u"a.ics"_qs,
        calendar(
            event({"UID:1", "SUMMARY:x", "DTSTART:20240219T080000Z", "RRULE:FREQ=DAILY;COUNT=5"}) +
            event({"UID:1", "SUMMARY:in", "RECURRENCE-ID:20240223T080000Z", "DTSTART:20240220T100000Z"}) +
            event({"UID:1", "SUMMARY:out", "RECURRENCE-ID:20240220T080000Z", "DTSTART:20240301T080000Z"}) +
            event({"UID:2", "SUMMARY:alone", "RECURRENCE-ID:20240301T080000Z", "DTSTART:20240220T120000Z"})));
  EXPECT_EQ(shown(u"2024-02-20"_qs, u"2024-02-20"_qs),
            (QStringList{u"2024-02-20 11:00 - 11:00 in"_qs, u"2024-02-20 13:00 - 13:00 alone"_qs}));
  EXPECT_EQ(shown(u"2024-02-23"_qs, u"2024-02-29"_qs), QStringList());
  EXPECT_EQ(shown(u"2024-03-01"_qs, u"2024-03-01"_qs), QStringList{u"2024-03-01 09:00 - 09:00 out"_qs});
}

TEST_F(Edges, TheLinesOfACalendarAreSearchedOnceAndNotForEachOfItsEvents) {
  // events times lines would be thousands of millions
  QByteArray events;
  for (int i = 0; i < 8'000; ++i)
    events += event({"UID:" + QByteArray::number(i), i % 3 == 0   ? "DTSTART;VALUE=DATE:20240219"
                                                     : i % 3 == 1 ? "DTSTART:20240219T090000"
                                                                  : "DTSTART:20240219T090000Z"});
  const QByteArray lines = QByteArray("X:1\r\n").repeated(300'000);
  write(u"a.ics"_qs, "BEGIN:VCALENDAR\r\n" + lines + events + "END:VCALENDAR\r\n");
  EXPECT_EQ(shown(u"2024-02-19"_qs, u"2024-02-19"_qs).size(), 8'000);
  write(u"a.ics"_qs, "BEGIN:VCALENDAR\r\n" + lines + "METHOD:CANCEL\r\n" + events + "END:VCALENDAR\r\n");
  EXPECT_TRUE(shown(u"2024-02-19"_qs, u"2024-02-19"_qs).isEmpty());
}

TEST_F(Edges, ManySeriesAndExceptionsUnderOneUidAreBroughtTogetherOnce) {
  constexpr int count = 1000;  // its cube would take minutes
  QByteArray events;
  for (int i = 0; i < count; ++i) {
    const QByteArray date = QDate(2020, 1, 1).addDays(i).toString(u"yyyyMMdd"_qs).toLatin1();
    events += event({"UID:1", "SUMMARY:Series", "DTSTART:" + date + "T080000Z", "RRULE:FREQ=DAILY;COUNT=1"});
    events += event(
        {"UID:1", "SUMMARY:Changed", "RECURRENCE-ID:" + date + "T080000Z", "DTSTART:" + date + "T090000Z"});
  }
  write(u"a.ics"_qs, calendar(events));
  QStringList subjects;
  for (const Item& item : expanded(u"2020-01-01"_qs, u"2024-01-01"_qs)) subjects.append(item.subject);
  EXPECT_EQ(subjects, QStringList(count, u"Changed"_qs));
}

TEST_F(Edges, ASeriesMovesWhereItsRuleLeavesEverythingToItsStart) {
  EXPECT_TRUE(moves("FREQ=WEEKLY", u"2024-02-20 10:00"_qs));
  EXPECT_TRUE(moves("FREQ=WEEKLY;BYDAY=MO;COUNT=4", u"2024-02-19 10:00"_qs));
  EXPECT_TRUE(moves("FREQ=DAILY;UNTIL=20240301", u"2024-02-19 10:00"_qs));
}

TEST_F(Edges, ASeriesDoesNotMoveWhereItsRuleNamesDaysHoursOrItsEnd) {
  EXPECT_FALSE(moves("FREQ=WEEKLY;BYDAY=MO", u"2024-02-20 09:00"_qs));
  EXPECT_FALSE(moves("FREQ=DAILY;UNTIL=20240301T080000Z", u"2024-02-19 10:00"_qs));
  EXPECT_FALSE(moves("FREQ=DAILY;UNTIL=20240301", u"2024-02-20 09:00"_qs));
  EXPECT_FALSE(moves("FREQ=DAILY;BYHOUR=9", u"2024-02-19 10:00"_qs));
  EXPECT_FALSE(moves("FREQ=MONTHLY;BYMONTHDAY=19", u"2024-02-20 09:00"_qs));
  EXPECT_TRUE(moves("FREQ=WEEKLY;BYDAY=MO;UNTIL=20240301T080000Z", u"2024-02-19 09:00"_qs));  // stays there
}

TEST_F(Edges, AStartInTheSecondOfTwoEqualHoursIsWrittenInUtc) {
  open({"DTSTART;TZID=Europe/Stockholm:20241026T020000", "DTEND;TZID=Europe/Stockholm:20241026T040000"});
  const QByteArray before = read(u"a.ics"_qs);
  Change change;
  change.start = moment(u"2024-10-27 01:30"_qs, "UTC").toTimeZone(QTimeZone("Europe/Stockholm"));
  const Item saved = save(single(), change);
  EXPECT_EQ(saved.start.toUTC(), change.start->toUTC());
  EXPECT_EQ(saved.durationMinutes(), 120);
  EXPECT_EQ(differences(before, read(u"a.ics"_qs)),
            (QByteArrayList{"-DTSTART;TZID=Europe/Stockholm:20241026T020000",
                            "-DTEND;TZID=Europe/Stockholm:20241026T040000", "+DTSTART:20241027T013000Z",
                            "+DTEND;TZID=Europe/Stockholm:20241027T043000"}));
}

TEST_F(Edges, AStartInTheFirstOfTwoEqualHoursKeepsItsZone) {
  open({"DTSTART;TZID=Europe/Stockholm:20241026T020000"});
  Change change;
  change.start = moment(u"2024-10-27 00:30"_qs, "UTC");
  EXPECT_EQ(save(single(), change).start.toUTC(), *change.start);
  EXPECT_TRUE(read(u"a.ics"_qs).contains("DTSTART;TZID=Europe/Stockholm:20241027T023000"));
}

TEST_F(Edges, ASeriesDoesNotBeginInTheSecondOfTwoEqualHours) {
  open({"DTSTART;TZID=Europe/Stockholm:20241026T020000", "RRULE:FREQ=DAILY"});
  Change change;
  change.start = moment(u"2024-10-27 01:30"_qs, "UTC");
  EXPECT_THAT(refusal(single(), change).toStdString(), testing::HasSubstr("the second of two equal hours"));
}

TEST_F(Edges, WhatHoldsForLaterOccurrencesIsNotRemovedByItself) {
  write(u"a.ics"_qs,
        calendar(event({"UID:1", "SUMMARY:x", "DTSTART:20240219T080000Z", "RRULE:FREQ=DAILY;COUNT=5"}) +
                 event({"UID:1", "SUMMARY:later", "RECURRENCE-ID;RANGE=THISANDFUTURE:20240221T080000Z",
                        "DTSTART:20240221T100000Z"})));
  const QByteArray before = read(u"a.ics"_qs);
  const Item item = expanded(u"2024-02-21"_qs, u"2024-02-21"_qs).at(0);
  EXPECT_EQ(item.subject, u"later"_qs);
  try {
    store->remove(folder, item.key, item.tag);
    ADD_FAILURE() << "it was removed";
  } catch (const platform::Failure& failure) {
    EXPECT_THAT(failure.description().toStdString(),
                testing::HasSubstr("it holds for the later occurrences"));
  }
  EXPECT_EQ(read(u"a.ics"_qs), before);
  const Item after = expanded(u"2024-02-22"_qs, u"2024-02-22"_qs).at(0);  // one of the later ones can go
  store->remove(folder, after.key, after.tag);
  EXPECT_EQ(shown(u"2024-02-20"_qs, u"2024-02-29"_qs),
            (QStringList{u"2024-02-20 09:00 - 09:00 x"_qs, u"2024-02-21 11:00 - 11:00 later"_qs,
                         u"2024-02-23 11:00 - 11:00 later"_qs}));
}

TEST_F(Edges, ACalendarInOneFileMayHaveANumberBehindItsName) {
  QTemporaryDir root;
  const QString path = root.filePath(u"x#2"_qs);
  QFile file(path);
  ASSERT_TRUE(file.open(QIODevice::WriteOnly));
  file.write(calendar(event({"UID:1", "SUMMARY:x", "DTSTART:20240219T080000Z"}) +
                      event({"UID:1", "SUMMARY:y", "DTSTART:20240220T080000Z"})));
  file.close();
  platform::calendar::IcalendarStore odd({{u"odd"_qs, u"Odd"_qs, u"Mailbox"_qs, path, false}});
  Change change;
  change.subject = u"z"_qs;
  for (const Item& item : odd.items(u"odd"_qs, {}))
    EXPECT_EQ(odd.save(u"odd"_qs, item.key, item.tag, change).subject, u"z"_qs);
  change.start = moment(u"2024-02-21 09:00"_qs);
  odd.save(u"odd"_qs, {}, {}, change);
  EXPECT_EQ(odd.items(u"odd"_qs, {}).size(), 3);
}

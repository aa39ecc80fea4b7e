#include "platform/basic/failure.h"
#include "tests/unit/platform/calendar/icalendar/fixture.h"

using namespace icalendar_tests;

class OccurrencesTest : public IcalendarTest {
 protected:
  OccurrencesTest() { world.setTime(moment(u"2024-05-15 10:00"_qs)); }

  /// Changes the subject of one occurrence; gives what the file has gained, at one place.
  QByteArray gained(const QByteArray& bytes, int position, const Change& change) {
    write(u"s.ics"_qs, bytes);
    save(expanded(u"2024-01-01"_qs, u"2024-12-31"_qs).at(position), change);
    const QByteArray now = read(u"s.ics"_qs);
    int common = 0;
    while (common < bytes.size() && now[common] == bytes[common]) ++common;
    const qsizetype rest = bytes.size() - common;
    EXPECT_EQ(now.right(rest), bytes.right(rest)) << "something else than one insertion";
    return now.mid(common, now.size() - bytes.size());
  }
  static Change subject(const QString& text) {
    Change change;
    change.subject = text;
    return change;
  }
};

TEST_F(OccurrencesTest, AChangedOccurrenceIsACopyBehindItsSeries) {
  const QByteArray bytes = calendar(
      event({"UID:s", "DTSTAMP:20200101T000000Z", "DTSTART;TZID=\"W. Europe Standard Time\":20240205T090000",
             "DTEND;TZID=\"W. Europe Standard Time\":20240205T103000", "RRULE:FREQ=WEEKLY;COUNT=4;BYDAY=MO",
             "EXDATE;TZID=\"W. Europe Standard Time\":20240212T090000", "RDATE:20240301T080000Z",
             "SUMMARY:Projekt\\, gr\xC3\xB6\xC3\x9F", " er", "X-MICROSOFT-CDO-INSTTYPE:1",
             "X-ODD;X-P=1:Rate \"A\"; 12", "BEGIN:VALARM", "TRIGGER:-PT15M", "X-IN:1", "END:VALARM"}) +
      event({"UID:other", "DTSTART:20240101T080000Z"}));
  write(u"s.ics"_qs, bytes);
  save(expanded(u"2024-02-19"_qs, u"2024-02-19"_qs).at(0), subject(u"Once"_qs));
  const QByteArray master = bytes.left(bytes.indexOf("END:VEVENT") + 12);
  const QByteArray expected = event(
      {"UID:s", "RECURRENCE-ID;TZID=\"W. Europe Standard Time\":20240219T090000", "DTSTAMP:20240515T080000Z",
       "DTSTART;TZID=\"W. Europe Standard Time\":20240219T090000",
       "DTEND;TZID=\"W. Europe Standard Time\":20240219T103000", "SUMMARY:Once", "X-MICROSOFT-CDO-INSTTYPE:3",
       "X-ODD;X-P=1:Rate \"A\"; 12", "BEGIN:VALARM", "TRIGGER:-PT15M", "X-IN:1", "END:VALARM"});
  EXPECT_EQ(read(u"s.ics"_qs), master + expected + bytes.mid(master.size()));
}

TEST_F(OccurrencesTest, TheOccurrenceIsNamedInTheFormOfTheSeriesStart) {
  EXPECT_TRUE(gained(calendar(event({"UID:s", "DTSTART;VALUE=DATE:20240205", "RRULE:FREQ=DAILY;COUNT=3"})), 1,
                     subject(u"x"_qs))
                  .contains("RECURRENCE-ID;VALUE=DATE:20240206\r\nDTSTART;VALUE=DATE:20240206\r\n"));
  EXPECT_TRUE(gained(calendar(event({"UID:s", "DTSTART:20240205T080000Z", "RRULE:FREQ=DAILY;COUNT=3"})), 1,
                     subject(u"x"_qs))
                  .contains("RECURRENCE-ID:20240206T080000Z\r\n"));
  EXPECT_EQ(expanded(u"2024-02-06"_qs, u"2024-02-06"_qs).at(0).key.recurrenceId, u"20240206T080000Z"_qs);
  EXPECT_TRUE(gained(calendar(event({"UID:s", "DTSTART:20240205T080000", "RRULE:FREQ=DAILY;COUNT=3"})), 1,
                     subject(u"x"_qs))
                  .contains("RECURRENCE-ID:20240206T080000\r\n"));
}

TEST_F(OccurrencesTest, ALengthAsDurationStays) {
  const QByteArray made = gained(
      calendar(event({"UID:s", "DTSTART:20240205T080000Z", "DURATION:PT1H", "RRULE:FREQ=DAILY;COUNT=3"})), 2,
      subject(u"x"_qs));
  EXPECT_TRUE(made.contains("DURATION:PT1H\r\n"));
  EXPECT_FALSE(made.contains("DTEND"));
}

TEST_F(OccurrencesTest, APeriodOfItsOwnLengthKeepsIt) {
  const QByteArray made =
      gained(calendar(event({"UID:s", "DTSTART:20240205T080000Z", "DTEND:20240205T090000Z",
                             "RDATE;VALUE=PERIOD:20240207T080000Z/PT5H"})),
             1, subject(u"x"_qs));
  EXPECT_TRUE(made.contains("DTSTART:20240207T080000Z\r\nDTEND:20240207T130000Z\r\n")) << made.constData();
}

TEST_F(OccurrencesTest, AnOccurrenceIsMovedByItsOwnStart) {
  Change change;
  change.start = moment(u"2024-02-06 15:00"_qs);
  change.durationMinutes = 30;
  const QByteArray made =
      gained(calendar(event({"UID:s", "DTSTART;TZID=Europe/Stockholm:20240205T090000",
                             "DTEND;TZID=Europe/Stockholm:20240205T100000", "RRULE:FREQ=DAILY;COUNT=3"})),
             1, change);
  EXPECT_TRUE(made.contains(
      "RECURRENCE-ID;TZID=Europe/Stockholm:20240206T090000\r\n"
      "DTSTART;TZID=Europe/Stockholm:20240206T150000\r\nDTEND;TZID=Europe/Stockholm:20240206T153000\r\n"))
      << made.constData();
  EXPECT_EQ(shown(u"2024-02-06"_qs, u"2024-02-06"_qs), QStringList{u"2024-02-06 15:00 - 15:30 "_qs});
}

TEST_F(OccurrencesTest, ASecondChangeGoesIntoTheSameException) {
  write(u"s.ics"_qs,
        calendar(event({"UID:s", "DTSTART:20240205T080000Z", "RRULE:FREQ=DAILY;COUNT=3", "SUMMARY:S"})));
  const Item once = save(expanded(u"2024-02-06"_qs, u"2024-02-06"_qs).at(0), subject(u"Once"_qs));
  EXPECT_EQ(once.kind, Kind::Exception);
  const QByteArray before = read(u"s.ics"_qs);
  save(once, subject(u"Twice"_qs));
  EXPECT_EQ(differences(before, read(u"s.ics"_qs)), (QByteArrayList{"-SUMMARY:Once", "+SUMMARY:Twice"}));
}

TEST_F(OccurrencesTest, AChangeThatChangesNothingMakesNoException) {
  const QByteArray bytes =
      calendar(event({"UID:s", "DTSTART:20240205T080000Z", "RRULE:FREQ=DAILY;COUNT=3", "SUMMARY:S"}));
  write(u"s.ics"_qs, bytes);
  EXPECT_EQ(save(expanded(u"2024-02-06"_qs, u"2024-02-06"_qs).at(0), subject(u"S"_qs)).kind,
            Kind::Occurrence);
  EXPECT_EQ(read(u"s.ics"_qs), bytes);
}

TEST_F(OccurrencesTest, AnOccurrenceInTheSkippedHourKeepsItsName) {
  const QByteArray made =
      gained(calendar(event({"UID:s", "DTSTART;TZID=Europe/Stockholm:20240330T023000",
                             "DTEND;TZID=Europe/Stockholm:20240330T033000", "RRULE:FREQ=DAILY;COUNT=3"})),
             1, subject(u"x"_qs));
  EXPECT_TRUE(made.contains("RECURRENCE-ID;TZID=Europe/Stockholm:20240331T023000\r\n")) << made.constData();
  EXPECT_EQ(shown(u"2024-03-31"_qs, u"2024-03-31"_qs), QStringList{u"2024-03-31 03:30 - 04:30 x"_qs});
}

TEST_F(OccurrencesTest, OneThatFollowsAnExceptionForAllIsACopyOfThat) {
  const QByteArray bytes =
      calendar(event({"UID:s", "SUMMARY:S", "DTSTART:20240205T080000Z", "DTEND:20240205T090000Z",
                      "RRULE:FREQ=DAILY;COUNT=4"}) +
               event({"UID:s", "RECURRENCE-ID;RANGE=THISANDFUTURE:20240206T080000Z", "SUMMARY:Later",
                      "DTSTART:20240206T100000Z", "DTEND:20240206T120000Z"}));
  gained(bytes, 2, subject(u"x"_qs));
  EXPECT_TRUE(read(u"s.ics"_qs).contains("RECURRENCE-ID:20240207T080000Z\r\n"));
  EXPECT_EQ(shown(u"2024-02-05"_qs, u"2024-02-08"_qs),
            (QStringList{u"2024-02-05 09:00 - 10:00 S"_qs, u"2024-02-06 11:00 - 13:00 Later"_qs,
                         u"2024-02-07 11:00 - 13:00 x"_qs, u"2024-02-08 11:00 - 13:00 Later"_qs}));
}

TEST_F(OccurrencesTest, ARemovedOccurrenceIsNamedAmongTheExcludedOnes) {
  const QByteArray bytes =
      calendar(event({"UID:s", "DTSTART;TZID=Europe/Stockholm:20240205T090000", "RRULE:FREQ=DAILY;COUNT=3"}));
  write(u"s.ics"_qs, bytes);
  const Item item = expanded(u"2024-02-06"_qs, u"2024-02-06"_qs).at(0);
  store->remove(folder, item.key, item.tag);
  EXPECT_EQ(differences(bytes, read(u"s.ics"_qs)),
            QByteArrayList{"+EXDATE;TZID=Europe/Stockholm:20240206T090000"});
  EXPECT_EQ(expanded(u"2024-01-01"_qs, u"2024-12-31"_qs).size(), 2);
}

TEST_F(OccurrencesTest, ARemovedExceptionDoesNotComeBackAsAnOccurrence) {
  write(u"s.ics"_qs, calendar(event({"UID:s", "DTSTART;VALUE=DATE:20240205", "RRULE:FREQ=DAILY;COUNT=3"})));
  write(u"t.ics"_qs,
        calendar(event({"UID:s", "RECURRENCE-ID;VALUE=DATE:20240206", "DTSTART;VALUE=DATE:20240220"}) +
                 event({"UID:else", "DTSTART;VALUE=DATE:20240301"})));
  const Item item = expanded(u"2024-02-20"_qs, u"2024-02-20"_qs).at(0);
  store->remove(folder, item.key, item.tag);
  EXPECT_EQ(expanded(u"2024-01-01"_qs, u"2024-12-31"_qs).size(), 3);
  EXPECT_TRUE(read(u"s.ics"_qs).contains("EXDATE;VALUE=DATE:20240206\r\n"));
}

TEST_F(OccurrencesTest, OneOccurrenceOfASeriesWithoutUidCannotBeChanged) {
  const QByteArray bytes =
      calendar(event({"SUMMARY:S", "DTSTART:20240205T080000Z", "RRULE:FREQ=DAILY;COUNT=3"}));
  write(u"s.ics"_qs, bytes);
  EXPECT_THROW(save(expanded(u"2024-02-06"_qs, u"2024-02-06"_qs).at(0), subject(u"x"_qs)), platform::Failure);
  EXPECT_EQ(read(u"s.ics"_qs), bytes);
}

TEST_F(OccurrencesTest, TheStartOfASeriesWithExceptionsStays) {
  const QByteArray bytes = calendar(
      event({"UID:s", "DTSTART:20240205T080000Z", "RRULE:FREQ=DAILY;COUNT=3", "EXDATE:20240206T080000Z"}));
  write(u"s.ics"_qs, bytes);
  Change change;
  change.start = moment(u"2024-02-05 12:00"_qs);
  EXPECT_THROW(save(plain().at(0), change), platform::Failure);
  EXPECT_EQ(read(u"s.ics"_qs), bytes);
}

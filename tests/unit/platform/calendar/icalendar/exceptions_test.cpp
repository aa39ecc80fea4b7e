#include "tests/unit/platform/calendar/icalendar/fixture.h"

#include <QProcess>

using namespace icalendar_tests;

// What is written when one occurrence of a series is changed.
namespace {

QByteArray utc(const QByteArray& name) {
  return name + ":20240515T080000Z";  // the test's clock
}

/// What another reader sees of a file between two days: "start summary" in UTC, sorted.
QStringList seenByAnother(const QString& path, const QString& from, const QString& to) {
  static const char script[] = R"(
import sys, datetime, icalendar
from dateutil.rrule import rrulestr
utc = datetime.timezone.utc
calendar = icalendar.Calendar.from_ical(open(sys.argv[1], 'rb').read())
events = calendar.walk('VEVENT')
def moment(value):
    if isinstance(value, datetime.datetime): return value.astimezone(utc) if value.tzinfo else value
    return value
overrides = {moment(e['RECURRENCE-ID'].dt): e for e in events if 'RECURRENCE-ID' in e}
shown = []
for e in events:
    if 'RECURRENCE-ID' in e:
        assert 'RRULE' not in e and 'EXDATE' not in e and 'DTSTART' in e and 'UID' in e
        shown.append((e['DTSTART'].dt, e))
        continue
    start = e['DTSTART'].dt
    if 'RRULE' not in e:
        shown.append((start, e))
        continue
    plain = start.replace(tzinfo=None) if isinstance(start, datetime.datetime) else datetime.datetime.combine(start, datetime.time())
    for wall in rrulestr(e['RRULE'].to_ical().decode(), dtstart=plain, ignoretz=True):
        at = wall.date() if not isinstance(start, datetime.datetime) else wall
        if isinstance(start, datetime.datetime) and start.tzinfo is not None:
            at = start.tzinfo.localize(wall) if hasattr(start.tzinfo, 'localize') else wall.replace(tzinfo=start.tzinfo)
        if moment(at) not in overrides: shown.append((at, e))
for at, e in shown:
    print(moment(at).strftime('%Y-%m-%d %H:%M'), str(e['SUMMARY']))
)";
  QProcess python;
  python.start(QStringLiteral("/usr/bin/python3"), {QStringLiteral("-c"), QString::fromUtf8(script), path});
  EXPECT_TRUE(python.waitForFinished());
  EXPECT_EQ(python.exitCode(), 0) << python.readAllStandardError().constData();
  QStringList lines = QString::fromUtf8(python.readAllStandardOutput()).split(u'\n', Qt::SkipEmptyParts);
  lines.removeIf([&](const QString& line) { return line.left(10) < from || line.left(10) > to; });
  lines.sort();
  return lines;
}

struct ExceptionsTest : IcalendarTest {
  Item occurrence(const QString& day) { return expanded(day, day).value(0); }
  Item stamp(const Item& item) {
    Change change;
    change.billingInformation = u"paid"_qs;
    return save(item, change);
  }
  void expectStillOne(const QString& day) {
    ASSERT_EQ(expanded(day, day).size(), 1);
    EXPECT_EQ(occurrence(day).billingInformation, u"paid"_qs);
    reopen();
    EXPECT_EQ(occurrence(day).billingInformation, u"paid"_qs);
  }
};

}  // namespace

TEST_F(ExceptionsTest, AnOccurrenceIsNamedAsItsSeriesNamesItsStartAndCarriesAllButTheRules) {
  const QByteArray alarm = "BEGIN:VALARM\r\nTRIGGER:-PT15M\r\nACTION:DISPLAY\r\nEND:VALARM\r\n";
  const QByteArray master =
      "BEGIN:VEVENT\r\nUID:s\r\nDTSTAMP:20240101T000000Z\r\nSEQUENCE:4\r\nSUMMARY:Stand-up\r\n"
      "DTSTART;TZID=Europe/Stockholm:20240205T090000\r\nDTEND;TZID=Europe/Stockholm:20240205T100000\r\n"
      "RRULE:FREQ=WEEKLY;COUNT=20\r\nEXDATE;TZID=Europe/Stockholm:20240212T090000\r\n"
      "X-MICROSOFT-RRULE:FREQ=WEEKLY;COUNT=20\r\nX-ANOTHER;BY=\"some:one\":kept\r\n" +
      alarm + "END:VEVENT\r\n";
  const QByteArray before = calendar(master);
  write(u"s.ics"_qs, before);
  stamp(occurrence(u"2024-04-01"_qs));  // in summer time
  const QByteArray exception =
      "BEGIN:VEVENT\r\nUID:s\r\nRECURRENCE-ID;TZID=Europe/Stockholm:20240401T090000\r\n" + utc("DTSTAMP") +
      "\r\nSEQUENCE:4\r\nSUMMARY:Stand-up\r\n"
      "DTSTART;TZID=Europe/Stockholm:20240401T090000\r\nDTEND;TZID=Europe/Stockholm:20240401T100000\r\n"
      "X-ANOTHER;BY=\"some:one\":kept\r\nX-HOURBOOK-BILLINGINFORMATION:paid\r\n" +
      alarm + "END:VEVENT\r\n";
  EXPECT_EQ(read(u"s.ics"_qs), calendar(master + exception));
  expectStillOne(u"2024-04-01"_qs);
}

TEST_F(ExceptionsTest, AnAllDaySeriesNamesItsOccurrencesByTheDay) {
  const QByteArray master = event({"UID:s", "SUMMARY:On call", "DTSTART;VALUE=DATE:20240205",
                                   "DTEND;VALUE=DATE:20240206", "RRULE:FREQ=DAILY;COUNT=5"});
  write(u"s.ics"_qs, calendar(master));
  stamp(occurrence(u"2024-02-07"_qs));
  EXPECT_EQ(read(u"s.ics"_qs),
            calendar(master + event({"UID:s", "RECURRENCE-ID;VALUE=DATE:20240207", "SUMMARY:On call",
                                     "DTSTART;VALUE=DATE:20240207", "DTEND;VALUE=DATE:20240208",
                                     "X-HOURBOOK-BILLINGINFORMATION:paid"})));
  expectStillOne(u"2024-02-07"_qs);
}

TEST_F(ExceptionsTest, AnAllDaySeriesWhoseExceptionsAreMomentsStaysAsItIs) {
  const QByteArray master =
      event({"UID:s", "SUMMARY:On call", "DTSTART;VALUE=DATE:20240205", "DTEND;VALUE=DATE:20240206",
             "RRULE:FREQ=DAILY;COUNT=5", "EXDATE;TZID=W. Europe Standard Time:20240206T000000"});
  write(u"s.ics"_qs, calendar(master));
  stamp(occurrence(u"2024-02-07"_qs));
  EXPECT_TRUE(read(u"s.ics"_qs).startsWith(calendar(master).chopped(QByteArray("END:VCALENDAR\r\n").size())));
  EXPECT_TRUE(read(u"s.ics"_qs).contains("RECURRENCE-ID;VALUE=DATE:20240207\r\n"));
  EXPECT_EQ(shown(u"2024-02-05"_qs, u"2024-02-09"_qs).size(), 4);
  expectStillOne(u"2024-02-07"_qs);
}

TEST_F(ExceptionsTest, AZoneOfWindowsKeepsItsName) {
  for (const QByteArray zone : {"W. Europe Standard Time", "\"(UTC+01:00) Amsterdam, Berlin\""}) {
    write(u"s.ics"_qs,
          calendar(event({"UID:s", "SUMMARY:S", "DTSTART;TZID=" + zone + ":20240205T090000",
                          "DTEND;TZID=" + zone + ":20240205T100000", "RRULE:FREQ=WEEKLY;COUNT=20"})));
    stamp(occurrence(u"2024-04-01"_qs));
    const QByteArray after = read(u"s.ics"_qs);
    EXPECT_TRUE(after.contains("RECURRENCE-ID;TZID=" + zone + ":20240401T090000\r\n")) << after.constData();
    EXPECT_TRUE(after.contains("DTSTART;TZID=" + zone + ":20240401T090000\r\n"));
    expectStillOne(u"2024-04-01"_qs);
  }
}

TEST_F(ExceptionsTest, OfAnotherProgramIsChangedWhereItStands) {
  const QByteArray master = event({"UID:s", "SUMMARY:S", "DTSTART;TZID=Europe/Stockholm:20240205T090000",
                                   "DURATION:PT1H", "RRULE:FREQ=DAILY;COUNT=4"});
  const QByteArrayList theirs{"SUMMARY:Theirs", "RECURRENCE-ID:20240206T080000Z",
                              "DTSTART;TZID=America/New_York:20240206T050000", "DURATION:PT30M", "UID:s"};
  const QByteArray before = calendar(event(theirs)), series = calendar(master);
  write(u"s.ics"_qs, series);
  write(u"t.ics"_qs, before);  // in another file than its series
  stamp(occurrence(u"2024-02-06"_qs));
  EXPECT_EQ(read(u"s.ics"_qs), series);
  EXPECT_EQ(differences(before, read(u"t.ics"_qs)), QByteArrayList{"+X-HOURBOOK-BILLINGINFORMATION:paid"});
  expectStillOne(u"2024-02-06"_qs);
}

TEST_F(ExceptionsTest, ThatHoldsForAllThatFollowIsCopiedForOneOfThem) {
  const QByteArray master = event({"UID:s", "SUMMARY:S", "DTSTART;TZID=Europe/Stockholm:20240205T090000",
                                   "DURATION:PT1H", "RRULE:FREQ=DAILY;COUNT=5"});
  const QByteArray following =
      event({"UID:s", "RECURRENCE-ID;RANGE=THISANDFUTURE;TZID=Europe/Stockholm:20240206T090000",
             "SUMMARY:Later", "DTSTART;TZID=Europe/Stockholm:20240206T150000", "DURATION:PT2H"});
  write(u"s.ics"_qs, calendar(master + following));
  stamp(occurrence(u"2024-02-08"_qs));
  const QByteArray after = read(u"s.ics"_qs);
  EXPECT_TRUE(after.contains("RECURRENCE-ID;TZID=Europe/Stockholm:20240208T090000\r\n")) << after.constData();
  EXPECT_TRUE(after.contains("DTSTART;TZID=Europe/Stockholm:20240208T150000\r\n"));
  EXPECT_TRUE(after.contains(following)) << "it holds for the others as before";
  EXPECT_EQ(shown(u"2024-02-07"_qs, u"2024-02-09"_qs),
            (QStringList{u"2024-02-07 15:00 - 17:00 Later"_qs, u"2024-02-08 15:00 - 17:00 Later"_qs,
                         u"2024-02-09 15:00 - 17:00 Later"_qs}));
  expectStillOne(u"2024-02-08"_qs);
}

TEST_F(ExceptionsTest, AreReadByAnotherReaderAsTheyAreShownHere) {
  const QByteArray zone =
      "BEGIN:VTIMEZONE\r\nTZID:Europe/Stockholm\r\nBEGIN:STANDARD\r\nDTSTART:19701025T030000\r\n"
      "TZOFFSETFROM:+0200\r\nTZOFFSETTO:+0100\r\nRRULE:FREQ=YEARLY;BYMONTH=10;BYDAY=-1SU\r\nEND:STANDARD\r\n"
      "BEGIN:DAYLIGHT\r\nDTSTART:19700329T020000\r\nTZOFFSETFROM:+0100\r\nTZOFFSETTO:+0200\r\n"
      "RRULE:FREQ=YEARLY;BYMONTH=3;BYDAY=-1SU\r\nEND:DAYLIGHT\r\nEND:VTIMEZONE\r\n";
  const QByteArray zoned =
      event({"UID:z", "DTSTAMP:20240101T000000Z", "SUMMARY:Zoned",
             "DTSTART;TZID=Europe/Stockholm:20240325T090000", "DURATION:PT1H", "RRULE:FREQ=DAILY;COUNT=14"});
  const QByteArray days = event({"UID:d", "DTSTAMP:20240101T000000Z", "SUMMARY:Days",
                                 "DTSTART;VALUE=DATE:20240325", "RRULE:FREQ=DAILY;COUNT=14"});
  write(u"s.ics"_qs, calendar(zone + zoned + days));
  for (const QString& day : {u"2024-03-28"_qs, u"2024-04-02"_qs}) {
    for (const Item& item : expanded(day, day)) {
      Change change;
      change.subject = item.subject + u" changed"_qs;
      if (!item.allDay) change.start = item.start.addSecs(1800);
      save(item, change);
    }
  }
  QStringList here;
  for (const Item& item : expanded(u"2024-03-26"_qs, u"2024-04-05"_qs)) {
    const QDateTime at =
        item.allDay ? QDateTime(item.start.date(), QTime(0, 0), Qt::UTC) : item.start.toUTC();
    here.append(at.toString(u"yyyy-MM-dd HH:mm "_qs) + item.subject);
  }
  here.sort();
  EXPECT_EQ(here.size(), 22);
  EXPECT_EQ(here.filter(u"changed"_qs).size(), 4);
  EXPECT_EQ(seenByAnother(path(u"s.ics"_qs), u"2024-03-26"_qs, u"2024-04-05"_qs), here);
}

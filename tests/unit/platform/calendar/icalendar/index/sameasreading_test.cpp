#include "tests/unit/platform/calendar/icalendar/index/world.h"

#include <QDirIterator>

// Whatever a calendar holds, the index shows what reading all of it shows.
using namespace index_tests;

TEST_F(IndexTest, SmallFilesOfAFolderAreShownAsReadingThemShows) {
  for (quint32 seed = 1; seed <= many(6); ++seed) {
    SCOPED_TRACE(seed);
    Chance chance(seed);
    const QString calendar = folder() + QString::number(seed);
    QDir().mkpath(calendar);
    for (int i = 0; i < 15; ++i)
      write(calendar + u"/%1.ics"_qs.arg(i),
            someCalendar(chance, 1 + chance.below(3), seed % 3 > 0, seed % 3 > 1));
    const auto index = open(calendar);
    expectSame(*index, calendar);
    EXPECT_TRUE(index->answeredFromIndex());
    const auto again = open(calendar);
    expectSame(*again, calendar);
    EXPECT_TRUE(again->answeredFromIndex());
  }
}

TEST_F(IndexTest, OneLargeFileIsShownAsReadingItShows) {
  for (quint32 seed = 1; seed <= many(3); ++seed) {
    SCOPED_TRACE(seed);
    Chance chance(seed);
    write(file(), someCalendar(chance, 560, seed % 3 > 0));
    const auto index = open(file());
    expectSame(*index, file());
    EXPECT_TRUE(index->answeredFromIndex());
    const auto again = open(file());
    expectSame(*again, file());
  }
}

TEST_F(IndexTest, OneSmallOrBrokenFileIsShownAsReadingItShows) {
  for (quint32 seed = 1; seed <= many(10); ++seed) {
    SCOPED_TRACE(seed);
    Chance chance(seed);
    write(file(), someCalendar(chance, chance.below(20), true, chance.oneIn(2)));
    const auto index = open(file());
    expectSame(*index, file());
    EXPECT_TRUE(index->answeredFromIndex());
  }
}

TEST_F(IndexTest, ALargeFileWhoseNestingIsBrokenIsReadInFull) {
  Chance chance(3);
  write(file(), someCalendar(chance, 900, true, true));
  const auto index = open(file());
  expectSame(*index, file());
  EXPECT_FALSE(index->answeredFromIndex());
  expectSame(*open(file()), file());
}

TEST_F(IndexTest, AFolderWithSmallAndLargeFilesIsShownAsReadingItShows) {
  Chance chance(5);
  for (int i = 0; i < 12; ++i)
    write(path(u"%1.ics"_qs.arg(i)), someCalendar(chance, i % 6 == 0 ? 500 : 2, true, i == 8));
  const auto index = open(folder());
  expectSame(*index, folder());
  EXPECT_TRUE(index->answeredFromIndex());
}

TEST_F(IndexTest, FilesOfOtherProgramsAreShownAsReadingThemShows) {
  const QString samples = qEnvironmentVariable("HOURBOOK_SAMPLES");
  if (samples.isEmpty())
    GTEST_SKIP() << "HOURBOOK_SAMPLES is not set: the files of other programs are not read.";
  int files = 0;
  QByteArray joined;
  for (const char* part : {"/icalendar", "/ics-corpus"}) {
    QDirIterator all(samples + QLatin1String(part), {u"*.ics"_qs}, QDir::Files, QDirIterator::Subdirectories);
    while (all.hasNext()) {
      const QByteArray bytes = contentOf(all.next());
      write(path(u"%1.ics"_qs.arg(++files)), bytes);
      if (bytes.endsWith("END:VCALENDAR\r\n") && bytes.startsWith("BEGIN:VCALENDAR")) joined += bytes;
    }
  }
  ASSERT_GT(files, 200);
  expectSame(*open(folder()), folder());
  expectSame(*open(folder()), folder());
  write(file(), joined);
  expectSame(*open(file()), file());
}

TEST_F(IndexTest, AZoneThatIsDefinedAnewForEachEventIsCarriedAlongOnce) {
  const auto calendar = [](bool alike) {
    QByteArray text = "BEGIN:VCALENDAR\r\nVERSION:2.0\r\n";
    for (int i = 0; i < 300; ++i) {
      const QByteArray number = QByteArray::number(alike ? 0 : i);
      const QByteArray hours = QByteArray::number(i % 9 + 1) + "00\r\n";
      text += "BEGIN:VTIMEZONE\r\nTZID:Own " + number + "\r\nX-NOTE:" + QByteArray(950, 'n') +
              "\r\nBEGIN:STANDARD\r\nDTSTART:19700101T000000\r\nTZOFFSETFROM:+0" +
              (alike ? QByteArray("200\r\n") : hours) + "TZOFFSETTO:+0" +
              (alike ? QByteArray("200\r\n") : hours) + "END:STANDARD\r\nEND:VTIMEZONE\r\n";
      text += "BEGIN:VEVENT\r\nUID:event-" + QByteArray::number(i) + "@example.com\r\nDTSTART;TZID=Own " +
              number + ":20200101T" + QByteArray::number(10 + i % 10) +
              "0000\r\nSUMMARY:Plain\r\nEND:VEVENT\r\n";
    }
    return text + "END:VCALENDAR\r\n";
  };
  write(file(), calendar(true));
  {
    const auto index = open(file());
    expectSame(*index, file());
    EXPECT_TRUE(index->answeredFromIndex());
    const auto group = index->withUid(u"event-299@example.com"_qs);
    ASSERT_EQ(group.masters.size(), 1);
    EXPECT_LT(group.masters.first().file->document.bytes.size(), 2000);
  }
  write(file(), calendar(false));
  const auto index = open(file());
  expectSame(*index, file());
  EXPECT_FALSE(index->answeredFromIndex()) << "each event carries all zones along";
  write(path(u"many.ics"_qs), calendar(false));
  expectSame(*open(folder()), folder());
}

namespace {

QByteArray zoneOf(const QByteArray& name, const QByteArray& hours) {
  return "BEGIN:VTIMEZONE\r\nTZID:" + name +
         "\r\nBEGIN:STANDARD\r\nDTSTART:19700101T000000\r\nTZOFFSETFROM:" + hours +
         "\r\nTZOFFSETTO:" + hours + "\r\nEND:STANDARD\r\nEND:VTIMEZONE\r\n";
}

}  // namespace

TEST_F(IndexTest, AZoneOfAnotherCalendarInTheFileThatChangesChangesTheEventsThatUseIt) {
  const auto calendars = [](const QByteArray& hours) {
    QByteArray text =
        "BEGIN:VCALENDAR\r\nVERSION:2.0\r\n" + zoneOf("Lent", hours) +
        "BEGIN:VEVENT\r\nUID:first\r\nDTSTART:20200205T100000Z\r\nDESCRIPTION:" + QByteArray(70'000, 'x') +
        "\r\nEND:VEVENT\r\nEND:VCALENDAR\r\nBEGIN:VCALENDAR\r\nVERSION:2.0\r\n";
    return text + "BEGIN:VEVENT\r\nUID:second\r\nDTSTART;TZID=Lent:20200205T100000\r\nSUMMARY:Plain\r\n" +
           "END:VEVENT\r\nEND:VCALENDAR\r\n";
  };
  const QByteArrayList offsets{"+0100", "+0700", "-0300"};
  write(file(), calendars(offsets.first()));
  const auto index = open(file());
  for (const QByteArray& hours : offsets) {
    write(file(), calendars(hours));  // of the same length: each event stays where it was
    expectSame(*index, file());
    EXPECT_TRUE(index->answeredFromIndex());
  }
  // and the definition may go, or come
  write(file(), calendars("+0200").replace("TZID:Lent", "TZID:Kept"));
  expectSame(*index, file());
  write(file(), calendars("+0200"));
  expectSame(*index, file());
  EXPECT_TRUE(index->answeredFromIndex());
}

TEST_F(IndexTest, AFileThatIsGivenAnotherNameShowsItsEventsUnderThatName) {
  Chance chance(31);
  write(path(u"a.ics"_qs), someCalendar(chance, 2));
  write(path(u"b.ics"_qs), someCalendar(chance, 400));
  ASSERT_GT(contentOf(path(u"b.ics"_qs)).size(), platform::calendar::icalendar::index::wholeBytes);
  const auto index = open(folder());
  expectSame(*index, folder());
  for (const auto& [from, to] : {std::pair{u"b.ics"_qs, u"c.ics"_qs}, {u"c.ics"_qs, u"a.ics"_qs}}) {
    ASSERT_EQ(::rename(qPrintable(path(from)), qPrintable(path(to))), 0);
    // before and behind the name, as the number of what went is given to what comes
    expectSame(*index, folder());
    write(path(u"later.ics"_qs), someCalendar(chance, 1));
    expectSame(*index, folder());
  }
  EXPECT_TRUE(index->answeredFromIndex());
}

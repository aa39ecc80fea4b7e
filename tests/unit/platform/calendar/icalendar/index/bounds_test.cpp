#include "platform/calendar/icalendar/index/hits.h"
#include "platform/calendar/icalendar/index/intake.h"
#include "platform/calendar/icalendar/limits.h"
#include "tests/unit/platform/calendar/icalendar/index/world.h"

#include <QFile>

#include <unistd.h>

// Bounds for what comes from outside, and what they do.
using namespace index_tests;
using namespace platform::calendar::icalendar;

namespace {

QByteArray longProperty(int bytes) {
  return "BEGIN:VEVENT\r\nUID:long\r\nDTSTART:20200205T100000Z\r\nDESCRIPTION:" + QByteArray(bytes, 'x') +
         "\r\nEND:VEVENT\r\n";
}

}  // namespace

class IndexBounds : public IndexTest {};

TEST_F(IndexBounds, APropertyBeyondTheLimitIsNamedWithItsLineInALargeFile) {
  Chance chance(2);
  QByteArray text = someCalendar(chance, 300);
  const qsizetype at = text.indexOf("BEGIN:VEVENT", text.size() / 2);
  text.insert(at, longProperty(maxPropertyBytes + 1));
  write(file(), text);
  const auto index = open(file());
  expectSame(*index, file());
  EXPECT_TRUE(index->answeredFromIndex());
  ASSERT_EQ(index->problems().size(), 1);
  EXPECT_EQ(index->problems().first().line, text.left(at).count('\n') + 4);
}

TEST_F(IndexBounds, ALineInAFoldedPropertyBeyondTheLimitIsNamed) {
  Chance chance(2);
  QByteArray text = someCalendar(chance, 300);
  QByteArray folded = longProperty(10);
  folded.insert(folded.indexOf("END:"), (" " + QByteArray(70, 'y') + "\r\n").repeated(maxPropertyBytes / 70));
  text.insert(text.indexOf("BEGIN:VEVENT"), folded);
  write(file(), text);
  const auto index = open(file());
  expectSame(*index, file());
  EXPECT_EQ(index->problems().size(), 1);
}

TEST_F(IndexBounds, AnItemsFileBeyondTheLimitIsNamedAndTheOthersAreShown) {
  Chance chance(2);
  write(path(u"a.ics"_qs), someCalendar(chance, 2));
  write(path(u"large.ics"_qs), someCalendar(chance, 2));
  ASSERT_EQ(::truncate(qPrintable(path(u"large.ics"_qs)), maxItemFileBytes + 1), 0);
  const auto index = open(folder());
  expectSame(*index, folder());
  ASSERT_EQ(index->problems().size(), 1);
  EXPECT_EQ(index->problems().first().place, u"large.ics"_qs);
}

TEST_F(IndexBounds, ACalendarFileBeyondTheLimitFailsAsWithoutAnIndex) {
  Chance chance(2);
  write(file(), someCalendar(chance, 2));
  ASSERT_EQ(::truncate(qPrintable(file()), maxCalendarFileBytes + 1), 0);
  const auto index = open(file());
  FileCache plain(file(), u"Test"_qs);
  const auto failureOf = [](EventSource& source) {
    try {
      source.between(0, 1);
    } catch (const platform::Failure& failure) {
      return failure.description();
    }
    return QString();
  };
  EXPECT_FALSE(failureOf(*index).isEmpty());
  EXPECT_EQ(failureOf(*index), failureOf(plain));
}

TEST_F(IndexBounds, MoreProblemsThanTheLimitAreCounted) {
  QByteArray text = "BEGIN:VCALENDAR\r\nVERSION:2.0\r\n";
  for (int i = 0; i < 700; ++i)
    text += "BEGIN:VEVENT\r\nUID:" + QByteArray::number(i) + "\r\nDTSTART:20200205T100000Z\r\n" +
            (i % 3 == 0 ? "junk\r\n" : "DTEND:never\r\n") + "DESCRIPTION:" + QByteArray(60, 'x') +
            "\r\nEND:VEVENT\r\n";
  write(file(), text + "END:VCALENDAR\r\n");
  const auto index = open(file());
  expectSame(*index, file());
  EXPECT_TRUE(index->answeredFromIndex());
  EXPECT_EQ(index->problems().size(), maxProblemsPerFile + 1);
}

TEST_F(IndexBounds, FilesAtTheBorderOfBeingReadWholeAreShownAlike) {
  for (const qint64 more : {-1, 0, 1}) {
    Chance chance(4);
    QByteArray text = someCalendar(chance, 40);
    const qsizetype at = text.indexOf("END:VEVENT");
    text.insert(at, "X-PAD:" + QByteArray(index::wholeBytes + more - text.size() - 8, 'p') + "\r\n");
    ASSERT_EQ(text.size(), index::wholeBytes + more);
    write(file(), text);
    expectSame(*open(file()), file());
  }
}

TEST_F(IndexBounds, AQuestionAboutEverythingIsAnswered) {
  Chance chance(4);
  write(file(), someCalendar(chance, 900));
  const auto index = open(file());
  FileCache plain(file(), u"Test"_qs);
  EXPECT_EQ(shownBy(*index, QDate(1900, 1, 1), QDate(2200, 1, 1)),
            shownBy(plain, QDate(1900, 1, 1), QDate(2200, 1, 1)));
}

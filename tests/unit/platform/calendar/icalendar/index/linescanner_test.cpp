#include "platform/calendar/icalendar/index/linescanner.h"

#include "platform/calendar/icalendar/calendarfile.h"
#include "platform/calendar/icalendar/index/eventrow.h"
#include "platform/calendar/icalendar/index/quicktime.h"
#include "tests/unit/platform/calendar/icalendar/index/world.h"

using namespace index_tests;
using namespace platform::calendar::icalendar;
using namespace platform::calendar::icalendar::index;

namespace {

class Collector : public PieceTaker {
 public:
  void calendarBegins(qint64, QByteArrayView line) override { own.append(line); }
  void calendarLine(QByteArrayView line) override { own.append(line); }
  void pieceBegins(qint64, int) override {}
  void piece(const Piece& piece) override {
    odd = odd || piece.odd;
    if (piece.kind != Piece::Kind::Event) return;
    places.append({piece.offset, piece.bytes.size(), piece.line});
    if (piece.plain) rows.insert(piece.offset, rowOf(piece));
  }
  void calendarEnds(qint64) override {}

  struct Place {
    qint64 offset, length;
    int line;
    friend bool operator==(const Place&, const Place&) = default;
  };
  QList<Place> places;
  QMap<qint64, EventRow> rows;
  QByteArray own;
  bool odd = false;
};

/// Whether the quick look is sure; if so it must have seen what scan() sees.
bool looksTheSame(const QByteArray& bytes, qint64 block = 0) {
  Collector seen;
  LineScanner scanner(seen);
  qint64 given = 0;
  const LineScanner::Read read = [&](char* into, qint64 most) {
    const qint64 size = qMin(qMin(most, block), bytes.size() - given);
    std::copy_n(bytes.constData() + given, size, into);
    given += size;
    return size;
  };
  const bool sure = (block > 0 ? scanner.scan(read) : scanner.scan(bytes)) && !scanner.inCalendar();
  if (!sure) return false;
  EXPECT_EQ(scanner.takeSum(), checksumOf(bytes));
  const auto file = calendarFile(QStringLiteral("x.ics"), bytes);
  QList<Collector::Place> expected;
  for (const Event& event : file->events)
    expected.append(
        {event.component->offset, event.component->end - event.component->offset, event.component->line});
  EXPECT_EQ(seen.places, expected);
  for (const Event& event : file->events) {
    const auto row = seen.rows.constFind(event.component->offset);
    if (row == seen.rows.cend()) continue;
    EXPECT_EQ(row->uid, nameSum(event.uid));
    EXPECT_EQ(row->earliest, event.earliest());
    EXPECT_EQ(row->latest, event.latest());
    EXPECT_EQ(row->subject, rowOf(file->document, event).subject);
  }
  if (seen.rows.size() == seen.places.size() && !seen.odd) {
    EXPECT_TRUE(file->problems.isEmpty());
  }
  return true;
}

QByteArray around(const QByteArray& content) {
  return "BEGIN:VCALENDAR\r\n" + content + "END:VCALENDAR\r\n";
}

}  // namespace

TEST(LineScanner, SeesInRegularCalendarsWhatTheFullReadingSees) {
  for (quint32 seed = 1; seed <= 200; ++seed) {
    SCOPED_TRACE(seed);
    Chance chance(seed);
    EXPECT_TRUE(looksTheSame(someCalendar(chance, 1 + chance.below(40))));
  }
}

TEST(LineScanner, GivesUpRatherThanToSeeSomethingElse) {
  int sure = 0, unsure = 0;
  for (quint32 seed = 1; seed <= 400; ++seed) {
    SCOPED_TRACE(seed);
    Chance chance(seed);
    (looksTheSame(someCalendar(chance, 1 + chance.below(20), true, true)) ? sure : unsure) += 1;
  }
  EXPECT_GT(sure, 50);
  EXPECT_GT(unsure, 50);
}

TEST(LineScanner, BytesChangedByChanceAreSeenAsTheFullReadingSeesThemOrNotAtAll) {
  for (quint32 seed = 1; seed <= 1000; ++seed) {
    SCOPED_TRACE(seed);
    Chance chance(seed);
    QByteArray text = someCalendar(chance, 1 + chance.below(4), chance.oneIn(2));
    const QList<QByteArray> bits{
        "\r", "\n", ":", ";", " ", "\t", "\"", "END:", "BEGIN:", "\r\n ", "V", QByteArray(1, '\0'), "\\"};
    for (int i = chance.below(4); i >= 0; --i) {
      const int at = chance.below(static_cast<int>(text.size()));
      text.replace(at, chance.below(3), chance.of(bits));
    }
    looksTheSame(text);
  }
}

TEST(LineScanner, ReadsInBlocksOfAnySize) {
  for (quint32 seed = 1; seed <= 6; ++seed) {
    Chance chance(seed);
    const QByteArray text = someCalendar(chance, 400, true);
    const bool atOnce = looksTheSame(text);
    EXPECT_EQ(looksTheSame(text, 1 + chance.below(100)), atOnce);
    EXPECT_EQ(looksTheSame(text, 100'000), atOnce);
  }
  const QByteArray large =
      around("BEGIN:VEVENT\r\nUID:a\r\nDTSTART:20240101T100000Z\r\nDESCRIPTION:" + QByteArray(900'000, 'x') +
             "\r\nEND:VEVENT\r\n");
  EXPECT_TRUE(looksTheSame(large + around(""), 50'000));
}

TEST(LineScanner, LeavesWhatHasNoEndToTheFullReading) {
  EXPECT_FALSE(looksTheSame("BEGIN:VCALENDAR\r\nBEGIN:VEVENT\r\nEND:VCALENDAR\r\n"));
  EXPECT_FALSE(looksTheSame("BEGIN:VCALENDAR\r\nVERSION:2.0\r\n"));
  EXPECT_FALSE(looksTheSame(around("END:VEVENT\r\n")));
  EXPECT_FALSE(looksTheSame(around("BEGIN:VEVENT\r\nBEGIN:VEVENT\r\nEND:VEVENT\r\nEND:VEVENT\r\n")));
  EXPECT_FALSE(looksTheSame("BEGIN:VEVENT\r\nEND:VEVENT\r\n"));
  EXPECT_FALSE(looksTheSame(around("BEGIN:VEVENT\r\n\r\nBEGIN\r\n :VALARM\r\nEND:VEVENT\r\n")));
}

TEST(LineScanner, LeavesNestingBeyondTheLimitToTheFullReading) {
  const auto nested = [](int depth) {
    QByteArray text;
    for (int i = 0; i < depth; ++i) text += "BEGIN:X-" + QByteArray::number(i) + "\r\n";
    for (int i = depth - 1; i >= 0; --i) text += "END:X-" + QByteArray::number(i) + "\r\n";
    return around(text);
  };
  EXPECT_TRUE(looksTheSame(nested(maxDepth - 1)));
  EXPECT_FALSE(looksTheSame(nested(maxDepth)));
}

TEST(LineScanner, LeavesOldLineEndsAndOtherEncodingsToTheFullReading) {
  EXPECT_FALSE(looksTheSame(around("BEGIN:VEVENT\r\nEND:VEVENT\r\n").replace("\r\n", "\r")));
  EXPECT_FALSE(
      looksTheSame("\xFF\xFE"
                   "B\0"));
  EXPECT_TRUE(looksTheSame(
      around("BEGIN:VEVENT\r\nUID:a\r\nDTSTART:20240101T100000Z\r\nEND:VEVENT\r\n").replace("\r\n", "\n")));
}

TEST(QuickTime, ReadsTheUsualFormsAsTheFullReadingDoesAndNoOthers) {
  const QList<QByteArray> forms{":20240229T235959",
                                ":20240229T235959Z",
                                ":20240229",
                                ";VALUE=DATE:20240229",
                                ";TZID=Europe/Oslo:20240229T000000",
                                ";TZID=Eastern Standard Time:20240101T101010",
                                ";TZID=Europe/Oslo:20240229T000000Z",
                                ":20230229",
                                ":20240101T246000",
                                ":20240101T240000",
                                ":20241301T000000",
                                ":20240101T0000",
                                ":20240101T000060",
                                ":x",
                                ":",
                                ";TZID=:20240101T000000",
                                ";VALUE=DATE:20240101T000000",
                                ";VALUE=DATE-TIME:20240101T000000",
                                ":20240101T000000z",
                                ": 20240101T000000",
                                ";TZID=\"Europe/Oslo\":20240101T000000",
                                ":00000101",
                                ":99999999T000000"};
  int read = 0;
  for (const QByteArray& form : forms) {
    const auto quick = quickDate(form);
    if (!quick) continue;
    ++read;
    const Property property = parsed("DTSTART" + form);
    const auto full = dateValue(property.value, property);
    ASSERT_TRUE(full) << form.constData();
    EXPECT_EQ(quick->form, full->form) << form.constData();
    EXPECT_EQ(quick->wall(), full->wall()) << form.constData();
    EXPECT_EQ(quick->tzid, full->tzid) << form.constData();
  }
  EXPECT_EQ(read, 7);
  for (const QByteArray& form : QList<QByteArray>{":PT1H", ":P1D", ":PT1H30M", ":P1DT2H3M4S"}) {
    const auto quick = quickSpan(form);
    const auto full = spanValue(form.mid(1));
    ASSERT_TRUE(quick && full) << form.constData();
    EXPECT_EQ(quick->days, full->days);
    EXPECT_EQ(quick->exactMs, full->exactMs);
  }
  for (const QByteArray& form :
       QList<QByteArray>{":P", ":PT", ":-PT1H", ":PT1", ":1H", ":P1H", ":P9999D", ":PT1H1D"})
    EXPECT_FALSE(quickSpan(form)) << form.constData();
}

#include "platform/calendar/icalendar/syntax.h"

#include "tests/unit/platform/calendar/icalendar/fixture.h"

using namespace platform::calendar::icalendar;
using icalendar_tests::calendar;
using icalendar_tests::event;
using icalendar_tests::joined;

namespace {

const Component& onlyEvent(const Document& document) {
  return document.components.at(0).children.at(0);
}

QByteArray valueOf(const Document& document, const char* name) {
  const auto property = firstOf(document, onlyEvent(document), name);
  return property ? property->value : QByteArray("(none)");
}

}  // namespace

TEST(Scan, EveryByteOfAComponentLiesBetweenItsBeginAndItsEnd) {
  const QByteArray one = event({"UID:1"}),
                   two = event({"UID:2", "BEGIN:VALARM", "X-A:1", "END:VALARM", "X-B:2"});
  const Document document = scan(calendar(one + two), {});
  ASSERT_EQ(document.components.size(), 1u);
  const auto& events = document.components[0].children;
  ASSERT_EQ(events.size(), 2u);
  EXPECT_EQ(document.raw(events[0]).toByteArray(), one);
  EXPECT_EQ(document.raw(events[1]).toByteArray(), two);
  EXPECT_EQ(events[1].lines.size(), 2u);
  EXPECT_EQ(events[1].children.at(0).lines.size(), 1u);
  EXPECT_TRUE(document.problems.isEmpty());
}

TEST(Scan, FoldedLinesAreOneWhateverTheirLineEndAndBlank) {
  for (const QByteArray& lineEnd :
       {QByteArray("\r\n"), QByteArray("\n"), QByteArray("\r\r\n"), QByteArray("\r")}) {
    const Document document =
        scan(calendar(event({"SUMMARY:one", " , two", "\tand thr", "\t ee"}, lineEnd), lineEnd), {});
    ASSERT_EQ(document.components.size(), 1u) << lineEnd.toHex().constData();
    EXPECT_EQ(valueOf(document, "SUMMARY"), "one, twoand thr ee") << lineEnd.toHex().constData();
    EXPECT_TRUE(document.problems.isEmpty());
  }
}

TEST(Scan, ALetterCutByAFoldIsWhole) {
  const Document document = scan(calendar(event({"SUMMARY:M\xC3", " \xB6te"})), {});
  EXPECT_EQ(valueOf(document, "SUMMARY"), "M\xC3\xB6te");
}

TEST(Scan, ALineThatBeginsWithTheColonGoesOnWithTheLineAbove) {
  const Document document =
      scan(calendar(event({"ATTENDEE;CN=\"MHMN002\"", ":", "  MAILTO:a@example.com", "SUMMARY:x"})), {});
  const auto attendee = firstOf(document, onlyEvent(document), "ATTENDEE");
  ASSERT_TRUE(attendee);
  EXPECT_EQ(attendee->value, " MAILTO:a@example.com");
  EXPECT_EQ(attendee->parameter("CN"), "MHMN002");
  EXPECT_EQ(valueOf(document, "SUMMARY"), "x");
  EXPECT_TRUE(document.problems.isEmpty());
}

TEST(Scan, ALineFoldedRightBehindItsNameIsRead) {
  const Document document =
      scan(calendar(event({"UID", " :KOrganizer-1", "ATTENDEE", " ;CN=Alice", " :mailto:a"})), {});
  EXPECT_EQ(valueOf(document, "UID"), "KOrganizer-1");
  EXPECT_EQ(firstOf(document, onlyEvent(document), "ATTENDEE")->parameter("CN"), "Alice");
  EXPECT_TRUE(document.problems.isEmpty());
}

TEST(Scan, AnIndentedBeginIsABegin) {
  const Document document = scan("   " + calendar(event({"UID:1"})), {});
  EXPECT_EQ(valueOf(document, "UID"), "1");
  EXPECT_TRUE(document.problems.isEmpty());
}

TEST(Scan, EmptyLinesAndAByteOrderMarkDoNoHarm) {
  const Document document = scan(
      "\xEF\xBB\xBF" + calendar("\r\n" + event({"UID:1", "", "SUMMARY:x", "", " y", "  "})) + "\r\n\r\n", {});
  EXPECT_EQ(valueOf(document, "SUMMARY"), "xy ");
  EXPECT_TRUE(document.problems.isEmpty());
}

TEST(Scan, SmallLettersAreAsGood) {
  const Document document = scan("begin:vcalendar\nbegin:vevent\nsummary:x\nend:VEVENT\nEnd:vcalendar\n", {});
  EXPECT_EQ(valueOf(document, "SUMMARY"), "x");
}

TEST(Scan, AMissingEndIsNamedAndTheRestIsRead) {
  const Document document = scan(joined({"BEGIN:VCALENDAR", "BEGIN:VEVENT", "UID:1", "BEGIN:VEVENT", "UID:2",
                                         "END:VEVENT", "END:VCALENDAR"}),
                                 u"a.ics"_qs);
  const auto& events = document.components.at(0).children;
  ASSERT_EQ(events.size(), 2u);
  EXPECT_FALSE(events[0].closed);
  EXPECT_EQ(firstOf(document, events[1], "UID")->value, "2");
  ASSERT_EQ(document.problems.size(), 1);
  EXPECT_EQ(document.problems[0].place, u"a.ics"_qs);
  EXPECT_EQ(document.problems[0].line, 2);
}

TEST(Scan, AFileThatBreaksOffIsReadAsFarAsItGoes) {
  const Document document = scan("BEGIN:VCALENDAR\r\nBEGIN:VEVENT\r\nUID:1\r\nSUMM", {});
  EXPECT_EQ(firstOf(document, onlyEvent(document), "UID")->value, "1");
  EXPECT_EQ(document.problems.size(), 3);  // the cut line and two missing ends
}

TEST(Scan, AnEndWithoutItsBeginIsNamedAndIgnored) {
  const Document document = scan(calendar("END:VEVENT\r\n" + event({"UID:1"})), {});
  EXPECT_EQ(document.components.at(0).children.size(), 1u);
  EXPECT_EQ(document.problems.size(), 1);
}

TEST(Scan, SeveralCalendarsInOneFileAreAllRead) {
  const Document document = scan(calendar(event({"UID:1"})) + calendar(event({"UID:2"})), {});
  EXPECT_EQ(document.components.size(), 2u);
}

TEST(Scan, ALineThatIsNoPropertyIsNamedWithItsNumber) {
  const Document document = scan(calendar(event({"UID:1", "Sorry, I cannot", "SUMMARY:x"})), {});
  EXPECT_EQ(valueOf(document, "SUMMARY"), "x");
  ASSERT_EQ(document.problems.size(), 1);
  EXPECT_EQ(document.problems[0].line, 6);
}

TEST(Scan, APropertyOverItsLimitIsLeftOutAndNamed) {
  const Document document =
      scan(calendar(event({"UID:1", "DESCRIPTION:" + QByteArray(maxPropertyBytes, 'x'), "SUMMARY:y"})), {});
  EXPECT_EQ(valueOf(document, "DESCRIPTION"), "(none)");
  EXPECT_EQ(valueOf(document, "SUMMARY"), "y");
  EXPECT_EQ(document.problems.size(), 1);
}

TEST(Scan, ComponentsTooDeepWithinOneAnotherAreLeftOutAndNamed) {
  const Document document = scan(QByteArray("BEGIN:X\n").repeated(100'000), {});
  EXPECT_FALSE(document.problems.isEmpty());
  EXPECT_LE(document.problems.size(), maxProblemsPerFile + 1);
}

TEST(Scan, AFileThatIsNoCalendarIsNamed) {
  EXPECT_FALSE(scan("just words\n", {}).problems.isEmpty());
  EXPECT_FALSE(scan(QByteArray("\xFF\xFE") + "B\0E\0", {}).problems.isEmpty());
  EXPECT_TRUE(scan("", {}).problems.isEmpty());
  EXPECT_TRUE(scan("\r\n", {}).problems.isEmpty());
}

TEST(Scan, ACrWithinALineMeansTheSameWhetherOrNotTheLineIsTheLastOfItsFile) {
  const auto lastValue = [](const QByteArray& bytes) {
    const Document document = scan(bytes, {});
    return parsed(document, document.components.front().lines.back()).value;
  };
  EXPECT_EQ(lastValue("BEGIN:X\r\nA:b\rc\r\n"), "b\rc");
  EXPECT_EQ(lastValue("BEGIN:X\r\nA:b\rc"), "b\rc");
}

TEST(Scan, ARunOfCrIsKeptWholeAndCostsItsLengthOnly) {
  const QByteArray text = 'a' + QByteArray(900'000, '\r') + 'b';  // its square would take hours
  const Document document = scan(calendar(event({"UID:1", "SUMMARY:" + text, " c"})), {});
  const Component& found = document.components.front().children.front();
  ASSERT_TRUE(document.problems.isEmpty());
  EXPECT_EQ(firstOf(document, found, "SUMMARY")->value, text + 'c');
  EXPECT_EQ(unfolded("X:\r\r\r\n \ry\r\n", false), "X:\ry");
}

TEST(Properties, QuotesHideColonsAndSemicolons) {
  const Property property = parsed("ATTENDEE;CN=\"a;b:c\";ROLE=CHAIR:mailto:x");
  EXPECT_EQ(property.name, "ATTENDEE");
  EXPECT_EQ(property.parameter("CN"), "a;b:c");
  EXPECT_EQ(property.parameter("ROLE"), "CHAIR");
  EXPECT_EQ(property.value, "mailto:x");
  EXPECT_TRUE(property.parameter("RSVP").isNull());
}

TEST(Properties, ADateIsFoundBehindAZoneWithAColonAndWithoutQuotes) {
  const Property bare = parsed("DTSTART;TZID=(UTC-05:00) Eastern Time (US & Canada):20201028T133000");
  EXPECT_EQ(bare.value, "20201028T133000");
  EXPECT_EQ(bare.parameter("TZID"), "(UTC-05:00) Eastern Time (US & Canada)");
  EXPECT_EQ(parsed("DTSTART;TZID=\"W. Europe:20201028T133000").value, "20201028T133000");
}

TEST(Properties, OddParametersAreTakenAsTheyAreMeant) {
  EXPECT_EQ(parsed("DTSTART;;VALUE=DATE-TIME:20140409T093000").parameter("VALUE"), "DATE-TIME");
  EXPECT_EQ(parsed("DTSTART;TZID=:20140409T093000").parameter("TZID"), "");
  EXPECT_FALSE(parsed("DTSTART;TZID=:20140409T093000").parameter("TZID").isNull());
  EXPECT_EQ(parsed("X;A=\"never closed:v").value, "v");
}

#include "platform/basic/failure.h"
#include "tests/unit/platform/calendar/icalendar/fixture.h"

using namespace icalendar_tests;

class ChangesTest : public IcalendarTest {
 protected:
  ChangesTest() { world.setTime(moment(u"2024-05-15 10:00"_qs)); }

  /// The lines that one change of the only item takes away and brings.
  QByteArrayList changedFile(const QByteArray& bytes, const Change& change) {
    write(u"a.ics"_qs, bytes);
    const Item saved = save(single(), change);
    EXPECT_EQ(saved.tag, single().tag);
    return differences(bytes, read(u"a.ics"_qs));
  }
  QByteArrayList changed(const QByteArrayList& lines, const Change& change) {
    return changedFile(calendar(event(QByteArrayList{"UID:a"} + lines)), change);
  }
};

namespace {

Change subject(const QString& text) {
  Change change;
  change.subject = text;
  return change;
}
Change duration(int minutes) {
  Change change;
  change.durationMinutes = minutes;
  return change;
}
Change start(const QString& text, const QByteArray& zone = "Europe/Stockholm") {
  Change change;
  change.start = moment(text, zone);
  return change;
}

const QByteArray zoned = "DTSTART;TZID=W. Europe Standard Time:20240205T090000";
const QByteArray zonedEnd = "DTEND;TZID=W. Europe Standard Time:20240205T100000";

}  // namespace

TEST_F(ChangesTest, OnlyTheLinesOfTheChangedPropertyDiffer) {
  EXPECT_EQ(changed({zoned, zonedEnd, "SUMMARY;LANGUAGE=sv:Old", " er text", "X-ODD;P=\"a:b\":kept;as,is"},
                    subject(u"New, longer"_qs)),
            (QByteArrayList{"-SUMMARY;LANGUAGE=sv:Old", "-er text", "+SUMMARY;LANGUAGE=sv:New\\, longer"}));
}

TEST_F(ChangesTest, EverythingAroundStaysByteForByte) {
  const QByteArray before = "\xEF\xBB\xBF" + calendar("X-WR-CALNAME:M\xF6te\r\n" +
                                                      event({"UID:other", "SUMMARY:x", "DTSTART:20240201"})),
                   item = event({"UID:a", zoned, "SUMMARY:Old"}), after = "\r\n\r\njunk\r\n";
  const QByteArray bytes = before.chopped(15) + item + "END:VCALENDAR\r\n" + after;
  write(u"a.ics"_qs, bytes);
  for (const Item& each : plain())
    if (each.key.uid == u"a"_qs) save(each, subject(u"New"_qs));
  QByteArray expected = bytes;
  EXPECT_EQ(read(u"a.ics"_qs), expected.replace("SUMMARY:Old", "SUMMARY:New"));
}

TEST_F(ChangesTest, TheLineEndsOfTheFileAreKept) {
  for (const QByteArray& lineEnd : {QByteArray("\r\n"), QByteArray("\n")}) {
    const QByteArray bytes =
        calendar(event({"UID:a", zoned, zonedEnd, "BEGIN:VALARM", "X-A:1", "END:VALARM"}, lineEnd), lineEnd);
    write(u"a.ics"_qs, bytes);
    Change change;
    change.body = QString(u"åäö "_qs).repeated(40);
    save(single(), change);
    const QByteArray written = read(u"a.ics"_qs);
    EXPECT_EQ(written.count('\n'), written.count(lineEnd));
    for (const QByteArray& line : written.split('\n')) EXPECT_LE(line.size(), 76);
    EXPECT_LT(written.indexOf("DESCRIPTION"), written.indexOf("BEGIN:VALARM"));
    EXPECT_EQ(single().body, *change.body);
  }
}

TEST_F(ChangesTest, AFileWithoutItsLastLineEndIsChangedAllTheSame) {
  const QByteArray bytes = "BEGIN:VEVENT\nUID:a\nDTSTART:20240205T080000Z\nSUMMARY:Old";
  EXPECT_EQ(changedFile(bytes, subject(u"New"_qs)), (QByteArrayList{"-SUMMARY:Old", "+SUMMARY:New"}));
  write(u"a.ics"_qs, bytes);
  Change change;
  change.billingInformation = u"x"_qs;
  save(single(), change);
  EXPECT_EQ(read(u"a.ics"_qs), bytes + "\nX-HOURBOOK-BILLINGINFORMATION:x");
}

TEST_F(ChangesTest, AFileThatBreaksOffWithinItsLineEndIsChangedAllTheSame) {
  const QByteArray bytes = "BEGIN:VEVENT\r\nUID:a\r\nDTSTART:20240205T080000Z\r\nSUMMARY:Old\r";
  write(u"a.ics"_qs, bytes);
  Change change;
  change.billingInformation = u"x"_qs;
  save(single(), change);
  EXPECT_EQ(single().billingInformation, u"x"_qs);
  EXPECT_EQ(single().subject, u"Old"_qs);
  EXPECT_EQ(read(u"a.ics"_qs), bytes.chopped(1) + "\r\nX-HOURBOOK-BILLINGINFORMATION:x\r");
}

TEST_F(ChangesTest, AnEventOfNothingButABrokenLineGetsItsOwnLines) {
  const QByteArray bytes = "BEGIN:VCALENDAR\r\nBEGIN:VEVENT\r";
  write(u"a.ics"_qs, bytes);
  save(single(), subject(u"New"_qs));
  EXPECT_EQ(read(u"a.ics"_qs), "BEGIN:VCALENDAR\r\nBEGIN:VEVENT\r\nSUMMARY:New\r");
}

TEST_F(ChangesTest, MixedLineEndsDoNoHarmWhereAFileBreaksOff) {
  write(u"a.ics"_qs, "BEGIN:VCALENDAR\r\nBEGIN:VEVENT\nSUMMARY:Old\nEND");
  Change change;
  change.billingInformation = u"paid"_qs;
  save(single(), change);
  EXPECT_EQ(read(u"a.ics"_qs),
            "BEGIN:VCALENDAR\r\nBEGIN:VEVENT\nSUMMARY:Old\nEND\nX-HOURBOOK-BILLINGINFORMATION:paid");
}

TEST_F(ChangesTest, AnIndentedEventStaysIndented) {
  const QByteArray bytes = "  BEGIN:VEVENT\nUID:a\nDTSTART:20240205T080000Z\nSUMMARY:Old\nEND:VEVENT\n";
  EXPECT_EQ(changedFile(bytes, subject(u"New"_qs)), (QByteArrayList{"-SUMMARY:Old", "+SUMMARY:New"}));
}

TEST_F(ChangesTest, WhatIsAlreadySoIsNotWrittenAgain) {
  const QByteArray bytes =
      calendar(event({"UID:a", "LAST-MODIFIED:20200101T000000Z", zoned, zonedEnd, "SUMMARY:Sa", " me",
                      "CATEGORIES:A , B", "CLASS:private", "DESCRIPTION:x"}));
  write(u"a.ics"_qs, bytes);
  const Item item = single();
  Change change;
  change.subject = item.subject;
  change.body = item.body;
  change.sensitivity = item.sensitivity;
  change.categories = item.categories;
  change.start = item.start;
  change.durationMinutes = item.durationMinutes();
  change.allDay = false;
  change.billingInformation = QString();
  save(item, change);
  save(item, Change());
  EXPECT_EQ(read(u"a.ics"_qs), bytes);
}

TEST_F(ChangesTest, TheStampsAreBroughtUpToDateWhereTheyAreAndNotAdded) {
  EXPECT_EQ(changed({"DTSTAMP:20200101T000000Z", "LAST-MODIFIED:20200101T000000Z", "SEQUENCE:3", zoned,
                     "SUMMARY:Old"},
                    subject(u"New"_qs)),
            (QByteArrayList{"-DTSTAMP:20200101T000000Z", "-LAST-MODIFIED:20200101T000000Z", "-SUMMARY:Old",
                            "+DTSTAMP:20240515T080000Z", "+LAST-MODIFIED:20240515T080000Z", "+SUMMARY:New"}));
}

TEST_F(ChangesTest, ANewBodyTakesTheOldPageWithIt) {
  Change change;
  change.body = u"New\r\ntext"_qs;
  EXPECT_EQ(
      changed({zoned, "DESCRIPTION;ALTREP=\"cid:1\":Old", "X-ALT-DESC;FMTTYPE=text/html:<p>Old</p>"}, change),
      (QByteArrayList{"-DESCRIPTION;ALTREP=\"cid:1\":Old", "-X-ALT-DESC;FMTTYPE=text/html:<p>Old</p>",
                      "+DESCRIPTION:New\\ntext"}));
}

TEST_F(ChangesTest, ANewLengthKeepsTheFormOfTheEnd) {
  EXPECT_EQ(changed({zoned, zonedEnd}, duration(90)),
            (QByteArrayList{"-" + zonedEnd, "+DTEND;TZID=W. Europe Standard Time:20240205T103000"}));
  EXPECT_EQ(changed({"DTSTART:20240205T080000Z", "DTEND:20240205T090000Z"}, duration(30)),
            (QByteArrayList{"-DTEND:20240205T090000Z", "+DTEND:20240205T083000Z"}));
  EXPECT_EQ(changed({zoned, "DURATION:PT1H"}, duration(150)),
            (QByteArrayList{"-DURATION:PT1H", "+DURATION:PT2H30M"}));
  EXPECT_EQ(changed({zoned, "DTEND;TZID=America/New_York:20240205T040000"}, duration(30)),
            (QByteArrayList{"-DTEND;TZID=America/New_York:20240205T040000",
                            "+DTEND;TZID=America/New_York:20240205T033000"}));
  EXPECT_EQ(changed({zoned}, duration(30)),
            QByteArrayList{"+DTEND;TZID=W. Europe Standard Time:20240205T093000"});
  EXPECT_EQ(changed({"DTSTART;VALUE=DATE:20240205", "DTEND;VALUE=DATE:20240206"}, duration(2880)),
            (QByteArrayList{"-DTEND;VALUE=DATE:20240206", "+DTEND;VALUE=DATE:20240207"}));
}

TEST_F(ChangesTest, AnEndThatCannotBeReadGivesWayToANewLength) {
  EXPECT_EQ(changed({"DTSTART:20240205T080000Z", "DTEND:20240299T090000Z", "DURATION:-PT1H"}, duration(30)),
            (QByteArrayList{"-DTEND:20240299T090000Z", "-DURATION:-PT1H", "+DTEND:20240205T083000Z"}));
}

TEST_F(ChangesTest, OfSeveralStartsTheFirstCounts) {
  write(u"a.ics"_qs, calendar(event({"UID:a", "DTSTART:20240205T080000Z", "DTSTART:20240206T080000Z"})));
  EXPECT_EQ(described({single()}), QStringList{u"2024-02-05 09:00 - 09:00 "_qs});
  write(u"a.ics"_qs, calendar(event({"UID:a", "DTSTART:20240299T080000Z", "DTSTART:20240206T080000Z"})));
  EXPECT_FALSE(single().start.isValid());
}

TEST_F(ChangesTest, ALengthOverAChangeOfTheClocksIsExact) {
  EXPECT_EQ(changed({"DTSTART;TZID=Europe/Stockholm:20240331T010000",
                     "DTEND;TZID=Europe/Stockholm:20240331T013000"},
                    duration(120)),
            (QByteArrayList{"-DTEND;TZID=Europe/Stockholm:20240331T013000",
                            "+DTEND;TZID=Europe/Stockholm:20240331T040000"}));
}

TEST_F(ChangesTest, AnEndInTheHourThatComesTwiceIsToldInUtc) {
  EXPECT_EQ(changed({"DTSTART;TZID=Europe/Stockholm:20241027T010000",
                     "DTEND;TZID=Europe/Stockholm:20241027T013000"},
                    duration(150)),
            (QByteArrayList{"-DTEND;TZID=Europe/Stockholm:20241027T013000", "+DTEND:20241027T013000Z"}));
  EXPECT_EQ(single().durationMinutes(), 150);
  EXPECT_EQ(changed({"DTSTART;TZID=Europe/Stockholm:20241027T010000"}, duration(150)),
            QByteArrayList{"+DTEND:20241027T013000Z"});
  EXPECT_EQ(changed({"DTSTART;TZID=Europe/Stockholm:20241027T010000"}, duration(90)),
            QByteArrayList{"+DTEND;TZID=Europe/Stockholm:20241027T023000"});
}

TEST_F(ChangesTest, ANewStartKeepsTheZoneAndTheLength) {
  EXPECT_EQ(changed({"DTSTART;TZID=\"America/New_York\":20240205T090000",
                     "DTEND;TZID=\"America/New_York\":20240205T093000"},
                    start(u"2024-02-06 16:00"_qs)),
            (QByteArrayList{"-DTSTART;TZID=\"America/New_York\":20240205T090000",
                            "-DTEND;TZID=\"America/New_York\":20240205T093000",
                            "+DTSTART;TZID=\"America/New_York\":20240206T100000",
                            "+DTEND;TZID=\"America/New_York\":20240206T103000"}));
  EXPECT_EQ(changed({"DTSTART:20240205T080000Z", "DURATION:PT1H"}, start(u"2024-02-06 16:00"_qs)),
            (QByteArrayList{"-DTSTART:20240205T080000Z", "+DTSTART:20240206T150000Z"}));
  EXPECT_EQ(
      changed({"DTSTART;VALUE=DATE:20240205", "DTEND;VALUE=DATE:20240207"}, start(u"2024-02-10 00:00"_qs)),
      (QByteArrayList{"-DTSTART;VALUE=DATE:20240205", "-DTEND;VALUE=DATE:20240207",
                      "+DTSTART;VALUE=DATE:20240210", "+DTEND;VALUE=DATE:20240212"}));
}

TEST_F(ChangesTest, AZoneThatNobodyKnowsIsKeptToo) {
  EXPECT_EQ(changed({"DTSTART;TZID=Nowhere:20240205T090000", "DTEND;TZID=Nowhere:20240205T093000"},
                    start(u"2024-02-06 16:00"_qs)),
            (QByteArrayList{"-DTSTART;TZID=Nowhere:20240205T090000", "-DTEND;TZID=Nowhere:20240205T093000",
                            "+DTSTART;TZID=Nowhere:20240206T160000", "+DTEND;TZID=Nowhere:20240206T163000"}));
}

TEST_F(ChangesTest, AWholeDayInMicrosoftsOldFormKeepsIt) {
  const QByteArray mark = "X-MICROSOFT-CDO-ALLDAYEVENT:TRUE";
  EXPECT_EQ(
      changed({"DTSTART;TZID=Europe/Stockholm:20240205T000000", "DTEND;TZID=Europe/Stockholm:20240206T000000",
               mark},
              start(u"2024-03-10 00:00"_qs)),
      (QByteArrayList{
          "-DTSTART;TZID=Europe/Stockholm:20240205T000000", "-DTEND;TZID=Europe/Stockholm:20240206T000000",
          "+DTSTART;TZID=Europe/Stockholm:20240310T000000", "+DTEND;TZID=Europe/Stockholm:20240311T000000"}));
}

TEST_F(ChangesTest, ATimedItemBecomesAWholeDayAndBack) {
  Change on, off;
  on.allDay = true;
  off.allDay = false;
  off.durationMinutes = 60;
  EXPECT_EQ(changed({"X-MICROSOFT-CDO-ALLDAYEVENT:FALSE", zoned, zonedEnd}, on),
            (QByteArrayList{"-X-MICROSOFT-CDO-ALLDAYEVENT:FALSE", "-" + zoned, "-" + zonedEnd,
                            "+X-MICROSOFT-CDO-ALLDAYEVENT:TRUE", "+DTSTART;VALUE=DATE:20240205",
                            "+DTEND;VALUE=DATE:20240206"}));
  EXPECT_TRUE(single().allDay);
  save(single(), off);
  EXPECT_EQ(described({single()}), QStringList{u"2024-02-05 00:00 - 01:00 "_qs});
  EXPECT_TRUE(read(u"a.ics"_qs).contains("DTSTART:20240205T000000\r\nDTEND:20240205T010000\r\n"));
  EXPECT_TRUE(read(u"a.ics"_qs).contains("X-MICROSOFT-CDO-ALLDAYEVENT:FALSE"));
}

TEST_F(ChangesTest, AWholeDayThatBecomesTimedBeginsAtTheMomentAskedForWhateverZoneItsTimesAreReadIn) {
  Change off;
  off.allDay = false;
  off.start = moment(u"2024-02-05 09:00"_qs);
  off.durationMinutes = 60;
  QByteArray google =
      calendar(joined({"X-WR-TIMEZONE:America/New_York"}) + event({"UID:a", "DTSTART;VALUE=DATE:20240205"}));
  google.replace("-//Another//Program//EN", "-//Google Inc//Google Calendar 70.9054//EN");
  write(u"a.ics"_qs, google);
  EXPECT_EQ(described({save(single(), off)}), QStringList{u"2024-02-05 09:00 - 10:00 "_qs});
  EXPECT_TRUE(read(u"a.ics"_qs).contains("DTSTART:20240205T030000\r\nDTEND:20240205T040000\r\n"));
  write(u"a.ics"_qs, calendar(event({"UID:a", "X-MICROSOFT-CDO-ALLDAYEVENT:TRUE",
                                     "DTSTART;TZID=America/New_York:20240205T000000",
                                     "DTEND;TZID=America/New_York:20240206T000000"})));
  EXPECT_EQ(described({save(single(), off)}), QStringList{u"2024-02-05 09:00 - 10:00 "_qs});
}

TEST_F(ChangesTest, CategoriesAreWrittenForOthersAndAsTheTextWasSet) {
  Change change;
  change.categoriesText = u"; Acme, Inc;Phone"_qs;
  change.categories = QStringList{u"Acme, Inc"_qs, u"Phone"_qs};
  EXPECT_EQ(changed({zoned, "CATEGORIES:Old", "SUMMARY:x", "CATEGORIES:Older"}, change),
            (QByteArrayList{"-CATEGORIES:Old", "-CATEGORIES:Older", "+CATEGORIES:Acme\\, Inc,Phone",
                            "+X-HOURBOOK-CATEGORIES:\\; Acme\\, Inc\\;Phone"}));
  EXPECT_EQ(single().categoriesText, u"; Acme, Inc;Phone"_qs);
  change.categoriesText = QString();
  change.categories = QStringList();
  save(single(), change);
  EXPECT_FALSE(read(u"a.ics"_qs).contains("CATEGORIES"));
}

TEST_F(ChangesTest, ATextOfCategoriesAloneNamesThemToo) {
  Change change;
  change.categoriesText = u";A;B"_qs;
  EXPECT_EQ(changed({zoned}, change), (QByteArrayList{"+CATEGORIES:A,B", "+X-HOURBOOK-CATEGORIES:\\;A\\;B"}));
}

TEST_F(ChangesTest, BillingInformationAndUserPropertiesAreLinesOfTheirOwn) {
  Change change;
  change.billingInformation = u"2024-02-05; a,b"_qs;
  change.userProperties = {{u"It's \"so\""_qs, {1, u"a\r\nb"_qs}}, {u"n"_qs, {3, u"1"_qs}}};
  EXPECT_EQ(changed({zoned}, change),
            (QByteArrayList{"+X-HOURBOOK-BILLINGINFORMATION:2024-02-05\\; a\\,b",
                            "+X-HOURBOOK-USERPROPERTY;X-NAME=\"It's ^'so^'\";X-TYPE=1:a\\nb",
                            "+X-HOURBOOK-USERPROPERTY;X-NAME=\"n\";X-TYPE=3:1"}));
  EXPECT_EQ(single().userProperties, change.userProperties);
  Change empty;
  empty.billingInformation = u""_qs;
  save(single(), empty);
  EXPECT_FALSE(read(u"a.ics"_qs).contains("BILLING"));
}

TEST_F(ChangesTest, SensitivityIsAClass) {
  Change change;
  change.sensitivity = Sensitivity::Personal;
  EXPECT_EQ(changed({zoned, "CLASS:PUBLIC"}, change), (QByteArrayList{"-CLASS:PUBLIC", "+CLASS:PERSONAL"}));
  change.sensitivity = Sensitivity::Confidential;
  EXPECT_EQ(changed({zoned}, change), QByteArrayList{"+CLASS:CONFIDENTIAL"});
}

TEST_F(ChangesTest, AnItemWithoutUidIsChangedWhereItStands) {
  write(u"a.ics"_qs, calendar(event({"SUMMARY:One", "DTSTART:20240205T080000Z"}) +
                              event({"SUMMARY:Two", "DTSTART:20240205T090000Z"})));
  const QByteArray before = read(u"a.ics"_qs);
  save(plain().at(1), subject(u"Second"_qs));
  EXPECT_EQ(differences(before, read(u"a.ics"_qs)), (QByteArrayList{"-SUMMARY:Two", "+SUMMARY:Second"}));
}

TEST_F(ChangesTest, AnItemOfALargeFileIsChangedInItsPlaceAlone) {
  folder = u"one"_qs;
  QByteArray events;
  for (int i = 0; i < 500; ++i)
    events += event({"UID:" + QByteArray::number(i), "DTSTART:20240205T080000Z",
                     "SUMMARY:Item " + QByteArray::number(i)});
  writeOne(calendar(events));
  Query query;
  query.uid = u"250"_qs;
  const Item item = store->items(folder, query).value(0);
  const QByteArray before = readOne();
  save(item, subject(u"Changed"_qs));
  QByteArray expected = before;
  EXPECT_EQ(readOne(), expected.replace("SUMMARY:Item 250\r\n", "SUMMARY:Changed\r\n"));
}

TEST_F(ChangesTest, APropertyThatWouldBecomeTooLongIsRefusedAndNothingWritten) {
  const QByteArray bytes = calendar(event({"UID:a", zoned, "SUMMARY:Old"}));
  write(u"a.ics"_qs, bytes);
  Change change;
  change.body = QString(1024 * 1024, u'x');
  try {
    save(single(), change);
    ADD_FAILURE() << "saved";
  } catch (const platform::Failure& failure) {
    for (const QString& word : {u"Work"_qs, u"Old"_qs, u"a.ics"_qs})
      EXPECT_TRUE(failure.description().contains(word));
  }
  EXPECT_EQ(read(u"a.ics"_qs), bytes);
}

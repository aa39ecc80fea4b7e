#include "platform/basic/failure.h"
#include "tests/unit/platform/calendar/icalendar/fixture.h"

using namespace icalendar_tests;

class NewItemsTest : public IcalendarTest {
 protected:
  NewItemsTest() { world.setTime(moment(u"2024-05-15 10:00"_qs)); }
  static Change wanted() {
    Change change;
    change.subject = u"Nytt möte"_qs;
    change.start = moment(u"2024-06-03 09:00"_qs);
    change.durationMinutes = 90;
    return change;
  }
};

TEST_F(NewItemsTest, InAFolderANewItemIsAFileOfItsOwn) {
  const Item item = store->save(folder, {}, {}, wanted());
  EXPECT_EQ(fileNames(), QStringList{item.key.uid + u".ics"_qs});
  EXPECT_EQ(read(fileNames().at(0)),
            joined({"BEGIN:VCALENDAR", "VERSION:2.0", "PRODID:-//Hourbook//Hourbook 3//EN", "BEGIN:VEVENT",
                    "UID:" + item.key.uid.toUtf8(), "DTSTAMP:20240515T080000Z", "CREATED:20240515T080000Z",
                    "DTSTART:20240603T070000Z", "DTEND:20240603T083000Z", "SUMMARY:Nytt m\xC3\xB6te",
                    "END:VEVENT", "END:VCALENDAR"}));
  EXPECT_EQ(described({item}), QStringList{u"2024-06-03 09:00 - 10:30 Nytt möte"_qs});
}

TEST_F(NewItemsTest, InOneFileItStandsBehindTheOthersInTheFilesOwnLineEnds) {
  folder = u"one"_qs;
  for (const QByteArray& lineEnd : {QByteArray("\r\n"), QByteArray("\n")}) {
    const QByteArray before = calendar(event({"UID:a", "DTSTART:20240201"}, lineEnd), lineEnd);
    writeOne(before);
    const Item item = store->save(folder, {}, {}, wanted());
    const QByteArray now = readOne(), last = "END:VCALENDAR" + lineEnd;
    EXPECT_TRUE(now.startsWith(before.chopped(last.size()) + "BEGIN:VEVENT" + lineEnd + "UID:"));
    EXPECT_TRUE(now.endsWith("END:VEVENT" + lineEnd + last));
    EXPECT_EQ(now.count('\n'), now.count(lineEnd));
    EXPECT_EQ(item.key.place, u"one.ics"_qs);
    EXPECT_EQ(plain().size(), 2);
  }
}

TEST_F(NewItemsTest, AnEmptyFileBecomesACalendar) {
  folder = u"one"_qs;
  writeOne("");
  store->save(folder, {}, {}, wanted());
  EXPECT_EQ(single().subject, u"Nytt möte"_qs);
  EXPECT_TRUE(store->problems(folder).isEmpty());
}

TEST_F(NewItemsTest, NothingIsAddedToAFileThatIsNoCalendar) {
  folder = u"one"_qs;
  writeOne("My diary\n");
  EXPECT_THROW(store->save(folder, {}, {}, wanted()), platform::Failure);
  EXPECT_EQ(readOne(), "My diary\n");
}

TEST_F(NewItemsTest, AWholeDayIsWrittenAsItsDates) {
  Change change = wanted();
  change.allDay = true;
  change.start = moment(u"2024-06-03 00:00"_qs);
  change.durationMinutes = 2880;
  const Item item = store->save(folder, {}, {}, change);
  EXPECT_TRUE(
      read(fileNames().at(0)).contains("DTSTART;VALUE=DATE:20240603\r\nDTEND;VALUE=DATE:20240605\r\n"));
  EXPECT_TRUE(item.allDay);
}

TEST_F(NewItemsTest, WithoutAStartThereIsNoItem) {
  Change change;
  change.subject = u"x"_qs;
  EXPECT_THROW(store->save(folder, {}, {}, change), platform::Failure);
  EXPECT_TRUE(fileNames().isEmpty());
}

TEST_F(NewItemsTest, ARemovedItemTakesItsFileAlongWhenNothingElseIsInIt) {
  const Item item = store->save(folder, {}, {}, wanted());
  store->remove(folder, item.key, item.tag);
  EXPECT_TRUE(fileNames().isEmpty());
  write(u"a.ics"_qs, calendar(event({"UID:a", "DTSTART:20240201"}) + event({"UID:b", "DTSTART:20240202"})));
  const Item first = plain().at(0);
  store->remove(folder, first.key, first.tag);
  EXPECT_EQ(read(u"a.ics"_qs), calendar(event({"UID:b", "DTSTART:20240202"})));
}

TEST_F(NewItemsTest, ARemovedItemLeavesItsFileWhenSomethingOfAnotherKindIsInIt) {
  const QByteArray busy =
      joined({"BEGIN:VFREEBUSY", "UID:f", "FREEBUSY:20240201T080000Z/PT1H", "END:VFREEBUSY"});
  const QByteArray own = joined({"BEGIN:X-NOTES", "X-TEXT:kept", "END:X-NOTES"});
  for (const QByteArray& other : {busy, own}) {
    write(u"a.ics"_qs, calendar(event({"UID:a", "DTSTART:20240201"}) + other));
    store->remove(folder, single().key, single().tag);
    EXPECT_EQ(read(u"a.ics"_qs), calendar(other));
  }
}

TEST_F(NewItemsTest, OneFileStaysAsAnEmptyCalendar) {
  folder = u"one"_qs;
  writeOne(calendar(event({"UID:a", "DTSTART:20240201"})));
  store->remove(folder, single().key, single().tag);
  EXPECT_EQ(readOne(), calendar({}));
}

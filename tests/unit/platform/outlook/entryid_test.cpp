#include "platform/outlook/entryid.h"

#include "calendarfixture.h"
#include "platform/calendar/icalendar/icalendarstore.h"

#include <QFile>
#include <QTemporaryDir>

using namespace platform::outlook;
using namespace Qt::StringLiterals;
namespace calendar = platform::calendar;

class EntryId : public tests::CalendarTest {
 protected:
  std::shared_ptr<MAPIFolder> calendarFolder() {
    return std::make_shared<MAPIFolder>(store, store->folders().first());
  }
};

TEST_F(EntryId, OfAnyIdentityComesBackAsItWas) {
  for (const calendar::ItemKey& key :
       {calendar::ItemKey{u"a/b c.ics#2"_s, u"{uid} 100%/x@y"_s, u"20240513T093000"_s},
        calendar::ItemKey{u""_s, u"Größe 😀"_s, u""_s}})
    EXPECT_EQ(keyOfEntryId(entryIdOf(key)), key);
  for (const QString& other : {u""_s, u"uid"_s, u"a/b"_s, u"a/b/c/d"_s, u"/b/c"_s})
    EXPECT_FALSE(keyOfEntryId(other)) << qPrintable(other);
}

TEST_F(EntryId, FindsASingleAppointmentAsItIsNow) {
  const auto item = add(appointment(u"one"_s, u"2024-05-13 09:00"_s));
  item->setBillingInformation(u"5/15/2024"_s);
  item->Save();
  const auto found = calendarFolder()->GetItemFromID(item->EntryID());
  EXPECT_EQ(found->Subject(), u"one");
  EXPECT_EQ(found->BillingInformation(), u"5/15/2024");
}

TEST_F(EntryId, FindsAnOccurrenceBeforeAndAfterItIsAnException) {
  calendar::Recurrence rule;
  rule.unit = calendar::Recurrence::Unit::Week;
  rule.count = 5;
  memory->addSeries(folder, appointment(u"series"_s, u"2024-05-06 09:00"_s), rule);
  const auto occurrence = walk().at(2);
  const QString id = occurrence->EntryID();
  for (const QString& stamp : {u"first"_s, u"second"_s}) {
    const auto found = calendarFolder()->GetItemFromID(id);
    EXPECT_EQ(found->Start(), occurrence->Start());
    found->setBillingInformation(stamp);
    found->Save();
  }
  EXPECT_EQ(calendarFolder()->GetItemFromID(id)->BillingInformation(), u"second");
  EXPECT_EQ(calendarFolder()->GetItemFromID(walk().at(1)->EntryID())->BillingInformation(), QString());
}

TEST_F(EntryId, FindsAnItemWhosePlaceIsAnotherByNow) {
  const auto item = add(appointment(u"one"_s, u"2024-05-13 09:00"_s));
  calendar::ItemKey key = item->stored().key;
  key.place += u"-renamed"_s;
  EXPECT_EQ(calendarFolder()->GetItemFromID(entryIdOf(key))->Subject(), u"one");
}

TEST_F(EntryId, FindsAnOccurrenceThatAChangeOfAllThatFollowHasMovedFarAway) {
  const QTemporaryDir files;
  QFile file(files.filePath(u"series.ics"_s));
  ASSERT_TRUE(file.open(QIODevice::WriteOnly));
  file.write(
      "BEGIN:VCALENDAR\r\nVERSION:2.0\r\nPRODID:-//Another//EN\r\n"
      "BEGIN:VEVENT\r\nUID:s\r\nSUMMARY:Series\r\nDTSTART:20240506T080000Z\r\nDTEND:20240506T090000Z\r\n"
      "RRULE:FREQ=WEEKLY;COUNT=4\r\nEND:VEVENT\r\n"
      "BEGIN:VEVENT\r\nUID:s\r\nSUMMARY:Later\r\nRECURRENCE-ID;RANGE=THISANDFUTURE:20240513T080000Z\r\n"
      "DTSTART:20240517T080000Z\r\nDTEND:20240517T090000Z\r\nEND:VEVENT\r\nEND:VCALENDAR\r\n");
  file.close();
  calendar::IcalendarStore icalendar({{u"c"_s, u"Calendar"_s, u"Mailbox"_s, files.path()}});
  calendar::Query query;
  query.expandSeries = true;
  query.zone = QTimeZone::utc();
  query.startFrom = QDateTime(QDate(2024, 5, 20), QTime(0, 0), Qt::UTC);
  query.startTo = query.startFrom.addDays(6);
  const QList<calendar::Item> shown = icalendar.items(u"c"_s, query);
  ASSERT_EQ(shown.size(), 1);
  EXPECT_EQ(shown[0].key.recurrenceId.left(8), u"20240520");
  const auto found = itemOfKey(icalendar, u"c"_s, shown[0].key, shown[0].start);
  ASSERT_TRUE(found);
  EXPECT_EQ(found->tag, shown[0].tag);
}

TEST_F(EntryId, OfWhatIsGoneIsAFailure) {
  const auto item = add(appointment(u"one"_s, u"2024-05-13 09:00"_s));
  memory->removeByAnother(folder, item->stored().key);
  EXPECT_EQ(failureOf([&] { calendarFolder()->GetItemFromID(item->EntryID()); }), calendar::errNotFound);
  EXPECT_EQ(failureOf([&] { calendarFolder()->GetItemFromID(u"nonsense"_s); }), calendar::errNotFound);
}

TEST_F(EntryId, OfAFolderFindsIt) {
  const NameSpace session({store}, std::make_shared<const Session>());
  EXPECT_EQ(session.GetFolderFromID(folder)->Name(), u"Calendar");
  EXPECT_EQ(failureOf([&] { session.GetFolderFromID(u"none"_s); }), calendar::errNotFound);
}

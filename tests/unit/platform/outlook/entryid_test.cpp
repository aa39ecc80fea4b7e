#include "platform/outlook/entryid.h"

#include "calendarfixture.h"

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

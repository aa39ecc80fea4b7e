#include "tests/unit/platform/outlook/calendarfixture.h"

using namespace Qt::StringLiterals;
using namespace platform;
using namespace platform::outlook;
using Operation = calendar::FailingStore::Operation;

namespace {

/// An appointment that is changed here and by somebody else.
class ConflictTest : public tests::CalendarTest {
 protected:
  ConflictTest() {
    calendar::Item first = appointment(u"First"_s, u"2024-05-15 09:00"_s);
    first.categoriesText = u";Acme"_s;
    first.categories = {u"Acme"_s};
    item = add(first);
  }
  void theyChange(const calendar::Change& change) {
    memory->changeByAnother(folder, item->stored().key, change);
  }
  /// The lines behind the store's own description.
  QStringList told() {
    try {
      item->Save();
    } catch (const Failure& failure) {
      number = failure.number();
      const QStringList lines = failure.description().split(u"\r\n"_s);
      description = lines.first();
      return lines.mid(1);
    }
    ADD_FAILURE() << "It was saved.";
    return {};
  }
  std::shared_ptr<AppointmentItem> item;
  qint32 number = 0;
  QString description;
};

TEST_F(ConflictTest, TellsWhatWasToBeWrittenAndWhatStandsInTheCalendar) {
  item->setSubject(u"Mine"_s);
  item->setDuration(150);
  calendar::Change theirs;
  theirs.subject = u"Theirs"_s;
  theyChange(theirs);
  EXPECT_EQ(told(), (QStringList{u"Subject: to be written \"Mine\", in the calendar now \"Theirs\""_s,
                                 u"Duration: to be written 150 minutes, in the calendar now 60 minutes"_s}));
  EXPECT_EQ(number, calendar::errChangedMeanwhile);
  EXPECT_EQ(description,
            u"\"Theirs\" has been changed by another program meanwhile. (calendar \"Calendar\")"_s);
}

TEST_F(ConflictTest, TellsWhatSomebodyElseChangedThatWasNotToBeWritten) {
  item->setSubject(u"Mine"_s);
  calendar::Change theirs;
  theirs.start = local(u"2024-05-15 10:30"_s);
  theirs.sensitivity = calendar::Sensitivity::Private;
  theyChange(theirs);
  EXPECT_EQ(told(), (QStringList{
                        u"Subject: to be written \"Mine\", in the calendar now \"First\""_s,
                        u"Start: when read 5/15/2024 9:00:00 AM, in the calendar now 5/15/2024 10:30:00 AM"_s,
                        u"Sensitivity: when read normal, in the calendar now private"_s}));
}

TEST_F(ConflictTest, SaysWhereBothWantedTheSame) {
  item->setBillingInformation(u"5/15/2024"_s);
  item->setCategories(u";Beta"_s);
  calendar::Change theirs;
  theirs.billingInformation = u"5/15/2024"_s;
  theyChange(theirs);
  EXPECT_EQ(
      told(),
      (QStringList{u"Categories: to be written \";Beta\", in the calendar now \";Acme\""_s,
                   u"Billing information: to be written \"5/15/2024\", which stands in the calendar now"_s}));
}

TEST_F(ConflictTest, ShortensWhatIsLong) {
  item->setBody(u"mine\r\n"_s + QString(500, u'x'));
  calendar::Change theirs;
  theirs.body = u"theirs"_s;
  theyChange(theirs);
  EXPECT_EQ(told(), QStringList{u"Text: to be written \"mine "_s + QString(195, u'x') +
                                u"\u2026\", in the calendar now \"theirs\""_s});
}

TEST_F(ConflictTest, NamesWholeDays) {
  item->setAllDayEvent(true);
  calendar::Change theirs;
  theirs.durationMinutes = 30;
  theyChange(theirs);
  EXPECT_EQ(told().last(), u"Duration: to be written the whole day, in the calendar now 30 minutes"_s);
}

TEST_F(ConflictTest, NamesThePropertiesThatWereToBeWritten) {
  item->userProperties().Add(u"Colour"_s, 1)->setValue(u"red"_s);
  calendar::Change theirs;
  theirs.userProperties.insert(u"Colour"_s, {1, u"blue"_s});
  theirs.userProperties.insert(u"Size"_s, {1, u"7"_s});
  theyChange(theirs);
  EXPECT_EQ(told(), QStringList{u"Colour: to be written \"red\", in the calendar now \"blue\""_s});
}

TEST_F(ConflictTest, OfARemovedAppointmentTellsAllThatWasToBeWritten) {
  item->setSubject(u"Mine"_s);
  item->setDuration(90);
  memory->removeByAnother(folder, item->stored().key);
  EXPECT_EQ(told(),
            (QStringList{u"It stands in the calendar no longer. This was to be written:"_s,
                         u"Subject: \"Mine\""_s, u"Start: 5/15/2024 9:00:00 AM"_s, u"Duration: 90 minutes"_s,
                         u"Categories: \";Acme\""_s, u"Sensitivity: normal"_s}));
  EXPECT_EQ(number, calendar::errNotFound);
}

TEST_F(ConflictTest, WritesNothingAndKeepsWhatWasToBeWritten) {
  item->setSubject(u"Mine"_s);
  calendar::Change theirs;
  theirs.subject = u"Theirs"_s;
  theyChange(theirs);
  EXPECT_FALSE(told().isEmpty());
  EXPECT_EQ(items().Item(1)->Subject(), u"Theirs"_s);
  EXPECT_EQ(item->Subject(), u"Mine"_s);
}

TEST_F(ConflictTest, IsToldAsItIsWhereTheCalendarCannotBeReadAnyMore) {
  item->setSubject(u"Mine"_s);
  calendar::Change theirs;
  theirs.subject = u"Theirs"_s;
  theyChange(theirs);
  store->failAlways(Operation::Items, broken);
  EXPECT_EQ(told(), QStringList{});
  EXPECT_EQ(number, calendar::errChangedMeanwhile);
}

TEST_F(ConflictTest, CanBeAskedForWithoutWriting) {
  item->setSubject(u"Mine"_s);
  EXPECT_NO_THROW(item->RefuseIfChanged());
  calendar::Change theirs;
  theirs.subject = u"Theirs"_s;
  theyChange(theirs);
  EXPECT_EQ(failureOf([&] { item->RefuseIfChanged(); }), calendar::errChangedMeanwhile);
  memory->removeByAnother(folder, item->stored().key);
  EXPECT_EQ(failureOf([&] { item->RefuseIfChanged(); }), calendar::errNotFound);
}

TEST_F(ConflictTest, OtherFailuresStayAsTheyAre) {
  item->setSubject(u"Mine"_s);
  store->failAlways(Operation::Save, broken);
  EXPECT_EQ(told(), QStringList{});
  EXPECT_EQ(description, broken.description());
}

}  // namespace

#include "tests/unit/platform/outlook/calendarfixture.h"

using namespace Qt::StringLiterals;
using namespace platform;
using namespace platform::outlook;
using basic::Date;
using Operation = calendar::FailingStore::Operation;

namespace {

class AppointmentTest : public tests::CalendarTest {
 protected:
  /// Monday to Thursday, 13 to 16 May 2024, 09:00.
  calendar::ItemKey addSeries() {
    return memory->addSeries(folder, appointment(u"Stand-up"_s, u"2024-05-13 09:00"_s),
                             {calendar::Recurrence::Unit::Day, 1, 4, {}});
  }
};

}  // namespace

// --- reading
// -------------------------------------------------------------------------------------------------------

TEST_F(AppointmentTest, ShowsWhatTheStoreHolds) {
  calendar::Item item = appointment(u"A"_s, u"2024-05-15 09:30"_s, 90);
  item.body = u"Text\r\n"_s;
  item.sensitivity = calendar::Sensitivity::Private;
  item.billingInformation = u"2024-05-16"_s;
  const auto shownItem = add(item);
  EXPECT_EQ(shownItem->Subject(), u"A"_s);
  EXPECT_EQ(shownItem->Body(), u"Text\r\n"_s);
  EXPECT_EQ(shown(shownItem->Start()), u"2024-05-15 09:30:00"_s);
  EXPECT_EQ(shownItem->Duration(), 90);
  EXPECT_EQ(shownItem->Sensitivity(), 2);
  EXPECT_EQ(shownItem->BillingInformation(), u"2024-05-16"_s);
  EXPECT_FALSE(shownItem->AllDayEvent());
  EXPECT_FALSE(shownItem->IsRecurring());
  EXPECT_FALSE(shownItem->ZoneUnknown());
  EXPECT_EQ(shownItem->MessageClass(), u"IPM.Appointment"_s);
}

TEST_F(AppointmentTest, TheStartStandsOnTheUsersClock) {
  add(appointment(u"A"_s, u"2024-05-15 09:00"_s, 60, "America/New_York"));
  EXPECT_EQ(shown(items().Item(u"A"_s)->Start()), u"2024-05-15 15:00:00"_s);
  world.setTime(QDateTime(QDate(2024, 5, 15), QTime(10, 0)), "Asia/Tokyo");
  EXPECT_EQ(shown(items().Item(u"A"_s)->Start()), u"2024-05-15 22:00:00"_s);
}

TEST_F(AppointmentTest, OnDaysOf23And25HoursTheClockIsRight) {
  add(appointment(u"Spring"_s, u"2024-03-31 00:30"_s, 180));
  EXPECT_EQ(shown(items().Item(u"Spring"_s)->Start()), u"2024-03-31 00:30:00"_s);
  EXPECT_EQ(items().Item(u"Spring"_s)->Duration(), 180);
  calendar::Item autumn = appointment(u"Autumn"_s, u"2024-10-27 00:30"_s);
  autumn.end = autumn.start.addSecs(4 * 3600);
  add(autumn);
  EXPECT_EQ(shown(items().Item(u"Autumn"_s)->Start()), u"2024-10-27 00:30:00"_s);
  EXPECT_EQ(items().Item(u"Autumn"_s)->Duration(), 240);
  // both of the two half past twos show as such
  calendar::Item twice = appointment(u"Second"_s, u"2024-10-27 03:00"_s);
  twice.start = twice.start.addSecs(-1800);
  add(twice);
  EXPECT_EQ(shown(items().Item(u"Second"_s)->Start()), u"2024-10-27 02:30:00"_s);
}

TEST_F(AppointmentTest, AnAllDayEventStartsAtMidnightOfItsDateInEveryZone) {
  for (const char* zone : {"Europe/Stockholm", "America/New_York", "Pacific/Kiritimati"}) {
    world.setTime(QDateTime(QDate(2024, 5, 15), QTime(10, 0)), zone);
    if (items().Count() == 0) add(wholeDay(u"A"_s, QDate(2024, 3, 31), 2));
    const auto item = items().Item(u"A"_s);
    EXPECT_TRUE(item->AllDayEvent());
    EXPECT_EQ(shown(item->Start()), u"2024-03-31 00:00:00"_s) << zone;
    EXPECT_EQ(item->Duration(), 2880) << zone;
  }
}

TEST_F(AppointmentTest, AnItemWithoutAKnownZoneSaysSo) {
  calendar::Item item = appointment(u"A"_s, u"2024-05-15 09:00"_s);
  item.zoneUnknown = true;
  EXPECT_TRUE(add(item)->ZoneUnknown());
}

TEST_F(AppointmentTest, CategoriesOfAnotherProgramAreJoinedByTheListSeparatorAndABlank) {
  calendar::Item item = appointment(u"A"_s, u"2024-05-15 09:00"_s);
  item.categories = {u"Acme"_s, u"Phone"_s};
  add(item);
  EXPECT_EQ(items().Item(u"A"_s)->Categories(), u"Acme, Phone"_s);
  world.setLocale(u"sv_SE"_s);
  EXPECT_EQ(items().Item(u"A"_s)->Categories(), u"Acme; Phone"_s);
}

TEST_F(AppointmentTest, ATextOfCategoriesThatWasSetIsShownAsItIs) {
  calendar::Item item = appointment(u"A"_s, u"2024-05-15 09:00"_s);
  item.categories = {u"Acme"_s, u"Phone"_s};
  item.categoriesText = u";Acme;Phone"_s;
  EXPECT_EQ(add(item)->Categories(), u";Acme;Phone"_s);
}

TEST_F(AppointmentTest, AnEmptyTextOfCategoriesHidesTheNames) {
  calendar::Item item = appointment(u"A"_s, u"2024-05-15 09:00"_s);
  item.categories = {u"Acme"_s};
  item.categoriesText = u""_s;
  EXPECT_EQ(add(item)->Categories(), QString());
}

TEST_F(AppointmentTest, TheMessageClassFollowsFromTheKind) {
  const calendar::ItemKey series = addSeries();
  memory->addException(folder, series, u"20240514T090000"_s, appointment(u"Moved"_s, u"2024-05-14 11:00"_s));
  const auto all = walk();
  ASSERT_EQ(all.size(), 4);
  EXPECT_EQ(all[0]->MessageClass(), u"IPM.Appointment"_s);
  EXPECT_EQ(all[1]->MessageClass(), u"IPM.OLE.CLASS.{00061055-0000-0000-C000-000000000046}"_s);
  EXPECT_TRUE(all[0]->IsRecurring());
  EXPECT_TRUE(all[1]->IsRecurring());
  EXPECT_TRUE(items().Item(u"Stand-up"_s)->IsRecurring());
  EXPECT_EQ(items().Item(u"Stand-up"_s)->MessageClass(), u"IPM.Appointment"_s);
}

TEST_F(AppointmentTest, AnItemsOwnMessageClassComesFirst) {
  calendar::Item item = appointment(u"A"_s, u"2024-05-15 09:00"_s);
  item.messageClass = u"IPM.Appointment.Custom"_s;
  EXPECT_EQ(add(item)->MessageClass(), u"IPM.Appointment.Custom"_s);
}

TEST_F(AppointmentTest, TheParentOfAnOccurrenceIsItsSeries) {
  calendar::Item master = appointment(u"Stand-up"_s, u"2024-05-13 09:00"_s);
  master.categories = {u"Acme"_s};
  const calendar::ItemKey key =
      memory->addSeries(folder, master, {calendar::Recurrence::Unit::Day, 1, 2, {}});
  memory->addException(folder, key, u"20240514T090000"_s, appointment(u"Moved"_s, u"2024-05-14 11:00"_s));
  for (const auto& item : walk()) {
    ASSERT_TRUE(item->Parent());
    EXPECT_EQ(item->Parent()->Subject(), u"Stand-up"_s);
    EXPECT_EQ(item->Parent()->Categories(), u"Acme"_s);
    EXPECT_EQ(item->Parent()->Parent(), nullptr);
  }
  EXPECT_EQ(add(appointment(u"A"_s, u"2024-05-15 09:00"_s))->Parent(), nullptr);
}

TEST_F(AppointmentTest, TheLengthOfASeriesCanBeChangedWhereItStands) {
  addSeries();
  const auto series = items().Item(u"Stand-up"_s);
  const basic::Date start = series->Start();
  series->setDuration(45);
  series->Save();
  EXPECT_EQ(series->Duration(), 45);
  EXPECT_EQ(series->Start(), start);
  EXPECT_EQ(items().Item(u"Stand-up"_s)->Duration(), 45);
}

TEST_F(AppointmentTest, ASeriesThatIsGoneFails) {
  const calendar::ItemKey key = addSeries();
  const auto occurrence = walk().value(0);
  memory->removeByAnother(folder, key);
  EXPECT_EQ(failureOf([&] { occurrence->Parent(); }), calendar::errNotFound);
}

TEST_F(AppointmentTest, AMeetingRequestLeadsToItsAppointment) {
  calendar::Item request = appointment(u"Request"_s, u"2024-05-15 09:00"_s);
  request.messageClass = classMeetingRequest;
  memory->addMeetingRequest(folder, request, appointment(u"Meeting"_s, u"2024-05-15 14:00"_s));
  const auto item = items().Item(u"Request"_s);
  EXPECT_EQ(item->MessageClass(), u"IPM.Schedule.Meeting.Request"_s);
  const auto associated = item->GetAssociatedAppointment(false);
  ASSERT_TRUE(associated);
  EXPECT_EQ(associated->Subject(), u"Meeting"_s);
  associated->setCategories(u",Acme"_s);
  associated->Save();
  EXPECT_EQ(items().Item(u"Request"_s)->GetAssociatedAppointment(false)->Categories(), u",Acme"_s);
}

TEST_F(AppointmentTest, NoAppointmentStandsBehindAnOrdinaryItem) {
  EXPECT_EQ(add(appointment(u"A"_s, u"2024-05-15 09:00"_s))->GetAssociatedAppointment(false), nullptr);
}

// --- changing
// ------------------------------------------------------------------------------------------------------

TEST_F(AppointmentTest, ChangesShowAtOnceAndReachTheStoreWithSave) {
  const auto item = add(appointment(u"A"_s, u"2024-05-15 09:00"_s));
  item->setSubject(u"B"_s);
  item->setBody(u"Body\r\n"_s);
  item->setStart(Date::of(2024, 5, 16).addDays(0.5));
  item->setDuration(30);
  item->setCategories(u",Acme,Phone"_s);
  item->setBillingInformation(u"2024-05-20 12:00:00"_s);
  const auto check = [&](const AppointmentItem& seen) {
    EXPECT_EQ(seen.Subject(), u"B"_s);
    EXPECT_EQ(seen.Body(), u"Body\r\n"_s);
    EXPECT_EQ(shown(seen.Start()), u"2024-05-16 12:00:00"_s);
    EXPECT_EQ(seen.Duration(), 30);
    EXPECT_EQ(seen.Categories(), u",Acme,Phone"_s);
    EXPECT_EQ(seen.BillingInformation(), u"2024-05-20 12:00:00"_s);
  };
  check(*item);
  EXPECT_EQ(items().Item(1)->Subject(), u"A"_s);
  item->Save();
  check(*item);
  check(*items().Item(1));
}

TEST_F(AppointmentTest, SavingWithoutAChangeAsksNothingOfTheStore) {
  const auto item = add(appointment(u"A"_s, u"2024-05-15 09:00"_s));
  item->Save();
  EXPECT_EQ(store->calls(Operation::Save), 0);
  item->setSubject(u"B"_s);
  item->Save();
  item->Save();
  EXPECT_EQ(store->calls(Operation::Save), 1);
}

TEST_F(AppointmentTest, ANewStartKeepsTheDuration) {
  const auto item = add(appointment(u"A"_s, u"2024-03-30 01:00"_s, 180));
  item->setStart(Date::of(QDate(2024, 3, 31), QTime(1, 0)));
  EXPECT_EQ(item->Duration(), 180);
  item->Save();
  EXPECT_EQ(items().Item(u"A"_s)->Duration(), 180);
  EXPECT_EQ(shown(items().Item(u"A"_s)->Start()), u"2024-03-31 01:00:00"_s);
}

TEST_F(AppointmentTest, AStartThatTheClocksJumpOverMovesOnByTheJump) {
  const auto item = add(appointment(u"A"_s, u"2024-05-15 09:00"_s));
  item->setStart(Date::of(QDate(2024, 3, 31), QTime(2, 30)));
  item->Save();
  EXPECT_EQ(shown(items().Item(u"A"_s)->Start()), u"2024-03-31 03:30:00"_s);
}

TEST_F(AppointmentTest, ADurationAloneKeepsTheStart) {
  const auto item = add(appointment(u"A"_s, u"2024-05-15 09:00"_s, 60, "America/New_York"));
  item->setDuration(45);
  item->Save();
  EXPECT_EQ(shown(items().Item(u"A"_s)->Start()), u"2024-05-15 15:00:00"_s);
  EXPECT_EQ(items().Item(u"A"_s)->Duration(), 45);
  EXPECT_EQ(failureOf([&] { item->setDuration(-1); }), failure::invalidProcedureCall);
}

TEST_F(AppointmentTest, TheSecondOfTwoEqualTimesStaysTheSecondWhenTheDurationChanges) {
  calendar::Item twice = appointment(u"A"_s, u"2024-10-27 03:00"_s);
  twice.start = twice.start.addSecs(-1800);
  const auto item = add(twice);
  item->setDuration(15);
  item->Save();
  EXPECT_EQ(memory->items(folder, {}).value(0).start, twice.start);
}

TEST_F(AppointmentTest, HoursMakeAnAllDayEventAnAppointmentFromMidnightOn) {
  const auto item = add(wholeDay(u"A"_s, QDate(2024, 5, 15)));
  item->setDuration(240);
  EXPECT_FALSE(item->AllDayEvent());
  EXPECT_EQ(item->Duration(), 240);
  EXPECT_EQ(shown(item->Start()), u"2024-05-15 00:00:00"_s);
  item->Save();
  const auto stored = items().Item(u"A"_s);
  EXPECT_FALSE(stored->AllDayEvent());
  EXPECT_EQ(stored->Duration(), 240);
  EXPECT_EQ(shown(stored->Start()), u"2024-05-15 00:00:00"_s);
}

TEST_F(AppointmentTest, WholeDaysKeepAnAllDayEventOne) {
  const auto item = add(wholeDay(u"A"_s, QDate(2024, 5, 15)));
  item->setDuration(2880);
  item->Save();
  EXPECT_TRUE(items().Item(u"A"_s)->AllDayEvent());
  EXPECT_EQ(items().Item(u"A"_s)->Duration(), 2880);
}

TEST_F(AppointmentTest, AnAppointmentCanBecomeAnAllDayEvent) {
  const auto item = add(appointment(u"A"_s, u"2024-05-15 09:00"_s, 1500));
  item->setAllDayEvent(true);
  EXPECT_EQ(shown(item->Start()), u"2024-05-15 00:00:00"_s);
  EXPECT_EQ(item->Duration(), 2880);
  item->Save();
  EXPECT_TRUE(items().Item(u"A"_s)->AllDayEvent());
  EXPECT_EQ(shown(items().Item(u"A"_s)->Start()), u"2024-05-15 00:00:00"_s);
  EXPECT_EQ(items().Item(u"A"_s)->Duration(), 2880);
}

TEST_F(AppointmentTest, AnAllDayEventTakesTheDateOfANewStart) {
  const auto item = add(wholeDay(u"A"_s, QDate(2024, 5, 15)));
  item->setStart(Date::of(QDate(2024, 5, 20), QTime(13, 0)));
  item->Save();
  EXPECT_EQ(shown(items().Item(u"A"_s)->Start()), u"2024-05-20 00:00:00"_s);
  EXPECT_TRUE(items().Item(u"A"_s)->AllDayEvent());
}

TEST_F(AppointmentTest, AnAllDayEventKeepsItsDateWhenOnlyATextChanges) {
  world.setTime(QDateTime(QDate(2024, 5, 15), QTime(10, 0)), "America/New_York");
  const auto item = add(wholeDay(u"A"_s, QDate(2024, 5, 15)));
  item->setBillingInformation(u"paid"_s);
  item->Save();
  EXPECT_EQ(shown(item->Start()), u"2024-05-15 00:00:00"_s);
  EXPECT_EQ(shown(items().Item(u"A"_s)->Start()), u"2024-05-15 00:00:00"_s);
}

TEST_F(AppointmentTest, AFloatingAppointmentKeepsItsClockTimeWhenOnlyATextChanges) {
  calendar::Item floating = appointment(u"A"_s, u"2024-05-15 09:00"_s);
  floating.start = QDateTime(floating.start.date(), floating.start.time(), Qt::LocalTime);
  floating.end = floating.start.addSecs(3600);
  const auto item = add(floating);
  item->setSubject(u"B"_s);
  item->Save();
  EXPECT_EQ(shown(item->Start()), u"2024-05-15 09:00:00"_s);
  EXPECT_EQ(item->Duration(), 60);
}

TEST_F(AppointmentTest, CategoriesAreSplitAtTheListSeparatorForOtherPrograms) {
  const auto item = add(appointment(u"A"_s, u"2024-05-15 09:00"_s));
  item->setCategories(u",Support, Acme;Inc ,,Acme;Inc"_s);
  item->Save();
  EXPECT_EQ(item->stored().categories, (QStringList{u"Support"_s, u"Acme;Inc"_s, u"Acme;Inc"_s}));
  EXPECT_EQ(item->stored().categoriesText, u",Support, Acme;Inc ,,Acme;Inc"_s);
  world.setLocale(u"de_DE"_s);
  item->setCategories(u";Support;Müller, Söhne"_s);
  item->Save();
  EXPECT_EQ(item->stored().categories, (QStringList{u"Support"_s, u"Müller, Söhne"_s}));
}

TEST_F(AppointmentTest, EmptiedCategoriesAreEmptyAndNotAnotherPrograms) {
  calendar::Item item = appointment(u"A"_s, u"2024-05-15 09:00"_s);
  item.categories = {u"Acme"_s};
  const auto edited = add(item);
  edited->setCategories(QString());
  EXPECT_EQ(edited->Categories(), QString());
  edited->Save();
  EXPECT_EQ(items().Item(u"A"_s)->Categories(), QString());
  EXPECT_TRUE(edited->stored().categories.isEmpty());
}

TEST_F(AppointmentTest, AFailedSaveKeepsTheChanges) {
  const auto item = add(appointment(u"A"_s, u"2024-05-15 09:00"_s));
  item->setSubject(u"B"_s);
  item->setDuration(15);
  store->failCall(Operation::Save, 1, broken);
  EXPECT_EQ(failureOf([&] { item->Save(); }), calendar::errStoreBroken);
  EXPECT_EQ(item->Subject(), u"B"_s);
  EXPECT_EQ(item->Duration(), 15);
  EXPECT_EQ(items().Item(1)->Subject(), u"A"_s);
  item->Save();
  EXPECT_EQ(items().Item(1)->Subject(), u"B"_s);
}

TEST_F(AppointmentTest, AnAppointmentThatAnotherProgramChangedIsNotOverwritten) {
  const auto item = add(appointment(u"A"_s, u"2024-05-15 09:00"_s));
  calendar::Change theirs;
  theirs.subject = u"Theirs"_s;
  memory->changeByAnother(folder, item->stored().key, theirs);
  item->setBillingInformation(u"paid"_s);
  EXPECT_EQ(failureOf([&] { item->Save(); }), calendar::errChangedMeanwhile);
  EXPECT_EQ(item->BillingInformation(), u"paid"_s);
}

TEST_F(AppointmentTest, AnAppointmentCanBeSavedAgainAndAgain) {
  const auto item = add(appointment(u"A"_s, u"2024-05-15 09:00"_s));
  for (const QString& subject : {u"B"_s, u"C"_s, u"D"_s}) {
    item->setSubject(subject);
    item->Save();
  }
  EXPECT_EQ(items().Item(1)->Subject(), u"D"_s);
}

TEST_F(AppointmentTest, AnOccurrenceThatBecameAnExceptionKeepsWorking) {
  addSeries();
  const auto all = walk();
  all[1]->setBillingInformation(u"paid"_s);
  all[1]->Save();
  EXPECT_EQ(all[1]->MessageClass(), classException);
  all[1]->setSubject(u"Changed"_s);
  all[1]->Save();
  EXPECT_EQ(all[1]->Parent()->Subject(), u"Stand-up"_s);
  // the others were read before and are still good
  all[2]->setBillingInformation(u"paid too"_s);
  all[2]->Save();
  const auto again = walk();
  ASSERT_EQ(again.size(), 4);
  EXPECT_EQ(again[1]->Subject(), u"Changed"_s);
  EXPECT_EQ(again[1]->BillingInformation(), u"paid"_s);
  EXPECT_EQ(again[2]->BillingInformation(), u"paid too"_s);
  EXPECT_EQ(again[3]->BillingInformation(), QString());
}

TEST_F(AppointmentTest, ClosingSavesOrDropsTheChanges) {
  const auto item = add(appointment(u"A"_s, u"2024-05-15 09:00"_s));
  item->setSubject(u"B"_s);
  item->Close(olDiscard);
  EXPECT_EQ(item->Subject(), u"A"_s);
  item->setSubject(u"C"_s);
  item->Close(olSave);
  EXPECT_EQ(items().Item(1)->Subject(), u"C"_s);
}

TEST_F(AppointmentTest, ANewAppointmentComesWithoutAReminderAndStaysSo) {
  const auto item = items().Add();
  EXPECT_NO_THROW(item->setReminderSet(false));
  EXPECT_EQ(failureOf([&] { item->setReminderSet(true); }), failure::invalidProcedureCall);
  const auto stored = add(appointment(u"A"_s, u"2024-05-15 09:00"_s));
  EXPECT_EQ(failureOf([&] { stored->setReminderSet(false); }), failure::invalidProcedureCall);
}

// What the next start makes of a report that was interrupted.
#include "journalworld.h"
#include "platform/basic/convert.h"
#include "platform/files/posix/systemcalls.h"

using namespace hourbook;
using namespace Qt::StringLiterals;
using tests::JournalWorld;
using FailingCalendar = platform::calendar::FailingStore;

namespace {
constexpr int ok = platform::dialogs::vbOK;
}

class Finishing : public testing::Test {
 protected:
  void addThree() {
    for (const QString& subject : {u"a"_s, u"b"_s, u"c"_s}) w.addComplete(subject);
  }
  /// The rest is reported: each row once, each stamped, and nothing remembered.
  void expectAllIsWell() {
    w.fetchAgain();
    if (w.statuses().contains(w.shell->LNGNOTPOSTED)) {
      w.expectDone();
      w.report();
    }
    EXPECT_EQ(w.storedRows(), w.lastRow - 1);
    EXPECT_FALSE(w.stamped().contains(false));
    EXPECT_EQ(w.journals(), QStringList());
  }
  /// Another program changes the first appointment when it is about to be saved.
  void changeAtTheFirstStamp(const platform::calendar::Change& change) {
    w.calendar->onCall = [this, change](FailingCalendar::Operation operation) {
      if (operation != FailingCalendar::Operation::Save || changed_) return;
      changed_ = true;
      w.memory->changeByAnother(w.folderId, w.keyOf(1), change);
    };
  }
  JournalWorld w;

 private:
  bool changed_ = false;
};

TEST_F(Finishing, StampsInSilenceWhatIsStored) {
  addThree();
  w.crashBeforeTheStamps();
  EXPECT_EQ(w.storedRows(), 3);
  EXPECT_EQ(w.stamped(), QList<bool>({false, false, false}));
  w.start();
  EXPECT_EQ(w.stamped(), QList<bool>({true, true, true}));
  EXPECT_EQ(w.journals(), QStringList());
  expectAllIsWell();
}

TEST_F(Finishing, StampsOnlyTheRowsThatAreStored) {
  addThree();
  w.crashAfterRows(2);
  w.start();
  EXPECT_EQ(w.stamped(), QList<bool>({true, true, false}));
  expectAllIsWell();
}

TEST_F(Finishing, OfARunThatStoredNothingStampsNothing) {
  addThree();
  w.crashAfterRows(0);
  EXPECT_EQ(w.journals().size(), 1);
  w.start();
  EXPECT_EQ(w.stamped(), QList<bool>({false, false, false}));
  EXPECT_EQ(w.journals(), QStringList());
  expectAllIsWell();
}

TEST_F(Finishing, StampsARowWhoseAnswerWasLost) {
  addThree();
  w.plan->rules.append({u"insert into [tblReports]"_s, 1, 1, true, tests::diskFull, {}});
  w.expectFailure(u"fncReportToAccess"_s, u"Not enough space on disk."_s, [&] { w.report(); });
  w.restart();
  EXPECT_EQ(w.stamped(), QList<bool>({true, false, false}));
  w.start();
  EXPECT_EQ(w.stamped(), QList<bool>({true, true, false}));
  expectAllIsWell();
}

TEST_F(Finishing, IsDoneBeforeANewReportToo) {
  addThree();
  w.crashBeforeTheStamps();
  w.report();  // the rows stand in the list as not posted, and are all of them left out now
  EXPECT_EQ(w.storedRows(), 3);
  EXPECT_EQ(w.statuses(), QStringList(3, u"2024-05-15"_s));
  expectAllIsWell();
}

TEST_F(Finishing, OfEqualRowsStampsTheFirstOnes) {
  for (int i = 0; i < 4; ++i) w.addComplete(u"the same"_s);
  w.crashAfterRows(2);
  w.start();
  EXPECT_EQ(w.stamped(), QList<bool>({true, true, false, false}));
  expectAllIsWell();
}

TEST_F(Finishing, TellsRowsThatDifferInOneThingApart) {
  const auto start = QDateTime(QDate(2024, 5, 13), QTime(9, 30), QTimeZone("Europe/Stockholm"));
  w.add({u"x"_s, {u"Beta"_s, u"Website"_s, u"Design"_s}});
  w.add({u"x"_s, {u"Acme"_s, u"Website"_s, u"Design"_s}, u"2.33"_s});
  w.add({u"x"_s, {u"Acme"_s, u"Website"_s, u"Design"_s}, u"1"_s, {}, start.addDays(1)});
  w.add({u"y"_s, {u"Acme"_s, u"Website"_s, u"Design"_s}});
  w.crashAfterRows(1);
  w.start();
  EXPECT_EQ(w.stamped(), QList<bool>({true, false, false, false}));
  expectAllIsWell();
}

TEST_F(Finishing, TakesNoLineOfAnotherPersonOrOfEarlierForItsOwn) {
  addThree();
  w.expectDone();
  w.report();
  for (const QString& subject : {u"a"_s, u"b"_s, u"c"_s}) w.addComplete(subject);  // the same once more
  w.crashAfterRows(0);
  w.other()->execute(u"insert into tblPersons (strPersonName) values ('John Roe')"_s);
  w.other()->execute(
      u"insert into tblReports (numHours, strSubject, dtmDate, intPersonID, intMeta1ID, intMeta2ID, "
      u"intMeta3ID) "
      "select numHours, strSubject, dtmDate, 2, intMeta1ID, intMeta2ID, intMeta3ID from tblReports"_s);
  w.start();
  EXPECT_EQ(w.stamped(), QList<bool>({true, true, true, false, false, false}));
}

TEST_F(Finishing, KnowsRowsOfOddNames) {
  for (const QString& subject :
       {QString(u"it's"_s), QString(u"  blanks "_s), QString(u"Ünïcödé 週次 😀"_s), QString(300, u'ö'),
        QString(u"'; drop table tblReports; --"_s), QString(QChar(0xd83d)), QString(u"?"_s), QString(u""_s)})
    w.addComplete(subject);
  w.crashBeforeTheStamps();
  w.start();
  EXPECT_FALSE(w.stamped().contains(false));
  expectAllIsWell();
}

TEST_F(Finishing, KnowsRowsWhoseLettersTheDatabaseHasLost) {
  w.addComplete(u"Ünïcödé 週次"_s);
  w.addComplete(u"Unicode"_s);
  w.crashAfterRows(1);
  w.other()->execute(u"update tblReports set strSubject = '?n?c?d? ?'"_s);
  w.start();
  EXPECT_EQ(w.stamped(), QList<bool>({true, false}));
}

TEST_F(Finishing, KnowsRowsWhoseLettersTheDatabaseHasPutLikeOnesFor) {
  w.addComplete(u"Łódź"_s);
  w.addComplete(u"Lodz x"_s);
  w.crashAfterRows(1);
  w.other()->execute(u"update tblReports set strSubject = 'Lodz '"_s);
  w.start();
  EXPECT_EQ(w.stamped(), QList<bool>({true, false}));
}

TEST_F(Finishing, WorksAlsoWhereTheCommonSettingsNameATargetBeyondTheDatabases) {
  addThree();
  hourbook::reportTarget().ReportTo = 4;  // and the file is reported to all the same
  w.crashBeforeTheStamps();
  EXPECT_EQ(w.journals().size(), 1);
  w.start();
  EXPECT_EQ(w.stamped(), QList<bool>({true, true, true}));
  EXPECT_EQ(w.journals(), QStringList());
}

TEST_F(Finishing, OfARunWhoseDatabaseCannotBeAskedLetsNothingBeReported) {
  addThree();
  w.crashBeforeTheStamps();
  w.plan->failContaining(u"where intReportID >"_s, tests::diskFull);
  w.world.dialogs.expect(u"cannot be asked: Not enough space on disk."_s, ok);
  w.world.dialogs.expect(
      u"It cannot be found out what an interrupted report has stored. Nothing was reported."_s, ok);
  w.report();
  EXPECT_EQ(w.storedRows(), 3);
  EXPECT_EQ(w.run().rows.size(), 3);
  w.plan->clear();
  w.start();
  EXPECT_EQ(w.stamped(), QList<bool>({true, true, true}));
}

TEST_F(Finishing, OfAJournalThatCannotBeReadNowWaitsUntilItCan) {
  addThree();
  w.crashBeforeTheStamps();
  {
    platform::files::SystemCalls calls = platform::files::SystemCalls::ofTheSystem();
    calls.read = [](int, void*, size_t) -> ssize_t {
      errno = EIO;
      return -1;
    };
    const platform::files::ScopedSystemCalls scope(calls);
    w.world.dialogs.expect(u"The journal of an interrupted report cannot be read now: "_s, ok);
    w.start();
  }
  EXPECT_EQ(w.journals().size(), 1);
  w.start();
  EXPECT_EQ(w.stamped(), QList<bool>({true, true, true}));
}

TEST_F(Finishing, AReportWithoutACompleteRowFailsAsWithoutAJournal) {
  w.add({u"half"_s, {u"Acme"_s}});
  w.expectFailure(u"Report"_s, u"Either BOF or EOF is True"_s, [&] { w.report(); });
  EXPECT_FALSE(w.world.dialogs.shown.last().text.contains(u"will be stamped"_s));
}

TEST_F(Finishing, StampsWithTheMomentOfTheReportANightLater) {
  addThree();
  w.world.setTime(QDateTime(QDate(2024, 5, 31), QTime(23, 59, 58)));
  w.crashBeforeTheStamps();
  w.world.setTime(QDateTime(QDate(2024, 6, 1), QTime(8, 0)));
  w.start();
  EXPECT_EQ(w.stamp(1), u"5/31/2024 11:59:58 PM"_s) << "as a report that was not interrupted would have";
  expectAllIsWell();
}

TEST_F(Finishing, DoesNotMindAnotherZoneAndAnotherLocale) {
  addThree();
  w.crashBeforeTheStamps();
  w.world.setLocale(u"de_DE"_s);
  w.world.setTime(QDateTime(QDate(2024, 5, 14), QTime(22, 0)), "Pacific/Kiritimati");
  w.start();
  EXPECT_EQ(w.stamp(1), u"15.05.2024 10:00:00"_s);
  EXPECT_FALSE(w.stamped().contains(false));
}

TEST_F(Finishing, LeavesAStampAsItIs) {
  addThree();
  w.calendar->failCall(FailingCalendar::Operation::Save, 2, tests::denied);
  w.expectFailure(u"Report"_s, u"The file cannot be written."_s, [&] { w.report(); });
  w.restart();
  const QString stamp = w.stamp(1);
  w.world.setTime(QDateTime(QDate(2024, 5, 16), QTime(8, 0)));
  w.start();
  EXPECT_EQ(w.stamp(1), stamp);
  EXPECT_FALSE(w.stamped().contains(false));
}

TEST_F(Finishing, LeavesAStampThatAnotherComputerHasSetOnAnotherDay) {
  addThree();
  w.crashAfterRows(2);
  platform::calendar::Change stamped;
  stamped.billingInformation = u"5/3/2024 7:00:00 AM"_s;
  w.memory->changeByAnother(w.folderId, w.keyOf(1), stamped);  // its row stands
  w.memory->changeByAnother(w.folderId, w.keyOf(3), stamped);  // its row does not
  w.world.setTime(QDateTime(QDate(2024, 5, 16), QTime(8, 0)));
  w.start();
  EXPECT_EQ(w.stamp(1), u"5/3/2024 7:00:00 AM"_s);
  EXPECT_EQ(w.stamp(3), u"5/3/2024 7:00:00 AM"_s);
  EXPECT_EQ(w.stamped(), QList<bool>({true, true, true}));
  EXPECT_EQ(w.journals(), QStringList());
  w.report();  // the list still shows them as not posted, and none of them goes out
  EXPECT_EQ(w.storedRows(), 2);
}

TEST_F(Finishing, TellsWhatAnotherComputerHasReportedAsWell) {
  addThree();
  w.crashBeforeTheStamps();
  platform::calendar::Change stamped;
  stamped.billingInformation = u"5/3/2024 7:00:00 AM"_s;
  w.memory->changeByAnother(w.folderId, w.keyOf(1), stamped);
  w.memory->changeByAnother(w.folderId, w.keyOf(2), stamped);  // by hand, as it has no second line
  w.other()->execute(
      u"insert into tblReports (numHours, strSubject, dtmDate, intPersonID, intMeta1ID, intMeta2ID, "
      u"intMeta3ID) select numHours, strSubject, dtmDate, intPersonID, intMeta1ID, intMeta2ID, intMeta3ID "
      "from tblReports where strSubject = 'a'"_s);
  w.world.dialogs.expect(u"The database has a second line of each"_s, ok);
  w.start();
  const QString text = w.world.dialogs.shown.last().text;
  EXPECT_TRUE(text.endsWith(u"has to be removed there:\r\n\"a\" (2024-05-13)"_s)) << qPrintable(text);
  EXPECT_EQ(w.stamp(1), u"5/3/2024 7:00:00 AM"_s);
  EXPECT_EQ(w.stamped(), QList<bool>({true, true, true}));
  EXPECT_EQ(w.storedRows(), 4);
  EXPECT_EQ(w.journals(), QStringList());
}

namespace {
/// The rows are known to be stored and could not be stamped, and have been stamped by another computer since.
void stampElsewhere(tests::JournalWorld& w, const QList<int>& rows) {
  w.calendar->failAlways(FailingCalendar::Operation::Save, tests::denied);
  w.world.dialogs.expect(u"was interrupted"_s, ok);
  w.start();
  w.calendar->heal();
  platform::calendar::Change stamped;
  stamped.billingInformation = u"5/3/2024 7:00:00 AM"_s;
  for (const int row : rows) w.memory->changeByAnother(w.folderId, w.keyOf(row), stamped);
}

void addSecondLine(tests::JournalWorld& w, const QString& subject) {
  w.other()->execute(
      u"insert into tblReports (numHours, strSubject, dtmDate, intPersonID, intMeta1ID, intMeta2ID, "
      u"intMeta3ID) select numHours, strSubject, dtmDate, intPersonID, intMeta1ID, intMeta2ID, intMeta3ID "
      "from tblReports where strSubject = '%1'"_s.arg(subject));
}
}  // namespace

TEST_F(Finishing, TellsASecondLineAtTheNextStartWhereTheDatabaseCannotBeAskedNow) {
  addThree();
  w.crashBeforeTheStamps();
  stampElsewhere(w, {1, 2});
  addSecondLine(w, u"a"_s);
  w.plan->onConnect = platform::Failure(platform::sql::errors::connectionFailed, u"No answer within 15 s."_s);
  w.start();  // and no word
  EXPECT_EQ(w.stamped(), QList<bool>({true, true, true}));
  EXPECT_EQ(w.run().rows.size(), 2) << "those that are to be asked about";
  w.addComplete(u"d"_s);
  w.world.dialogs.expect(u"Nothing was reported. Please try again later."_s, ok);
  w.report();  // what were stored now might be taken for a second line
  w.plan->clear();
  w.world.dialogs.expect(u"The database has a second line of each"_s, ok);
  w.start();
  const QString text = w.world.dialogs.shown.last().text;
  EXPECT_TRUE(text.endsWith(u"has to be removed there:\r\n\"a\" (2024-05-13)"_s)) << qPrintable(text);
  EXPECT_EQ(w.journals(), QStringList());
  EXPECT_EQ(w.stamp(1), u"5/3/2024 7:00:00 AM"_s);
  w.start();  // and no word more
}

TEST_F(Finishing, TellsASecondLineWhereTheDatabaseIsLostBetweenTwoQuestions) {
  addThree();
  w.crashBeforeTheStamps();
  platform::calendar::Change stamped;
  stamped.billingInformation = u"5/3/2024 7:00:00 AM"_s;
  w.memory->changeByAnother(w.folderId, w.keyOf(1), stamped);
  addSecondLine(w, u"a"_s);
  w.plan->rules.append({u"where intReportID >"_s, 1, -1, false, tests::diskFull, {}});
  w.start();
  EXPECT_EQ(w.run().rows.size(), 1);
  w.plan->clear();
  w.world.dialogs.expect(u"The database has a second line of each"_s, ok);
  w.start();
  EXPECT_EQ(w.journals(), QStringList());
}

TEST_F(Finishing, TellsASecondLineOnceTheDatabaseOfThatReportIsThePresentOneAgain) {
  addThree();
  w.crashBeforeTheStamps();
  stampElsewhere(w, {1});
  addSecondLine(w, u"a"_s);
  const QString place = w.run().place;
  w.rewrite([](ReportRun& run) { run.place = u"elsewhere"_s; });
  w.start();
  EXPECT_EQ(w.stamped(), QList<bool>({true, true, true}));
  w.addComplete(u"d"_s);
  w.expectDone();
  w.report();  // which that does not keep from reporting
  EXPECT_EQ(w.storedRows(), 5);
  w.rewrite([&](ReportRun& run) { run.place = place; });
  w.world.dialogs.expect(u"The database has a second line of each"_s, ok);
  w.start();
  EXPECT_EQ(w.journals(), QStringList());
}

TEST_F(Finishing, TakesEqualRowsForNoSecondOnesWhenItAsksLater) {
  for (int i = 0; i < 2; ++i) w.addComplete(u"the same"_s);
  w.crashBeforeTheStamps();
  stampElsewhere(w, {2});
  w.plan->onConnect = platform::Failure(platform::sql::errors::connectionFailed, u"No answer within 15 s."_s);
  w.start();
  EXPECT_EQ(w.stamped(), QList<bool>({true, true}));
  EXPECT_EQ(w.run().rows.size(), 2);
  w.plan->clear();
  w.start();  // and no word
  EXPECT_EQ(w.journals(), QStringList());
}

TEST_F(Finishing, TakesAnEqualRowThatWasSettledEarlierForNoSecondOne) {
  for (int i = 0; i < 2; ++i) w.addComplete(u"the same"_s);
  w.crashBeforeTheStamps();
  w.calendar->failCall(FailingCalendar::Operation::Save, 2, tests::denied);
  w.world.dialogs.expect(u"was interrupted"_s, ok);
  w.start();
  w.calendar->heal();
  EXPECT_EQ(w.stamped(), QList<bool>({true, false}));
  platform::calendar::Change stamped;
  stamped.billingInformation = u"5/3/2024 7:00:00 AM"_s;
  w.memory->changeByAnother(w.folderId, w.keyOf(2), stamped);
  w.start();  // and no word
  EXPECT_EQ(w.journals(), QStringList());
}

TEST_F(Finishing, TakesEqualRowsOfItsOwnForNoSecondOnes) {
  for (int i = 0; i < 2; ++i) w.addComplete(u"the same"_s);
  w.crashBeforeTheStamps();
  platform::calendar::Change stamped;
  stamped.billingInformation = u"5/3/2024 7:00:00 AM"_s;
  w.memory->changeByAnother(w.folderId, w.keyOf(1), stamped);
  w.start();  // and no word
  EXPECT_EQ(w.stamped(), QList<bool>({true, true}));
}

TEST_F(Finishing, LeavesAStampThatAnotherComputerSetsAtThatMoment) {
  addThree();
  w.crashBeforeTheStamps();
  platform::calendar::Change change;
  change.billingInformation = u"5/3/2024 7:00:00 AM"_s;
  changeAtTheFirstStamp(change);
  w.start();
  w.calendar->onCall = {};
  EXPECT_EQ(w.stamp(1), u"5/3/2024 7:00:00 AM"_s);
  EXPECT_EQ(w.stamped(), QList<bool>({true, true, true}));
  EXPECT_EQ(w.journals(), QStringList());
}

TEST_F(Finishing, StampsWhatWasChangedMeanwhileAndTellsIt) {
  addThree();
  w.crashBeforeTheStamps();
  platform::calendar::Change change;
  change.subject = u"another b"_s;
  w.memory->changeByAnother(w.folderId, w.keyOf(2), change);
  change = {};
  change.body = u"only notes"_s;
  w.memory->changeByAnother(w.folderId, w.keyOf(3), change);
  w.world.dialogs.expect(u"have been changed since they were reported"_s, ok);
  w.start();
  const QString text = w.world.dialogs.shown.last().text;
  EXPECT_TRUE(text.contains(u"\"b\" (2024-05-13)"_s)) << qPrintable(text);
  EXPECT_FALSE(text.contains(u"\"c\""_s)) << qPrintable(text);
  EXPECT_EQ(w.stamped(), QList<bool>({true, true, true}));
  EXPECT_EQ(w.journals(), QStringList());
}

TEST_F(Finishing, KeepsWhatCannotBeStampedAndTellsItOnce) {
  addThree();
  w.crashBeforeTheStamps();
  w.calendar->failSubject(u"b"_s, tests::denied);
  w.world.dialogs.expect(u"The report of 2024-05-15 10:00 was interrupted."_s, ok);
  w.start();
  const QString text = w.world.dialogs.shown.last().text;
  EXPECT_TRUE(text.contains(u"\"b\" (2024-05-13): The file cannot be written."_s)) << qPrintable(text);
  EXPECT_EQ(w.stamped(), QList<bool>({true, false, true}));
  EXPECT_EQ(w.run().rows.size(), 1);
  w.start();  // in silence
  w.calendar->heal();
  w.start();
  EXPECT_EQ(w.stamped(), QList<bool>({true, true, true}));
  EXPECT_EQ(w.journals(), QStringList());
}

TEST_F(Finishing, AsksTheDatabaseOnlyOnce) {
  addThree();
  w.crashBeforeTheStamps();
  w.calendar->failSubject(u"b"_s, tests::denied);
  w.world.dialogs.expect(u"was interrupted"_s, ok);
  w.start();
  w.plan->statements.clear();
  w.start();
  EXPECT_EQ(w.plan->statements.filter(u"tblReports"_s), QStringList());
}

TEST_F(Finishing, KeepsWhatIsNoLongerInTheCalendar) {
  addThree();
  w.crashBeforeTheStamps();
  w.memory->removeByAnother(w.folderId, w.keyOf(1));
  w.world.dialogs.expect(u"\"a\" (2024-05-13): The appointment is no longer in the calendar \"Calendar\"."_s,
                         ok);
  w.start();
  EXPECT_EQ(w.run().rows.size(), 1);
  EXPECT_EQ(w.stamped(), QList<bool>({false, true, true}));
}

TEST_F(Finishing, KeepsAllWhenTheirCalendarIsMissing) {
  addThree();
  w.crashBeforeTheStamps();
  const auto there = w.outlook->gCalendarFolder;
  w.outlook->gCalendarFolder = nullptr;
  w.world.dialogs.expect(u"The calendar \"%1\" cannot be found."_s.arg(w.folderId), ok);
  w.start();
  EXPECT_EQ(w.run().rows.size(), 3);
  w.outlook->gCalendarFolder = there;
  w.start();
  EXPECT_EQ(w.journals(), QStringList());
  expectAllIsWell();
}

TEST_F(Finishing, TriesAgainWhenTheAppointmentChangesAtThatMoment) {
  addThree();
  w.crashBeforeTheStamps();
  platform::calendar::Change change;
  change.body = u"by another"_s;
  changeAtTheFirstStamp(change);
  w.start();
  w.calendar->onCall = {};
  EXPECT_EQ(w.stamped(), QList<bool>({true, true, true}));
}

TEST_F(Finishing, WithoutTheDatabaseKeepsTheJournal) {
  addThree();
  w.crashBeforeTheStamps();
  ASSERT_TRUE(QFile::rename(w.path(), w.path() + u".away"_s));
  w.world.dialogs.expect(u"It is not known whether these appointments were reported:"_s, ok);
  w.start();
  EXPECT_TRUE(w.world.dialogs.shown.last().text.contains(u"cannot be asked: There is no database."_s));
  EXPECT_EQ(w.run().rows.size(), 3);
  w.start();
  ASSERT_TRUE(QFile::rename(w.path() + u".away"_s, w.path()));
  w.start();
  EXPECT_EQ(w.journals(), QStringList());
  EXPECT_EQ(w.stamped(), QList<bool>({true, true, true}));
}

TEST_F(Finishing, WithAServerThatCannotBeReachedGoesOnAndAsksItOnceForAllRuns) {
  addThree();
  w.crashBeforeTheStamps();
  const cReportJournal journal(w.journalFolder());
  journal.Add(w.run());
  journal.Add(w.run());
  w.plan->onConnect = platform::Failure(platform::sql::errors::connectionFailed, u"No answer within 15 s."_s);
  w.world.dialogs.expect(u"cannot be asked: No answer within 15 s."_s, ok);
  w.start();
  EXPECT_EQ(w.plan->statements.count(u"connect"_s), 1) << "each try may wait for the server";
  EXPECT_EQ(w.journals().size(), 3);
  EXPECT_FALSE(w.database->gConnection);
  w.start();  // and no word more
  w.plan->clear();
  w.start();
  EXPECT_EQ(w.stamped(), QList<bool>({true, true, true}));
  EXPECT_EQ(w.journals(), QStringList());
}

TEST_F(Finishing, WithAServerThatCannotBeReachedAsksItOnceForSecondLinesOfAllRuns) {
  addThree();
  w.crashBeforeTheStamps();
  platform::calendar::Change stamped;
  stamped.billingInformation = u"5/3/2024 7:00:00 AM"_s;
  for (int row = 1; row <= 3; ++row) w.memory->changeByAnother(w.folderId, w.keyOf(row), stamped);
  w.rewrite([](ReportRun& run) {
    for (ReportedRow& row : run.rows) row.stored = platform::basic::Date::of(2024, 5, 15);
  });
  const cReportJournal journal(w.journalFolder());
  journal.Add(w.run());
  journal.Add(w.run());
  w.plan->onConnect = platform::Failure(platform::sql::errors::connectionFailed, u"No answer within 15 s."_s);
  w.start();  // and no word
  EXPECT_EQ(w.plan->statements.count(u"connect"_s), 1) << "each try may wait for the server";
  EXPECT_EQ(w.journals().size(), 3);
  w.plan->clear();
  w.start();
  EXPECT_EQ(w.journals(), QStringList());
}

TEST_F(Finishing, WithADatabaseThatFailsKeepsTheJournal) {
  addThree();
  w.crashBeforeTheStamps();
  w.plan->failContaining(u"where intReportID >"_s, tests::diskFull);
  w.world.dialogs.expect(u"cannot be asked: Not enough space on disk."_s, ok);
  w.start();
  EXPECT_EQ(w.run().rows.size(), 3);
  EXPECT_FALSE(w.database->gConnection) << "what it opened it closes";
  w.plan->clear();
  w.start();
  EXPECT_EQ(w.stamped(), QList<bool>({true, true, true}));
}

TEST_F(Finishing, OfARunToAnotherDatabaseKeepsTheJournal) {
  addThree();
  w.crashBeforeTheStamps();
  w.rewrite([](ReportRun& run) { run.place = u"microsoft.jet.oledb.4.0 /elsewhere/Hourbook3.mdb"_s; });
  w.world.dialogs.expect(
      u"it was reported to another place than the present one: microsoft.jet.oledb.4.0 /elsewhere"_s, ok);
  w.start();
  EXPECT_EQ(w.stamped(), QList<bool>({false, false, false}));
  EXPECT_EQ(w.run().rows.size(), 3);
}

TEST_F(Finishing, StampsWhatIsKnownToBeStoredWhateverDatabaseIsUsedNow) {
  addThree();
  w.crashBeforeTheStamps();
  w.calendar->failAlways(FailingCalendar::Operation::Save, tests::denied);
  w.world.dialogs.expect(u"was interrupted"_s, ok);
  w.start();
  w.calendar->heal();
  w.rewrite([](ReportRun& run) { run.place = u"elsewhere"_s; });
  w.start();
  EXPECT_EQ(w.stamped(), QList<bool>({true, true, true}));
  EXPECT_EQ(w.journals(), QStringList());
}

TEST_F(Finishing, OfATargetThatCannotBeAskedKeepsTheJournal) {
  addThree();
  w.crashBeforeTheStamps();
  w.rewrite([](ReportRun& run) { run.target = 4; });
  w.world.dialogs.expect(u"another place"_s, ok);
  w.start();
  EXPECT_EQ(w.run().rows.size(), 3);
}

namespace {
/// A target that has every second line, as one beyond the databases may.
class EverySecond : public AskableTarget {
 public:
  QString Place() override { return u"the other place"_s; }
  bool TakeKeys(ReportLine&) override { return true; }
  QJsonObject Mark() override { return {}; }
  QList<std::optional<platform::basic::Date>> Stored(const ReportRun& run) override {
    QList<std::optional<platform::basic::Date>> stored(run.rows.size());
    for (qsizetype i = 0; i < stored.size(); i += 2) stored[i] = platform::basic::Date::of(2024, 5, 1);
    return stored;
  }
};
}  // namespace

TEST_F(Finishing, AsksATargetBeyondTheDatabasesInItsOwnWay) {
  addThree();
  w.reporting->askableTarget = [](qint32) { return std::make_unique<EverySecond>(); };
  w.reporting->subSendToWF = [](platform::ado::Recordset&) { throw tests::diskFull; };
  w.expectFailure(u"Report"_s, u"Not enough space"_s, [&] { w.report(4); });
  w.restart();
  EXPECT_EQ(w.run().target, 4);
  w.start();
  EXPECT_EQ(w.stamped(), QList<bool>({true, false, true}));
  EXPECT_EQ(w.stamp(1), u"5/1/2024"_s);
  EXPECT_EQ(w.journals(), QStringList());
}

TEST_F(Finishing, LeavesARunInProgressToTheProgramThatReports) {
  addThree();
  w.crashBeforeTheStamps();
  const auto theirs = cReportJournal(w.journalFolder()).Lock();
  w.start();
  EXPECT_EQ(w.stamped(), QList<bool>({false, false, false}));
  EXPECT_EQ(w.journals().size(), 1);
}

TEST_F(Finishing, WithoutAnythingToDoTouchesNothing) {
  w.start();
  EXPECT_FALSE(QDir(w.journalFolder()).exists());
  EXPECT_EQ(w.plan->statements, QStringList());
  w.reporting->journalFolder.clear();
  w.start();
}

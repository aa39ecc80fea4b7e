// Which rows a report leaves out, and what it asks before.
#include "journalworld.h"

using namespace hourbook;
using namespace Qt::StringLiterals;
using tests::JournalWorld;

namespace {
constexpr int ok = platform::dialogs::vbOK, yes = platform::dialogs::vbYes, no = platform::dialogs::vbNo;
const QString mayBe = u"These appointments may have been reported already"_s;
const QString shallBe = u"Shall they be stamped as reported"_s;
}  // namespace

class LeftOut : public testing::Test {
 protected:
  LeftOut() {
    for (const QString& subject : {u"a"_s, u"b"_s}) w.addComplete(subject);
  }
  /// Two rows were sent to a database that is not the present one.
  void crashElsewhere() {
    w.crashBeforeTheStamps();
    w.other()->execute(u"delete from tblReports"_s);
    w.rewrite([](ReportRun& run) { run.place = u"elsewhere"_s; });
    w.addComplete(u"c"_s);
    w.world.dialogs.expect(u"was interrupted"_s, ok);
    w.start();
  }
  QStringList storedSubjects() {
    QStringList subjects;
    for (const auto& value : w.stored(u"strSubject"_s)) subjects.append(std::get<QString>(value));
    return subjects;
  }
  JournalWorld w;
};

TEST_F(LeftOut, RowsThatMayBeStoredAreReportedAgainIfTheUserSaysSo) {
  crashElsewhere();
  w.world.dialogs.expect(mayBe, yes);
  w.expectDone();
  w.report();
  EXPECT_EQ(storedSubjects(), QStringList({u"a"_s, u"b"_s, u"c"_s}));
  EXPECT_EQ(w.stamped(), QList<bool>({true, true, true}));
  EXPECT_EQ(w.journals(), QStringList()) << "nothing is left to be asked";
}

TEST_F(LeftOut, RowsThatMayBeStoredStayAsTheyAreOtherwise) {
  crashElsewhere();
  w.world.dialogs.expect(mayBe, no);
  w.world.dialogs.expect(shallBe, no);
  w.expectDone();
  w.report();
  EXPECT_EQ(storedSubjects(), QStringList{u"c"_s});
  EXPECT_EQ(w.stamped(), QList<bool>({false, false, true}));
  EXPECT_EQ(w.statuses(), QStringList({w.shell->LNGNOTPOSTED, w.shell->LNGNOTPOSTED, w.shell->LNGOK}));
  EXPECT_EQ(w.journals().size(), 1) << "they are asked about again";
}

TEST_F(LeftOut, RowsThatMayBeStoredAreStampedIfTheUserKnowsThem) {
  crashElsewhere();
  w.world.dialogs.expect(mayBe, no);
  w.world.dialogs.expect(shallBe, yes);
  w.expectDone();
  w.report();
  EXPECT_EQ(storedSubjects(), QStringList{u"c"_s});
  EXPECT_EQ(w.stamped(), QList<bool>({true, true, true}));
  EXPECT_EQ(w.statuses(), QStringList({u"2024-05-15"_s, u"2024-05-15"_s, w.shell->LNGOK}));
  EXPECT_EQ(w.journals(), QStringList());
}

TEST_F(LeftOut, RowsThatAreStoredAreNotStoredAgainThoughTheyCannotBeStamped) {
  w.crashBeforeTheStamps();
  w.addComplete(u"c"_s);
  w.calendar->failSubject(u"b"_s, tests::denied);
  w.world.dialogs.expect(u"was interrupted"_s, ok);
  w.world.dialogs.expect(u"These appointments are reported already and could only not be stamped."_s, ok);
  w.expectDone();
  w.report();
  EXPECT_EQ(w.storedRows(), 3);
  EXPECT_EQ(storedSubjects(), QStringList({u"a"_s, u"b"_s, u"c"_s}));
  EXPECT_EQ(w.stamped(), QList<bool>({true, false, true}));
  EXPECT_EQ(w.run().rows.size(), 1);
}

TEST_F(LeftOut, RowsThatAnotherProgramHasStampedMeanwhileAreNotStored) {
  platform::calendar::Change change;
  change.billingInformation = u"5/14/2024 8:00:00 AM"_s;
  w.memory->changeByAnother(w.folderId, w.keyOf(1), change);
  w.expectDone();
  w.report();
  EXPECT_EQ(storedSubjects(), QStringList{u"b"_s});
  EXPECT_EQ(w.statuses(), QStringList({u"2024-05-14"_s, w.shell->LNGOK}));
}

TEST_F(LeftOut, AllRowsMeansNoReportAndNoQuestion) {
  platform::calendar::Change change;
  change.billingInformation = u"5/14/2024 8:00:00 AM"_s;
  for (const int row : {1, 2}) w.memory->changeByAnother(w.folderId, w.keyOf(row), change);
  w.report();
  EXPECT_EQ(w.storedRows(), 0);
  EXPECT_TRUE(w.world.dialogs.shown.isEmpty());
}

TEST_F(LeftOut, NothingIsReportedWhileAnotherProgramReports) {
  {
    const auto theirs = cReportJournal(w.journalFolder()).Lock();
    w.world.dialogs.expect(u"Another Hourbook is reporting at the moment. Nothing was reported."_s, ok);
    w.report();
    EXPECT_EQ(w.storedRows(), 0);
    EXPECT_EQ(w.statuses(), QStringList(2, w.shell->LNGNOTPOSTED));
  }
  w.expectDone();
  w.report();
  EXPECT_EQ(w.storedRows(), 2);
}

TEST_F(LeftOut, ACalendarThatCannotBeReadAtThatMomentLetsNothingBeStored) {
  w.calendar->failAlways(platform::calendar::FailingStore::Operation::Items, tests::denied);
  w.expectFailure(u"Report"_s, u"The file cannot be written."_s, [&] { w.report(); });
  EXPECT_EQ(w.storedRows(), 0);
}

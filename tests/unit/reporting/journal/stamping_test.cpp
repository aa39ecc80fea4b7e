// Stamps that a calendar keeps back and writes in one go.
#include "journalworld.h"

using namespace hourbook;
using namespace Qt::StringLiterals;
using tests::JournalWorld;

class StampingInOneGo : public testing::Test {
 protected:
  StampingInOneGo() {
    for (const QString& subject : {u"a"_s, u"b"_s, u"c"_s}) w.addComplete(subject);
    w.holdStamps();
  }
  JournalWorld w;
};

TEST_F(StampingInOneGo, HoldsFromTheFirstStampToTheLast) {
  int saves = -1;
  w.calendar->onCall = [&](platform::calendar::FailingStore::Operation operation) {
    if (operation == platform::calendar::FailingStore::Operation::Save && saves < 0)
      saves = w.holding->flushes;
  };
  w.expectDone();
  w.report();
  EXPECT_EQ(w.holding->holds, 1);
  EXPECT_EQ(w.holding->flushes, 1);
  EXPECT_EQ(saves, 1) << "none was written before";
  EXPECT_EQ(w.stamped(), QList<bool>({true, true, true}));
  EXPECT_EQ(w.statuses(), QStringList(3, w.shell->LNGOK));
  EXPECT_EQ(w.journals(), QStringList());
}

TEST_F(StampingInOneGo, TellsWhatCouldNotBeWrittenAndClaimsNoMore) {
  w.calendar->failSubject(u"b"_s, tests::denied);
  w.expectFailure(u"Report"_s,
                  u"The file cannot be written.\r\nWhat is reported and not stamped yet will be "
                  u"stamped at the next start."_s,
                  [&] { w.report(); });
  EXPECT_EQ(w.statuses(), QStringList({w.shell->LNGOK, u"Not stamped"_s, w.shell->LNGOK}));
  EXPECT_EQ(w.storedRows(), 3);
  EXPECT_EQ(w.stamped(), QList<bool>({true, false, true}));
  w.restart();
  w.start();
  EXPECT_EQ(w.stamped(), QList<bool>({true, true, true}));
  EXPECT_EQ(w.journals(), QStringList());
  w.fetchAgain();
  EXPECT_FALSE(w.statuses().contains(w.shell->LNGNOTPOSTED));
}

TEST_F(StampingInOneGo, CountsWhatCouldNotBeWritten) {
  for (const QString& subject : {u"b"_s, u"c"_s}) w.calendar->failSubject(subject, tests::denied);
  w.expectFailure(u"Report"_s, u"2 appointments could not be stamped."_s, [&] { w.report(); });
}

TEST_F(StampingInOneGo, WritesWhatItHasWhenAStampFails) {
  w.plan->failAfterRows(2, tests::diskFull);
  w.expectFailure(u"fncReportToAccess"_s, u"Not enough space on disk."_s, [&] { w.report(); });
  EXPECT_EQ(w.holding->flushes, 1);
  EXPECT_EQ(w.stamped(), QList<bool>({true, true, false}));
}

TEST_F(StampingInOneGo, OfWhichNothingIsKnownIsFinishedAtTheNextStart) {
  w.holding->failFlush = tests::denied;
  w.expectFailure(u"Report"_s, u"The file cannot be written."_s, [&] { w.report(); });
  EXPECT_EQ(w.statuses(), QStringList(3, u"Not stamped"_s));
  w.holding->failFlush.reset();
  w.holdStamps();  // another process
  w.restart();
  w.start();
  EXPECT_EQ(w.stamped(), QList<bool>({true, true, true}));
}

TEST_F(StampingInOneGo, IsHowTheNextStartStampsToo) {
  w.calendar->failAlways(platform::calendar::FailingStore::Operation::Save, tests::denied);
  w.expectFailure(u"Report"_s, u"The file cannot be written."_s, [&] { w.report(); });
  w.restart();
  w.holding->holds = w.holding->flushes = 0;
  w.calendar->failSubject(u"c"_s, tests::denied);
  w.world.dialogs.expect(u"\"c\" (2024-05-13): The file cannot be written."_s, platform::dialogs::vbOK);
  w.start();
  EXPECT_EQ(w.holding->holds, 1);
  EXPECT_EQ(w.holding->flushes, 1);
  EXPECT_EQ(w.stamped(), QList<bool>({true, true, false}));
}

TEST(Stamping, ThatFailsInTheMiddleSaysSoInTheRow) {
  JournalWorld w;
  for (const QString& subject : {u"a"_s, u"b"_s, u"c"_s}) w.addComplete(subject);
  w.calendar->failSubject(u"b"_s, tests::denied);
  w.expectFailure(u"Report"_s, u"The file cannot be written."_s, [&] { w.report(); });
  EXPECT_EQ(w.statuses(), QStringList({w.shell->LNGOK, u"Not stamped"_s, w.shell->LNGNOTPOSTED}));
}

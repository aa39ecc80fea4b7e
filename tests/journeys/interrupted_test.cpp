// Reports that are interrupted between their rows and their stamps, and the next start.
#include "journey.h"

#include <QDir>
#include <QFile>

namespace tests {
namespace {

using namespace Qt::StringLiterals;

constexpr int todaysMarked = 6;

QStringList journals(const Journey& j) {
  return QDir(j.journal()).entryList({u"report-*.json"_s});
}

/// Presses OK; the stamps of one appointment's file cannot be written.
void reportWithoutAStamp(Journey& j, const QString& file) {
  QFile::setPermissions(file, QFile::ReadOwner);
  j.world.dialogs.expect(sureQuestion, platform::dialogs::vbYes);
  j.world.dialogs.expect(errorReport, platform::dialogs::vbNo);
  EXPECT_ENDS_PROCESS(j.click("cmdOK"));
}

TEST(InterruptedReportJourney, AreFinishedAtTheNextStartBeforeTheListIsShown) {
  Journey j;
  j.start();
  const QString file = j.calendar() + u"/sample-1-0102.ics"_s;
  reportWithoutAStamp(j, file);
  EXPECT_EQ(j.newReports().size(), todaysMarked);
  EXPECT_EQ(journals(j).size(), 1);
  QFile::setPermissions(file, QFile::ReadOwner | QFile::WriteOwner);
  j.start();
  EXPECT_EQ(j.statuses(), QStringList(todaysMarked, u"2024-05-15"_s));
  EXPECT_EQ(journals(j), QStringList());
  j.pressOK();
  EXPECT_EQ(j.newReports().size(), todaysMarked) << "none of them twice";
}

TEST(InterruptedReportJourney, AreToldAndNotReportedTwiceWhereTheyStillCannotBeFinished) {
  Journey j;
  j.start();
  reportWithoutAStamp(j, j.calendar() + u"/sample-1-0102.ics"_s);
  j.world.dialogs.expect(u"These appointments are reported and could not be stamped as reported:"_s,
                         platform::dialogs::vbOK);
  j.start();
  ASSERT_TRUE(j.hasWindow());
  EXPECT_EQ(j.statuses().filter(u"Not Posted"_s).size(), 1);
  j.world.dialogs.expect(sureQuestion, platform::dialogs::vbYes);
  j.world.dialogs.expect(u"These appointments are reported already"_s, platform::dialogs::vbOK);
  j.click("cmdOK");
  EXPECT_EQ(j.newReports().size(), todaysMarked);
}

TEST(InterruptedReportJourney, OfWhichNobodyCanReadTheJournalIsToldAndBlocksNothing) {
  Journey j;
  QDir().mkpath(j.journal());
  outside::write(j.journal() + u"/report-00000001.json"_s, "{\"kind\": \"Hourbook rep");
  j.world.dialogs.expect(u"report-00000001.json.unreadable"_s, platform::dialogs::vbOK);
  j.start();
  EXPECT_EQ(j.rows().size(), todaysMarked);
  j.reportAndStay();
  EXPECT_EQ(j.newReports().size(), todaysMarked);
}

}  // namespace
}  // namespace tests

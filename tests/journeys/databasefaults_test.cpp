#include "journey.h"

#include <QDir>
#include <QFile>

#include <optional>

namespace tests {
namespace {

using namespace Qt::StringLiterals;

/// The state of everything that a report changes.
struct Snapshot {
  explicit Snapshot(const Journey& j) : calendar(outside::files(j.calendar())), reports(j.reportsStored()) {}
  void expectSame(const Journey& j) const {
    EXPECT_EQ(outside::changed(calendar, outside::files(j.calendar())), QStringList{});
    EXPECT_EQ(j.reportsStored(), reports);
  }
  QMap<QString, QByteArray> calendar;
  int reports;
};

constexpr int todaysMarked = 6;

TEST(DatabaseFaultJourney, ALockedDatabaseLeavesEverythingToBeReportedLater) {
  Journey j;
  j.busyTimeout = 50;
  j.start();
  const Snapshot before(j);
  {
    const outside::Lock lock(j.database());
    j.world.dialogs.expect(sureQuestion, platform::dialogs::vbYes);
    j.world.dialogs.expect(errorReport, platform::dialogs::vbNo);
    EXPECT_ENDS_PROCESS(j.click("cmdOK"));
    EXPECT_TRUE(j.world.dialogs.shown.last().text.contains(u"Hourbook3.mdb"_s))
        << qPrintable(j.world.dialogs.shown.last().text);
  }
  before.expectSame(j);
  j.start();
  j.reportAndStay();
  EXPECT_EQ(j.reportsStored(), before.reports + todaysMarked);
  EXPECT_EQ(outside::changed(before.calendar, outside::files(j.calendar())).size(), todaysMarked);
}

TEST(DatabaseFaultJourney, ADatabaseLockedAtTheStartEndsTheProgramWithAReport) {
  Journey j;
  j.busyTimeout = 50;
  const Snapshot before(j);
  {
    const outside::Lock lock(j.database());
    j.world.dialogs.expect(errorReport, platform::dialogs::vbNo);
    EXPECT_ENDS_PROCESS(j.start());
    EXPECT_FALSE(j.hasWindow());
  }
  before.expectSame(j);
}

TEST(DatabaseFaultJourney, ADatabaseThatFailsInTheMiddleKeepsTheStampsOfWhatItHasStored) {
  Journey j;
  outside::run(u"sqlite3"_s,
               {j.database(),
                u"create trigger full before insert on tblReports when new.strSubject like 'Data migr%' "
                "begin select raise(abort, 'the disk is full'); end"_s});
  j.start();
  const QStringList listed = j.subjects();
  ASSERT_EQ(listed.value(2), u"Data migration, second try"_s);
  const Snapshot before(j);
  j.world.dialogs.expect(sureQuestion, platform::dialogs::vbYes);
  j.world.dialogs.expect(errorReport, platform::dialogs::vbNo);
  EXPECT_ENDS_PROCESS(j.click("cmdOK"));
  EXPECT_TRUE(j.world.dialogs.shown.last().text.contains(u"the disk is full"_s));
  EXPECT_EQ(j.newReports(), listed.mid(0, 2));
  EXPECT_EQ(outside::changed(before.calendar, outside::files(j.calendar())),
            (QStringList{u"sample-1-0101.ics"_s, u"sample-1-0102.ics"_s}));
  outside::run(u"sqlite3"_s, {j.database(), u"drop trigger full"_s});
  j.start();
  j.reportAndStay();
  EXPECT_EQ(j.newReports(), listed) << "each of them once";
}

TEST(DatabaseFaultJourney, ADatabaseThatIsGoneAtTheReportLeavesTheAppointmentsUnstamped) {
  Journey j;
  j.start();
  const auto calendar = outside::files(j.calendar());
  ASSERT_TRUE(QFile::rename(j.database(), j.database() + u".away"_s));
  j.world.dialogs.expect(sureQuestion, platform::dialogs::vbYes);
  j.world.dialogs.expect(errorReport, platform::dialogs::vbNo);
  EXPECT_ENDS_PROCESS(j.click("cmdOK"));
  EXPECT_FALSE(QFile::exists(j.database())) << "a new one was made";
  EXPECT_EQ(outside::changed(calendar, outside::files(j.calendar())), QStringList{});
  ASSERT_TRUE(QFile::rename(j.database() + u".away"_s, j.database()));
  j.start();
  j.reportAndStay();
  EXPECT_EQ(j.newReports().size(), todaysMarked);
}

TEST(DatabaseFaultJourney, AnAccessFileIsNamedAndNotTouched) {
  Journey j;
  const QByteArray access = QByteArray("\0\1\0\0Standard Jet DB\0\1\0\0\0", 24) + QByteArray(200000, '\x5a');
  outside::write(j.database(), access);
  const auto folder = outside::files(j.folder() + u"/database"_s);
  j.world.dialogs.expect(u"is a Microsoft Access database"_s, platform::dialogs::vbNo);
  EXPECT_ENDS_PROCESS(j.start());
  EXPECT_FALSE(j.hasWindow());
  ASSERT_FALSE(j.world.dialogs.shown.isEmpty());
  EXPECT_TRUE(j.world.dialogs.shown.last().text.contains(u"Hourbook3.mdb"_s));
  EXPECT_EQ(outside::changed(folder, outside::files(j.folder() + u"/database"_s)), QStringList{});
}

TEST(DatabaseFaultJourney, ADamagedDatabaseIsNamedAndNotTouched) {
  Journey j;
  outside::write(j.database(), "This is no database at all. It is a letter that somebody has saved here.");
  const auto folder = outside::files(j.folder() + u"/database"_s);
  j.world.dialogs.expect(u"Hourbook3.mdb"_s, platform::dialogs::vbNo);
  EXPECT_ENDS_PROCESS(j.start());
  EXPECT_EQ(outside::changed(folder, outside::files(j.folder() + u"/database"_s)), QStringList{});
}

TEST(DatabaseFaultJourney, ADatabaseFolderThatIsMissingCannotBeReached) {
  Journey j;
  const QString folder = j.folder() + u"/database"_s;
  ASSERT_TRUE(QDir(folder).removeRecursively());
  j.world.dialogs.expect(u"Unable to reach \r\n%1\\\\Hourbook3.mdb"_s.arg(folder), platform::dialogs::vbOK);
  EXPECT_ENDS_PROCESS(j.start());
  EXPECT_FALSE(j.hasWindow());
  EXPECT_FALSE(QDir(folder).exists());
}

}  // namespace
}  // namespace tests

#include "platform/files/backups.h"

#include "platform/files/atomicfile.h"
#include "platform/files/posix/systemcalls.h"
#include "tests/unit/platform/files/folder.h"

using namespace platform::files;
using tests::TestFolder;

namespace {

struct Backups : testing::Test {
  TestFolder folder;
  QString path = folder.path(u"work.ics"_qs);
  QString kept = folder.path(u"state/backups"_qs);

  QString keep(const QByteArray& bytes, const BackupLimits& limits = {}) {
    folder.put(u"work.ics"_qs, bytes);
    return keepBackup(path, kept, limits);
  }
  QStringList names() const { return QDir(kept).entryList(QDir::Files | QDir::Hidden, QDir::Name); }
  QByteArrayList contents() const {
    QByteArrayList all;
    for (const QString& name : names()) all.append(folder.content(u"state/backups/"_qs + name));
    return all;
  }
};

}  // namespace

TEST_F(Backups, AreWholeNumberedAndForTheirOwnerOnly) {
  EXPECT_EQ(keep("one"), QString());
  ASSERT_EQ(names().size(), 1);
  EXPECT_TRUE(names().value(0).startsWith(u"work-"_qs) && names().value(0).endsWith(u"-000001.ics"_qs));
  EXPECT_EQ(contents(), QByteArrayList{"one"});
  EXPECT_EQ(folder.mode(u"state/backups/"_qs + names().value(0)), mode_t{0600});
  EXPECT_EQ(folder.content(u"work.ics"_qs), "one");
}

TEST_F(Backups, AreThreeOfWhichTheOldestGoes) {
  for (const char* bytes : {"one", "two", "three", "four", "five"}) EXPECT_EQ(keep(bytes), QString());
  EXPECT_EQ(contents(), (QByteArrayList{"three", "four", "five"}));
}

TEST_F(Backups, TakeAwayWhatACrashHasLeftOfOne) {
  keep("one");
  folder.put(u"state/backups/.work-1-000002.ics.x7k2m9.tmp"_qs, "half");
  folder.setTime(u"state/backups/.work-1-000002.ics.x7k2m9.tmp"_qs, {1'000'000'000, 0});
  EXPECT_EQ(keep("two"), QString());
  EXPECT_EQ(contents(), (QByteArrayList{"one", "two"}));
}

TEST_F(Backups, AreOrderedByNumberWhateverTheClockSays) {
  for (const char* bytes : {"one", "two", "three"}) keep(bytes);
  folder.setTime(u"state/backups/"_qs + names().value(0), {4'000'000'000, 0});
  keep("four");
  EXPECT_EQ(contents(), (QByteArrayList{"two", "three", "four"}));
}

TEST_F(Backups, TakeNoMoreRoomThanTheyMay) {
  const BackupLimits limits{3, 1000};
  keep(QByteArray(400, '1'), limits);
  keep(QByteArray(400, '2'), limits);
  EXPECT_EQ(names().size(), 2);
  keep(QByteArray(700, '3'), limits);
  EXPECT_EQ(contents(), QByteArrayList{QByteArray(700, '3')});
  EXPECT_EQ(keep(QByteArray(1001, '4'), limits),
            path + u": larger than the 1000 bytes that copies may take"_qs);
  EXPECT_EQ(contents(), QByteArrayList{QByteArray(700, '3')});
}

TEST_F(Backups, OfFilesOfOneNameInSeveralFoldersAreApart) {
  ASSERT_TRUE(QDir().mkdir(folder.path(u"other"_qs)));
  folder.put(u"other/work.ics"_qs, "other");
  for (const char* bytes : {"one", "two", "three"}) keep(bytes);
  EXPECT_EQ(keepBackup(folder.path(u"other/work.ics"_qs), kept), QString());
  EXPECT_EQ(names().size(), 4);
}

TEST_F(Backups, OfAllCalendarsTogetherTakeNoMoreRoomThanTheyMay) {
  const BackupLimits limits{3, 1000};
  const auto keepOther = [&](const QString& name, const QByteArray& bytes) {
    folder.put(name, bytes);
    EXPECT_EQ(keepBackup(folder.path(name), kept, limits), QString());
  };
  for (const char digit : {'1', '2', '3'}) keep(QByteArray(200, digit), limits);
  keepOther(u"a.ics"_qs, QByteArray(300, 'a'));
  EXPECT_EQ(contents(), (QByteArrayList{QByteArray(300, 'a'), QByteArray(200, '1'), QByteArray(200, '2'),
                                        QByteArray(200, '3')}));
  keepOther(u"b.ics"_qs, QByteArray(300, 'b'));  // the one with the most copies gives way
  EXPECT_EQ(contents(), (QByteArrayList{QByteArray(300, 'a'), QByteArray(300, 'b'), QByteArray(200, '2'),
                                        QByteArray(200, '3')}));
  keepOther(u"c.ics"_qs, QByteArray(500, 'c'));  // of equals the largest
  EXPECT_EQ(contents(), (QByteArrayList{QByteArray(300, 'b'), QByteArray(500, 'c'), QByteArray(200, '3')}));
  keep(QByteArray(900, '4'), limits);  // the newest stays
  EXPECT_EQ(contents(), QByteArrayList{QByteArray(900, '4')});
}

TEST_F(Backups, LeaveOtherFilesInTheirFolderAlone) {
  ASSERT_TRUE(QDir().mkpath(kept));
  folder.put(u"state/backups/work-notes.ics"_qs, "mine");
  for (const char* bytes : {"one", "two", "three", "four"}) keep(bytes);
  EXPECT_EQ(folder.content(u"state/backups/work-notes.ics"_qs), "mine");
  EXPECT_EQ(names().size(), 4);
}

TEST_F(Backups, OnAFullDiskKeepTheOldOnesAndSayWhy) {
  keep("one");
  SystemCalls calls = SystemCalls::ofTheSystem();
  calls.clone = [](int, int) { return errno = EOPNOTSUPP, -1; };
  calls.copyFileRange = [](int, off_t*, int, size_t) -> ssize_t { return errno = ENOSPC, -1; };
  const ScopedSystemCalls scope(calls);
  const QString error = keep("two");
  EXPECT_TRUE(error.endsWith(u": No space left on device"_qs)) << qPrintable(error);
  EXPECT_EQ(contents(), QByteArrayList{"one"});
}

TEST_F(Backups, OnAFullDiskGiveTheRoomOfTheOldestToTheNew) {
  for (const char* bytes : {"one", "two", "three"}) keep(bytes);
  SystemCalls calls = SystemCalls::ofTheSystem();
  calls.clone = [](int, int) { return errno = EOPNOTSUPP, -1; };
  calls.copyFileRange = [&](int from, off_t* offset, int to, size_t size) -> ssize_t {
    if (names().size() > 3) return errno = ENOSPC, -1;  // the one that is being made counts
    return ::copy_file_range(from, offset, to, nullptr, size, 0);
  };
  const ScopedSystemCalls scope(calls);
  EXPECT_EQ(keep("four"), QString());
  EXPECT_EQ(contents(), (QByteArrayList{"two", "three", "four"}));
}

TEST_F(Backups, ShareBlocksWhereTheFileSystemCan) {
  SystemCalls calls = SystemCalls::ofTheSystem();
  int copied = 0;
  calls.clone = [](int to, int from) {
    return ::copy_file_range(from, nullptr, to, nullptr, 1000, 0) < 0 ? -1 : 0;
  };
  calls.copyFileRange = [&](int, off_t*, int, size_t) { return ++copied, ssize_t{0}; };
  const ScopedSystemCalls scope(calls);
  EXPECT_EQ(keep("one"), QString());
  EXPECT_EQ(copied, 0);
  EXPECT_EQ(contents(), QByteArrayList{"one"});
}

TEST_F(Backups, AreNotMadeOfAFileThatIsWrittenToMeanwhile) {
  SystemCalls calls = SystemCalls::ofTheSystem();
  calls.fsync = [&](int file) {
    folder.put(u"work.ics"_qs, "theirs");
    return ::fsync(file);
  };
  const ScopedSystemCalls scope(calls);
  EXPECT_TRUE(keep("one").endsWith(u": changed by another program meanwhile"_qs));
  EXPECT_TRUE(names().isEmpty());
}

TEST_F(Backups, OfNothingSayThatThereIsNothing) {
  EXPECT_EQ(keepBackup(path, kept), path + u": No such file or directory"_qs);
}

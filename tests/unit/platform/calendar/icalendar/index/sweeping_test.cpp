#include "platform/calendar/icalendar/index/indexfile.h"
#include "platform/calendar/icalendar/index/indexlock.h"
#include "platform/calendar/icalendar/index/indexsweep.h"
#include "tests/unit/platform/calendar/icalendar/index/world.h"

#include <QDir>
#include <QFile>
#include <QtEndian>

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

// What is left in the cache folder by calendars and versions that are gone, and in the calendar's folder by
// saves that were broken off.
using namespace index_tests;
using namespace platform::calendar::icalendar::index;

class Sweeping : public IndexTest {
 protected:
  void SetUp() override {
    IndexTest::SetUp();
    Chance chance(3);
    write(file(), someCalendar(chance, 3));
    own_ = open(file())->indexPath();
    allShownBy(*open(file()));
    bytes_ = contentOf(own_);
    ASSERT_GT(bytes_.size(), 4096);
  }
  QString inCache(const QString& name) const { return cache() + u'/' + name; }
  static void age(const QString& path, qint64 seconds) {
    const time_t then = ::time(nullptr) - seconds;
    const struct timespec times[2] = {{then, 0}, {then, 0}};
    ASSERT_EQ(::utimensat(AT_FDCWD, qPrintable(path), times, AT_SYMLINK_NOFOLLOW), 0) << qPrintable(path);
  }
  static constexpr qint64 day = 24 * 3600;
  /// An index of that version, last used so many days ago.
  QString putIndex(const QString& name, int version, qint64 days, quint32 application = applicationId) {
    QByteArray bytes = bytes_;
    qToBigEndian<quint32>(static_cast<quint32>(version), bytes.data() + 60);
    qToBigEndian<quint32>(application, bytes.data() + 68);
    write(inCache(name), bytes);
    age(inCache(name), days * day);
    return inCache(name);
  }
  int swept() const { return sweepIndexes(cache(), own_); }

  QString own_;
  QByteArray bytes_;
};

TEST_F(Sweeping, AnIndexOfAnOlderVersionGoesAtOnceWithItsLog) {
  const QString old = putIndex(u"00000000000000aa.sqlite"_qs, schemaVersion - 1, 0);
  write(old + u"-wal"_qs, "log");
  write(old + u"-shm"_qs, "shared");
  EXPECT_EQ(swept(), 1);
  EXPECT_EQ(QDir(cache()).entryList({u"00000000000000aa*"_qs}, QDir::Files | QDir::Hidden), QStringList());
  EXPECT_TRUE(QFile::exists(own_));
}

TEST_F(Sweeping, AnIndexThatNobodyUsedForLongGoes) {
  const QString unused = putIndex(u"00000000000000aa.sqlite"_qs, schemaVersion, unusedDays + 1);
  const QString young = putIndex(u"00000000000000bb.sqlite"_qs, schemaVersion, unusedDays - 1);
  const QString newer = putIndex(u"00000000000000cc.sqlite"_qs, schemaVersion + 1, unusedDays - 1);
  const QString lately = putIndex(u"00000000000000dd.sqlite"_qs, schemaVersion, unusedDays + 1);
  write(IndexLock::pathFor(lately), {});  // whoever only looks at it leaves no other trace
  EXPECT_EQ(swept(), 1);
  EXPECT_FALSE(QFile::exists(unused));
  for (const QString& kept : {young, newer, lately, own_})
    EXPECT_TRUE(QFile::exists(kept)) << qPrintable(kept);
}

TEST_F(Sweeping, AnIndexThatIsInUseStays) {
  const QString old = putIndex(u"00000000000000aa.sqlite"_qs, schemaVersion - 1, unusedDays + 1);
  {
    IndexLock lock(old);
    ASSERT_EQ(lock.take(IndexLock::Kind::Shared, 0), IndexLock::Result::Had);
    EXPECT_EQ(swept(), 0);
    EXPECT_TRUE(QFile::exists(old));
  }
  EXPECT_EQ(swept(), 1);
}

namespace {

/// Whether another process finds a lock on the file that every connection has while it reads.
bool isLockedForOthers(const QString& path) {
  const pid_t other = ::fork();
  if (other == 0) {
    const int file = ::open(qPrintable(path), O_RDWR | O_CLOEXEC);
    struct flock lock {};
    lock.l_type = F_WRLCK;
    lock.l_whence = SEEK_SET;
    lock.l_start = 0x40000002;  // SQLite's bytes for readers
    lock.l_len = 510;
    const bool known = file >= 0 && ::fcntl(file, F_GETLK, &lock) == 0;
    ::_exit(!known ? 2 : lock.l_type != F_UNLCK ? 1 : 0);
  }
  int status = 0;
  EXPECT_EQ(::waitpid(other, &status, 0), other);
  EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) != 2);
  return WEXITSTATUS(status) == 1;
}

}  // namespace

TEST_F(Sweeping, TheLocksOfIndexesInUseInThisProcessStay) {
  // whoever closes a file takes all his process's locks off it, also those of its connections to the database
  write(path(u"a.ics"_qs), contentOf(file()));
  const auto index = open(folder());
  allShownBy(*index);
  ASSERT_TRUE(index->answeredFromIndex());
  ASSERT_NE(index->indexPath(), own_);
  ASSERT_TRUE(isLockedForOthers(index->indexPath()));
  EXPECT_EQ(swept(), 0);
  EXPECT_TRUE(isLockedForOthers(index->indexPath()));
  expectSame(*index, folder());
}

TEST_F(Sweeping, LookingAtAnIndexIsNotUsingIt) {
  const QString young = putIndex(u"00000000000000aa.sqlite"_qs, schemaVersion, unusedDays - 2);
  EXPECT_EQ(swept(), 0);
  EXPECT_FALSE(QFile::exists(IndexLock::pathFor(young)));
  write(IndexLock::pathFor(young), {});
  age(IndexLock::pathFor(young), (unusedDays - 2) * day);
  EXPECT_EQ(swept(), 0);
  struct stat found {};
  ASSERT_EQ(::stat(qPrintable(IndexLock::pathFor(young)), &found), 0);
  EXPECT_GT(::time(nullptr) - found.st_mtim.tv_sec, day) << "it would be kept for ever";
}

TEST_F(Sweeping, WhatIsNotAnIndexOfOursIsNeverTouched) {
  const QStringList foreign{u"notes.sqlite"_qs,
                            u"0123456789abcdef.sqlite3"_qs,
                            u"0123456789ABCDEF.sqlite"_qs,
                            u"0123456789abcdef.sqlite"_qs,
                            u"00000000000000ee.sqlite.bak"_qs,
                            u"letter.txt"_qs};
  for (const QString& name : foreign) {
    write(inCache(name), "not an index, though it may be named as one is");
    age(inCache(name), 1000 * day);
  }
  const QString others = putIndex(u"00000000000000aa.sqlite"_qs, 1, 1000, 0x12345678);
  const QString nameless = putIndex(u"my-index.sqlite"_qs, 1, 1000);
  const QString target = putIndex(u"target"_qs, 1, 1000);
  ASSERT_EQ(::symlink(qPrintable(target), qPrintable(inCache(u"00000000000000bb.sqlite"_qs))), 0);
  age(inCache(u"00000000000000bb.sqlite"_qs), 1000 * day);
  ASSERT_TRUE(QDir().mkpath(inCache(u"00000000000000cc.sqlite/inside"_qs)));
  const QStringList before = QDir(cache()).entryList(QDir::AllEntries | QDir::Hidden | QDir::System);
  EXPECT_EQ(swept(), 0);
  EXPECT_EQ(QDir(cache()).entryList(QDir::AllEntries | QDir::Hidden | QDir::System), before);
  EXPECT_EQ(sweepIndexes(cache() + u"/none"_qs, own_), 0);
}

TEST_F(Sweeping, AnotherUsersIndexIsNeverTouched) {
  if (::geteuid() != 0) GTEST_SKIP() << "Only root can give a file to another user.";
  const QString old = putIndex(u"00000000000000aa.sqlite"_qs, schemaVersion - 1, 1000);
  ASSERT_EQ(::chown(qPrintable(old), 12345, 12345), 0);
  EXPECT_EQ(swept(), 0);
  EXPECT_TRUE(QFile::exists(old));
}

TEST_F(Sweeping, OneSweepIsBounded) {
  for (int i = 0; i < maxSweptIndexes + 3; ++i)
    putIndex(u"%1.sqlite"_qs.arg(i, 16, 16, QLatin1Char('0')), schemaVersion - 1, 0);
  EXPECT_EQ(swept(), maxSweptIndexes);
  EXPECT_EQ(swept(), 3);
  EXPECT_EQ(swept(), 0);
}

TEST_F(Sweeping, WhatWasBeingMadeWhenItsProcessDiedGoes) {
  const QString half = u"00000000000000aa.sqlite.4711.0badcafe.new"_qs;
  write(inCache(half), {});
  EXPECT_EQ(swept(), 0) << "somebody may be making it";
  age(inCache(half), 2 * day);
  EXPECT_EQ(swept(), 1);
  EXPECT_FALSE(QFile::exists(inCache(half)));
  // that of the calendar itself as soon as its index is made again
  write(own_ + u".4711.0badcafe.new"_qs, "half of it");
  write(own_ + u".4711.new"_qs, "half of it");
  ASSERT_TRUE(QFile::remove(own_));
  allShownBy(*open(file()));
  EXPECT_EQ(QDir(cache()).entryList({u"*.new*"_qs}, QDir::Files), QStringList());
}

TEST_F(Sweeping, OpeningACalendarSweeps) {
  // (once for each folder of a process: this one has been swept)
  IndexOptions elsewhere = options();
  elsewhere.cacheFolder = cache() + u"/other"_qs;
  ASSERT_TRUE(QDir().mkpath(elsewhere.cacheFolder));
  const QString old = putIndex(u"other/00000000000000aa.sqlite"_qs, schemaVersion - 1, 0);
  IndexedSource index(file(), u"Test"_qs, elsewhere);
  expectSame(index, file());
  EXPECT_TRUE(index.answeredFromIndex());
  EXPECT_FALSE(QFile::exists(old));
}

TEST_F(Sweeping, UsingAnIndexIsNoted) {
  age(IndexLock::pathFor(own_), 1000 * day);
  age(own_, 1000 * day);
  allShownBy(*open(file()));
  struct stat found {};
  ASSERT_EQ(::stat(qPrintable(IndexLock::pathFor(own_)), &found), 0);
  EXPECT_LT(::time(nullptr) - found.st_mtim.tv_sec, day);
}

TEST_F(Sweeping, WhatACrashLeavesWhileTheProgramRunsIsSweptByALaterSave) {
  const auto putLitter = [&](const QString& name) {
    write(path(name), "half of a save");
    age(path(name), 2 * 3600);
    return path(name);
  };
  FileCache patient(folder(), u"Test"_qs), hasty(folder(), u"Test"_qs);
  hasty.setSweepPause(std::chrono::milliseconds(0));
  const QString first = putLitter(u".a.ics.abc123.tmp"_qs);
  patient.sweep();
  EXPECT_FALSE(QFile::exists(first));
  const QString second = putLitter(u".b.ics.abc123.tmp"_qs);
  patient.sweep();
  EXPECT_TRUE(QFile::exists(second)) << "the folder is listed for every save";
  const QString young = path(u".c.ics.abc123.tmp"_qs);
  write(young, "somebody saves");
  hasty.sweep();
  EXPECT_FALSE(QFile::exists(second));
  EXPECT_TRUE(QFile::exists(young));
  age(young, 2 * 3600);
  hasty.sweep();
  EXPECT_FALSE(QFile::exists(young));
}

// A database that several programs have open: the lock file, files exchanged by programs that do not know it,
// links and access rights.
#include "platform/basic/failure.h"
#include "platform/sql/errors.h"
#include "platform/sql/sqlite/databasefile.h"
#include "platform/sql/sqlite/engine.h"
#include "tests/contract/sqldriver/otherprocess.h"

#include <QDir>
#include <QFileInfo>
#include <QTemporaryDir>

#include <cerrno>
#include <fcntl.h>
#include <functional>
#include <gtest/gtest.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>
#include <utility>

using namespace platform::sql;
using namespace platform::sql::sqlite;
using contract::OtherProcess;
using platform::Failure;

namespace {

/// While it lives, locks are as on a network folder: for one alone only on a file that is open for writing,
/// and "permission denied" where somebody else has one.
class OverNetwork {
 public:
  OverNetwork() { on = true; }
  ~OverNetwork() { on = false; }
  OverNetwork(const OverNetwork&) = delete;
  OverNetwork& operator=(const OverNetwork&) = delete;
  static inline bool on = false;
};

/// While it lives, something happens once, right after that file has been looked for.
class AfterALook {
 public:
  AfterALook(const QString& path, std::function<void()> what) {
    awaited = QFile::encodeName(path);
    happens = std::move(what);
  }
  ~AfterALook() {
    EXPECT_FALSE(happens) << "nobody has looked";
    happens = {};
  }
  AfterALook(const AfterALook&) = delete;
  AfterALook& operator=(const AfterALook&) = delete;
  static void looked(const char* path) {
    if (happens && awaited == path) std::exchange(happens, {})();
  }

 private:
  static inline QByteArray awaited;
  static inline std::function<void()> happens;
};

}  // namespace

// in place of the system's in this program of tests
extern "C" int lstat(const char* path, struct stat* found) noexcept {
  const int result = ::fstatat(AT_FDCWD, path, found, AT_SYMLINK_NOFOLLOW);
  const int error = errno;
  AfterALook::looked(path);
  errno = error;
  return result;
}

extern "C" int flock(int descriptor, int operation) noexcept {
  const bool reading = (::fcntl(descriptor, F_GETFL) & O_ACCMODE) == O_RDONLY;
  if (OverNetwork::on && (operation & LOCK_EX) != 0 && reading) {
    errno = EBADF;
    return -1;
  }
  const auto result = static_cast<int>(::syscall(SYS_flock, descriptor, operation));
  if (result != 0 && OverNetwork::on && errno == EWOULDBLOCK) errno = EACCES;
  return result;
}

namespace {

constexpr int longWait = 60000;

class Sharing : public testing::Test {
 protected:
  Sharing() {
    SqliteEngine(0, Durability::ProcessEnd).createDatabase(path);
    open()->execute(u"create table t (a integer)"_qs);
  }
  static ConnectionString to(const QString& file) {
    ConnectionString connection;
    connection.set(u"Data Source"_qs, file);
    return connection;
  }
  std::unique_ptr<Session> open(int wait = 0) const {
    return SqliteDriver(wait, Durability::ProcessEnd).connect(to(path));
  }
  std::shared_ptr<CompactedSource> compact(int wait = 0) const {
    return SqliteEngine(wait, Durability::ProcessEnd).compact(path, target);
  }
  int rows() const { return static_cast<int>(open()->execute(u"select * from t"_qs).rows.size()); }
  static qint32 numberOf(const std::function<void()>& statements) {
    try {
      statements();
    } catch (const Failure& failure) {
      return failure.number();
    }
    return 0;
  }
  /// A program without the lock file: it exchanges the database for one with a row more, while the test waits
  /// for it.
  int exchangeWhileTheTestWaits(const OtherProcess::Wire& wire) const {
    const QString theirs = folder.filePath(u"theirs"_qs);
    SqliteSession raw(fileUri(path, u"rw"_qs), path, {});
    raw.execute(u"VACUUM INTO ?"_qs, {theirs});
    SqliteSession(fileUri(theirs, u"rw"_qs), theirs, {}).execute(u"insert into t values (1)"_qs);
    raw.execute(u"BEGIN EXCLUSIVE"_qs);
    wire.tell();
    contract::awaitOpenInTest(path);
    if (::rename(QFile::encodeName(theirs).constData(), QFile::encodeName(path).constData()) != 0) return 1;
    raw.execute(u"ROLLBACK"_qs);
    return 0;
  }

  QTemporaryDir folder;
  QString path = folder.filePath(u"a.mdb"_qs);
  QString target = folder.filePath(u"tmpa.mdb.mdb"_qs);
  QString lock = folder.filePath(u"a.ldb"_qs);
};

}  // namespace

TEST_F(Sharing, TheLockFileStandsBesideTheDatabaseAndGoesWithItsLastUser) {
  auto one = open();
  auto two = open();
  EXPECT_TRUE(QFile::exists(lock));
  one.reset();
  EXPECT_TRUE(QFile::exists(lock));
  two.reset();
  EXPECT_FALSE(QFile::exists(lock));
}

TEST_F(Sharing, WhoComesWhileTheLastUserGoesMakesTheLockFileAnew) {
  auto last = open();
  {
    const AfterALook goes(lock, [&] { last.reset(); });
    const auto next = open();
    EXPECT_TRUE(QFile::exists(lock)) << "the next one works under the lock, too";
    EXPECT_EQ(numberOf([&] { compact(); }), errors::locked);
  }
  last = open();
  const AfterALook goes(lock, [&] { last.reset(); });
  EXPECT_EQ(numberOf([&] { compact(); }), 0);
}

TEST_F(Sharing, WhoMakesTheLockFileTakesTheLitterOfItsDatabaseAndOfNothingElse) {
  const auto put = [&](const QString& name) {
    QFile file(folder.filePath(name));
    EXPECT_TRUE(file.open(QIODevice::WriteOnly));
    file.close();
    const struct timespec times[2] = {{1'000'000'000, 0}, {1'000'000'000, 0}};
    EXPECT_EQ(::utimensat(AT_FDCWD, QFile::encodeName(file.fileName()).constData(), times, 0), 0);
  };
  for (const QString& name :
       {u".a.ldb.x7k2m9.tmp"_qs, u".a.mdb.x7k2m9.tmp"_qs, u".b.mdb.x7k2m9.tmp"_qs, u".thesis.backup.tmp"_qs})
    put(name);
  const auto session = open();
  EXPECT_EQ(QDir(folder.path()).entryList({u".*.tmp"_qs}, QDir::Files | QDir::Hidden, QDir::Name),
            (QStringList{u".b.mdb.x7k2m9.tmp"_qs, u".thesis.backup.tmp"_qs}));
}

TEST_F(Sharing, OnlyTheEndingOfAnAccessFileIsReplaced) {
  EXPECT_EQ(LockFile::nameFor(u"/a/Hourbook3.mdb"_qs), u"/a/Hourbook3.ldb"_qs);
  EXPECT_EQ(LockFile::nameFor(u"/a/B.MDB"_qs), u"/a/B.ldb"_qs);
  EXPECT_EQ(LockFile::nameFor(u"/a/b.db"_qs), u"/a/b.db.ldb"_qs);
}

TEST_F(Sharing, WhoMayUseTheDatabaseMayUseItsLockFile) {
  ASSERT_EQ(::chmod(QFile::encodeName(path).constData(), 0660), 0);
  const auto session = open();
  struct stat found {};
  ASSERT_EQ(::stat(QFile::encodeName(lock).constData(), &found), 0);
  EXPECT_EQ(found.st_mode & 07777, 0660u);
}

TEST_F(Sharing, WhereNoLockCanBeHadTheDatabaseIsOpenedAndNotCompacted) {
  ASSERT_TRUE(QFile::link(folder.filePath(u"nowhere"_qs), lock));
  EXPECT_EQ(rows(), 0);
  EXPECT_EQ(numberOf([&] { compact(); }), errors::noPermission);
  EXPECT_FALSE(QFile::exists(folder.filePath(u"nowhere"_qs)));
  EXPECT_FALSE(QFile::exists(target));
}

TEST_F(Sharing, OverANetworkAnIdleUserKeepsTheDatabaseFromBeingCompactedAsWell) {
  const OverNetwork network;
  auto idle = open();
  EXPECT_EQ(numberOf([&] { compact(); }), errors::locked);
  EXPECT_FALSE(QFile::exists(target));
  idle.reset();
  EXPECT_FALSE(QFile::exists(lock)) << "the last user takes it away";
  compact();
  EXPECT_TRUE(QFile::exists(target));
}

TEST_F(Sharing, OverANetworkACompactionKeepsOthersWaiting) {
  const OverNetwork network;
  const auto held = compact();
  EXPECT_EQ(numberOf([&] { LockFile::take(path, LockFile::Use::Shared, 0); }), errors::locked);
}

TEST_F(Sharing, ALockFileThatACrashHasLeftIsUsedAndTakenAway) {
  QFile left(lock);
  ASSERT_TRUE(left.open(QIODevice::WriteOnly));
  left.close();
  compact();
  EXPECT_FALSE(QFile::exists(lock));
}

TEST_F(Sharing, AConnectionWaitsForACompactionAndFindsTheNewFile) {
  OtherProcess other([&](const OtherProcess::Wire& wire) {
    const auto held = compact();
    SqliteSession(fileUri(target, u"rw"_qs), target, {}).execute(u"insert into t values (1)"_qs);
    wire.tell();
    contract::awaitOpenInTest(lock);
    return QFile::remove(path) && QFile::rename(target, path) ? 0 : 1;
  });
  other.await();
  EXPECT_EQ(open(longWait)->execute(u"select * from t"_qs).rows.size(), 1);
  EXPECT_EQ(other.finish(), 0);
}

TEST_F(Sharing, ACompactionThatHadToWaitRefusesAFileThatWasExchangedMeanwhile) {
  OtherProcess other([&](const OtherProcess::Wire& wire) { return exchangeWhileTheTestWaits(wire); });
  other.await();
  EXPECT_EQ(numberOf([&] { compact(longWait); }), errors::replacedByAnother);
  EXPECT_EQ(other.finish(), 0);
  EXPECT_FALSE(QFile::exists(target));
  EXPECT_EQ(rows(), 1) << "the new file keeps its row";
}

TEST_F(Sharing, AConnectionThatHadToWaitOpensTheFileThatStandsThereNow) {
  OtherProcess other([&](const OtherProcess::Wire& wire) { return exchangeWhileTheTestWaits(wire); });
  other.await();
  const auto session = open(longWait);
  EXPECT_EQ(other.finish(), 0);
  session->execute(u"insert into t values (2)"_qs);
  EXPECT_EQ(rows(), 2);
}

TEST_F(Sharing, ACopyThatAppearsMeanwhileIsNotRemoved) {
  OtherProcess other([&](const OtherProcess::Wire& wire) {
    SqliteSession raw(fileUri(path, u"rw"_qs), path, {});
    raw.execute(u"BEGIN EXCLUSIVE"_qs);
    wire.tell();
    contract::awaitOpenInTest(path);
    QFile theirs(target);
    if (!theirs.open(QIODevice::WriteOnly) || theirs.write("theirs") != 6) return 1;
    theirs.close();
    raw.execute(u"ROLLBACK"_qs);
    return 0;
  });
  other.await();
  EXPECT_EQ(numberOf([&] { compact(longWait); }), errors::databaseExists);
  EXPECT_EQ(other.finish(), 0);
  QFile theirs(target);
  ASSERT_TRUE(theirs.open(QIODevice::ReadOnly));
  EXPECT_EQ(theirs.readAll(), QByteArray("theirs"));
}

TEST_F(Sharing, ALinkAndItsFileAreOneDatabase) {
  const QTemporaryDir elsewhere;
  const QString link = elsewhere.filePath(u"link.mdb"_qs);
  ASSERT_TRUE(QFile::link(path, link));
  const auto throughLink = SqliteDriver(0, Durability::ProcessEnd).connect(to(link));
  EXPECT_TRUE(QFile::exists(lock));
  EXPECT_EQ(numberOf([&] { compact(); }), errors::locked);
}

TEST_F(Sharing, LookingAtABusyDatabaseDoesNotLetGoOfItsLocks) {
  const auto busy = open();
  busy->execute(u"BEGIN EXCLUSIVE"_qs);
  EXPECT_EQ(numberOf([&] { open(); }), errors::locked);
  // another program must still find it locked
  OtherProcess other([&](const OtherProcess::Wire&) {
    return numberOf([&] { SqliteSession(fileUri(path, u"rw"_qs), path, {.busyTimeout = 0}); }) ==
                   errors::locked
               ? 0
               : 1;
  });
  EXPECT_EQ(other.finish(), 0);
}

// ---- access rights

TEST(AccessRights, OfACopyAreNotWiderForAnotherGroup) {
  EXPECT_EQ(rightsOfCopy(0660, true), 0660);
  EXPECT_EQ(rightsOfCopy(0660, false), 0600);
  EXPECT_EQ(rightsOfCopy(0664, false), 0644) << "what everybody may, the group may too";
  EXPECT_EQ(rightsOfCopy(0100644, false), 0644);
}

TEST_F(Sharing, AFileInTheMakingIsItsMakersAlone) {
  const FileIdentity made = createFile(target, CreationMode::OwnerOnly);
  struct stat found {};
  ASSERT_EQ(::stat(QFile::encodeName(target).constData(), &found), 0);
  EXPECT_EQ(found.st_mode & 0777, 0600u);
  EXPECT_EQ(numberOf([&] { createFile(target, CreationMode::OwnerOnly); }), errors::databaseExists);
  removeOwn(target, {made.device, made.inode + 1});
  EXPECT_TRUE(QFile::exists(target)) << "another one's";
  removeOwn(target, made);
  EXPECT_FALSE(QFile::exists(target));
}

// Disks that fill up, and places that a file may not be written to or that are no plain files: a clear
// failure or a save, the old content whole, links kept as links, modes and owners kept.
#include "platform/basic/failure.h"
#include "tests/faults/trials.h"
#include "tests/journeys/unprivileged.h"
#include "tests/support/privatemounts.h"

#include <QDir>
#include <QFile>

#include <chrono>
#include <fcntl.h>
#include <future>
#include <gtest/gtest.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace faults {
namespace {

using namespace Qt::StringLiterals;

constexpr int stepKb = 4;
constexpr int sizes = 64;
constexpr int skipped = 77;

/// Runs `work` in a process of its own that sees a disk of this size at `folder`; nobody else does, and it is
/// gone with the process.
int onSmallDisk(const QString& folder, int kilobytes, const std::function<int()>& work) {
  std::fflush(nullptr);
  const pid_t child = ::fork();
  if (child == 0) {
    const QByteArray size = "size=" + QByteArray::number(kilobytes) + "k";
    ::_exit(tests::mountsSmallDisk(folder, size) ? work() : skipped);
  }
  int status = 0;
  EXPECT_EQ(::waitpid(child, &status, 0), child);
  return WIFEXITED(status) ? WEXITSTATUS(status) : 1000;
}

/// 0: all as it should be and the save failed; 1: it succeeded; more: what is wrong.
int saveOnFullDisk(Saver& saver, int spareKb) {
  try {
    saver.prepare();
    saver.startAgain();  // what is made once is there
    const Contents before = saver.contents();
    // all but so much is taken by something else
    QFile filler(saver.path(u".filler"_s));
    if (!filler.open(QIODevice::WriteOnly | QIODevice::Unbuffered)) return 10;
    const QByteArray block(stepKb * 1024, 'f');
    qint64 written = 0;
    while (filler.write(block) == block.size()) written += block.size();
    filler.resize(qMax<qint64>(0, written - spareKb * 1024));
    filler.close();
    bool succeeded = true;
    QString message;
    try {
      saver.save();
    } catch (const std::exception& failure) {
      succeeded = false;
      message = QString::fromUtf8(failure.what());
    }
    const Contents after = saver.contents();
    for (const QString& name : saver.names())
      if (name.endsWith(u".tmp"_s)) return 11;
    if (succeeded) {
      if (after == before) return 12;  // success over the old content
    } else {
      const bool between =
          after != before && after.value(u"rows"_s) != before.value(u"rows"_s);  // reported, not stamped
      if (after != before && !between) return 13;
      bool named = false;
      for (const QString& each : saver.places()) named = named || message.contains(each);
      if (!named) return 14;
      QFile::remove(saver.path(u".filler"_s));
      saver.save();  // with room again
      if (saver.contents() == before) return 15;
    }
    return succeeded ? 1 : 0;
  } catch (const std::exception& failure) {
    std::fprintf(stderr, "    %s\n", failure.what());
    return 16;
  }
}

struct FullDisk : testing::TestWithParam<size_t> {};

TEST_P(FullDisk, FailsOrSucceedsWholeHoweverMuchFits) {
  Place place(GetParam());
  place.renew();
  const bool heavy = courseOf(place.saver()).heavy();
  const bool needsRoom = std::string(place.saver().name()).find("removal") == std::string::npos;
  int failed = 0, succeeded = 0;
  for (int step = 0; step < sizes; ++step) {
    // a big file meets its end somewhere in a megabyte and a half; CI goes there in long steps
    if (heavy && soak() == 1 && step % 8 != 0) continue;
    const int spare = step * (heavy ? 6 * stepKb : stepKb);
    const int code =
        onSmallDisk(place.saver().folder(), 8192, [&] { return saveOnFullDisk(place.saver(), spare); });
    if (code == skipped) GTEST_SKIP() << tests::noMounts;
    ASSERT_LE(code, 1) << place.saver().name() << " with " << spare << " kB to spare";
    (code == 0 ? failed : succeeded) += 1;
  }
  std::printf("    %d saves failed, %d succeeded\n", failed, succeeded);
  EXPECT_EQ(failed > 0, needsRoom);
  EXPECT_GT(succeeded, 0);
}

INSTANTIATE_TEST_SUITE_P(EverySaver, FullDisk, testing::Range(size_t{0}, saverCount()));

// An event in a folder, at odd places. The tests work as an ordinary user.
struct OddPlace : testing::Test {
  Place place{0};
  Saver& saver = place.saver();
  QString file = saver.path(u"first.ics"_s);
  QByteArray before;
  const bool byRoot = ::getuid() == 0;
  std::optional<tests::Unprivileged> user;

  void SetUp() override {
    place.renew();
    before = content(file);
    user.emplace(saver.folder());
  }
  void TearDown() override { user.reset(); }

  static QByteArray content(const QString& path) {
    QFile read(path);
    return read.open(QIODevice::ReadOnly) ? read.readAll() : QByteArray("(missing)");
  }
  static QByteArray name(const QString& path) { return QFile::encodeName(path); }
  static struct stat status(const QString& path) {
    struct stat found {};
    EXPECT_EQ(::lstat(name(path).constData(), &found), 0);
    return found;
  }
  void expectRefused(const QString& named) {
    const Trial trial = tried(saver, Plan{});
    EXPECT_FALSE(trial.succeeded);
    EXPECT_TRUE(trial.message.contains(named)) << qPrintable(trial.message);
    for (const QString& each : saver.names()) EXPECT_FALSE(each.endsWith(u".tmp"_s)) << qPrintable(each);
  }
  void expectSaved() {
    const Trial trial = tried(saver, Plan{});
    EXPECT_TRUE(trial.succeeded) << qPrintable(trial.message);
    EXPECT_TRUE(content(file).contains("SUMMARY:Changed"));
  }
};

TEST_F(OddPlace, AReadOnlyFileIsRefused) {
  ASSERT_EQ(::chmod(name(file).constData(), 0444), 0);
  expectRefused(file);
  EXPECT_EQ(content(file), before);
  EXPECT_EQ(status(file).st_mode & 0777, 0444u);
}

TEST_F(OddPlace, AReadOnlyFolderIsRefused) {
  ASSERT_EQ(::chmod(name(saver.folder()).constData(), 0555), 0);
  expectRefused(saver.folder());
  EXPECT_EQ(content(file), before);
  ASSERT_EQ(::chmod(name(saver.folder()).constData(), 0755), 0);
}

TEST_F(OddPlace, AFileThatMayNotBeReadIsRefused) {
  ASSERT_EQ(::chmod(name(file).constData(), 0), 0);
  expectRefused(saver.folder());
  ASSERT_EQ(::chmod(name(file).constData(), 0644), 0);
  EXPECT_EQ(content(file), before);
}

TEST_F(OddPlace, AFolderThatIsGoneIsRefused) {
  ASSERT_TRUE(QDir().rename(saver.folder(), saver.folder() + u"-away"_s));
  const Trial trial = tried(saver, Plan{});
  EXPECT_FALSE(trial.succeeded);
  EXPECT_TRUE(trial.message.contains(saver.folder())) << qPrintable(trial.message);
  EXPECT_FALSE(QFile::exists(saver.folder()));
  ASSERT_TRUE(QDir().rename(saver.folder() + u"-away"_s, saver.folder()));
}

TEST_F(OddPlace, ModesAreKept) {
  for (const mode_t mode : {mode_t{0600}, mode_t{0640}, mode_t{0664}}) {
    place.renew();
    ASSERT_EQ(::chmod(name(file).constData(), mode), 0);
    expectSaved();
    EXPECT_EQ(status(file).st_mode & 0777, mode);
  }
}

TEST_F(OddPlace, ASymbolicLinkStaysOneAndWhatItLeadsToIsChanged) {
  const QString target = saver.path(u"elsewhere.txt"_s);
  ASSERT_TRUE(QFile::rename(file, target));
  ASSERT_EQ(::symlink("elsewhere.txt", name(file).constData()), 0);
  expectSaved();
  EXPECT_TRUE(S_ISLNK(status(file).st_mode));
  EXPECT_TRUE(content(target).contains("SUMMARY:Changed"));
}

TEST_F(OddPlace, ALinkThatLeadsNowhereIsRefused) {
  ASSERT_TRUE(QFile::remove(file));
  ASSERT_EQ(::symlink("nowhere.txt", name(file).constData()), 0);
  expectRefused(saver.folder());
  EXPECT_TRUE(S_ISLNK(status(file).st_mode));
  EXPECT_FALSE(QFile::exists(saver.path(u"nowhere.txt"_s)));
}

TEST_F(OddPlace, TheOtherNameOfAHardLinkKeepsTheOldContent) {
  const QString other = saver.path(u"snapshot.txt"_s);
  ASSERT_EQ(::link(name(file).constData(), name(other).constData()), 0);
  expectSaved();
  EXPECT_EQ(content(other), before);
}

TEST_F(OddPlace, APipeInTheFolderHoldsNothingUp) {
  ASSERT_EQ(::mkfifo(name(saver.path(u"pipe.ics"_s)).constData(), 0600), 0);
  expectSaved();
  EXPECT_TRUE(S_ISFIFO(status(saver.path(u"pipe.ics"_s)).st_mode));
  EXPECT_TRUE(QFile::remove(saver.path(u"pipe.ics"_s)));
}

TEST_F(OddPlace, APipeInThePlaceOfTheFileIsRefused) {
  ASSERT_TRUE(QFile::remove(file));
  ASSERT_EQ(::mkfifo(name(file).constData(), 0600), 0);
  expectRefused(saver.folder());
  EXPECT_TRUE(S_ISFIFO(status(file).st_mode));
  EXPECT_TRUE(QFile::remove(file));
}

TEST_F(OddPlace, AFolderInThePlaceOfTheFileIsRefused) {
  ASSERT_TRUE(QFile::remove(file));
  ASSERT_TRUE(QDir().mkdir(file));
  expectRefused(saver.folder());
  EXPECT_TRUE(QFileInfo(file).isDir());
}

/// A file system whose server answers nothing, until it is let go. Nothing when none may be mounted here.
class HangingPlace {
 public:
  explicit HangingPlace(const QString& path) : server_(::open("/dev/fuse", O_RDWR | O_CLOEXEC)) {
    const QByteArray options = "rootmode=40000,user_id=" + QByteArray::number(::geteuid()) +
                               ",group_id=" + QByteArray::number(::getegid()) +
                               ",fd=" + QByteArray::number(server_);
    mounted_ = server_ >= 0 && tests::mountsForItselfAlone() &&
               ::mount("hanging", QFile::encodeName(path).constData(), "fuse", 0, options.constData()) == 0;
  }
  bool isMounted() const { return mounted_; }
  /// As when the network is given up: from now on every call fails.
  void letGo() { ::close(server_); }

 private:
  int server_;
  bool mounted_ = false;
};

/// kept: a call to a mount that hangs comes back when the mount does, and not before. All of the calendar is
/// asked for on the one thread of the window; the answer then is a failure that names the place.
TEST_F(OddPlace, AMountThatHangsHoldsTheProgramUpUntilItIsGivenUpAndIsThenNamed) {
  user.reset();
  std::fflush(nullptr);
  const pid_t child = ::fork();
  if (child == 0) {
    HangingPlace hanging(saver.folder());
    if (!hanging.isMounted()) ::_exit(skipped);
    std::promise<QString> told;
    std::future<QString> answer = told.get_future();
    std::thread window([&] {
      try {
        saver.save();
        told.set_value({});
      } catch (const platform::Failure& failure) {
        told.set_value(failure.description());
      }
    });
    const bool waits = answer.wait_for(std::chrono::milliseconds(200)) == std::future_status::timeout;
    hanging.letGo();
    window.join();
    ::_exit(!waits ? 1 : answer.get().contains(saver.folder()) ? 0 : 2);
  }
  int status = 0;
  ASSERT_EQ(::waitpid(child, &status, 0), child);
  ASSERT_TRUE(WIFEXITED(status));
  if (WEXITSTATUS(status) == skipped) GTEST_SKIP() << tests::noMounts << " Or there is no /dev/fuse.";
  EXPECT_EQ(WEXITSTATUS(status), 0);
  EXPECT_EQ(content(file), before);
}

TEST_F(OddPlace, AFileOfAnotherUserThatMayNotBeWrittenIsRefused) {
  if (!byRoot) GTEST_SKIP() << "Only root can make a file of another user.";
  user.reset();  // as root
  ASSERT_EQ(::chmod(name(QFileInfo(saver.folder()).path()).constData(), 0755), 0);
  ASSERT_EQ(::chown(name(saver.folder()).constData(), 65534, 65534), 0);
  ASSERT_EQ(::chown(name(file).constData(), 0, 0), 0);
  ASSERT_EQ(::chmod(name(file).constData(), 0644), 0);
  ASSERT_EQ(::setresgid(65534, 65534, 0), 0);
  ASSERT_EQ(::setresuid(65534, 65534, 0), 0);
  expectRefused(file);
  EXPECT_EQ(content(file), before);
  EXPECT_EQ(status(file).st_uid, 0u);
  ASSERT_EQ(::setresuid(0, 0, 0), 0);
  ASSERT_EQ(::setresgid(0, 0, 0), 0);
}

}  // namespace
}  // namespace faults

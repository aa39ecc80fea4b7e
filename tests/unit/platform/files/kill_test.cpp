#include "platform/files/atomicfile.h"
#include "platform/files/posix/systemcalls.h"
#include "tests/unit/platform/files/folder.h"

#include <csignal>
#include <functional>
#include <random>
#include <sched.h>
#include <sys/wait.h>

using namespace platform::files;
using tests::TestFolder;

namespace {

const QString name = QStringLiteral("calendar.ics");

/// A whole version: one letter, as often as the letter says.
QByteArray version(int number) {
  return QByteArray(1000 + 7919 * (number % 26), char('a' + number % 26)) + '\n';
}

bool isWholeVersion(const QByteArray& bytes) {
  return !bytes.isEmpty() && bytes == version(bytes.front() - 'a');
}

/// The child runs `work`; it is killed, and never ends by itself.
void runKilled(const std::function<void()>& work, const std::function<void(pid_t)>& kill) {
  const pid_t child = ::fork();
  if (child == 0) {
    work();
    ::_exit(1);
  }
  kill(child);
  int status = 0;
  ASSERT_EQ(::waitpid(child, &status, 0), child);
  ASSERT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == SIGKILL);
}

/// Every call of a save kills the process, the one of the given number just before it is done.
SystemCalls killingAt(int number) {
  const SystemCalls real = SystemCalls::ofTheSystem();
  const auto count = std::make_shared<int>(0);
  const auto step = [count, number] {
    if ((*count)++ == number) ::kill(::getpid(), SIGKILL);
  };
  SystemCalls calls = real;
  calls.openat = [=](int at, const char* n, int flags, mode_t mode) {
    step();
    return real.openat(at, n, flags, mode);
  };
  calls.write = [=](int file, const void* bytes, size_t size) -> ssize_t {
    // Half of it reaches the file.
    if (*count == number) (void)!real.write(file, bytes, size / 2);
    step();
    return real.write(file, bytes, size);
  };
  calls.fsync = [=](int file) {
    step();
    return real.fsync(file);
  };
  calls.fchmod = [=](int file, mode_t mode) {
    step();
    return real.fchmod(file, mode);
  };
  calls.close = [=](int file) {
    step();
    return real.close(file);
  };
  calls.renameat = [=](int at, const char* from, const char* to) {
    step();
    return real.renameat(at, from, to);
  };
  return calls;
}

}  // namespace

TEST(Kill, BeforeAnyCallOfASaveLeavesTheOldVersionOrTheNew) {
  int whole = 0;
  for (int number = 0; number < 9; ++number) {
    SCOPED_TRACE(number);
    TestFolder folder;
    folder.put(name, version(0));
    const QString path = folder.path(name);
    runKilled(
        [&] {
          const SystemCalls calls = killingAt(number);
          const ScopedSystemCalls scope(calls);
          replaceFile(path, version(1));
          ::kill(::getpid(), SIGKILL);
        },
        [](pid_t) {});
    const QByteArray after = folder.content(name);
    EXPECT_TRUE(after == version(0) || after == version(1));
    whole += after == version(1);
    sweepLitter(QFileInfo(path).path(), -10);
    EXPECT_EQ(folder.names(), QStringList{name}) << "the sweep takes what the kill has left";
  }
  EXPECT_GT(whole, 0) << "some kills came after the rename";
  EXPECT_LT(whole, 9) << "and some before";
}

TEST(Kill, AtAnyMomentOfManySavesLeavesAWholeVersion) {
  TestFolder folder;
  folder.put(name, version(0));
  const QString path = folder.path(name);
  std::mt19937 random(20240515);
  for (int round = 0; round < 60; ++round) {
    int pipeEnds[2];
    ASSERT_EQ(::pipe(pipeEnds), 0);
    runKilled(
        [&] {
          for (int number = 0;; ++number) {
            replaceFile(path, version(number));
            (void)!::write(pipeEnds[1], "x", 1);
          }
        },
        [&](pid_t child) {
          // The moment is a number of saves and a bit, not a time: a slow machine tests the same.
          char done = 0;
          for (unsigned saves = random() % 4; saves > 0; --saves) (void)!::read(pipeEnds[0], &done, 1);
          for (unsigned turns = random() % 50; turns > 0; --turns) ::sched_yield();
          ::kill(child, SIGKILL);
        });
    ::close(pipeEnds[0]);
    ::close(pipeEnds[1]);
    ASSERT_TRUE(isWholeVersion(folder.content(name))) << "round " << round;
  }
}

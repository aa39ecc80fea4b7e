#include "platform/files/atomicfile.h"
#include "tests/unit/platform/files/folder.h"

#include <csignal>
#include <sys/resource.h>
#include <sys/wait.h>

using namespace platform::files;
using tests::TestFolder;

namespace {

/// Saves in a process of its own in which no file may grow over `room` bytes: the system then answers as it
/// does when a disk fills up, with a short write first and a failure at the next one.
Outcome saveWithRoom(const QString& path, const QByteArray& bytes, rlim_t room) {
  const pid_t child = ::fork();
  if (child == 0) {
    ::signal(SIGXFSZ, SIG_IGN);
    const rlimit limit{room, room};
    if (::setrlimit(RLIMIT_FSIZE, &limit) != 0) ::_exit(100);
    ::_exit(static_cast<int>(replaceFile(path, bytes).outcome));
  }
  int status = 0;
  EXPECT_EQ(::waitpid(child, &status, 0), child);
  EXPECT_TRUE(WIFEXITED(status));
  return static_cast<Outcome>(WEXITSTATUS(status));
}

}  // namespace

TEST(FullDisk, LeavesTheOldFileWholeAndNothingBesideItHoweverMuchFits) {
  const QString name = QStringLiteral("calendar.ics");
  const QByteArray oldBytes(20'000, 'o');
  for (const int size : {1, 2'915, 16'384, 16'385, 265'000}) {
    const QByteArray newBytes(size, 'n');
    for (const int room : {0, 1, size / 2, size - 4'096, size - 1, size, size + 1}) {
      if (room < 0) continue;
      SCOPED_TRACE(testing::Message() << size << " bytes with room for " << room);
      TestFolder folder;
      folder.put(name, oldBytes);
      const Outcome outcome = saveWithRoom(folder.path(name), newBytes, rlim_t(room));
      EXPECT_EQ(outcome, room < size ? Outcome::Failed : Outcome::Written);
      EXPECT_EQ(folder.content(name), room < size ? oldBytes : newBytes);
      EXPECT_EQ(folder.names(), QStringList{name});
    }
  }
}

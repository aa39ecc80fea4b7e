#include "tests/unit/platform/files/failingcalls.h"

#include "platform/files/atomicfile.h"
#include "platform/files/posix/systemcalls.h"
#include "tests/unit/platform/files/folder.h"

#include <map>
#include <set>
#include <system_error>

using namespace platform::files;
using tests::FailingCalls;
using tests::TestFolder;

namespace {

const QString name = QStringLiteral("meeting.ics");
const QByteArray oldBytes = QByteArray(5000, 'o');
const QByteArray newBytes = QByteArray(7000, 'n');

struct Road {
  const char* words;
  bool targetExists;
  bool compared;
};

int callsOf(const Road& road) {
  TestFolder folder;
  if (road.targetExists) folder.put(name, oldBytes);
  const Fingerprint seen = readFile(folder.path(name)).fingerprint;
  FailingCalls calls(-1, 0);
  const ScopedSystemCalls scope(calls.calls());
  EXPECT_EQ(replaceFile(folder.path(name), newBytes, road.compared ? std::make_optional(seen) : std::nullopt)
                .outcome,
            Outcome::Written);
  return calls.count();
}

struct FailingCall : testing::TestWithParam<std::tuple<Road, int>> {};

}  // namespace

TEST_P(FailingCall, LeavesTheOldContentOrTheNewAndSaysWhatTheSystemSaid) {
  const auto [road, code] = GetParam();
  const QString words = QString::fromLocal8Bit(std::generic_category().message(code).c_str());
  const QByteArray before = road.targetExists ? oldBytes : QByteArray("(missing)");
  std::set<QByteArray> failed;
  for (int call = 0, all = callsOf(road); call < all; ++call) {
    TestFolder folder;
    if (road.targetExists) folder.put(name, oldBytes);
    const Fingerprint seen = readFile(folder.path(name)).fingerprint;
    const auto expected = road.compared ? std::make_optional(seen) : std::nullopt;
    FailingCalls calls(call, code);
    WriteResult result;
    {
      const ScopedSystemCalls scope(calls.calls());
      result = replaceFile(folder.path(name), newBytes, expected);
    }
    failed.insert(calls.failed());
    SCOPED_TRACE((QByteArray::number(call) + ' ' + calls.failed()).toStdString());

    const QByteArray after = folder.content(name);
    for (const QString& left : folder.names()) EXPECT_EQ(left, name) << "a stray file";
    if (result.outcome == Outcome::Written) {
      EXPECT_EQ(after, newBytes);
      // what came out of its place is removed at the second try
      EXPECT_TRUE(code == EINTR || calls.failed() == "close" || calls.failed() == "unlinkat")
          << "a failure was passed over";
    } else {
      EXPECT_EQ(result.outcome, Outcome::Failed);
      EXPECT_EQ(result.error, folder.path(name) + u": "_qs + words);
      EXPECT_EQ(result.denied, code == EACCES || code == EROFS);
      const bool folderSync = call == all - 2;  // only its fsync and its close come behind the rename
      EXPECT_EQ(after, folderSync ? newBytes : before);
    }
    // The next try writes everything anew.
    if (result.outcome == Outcome::Failed) {
      const FailingCalls again(-1, 0);
      const ScopedSystemCalls scope(again.calls());
      EXPECT_EQ(replaceFile(folder.path(name), newBytes, expected).outcome, Outcome::Written);
      EXPECT_EQ(folder.content(name), newBytes);
    }
  }
  EXPECT_TRUE(failed.contains("write") && failed.contains("fsync") && failed.contains("openat"));
  EXPECT_TRUE(failed.contains(!road.compared      ? "renameat"
                              : road.targetExists ? "renameatExchange"
                                                  : "renameatNoReplace"));
}

namespace {

std::string nameOf(const testing::TestParamInfo<std::tuple<Road, int>>& info) {
  static const std::map<int, std::string> codes{{EIO, "EIO"},      {ENOSPC, "ENOSPC"}, {EDQUOT, "EDQUOT"},
                                                {EROFS, "EROFS"},  {EACCES, "EACCES"}, {EINTR, "EINTR"},
                                                {EMFILE, "EMFILE"}};
  return std::string(std::get<0>(info.param).words) + codes.at(std::get<1>(info.param));
}

const std::vector<Road> roads{{"Replacing", true, false},
                              {"ReplacingWhatWasRead", true, true},
                              {"Making", false, false},
                              {"MakingWhereNothingWas", false, true}};
const std::vector<int> codes{EIO, ENOSPC, EDQUOT, EROFS, EACCES, EINTR, EMFILE};

}  // namespace

INSTANTIATE_TEST_SUITE_P(EveryCall, FailingCall,
                         testing::Combine(testing::ValuesIn(roads), testing::ValuesIn(codes)), nameOf);

TEST(ShortWrites, AreWrittenToTheEnd) {
  TestFolder folder;
  SystemCalls calls = SystemCalls::ofTheSystem();
  calls.write = [](int file, const void* bytes, size_t size) {
    return ::write(file, bytes, std::min<size_t>(size, 7));
  };
  const ScopedSystemCalls scope(calls);
  EXPECT_EQ(replaceFile(folder.path(name), newBytes).outcome, Outcome::Written);
  EXPECT_EQ(folder.content(name), newBytes);
}

TEST(ShortWrites, ThatClaimToBeWholeAreFoundOut) {
  TestFolder folder;
  folder.put(name, oldBytes);
  SystemCalls calls = SystemCalls::ofTheSystem();
  calls.write = [](int file, const void* bytes, size_t size) {
    return ::write(file, bytes, size / 2) < 0 ? -1 : ssize_t(size);
  };
  const ScopedSystemCalls scope(calls);
  const WriteResult result = replaceFile(folder.path(name), newBytes);
  EXPECT_EQ(result.outcome, Outcome::Failed);
  EXPECT_EQ(result.error, folder.path(name) + u": only 3500 of 7000 bytes were written"_qs);
  EXPECT_EQ(folder.content(name), oldBytes);
  EXPECT_EQ(folder.names(), QStringList{name});
}

TEST(ShortWrites, OfNothingAtAllDoNotHangTheSave) {
  TestFolder folder;
  SystemCalls calls = SystemCalls::ofTheSystem();
  calls.write = [](int, const void*, size_t) { return ssize_t{0}; };
  const ScopedSystemCalls scope(calls);
  EXPECT_EQ(replaceFile(folder.path(name), newBytes).outcome, Outcome::Failed);
  EXPECT_TRUE(folder.names().isEmpty());
}

TEST(FailedSync, IsNotAskedForAgainOnTheSameFile) {
  TestFolder folder;
  SystemCalls calls = SystemCalls::ofTheSystem();
  int syncs = 0;
  calls.fsync = [&](int) {
    ++syncs;
    errno = EIO;
    return -1;
  };
  const ScopedSystemCalls scope(calls);
  EXPECT_EQ(replaceFile(folder.path(name), newBytes).outcome, Outcome::Failed);
  EXPECT_EQ(syncs, 1);
  EXPECT_TRUE(folder.names().isEmpty());
}

TEST(FailedSync, OfAFolderThatCannotBeSyncedIsNoFailure) {
  TestFolder folder;
  SystemCalls calls = SystemCalls::ofTheSystem();
  int syncs = 0;
  calls.fsync = [&](int file) {
    if (++syncs == 1) return ::fsync(file);
    errno = EINVAL;
    return -1;
  };
  const ScopedSystemCalls scope(calls);
  EXPECT_EQ(replaceFile(folder.path(name), newBytes).outcome, Outcome::Written);
}

TEST(DoubleFailure, LeavesLitterThatTheSweepKnows) {
  TestFolder folder;
  folder.put(name, oldBytes);
  SystemCalls calls = SystemCalls::ofTheSystem();
  calls.write = [](int, const void*, size_t) -> ssize_t {
    errno = ENOSPC;
    return -1;
  };
  calls.unlinkat = [](int, const char*) {
    errno = EIO;
    return -1;
  };
  {
    const ScopedSystemCalls scope(calls);
    EXPECT_EQ(replaceFile(folder.path(name), newBytes).error,
              folder.path(name) + u": No space left on device"_qs);
  }
  EXPECT_EQ(folder.content(name), oldBytes);
  EXPECT_EQ(folder.names().size(), 2);
  EXPECT_EQ(sweepLitter(QFileInfo(folder.path(name)).path(), -10), 1);
  EXPECT_EQ(folder.names(), QStringList{name});
}

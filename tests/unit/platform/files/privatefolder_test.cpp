#include "platform/files/privatefolder.h"

#include "platform/files/posix/systemcalls.h"
#include "tests/unit/platform/files/folder.h"

#include <cerrno>

using namespace platform::files;
using tests::TestFolder;

namespace {

SystemCalls syncingGives(int code) {
  SystemCalls calls = SystemCalls::ofTheSystem();
  calls.fsync = [code](int) {
    errno = code;
    return -1;
  };
  return calls;
}

}  // namespace

TEST(PrivateFolder, IsMadeForItsOwnerOnly) {
  TestFolder folder;
  EXPECT_EQ(makePrivateFolder(folder.path(u"a/b"_qs)), QString());
  EXPECT_EQ(folder.mode(u"a/b"_qs), mode_t{0700});
}

TEST(PrivateFolder, IsMadeWhereFoldersCannotBeSynced) {
  for (const int code : {EINVAL, ENOTSUP}) {
    TestFolder folder;
    const SystemCalls calls = syncingGives(code);
    const ScopedSystemCalls scoped(calls);
    EXPECT_EQ(makePrivateFolder(folder.path(u"a/b"_qs)), QString());
    EXPECT_EQ(folder.mode(u"a/b"_qs), mode_t{0700});
  }
}

TEST(PrivateFolder, IsNotPromisedWhereSyncingFails) {
  TestFolder folder;
  const SystemCalls calls = syncingGives(EIO);
  const ScopedSystemCalls scoped(calls);
  EXPECT_TRUE(makePrivateFolder(folder.path(u"a/b"_qs)).startsWith(folder.path({})));
}

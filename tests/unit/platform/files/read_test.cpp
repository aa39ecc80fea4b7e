#include "platform/files/atomicfile.h"
#include "platform/files/posix/systemcalls.h"
#include "tests/unit/platform/files/folder.h"

#include <QCryptographicHash>

using platform::files::readFile;
using platform::files::ReadResult;
using platform::files::ScopedSystemCalls;
using platform::files::SystemCalls;
using tests::TestFolder;

TEST(ReadFile, GivesTheBytesAsTheyStand) {
  TestFolder folder;
  const QByteArray bytes("line\r\n\0\xFF", 8);
  folder.put(u"a.ics"_qs, bytes);
  const ReadResult result = readFile(folder.path(u"a.ics"_qs));
  EXPECT_TRUE(result.ok) << qUtf8Printable(result.error);
  EXPECT_EQ(result.bytes, bytes);
  EXPECT_FALSE(result.missing);
}

TEST(ReadFile, GivesAFingerprintOfWhatWasRead) {
  TestFolder folder;
  folder.put(u"a.ics"_qs, "content");
  folder.setTime(u"a.ics"_qs, {1700000000, 123456789});
  const auto print = readFile(folder.path(u"a.ics"_qs)).fingerprint;
  EXPECT_TRUE(print.exists);
  EXPECT_EQ(print.mtimeNs, 1700000000123456789);
  EXPECT_EQ(print.size, 7);
  EXPECT_EQ(print.inode, folder.status(u"a.ics"_qs).st_ino);
  EXPECT_EQ(print.hash, QCryptographicHash::hash("content", QCryptographicHash::Sha256));
}

TEST(ReadFile, ReadsAnEmptyFile) {
  TestFolder folder;
  folder.put(u"a"_qs, "");
  const ReadResult result = readFile(folder.path(u"a"_qs));
  EXPECT_TRUE(result.ok);
  EXPECT_TRUE(result.bytes.isEmpty());
}

TEST(ReadFile, ReadsAFileOfManyPieces) {
  TestFolder folder;
  const QByteArray bytes(300'001, 'x');
  folder.put(u"a"_qs, bytes);
  EXPECT_EQ(readFile(folder.path(u"a"_qs)).bytes, bytes);
}

TEST(ReadFile, ReadsOnWhenTheSystemGivesLessThanAskedForOrIsInterrupted) {
  TestFolder folder;
  folder.put(u"a"_qs, "0123456789");
  SystemCalls calls = SystemCalls::ofTheSystem();
  int count = 0;
  calls.read = [&](int file, void* bytes, size_t size) -> ssize_t {
    if (count++ % 2 == 0) {
      errno = EINTR;
      return -1;
    }
    return ::read(file, bytes, std::min<size_t>(size, 3));
  };
  const ScopedSystemCalls scope(calls);
  EXPECT_EQ(readFile(folder.path(u"a"_qs)).bytes, "0123456789");
}

TEST(ReadFile, TellsAMissingFileFromOneThatCannotBeRead) {
  TestFolder folder;
  const ReadResult result = readFile(folder.path(u"none.ics"_qs));
  EXPECT_FALSE(result.ok);
  EXPECT_TRUE(result.missing);
  EXPECT_FALSE(result.fingerprint.exists);
  EXPECT_EQ(result.error, folder.path(u"none.ics"_qs) + u": No such file or directory"_qs);
}

TEST(ReadFile, NamesTheFileAndWhatTheSystemSaidWhenTheUserMayNot) {
  TestFolder folder;
  folder.put(u"a.ics"_qs, "secret");
  SystemCalls calls = SystemCalls::ofTheSystem();
  calls.openat = [](int, const char*, int, mode_t) {
    errno = EACCES;
    return -1;
  };
  const ScopedSystemCalls scope(calls);
  const ReadResult result = readFile(folder.path(u"a.ics"_qs));
  EXPECT_FALSE(result.ok);
  EXPECT_TRUE(result.denied);
  EXPECT_FALSE(result.missing);
  EXPECT_EQ(result.error, folder.path(u"a.ics"_qs) + u": Permission denied"_qs);
}

TEST(ReadFile, GivesNothingOfAFileThatFailsHalfWay) {
  TestFolder folder;
  folder.put(u"a"_qs, QByteArray(200'000, 'x'));
  SystemCalls calls = SystemCalls::ofTheSystem();
  int count = 0;
  calls.read = [&](int file, void* bytes, size_t size) -> ssize_t {
    if (++count == 2) {
      errno = EIO;
      return -1;
    }
    return ::read(file, bytes, std::min<size_t>(size, 1000));
  };
  const ScopedSystemCalls scope(calls);
  const ReadResult result = readFile(folder.path(u"a"_qs));
  EXPECT_FALSE(result.ok);
  EXPECT_TRUE(result.bytes.isEmpty());
  EXPECT_EQ(result.error, folder.path(u"a"_qs) + u": Input/output error"_qs);
}

TEST(ReadFile, RefusesAFifoWithoutWaitingForAWriter) {
  TestFolder folder;
  ASSERT_EQ(::mkfifo(folder.encoded(u"pipe.ics"_qs).constData(), 0600), 0);
  const ReadResult result = readFile(folder.path(u"pipe.ics"_qs));
  EXPECT_FALSE(result.ok);
  EXPECT_EQ(result.error, folder.path(u"pipe.ics"_qs) + u": not a regular file"_qs);
}

TEST(ReadFile, RefusesAFolderAndADevice) {
  TestFolder folder;
  ASSERT_TRUE(QDir().mkdir(folder.path(u"sub"_qs)));
  EXPECT_EQ(readFile(folder.path(u"sub"_qs)).error, folder.path(u"sub"_qs) + u": Is a directory"_qs);
  EXPECT_EQ(readFile(u"/dev/zero"_qs).error, u"/dev/zero: not a regular file"_qs);
}

TEST(ReadFile, RefusesAFileOverTheLimitAndTakesOneThatJustFits) {
  TestFolder folder;
  folder.put(u"a"_qs, "12345");
  EXPECT_TRUE(readFile(folder.path(u"a"_qs), 5).ok);
  const ReadResult result = readFile(folder.path(u"a"_qs), 4);
  EXPECT_FALSE(result.ok);
  EXPECT_TRUE(result.bytes.isEmpty());
  EXPECT_EQ(result.error, folder.path(u"a"_qs) + u": larger than the 4 bytes that are read"_qs);
}

TEST(ReadFile, RefusesEmptyNamesAndNamesWithANullCharacter) {
  EXPECT_FALSE(readFile({}).ok);
  TestFolder folder;
  folder.put(u"a"_qs, "x");
  EXPECT_FALSE(readFile(folder.path(u"a"_qs) + QChar(u'\0') + u"b"_qs).ok);
}

TEST(ReadFile, FollowsALink) {
  TestFolder folder;
  folder.put(u"real"_qs, "content");
  ASSERT_EQ(::symlink("real", folder.encoded(u"link"_qs).constData()), 0);
  EXPECT_EQ(readFile(folder.path(u"link"_qs)).bytes, "content");
}

TEST(ReadFile, ReadsAgainAFileThatIsWrittenToMeanwhile) {
  TestFolder folder;
  folder.put(u"a"_qs, "old");
  SystemCalls calls = SystemCalls::ofTheSystem();
  bool written = false;
  calls.read = [&](int file, void* bytes, size_t size) -> ssize_t {
    if (!std::exchange(written, true)) folder.put(u"a"_qs, "newer text");
    return ::read(file, bytes, size);
  };
  const ScopedSystemCalls scope(calls);
  EXPECT_EQ(readFile(folder.path(u"a"_qs)).bytes, "newer text");
}

TEST(ReadFile, GivesUpOnAFileThatNeverStandsStill) {
  TestFolder folder;
  folder.put(u"a"_qs, "x");
  SystemCalls calls = SystemCalls::ofTheSystem();
  QByteArray more;
  calls.read = [&](int file, void* bytes, size_t size) -> ssize_t {
    folder.put(u"a"_qs, more += "x");
    return ::read(file, bytes, size);
  };
  const ScopedSystemCalls scope(calls);
  const ReadResult result = readFile(folder.path(u"a"_qs));
  EXPECT_FALSE(result.ok);
  EXPECT_EQ(result.error, folder.path(u"a"_qs) + u": another program keeps changing it"_qs);
}

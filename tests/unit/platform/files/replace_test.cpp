#include "platform/files/atomicfile.h"
#include "platform/files/posix/litternames.h"
#include "platform/files/posix/systemcalls.h"
#include "tests/unit/platform/files/folder.h"

using namespace platform::files;
using tests::TestFolder;

TEST(ReplaceFile, WritesTheBytesAndLeavesNothingElse) {
  TestFolder folder;
  folder.put(u"a.ics"_qs, "old");
  const WriteResult result = replaceFile(folder.path(u"a.ics"_qs), "new\r\n");
  EXPECT_EQ(result.outcome, Outcome::Written) << qUtf8Printable(result.error);
  EXPECT_EQ(folder.content(u"a.ics"_qs), "new\r\n");
  EXPECT_EQ(folder.names(), QStringList{u"a.ics"_qs});
}

TEST(ReplaceFile, GivesTheFingerprintThatReadingTheFileGives) {
  TestFolder folder;
  const QString path = folder.path(u"a.ics"_qs);
  const Fingerprint written = replaceFile(path, "new").fingerprint;
  EXPECT_EQ(written, readFile(path).fingerprint);
}

TEST(ReplaceFile, WritesAnEmptyFile) {
  TestFolder folder;
  folder.put(u"a"_qs, "old");
  EXPECT_EQ(replaceFile(folder.path(u"a"_qs), {}).outcome, Outcome::Written);
  EXPECT_EQ(folder.content(u"a"_qs), "");
}

TEST(ReplaceFile, MakesANewFileAsTheUmaskHasIt) {
  TestFolder folder;
  const mode_t before = ::umask(027);
  replaceFile(folder.path(u"a"_qs), "x");
  ::umask(before);
  EXPECT_EQ(folder.mode(u"a"_qs), mode_t{0640});
}

TEST(ReplaceFile, KeepsTheModeOfTheFile) {
  TestFolder folder;
  folder.put(u"a"_qs, "old", 0664);
  replaceFile(folder.path(u"a"_qs), "new");
  EXPECT_EQ(folder.mode(u"a"_qs), mode_t{0664});
}

TEST(ReplaceFile, NeverCarriesASetUserBitOver) {
  TestFolder folder;
  folder.put(u"a"_qs, "old", 04755);
  replaceFile(folder.path(u"a"_qs), "new");
  EXPECT_EQ(folder.mode(u"a"_qs), mode_t{0755});
}

TEST(ReplaceFile, MakesAPrivateFileForTheOwnerOnly) {
  TestFolder folder;
  replaceFile(folder.path(u"a"_qs), "x", std::nullopt, FileMode::OwnerOnly);
  EXPECT_EQ(folder.mode(u"a"_qs), mode_t{0600});
}

TEST(ReplaceFile, TakesFromAPrivateFileWhatItGrantedToOthers) {
  TestFolder folder;
  folder.put(u"a"_qs, "old", 0664);
  replaceFile(folder.path(u"a"_qs), "new", std::nullopt, FileMode::OwnerOnly);
  EXPECT_EQ(folder.mode(u"a"_qs), mode_t{0600});
}

TEST(ReplaceFile, NeverShowsTheContentToMoreThanTheFileDoes) {
  TestFolder folder;
  folder.put(u"a"_qs, "old", 0600);
  SystemCalls calls = SystemCalls::ofTheSystem();
  mode_t whileWriting = 0777;
  calls.write = [&](int file, const void* bytes, size_t size) {
    struct stat found {};
    ::fstat(file, &found);
    whileWriting = found.st_mode & 0777;
    return ::write(file, bytes, size);
  };
  const ScopedSystemCalls scope(calls);
  replaceFile(folder.path(u"a"_qs), "new");
  EXPECT_EQ(whileWriting, mode_t{0600});
}

TEST(ReplaceFile, GivesTheFileBackToItsOwnerAndGroup) {
  TestFolder folder;
  folder.put(u"a"_qs, "old", 0640);
  SystemCalls calls = SystemCalls::ofTheSystem();
  calls.fstatat = [](int at, const char* name, struct stat* out, int flags) {
    const int result = ::fstatat(at, name, out, flags);
    out->st_uid = 4711;
    out->st_gid = 4712;
    return result;
  };
  uid_t owner = 0;
  gid_t group = 0;
  calls.fchown = [&](int, uid_t u, gid_t g) {
    owner = u;
    group = g;
    return 0;
  };
  const ScopedSystemCalls scope(calls);
  replaceFile(folder.path(u"a"_qs), "new");
  EXPECT_EQ(owner, uid_t{4711});
  EXPECT_EQ(group, gid_t{4712});
  EXPECT_EQ(folder.mode(u"a"_qs), mode_t{0640});
}

TEST(ReplaceFile, GrantsTheWrongGroupNoMoreThanEverybodyWhenTheGroupCannotBeKept) {
  TestFolder folder;
  folder.put(u"a"_qs, "old", 0664);
  SystemCalls calls = SystemCalls::ofTheSystem();
  calls.fstatat = [](int at, const char* name, struct stat* out, int flags) {
    const int result = ::fstatat(at, name, out, flags);
    out->st_gid = 4712;
    return result;
  };
  calls.fchown = [](int, uid_t, gid_t) {
    errno = EPERM;
    return -1;
  };
  const ScopedSystemCalls scope(calls);
  EXPECT_EQ(replaceFile(folder.path(u"a"_qs), "new").outcome, Outcome::Written);
  EXPECT_EQ(folder.mode(u"a"_qs), mode_t{0644});
}

TEST(ReplaceFile, WritesThroughALinkAndKeepsTheLink) {
  TestFolder folder;
  ASSERT_TRUE(QDir().mkdir(folder.path(u"sub"_qs)));
  folder.put(u"sub/real"_qs, "old");
  ASSERT_EQ(::symlink("sub/second", folder.encoded(u"first"_qs).constData()), 0);
  ASSERT_EQ(::symlink("real", folder.encoded(u"sub/second"_qs).constData()), 0);
  EXPECT_EQ(replaceFile(folder.path(u"first"_qs), "new").outcome, Outcome::Written);
  EXPECT_EQ(folder.content(u"sub/real"_qs), "new");
  EXPECT_TRUE(S_ISLNK(folder.status(u"first"_qs).st_mode));
  EXPECT_TRUE(S_ISLNK(folder.status(u"sub/second"_qs).st_mode));
  EXPECT_EQ(folder.names(), (QStringList{u"first"_qs, u"sub"_qs}));
}

TEST(ReplaceFile, WritesThroughALinkWithAWholePath) {
  TestFolder folder;
  folder.put(u"real"_qs, "old");
  ASSERT_EQ(::symlink(folder.encoded(u"real"_qs).constData(), folder.encoded(u"link"_qs).constData()), 0);
  replaceFile(folder.path(u"link"_qs), "new");
  EXPECT_EQ(folder.content(u"real"_qs), "new");
}

TEST(ReplaceFile, MakesTheFileThatALinkLeadsTo) {
  TestFolder folder;
  ASSERT_EQ(::symlink("later", folder.encoded(u"link"_qs).constData()), 0);
  EXPECT_EQ(replaceFile(folder.path(u"link"_qs), "new").outcome, Outcome::Written);
  EXPECT_EQ(folder.content(u"later"_qs), "new");
  EXPECT_TRUE(S_ISLNK(folder.status(u"link"_qs).st_mode));
}

TEST(ReplaceFile, RefusesLinksThatLeadInACircle) {
  TestFolder folder;
  ASSERT_EQ(::symlink("b", folder.encoded(u"a"_qs).constData()), 0);
  ASSERT_EQ(::symlink("a", folder.encoded(u"b"_qs).constData()), 0);
  const WriteResult result = replaceFile(folder.path(u"a"_qs), "new");
  EXPECT_EQ(result.outcome, Outcome::Failed);
  EXPECT_EQ(result.error, folder.path(u"a"_qs) + u": Too many levels of symbolic links"_qs);
}

TEST(ReplaceFile, LeavesTheOldContentUnderTheOtherNamesOfAHardLink) {
  TestFolder folder;
  folder.put(u"a"_qs, "old");
  ASSERT_EQ(::link(folder.encoded(u"a"_qs).constData(), folder.encoded(u"snapshot"_qs).constData()), 0);
  EXPECT_EQ(replaceFile(folder.path(u"a"_qs), "new").outcome, Outcome::Written);
  EXPECT_EQ(folder.content(u"a"_qs), "new");
  EXPECT_EQ(folder.content(u"snapshot"_qs), "old");
}

TEST(ReplaceFile, RefusesAReadOnlyFileThoughItsFolderWouldLetIt) {
  TestFolder folder;
  folder.put(u"a.ics"_qs, "old", 0444);
  const WriteResult result = replaceFile(folder.path(u"a.ics"_qs), "new");
  EXPECT_EQ(result.outcome, Outcome::Failed);
  EXPECT_TRUE(result.denied);
  EXPECT_EQ(result.error, folder.path(u"a.ics"_qs) + u": Permission denied"_qs);
  EXPECT_EQ(folder.content(u"a.ics"_qs), "old");
  EXPECT_EQ(folder.names(), QStringList{u"a.ics"_qs});
}

TEST(ReplaceFile, RefusesAFileOfAnotherUserThatThisOneMayOnlyRead) {
  TestFolder folder;
  folder.put(u"a"_qs, "old");
  SystemCalls calls = SystemCalls::ofTheSystem();
  calls.faccessat = [](int, const char*, int mode, int) {
    EXPECT_EQ(mode, W_OK);
    errno = EACCES;
    return -1;
  };
  const ScopedSystemCalls scope(calls);
  EXPECT_TRUE(replaceFile(folder.path(u"a"_qs), "new").denied);
  EXPECT_EQ(folder.content(u"a"_qs), "old");
}

TEST(ReplaceFile, RefusesFifosFoldersAndDevices) {
  TestFolder folder;
  ASSERT_EQ(::mkfifo(folder.encoded(u"pipe"_qs).constData(), 0600), 0);
  ASSERT_TRUE(QDir().mkdir(folder.path(u"sub"_qs)));
  EXPECT_EQ(replaceFile(folder.path(u"pipe"_qs), "x").error,
            folder.path(u"pipe"_qs) + u": not a regular file"_qs);
  EXPECT_EQ(replaceFile(folder.path(u"sub"_qs), "x").error, folder.path(u"sub"_qs) + u": Is a directory"_qs);
  EXPECT_EQ(replaceFile(folder.path(u"sub/"_qs), "x").outcome, Outcome::Failed);
  EXPECT_EQ(replaceFile(u"/dev/null"_qs, "x").error, u"/dev/null: not a regular file"_qs);
  EXPECT_TRUE(S_ISFIFO(folder.status(u"pipe"_qs).st_mode));
}

TEST(ReplaceFile, SaysThatTheFolderIsMissing) {
  TestFolder folder;
  const WriteResult result = replaceFile(folder.path(u"none/a.ics"_qs), "x");
  EXPECT_EQ(result.outcome, Outcome::Failed);
  EXPECT_TRUE(result.missing);
  EXPECT_EQ(result.error, folder.path(u"none/a.ics"_qs) + u": No such file or directory"_qs);
}

TEST(ReplaceFile, RefusesEmptyNamesAndNamesWithANullCharacter) {
  EXPECT_EQ(replaceFile({}, "x").outcome, Outcome::Failed);
  TestFolder folder;
  EXPECT_EQ(replaceFile(folder.path(u"a"_qs) + QChar(u'\0'), "x").outcome, Outcome::Failed);
  EXPECT_TRUE(folder.names().isEmpty());
}

TEST(ReplaceFile, TakesTheLongestNameThatTheSystemAllows) {
  TestFolder folder;
  const QString longest = QString(u"å"_qs).repeated(125) + u"x.ics"_qs;  // 255 bytes
  EXPECT_EQ(replaceFile(folder.path(longest), "new").outcome, Outcome::Written);
  EXPECT_EQ(folder.names(), QStringList{longest});
}

TEST(ReplaceFile, WritesBesideTheTargetUnderAHiddenNameThatIsNoCalendarFile) {
  TestFolder folder;
  folder.put(u"meeting.ics"_qs, "old");
  SystemCalls calls = SystemCalls::ofTheSystem();
  QByteArray name;
  int flags = 0;
  calls.openat = [&](int at, const char* opened, int how, mode_t mode) {
    if (how & O_CREAT) {
      name = opened;
      flags = how;
    }
    return ::openat(at, opened, how, mode);
  };
  const ScopedSystemCalls scope(calls);
  replaceFile(folder.path(u"meeting.ics"_qs), "new");
  EXPECT_TRUE(name.startsWith(".meeting.ics.")) << name.constData();
  EXPECT_TRUE(name.endsWith(".tmp")) << name.constData();
  EXPECT_EQ(name.size(), 13 + 6 + 4);
  EXPECT_TRUE(flags & O_EXCL) << "a file or link that stands under that name must not be written through";
}

TEST(ReplaceFile, NeverNamesATemporaryFileAsACalendarFile) {
  for (const QByteArray& target : {QByteArray("a.ics"), QByteArray(".ics"), QByteArray(255, 'x') + ".ics"}) {
    const QByteArray name = temporaryName(target);
    EXPECT_FALSE(name.toLower().endsWith(".ics")) << name.constData();
    EXPECT_LE(name.size(), 255);
    EXPECT_TRUE(isTemporaryName(name)) << name.constData();
  }
}

TEST(ReplaceFile, TakesAnotherNameWhenTheTemporaryOneIsTaken) {
  TestFolder folder;
  SystemCalls calls = SystemCalls::ofTheSystem();
  int taken = 5;
  calls.openat = [&](int at, const char* name, int flags, mode_t mode) {
    if ((flags & O_CREAT) && taken-- > 0) {
      errno = EEXIST;
      return -1;
    }
    return ::openat(at, name, flags, mode);
  };
  const ScopedSystemCalls scope(calls);
  EXPECT_EQ(replaceFile(folder.path(u"a"_qs), "new").outcome, Outcome::Written);
}

TEST(ReplaceFile, SyncsTheFileBeforeTheRenameAndTheFolderBehindIt) {
  TestFolder folder;
  folder.put(u"a"_qs, "old");
  SystemCalls calls = SystemCalls::ofTheSystem();
  QStringList steps;
  calls.write = [&](int file, const void* bytes, size_t size) {
    steps.append(u"write"_qs);
    return ::write(file, bytes, size);
  };
  calls.fsync = [&](int file) {
    struct stat found {};
    ::fstat(file, &found);
    steps.append(S_ISDIR(found.st_mode) ? u"sync folder"_qs : u"sync file"_qs);
    return ::fsync(file);
  };
  calls.renameat = [&](int at, const char* from, const char* to) {
    steps.append(u"rename"_qs);
    return ::renameat(at, from, at, to);
  };
  const ScopedSystemCalls scope(calls);
  replaceFile(folder.path(u"a"_qs), "new");
  EXPECT_EQ(steps, (QStringList{u"write"_qs, u"sync file"_qs, u"rename"_qs, u"sync folder"_qs}));
}

#include "platform/files/atomicfile.h"
#include "platform/files/posix/systemcalls.h"
#include "tests/unit/platform/files/folder.h"

using namespace platform::files;
using tests::TestFolder;

namespace {
const QString name = QStringLiteral("a.ics");
}

TEST(RemoveFile, RemovesAFile) {
  TestFolder folder;
  folder.put(name, "x");
  EXPECT_EQ(removeFile(folder.path(name)).outcome, Outcome::Written);
  EXPECT_TRUE(folder.names().isEmpty());
}

TEST(RemoveFile, RemovesAFileThatIsStillWhatWasRead) {
  TestFolder folder;
  folder.put(name, "x");
  EXPECT_EQ(removeFile(folder.path(name), readFile(folder.path(name)).fingerprint).outcome, Outcome::Written);
}

TEST(RemoveFile, KeepsAFileThatSomebodyHasChanged) {
  TestFolder folder;
  folder.put(name, "old");
  const Fingerprint seen = readFile(folder.path(name)).fingerprint;
  const timespec time = folder.status(name).st_mtim;
  folder.put(name, "odd");
  folder.setTime(name, time);
  const WriteResult result = removeFile(folder.path(name), seen);
  EXPECT_EQ(result.outcome, Outcome::ChangedMeanwhile);
  EXPECT_EQ(result.error, folder.path(name) + u": changed by another program meanwhile"_qs);
  EXPECT_EQ(folder.content(name), "odd");
}

TEST(RemoveFile, TellsThatAFileIsGoneAlready) {
  TestFolder folder;
  folder.put(name, "old");
  const Fingerprint seen = readFile(folder.path(name)).fingerprint;
  ASSERT_EQ(::unlink(folder.encoded(name).constData()), 0);
  EXPECT_EQ(removeFile(folder.path(name), seen).outcome, Outcome::ChangedMeanwhile);
  const WriteResult result = removeFile(folder.path(name));
  EXPECT_EQ(result.outcome, Outcome::Failed);
  EXPECT_TRUE(result.missing);
  EXPECT_EQ(result.error, folder.path(name) + u": No such file or directory"_qs);
  EXPECT_EQ(removeFile(folder.path(name), Fingerprint{}).outcome, Outcome::Written) << "as was expected";
}

TEST(RemoveFile, RefusesAReadOnlyFileAndAFolder) {
  TestFolder folder;
  folder.put(name, "x", 0444);
  ASSERT_TRUE(QDir().mkdir(folder.path(u"sub"_qs)));
  EXPECT_TRUE(removeFile(folder.path(name)).denied);
  EXPECT_EQ(removeFile(folder.path(u"sub"_qs)).outcome, Outcome::Failed);
  EXPECT_EQ(folder.names(), (QStringList{name, u"sub"_qs}));
}

TEST(RemoveFile, OfALinkRemovesTheLinkAndKeepsWhatItLeadsTo) {
  TestFolder folder;
  folder.put(name, "x");
  ASSERT_EQ(::symlink("a.ics", folder.encoded(u"link"_qs).constData()), 0);
  const Fingerprint seen = readFile(folder.path(u"link"_qs)).fingerprint;
  EXPECT_EQ(removeFile(folder.path(u"link"_qs), seen).outcome, Outcome::Written);
  EXPECT_EQ(folder.names(), QStringList{name});
}

TEST(RemoveFile, SyncsTheFolderAndSaysWhenThatFailsThoughTheFileIsGone) {
  TestFolder folder;
  folder.put(name, "x");
  SystemCalls calls = SystemCalls::ofTheSystem();
  calls.fsync = [](int) {
    errno = EIO;
    return -1;
  };
  const ScopedSystemCalls scope(calls);
  const WriteResult result = removeFile(folder.path(name));
  EXPECT_EQ(result.outcome, Outcome::Written);
  EXPECT_EQ(result.error, folder.path(name) + u": Input/output error"_qs);
  EXPECT_TRUE(folder.names().isEmpty());
}

TEST(RemoveFile, NamesTheFileWhenTheFolderIsReadOnly) {
  TestFolder folder;
  folder.put(name, "x");
  SystemCalls calls = SystemCalls::ofTheSystem();
  calls.unlinkat = [](int, const char*) {
    errno = EACCES;
    return -1;
  };
  const ScopedSystemCalls scope(calls);
  const WriteResult result = removeFile(folder.path(name));
  EXPECT_TRUE(result.denied);
  EXPECT_EQ(result.error, folder.path(name) + u": Permission denied"_qs);
}

TEST(RemoveFile, KeepsWhatAnotherProgramMakesOfItInTheVeryLastMoment) {
  enum class Deed { Replace, EditInPlace, HaveOpen };
  for (const Deed deed : {Deed::Replace, Deed::EditInPlace, Deed::HaveOpen}) {
    TestFolder folder;
    const bool told = deed != Deed::HaveOpen || folder.tellsOfWriters();
    folder.put(name, "10:00");
    QFile opened(folder.path(name));
    const Fingerprint seen = readFile(folder.path(name)).fingerprint;
    SystemCalls calls = SystemCalls::ofTheSystem();
    bool done = false;
    calls.renameatNoReplace = [&](int at, const char* from, const char* to) {
      if (!std::exchange(done, true)) {
        const timespec time = folder.status(name).st_mtim;
        if (deed == Deed::HaveOpen) {
          opened.open(QIODevice::ReadWrite | QIODevice::Unbuffered);
        } else if (deed == Deed::EditInPlace) {
          folder.put(name, "11:00");
          folder.setTime(name, time);
        } else {
          folder.put(u"other"_qs, "11:00");
          ::rename(folder.encoded(u"other"_qs).constData(), folder.encoded(name).constData());
        }
      }
      return SystemCalls::ofTheSystem().renameatNoReplace(at, from, to);
    };
    const ScopedSystemCalls scope(calls);
    const WriteResult result = removeFile(folder.path(name), seen);
    EXPECT_EQ(result.outcome, told ? Outcome::ChangedMeanwhile : Outcome::Written);
    EXPECT_EQ(folder.names(), told ? QStringList{name} : QStringList());
    if (told) {
      EXPECT_EQ(folder.content(name), deed == Deed::HaveOpen ? "10:00" : "11:00");
    }
  }
}

TEST(RemoveFile, TellsThatAnotherProgramWasFaster) {
  TestFolder folder;
  folder.put(name, "old");
  const Fingerprint seen = readFile(folder.path(name)).fingerprint;
  SystemCalls calls = SystemCalls::ofTheSystem();
  calls.renameatNoReplace = [&](int at, const char* from, const char* to) {
    ::unlink(folder.encoded(name).constData());
    return SystemCalls::ofTheSystem().renameatNoReplace(at, from, to);
  };
  const ScopedSystemCalls scope(calls);
  EXPECT_EQ(removeFile(folder.path(name), seen).outcome, Outcome::ChangedMeanwhile);
}

TEST(RemoveFile, PutsBackWhatCannotBeRemoved) {
  TestFolder folder;
  folder.put(name, "old");
  const Fingerprint seen = readFile(folder.path(name)).fingerprint;
  SystemCalls calls = SystemCalls::ofTheSystem();
  calls.unlinkat = [](int, const char*) {
    errno = EIO;
    return -1;
  };
  const ScopedSystemCalls scope(calls);
  const WriteResult result = removeFile(folder.path(name), seen);
  EXPECT_EQ(result.outcome, Outcome::Failed);
  EXPECT_EQ(result.error, folder.path(name) + u": Input/output error"_qs);
  EXPECT_EQ(folder.names(), QStringList{name});
}

TEST(RenameFile, GivesAnotherName) {
  TestFolder folder;
  folder.put(name, "x");
  EXPECT_EQ(renameFile(folder.path(name), u"b.ics"_qs).outcome, Outcome::Written);
  EXPECT_EQ(folder.names(), QStringList{u"b.ics"_qs});
}

TEST(RenameFile, NeverTakesAnExistingName) {
  TestFolder folder;
  folder.put(name, "mine");
  folder.put(u"b.ics"_qs, "theirs");
  for (const bool noSuchCall : {false, true}) {
    SystemCalls calls = SystemCalls::ofTheSystem();
    if (noSuchCall)
      calls.renameatNoReplace = [](int, const char*, const char*) {
        errno = ENOSYS;
        return -1;
      };
    const ScopedSystemCalls scope(calls);
    const WriteResult result = renameFile(folder.path(name), u"b.ics"_qs);
    EXPECT_EQ(result.outcome, Outcome::ChangedMeanwhile);
    EXPECT_EQ(result.error, folder.path(name) + u": the name \"b.ics\" is taken"_qs);
  }
  EXPECT_EQ(folder.content(name), "mine");
  EXPECT_EQ(folder.content(u"b.ics"_qs), "theirs");
}

TEST(RenameFile, StaysInTheFolder) {
  TestFolder folder;
  folder.put(name, "x");
  for (const QString& bad : {u""_qs, u"."_qs, u".."_qs, u"../b"_qs, u"sub/b"_qs})
    EXPECT_EQ(renameFile(folder.path(name), bad).outcome, Outcome::Failed) << qUtf8Printable(bad);
  EXPECT_EQ(folder.names(), QStringList{name});
}

TEST(RenameFile, TellsThatTheFileIsGone) {
  TestFolder folder;
  EXPECT_TRUE(renameFile(folder.path(name), u"b"_qs).missing);
}

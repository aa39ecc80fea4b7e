#include "platform/files/atomicfile.h"
#include "platform/files/posix/systemcalls.h"
#include "tests/unit/platform/files/failingcalls.h"
#include "tests/unit/platform/files/folder.h"

#include <set>
#include <system_error>

using namespace platform::files;
using tests::FailingCalls;
using tests::TestFolder;

namespace {

const QString name = QStringLiteral("calendar.ics");

/// Bytes of which no two stretches are alike.
QByteArray numbered(int size) {
  QByteArray bytes;
  for (int line = 0; bytes.size() < size; ++line) bytes += "line " + QByteArray::number(line) + "\r\n";
  bytes.truncate(size);
  return bytes;
}

QByteArray edited(QByteArray bytes, const QList<Splice>& splices) {
  for (auto splice = splices.crbegin(); splice != splices.crend(); ++splice)
    bytes.replace(splice->offset, splice->was.size(), splice->with);
  return bytes;
}

/// Both roads must do the same: a file taken whole, and one of which the system copies what stays.
struct Splicing : testing::TestWithParam<int> {
  TestFolder folder;
  QString path = folder.path(name);
  QByteArray old = numbered(GetParam());
  Fingerprint seen;

  void SetUp() override {
    folder.put(name, old);
    seen = readFile(path).fingerprint;
  }
  Splice at(qint64 offset, int length, const QByteArray& with) const {
    return {offset, old.mid(offset, length), with};
  }
  QList<Splice> some() const {
    return {at(0, 4, "LINE"), at(2000, 0, "put in\r\n"), at(3000, 500, ""),
            at(old.size() - 3, 3, "the end\r\n")};
  }
  void expectChanged(const WriteResult& result, const QByteArray& kept) {
    EXPECT_EQ(result.outcome, Outcome::ChangedMeanwhile);
    EXPECT_EQ(result.error, path + u": changed by another program meanwhile"_qs);
    EXPECT_EQ(folder.content(name), kept);
    EXPECT_EQ(folder.names(), QStringList{name});
  }
  /// Without the hash, as who has read only a part knows a file.
  Fingerprint inPart() const {
    Fingerprint part = seen;
    part.hash.clear();
    return part;
  }
};

}  // namespace

TEST_P(Splicing, ReplacesTheStretchesAndLeavesEveryOtherByte) {
  const WriteResult result = spliceFile(path, some(), seen);
  EXPECT_EQ(result.outcome, Outcome::Written) << qUtf8Printable(result.error);
  EXPECT_EQ(folder.content(name), edited(old, some()));
  EXPECT_EQ(folder.names(), QStringList{name});
}

TEST_P(Splicing, TakesTheStretchesInAnyOrder) {
  QList<Splice> backwards = some();
  std::reverse(backwards.begin(), backwards.end());
  EXPECT_EQ(spliceFile(path, backwards, seen).outcome, Outcome::Written);
  EXPECT_EQ(folder.content(name), edited(old, some()));
}

TEST_P(Splicing, PutsTwoStretchesOfOnePlaceInTheirOrder) {
  spliceFile(path, {at(10, 0, "first"), at(10, 0, "second"), at(10, 2, "third")}, seen);
  EXPECT_EQ(folder.content(name), old.left(10) + "firstsecondthird" + old.mid(12));
}

TEST_P(Splicing, RefusesStretchesThatOverlap) {
  const WriteResult result = spliceFile(path, {at(10, 20, "a"), at(29, 5, "b")}, seen);
  EXPECT_EQ(result.outcome, Outcome::Failed);
  EXPECT_EQ(result.error, path + u": Invalid argument"_qs);
  EXPECT_EQ(folder.content(name), old);
}

TEST_P(Splicing, LeavesAFileAloneThatHoldsSomethingElseAtTheStretch) {
  expectChanged(spliceFile(path, {{100, "not this", "new"}}, seen), old);
  expectChanged(spliceFile(path, {{old.size() - 2, "beyond", "new"}}, seen), old);
  expectChanged(spliceFile(path, {{old.size() + 2, "", "new"}}, seen), old);
}

TEST_P(Splicing, CanEmptyAFileAndCanAddToItsEnd) {
  EXPECT_EQ(spliceFile(path, {at(0, int(old.size()), "")}, seen).outcome, Outcome::Written);
  EXPECT_EQ(folder.content(name), "");
  folder.put(name, old);
  EXPECT_EQ(spliceFile(path, {at(old.size(), 0, "more")}, readFile(path).fingerprint).outcome,
            Outcome::Written);
  EXPECT_EQ(folder.content(name), old + "more");
}

TEST_P(Splicing, GivesAFingerprintThatServesTheNextWrite) {
  const WriteResult first = spliceFile(path, {at(5, 3, "first")}, seen);
  EXPECT_EQ(spliceFile(path, {{5, "first", "second"}}, first.fingerprint).outcome, Outcome::Written);
  EXPECT_EQ(folder.content(name), old.left(5) + "second" + old.mid(8));
}

TEST_P(Splicing, IsSatisfiedWithTimeSizeAndInodeWhereOnlyAPartWasRead) {
  EXPECT_EQ(spliceFile(path, some(), inPart()).outcome, Outcome::Written);
  EXPECT_EQ(folder.content(name), edited(old, some()));
}

TEST_P(Splicing, OfWhichOnlyAPartWasReadTakesAnotherTimeForAChange) {
  folder.setTime(name, {1, 0});
  expectChanged(spliceFile(path, some(), inPart()), old);
}

TEST_P(Splicing, TakesAMereTouchForNoChangeWhereTheContentIsKnown) {
  folder.setTime(name, {1, 0});
  EXPECT_EQ(spliceFile(path, some(), seen).outcome, Outcome::Written);
}

TEST_P(Splicing, NoticesAnotherFileOfTheSameSizeInItsPlace) {
  QByteArray theirs = old;
  theirs[old.size() / 2] = '#';
  folder.put(u"other"_qs, theirs);
  ASSERT_EQ(::rename(folder.encoded(u"other"_qs).constData(), folder.encoded(name).constData()), 0);
  expectChanged(spliceFile(path, some(), seen), theirs);
  expectChanged(spliceFile(path, some(), inPart()), theirs);
}

TEST_P(Splicing, DoesNotBringADeletedFileBack) {
  ASSERT_EQ(::unlink(folder.encoded(name).constData()), 0);
  EXPECT_EQ(spliceFile(path, some(), seen).outcome, Outcome::ChangedMeanwhile);
  EXPECT_TRUE(folder.names().isEmpty());
}

TEST_P(Splicing, NoticesWhatIsWrittenWhileTheNewFileIsSynced) {
  SystemCalls calls = SystemCalls::ofTheSystem();
  calls.fsync = [&](int file) {
    folder.put(name, old + "theirs");
    return ::fsync(file);
  };
  const ScopedSystemCalls scope(calls);
  expectChanged(spliceFile(path, some(), seen), old + "theirs");
}

TEST_P(Splicing, NoticesThatTheFileIsCutWhileItIsCopied) {
  SystemCalls calls = SystemCalls::ofTheSystem();
  const auto cut = [&] { EXPECT_EQ(::truncate(folder.encoded(name).constData(), 100), 0); };
  calls.copyFileRange = [&](int from, off_t* offset, int to, size_t size) {
    cut();
    return ::copy_file_range(from, offset, to, nullptr, size, 0);
  };
  calls.read = [&](int file, void* bytes, size_t size) {
    cut();
    return ::read(file, bytes, size);
  };
  const ScopedSystemCalls scope(calls);
  expectChanged(spliceFile(path, some(), seen), old.left(100));
}

TEST_P(Splicing, KeepsTheMode) {
  folder.put(name, old, 0664);
  spliceFile(path, some(), readFile(path).fingerprint);
  EXPECT_EQ(folder.mode(name), mode_t{0664});
  spliceFile(path, {}, readFile(path).fingerprint, FileMode::OwnerOnly);
  EXPECT_EQ(folder.mode(name), mode_t{0600});
}

TEST_P(Splicing, GivesTheFileBackToItsOwnerAndGroup) {
  SystemCalls calls = SystemCalls::ofTheSystem();
  calls.fstatat = [](int at, const char* file, struct stat* out, int flags) {
    const int result = ::fstatat(at, file, out, flags);
    out->st_uid = 4711;
    out->st_gid = 4712;
    return result;
  };
  QList<std::pair<uid_t, gid_t>> given;
  calls.fchown = [&](int, uid_t user, gid_t group) {
    given.append({user, group});
    return 0;
  };
  const ScopedSystemCalls scope(calls);
  EXPECT_EQ(spliceFile(path, some(), seen).outcome, Outcome::Written);
  EXPECT_EQ(given, (QList<std::pair<uid_t, gid_t>>{{4711, 4712}}));
}

TEST_P(Splicing, GoesThroughALinkAndKeepsIt) {
  ASSERT_EQ(::symlink(folder.encoded(name).constData(), folder.encoded(u"link"_qs).constData()), 0);
  EXPECT_EQ(spliceFile(folder.path(u"link"_qs), some(), seen).outcome, Outcome::Written);
  EXPECT_EQ(folder.content(name), edited(old, some()));
  EXPECT_TRUE(S_ISLNK(folder.status(u"link"_qs).st_mode));
}

TEST_P(Splicing, LeavesTheOldContentUnderTheOtherNamesOfAHardLink) {
  ASSERT_EQ(::link(folder.encoded(name).constData(), folder.encoded(u"snapshot"_qs).constData()), 0);
  EXPECT_EQ(spliceFile(path, some(), seen).outcome, Outcome::Written);
  EXPECT_EQ(folder.content(u"snapshot"_qs), old);
}

TEST_P(Splicing, RefusesAReadOnlyFile) {
  folder.put(name, old, 0444);
  const WriteResult result = spliceFile(path, some(), readFile(path).fingerprint);
  EXPECT_EQ(result.outcome, Outcome::Failed);
  EXPECT_TRUE(result.denied);
  EXPECT_EQ(result.error, path + u": Permission denied"_qs);
  EXPECT_EQ(folder.content(name), old);
}

TEST_P(Splicing, RefusesAFileOfAnotherUserThatThisOneMayOnlyRead) {
  SystemCalls calls = SystemCalls::ofTheSystem();
  calls.faccessat = [](int, const char*, int, int) {
    errno = EACCES;
    return -1;
  };
  const ScopedSystemCalls scope(calls);
  EXPECT_TRUE(spliceFile(path, some(), seen).denied);
  EXPECT_EQ(folder.content(name), old);
}

TEST_P(Splicing, RefusesFifosAndFolders) {
  ASSERT_EQ(::mkfifo(folder.encoded(u"pipe"_qs).constData(), 0600), 0);
  ASSERT_TRUE(QDir().mkdir(folder.path(u"sub"_qs)));
  EXPECT_EQ(spliceFile(folder.path(u"pipe"_qs), some(), seen).error,
            folder.path(u"pipe"_qs) + u": not a regular file"_qs);
  EXPECT_EQ(spliceFile(folder.path(u"sub"_qs), some(), seen).error,
            folder.path(u"sub"_qs) + u": Is a directory"_qs);
}

TEST_P(Splicing, SyncsTheFileBeforeTheRenameAndTheFolderBehindIt) {
  SystemCalls calls = SystemCalls::ofTheSystem();
  QStringList steps;
  calls.fsync = [&](int file) {
    struct stat found {};
    ::fstat(file, &found);
    steps.append(S_ISDIR(found.st_mode) ? u"sync folder"_qs : u"sync file"_qs);
    return ::fsync(file);
  };
  calls.renameatExchange = [&](int at, const char* a, const char* b) {
    steps.append(u"rename"_qs);
    return SystemCalls::ofTheSystem().renameatExchange(at, a, b);
  };
  calls.unlinkat = [&](int at, const char* removed) {
    steps.append(u"remove the old one"_qs);
    return ::unlinkat(at, removed, 0);
  };
  const ScopedSystemCalls scope(calls);
  spliceFile(path, some(), seen);
  EXPECT_EQ(steps, (QStringList{u"sync file"_qs, u"rename"_qs, u"remove the old one"_qs, u"sync folder"_qs}));
}

TEST_P(Splicing, WritesEverythingAnewBehindAFailedSync) {
  SystemCalls calls = SystemCalls::ofTheSystem();
  QSet<ino_t> made;
  int syncs = 0;
  calls.fsync = [&](int file) {
    struct stat found {};
    ::fstat(file, &found);
    if (S_ISREG(found.st_mode)) made.insert(found.st_ino);
    if (++syncs > 1) return ::fsync(file);
    errno = EIO;
    return -1;
  };
  const ScopedSystemCalls scope(calls);
  const WriteResult failed = spliceFile(path, some(), seen);
  EXPECT_EQ(failed.outcome, Outcome::Failed);
  EXPECT_EQ(failed.error, path + u": Input/output error"_qs);
  EXPECT_EQ(syncs, 1) << "the same file must not be asked again";
  EXPECT_EQ(folder.names(), QStringList{name});
  EXPECT_EQ(spliceFile(path, some(), seen).outcome, Outcome::Written);
  EXPECT_EQ(folder.content(name), edited(old, some()));
}

TEST_P(Splicing, FindsOutAWriteThatClaimsToBeWhole) {
  SystemCalls calls = SystemCalls::ofTheSystem();
  calls.write = [](int file, const void* bytes, size_t size) {
    return ::write(file, bytes, size / 2) < 0 ? -1 : ssize_t(size);
  };
  const ScopedSystemCalls scope(calls);
  const WriteResult result = spliceFile(path, {at(0, 4, "many more bytes")}, seen);
  EXPECT_EQ(result.outcome, Outcome::Failed);
  EXPECT_TRUE(result.error.endsWith(u" bytes were written"_qs)) << qUtf8Printable(result.error);
  EXPECT_EQ(folder.content(name), old);
}

TEST_P(Splicing, SucceedsAtAnyCallThatASignalInterruptsAndNeverLosesAByteAtOneThatFails) {
  // a big file is copied for each trial, so it gets fewer of them
  const QList<int> codes = old.size() > 1024 * 1024
                               ? QList<int>{EIO, ENOSPC, EINTR}
                               : QList<int>{EIO, ENOSPC, EDQUOT, EROFS, EACCES, EINTR, EMFILE};
  const QByteArray after = edited(old, some());
  FailingCalls none(-1, 0);
  {
    const ScopedSystemCalls scope(none.calls());
    EXPECT_EQ(spliceFile(path, some(), seen).outcome, Outcome::Written);
  }
  std::set<QByteArray> failed;
  for (const int code : codes) {
    const QString words = QString::fromLocal8Bit(std::generic_category().message(code).c_str());
    for (int call = 0; call < none.count(); ++call) {
      if (folder.content(name) != old) folder.put(name, old);
      const Fingerprint now = readFile(path).fingerprint;
      FailingCalls calls(call, code);
      WriteResult result;
      {
        const ScopedSystemCalls scope(calls.calls());
        result = spliceFile(path, some(), now);
      }
      failed.insert(calls.failed());
      SCOPED_TRACE((QByteArray::number(call) + ' ' + calls.failed() + ' ' + words.toUtf8()).toStdString());
      ASSERT_EQ(folder.names(), QStringList{name}) << "a stray file";
      if (result.outcome == Outcome::Written) {
        ASSERT_EQ(folder.content(name), after);
        // what came out of its place is removed at the second try
        EXPECT_TRUE(code == EINTR || calls.failed() == "close" || calls.failed() == "unlinkat")
            << "a failure was passed over";
      } else {
        EXPECT_EQ(result.outcome, Outcome::Failed);
        EXPECT_EQ(result.error, path + u": "_qs + words);
        const bool folderSync =
            call == none.count() - 2;  // only its fsync and its close come behind the rename
        ASSERT_EQ(folder.content(name), folderSync ? after : old);
      }
    }
  }
  EXPECT_TRUE(failed.contains("write") && failed.contains("fsync") && failed.contains("renameatExchange"));
  EXPECT_TRUE(failed.contains(old.size() > 1024 * 1024 ? "copyFileRange" : "read"));
}

namespace {

constexpr int small = 5000, big = 1100 * 1000;

}  // namespace

INSTANTIATE_TEST_SUITE_P(OfFiles, Splicing, testing::Values(small, big),
                         [](const auto& info) { return std::string(info.param == small ? "Small" : "Big"); });

namespace {

/// A big file that the system copies as it is told to.
struct Copying : testing::Test {
  TestFolder folder;
  QString path = folder.path(name);
  QByteArray old = numbered(big);
  QList<Splice> splices{{100'000, old.mid(100'000, 50), "changed\r\n"}, {700'000, {}, "put in\r\n"}};
  SystemCalls calls = SystemCalls::ofTheSystem();

  WriteResult splice() {
    folder.put(name, old);
    const Fingerprint seen = readFile(path).fingerprint;
    const ScopedSystemCalls scope(calls);
    return spliceFile(path, splices, seen);
  }
  void expectWritten() {
    const WriteResult result = splice();
    EXPECT_EQ(result.outcome, Outcome::Written) << qUtf8Printable(result.error);
    EXPECT_EQ(folder.content(name), edited(old, splices));
    EXPECT_EQ(folder.names(), QStringList{name});
  }
};

}  // namespace

TEST_F(Copying, LeavesTheUnchangedStretchesToTheSystem) {
  qint64 written = 0, copied = 0;
  calls.write = [&](int file, const void* bytes, size_t size) {
    written += qint64(size);
    return ::write(file, bytes, size);
  };
  calls.copyFileRange = [&](int from, off_t* offset, int to, size_t size) {
    const ssize_t done = ::copy_file_range(from, offset, to, nullptr, size, 0);
    copied += done;
    return done;
  };
  expectWritten();
  EXPECT_EQ(written, 9 + 8);
  EXPECT_EQ(copied, old.size() - 50);
}

TEST_F(Copying, IsDoneByHandWhereTheSystemCannot) {
  for (const int code : {ENOSYS, EXDEV, EINVAL, EOPNOTSUPP, EPERM}) {
    int asked = 0;
    calls.copyFileRange = [&](int, off_t*, int, size_t) -> ssize_t {
      ++asked;
      errno = code;
      return -1;
    };
    expectWritten();
    EXPECT_EQ(asked, 1) << "it is not asked again";
  }
}

TEST_F(Copying, IsDoneByHandWhereTheSystemCopiesNothingAndSaysSo) {
  calls.copyFileRange = [](int, off_t*, int, size_t) { return ssize_t{0}; };
  expectWritten();
}

TEST_F(Copying, GoesOnByHandWhereTheSystemGivesUpHalfWay) {
  int pieces = 0;
  calls.copyFileRange = [&](int from, off_t* offset, int to, size_t size) -> ssize_t {
    if (++pieces < 4) return ::copy_file_range(from, offset, to, nullptr, std::min<size_t>(size, 30'000), 0);
    errno = EXDEV;
    return -1;
  };
  expectWritten();
}

TEST_F(Copying, GoesOnBehindShortCopiesShortReadsShortWritesAndSignals) {
  int turn = 0;
  calls.copyFileRange = [&](int from, off_t* offset, int to, size_t size) -> ssize_t {
    if (++turn % 2) {
      errno = EINTR;
      return -1;
    }
    return ::copy_file_range(from, offset, to, nullptr, std::min<size_t>(size, 65'537), 0);
  };
  expectWritten();
  calls.copyFileRange = [](int, off_t*, int, size_t) -> ssize_t {
    errno = ENOSYS;
    return -1;
  };
  calls.pread = [&](int file, void* bytes, size_t size, off_t offset) -> ssize_t {
    if (++turn % 2) {
      errno = EINTR;
      return -1;
    }
    return ::pread(file, bytes, std::min<size_t>(size, 10'007), offset);
  };
  calls.write = [&](int file, const void* bytes, size_t size) -> ssize_t {
    if (++turn % 3 == 0) {
      errno = EINTR;
      return -1;
    }
    return ::write(file, bytes, std::min<size_t>(size, 10'001));
  };
  expectWritten();
}

TEST_F(Copying, LeavesTheOldFileWhenTheDiskIsFullOnEitherRoad) {
  calls.copyFileRange = [](int, off_t*, int, size_t) -> ssize_t {
    errno = ENOSPC;
    return -1;
  };
  EXPECT_EQ(splice().error, path + u": No space left on device"_qs);
  EXPECT_EQ(folder.content(name), old);
  EXPECT_EQ(folder.names(), QStringList{name});
}

TEST_F(Copying, ThatClaimsMoreThanItDidIsFoundOut) {
  calls.copyFileRange = [](int from, off_t* offset, int to, size_t size) -> ssize_t {
    const off_t before = *offset;
    if (::copy_file_range(from, offset, to, nullptr, size / 2, 0) < 0) return -1;
    *offset = before + off_t(size);
    return ssize_t(size);
  };
  const WriteResult result = splice();
  EXPECT_EQ(result.outcome, Outcome::Failed);
  EXPECT_TRUE(result.error.contains(u" bytes were written"_qs)) << qUtf8Printable(result.error);
  EXPECT_EQ(folder.content(name), old);
}

TEST_F(Copying, OfABigFileWithItsOldTimeReadsNoMoreThanTheStretches) {
  qint64 asked = 0;
  calls.read = [&](int file, void* bytes, size_t size) {
    asked += qint64(size);
    return ::read(file, bytes, size);
  };
  calls.pread = [&](int file, void* bytes, size_t size, off_t offset) {
    asked += qint64(size);
    return ::pread(file, bytes, size, offset);
  };
  expectWritten();
  EXPECT_EQ(asked, 50);
}

TEST(SplicingAgain, SucceedsAfterOnlyTheFoldersSyncFailedWhereTheContentIsCompared) {
  TestFolder folder;
  folder.put(name, "old text");
  const QString path = folder.path(name);
  const Fingerprint seen = readFile(path).fingerprint;
  SystemCalls calls = SystemCalls::ofTheSystem();
  int syncs = 0;
  calls.fsync = [&](int file) {
    if (++syncs != 2) return ::fsync(file);
    errno = EIO;
    return -1;
  };
  const ScopedSystemCalls scope(calls);
  const QList<Splice> splices{{4, "text", "words"}, {8, "", "!"}};
  const WriteResult first = spliceFile(path, splices, seen);
  EXPECT_EQ(first.outcome, Outcome::Failed);
  EXPECT_EQ(first.fingerprint, readFile(path).fingerprint);
  EXPECT_EQ(spliceFile(path, splices, seen).outcome, Outcome::Written);
  EXPECT_EQ(folder.content(name), "old words!");
}

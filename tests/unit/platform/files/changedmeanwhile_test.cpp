#include "platform/files/atomicfile.h"
#include "platform/files/posix/systemcalls.h"
#include "tests/unit/platform/files/folder.h"

using namespace platform::files;
using tests::TestFolder;

namespace {

const QString name = QStringLiteral("a.ics");

struct ChangedMeanwhileTest : testing::Test {
  TestFolder folder;
  QString path = folder.path(name);

  Fingerprint read(const QByteArray& bytes) {
    folder.put(name, bytes);
    return readFile(path).fingerprint;
  }
  /// An editor that writes into the file itself and puts its time back.
  void editInPlace(const QByteArray& bytes) {
    const struct stat before = folder.status(name);
    folder.put(name, bytes);
    folder.setTime(name, before.st_mtim);
  }
  void replaceByRename(const QByteArray& bytes) {
    folder.put(QStringLiteral("other"), bytes);
    ASSERT_EQ(::rename(folder.encoded(QStringLiteral("other")).constData(), folder.encoded(name).constData()),
              0);
  }
  void expectKept(const WriteResult& result, const QByteArray& bytes) {
    EXPECT_EQ(result.outcome, Outcome::ChangedMeanwhile);
    EXPECT_EQ(result.error, path + u": changed by another program meanwhile"_qs);
    EXPECT_EQ(folder.content(name), bytes);
    EXPECT_EQ(folder.names(), QStringList{name});
  }
};

}  // namespace

TEST_F(ChangedMeanwhileTest, AFileThatIsStillWhatWasReadIsReplaced) {
  const Fingerprint seen = read("old");
  EXPECT_EQ(replaceFile(path, "new", seen).outcome, Outcome::Written);
  EXPECT_EQ(folder.content(name), "new");
}

TEST_F(ChangedMeanwhileTest, TheFingerprintOfAWriteServesTheNextWrite) {
  const WriteResult first = replaceFile(path, "first", read("old"));
  EXPECT_EQ(replaceFile(path, "second", first.fingerprint).outcome, Outcome::Written);
}

TEST_F(ChangedMeanwhileTest, ALongerTextOfAnotherProgramIsKept) {
  const Fingerprint seen = read("old");
  folder.put(name, "longer text");
  expectKept(replaceFile(path, "new", seen), "longer text");
}

TEST_F(ChangedMeanwhileTest, AnEditInPlaceThatKeepsSizeTimeAndInodeIsKept) {
  const Fingerprint seen = read("10:00");
  editInPlace("11:00");
  expectKept(replaceFile(path, "12:00!", seen), "11:00");
}

TEST_F(ChangedMeanwhileTest, AFileRenamedIntoPlaceWithTheSameSizeIsKept) {
  const Fingerprint seen = read("10:00");
  replaceByRename("11:00");
  expectKept(replaceFile(path, "12:00!", seen), "11:00");
}

TEST_F(ChangedMeanwhileTest, AMereTouchIsNoChange) {
  const Fingerprint seen = read("old");
  folder.setTime(name, {1, 0});
  EXPECT_EQ(replaceFile(path, "new", seen).outcome, Outcome::Written);
}

TEST_F(ChangedMeanwhileTest, TheSameContentSyncedAnewIsNoChange) {
  const Fingerprint seen = read("old");
  replaceByRename("old");
  EXPECT_EQ(replaceFile(path, "new", seen).outcome, Outcome::Written);
}

TEST_F(ChangedMeanwhileTest, ABigFileWithAnotherTimeIsJudgedByItsContent) {
  const QByteArray big(2 * 1024 * 1024, 'x');
  QByteArray changed = big;
  changed[1'000'000] = 'y';
  const Fingerprint seen = read(big);
  folder.setTime(name, {1, 0});
  EXPECT_EQ(replaceFile(path, big + "more", seen).outcome, Outcome::Written);
  const Fingerprint again = read(big);
  folder.put(name, changed);
  folder.setTime(name, {2, 0});
  expectKept(replaceFile(path, big + "more", again), changed);
}

TEST_F(ChangedMeanwhileTest, ABigFileWithItsOldTimeAndInodeIsNotReadAgain) {
  const Fingerprint seen = read(QByteArray(2 * 1024 * 1024, 'x'));
  SystemCalls calls = SystemCalls::ofTheSystem();
  int reads = 0;
  calls.read = [&](int file, void* bytes, size_t size) {
    ++reads;
    return ::read(file, bytes, size);
  };
  const ScopedSystemCalls scope(calls);
  EXPECT_EQ(replaceFile(path, "new", seen).outcome, Outcome::Written);
  EXPECT_EQ(reads, 0);
}

TEST_F(ChangedMeanwhileTest, AFileDeletedByAnotherProgramIsNotMadeAgain) {
  const Fingerprint seen = read("old");
  ASSERT_EQ(::unlink(folder.encoded(name).constData()), 0);
  EXPECT_EQ(replaceFile(path, "new", seen).outcome, Outcome::ChangedMeanwhile);
  EXPECT_TRUE(folder.names().isEmpty());
}

TEST_F(ChangedMeanwhileTest, ANewFileIsMadeWhereNothingIs) {
  EXPECT_EQ(replaceFile(path, "new", readFile(path).fingerprint).outcome, Outcome::Written);
  EXPECT_EQ(folder.content(name), "new");
}

TEST_F(ChangedMeanwhileTest, ANewFileNeverTakesTheNameOfOneThatIsThere) {
  folder.put(name, "theirs");
  expectKept(replaceFile(path, "mine", Fingerprint{}), "theirs");
}

TEST_F(ChangedMeanwhileTest, AFileThatAppearsInTheLastMomentKeepsItsName) {
  SystemCalls calls = SystemCalls::ofTheSystem();
  calls.renameatNoReplace = [&](int at, const char* from, const char* to) {
    folder.put(name, "theirs");
    return SystemCalls::ofTheSystem().renameatNoReplace(at, from, to);
  };
  const ScopedSystemCalls scope(calls);
  expectKept(replaceFile(path, "mine", Fingerprint{}), "theirs");
}

TEST_F(ChangedMeanwhileTest, ANewFileIsMadeOnFileSystemsThatCannotRefuseATakenName) {
  SystemCalls calls = SystemCalls::ofTheSystem();
  calls.renameatNoReplace = [](int, const char*, const char*) {
    errno = EINVAL;
    return -1;
  };
  const ScopedSystemCalls scope(calls);
  EXPECT_EQ(replaceFile(path, "new", Fingerprint{}).outcome, Outcome::Written);
  EXPECT_EQ(folder.names(), QStringList{name});
}

TEST_F(ChangedMeanwhileTest, AChangeWhileTheNewContentIsWrittenIsKept) {
  const Fingerprint seen = read("old");
  SystemCalls calls = SystemCalls::ofTheSystem();
  calls.fsync = [&](int file) {
    editInPlace("odd");
    return ::fsync(file);
  };
  const ScopedSystemCalls scope(calls);
  expectKept(replaceFile(path, "newer", seen), "odd");
}

TEST_F(ChangedMeanwhileTest, AChangeWhileTheContentIsComparedIsKept) {
  const Fingerprint seen = read("old");
  SystemCalls calls = SystemCalls::ofTheSystem();
  bool done = false;
  calls.read = [&](int file, void* bytes, size_t size) {
    const ssize_t got = ::read(file, bytes, size);
    if (!std::exchange(done, true)) folder.put(name, "changed");
    return got;
  };
  const ScopedSystemCalls scope(calls);
  expectKept(replaceFile(path, "new", seen), "changed");
}

TEST_F(ChangedMeanwhileTest, AnotherVersionThatIsPutThereInTheVeryLastMomentIsKept) {
  const Fingerprint seen = read("old");
  SystemCalls calls = SystemCalls::ofTheSystem();
  bool done = false;
  calls.renameatExchange = [&](int at, const char* a, const char* b) {
    if (!std::exchange(done, true)) replaceByRename("theirs");
    return SystemCalls::ofTheSystem().renameatExchange(at, a, b);
  };
  const ScopedSystemCalls scope(calls);
  expectKept(replaceFile(path, "mine", seen), "theirs");
}

TEST_F(ChangedMeanwhileTest, AnEditInPlaceInTheVeryLastMomentThatKeepsSizeAndTimeIsKept) {
  const Fingerprint seen = read("10:00");
  SystemCalls calls = SystemCalls::ofTheSystem();
  bool done = false;
  calls.renameatExchange = [&](int at, const char* a, const char* b) {
    if (!std::exchange(done, true)) editInPlace("11:00");
    return SystemCalls::ofTheSystem().renameatExchange(at, a, b);
  };
  const ScopedSystemCalls scope(calls);
  expectKept(replaceFile(path, "mine!", seen), "11:00");
}

TEST_F(ChangedMeanwhileTest, AFileThatIsRemovedInTheVeryLastMomentIsNotMadeAgain) {
  const Fingerprint seen = read("old");
  SystemCalls calls = SystemCalls::ofTheSystem();
  calls.renameatExchange = [&](int at, const char* a, const char* b) {
    ::unlink(folder.encoded(name).constData());
    return SystemCalls::ofTheSystem().renameatExchange(at, a, b);
  };
  const ScopedSystemCalls scope(calls);
  EXPECT_EQ(replaceFile(path, "mine", seen).outcome, Outcome::ChangedMeanwhile);
  EXPECT_TRUE(folder.names().isEmpty());
}

TEST_F(ChangedMeanwhileTest, AFileThatAnotherProgramHasOpenForWritingIsNotReplaced) {
  const bool told = folder.tellsOfWriters();  // by the system, which on a network folder may not know
  const Fingerprint seen = read("old");
  QFile other(path);
  ASSERT_TRUE(other.open(QIODevice::ReadWrite | QIODevice::Unbuffered));
  const WriteResult result = replaceFile(path, "mine", seen);
  if (!told) {
    EXPECT_EQ(result.outcome, Outcome::Written);
    EXPECT_EQ(folder.content(name), "mine");
    return;
  }
  expectKept(result, "old");
  other.write("odd");
  EXPECT_EQ(folder.content(name), "odd");
  other.close();
  EXPECT_EQ(replaceFile(path, "mine", readFile(path).fingerprint).outcome, Outcome::Written);
}

TEST_F(ChangedMeanwhileTest, WhoeverTheSystemSaysHasItOpenForWritingKeepsIt) {
  const Fingerprint seen = read("old");
  SystemCalls calls = SystemCalls::ofTheSystem();
  calls.lease = [](int) {
    errno = EAGAIN;
    return -1;
  };
  const ScopedSystemCalls scope(calls);
  expectKept(replaceFile(path, "mine", seen), "old");
}

TEST_F(ChangedMeanwhileTest, AFileThatAnotherProgramReadsIsReplaced) {
  const Fingerprint seen = read("old");
  QFile other(path);
  ASSERT_TRUE(other.open(QIODevice::ReadOnly));
  EXPECT_EQ(replaceFile(path, "mine", seen).outcome, Outcome::Written);
  EXPECT_EQ(other.readAll(), "old");
}

TEST_F(ChangedMeanwhileTest, WhereWhatCameOutCannotBeLookedAtItGoesBack) {
  const Fingerprint seen = read("old");
  SystemCalls calls = SystemCalls::ofTheSystem();
  bool exchanged = false;
  calls.renameatExchange = [&](int at, const char* a, const char* b) {
    exchanged = !exchanged;
    return SystemCalls::ofTheSystem().renameatExchange(at, a, b);
  };
  const auto wanting = [&] {
    if (exchanged) throw std::bad_alloc();
  };
  calls.fstatat = [&](int at, const char* name, struct stat* out, int flags) {
    wanting();
    return SystemCalls::ofTheSystem().fstatat(at, name, out, flags);
  };
  calls.openat = [&](int at, const char* name, int flags, mode_t mode) {
    wanting();
    return SystemCalls::ofTheSystem().openat(at, name, flags, mode);
  };
  {
    const ScopedSystemCalls scope(calls);
    EXPECT_THROW(replaceFile(path, "mine", seen), std::bad_alloc);
  }
  EXPECT_EQ(folder.content(name), "old");
  EXPECT_EQ(folder.names(), QStringList{name});
}

TEST_F(ChangedMeanwhileTest, WithoutExchangesAFileIsReplacedAllTheSame) {
  for (const int code : {EINVAL, ENOSYS, ENOTSUP}) {
    const Fingerprint seen = read("old");
    SystemCalls calls = SystemCalls::ofTheSystem();
    calls.renameatExchange = [code](int, const char*, const char*) {
      errno = code;
      return -1;
    };
    const ScopedSystemCalls scope(calls);
    EXPECT_EQ(replaceFile(path, "new", seen).outcome, Outcome::Written);
    EXPECT_EQ(folder.content(name), "new");
    EXPECT_EQ(folder.names(), QStringList{name});
  }
}

TEST_F(ChangedMeanwhileTest, WhereLeasesAreUnknownAFileIsReplacedAllTheSame) {
  for (const int code : {EINVAL, EACCES}) {
    const Fingerprint seen = read("old");
    SystemCalls calls = SystemCalls::ofTheSystem();
    calls.lease = [code](int) {
      errno = code;
      return -1;
    };
    const ScopedSystemCalls scope(calls);
    EXPECT_EQ(replaceFile(path, "new", seen).outcome, Outcome::Written);
  }
}

namespace {

/// Files on a file system of that kind, where every lease is refused as if somebody wrote.
SystemCalls callsOn(unsigned type, int* leases) {
  SystemCalls calls = SystemCalls::ofTheSystem();
  calls.fstatfs = [type](int file, struct statfs* out) {
    const int result = SystemCalls::ofTheSystem().fstatfs(file, out);
    out->f_type = static_cast<decltype(out->f_type)>(type);
    return result;
  };
  calls.lease = [leases](int) {
    ++*leases;
    errno = EAGAIN;
    return -1;
  };
  return calls;
}

constexpr unsigned typesOfServers[] = {0x6969, 0x517B, 0xFF534D42, 0xFE534D42};

}  // namespace

TEST_F(ChangedMeanwhileTest, OnAServerARefusedLeaseTellsOfNobodyAndAFileIsReplaced) {
  for (const unsigned type : typesOfServers) {
    const Fingerprint seen = read("old");
    int leases = 0;
    const SystemCalls calls = callsOn(type, &leases);
    const ScopedSystemCalls scope(calls);
    EXPECT_EQ(replaceFile(path, "new", seen).outcome, Outcome::Written) << type;
    EXPECT_EQ(folder.content(name), "new");
    EXPECT_EQ(folder.names(), QStringList{name});
    EXPECT_EQ(leases, 0) << "it may make the server ask other machines";
  }
  constexpr unsigned onThisMachine[] = {0xEF53, 0x9123683E, 0x01021994,
                                        0x58465342};  // ext4, btrfs, tmpfs, XFS
  for (const unsigned type : onThisMachine) {
    const Fingerprint seen = read("old");
    int leases = 0;
    const SystemCalls calls = callsOn(type, &leases);
    const ScopedSystemCalls scope(calls);
    expectKept(replaceFile(path, "new", seen), "old");
    EXPECT_GT(leases, 0) << type;
  }
}

TEST_F(ChangedMeanwhileTest, OnAServerAnotherVersionThatIsPutThereInTheVeryLastMomentIsKept) {
  for (const unsigned type : typesOfServers) {
    const Fingerprint seen = read("old");
    int leases = 0;
    SystemCalls calls = callsOn(type, &leases);
    bool done = false;
    calls.renameatExchange = [&](int at, const char* a, const char* b) {
      if (!std::exchange(done, true)) folder.put(name, "theirs");
      return SystemCalls::ofTheSystem().renameatExchange(at, a, b);
    };
    const ScopedSystemCalls scope(calls);
    expectKept(replaceFile(path, "mine", seen), "theirs");
    EXPECT_TRUE(done);
  }
}

TEST_F(ChangedMeanwhileTest, OnAServerWithoutExchangesAFileIsReplacedAndAnEarlierChangeIsKept) {
  for (const unsigned type : typesOfServers) {
    int leases = 0;
    SystemCalls calls = callsOn(type, &leases);
    calls.renameatExchange = [](int, const char*, const char*) {  // as NFS says
      errno = EINVAL;
      return -1;
    };
    const Fingerprint seen = read("old");
    const ScopedSystemCalls scope(calls);
    EXPECT_EQ(replaceFile(path, "new", seen).outcome, Outcome::Written);
    EXPECT_EQ(folder.content(name), "new");
    expectKept(replaceFile(path, "mine", seen), "new");
  }
}

TEST_F(ChangedMeanwhileTest, WhereItIsNotKnownWhatKindOfFileSystemItIsAFileIsReplacedAllTheSame) {
  const Fingerprint seen = read("old");
  int leases = 0;
  SystemCalls calls = callsOn(0xEF53, &leases);
  calls.fstatfs = [](int, struct statfs*) {
    errno = ENOSYS;
    return -1;
  };
  const ScopedSystemCalls scope(calls);
  EXPECT_EQ(replaceFile(path, "new", seen).outcome, Outcome::Written);
  EXPECT_EQ(leases, 0);
}

TEST_F(ChangedMeanwhileTest, WhereNumbersBelongToNamesAFileIsReplacedAndAChangeIsKeptAllTheSame) {
  SystemCalls calls = SystemCalls::ofTheSystem();
  calls.fstatat = [](int at, const char* name, struct stat* out, int flags) {
    const int result = SystemCalls::ofTheSystem().fstatat(at, name, out, flags);
    out->st_ino = QByteArray(name).endsWith(".tmp") ? 1 : 2;
    return result;
  };
  bool changes = false;
  calls.renameatExchange = [&](int at, const char* a, const char* b) {
    if (std::exchange(changes, false)) replaceByRename("theirs");
    return SystemCalls::ofTheSystem().renameatExchange(at, a, b);
  };
  const ScopedSystemCalls scope(calls);
  for (const qsizetype size : {qsizetype{100}, qsizetype{2} * 1024 * 1024}) {
    Fingerprint seen = read(QByteArray(size, 'o'));
    seen.inode = 2;
    EXPECT_EQ(replaceFile(path, "new", seen).outcome, Outcome::Written);
    seen = read(QByteArray(size, 'o'));
    seen.inode = 2;
    changes = true;
    expectKept(replaceFile(path, "mine", seen), "theirs");
  }
}

TEST_F(ChangedMeanwhileTest, WhatCannotBePutBackByAnExchangeIsPutBackByItsName) {
  const Fingerprint seen = read("old");
  SystemCalls calls = SystemCalls::ofTheSystem();
  int exchanges = 0;
  calls.renameatExchange = [&](int at, const char* a, const char* b) {
    if (++exchanges == 2) {
      errno = EIO;
      return -1;
    }
    replaceByRename("theirs");
    return SystemCalls::ofTheSystem().renameatExchange(at, a, b);
  };
  const ScopedSystemCalls scope(calls);
  expectKept(replaceFile(path, "mine", seen), "theirs");
}

TEST_F(ChangedMeanwhileTest, WhatCannotBePutBackAtAllIsNamedAndNotRemoved) {
  const Fingerprint seen = read("old");
  SystemCalls calls = SystemCalls::ofTheSystem();
  int exchanges = 0;
  calls.renameatExchange = [&](int at, const char* a, const char* b) {
    if (++exchanges == 2) {
      errno = EIO;
      return -1;
    }
    replaceByRename("theirs");
    return SystemCalls::ofTheSystem().renameatExchange(at, a, b);
  };
  calls.renameat = [](int, const char*, const char*) {
    errno = EIO;
    return -1;
  };
  const ScopedSystemCalls scope(calls);
  const WriteResult result = replaceFile(path, "mine", seen);
  EXPECT_EQ(result.outcome, Outcome::Failed);
  const QStringList names = folder.names();
  ASSERT_EQ(names.size(), 2);
  EXPECT_EQ(folder.content(names[0]), "theirs");
  EXPECT_EQ(result.error,
            path + u": changed by another program meanwhile, whose version stands beside it as \""_qs +
                names[0] + u'"');
}

TEST_F(ChangedMeanwhileTest, ASaveRepeatedAfterOnlyTheFoldersSyncFailedSucceeds) {
  const Fingerprint seen = read("old");
  SystemCalls calls = SystemCalls::ofTheSystem();
  int syncs = 0;
  calls.fsync = [&](int file) {
    if (++syncs == 2) {
      errno = EIO;
      return -1;
    }
    return ::fsync(file);
  };
  const ScopedSystemCalls scope(calls);
  const WriteResult first = replaceFile(path, "new", seen);
  EXPECT_EQ(first.outcome, Outcome::Failed);
  EXPECT_EQ(first.error, path + u": Input/output error"_qs);
  EXPECT_EQ(first.fingerprint, readFile(path).fingerprint);
  EXPECT_EQ(replaceFile(path, "new", seen).outcome, Outcome::Written);
}

TEST_F(ChangedMeanwhileTest, ChangesOfTwoWritersInTurnAreNeverLost) {
  // Each adds its own letter to what it read, and reads again when the other was faster.
  read("");
  const auto add = [&](char letter, bool disturbed) {
    for (;;) {
      const ReadResult before = readFile(path);
      if (std::exchange(disturbed, false)) replaceByRename(before.bytes + "!");
      if (replaceFile(path, before.bytes + letter, before.fingerprint).outcome == Outcome::Written) return;
    }
  };
  for (int i = 0; i < 20; ++i) add(char('a' + i), i % 3 == 0);
  EXPECT_EQ(folder.content(name), "!abc!def!ghi!jkl!mno!pqr!st");
}

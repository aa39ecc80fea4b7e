#include "platform/registry/ini/inifile.h"

#include "platform/files/atomicfile.h"
#include "platform/files/posix/systemcalls.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSettings>
#include <QTemporaryDir>

#include <cerrno>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace platform::registry;
using platform::basic::Value;
using platform::files::ScopedSystemCalls;
using platform::files::SystemCalls;

namespace {

const QString key = QStringLiteral("Software\\Norrdalen\\Hourbook for Outlook\\Settings");
const QString name = QStringLiteral("ReportChoice");

struct IniRegistryTest : testing::Test {
  QTemporaryDir folder;
  QString path = folder.filePath(QStringLiteral("registry.ini"));
  IniRegistry registry{path};

  QByteArray content() const {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("(missing)");
  }
  void put(const QByteArray& bytes) const {
    ASSERT_EQ(platform::files::replaceFile(path, bytes).outcome, platform::files::Outcome::Written);
  }
  mode_t mode(const QString& of) const {
    struct stat found {};
    EXPECT_EQ(::stat(QFile::encodeName(of).constData(), &found), 0);
    return found.st_mode & 0777;
  }
  Value read(const QString& what = name) {
    Value out;
    EXPECT_EQ(registry.value(key, what, &out), codeSuccess) << qUtf8Printable(registry.lastError());
    return out;
  }
  void expectRefused(int code, const QString& error) {
    Value out;
    const QByteArray before = content();
    EXPECT_EQ(registry.openKey(key), code);
    EXPECT_EQ(registry.lastError(), error);
    EXPECT_EQ(registry.value(key, name, &out), code);
    EXPECT_EQ(registry.lastError(), error);
    EXPECT_EQ(registry.setValue(key, name, QStringLiteral("x")), code);
    EXPECT_EQ(registry.lastError(), error);
    EXPECT_EQ(content(), before) << "what cannot be read is not written over";
  }
};

SystemCalls failing(int code, int openFlag) {
  SystemCalls calls = SystemCalls::ofTheSystem();
  calls.openat = [=](int at, const char* opened, int flags, mode_t mode) {
    const bool isIt = openFlag ? (flags & openFlag) != 0 : (flags & (O_CREAT | O_DIRECTORY)) == 0;
    if (!isIt) return ::openat(at, opened, flags, mode);
    errno = code;
    return -1;
  };
  return calls;
}

}  // namespace

TEST_F(IniRegistryTest, WritesAGroupForAKeyAndALineForAValue) {
  registry.setValue(key, name, QStringLiteral("2"));
  EXPECT_EQ(content(), "[Software%5CNorrdalen%5CHourbook%20for%20Outlook%5CSettings]\nReportChoice=2\n");
}

TEST_F(IniRegistryTest, TheFirstSaveTakesAwayWhatACrashInAnEarlierOneHasLeft) {
  const QString litter = folder.filePath(QStringLiteral(".registry.ini.abc123.tmp"));
  ASSERT_EQ(platform::files::replaceFile(litter, "half").outcome, platform::files::Outcome::Written);
  const timespec past[2] = {{1'600'000'000, 0}, {1'600'000'000, 0}};
  ASSERT_EQ(::utimensat(AT_FDCWD, QFile::encodeName(litter).constData(), past, 0), 0);
  EXPECT_EQ(registry.setValue(key, name, QStringLiteral("1")), codeSuccess);
  EXPECT_FALSE(QFile::exists(litter));
}

TEST_F(IniRegistryTest, ReadsWhatAnotherInstanceWrote) {
  IniRegistry(path).setValue(key, name, QStringLiteral("2"));
  EXPECT_EQ(read(), Value(QStringLiteral("2")));
  IniRegistry(path).setValue(key, name, QStringLiteral("3"));
  EXPECT_EQ(read(), Value(QStringLiteral("3")));
}

TEST_F(IniRegistryTest, IsAFileThatQSettingsReads) {
  registry.setValue(key, name, QStringLiteral("a\nb"));
  EXPECT_EQ(QSettings(path, QSettings::IniFormat).value(key + u'/' + name).toString(),
            QStringLiteral("a\nb"));
}

TEST_F(IniRegistryTest, ReadsAHandWrittenListAsOneText) {
  put("[" + key.toUtf8().replace("\\", "%5C").replace(" ", "%20") + "]\nReportChoice=a, b\n");
  EXPECT_EQ(read(), Value(QStringLiteral("a, b")));
}

TEST_F(IniRegistryTest, KeepsWhatElseStandsInTheFile) {
  put("[Other]\nA=1\nB=\"x, y\"\n");
  registry.setValue(key, name, QStringLiteral("2"));
  const QSettings settings(path, QSettings::IniFormat);
  EXPECT_EQ(settings.value(QStringLiteral("Other/A")).toString(), QStringLiteral("1"));
  EXPECT_EQ(settings.value(QStringLiteral("Other/B")).toString(), QStringLiteral("x, y"));
}

TEST_F(IniRegistryTest, KeepsAValueThatAnotherProcessSetsBetweenReadingAndWriting) {
  registry.setValue(key, name, QStringLiteral("1"));
  SystemCalls calls = SystemCalls::ofTheSystem();
  bool done = false;
  calls.write = [&](int file, const void* bytes, size_t size) {
    if (!std::exchange(done, true)) {
      const SystemCalls plain = SystemCalls::ofTheSystem();
      const ScopedSystemCalls other(plain);
      IniRegistry(path).setValue(key, QStringLiteral("Theirs"), QStringLiteral("kept"));
    }
    return ::write(file, bytes, size);
  };
  {
    const ScopedSystemCalls scope(calls);
    EXPECT_EQ(registry.setValue(key, name, QStringLiteral("2")), codeSuccess);
  }
  EXPECT_EQ(read(), Value(QStringLiteral("2")));
  EXPECT_EQ(read(QStringLiteral("Theirs")), Value(QStringLiteral("kept")));
}

TEST_F(IniRegistryTest, IsTheUsersAlone) {
  registry.setValue(key, name, QStringLiteral("1"));
  EXPECT_EQ(mode(path), mode_t{0600});
  ASSERT_EQ(::chmod(QFile::encodeName(path).constData(), 0644), 0);
  registry.setValue(key, name, QStringLiteral("2"));
  EXPECT_EQ(mode(path), mode_t{0600});
}

TEST_F(IniRegistryTest, MakesItsFolderWithTheFirstValueOnly) {
  const QString deep = folder.filePath(QStringLiteral("config/hourbook"));
  IniRegistry missing(deep + QStringLiteral("/registry.ini"));
  Value out;
  EXPECT_EQ(missing.openKey(key), codeSuccess);
  EXPECT_EQ(missing.value(key, name, &out), codeNotFound);
  EXPECT_FALSE(QFileInfo::exists(deep));
  EXPECT_EQ(missing.setValue(key, name, QStringLiteral("1")), codeSuccess);
  EXPECT_EQ(mode(deep), mode_t{0700});
  EXPECT_EQ(QDir(deep).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot),
            QStringList{QStringLiteral("registry.ini")});
}

TEST_F(IniRegistryTest, SaysThatItsFolderCannotBeMade) {
  put("");
  IniRegistry inside(path + QStringLiteral("/hourbook/registry.ini"));
  EXPECT_EQ(inside.setValue(key, name, QStringLiteral("1")), codeAccessDenied);
  EXPECT_EQ(inside.lastError(), path + QStringLiteral("/hourbook: the folder could not be made"));
}

TEST_F(IniRegistryTest, RefusesAFileThatIsNoText) {
  put(QByteArray("\x89PNG\r\n\0\x01", 8));
  expectRefused(codeInvalidData, path + QStringLiteral(": not an INI file: it is no text"));
}

TEST_F(IniRegistryTest, RefusesAFileThatIsAnotherText) {
  put("[a]\nb=1\nDear Ann\n");
  expectRefused(codeInvalidData,
                path + QStringLiteral(": not an INI file: line 3 is neither a section nor a value"));
}

TEST_F(IniRegistryTest, SaysThatTheFileMayNotBeRead) {
  put("[a]\nb=1\n");
  const SystemCalls calls = failing(EACCES, 0);
  const ScopedSystemCalls scope(calls);
  expectRefused(codeAccessDenied, path + QStringLiteral(": Permission denied"));
}

TEST_F(IniRegistryTest, SaysThatTheDiskFailsReading) {
  put("[a]\nb=1\n");
  const SystemCalls calls = failing(EIO, 0);
  const ScopedSystemCalls scope(calls);
  expectRefused(codeReadFault, path + QStringLiteral(": Input/output error"));
}

TEST_F(IniRegistryTest, RefusesAFolderAndAFifoInItsPlace) {
  ASSERT_TRUE(QDir().mkdir(path));
  expectRefused(codeReadFault, path + QStringLiteral(": Is a directory"));
  ASSERT_TRUE(QDir().rmdir(path));
  ASSERT_EQ(::mkfifo(QFile::encodeName(path).constData(), 0600), 0);
  Value out;
  EXPECT_EQ(registry.value(key, name, &out), codeReadFault);
}

TEST_F(IniRegistryTest, SaysThatTheFileIsReadOnly) {
  registry.setValue(key, name, QStringLiteral("1"));
  ASSERT_EQ(::chmod(QFile::encodeName(path).constData(), 0400), 0);
  EXPECT_EQ(registry.openKey(key), codeSuccess);
  EXPECT_EQ(registry.setValue(key, name, QStringLiteral("2")), codeAccessDenied);
  EXPECT_EQ(registry.lastError(), path + QStringLiteral(": Permission denied"));
  EXPECT_EQ(read(), Value(QStringLiteral("1")));
}

TEST_F(IniRegistryTest, SaysThatTheDiskIsFull) {
  registry.setValue(key, name, QStringLiteral("1"));
  SystemCalls calls = SystemCalls::ofTheSystem();
  calls.write = [](int, const void*, size_t) -> ssize_t {
    errno = ENOSPC;
    return -1;
  };
  {
    const ScopedSystemCalls scope(calls);
    EXPECT_EQ(registry.setValue(key, name, QStringLiteral("2")), codeWriteFault);
    EXPECT_EQ(registry.lastError(), path + QStringLiteral(": No space left on device"));
  }
  EXPECT_EQ(read(), Value(QStringLiteral("1")));
}

TEST_F(IniRegistryTest, GivesUpOnAFileThatOthersChangeAllTheTime) {
  registry.setValue(key, name, QStringLiteral("1"));
  SystemCalls calls = SystemCalls::ofTheSystem();
  int number = 0;
  calls.write = [&](int file, const void* bytes, size_t size) {
    const SystemCalls plain = SystemCalls::ofTheSystem();
    const ScopedSystemCalls other(plain);
    put("[a]\nb=" + QByteArray::number(++number) + "\n");
    return ::write(file, bytes, size);
  };
  const ScopedSystemCalls scope(calls);
  EXPECT_EQ(registry.setValue(key, name, QStringLiteral("2")), codeWriteFault);
  EXPECT_EQ(registry.lastError(), path + QStringLiteral(": changed by another program meanwhile"));
}

TEST_F(IniRegistryTest, FailsWithATextWhenNoTemporaryCopyCanBeMade) {
  registry.setValue(key, name, QStringLiteral("1"));
  const QByteArray before = content();
  const QByteArray temp = qgetenv("TMPDIR");
  qputenv("TMPDIR", "/proc");  // nobody may make a folder there
  EXPECT_EQ(registry.setValue(key, name, QStringLiteral("2")), codeWriteFault);
  qputenv("TMPDIR", temp);
  EXPECT_EQ(registry.lastError(), path + QStringLiteral(": the temporary folder could not take a copy"));
  EXPECT_EQ(content(), before);
}

TEST_F(IniRegistryTest, LeavesNothingInTheTemporaryFolder) {
  const QStringList before = QDir(QDir::tempPath()).entryList(QDir::AllEntries | QDir::Hidden);
  registry.setValue(key, name, QStringLiteral("1"));
  read();
  EXPECT_EQ(QDir(QDir::tempPath()).entryList(QDir::AllEntries | QDir::Hidden), before);
}

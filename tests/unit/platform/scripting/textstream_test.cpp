#include "platform/files/atomicfile.h"
#include "platform/files/posix/systemcalls.h"
#include "platform/scripting/filesystem.h"
#include "tests/unit/platform/scripting/folder.h"

#include <cerrno>
#include <unistd.h>

using namespace platform::scripting;

namespace {

constexpr int forReading = 1;
constexpr int forWriting = 2;
constexpr int forAppending = 8;

QString q(const char* text) {
  return QString::fromUtf8(text);
}

struct TextStreamTest : tests::ScriptingTest {
  FileSystemObject fs;
  QString file = path(q("a.txt"));
  QString name = q("a.txt");
};

}  // namespace

TEST_F(TextStreamTest, WritesTheTextOnCloseAndNotBefore) {
  put(name, "old");
  const auto stream = fs.CreateTextFile(QString(file).replace(u'/', u'\\'));
  stream->Write(q("Å"));
  stream->Write(q("\r\nb"));
  EXPECT_EQ(content(name), "old");
  stream->Close();
  EXPECT_EQ(content(name), "\xC3\x85\r\nb");
  EXPECT_EQ(names(), QStringList{name});
}

TEST_F(TextStreamTest, LeavesTheOldTextWhenItIsLetGoWithoutClose) {
  put(name, "old");
  fs.CreateTextFile(file)->Write(q("new"));
  EXPECT_EQ(content(name), "old");
}

TEST_F(TextStreamTest, MakesAnEmptyFile) {
  fs.CreateTextFile(file)->Close();
  EXPECT_EQ(content(name), "");
}

TEST_F(TextStreamTest, WritesUnicodeWithItsMark) {
  const auto stream = fs.CreateTextFile(file, true, true);
  stream->Write(q("aÅ"));
  stream->Close();
  EXPECT_EQ(content(name), QByteArray("\xFF\xFE"
                                      "a\0\xC5\0",
                                      6));
  EXPECT_EQ(fs.OpenTextFile(file)->ReadAll(), q("aÅ"));
}

TEST_F(TextStreamTest, OverwritesOnlyWithLeave) {
  put(name, "old");
  expectFailure(58, q("File already exists: ") + file, [&] { fs.CreateTextFile(file, false); });
  EXPECT_EQ(content(name), "old");
}

TEST_F(TextStreamTest, WithoutLeaveKeepsAFileThatAppearsBeforeClose) {
  const auto stream = fs.CreateTextFile(file, false);
  stream->Write(q("mine"));
  put(name, "theirs");
  expectFailure(58, q("File already exists: ") + file, [&] { stream->Close(); });
  EXPECT_EQ(content(name), "theirs");
}

TEST_F(TextStreamTest, RefusesAtOnceWhereNothingCouldBeWritten) {
  put(name, "old");
  makeReadOnly(name);
  expectFailure(70, q("Permission denied: ") + file, [&] { fs.CreateTextFile(file); });
  expectFailure(70, q("Permission denied: ") + file, [&] { fs.OpenTextFile(file, forAppending); });
  expectFailure(70, q("Permission denied: ") + dir.path(), [&] { fs.CreateTextFile(dir.path()); });
  expectFailure(76, q("Path not found: ") + path(q("x/a.txt")),
                [&] { fs.CreateTextFile(path(q("x/a.txt"))); });
}

TEST_F(TextStreamTest, SaysOnCloseThatTheDiskIsFullAndMayBeClosedAgain) {
  put(name, "old");
  const auto stream = fs.CreateTextFile(file);
  stream->Write(q("new"));
  auto calls = platform::files::SystemCalls::ofTheSystem();
  calls.write = [](int, const void*, size_t) -> ssize_t {
    errno = ENOSPC;
    return -1;
  };
  {
    const platform::files::ScopedSystemCalls scope(calls);
    expectFailure(57, q("Device I/O error: ") + file + q(": No space left on device"),
                  [&] { stream->Close(); });
  }
  EXPECT_EQ(content(name), "old");
  stream->Close();
  EXPECT_EQ(content(name), "new");
}

TEST_F(TextStreamTest, ReadsTheWholeText) {
  put(name, "\xC3\x85\r\nb");
  const auto stream = fs.OpenTextFile(file);
  EXPECT_FALSE(stream->AtEndOfStream());
  EXPECT_EQ(stream->ReadAll(), q("Å\r\nb"));
  EXPECT_TRUE(stream->AtEndOfStream());
  expectFailure(62, q("Input past end of file: ") + file, [&] { stream->ReadAll(); });
}

TEST_F(TextStreamTest, IsAtItsEndInAnEmptyFile) {
  put(name, "");
  EXPECT_TRUE(fs.OpenTextFile(file)->AtEndOfStream());
}

TEST_F(TextStreamTest, LeavesOutTheMarkOfUtf8) {
  put(name, "\xEF\xBB\xBFtext");
  EXPECT_EQ(fs.OpenTextFile(file)->ReadAll(), q("text"));
}

TEST_F(TextStreamTest, TakesWhatIsNoUtf8ForWesternEuropeanText) {
  put(name, "C:\\R\xE4kning");
  EXPECT_EQ(fs.OpenTextFile(file)->ReadAll(), q("C:\\Räkning"));
}

TEST_F(TextStreamTest, ReadsOnlyWhatIsThereUnlessToldToMakeIt) {
  expectFailure(53, q("File not found: ") + file, [&] { fs.OpenTextFile(file); });
  expectFailure(53, q("File not found: ") + file, [&] { fs.OpenTextFile(file, forWriting); });
  expectFailure(53, q("File not found: ") + file, [&] { fs.OpenTextFile(file, forAppending); });
  expectFailure(76, q("Path not found: ") + path(q("x/a")),
                [&] { fs.OpenTextFile(path(q("x/a")), 1, true); });
  EXPECT_TRUE(fs.OpenTextFile(file, forReading, true)->AtEndOfStream());
  EXPECT_EQ(content(name), "");
}

TEST_F(TextStreamTest, OpenedForWritingReplacesTheText) {
  put(name, "old text");
  const auto stream = fs.OpenTextFile(file, forWriting);
  stream->Write(q("new"));
  stream->Close();
  EXPECT_EQ(content(name), "new");
}

TEST_F(TextStreamTest, OpenedForAppendingAddsToTheText) {
  for (const char* line : {"one\n", "två\n"}) {
    const auto stream = fs.OpenTextFile(file, forAppending, true);
    stream->Write(q(line));
    stream->Close();
  }
  EXPECT_EQ(content(name), "one\ntv\xC3\xA5\n");
}

TEST_F(TextStreamTest, AppendsInTheEncodingOfTheFile) {
  put(name, QByteArray("\xFF\xFE"
                       "a\0",
                       4));
  const auto stream = fs.OpenTextFile(file, forAppending);
  stream->Write(q("b"));
  stream->Close();
  EXPECT_EQ(content(name), QByteArray("\xFF\xFE"
                                      "a\0b\0",
                                      6));
}

TEST_F(TextStreamTest, AppendsBehindWhatOthersHaveAppendedMeanwhile) {
  put(name, "one\n");
  const auto stream = fs.OpenTextFile(file, forAppending);
  stream->Write(q("mine\n"));
  auto calls = platform::files::SystemCalls::ofTheSystem();
  bool done = false;
  calls.write = [&](int target, const void* bytes, size_t size) {
    if (!std::exchange(done, true)) put(name, "one\ntheirs\n");
    return ::write(target, bytes, size);
  };
  const platform::files::ScopedSystemCalls scope(calls);
  stream->Close();
  EXPECT_EQ(content(name), "one\ntheirs\nmine\n");
}

TEST_F(TextStreamTest, DoesOnlyWhatItsModeAllows) {
  put(name, "x");
  const QString badMode = q("Bad file mode: ") + file;
  const auto reading = fs.OpenTextFile(file);
  expectFailure(54, badMode, [&] { reading->Write(q("y")); });
  const auto writing = fs.OpenTextFile(file, forWriting);
  expectFailure(54, badMode, [&] { writing->ReadAll(); });
  expectFailure(54, badMode, [&] { (void)writing->AtEndOfStream(); });
  expectFailure(5, q("Invalid procedure call or argument: ") + file, [&] { fs.OpenTextFile(file, 3); });
}

TEST_F(TextStreamTest, IsOfNoUseOnceItIsClosed) {
  put(name, "x");
  const QString invalid = q("Invalid procedure call or argument: ") + file;
  const auto writing = fs.CreateTextFile(file);
  writing->Write(q("y"));
  writing->Close();
  writing->Close();
  expectFailure(5, invalid, [&] { writing->Write(q("z")); });
  EXPECT_EQ(content(name), "y");
  const auto reading = fs.OpenTextFile(file);
  reading->Close();
  expectFailure(5, invalid, [&] { reading->ReadAll(); });
}

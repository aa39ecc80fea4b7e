#include "platform/scripting/filesystem.h"

#include "platform/files/posix/systemcalls.h"
#include "tests/unit/platform/scripting/folder.h"

#include <QFileInfo>
#include <QRegularExpression>
#include <QSet>

#include <cerrno>
#include <unistd.h>

using namespace platform::scripting;

namespace {

QString q(const char* text) {
  return QString::fromUtf8(text);
}

struct FileSystemTest : tests::ScriptingTest {
  FileSystemObject fs;
};

QString withBackslashes(QString path) {
  return path.replace(u'/', u'\\');
}

}  // namespace

TEST(SystemPath, TakesBothSeparators) {
  struct Case {
    const char* path;
    const char* system;
  };
  for (const Case& c :
       {Case{"\\home\\ann\\a.txt", "/home/ann/a.txt"}, Case{"/home\\ann/a.txt", "/home/ann/a.txt"},
        Case{"/\\tmp", "/tmp"}, Case{"/home/ann\\", "/home/ann"}, Case{"a\\..\\b", "b"}, Case{"\\", "/"},
        Case{"", ""}, Case{"name", "name"}})
    EXPECT_EQ(systemPath(q(c.path)), q(c.system)) << c.path;
}

TEST_F(FileSystemTest, TellsFilesFromFolders) {
  put(q("a.txt"), "x");
  EXPECT_TRUE(fs.FileExists(path(q("a.txt"))));
  EXPECT_TRUE(fs.FileExists(withBackslashes(path(q("a.txt")))));
  EXPECT_FALSE(fs.FileExists(dir.path()));
  EXPECT_FALSE(fs.FileExists(path(q("b.txt"))));
  EXPECT_FALSE(fs.FileExists({}));
  EXPECT_TRUE(fs.FolderExists(dir.path() + u'\\'));
  EXPECT_FALSE(fs.FolderExists(path(q("a.txt"))));
  EXPECT_FALSE(fs.FolderExists({}));
}

TEST_F(FileSystemTest, DeletesAFile) {
  put(q("a.txt"), "x");
  fs.DeleteFile(withBackslashes(path(q("a.txt"))));
  EXPECT_TRUE(names().isEmpty());
}

TEST_F(FileSystemTest, DeletesAReadOnlyFileByForceOnly) {
  put(q("a.txt"), "x");
  makeReadOnly(q("a.txt"));
  expectFailure(70, q("Permission denied: ") + path(q("a.txt")), [&] { fs.DeleteFile(path(q("a.txt"))); });
  EXPECT_EQ(content(q("a.txt")), "x");
  fs.DeleteFile(path(q("a.txt")), true);
  EXPECT_TRUE(names().isEmpty());
}

TEST_F(FileSystemTest, SaysWhichFileToDeleteIsMissingOrLocked) {
  expectFailure(53, q("File not found: ") + path(q("a.txt")), [&] { fs.DeleteFile(path(q("a.txt")), true); });
  expectFailure(53, q("File not found: ") + dir.path(), [&] { fs.DeleteFile(dir.path()); });
  put(q("a.txt"), "x");
  auto calls = platform::files::SystemCalls::ofTheSystem();
  calls.unlinkat = [](int, const char*) {
    errno = EACCES;
    return -1;
  };
  const platform::files::ScopedSystemCalls scope(calls);
  expectFailure(70, q("Permission denied: ") + path(q("a.txt")) + q(": Permission denied"),
                [&] { fs.DeleteFile(path(q("a.txt")), true); });
}

TEST_F(FileSystemTest, MakesAFolder) {
  fs.CreateFolder(withBackslashes(path(q("OLAP Cubes"))));
  EXPECT_TRUE(QFileInfo(path(q("OLAP Cubes"))).isDir());
  expectFailure(58, q("File already exists: ") + path(q("OLAP Cubes")),
                [&] { fs.CreateFolder(path(q("OLAP Cubes"))); });
  expectFailure(76, q("Path not found: ") + path(q("a/b")), [&] { fs.CreateFolder(path(q("a\\b"))); });
  expectFailure(70, q("Permission denied: /proc/hourbook"), [&] { fs.CreateFolder(q("/proc/hourbook")); });
}

TEST_F(FileSystemTest, GivesTheTemporaryFolderAndNoOther) {
  EXPECT_EQ(fs.GetSpecialFolder(2)->Path(), QDir::tempPath());
  expectFailure(5, q("Invalid procedure call or argument: 0"), [&] { fs.GetSpecialFolder(0); });
}

TEST_F(FileSystemTest, MakesUpTemporaryNames) {
  QSet<QString> seen;
  for (int i = 0; i < 20; ++i) {
    const QString name = fs.GetTempName();
    EXPECT_TRUE(QRegularExpression(q("^rad[0-9A-F]{5}\\.tmp$")).match(name).hasMatch())
        << qUtf8Printable(name);
    seen.insert(name);
  }
  EXPECT_GT(seen.size(), 1);
}

TEST_F(FileSystemTest, WalksFoldersUpAndDown) {
  fs.CreateFolder(path(q("b")));
  fs.CreateFolder(path(q("A å")));
  fs.CreateFolder(path(q(".hidden")));
  put(q("file"), "x");
  const auto folder = fs.GetFolder(withBackslashes(dir.path()) + u'\\');
  EXPECT_EQ(folder->Path(), dir.path());
  EXPECT_EQ(folder->Name(), QFileInfo(dir.path()).fileName());
  EXPECT_EQ(folder->ShortName(), folder->Name());
  EXPECT_FALSE(folder->IsRootFolder());
  EXPECT_EQ(folder->ParentFolder()->Path(), QFileInfo(dir.path()).path());
  QStringList below;
  for (const auto& sub : folder->SubFolders()) below.append(sub->Path());
  below.sort();
  EXPECT_EQ(below, (QStringList{path(q(".hidden")), path(q("A å")), path(q("b"))}));
}

TEST_F(FileSystemTest, EndsAtTheRoot) {
  const auto root = fs.GetFolder(q("\\"));
  EXPECT_TRUE(root->IsRootFolder());
  EXPECT_EQ(root->Path(), q("/"));
  EXPECT_EQ(root->Name(), QString());
  EXPECT_EQ(root->ParentFolder(), nullptr);
}

TEST_F(FileSystemTest, SaysWhichFolderIsMissing) {
  expectFailure(76, q("Path not found: ") + path(q("x")), [&] { fs.GetFolder(path(q("x"))); });
  fs.CreateFolder(path(q("gone")));
  const auto folder = fs.GetFolder(path(q("gone")));
  QDir().rmdir(path(q("gone")));
  expectFailure(76, q("Path not found: ") + path(q("gone")), [&] { folder->SubFolders(); });
}

TEST_F(FileSystemTest, GivesAFileWithItsNameAndFolder) {
  put(q("a.txt"), "x");
  const auto file = fs.GetFile(withBackslashes(path(q("a.txt"))));
  EXPECT_EQ(file->Path(), path(q("a.txt")));
  EXPECT_EQ(file->Name(), q("a.txt"));
  EXPECT_EQ(file->ParentFolder()->Path(), dir.path());
  expectFailure(53, q("File not found: ") + path(q("b.txt")), [&] { fs.GetFile(path(q("b.txt"))); });
}

TEST_F(FileSystemTest, RenamesAFileInItsFolder) {
  put(q("a.txt"), "x");
  const auto file = fs.GetFile(path(q("a.txt")));
  file->setName(q("b.txt"));
  EXPECT_EQ(names(), QStringList{q("b.txt")});
  EXPECT_EQ(file->Path(), path(q("b.txt")));
  EXPECT_EQ(file->Name(), q("b.txt"));
}

TEST_F(FileSystemTest, NeverRenamesOverAnotherFile) {
  put(q("a.txt"), "mine");
  put(q("b.txt"), "theirs");
  const auto file = fs.GetFile(path(q("a.txt")));
  expectFailure(58, q("File already exists: ") + path(q("b.txt")), [&] { file->setName(q("b.txt")); });
  EXPECT_EQ(content(q("a.txt")), "mine");
  EXPECT_EQ(content(q("b.txt")), "theirs");
  EXPECT_EQ(file->Name(), q("a.txt"));
}

TEST_F(FileSystemTest, RefusesAPathAsANewName) {
  put(q("a.txt"), "x");
  const auto file = fs.GetFile(path(q("a.txt")));
  for (const char* name : {"", "../b", "sub\\b"})
    expectFailure(52, q("Bad file name or number: ") + q(name), [&] { file->setName(q(name)); });
}

TEST_F(FileSystemTest, SaysWhyAFileCouldNotBeRenamed) {
  put(q("a.txt"), "x");
  const auto file = fs.GetFile(path(q("a.txt")));
  auto calls = platform::files::SystemCalls::ofTheSystem();
  calls.renameatNoReplace = [](int, const char*, const char*) {
    errno = EACCES;
    return -1;
  };
  {
    const platform::files::ScopedSystemCalls scope(calls);
    expectFailure(70, q("Permission denied: ") + path(q("a.txt")) + q(": Permission denied"),
                  [&] { file->setName(q("b.txt")); });
  }
  QFile::remove(path(q("a.txt")));
  expectFailure(53, q("File not found: ") + path(q("a.txt")) + q(": No such file or directory"),
                [&] { file->setName(q("b.txt")); });
}

#include "platform/scripting/shellapplication.h"

#include "platform/process/process.h"
#include "tests/unit/platform/scripting/folder.h"

using namespace platform::scripting;

namespace {

QString q(const char* text) {
  return QString::fromUtf8(text);
}

struct ShellApplicationTest : tests::ScriptingTest {
  ShellApplicationTest() { put(q("report.htm"), "x"); }
  platform::process::CatchingProcess process;
  platform::process::ScopedProcess scope{process};
  ShellApplication shell;

  std::shared_ptr<FolderItem> item(const QString& name) const {
    const auto folder = shell.NameSpace(dir.path());
    return folder ? folder->Items().Item(name) : nullptr;
  }
};

}  // namespace

TEST_F(ShellApplicationTest, FindsAFileOfAFolderUnderItsName) {
  const auto found = item(q("report.htm"));
  ASSERT_TRUE(found);
  EXPECT_EQ(found->Name(), q("report.htm"));
  EXPECT_EQ(found->Path(), path(q("report.htm")));
  QDir(dir.path()).mkdir(q("inner"));
  EXPECT_TRUE(shell.NameSpace(dir.path() + q("\\inner")));
}

TEST_F(ShellApplicationTest, HasNothingForWhatIsNotThere) {
  EXPECT_EQ(shell.NameSpace(path(q("missing"))), nullptr);
  EXPECT_EQ(shell.NameSpace(path(q("report.htm"))), nullptr);
  EXPECT_EQ(shell.NameSpace({}), nullptr);
  EXPECT_EQ(item(q("missing.htm")), nullptr);
  EXPECT_EQ(item({}), nullptr);
  put(q("above.htm"), "x");
  QDir(dir.path()).mkdir(q("inner"));
  EXPECT_EQ(item(q("inner")), nullptr);
  EXPECT_EQ(shell.NameSpace(path(q("inner")))->Items().Item(q("../above.htm")), nullptr);
}

TEST_F(ShellApplicationTest, OpensAFileWithoutAVerb) {
  item(q("report.htm"))->InvokeVerb();
  item(q("report.htm"))->InvokeVerb(q("Open"));
  EXPECT_EQ(process.opened, (QStringList{path(q("report.htm")), path(q("report.htm"))}));
}

TEST_F(ShellApplicationTest, PrintsAFileWithTheSystemsProgram) {
  item(q("report.htm"))->InvokeVerb(q("Print"));
  EXPECT_EQ(process.started, (QList<QStringList>{{q("lp"), path(q("report.htm"))}}));
}

TEST_F(ShellApplicationTest, SaysWhyAFileCannotBeOpenedOrPrinted) {
  process.startFailure = q("no such program");
  expectFailure(-2147024894,
                q("The file \"%1\" cannot be opened: no such program").arg(path(q("report.htm"))),
                [&] { item(q("report.htm"))->InvokeVerb(); });
  expectFailure(482,
                q("The file \"%1\" cannot be printed: the program \"lp\" does not start (no such program)")
                    .arg(path(q("report.htm"))),
                [&] { item(q("report.htm"))->InvokeVerb(q("print")); });
}

TEST_F(ShellApplicationTest, RefusesAVerbThatItDoesNotKnow) {
  expectFailure(5, q("The verb \"fold\" is not known for the file \"%1\"").arg(path(q("report.htm"))),
                [&] { item(q("report.htm"))->InvokeVerb(q("fold")); });
  EXPECT_TRUE(process.started.isEmpty());
  EXPECT_TRUE(process.opened.isEmpty());
}

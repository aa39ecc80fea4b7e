#include "platform/scripting/shell.h"

#include "platform/process/process.h"
#include "tests/unit/platform/scripting/folder.h"

using namespace platform::scripting;

namespace {

QString q(const char* text) {
  return QString::fromUtf8(text);
}

struct ShellTest : tests::ScriptingTest {
  platform::process::CatchingProcess process;
  platform::process::ScopedProcess scope{process};
  WshShell shell;

  QStringList started(const QString& command) {
    process.started.clear();
    shell.Run(command);
    return process.started.value(0);
  }
};

}  // namespace

TEST_F(ShellTest, ExpandsNamesOfTheEnvironment) {
  process.environment.insert(q("USERNAME"), q("ann"));
  EXPECT_EQ(shell.ExpandEnvironmentStrings(q("%USERDOMAIN%\\%USERNAME%")), q("%USERDOMAIN%\\ann"));
}

TEST_F(ShellTest, OpensLinksAsTheyStand) {
  process.environment.insert(q("20"), q("never"));
  for (const char* link :
       {"http://example.org/?q=%20a%20b", "HTTPS://example.org", "mailto:ann@example.org"}) {
    shell.Run(q(link));
    EXPECT_EQ(process.opened.last(), q(link));
  }
  EXPECT_TRUE(process.started.isEmpty());
}

TEST_F(ShellTest, StartsAProgramWithItsArguments) {
  EXPECT_EQ(started(q("regsvr32 scrrun.dll /s")), (QStringList{q("regsvr32"), q("scrrun.dll"), q("/s")}));
  EXPECT_EQ(started(q("cube")), QStringList{q("cube")});
  EXPECT_EQ(started(q("\"\\opt\\Hour book\\HBCube.exe\" /a \"b c\" d\\e")),
            (QStringList{q("/opt/Hour book/HBCube.exe"), q("/a"), q("b c"), q("d\\e")}));
  EXPECT_EQ(started(q("\"open end")), QStringList{q("open end")});
}

TEST_F(ShellTest, TakesADriveForAPathAndNotForALink) {
  EXPECT_EQ(started(q("C:\\Programs\\x.exe")), QStringList{q("C:/Programs/x.exe")});
}

TEST_F(ShellTest, ExpandsNamesInACommandLine) {
  process.environment.insert(q("windir"), q("/win"));
  EXPECT_EQ(started(q("%windir%\\notepad a")), (QStringList{q("/win/notepad"), q("a")}));
}

TEST_F(ShellTest, OpensADocumentWithTheProgramThatBelongsToIt) {
  put(q("report.htm"), "x");
  shell.Run(q("\"") + path(q("report.htm")) + q("\""));
  EXPECT_EQ(process.opened, QStringList{path(q("report.htm"))});
  shell.Run(dir.path());
  EXPECT_EQ(process.opened.last(), dir.path());
  EXPECT_TRUE(process.started.isEmpty());
}

TEST_F(ShellTest, StartsAScriptThatMayBeRun) {
  put(q("cube"), "#!/bin/sh\n");
  QFile::setPermissions(path(q("cube")), QFile::ReadOwner | QFile::ExeOwner);
  EXPECT_EQ(started(path(q("cube"))), QStringList{path(q("cube"))});
}

TEST_F(ShellTest, FailsWithTheSystemsNumberWhenNothingStarts) {
  process.startFailure = q("cube: No such file or directory");
  const QString description =
      q("The system cannot find the file specified. (cube: No such file or directory)");
  expectFailure(-2147024894, description, [&] { shell.Run(q("cube")); });
  expectFailure(-2147024894, description, [&] { shell.Run(q("http://example.org")); });
  expectFailure(-2147024894, q("The system cannot find the file specified. (  )"), [&] { shell.Run(q("  ")); });
}

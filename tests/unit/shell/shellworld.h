#pragma once
#include "platform/scripting/dictionary.h"
#include "platform/scripting/filesystem.h"
#include "platform/scripting/shell.h"
#include "platform/scripting/shellapplication.h"
#include "shell/ShellValues.h"
#include "tests/support/testworld.h"

namespace hourbook::tests {

/// A machine with the scripting components installed, and fresh values of the shell.
class ShellWorld : public testing::Test {
 protected:
  ShellWorld() {
    using namespace platform::scripting;
    world.components.add<FileSystemObject>(QStringLiteral("Scripting.FileSystemObject"),
                                           [] { return std::make_shared<FileSystemObject>(); });
    world.components.add<DictionaryComponent>(QStringLiteral("Scripting.Dictionary"),
                                              [] { return std::make_shared<DictionaryComponent>(); });
    world.components.add<WshShell>(QStringLiteral("Wscript.Shell"),
                                   [] { return std::make_shared<WshShell>(); });
    world.components.add<ShellApplication>(QStringLiteral("Shell.Application"),
                                           [] { return std::make_shared<ShellApplication>(); });
    values.gListSeparator = QStringLiteral(",");
    values.documentsFolder = documents.path();
  }

  QString inProgramFolder(const QString& name) const { return world.programFolder() + u'/' + name; }
  /// From here on `wasLogged` knows every step, not the newest one only.
  void keepLog() { values.gLogToFile = true; }
  bool wasLogged(const QString& step) const;

  ::tests::TestWorld world;
  Shared<ShellValues>::Scope scope;
  ShellValues& values = *scope;
  QTemporaryDir documents;
};

inline QString contentOf(const QString& path) {
  QFile file(path);
  return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QStringLiteral("<no file>");
}

inline bool ShellWorld::wasLogged(const QString& step) const {
  return contentOf(inProgramFolder(QStringLiteral("NorrdalenLog.txt")))
      .contains(u'\t' + step + QStringLiteral("\r\n"));
}

/// A machine on which no box can be shown.
class NoDialogs : public platform::dialogs::Dialogs {
 public:
  int MsgBox(const QString&, int, const QString&) override { fail(); }
  QString InputBox(const QString&, const QString&, const QString&) override { fail(); }
  int DoAlert(const QString&, const QString&, int, int) override { fail(); }

 private:
  [[noreturn]] static void fail() { throw platform::Failure(5, QStringLiteral("no screen")); }
};

inline void writeFile(const QString& path, const QString& text) {
  QDir().mkpath(QFileInfo(path).path());
  QFile file(path);
  ASSERT_TRUE(file.open(QIODevice::WriteOnly));
  file.write(text.toUtf8());
}

/// The box that the failure report shows names a procedure; the user says No, and the process ends.
#define EXPECT_REPORTED(world, procedure, ...)                                                \
  do {                                                                                        \
    (world).dialogs.expect(QStringLiteral(" : " procedure " \r\n"), platform::dialogs::vbNo); \
    EXPECT_ENDS_PROCESS(__VA_ARGS__);                                                         \
  } while (false)

}  // namespace hourbook::tests

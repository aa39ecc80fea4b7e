// The main() of every test program: a screenless QApplication, a home folder of its own, and a process whose
// end nobody announced fails the run.
#include "platform/process/process.h"
#include "tests/support/messages.h"

#include <QApplication>
#include <QDir>
#include <QTemporaryDir>

#include <cstdio>
#include <cstdlib>
#include <gmock/gmock.h>

namespace {

/// In force outside of every test's own world: a test that ends the process by mistake must not count as
/// passed because the program left with code 0.
class StrictProcess : public platform::process::CatchingProcess {
 public:
  [[noreturn]] void end() override {
    ADD_FAILURE() << "The process was ended outside of a TestWorld.";
    std::fflush(nullptr);
    std::_Exit(1);
  }
};

/// Settings, caches and temporary files of a test go here and vanish with the program.
void moveHome(const QString& folder) {
  const auto set = [&](const char* name, const char* part) {
    const QString path = QDir(folder).filePath(QString::fromLatin1(part));
    QDir().mkpath(path);
    qputenv(name, QFile::encodeName(path));
    return path;
  };
  set("HOME", "home");
  set("XDG_CONFIG_HOME", "home/.config");
  set("XDG_DATA_HOME", "home/.local/share");
  set("XDG_STATE_HOME", "home/.local/state");
  set("XDG_CACHE_HOME", "home/.cache");
  set("TMPDIR", "tmp");
  const QString runtime = set("XDG_RUNTIME_DIR", "run");
  QFile::setPermissions(runtime, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
  for (const char* name : {"XDG_CONFIG_DIRS", "XDG_DOCUMENTS_DIR"}) qunsetenv(name);
}

int runTests(int argc, char** argv) {
  QTemporaryDir home(QDir::tempPath() + QStringLiteral("/hourbook-tests-XXXXXX"));
  if (!home.isValid()) {
    std::fprintf(stderr, "No temporary folder: %s\n", qUtf8Printable(home.errorString()));
    return 2;
  }
  moveHome(home.path());
  if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
  qputenv("LANGUAGE", "en");  // what the system says of a failure is in English, whatever the locale
  tests::installMessageHandler();
  QApplication application(argc, argv);
  QApplication::setQuitOnLastWindowClosed(false);
  StrictProcess process;
  const platform::process::ScopedProcess processScope(process);
  return RUN_ALL_TESTS();
}

}  // namespace

/// Read by LeakSanitizer at its start: leaks of other makers' libraries that no code of this project can free.
/// ixion's formula lexer keeps a few bytes of a formula that it refuses. In the program itself, not in a file that an
/// environment variable must name, since the program is run by hand, by ctest and under a debugger.
extern "C" const char* __lsan_default_suppressions();
extern "C" const char* __lsan_default_suppressions() {
  return "leak:libfontconfig\nleak:libqoffscreen\nleak:libQt6XcbQpa\nleak:libixion\n";
}
extern "C" const char* __lsan_default_options();
extern "C" const char* __lsan_default_options() { return "print_suppressions=0"; }

int main(int argc, char** argv) {
  testing::InitGoogleMock(&argc, argv);
  return runTests(argc, argv);
}

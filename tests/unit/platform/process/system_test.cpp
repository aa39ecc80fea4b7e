#include "platform/process/process.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QSysInfo>
#include <QTemporaryDir>

#include <cstdio>
#include <cstdlib>
#include <gtest/gtest.h>
#include <pwd.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace platform::process;

namespace {

/// An environment variable for the life of the object.
class ScopedVariable {
 public:
  ScopedVariable(const char* name, const char* value)
      : name_(name), had_(qEnvironmentVariableIsSet(name)), old_(qgetenv(name)) {
    value ? qputenv(name, value) : qunsetenv(name);
  }
  ~ScopedVariable() { had_ ? qputenv(name_, old_) : qunsetenv(name_); }

 private:
  const char* name_;
  bool had_;
  QByteArray old_;
};

QString expanded(const char* text) {
  return systemProcess().expandEnvironment(QString::fromLatin1(text));
}

/// A shell script in the folder that writes its arguments into a pipe.
void makeScript(const QString& path, const QString& pipe) {
  QFile script(path);
  ASSERT_TRUE(script.open(QIODevice::WriteOnly));
  script.write("#!/bin/sh\nprintf '%s\\n' \"$@\" > '" + QFile::encodeName(pipe) + "'\n");
  script.close();
  ASSERT_TRUE(script.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner));
}

QByteArray readPipe(const QString& path) {
  FILE* pipe = std::fopen(QFile::encodeName(path).constData(), "r");
  QByteArray all;
  for (int c = std::fgetc(pipe); c != EOF; c = std::fgetc(pipe)) all += char(c);
  std::fclose(pipe);
  return all;
}

}  // namespace

TEST(SystemProcess, EndsAtOnceWithCode0AndWhatWasWrittenIsWritten) {
  QTemporaryDir folder;
  const QByteArray path = QFile::encodeName(folder.filePath(QStringLiteral("log")));
  const pid_t child = ::fork();
  if (child == 0) {
    std::FILE* log = std::fopen(path.constData(), "w");
    std::fputs("buffered", log);
    std::atexit([] { ::_exit(7); });  // would tell of an orderly exit
    systemProcess().end();
  }
  int status = 0;
  ASSERT_EQ(::waitpid(child, &status, 0), child);
  ASSERT_TRUE(WIFEXITED(status));
  EXPECT_EQ(WEXITSTATUS(status), 0);
  QFile log(folder.filePath(QStringLiteral("log")));
  ASSERT_TRUE(log.open(QIODevice::ReadOnly));
  EXPECT_EQ(log.readAll(), "buffered");
}

TEST(SystemProcess, HasTheFolderOfTheProgramWithoutATrailingSeparator) {
  EXPECT_EQ(systemProcess().programFolder(), QCoreApplication::applicationDirPath());
  EXPECT_FALSE(systemProcess().programFolder().endsWith(u'/'));
}

TEST(SystemProcess, StartsAProgramWithItsArguments) {
  QTemporaryDir folder;
  const QString pipe = folder.filePath(QStringLiteral("said"));
  ASSERT_EQ(::mkfifo(QFile::encodeName(pipe).constData(), 0600), 0);
  const QString script = folder.filePath(QStringLiteral("my script"));
  makeScript(script, pipe);
  QString error;
  ASSERT_TRUE(systemProcess().start(script, {QStringLiteral("a b"), QStringLiteral("c")}, &error))
      << qUtf8Printable(error);
  EXPECT_EQ(readPipe(pipe), "a b\nc\n");
}

TEST(SystemProcess, SaysWhyAProgramCouldNotBeStarted) {
  QString error;
  EXPECT_FALSE(systemProcess().start(QStringLiteral("/nowhere/cube"), {}, &error));
  EXPECT_TRUE(error.startsWith(QStringLiteral("/nowhere/cube: "))) << qUtf8Printable(error);
  EXPECT_TRUE(error.contains(QStringLiteral("No such file or directory"))) << qUtf8Printable(error);
  EXPECT_FALSE(systemProcess().start(QStringLiteral("/nowhere/cube"), {}, nullptr));
}

TEST(SystemProcess, OpensWithTheDesktopsOpener) {
  QTemporaryDir folder;
  const QString pipe = folder.filePath(QStringLiteral("said"));
  ASSERT_EQ(::mkfifo(QFile::encodeName(pipe).constData(), 0600), 0);
  makeScript(folder.filePath(QStringLiteral("xdg-open")), pipe);
  const ScopedVariable path("PATH", QFile::encodeName(folder.path()) + ":" + qgetenv("PATH"));
  ASSERT_TRUE(systemProcess().open(QStringLiteral("https://example.org/?a=1&b=%202"), nullptr));
  EXPECT_EQ(readPipe(pipe), "https://example.org/?a=1&b=%202\n");
  ASSERT_TRUE(systemProcess().open(QStringLiteral("--help"), nullptr));
  EXPECT_EQ(readPipe(pipe), "./--help\n") << "a name is never taken for an option";
}

TEST(SystemProcess, SaysThatThereIsNoOpener) {
  QTemporaryDir empty;
  const ScopedVariable path("PATH", QFile::encodeName(empty.path()));
  QString error;
  EXPECT_FALSE(systemProcess().open(QStringLiteral("https://example.org"), &error));
  EXPECT_TRUE(error.startsWith(QStringLiteral("xdg-open: "))) << qUtf8Printable(error);
}

TEST(SystemProcess, TakesTheUserNameFromTheFirstVariableThatIsSet) {
  const ScopedVariable username("USERNAME", "from-username");
  const ScopedVariable user("USER", "from-user");
  const ScopedVariable logname("LOGNAME", "from-logname");
  EXPECT_EQ(expanded("%USERNAME%"), QStringLiteral("from-username"));
  qunsetenv("USERNAME");
  EXPECT_EQ(expanded("%username%"), QStringLiteral("from-user"));
  qunsetenv("USER");
  EXPECT_EQ(expanded("%USERNAME%"), QStringLiteral("from-logname"));
  qunsetenv("LOGNAME");
  EXPECT_EQ(expanded("%USERNAME%"), QString::fromLocal8Bit(::getpwuid(::geteuid())->pw_name));
}

TEST(SystemProcess, TakesTheUserDomainOrTheNameOfTheMachine) {
  const ScopedVariable domain("USERDOMAIN", "OFFICE");
  EXPECT_EQ(expanded("%USERDOMAIN%\\x"), QStringLiteral("OFFICE\\x"));
  qunsetenv("USERDOMAIN");
  EXPECT_EQ(expanded("%USERDOMAIN%"), QSysInfo::machineHostName());
}

TEST(SystemProcess, LeavesAnUnknownNameAsItStands) {
  EXPECT_EQ(expanded("%HOURBOOK_NO_SUCH_NAME%"), QStringLiteral("%HOURBOOK_NO_SUCH_NAME%"));
}

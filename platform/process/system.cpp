#include "platform/process/environment.h"
#include "platform/process/process.h"

#include <QCoreApplication>
#include <QProcess>
#include <QSysInfo>

#include <cstdio>
#include <cstdlib>
#include <pwd.h>
#include <unistd.h>

namespace platform::process {

namespace {

std::optional<QString> environmentValue(const char* name) {
  if (!qEnvironmentVariableIsSet(name)) return std::nullopt;
  return qEnvironmentVariable(name);
}

QString userName() {
  for (const char* name : {"USERNAME", "USER", "LOGNAME"}) {
    const QString value = qEnvironmentVariable(name);
    if (!value.isEmpty()) return value;
  }
  const passwd* entry = getpwuid(geteuid());
  return entry ? QString::fromLocal8Bit(entry->pw_name) : QString();
}

std::optional<QString> systemValue(const QString& name) {
  // The two names that every Windows session has and that the user's name is made of. A session here need
  // not set them, so the same facts are taken from where this system keeps them.
  if (name.compare(QStringLiteral("USERNAME"), Qt::CaseInsensitive) == 0) return userName();
  if (name.compare(QStringLiteral("USERDOMAIN"), Qt::CaseInsensitive) == 0) {
    const QString value = qEnvironmentVariable("USERDOMAIN");
    return value.isEmpty() ? QSysInfo::machineHostName() : value;
  }
  return environmentValue(name.toLocal8Bit().constData());
}

bool startProgram(const QString& program, const QStringList& arguments, QString* error) {
  QProcess process;
  process.setProgram(program);
  process.setArguments(arguments);
  if (process.startDetached()) return true;
  if (error) *error = QStringLiteral("%1: %2").arg(program, process.errorString());
  return false;
}

class SystemProcess : public Process {
 public:
  [[noreturn]] void end() override {
    std::fflush(nullptr);
    std::_Exit(0);
  }

  bool start(const QString& program, const QStringList& arguments, QString* error) override {
    return startProgram(program, arguments, error);
  }

  bool open(const QString& urlOrPath, QString* error) override {
    // A name that begins with "-" would be taken for an option of the opener.
    const QString what = urlOrPath.startsWith(u'-') ? QStringLiteral("./") + urlOrPath : urlOrPath;
    return startProgram(QStringLiteral("xdg-open"), {what}, error);
  }

  QString expandEnvironment(const QString& text) override { return expandNames(text, systemValue); }

  QString programFolder() const override { return QCoreApplication::applicationDirPath(); }
};

}  // namespace

Process& systemProcess() {
  static SystemProcess process;
  return process;
}

}  // namespace platform::process

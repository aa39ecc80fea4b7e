#include "platform/scripting/shell.h"

#include "platform/basic/failure.h"
#include "platform/process/process.h"
#include "platform/scripting/filesystem.h"

#include <QFileInfo>
#include <QProcess>
#include <QRegularExpression>

namespace platform::scripting {

namespace {

constexpr qint32 cannotBeStarted = -2147024894;  // 0x80070002

/// "http:", "mailto:", "file:"; a single letter is a drive.
bool isLink(const QString& command) {
  static const QRegularExpression scheme(QStringLiteral("^[A-Za-z][A-Za-z0-9+.-]+:"));
  return scheme.match(command).hasMatch();
}

struct CommandLine {
  QString program;
  QStringList arguments;
};

CommandLine parsed(const QString& command) {
  CommandLine line;
  QString rest;
  if (command.startsWith(u'"')) {
    const qsizetype end = command.indexOf(u'"', 1);
    line.program = command.mid(1, end < 0 ? -1 : end - 1);
    rest = end < 0 ? QString() : command.mid(end + 1);
  } else {
    const qsizetype end = command.indexOf(u' ');
    line.program = command.left(end < 0 ? command.size() : end);
    rest = end < 0 ? QString() : command.mid(end + 1);
  }
  if (line.program.contains(u'\\') || line.program.contains(u'/')) line.program = systemPath(line.program);
  line.arguments = QProcess::splitCommand(rest);
  return line;
}

/// A document or a folder is opened with the program that belongs to it.
bool isDocument(const CommandLine& line) {
  const QFileInfo info(line.program);
  return line.program.contains(u'/') && (info.isDir() || (info.isFile() && !info.isExecutable()));
}

}  // namespace

QString WshShell::ExpandEnvironmentStrings(const QString& text) {
  return process::Process::current().expandEnvironment(text);
}

void WshShell::Run(const QString& command, int windowStyle) {
  Q_UNUSED(windowStyle)  // a program decides itself how its window opens here
  process::Process& process = process::Process::current();
  const QString trimmed = command.trimmed();
  QString error;
  bool started = false;
  if (isLink(trimmed)) {
    started = process.open(trimmed, &error);  // not expanded: a link's own per cent signs are no names
  } else if (!trimmed.isEmpty()) {
    const CommandLine line = parsed(process.expandEnvironment(trimmed));
    started = isDocument(line) ? process.open(line.program, &error)
                               : process.start(line.program, line.arguments, &error);
  }
  if (!started)
    throw Failure(cannotBeStarted,
                  QStringLiteral("The system cannot find the file specified. (%1)")
                      .arg(error.isEmpty() ? command : error),
                  QStringLiteral("WshShell.Run"));
}

}  // namespace platform::scripting

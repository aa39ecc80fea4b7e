#include "platform/scripting/failures.h"

namespace platform::scripting {

namespace {

QString textOf(qint32 number) {
  switch (number) {
    case badFileName:
      return QStringLiteral("Bad file name or number");
    case fileNotFound:
      return QStringLiteral("File not found");
    case badFileMode:
      return QStringLiteral("Bad file mode");
    case deviceError:
      return QStringLiteral("Device I/O error");
    case fileExists:
      return QStringLiteral("File already exists");
    case inputPastEnd:
      return QStringLiteral("Input past end of file");
    case permissionDenied:
      return QStringLiteral("Permission denied");
    case pathNotFound:
      return QStringLiteral("Path not found");
    default:
      return QStringLiteral("Invalid procedure call or argument");
  }
}

}  // namespace

void fail(qint32 number, const QString& path) {
  throw Failure(number, QStringLiteral("%1: %2").arg(textOf(number), path),
                QStringLiteral("Scripting.FileSystemObject"));
}

qint32 numberOf(bool missing, bool denied) {
  return missing ? fileNotFound : denied ? permissionDenied : deviceError;
}

void failUnlessWritten(const files::WriteResult& result, const QString& path) {
  if (result.outcome == files::Outcome::Written) return;
  if (result.outcome == files::Outcome::ChangedMeanwhile) fail(permissionDenied, path);
  throw Failure(numberOf(result.missing, result.denied),
                QStringLiteral("%1: %2").arg(textOf(numberOf(result.missing, result.denied)), result.error),
                QStringLiteral("Scripting.FileSystemObject"));
}

}  // namespace platform::scripting

#include "platform/files/backups.h"

#include "platform/files/atomicfile.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFileInfo>
#include <QMap>
#include <QRegularExpression>

namespace platform::files {

namespace {

constexpr int numberDigits = 6;

/// Two files of one name in different folders have copies of their own.
QString stemOf(const QString& path) {
  const QFileInfo info(path);
  const QString known = info.exists() ? info.canonicalFilePath() : info.absoluteFilePath();
  const QByteArray hash = QCryptographicHash::hash(known.toUtf8(), QCryptographicHash::Sha1).toHex();
  return info.completeBaseName().left(40) + u'-' + QString::fromLatin1(hash.left(8)) + u'-';
}

/// The copies by their numbers; clocks are set back, numbers are not.
QMap<qint64, QFileInfo> copiesOf(const QString& stem, const QString& folder) {
  static const QRegularExpression number(QStringLiteral("^(\\d{1,9})\\.ics$"));
  QMap<qint64, QFileInfo> copies;
  for (const QFileInfo& file : QDir(folder).entryInfoList(QDir::Files | QDir::NoSymLinks)) {
    if (!file.fileName().startsWith(stem)) continue;
    const QRegularExpressionMatch match = number.match(file.fileName().mid(stem.size()));
    if (match.hasMatch()) copies.insert(match.captured(1).toLongLong(), file);
  }
  return copies;
}

void removeOldest(QMap<qint64, QFileInfo> copies, const BackupLimits& limits, int room, qint64 bytes) {
  for (const QFileInfo& file : std::as_const(copies)) bytes += file.size();
  while (!copies.isEmpty() && (copies.size() + room > limits.copies || bytes > limits.bytes)) {
    bytes -= copies.first().size();
    removeFile(copies.first().filePath());
    copies.erase(copies.begin());
  }
}

}  // namespace

QString keepBackup(const QString& path, const QString& folder, const BackupLimits& limits) {
  const qint64 size = QFileInfo(path).size();
  if (size > limits.bytes)
    return QStringLiteral("%1: larger than the %2 bytes that copies may take").arg(path).arg(limits.bytes);
  if (!QDir().mkpath(folder)) return QStringLiteral("%1: the folder cannot be made").arg(folder);
  const QString stem = stemOf(path);
  const QMap<qint64, QFileInfo> before = copiesOf(stem, folder);
  const qint64 number = before.isEmpty() ? 1 : before.lastKey() + 1;
  const QString copy =
      QDir(folder).filePath(stem + QString::number(number).rightJustified(numberDigits, u'0') + u".ics"_qs);
  WriteResult result = copyFile(path, copy);
  if (result.outcome == Outcome::Failed && before.size() >= limits.copies) {  // it may be the old ones' room
    removeOldest(before, limits, 1, size);
    result = copyFile(path, copy);
  }
  if (result.outcome != Outcome::Written) return result.error;
  removeOldest(copiesOf(stem, folder), limits, 0, 0);
  return {};
}

}  // namespace platform::files

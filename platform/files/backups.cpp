#include "platform/files/backups.h"

#include "platform/files/atomicfile.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFileInfo>
#include <QMap>
#include <QRegularExpression>

#include <algorithm>
#include <tuple>

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

struct Copy {
  QString stem;
  qint64 number = 0;  // clocks are set back, numbers are not
  QString path;
  qint64 size = 0;
};

/// The copies of all calendars, those of one in the order in which they were made.
QList<Copy> copiesIn(const QString& folder) {
  static const QRegularExpression name(QStringLiteral("^(.*-[0-9a-f]{8}-)(\\d{1,9})\\.ics$"));
  QList<Copy> copies;
  for (const QFileInfo& file : QDir(folder).entryInfoList(QDir::Files | QDir::NoSymLinks)) {
    const QRegularExpressionMatch match = name.match(file.fileName());
    if (match.hasMatch())
      copies.append({match.captured(1), match.captured(2).toLongLong(), file.filePath(), file.size()});
  }
  std::sort(copies.begin(), copies.end(), [](const Copy& a, const Copy& b) {
    return std::tie(a.stem, a.number) < std::tie(b.stem, b.number);
  });
  return copies;
}

QList<Copy> copiesOf(const QString& stem, QList<Copy> copies) {
  copies.removeIf([&](const Copy& copy) { return copy.stem != stem; });
  return copies;
}

/// Which goes first: the oldest of the calendar with the most copies, so that each keeps one as long as it
/// can; of equals the largest. The newest of `stem` stays. -1: none.
qsizetype leastWorth(const QList<Copy>& copies, const QString& stem) {
  QMap<QString, int> counts;
  for (const Copy& copy : copies) ++counts[copy.stem];
  qsizetype least = -1;
  for (qsizetype i = 0; i < copies.size(); ++i) {
    const Copy& copy = copies[i];
    const bool oldest = i == 0 || copies[i - 1].stem != copy.stem;
    if (!oldest || (copy.stem == stem && counts[stem] == 1)) continue;
    const auto worth = [&](const Copy& one) { return std::pair(-counts[one.stem], -one.size); };
    if (least < 0 || worth(copy) < worth(copies[least])) least = i;
  }
  return least;
}

/// `room` for further copies of the calendar, and `bytes` for them among those of all calendars.
void removeOldest(const QString& stem, const QString& folder, const BackupLimits& limits, int room,
                  qint64 bytes) {
  QList<Copy> copies = copiesIn(folder);
  for (const Copy& copy : std::as_const(copies)) bytes += copy.size;
  const auto remove = [&](qsizetype which) {
    bytes -= copies[which].size;
    removeFile(copies[which].path);
    copies.removeAt(which);
  };
  const auto isOurs = [&](const Copy& copy) { return copy.stem == stem; };
  auto ours = std::count_if(copies.begin(), copies.end(), isOurs);
  for (; ours > 0 && ours + room > limits.copies; --ours)
    remove(std::find_if(copies.begin(), copies.end(), isOurs) - copies.begin());
  while (bytes > limits.bytes) {
    const qsizetype least = leastWorth(copies, stem);
    if (least < 0) return;
    remove(least);
  }
}

}  // namespace

QString keepBackup(const QString& path, const QString& folder, const BackupLimits& limits) {
  const qint64 size = QFileInfo(path).size();
  if (size > limits.bytes)
    return QStringLiteral("%1: larger than the %2 bytes that copies may take").arg(path).arg(limits.bytes);
  if (!QDir().mkpath(folder)) return QStringLiteral("%1: the folder cannot be made").arg(folder);
  sweepLitter(folder);  // what a crash has left of a copy
  const QString stem = stemOf(path);
  const QList<Copy> before = copiesOf(stem, copiesIn(folder));
  const qint64 number = before.isEmpty() ? 1 : before.last().number + 1;
  const QString copy =
      QDir(folder).filePath(stem + QString::number(number).rightJustified(numberDigits, u'0') + u".ics"_qs);
  WriteResult result = copyFile(path, copy);
  if (result.outcome == Outcome::Failed && before.size() >= limits.copies) {  // it may be the old ones' room
    removeOldest(stem, folder, limits, 1, size);
    result = copyFile(path, copy);
  }
  if (result.outcome != Outcome::Written) return result.error;
  removeOldest(stem, folder, limits, 0, 0);
  return {};
}

}  // namespace platform::files

#include "platform/calendar/icalendar/index/indexsweep.h"

#include "platform/calendar/icalendar/index/indexlock.h"
#include "platform/calendar/icalendar/index/tables.h"

#include <QDateTime>
#include <QFile>
#include <QFileInfo>
#include <QHash>
#include <QMutex>
#include <QSet>
#include <QStringList>
#include <QtEndian>

#include <algorithm>
#include <dirent.h>
#include <fcntl.h>
#include <memory>
#include <sys/stat.h>
#include <unistd.h>

namespace platform::calendar::icalendar::index {
namespace {

constexpr qsizetype nameLetters = 23;  // "0123456789abcdef.sqlite"
constexpr int headBytes = 100;
constexpr int versionAt = 60, applicationAt = 68;  // in the head of any SQLite file
constexpr qint64 secondsPerHour = 3600;

bool isHex(char c) {
  return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'f');
}

bool isHalfMade(QByteArrayView tail) {
  return tail.startsWith('.') && (tail.endsWith(".new") || tail.endsWith(".new-journal"));
}

/// The name of the index that a file belongs to; empty where it belongs to none.
QByteArray indexOf(const QByteArray& name) {
  const QByteArray index = name.left(nameLetters);
  if (index.size() < nameLetters || !index.endsWith(".sqlite")) return {};
  if (!std::all_of(index.begin(), index.begin() + 16, isHex)) return {};
  const QByteArrayView tail = QByteArrayView(name).sliced(nameLetters);
  const bool known = tail.isEmpty() || tail == "-wal" || tail == "-shm" || tail == "-journal" ||
                     tail == ".lock" || isHalfMade(tail);
  return known ? index : QByteArray();
}

struct Found {
  QStringList paths;
  qint64 lastUsed = 0;
  bool hasIndex = false, hasForeign = false, onlyHalfMade = true;
};

QHash<QByteArray, Found> indexesIn(const QString& folder) {
  QHash<QByteArray, Found> all;
  const std::unique_ptr<DIR, int (*)(DIR*)> open(::opendir(QFile::encodeName(folder).constData()),
                                                 ::closedir);
  if (!open) return all;
  for (int seen = 0; seen < maxSweptNames; ++seen) {
    const struct dirent* entry = ::readdir(open.get());
    if (!entry) break;
    const QByteArray name = entry->d_name, index = indexOf(name);
    if (index.isEmpty()) continue;
    Found& found = all[index];
    struct stat state {};
    const bool ours = ::fstatat(::dirfd(open.get()), entry->d_name, &state, AT_SYMLINK_NOFOLLOW) == 0 &&
                      S_ISREG(state.st_mode) && state.st_uid == ::geteuid();
    found.hasForeign = found.hasForeign || !ours;
    found.hasIndex = found.hasIndex || name == index;
    found.onlyHalfMade =
        found.onlyHalfMade && (isHalfMade(name.sliced(nameLetters)) || name.endsWith(".lock"));
    found.lastUsed = qMax<qint64>(found.lastUsed, state.st_mtim.tv_sec);
    found.paths.append(folder + u'/' + QString::fromLatin1(name));
  }
  return all;
}

/// The version of an index; nothing where the file does not say that it is one. To close the file takes all
/// locks of this process off it, those of its connections as well: only for who has the index's own lock
/// alone.
std::optional<int> versionOf(const QString& path) {
  const int number =
      ::open(QFile::encodeName(path).constData(), O_RDONLY | O_NONBLOCK | O_CLOEXEC | O_NOFOLLOW);
  if (number < 0) return std::nullopt;
  char head[headBytes];
  const ssize_t got = ::pread(number, head, sizeof head, 0);
  ::close(number);
  if (got != headBytes ||
      !QByteArrayView(head, headBytes).startsWith(QByteArrayView("SQLite format 3\0", 16)))
    return std::nullopt;
  if (qFromBigEndian<qint32>(head + applicationAt) != applicationId) return std::nullopt;
  return qFromBigEndian<qint32>(head + versionAt);
}

/// For who has its lock alone, as above.
bool isUseless(const QString& path, const Found& found) {
  const qint64 hours = (QDateTime::currentSecsSinceEpoch() - found.lastUsed) / secondsPerHour;
  if (!found.hasIndex) return hours >= (found.onlyHalfMade ? halfMadeHours : unusedDays * 24);
  const auto version = versionOf(path);
  return version && (*version < schemaVersion || hours >= unusedDays * 24);
}

}  // namespace

int sweepIndexes(const QString& folder, const QString& inUse) {
  const QByteArray own = QFile::encodeName(QFileInfo(inUse).fileName());
  int swept = 0;
  const auto all = indexesIn(folder);
  for (auto found = all.begin(); found != all.end() && swept < maxSweptIndexes; ++found) {
    const QString path = folder + u'/' + QString::fromLatin1(found.key());
    if (found.key() == own || found->hasForeign) continue;
    IndexLock lock(path, IndexLock::Word::None);
    if (lock.take(IndexLock::Kind::Alone, 0) != IndexLock::Result::Had) continue;
    if (!isUseless(path, *found)) {
      if (!found->paths.contains(IndexLock::pathFor(path))) lock.removeFile();  // it was not there before
      continue;
    }
    for (const QString& each : found->paths)
      if (each != IndexLock::pathFor(path)) ::unlink(QFile::encodeName(each).constData());
    lock.removeFile();
    ++swept;
  }
  return swept;
}

void sweepIndexesOnce(const QString& folder, const QString& inUse) {
  static QMutex mutex;
  static QSet<QString> swept;
  {
    const QMutexLocker lock(&mutex);
    if (swept.contains(folder)) return;
    swept.insert(folder);
  }
  sweepIndexes(folder, inUse);
}

void removeHalfMade(const QString& indexPath) {
  const QFileInfo index(indexPath);
  const auto all = indexesIn(index.path());
  for (const QString& each : all.value(QFile::encodeName(index.fileName())).paths) {
    const QByteArray path = QFile::encodeName(each);
    const QByteArray name = path.sliced(path.lastIndexOf('/') + 1);
    if (isHalfMade(QByteArrayView(name).sliced(nameLetters))) ::unlink(path.constData());
  }
}

}  // namespace platform::calendar::icalendar::index

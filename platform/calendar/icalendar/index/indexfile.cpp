#include "platform/calendar/icalendar/index/indexfile.h"

#include "platform/calendar/icalendar/index/checksum.h"
#include "platform/calendar/icalendar/index/indexlock.h"
#include "platform/calendar/icalendar/index/indexsweep.h"
#include "platform/calendar/icalendar/index/tables.h"

#include <QDir>
#include <QFile>
#include <QRandomGenerator>
#include <QSysInfo>

#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <sqlite3.h>
#include <sys/stat.h>
#include <unistd.h>

namespace platform::calendar::icalendar::index {
namespace {

/// Who makes an index may take seconds; who wants it meanwhile reads the files himself.
constexpr int lockPatienceMs = 250;

IndexFailure busy() {
  return {SQLITE_BUSY, "another one has the index"};
}

IndexFailure systemFailure(const char* what) {
  return {SQLITE_CANTOPEN, QByteArray(what) + ": " + qt_error_string(errno).toUtf8()};
}

void removeWithLog(const QString& path) {
  // a log that stays behind would be taken for that of the next file
  for (const char* tail : {"-wal", "-shm", "-journal", ""})
    ::unlink(QFile::encodeName(path + QLatin1String(tail)).constData());
}

/// Only a file of our own: another one's could be exchanged while it is read.
bool isOurs(const QString& path) {
  struct stat found {};
  return ::lstat(QFile::encodeName(path).constData(), &found) == 0 && S_ISREG(found.st_mode) &&
         found.st_uid == ::geteuid() && (found.st_mode & 077) == 0;
}

}  // namespace

IndexFile::IndexFile(const QString& cacheFolder, QString calendarPath)
    : folder_(cacheFolder),
      calendarPath_(std::move(calendarPath)),
      // two machines may share a home, but not a write-ahead log
      identity_(checksumOf(calendarPath_.toUtf8() + '\0' + QSysInfo::machineUniqueId(), schemaVersion)) {
  path_ = folder_ + QStringLiteral("/%1.sqlite").arg(identity_, 16, 16, QLatin1Char('0'));
}

std::unique_ptr<Database> IndexFile::open() const {
  if (!isOurs(path_)) return nullptr;
  auto lock = std::make_shared<IndexLock>(path_);
  switch (lock->take(IndexLock::Kind::Shared, lockPatienceMs)) {
    case IndexLock::Result::Had:
      return opened(std::move(lock));
    case IndexLock::Result::Busy:
      throw busy();
    case IndexLock::Result::Impossible:
      break;
  }
  return nullptr;
}

std::unique_ptr<Database> IndexFile::opened(std::shared_ptr<IndexLock> lock) const {
  try {
    auto database = std::make_unique<Database>(path_, identity_, Database::Access::ReadWrite);
    if (!fits(*database, calendarPath_)) return nullptr;
    if (database->ask("PRAGMA journal_mode = WAL").firstText() != "wal") return nullptr;
    database->script("PRAGMA synchronous = NORMAL; PRAGMA journal_size_limit = 4000000");
    database->hold(std::move(lock));
    return database;
  } catch (const IndexFailure& failure) {
    if (failure.isBusy()) throw;
    return nullptr;
  }
}

std::unique_ptr<Database> IndexFile::make(const std::function<void(Database&)>& fill) const {
  const QByteArray folder = QFile::encodeName(folder_);
  if (!QDir(folder_).exists() && (!QDir().mkpath(folder_) || ::chmod(folder.constData(), 0700) < 0))
    throw systemFailure("the cache folder");
  auto lock = std::make_shared<IndexLock>(path_);
  const IndexLock::Result had = lock->take(IndexLock::Kind::Alone, 0);
  if (had == IndexLock::Result::Busy) throw busy();
  if (had == IndexLock::Result::Impossible) throw systemFailure("the index's lock");
  removeHalfMade(path_);
  const QString fresh = QStringLiteral("%1.%2.%3.new")
                            .arg(path_)
                            .arg(::getpid())
                            .arg(QRandomGenerator::system()->generate(), 8, 16, QLatin1Char('0'));
  try {
    build(fresh, fill);
    removeWithLog(path_);
    if (std::rename(QFile::encodeName(fresh).constData(), QFile::encodeName(path_).constData()) < 0)
      throw systemFailure("the index");
  } catch (...) {
    removeWithLog(fresh);
    throw;
  }
  if (lock->take(IndexLock::Kind::Shared, lockPatienceMs) != IndexLock::Result::Had) throw busy();
  auto database = opened(std::move(lock));
  if (!database) throw IndexFailure{SQLITE_CORRUPT, "the index cannot be read back"};
  return database;
}

void IndexFile::build(const QString& fresh, const std::function<void(Database&)>& fill) const {
  const int made =
      ::open(QFile::encodeName(fresh).constData(), O_CREAT | O_EXCL | O_RDWR | O_CLOEXEC | O_NOFOLLOW, 0600);
  if (made < 0) throw systemFailure("the index");
  ::close(made);
  Database database(fresh, identity_, Database::Access::ReadWrite);
  // nobody sees it before it is whole; but a stretch of a file that changes while it is read is taken back
  database.script(
      "PRAGMA journal_mode = MEMORY; PRAGMA synchronous = OFF; PRAGMA locking_mode = EXCLUSIVE; BEGIN");
  createTables(database, calendarPath_);
  fill(database);
  markComplete(database);
  database.script("COMMIT");
}

bool IndexFile::remove() const {
  IndexLock lock(path_);
  // where no lock can be had at all nobody has one
  if (lock.take(IndexLock::Kind::Alone, 0) == IndexLock::Result::Busy) return false;
  removeWithLog(path_);
  return true;
}

}  // namespace platform::calendar::icalendar::index

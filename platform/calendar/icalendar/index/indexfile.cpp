#include "platform/calendar/icalendar/index/indexfile.h"

#include "platform/calendar/icalendar/index/checksum.h"
#include "platform/calendar/icalendar/index/tables.h"

#include <QDir>
#include <QFile>
#include <QSysInfo>

#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <sqlite3.h>
#include <sys/stat.h>
#include <unistd.h>

namespace platform::calendar::icalendar::index {
namespace {

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
  try {
    auto database = std::make_unique<Database>(path_, identity_, Database::Access::ReadWrite);
    if (!fits(*database, calendarPath_)) return nullptr;
    if (database->ask("PRAGMA journal_mode = WAL").firstText() != "wal") return nullptr;
    database->script("PRAGMA synchronous = NORMAL; PRAGMA journal_size_limit = 4000000");
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
  const QString fresh = QStringLiteral("%1.%2.new").arg(path_).arg(::getpid());
  removeWithLog(fresh);
  const int made =
      ::open(QFile::encodeName(fresh).constData(), O_CREAT | O_EXCL | O_RDWR | O_CLOEXEC | O_NOFOLLOW, 0600);
  if (made < 0) throw systemFailure("the index");
  ::close(made);
  try {
    {
      Database database(fresh, identity_, Database::Access::ReadWrite);
      // nobody sees it before it is whole, so nothing has to be taken back
      database.script(
          "PRAGMA journal_mode = OFF; PRAGMA synchronous = OFF; PRAGMA locking_mode = EXCLUSIVE; BEGIN");
      createTables(database, calendarPath_);
      fill(database);
      createSearch(database);
      markComplete(database);
      database.script("COMMIT");
    }
    removeWithLog(path_);
    if (std::rename(QFile::encodeName(fresh).constData(), QFile::encodeName(path_).constData()) < 0)
      throw systemFailure("the index");
  } catch (...) {
    removeWithLog(fresh);
    throw;
  }
  auto database = open();
  if (!database) throw IndexFailure{SQLITE_CORRUPT, "the index cannot be read back"};
  return database;
}

void IndexFile::remove() const {
  removeWithLog(path_);
}

}  // namespace platform::calendar::icalendar::index

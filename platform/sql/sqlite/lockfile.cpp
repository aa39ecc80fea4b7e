#include "platform/sql/sqlite/lockfile.h"

#include "platform/basic/failure.h"
#include "platform/files/atomicfile.h"
#include "platform/sql/errors.h"

#include <QDeadlineTimer>
#include <QFile>
#include <QFileInfo>
#include <QThread>

#ifdef Q_OS_UNIX
#include <cerrno>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>
#endif

namespace platform::sql::sqlite {

QString LockFile::nameFor(const QString& database) {
  const QString ending = QStringLiteral(".mdb");
  const bool access = database.endsWith(ending, Qt::CaseInsensitive);
  return (access ? database.chopped(ending.size()) : database) + u".ldb"_qs;
}

#ifdef Q_OS_UNIX

namespace {

constexpr unsigned long pauseMs = 20;
constexpr mode_t readAndWrite = 0666;

bool isMissing(const QByteArray& path) {
  struct stat found {};
  return ::lstat(path.constData(), &found) != 0 && errno == ENOENT;
}

/// An empty file, which a crash may take with it; who may use the database may use its lock file. False where
/// it cannot be made; another program that makes it at the same time does as well.
bool make(const QString& database, const QByteArray& path) {
  const QString name = QFile::decodeName(path);
  constexpr qint64 olderThanSeconds = 3600;
  const auto isOurs = [&](const QString& target) {
    return target == QFileInfo(name).fileName() || target == QFileInfo(database).fileName();
  };
  files::sweepLitter(QFileInfo(name).path(), olderThanSeconds, isOurs);  // what a crash has left right here
  struct stat file {};
  if (::stat(QFile::encodeName(database).constData(), &file) != 0) file.st_mode = readAndWrite;
  const mode_t mode = file.st_mode & readAndWrite;
  const int made = ::open(path.constData(), O_CREAT | O_EXCL | O_RDWR | O_CLOEXEC | O_NOFOLLOW, mode);
  if (made < 0) return errno == EEXIST;
  ::fchmod(made, mode);  // where it fails, the others do without the lock
  ::close(made);
  return true;
}

/// -1 where the file cannot be had.
int opened(const QString& database, const QByteArray& path) {
  constexpr int mostAttempts = 50;
  // network file systems give a lock for one alone only on what is open for writing
  constexpr int flags = O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK;
  for (int attempt = 1;; ++attempt) {
    if (isMissing(path) && !make(database, path)) return -1;
    int descriptor = ::open(path.constData(), O_RDWR | flags);
    if (descriptor < 0 && (errno == EACCES || errno == EROFS))
      descriptor = ::open(path.constData(), O_RDONLY | flags);
    // its last user may have removed it since it was seen
    if (descriptor >= 0 || errno != ENOENT || attempt == mostAttempts) return descriptor;
  }
}

/// Is the open file still the one that stands under its name? Its last user may have removed it meanwhile.
bool standsAt(const QByteArray& path, int descriptor) {
  struct stat open {
  }, named{};
  return ::fstat(descriptor, &open) == 0 && ::lstat(path.constData(), &named) == 0 &&
         open.st_ino == named.st_ino && open.st_dev == named.st_dev;
}

enum class Attempt { Got, Busy, Gone, Forbidden, Impossible };

Attempt tryLock(const QByteArray& path, int descriptor, LockFile::Use use) {
  const int operation = (use == LockFile::Use::Alone ? LOCK_EX : LOCK_SH) | LOCK_NB;
  int result = ::flock(descriptor, operation);
  while (result != 0 && errno == EINTR) result = ::flock(descriptor, operation);
  if (result != 0) {
    // some network file systems say of a lock that another one has that it is not permitted
    if (errno == EWOULDBLOCK || errno == EACCES) return Attempt::Busy;
    return errno == EBADF ? Attempt::Forbidden : Attempt::Impossible;
  }
  return standsAt(path, descriptor) ? Attempt::Got : Attempt::Gone;
}

}  // namespace

std::unique_ptr<LockFile> LockFile::take(const QString& database, Use use, int waitMs) {
  const QByteArray path = QFile::encodeName(nameFor(database));
  const QDeadlineTimer deadline(waitMs);
  int descriptor = opened(database, path);
  while (descriptor >= 0) {
    const Attempt attempt = tryLock(path, descriptor, use);
    if (attempt == Attempt::Got) return std::unique_ptr<LockFile>(new LockFile(descriptor, path));
    if (attempt == Attempt::Busy && !deadline.hasExpired()) {
      QThread::msleep(pauseMs);
      continue;
    }
    ::close(descriptor);
    if (attempt == Attempt::Busy)
      throw Failure(errors::locked,
                    QStringLiteral("The database '%1' is in use by another program.").arg(database));
    if (attempt == Attempt::Impossible) return nullptr;
    // who may not write into it counts as one who cannot have the file
    descriptor = attempt == Attempt::Forbidden ? -1 : opened(database, path);
  }
  if (use == Use::Shared) return nullptr;
  throw Failure(errors::noPermission,
                QStringLiteral("The lock file '%1' cannot be made: you need permission to the folder of the "
                               "database.")
                    .arg(nameFor(database)));
}

LockFile::~LockFile() {
  // Only who has it alone may remove it; the others have to find the file that the rest of them shares.
  if (::flock(descriptor_, LOCK_EX | LOCK_NB) == 0 && standsAt(path_, descriptor_))
    ::unlink(path_.constData());
  ::close(descriptor_);
}

#else

std::unique_ptr<LockFile> LockFile::take(const QString&, Use, int) {
  return nullptr;  // the system itself refuses to exchange a file that is open
}

LockFile::~LockFile() = default;

#endif

}  // namespace platform::sql::sqlite

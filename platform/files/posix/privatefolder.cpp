#include "platform/files/privatefolder.h"

#include "platform/files/posix/place.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <cstring>
#include <sys/file.h>
#include <unistd.h>

namespace platform::files {

namespace {

QString saidOf(const QString& path, int code) {
  return QStringLiteral("%1: %2").arg(path, QString::fromLocal8Bit(std::strerror(code)));
}

/// Each folder that was made is a new name in the one above, which has to reach the disk as well.
QString makeWithAbove(const QString& path, mode_t mode) {
  if (QFileInfo(path).isDir()) return {};
  const QString above = QFileInfo(path).path();
  if (above != path) {
    const QString error = makeWithAbove(above, 0777);
    if (!error.isEmpty()) return error;
  }
  if (::mkdir(QFile::encodeName(path).constData(), mode) != 0 && errno != EEXIST) return saidOf(path, errno);
  const Descriptor folder(::open(QFile::encodeName(above).constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  if (folder < 0) return saidOf(above, errno);
  // some file systems have no such thing as syncing a folder
  const bool synced = retried([&] { return SystemCalls::current().fsync(folder); }) == 0;
  if (!synced && errno != EINVAL && errno != ENOTSUP) return saidOf(above, errno);
  return QFileInfo(path).isDir() ? QString() : saidOf(path, ENOTDIR);
}

}  // namespace

QString makePrivateFolder(const QString& path) {
  return makeWithAbove(QDir::cleanPath(path), 0700);
}

std::unique_ptr<FileLock> FileLock::tryTake(const QString& path, QString* error) {
  const QByteArray name = QFile::encodeName(path);
  Descriptor file(
      retried([&] { return ::open(name.constData(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, 0600); }));
  if (file < 0) {
    *error = saidOf(path, errno);
    return nullptr;
  }
  const int result = retried([&] { return ::flock(file, LOCK_EX | LOCK_NB); });
  // some network file systems say of a lock that another one has that it is not permitted
  if (result != 0 && (errno == EWOULDBLOCK || errno == EACCES)) return nullptr;
  return std::unique_ptr<FileLock>(new FileLock(file.release()));
}

FileLock::~FileLock() {
  ::close(descriptor_);
}

}  // namespace platform::files

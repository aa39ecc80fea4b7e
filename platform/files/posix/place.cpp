#include "platform/files/posix/place.h"

#include <QCryptographicHash>
#include <QFile>

#include <array>
#include <climits>
#include <ctime>
#include <system_error>
#include <unistd.h>
#include <utility>

namespace platform::files {

namespace {

constexpr int mostLinks = 40;

const SystemCalls& calls() {
  return SystemCalls::current();
}

QByteArray folderPart(const QByteArray& path) {
  const qsizetype slash = path.lastIndexOf('/');
  return slash < 0 ? QByteArray(".") : slash == 0 ? QByteArray("/") : path.left(slash);
}

QByteArray followed(const QString& path, QByteArray current) {
  for (int step = 0; step < mostLinks; ++step) {
    QByteArray link(PATH_MAX, '\0');
    const ssize_t length = retried(
        [&] { return calls().readlinkat(AT_FDCWD, current.constData(), link.data(), size_t(link.size())); });
    if (length < 0 && (errno == EINVAL || errno == ENOENT)) return current;  // no link, or nothing there yet
    if (length < 0) fail(path, errno);
    link.truncate(length);
    current = link.startsWith('/') ? link : folderPart(current) + '/' + link;
  }
  fail(path, ELOOP);
}

}  // namespace

bool isDenied(int code) {
  return code == EACCES || code == EPERM || code == EROFS;
}

void fail(const QString& path, int code) {
  throw Trouble{QStringLiteral("%1: %2").arg(
                    path, QString::fromLocal8Bit(std::generic_category().message(code).c_str())),
                code};
}

void failWith(const QString& path, const QString& words) {
  throw Trouble{QStringLiteral("%1: %2").arg(path, words), 0};
}

Descriptor& Descriptor::operator=(Descriptor&& other) noexcept {
  std::swap(number_, other.number_);
  return *this;
}

Descriptor::~Descriptor() {
  if (number_ >= 0) calls().close(number_);  // what must be known to be written was synced before
}

int Descriptor::release() {
  return std::exchange(number_, -1);
}

Place placeOf(const QString& path, Links links) {
  if (path.isEmpty()) fail(path, ENOENT);
  if (path.contains(QChar(u'\0'))) fail(path, EINVAL);  // the system would cut the name there
  QByteArray encoded = QFile::encodeName(path);
  if (links == Links::Follow) encoded = followed(path, encoded);
  Place place;
  place.path = path;
  place.name = encoded.mid(encoded.lastIndexOf('/') + 1);
  if (place.name.isEmpty() || place.name == "." || place.name == "..") fail(path, EISDIR);
  const QByteArray folder = folderPart(encoded);
  place.folder = Descriptor(retried(
      [&] { return calls().openat(AT_FDCWD, folder.constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC, 0); }));
  if (place.folder < 0) fail(path, errno);
  return place;
}

std::optional<struct stat> lookAt(const Place& place, const QByteArray& name) {
  struct stat found {};
  const int result =
      retried([&] { return calls().fstatat(place.folder, name.constData(), &found, AT_SYMLINK_NOFOLLOW); });
  if (result < 0 && errno == ENOENT) return std::nullopt;
  if (result < 0) fail(place.path, errno);
  if (S_ISDIR(found.st_mode)) fail(place.path, EISDIR);
  if (!S_ISREG(found.st_mode)) failWith(place.path, QStringLiteral("not a regular file"));
  return found;
}

void refuseReadOnly(const Place& place, const struct stat& found) {
  if ((found.st_mode & 0222) == 0) fail(place.path, EACCES);
  if (retried([&] { return calls().faccessat(place.folder, place.name.constData(), W_OK, AT_EACCESS); }) < 0)
    fail(place.path, errno);
}

Fingerprint fingerprintOf(const struct stat& found) {
  Fingerprint fingerprint;
  fingerprint.exists = true;
  fingerprint.mtimeNs = qint64(found.st_mtim.tv_sec) * 1'000'000'000 + found.st_mtim.tv_nsec;
  fingerprint.size = found.st_size;
  fingerprint.inode = found.st_ino;
  return fingerprint;
}

bool sameStat(const Fingerprint& a, const Fingerprint& b) {
  return a.exists == b.exists && a.mtimeNs == b.mtimeNs && a.size == b.size && a.inode == b.inode;
}

namespace {

bool holds(const Place& place, const QByteArray& name, const Fingerprint& expected, const QByteArray* written,
           Fingerprint* seen) {
  const std::optional<struct stat> found = lookAt(place, name);
  if (!found) return !expected.exists;
  const Fingerprint now = fingerprintOf(*found);
  if (seen) *seen = now;
  if (sameStat(now, expected) && (now.size > comparedBytes || expected.hash.isEmpty())) return true;
  const bool maybeExpected = expected.exists && now.size == expected.size && !expected.hash.isEmpty();
  const bool maybeWritten = written && now.size == written->size();
  if (!maybeExpected && !maybeWritten) return false;

  const Descriptor file = openForReading(place.folder, name, place.path);
  const QByteArray bytes = readAll(file, place.path, now.size);
  if (!(maybeWritten && bytes == *written) && !(maybeExpected && hashOf(bytes) == expected.hash))
    return false;
  const std::optional<struct stat> after = lookAt(place, name);  // nobody wrote while it was read
  return after && sameStat(fingerprintOf(*after), now);
}

/// Written so shortly ago that one more writing may have left it with the same time: some file systems count
/// in steps of two seconds.
bool isYoung(const Fingerprint& file) {
  constexpr qint64 settlingNs = 3'000'000'000;
  timespec now{};
  ::clock_gettime(CLOCK_REALTIME, &now);
  return file.mtimeNs > qint64(now.tv_sec) * 1'000'000'000 + now.tv_nsec - settlingNs;
}

/// There a refused lease tells nothing of who writes, nor is one worth anything: those who write on other
/// machines are not known here.
bool isOnAServer(int file) {
  struct statfs system {};
  if (retried([&] { return calls().fstatfs(file, &system); }) < 0) return true;
  switch (static_cast<unsigned>(system.f_type)) {
    case 0x6969:      // NFS
    case 0x517B:      // SMB
    case 0xFF534D42:  // CIFS
    case 0xFE534D42:  // SMB 2
      return true;
    default:
      return false;
  }
}

}  // namespace

bool isStill(const Place& place, const Fingerprint& expected, const QByteArray* written, Fingerprint* seen) {
  return holds(place, place.name, expected, written, seen);
}

bool wasStill(const Place& place, const QByteArray& name, const Fingerprint& seen,
              const Fingerprint& expected, const QByteArray* written) try {
  const std::optional<struct stat> found = lookAt(place, name);
  if (!found) return true;  // as below
  const Descriptor file = openForReading(place.folder, name, place.path);
  // No name leads there any more, so nobody else can come to write into it.
  if (!isOnAServer(file) && calls().lease(file) < 0 && errno == EAGAIN) return false;
  const std::optional<struct stat> unwritten = lookAt(place, name);
  if (!unwritten) return true;
  const Fingerprint now = fingerprintOf(*unwritten);
  // There are file systems on which a number belongs to the name and does not go along.
  const bool sameTime = now.mtimeNs == seen.mtimeNs && now.size == seen.size;
  if (sameTime && (now.size > comparedBytes || (now.inode == seen.inode && !isYoung(now)))) return true;
  return holds(place, name, expected, written, nullptr);
} catch (const Trouble& trouble) {
  // Taken for litter by an instance that has just begun: so it was last written long ago, and not just now.
  if (trouble.code == ENOENT) return true;
  throw;
}

Descriptor openForReading(int folder, const QByteArray& name, const QString& path) {
  // Not blocking: opening a FIFO that nobody writes to would otherwise hang the program.
  Descriptor file(retried([&] {
    return calls().openat(folder, name.constData(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC, 0);
  }));
  if (file < 0) fail(path, errno);
  return file;
}

QByteArray readAll(int file, const QString& path, qint64 size) {
  QByteArray bytes(size + 1, Qt::Uninitialized);
  qint64 done = 0;
  while (done < bytes.size()) {
    const ssize_t got = retried(
        [&] { return calls().read(file, bytes.data() + done, static_cast<size_t>(bytes.size() - done)); });
    if (got < 0) fail(path, errno);
    if (got == 0) break;
    done += got;
  }
  bytes.truncate(done);
  return bytes;
}

QByteArray readAt(int file, const QString& path, qint64 offset, qint64 size) {
  QByteArray bytes(size, Qt::Uninitialized);
  qint64 done = 0;
  while (done < size) {
    const ssize_t got = retried([&] {
      return calls().pread(file, bytes.data() + done, static_cast<size_t>(size - done), offset + done);
    });
    if (got < 0) fail(path, errno);
    if (got == 0) break;
    done += got;
  }
  bytes.truncate(done);
  return bytes;
}

/// A save looks at the same two contents over and over: to compare them is quicker.
QByteArray hashOf(const QByteArray& bytes) {
  constexpr qsizetype rememberedBytes = 16 * 1024;
  struct Known {
    QByteArray bytes, hash;
  };
  thread_local std::array<Known, 2> known;
  for (const Known& one : known)
    if (!one.hash.isEmpty() && one.bytes == bytes) return one.hash;
  const QByteArray hash = QCryptographicHash::hash(bytes, QCryptographicHash::Sha256);
  if (bytes.size() > rememberedBytes) return hash;
  known[1] = std::exchange(known[0], {bytes, hash});
  return hash;
}

void syncFolder(const Place& place) {
  if (retried([&] { return calls().fsync(place.folder); }) == 0) return;
  // Some network and FAT file systems have no such thing as syncing a folder; they order renames themselves.
  if (errno == EINVAL || errno == ENOTSUP) return;
  fail(place.path, errno);
}

bool renameToFreeName(const Place& place, const QByteArray& from, const QByteArray& to) {
  const int result =
      retried([&] { return calls().renameatNoReplace(place.folder, from.constData(), to.constData()); });
  if (result == 0) return true;
  if (errno == EEXIST) return false;
  if (errno != EINVAL && errno != ENOSYS && errno != ENOTSUP) fail(place.path, errno);
  // This file system cannot do both in one step: a file that appears between these two lines would be lost.
  struct stat taken {};
  if (retried([&] { return calls().fstatat(place.folder, to.constData(), &taken, AT_SYMLINK_NOFOLLOW); }) ==
      0)
    return false;
  if (errno != ENOENT) fail(place.path, errno);
  if (retried([&] { return calls().renameat(place.folder, from.constData(), to.constData()); }) < 0)
    fail(place.path, errno);
  return true;
}

}  // namespace platform::files

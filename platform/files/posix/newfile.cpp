#include "platform/files/posix/newfile.h"

#include "platform/files/posix/litternames.h"

#include <QFile>

#include <unistd.h>

namespace platform::files {

namespace {

constexpr int mostNames = 100;
constexpr mode_t ownerOnly = 0600;
constexpr mode_t byUmask = 0666;
constexpr qint64 pieceBytes = 1024 * 1024;

const SystemCalls& calls() {
  return SystemCalls::current();
}

/// Between these two files, or on this system, only this program itself can copy.
bool cannotCopy(int code) {
  return code == ENOSYS || code == EXDEV || code == EINVAL || code == EOPNOTSUPP || code == EPERM ||
         code == ETXTBSY;
}

}  // namespace

NewFile::NewFile(const Place& place, mode_t mode) : place_(place) {
  for (int attempt = 0; attempt < mostNames; ++attempt) {
    const QByteArray name = temporaryName(place.name);
    file_ = Descriptor(retried([&] {
      return calls().openat(place.folder, name.constData(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, mode);
    }));
    if (file_ >= 0) {
      name_ = name;
      return;
    }
    if (errno != EEXIST) break;
  }
  fail(place.path, errno);
}

NewFile::~NewFile() {
  removeName();
}

/// Twice, should one call fail. If that fails too the file stays as litter, which sweepLitter() takes later.
void NewFile::removeName() {
  if (std::exchange(moved_, true) || name_.isEmpty()) return;
  const auto remove = [&] {
    return retried([&] { return calls().unlinkat(place_.folder, name_.constData()); });
  };
  if (remove() < 0 && errno != ENOENT) remove();
}

struct stat NewFile::status() const {
  struct stat found {};
  if (retried([&] { return calls().fstat(file_, &found); }) < 0) fail(place_.path, errno);
  return found;
}

void NewFile::takeOwnerAndMode(const struct stat& target, FileMode mode) {
  const struct stat own = status();
  mode_t bits = target.st_mode & 0777;
  if (mode == FileMode::OwnerOnly) bits &= 0700;
  bool groupKept = own.st_gid == target.st_gid;
  if (own.st_uid != target.st_uid || !groupKept) {
    // Only the administrator may give a file away; a member of a group may keep it in the group.
    groupKept = calls().fchown(file_, target.st_uid, target.st_gid) == 0 ||
                calls().fchown(file_, static_cast<uid_t>(-1), target.st_gid) == 0 || groupKept;
    // What was meant for the old group must not open the file to another one.
    if (!groupKept) bits = (bits & ~mode_t{0070}) | (bits & 0070 & ((bits & 0007) << 3));
  }
  if (retried([&] { return calls().fchmod(file_, bits); }) < 0) fail(place_.path, errno);
}

void NewFile::write(const QByteArray& bytes) {
  write(bytes.constData(), bytes.size());
}

void NewFile::write(const char* bytes, qint64 size) {
  qint64 done = 0;
  while (done < size) {
    const ssize_t wrote =
        retried([&] { return calls().write(file_, bytes + done, static_cast<size_t>(size - done)); });
    if (wrote < 0) fail(place_.path, errno);
    if (wrote == 0) fail(place_.path, EIO);
    done += wrote;
  }
}

void NewFile::copy(int source, qint64 offset, qint64 length) {
  while (length > 0 && !byHand_) {
    off_t from = offset;
    const ssize_t copied =
        retried([&] { return calls().copyFileRange(source, &from, file_, static_cast<size_t>(length)); });
    if (copied < 0 && !cannotCopy(errno)) fail(place_.path, errno);
    if (copied <= 0) {  // some file systems say 0 instead of "cannot"; whether it is the end, reading tells
      byHand_ = true;
      break;
    }
    offset += copied;
    length -= copied;
  }
  if (length > 0) copyByHand(source, offset, length);
}

void NewFile::copyByHand(int source, qint64 offset, qint64 length) {
  while (length > 0) {
    const QByteArray piece = readAt(source, place_.path, offset, qMin(length, pieceBytes));
    if (piece.isEmpty()) throw Changed();
    write(piece);
    offset += piece.size();
    length -= piece.size();
  }
}

bool NewFile::clone(int source) {
  return retried([&] { return calls().clone(file_, source); }) == 0;
}

Fingerprint NewFile::finish(qint64 size) {
  if (retried([&] { return calls().fsync(file_); }) < 0) fail(place_.path, errno);
  Fingerprint fingerprint = fingerprintOf(status());
  if (fingerprint.size != size)
    failWith(place_.path, QStringLiteral("only %1 of %2 bytes were written").arg(fingerprint.size).arg(size));
  own_ = fingerprint;
  // A network file system may tell of a full disk only here. An interrupted close has closed the file.
  if (calls().close(file_.release()) < 0 && errno != EINTR) fail(place_.path, errno);
  return fingerprint;
}

bool NewFile::moveToTarget(bool mustBeNew) {
  if (mustBeNew) {
    moved_ = renameToFreeName(place_, name_, place_.name);
    return moved_;
  }
  if (retried([&] { return calls().renameat(place_.folder, name_.constData(), place_.name.constData()); }) <
      0)
    fail(place_.path, errno);
  moved_ = true;
  return true;
}

void NewFile::takePlaceOf(const Fingerprint& expected, const QByteArray* written) {
  Fingerprint seen;
  if (!isStill(place_, expected, written, &seen)) throw Changed();
  const auto changePlaces = [&] {
    return retried(
        [&] { return calls().renameatExchange(place_.folder, name_.constData(), place_.name.constData()); });
  };
  if (changePlaces() < 0) {
    if (errno == ENOENT) throw Changed();
    if (errno != EINVAL && errno != ENOSYS && errno != ENOTSUP) fail(place_.path, errno);
    moveToTarget(false);
    return;
  }
  bool same = false;
  try {
    same = wasStill(place_, name_, seen, expected, written);
  } catch (...) {  // for want of memory, too
    changePlacesBack();
    throw;
  }
  if (same) return removeName();
  changePlacesBack();
  throw Changed();
}

/// What another program has put there is worth more than everything else here.
void NewFile::changePlacesBack() {
  const bool back =
      retried([&] {
        return calls().renameatExchange(place_.folder, name_.constData(), place_.name.constData());
      }) == 0;
  if (back) {
    struct stat found {};
    const bool known = calls().fstatat(place_.folder, name_.constData(), &found, AT_SYMLINK_NOFOLLOW) == 0;
    const Fingerprint out = fingerprintOf(found);
    if (known && out.mtimeNs == own_.mtimeNs && out.size == own_.size) return;
  } else if (retried([&] {
               return calls().renameat(place_.folder, name_.constData(), place_.name.constData());
             }) == 0) {
    moved_ = true;
    return;
  }
  moved_ = true;
  failWith(place_.path, QStringLiteral("changed by another program meanwhile, whose version stands beside it "
                                       "as \"%1\"")
                            .arg(QFile::decodeName(name_)));
}

mode_t creationMode(const std::optional<struct stat>& target, FileMode mode) {
  return target || mode == FileMode::OwnerOnly ? ownerOnly : byUmask;
}

}  // namespace platform::files

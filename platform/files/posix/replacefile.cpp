#include "platform/files/posix/litternames.h"
#include "platform/files/posix/place.h"

#include <unistd.h>

namespace platform::files {

namespace {

constexpr int mostNames = 100;
constexpr mode_t ownerOnly = 0600;
constexpr mode_t byUmask = 0666;

const SystemCalls& calls() {
  return SystemCalls::current();
}

/// The new file beside the target. Whatever goes wrong until it has been renamed, it vanishes with the
/// object.
class NewFile {
 public:
  NewFile(const Place& place, mode_t mode);
  ~NewFile();
  NewFile(const NewFile&) = delete;
  NewFile& operator=(const NewFile&) = delete;

  void takeOwnerAndMode(const struct stat& target, FileMode mode);
  void write(const QByteArray& bytes);
  /// Everything is on the disk; what it is there.
  Fingerprint finish(const QByteArray& bytes);
  /// False when `mustBeNew` and the name was taken meanwhile.
  bool moveToTarget(bool mustBeNew);

 private:
  struct stat status() const;

  const Place& place_;
  QByteArray name_;
  Descriptor file_;
  bool moved_ = false;
};

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
  // If even this fails the file stays as litter, which sweepLitter() takes later.
  if (!moved_ && !name_.isEmpty())
    retried([&] { return calls().unlinkat(place_.folder, name_.constData()); });
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
  qsizetype done = 0;
  while (done < bytes.size()) {
    const ssize_t wrote = retried([&] {
      return calls().write(file_, bytes.constData() + done, static_cast<size_t>(bytes.size() - done));
    });
    if (wrote < 0) fail(place_.path, errno);
    if (wrote == 0) fail(place_.path, EIO);
    done += wrote;
  }
}

Fingerprint NewFile::finish(const QByteArray& bytes) {
  if (retried([&] { return calls().fsync(file_); }) < 0) fail(place_.path, errno);
  Fingerprint fingerprint = fingerprintOf(status());
  if (fingerprint.size != bytes.size())
    failWith(place_.path,
             QStringLiteral("only %1 of %2 bytes were written").arg(fingerprint.size).arg(bytes.size()));
  fingerprint.hash = hashOf(bytes);
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

mode_t creationMode(const std::optional<struct stat>& target, FileMode mode) {
  return target || mode == FileMode::OwnerOnly ? ownerOnly : byUmask;
}

}  // namespace

WriteResult replaceFile(const QString& path, const QByteArray& bytes,
                        const std::optional<Fingerprint>& expected, FileMode mode) {
  WriteResult result;
  report(path, changedMeanwhile, &result, [&] {
    const Place place = placeOf(path, Links::Follow);
    const std::optional<struct stat> target = lookAt(place);
    if (target) refuseReadOnly(place, *target);
    NewFile file(place, creationMode(target, mode));
    if (target) file.takeOwnerAndMode(*target, mode);
    file.write(bytes);
    const Fingerprint written = file.finish(bytes);
    if (expected && !isStill(place, *expected, &bytes)) throw Changed();
    if (!file.moveToTarget(expected && !expected->exists && !target)) throw Changed();
    result.fingerprint = written;
    syncFolder(place);
  });
  return result;
}

}  // namespace platform::files

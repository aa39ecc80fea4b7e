#include "platform/files/posix/place.h"

#include <QFile>

namespace platform::files {

namespace {

constexpr int mostReadings = 3;

const SystemCalls& calls() {
  return SystemCalls::current();
}

struct stat regularFile(const QString& path, int result, const struct stat& found) {
  if (result < 0) fail(path, errno);
  if (S_ISDIR(found.st_mode)) fail(path, EISDIR);
  if (!S_ISREG(found.st_mode)) failWith(path, QStringLiteral("not a regular file"));
  return found;
}

struct stat lookAtOpen(int file, const QString& path) {
  struct stat found {};
  return regularFile(path, retried([&] { return calls().fstat(file, &found); }), found);
}

ReadResult readOnce(const QString& path, qint64 limit, Hashing hashing, bool* changed) {
  const QByteArray name = QFile::encodeName(path);
  struct stat found {};
  // Asked before it is opened as well: opening alone does something to some devices.
  regularFile(path, retried([&] { return calls().fstatat(AT_FDCWD, name.constData(), &found, 0); }), found);
  const Descriptor file = openForReading(AT_FDCWD, name, path);
  const Fingerprint before = fingerprintOf(lookAtOpen(file, path));
  if (before.size > limit)
    failWith(path, QStringLiteral("larger than the %1 bytes that are read").arg(limit));

  ReadResult result;
  result.bytes = readAll(file, path, before.size);
  result.fingerprint = fingerprintOf(lookAtOpen(file, path));
  if (hashing == Hashing::Yes) result.fingerprint.hash = hashOf(result.bytes);
  result.ok = true;
  *changed = !sameStat(before, result.fingerprint) || result.bytes.size() != result.fingerprint.size;
  return result;
}

}  // namespace

ReadResult readFile(const QString& path, qint64 limit, Hashing hashing) {
  try {
    if (path.isEmpty()) fail(path, ENOENT);
    if (path.contains(QChar(u'\0'))) fail(path, EINVAL);
    for (int reading = 0; reading < mostReadings; ++reading) {
      bool changed = false;
      const ReadResult result = readOnce(path, limit, hashing, &changed);
      if (!changed) return result;
    }
    failWith(path, QStringLiteral("another program keeps changing it"));
  } catch (const Trouble& trouble) {
    ReadResult result;
    result.missing = trouble.code == ENOENT;
    result.denied = isDenied(trouble.code);
    result.error = trouble.error;
    return result;
  }
}

}  // namespace platform::files

#include "platform/files/posix/place.h"

namespace platform::files {

namespace {

const SystemCalls& calls() {
  return SystemCalls::current();
}

/// False when the file is gone already, or is another one than was expected.
bool mayBeRemoved(const Place& name, const QString& path, const std::optional<Fingerprint>& expected) {
  struct stat entry {};
  const bool isThere =
      retried([&] {
        return calls().fstatat(name.folder, name.name.constData(), &entry, AT_SYMLINK_NOFOLLOW);
      }) == 0;
  if (!isThere && errno != ENOENT) fail(path, errno);
  if (!isThere && !expected) fail(path, ENOENT);
  if (!isThere) return !expected->exists;
  const Place content = placeOf(path, Links::Follow);  // a link is judged by what it leads to
  const std::optional<struct stat> found = lookAt(content);
  if (found) refuseReadOnly(content, *found);
  return !expected || isStill(content, *expected, nullptr);
}

}  // namespace

WriteResult removeFile(const QString& path, const std::optional<Fingerprint>& expected) {
  WriteResult result;
  try {
    const Place place = placeOf(path, Links::Keep);
    if (!mayBeRemoved(place, path, expected)) throw Changed();
    const bool gone = retried([&] { return calls().unlinkat(place.folder, place.name.constData()); }) == 0;
    if (!gone && !(errno == ENOENT && expected && !expected->exists)) fail(path, errno);
    syncFolder(place);
    result.outcome = Outcome::Written;
  } catch (const Changed&) {
    result.outcome = Outcome::ChangedMeanwhile;
    result.error = QStringLiteral("%1: changed by another program meanwhile").arg(path);
  } catch (const Trouble& trouble) {
    result.error = trouble.error;
  }
  return result;
}

}  // namespace platform::files

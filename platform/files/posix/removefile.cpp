#include "platform/files/posix/place.h"

#include <QFile>

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
  report(path, changedMeanwhile, &result, [&] {
    const Place place = placeOf(path, Links::Keep);
    if (!mayBeRemoved(place, path, expected)) throw Changed();
    const bool gone = retried([&] { return calls().unlinkat(place.folder, place.name.constData()); }) == 0;
    if (!gone && !(errno == ENOENT && expected && !expected->exists)) fail(path, errno);
    try {
      syncFolder(place);
    } catch (const Trouble& trouble) {
      result.error = trouble.error;  // it is gone all the same
    }
  });
  return result;
}

WriteResult renameFile(const QString& path, const QString& newName) {
  WriteResult result;
  report(path, QStringLiteral("the name \"%1\" is taken").arg(newName), &result, [&] {
    const bool badName = newName.isEmpty() || newName.contains(u'/') || newName.contains(QChar(u'\0'));
    if (badName || newName == QStringLiteral(".") || newName == QStringLiteral("..")) fail(path, EINVAL);
    const Place place = placeOf(path, Links::Keep);
    if (!renameToFreeName(place, place.name, QFile::encodeName(newName))) throw Changed();
    syncFolder(place);
  });
  return result;
}

}  // namespace platform::files

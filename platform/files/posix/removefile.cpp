#include "platform/files/posix/litternames.h"
#include "platform/files/posix/place.h"

#include <QFile>

namespace platform::files {

namespace {

const SystemCalls& calls() {
  return SystemCalls::current();
}

/// As with NewFile::takePlaceOf(): out of its place, looked at, and back where another program was faster.
void takeAway(const Place& place, const Fingerprint& seen, const Fingerprint& expected) {
  const QByteArray aside = temporaryName(place.name);
  try {
    if (!renameToFreeName(place, place.name, aside)) fail(place.path, EEXIST);
  } catch (const Trouble& trouble) {
    if (trouble.code == ENOENT) throw Changed();  // somebody else has removed it in the last moment
    throw;
  }
  bool same = false;
  const auto putBack = [&] {
    if (renameToFreeName(place, aside, place.name)) return;
    failWith(place.path, QStringLiteral("changed by another program meanwhile, an older version of which "
                                        "stands beside it as \"%1\"")
                             .arg(QFile::decodeName(aside)));
  };
  try {
    same = wasStill(place, aside, seen, expected, nullptr);
    const auto remove = [&] {
      return retried([&] { return calls().unlinkat(place.folder, aside.constData()); });
    };
    if (same && remove() < 0 && errno != ENOENT) fail(place.path, errno);
  } catch (...) {  // for want of memory, too
    putBack();
    throw;
  }
  if (same) return;
  putBack();
  throw Changed();
}

/// False when the file is gone already, or is another one than was expected.
bool mayBeRemoved(const Place& name, const QString& path, const std::optional<Fingerprint>& expected,
                  Fingerprint* seen) {
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
  const bool may = !expected || isStill(content, *expected, nullptr, seen);
  if (!found || !S_ISREG(entry.st_mode)) *seen = {};
  return may;
}

}  // namespace

WriteResult removeFile(const QString& path, const std::optional<Fingerprint>& expected) {
  WriteResult result;
  report(path, changedMeanwhile, &result, [&] {
    const Place place = placeOf(path, Links::Keep);
    Fingerprint seen;
    if (!mayBeRemoved(place, path, expected, &seen)) throw Changed();
    if (seen.exists) {
      takeAway(place, seen, *expected);
    } else {
      const bool gone = retried([&] { return calls().unlinkat(place.folder, place.name.constData()); }) == 0;
      if (!gone && !(errno == ENOENT && expected && !expected->exists)) fail(path, errno);
    }
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

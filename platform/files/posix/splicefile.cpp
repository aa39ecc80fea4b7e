#include "platform/files/posix/newfile.h"

#include <algorithm>

namespace platform::files {

namespace {

QList<Splice> inOrder(const QString& path, QList<Splice> splices) {
  std::stable_sort(splices.begin(), splices.end(),
                   [](const Splice& a, const Splice& b) { return a.offset < b.offset; });
  qint64 free = 0;
  for (const Splice& splice : std::as_const(splices)) {
    if (splice.offset < free) fail(path, EINVAL);
    free = splice.offset + splice.was.size();
  }
  return splices;
}

qint64 growthOf(const QList<Splice>& splices) {
  qint64 growth = 0;
  for (const Splice& splice : splices) growth += splice.with.size() - splice.was.size();
  return growth;
}

/// Nothing when one of the stretches does not hold what it should.
std::optional<QByteArray> spliced(const QByteArray& bytes, const QList<Splice>& splices) {
  QByteArray result;
  qint64 at = 0;
  for (const Splice& splice : splices) {
    const qint64 end = splice.offset + splice.was.size();
    if (end > bytes.size() || QByteArrayView(bytes).sliced(splice.offset, splice.was.size()) != splice.was)
      return std::nullopt;
    result += QByteArrayView(bytes).sliced(at, splice.offset - at);
    result += splice.with;
    at = end;
  }
  result += QByteArrayView(bytes).sliced(at);
  return result;
}

/// The splices that would put everything back.
QList<Splice> reversed(const QList<Splice>& splices) {
  QList<Splice> back;
  qint64 shift = 0;
  for (const Splice& splice : splices) {
    back.append({splice.offset + shift, splice.with, splice.was});
    shift += splice.with.size() - splice.was.size();
  }
  return back;
}

/// What the file is to hold. Content decides where it is known; otherwise time, size and inode have to.
QByteArray wantedContent(const Place& place, const QByteArray& present, const QList<Splice>& splices,
                         const Fingerprint& expected) {
  if (!expected.hash.isEmpty() && hashOf(present) != expected.hash) {
    const std::optional<QByteArray> before = spliced(present, reversed(splices));
    if (before && hashOf(*before) == expected.hash) return present;  // stored already, by a save before this
    throw Changed();
  }
  if (expected.hash.isEmpty() && !isStill(place, expected, nullptr)) throw Changed();
  const std::optional<QByteArray> wanted = spliced(present, splices);
  if (!wanted) throw Changed();
  return *wanted;
}

/// A file so small that its content is compared is taken whole.
void replaceSmall(NewFile& file, const Place& place, const struct stat& target, const QList<Splice>& splices,
                  const Fingerprint& expected, Fingerprint* written) {
  const Descriptor source = openForReading(place.folder, place.name, place.path);
  const QByteArray bytes =
      wantedContent(place, readAll(source, place.path, target.st_size), splices, expected);
  file.write(bytes);
  *written = file.finish(bytes.size());
  written->hash = hashOf(bytes);
  file.takePlaceOf(expected, &bytes);
}

void replaceBig(NewFile& file, const Place& place, const struct stat& target, const QList<Splice>& splices,
                const Fingerprint& expected, Fingerprint* written) {
  const Descriptor source = openForReading(place.folder, place.name, place.path);
  qint64 at = 0;
  for (const Splice& splice : splices) {
    file.copy(source, at, splice.offset - at);
    if (readAt(source, place.path, splice.offset, splice.was.size()) != splice.was) throw Changed();
    file.write(splice.with);
    at = splice.offset + splice.was.size();
  }
  if (at > target.st_size) throw Changed();
  file.copy(source, at, target.st_size - at);
  *written = file.finish(target.st_size + growthOf(splices));
  file.takePlaceOf(expected, nullptr);
}

}  // namespace

WriteResult spliceFile(const QString& path, const QList<Splice>& splices, const Fingerprint& expected,
                       FileMode mode) {
  WriteResult result;
  report(path, changedMeanwhile, &result, [&] {
    const Place place = placeOf(path, Links::Follow);
    const std::optional<struct stat> target = lookAt(place);
    if (!target) throw Changed();
    refuseReadOnly(place, *target);
    const QList<Splice> ordered = inOrder(path, splices);
    const bool small = target->st_size <= comparedBytes;
    if (!small && !isStill(place, expected, nullptr)) throw Changed();  // ahead of the long copying
    NewFile file(place, creationMode(target, mode));
    file.takeOwnerAndMode(*target, mode);
    Fingerprint written;
    (small ? replaceSmall : replaceBig)(file, place, *target, ordered, expected, &written);
    result.fingerprint = written;
    syncFolder(place);
  });
  return result;
}

}  // namespace platform::files

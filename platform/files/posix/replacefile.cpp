#include "platform/files/posix/newfile.h"

namespace platform::files {

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
    Fingerprint written = file.finish(bytes.size());
    written.hash = hashOf(bytes);
    if (expected && !isStill(place, *expected, &bytes)) throw Changed();
    if (!file.moveToTarget(expected && !expected->exists && !target)) throw Changed();
    result.fingerprint = written;
    syncFolder(place);
  });
  return result;
}

}  // namespace platform::files

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
    if (expected && target)
      file.takePlaceOf(*expected, &bytes);
    else if (expected && expected->exists)
      throw Changed();
    else if (!file.moveToTarget(expected.has_value()))
      throw Changed();
    result.fingerprint = written;
    syncFolder(place);
  });
  return result;
}

}  // namespace platform::files

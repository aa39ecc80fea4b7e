#include "platform/files/posix/newfile.h"

namespace platform::files {

WriteResult copyFile(const QString& from, const QString& to) {
  WriteResult result;
  report(to, changedMeanwhile, &result, [&] {
    const Place source = placeOf(from, Links::Follow);
    const std::optional<struct stat> found = lookAt(source);
    if (!found) fail(from, ENOENT);
    const Fingerprint seen = fingerprintOf(*found);
    const Descriptor bytes = openForReading(source.folder, source.name, from);
    const Place place = placeOf(to, Links::Keep);
    NewFile file(place, creationMode(std::nullopt, FileMode::OwnerOnly));
    if (!file.clone(bytes)) file.copy(bytes, 0, seen.size);
    result.fingerprint = file.finish(seen.size);
    if (!isStill(source, seen, nullptr)) throw Changed();
    if (!file.moveToTarget(true)) throw Changed();
    syncFolder(place);
  });
  return result;
}

}  // namespace platform::files

#pragma once
#include "platform/files/posix/place.h"

namespace platform::files {

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
  /// A stretch of another file, by the system itself where it can. Changed when that file ends before.
  void copy(int source, qint64 offset, qint64 length);
  /// The whole of another file without copying it, where the file system shares blocks. False, and nothing
  /// done, where it cannot.
  bool clone(int source);
  /// Everything is on the disk, and it is as much as it should be; what it is there, without the hash.
  Fingerprint finish(qint64 size);
  /// False when `mustBeNew` and the name was taken meanwhile.
  bool moveToTarget(bool mustBeNew);
  /// Takes the place of a file that must still be the expected one, or hold `written` already; Changed where
  /// it is not. The two change places, and what came out is looked at: so nothing that another program does
  /// up to the last moment is lost. File systems that cannot do that leave a few microseconds between the
  /// look and the rename.
  void takePlaceOf(const Fingerprint& expected, const QByteArray* written);

 private:
  struct stat status() const;
  void write(const char* bytes, qint64 size);
  void copyByHand(int source, qint64 offset, qint64 length);
  void changePlacesBack();
  void removeName();

  const Place& place_;
  QByteArray name_;
  Descriptor file_;
  Fingerprint own_;      // known once everything is written
  bool moved_ = false;   // what stands under `name_` is not to be removed
  bool byHand_ = false;  // the system cannot copy between these two files
};

/// With which mode the file is made; an existing target's own comes when it is known to be the same owner's.
mode_t creationMode(const std::optional<struct stat>& target, FileMode mode);

}  // namespace platform::files

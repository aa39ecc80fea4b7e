#pragma once
#include <QString>

#include <memory>

namespace platform::files {

/// Makes a folder that its owner alone may enter (0700), with the folders above it as the user's umask has
/// them; one that is there stays as it is. It outlives a power cut. What went wrong, or an empty text.
QString makePrivateFolder(const QString& path);

/// A lock that one holder has at a time, of all processes and all machines that share the file system. It
/// ends with its object or its process, whatever ended that, and leaves nothing to tidy up; the empty file
/// that it is on (0600) stays. On a file system that has no such locks everybody gets it.
class FileLock {
 public:
  /// At once; null when another has it, and when the file cannot be opened: then `error` says why.
  static std::unique_ptr<FileLock> tryTake(const QString& path, QString* error);
  ~FileLock();
  FileLock(const FileLock&) = delete;
  FileLock& operator=(const FileLock&) = delete;

 private:
  explicit FileLock(int descriptor) : descriptor_(descriptor) {}
  int descriptor_;
};

}  // namespace platform::files

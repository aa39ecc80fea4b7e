#pragma once
#include <fcntl.h>
#include <functional>
#include <sys/stat.h>
#include <sys/types.h>
#include <sys/vfs.h>

namespace platform::files {

/// The system calls that reading and writing files is made of: the system's own, until a test lets one of
/// them fail or write less than it was given. Each sets errno as the call of its name does.
struct SystemCalls {
  std::function<int(int folder, const char* name, int flags, mode_t mode)> openat;
  std::function<int(int file)> close;
  std::function<ssize_t(int file, void* bytes, size_t size)> read;
  std::function<ssize_t(int file, void* bytes, size_t size, off_t offset)> pread;
  std::function<ssize_t(int file, const void* bytes, size_t size)> write;
  /// Reads at `*offset`, which it moves on, and writes where `to` stands.
  std::function<ssize_t(int from, off_t* offset, int to, size_t size)> copyFileRange;
  std::function<int(int to, int from)> clone;  // of a whole file
  std::function<int(int file)> fsync;
  std::function<int(int file, struct stat* out)> fstat;
  std::function<int(int file, struct statfs* out)> fstatfs;
  std::function<int(int folder, const char* name, struct stat* out, int flags)> fstatat;
  std::function<ssize_t(int folder, const char* name, char* out, size_t size)> readlinkat;
  std::function<int(int folder, const char* name, int mode, int flags)> faccessat;
  std::function<int(int file, mode_t mode)> fchmod;
  std::function<int(int file, uid_t owner, gid_t group)> fchown;
  std::function<int(int folder, const char* from, const char* to)> renameat;           // takes a taken name
  std::function<int(int folder, const char* from, const char* to)> renameatNoReplace;  // EEXIST for one
  std::function<int(int folder, const char* a, const char* b)> renameatExchange;       // both names are taken
  std::function<int(int folder, const char* name)> unlinkat;
  /// Takes a lease for reading on an open file and gives it back: EAGAIN while anybody has it open for
  /// writing. Of a server's file the system says that, too, where the server has not lent it one (NFS 4,
  /// SMB).
  std::function<int(int file)> lease;

  static SystemCalls ofTheSystem();
  static const SystemCalls& current();
};

/// Puts other calls in force for the life of the object.
class ScopedSystemCalls {
 public:
  explicit ScopedSystemCalls(const SystemCalls& calls);
  explicit ScopedSystemCalls(SystemCalls&&) = delete;  // they have to outlive it
  ~ScopedSystemCalls();
  ScopedSystemCalls(const ScopedSystemCalls&) = delete;
  ScopedSystemCalls& operator=(const ScopedSystemCalls&) = delete;

 private:
  const SystemCalls* previous_;
};

}  // namespace platform::files

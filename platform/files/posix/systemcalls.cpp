#include "platform/files/posix/systemcalls.h"

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <linux/fs.h>
#include <sys/ioctl.h>
#include <unistd.h>

namespace platform::files {

namespace {

const SystemCalls*& inForce() {
  static const SystemCalls* calls = nullptr;
  return calls;
}

}  // namespace

SystemCalls SystemCalls::ofTheSystem() {
  SystemCalls calls;
  calls.openat = [](int folder, const char* name, int flags, mode_t mode) {
    return ::openat(folder, name, flags, mode);
  };
  calls.close = ::close;
  calls.read = ::read;
  calls.pread = ::pread;
  calls.write = ::write;
  calls.copyFileRange = [](int from, off_t* offset, int to, size_t size) {
    return ::copy_file_range(from, offset, to, nullptr, size, 0);
  };
  calls.clone = [](int to, int from) { return ::ioctl(to, FICLONE, from); };
  calls.fsync = ::fsync;
  calls.fstat = [](int file, struct stat* out) { return ::fstat(file, out); };
  calls.fstatfs = [](int file, struct statfs* out) { return ::fstatfs(file, out); };
  calls.fstatat = [](int folder, const char* name, struct stat* out, int flags) {
    return ::fstatat(folder, name, out, flags);
  };
  calls.readlinkat = ::readlinkat;
  calls.faccessat = ::faccessat;
  calls.fchmod = ::fchmod;
  calls.fchown = ::fchown;
  calls.renameat = [](int folder, const char* from, const char* to) {
    return ::renameat(folder, from, folder, to);
  };
  calls.renameatNoReplace = [](int folder, const char* from, const char* to) {
    return ::renameat2(folder, from, folder, to, RENAME_NOREPLACE);
  };
  calls.renameatExchange = [](int folder, const char* a, const char* b) {
    return ::renameat2(folder, a, folder, b, RENAME_EXCHANGE);
  };
  calls.unlinkat = [](int folder, const char* name) { return ::unlinkat(folder, name, 0); };
  calls.lease = [](int file) {
    // whoever opens the file for writing at this moment has a signal sent to us; the usual one would end us
    const bool taken = ::fcntl(file, F_SETSIG, SIGURG) == 0 && ::fcntl(file, F_SETLEASE, F_RDLCK) == 0;
    return taken ? ::fcntl(file, F_SETLEASE, F_UNLCK) : -1;
  };
  return calls;
}

const SystemCalls& SystemCalls::current() {
  static const SystemCalls system = ofTheSystem();
  return inForce() ? *inForce() : system;
}

ScopedSystemCalls::ScopedSystemCalls(const SystemCalls& calls) : previous_(inForce()) {
  inForce() = &calls;
}

ScopedSystemCalls::~ScopedSystemCalls() {
  inForce() = previous_;
}

}  // namespace platform::files

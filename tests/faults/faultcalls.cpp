#include "tests/faults/faultcalls.h"

#include <csignal>
#include <dlfcn.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/uio.h>
#include <unistd.h>

namespace faults {

namespace {

struct State {
  bool armed = false;
  bool within = false;  // what the bookkeeping itself calls does not count
  Plan plan;
  QByteArrayList names;
  QByteArray struck;
};

State& state() {
  static State the;
  return the;
}

/// Whether the call is to fail; `half` writes a half of what was to be written.
bool strikes(const char* name, const std::function<void()>& half = {}) {
  State& s = state();
  if (!s.armed || s.within) return false;
  s.within = true;
  const int number = int(s.names.size());
  s.names.append(name);
  bool fails = false;
  if (number == s.plan.at && s.plan.effect != Effect::Count) {
    s.struck = name;
    switch (s.plan.effect) {
      case Effect::KillHalf:
        if (half) half();
        [[fallthrough]];
      case Effect::Kill:
        ::kill(::getpid(), SIGKILL);
        break;
      case Effect::Call:
        s.plan.call();
        break;
      case Effect::Fail:
        fails = true;
        break;
      case Effect::Count:
        break;
    }
  }
  s.within = false;
  return fails;
}

int failing() {
  errno = state().plan.code;
  return -1;
}

template <class Function>
Function* real(const char* name) {
  return reinterpret_cast<Function*>(::dlsym(RTLD_NEXT, name));
}

}  // namespace

void arm(const Plan& plan) {
  state() = {};
  state().plan = plan;
  state().names.reserve(1000);
  state().armed = true;
}
void disarm() {
  state().armed = false;
}
QByteArrayList calls() {
  return state().names;
}
QByteArray struck() {
  return state().struck;
}

}  // namespace faults

using faults::failing;
using faults::strikes;

// Defined under other names and exported under the system's own, so that they do not meet its headers. A mode
// is there or not; on all machines of ours it is handed over alike.
#define CALL_NAMED(result, alias, name, parameters, arguments)                      \
  extern "C" result alias parameters __asm__(#name);                                \
  extern "C" __attribute__((visibility("default"), used)) result alias parameters { \
    static auto* const next = faults::real<result parameters>(#name);               \
    return strikes(#name) ? failing() : next arguments;                             \
  }
#define CALL(name, parameters, arguments) CALL_NAMED(int, fault_##name, name, parameters, arguments)

CALL(open, (const char* path, int flags, mode_t mode), (path, flags, mode))
CALL(open64, (const char* path, int flags, mode_t mode), (path, flags, mode))
CALL(openat, (int folder, const char* path, int flags, mode_t mode), (folder, path, flags, mode))
CALL(openat64, (int folder, const char* path, int flags, mode_t mode), (folder, path, flags, mode))
CALL(creat, (const char* path, mode_t mode), (path, mode))
CALL(fsync, (int file), (file))
CALL(fdatasync, (int file), (file))
CALL(syncfs, (int file), (file))
CALL(rename, (const char* from, const char* to), (from, to))
CALL(renameat, (int a, const char* from, int b, const char* to), (a, from, b, to))
CALL(renameat2, (int a, const char* from, int b, const char* to, unsigned flags), (a, from, b, to, flags))
CALL(link, (const char* from, const char* to), (from, to))
CALL(linkat, (int a, const char* from, int b, const char* to, int flags), (a, from, b, to, flags))
CALL(unlink, (const char* path), (path))
CALL(unlinkat, (int folder, const char* path, int flags), (folder, path, flags))
CALL(mkdir, (const char* path, mode_t mode), (path, mode))
CALL(mkdirat, (int folder, const char* path, mode_t mode), (folder, path, mode))
CALL(rmdir, (const char* path), (path))
CALL(ftruncate, (int file, off_t size), (file, size))
CALL(ftruncate64, (int file, off64_t size), (file, size))
CALL(fchmod, (int file, mode_t mode), (file, mode))
CALL(chmod, (const char* path, mode_t mode), (path, mode))
CALL(fchown, (int file, uid_t owner, gid_t group), (file, owner, group))
CALL(fallocate, (int file, int mode, off_t from, off_t size), (file, mode, from, size))

#define READING(name, parameters, arguments) CALL_NAMED(ssize_t, fault_##name, name, parameters, arguments)
READING(read, (int file, void* bytes, size_t size), (file, bytes, size))
READING(pread, (int file, void* bytes, size_t size, off_t at), (file, bytes, size, at))
READING(pread64, (int file, void* bytes, size_t size, off64_t at), (file, bytes, size, at))
READING(writev, (int file, const iovec* pieces, int count), (file, pieces, count))
READING(sendfile, (int to, int from, off_t* at, size_t size), (to, from, at, size))

// What can be carried out by half.
#define WRITING(name, parameters, arguments, halfArguments)                                 \
  extern "C" ssize_t fault_##name parameters __asm__(#name);                                \
  extern "C" __attribute__((visibility("default"), used)) ssize_t fault_##name parameters { \
    static auto* const next = faults::real<ssize_t parameters>(#name);                      \
    return strikes(#name, [&] { (void)!next halfArguments; }) ? failing() : next arguments; \
  }
WRITING(write, (int file, const void* bytes, size_t size), (file, bytes, size), (file, bytes, size / 2))
WRITING(pwrite, (int file, const void* bytes, size_t size, off_t at), (file, bytes, size, at),
        (file, bytes, size / 2, at))
WRITING(pwrite64, (int file, const void* bytes, size_t size, off64_t at), (file, bytes, size, at),
        (file, bytes, size / 2, at))
WRITING(copy_file_range, (int from, off64_t* fromAt, int to, off64_t* toAt, size_t size, unsigned flags),
        (from, fromAt, to, toAt, size, flags), (from, fromAt, to, toAt, size / 2, flags))

extern "C" int fault_close(int file) __asm__("close");
extern "C" __attribute__((visibility("default"), used)) int fault_close(int file) {
  static auto* const next = faults::real<int(int)>("close");
  if (!strikes("close")) return next(file);
  next(file);  // a close that fails has closed the file all the same
  return failing();
}

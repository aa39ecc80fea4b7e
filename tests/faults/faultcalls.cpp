#include "tests/faults/faultcalls.h"

#include "tests/faults/disklog.h"

#include <csignal>
#include <dlfcn.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/uio.h>
#include <thread>
#include <unistd.h>

namespace faults {

namespace {

struct State {
  bool armed = false;
  bool within = false;  // what the bookkeeping itself calls does not count
  std::thread::id thread;
  Plan plan;
  QByteArrayList names;
  QByteArray struck;
};

State& state() {
  static State the;
  return the;
}

/// The calls of the thread that has armed us, since only their order is the same each time.
bool isCounted() {
  const State& s = state();
  return s.armed && s.thread == std::this_thread::get_id() && !s.within;
}

/// Whether the call is to fail; `half` writes a half of what was to be written.
bool strikes(const char* name, const std::function<void()>& half = {}) {
  State& s = state();
  if (!isCounted()) return false;
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
      case Effect::Stop:
        ::raise(SIGSTOP);
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

/// Whether a call that came back like this is to be noted.
bool isNoted(ssize_t result) {
  return result >= 0 && isCounted() && isRecording();
}

/// While a call is looked at, nothing that this calls counts, and the caller's errno stays.
class Noting {
 public:
  Noting() { state().within = true; }
  ~Noting() {
    state().within = false;
    errno = code_;
  }
  Noting(const Noting&) = delete;
  Noting& operator=(const Noting&) = delete;

 private:
  int code_ = errno;
};

template <class Function>
Function* real(const char* name) {
  return reinterpret_cast<Function*>(::dlsym(RTLD_NEXT, name));
}

}  // namespace

void arm(const Plan& plan) {
  state() = {};
  state().plan = plan;
  state().names.reserve(1000);
  state().thread = std::this_thread::get_id();
  if (!plan.record.isEmpty()) record(plan.record);
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
using faults::isNoted;
using faults::isThere;
using faults::Noting;
using faults::strikes;

// Defined under other names and exported under the system's own, so that they do not meet its headers. A mode
// is there or not; on all machines of ours it is handed over alike. `note` says what the call has done to the
// disk.
#define DEFINED(result, name, parameters, arguments, half, before, note)                   \
  extern "C" result fault_##name parameters __asm__(#name);                                \
  extern "C" __attribute__((visibility("default"), used)) result fault_##name parameters { \
    static auto* const next = faults::real<result parameters>(#name);                      \
    if (strikes(#name, half)) return failing();                                            \
    before;                                                                                \
    const result done = next arguments;                                                    \
    if (isNoted(done)) {                                                                   \
      const Noting noting;                                                                 \
      note;                                                                                \
    }                                                                                      \
    return done;                                                                           \
  }
#define NONE static_cast<void>(0)
#define CALL(name, parameters, arguments, note) DEFINED(int, name, parameters, arguments, {}, NONE, note)

#define OPENING(name, parameters, arguments, folder, flags)                              \
  DEFINED(int, name, parameters, arguments, {},                                          \
          const bool isNew = ((flags)&O_TMPFILE) == O_TMPFILE || !isThere(folder, path), \
          faults::noteOpened(done, isNew, ((flags)&O_TRUNC) != 0))
OPENING(open, (const char* path, int flags, mode_t mode), (path, flags, mode), AT_FDCWD, flags)
OPENING(open64, (const char* path, int flags, mode_t mode), (path, flags, mode), AT_FDCWD, flags)
OPENING(openat, (int folder, const char* path, int flags, mode_t mode), (folder, path, flags, mode), folder,
        flags)
OPENING(openat64, (int folder, const char* path, int flags, mode_t mode), (folder, path, flags, mode), folder,
        flags)
OPENING(creat, (const char* path, mode_t mode), (path, mode), AT_FDCWD, O_TRUNC)

CALL(fsync, (int file), (file), faults::noteSynced(file))
CALL(fdatasync, (int file), (file), faults::noteSynced(file))
CALL(syncfs, (int file), (file), NONE)

#define NAMING(name, parameters, arguments, a, from, b, to) \
  CALL(name, parameters, arguments, (faults::noteName(b, to), faults::noteName(a, from)))
NAMING(rename, (const char* from, const char* to), (from, to), AT_FDCWD, from, AT_FDCWD, to)
NAMING(renameat, (int a, const char* from, int b, const char* to), (a, from, b, to), a, from, b, to)
NAMING(renameat2, (int a, const char* from, int b, const char* to, unsigned flags), (a, from, b, to, flags),
       a, from, b, to)
CALL(link, (const char* from, const char* to), (from, to), faults::noteName(AT_FDCWD, to))
CALL(linkat, (int a, const char* from, int b, const char* to, int flags), (a, from, b, to, flags),
     faults::noteName(b, to))
CALL(unlink, (const char* path), (path), faults::noteName(AT_FDCWD, path))
CALL(unlinkat, (int folder, const char* path, int flags), (folder, path, flags),
     faults::noteName(folder, path))
CALL(mkdir, (const char* path, mode_t mode), (path, mode), NONE)
CALL(mkdirat, (int folder, const char* path, mode_t mode), (folder, path, mode), NONE)
CALL(rmdir, (const char* path), (path), NONE)
CALL(ftruncate, (int file, off_t size), (file, size), faults::noteResized(file))
CALL(ftruncate64, (int file, off64_t size), (file, size), faults::noteResized(file))
CALL(fchmod, (int file, mode_t mode), (file, mode), NONE)
CALL(chmod, (const char* path, mode_t mode), (path, mode), NONE)
CALL(fchown, (int file, uid_t owner, gid_t group), (file, owner, group), NONE)
CALL(fallocate, (int file, int mode, off_t from, off_t size), (file, mode, from, size),
     faults::noteResized(file))

#define READING(name, parameters, arguments) DEFINED(ssize_t, name, parameters, arguments, {}, NONE, NONE)
READING(read, (int file, void* bytes, size_t size), (file, bytes, size))
READING(pread, (int file, void* bytes, size_t size, off_t at), (file, bytes, size, at))
READING(pread64, (int file, void* bytes, size_t size, off64_t at), (file, bytes, size, at))

// What can be carried out by half.
#define WRITING(name, parameters, arguments, halfArguments, before, note) \
  DEFINED(                                                                \
      ssize_t, name, parameters, arguments, [&] { (void)!next halfArguments; }, before, note)
WRITING(write, (int file, const void* bytes, size_t size), (file, bytes, size), (file, bytes, size / 2), NONE,
        faults::noteWritten(file, bytes, done))
WRITING(pwrite, (int file, const void* bytes, size_t size, off_t at), (file, bytes, size, at),
        (file, bytes, size / 2, at), NONE, faults::noteWritten(file, bytes, done, at))
WRITING(pwrite64, (int file, const void* bytes, size_t size, off64_t at), (file, bytes, size, at),
        (file, bytes, size / 2, at), NONE, faults::noteWritten(file, bytes, done, at))
WRITING(copy_file_range, (int from, off64_t* fromAt, int to, off64_t* toAt, size_t size, unsigned flags),
        (from, fromAt, to, toAt, size, flags), (from, fromAt, to, toAt, size / 2, flags), NONE,
        faults::noteCopied(from, (fromAt ? *fromAt : ::lseek(from, 0, SEEK_CUR)) - done, to,
                           toAt ? *toAt - done : -1, done))
DEFINED(ssize_t, sendfile, (int to, int from, off_t* at, size_t size), (to, from, at, size), {}, NONE,
        faults::noteCopied(from, (at ? *at : ::lseek(from, 0, SEEK_CUR)) - done, to, -1, done))

namespace {

void noteVector(int file, const iovec* pieces, int count, ssize_t size) {
  QByteArray bytes;
  for (int i = 0; i < count; ++i)
    bytes.append(static_cast<const char*>(pieces[i].iov_base), qsizetype(pieces[i].iov_len));
  faults::noteWritten(file, bytes.constData(), size);
}

}  // namespace
DEFINED(ssize_t, writev, (int file, const iovec* pieces, int count), (file, pieces, count), {}, NONE,
        noteVector(file, pieces, count, done))

extern "C" int fault_close(int file) __asm__("close");
extern "C" __attribute__((visibility("default"), used)) int fault_close(int file) {
  static auto* const next = faults::real<int(int)>("close");
  if (!strikes("close")) return next(file);
  next(file);  // a close that fails has closed the file all the same
  return failing();
}

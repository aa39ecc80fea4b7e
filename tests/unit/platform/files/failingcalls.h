#pragma once
#include "platform/files/posix/systemcalls.h"

#include <QByteArray>

#include <cerrno>

namespace tests {

using platform::files::SystemCalls;

/// The system's calls, counted; the one of a given number fails once with a given code.
class FailingCalls {
 public:
  FailingCalls(int failing, int code) : failing_(failing), code_(code) {
    const SystemCalls real = SystemCalls::ofTheSystem();
    wrap(&calls_.openat, real.openat, "openat");
    wrap(&calls_.close, real.close, "close");
    wrap(&calls_.read, real.read, "read");
    wrap(&calls_.pread, real.pread, "pread");
    wrap(&calls_.write, real.write, "write");
    wrap(&calls_.copyFileRange, real.copyFileRange, "copyFileRange");
    wrap(&calls_.clone, real.clone, "clone");
    // What a disk does with it is not the question here, and hundreds of real ones take seconds.
    wrap(&calls_.fsync, std::function<int(int)>([](int) { return 0; }), "fsync");
    wrap(&calls_.fstat, real.fstat, "fstat");
    wrap(&calls_.fstatat, real.fstatat, "fstatat");
    wrap(&calls_.readlinkat, real.readlinkat, "readlinkat");
    wrap(&calls_.faccessat, real.faccessat, "faccessat");
    wrap(&calls_.fchmod, real.fchmod, "fchmod");
    wrap(&calls_.fchown, real.fchown, "fchown");
    wrap(&calls_.renameat, real.renameat, "renameat");
    wrap(&calls_.renameatNoReplace, real.renameatNoReplace, "renameatNoReplace");
    wrap(&calls_.renameatExchange, real.renameatExchange, "renameatExchange");
    wrap(&calls_.unlinkat, real.unlinkat, "unlinkat");
    calls_.fstatfs = real.fstatfs;
    calls_.lease = real.lease;  // where it fails nothing is known, and nothing follows from it
  }
  const SystemCalls& calls() const { return calls_; }
  int count() const { return count_; }
  QByteArray failed() const { return failed_; }

 private:
  template <class Result, class... Arguments>
  void wrap(std::function<Result(Arguments...)>* into, std::function<Result(Arguments...)> real,
            const char* name) {
    *into = [this, real, name](Arguments... arguments) -> Result {
      if (count_++ != failing_) return real(arguments...);
      failed_ = name;
      // A close that fails has closed the file all the same.
      if (failed_ == "close") real(arguments...);
      errno = code_;
      return -1;
    };
  }

  int failing_;
  int code_;
  int count_ = 0;
  QByteArray failed_;
  SystemCalls calls_;
};

}  // namespace tests

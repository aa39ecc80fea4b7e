#pragma once
#include <QDir>
#include <QFile>
#include <QString>

#include <cstdio>
#include <cstdlib>
#include <exception>
#include <functional>
#include <gtest/gtest.h>
#include <sched.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

namespace contract {

/// Another program, for what programs do to each other's files: a second process that takes turns with the
/// test over a wire. What is open in the test when it begins is open there too, locks included: begin it
/// before.
class OtherProcess {
 public:
  class Wire {
   public:
    explicit Wire(int descriptor) : descriptor_(descriptor) {}
    void tell() const {
      const char sign = '.';
      if (::write(descriptor_, &sign, 1) != 1) std::_Exit(98);
    }
    /// False when the other side has ended.
    bool wait() const {
      char sign = 0;
      return ::read(descriptor_, &sign, 1) == 1;
    }

   private:
    int descriptor_;
  };

  /// `work` runs in the other process; it must not use gtest. Its result can be asked for with finish().
  explicit OtherProcess(const std::function<int(const Wire&)>& work) {
    int ends[2];
    if (::socketpair(AF_UNIX, SOCK_STREAM, 0, ends) != 0) std::abort();
    std::fflush(nullptr);
    process_ = ::fork();
    if (process_ == 0) {
      ::close(ends[0]);
      int code = 99;
      try {
        code = work(Wire(ends[1]));
      } catch (const std::exception& failure) {
        std::fprintf(stderr, "other process: %s\n", failure.what());
      }
      std::_Exit(code);
    }
    ::close(ends[1]);
    end_ = ends[0];
  }
  ~OtherProcess() {
    if (process_ > 0) finish();
  }
  OtherProcess(const OtherProcess&) = delete;
  OtherProcess& operator=(const OtherProcess&) = delete;

  /// Until the other process tells something.
  void await() const { EXPECT_TRUE(Wire(end_).wait()) << "the other process has ended"; }
  void goOn() const { Wire(end_).tell(); }
  /// Its exit code.
  int finish() {
    ::close(end_);
    int status = 0;
    ::waitpid(process_, &status, 0);
    process_ = -1;
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  }

 private:
  int process_ = -1;
  int end_ = -1;
};

/// For the other process: until the test has the file open. It is ended where the test never opens it.
inline void awaitOpenInTest(const QString& path) {
  constexpr unsigned mostSeconds = 120;
  ::alarm(mostSeconds);
  const QDir descriptors(QStringLiteral("/proc/%1/fd").arg(::getppid()));
  while (true) {
    for (const QString& name : descriptors.entryList(QDir::AllEntries | QDir::System))
      if (QFile::symLinkTarget(descriptors.filePath(name)) == path) {
        ::alarm(0);
        return;
      }
    ::sched_yield();
  }
}

}  // namespace contract

#include "platform/calendar/icalendar/index/indexlock.h"

#include <QFile>

#include <cerrno>
#include <chrono>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>

namespace platform::calendar::icalendar::index {
namespace {

constexpr std::chrono::milliseconds pause{5};
constexpr int maxMoves = 8;  // of the lock's file while it is asked for

}  // namespace

IndexLock::IndexLock(const QString& indexPath, Word word)
    : path_(QFile::encodeName(pathFor(indexPath))), word_(word) {}

IndexLock::~IndexLock() {
  close();
}

void IndexLock::close() {
  if (number_ >= 0) ::close(number_);
  number_ = -1;
}

bool IndexLock::openFile() {
  if (number_ >= 0) return true;
  number_ =
      ::open(path_.constData(), O_CREAT | O_RDWR | O_NONBLOCK | O_NOCTTY | O_CLOEXEC | O_NOFOLLOW, 0600);
  struct stat found {};
  if (number_ >= 0 && ::fstat(number_, &found) == 0 && S_ISREG(found.st_mode) &&
      found.st_uid == ::geteuid()) {
    if (word_ == Word::Left) ::futimens(number_, nullptr);  // when the index was last used
    return true;
  }
  close();
  return false;
}

/// Somebody may have taken the file away since it was opened; then the next one has a lock of his own.
bool IndexLock::isInPlace() const {
  struct stat own {
  }, there{};
  return ::fstat(number_, &own) == 0 && ::lstat(path_.constData(), &there) == 0 &&
         own.st_ino == there.st_ino && own.st_dev == there.st_dev;
}

IndexLock::Result IndexLock::take(Kind kind, int patienceMs) {
  const auto end = std::chrono::steady_clock::now() + std::chrono::milliseconds(patienceMs);
  const int wanted = (kind == Kind::Shared ? LOCK_SH : LOCK_EX) | LOCK_NB;
  int moves = 0;
  for (;;) {
    if (!openFile()) return Result::Impossible;
    if (::flock(number_, wanted) == 0) {
      if (isInPlace()) return Result::Had;
      close();
      if (++moves > maxMoves) return Result::Busy;
      continue;
    }
    if (errno == EINTR) continue;
    // some network file systems say of a lock that another one has that it is not permitted
    const bool taken = errno == EWOULDBLOCK || errno == EACCES;
    if (!taken || std::chrono::steady_clock::now() >= end) {
      close();
      return taken ? Result::Busy : Result::Impossible;
    }
    std::this_thread::sleep_for(pause);
  }
}

void IndexLock::removeFile() {
  if (number_ >= 0) ::unlink(path_.constData());
  close();
}

}  // namespace platform::calendar::icalendar::index

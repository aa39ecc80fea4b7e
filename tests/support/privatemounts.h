#pragma once
#include <QByteArray>
#include <QFile>

#include <fcntl.h>
#include <sched.h>
#include <sys/mount.h>
#include <unistd.h>

namespace tests {

/// Mounts that only this process sees and that are gone with it: root may have them, and whoever else in a
/// user namespace of his own, in which he stays who he is. For a process just forked, since one with threads
/// may not. False where the system permits neither (as in most containers).
inline bool mountsForItselfAlone() {
  const auto put = [](const char* path, const QByteArray& text) {
    const int file = ::open(path, O_WRONLY | O_CLOEXEC);
    if (file < 0) return false;
    const bool done = ::write(file, text.constData(), static_cast<size_t>(text.size())) == text.size();
    ::close(file);
    return done;
  };
  if (::unshare(CLONE_NEWNS) != 0) {
    const QByteArray user = QByteArray::number(::geteuid()), group = QByteArray::number(::getegid());
    if (::unshare(CLONE_NEWUSER | CLONE_NEWNS) != 0 || !put("/proc/self/setgroups", "deny") ||
        !put("/proc/self/uid_map", user + ' ' + user + " 1") ||
        !put("/proc/self/gid_map", group + ' ' + group + " 1"))
      return false;
  }
  return ::mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0;
}

/// A disk of its own in memory at a folder, with tmpfs's options. For a process as above.
inline bool mountsSmallDisk(const QString& folder, const QByteArray& options) {
  return mountsForItselfAlone() &&
         ::mount("tmpfs", QFile::encodeName(folder).constData(), "tmpfs", 0, options.constData()) == 0;
}

inline constexpr const char* noMounts =
    "This system lets neither this user nor a namespace of his mount anything "
    "(kernel.unprivileged_userns_clone, "
    "or a container's rules).";

}  // namespace tests

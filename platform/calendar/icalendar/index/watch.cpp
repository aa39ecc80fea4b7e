#include "platform/calendar/icalendar/index/watch.h"

#include "platform/calendar/icalendar/index/diskfile.h"

#include <QFile>

#include <cstring>
#include <sys/inotify.h>
#include <sys/vfs.h>
#include <unistd.h>

namespace platform::calendar::icalendar::index {
namespace {

/// File systems on which others write without this machine's kernel seeing it.
bool isShared(const char* path) {
  struct statfs system {};
  if (::statfs(path, &system) < 0) return true;
  switch (static_cast<unsigned>(system.f_type)) {
    case 0x6969:      // NFS
    case 0x517B:      // SMB
    case 0xFF534D42:  // CIFS
    case 0xFE534D42:  // SMB 2
    case 0x65735546:  // FUSE
    case 0x01021997:  // 9P
    case 0x73757245:  // Coda
    case 0x5346414F:  // AFS
    case 0x00C36400:  // Ceph
    case 0x786F4256:  // a virtual machine's shared folder
    case 0x47504653:  // GPFS
    case 0x0BD00BD0:  // Lustre
    case 0x01161970:  // GFS2
    case 0x7461636F:  // OCFS2
      return true;
    default:
      return false;
  }
}

}  // namespace

Watch::~Watch() {
  end();
}

void Watch::end() {
  if (descriptor_ >= 0) ::close(descriptor_);
  descriptor_ = -1;
  watched_ = -1;
}

/// To close a descriptor takes the system some 20 ms, so it is used on.
bool Watch::begin(const QString& path) {
  const QByteArray name = QFile::encodeName(path);
  if (isShared(name.constData())) {
    end();
    return false;
  }
  if (descriptor_ < 0) {
    descriptor_ = ::inotify_init1(IN_NONBLOCK | IN_CLOEXEC);
    if (descriptor_ < 0) return false;
  } else {
    ::inotify_rm_watch(descriptor_, watched_);  // what is gone is not watched any more: no failure
    take();
  }
  constexpr unsigned wanted = IN_CREATE | IN_DELETE | IN_MOVED_FROM | IN_MOVED_TO | IN_MODIFY | IN_ATTRIB |
                              IN_DELETE_SELF | IN_MOVE_SELF;
  watched_ = ::inotify_add_watch(descriptor_, name.constData(), wanted);
  if (watched_ < 0) end();
  return isOn();
}

Watch::News Watch::take() {
  News news;
  alignas(struct inotify_event) char buffer[16 * 1024];
  while (isOn()) {
    const ssize_t got = ::read(descriptor_, buffer, sizeof buffer);
    if (got < 0 && errno == EINTR) continue;
    if (got <= 0) break;
    for (ssize_t at = 0; at < got;) {
      struct inotify_event event;
      std::memcpy(&event, buffer + at, sizeof event);
      if ((event.mask & (IN_Q_OVERFLOW | IN_IGNORED | IN_DELETE_SELF | IN_MOVE_SELF | IN_UNMOUNT)) != 0)
        news.lost = true;
      news.any = true;
      if (event.len > 0) {
        const QString name = QString::fromUtf8(buffer + at + sizeof event);
        if (isCalendarName(name)) news.names.insert(name);
      }
      at += static_cast<ssize_t>(sizeof event + event.len);
    }
  }
  return news;
}

}  // namespace platform::calendar::icalendar::index

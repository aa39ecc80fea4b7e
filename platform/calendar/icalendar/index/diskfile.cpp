#include "platform/calendar/icalendar/index/diskfile.h"

#include "platform/calendar/icalendar/index/checksum.h"
#include "platform/calendar/icalendar/limits.h"

#include <QFile>

#include <chrono>
#include <dirent.h>
#include <fcntl.h>
#include <memory>
#include <sys/stat.h>
#include <unistd.h>

namespace platform::calendar::icalendar::index {
namespace {

constexpr qint64 blockBytes = 256 * 1024;

qint64 nanoseconds(const struct timespec& time) {
  return qint64(time.tv_sec) * 1'000'000'000 + time.tv_nsec;
}

DiskState fromSystem(const struct stat& found, bool linked) {
  DiskState state;
  state.exists = true;
  state.regular = S_ISREG(found.st_mode);
  state.folder = S_ISDIR(found.st_mode);
  state.linked = linked || (state.regular && found.st_nlink > 1);
  state.size = found.st_size;
  state.mtimeNs = nanoseconds(found.st_mtim);
  state.changedNs = nanoseconds(found.st_ctim);
  state.inode = found.st_ino;
  state.device = static_cast<qint64>(found.st_dev);
  const qint64 parts[] = {state.mtimeNs, state.changedNs, state.size, static_cast<qint64>(state.inode),
                          state.linked ? 1 : 0};
  state.stamp = checksumOf({reinterpret_cast<const char*>(parts), sizeof parts});
  return state;
}

DiskState stateAt(int folder, const char* name) {
  struct stat found {};
  if (::fstatat(folder, name, &found, AT_SYMLINK_NOFOLLOW) < 0) return {};
  if (!S_ISLNK(found.st_mode)) return fromSystem(found, false);
  struct stat target {};
  if (::fstatat(folder, name, &target, 0) == 0) return fromSystem(target, true);
  DiskState state = fromSystem(found, true);  // leads nowhere
  state.regular = false;
  return state;
}

}  // namespace

bool DiskState::isSettled() const {
  const auto now = std::chrono::system_clock::now().time_since_epoch();
  return icalendar::isSettled(std::chrono::duration_cast<std::chrono::nanoseconds>(now).count(), mtimeNs,
                              changedNs);
}

files::Fingerprint DiskState::fingerprint() const {
  files::Fingerprint print;
  print.exists = exists;
  print.mtimeNs = mtimeNs;
  print.size = size;
  print.inode = inode;
  return print;
}

DiskState stateOf(const QString& path) {
  return stateAt(AT_FDCWD, QFile::encodeName(path).constData());
}

DiskFile::DiskFile(const QString& path) {
  const QByteArray name = QFile::encodeName(path);
  number_ = ::open(name.constData(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC | O_NOFOLLOW);
  if (number_ >= 0 || errno != ELOOP) return;
  linked_ = true;
  number_ = ::open(name.constData(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
}

DiskFile::~DiskFile() {
  if (number_ >= 0) ::close(number_);
}

DiskState DiskFile::state() const {
  struct stat found {};
  return number_ >= 0 && ::fstat(number_, &found) == 0 ? fromSystem(found, linked_) : DiskState();
}

qint64 DiskFile::read(char* into, qint64 most, qint64 offset) const {
  for (;;) {
    const ssize_t got = ::pread(number_, into, static_cast<size_t>(most), offset);
    if (got >= 0 || errno != EINTR) return got;
  }
}

QByteArray DiskFile::stretch(qint64 offset, qint64 length) const {
  QByteArray bytes(length, Qt::Uninitialized);
  for (qint64 done = 0; done < length;) {
    const qint64 got = read(bytes.data() + done, length - done, offset + done);
    if (got <= 0) return {};
    done += got;
  }
  return bytes;
}

std::optional<quint64> DiskFile::sumOf(qint64 offset, qint64 length) const {
  const auto block = std::make_unique<char[]>(blockBytes);
  Checksum sum;
  while (length > 0) {
    const qint64 got = read(block.get(), qMin(length, blockBytes), offset);
    if (got <= 0) return std::nullopt;
    sum.add(block.get(), static_cast<size_t>(got));
    offset += got;
    length -= got;
  }
  return sum.value();
}

bool isCalendarName(const QString& name) {
  return !name.startsWith(u'.') && name.endsWith(u".ics", Qt::CaseInsensitive);
}

bool listFolder(const QString& path, const std::function<bool(const QString&, const DiskState&)>& take) {
  DIR* folder = ::opendir(QFile::encodeName(path).constData());
  if (!folder) return false;
  const std::unique_ptr<DIR, int (*)(DIR*)> closing(folder, ::closedir);
  for (;;) {
    errno = 0;
    const struct dirent* entry = ::readdir(folder);
    if (!entry) return errno == 0;
    if (entry->d_name[0] == '.' || entry->d_type == DT_DIR) continue;
    const QString name = QString::fromUtf8(entry->d_name);
    if (!isCalendarName(name)) continue;
    const DiskState state = stateAt(::dirfd(folder), entry->d_name);
    if (state.exists && !state.folder && !take(name, state)) return true;
  }
}

}  // namespace platform::calendar::icalendar::index

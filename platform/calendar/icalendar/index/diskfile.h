#pragma once
#include "platform/files/atomicfile.h"

#include <functional>

// Looking at the user's files, and reading them, at the price of the system calls.
namespace platform::calendar::icalendar::index {

struct DiskState {
  bool exists = false;
  bool regular = false;
  bool folder = false;
  bool linked =
      false;          // a symbolic link, or with a second name: can change where the folder does not hear it
  quint64 stamp = 0;  // of time, change time, size and inode: differs when the file may have changed
  qint64 size = 0;
  qint64 mtimeNs = 0;
  qint64 changedNs = 0;
  quint64 inode = 0;
  qint64 device = 0;

  /// Last written long enough ago that its times tell any later change.
  bool isSettled() const;
  files::Fingerprint fingerprint() const;
};

DiskState stateOf(const QString& path);

/// A file opened for reading; never waits on a FIFO.
class DiskFile {
 public:
  explicit DiskFile(const QString& path);
  ~DiskFile();
  DiskFile(const DiskFile&) = delete;
  DiskFile& operator=(const DiskFile&) = delete;
  bool isOpen() const { return number_ >= 0; }
  DiskState state() const;
  /// 0 at the end, -1 on a failure.
  qint64 read(char* into, qint64 most, qint64 offset) const;
  /// Null when it cannot be had in full.
  QByteArray stretch(qint64 offset, qint64 length) const;
  /// The checksum of a stretch; nothing when it cannot be had in full.
  std::optional<quint64> sumOf(qint64 offset, qint64 length) const;

 private:
  int number_ = -1;
  bool linked_ = false;
};

/// Calls with the name and state of each file of a folder that is one of a calendar: "*.ics", not hidden, no
/// folder. False when the folder cannot be read to its end. `take` gives false to stop.
bool listFolder(const QString& path, const std::function<bool(const QString&, const DiskState&)>& take);
bool isCalendarName(const QString& name);

}  // namespace platform::calendar::icalendar::index

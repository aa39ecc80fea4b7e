#pragma once
#include <QString>

namespace platform::files {

/// How many copies of one file are kept, and how large those of all files in one folder may be together.
struct BackupLimits {
  int copies = 3;
  qint64 bytes = 500LL * 1000 * 1000;
};

/// Keeps a copy of the file in `folder` (made when missing), for its owner only: shared blocks where the file
/// system can, else a copy. Copies are numbered. Beyond the number of copies the one of the least number
/// goes; beyond the room the oldest of the file that has the most, once the new one is on the disk. Empty, or
/// why there is no new copy; a file larger than the limit gets none.
QString keepBackup(const QString& path, const QString& folder, const BackupLimits& limits = {});

}  // namespace platform::files

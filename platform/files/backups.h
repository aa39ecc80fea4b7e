#pragma once
#include <QString>

namespace platform::files {

/// How many copies of one file are kept, and how large they may be together.
struct BackupLimits {
  int copies = 3;
  qint64 bytes = 500LL * 1000 * 1000;
};

/// Keeps a copy of the file in `folder` (made when missing), for its owner only: shared blocks where the file
/// system can, else a copy. Copies are numbered; beyond the limits the one of the least number goes, once the
/// new one is on the disk. Empty, or why there is no new copy; a file larger than the limit gets none.
QString keepBackup(const QString& path, const QString& folder, const BackupLimits& limits = {});

}  // namespace platform::files

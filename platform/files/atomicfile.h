#pragma once
#include <QByteArray>
#include <QString>

#include <optional>

namespace platform::files {

/// What a file was when it was read: enough to notice that somebody else has changed it since.
struct Fingerprint {
  bool exists = false;
  qint64 mtimeNs = 0;
  qint64 size = 0;
  quint64 inode = 0;
  QByteArray hash;  // SHA-256 of the content
  bool operator==(const Fingerprint&) const = default;
};

struct ReadResult {
  bool ok = false;
  QByteArray bytes;
  Fingerprint fingerprint;
  QString error;  // names the file and what the system said
};

enum class Outcome { Written, ChangedMeanwhile, Failed };
struct WriteResult {
  Outcome outcome = Outcome::Failed;
  Fingerprint fingerprint;  // of the new content, when written
  QString error;            // names the file and what the system said
};

/// Reads a whole file. Refuses what is not a regular file (FIFOs, folders), and more than `limit` bytes.
ReadResult readFile(const QString& path, qint64 limit = 1024LL * 1024 * 1024);

/// The one way in which this program writes a user's file: a new file beside it (".name.XXXXXX.tmp"), written, flushed
/// and checked, fsynced; the target compared with `expected` once more; renamed over it; the folder fsynced. A
/// symbolic link is followed to its target, mode and (where permitted) owner are kept. On any failure the old
/// content stands untouched and no file is left beside it. `expected` empty: whatever is there is replaced;
/// `expected->exists` false: nothing may be there. `ChangedMeanwhile`: not written, because the target is no longer
/// what was read.
WriteResult replaceFile(const QString& path, const QByteArray& bytes,
                        const std::optional<Fingerprint>& expected = std::nullopt);

/// Removes a file that is still what was read; the folder is fsynced.
WriteResult removeFile(const QString& path, const std::optional<Fingerprint>& expected = std::nullopt);

}  // namespace platform::files

#pragma once
#include <QByteArray>
#include <QList>
#include <QString>

#include <functional>
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

/// A stretch of a file that is to be replaced, or was. Offsets count in the file as it was before.
struct Splice {
  qint64 offset = 0;
  QByteArray was;
  QByteArray with;
};

struct ReadResult {
  bool ok = false;
  QByteArray bytes;
  Fingerprint fingerprint;
  bool missing = false;  // there is no such file; `fingerprint` says so and may be given to replaceFile()
  bool denied = false;   // the user may not
  QString error;         // names the file and what the system said
};

enum class Outcome { Written, ChangedMeanwhile, Failed };
struct WriteResult {
  Outcome outcome = Outcome::Failed;
  Fingerprint fingerprint;  // of the new content, when written
  bool missing = false;     // the file, or its folder, is not there
  bool denied = false;      // the user may not
  QString error;            // names the file and what the system said
};

/// What a file may be to others. `Usual`: a new file as the user's umask has it, an existing one keeps its
/// mode. `OwnerOnly`: 0600, and an existing file loses what it granted to the group and to others.
enum class FileMode { Usual, OwnerOnly };

/// A fingerprint without a hash is cheaper, for who compares the content itself.
enum class Hashing { No, Yes };

/// Reads a whole file. Refuses what is not a regular file (FIFOs, devices, folders) without waiting on it,
/// and more than `limit` bytes. A file that is written to while it is read is read again, three times at
/// most.
ReadResult readFile(const QString& path, qint64 limit = 1024LL * 1024 * 1024, Hashing hashing = Hashing::Yes);

/// The one way in which this program writes a user's file, shared by spliceFile() below: a new file beside it
/// (".name.XXXXXX.tmp", which never ends in .ics), written, fsynced and its size checked; the target compared
/// with `expected` once more; the two change places, and what came out is looked at again before it is
/// removed (without `expected`, and where the file system cannot do that, a plain rename); the folder
/// fsynced. A symbolic link is followed to its target, mode and (where permitted) owner and group are kept,
/// access lists and extended attributes are not. On any failure the old content stands untouched and no file
/// is left beside it. The one exception: when only the folder's fsync failed, the new content stands there,
/// whole, but might not outlive a power cut; `fingerprint` is then set though the outcome is `Failed`.
///
/// `expected` empty: whatever is there is replaced; `expected->exists` false: nothing may be there.
/// `ChangedMeanwhile`: not written, because the target is no longer what was read, or because somebody has it
/// open for writing at the moment of the change (the system tells of that on local disks, and to the file's
/// owner): what he writes would go into the old file, which nobody sees any more. Up to 1 MB the content
/// decides (an edit in place may keep size and time, and a mere touch changes nothing); above, time, size and
/// inode do, and the content only where they differ. A target that holds `bytes` already counts as unchanged,
/// so that a save may be repeated after a failure.
///
/// A failed save may simply be called again: it writes everything anew into another file.
///
/// Refused with a text: a read-only file (its folder alone would let it be replaced), a folder, a FIFO, a
/// device. A file with several hard links is replaced under this name only; the other names keep the old
/// content. That is what snapshots made of hard links need, and writing through them could not be done in one
/// step.
WriteResult replaceFile(const QString& path, const QByteArray& bytes,
                        const std::optional<Fingerprint>& expected = std::nullopt,
                        FileMode mode = FileMode::Usual);

/// As replaceFile(), for a file that is there: some stretches are replaced and every other byte stays.
/// Nothing of a file above 1 MB is read but those stretches: the system copies the rest. `ChangedMeanwhile`
/// also where a stretch does not hold what it should; `expected.hash` may be empty, then time, size and inode
/// decide for small files too. The stretches must not overlap; of two at one offset the first comes first.
/// The fingerprint of a file above 1 MB comes back without the hash.
WriteResult spliceFile(const QString& path, const QList<Splice>& splices, const Fingerprint& expected,
                       FileMode mode = FileMode::Usual);

/// A copy under a new name, for its owner only, as durable as everything else that is written here: with
/// shared blocks where the file system can, else copied by the system. `ChangedMeanwhile`: the file was
/// written to while it was copied, or the new name is taken.
WriteResult copyFile(const QString& from, const QString& to);

/// Removes a file that is still what was read: it is taken out of its place and looked at once more, as
/// above; the folder is fsynced. Of a symbolic link the link goes and what it leads to stays. A read-only
/// file is refused. When only the folder's fsync failed, the file is gone and counts as removed; `error` then
/// says why it might be back after a power cut.
WriteResult removeFile(const QString& path, const std::optional<Fingerprint>& expected = std::nullopt);

/// Gives a file another name in its folder, in one step. `ChangedMeanwhile`: that name is taken, and stays as
/// it is.
WriteResult renameFile(const QString& path, const QString& newName);

/// Removes what a crash in the middle of replaceFile() has left in a folder: files under such temporary
/// names, this user's own, last written more than `olderThanSeconds` ago. How many there were. In a folder
/// that others use as well `whose` tells whether what a file was to become is the caller's: other programs
/// may know such names too. It is not asked for names so long that they had to be cut.
int sweepLitter(const QString& folder, qint64 olderThanSeconds = 3600,
                const std::function<bool(const QString& target)>& whose = {});

}  // namespace platform::files

#pragma once
#include "platform/files/atomicfile.h"
#include "platform/files/posix/systemcalls.h"

#include <cerrno>
#include <optional>

// The inner words of reading and writing: an open file, the place a file has in its folder, and the one way
// in which a failed call ends a save. Trouble and Changed never leave this folder; the public functions turn
// them into results.
namespace platform::files {

struct Trouble {
  QString error;  // names the file and what the system said
  int code = 0;   // errno; 0 when it was not a call that failed
};
struct Changed {};

bool isDenied(int code);
[[noreturn]] void fail(const QString& path, int code);
[[noreturn]] void failWith(const QString& path, const QString& words);

/// Calls again as long as a signal interrupts the call. An interrupted fsync has reported no lost data, so
/// calling it again is right; one that failed for any other reason is never called again.
template <class Call>
auto retried(Call&& call) {
  auto result = call();
  while (result < 0 && errno == EINTR) result = call();
  return result;
}

/// An open file or folder, closed with the object.
class Descriptor {
 public:
  explicit Descriptor(int number = -1) : number_(number) {}
  Descriptor(Descriptor&& other) noexcept : number_(other.release()) {}
  Descriptor& operator=(Descriptor&& other) noexcept;
  ~Descriptor();
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;

  operator int() const { return number_; }
  int release();

 private:
  int number_;
};

/// A file's folder, held open, and its name in it. Links have been followed: the name is no link.
struct Place {
  Descriptor folder;
  QByteArray name;
  QString path;  // as the caller gave it, for texts
};

enum class Links { Follow, Keep };
Place placeOf(const QString& path, Links links);

/// What stands at the place, or under another name of its folder; nothing when there is no such file. Refuses
/// what is not a regular file.
std::optional<struct stat> lookAt(const Place& place, const QByteArray& name);
inline std::optional<struct stat> lookAt(const Place& place) {
  return lookAt(place, place.name);
}
/// Refuses a file that nobody may write, or not this user: replacing it would go round that.
void refuseReadOnly(const Place& place, const struct stat& found);

Fingerprint fingerprintOf(const struct stat& found);
bool sameStat(const Fingerprint& a, const Fingerprint& b);
/// Up to this size the content itself is compared, so that an edit in place that keeps size and time is
/// noticed; above it, time, size and inode stand for the content.
inline constexpr qint64 comparedBytes = 1024 * 1024;
/// Whether the file is still what was read, or holds `written` already (a save repeated after a late
/// failure). `seen` gets what it looked like then, without the hash.
bool isStill(const Place& place, const Fingerprint& expected, const QByteArray* written,
             Fingerprint* seen = nullptr);
/// The same of a file that has been taken out of its place and stands under another name now. It was like
/// `seen` there; only where its time is too young to tell is it read once more. False also while anybody has
/// it open for writing, as far as the system tells.
bool wasStill(const Place& place, const QByteArray& name, const Fingerprint& seen,
              const Fingerprint& expected, const QByteArray* written);

Descriptor openForReading(int folder, const QByteArray& name, const QString& path);
/// At most `size` bytes and one more: a file that grows is noticed, and is not run after.
QByteArray readAll(int file, const QString& path, qint64 size);
/// Up to `size` bytes from there; fewer where the file ends.
QByteArray readAt(int file, const QString& path, qint64 offset, qint64 size);
QByteArray hashOf(const QByteArray& bytes);
void syncFolder(const Place& place);
/// Renames within the folder. False, and nothing done, when the new name is taken.
bool renameToFreeName(const Place& place, const QByteArray& from, const QByteArray& to);

/// Runs the steps and makes a result of how they ended.
template <class Steps>
void report(const QString& path, const QString& whenChanged, WriteResult* result, Steps&& steps) {
  try {
    steps();
    result->outcome = Outcome::Written;
  } catch (const Changed&) {
    result->outcome = Outcome::ChangedMeanwhile;
    result->error = QStringLiteral("%1: %2").arg(path, whenChanged);
  } catch (const Trouble& trouble) {
    result->error = trouble.error;
    result->missing = trouble.code == ENOENT;
    result->denied = isDenied(trouble.code);
  }
}
inline const QString changedMeanwhile = QStringLiteral("changed by another program meanwhile");

}  // namespace platform::files

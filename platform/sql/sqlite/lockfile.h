#pragma once
#include <QByteArray>
#include <QString>

#include <memory>

namespace platform::sql::sqlite {

/// The lock file beside a database ("Hourbook3.ldb" for "Hourbook3.mdb", ".ldb" behind any other name). Every
/// session shares it for as long as it lives, idle or not; who is about to exchange the database takes it
/// alone. SQLite's own locks cannot tell that: they are let go between statements. The file is empty and goes
/// with its last user.
///
/// What holds is the system's lock on the open file: it ends with the process, and needs no tidying up after
/// a crash.
class LockFile {
 public:
  enum class Use { Shared, Alone };
  /// Waits up to `waitMs` for others, then Failure 3045 ("in use by another program"). Where the file cannot
  /// be made, as in a folder that may only be read: to share it, a null pointer (a database there can be read
  /// all the same), to have it alone Failure 3051; so too where a network file system wants it open for
  /// writing, and it may only be read. A null pointer on a file system that has no such locks.
  static std::unique_ptr<LockFile> take(const QString& database, Use use, int waitMs);
  ~LockFile();
  LockFile(const LockFile&) = delete;
  LockFile& operator=(const LockFile&) = delete;

  static QString nameFor(const QString& database);

 private:
  LockFile(int descriptor, QByteArray path) : descriptor_(descriptor), path_(std::move(path)) {}
  int descriptor_;
  QByteArray path_;
};

}  // namespace platform::sql::sqlite

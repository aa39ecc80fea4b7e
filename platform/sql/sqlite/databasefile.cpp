#include "platform/sql/sqlite/databasefile.h"

#include "platform/files/atomicfile.h"
#include "platform/sql/errors.h"

#include <QFile>
#include <QFileInfo>

#ifdef Q_OS_UNIX
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#endif

namespace platform::sql::sqlite {

namespace {

// Both kinds of Access file begin with these bytes, and a name from the fifth on.
const QByteArray accessMagic("\0\1\0\0", 4);
const QByteArray jetName("Standard Jet DB");
const QByteArray aceName("Standard ACE DB");
const QByteArray sqliteMagic("SQLite format 3\0", 16);
constexpr qint64 magicLength = 32;

#ifdef Q_OS_UNIX
bool syncDescriptor(const QString& path, int flags) {
  const int descriptor = ::open(QFile::encodeName(path).constData(), flags | O_CLOEXEC);
  if (descriptor < 0) return false;
  const bool ok = ::fsync(descriptor) == 0;
  ::close(descriptor);
  return ok;
}
#endif

}  // namespace

QString systemForm(const QString& path) {
  QString form = path;
  return form.replace(u'\\', u'/');
}

QString realPath(const QString& path) {
  const QFileInfo info(path);
  const QString real = info.canonicalFilePath();
  if (!real.isEmpty()) return real;
  const QString folder = QFileInfo(info.path()).canonicalFilePath();
  return folder.isEmpty() ? path : folder + u'/' + info.fileName();
}

FileKind lookAt(const QString& path) {
  const QFileInfo info(path);
  if (!info.exists()) return QFileInfo(info.path()).isDir() ? FileKind::Missing : FileKind::FolderMissing;
  if (!info.isFile()) return FileKind::NotAFile;
  if (!info.isReadable()) return FileKind::Unreadable;
  return info.size() == 0 ? FileKind::Empty : FileKind::Sqlite;
}

namespace {

FileKind kindByContent(const QString& path) {
  QFile file(path);
  if (!file.open(QIODevice::ReadOnly)) return FileKind::Unreadable;
  const QByteArray start = file.read(magicLength);
  if (start.startsWith(sqliteMagic)) return FileKind::Sqlite;
  const QByteArray name = start.mid(accessMagic.size());
  if (start.startsWith(accessMagic) && (name.startsWith(jetName) || name.startsWith(aceName)))
    return FileKind::Access;
  return FileKind::Other;
}

void requireUsable(FileKind kind, const QString& path) {
  switch (kind) {
    case FileKind::Sqlite:
      return;
    case FileKind::Missing:
      throw Failure(errors::fileNotFound, QStringLiteral("Could not find file '%1'.").arg(path));
    case FileKind::FolderMissing:
      throw Failure(
          errors::invalidPath,
          QStringLiteral("'%1' is not a valid path: its folder cannot be reached. Make sure that the path "
                         "name is spelled correctly and that you are connected to the server on which the "
                         "file resides.")
              .arg(path));
    case FileKind::NotAFile:
      throw Failure(errors::unrecognizedFormat,
                    QStringLiteral("Unrecognized database format '%1': it is not a regular file.").arg(path));
    case FileKind::Unreadable:
      throw Failure(
          errors::noPermission,
          QStringLiteral("Cannot open the file '%1': you need permission to view its data.").arg(path));
    case FileKind::Empty:
      throw Failure(errors::unrecognizedFormat,
                    QStringLiteral("Unrecognized database format '%1': the file is empty.").arg(path));
    case FileKind::Access:
      throw Failure(
          errors::unrecognizedFormat,
          QStringLiteral("'%1' is a Microsoft Access database. This program keeps its data in a file of its "
                         "own format: the database has to be converted before it can be used here, which "
                         "hourbook-accessimport does. Nothing in the file was changed.")
              .arg(path));
    case FileKind::Other:
      throw Failure(errors::unrecognizedFormat,
                    QStringLiteral("Unrecognized database format '%1': the file is no database.").arg(path));
  }
}

}  // namespace

void requireFile(const QString& path) {
  requireUsable(lookAt(path), path);
}

void refuseForeignFile(const QString& path) {
  const FileKind kind = lookAt(path);
  requireUsable(kind == FileKind::Sqlite ? kindByContent(path) : kind, path);
}

std::optional<FileIdentity> identityOf(const QString& path) {
#ifdef Q_OS_UNIX
  struct stat file {};
  if (::stat(QFile::encodeName(path).constData(), &file) != 0) return std::nullopt;
  return FileIdentity{file.st_dev, file.st_ino};
#else
  return QFileInfo::exists(path) ? std::make_optional(FileIdentity()) : std::nullopt;
#endif
}

Failure replacedFailure(const QString& path) {
  return {errors::replacedByAnother,
          QStringLiteral("The database '%1' was replaced by another program; try again.").arg(path)};
}

FileIdentity createFile(const QString& path, CreationMode mode) {
  // a link that leads nowhere is a taken name as well
  const bool taken = QFileInfo::exists(path) || QFileInfo(path).isSymLink();
  files::WriteResult made;
  if (!taken)
    made = files::replaceFile(
        path, {}, files::Fingerprint{},
        mode == CreationMode::OwnerOnly ? files::FileMode::OwnerOnly : files::FileMode::Usual);
  if (taken || made.outcome == files::Outcome::ChangedMeanwhile)
    throw Failure(errors::databaseExists, QStringLiteral("Database already exists: '%1'.").arg(path));
  const auto identity = identityOf(path);
  if (made.outcome == files::Outcome::Written && identity && identity->inode == made.fingerprint.inode)
    return *identity;
  throw Failure(made.denied ? errors::noPermission : errors::diskError,
                QStringLiteral("The file '%1' cannot be made: %2.").arg(path, made.error));
}

void removeOwn(const QString& path, const FileIdentity& identity) {
  if (identityOf(path) == identity) QFile::remove(path);
}

int rightsOfCopy(int mode, bool groupKept) {
  const int bits = mode & 0777;
  if (groupKept) return bits;
  return (bits & ~0070) | (bits & 0070 & ((bits & 0007) << 3));
}

void takeAccessRights(const QString& from, const QString& to) {
#ifdef Q_OS_UNIX
  struct stat source {
  }, own{};
  const QByteArray target = QFile::encodeName(to);
  if (::stat(QFile::encodeName(from).constData(), &source) == 0 && ::stat(target.constData(), &own) == 0) {
    // only the administrator may give a file away; a member of a group may keep it in the group
    const bool groupKept = (own.st_uid == source.st_uid && own.st_gid == source.st_gid) ||
                           ::chown(target.constData(), source.st_uid, source.st_gid) == 0 ||
                           ::chown(target.constData(), static_cast<uid_t>(-1), source.st_gid) == 0 ||
                           own.st_gid == source.st_gid;
    const int mode = rightsOfCopy(static_cast<int>(source.st_mode), groupKept);
    if (::chmod(target.constData(), static_cast<mode_t>(mode)) == 0) return;
  }
  throw Failure(errors::noPermission, QStringLiteral("The access rights of '%1' cannot be set.").arg(to));
#else
  Q_UNUSED(from)
  Q_UNUSED(to)
#endif
}

void syncToDisk(const QString& path) {
#ifdef Q_OS_UNIX
  if (syncDescriptor(path, O_RDONLY) && syncDescriptor(QFileInfo(path).path(), O_RDONLY | O_DIRECTORY))
    return;
  throw Failure(errors::diskError,
                QStringLiteral("Disk or network error: '%1' could not be secured on the disk.").arg(path));
#else
  Q_UNUSED(path)
#endif
}

}  // namespace platform::sql::sqlite

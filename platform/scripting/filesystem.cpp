#include "platform/scripting/filesystem.h"

#include "platform/files/atomicfile.h"
#include "platform/scripting/failures.h"
#include "platform/scripting/textfile.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRandomGenerator>

namespace platform::scripting {

namespace {

constexpr int temporaryFolder = 2;

QString absolutePath(const QString& path) {
  return QDir::cleanPath(QFileInfo(systemPath(path)).absoluteFilePath());
}

bool isReadOnly(const QString& path) {
  // The file's own mode as well: the administrator may write everything, and is still to be asked.
  const QFile::Permissions anyWrite = QFile::WriteOwner | QFile::WriteGroup | QFile::WriteOther;
  return !(QFile::permissions(path) & anyWrite) || !QFileInfo(path).isWritable();
}

/// Files already there are refused in time, so that a caller hears of it before it has made its text.
void refuseUnwritable(const QString& path) {
  const QFileInfo target(path);
  if (!QFileInfo(target.absolutePath()).isDir()) fail(pathNotFound, path);
  if (target.isDir() || (target.exists() && isReadOnly(path))) fail(permissionDenied, path);
}

}  // namespace

QString systemPath(const QString& path) {
  if (path.isEmpty()) return {};
  return QDir::cleanPath(QString(path).replace(u'\\', u'/'));
}

bool FileSystemObject::FileExists(const QString& path) const {
  return QFileInfo(systemPath(path)).isFile();
}

bool FileSystemObject::FolderExists(const QString& path) const {
  return QFileInfo(systemPath(path)).isDir();
}

void FileSystemObject::DeleteFile(const QString& path, bool force) {
  const QString file = systemPath(path);
  if (!FileExists(path)) fail(fileNotFound, file);
  if (isReadOnly(file)) {
    if (!force || !QFile::setPermissions(file, QFile::permissions(file) | QFile::WriteOwner))
      fail(permissionDenied, file);
  }
  failUnlessWritten(files::removeFile(file), file);
}

void FileSystemObject::CreateFolder(const QString& path) {
  const QString folder = systemPath(path);
  if (QFileInfo::exists(folder)) fail(fileExists, folder);
  if (!QFileInfo(QFileInfo(folder).absolutePath()).isDir()) fail(pathNotFound, folder);
  if (!QDir().mkdir(folder)) fail(permissionDenied, folder);
}

std::shared_ptr<Folder> FileSystemObject::GetFolder(const QString& path) {
  if (!FolderExists(path)) fail(pathNotFound, systemPath(path));
  return std::make_shared<Folder>(absolutePath(path));
}

std::shared_ptr<File> FileSystemObject::GetFile(const QString& path) {
  if (!FileExists(path)) fail(fileNotFound, systemPath(path));
  return std::make_shared<File>(absolutePath(path));
}

std::shared_ptr<Folder> FileSystemObject::GetSpecialFolder(int which) {
  // The other two, 0 and 1, are the folders of Windows itself; there are none here.
  if (which != temporaryFolder) fail(failure::invalidProcedureCall, QString::number(which));
  return GetFolder(QDir::tempPath());
}

QString FileSystemObject::GetTempName() const {
  const quint32 number = QRandomGenerator::system()->bounded(0x100000u);
  return QStringLiteral("rad%1.tmp").arg(QString::number(number, 16).toUpper(), 5, u'0');
}

std::shared_ptr<TextStream> FileSystemObject::OpenTextFile(const QString& path, int mode, bool create) {
  const QString file = systemPath(path);
  if (mode != forReading && mode != forWriting && mode != forAppending)
    fail(failure::invalidProcedureCall, file);
  if (!FileExists(path)) {
    if (!QFileInfo(QFileInfo(file).absolutePath()).isDir()) fail(pathNotFound, file);
    if (!create) fail(fileNotFound, file);
    if (mode == forReading) failUnlessWritten(files::replaceFile(file, {}), file);
  }
  if (mode == forReading) return readingStream(file);
  refuseUnwritable(file);
  return mode == forWriting ? writingStream(file, std::nullopt, Encoding::Utf8) : appendingStream(file);
}

std::shared_ptr<TextStream> FileSystemObject::CreateTextFile(const QString& path, bool overwrite,
                                                             bool unicode) {
  const QString file = systemPath(path);
  if (!overwrite && QFileInfo::exists(file)) fail(fileExists, file);
  refuseUnwritable(file);
  // Without leave to overwrite, the file must still be missing when the text arrives.
  const auto expected = overwrite ? std::nullopt : std::make_optional(files::Fingerprint{});
  return writingStream(file, expected, unicode ? Encoding::Utf16 : Encoding::Utf8);
}

QString Folder::Name() const {
  return QFileInfo(path_).fileName();
}

QString Folder::ShortName() const {
  return Name();
}

bool Folder::IsRootFolder() const {
  return QDir(path_).isRoot();
}

std::shared_ptr<Folder> Folder::ParentFolder() const {
  return IsRootFolder() ? nullptr : std::make_shared<Folder>(QFileInfo(path_).absolutePath());
}

QList<std::shared_ptr<Folder>> Folder::SubFolders() const {
  if (!QFileInfo(path_).isDir()) fail(pathNotFound, path_);
  if (!QDir(path_).isReadable()) fail(permissionDenied, path_);
  QList<std::shared_ptr<Folder>> folders;
  const QStringList names =
      QDir(path_).entryList(QDir::Dirs | QDir::NoDotAndDotDot | QDir::Hidden, QDir::Name);
  for (const QString& name : names) folders.append(std::make_shared<Folder>(QDir(path_).filePath(name)));
  return folders;
}

QString File::Name() const {
  return QFileInfo(path_).fileName();
}

void File::setName(const QString& name) {
  if (name.isEmpty() || name.contains(u'/') || name.contains(u'\\')) fail(badFileName, name);
  const QString renamed = QFileInfo(path_).dir().filePath(name);
  const files::WriteResult result = files::renameFile(path_, name);
  if (result.outcome == files::Outcome::ChangedMeanwhile) fail(fileExists, renamed);
  failUnlessWritten(result, path_);
  path_ = renamed;
}

std::shared_ptr<Folder> File::ParentFolder() const {
  return std::make_shared<Folder>(QFileInfo(path_).absolutePath());
}

}  // namespace platform::scripting

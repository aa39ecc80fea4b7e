#include "tests/faults/disklog.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>

#include <climits>
#include <fcntl.h>
#include <map>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

namespace faults {

namespace {

struct Log {
  bool recording = false;
  QByteArray root;
  std::map<ino_t, int> numbers;
  int last = 0;
  QList<Operation> operations;
};

Log& log() {
  static Log the;
  return the;
}

QByteArray pathOf(int file) {
  QByteArray path(PATH_MAX, '\0');
  const QByteArray link = "/proc/self/fd/" + QByteArray::number(file);
  path.truncate(qMax<ssize_t>(0, ::readlink(link.constData(), path.data(), size_t(path.size()))));
  return path;
}

/// Null when it is none of the recorded folder's.
QByteArray within(const QByteArray& path) {
  if (path == log().root) return "";
  return path.startsWith(log().root + '/') ? path.mid(log().root.size() + 1) : QByteArray();
}

QByteArray within(int folder, const char* path) {
  if (*path == '/') return within(QByteArray(QDir::cleanPath(QFile::decodeName(path)).toUtf8()));
  char cwd[PATH_MAX] = {};
  const QByteArray base = folder == AT_FDCWD ? QByteArray(::getcwd(cwd, sizeof cwd)) : pathOf(folder);
  return within(QFile::encodeName(QDir::cleanPath(QFile::decodeName(base + '/' + path))));
}

/// 0 when it is none of the recorded files.
int numberOf(int file) {
  struct stat found {};
  if (::fstat(file, &found) != 0 || !S_ISREG(found.st_mode)) return 0;
  const auto known = log().numbers.find(found.st_ino);
  return known == log().numbers.end() ? 0 : known->second;
}

void append(Operation::Kind kind, const QByteArray& path, int file, qint64 offset = 0,
            QByteArray bytes = {}) {
  log().operations.append({kind, path, file, offset, std::move(bytes)});
}

QStringList filesIn(const QByteArray& folder) {
  QStringList found;
  QDirIterator entries(QFile::decodeName(folder), QDir::Files | QDir::Hidden | QDir::NoDotAndDotDot,
                       QDirIterator::Subdirectories);
  while (entries.hasNext()) found.append(entries.next());
  found.sort();
  return found;
}

}  // namespace

QDataStream& operator<<(QDataStream& out, const Operation& operation) {
  return out << int(operation.kind) << operation.path << operation.file << operation.offset
             << operation.bytes;
}

QDataStream& operator>>(QDataStream& in, Operation& operation) {
  int kind = 0;
  in >> kind >> operation.path >> operation.file >> operation.offset >> operation.bytes;
  operation.kind = Operation::Kind(kind);
  return in;
}

DiskImage imageOf(const QByteArray& folder) {
  DiskImage image;
  int number = 0;
  for (const QString& path : filesIn(folder)) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) continue;
    image.names.insert(QFile::encodeName(path).mid(folder.size() + 1), ++number);
    image.files.insert(number, file.readAll());
  }
  return image;
}

void record(const QByteArray& folder) {
  log() = {};
  log().root = folder;
  for (const QString& path : filesIn(folder)) {
    struct stat found {};
    ::stat(QFile::encodeName(path).constData(), &found);
    log().numbers[found.st_ino] = ++log().last;
  }
  log().recording = true;
}

QList<Operation> recorded() {
  return log().operations;
}

bool isRecording() {
  return log().recording;
}

bool isThere(int folder, const char* path) {
  struct stat found {};
  return ::fstatat(folder, path, &found, 0) == 0;
}

void noteOpened(int file, bool isNew, bool isCut) {
  struct stat found {};
  if (::fstat(file, &found) != 0 || !S_ISREG(found.st_mode)) return;
  if (isNew) {
    const QByteArray path = within(pathOf(file));
    if (path.isNull()) return;
    log().numbers[found.st_ino] = ++log().last;
    if (found.st_nlink > 0) append(Operation::Kind::Name, path, log().last);
  } else if (const int number = numberOf(file); isCut && number > 0) {
    append(Operation::Kind::Resize, {}, number, 0);
  }
}

void noteWritten(int file, const void* bytes, ssize_t size, off_t at) {
  const int number = numberOf(file);
  if (number == 0 || size <= 0) return;
  const off_t offset = at >= 0 ? at : ::lseek(file, 0, SEEK_CUR) - size;
  append(Operation::Kind::Write, {}, number, offset, QByteArray(static_cast<const char*>(bytes), size));
}

void noteCopied(int from, off_t fromAt, int to, off_t toAt, ssize_t size) {
  if (numberOf(to) == 0 || size <= 0) return;
  QByteArray bytes(size, '\0');
  if (::pread(from, bytes.data(), size_t(size), fromAt) == size)
    noteWritten(to, bytes.constData(), size, toAt);
}

void noteResized(int file) {
  struct stat found {};
  if (const int number = numberOf(file); number > 0 && ::fstat(file, &found) == 0)
    append(Operation::Kind::Resize, {}, number, found.st_size);
}

void noteSynced(int file) {
  struct stat found {};
  if (::fstat(file, &found) != 0) return;
  if (S_ISDIR(found.st_mode)) {
    const QByteArray path = within(pathOf(file));
    if (!path.isNull()) append(Operation::Kind::SyncFolder, path, 0);
  } else if (const int number = numberOf(file); number > 0) {
    append(Operation::Kind::SyncFile, {}, number);
  }
}

/// The name leads where it leads now.
void noteName(int folder, const char* path) {
  const QByteArray name = within(folder, path);
  if (name.isNull()) return;
  struct stat found {};
  int number = 0;
  if (::fstatat(folder, path, &found, AT_SYMLINK_NOFOLLOW) == 0) {
    if (!S_ISREG(found.st_mode)) return;
    const auto known = log().numbers.find(found.st_ino);
    if (known != log().numbers.end()) number = known->second;
  }
  append(Operation::Kind::Name, name, number);
}

}  // namespace faults

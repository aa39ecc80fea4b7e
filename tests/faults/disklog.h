#pragma once
#include <QByteArray>
#include <QDataStream>
#include <QList>
#include <QMap>

#include <sys/types.h>

// What a process has asked of the disk, in the words of the disk: names that lead to files, bytes of files,
// and what must have reached it when a call came back.
namespace faults {

struct Operation {
  enum class Kind { Name, Write, Resize, SyncFile, SyncFolder };
  Kind kind = Kind::Name;
  QByteArray path;    // Name, SyncFolder: within the recorded folder, "" for that itself
  int file = 0;       // Name: to which it leads from now on, 0 to none; Write, Resize, SyncFile: which
  qint64 offset = 0;  // Write; the new size of Resize
  QByteArray bytes;   // Write
};
QDataStream& operator<<(QDataStream& out, const Operation& operation);
QDataStream& operator>>(QDataStream& in, Operation& operation);

/// Files by the names under which they were found, numbered as operations number them.
struct DiskImage {
  QMap<QByteArray, int> names;
  QMap<int, QByteArray> files;
};
DiskImage imageOf(const QByteArray& folder);

/// From here on what happens to the files in this folder is recorded. Their numbers are those of
/// imageOf().
void record(const QByteArray& folder);
QList<Operation> recorded();
bool isRecording();

// What the calls of faultcalls.cpp tell once they have been carried out.
bool isThere(int folder, const char* path);
void noteOpened(int file, bool isNew, bool isCut);
void noteWritten(int file, const void* bytes, ssize_t size, off_t at = -1);
void noteCopied(int from, off_t fromAt, int to, off_t toAt, ssize_t size);
void noteResized(int file);
void noteSynced(int file);
void noteName(int folder, const char* path);

}  // namespace faults

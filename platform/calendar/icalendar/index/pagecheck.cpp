#include "platform/calendar/icalendar/index/pagecheck.h"

#include "platform/calendar/icalendar/index/checksum.h"

#include <QHash>
#include <QMutex>

#include <cstring>
#include <memory>
#include <sqlite3.h>

namespace platform::calendar::icalendar::index {
namespace {

/// In front of the file of the layer below, which SQLite allots behind it.
struct File {
  sqlite3_file base;
  quint64 identity;
  bool isDatabase;
  bool isLog;
};

constexpr int logHeadBytes = 32;

sqlite3_file* below(sqlite3_file* file) {
  return reinterpret_cast<sqlite3_file*>(reinterpret_cast<File*>(file) + 1);
}

sqlite3_vfs* systemLayer() {
  return sqlite3_vfs_find(nullptr);
}

quint64 sealOf(const void* page, sqlite3_int64 offset, quint64 identity) {
  return checksumOf({static_cast<const char*>(page), pageBytes - checkBytes},
                    identity ^ static_cast<quint64>(offset));
}

/// The log guards its pages itself, but not against the log of another index: its head is not readable there,
/// and a log without a head is empty.
void maskLogHead(unsigned char* head, quint64 identity) {
  const quint64 key = checksumOf("log", identity);
  for (int i = 0; i < logHeadBytes; ++i) head[i] ^= static_cast<unsigned char>(key >> (i % 8 * 8));
}

int closeFile(sqlite3_file* file) {
  return below(file)->pMethods->xClose(below(file));
}

int readFile(sqlite3_file* file, void* into, int amount, sqlite3_int64 offset) {
  const int result = below(file)->pMethods->xRead(below(file), into, amount, offset);
  const File& own = *reinterpret_cast<File*>(file);
  if (result != SQLITE_OK) return result;
  if (own.isLog && offset == 0 && amount == logHeadBytes)
    maskLogHead(static_cast<unsigned char*>(into), own.identity);
  if (!own.isDatabase || amount != pageBytes) return SQLITE_OK;
  quint64 seal = 0;
  std::memcpy(&seal, static_cast<const char*>(into) + pageBytes - checkBytes, sizeof seal);
  return seal == sealOf(into, offset, own.identity) ? SQLITE_OK : SQLITE_IOERR_DATA;
}

int writeFile(sqlite3_file* file, const void* from, int amount, sqlite3_int64 offset) {
  const File& own = *reinterpret_cast<File*>(file);
  if (own.isLog && offset == 0 && amount == logHeadBytes) {
    unsigned char masked[logHeadBytes];
    std::memcpy(masked, from, sizeof masked);
    maskLogHead(masked, own.identity);
    return below(file)->pMethods->xWrite(below(file), masked, amount, offset);
  }
  if (own.isDatabase && amount == pageBytes) {
    // the last bytes of a page are left to this layer
    const quint64 seal = sealOf(from, offset, own.identity);
    std::memcpy(const_cast<char*>(static_cast<const char*>(from)) + pageBytes - checkBytes, &seal,
                sizeof seal);
  }
  return below(file)->pMethods->xWrite(below(file), from, amount, offset);
}

int truncateFile(sqlite3_file* file, sqlite3_int64 size) {
  return below(file)->pMethods->xTruncate(below(file), size);
}
int syncFile(sqlite3_file* file, int flags) {
  return below(file)->pMethods->xSync(below(file), flags);
}
int sizeOfFile(sqlite3_file* file, sqlite3_int64* size) {
  return below(file)->pMethods->xFileSize(below(file), size);
}
int lockFile(sqlite3_file* file, int lock) {
  return below(file)->pMethods->xLock(below(file), lock);
}
int unlockFile(sqlite3_file* file, int lock) {
  return below(file)->pMethods->xUnlock(below(file), lock);
}
int isReserved(sqlite3_file* file, int* result) {
  return below(file)->pMethods->xCheckReservedLock(below(file), result);
}
int controlFile(sqlite3_file* file, int operation, void* argument) {
  return below(file)->pMethods->xFileControl(below(file), operation, argument);
}
int sectorSize(sqlite3_file* file) {
  return below(file)->pMethods->xSectorSize(below(file));
}
int characteristics(sqlite3_file* file) {
  return below(file)->pMethods->xDeviceCharacteristics(below(file));
}
int mapShared(sqlite3_file* file, int region, int size, int extend, void volatile** into) {
  return below(file)->pMethods->xShmMap(below(file), region, size, extend, into);
}
int lockShared(sqlite3_file* file, int offset, int count, int flags) {
  return below(file)->pMethods->xShmLock(below(file), offset, count, flags);
}
void barrier(sqlite3_file* file) {
  below(file)->pMethods->xShmBarrier(below(file));
}
int unmapShared(sqlite3_file* file, int remove) {
  return below(file)->pMethods->xShmUnmap(below(file), remove);
}

/// Version 2: pages are not mapped into memory, where nobody would check them.
const sqlite3_io_methods methods{2,           closeFile,   readFile,        writeFile,  truncateFile,
                                 syncFile,    sizeOfFile,  lockFile,        unlockFile, isReserved,
                                 controlFile, sectorSize,  characteristics, mapShared,  lockShared,
                                 barrier,     unmapShared, nullptr,         nullptr};

struct Layer {
  sqlite3_vfs vfs{};
  QByteArray name;
  quint64 identity = 0;
};

int openFile(sqlite3_vfs* vfs, const char* name, sqlite3_file* file, int flags, int* outFlags) {
  auto& own = *reinterpret_cast<File*>(file);
  own.base.pMethods = nullptr;
  own.identity = static_cast<Layer*>(vfs->pAppData)->identity;
  own.isDatabase = (flags & SQLITE_OPEN_MAIN_DB) != 0;
  own.isLog = (flags & SQLITE_OPEN_WAL) != 0;
  const int result = systemLayer()->xOpen(systemLayer(), name, below(file), flags, outFlags);
  if (below(file)->pMethods) own.base.pMethods = &methods;
  return result;
}

}  // namespace

QByteArray checkedPages(quint64 identity) {
  static QMutex mutex;
  static auto& layers =
      *new QHash<quint64, std::shared_ptr<Layer>>;  // SQLite may still look at them at the end
  const QMutexLocker lock(&mutex);
  std::shared_ptr<Layer>& layer = layers[identity];
  if (!layer) {
    layer = std::make_shared<Layer>();
    layer->name = "hourbook-" + QByteArray::number(identity, 16);
    layer->identity = identity;
    layer->vfs = *systemLayer();  // paths, time and chance are the system's
    layer->vfs.pNext = nullptr;
    layer->vfs.zName = layer->name.constData();
    layer->vfs.szOsFile = static_cast<int>(sizeof(File)) + systemLayer()->szOsFile;
    layer->vfs.pAppData = layer.get();
    layer->vfs.xOpen = openFile;
    sqlite3_vfs_register(&layer->vfs, 0);
  }
  return layer->name;
}

}  // namespace platform::calendar::icalendar::index

#pragma once
#include <QDir>
#include <QFileInfo>
#include <QString>

namespace tests {

/// For the QTemporaryDir of a test that writes hundreds of files, each brought to the disk as the program
/// does it: in memory where the machine has such a place, since there that costs nothing.
inline QString quickFolder(const QString& name) {
  const QFileInfo memory(QStringLiteral("/dev/shm"));
  const bool usable = memory.isDir() && memory.isWritable();
  return (usable ? memory.filePath() : QDir::tempPath()) + QStringLiteral("/hourbook-%1-XXXXXX").arg(name);
}

}  // namespace tests

#include "shell/modGetDefaultFolders.h"

#include "shell/modFileHandling.h"

#include <QStandardPaths>

namespace hourbook {

using namespace Qt::StringLiterals;

namespace {

QString documentsFolder() {
  const QString& set = shellValues().documentsFolder;
  return set.isEmpty() ? QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation) : set;
}

}  // namespace

QString fncLocalCubePathOnly() {
  return fncStripSlash(documentsFolder()) + u"\\OLAP Cubes"_s;
}

QString fncGetLocalCubePath() {
  subSetupFS();
  platform::scripting::FileSystemObject& files = *shellValues().gFileSystem;
  const QString path = fncLocalCubePathOnly();
  // A new account may name a documents folder that nobody has made yet.
  for (const QString& folder : {documentsFolder(), path})
    if (!files.FolderExists(folder)) files.CreateFolder(folder);
  return path;
}

}  // namespace hourbook

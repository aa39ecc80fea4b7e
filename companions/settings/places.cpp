#include "companions/settings/places.h"

#include "companions/settings/texts.h"
#include "database/DatabaseValues.h"
#include "platform/files/atomicfile.h"

#include <QDir>
#include <QDirIterator>
#include <QFileInfo>

namespace hourbook {

using namespace Qt::StringLiterals;
namespace {

inline constexpr int mostCounted = 100000;

PlaceLook problem(const QString& text) {
  return {text, {}};
}

QByteArray beginning(const QString& path, qint64 length) {
  QFile file(path);
  return file.open(QIODevice::ReadOnly) ? file.read(length) : QByteArray();
}

PlaceLook lookAtFolder(const QString& path) {
  int items = 0;
  bool others = false;
  QDirIterator entries(path, QDir::Files);
  while (entries.hasNext() && items < mostCounted) {
    entries.next();
    if (entries.fileName().endsWith(u".ics"_s, Qt::CaseInsensitive))
      ++items;
    else
      others = true;
  }
  if (items > 0) return {{}, texts::folderHolds.arg(items)};
  return others ? problem(texts::folderNoCalendar.arg(path)) : PlaceLook{{}, texts::folderIsEmpty};
}

PlaceLook lookAtFile(const QString& path) {
  constexpr qint64 enough = 4096;
  QByteArray text = beginning(path, enough);
  if (text.startsWith("\xEF\xBB\xBF")) text.remove(0, 3);
  return text.trimmed().toUpper().startsWith("BEGIN:VCALENDAR") ? PlaceLook{{}, texts::fileIsCalendar}
                                                                : problem(texts::pathNoCalendar.arg(path));
}

/// The nearest folder around it that is there.
QFileInfo existing(QString folder) {
  while (!QFileInfo::exists(folder) && QFileInfo(folder).absolutePath() != folder)
    folder = QFileInfo(folder).absolutePath();
  return QFileInfo(folder);
}

PlaceLook lookAtNewPlace(const QString& folder) {
  if (holdsDatabase(folder)) return problem(texts::databaseExists);
  const QFileInfo around = existing(folder);
  if (!around.isDir()) return problem(texts::folderIsFile.arg(around.filePath()));
  if (!around.isWritable() || !around.isExecutable())
    return problem(texts::folderNotWritable.arg(around.filePath()));
  return {{}, texts::willBeMade};
}

bool leadsToServer(const QString& folder) {
  return !holdsDatabase(folder) && QFileInfo::exists(QDir(folder).filePath(connectionFileName));
}

/// What the first bytes tell. An empty file is one that a failed creation left.
QString kindProblem(const QString& file) {
  const QByteArray first = beginning(file, 20);
  if (first.startsWith("SQLite format 3")) return {};
  const bool access =
      first.mid(4).startsWith("Standard Jet DB") || first.mid(4).startsWith("Standard ACE DB");
  return (access ? texts::databaseIsAccess : texts::databaseIsNone).arg(file);
}

}  // namespace

QString databaseIn(const QString& folder) {
  return QDir(folder).filePath(databaseFileName);
}

bool holdsDatabase(const QString& folder) {
  return QFileInfo::exists(databaseIn(folder));
}

PlaceLook lookAtCalendar(const QString& path, bool readOnly) {
  if (path.isEmpty()) return problem(texts::pathMissing);
  const QFileInfo info(path);
  if (!info.exists()) return problem(texts::pathNotThere.arg(path));
  if (!info.isReadable() || (info.isDir() && !info.isExecutable()))
    return problem(texts::pathNotReadable.arg(path));
  if (!info.isDir() && !info.isFile()) return problem(texts::pathIsSpecial.arg(path));
  // a file is replaced as a whole, so its folder must take one beside it
  const bool writable = info.isWritable() && (info.isDir() || QFileInfo(info.absolutePath()).isWritable());
  if (!readOnly && !writable) return problem(texts::pathNotWritable.arg(path));
  return info.isDir() ? lookAtFolder(path) : lookAtFile(path);
}

QString setUpProblem(const QString& folder) {
  if (folder.isEmpty()) return texts::folderMissing;
  if (QDir::isRelativePath(folder)) return texts::folderRelative;
  if (leadsToServer(folder)) return {};
  return lookAtNewPlace(folder).problem;
}

PlaceLook lookAtDatabase(const QString& folder, bool make) {
  if (folder.isEmpty()) return problem(texts::folderMissing);
  if (QDir::isRelativePath(folder)) return problem(texts::folderRelative);
  if (make) return lookAtNewPlace(folder);
  const QFileInfo place(folder);
  if (!place.exists()) return problem(texts::folderNotThere.arg(folder));
  if (!place.isDir()) return problem(texts::folderIsFile.arg(folder));
  if (!place.isExecutable()) return problem(texts::databaseNotReadable.arg(folder));
  if (!holdsDatabase(folder))
    return problem(leadsToServer(folder) ? texts::folderLeadsToServer : texts::databaseNotThere);
  const QString file = databaseIn(folder);
  const QFileInfo database(file);
  if (!database.isFile()) return problem(texts::databaseIsNone.arg(file));
  if (!database.isReadable()) return problem(texts::databaseNotReadable.arg(file));
  if (const QString text = kindProblem(file); !text.isEmpty()) return problem(text);
  if (!database.isWritable()) return problem(texts::onlyReadable.arg(file));
  if (!place.isWritable()) return problem(texts::folderNotWritable.arg(folder));
  return {{}, texts::databaseThere};
}

}  // namespace hourbook

#include "platform/calendar/icalendar/emptyguard.h"

#include "platform/files/atomicfile.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFileInfo>

namespace platform::calendar::icalendar {

EmptyGuard::EmptyGuard(const QString& stateFolder, const QString& calendarPath) {
  if (stateFolder.isEmpty()) return;
  const QByteArray known = QDir::cleanPath(QFileInfo(calendarPath).absoluteFilePath()).toUtf8();
  const QByteArray name = QCryptographicHash::hash(known, QCryptographicHash::Sha1).toHex();
  path_ = stateFolder + QStringLiteral("/filled/") + QString::fromLatin1(name);
  hadMany_ = QFileInfo::exists(path_);
}

void EmptyGuard::saw(qint64 count) {
  if (count > 0) remember(count > many);
}

void EmptyGuard::remember(bool hadMany) {
  if (hadMany == hadMany_) return;
  hadMany_ = hadMany;
  if (path_.isEmpty()) return;
  // What cannot be noted is known until the end of the program only; that is no reason to fail.
  if (!hadMany)
    files::removeFile(path_);
  else if (QDir().mkpath(QFileInfo(path_).path()))
    files::replaceFile(path_, {}, std::nullopt, files::FileMode::OwnerOnly);
}

}  // namespace platform::calendar::icalendar

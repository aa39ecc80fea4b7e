#include "platform/calendar/icalendar/writer.h"

#include "platform/basic/failure.h"
#include "platform/calendar/icalendar/limits.h"

#include <QFile>

namespace platform::calendar::icalendar {

bool mayBeWritten(const QFileInfo& place) {
  constexpr QFile::Permissions anyWrite = QFile::WriteOwner | QFile::WriteGroup | QFile::WriteOther;
  return !place.exists() || ((place.permissions() & anyWrite) && place.isWritable());
}

QFileInfo reached(const QString& path) {
  const QString real = QFileInfo(path).canonicalFilePath();
  return QFileInfo(real.isEmpty() ? path : real);
}

void FileWriter::fail(qint32 number, const QString& text) const {
  throw Failure(number, QStringLiteral("Calendar \"%1\": %2").arg(label_, text),
                QStringLiteral("IcalendarStore"));
}

void FileWriter::refuseProtected(const QString& name) const {
  const QString path = source_.pathOf(name);
  const QFileInfo file = reached(path), folder(file.absolutePath());
  if (!mayBeWritten(file)) fail(errAccessDenied, QStringLiteral("\"%1\" is write-protected.").arg(path));
  if (!mayBeWritten(folder))
    fail(errAccessDenied,
         QStringLiteral("nothing can be written in the folder \"%1\".").arg(folder.filePath()));
}

void FileWriter::check(const QString& name) {
  refuseProtected(name);
  if (mayChange) mayChange();
}

void FileWriter::prepare(const QString& name) {
  check(name);
  source_.sweep();
  if (beforeWriting) beforeWriting(name);
}

bool FileWriter::taken(const QString& name, const QList<files::Splice>& splices,
                       const files::WriteResult& result) {
  if (result.outcome == files::Outcome::Written)
    source_.written(name, splices, result.fingerprint);
  else
    source_.written(name, {}, {});
  if (result.outcome == files::Outcome::Failed) fail(errStoreBroken, result.error);
  if (result.outcome == files::Outcome::Written && afterWriting) afterWriting();
  return result.outcome == files::Outcome::Written;
}

/// What is written can be read again.
void FileWriter::refuseTooLarge(const QString& name, qint64 size) const {
  const qint64 limit = source_.isFolder() ? maxItemFileBytes : maxCalendarFileBytes;
  if (size > limit)
    fail(errStoreBroken,
         QStringLiteral("\"%1\" would become larger than %2 bytes.").arg(source_.pathOf(name)).arg(limit));
}

bool FileWriter::put(const Snapshot& snapshot, const QString&, const QList<files::Splice>& splices,
                     const Step&) {
  QList<files::Splice> ordered = splices;
  std::stable_sort(ordered.begin(), ordered.end(),
                   [](const files::Splice& a, const files::Splice& b) { return a.offset < b.offset; });
  qint64 size = snapshot.fingerprint.size;
  for (const files::Splice& splice : splices) size += splice.with.size() - splice.was.size();
  refuseTooLarge(snapshot.name, size);
  prepare(snapshot.name);
  return taken(snapshot.name, ordered,
               files::spliceFile(source_.pathOf(snapshot.name), ordered, snapshot.fingerprint));
}

bool FileWriter::create(const QString& name, const QByteArray& bytes) {
  prepare(name);
  const QString path = source_.pathOf(name);
  const files::WriteResult made = files::replaceFile(path, bytes, files::Fingerprint{});
  // There, but it might not outlive a power cut. A save that is told as failed is made once more, under
  // another name: of the two one would be too many.
  if (made.outcome == files::Outcome::Failed && made.fingerprint.exists)
    files::removeFile(path, made.fingerprint);
  return taken(name, {}, made);
}

bool FileWriter::remove(const Snapshot& snapshot) {
  prepare(snapshot.name);
  return taken(snapshot.name, {}, files::removeFile(source_.pathOf(snapshot.name), snapshot.fingerprint));
}

}  // namespace platform::calendar::icalendar

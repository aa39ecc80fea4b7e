#include "platform/registry/ini/inifile.h"

#include "platform/files/atomicfile.h"
#include "platform/registry/codes.h"
#include "platform/registry/ini/initext.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

namespace platform::registry {

namespace {

constexpr qint64 largestFile = 16 * 1024 * 1024;
constexpr int mostAttempts = 10;
const QString dwordMark = QStringLiteral("@dword:");
const QString qwordMark = QStringLiteral("@qword:");

QString marked(const basic::Value& value) {
  if (const auto* number = std::get_if<qint32>(&value)) return dwordMark + QString::number(*number);
  if (const auto* number = std::get_if<qint64>(&value)) return qwordMark + QString::number(*number);
  const QString text = std::get<QString>(value);
  return text.startsWith(u'@') ? u'@' + text : text;
}

basic::Value unmarked(const QString& text) {
  bool isNumber = false;
  if (text.startsWith(dwordMark)) {
    const qint32 number = QStringView(text).mid(dwordMark.size()).toInt(&isNumber);
    if (isNumber) return number;
  }
  if (text.startsWith(qwordMark)) {
    const qint64 number = QStringView(text).mid(qwordMark.size()).toLongLong(&isNumber);
    if (isNumber) return number;
  }
  return text.startsWith(QStringLiteral("@@")) ? text.mid(1) : text;
}

bool makeFolder(const QString& folder) {
  if (QDir(folder).exists()) return true;
  const bool made = makeFolder(QFileInfo(folder).absolutePath()) && QDir().mkdir(folder);
  if (made) QFile::setPermissions(folder, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
  return made;
}

}  // namespace

IniRegistry::IniRegistry(QString filePath) : path_(std::move(filePath)) {}

int IniRegistry::failed(int code, const QString& error) {
  lastError_ = error;
  return code;
}

int IniRegistry::openKey(const QString& key) {
  Q_UNUSED(key)
  const files::ReadResult read = files::readFile(path_, largestFile, files::Hashing::No);
  if (!read.ok && read.missing) return codeSuccess;
  if (!read.ok) return failed(read.denied ? codeAccessDenied : codeReadFault, read.error);
  if (read.bytes == read_) return codeSuccess;
  const QString fault = iniFault(read.bytes);
  return fault.isEmpty() ? codeSuccess : failed(codeInvalidData, QStringLiteral("%1: %2").arg(path_, fault));
}

int IniRegistry::writeOnce(const QString& key, const QString& name, const QString& text,
                           bool* changedMeanwhile) {
  const files::ReadResult read = files::readFile(path_, largestFile);
  if (!read.ok && !read.missing) return failed(read.denied ? codeAccessDenied : codeReadFault, read.error);
  const QString fault = iniFault(read.bytes);
  if (!fault.isEmpty()) return failed(codeInvalidData, QStringLiteral("%1: %2").arg(path_, fault));
  QString error;
  const auto bytes = withEntry(read.bytes, entryName(key, name), text, &error);
  if (!bytes) return failed(codeWriteFault, QStringLiteral("%1: %2").arg(path_, error));
  const files::WriteResult written =
      files::replaceFile(path_, *bytes, read.fingerprint, files::FileMode::OwnerOnly);
  *changedMeanwhile = written.outcome == files::Outcome::ChangedMeanwhile;
  if (written.outcome == files::Outcome::Written) return codeSuccess;
  return failed(written.denied ? codeAccessDenied : codeWriteFault, written.error);
}

int IniRegistry::setValue(const QString& key, const QString& name, const basic::Value& value) {
  const std::optional<basic::Value> stored = storable(value);
  if (!stored)
    return failed(codeInvalidParameter,
                  QStringLiteral("%1: a value of the type %2 cannot be stored").arg(name, TypeName(value)));
  const QString folder = QFileInfo(path_).absolutePath();
  if (!makeFolder(folder))
    return failed(codeAccessDenied, QStringLiteral("%1: the folder could not be made").arg(folder));
  if (!std::exchange(swept_, true)) files::sweepLitter(folder);  // what a crash in an earlier save has left
  for (int attempt = 0; attempt < mostAttempts; ++attempt) {
    bool changedMeanwhile = false;
    const int code = writeOnce(key, name, marked(*stored), &changedMeanwhile);
    if (!changedMeanwhile) return code;
  }
  return codeWriteFault;
}

int IniRegistry::value(const QString& key, const QString& name, basic::Value* out) {
  const files::ReadResult read = files::readFile(path_, largestFile, files::Hashing::No);
  if (!read.ok && !read.missing) return failed(read.denied ? codeAccessDenied : codeReadFault, read.error);
  if (read.bytes != read_) {
    QString error = iniFault(read.bytes);
    const std::optional<IniEntries> parsed = error.isEmpty() ? parseIni(read.bytes, &error) : std::nullopt;
    if (!parsed) return failed(codeInvalidData, QStringLiteral("%1: %2").arg(path_, error));
    entries_.clear();
    for (auto it = parsed->cbegin(); it != parsed->cend(); ++it) entries_.insert(it.key().toLower(), *it);
    read_ = read.bytes;
  }
  const auto found = entries_.constFind(entryName(key, name).toLower());
  if (found == entries_.cend())
    return failed(codeNotFound, QStringLiteral("%1: there is no value \"%2\"").arg(path_, name));
  *out = unmarked(*found);
  return codeSuccess;
}

}  // namespace platform::registry

#include "platform/registry/ini/initext.h"

#include <QFile>
#include <QSettings>
#include <QStringDecoder>
#include <QTemporaryDir>
#include <QTemporaryFile>

namespace platform::registry {

namespace {

/// A copy that QSettings may read and write, in a folder that only this user can enter.
class WorkingCopy {
 public:
  explicit WorkingCopy(const QByteArray& bytes) : file_(folder_.filePath(QStringLiteral("XXXXXX.ini"))) {
    usable_ = folder_.isValid() && file_.open() && file_.write(bytes) == bytes.size() && file_.flush() &&
              read() == bytes;
  }
  bool usable() const { return usable_; }
  QString path() const { return file_.fileName(); }
  std::optional<QByteArray> read() const {
    QFile file(path());
    if (!file.open(QIODevice::ReadOnly)) return std::nullopt;
    return file.readAll();
  }

 private:
  QTemporaryDir folder_;
  QTemporaryFile file_;
  bool usable_ = false;
};

QString noCopy() {
  return QStringLiteral("the temporary folder could not take a copy");
}

/// Stands at the end of each copy. Qt's own reader does not tell of a disk that fails or of a process that
/// has too many files open: it then finds no entries or too few of them, and whoever took that for all there
/// is would write the rest away. Only who has found this one has read to the end.
const QString lastEntry = QStringLiteral("platform.copy/end");
constexpr char lastLines[] = "\n\n[platform.copy]\nend=reached\n";

QString notReadToTheEnd() {
  return QStringLiteral("the copy in the temporary folder could not be read");
}

IniEntries entriesOf(const QSettings& settings) {
  IniEntries entries;
  const QStringList names = settings.allKeys();
  for (const QString& name : names) {
    const QVariant value = settings.value(name);
    // A hand-written "a, b" without quotes reads as a list; it was meant as one text.
    entries.insert(
        name, value.typeId() == QMetaType::QStringList ? value.toStringList().join(u", ") : value.toString());
  }
  return entries;
}

QString existingName(const IniEntries& entries, const QString& wanted) {
  for (auto it = entries.cbegin(); it != entries.cend(); ++it)
    if (it.key().compare(wanted, Qt::CaseInsensitive) == 0) return it.key();
  return wanted;
}

/// QSettings parts groups at "/", and this file parts a key from a value's name there.
QString escaped(QString part) {
  return part.replace(u'%', QStringLiteral("%25")).replace(u'/', QStringLiteral("%2F"));
}

}  // namespace

QString iniFault(const QByteArray& bytes) {
  QStringDecoder decoder(QStringDecoder::Utf8);
  const QString text = decoder(bytes);
  if (decoder.hasError() || bytes.contains('\0')) return QStringLiteral("not an INI file: it is no text");
  int number = 0;
  bool continues = false;  // a line that ends in "\" goes on in the next one
  for (const QString& line : text.split(u'\n')) {
    ++number;
    const QString shown = line.trimmed();
    const bool section = shown.startsWith(u'[') && shown.endsWith(u']');
    const bool comment = shown.isEmpty() || shown.startsWith(u';') || shown.startsWith(u'#');
    if (!continues && !section && !comment && !shown.contains(u'='))
      return QStringLiteral("not an INI file: line %1 is neither a section nor a value").arg(number);
    continues = shown.endsWith(u'\\') && !comment;
  }
  return {};
}

std::optional<IniEntries> parseIni(const QByteArray& bytes, QString* error) {
  const WorkingCopy copy(bytes + lastLines);
  if (!copy.usable()) {
    *error = noCopy();
    return std::nullopt;
  }
  const QSettings settings(copy.path(), QSettings::IniFormat);
  IniEntries entries = entriesOf(settings);
  if (settings.status() != QSettings::NoError) {
    *error = QStringLiteral("not an INI file");
    return std::nullopt;
  }
  if (entries.remove(lastEntry) == 0) {
    *error = notReadToTheEnd();
    return std::nullopt;
  }
  return entries;
}

std::optional<QByteArray> withEntry(const QByteArray& bytes, const QString& entry, const QString& text,
                                    QString* error) {
  return withEntries(bytes, {{entry, text}}, error);
}

std::optional<QByteArray> withEntries(const QByteArray& bytes, const QList<QPair<QString, QString>>& entries,
                                      QString* error) {
  const WorkingCopy copy(bytes + lastLines);
  if (!copy.usable()) {
    *error = noCopy();
    return std::nullopt;
  }
  IniEntries wanted;
  {
    QSettings settings(copy.path(), QSettings::IniFormat);
    wanted = entriesOf(settings);
    if (wanted.remove(lastEntry) == 0) {
      *error = notReadToTheEnd();
      return std::nullopt;
    }
    settings.remove(lastEntry);
    for (const auto& [entry, text] : entries) {
      const QString name = existingName(wanted, entry);
      wanted.insert(name, text);
      settings.setValue(name, text);
    }
    settings.sync();
  }
  const std::optional<QByteArray> changed = copy.read();
  const std::optional<IniEntries> reread = changed ? parseIni(*changed, error) : std::nullopt;
  if (!reread || *reread != wanted) {
    if (error->isEmpty()) *error = QStringLiteral("the value could not be written so that it reads the same");
    return std::nullopt;
  }
  return changed;
}

QString entryName(const QString& key, const QString& name) {
  return escaped(key) + u'/' + escaped(name);
}

}  // namespace platform::registry

#include "app/Configuration.h"

#include <QDir>
#include <QFileInfo>
#include <QSet>
#include <QSettings>
#include <QStandardPaths>

#include <memory>
#include <optional>

namespace hourbook {

namespace {

const QString fileName = QStringLiteral("platform.ini");
const QString defaultVersion = QStringLiteral("11.0.0.8169");
inline constexpr int mostCalendars = 1000;

/// Reads one file and knows its name for the messages.
class Reader {
 public:
  explicit Reader(const QString& folder) : folder_(folder), path_(QDir(folder).filePath(fileName)) {
    checkFile();
    settings_ = std::make_unique<QSettings>(path_, QSettings::IniFormat);
    settings_->sync();
    if (settings_->status() != QSettings::NoError)
      refuse(QStringLiteral("the file cannot be read as settings"));
  }

  QString text(const QString& key, const QString& otherwise = {}) const {
    const QVariant value = settings_->value(key);
    if (!value.isValid()) return otherwise;
    if (value.typeId() == QMetaType::QStringList)
      refuse(QStringLiteral("the value of \"%1\" holds a comma; put it in double quotes").arg(key));
    return value.toString().trimmed();
  }

  QString needed(const QString& key) const {
    const QString found = text(key);
    if (found.isEmpty()) refuse(QStringLiteral("\"%1\" is missing").arg(key));
    return found;
  }

  int number(const QString& key) const {
    bool isNumber = false;
    const int value = needed(key).toInt(&isNumber);
    if (!isNumber || value < 0 || value > mostCalendars)
      refuse(QStringLiteral("\"%1\" is \"%2\" and not a number of calendars").arg(key, text(key)));
    return value;
  }

  /// The pieces between commas, without empty ones; nothing when the key is missing.
  std::optional<QStringList> list(const QString& key) const {
    if (!settings_->contains(key)) return {};
    QStringList pieces;
    for (const QString& piece : settings_->value(key).toStringList().join(u',').split(u','))
      if (!piece.trimmed().isEmpty()) pieces.append(piece.trimmed());
    return pieces;
  }

  bool flag(const QString& key, bool otherwise = false) const {
    const QString value = text(key, otherwise ? QStringLiteral("true") : QStringLiteral("false")).toLower();
    if (value == u"true" || value == u"1") return true;
    if (value == u"false" || value == u"0") return false;
    refuse(QStringLiteral("\"%1\" is \"%2\"; it may be true or false").arg(key, text(key)));
  }

  QString existingPath(const QString& key, const QString& calendar) const {
    const QString path = QDir::cleanPath(QDir(folder_).absoluteFilePath(needed(key)));
    const QFileInfo info(path);
    if (!info.exists())
      refuse(QStringLiteral("the calendar \"%1\" was not found: %2 does not exist").arg(calendar, path));
    if (!info.isReadable())
      refuse(QStringLiteral("the calendar \"%1\" may not be read: %2").arg(calendar, path));
    return path;
  }

  [[noreturn]] void refuse(const QString& what) const {
    throw ConfigurationError(QStringLiteral("The configuration in %1 cannot be used: %2.").arg(path_, what));
  }

 private:
  void checkFile() const {
    const QFileInfo info(path_);
    if (!info.exists())
      throw ConfigurationError(
          QStringLiteral(
              "There is no configuration: %1 does not exist. It tells which calendars there are and which "
              "of them is open. Another folder is taken when HOURBOOK_CONFIG names one.")
              .arg(path_));
    if (!info.isFile()) refuse(QStringLiteral("it is not a file"));
    if (!info.isReadable()) refuse(QStringLiteral("it may not be read"));
  }

  QString folder_;
  QString path_;
  std::unique_ptr<QSettings> settings_;
};

CalendarEntry readCalendar(const Reader& reader, int number) {
  const QString prefix = QStringLiteral("calendars/%1/").arg(number);
  CalendarEntry entry;
  entry.id = reader.needed(prefix + QStringLiteral("id"));
  entry.name = reader.text(prefix + QStringLiteral("name"), entry.id);
  entry.path = reader.existingPath(prefix + QStringLiteral("path"), entry.name);
  entry.readOnly = reader.flag(prefix + QStringLiteral("readonly"));
  return entry;
}

QList<CalendarEntry> readCalendars(const Reader& reader) {
  const int size = reader.number(QStringLiteral("calendars/size"));
  if (size == 0) reader.refuse(QStringLiteral("it names no calendar"));
  QList<CalendarEntry> calendars;
  QSet<QString> ids;
  for (int number = 1; number <= size; ++number) {
    calendars.append(readCalendar(reader, number));
    const QString id = calendars.last().id;
    if (ids.contains(id)) reader.refuse(QStringLiteral("two calendars have the id \"%1\"").arg(id));
    ids.insert(id);
  }
  return calendars;
}

QList<int> readGenerations(const Reader& reader) {
  const QString key = QStringLiteral("components/spreadsheet");
  const std::optional<QStringList> listed = reader.list(key);
  if (!listed) return Configuration().spreadsheetGenerations;
  if (*listed == QStringList{QStringLiteral("none")}) return {};
  static const QStringList known{QStringLiteral("9"), QStringLiteral("10"), QStringLiteral("11")};
  QList<int> generations;
  bool allKnown = !listed->isEmpty();
  for (const QString& piece : *listed) {
    allKnown = allKnown && known.contains(piece);
    generations.append(piece.toInt());
  }
  if (!allKnown)
    reader.refuse(QStringLiteral("\"%1\" is \"%2\"; it may list 9, 10 and 11, or be none")
                      .arg(key, listed->join(QStringLiteral(", "))));
  return generations;
}

QString stateFolder() {
  QString state = qEnvironmentVariable("XDG_STATE_HOME");
  if (!QDir::isAbsolutePath(state)) state = QDir::homePath() + QStringLiteral("/.local/state");
  return QDir::cleanPath(state) + QStringLiteral("/hourbook");
}

}  // namespace

QString Configuration::registryFile() const {
  return QDir(folder).filePath(QStringLiteral("registry.ini"));
}

QString Configuration::draftFolder() const {
  return QDir(folder).filePath(QStringLiteral("drafts"));
}

QString Configuration::defaultFolder() {
  const QString named = qEnvironmentVariable("HOURBOOK_CONFIG");
  if (!named.isEmpty()) return QDir::cleanPath(QDir::current().absoluteFilePath(named));
  return QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) +
         QStringLiteral("/hourbook");
}

QString Configuration::placesFile() {
  return stateFolder() + QStringLiteral("/window.json");
}

QString Configuration::journalFolder() {
  return stateFolder() + QStringLiteral("/reports");
}

Configuration Configuration::read(const QString& folder) {
  const Reader reader(folder);
  Configuration configuration;
  configuration.folder = folder;
  configuration.mailboxName = reader.text(QStringLiteral("mailbox/name"));
  configuration.outlookVersion = reader.text(QStringLiteral("mailbox/version"), defaultVersion);
  configuration.calendars = readCalendars(reader);
  configuration.spreadsheetGenerations = readGenerations(reader);
  configuration.datePickers = reader.flag(QStringLiteral("components/datepickers"), true);
  configuration.openCalendar = reader.text(QStringLiteral("calendars/open"));
  if (configuration.openCalendar.isEmpty()) return configuration;
  for (const CalendarEntry& entry : configuration.calendars)
    if (entry.id == configuration.openCalendar) return configuration;
  reader.refuse(
      QStringLiteral("the open calendar \"%1\" is not among the calendars").arg(configuration.openCalendar));
}

}  // namespace hourbook

#include "companions/settings/settingsstore.h"

#include "companions/settings/guarded.h"
#include "companions/settings/places.h"
#include "companions/settings/registrytext.h"
#include "companions/settings/steps.h"
#include "companions/settings/texts.h"
#include "database/DatabaseValues.h"
#include "platform/basic/convert.h"
#include "platform/basic/text.h"
#include "platform/process/process.h"
#include "platform/scripting/filesystem.h"
#include "settings/cPersonalSettings.h"
#include "shell/modFileHandling.h"
#include "shell/Tolerate.h"

#include <QDir>

namespace hourbook {

using namespace Qt::StringLiterals;
using namespace platform::basic;
using platform::Failure;
namespace files = platform::files;
using State = KeptSettings::State;

namespace {

const QString mailboxPrefix = u"Mailbox - "_s;
const QString connectionBeginning = u"Pro"_s;

files::ReadResult readOrMissing(const QString& path) {
  files::ReadResult read = files::readFile(path);
  if (!read.ok && !read.missing) throw Failure(platform::failure::permissionDenied, read.error);
  return read;
}

/// As the reports will carry it (see fncGetUserName); empty: they carry the log-on name.
QString personIn(const QString& mailbox) {
  const QString separator = u" - "_s;
  const qsizetype found = mailbox.indexOf(separator);
  if (found >= 0) return mailbox.mid(found + separator.size()).trimmed();
  return mailbox.contains(u',') ? mailbox : QString();
}

/// Fresh ones; what they look for at the start may be unreadable.
std::shared_ptr<cPersonalSettings> freshSettings() {
  std::shared_ptr<cPersonalSettings> settings;
  guarded([&] { settings = std::make_shared<cPersonalSettings>(); });
  return settings;
}

QList<NamedList> namedLists(const MetaDataCollection& collection) {
  QList<NamedList> lists;
  for (const auto& list : collection) lists.append({list->Caption, list->MetaDic->Keys()});
  return lists;
}

MetaDataCollection collectionOf(const QList<NamedList>& lists) {
  MetaDataCollection collection;
  for (const NamedList& list : lists) {
    auto dictionary = std::make_shared<cMetaDictionary>();
    dictionary->Caption = list.name;
    for (const QString& value : list.values) dictionary->AddMeta(value);
    collection.Add(dictionary);
  }
  return collection;
}

/// The buffer without what platform.ini holds.
SettingsBuffer personalPart(SettingsBuffer buffer) {
  buffer.personName.clear();
  buffer.calendars.clear();
  buffer.openCalendar.clear();
  buffer.keepInCalendar = false;
  return buffer;
}

const CalendarEntry* openCalendarOf(const SettingsBuffer& buffer) {
  for (const CalendarEntry& entry : buffer.calendars)
    if (entry.id == buffer.openCalendar) return &entry;
  return nullptr;
}

}  // namespace

SettingsStore::SettingsStore(QString folder) : folder_(std::move(folder)) {}

QString SettingsStore::configurationFile() const {
  return QDir(folder_).filePath(u"platform.ini"_s);
}

QString SettingsStore::registryFile() const {
  return QDir(folder_).filePath(u"registry.ini"_s);
}

QString SettingsStore::connectionFolder() const {
  return QDir(folder_).filePath(u"server"_s);
}

CalendarEntry SettingsStore::absolute(CalendarEntry entry) const {
  if (!entry.path.isEmpty()) entry.path = QDir::cleanPath(QDir(folder_).absoluteFilePath(entry.path));
  return entry;
}

// Reading

SettingsStore::Outside SettingsStore::look() {
  return {readOrMissing(configurationFile()), readOrMissing(registryFile()), keptTagOf(read_.buffer)};
}

QString SettingsStore::keptTagOf(const SettingsBuffer& buffer) const {
  const CalendarEntry* open = openCalendarOf(buffer);
  return open ? AppointmentCopy(absolute(*open)).read().tag : QString();
}

ReadSettings SettingsStore::read() {
  read_ = {};
  takenFrom_.clear();
  storedValue_.clear();
  overwrite_ = false;
  read_.buffer = defaultSettings();
  outside_.configuration = readOrMissing(configurationFile());
  outside_.registry = readOrMissing(registryFile());
  readConfiguration(read_);
  readRegistry(read_);
  readKept(read_);
  outside_.keptTag = keptTagOf(read_.buffer);
  return read_;
}

void SettingsStore::readConfiguration(ReadSettings& read) {
  read.hasConfiguration = !outside_.configuration.missing;
  SettingsBuffer& buffer = read.buffer;
  if (read.hasConfiguration) {
    QString error;
    const auto draft = readDraft(outside_.configuration.bytes, &error);
    if (!draft) throw Failure(platform::failure::typeMismatch, configurationFile() + u": "_s + error);
    buffer.personName = personIn(draft->mailboxName);
    buffer.calendars = draft->calendars;
    buffer.openCalendar = draft->openCalendar;
    // without one the report program opens the first
    if (buffer.openCalendar.isEmpty() && !buffer.calendars.isEmpty())
      buffer.openCalendar = buffer.calendars.first().id;
  }
  if (buffer.personName.isEmpty()) {
    const QString user = platform::process::Process::current().expandEnvironment(u"%USERNAME%"_s);
    if (!user.contains(u'%')) buffer.personName = user;
  }
}

void SettingsStore::readRegistry(ReadSettings& read) {
  const RegistryText registry(outside_.registry.bytes, registryFile());
  read.hasSettings = registry.has(u"ReportChoice"_s);
  const auto product = freshSettings();
  cPersonalSettings& usual = *product;
  if (!read.hasSettings) {
    take(read.buffer, read.notes, usual);
    read.buffer.databaseFolder = QDir::home().filePath(u"Hourbook"_s);
    return;
  }
  SettingsBuffer& buffer = read.buffer;
  const auto boolean = [&](const QString& name, Field field) {
    return registry.boolean(name, field, read.notes);
  };
  buffer.filterEvents = boolean(u"FilterEvents"_s, Field::Filters);
  buffer.filterPrivate = boolean(u"FilterPrivate"_s, Field::Filters);
  buffer.filterRecurring = boolean(u"FilterRecurring"_s, Field::Filters);
  buffer.convert24 = boolean(u"Convert24"_s, Field::Convert24Hours);
  buffer.removeLunch = boolean(u"RemoveLunch"_s, Field::RemoveLunchHours);
  buffer.startGrid = boolean(u"StartGrid"_s, Field::StartGrid);
  buffer.createLocalCube = boolean(u"CreateLocalCube"_s, Field::Filters);
  buffer.writeSubject = boolean(u"WriteSubject"_s, Field::Filters);
  const auto number = [&](const QString& name, Field field, const QString& usualText) {
    return registry.number(name, field, usualText, read.notes);
  };
  buffer.personalRate = number(u"PersonalRate"_s, Field::PersonalRate, buffer.personalRate);
  buffer.convert24Hours = number(u"Convert24Hours"_s, Field::Convert24Hours, buffer.convert24Hours);
  buffer.removeLunchHours = number(u"RemoveLunchHours"_s, Field::RemoveLunchHours, buffer.removeLunchHours);
  buffer.reportChoice = CLng(number(u"ReportChoice"_s, Field::ReportChoice, QString::number(reportToAccess)));
  usual.ReportChoice = buffer.reportChoice;
  const QString value = registry.text(u"ReportValue"_s, usual.ReportValue);
  readTarget(read, value);
  if (buffer.reportChoice == reportToSqlServer) storedValue_ = value;
  const QString lists = registry.text(u"MetadataList"_s, {});
  guarded([&] { usual.subPopulateMetadataList(lists); });
  buffer.lists = namedLists(usual.MetaDataLists);
  if (buffer.lists.isEmpty() && !lists.isEmpty())
    read.notes.append({Field::Lists, texts::listUnreadable.arg(lists.left(100))});
}

void SettingsStore::readTarget(ReadSettings& read, const QString& value) const {
  SettingsBuffer& buffer = read.buffer;
  if (buffer.reportChoice == reportToAccess) {
    buffer.databaseFolder = QDir::cleanPath(platform::scripting::systemPath(fncStripSlash(value)));
  } else if (buffer.reportChoice == reportToSqlServer && value.startsWith(connectionBeginning)) {
    readServer(read, value);
  } else if (buffer.reportChoice == reportToSqlServer) {
    const QString file =
        QDir(platform::scripting::systemPath(fncStripSlash(value))).filePath(connectionFileName);
    const files::ReadResult connection = files::readFile(file);
    if (connection.ok)
      readServer(read, QString::fromUtf8(connection.bytes));
    else
      read.notes.append({Field::Server, connection.error});
  } else {
    buffer.otherTarget = value;
  }
}

void SettingsStore::readServer(ReadSettings& read, const QString& text) const {
  takeServerText(read.buffer, text);
  if (!read.buffer.serverByText) return;
  const QString problem = connectionTextProblem(text);
  if (!problem.isEmpty()) read.notes.append({Field::ConnectionText, problem});
}

/// Where the registry has no settings, those that the calendar has brought along count.
void SettingsStore::readKept(ReadSettings& read) {
  const CalendarEntry* open = openCalendarOf(read.buffer);
  if (!open) return;
  KeptSettings kept;
  if (read.hasSettings) {
    kept = AppointmentCopy(absolute(*open)).read();
    read.buffer.keepInCalendar = kept.state == State::Intact || kept.state == State::Torn;
  } else {
    kept = takeOver(read.buffer, absolute(*open));
  }
  if (open->readOnly) read.buffer.keepInCalendar = false;
  read.kept = kept.state;
  if (kept.state == State::Torn)
    read.notes.append({Field::KeepInCalendar,
                       (read.hasSettings ? texts::keepTorn : texts::keepTornAndUsed).arg(kept.reason)});
}

KeptSettings SettingsStore::takeOver(SettingsBuffer& buffer, const CalendarEntry& calendar) {
  KeptSettings kept = AppointmentCopy(absolute(calendar)).read();
  if (kept.state != State::Intact) return kept;
  takenFrom_ = absolute(calendar).path;
  ReadSettings taken;
  taken.buffer = buffer;
  take(taken.buffer, taken.notes, *kept.settings);
  taken.buffer.reportChoice = kept.settings->ReportChoice;
  readTarget(taken, kept.settings->ReportValue);
  buffer = taken.buffer;
  return kept;
}

std::optional<CalendarEntry> SettingsStore::replacedCopy(const SettingsBuffer& buffer) const {
  const CalendarEntry* open = openCalendarOf(buffer);
  if (!open || open->readOnly || !buffer.keepInCalendar) return std::nullopt;
  const QString path = absolute(*open).path;
  const CalendarEntry* before = openCalendarOf(read_.buffer);
  if (path == takenFrom_ || (before && absolute(*before).path == path)) return std::nullopt;
  const KeptSettings kept = AppointmentCopy(absolute(*open)).read();
  if (kept.state != State::Intact) return std::nullopt;
  const auto settings = freshSettings();
  fill(*settings, buffer);
  return kept.text == settings->fncBuildBody() ? std::nullopt : std::optional(*open);
}

/// All but the target.
void SettingsStore::take(SettingsBuffer& buffer, QList<FieldText>&, const cPersonalSettings& settings) const {
  buffer.filterPrivate = settings.FilterPrivate;
  buffer.filterRecurring = settings.FilterRecurring;
  buffer.filterEvents = settings.FilterEvents;
  buffer.convert24 = settings.Convert24;
  buffer.convert24Hours = CStr(settings.Convert24Hours);
  buffer.removeLunch = settings.RemoveLunch;
  buffer.removeLunchHours = CStr(settings.RemoveLunchHours);
  buffer.startGrid = settings.StartGrid;
  buffer.createLocalCube = settings.CreateLocalCube;
  buffer.writeSubject = settings.WriteSubject;
  buffer.personalRate = CStr(settings.PersonalRate);
  buffer.lists = namedLists(settings.MetaDataLists);
}

// Changes by others

QStringList SettingsStore::changedOutside() {
  const Outside now = look();
  QStringList changed;
  if (now.configuration.fingerprint.hash != outside_.configuration.fingerprint.hash)
    changed.append(texts::placeConfiguration);
  if (now.registry.fingerprint.hash != outside_.registry.fingerprint.hash)
    changed.append(texts::placeRegistry);
  if (now.keptTag != outside_.keptTag) changed.append(texts::placeAppointment);
  return changed;
}

void SettingsStore::acceptOutside() {
  outside_ = look();
  overwrite_ = true;
}

// Saving

void SettingsStore::save(const SettingsBuffer& buffer, const std::function<void()>& last) {
  Undo undo;
  try {
    steps(undo, buffer);
    if (last) last();
  } catch (const Failure& failure) {
    const QStringList left = undo.takeBack();
    if (left.isEmpty()) throw;
    throw Failure(failure.number(), failure.description() + u' ' + texts::undoFailed.arg(left.join(u"; "_s)),
                  failure.source());
  }
  // what was written is what the next save begins with
  SettingsBuffer saved = buffer;
  saved.makeDatabase = false;
  storedValue_ = buffer.reportChoice == reportToSqlServer ? reportValue(buffer) : QString();
  read_ = {saved, {}, true, true, read_.kept};
  overwrite_ = false;
  tolerate([this] { outside_ = look(); });
}

void SettingsStore::steps(Undo& undo, const SettingsBuffer& buffer) {
  stepMakeFolder(undo, folder_, true);
  if (buffer.reportChoice == reportToAccess && buffer.makeDatabase)
    stepMakeDatabase(undo, QDir::cleanPath(buffer.databaseFolder));
  writeConnectionFile(undo, buffer);
  writeKept(undo, buffer);
  writeConfiguration(undo, buffer);
  writeRegistry(undo, buffer);
}

void SettingsStore::writeConfiguration(Undo& undo, const SettingsBuffer& buffer) const {
  QString error;
  ConfigurationDraft draft = readDraft(outside_.configuration.bytes, &error).value_or(ConfigurationDraft{});
  // a mailbox of another form stays as it is while the name does
  if (buffer.personName != read_.buffer.personName || draft.mailboxName.isEmpty())
    draft.mailboxName = mailboxPrefix + buffer.personName;
  draft.calendars = buffer.calendars;
  const bool opensFirst = draft.openCalendar.isEmpty() && !buffer.calendars.isEmpty() &&
                          buffer.calendars.first().id == buffer.openCalendar && read_.hasConfiguration;
  if (!opensFirst) draft.openCalendar = buffer.openCalendar;
  const auto bytes = withDraft(outside_.configuration.bytes, draft, &error);
  if (!bytes) throw Failure(platform::failure::typeMismatch, configurationFile() + u": "_s + error);
  if (!outside_.configuration.missing && *bytes == outside_.configuration.bytes) return;
  stepWriteFile(undo, configurationFile(), *bytes, outside_.configuration.fingerprint,
                files::FileMode::Usual);
}

/// A connection that nobody has changed here stays where it stands and as it is written there; but for a
/// password among the settings.
bool SettingsStore::isServerAsStored(const SettingsBuffer& buffer) const {
  const SettingsBuffer& read = read_.buffer;
  if (storedValue_.isEmpty() || buffer.reportChoice != reportToSqlServer ||
      read.reportChoice != reportToSqlServer || connectionText(buffer) != connectionText(read))
    return false;
  return !storedValue_.startsWith(connectionBeginning) || !holdsPassword(storedValue_);
}

/// A password stands in the connection file alone, and the settings name its folder: the copy in the calendar
/// may travel to other machines.
QString SettingsStore::reportValue(const SettingsBuffer& buffer) const {
  if (isServerAsStored(buffer)) return storedValue_;
  switch (buffer.reportChoice) {
    case reportToAccess:
      return buffer.databaseFolder.isEmpty() ? QString() : QDir::cleanPath(buffer.databaseFolder) + u'\\';
    case reportToSqlServer: {
      const QString text = connectionText(buffer);
      return holdsPassword(text) ? connectionFolder() + u'\\' : text;
    }
    default:
      return buffer.otherTarget;
  }
}

void SettingsStore::writeConnectionFile(Undo& undo, const SettingsBuffer& buffer) const {
  const QString file = QDir(connectionFolder()).filePath(connectionFileName);
  if (buffer.reportChoice != reportToSqlServer || reportValue(buffer) != connectionFolder() + u'\\') {
    stepRemoveFile(undo, file);
    return;
  }
  if (isServerAsStored(buffer)) return;
  stepMakeFolder(undo, connectionFolder(), true);
  stepWriteFile(undo, file, connectionText(buffer).toUtf8(), readOrMissing(file).fingerprint,
                files::FileMode::OwnerOnly);
}

void SettingsStore::fill(cPersonalSettings& settings, const SettingsBuffer& buffer) const {
  settings.MetaDataLists = collectionOf(buffer.lists);
  settings.PersonalRate = CCur(buffer.personalRate.trimmed());
  settings.FilterPrivate = buffer.filterPrivate;
  settings.FilterRecurring = buffer.filterRecurring;
  settings.FilterEvents = buffer.filterEvents;
  settings.ReportChoice = buffer.reportChoice;
  settings.ReportValue = reportValue(buffer);
  settings.Convert24 = buffer.convert24;
  settings.Convert24Hours = CStr(CDbl(buffer.convert24Hours.trimmed()));
  settings.RemoveLunch = buffer.removeLunch;
  settings.RemoveLunchHours = CStr(CDbl(buffer.removeLunchHours.trimmed()));
  settings.CreateLocalCube = buffer.createLocalCube;
  settings.StartGrid = buffer.startGrid;
  settings.WriteSubject = buffer.writeSubject;
}

void SettingsStore::writeKept(Undo& undo, const SettingsBuffer& buffer) const {
  const CalendarEntry* open = openCalendarOf(buffer);
  if (!open || open->readOnly || !buffer.keepInCalendar) return;
  const auto settings = freshSettings();
  fill(*settings, buffer);
  AppointmentCopy copy(absolute(*open));
  const KeptSettings kept = copy.read();
  const bool same = personalPart(buffer) == personalPart(read_.buffer) && kept.state == State::Intact &&
                    kept.text == settings->fncBuildBody();
  if (!same) copy.write(undo, *settings);
}

void SettingsStore::writeRegistry(Undo& undo, const SettingsBuffer& buffer) const {
  const bool same = personalPart(buffer) == personalPart(read_.buffer);
  if (read_.hasSettings && read_.notes.isEmpty() && same && !overwrite_) return;
  const auto settings = freshSettings();
  fill(*settings, buffer);
  const QByteArray bytes = registryWith(outside_.registry.bytes, *settings);
  if (bytes == outside_.registry.bytes) return;
  stepWriteFile(undo, registryFile(), bytes, outside_.registry.fingerprint, files::FileMode::OwnerOnly);
}

}  // namespace hourbook

#include "platform/calendar/icalendar/icalendarstore.h"

#include "platform/basic/clock.h"
#include "platform/basic/failure.h"
#include "platform/calendar/icalendar/emptyguard.h"
#include "platform/calendar/icalendar/holding.h"
#include "platform/calendar/icalendar/index/indexedsource.h"
#include "platform/calendar/icalendar/limits.h"
#include "platform/calendar/icalendar/transaction.h"
#include "platform/files/backups.h"

#include <QFileInfo>

#include <limits>
#include <tuple>

namespace platform::calendar {
namespace {

bool before(const Item& a, const Item& b) {
  if (a.start.isValid() != b.start.isValid()) return b.start.isValid();
  if (a.start.isValid() && a.start != b.start) return a.start < b.start;
  const auto rest = [](const Item& i) {
    return std::tie(i.subject, i.key.uid, i.key.recurrenceId, i.key.place);
  };
  return rest(a) < rest(b);
}

std::unique_ptr<icalendar::EventSource> sourceOf(const IcalendarFolder& folder, const QString& indexFolder) {
  if (indexFolder.isEmpty()) return std::make_unique<icalendar::FileCache>(folder.path, folder.name);
  icalendar::IndexOptions options;
  options.cacheFolder = indexFolder;
  return std::make_unique<icalendar::IndexedSource>(folder.path, folder.name, options);
}

QTimeZone zoneOf(const Change& change) {
  return change.start && change.start->timeSpec() == Qt::TimeZone ? change.start->timeZone()
                                                                  : basic::Clock::current().zone();
}

}  // namespace

struct IcalendarStore::Calendar {
  Calendar(IcalendarFolder folder, const QString& indexFolder, IcalendarSafety given)
      : config(std::move(folder)),
        safety(std::move(given)),
        source(sourceOf(config, indexFolder)),
        guard(safety.stateFolder, config.path) {
    writer.mayChange = [this] { refuseSuddenlyEmpty(); };
    writer.beforeWriting = [this](const QString& name) { keepCopy(source->pathOf(name)); };
    writer.afterWriting = [this] { noteCount(); };
  }

  [[noreturn]] void fail(qint32 number, const QString& text) const {
    throw Failure(number, QStringLiteral("Calendar \"%1\": %2").arg(config.name, text),
                  QStringLiteral("IcalendarStore"));
  }
  void refuseReadOnly() const {
    if (config.readOnly)
      fail(errAccessDenied, QStringLiteral("\"%1\" is set up to be read only.").arg(config.path));
  }
  bool isWritable() const {
    if (config.readOnly) return false;
    const QFileInfo place = icalendar::reached(config.path);
    return icalendar::mayBeWritten(place) &&
           (place.isDir() || icalendar::mayBeWritten(QFileInfo(place.absolutePath())));
  }

  void noteCount();
  void refuseSuddenlyEmpty();
  void keepCopy(const QString& path);

  IcalendarFolder config;
  IcalendarSafety safety;
  std::unique_ptr<icalendar::EventSource> source;
  icalendar::FileWriter writer{*source, config.name};
  icalendar::ZoneBook zones;
  icalendar::Holding events{*source, writer, zones, config.name};  // what is read and written through
  icalendar::EmptyGuard guard;
  bool copied = false;  // before the first write
  QList<Problem> uncopied;
  QList<Problem> noted;  // while the last query was answered
};

/// What was read or written stands, whether it can be counted now or not.
void IcalendarStore::Calendar::noteCount() try {
  guard.saw(source->countUpTo(icalendar::EmptyGuard::many + 1));
} catch (const Failure&) {
}

void IcalendarStore::Calendar::refuseSuddenlyEmpty() {
  if (!guard.hadMany() || !guard.isSuddenlyEmpty(source->countUpTo(1))) return;
  const QString text = QStringLiteral("\"%1\" had more than %2 appointments and shows none now.")
                           .arg(config.path)
                           .arg(icalendar::EmptyGuard::many);
  if (safety.mayWriteEmptied && safety.mayWriteEmptied(text + QStringLiteral(" May it be written to?")))
    return guard.confirm();
  fail(errSuddenlyEmpty, text + QStringLiteral(" Nothing was written to it."));
}

/// Of a file whose content is not compared before it is replaced. The user's change does not wait for it: it
/// is the calendar that counts.
void IcalendarStore::Calendar::keepCopy(const QString& path) {
  if (copied || safety.stateFolder.isEmpty() || source->isFolder() ||
      QFileInfo(path).size() < icalendar::minBackupBytes)
    return;
  copied = true;
  const QString error = files::keepBackup(path, safety.stateFolder + QStringLiteral("/backups"));
  if (!error.isEmpty())
    uncopied = {{QFileInfo(path).fileName(), 0, QStringLiteral("No copy was kept of it: %1").arg(error)}};
}

IcalendarStore::IcalendarStore(QList<IcalendarFolder> folders, const QString& indexFolder,
                               const IcalendarSafety& safety) {
  for (IcalendarFolder& folder : folders)
    calendars_.push_back(std::make_unique<Calendar>(std::move(folder), indexFolder, safety));
}

IcalendarStore::~IcalendarStore() = default;

IcalendarStore::Calendar& IcalendarStore::calendar(const QString& id) {
  for (const auto& calendar : calendars_)
    if (calendar->config.id == id) return *calendar;
  throw Failure(errNotFound, QStringLiteral("There is no calendar \"%1\".").arg(id),
                QStringLiteral("IcalendarStore"));
}

QList<FolderInfo> IcalendarStore::folders() {
  QList<FolderInfo> list;
  for (const auto& calendar : calendars_) {
    const IcalendarFolder& config = calendar->config;
    list.append({config.id, config.name, config.storeName, true, !calendar->isWritable()});
  }
  return list;
}

QList<Item> IcalendarStore::items(const QString& folder, const Query& query) {
  Calendar& from = calendar(folder);
  if (query.expandSeries && (!query.startFrom.isValid() || !query.startTo.isValid()))
    from.fail(failure::invalidProcedureCall,
              QStringLiteral("series can only be expanded between two dates."));
  from.noted.clear();
  const qint64 first =
      query.startFrom.isValid() ? query.startFrom.toMSecsSinceEpoch() : std::numeric_limits<qint64>::min();
  const qint64 last =
      query.startTo.isValid() ? query.startTo.toMSecsSinceEpoch() : std::numeric_limits<qint64>::max();
  const bool bounded = query.startFrom.isValid() || query.startTo.isValid();
  const QList<icalendar::Group> groups = !query.uid.isEmpty()
                                             ? QList<icalendar::Group>{from.events.withUid(query.uid)}
                                         : query.subject && !bounded ? from.events.withSubject(*query.subject)
                                                                     : from.events.between(first, last);
  QList<Item> found;
  icalendar::Expansion expansion(from.zones, query, &from.noted);
  for (const icalendar::Group& group : groups) expansion.add(group, found);
  std::stable_sort(found.begin(), found.end(), before);
  if (!from.guard.hadMany()) from.noteCount();
  return found;
}

Item IcalendarStore::save(const QString& folder, const ItemKey& key, const QString& tag,
                          const Change& change) {
  Calendar& into = calendar(folder);
  into.refuseReadOnly();
  into.events.makeRoom();
  icalendar::Transaction transaction(into.events, into.events, into.zones, into.config.name, zoneOf(change));
  return key.uid.isEmpty() ? transaction.create(change) : transaction.save(key, tag, change);
}

void IcalendarStore::remove(const QString& folder, const ItemKey& key, const QString& tag) {
  Calendar& from = calendar(folder);
  from.refuseReadOnly();
  from.events.makeRoom();
  icalendar::Transaction(from.events, from.events, from.zones, from.config.name,
                         basic::Clock::current().zone())
      .remove(key, tag);
}

QString IcalendarStore::changeTag(const QString& folder) {
  return calendar(folder).events.changeTag();
}

QString IcalendarStore::othersTag(const QString& folder, Look look) {
  return calendar(folder).events.othersTag(look);
}

QList<Problem> IcalendarStore::problems(const QString& folder) {
  Calendar& of = calendar(folder);
  return of.events.problems() + of.noted + of.uncopied;
}

void IcalendarStore::hold() {
  for (const auto& calendar : calendars_) calendar->events.hold();
}

QList<Unwritten> IcalendarStore::flush() {
  QList<Unwritten> unwritten;
  for (const auto& calendar : calendars_)
    for (const icalendar::Holding::Missed& missed : calendar->events.flush())
      unwritten.append({calendar->config.id, missed.key, missed.failure});
  return unwritten;
}

}  // namespace platform::calendar

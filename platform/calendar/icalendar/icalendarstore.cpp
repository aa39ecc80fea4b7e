#include "platform/calendar/icalendar/icalendarstore.h"

#include "platform/basic/clock.h"
#include "platform/basic/failure.h"
#include "platform/calendar/icalendar/transaction.h"

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

QTimeZone zoneOf(const Change& change) {
  return change.start && change.start->timeSpec() == Qt::TimeZone ? change.start->timeZone()
                                                                  : basic::Clock::current().zone();
}

}  // namespace

struct IcalendarStore::Calendar {
  explicit Calendar(IcalendarFolder folder) : config(std::move(folder)), cache(config.path, config.name) {}

  [[noreturn]] void fail(qint32 number, const QString& text) const {
    throw Failure(number, QStringLiteral("Calendar \"%1\": %2").arg(config.name, text),
                  QStringLiteral("IcalendarStore"));
  }
  void refuseReadOnly() const {
    if (config.readOnly)
      fail(errAccessDenied, QStringLiteral("\"%1\" is set up to be read only.").arg(config.path));
  }
  bool isWritable() const {
    const QFileInfo info(config.path);
    return !config.readOnly && (!info.exists() || info.isWritable());
  }

  IcalendarFolder config;
  icalendar::FileCache cache;
  icalendar::ZoneBook zones;
  QList<Problem> noted;  // while the last query was answered
};

IcalendarStore::IcalendarStore(QList<IcalendarFolder> folders) {
  for (IcalendarFolder& folder : folders) calendars_.push_back(std::make_unique<Calendar>(std::move(folder)));
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
  const QList<icalendar::Group> groups = query.uid.isEmpty()
                                             ? from.cache.between(first, last)
                                             : QList<icalendar::Group>{from.cache.withUid(query.uid)};
  QList<Item> found;
  icalendar::Expansion expansion(from.zones, query, &from.noted);
  for (const icalendar::Group& group : groups) expansion.add(group, found);
  std::stable_sort(found.begin(), found.end(), before);
  return found;
}

Item IcalendarStore::save(const QString& folder, const ItemKey& key, const QString& tag,
                          const Change& change) {
  Calendar& into = calendar(folder);
  into.refuseReadOnly();
  icalendar::Transaction transaction(into.cache, into.zones, into.config.name, zoneOf(change));
  return key.uid.isEmpty() ? transaction.create(change) : transaction.save(key, tag, change);
}

void IcalendarStore::remove(const QString& folder, const ItemKey& key, const QString& tag) {
  Calendar& from = calendar(folder);
  from.refuseReadOnly();
  icalendar::Transaction(from.cache, from.zones, from.config.name, basic::Clock::current().zone())
      .remove(key, tag);
}

QString IcalendarStore::changeTag(const QString& folder) {
  return calendar(folder).cache.changeTag();
}

QList<Problem> IcalendarStore::problems(const QString& folder) {
  Calendar& of = calendar(folder);
  return of.cache.problems() + of.noted;
}

}  // namespace platform::calendar

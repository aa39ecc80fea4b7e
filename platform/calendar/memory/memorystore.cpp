#include "platform/calendar/memory/memorystore.h"

#include "platform/basic/clock.h"
#include "platform/basic/failure.h"
#include "platform/calendar/wallclock.h"

#include <algorithm>
#include <tuple>

using namespace Qt::StringLiterals;

namespace platform::calendar {

namespace {

/// A stored time as the viewer's clocks show it.
QDateTime seen(const QDateTime& time, bool allDay, const QTimeZone& zone) {
  if (!time.isValid()) return {};
  if (allDay) return instantAt(time.date(), QTime(0, 0), zone);
  if (time.timeSpec() == Qt::LocalTime) return instantAt(time.date(), time.time(), zone);
  return time.toTimeZone(zone);
}

/// A moment in the form in which the item keeps its times.
QDateTime keptLike(const QDateTime& pattern, const QDateTime& moment) {
  if (!pattern.isValid()) return moment;
  if (pattern.timeSpec() == Qt::LocalTime) return QDateTime(moment.date(), moment.time(), Qt::LocalTime);
  if (pattern.timeSpec() == Qt::TimeZone) return moment.toTimeZone(pattern.timeZone());
  if (pattern.timeSpec() == Qt::UTC) return moment.toUTC();
  return moment.toOffsetFromUtc(pattern.offsetFromUtc());
}

bool before(const Item& a, const Item& b) {
  if (a.start != b.start) return a.start < b.start;
  const auto rest = [](const Item& i) {
    return std::tie(i.subject, i.key.uid, i.key.recurrenceId, i.key.place);
  };
  return rest(a) < rest(b);
}

void applyTimes(Item& item, const Change& change) {
  const int minutes = change.durationMinutes.value_or(item.durationMinutes());
  const bool allDay = change.allDay.value_or(item.allDay);
  if (!change.start && !change.durationMinutes && allDay == item.allDay) return;
  QDateTime start = item.start;
  if (allDay)
    start = QDateTime(change.start ? change.start->date() : start.date(), QTime(0, 0), Qt::LocalTime);
  else if (change.start)
    start = item.allDay ? *change.start : keptLike(item.start, *change.start);
  item.start = start;
  item.end = allDay ? start.addDays(qMax(1, (minutes + 1439) / 1440)) : start.addSecs(qint64(minutes) * 60);
  item.allDay = allDay;
}

void applyTexts(Item& item, const Change& change) {
  if (change.subject) item.subject = *change.subject;
  if (change.body) item.body = *change.body;
  if (change.sensitivity) item.sensitivity = *change.sensitivity;
  if (change.categories) {
    item.categories = *change.categories;
    item.categoriesText = QString();
  }
  if (change.categoriesText)
    item.categoriesText = change.categoriesText->isNull() ? u""_s : *change.categoriesText;
  if (change.billingInformation) item.billingInformation = *change.billingInformation;
  for (auto property = change.userProperties.cbegin(); property != change.userProperties.cend(); ++property)
    item.userProperties.insert(property.key(), property.value());
}

void apply(Item& item, const Change& change) {
  applyTimes(item, change);
  applyTexts(item, change);
}

[[noreturn]] void failFor(qint32 number, const QString& folder, const QString& what) {
  throw Failure(number, u"%1 (calendar \"%2\")"_s.arg(what, folder), u"MemoryStore"_s);
}

void refuseReadOnly(const FolderInfo& folder) {
  if (folder.readOnly) failFor(errAccessDenied, folder.name, u"The calendar is read-only."_s);
}

void checkTag(const FolderInfo& folder, const Item& item, const QString& tag) {
  if (item.tag != tag)
    failFor(errChangedMeanwhile, folder.name,
            u"\"%1\" has been changed by another program meanwhile."_s.arg(item.subject));
}

}  // namespace

QString MemoryStore::addFolder(FolderInfo info) {
  if (info.id.isEmpty()) info.id = u"memory:%1"_s.arg(folders_.size() + 1);
  folders_.append({info, {}, {}, 0, 0});
  return info.id;
}

ItemKey MemoryStore::add(const QString& folder, Item item) {
  item.kind = Kind::Single;
  return insert(changedByAnother(folder), {std::move(item), {}, {}, false});
}

ItemKey MemoryStore::addSeries(const QString& folder, Item master, const Recurrence& rule) {
  master.kind = Kind::Master;
  return insert(changedByAnother(folder), {std::move(master), rule, {}, false});
}

ItemKey MemoryStore::addException(const QString& folder, const ItemKey& master, const QString& recurrenceId,
                                  Item changed) {
  changed.kind = Kind::Exception;
  changed.key = {master.place, master.uid, recurrenceId};
  return insert(changedByAnother(folder), {std::move(changed), {}, {}, false});
}

ItemKey MemoryStore::addMeetingRequest(const QString& folder, Item request,
                                       const std::optional<Item>& appointment) {
  Folder& target = changedByAnother(folder);
  Entry entry{std::move(request), {}, {}, false};
  entry.item.kind = Kind::Single;
  if (appointment) {
    Entry behind{*appointment, {}, {}, true};
    behind.item.kind = Kind::Single;
    entry.associated = insert(target, std::move(behind));
  }
  return insert(target, std::move(entry));
}

void MemoryStore::addProblem(const QString& folder, const Problem& problem) {
  folderOf(folder).problems.append(problem);
}

void MemoryStore::changeByAnother(const QString& folder, const ItemKey& key, const Change& change) {
  Folder& target = changedByAnother(folder);
  Entry* entry = find(target, key);
  if (!entry) {
    const Entry* master = masterOf(target, key);
    const std::optional<Item> item = master ? occurrence(*master, key.recurrenceId) : std::nullopt;
    if (!item) failFor(errNotFound, target.info.name, u"There is no item \"%1\"."_s.arg(key.uid));
    Entry made{*item, {}, {}, false};
    made.item.kind = Kind::Exception;
    insert(target, std::move(made));
    entry = find(target, key);
  }
  apply(entry->item, change);
  touch(target, *entry);
}

void MemoryStore::removeByAnother(const QString& folder, const ItemKey& key) {
  erase(changedByAnother(folder), key);
}

QList<FolderInfo> MemoryStore::folders() {
  QList<FolderInfo> list;
  for (const Folder& folder : std::as_const(folders_)) list.append(folder.info);
  return list;
}

QList<Item> MemoryStore::items(const QString& folder, const Query& query) {
  const Folder& from = folderOf(folder);
  if (query.expandSeries && (!query.startFrom.isValid() || !query.startTo.isValid()))
    failFor(failure::invalidProcedureCall, from.info.name,
            u"Series can only be expanded between two dates."_s);
  QList<Item> found;
  for (const Entry& entry : from.entries) collect(from, entry, query, found);
  found.removeIf([&](const Item& item) {
    return (query.startFrom.isValid() && item.start < query.startFrom) ||
           (query.startTo.isValid() && item.start > query.startTo) ||
           (query.subject && item.subject != *query.subject);
  });
  std::stable_sort(found.begin(), found.end(), before);
  return found;
}

Item MemoryStore::save(const QString& folder, const ItemKey& key, const QString& tag, const Change& change) {
  Folder& target = folderOf(folder);
  refuseReadOnly(target.info);
  const QTimeZone zone = change.start ? change.start->timeZone() : basic::Clock::current().zone();
  if (key.uid.isEmpty()) {
    if (!change.start || !change.start->isValid())
      failFor(failure::invalidProcedureCall, target.info.name, u"A new item needs a start."_s);
    Entry made;
    apply(made.item, change);
    return shown(target, *find(target, insert(target, std::move(made))), zone);
  }
  Entry& entry = openForChange(target, key, tag);
  apply(entry.item, change);
  touch(target, entry);
  return shown(target, entry, zone);
}

void MemoryStore::remove(const QString& folder, const ItemKey& key, const QString& tag) {
  Folder& target = folderOf(folder);
  refuseReadOnly(target.info);
  if (const Entry* entry = find(target, key)) {
    checkTag(target.info, entry->item, tag);
  } else {
    const Entry* master = masterOf(target, key);
    const std::optional<Item> item = master ? occurrence(*master, key.recurrenceId) : std::nullopt;
    if (!item) failFor(errNotFound, target.info.name, u"There is no item \"%1\"."_s.arg(key.uid));
    checkTag(target.info, *item, tag);
  }
  erase(target, key);
}

QString MemoryStore::changeTag(const QString& folder) {
  return QString::number(folderOf(folder).revision);
}

QString MemoryStore::othersTag(const QString& folder, Look) {
  return QString::number(folderOf(folder).byOthers);
}

QList<Problem> MemoryStore::problems(const QString& folder) {
  return folderOf(folder).problems;
}

MemoryStore::Folder& MemoryStore::folderOf(const QString& id) {
  for (Folder& folder : folders_)
    if (folder.info.id == id) return folder;
  failFor(errNotFound, id, u"There is no such calendar."_s);
}

MemoryStore::Entry* MemoryStore::find(Folder& folder, const ItemKey& key) {
  for (Entry& entry : folder.entries)
    if (entry.item.key == key) return &entry;
  return nullptr;
}

MemoryStore::Entry* MemoryStore::masterOf(Folder& folder, const ItemKey& key) {
  Entry* entry = key.recurrenceId.isEmpty() ? nullptr : find(folder, {key.place, key.uid, {}});
  return entry && entry->rule ? entry : nullptr;
}

MemoryStore::Folder& MemoryStore::changedByAnother(const QString& id) {
  Folder& folder = folderOf(id);
  ++folder.byOthers;
  return folder;
}

ItemKey MemoryStore::insert(Folder& folder, Entry entry) {
  if (entry.item.key.uid.isEmpty()) entry.item.key.uid = u"memory-%1"_s.arg(++counter_);
  touch(folder, entry);
  const ItemKey key = entry.item.key;
  folder.entries.append(std::move(entry));
  return key;
}

void MemoryStore::touch(Folder& folder, Entry& entry) {
  entry.item.tag = QString::number(++counter_);
  ++folder.revision;
}

/// An occurrence, changed or not, stays away from then on; a master takes its whole series along.
void MemoryStore::erase(Folder& folder, const ItemKey& key) {
  if (Entry* master = masterOf(folder, key)) {
    master->rule->excluded.append(key.recurrenceId);
    touch(folder, *master);
  }
  const bool wholeSeries = key.recurrenceId.isEmpty();
  folder.entries.removeIf([&](const Entry& entry) {
    const ItemKey& own = entry.item.key;
    return own == key || (wholeSeries && own.place == key.place && own.uid == key.uid);
  });
  ++folder.revision;
}

std::optional<Item> MemoryStore::occurrence(const Entry& master, const QString& recurrenceId) {
  for (const Slot& slot : slotsOf(*master.rule, master.item.start, master.item.allDay)) {
    if (slot.recurrenceId != recurrenceId) continue;
    Item item = master.item;
    const qint64 seconds = item.start.secsTo(item.end);
    const qint64 days = item.start.date().daysTo(item.end.date());
    if (item.start.timeSpec() == Qt::TimeZone && !item.allDay) {
      item.start = instantAt(slot.day, slot.time, item.start.timeZone());
      item.end = item.start.addSecs(seconds);
    } else {
      item.start.setDate(slot.day);
      item.end = item.allDay ? item.start.addDays(days) : item.start.addSecs(seconds);
    }
    item.kind = Kind::Occurrence;
    item.key.recurrenceId = recurrenceId;
    item.tag = master.item.tag + u'/' + recurrenceId;
    return item;
  }
  return std::nullopt;
}

/// The entry that a change goes into; for an unchanged occurrence a new exception of its series.
MemoryStore::Entry& MemoryStore::openForChange(Folder& folder, const ItemKey& key, const QString& tag) {
  if (Entry* entry = find(folder, key)) {
    checkTag(folder.info, entry->item, tag);
    return *entry;
  }
  const Entry* master = masterOf(folder, key);
  const std::optional<Item> item = master ? occurrence(*master, key.recurrenceId) : std::nullopt;
  if (!item) failFor(errNotFound, folder.info.name, u"The item is no longer in the calendar."_s);
  checkTag(folder.info, *item, tag);
  Entry made{*item, {}, {}, false};
  made.item.kind = Kind::Exception;
  folder.entries.append(std::move(made));
  return folder.entries.last();
}

void MemoryStore::collect(const Folder& folder, const Entry& entry, const Query& query,
                          QList<Item>& found) const {
  const bool asked = !query.uid.isEmpty();
  if (asked ? entry.item.key.uid != query.uid : entry.hidden) return;
  if (entry.item.kind == Kind::Exception && !query.expandSeries && !asked) return;
  if (!entry.rule || !query.expandSeries) {
    found.append(shown(folder, entry, query.zone));
    return;
  }
  for (const Slot& slot : slotsOf(*entry.rule, entry.item.start, entry.item.allDay)) {
    const ItemKey key{entry.item.key.place, entry.item.key.uid, slot.recurrenceId};
    const bool changed = std::any_of(folder.entries.cbegin(), folder.entries.cend(),
                                     [&](const Entry& other) { return other.item.key == key; });
    if (changed) continue;
    Entry single{*occurrence(entry, slot.recurrenceId), {}, {}, false};
    found.append(shown(folder, single, query.zone));
  }
}

Item MemoryStore::shown(const Folder& folder, const Entry& entry, const QTimeZone& zone) const {
  Item item = entry.item;
  item.start = seen(item.start, item.allDay, zone);
  item.end = seen(item.end, item.allDay, zone);
  if (entry.associated)
    for (const Entry& other : folder.entries)
      if (other.item.key == *entry.associated)
        item.associated = std::make_shared<Item>(shown(folder, other, zone));
  return item;
}

}  // namespace platform::calendar

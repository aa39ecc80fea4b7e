#include "platform/calendar/icalendar/transaction.h"

#include "platform/basic/clock.h"
#include "platform/basic/failure.h"

#include <QFileInfo>
#include <QRegularExpression>
#include <QUuid>

namespace platform::calendar::icalendar {
namespace {

constexpr int maxAttempts = 10;  // against a program that writes all the time

Query lookingFrom(const QTimeZone& zone) {
  Query query;
  query.zone = zone;
  return query;
}

QString fileNameOf(const QString& place) {
  static const QRegularExpression number(u"#\\d+$"_qs);
  return QString(place).remove(number);
}

struct Replacement {
  int offset = 0;
  int length = 0;
  QByteArray with;
};

/// The bytes of a file with some stretches replaced, everything else as it is.
QByteArray spliced(const QByteArray& bytes, QList<Replacement> replacements) {
  std::sort(replacements.begin(), replacements.end(),
            [](const Replacement& a, const Replacement& b) { return a.offset > b.offset; });
  QByteArray result = bytes;
  for (const Replacement& one : std::as_const(replacements)) {
    QByteArray with = one.with;
    if (one.length == 0 && !isLineStart(bytes, one.offset)) with.prepend(lineEndOf(bytes));
    result.replace(one.offset, one.length, with);
  }
  return result;
}

Replacement replacing(const Document& document, const Component& component, const QByteArray& with) {
  return {component.offset, component.end - component.offset, asItEnded(document, component, with)};
}

/// Whatever is neither the calendar around its entries nor a definition of a zone is something that somebody
/// keeps.
bool holdsEntries(const std::vector<Component>& components) {
  return std::any_of(components.begin(), components.end(), [](const Component& component) {
    if (component.name == "VCALENDAR") return holdsEntries(component.children);
    return component.name != "VTIMEZONE";
  });
}

const Component* lastCalendar(const Document& document) {
  const Component* last = nullptr;
  for (const Component& component : document.components)
    if (component.name == "VCALENDAR") last = &component;
  return last;
}

QString titleOf(const CalendarFile& file, const Event& event) {
  Item item;
  readTexts(file.document, *event.component, item);
  return item.subject.isEmpty() ? event.uid : item.subject;
}

}  // namespace

Transaction::Transaction(FileCache& cache, ZoneBook& book, QString label, const QTimeZone& zone)
    : cache_(cache),
      label_(std::move(label)),
      zone_(zone),
      now_(basic::Clock::current().now()),
      expansion_(book, lookingFrom(zone), &ignored_) {}

void Transaction::fail(qint32 number, const QString& text) const {
  throw Failure(number, QStringLiteral("Calendar \"%1\": %2").arg(label_, text),
                QStringLiteral("IcalendarStore"));
}

Transaction::Snapshot Transaction::open(const QString& name) const {
  const QString path = cache_.pathOf(name);
  const files::ReadResult result = files::readFile(path);
  if (!result.ok) {
    const QFileInfo info(path);
    fail(!info.exists() ? errNotFound : !info.isReadable() ? errAccessDenied : errStoreBroken, result.error);
  }
  return {cache_.parsed(name, result.bytes), result.fingerprint};
}

/// The rename that puts the new content in place would go through even where the file itself is
/// write-protected.
void Transaction::refuseProtected(const QString& path) const {
  constexpr QFile::Permissions anyWrite = QFile::WriteOwner | QFile::WriteGroup | QFile::WriteOther;
  const QFileInfo info(path);
  if (info.exists() && (!(info.permissions() & anyWrite) || !info.isWritable()))
    fail(errAccessDenied, QStringLiteral("\"%1\" is write-protected.").arg(path));
  const QFileInfo folder(info.absolutePath());
  if (folder.exists() && (!(folder.permissions() & anyWrite) || !folder.isWritable()))
    fail(errAccessDenied,
         QStringLiteral("nothing can be written in the folder \"%1\".").arg(folder.filePath()));
}

void Transaction::write(const QString& name, const Snapshot& snapshot, const QByteArray& bytes,
                        bool* again) const {
  const QString path = cache_.pathOf(name);
  refuseProtected(path);
  cache_.sweep();
  const bool nothingLeft = cache_.isFolder() && bytes.isEmpty();
  const files::WriteResult result = nothingLeft ? files::removeFile(path, snapshot.fingerprint)
                                                : files::replaceFile(path, bytes, snapshot.fingerprint);
  *again = result.outcome == files::Outcome::ChangedMeanwhile;
  if (result.outcome == files::Outcome::Failed) fail(errStoreBroken, result.error);
}

void Transaction::rewrite(const QString& name, const Edit& edit) {
  for (int attempt = 0; attempt < maxAttempts; ++attempt) {
    const Snapshot snapshot = open(name);
    const std::optional<QByteArray> bytes = edit(snapshot);
    if (!bytes || *bytes == snapshot.file->document.bytes) return;
    bool again = false;
    write(name, snapshot, *bytes, &again);
    cache_.written(name, {}, {});
    if (!again) return;
  }
  fail(errChangedMeanwhile,
       QStringLiteral("another program keeps changing \"%1\", so the change was not stored.")
           .arg(cache_.pathOf(name)));
}

/// The events of one UID in the whole folder, those of the file as they are at this moment.
Group Transaction::groupOf(const Snapshot& snapshot, const QString& uid) {
  Group group = cache_.withUid(uid);
  const auto old = [&](const EventRef& ref) { return ref.file->name == snapshot.file->name; };
  group.masters.removeIf(old);
  group.overrides.removeIf(old);
  for (const Event& event : snapshot.file->events)
    if (event.uid == uid)
      (event.isOverride() ? group.overrides : group.masters).append({snapshot.file, &event});
  return group;
}

Transaction::Target Transaction::choose(const QList<Target>& candidates, const ItemKey& key,
                                        const QString& tag) const {
  const auto described = [](const Target& target) {
    return target.occurrence ? target.occurrence->from : target.event;
  };
  const Target* best = nullptr;
  for (const Target& target : candidates) {
    const EventRef from = described(target);
    if (!tag.isEmpty() && from.file->tag(*from.event) != tag) continue;
    if (target.event.event->place == key.place) return target;
    if (!best && !tag.isEmpty()) best = &target;
  }
  if (best) return *best;
  const EventRef& present = candidates.first().event;
  fail(errChangedMeanwhile,
       QStringLiteral("another program has changed \"%1\" in \"%2\" meanwhile.")
           .arg(titleOf(*present.file, *present.event), cache_.pathOf(present.file->name)));
}

Transaction::Target Transaction::find(const Snapshot& snapshot, const Group& group, const ItemKey& key,
                                      const QString& tag) {
  QList<Target> candidates;
  const auto here = [&](const EventRef& ref) { return ref.file == snapshot.file; };
  if (key.recurrenceId.isEmpty()) {
    for (const EventRef& master : group.masters)
      if (here(master)) candidates.append({master, std::nullopt});
  } else {
    for (const EventRef& override : group.overrides)
      if (here(override) && expansion_.overrideId(group, override) == key.recurrenceId)
        candidates.append({override, std::nullopt});
    if (candidates.isEmpty())
      for (const EventRef& master : group.masters)
        if (here(master))
          if (const auto occurrence = expansion_.occurrence(group, master, key.recurrenceId))
            candidates.append({master, occurrence});
  }
  if (candidates.isEmpty())
    fail(errNotFound, QStringLiteral("the item \"%1\" is no longer in \"%2\".")
                          .arg(key.uid, cache_.pathOf(snapshot.file->name)));
  return choose(candidates, key, tag);
}

QByteArray Transaction::saved(const Snapshot& snapshot, const Group& group, const Target& target,
                              const Change& change) {
  Reader& reader = expansion_.reader();
  const QByteArray& bytes = snapshot.file->document.bytes;
  const Component& component = *target.event.event->component;
  const EventRef& from = target.occurrence ? target.occurrence->from : target.event;
  const Origin origin{*from.file, from.event->calendar, reader};
  if (target.event.event->isSeries() && !target.occurrence && change.start &&
      (!group.overrides.isEmpty() || !target.event.event->excluded.isEmpty() ||
       !target.event.event->moreStarts.isEmpty()))
    fail(errAccessDenied, QStringLiteral("the start of a series with exceptions cannot be changed."));
  ComponentEditor editor(target.occurrence ? overrideOf(*target.occurrence, target.event, reader)
                                           : wholeLines(snapshot.file->document, component));
  const QByteArray before = editor.bytes();
  try {
    applyChange(editor, change, origin, now_);
  } catch (const Failure& failure) {
    fail(failure.number(), QStringLiteral("\"%1\" in \"%2\": %3")
                               .arg(titleOf(*from.file, *from.event), cache_.pathOf(snapshot.file->name),
                                    failure.description()));
  }
  if (editor.bytes() == before) return bytes;
  if (!editor.isWhole())
    fail(errStoreBroken,
         QStringLiteral("\"%1\" cannot be changed without damage to \"%2\".")
             .arg(titleOf(*target.event.file, *target.event.event), cache_.pathOf(snapshot.file->name)));
  writtenTag_ = CalendarFile::tagOf(
      target.occurrence ? editor.bytes() : asItEnded(snapshot.file->document, component, editor.bytes()));
  if (target.occurrence) return spliced(bytes, {{component.end, 0, editor.bytes()}});
  return spliced(bytes, {replacing(snapshot.file->document, component, editor.bytes())});
}

Item Transaction::readBack(const QString& name, const QString& uid, const QString& recurrenceId,
                           const QString& place) {
  cache_.withUid(uid);  // takes in what was written, so that the snapshot finds it there
  const Snapshot snapshot = open(name);
  const Group group = groupOf(snapshot, uid);
  std::optional<Item> found;
  for (const EventRef& ref : recurrenceId.isEmpty() ? group.masters : group.overrides) {
    if (ref.file != snapshot.file || (found && ref.event->place != place)) continue;
    if (recurrenceId.isEmpty())
      found = expansion_.itemOf(ref, ref.event->isSeries() ? Kind::Master : Kind::Single, {});
    else if (expansion_.overrideId(group, ref) == recurrenceId)
      found = expansion_.itemOf(ref, Kind::Exception, recurrenceId);
  }
  if (found) return *found;
  for (const Event& event : snapshot.file->events)  // broken, but what was written is there
    if (snapshot.file->tag(event) == writtenTag_)
      return expansion_.itemOf({snapshot.file, &event}, event.isOverride() ? Kind::Exception : Kind::Single,
                               recurrenceId);
  for (const EventRef& master : group.masters)
    if (master.file == snapshot.file)
      if (const auto occurrence = expansion_.occurrence(group, master, recurrenceId))
        return expansion_.itemOf(*occurrence, *master.event, master.event->place, recurrenceId);
  fail(errNotFound, QStringLiteral("the item \"%1\" is no longer in \"%2\".").arg(uid, cache_.pathOf(name)));
}

Item Transaction::save(const ItemKey& key, const QString& tag, const Change& change) {
  const QString name = fileNameOf(key.place);
  QString uid = key.uid, place = key.place;
  rewrite(name, [&](const Snapshot& snapshot) -> std::optional<QByteArray> {
    const Group group = groupOf(snapshot, uid);
    const Target target = find(snapshot, group, key, tag);
    if (target.occurrence && !target.event.event->hasUid)
      fail(errAccessDenied,
           QStringLiteral("one occurrence of \"%1\" cannot be changed, because its series has no UID.")
               .arg(titleOf(*target.event.file, *target.event.event)));
    uid = target.event.event->uid;
    place = target.event.event->place;
    return saved(snapshot, group, target, change);
  });
  return readBack(name, uid, key.recurrenceId, place);
}

Item Transaction::create(const Change& change) {
  if (!change.start || !change.start->isValid())
    fail(failure::invalidProcedureCall, QStringLiteral("a new item needs a start."));
  const QString uid = QUuid::createUuid().toString(QUuid::WithoutBraces);
  const bool folder = cache_.isFolder();
  const QString name = folder ? uid + u".ics"_qs : QFileInfo(cache_.pathOf({})).fileName();
  const auto made = [&](const QByteArray& lineEnd) {
    ComponentEditor editor(emptyEvent(uid, now_, lineEnd));
    const CalendarFile nowhere;
    applyChange(editor, change, {nowhere, nullptr, expansion_.reader()}, now_);
    return editor.bytes();
  };
  if (folder) {
    bool again = false;
    write(name, {}, calendarAround(made("\r\n"), "\r\n"), &again);
    if (again) fail(errChangedMeanwhile, QStringLiteral("\"%1\" is there already.").arg(cache_.pathOf(name)));
    cache_.written(name, {}, {});
  } else {
    rewrite(name, [&](const Snapshot& snapshot) -> std::optional<QByteArray> {
      const Document& document = snapshot.file->document;
      const QByteArray lineEnd = lineEndOf(document.bytes);
      if (document.bytes.trimmed().isEmpty()) return calendarAround(made(lineEnd), lineEnd);
      const Component* calendar = lastCalendar(document);
      if (!calendar)
        fail(errStoreBroken,
             QStringLiteral("\"%1\" holds no calendar, so nothing is added.").arg(cache_.pathOf(name)));
      return spliced(document.bytes, {{calendar->bodyEnd, 0, made(lineEnd)}});
    });
  }
  return readBack(name, uid, {}, name);
}

/// The master of an override that stands in another file learns of the removal there.
void Transaction::excludeElsewhere(const EventRef& master, qint64 wall) {
  const QString uid = master.event->uid, place = master.event->place;
  rewrite(master.file->name, [&](const Snapshot& snapshot) -> std::optional<QByteArray> {
    const Group group = groupOf(snapshot, uid);
    for (const EventRef& now : group.masters) {
      if (now.file != snapshot.file || now.event->place != place || !now.event->isSeries()) continue;
      ComponentEditor editor(wholeLines(now.file->document, *now.event->component));
      excludeOccurrence(editor, now, expansion_.reader().timingOf(*now.file, *now.event), wall, now_);
      return spliced(snapshot.file->document.bytes,
                     {replacing(now.file->document, *now.event->component, editor.bytes())});
    }
    return std::nullopt;
  });
}

QByteArray Transaction::withoutOverride(const Snapshot& snapshot, const Group& group,
                                        const EventRef& override) {
  QList<Replacement> replacements{replacing(override.file->document, *override.event->component, {})};
  if (const EventRef* master = expansion_.masterOf(group, override)) {
    const Timing timing = expansion_.reader().timingOf(*master->file, *master->event);
    const qint64 wall =
        expansion_.reader().wallOn(timing, *override.file, *override.event, *override.event->recurrenceId);
    if (master->event->isSeries() && master->file == snapshot.file) {
      ComponentEditor editor(wholeLines(master->file->document, *master->event->component));
      excludeOccurrence(editor, *master, timing, wall, now_);
      replacements.append(replacing(master->file->document, *master->event->component, editor.bytes()));
    } else if (master->event->isSeries()) {
      excludeElsewhere(*master, wall);
    }
  }
  return spliced(snapshot.file->document.bytes, replacements);
}

QByteArray Transaction::withoutItem(const Snapshot& snapshot, const Group& group, const Target& target) {
  const QByteArray& bytes = snapshot.file->document.bytes;
  const Component& component = *target.event.event->component;
  if (target.occurrence) {
    ComponentEditor editor(wholeLines(snapshot.file->document, component));
    excludeOccurrence(editor, target.event,
                      expansion_.reader().timingOf(*target.event.file, *target.event.event),
                      target.occurrence->id, now_);
    return spliced(bytes, {replacing(snapshot.file->document, component, editor.bytes())});
  }
  if (target.event.event->isOverride()) return withoutOverride(snapshot, group, target.event);
  QList<Replacement> replacements{replacing(snapshot.file->document, component, {})};
  const auto here = [&](const EventRef& ref) { return ref.file == snapshot.file; };
  if (std::count_if(group.masters.begin(), group.masters.end(), here) ==
      1)  // its changed occurrences go along
    for (const EventRef& override : group.overrides)
      if (here(override))
        replacements.append(replacing(override.file->document, *override.event->component, {}));
  return spliced(bytes, replacements);
}

void Transaction::remove(const ItemKey& key, const QString& tag) {
  rewrite(fileNameOf(key.place), [&](const Snapshot& snapshot) -> std::optional<QByteArray> {
    const Group group = groupOf(snapshot, key.uid);
    const QByteArray bytes = withoutItem(snapshot, group, find(snapshot, group, key, tag));
    if (cache_.isFolder() && !holdsEntries(scan(bytes, {}).components)) return QByteArray();
    return bytes;
  });
}

}  // namespace platform::calendar::icalendar

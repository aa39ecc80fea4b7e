#include "platform/calendar/icalendar/index/hits.h"

#include "platform/calendar/icalendar/editor.h"
#include "platform/calendar/icalendar/index/checksum.h"
#include "platform/calendar/icalendar/index/packs.h"
#include "platform/calendar/icalendar/limits.h"
#include "platform/calendar/icalendar/text.h"
#include "platform/calendar/icalendar/zones.h"

#include <algorithm>
#include <array>
#include <limits>

namespace platform::calendar::icalendar::index {
namespace {

constexpr qsizetype parsedFactor = 3;  // what a parsed file takes, in its bytes
constexpr int maxHeads = 64;           // of calendars, kept at once

quint64 keyOf(const std::array<quint64, 7>& parts) {
  return checksumOf({reinterpret_cast<const char*>(parts.data()), sizeof parts});
}

QSet<QString> zonesOf(const CalendarFile& part) {
  QSet<QString> names;
  const Event& event = part.events.front();
  const auto take = [&](const std::optional<DateValue>& value) {
    if (value && value->form == DateValue::Form::Zoned) names.insert(value->tzid);
  };
  take(event.start);
  take(event.end);
  take(event.recurrenceId);
  for (const Period& period : event.moreStarts) {
    take(period.start);
    take(period.end);
  }
  for (const DateValue& value : event.excluded) take(value);
  if (const auto own = firstOf(part.document, *event.calendar, "X-WR-TIMEZONE")) {
    names.insert(decoded(own->value).trimmed());
    names.insert(fromText(own->value).trimmed());
  }
  for (const Component& definition : event.calendar->children)
    if (definition.name == "VTIMEZONE")
      if (const auto id = firstOf(part.document, definition, "TZID"))
        names.insert(fromText(id->value).trimmed());
  return names;
}

}  // namespace

void Hits::forget() {
  heads_.clear();
  ++changes_;
}

Hits::HitFile& Hits::fileOf(qint64 id, QHash<qint64, HitFile>& files) {
  HitFile& file = files[id];
  if (file.id != 0) return file;
  Rows rows = database_.ask("SELECT name, stamp, form, content FROM file WHERE id = ?", id);
  if (!rows.next()) Database::failBroken("events without their file");
  file.id = id;
  file.name = rows.text(0);
  file.stamp = rows.bits(1);
  file.form = static_cast<Form>(rows.number(2));
  file.content = rows.bits(3);
  return file;
}

/// Where the events of these names stand.
QHash<qint64, Hits::HitFile> Hits::collect(const QSet<quint64>& uids) {
  QSet<qint64> homes;
  for (const quint64 uid : uids)
    for (const Home home : homesOf(database_, Search::Uid, uid)) homes.insert(home.number());
  QHash<qint64, HitFile> files;
  for (const qint64 number : std::as_const(homes)) {
    const Home home(number);
    const Pack pack = packAt(database_, home);
    if (home.isWholeFile()) {
      HitFile& file = fileOf(home.id(), files);
      for (const StoredEvent& event : pack)
        if (uids.contains(event.row.uid)) file.uids.insert(event.row.uid);
      continue;
    }
    Rows segment = database_.ask("SELECT file, start, line FROM segment WHERE id = ?", home.id());
    if (!segment.next()) Database::failBroken("events without their segment");
    HitFile& file = fileOf(segment.number(0), files);
    for (const StoredEvent& event : pack)
      if (uids.contains(event.row.uid))
        file.hits.append({segment.number(1),
                          static_cast<int>(segment.number(2)),
                          event.place,
                          {event.row.earliest, event.row.latest, std::numeric_limits<qint64>::max()}});
  }
  return files;
}

QList<EventRef> Hits::named(const QSet<quint64>& uids) {
  QHash<qint64, HitFile> files = collect(uids);
  QList<HitFile*> order;
  for (HitFile& file : files) order.append(&file);
  std::sort(order.begin(), order.end(), [](const HitFile* a, const HitFile* b) { return a->name < b->name; });
  QList<EventRef> found;
  for (HitFile* file : std::as_const(order)) {
    std::sort(file->hits.begin(), file->hits.end(), [](const Hit& a, const Hit& b) {
      return a.segmentStart + a.place.offset < b.segmentStart + b.place.offset;
    });
    read(*file, found);
  }
  return found;
}

void Hits::read(const HitFile& file, QList<EventRef>& into) {
  if (file.form != Form::Parts) {
    const Kept all = whole(file);
    for (const Event& event : all->events)
      if (file.uids.contains(nameSum(event.uid))) into.append({all, &event});
    return;
  }
  const DiskFile disk(pathOf(file.name));
  if (disk.state().stamp != file.stamp) throw Stale{file.name};
  for (const Hit& hit : file.hits) {
    const Kept one = part(file, hit, disk);
    into.append({one, &one->events.front()});
  }
}

Hits::Kept Hits::whole(const HitFile& file) {
  const quint64 key = keyOf({1, nameSum(file.name), file.stamp, file.content, 0, 0, 0});
  if (const KeptPart* kept = kept_.object(key)) return kept->file;
  const Kept made = everything(file);
  keep(key, {made, 0, changes_});
  return made;
}

void Hits::keep(quint64 key, const KeptPart& part) {
  kept_.insert(key, new KeptPart(part), part.file->document.bytes.size() * parsedFactor + 512);
}

/// A file in full, which must be what its rows are about.
Hits::Kept Hits::everything(const HitFile& file) const {
  const DiskFile disk(pathOf(file.name));
  const DiskState state = disk.state();
  if (state.stamp != file.stamp || !state.regular) throw Stale{file.name};
  QByteArray bytes = disk.stretch(0, state.size);
  if (bytes.size() != state.size) throw Stale{file.name};
  if (file.form == Form::Whole && (checksumOf(bytes) | 1) != file.content) throw Stale{file.name};
  return calendarFile(file.name, std::move(bytes));
}

QByteArray Hits::bytesOf(const HitFile& file, const Hit& hit, const DiskFile& disk) const {
  QByteArray bytes = disk.stretch(hit.segmentStart + hit.place.offset, hit.place.length);
  if (checksumOf(bytes) != hit.place.sum) throw Stale{file.name};
  return bytes;
}

Hits::Kept Hits::part(const HitFile& file, const Hit& hit, const DiskFile& disk) {
  // by the file's name: the number of a file that went is given to the next that comes
  const quint64 key =
      keyOf({2, nameSum(file.name), static_cast<quint64>(hit.segmentStart + hit.place.offset),
             static_cast<quint64>(hit.segmentLine + hit.place.line), hit.place.sum,
             static_cast<quint64>(hit.place.number), checksumOf(headOf(file.id, hit.place.calendar))});
  if (KeptPart* kept = kept_.object(key)) {
    if (kept->changes == changes_) return kept->file;
    // what another calendar of the file says of a zone is no part of the event's own bytes and head
    if (checksumOf(zonesElsewhere(file.id, hit.place.calendar, *kept->file)) == kept->zones) {
      kept->changes = changes_;
      return kept->file;
    }
  }
  quint64 zones = 0;
  const Kept made = built(file, hit, bytesOf(file, hit, disk), &zones);
  keep(key, {made, zones, changes_});
  return made;
}

QByteArray Hits::headOf(qint64 file, qint64 calendar) {
  const auto known = heads_.constFind({file, calendar});
  if (known != heads_.cend()) return *known;
  if (heads_.size() >= maxHeads) heads_.clear();
  QByteArray head;
  Rows rows = database_.ask(
      "SELECT h.bytes, h.zone FROM head h JOIN segment s ON s.id = h.segment WHERE h.file = ? AND h.calendar "
      "= ? "
      "ORDER BY s.start, h.id",
      file, calendar);
  QSet<QByteArray> zones;  // some programs define a zone anew for each event
  while (rows.next()) {
    const QByteArray bytes = rows.bytes(0);
    if (rows.number(1) != 0) {
      if (zones.contains(bytes)) continue;
      zones.insert(bytes);
    }
    head += bytes;
  }
  heads_.insert({file, calendar}, head);
  return head;
}

Hits::Kept Hits::built(const HitFile& file, const Hit& hit, const QByteArray& event, quint64* zonesSum) {
  const PartPlace place{file.name, hit.segmentStart + hit.place.offset, hit.segmentLine + hit.place.line,
                        hit.place.number, hit.bounds};
  const QByteArray head = headOf(file.id, hit.place.calendar), tail = "END:VCALENDAR\r\n";
  Kept made = calendarPart(place, head, event, tail);
  if (!made) throw Stale{file.name};
  const QByteArray zones = zonesElsewhere(file.id, hit.place.calendar, *made);
  if (zonesSum) *zonesSum = checksumOf(zones);
  if (!zones.isEmpty()) made = calendarPart(place, zones + head, event, tail);
  if (!made) throw Stale{file.name};
  return made;
}

bool Hits::isDefined(const CalendarFile& part, const QString& tzid) {
  if (!known_.contains(tzid)) known_.insert(tzid, zoneByName(tzid).has_value());
  if (known_.value(tzid)) return true;
  const Component& calendar = *part.events.front().calendar;
  return std::any_of(calendar.children.begin(), calendar.children.end(), [&](const Component& definition) {
    if (definition.name != "VTIMEZONE") return false;
    const auto id = firstOf(part.document, definition, "TZID");
    return id && fromText(id->value).trimmed() == tzid.trimmed() &&
           Zone::defined(part.document, definition).has_value();
  });
}

QByteArray Hits::zonesElsewhere(qint64 file, qint64 calendar, const CalendarFile& part) {
  if (!database_.number("SELECT 1 FROM head WHERE file = ? AND calendar <> ? AND zone <> 0 LIMIT 1", file,
                        calendar))
    return {};
  QByteArray zones;
  const QSet<QString> names = zonesOf(part);
  for (const QString& tzid : names) {
    if (isDefined(part, tzid)) continue;
    // the first of the file counts; what goes by two names may be it or not
    const quint64 wanted = nameSum(tzid.trimmed()) | 1;
    Rows rows = database_.ask(
        "SELECT h.calendar, h.zone, h.bytes FROM head h JOIN segment s ON s.id = h.segment WHERE h.file = ? "
        "AND (h.zone = ? OR h.zone = 3) ORDER BY s.start, h.id",
        file, wanted);
    while (rows.next()) {
      if (rows.number(0) != calendar) zones += "BEGIN:VCALENDAR\r\n" + rows.bytes(2) + "END:VCALENDAR\r\n";
      if (rows.bits(1) == wanted) break;
    }
  }
  return zones;
}

QList<EventRef> Hits::all() {
  QList<HitFile> files;
  {
    Rows rows = database_.ask("SELECT id, name, stamp, form, content FROM file");
    while (rows.next()) {
      HitFile file;
      file.id = rows.number(0);
      file.name = rows.text(1);
      file.stamp = rows.bits(2);
      file.form = static_cast<Form>(rows.number(3));
      file.content = rows.bits(4);
      if (file.form != Form::Unread) files.append(file);
    }
  }
  std::sort(files.begin(), files.end(), [](const HitFile& a, const HitFile& b) { return a.name < b.name; });
  QList<EventRef> found;
  for (const HitFile& file : std::as_const(files)) {
    const Kept all = file.form == Form::Parts ? everything(file) : whole(file);
    for (const Event& event : all->events) found.append({all, &event});
  }
  return found;
}

Snapshot Hits::snapshot(const FileRow& file, const QString& uid) {
  const DiskFile disk(pathOf(file.name));
  const DiskState before = disk.state();
  if (before.stamp != file.stamp) throw Stale{file.name};
  Snapshot snapshot;
  snapshot.name = file.name;
  snapshot.fingerprint = before.fingerprint();
  QHash<qint64, HitFile> files = collect({nameSum(uid)});
  HitFile& own = files[file.id];
  std::sort(own.hits.begin(), own.hits.end(), [](const Hit& a, const Hit& b) {
    return a.segmentStart + a.place.offset < b.segmentStart + b.place.offset;
  });
  for (const Hit& hit : std::as_const(own.hits)) {
    const Kept one = built(own, hit, bytesOf(own, hit, disk));
    if (one->events.front().uid == uid) snapshot.events.append({one, &one->events.front()});
  }
  for (const Segment& segment : segmentsOf(database_, file.id))
    if (segment.lastEnd >= 0) snapshot.newEventAt = segment.start + segment.lastEnd;
  // the rows are trusted with where events are read, not with where one is written
  if (snapshot.newEventAt >= 0 && disk.stretch(snapshot.newEventAt, 3).toUpper() != "END")
    throw Stale{file.name};
  QByteArray firstLines = disk.stretch(0, qMin<qint64>(before.size, 4096));
  if (!firstLines.contains('\n'))
    firstLines = disk.stretch(0, qMin<qint64>(before.size, 2 * maxPropertyBytes));
  snapshot.lineEnd = lineEndOf(firstLines);
  if (disk.state().stamp != file.stamp) throw Stale{file.name};
  return snapshot;
}

}  // namespace platform::calendar::icalendar::index

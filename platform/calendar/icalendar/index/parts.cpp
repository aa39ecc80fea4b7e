#include "platform/calendar/icalendar/index/parts.h"

#include "platform/calendar/icalendar/index/packs.h"
#include "platform/calendar/icalendar/index/partstaker.h"

#include <QMap>

namespace platform::calendar::icalendar::index {

bool Parts::looksAlike(const DiskFile& disk, const Segment& segment, qint64 shift) const {
  const auto sum = disk.sumOf(segment.start + shift, segment.length);
  return sum && *sum == segment.sum;
}

Parts::Result Parts::refresh(const DiskFile& disk, qint64 size) {
  segments_ = segmentsOf(database_, file_.id);
  size_ = segments_.isEmpty() ? 0 : segments_.last().start + segments_.last().length;
  const qsizetype count = segments_.size();
  qsizetype first = 0, last = count - 1;
  qint64 same = 0;  // bytes at the front that are as they were
  while (first < count && same + segments_[first].length <= size && looksAlike(disk, segments_[first], 0))
    same += segments_[first++].length;
  if (first == count && count > 0 && size == size_) return Result::Same;
  const qint64 shift = size - size_;
  while (last >= first && segments_[last].start + shift >= same && looksAlike(disk, segments_[last], shift))
    --last;
  return replace(disk, size, first, last);
}

Parts::Result Parts::splice(const DiskFile& disk, qint64 size, qint64 from, qint64 to) {
  segments_ = segmentsOf(database_, file_.id);
  if (segments_.isEmpty()) return refresh(disk, size);
  size_ = segments_.last().start + segments_.last().length;
  qsizetype first = 0, last = segments_.size() - 1;
  while (first < last && segments_[first].start + segments_[first].length <= from) ++first;
  while (last > first && segments_[last].start >= to) --last;
  return replace(disk, size, first, last);
}

void Parts::forget(const Segment& segment) {
  const Home home = Home::ofSegment(segment.id);
  for (const StoredEvent& event : packAt(database_, home)) {
    if (event.row.hasUid)
      touched_.insert(event.row.uid);
    else
      namelessTouched_ = true;
  }
  removePack(database_, file_.id, home);
  database_.run("DELETE FROM head WHERE file = ? AND segment = ?", file_.id, segment.id);
  database_.run("DELETE FROM problem WHERE file = ? AND segment = ?", file_.id, segment.id);
  database_.run("DELETE FROM segment WHERE id = ?", segment.id);
}

/// The segments from `first` to `last` go, and what stands in their place is looked through. Where there are
/// none between, something was put in at their border.
Parts::Result Parts::replace(const DiskFile& disk, qint64 size, qsizetype first, qsizetype last) {
  const bool whole = segments_.isEmpty() || (first == 0 && last == segments_.size() - 1);
  if (!whole) {
    if (last < first) first > 0 ? --first : ++last;
    const Segment at = segments_[first];
    const qint64 oldEnd = segments_[last].start + segments_[last].length;
    const qint64 length = oldEnd - at.start + size - size_;
    const bool atEnd = last == segments_.size() - 1;
    const qint64 calendarAfter = atEnd ? 0 : segments_[last + 1].calendar;
    const int lineAfter = atEnd ? 0 : segments_[last + 1].line;
    database_.runs().flush();
    database_.script("SAVEPOINT stretch");
    if (length > 0) {
      for (qsizetype i = first; i <= last; ++i) forget(segments_[i]);
      if (look(disk, at, length, calendarAfter)) {
        const qint64 down = size - size_;
        const int lines = atEnd ? 0 : lineAfter_ - lineAfter;
        if (!atEnd && (down != 0 || lines != 0))
          database_.run(
              "UPDATE segment SET start = start + ?, line = line + ? WHERE file = ? AND start >= ? AND id < "
              "?",
              down, lines, file_.id, oldEnd, firstNew_);
        renumber();
        database_.script("RELEASE stretch");
        return Result::Changed;
      }
    }
    database_.runs().drop();
    database_.script("ROLLBACK TO stretch; RELEASE stretch");
  }
  clearRows(database_, file_.id);
  return look(disk, Segment(), size, 0) ? Result::Changed : Result::Odd;
}

/// Of a stretch between two others, the calendar that is open behind it must be the one that the next segment
/// continues.
bool Parts::look(const DiskFile& disk, const Segment& at, qint64 length, qint64 calendarAfter) {
  const bool whole = at.id == 0;
  PartsTaker taker(database_, file_, at, whole);
  LineScanner scanner(taker);
  taker.setScanner(&scanner);
  firstNew_ = taker.firstSegment();
  scanner.beginAt(at.start, at.line, at.calendar != 0);
  qint64 done = 0;
  bool failed = false;
  const bool sure = scanner.scan([&](char* into, qint64 most) {
    const qint64 got = disk.read(into, qMin(most, length - done), at.start + done);
    failed = failed || got < 0 || (got == 0 && done < length);
    done += qMax<qint64>(0, got);
    return got;
  });
  if (!sure || failed || !taker.isGood() || scanner.inCalendar() != (calendarAfter != 0)) return false;
  lineAfter_ = at.line + scanner.lines();
  taker.finish(at.start + length, lineAfter_, scanner.takeSum());
  touched_ += taker.names();
  namelessTouched_ = namelessTouched_ || taker.sawNameless();
  if (whole || taker.calendar() == calendarAfter || calendarAfter == 0) return true;
  if (at.calendar == calendarAfter || taker.calendar() == at.calendar) return false;
  for (const qint64 segment : taker.segments()) {
    const Home home = Home::ofSegment(segment);
    const Pack was = packAt(database_, home);
    Pack now = was;
    for (StoredEvent& event : now)
      if (event.place.calendar == taker.calendar()) event.place.calendar = calendarAfter;
    if (!was.empty()) replacePack(database_, file_.id, home, was, now);
  }
  for (const char* sql : {"UPDATE head SET calendar = ? WHERE file = ? AND calendar = ?",
                          "UPDATE segment SET calendar = ? WHERE file = ? AND calendar = ?"})
    database_.run(sql, calendarAfter, file_.id, taker.calendar());
  return true;
}

namespace {

/// The events of some homes of one file, to be told apart where they are alike.
class Alike {
 public:
  Alike(Database& database, const FileRow& file) : database_(database), file_(file) {}

  void add(const QList<Home>& homes) {
    for (const Home home : homes) {
      if (home.isWholeFile()) continue;
      const auto start =
          database_.number("SELECT start FROM segment WHERE id = ? AND file = ?", home.id(), file_.id);
      if (start && !packs_.contains({*start, home.number()}))
        packs_.insert({*start, home.number()}, packAt(database_, home));
    }
  }
  /// Calls with each event, as they stand in the file.
  template <class Visit>
  void each(const Visit& visit) {
    for (auto pack = packs_.begin(); pack != packs_.end(); ++pack) {
      const Pack was = pack.value();
      bool any = false;
      for (StoredEvent& event : pack.value()) any = visit(event) || any;
      if (any) replacePack(database_, file_.id, Home(pack.key().second), was, pack.value());
    }
  }

 private:
  Database& database_;
  const FileRow& file_;
  QMap<std::pair<qint64, qint64>, Pack> packs_;  // by where they start
};

}  // namespace

void Parts::renumber() {
  if (touched_.isEmpty() && !namelessTouched_) return;
  database_.runs().flush();
  if (!touched_.isEmpty()) renumberTouched();
  if (namelessTouched_) renumberNameless();
}

void Parts::renumberTouched() {
  Alike events(database_, file_);
  for (const quint64 uid : std::as_const(touched_)) events.add(homesOf(database_, Search::Uid, uid));
  QHash<quint64, int> numbers;
  events.each([&](StoredEvent& event) {
    if (!event.row.hasUid || !touched_.contains(event.row.uid)) return false;
    const int number = ++numbers[alike(event.row)];
    return std::exchange(event.place.number, number) != number;
  });
}

/// The key of an event without a name is where it stands among the others without.
void Parts::renumberNameless() {
  Alike events(database_, file_);
  events.add(homesOf(database_, Search::Nameless, static_cast<quint64>(file_.id)));
  QHash<quint64, int> numbers;
  events.each([&](StoredEvent& event) {
    if (event.row.hasUid) return false;
    const int number = ++numbers[event.row.recurrenceId];
    const quint64 uid = uidWithout(file_.name, number);
    if (event.place.number == number && event.row.uid == uid) return false;
    event.place.number = number;
    event.row.uid = uid;
    return true;
  });
}

}  // namespace platform::calendar::icalendar::index

#include "platform/calendar/icalendar/index/parts.h"

#include "platform/calendar/icalendar/index/partstaker.h"

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
  Rows rows =
      database_.ask("SELECT uid, nameless FROM event WHERE file = ? AND segment = ?", file_.id, segment.id);
  while (rows.next()) {
    if (rows.number(1) != 0)
      namelessTouched_ = true;
    else
      touched_.insert(rows.bits(0));
  }
  database_.run("DELETE FROM event WHERE file = ? AND segment = ?", file_.id, segment.id);
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
    database_.script("SAVEPOINT stretch");
    if (length > 0) {
      for (qsizetype i = first; i <= last; ++i) forget(segments_[i]);
      database_.run("UPDATE segment SET start = start + ? WHERE file = ? AND start >= ?", size - size_,
                    file_.id, oldEnd);
      if (look(disk, at, length, calendarAfter)) {
        const qint64 newEnd = at.start + length;
        const auto line = database_.number(
            "SELECT max(line + lines) FROM segment WHERE file = ? AND start < ?", file_.id, newEnd);
        if (!atEnd)
          database_.run("UPDATE segment SET line = line + ? WHERE file = ? AND start >= ?",
                        line.value_or(0) - lineAfter, file_.id, newEnd);
        renumber();
        database_.script("RELEASE stretch");
        return Result::Changed;
      }
    }
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
  taker.finish(at.start + length, at.line + scanner.lines(), scanner.takeSum());
  touched_ += taker.names();
  namelessTouched_ = namelessTouched_ || taker.sawNameless();
  if (whole || taker.calendar() == calendarAfter || calendarAfter == 0) return true;
  if (at.calendar == calendarAfter || taker.calendar() == at.calendar) return false;
  for (const char* sql : {"UPDATE event SET calendar = ? WHERE file = ? AND calendar = ?",
                          "UPDATE head SET calendar = ? WHERE file = ? AND calendar = ?",
                          "UPDATE segment SET calendar = ? WHERE file = ? AND calendar = ?"})
    database_.run(sql, calendarAfter, file_.id, taker.calendar());
  return true;
}

void Parts::renumber() {
  for (const quint64 uid : std::as_const(touched_)) renumberUid(uid);
  if (namelessTouched_) renumberNameless();
}

void Parts::renumberUid(quint64 uid) {
  struct Row {
    qint64 segment, offset, recurrence, number;
  };
  QList<Row> found;
  {
    Rows rows = database_.ask(
        "SELECT e.segment, e.offset, e.recurrence, e.number FROM event e JOIN segment s ON s.id = e.segment "
        "WHERE e.uid = ? AND e.file = ? AND e.nameless = 0 ORDER BY s.start, e.offset",
        uid, file_.id);
    while (rows.next()) found.append({rows.number(0), rows.number(1), rows.number(2), rows.number(3)});
  }
  QHash<qint64, int> numbers;
  for (const Row& row : std::as_const(found)) {
    const int number = ++numbers[row.recurrence];
    if (number != row.number)
      database_.run("UPDATE event SET number = ? WHERE file = ? AND segment = ? AND offset = ?", number,
                    file_.id, row.segment, row.offset);
  }
}

/// The key of an event without a name is where it stands among the others without.
void Parts::renumberNameless() {
  struct Row {
    qint64 segment, offset, recurrence, number;
  };
  QList<Row> found;
  {
    Rows rows = database_.ask(
        "SELECT e.segment, e.offset, e.recurrence, e.number FROM event e JOIN segment s ON s.id = e.segment "
        "WHERE e.file = ? AND e.nameless = 1 ORDER BY s.start, e.offset",
        file_.id);
    while (rows.next()) found.append({rows.number(0), rows.number(1), rows.number(2), rows.number(3)});
  }
  QHash<qint64, int> numbers;
  for (const Row& row : std::as_const(found)) {
    const int number = ++numbers[row.recurrence];
    database_.run("UPDATE event SET number = ?, uid = ? WHERE file = ? AND segment = ? AND offset = ?",
                  number, uidWithout(file_.name, number), file_.id, row.segment, row.offset);
  }
}

}  // namespace platform::calendar::icalendar::index

#include "platform/calendar/icalendar/index/intake.h"

#include "platform/calendar/icalendar/index/checksum.h"
#include "platform/calendar/icalendar/index/packs.h"
#include "platform/calendar/icalendar/index/parts.h"
#include "platform/calendar/icalendar/limits.h"

namespace platform::calendar::icalendar::index {
namespace {

constexpr int maxReads = 3;  // of a file that is being written to

/// The rows of a small file in which every event is as nearly all are.
class PlainTaker : public PieceTaker {
 public:
  void calendarBegins(qint64, QByteArrayView) override {}
  void calendarLine(QByteArrayView) override {}
  void pieceBegins(qint64, int) override {}
  void piece(const Piece& piece) override {
    const bool isEvent = piece.kind == Piece::Kind::Event;
    allPlain = allPlain && !piece.odd && (!isEvent || piece.plain);
    if (isEvent && allPlain) rows.push_back(rowOf(piece));
  }
  void calendarEnds(qint64) override {}

  bool allPlain = true;
  std::vector<EventRow> rows;
};

}  // namespace

bool Intake::remove(const QString& name) {
  const auto row = fileNamed(database_, name);
  if (row) removeFile(database_, row->id);
  return row.has_value();
}

Intake::Result Intake::take(const QString& name, const DiskState& now, bool again) {
  if (!now.exists || now.folder) return remove(name) ? Result::Changed : Result::Same;
  FileRow row = fileNamed(database_, name).value_or(FileRow());
  row.name = name;
  const bool known = row.id != 0 && row.stamp == now.stamp;
  if (known && !again) return Result::Same;
  const FileRow before = row;
  const qint64 most = isFolder_ ? maxItemFileBytes : maxCalendarFileBytes;
  Result result = Result::Unread;
  // what says so itself is unreadable as it is; a read that fails may do so this once
  bool surely = name.contains(QChar::ReplacementCharacter);
  for (int attempt = 0; attempt < maxReads; ++attempt) {
    const DiskFile disk(pathOf(name));
    const DiskState state = disk.state();
    if (!state.regular || state.size > most) {
      surely = surely || state.exists;
      break;
    }
    row.stamp = state.stamp;
    row.linked = state.linked;
    row.settled = state.isSettled();
    if (row.id == 0) {
      store(database_, row);
      empty_ = row.id;
    }
    result = read(row, disk, state);
    empty_ = 0;
    if (disk.state().stamp == row.stamp && result != Result::Unread) break;
    row.settled = false;  // it is being written to
  }
  if (result == Result::Unread) {
    row.stamp = now.stamp;
    row.linked = now.linked;
    row.settled = surely;
    result = unread(row, before);
  }
  const bool same = result == Result::Same && known;
  if (!same || before.settled != row.settled) store(database_, row);
  return result == Result::Same ? (known ? Result::Same : Result::Changed) : result;
}

void Intake::clear(qint64 file) {
  if (empty_ != file) clearRows(database_, file);
}

Intake::Result Intake::unread(FileRow& row, const FileRow& before) {
  const files::ReadResult why =
      files::readFile(pathOf(row.name), isFolder_ ? maxItemFileBytes : maxCalendarFileBytes);
  row.form = Form::Unread;
  if (!isFolder_) return Result::Unread;
  row.error = row.name.contains(QChar::ReplacementCharacter)
                  ? QStringLiteral("The file's name is not in UTF-8, so the file was not read.")
                  : why.error;
  if (why.ok) {  // meanwhile it can be read: at the next look
    row.stamp = 0;
    row.settled = false;
  }
  row.content = 0;
  if (row.id == 0) store(database_, row);
  clear(row.id);
  const bool asBefore = before.id != 0 && before.form == Form::Unread && before.error == row.error;
  return asBefore && !why.ok ? Result::Same : Result::Changed;
}

Intake::Result Intake::read(FileRow& row, const DiskFile& disk, const DiskState& now) {
  if (now.size > wholeBytes) {
    if (row.form != Form::Parts) clear(row.id);
    const bool wasParts = row.form == Form::Parts;
    Parts parts(database_, row);
    empty_ = 0;
    Parts::Result result = parts.refresh(disk, now.size);
    if (result == Parts::Result::Changed && hasLargeHead(row.id)) result = Parts::Result::Odd;
    if (result == Parts::Result::Same && wasParts) return Result::Same;
    if (result == Parts::Result::Changed) {
      row.form = Form::Parts;
      row.content = 0;
      row.error.clear();
      return Result::Changed;
    }
    clear(row.id);
    row.form = Form::Whole;
    row.content = 0;
    if (!isFolder_ && now.size > maxOddBytes) {
      row.form = Form::Unread;
      return Result::Odd;
    }
  }
  const QByteArray bytes = disk.stretch(0, now.size);
  if (bytes.size() != now.size) return Result::Unread;
  return takeWhole(row, bytes);
}

/// Each event of a calendar carries its head along.
bool Intake::hasLargeHead(qint64 file) {
  return database_
      .number(
          "SELECT 1 FROM (SELECT DISTINCT calendar, bytes FROM head WHERE file = ?) GROUP BY calendar "
          "HAVING sum(length(bytes)) > ? LIMIT 1",
          file, maxHeadBytes)
      .has_value();
}

Intake::Result Intake::takeWhole(FileRow& row, const QByteArray& bytes) {
  const quint64 content = checksumOf(bytes) | 1;
  if (row.form == Form::Whole && row.content == content) return Result::Same;
  clear(row.id);
  row.form = Form::Whole;
  row.content = content;
  row.error.clear();
  rowsOf(row, bytes);
  return Result::Changed;
}

void Intake::rowsOf(const FileRow& row, const QByteArray& bytes) {
  PlainTaker taker;
  LineScanner scanner(taker);
  EventPlace place;
  Pack pack;
  if (scanner.scan(bytes) && !scanner.inCalendar() && taker.allPlain) {
    for (const EventRow& event : taker.rows) {
      pack.push_back({event, place});
      ++place.offset;
    }
    return insertPack(database_, row.id, Home::ofWholeFile(row.id), pack);
  }
  const auto file = calendarFile(row.name, bytes);
  for (const Event& event : file->events) {
    pack.push_back({rowOf(file->document, event), place});
    ++place.offset;
  }
  insertPack(database_, row.id, Home::ofWholeFile(row.id), pack);
  for (const Problem& problem : file->problems) insertProblem(database_, row.id, 0, Phase::Lines, problem);
}

Intake::Result Intake::taken(const QString& name, const QList<files::Splice>& splices, const DiskState& now) {
  auto row = fileNamed(database_, name);
  qint64 growth = 0, from = std::numeric_limits<qint64>::max(), to = 0;
  for (const files::Splice& splice : splices) {
    growth += splice.with.size() - splice.was.size();
    from = qMin(from, splice.offset);
    to = qMax(to, splice.offset + splice.was.size());
  }
  if (!row || row->form != Form::Parts || splices.isEmpty() || now.size <= wholeBytes)
    return take(name, now, true);
  const auto before =
      database_.number("SELECT max(start + length) FROM segment WHERE file = ?", row->id).value_or(0);
  const DiskFile disk(pathOf(name));
  if (before + growth != now.size || disk.state().stamp != now.stamp) return take(name, now, true);
  // what ends where a segment begins may be what that segment's first line was taken for
  Parts parts(database_, *row);
  if (parts.splice(disk, now.size, from, qMax(to, from + 1)) != Parts::Result::Changed)
    return take(name, now, true);
  row->stamp = now.stamp;
  row->linked = now.linked;
  row->settled = now.isSettled();
  store(database_, *row);
  return Result::Changed;
}

}  // namespace platform::calendar::icalendar::index

#include "platform/calendar/icalendar/index/partstaker.h"

#include "platform/calendar/icalendar/index/checksum.h"
#include "platform/calendar/icalendar/index/parts.h"
#include "platform/calendar/icalendar/text.h"

namespace platform::calendar::icalendar::index {
namespace {

constexpr quint64 nameless = 0x6E616D656C657373ULL;

}  // namespace

quint64 alike(const EventRow& row) {
  return ((row.hasUid ? row.uid : nameless) * 0x9E3779B97F4A7C15ULL) ^ row.recurrenceId;
}

int Numbering::next(quint64 name) {
  name |= 1ULL << 63;
  if (count_ * 2 >= seen_.size()) grow();
  for (size_t at = name & (seen_.size() - 1);; at = (at + 1) & (seen_.size() - 1)) {
    if (seen_[at] == 0) {
      seen_[at] = name;
      ++count_;
      return 1;
    }
    if (seen_[at] == name) break;
  }
  int& number = several_[name];
  number = number == 0 ? 2 : number + 1;
  return number;
}

void Numbering::grow() {
  std::vector<quint64> old(seen_.empty() ? 1024 : seen_.size() * 2, 0);
  old.swap(seen_);
  for (const quint64 name : old) {
    if (name == 0) continue;
    size_t at = name & (seen_.size() - 1);
    while (seen_[at] != 0) at = (at + 1) & (seen_.size() - 1);
    seen_[at] = name;
  }
}

PartsTaker::PartsTaker(Database& database, const FileRow& file, const Segment& at, bool numbers)
    : database_(database), file_(file), numbers_(numbers), calendar_(at.calendar) {
  // also those that go on behind the stretch, though their heads stand in it
  nextCalendar_ =
      1 + qMax(database.number("SELECT max(calendar) FROM head WHERE file = ?", file.id).value_or(0),
               database.number("SELECT max(calendar) FROM segment WHERE file = ?", file.id).value_or(0));
  firstSegment_ = nextSegment_ = database.number("SELECT max(id) FROM segment").value_or(0) + 1;
  segment_.id = nextSegment_++;
  segment_.start = at.start;
  segment_.line = at.line;
  segment_.calendar = at.calendar;
}

void PartsTaker::calendarBegins(qint64, QByteArrayView line) {
  flushHead();
  calendar_ = nextCalendar_++;
  head_ = line.toByteArray();
}

void PartsTaker::calendarLine(QByteArrayView line) {
  head_.append(line);
}

void PartsTaker::flushHead() {
  if (head_.isEmpty()) return;
  database_.run("INSERT INTO head (file, segment, calendar, zone, bytes) VALUES (?, ?, ?, 0, ?)", file_.id,
                segment_.id, calendar_, head_);
  head_.clear();
}

void PartsTaker::pieceBegins(qint64 offset, int line) {
  flushHead();
  if (events_ < eventsPerSegment) return;
  closeSegment(offset, line, scanner_->takeSum());
  segment_ = Segment();
  segment_.id = nextSegment_++;
  segment_.start = offset;
  segment_.line = line;
  segment_.calendar = calendar_;
  events_ = 0;
}

void PartsTaker::closeSegment(qint64 end, int lineAfter, quint64 sum) {
  database_.run("INSERT INTO segment VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?)", segment_.id, file_.id,
                segment_.start, end - segment_.start, segment_.line, lineAfter - segment_.line,
                segment_.calendar, segment_.lastEnd, sum);
  insertPack(database_, file_.id, Home::ofSegment(segment_.id), pack_);
  pack_.clear();
  if (!numbers_) segments_.append(segment_.id);
}

void PartsTaker::finish(qint64 end, int lineAfter, quint64 sum) {
  flushHead();
  closeSegment(end, lineAfter, sum);
}

void PartsTaker::calendarEnds(qint64 offset) {
  flushHead();
  segment_.lastEnd = offset - segment_.start;
}

void PartsTaker::piece(const Piece& piece) {
  if (piece.kind == Piece::Kind::Event) {
    event(piece);
    return;
  }
  if (piece.kind == Piece::Kind::Other && !piece.odd) return;
  const Document document = icalendar::scan(piece.bytes.toByteArray(), {});
  if (document.components.size() != 1 || !lineProblems(document, piece)) {
    good_ = false;
    return;
  }
  if (piece.kind != Piece::Kind::Zone) return;
  const auto id = firstOf(document, document.components.front(), "TZID");
  quint64 zone = id ? nameSum(fromText(id->value).trimmed()) | 1 : 2;
  if (id && id->value.contains('\\')) zone = 3;  // goes by two names
  database_.run("INSERT INTO head (file, segment, calendar, zone, bytes) VALUES (?, ?, ?, ?, ?)", file_.id,
                segment_.id, calendar_, zone, piece.bytes.toByteArray());
}

/// False when there are so many that they are counted only.
bool PartsTaker::lineProblems(const Document& document, const Piece& piece) {
  if (document.problems.size() >= maxProblemsPerFile) return false;
  for (Problem problem : document.problems) {
    problem.line += piece.line - 1 - segment_.line;
    insertProblem(database_, file_.id, segment_.id, Phase::Lines, problem);
  }
  return true;
}

void PartsTaker::event(const Piece& piece) {
  ++events_;
  if (piece.plain)
    keep(rowOf(piece), piece);
  else
    oddEvent(piece);
}

void PartsTaker::oddEvent(const Piece& piece) {
  const Document document = icalendar::scan(piece.bytes.toByteArray(), {});
  if (document.components.size() != 1 || !lineProblems(document, piece)) {
    good_ = false;
    return;
  }
  QList<Problem> problems;
  const Event event = eventOf(document, document.components.front(), nullptr, &problems);
  if (problems.size() >= maxProblemsPerFile) good_ = false;
  for (Problem& problem : problems) {
    problem.line += piece.line - 1 - segment_.line;
    insertProblem(database_, file_.id, segment_.id, Phase::Events, problem);
  }
  keep(rowOf(document, event), piece);
}

void PartsTaker::keep(EventRow row, const Piece& piece) {
  EventPlace place;
  place.offset = piece.offset - segment_.start;
  place.length = piece.bytes.size();
  place.line = piece.line - segment_.line;
  place.calendar = calendar_;
  place.sum = checksumOf(piece.bytes);
  if (numbers_) place.number = numbering_.next(alike(row));
  if (!row.hasUid) {
    row.uid = uidWithout(file_.name, place.number);
    sawNameless_ = true;
  } else if (!numbers_) {
    names_.insert(row.uid);
  }
  pack_.push_back({row, place});
}

}  // namespace platform::calendar::icalendar::index

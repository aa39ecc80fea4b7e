#include "platform/calendar/icalendar/index/linescanner.h"

#include "platform/calendar/icalendar/index/quicktime.h"

#include <array>
#include <cstring>

namespace platform::calendar::icalendar::index {
namespace {

constexpr qsizetype blockBytes = 256 * 1024;

constexpr std::array<bool, 256> nameBytes() {
  std::array<bool, 256> table{};
  for (int c = 0; c < 256; ++c)
    table[static_cast<size_t>(c)] = (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') ||
                                    (c >= '0' && c <= '9') || c == '-' || c == '_' || c == '.';
  return table;
}
constexpr std::array<bool, 256> isName = nameBytes();

bool isNameByte(char c) {
  return isName[static_cast<unsigned char>(c)];
}

bool same(const char* text, const char* upper, qsizetype length) {
  return std::memcmp(text, upper, static_cast<size_t>(length)) == 0 ||
         qstrnicmp(text, upper, static_cast<size_t>(length)) == 0;
}

/// In the version before, other rules hold.
bool isUsualVersion(QByteArrayView rest) {
  return rest.toByteArray().trimmed() == ":2.0";
}

/// Whether a property's text stands as all iCalendar texts do.
bool isUsualText(QByteArrayView line) {
  const qsizetype colon = line.indexOf(':');
  const QByteArray head = line.first(qMax<qsizetype>(0, colon)).toByteArray().toUpper();
  return colon >= 0 && !head.contains("ENCODING") && !head.contains("CHARSET");
}

bool isEntry(const QByteArray& name) {
  return name == "VEVENT" || name == "VTODO" || name == "VJOURNAL" || name == "VFREEBUSY" ||
         name == "VTIMEZONE";
}

}  // namespace

void LineScanner::beginAt(qint64 offset, int line, bool inCalendar) {
  base_ = offset;
  firstLine_ = line;
  calendarOpen_ = inCalendar;
}

bool LineScanner::scan(QByteArrayView bytes) {
  data_ = bytes.data();
  size_ = bytes.size();
  return run(nullptr);
}

bool LineScanner::scan(const Read& read) {
  buffer_.resize(blockBytes);
  data_ = buffer_.constData();
  return run(&read);
}

bool LineScanner::run(const Read* read) {
  line_ = firstLine_ - 1;
  bool more = read != nullptr, began = false;
  for (;;) {
    const void* found =
        at_ < size_ ? std::memchr(data_ + at_, '\n', static_cast<size_t>(size_ - at_)) : nullptr;
    if (!found && more) {
      more = refill(*read);
      if (tooLong_) return false;
      continue;
    }
    if (at_ == size_) break;
    if (!began && base_ == 0 && size_ >= 3 && std::memcmp(data_, "\xEF\xBB\xBF", 3) == 0) at_ = 3;
    began = true;
    const qsizetype end = found ? static_cast<const char*>(found) - data_ + 1 : size_;
    ++line_;
    if (at_ < end && !take(at_, end)) return false;
    at_ = end;
  }
  sumUpTo(size_);
  // a file without a single line feed has ends of lines of another kind
  return open_.empty() && (size_ == 0 || line_ > firstLine_ || data_[size_ - 1] == '\n');
}

void LineScanner::sumUpTo(qsizetype end) {
  sum_.add(data_ + summed_, static_cast<size_t>(end - summed_));
  summed_ = end;
}

quint64 LineScanner::takeSum() {
  const quint64 value = sum_.value();
  sum_ = Checksum();
  return value;
}

/// Drops what is done with and reads on behind the rest. False at the end.
bool LineScanner::refill(const Read& read) {
  const qsizetype from = open_.empty() ? at_ : pieceAt_;
  sumUpTo(from);
  char* data = buffer_.data();
  std::memmove(data, data + from, static_cast<size_t>(size_ - from));
  base_ += from;
  size_ -= from;
  at_ -= from;
  pieceAt_ -= from;
  uidAt_ -= from;
  subjectAt_ -= from;
  pendingAt_ -= from;
  summed_ -= from;
  if (buffer_.size() - size_ < blockBytes / 2) {
    tooLong_ = buffer_.size() > maxPieceBytes;
    buffer_.resize(buffer_.size() * 2);
  }
  data_ = buffer_.constData();
  const qint64 got = read(buffer_.data() + size_, buffer_.size() - size_);
  if (got < 0) tooLong_ = true;
  if (got <= 0) return false;
  size_ += got;
  return true;
}

/// One physical line.
bool LineScanner::take(qsizetype begin, qsizetype end) {
  const char* data = data_;
  qsizetype contentEnd = end;
  while (contentEnd > begin && (data[contentEnd - 1] == '\n' || data[contentEnd - 1] == '\r')) --contentEnd;
  if (contentEnd == begin) return true;
  // a soft break: what comes next is its text, whatever it looks like
  if (data[contentEnd - 1] == '=' && isQuotedPrintable({data + begin, contentEnd - begin})) return false;
  const char first = data[begin];
  if (first == ' ' || first == '\t' || first == ':') return continues(begin, end);
  qsizetype nameEnd = begin;
  while (nameEnd < contentEnd && isNameByte(data[nameEnd])) ++nameEnd;
  const qsizetype length = nameEnd - begin;
  const bool clean = length > 0 && nameEnd < contentEnd && (data[nameEnd] == ':' || data[nameEnd] == ';') &&
                     end - begin <= maxPropertyBytes;
  pendingAt_ = begin;
  if (clean && (length == 5 || length == 3)) {
    const bool begins = length == 5 && same(data + begin, "BEGIN", 5);
    if (begins || (length == 3 && same(data + begin, "END", 3))) {
      pending_ = Pending::Border;
      return data[nameEnd] == ':' && border(begins, nameEnd + 1, end, contentEnd);
    }
  }
  pending_ = Pending::Plain;
  if (open_.empty()) {
    if (!calendarOpen_ || !clean) return false;
    if (length == 7 && same(data + begin, "VERSION", 7) &&
        !isUsualVersion({data + nameEnd, contentEnd - nameEnd}))
      return false;
    taker_.calendarLine({data + begin, end - begin});
    return true;
  }
  if (!clean) {
    // a border of an odd form
    if ((length == 5 && same(data + begin, "BEGIN", 5)) || (length == 3 && same(data + begin, "END", 3)))
      return false;
    piece_.odd = true;
  } else if (open_.size() == 1 && piece_.kind == Piece::Kind::Event && piece_.plain) {
    eventLine(begin, length, contentEnd);
    if (pending_ == Pending::Subject) subjectLength_ = end - begin;
  }
  return true;
}

bool LineScanner::continues(qsizetype begin, qsizetype end) {
  if (pending_ == Pending::Nothing || pending_ == Pending::Border) return false;
  if (end - pendingAt_ > maxPropertyBytes) {
    if (open_.empty()) return false;
    piece_.odd = true;
  }
  if (pending_ == Pending::Time) piece_.plain = false;
  if (pending_ == Pending::Subject) subjectLength_ = end - subjectAt_;
  if (open_.empty()) taker_.calendarLine({data_ + begin, end - begin});
  return true;
}

bool LineScanner::border(bool begins, qsizetype begin, qsizetype end, qsizetype contentEnd) {
  qsizetype from = begin;
  while (from < contentEnd && (data_[from] == ' ' || data_[from] == '\t')) ++from;
  while (contentEnd > from && (data_[contentEnd - 1] == ' ' || data_[contentEnd - 1] == '\t')) --contentEnd;
  for (qsizetype i = from; i < contentEnd; ++i)
    if (!isNameByte(data_[i])) return false;
  if (from == contentEnd) return false;
  static const QByteArray event = QByteArrayLiteral("VEVENT");  // nearly all of them
  const bool isEvent = contentEnd - from == event.size() && same(data_ + from, "VEVENT", event.size());
  const QByteArray name = isEvent ? event : QByteArray(data_ + from, contentEnd - from).toUpper();
  return begins ? beginComponent(name, pendingAt_, end) : endComponent(name, pendingAt_, end);
}

bool LineScanner::beginComponent(const QByteArray& name, qsizetype begin, qsizetype end) {
  if (name == "VCALENDAR") {
    if (calendarOpen_ || !open_.empty()) return false;
    calendarOpen_ = true;
    taker_.calendarBegins(base_ + begin, {data_ + begin, end - begin});
    return true;
  }
  if (!calendarOpen_ || open_.size() + 2 > static_cast<size_t>(maxDepth)) return false;
  if (!open_.empty()) {
    if (isEntry(name)) return false;
    open_.push_back(name);
    return true;
  }
  sumUpTo(begin);
  taker_.pieceBegins(base_ + begin, line_);
  pieceAt_ = begin;
  uidLength_ = subjectLength_ = 0;
  piece_ = Piece();
  piece_.kind = name == "VEVENT"      ? Piece::Kind::Event
                : name == "VTIMEZONE" ? Piece::Kind::Zone
                                      : Piece::Kind::Other;
  piece_.plain = piece_.kind == Piece::Kind::Event;
  piece_.line = line_;
  open_.push_back(name);
  return true;
}

bool LineScanner::endComponent(const QByteArray& name, qsizetype begin, qsizetype end) {
  if (open_.empty()) {
    if (name != "VCALENDAR" || !calendarOpen_) return false;
    calendarOpen_ = false;
    taker_.calendarEnds(base_ + begin);
    return true;
  }
  if (open_.back() != name) return false;
  open_.pop_back();
  if (open_.empty()) hand(end);
  return true;
}

void LineScanner::hand(qsizetype end) {
  piece_.offset = base_ + pieceAt_;
  piece_.bytes = {data_ + pieceAt_, end - pieceAt_};
  if (uidLength_ > 0) piece_.uid = {data_ + uidAt_, uidLength_};
  if (subjectLength_ > 0) piece_.subject = {data_ + subjectAt_, subjectLength_};
  if (piece_.odd || !piece_.start || uidLength_ == 0) piece_.plain = false;
  taker_.piece(piece_);
}

void LineScanner::eventLine(qsizetype begin, qsizetype length, qsizetype contentEnd) {
  const char* name = data_ + begin;
  const auto is = [&](const char* wanted, qsizetype size) {
    return length == size && same(name, wanted, size);
  };
  const QByteArrayView rest(name + length, contentEnd - begin - length);
  switch (name[0]) {
    case 'U':
    case 'u':
      if (is("UID", 3)) uidLine(begin, contentEnd);
      return;
    case 'D':
    case 'd':
      if (is("DTSTART", 7)) {
        piece_.plain = !piece_.start && (piece_.start = quickDate(rest)).has_value();
      } else if (is("DTEND", 5)) {
        piece_.plain = !piece_.end && (piece_.end = quickDate(rest)).has_value();
      } else if (is("DURATION", 8)) {
        piece_.plain = !piece_.span && (piece_.span = quickSpan(rest)).has_value();
      } else {
        return;
      }
      pending_ = Pending::Time;
      return;
    case 'S':
    case 's':
      if (subjectLength_ > 0 || !is("SUMMARY", 7)) return;
      if (name[length] != ':' && !isUsualText({name, contentEnd - begin})) piece_.plain = false;
      subjectAt_ = begin;
      pending_ = Pending::Subject;
      return;
    case 'R':
    case 'r':
      if (is("RRULE", 5) || is("RDATE", 5) || is("RECURRENCE-ID", 13)) piece_.plain = false;
      return;
    case 'E':
    case 'e':
      if (is("EXRULE", 6) || is("EXDATE", 6)) piece_.plain = false;
      return;
    case 'X':
    case 'x':
      if (is("X-MICROSOFT-CDO-ALLDAYEVENT", 27) || is("X-MICROSOFT-MSNCALENDAR-ALLDAYEVENT", 35))
        piece_.plain = false;
      return;
    default:
      return;
  }
}

/// The name must be one that needs no decoding.
void LineScanner::uidLine(qsizetype begin, qsizetype contentEnd) {
  pending_ = Pending::Time;
  qsizetype from = begin + 4;
  if (data_[begin + 3] != ':' || uidLength_ > 0) {
    piece_.plain = false;
    return;
  }
  while (contentEnd > from && data_[contentEnd - 1] == ' ') --contentEnd;
  while (from < contentEnd && data_[from] == ' ') ++from;
  for (qsizetype i = from; i < contentEnd; ++i)
    if (data_[i] < ' ' || data_[i] > '~' || data_[i] == '\\') piece_.plain = false;
  if (from == contentEnd) piece_.plain = false;
  uidAt_ = from;
  uidLength_ = contentEnd - from;
}

}  // namespace platform::calendar::icalendar::index

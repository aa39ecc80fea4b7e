#pragma once
#include "platform/calendar/icalendar/index/checksum.h"
#include "platform/calendar/icalendar/values.h"

#include <functional>

// The quick look through a calendar's lines. It only tells where the components of a calendar stand and reads
// the few lines of an event that say when it is. Wherever it cannot be sure to see what scan() would see, it
// gives up, and scan() has to do it.
namespace platform::calendar::icalendar::index {

/// A component that stands directly in a calendar.
struct Piece {
  enum class Kind { Event, Zone, Other };
  Kind kind = Kind::Other;
  qint64 offset = 0;  // in the file
  int line = 0;       // in the file, from 1
  QByteArrayView bytes;
  /// Some line has to be looked at by scan(), which may find a problem in it.
  bool odd = false;
  /// Of an event that is not odd: all that its time and its name depend on.
  bool plain = false;
  QByteArrayView uid;
  std::optional<DateValue> start, end;
  std::optional<Span> span;
  QByteArrayView subject;  // the first SUMMARY, whole with its folds
};

class PieceTaker {
 public:
  virtual ~PieceTaker() = default;
  /// The first line of a calendar.
  virtual void calendarBegins(qint64 offset, QByteArrayView line) = 0;
  /// A line that belongs to the calendar itself.
  virtual void calendarLine(QByteArrayView line) = 0;
  /// Called ahead of the piece, when only its place is known: what came before is finished.
  virtual void pieceBegins(qint64 offset, int line) = 0;
  virtual void piece(const Piece& piece) = 0;
  virtual void calendarEnds(qint64 offset) = 0;
};

inline constexpr qsizetype maxPieceBytes = 64 * 1024 * 1024;

class LineScanner {
 public:
  /// Reads at most so many bytes to `into`; 0 at the end, less than 0 on a failure.
  using Read = std::function<qint64(char* into, qint64 most)>;

  explicit LineScanner(PieceTaker& taker) : taker_(taker) {}

  /// A whole file, or a stretch of one that begins at the border of a piece or of the file. False: not sure.
  bool scan(QByteArrayView bytes);
  bool scan(const Read& read);

  /// For a stretch in the midst of a file, before scan().
  void beginAt(qint64 offset, int line, bool inCalendar);
  /// After scan(): whether a calendar is still open, and the physical lines there were.
  bool inCalendar() const { return calendarOpen_; }
  int lines() const { return line_ - firstLine_ + 1; }
  /// Of all bytes since the last call, up to where a piece begins or the stretch ends. To be asked for in
  /// pieceBegins() and after scan().
  quint64 takeSum();

 private:
  enum class Pending { Nothing, Border, Plain, Time, Subject };

  bool run(const Read* read);
  bool refill(const Read& read);
  bool take(qsizetype begin, qsizetype end);
  bool continues(qsizetype begin, qsizetype end);
  bool border(bool begins, qsizetype begin, qsizetype end, qsizetype contentEnd);
  bool beginComponent(const QByteArray& name, qsizetype begin, qsizetype end);
  bool endComponent(const QByteArray& name, qsizetype begin, qsizetype end);
  void eventLine(qsizetype begin, qsizetype nameLength, qsizetype contentEnd);
  void uidLine(qsizetype begin, qsizetype contentEnd);
  void hand(qsizetype end);
  void sumUpTo(qsizetype end);

  PieceTaker& taker_;
  QByteArray buffer_;  // when reading in blocks
  const char* data_ = nullptr;
  qsizetype size_ = 0, at_ = 0;
  qint64 base_ = 0;  // offset in the file of data_[0]
  int line_ = 0, firstLine_ = 1;
  bool calendarOpen_ = false;
  bool tooLong_ = false;

  std::vector<QByteArray> open_;  // within the calendar
  qsizetype pieceAt_ = 0, uidAt_ = 0, uidLength_ = 0, subjectAt_ = 0, subjectLength_ = 0;
  qsizetype summed_ = 0;
  Checksum sum_;
  qsizetype pendingAt_ = 0;
  Pending pending_ = Pending::Nothing;
  Piece piece_;
};

}  // namespace platform::calendar::icalendar::index

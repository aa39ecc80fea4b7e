#pragma once
#include "platform/calendar/icalendar/index/packs.h"

#include <QSet>

namespace platform::calendar::icalendar::index {

/// Tells several events alike in one file apart, at a few bytes for each event.
class Numbering {
 public:
  /// From 1.
  int next(quint64 name);

 private:
  void grow();

  std::vector<quint64> seen_;  // open addressing; 0: free
  size_t count_ = 0;
  QHash<quint64, int> several_;
};

quint64 alike(const EventRow& row);

/// Turns what the scanner sees of a stretch of a file into rows.
class PartsTaker : public PieceTaker {
 public:
  PartsTaker(Database& database, const FileRow& file, const Segment& at, bool numbers);
  void calendarBegins(qint64 offset, QByteArrayView line) override;
  void calendarLine(QByteArrayView line) override;
  void pieceBegins(qint64 offset, int line) override;
  void piece(const Piece& piece) override;
  void calendarEnds(qint64 offset) override;

  /// Behind the last byte.
  void finish(qint64 end, int lines, quint64 sum);
  void setScanner(LineScanner* scanner) { scanner_ = scanner; }
  bool isGood() const { return good_; }
  qint64 calendar() const { return calendar_; }
  /// Its number is higher than that of any other there is.
  qint64 firstSegment() const { return firstSegment_; }
  bool sawNameless() const { return sawNameless_; }
  const QSet<quint64>& names() const { return names_; }
  /// Of the stretch.
  const QList<qint64>& segments() const { return segments_; }

 private:
  void flushHead();
  void closeSegment(qint64 end, int lineAfter, quint64 sum);
  void event(const Piece& piece);
  void oddEvent(const Piece& piece);
  void keep(EventRow row, const Piece& piece);
  bool lineProblems(const Document& document, const Piece& piece);

  Database& database_;
  const FileRow& file_;
  LineScanner* scanner_ = nullptr;
  Segment segment_;
  bool numbers_;  // a whole file: several alike are told apart here; else by who knows the rest
  Numbering numbering_;
  QSet<quint64> names_;
  qint64 calendar_ = 0, nextCalendar_ = 0, firstSegment_ = 0, nextSegment_ = 0;
  int events_ = 0;  // in the segment
  Pack pack_;       // of the segment
  QList<qint64> segments_;
  QByteArray head_;
  bool good_ = true;
  bool sawNameless_ = false;
};

}  // namespace platform::calendar::icalendar::index

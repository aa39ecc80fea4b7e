#pragma once
#include "platform/calendar/icalendar/index/runs.h"
#include "platform/calendar/icalendar/index/tables.h"

#include <QSet>

#include <vector>

// The rows of the events, those that stand together in one row of the index: of a segment, or of a whole
// file.
namespace platform::calendar::icalendar::index {

struct StoredEvent {
  EventRow row;
  EventPlace place;
};
using Pack = std::vector<StoredEvent>;

/// Where events are kept together.
class Home {
 public:
  static Home ofSegment(qint64 segment) { return Home(segment * 2); }
  static Home ofWholeFile(qint64 file) { return Home(file * 2 + 1); }
  explicit Home(qint64 number) : number_(number) {}
  qint64 number() const { return number_; }
  bool isWholeFile() const { return (number_ & 1) != 0; }
  qint64 id() const { return number_ >> 1; }  // of the segment, or of the file
  bool operator==(const Home&) const = default;

 private:
  qint64 number_;
};

Pack packAt(Database& database, Home home);
/// Into a home that has none.
void insertPack(Database& database, qint64 file, Home home, const Pack& pack);
/// `was` must be what stands there.
void replacePack(Database& database, qint64 file, Home home, const Pack& was, const Pack& now);
void removePack(Database& database, qint64 file, Home home);

/// At most so many, then it stops counting.
qint64 countEvents(Database& database, qint64 most);
/// The names of events that can reach into a period.
QSet<quint64> uidsBetween(Database& database, qint64 from, qint64 to);
/// The homes of events under a checksum of their name or subject.
QList<Home> homesOf(Database& database, Search search, quint64 sum);
/// The names of the events with such a subject.
QSet<quint64> uidsWithSubject(Database& database, quint64 subject);

}  // namespace platform::calendar::icalendar::index

#pragma once
#include "platform/calendar/icalendar/index/database.h"
#include "platform/calendar/icalendar/index/eventrow.h"

#include <QList>

// What stands in the index file. A file of the calendar is kept in one of three forms: `Whole` files are
// small and read whole when one of their events is asked for; of files in `Parts` an event is read by itself;
// of `Unread` ones only the reason is kept.
namespace platform::calendar::icalendar::index {

enum class Form { Whole = 0, Parts = 1, Unread = 2 };

struct FileRow {
  qint64 id = 0;  // 0: not in the index
  QString name;
  quint64 stamp = 0;    // of its times, size and inode
  quint64 content = 0;  // of a whole file's bytes
  Form form = Form::Whole;
  bool settled =
      true;  // false: written so shortly before it was read that its times prove nothing, or a read failed
  bool linked = false;  // can be changed under another name, of which the folder hears nothing
  QString error;        // of an unread one
};

/// A stretch of a file in parts, some dozens of events long: when something ahead of it changes, only its
/// start moves.
struct Segment {
  qint64 id = 0;
  qint64 start = 0, length = 0;
  int line = 1, lines = 0;  // of the file, from 1
  qint64 calendar = 0;      // that is open at its start; 0: none
  qint64 lastEnd = -1;      // offset in it of its last END:VCALENDAR
  quint64 sum = 0;
};

/// Where an event stands in its segment; of a whole file `offset` counts its events.
struct EventPlace {
  qint64 offset = 0, length = 0;
  int line = 0;    // in its segment, from 0
  int number = 1;  // of several alike in the file
  qint64 calendar = 0;
  quint64 sum = 0;
};

inline constexpr int schemaVersion = 4;
inline constexpr int applicationId = 0x48426978;

void createTables(Database& database, const QString& calendarPath);
/// Behind all rows.
void markComplete(Database& database);
/// Whether it is an index of this calendar, of this version, and whole.
bool fits(Database& database, const QString& calendarPath);

std::optional<FileRow> fileNamed(Database& database, const QString& name);
/// Gives the row its id when it is new.
void store(Database& database, FileRow& row);
void clearRows(Database& database, qint64 file);
void removeFile(Database& database, qint64 file);
/// Problems of the lines come ahead of problems of the events, as reading in one go names them.
enum class Phase { Lines = 0, Events = 1 };
void insertProblem(Database& database, qint64 file, qint64 segment, Phase phase, const Problem& problem);
QList<Segment> segmentsOf(Database& database, qint64 file);

}  // namespace platform::calendar::icalendar::index

#pragma once
#include "platform/calendar/icalendar/index/diskfile.h"
#include "platform/calendar/icalendar/index/tables.h"

#include <QSet>

// Files of many events: their rows stand in segments, and of a changed file only the segments that differ are
// looked through again.
namespace platform::calendar::icalendar::index {

inline constexpr int eventsPerSegment = 48;

class Parts {
 public:
  /// `file` must have its id.
  Parts(Database& database, const FileRow& file) : database_(database), file_(file) {}

  enum class Result { Same, Changed, Odd, Failed };
  /// Brings the rows to what the file holds now, and looks only at what is not where it was. `Odd`: the quick
  /// look does not suffice for this file; `Failed`: it could not be read. The rows are then without use.
  Result refresh(const DiskFile& disk, qint64 size);
  /// The same where it is known between which offsets of the old content the new one differs: nothing else is
  /// read.
  Result splice(const DiskFile& disk, qint64 size, qint64 from, qint64 to);

 private:
  Result replace(const DiskFile& disk, qint64 size, qsizetype first, qsizetype last);
  bool look(const DiskFile& disk, const Segment& at, qint64 length, qint64 calendarAfter);
  bool looksAlike(const DiskFile& disk, const Segment& segment, qint64 shift) const;
  void forget(const Segment& segment);
  void renumber();
  void renumberTouched();
  void renumberNameless();

  Database& database_;
  const FileRow& file_;
  QList<Segment> segments_;
  qint64 size_ = 0;        // of the file as the rows have it
  qint64 firstNew_ = 0;    // number of the first segment that was looked through
  int lineAfter_ = 0;      // behind the last of them
  QSet<quint64> touched_;  // names of events that came or went
  bool namelessTouched_ = false;
};

}  // namespace platform::calendar::icalendar::index

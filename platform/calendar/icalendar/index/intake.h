#pragma once
#include "platform/calendar/icalendar/index/diskfile.h"
#include "platform/calendar/icalendar/index/tables.h"

namespace platform::calendar::icalendar::index {

/// A smaller file is read whole when one of its events is asked for; the rows of a larger one lead to the
/// event itself.
inline constexpr qint64 wholeBytes = 64 * 1024;
/// A calendar in one file that cannot be taken apart by the quick look is parsed whole for each question up
/// to this size. Above, the index leaves it to who keeps it in memory.
inline constexpr qint64 maxOddBytes = 256 * 1024;
/// A calendar with more than this ahead of and between its events, equal zones counted once, is treated so,
/// too.
inline constexpr qint64 maxHeadBytes = 256 * 1024;

/// Takes in what stands in the calendar's files.
class Intake {
 public:
  /// `root` is a folder, or the one file of the calendar.
  Intake(Database& database, QString root, bool isFolder)
      : database_(database), root_(std::move(root)), isFolder_(isFolder) {}

  enum class Result { Same, Changed, Odd, Unread };
  /// Brings one file's rows up to date. `again`: though its times say that it did not change. `Odd`,
  /// `Unread`: only of a calendar in one file, which the index then cannot serve.
  Result take(const QString& name, const DiskState& now, bool again);
  /// A file that we wrote ourselves, in these places.
  Result taken(const QString& name, const QList<files::Splice>& splices, const DiskState& now);
  bool remove(const QString& name);

 private:
  QString pathOf(const QString& name) const { return isFolder_ ? root_ + u'/' + name : root_; }
  Result read(FileRow& row, const DiskFile& disk, const DiskState& now);
  bool hasLargeHead(qint64 file);
  Result takeWhole(FileRow& row, const QByteArray& bytes);
  /// Unsettled where the next look may have more luck. `before`: as it stands in the index.
  Result unread(FileRow& row, const FileRow& before);
  void rowsOf(const FileRow& row, const QByteArray& bytes);
  void clear(qint64 file);

  Database& database_;
  QString root_;
  bool isFolder_;
  qint64 empty_ = 0;  // a file that is new: it has no rows
};

}  // namespace platform::calendar::icalendar::index

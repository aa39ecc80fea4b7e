#pragma once
#include "platform/calendar/icalendar/eventsource.h"
#include "platform/calendar/icalendar/index/diskfile.h"
#include "platform/calendar/icalendar/index/tables.h"

#include <QCache>

namespace platform::calendar::icalendar::index {

/// A file is not what its rows say.
struct Stale {
  QString name;
};

/// What the parsed events of the last questions may take.
inline constexpr qsizetype maxKeptBytes = 6 * 1024 * 1024;

/// Reads the events that a question is about, and keeps them for the next.
class Hits {
 public:
  Hits(Database& database, QString root, bool isFolder)
      : database_(database), root_(std::move(root)), isFolder_(isFolder), kept_(maxKeptBytes) {}

  /// All events of these names, in the order of files and of their places in them. Throws Stale.
  QList<EventRef> named(const QSet<quint64>& uids);
  /// All events.
  QList<EventRef> all();
  /// Something of the files has changed. What was parsed is kept, and each part looked at once more.
  void forget();
  /// Those of a name in one file in parts, and what a write has to know of it. Throws Stale.
  Snapshot snapshot(const FileRow& file, const QString& uid);

 private:
  struct Hit {
    qint64 segmentStart = 0;
    int segmentLine = 0;
    EventPlace place;
    Bounds bounds;
  };
  struct HitFile {
    qint64 id = 0;
    QString name;
    quint64 stamp = 0, content = 0;
    Form form = Form::Whole;
    QList<Hit> hits;
    QSet<quint64> uids;
  };
  using Kept = std::shared_ptr<const CalendarFile>;
  struct KeptPart {
    Kept file;
    quint64 zones = 0;    // of the definitions of zones that other calendars of the file lent to it
    quint64 changes = 0;  // up to which change of the calendar's files that is known to hold
  };

  QString pathOf(const QString& name) const { return isFolder_ ? root_ + u'/' + name : root_; }
  QHash<qint64, HitFile> collect(const QSet<quint64>& uids);
  HitFile& fileOf(qint64 id, QHash<qint64, HitFile>& files);
  void read(const HitFile& file, QList<EventRef>& into);
  Kept whole(const HitFile& file);
  Kept everything(const HitFile& file) const;
  Kept part(const HitFile& file, const Hit& hit, const DiskFile& disk);
  QByteArray bytesOf(const HitFile& file, const Hit& hit, const DiskFile& disk) const;
  void keep(quint64 key, const KeptPart& part);
  Kept built(const HitFile& file, const Hit& hit, const QByteArray& event, quint64* zonesSum = nullptr);
  QByteArray headOf(qint64 file, qint64 calendar);
  /// Definitions of zones that the event's own calendar has not, from the others of its file, as calendars.
  QByteArray zonesElsewhere(qint64 file, qint64 calendar, const CalendarFile& part);
  bool isDefined(const CalendarFile& part, const QString& tzid);

  Database& database_;
  QString root_;
  bool isFolder_;
  QCache<quint64, KeptPart> kept_;                      // by content and place
  QHash<std::pair<qint64, qint64>, QByteArray> heads_;  // by file and calendar
  quint64 changes_ = 0;
  QHash<QString, bool> known_;  // names of zones, whether they tell the zone
};

}  // namespace platform::calendar::icalendar::index

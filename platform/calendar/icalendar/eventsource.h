#pragma once
#include "platform/calendar/icalendar/expansion.h"
#include "platform/files/atomicfile.h"

#include <QHash>

#include <chrono>
#include <limits>

namespace platform::calendar::icalendar {

/// Where the events of one calendar come from. A query knows only this; an index that outlives the process
/// can take the place of the cache below.
/// What a write has to know of a file at the moment of writing.
struct Snapshot {
  QString name;
  files::Fingerprint fingerprint;  // of the whole file; the hash is empty where only a part of it was read
  QList<EventRef> events;          // those asked for, as they are on the disk now
  std::shared_ptr<const CalendarFile> whole;  // null when only a part was read
  /// Where a new event goes: the offset in the file of the END line of its last calendar; -1 without a
  /// calendar.
  qint64 newEventAt = -1;
  QByteArray lineEnd;
  bool isEmpty = false;  // nothing but white space
};

class EventSource {
 public:
  virtual ~EventSource() = default;
  /// The groups with an event that may start between the two moments (both in milliseconds of UTC, without
  /// regard to zones: more may come than is asked for, never less).
  virtual QList<Group> between(qint64 from, qint64 to) = 0;
  virtual Group withUid(const QString& uid) = 0;
  /// The groups with an event of exactly this subject; more may come than is asked for.
  virtual QList<Group> withSubject(const QString& subject) {
    static_cast<void>(subject);
    return between(std::numeric_limits<qint64>::min(), std::numeric_limits<qint64>::max());
  }
  /// How many events there are, at most `most`.
  virtual qint64 countUpTo(qint64 most) = 0;
  virtual QList<Problem> problems() = 0;
  /// The events with that UID in one file (none: all that the file has no UID for is left out as well), read
  /// anew.
  virtual Snapshot snapshot(const QString& name, const QString& uid) = 0;
  /// A file was written by us: what stands in it now is what stood there before, with these stretches
  /// replaced. `after` is the file's fingerprint since then. Without splices: to be read again whatever its
  /// times say.
  virtual void written(const QString& name, const QList<files::Splice>& splices,
                       const files::Fingerprint& after) = 0;

  virtual bool isFolder() const = 0;
  virtual QString pathOf(const QString& name) const = 0;
  virtual QString changeTag() = 0;
  /// As `Store::othersTag` tells.
  virtual QString othersTag(Look look) = 0;
  /// Takes away what a crash in the middle of a save has left here, ahead of the first save and then at
  /// times: whoever only reads a calendar leaves no trace in its folder.
  virtual void sweep() = 0;
};

/// The files of a calendar, each read once and kept until its time or size differs.
class FileCache : public EventSource {
 public:
  /// A folder of .ics files, or one file. `label` names the calendar in failures.
  FileCache(QString path, QString label);
  QList<Group> between(qint64 from, qint64 to) override;
  Group withUid(const QString& uid) override;
  qint64 countUpTo(qint64 most) override;
  QList<Problem> problems() override;
  Snapshot snapshot(const QString& name, const QString& uid) override;
  void written(const QString& name, const QList<files::Splice>& splices,
               const files::Fingerprint& after) override;

  /// Gives back the memory; the next question reads the files again.
  void forget();
  /// A file with this content, not taken apart again where it is known.
  std::shared_ptr<const CalendarFile> parsed(const QString& name, const QByteArray& bytes) const;
  bool isFolder() const override;
  QString pathOf(const QString& name) const override;
  QString changeTag() override;
  QString othersTag(Look look) override;
  void sweep() override;
  /// What is too young to be surely left over when it is swept is old enough at the next time, and another
  /// program may crash while this one runs. Tests shorten it.
  void setSweepPause(std::chrono::milliseconds pause) { sweepPause_ = pause; }

 private:
  struct Stamp {
    qint64 mtimeNs = 0;
    qint64 size = 0;
    quint64 inode = 0;     // another file may take the place of one of the same time and size
    qint64 changedNs = 0;  // by the system's clock, whatever the time above was set to; 0: not known
    bool operator==(const Stamp&) const = default;
  };
  struct Entry {
    Stamp stamp;
    bool settled = true;  // false: written so shortly before it was read that its time proves nothing
    std::shared_ptr<const CalendarFile> file;  // null when it could not be read
    QString error;
  };
  QMap<QString, Stamp> stamps() const;
  void refresh();
  void read(const QString& name, const Stamp& stamp);
  void regroup();

  QString path_, label_;
  QMap<QString, Entry> entries_;
  QHash<QString, Group> groups_;
  bool grouped_ = false;
  QHash<QString, Stamp> ours_;  // of files written by us and not read since
  quint64 others_ = 0;          // changes that were not
  std::optional<std::chrono::steady_clock::time_point> looked_;
  std::chrono::milliseconds sweepPause_ = std::chrono::hours(1);
  std::optional<std::chrono::steady_clock::time_point> swept_;
};

}  // namespace platform::calendar::icalendar

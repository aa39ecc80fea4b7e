#pragma once
#include "platform/calendar/icalendar/expansion.h"

#include <QHash>

namespace platform::calendar::icalendar {

/// Where the events of one calendar come from. A query knows only this; an index that outlives the process
/// can take the place of the cache below.
class EventSource {
 public:
  virtual ~EventSource() = default;
  /// The groups with an event that may start between the two moments (both in milliseconds of UTC, without
  /// regard to zones: more may come than is asked for, never less).
  virtual QList<Group> between(qint64 from, qint64 to) = 0;
  virtual Group withUid(const QString& uid) = 0;
  virtual QList<Problem> problems() = 0;
  /// A file that was just written: to be read again whatever its times say.
  virtual void forget(const QString& name) = 0;
};

/// The files of a calendar, each read once and kept until its time or size differs.
class FileCache : public EventSource {
 public:
  /// A folder of .ics files, or one file. `label` names the calendar in failures.
  FileCache(QString path, QString label);
  QList<Group> between(qint64 from, qint64 to) override;
  Group withUid(const QString& uid) override;
  QList<Problem> problems() override;
  void forget(const QString& name) override;

  /// A file with this content, not taken apart again where it is known.
  std::shared_ptr<const CalendarFile> parsed(const QString& name, const QByteArray& bytes) const;
  bool isFolder() const;
  QString pathOf(const QString& name) const;
  QString changeTag() const;
  /// Takes away what a crash in the middle of a save has left here, once, before the first save: whoever only
  /// reads a calendar leaves no trace in its folder.
  void sweep();

 private:
  struct Stamp {
    qint64 mtimeNs = 0;
    qint64 size = 0;
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
  bool swept_ = false;
};

}  // namespace platform::calendar::icalendar

#pragma once
#include "platform/calendar/icalendar/changes.h"
#include "platform/calendar/icalendar/eventsource.h"
#include "platform/files/atomicfile.h"

// Writing: one change, taken into whatever the file holds at the moment of writing.
namespace platform::calendar::icalendar {

class Transaction {
 public:
  Transaction(FileCache& cache, ZoneBook& book, QString label, const QTimeZone& zone);

  Item create(const Change& change);
  Item save(const ItemKey& key, const QString& tag, const Change& change);
  void remove(const ItemKey& key, const QString& tag);

 private:
  struct Snapshot {
    std::shared_ptr<const CalendarFile> file;
    files::Fingerprint fingerprint;
  };
  /// What a key means in a snapshot: an event of the file, or an unchanged occurrence of one.
  struct Target {
    EventRef event;
    std::optional<Occurrence> occurrence;
  };
  /// New content of a file; nothing when it is to stay as it is.
  using Edit = std::function<std::optional<QByteArray>(const Snapshot&)>;

  Snapshot open(const QString& name) const;
  /// Reads, lets `edit` work and writes; begins again when another program wrote meanwhile.
  void rewrite(const QString& name, const Edit& edit);
  void write(const QString& name, const Snapshot& snapshot, const QByteArray& bytes, bool* again) const;
  void refuseProtected(const QString& path) const;

  Group groupOf(const Snapshot& snapshot, const QString& uid);
  Target find(const Snapshot& snapshot, const Group& group, const ItemKey& key, const QString& tag);
  Target choose(const QList<Target>& candidates, const ItemKey& key, const QString& tag) const;
  QByteArray saved(const Snapshot& snapshot, const Group& group, const Target& target, const Change& change);
  QByteArray withoutItem(const Snapshot& snapshot, const Group& group, const Target& target);
  QByteArray withoutOverride(const Snapshot& snapshot, const Group& group, const EventRef& override);
  void excludeElsewhere(const EventRef& master, qint64 wall);
  Item readBack(const QString& name, const QString& uid, const QString& recurrenceId, const QString& place);

  [[noreturn]] void fail(qint32 number, const QString& text) const;

  FileCache& cache_;
  QString label_;
  QTimeZone zone_;
  QDateTime now_;
  QString writtenTag_;  // of the component that was put into the file
  QList<Problem> ignored_;
  Expansion expansion_;
};

}  // namespace platform::calendar::icalendar

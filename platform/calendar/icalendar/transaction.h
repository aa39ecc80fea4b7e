#pragma once
#include "platform/calendar/icalendar/changes.h"
#include "platform/calendar/icalendar/writer.h"

// Writing: one change, taken into whatever the file holds at the moment of writing.
namespace platform::calendar::icalendar {

class Transaction {
 public:
  Transaction(EventSource& source, Writer& writer, ZoneBook& book, QString label, const QTimeZone& zone);
  /// For a change that was asked for before: it is made as it would have been then.
  Transaction(EventSource& source, Writer& writer, ZoneBook& book, QString label, const Step& step);

  Item create(const Change& change);
  Item save(const ItemKey& key, const QString& tag, const Change& change);
  void remove(const ItemKey& key, const QString& tag);

 private:
  using Splices = QList<files::Splice>;
  /// What a key means in a snapshot: an event of the file, or an unchanged occurrence of one.
  struct Target {
    EventRef event;
    std::optional<Occurrence> occurrence;
  };
  using Edit = std::function<Splices(const Snapshot&)>;

  /// Reads, lets `edit` work and writes; begins again when another program wrote meanwhile.
  void rewrite(const QString& name, const QString& uid, const Step& step, const Edit& edit);
  bool put(const Snapshot& snapshot, const QString& uid, const Splices& splices, const Step& step);
  bool nothingLeft(const Snapshot& snapshot, const Splices& splices) const;

  Group groupOf(const Snapshot& snapshot, const QString& uid);
  static Group groupOf(const Snapshot& snapshot, Group group);
  Target find(const Snapshot& snapshot, const Group& group, const ItemKey& key, const QString& tag);
  Target choose(const QList<Target>& candidates, const ItemKey& key, const QString& tag) const;
  Splices saved(const Group& group, const Target& target, const Change& change);
  Splices added(const Snapshot& snapshot, const Change& change, const QString& uid);
  Splices withoutItem(const Snapshot& snapshot, const Group& group, const Target& target);
  Splices withoutOverride(const Snapshot& snapshot, const Group& group, const EventRef& override);
  Splices excluding(const EventRef& master, qint64 wall);
  void excludeElsewhere(const EventRef& master, qint64 wall);
  void removeElsewhere(const QList<EventRef>& overrides);
  QByteArray newEvent(const Change& change, const QString& uid, const QByteArray& lineEnd);
  Item readBack(const QString& name, const QString& uid, const QString& recurrenceId, const QString& place);

  [[noreturn]] void fail(qint32 number, const QString& text) const;

  EventSource& source_;
  Writer& writer_;
  QString label_;
  QTimeZone zone_;
  QDateTime now_;
  QString writtenTag_;  // of the component that was put into the file
  QList<Problem> ignored_;
  Expansion expansion_;
};

}  // namespace platform::calendar::icalendar

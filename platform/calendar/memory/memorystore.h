#pragma once
#include "platform/calendar/memory/recurrence.h"
#include "platform/calendar/store.h"

namespace platform::calendar {

/// A calendar that lives in the program's memory. Items are given as values; the zone of their start is the
/// one that their series counts in. `Qt::LocalTime` is a floating time, and an all-day item is its dates
/// alone: both stand where the query's zone puts them. Items come back from `save` in the zone of the changed
/// start, else in the clock's.
class MemoryStore : public Store {
 public:
  MemoryStore() = default;

  /// A folder with an empty id gets one; returns the id.
  QString addFolder(FolderInfo info);
  /// A single item, as another program would have written it. An empty UID is filled in.
  ItemKey add(const QString& folder, Item item);
  ItemKey addSeries(const QString& folder, Item master, const Recurrence& rule);
  /// One occurrence of a series as it was changed by itself.
  ItemKey addException(const QString& folder, const ItemKey& master, const QString& recurrenceId,
                       Item changed);
  /// A meeting request and, when given, the appointment it made. That one is reached through the request
  /// only.
  ItemKey addMeetingRequest(const QString& folder, Item request, const std::optional<Item>& appointment);
  void addProblem(const QString& folder, const Problem& problem);
  /// What another program does between a read and a write: the item's tag changes, nothing is asked.
  void changeByAnother(const QString& folder, const ItemKey& key, const Change& change);
  void removeByAnother(const QString& folder, const ItemKey& key);

  QList<FolderInfo> folders() override;
  QList<Item> items(const QString& folder, const Query& query) override;
  Item save(const QString& folder, const ItemKey& key, const QString& tag, const Change& change) override;
  void remove(const QString& folder, const ItemKey& key, const QString& tag) override;
  QString changeTag(const QString& folder) override;
  QString othersTag(const QString& folder, Look look) override;
  QList<Problem> problems(const QString& folder) override;

 private:
  struct Entry {
    Item item;                       // times as they were given
    std::optional<Recurrence> rule;  // of a master
    std::optional<ItemKey> associated;
    bool hidden = false;  // behind a meeting request
  };
  struct Folder {
    FolderInfo info;
    QList<Entry> entries;
    QList<Problem> problems;
    qint64 revision = 0;
    qint64 byOthers = 0;
  };

  Folder& folderOf(const QString& id);
  Folder& changedByAnother(const QString& id);
  static Entry* find(Folder& folder, const ItemKey& key);
  static Entry* masterOf(Folder& folder, const ItemKey& key);
  ItemKey insert(Folder& folder, Entry entry);
  void touch(Folder& folder, Entry& entry);
  void erase(Folder& folder, const ItemKey& key);
  static std::optional<Item> occurrence(const Entry& master, const QString& recurrenceId);
  Entry& openForChange(Folder& folder, const ItemKey& key, const QString& tag);
  void collect(const Folder& folder, const Entry& entry, const Query& query, QList<Item>& found) const;
  Item shown(const Folder& folder, const Entry& entry, const QTimeZone& zone) const;

  QList<Folder> folders_;
  qint64 counter_ = 0;
};

}  // namespace platform::calendar

#pragma once
#include "platform/calendar/store.h"

#include <functional>
#include <memory>
#include <vector>

namespace platform::calendar {

/// One calendar as the user has configured it. `path` is a folder with one .ics file for each item (the form
/// that khal, vdirsyncer and Radicale keep) or one .ics file with many.
struct IcalendarFolder {
  QString id;
  QString name;
  QString storeName;
  QString path;
  bool readOnly = false;
};

/// What the store keeps beside the calendars, and whom it asks. All of it may be left out.
struct IcalendarSafety {
  /// Copies of large calendar files before they are first written, and which calendars had many events;
  /// empty: no copies, and what a calendar had is known only until the end of the program.
  QString stateFolder;
  /// A calendar that had many events shows none, and is about to be written: whether it may. `text` says so
  /// and asks. Without an answer it may not.
  std::function<bool(const QString& text)> mayWriteEmptied;
};

/// Calendars in iCalendar files. Reading never changes a file; a change replaces the lines that it touches
/// and leaves every other byte as it is. `ItemKey::place` is the file's name, with "#n" for the n-th of
/// several alike in it. A new item is stored in UTC (an all-day one as its dates); moving an item keeps the
/// zone in which it is written. Items come back from `save` in the zone of the changed start, else in the
/// clock's.
class IcalendarStore : public Store {
 public:
  /// `indexFolder`: where an index of each calendar may stand, so that a large one opens at once; made when
  /// missing. Empty: every file is read.
  explicit IcalendarStore(QList<IcalendarFolder> folders, const QString& indexFolder = {},
                          const IcalendarSafety& safety = {});
  ~IcalendarStore() override;

  QList<FolderInfo> folders() override;
  QList<Item> items(const QString& folder, const Query& query) override;
  Item save(const QString& folder, const ItemKey& key, const QString& tag, const Change& change) override;
  void remove(const QString& folder, const ItemKey& key, const QString& tag) override;
  QString changeTag(const QString& folder) override;
  QString othersTag(const QString& folder, Look look) override;
  QList<Problem> problems(const QString& folder) override;
  /// Changes are kept back for calendars in one file. At some hundred of them they are written all the same;
  /// those never flushed are lost with the store.
  void hold() override;
  QList<Unwritten> flush() override;

 private:
  struct Calendar;
  Calendar& calendar(const QString& id);

  std::vector<std::unique_ptr<Calendar>> calendars_;
};

}  // namespace platform::calendar

#pragma once
#include "platform/calendar/icalendar/index/diskfile.h"
#include "platform/calendar/icalendar/index/tables.h"

#include <QStringList>

#include <atomic>
#include <condition_variable>
#include <mutex>
#include <thread>
#include <vector>

namespace platform::calendar::icalendar::index {

/// The files of a folder as the index has them, small enough to be held at once: twenty bytes for each.
class KnownFiles {
 public:
  explicit KnownFiles(Database& database);
  enum class State { Same, Other, Unknown };
  State see(const QString& name, quint64 stamp);
  /// The ids of those that were not seen.
  QList<qint64> unseen() const;

 private:
  struct Known {
    quint64 name, stamp;
  };
  std::vector<Known> files_;  // in order of their names' checksums
  std::vector<quint32> ids_;
  std::vector<bool> seen_;
};

/// Looks at every file of a folder, or at the one file of a calendar, on a thread of its own with a
/// connection of its own, and says which are not as the index has them. It changes nothing.
class FolderCheck {
 public:
  struct Differences {
    bool failed = false;  // or so many that going through all is quicker
    QStringList names;    // other than they were, new, or gone
  };
  FolderCheck(QString path, bool isFolder, QString databasePath, quint64 identity);
  /// Stops the check, if one runs.
  ~FolderCheck();

  /// Where no thread can be had the check has failed, which `take` tells.
  void start();
  /// Waits at most so long; nothing while the check still runs, or when none was started.
  std::optional<Differences> take(int waitMs);
  /// Whether `take` would come back with something at once.
  bool isDone();

 private:
  Differences look() const;
  void lookAtFolder(Database& database, Differences& found) const;

  QString path_;
  bool isFolder_;
  QString databasePath_;
  quint64 identity_;
  std::thread thread_;
  std::mutex mutex_;
  std::condition_variable finished_;
  bool done_ = false;
  Differences found_;
  std::atomic<bool> stop_ = false;
};

}  // namespace platform::calendar::icalendar::index

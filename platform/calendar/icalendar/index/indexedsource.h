#pragma once
#include "platform/calendar/icalendar/eventsource.h"
#include "platform/calendar/icalendar/index/foldercheck.h"
#include "platform/calendar/icalendar/index/hits.h"
#include "platform/calendar/icalendar/index/indexfile.h"
#include "platform/calendar/icalendar/index/intake.h"
#include "platform/calendar/icalendar/index/watch.h"

#include <chrono>

namespace platform::calendar::icalendar {

/// How an index is kept in step with the calendar's files. Tests shorten what depends on time.
struct IndexOptions {
  QString cacheFolder;
  /// Changes are told by the system where it can; else all files are looked at, at most this often.
  bool watches = true;
  int checkEveryMs = 2000;
  /// The first answer comes at once where the folder is as it was. Where it is not, the first answer waits so
  /// long for a look at its files; every later one waits until that is done. A glance never does.
  int firstAnswerMs = 3000;
};

/// The events of a calendar from an index that outlives the process: rows that say when each event can be,
/// and where it stands. Only what a question is about is read. It shows what FileCache shows; where the index
/// cannot serve, a FileCache does.
class IndexedSource : public EventSource {
 public:
  /// A folder of .ics files, or one file. `label` names the calendar in failures.
  IndexedSource(QString path, const QString& label, IndexOptions options);
  ~IndexedSource() override;

  QList<Group> between(qint64 from, qint64 to) override;
  Group withUid(const QString& uid) override;
  QList<Group> withSubject(const QString& subject) override;
  qint64 countUpTo(qint64 most) override;
  QList<Problem> problems() override;
  Snapshot snapshot(const QString& name, const QString& uid) override;
  void written(const QString& name, const QList<files::Splice>& splices,
               const files::Fingerprint& after) override;
  bool isFolder() const override { return cache_.isFolder(); }
  QString pathOf(const QString& name) const override { return cache_.pathOf(name); }
  QString changeTag() override;
  QString othersTag(Look look) override;
  void sweep() override { cache_.sweep(); }

  /// For tests: whether the last question was answered from the index.
  bool answeredFromIndex() const { return answeredFromIndex_; }
  QString indexPath() const { return file_.path(); }

 private:
  enum class Wait { None, Short, Full };
  using Clock = std::chrono::steady_clock;

  template <class Result, class Asked, class Otherwise>
  Result answered(Wait wait, const Asked& asked, const Otherwise& otherwise);
  bool ready();
  bool open();
  bool make();
  void close();
  bool discard();
  void follow();
  void startCheck();
  bool isDue() const;
  bool isWorthAGlance();
  bool refresh(Wait wait);
  bool refreshOne();
  bool refreshFolder(Wait wait);
  bool takeNews(Wait wait, QSet<QString>& plain, QSet<QString>& again);
  void takeFiles(QSet<QString> names, bool again);
  bool takeOne(const index::DiskState& now, bool again);
  bool passAll(index::Database& database);
  void takeUnsure(QSet<QString>& linked, QSet<QString>& unsettled);
  void rememberFolder();
  enum class By { Us, Others };
  void changed(By by);
  QList<Group> named(const QSet<quint64>& uids);
  static QList<Group> grouped(const QList<EventRef>& events);
  QList<Problem> problemsOf(const index::FileRow& file);

  QString path_;
  IndexOptions options_;
  FileCache cache_;
  index::IndexFile file_;
  bool isFolder_ = false;
  QString ownName_;  // of the one file
  std::unique_ptr<index::Database> database_;
  std::optional<index::Intake> intake_;
  std::optional<index::Hits> hits_;
  bool following_ = false;  // changes are heard of, or looked for
  bool asItWas_ = false;    // the folder, when the index was opened
  index::Watch watch_;
  std::unique_ptr<index::FolderCheck> check_;
  qint64 rootDevice_ = 0;
  quint64 rootInode_ = 0;
  Clock::time_point lastPass_;
  Clock::time_point lastTaken_;  // when something of the files was taken in
  QSet<QString> pending_;
  bool unsureTaken_ = false;
  std::optional<qint64> version_;  // of the index file, as others write to it
  bool answeredOnce_ = false, answeredFromIndex_ = false;
  int failures_ = 0;
  std::optional<Clock::time_point> taken_;  // since then another process has the index
  std::optional<quint64> seen_;             // the stamp of the rows that the last snapshot was made from
  QString nonce_;
  quint64 revision_ = 0, others_ = 0;
  QString told_;  // the last tag of the others' changes
};

}  // namespace platform::calendar::icalendar

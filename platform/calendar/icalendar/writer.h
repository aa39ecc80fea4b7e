#pragma once
#include "platform/calendar/icalendar/eventsource.h"

#include <QFileInfo>

// Where the edits of a calendar's files go.
namespace platform::calendar::icalendar {

/// One change as it was asked for, so that it can be made once more on what another program has left.
struct Step {
  enum class Kind { Save, Remove };
  Kind kind = Kind::Save;
  ItemKey key;
  QString tag;
  Change change;
  QTimeZone zone;
  QDateTime now;
};

/// Whether a save may put something there. The mode bits count for the administrator as well.
bool mayBeWritten(const QFileInfo& place);
/// What a path leads to through links; one that leads nowhere as it is.
QFileInfo reached(const QString& path);

class Writer {
 public:
  virtual ~Writer() = default;
  /// The stretches of one file that `step` replaces in the events of `uid`. False, and nothing done: the file
  /// is no longer what the snapshot says. On failure nothing is changed either.
  virtual bool put(const Snapshot& snapshot, const QString& uid, const QList<files::Splice>& splices,
                   const Step& step) = 0;
  virtual bool create(const QString& name, const QByteArray& bytes) = 0;
  virtual bool remove(const Snapshot& snapshot) = 0;
};

/// Writes at once.
class FileWriter : public Writer {
 public:
  FileWriter(EventSource& source, QString label) : source_(source), label_(std::move(label)) {}

  bool put(const Snapshot& snapshot, const QString& uid, const QList<files::Splice>& splices,
           const Step& step) override;
  bool create(const QString& name, const QByteArray& bytes) override;
  bool remove(const Snapshot& snapshot) override;

  /// Fails where a change would fail before a byte is written.
  void check(const QString& name);
  /// Asked before anything is changed; what it throws keeps the calendar as it is.
  std::function<void()> mayChange;
  /// Called before a file is written.
  std::function<void(const QString& name)> beforeWriting;
  std::function<void()> afterWriting;

 private:
  /// The rename that puts the new content in place would go through even where the file itself is
  /// write-protected, and needs the folder of what a link leads to.
  void refuseProtected(const QString& name) const;
  void refuseTooLarge(const QString& name, qint64 size) const;
  void prepare(const QString& name);
  bool taken(const QString& name, const QList<files::Splice>& splices, const files::WriteResult& result);
  [[noreturn]] void fail(qint32 number, const QString& text) const;

  EventSource& source_;
  QString label_;
};

}  // namespace platform::calendar::icalendar

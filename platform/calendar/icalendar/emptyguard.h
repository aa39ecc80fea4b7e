#pragma once
#include <QString>

namespace platform::calendar::icalendar {

/// Remembers, over restarts, that a calendar had many events. One that had and suddenly shows none was most
/// likely emptied by an accident: a file that was cut, a folder that is not mounted, a sync that went wrong.
/// What is written then would be taken for the truth by whoever syncs with it.
class EmptyGuard {
 public:
  /// Above this many events a calendar is missed when it is empty.
  static constexpr qint64 many = 20;

  /// Without a state folder it remembers as long as it lives.
  EmptyGuard(const QString& stateFolder, const QString& calendarPath);
  /// What the calendar shows now, counted up to one more than `many`.
  void saw(qint64 count);
  bool isSuddenlyEmpty(qint64 count) const { return hadMany_ && count == 0; }
  bool hadMany() const { return hadMany_; }
  /// It is as it should be.
  void confirm() { remember(false); }

 private:
  void remember(bool hadMany);

  QString path_;  // of the file that says so
  bool hadMany_ = false;
};

}  // namespace platform::calendar::icalendar

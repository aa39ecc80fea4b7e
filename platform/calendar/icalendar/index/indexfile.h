#pragma once
#include "platform/calendar/icalendar/index/database.h"

#include <functional>
#include <memory>

namespace platform::calendar::icalendar::index {

class IndexLock;

/// The file in which the index of one calendar stands. It may be thrown away at any time, and is wherever
/// there is a doubt.
class IndexFile {
 public:
  /// `cacheFolder` is made when it is missing, for nobody but its owner.
  IndexFile(const QString& cacheFolder, QString calendarPath);

  /// Null when there is none that can be used. Throws IndexFailure when another process has it and does not
  /// let go.
  std::unique_ptr<Database> open() const;
  /// Makes a new one in the place of the old; `fill` puts the rows in. Throws IndexFailure; a busy one when
  /// somebody uses the old one, or is making a new one himself.
  std::unique_ptr<Database> make(const std::function<void(Database&)>& fill) const;
  /// False when somebody else uses it: then it stays.
  bool remove() const;

  QString path() const { return path_; }
  quint64 identity() const { return identity_; }

 private:
  std::unique_ptr<Database> opened(std::shared_ptr<IndexLock> lock) const;
  void build(const QString& fresh, const std::function<void(Database&)>& fill) const;

  QString folder_, calendarPath_, path_;
  quint64 identity_;
};

}  // namespace platform::calendar::icalendar::index

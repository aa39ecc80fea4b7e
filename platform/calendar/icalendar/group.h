#pragma once
#include "platform/calendar/icalendar/calendarfile.h"

#include <QHash>

#include <memory>

// All that a calendar has of one item.
namespace platform::calendar::icalendar {

struct EventRef {
  std::shared_ptr<const CalendarFile> file;
  const Event* event = nullptr;
};

/// All events of a folder with one UID.
struct Group {
  QList<EventRef> masters;  // and singles
  QList<EventRef> overrides;
};

/// Which series each override of a group belongs to: one in its own file, else in another one. Found once for
/// all of them, since a group may have thousands of both. The group must outlive it.
class Owners {
 public:
  explicit Owners(const Group& group);

  const Group& group() const { return group_; }
  /// Null when there is none.
  const EventRef* of(qsizetype override) const { return owners_.at(override); }
  const EventRef* of(const EventRef& override) const;
  /// The overrides that hold for a series: those of all series of its file.
  const QList<qsizetype>& in(const QString& file) const;

  /// Of these owners alone, as long as somebody has it.
  std::shared_ptr<const int> mark() const { return mark_; }

 private:
  const Group& group_;
  std::shared_ptr<const int> mark_ = std::make_shared<const int>(0);
  QList<const EventRef*> owners_;
  QHash<QString, QList<qsizetype>> byFile_;
};

}  // namespace platform::calendar::icalendar

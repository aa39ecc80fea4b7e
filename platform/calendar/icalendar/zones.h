#pragma once
#include "platform/calendar/icalendar/syntax.h"

#include <QHash>
#include <QTimeZone>

// Zones of time by whatever name a calendar program gives them.
namespace platform::calendar::icalendar {

/// A zone as the machine knows it, or one evaluated from the definition that a file carries. Wall-clock times
/// are milliseconds counted as if they were UTC.
class Zone {
 public:
  Zone() : Zone(QTimeZone::utc()) {}
  explicit Zone(QTimeZone zone) : zone_(std::move(zone)) {}

  qint64 toWall(qint64 instant) const { return instant + offsetAt(instant); }
  /// A time that the clocks skip is the later wall time (02:30 becomes 03:30); of a time that comes twice the
  /// first.
  qint64 toInstant(qint64 wall) const;
  friend bool operator==(const Zone& a, const Zone& b) {
    return a.zone_ == b.zone_ && a.changes_ == b.changes_;
  }

  /// From a VTIMEZONE; nothing when it defines nothing.
  static std::optional<Zone> defined(const Document& document, const Component& definition);

 private:
  struct Change {
    qint64 instant;
    qint64 offset;
  };
  struct Changes {
    qint64 before = 0;
    std::vector<Change> list;
  };
  qint64 offsetAt(qint64 instant) const;

  QTimeZone zone_;
  std::shared_ptr<const Changes> changes_;  // when evaluated from a definition
};

/// The zone that a name alone tells: IANA, IANA behind a path, Windows, a Windows display name with or
/// without its offset, a translated one. Nothing when it is none of these.
std::optional<QTimeZone> zoneByName(const QString& name);
/// "UTC+01", "GMT-0330", and the offset in front of a display name that is in no table.
std::optional<QTimeZone> zoneByOffset(const QString& name);

/// Resolves the names of a file, each name and each definition once. A name known everywhere comes before the
/// file's own definition of it: evaluating definitions is what costs time, and the machine's zones know the
/// past.
class ZoneBook {
 public:
  /// `scope`: the components among which the definitions stand (those of the item's calendar first).
  std::optional<Zone> find(const Document& document, const QList<const Component*>& scope,
                           const QString& tzid);

 private:
  QHash<QString, std::optional<QTimeZone>> names_;
  QHash<QByteArray, std::optional<Zone>> definitions_;  // by name and text
};

}  // namespace platform::calendar::icalendar

#pragma once
#include "platform/calendar/icalendar/syntax.h"

#include <QHash>
#include <QSet>
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

  /// From a VTIMEZONE; nothing when it defines nothing, or so much that nobody's zone can be meant
  /// (`tooMuch`).
  static std::optional<Zone> defined(const Document& document, const Component& definition,
                                     bool* tooMuch = nullptr);
  /// From TZ and DAYLIGHT of a calendar of version 1.0. They say little: the viewer's zone, where it agrees
  /// with them. Nothing without TZ.
  static std::optional<Zone> ofOldCalendar(const Document& document, const Component& calendar,
                                           const Zone& viewer);

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

/// "EST", "CET": says less than a definition of that name that stands beside it.
bool isAbbreviation(const QString& name);

/// What a calendar says of the zone in which it was kept, found once: its events may be as many as its lines.
struct CalendarHead {
  bool ofGoogle = false;
  std::optional<QByteArray> zone;  // X-WR-TIMEZONE, as written
  QByteArrayList definitions;      // the TZIDs of the first few zones that it defines, as written
  Component clock;                 // in version 1.0: the lines TZ and DAYLIGHT
};

/// The definitions of zones in a file by their names, so that thousands of them cost no more than a few.
class ZoneIndex {
 public:
  explicit ZoneIndex(const Document& document);

  const CalendarHead& headOf(const Component* calendar) const;
  /// The calendar's own definition, else null.
  const Component* own(const Component* calendar, const QString& name) const;
  /// The first one of the file, else null.
  const Component* first(const QString& name) const { return own(nullptr, name); }

 private:
  void add(const Document& document, const std::vector<Component>& components, const Component* calendar);
  QHash<QPair<const Component*, QString>, const Component*> definitions_;
  QHash<const Component*, CalendarHead> heads_;
};

/// Resolves the names of a file, each name and each definition once. A name known everywhere comes before the
/// file's own definition of it: evaluating definitions is what costs time, and the machine's zones know the
/// past. What a definition means is kept by its name and text, whichever file it stands in.
class ZoneBook {
 public:
  /// `calendar`: the item's, whose definitions come before those of the file's other calendars.
  std::optional<Zone> find(const Document& document, const ZoneIndex* index, const Component* calendar,
                           const QString& tzid);
  /// Whether the name is unknown only because its definition is beyond all measure.
  bool wasTooMuch(const QString& tzid) const { return tooMuch_.contains(tzid); }

 private:
  const std::optional<QTimeZone>& named(const QString& tzid);
  std::optional<Zone> definedBy(const Document& document, const Component* definition, const QString& tzid);

  QHash<QString, std::optional<QTimeZone>> names_;
  QHash<QByteArray, std::optional<Zone>> definitions_;  // by name and text
  QSet<QString> tooMuch_;
};

}  // namespace platform::calendar::icalendar

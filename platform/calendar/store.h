#pragma once
#include "platform/basic/failure.h"

#include <QDateTime>
#include <QHash>
#include <QList>
#include <QMap>
#include <QString>
#include <QStringList>
#include <QTimeZone>

#include <memory>
#include <optional>

// What a calendar store must do. Times are instants; a floating time or a date alone is taken in the zone
// that the query names. All failures are platform::Failure with a description that names the calendar and the
// place.
namespace platform::calendar {

/// Numbers of the failures, as the calendar's own object model gives them.
inline constexpr qint32 errNotFound = static_cast<qint32>(0x8004010F);
inline constexpr qint32 errAccessDenied = static_cast<qint32>(0x80070005);
inline constexpr qint32 errChangedMeanwhile = static_cast<qint32>(0x80040109);
/// The calendar had many items and shows none: nothing is written to it until that is known to be right.
inline constexpr qint32 errSuddenlyEmpty = static_cast<qint32>(0x80040F01);
inline constexpr qint32 errStoreBroken = static_cast<qint32>(0x80004005);

struct FolderInfo {
  QString id;         // stable, unique over all stores
  QString name;       // "Calendar"
  QString storeName;  // display name of the mailbox's top, "Mailbox - Jane Doe"
  bool holdsAppointments = true;
  bool readOnly = false;
};

enum class Sensitivity { Normal = 0, Personal = 1, Private = 2, Confidential = 3 };

/// What one item is: it stands alone, heads a series, is an unchanged occurrence or a changed one.
enum class Kind { Single, Master, Occurrence, Exception };

/// Identity of an item within a folder. `recurrenceId` is empty for singles and masters, else the original
/// start of the occurrence in basic form as its series counts ("20240219T090000", "20240219" for all-day
/// series). `place` tells two items apart that have the same UID (another file, the n-th of a broken file); a
/// caller only hands it back.
struct ItemKey {
  QString place;
  QString uid;
  QString recurrenceId;
  friend bool operator==(const ItemKey&, const ItemKey&) = default;
};

struct UserProperty {
  int type = 1;  // olText 1, olNumber 3, olDateTime 5, olYesNo 6
  QString value;
  friend bool operator==(const UserProperty&, const UserProperty&) = default;
};

struct Item {
  ItemKey key;
  QString tag;  // changes whenever what is stored changes
  Kind kind = Kind::Single;
  QString subject;
  QString body;     // plain text, line breaks "\r\n", as it stands
  QDateTime start;  // instant, in the zone of the query
  QDateTime end;
  bool allDay = false;
  Sensitivity sensitivity = Sensitivity::Normal;
  QStringList categories;  // single names, in order
  /// The text last set through this program. Null when another program wrote the names: a text that says
  /// something else than `categories` does not count.
  QString categoriesText;
  QString billingInformation;
  QMap<QString, UserProperty> userProperties;
  bool zoneUnknown = false;          // its zone is defined nowhere: shown in the viewer's zone
  QString messageClass;              // not empty: overrides the class that follows from `kind`
  std::shared_ptr<Item> associated;  // the appointment behind a meeting request

  /// Whole minutes from start to end; an all-day item counts 1440 a day, whatever the clocks did.
  int durationMinutes() const;
};

struct Query {
  /// Bounds of the item's start, both included; invalid: no bound. With `expandSeries` both must be valid.
  QDateTime startFrom, startTo;
  bool expandSeries = false;       // occurrences instead of masters
  std::optional<QString> subject;  // exactly this subject
  QString uid;                     // not empty: this item, its series' master and exceptions only
  QTimeZone zone = QTimeZone::systemTimeZone();
};

/// The fields to be changed; what is not set stays as it is, byte for byte where the store is a file.
struct Change {
  std::optional<QString> subject;
  std::optional<QString> body;
  std::optional<QDateTime> start;
  std::optional<int> durationMinutes;
  std::optional<bool> allDay;
  std::optional<Sensitivity> sensitivity;
  std::optional<QStringList> categories;
  std::optional<QString> categoriesText;
  std::optional<QString> billingInformation;
  QMap<QString, UserProperty> userProperties;  // set; the others stay
  bool isEmpty() const;
};

/// Something in a store that could not be read as it should; the rest was read all the same.
struct Problem {
  QString place;  // file name
  int line = 0;   // from 1; 0 for the file as a whole
  QString text;
};

/// A change that was kept back and then could not be written.
struct Unwritten {
  QString folder;
  ItemKey key;
  Failure failure;
};

/// How much is done before an answer: what can be told at once, or all that there is to look at.
enum class Look { Glance, Thorough };

class Store {
 public:
  virtual ~Store() = default;
  virtual QList<FolderInfo> folders() = 0;
  /// Ordered by start, then subject, then identity. Unreadable items are left out and named by `problems`.
  virtual QList<Item> items(const QString& folder, const Query& query) = 0;
  /// Changes one item and returns it as stored. An occurrence becomes an exception (an override of its
  /// series); the series stays as it is. A key without UID makes a new single item. `tag` is the item's as it
  /// was read: when another program has changed the item itself meanwhile, errChangedMeanwhile; a change
  /// elsewhere in the same file is taken in and kept. Nothing is changed on failure. A new start alone keeps
  /// the duration. The returned times are in the zone of `change.start`, without one in the clock's zone:
  /// floating times and dates alone may stand elsewhere than where they were read.
  virtual Item save(const QString& folder, const ItemKey& key, const QString& tag, const Change& change) = 0;
  virtual void remove(const QString& folder, const ItemKey& key, const QString& tag) = 0;
  /// Differs from its last value when anything in the folder may have changed.
  virtual QString changeTag(const QString& folder) = 0;
  /// Differs from its last value when somebody else may have changed what the folder shows; what was saved
  /// through this store does not count. A glance never waits: what is still being looked at in the background
  /// is told by a later one, and `items` may be so far behind the files. Behind a thorough look it is not.
  virtual QString othersTag(const QString& folder, Look look) = 0;
  virtual QList<Problem> problems(const QString& folder) = 0;
  /// From here to `flush`, a store may keep changes back that `save` has accepted, and write those of one
  /// file in one step. Whoever reads through this store sees them as stored. A store to which writing one by
  /// one costs nothing more keeps nothing back.
  virtual void hold() {}
  /// Ends the holding and writes what was kept back, each file by itself. Comes back with the changes that
  /// could not be written; the others are, and survive a power cut. Without `hold` it does nothing.
  virtual QList<Unwritten> flush() { return {}; }
};

}  // namespace platform::calendar

#pragma once
#include <QString>

namespace platform::calendar::icalendar::index {

/// An index that nobody has used for so long is of a calendar that is gone, or of a user who can wait for
/// another to be made.
inline constexpr qint64 unusedDays = 90;
/// Of an index that was being made when its process died.
inline constexpr qint64 halfMadeHours = 24;
/// For one sweep.
inline constexpr int maxSweptNames = 4000;
inline constexpr int maxSweptIndexes = 100;

/// Takes away the indexes in a cache folder that are surely of no use: of an older version, or unused for
/// long. Only files that are named as an index is, belong to this user and (where they have content) say
/// themselves that they are one; none that somebody uses, and not that one of `inUse`. How many went.
int sweepIndexes(const QString& folder, const QString& inUse);

/// The same, but once for a folder while the process lives.
void sweepIndexesOnce(const QString& folder, const QString& inUse);

/// What was left of an index that was being made. For who has its lock alone.
void removeHalfMade(const QString& indexPath);

}  // namespace platform::calendar::icalendar::index

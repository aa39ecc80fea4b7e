#pragma once
#include <QStringList>

namespace hourbook {

/// Lets the list follow what others do to the calendar, from now on.
void subStartFollowing();
/// Where others have changed the calendar since the list was fetched, and the user is not in the middle of
/// something, shows the list as it is now. A calendar that cannot be asked is not told of: the list stays as
/// it is, and follows again when the calendar is back.
void timFollowCalendar_Timer();

/// Looks at every file of the calendar, which may take a while; where others have changed something since the
/// list was fetched, shows the list as it is now. Throws what the calendar throws when it cannot be read
/// then. One that cannot be asked counts as unchanged: who goes on finds that out.
void subFetchWhatOthersChanged();
/// Shows the list as the calendar is now. Selection, drop-downs and what is in sight stay by their
/// appointments; so does what stands in a cell and not in the calendar, as long as nobody has changed the
/// appointment. Throws what the calendar throws, and the list stays as it is.
void subFollowCalendar();

/// The rows of the list, columns A to G.
QList<QStringList> fncTextsOfRows();

}  // namespace hourbook

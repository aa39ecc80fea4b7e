#pragma once
#include "platform/basic/value.h"

namespace platform::outlook {
class AppointmentItem;
}

namespace hourbook {

class cMarking;

/// Fetches the appointments of the period into the list, and into the grid in grid mode. Up to the walk a
/// failure ends the program; from there on what fails is left out and the rest goes on.
void subGetData();

/// Fetches the period listed once more, with no sign of it but what is another in the rows: no hourglass, no
/// message, and the drop-downs stay where they are. Throws what the calendar throws where it cannot be read,
/// and the list is as it was. There must be a period listed. For modFollowCalendar, which sees to the rest.
void subGetDataAgain();

/// End of the period, without a time; 0 when the controls are not filled. Failure 13 for a year that is no
/// number.
platform::basic::Date fncGetEndDate();
/// Start of the period; 0 when the end date lies before 1900.
platform::basic::Date fncGetStartDate(const platform::basic::Date& endDate);

/// May the appointment be listed, by the personal filters?
bool fncCheckInclude(const platform::outlook::AppointmentItem& item);
/// Writes the appointment into the next row of the list and notes it in `gRowItems`.
void subAddRow(const std::shared_ptr<platform::outlook::AppointmentItem>& item, const cMarking& marking);

/// Reportable hours: a number, or for a whole day the amount as the settings hold it (often a text).
platform::basic::Value fncHoursFromMinutes(qint32 minutes);
/// Whole days in hours of the settings, anything else in plain hours.
platform::basic::Value fncWholeDaysToHours(qint32 minutes);
/// Hours as the list shows them: at most two decimals, "." as decimal point whatever the locale.
QString fncHoursText(const platform::basic::Value& hours);

}  // namespace hourbook

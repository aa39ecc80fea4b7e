#pragma once
#include <QString>

// Names of time zones that neither the machine nor Qt knows.
namespace platform::calendar::icalendar {

/// The plain Windows name ("W. Europe Standard Time") of a translated, daylight or discontinued one; empty
/// when unknown.
QString windowsNameOf(const QString& name);
/// The IANA name of a Windows display name without its offset, in lower case and with "&" for "and".
QString ianaOfDisplayName(const QString& plainLowerCase);
/// Of one in another language: the zone that two or more of its places have in common; empty when they do
/// not.
QString ianaOfPlaces(const QString& plainLowerCase);

}  // namespace platform::calendar::icalendar

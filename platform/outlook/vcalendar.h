#pragma once
#include "platform/calendar/store.h"

namespace platform::outlook {

/// The item as a vCalendar 1.0 in UTF-8, times in UTC, lines of 76 octets at most. `version` is the
/// application's
/// ("11.0.0.8169"). Texts are quoted-printable as far as a reader needs that decodes only soft line breaks
/// and "=0D=0A": other characters stand as they are, "=" too unless it would read as an escape. A body that
/// is not empty is closed by a line break, an empty one gives no DESCRIPTION.
QByteArray vcalendarOf(const calendar::Item& item, const QString& version);

}  // namespace platform::outlook

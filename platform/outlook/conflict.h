#pragma once
#include "platform/outlook/items.h"

namespace platform::outlook {

/// What tells a user which version of an appointment was to be written and which one stands in the calendar.
struct Versions {
  const AppointmentItem& read;                              // as it was when it was read
  const AppointmentItem& wanted;                            // with what was to be written
  const QMap<QString, calendar::UserProperty>& properties;  // that were to be written
  const AppointmentItem* now;  // as it stands in the calendar; null: it is there no longer
};

/// Field by field, a line each, where they differ; of a removed one all that was to be written. Long texts
/// are shortened. Empty when nothing differs that a user could see.
QString textOfConflict(const Versions& versions);

}  // namespace platform::outlook

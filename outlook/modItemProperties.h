#pragma once
#include "platform/outlook/items.h"

namespace hourbook {

// Standard value type numbers.
inline constexpr int vbInteger = 2;
inline constexpr int vbDate = 7;
inline constexpr int vbString = 8;
inline constexpr int vbBoolean = 11;

/// The value of a custom property in the type asked for; the default, where the type has one, when the item
/// has no such property. Empty when it cannot be read.
platform::basic::Value fncGetOutlookValue(platform::outlook::AppointmentItem& item, const QString& property,
                                          int type, const platform::basic::Value& defaultValue = {});
/// Splits a text over the properties `property`0, `property`1, ... of 1000 characters and `property`Count.
/// The item is not saved.
platform::outlook::AppointmentItem& subFixLongProperty(platform::outlook::AppointmentItem& item,
                                                       const QString& text, const QString& property);
/// The text that `subFixLongProperty` split; empty when there is none.
QString fncGetLongProperty(platform::outlook::AppointmentItem& item, const QString& property);
/// The description in a vCalendar text, up to its last line break; empty when that is missing. Only line
/// breaks and soft line breaks are decoded.
QString fncDescriptionOfVcal(const QString& vcalendar);
/// The body text, by way of the item's vCalendar form; empty when it has none or cannot be read.
QString fncReadBodyThroughVcal(const platform::outlook::AppointmentItem& appointment);

}  // namespace hourbook

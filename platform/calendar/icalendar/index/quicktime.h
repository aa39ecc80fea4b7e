#pragma once
#include "platform/calendar/icalendar/values.h"

// Dates and durations in the forms in which nearly all programs write them. What is in another form, or
// wrong, is left to the full reading.
namespace platform::calendar::icalendar::index {

/// `rest` is a property behind its name: ";TZID=Europe/Oslo:20240219T090000".
std::optional<DateValue> quickDate(QByteArrayView rest);
/// ":PT1H30M"
std::optional<Span> quickSpan(QByteArrayView rest);

}  // namespace platform::calendar::icalendar::index

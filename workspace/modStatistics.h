#pragma once
#include "platform/scripting/dictionary.h"

namespace hourbook {

/// Counts the hours of the list by the group that the tab names, shows their total and hands them to the
/// chart.
void subCountSpreadSheet();

enum class SortField : qint16 { Key = 1, Item = 2 };

/// Sorts in place, by text without regard to case. `keysAreWeekdays`: the keys are texts such as "Mon
/// 2024-02-19"; they are compared as short dates, so a short date that does not begin with the year comes out
/// of order.
platform::scripting::Dictionary<double>& fncSortDictionary(
    platform::scripting::Dictionary<double>& dictionary, SortField sortField, bool keysAreWeekdays);

/// The date in a weekday text of the list: the short weekday name in force, a blank and the short date.
/// Without such a name three letters and a point are dropped. Failure 13 when no date is left.
platform::basic::Date fncDateOfWeekdayText(const QString& text);

}  // namespace hourbook

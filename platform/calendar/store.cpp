#include "platform/calendar/store.h"

#include <algorithm>
#include <limits>

namespace platform::calendar {

int Item::durationMinutes() const {
  if (!start.isValid() || !end.isValid()) return 0;
  const qint64 minutes = allDay ? start.date().daysTo(end.date()) * 1440 : start.secsTo(end) / 60;
  return static_cast<int>(std::clamp<qint64>(minutes, 0, std::numeric_limits<int>::max()));
}

bool Change::isEmpty() const {
  return !subject && !body && !start && !durationMinutes && !allDay && !sensitivity && !categories &&
         !categoriesText && !billingInformation && userProperties.isEmpty();
}

}  // namespace platform::calendar

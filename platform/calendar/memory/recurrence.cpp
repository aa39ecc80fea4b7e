#include "platform/calendar/memory/recurrence.h"

namespace platform::calendar {

QString recurrenceIdOf(const QDate& day, const QTime& time, bool allDay, bool utc) {
  QString id = day.toString(u"yyyyMMdd");
  if (allDay) return id;
  id += time.toString(u"'T'HHmmss");
  return utc ? id + u'Z' : id;
}

QList<Slot> slotsOf(const Recurrence& rule, const QDateTime& start, bool allDay) {
  const int step = qMax(1, rule.interval) * (rule.unit == Recurrence::Unit::Week ? 7 : 1);
  QList<Slot> found;
  for (int n = 0; n < rule.count; ++n) {
    const QDate day = start.date().addDays(static_cast<qint64>(n) * step);
    const QString id = recurrenceIdOf(day, start.time(), allDay, start.timeSpec() == Qt::UTC);
    if (!rule.excluded.contains(id)) found.append({day, start.time(), id});
  }
  return found;
}

}  // namespace platform::calendar

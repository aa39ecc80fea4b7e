#include "tests/contract/calendarstore/calendarstore.h"

#include "platform/basic/failure.h"

using namespace Qt::StringLiterals;
using namespace platform::calendar;

namespace contract {

qint32 failureOf(const std::function<void()>& statement) {
  try {
    statement();
  } catch (const platform::Failure& failure) {
    EXPECT_FALSE(failure.description().isEmpty());
    return failure.number();
  }
  return 0;
}

Described timed(const QString& uid, const QString& subject, const QString& start, const QByteArray& zone,
                int minutes) {
  Described described;
  described.item.key.uid = uid;
  described.item.subject = subject;
  const QDateTime local = QDateTime::fromString(start, u"yyyy-MM-dd HH:mm"_s);
  if (zone.isEmpty())
    described.item.start = QDateTime(local.date(), local.time(), Qt::LocalTime);
  else if (zone == "UTC")
    described.item.start = QDateTime(local.date(), local.time(), Qt::UTC);
  else
    described.item.start = QDateTime(local.date(), local.time(), QTimeZone(zone));
  described.item.end = described.item.start.addSecs(minutes * 60);
  return described;
}

Described wholeDay(const QString& uid, const QString& subject, const QDate& day, int days) {
  Described described;
  described.item.key.uid = uid;
  described.item.subject = subject;
  described.item.allDay = true;
  described.item.start = QDateTime(day, QTime(0, 0), Qt::LocalTime);
  described.item.end = described.item.start.addDays(days);
  return described;
}

Described repeated(Described first, Recurrence::Unit unit, int interval, int count,
                   const QStringList& excluded) {
  first.rule = Recurrence{unit, interval, count, excluded};
  return first;
}

Described changedOccurrence(Described item, const QString& recurrenceId) {
  item.item.key.recurrenceId = recurrenceId;
  return item;
}

void CalendarStoreContract::open(const QList<Described>& items, bool readOnly) {
  store = maker->make({{u"Calendar"_s, items, readOnly, true}});
  folder = store->folders().value(0).id;
}

void CalendarStoreContract::reopen() {
  store = maker->reopened();
  EXPECT_EQ(store->folders().value(0).id, folder);
}

QList<Item> CalendarStoreContract::plain() {
  Query query;
  query.zone = QTimeZone("Europe/Stockholm");
  return store->items(folder, query);
}

QList<Item> CalendarStoreContract::expanded() {
  Query query;
  query.zone = QTimeZone("Europe/Stockholm");
  query.expandSeries = true;
  query.startFrom = QDateTime(QDate(2020, 1, 1), QTime(0, 0), query.zone);
  query.startTo = QDateTime(QDate(2030, 12, 31), QTime(23, 59, 59), query.zone);
  return store->items(folder, query);
}

Item CalendarStoreContract::named(const QList<Item>& items, const QString& subject) {
  QList<Item> found;
  for (const Item& item : items)
    if (item.subject == subject) found.append(item);
  EXPECT_EQ(found.size(), 1) << qPrintable(subject);
  return found.value(0);
}

QStringList subjectsOf(const QList<Item>& items) {
  QStringList subjects;
  for (const Item& item : items) subjects.append(item.subject);
  return subjects;
}

QStringList startsOf(const QList<Item>& items) {
  QStringList starts;
  for (const Item& item : items) starts.append(item.start.toString(u"yyyy-MM-dd HH:mm"_s));
  return starts;
}

QDateTime moment(const QString& text, const QByteArray& zone) {
  const QDateTime local = QDateTime::fromString(text, u"yyyy-MM-dd HH:mm"_s);
  return QDateTime(local.date(), local.time(), QTimeZone(zone));
}

Described standUp() {
  return repeated(timed(u"series"_s, u"Stand-up"_s, u"2024-02-05 09:00"_s), Recurrence::Unit::Week, 1, 4);
}

}  // namespace contract

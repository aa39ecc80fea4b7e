#include "platform/outlook/entryid.h"

#include "platform/basic/clock.h"

#include <QUrl>

namespace platform::outlook {

using calendar::Item;
using calendar::ItemKey;

namespace {

constexpr int partCount = 3;
/// An occurrence's original day counts in its series' zone, which may be a day away from the user's.
constexpr int daysAround = 2;

QString encoded(const QString& text) {
  return QString::fromLatin1(QUrl::toPercentEncoding(text, "@:+"));
}

QString decoded(const QString& text) {
  return QUrl::fromPercentEncoding(text.toLatin1());
}

/// Exactly this item, else the only one that differs in nothing but its place.
std::optional<Item> pick(const QList<Item>& items, const ItemKey& key) {
  QList<Item> alike;
  for (const Item& item : items) {
    if (item.key == key) return item;
    if (item.key.uid == key.uid && item.key.recurrenceId == key.recurrenceId) alike.append(item);
  }
  return alike.size() == 1 ? std::optional(alike.first()) : std::nullopt;
}

}  // namespace

QString entryIdOf(const ItemKey& key) {
  return encoded(key.uid) + u'/' + encoded(key.recurrenceId) + u'/' + encoded(key.place);
}

std::optional<ItemKey> keyOfEntryId(const QString& entryId) {
  const QStringList parts = entryId.split(u'/');
  if (parts.size() != partCount || parts[0].isEmpty()) return std::nullopt;
  return ItemKey{decoded(parts[2]), decoded(parts[0]), decoded(parts[1])};
}

std::optional<Item> itemOfKey(calendar::Store& store, const QString& folder, const ItemKey& key,
                              const QDateTime& lastSeen) {
  calendar::Query query;
  query.uid = key.uid;
  query.zone = basic::Clock::current().zone();
  const auto found = pick(store.items(folder, query), key);  // singles, and occurrences that were changed
  const QDate day = QDate::fromString(key.recurrenceId.left(8), u"yyyyMMdd");
  if (found || !day.isValid()) return found;
  query.startFrom = day.addDays(-daysAround).startOfDay(query.zone);
  query.startTo = day.addDays(daysAround).endOfDay(query.zone);
  query.expandSeries = true;
  const auto near = pick(store.items(folder, query), key);
  if (near || !lastSeen.isValid()) return near;
  // a change of all that follow has moved it away from its day
  query.startFrom = lastSeen.addDays(-daysAround);
  query.startTo = lastSeen.addDays(daysAround);
  return pick(store.items(folder, query), key);
}

}  // namespace platform::outlook

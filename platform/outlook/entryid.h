#pragma once
#include "platform/calendar/store.h"

namespace platform::outlook {

/// The identity of an item within its folder as one text that a program may keep: three parts with "/"
/// between them, readable and without signs that files or markup would mind.
QString entryIdOf(const calendar::ItemKey& key);
/// Nothing for a text of another form.
std::optional<calendar::ItemKey> keyOfEntryId(const QString& entryId);

/// The item as it stands in the store now; nothing when there is none. One that stands at another place by
/// now (its file was renamed) is found as long as its folder has just one of that identity. `lastSeen` is the
/// start that an occurrence had, where that is known: it may lie far from the day that names it.
std::optional<calendar::Item> itemOfKey(calendar::Store& store, const QString& folder,
                                        const calendar::ItemKey& key, const QDateTime& lastSeen = {});

}  // namespace platform::outlook

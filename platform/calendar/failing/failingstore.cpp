#include "platform/calendar/failing/failingstore.h"

namespace platform::calendar {

void FailingStore::failCall(Operation operation, int n, const Failure& failure) {
  planned_.append({operation, calls(operation) + qMax(1, n), failure});
}

void FailingStore::failAlways(Operation operation, const Failure& failure) {
  planned_.append({operation, 0, failure});
}

void FailingStore::failSubject(const QString& subject, const Failure& failure) {
  subjects_.insert(subject, failure);
}

void FailingStore::failLookups(const Failure& failure) {
  lookups_ = failure;
}

void FailingStore::heal() {
  planned_.clear();
  subjects_.clear();
  lookups_.reset();
}

void FailingStore::enter(Operation operation) {
  const int call = ++calls_[operation];
  if (onCall) onCall(operation);
  for (const Planned& planned : std::as_const(planned_))
    if (planned.operation == operation && (planned.call == 0 || planned.call == call)) throw planned.failure;
}

void FailingStore::failForSubject(const QString& subject) const {
  const auto failure = subjects_.constFind(subject);
  if (failure != subjects_.cend()) throw *failure;
}

/// The subject of what is about to change stands in the store inside, not in the call.
void FailingStore::failForKey(const QString& folder, const ItemKey& key) {
  if (subjects_.isEmpty() || key.uid.isEmpty()) return;
  Query query;
  query.uid = key.uid;
  const Item* closest = nullptr;
  const QList<Item> items = inner_->items(folder, query);
  for (const Item& item : items)
    if (item.key == key || (!closest && item.key.recurrenceId.isEmpty())) closest = &item;
  if (closest) failForSubject(closest->subject);
}

QList<FolderInfo> FailingStore::folders() {
  enter(Operation::Folders);
  return inner_->folders();
}

QList<Item> FailingStore::items(const QString& folder, const Query& query) {
  enter(Operation::Items);
  if (query.subject) {
    if (lookups_) throw *lookups_;
    failForSubject(*query.subject);
  }
  return inner_->items(folder, query);
}

Item FailingStore::save(const QString& folder, const ItemKey& key, const QString& tag, const Change& change) {
  enter(Operation::Save);
  if (key.uid.isEmpty() && change.subject) failForSubject(*change.subject);
  failForKey(folder, key);
  return inner_->save(folder, key, tag, change);
}

void FailingStore::remove(const QString& folder, const ItemKey& key, const QString& tag) {
  enter(Operation::Remove);
  failForKey(folder, key);
  inner_->remove(folder, key, tag);
}

QString FailingStore::changeTag(const QString& folder) {
  enter(Operation::ChangeTag);
  return inner_->changeTag(folder);
}

QString FailingStore::othersTag(const QString& folder, Look look) {
  enter(Operation::OthersTag);
  return inner_->othersTag(folder, look);
}

QList<Problem> FailingStore::problems(const QString& folder) {
  enter(Operation::Problems);
  return inner_->problems(folder);
}

}  // namespace platform::calendar

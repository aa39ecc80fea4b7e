#pragma once
#include "platform/basic/failure.h"
#include "platform/calendar/store.h"

#include <functional>

namespace platform::calendar {

/// Wraps any store, hands every call on, and fails where it is told to. A call that fails never reaches the
/// store inside, so nothing is changed by it.
class FailingStore : public Store {
 public:
  enum class Operation { Folders, Items, Save, Remove, ChangeTag, OthersTag, Problems };

  explicit FailingStore(std::shared_ptr<Store> inner) : inner_(std::move(inner)) {}

  /// The n-th call from now on (1 is the next one) fails; the others are handed on.
  void failCall(Operation operation, int n, const Failure& failure);
  /// Every call fails until `heal`.
  void failAlways(Operation operation, const Failure& failure);
  /// Saving and removing items of this subject fails, and so does asking for them by it.
  void failSubject(const QString& subject, const Failure& failure);
  /// Every query for a subject fails, as on stores that know no look-up by name.
  void failLookups(const Failure& failure);
  void heal();

  /// Called at the start of every call, before it fails or is handed on. May change the store inside, as
  /// another program would between a read and a write.
  std::function<void(Operation)> onCall;
  int calls(Operation operation) const { return calls_.value(operation); }

  QList<FolderInfo> folders() override;
  QList<Item> items(const QString& folder, const Query& query) override;
  Item save(const QString& folder, const ItemKey& key, const QString& tag, const Change& change) override;
  void remove(const QString& folder, const ItemKey& key, const QString& tag) override;
  QString changeTag(const QString& folder) override;
  QString othersTag(const QString& folder, Look look) override;
  QList<Problem> problems(const QString& folder) override;
  void hold() override { inner_->hold(); }
  QList<Unwritten> flush() override { return inner_->flush(); }

 private:
  struct Planned {
    Operation operation;
    int call;  // the count at which it fails; 0: always
    Failure failure;
  };
  void enter(Operation operation);
  void failForSubject(const QString& subject) const;
  void failForKey(const QString& folder, const ItemKey& key);

  std::shared_ptr<Store> inner_;
  QList<Planned> planned_;
  QMap<QString, Failure> subjects_;
  std::optional<Failure> lookups_;
  QMap<Operation, int> calls_;
};

}  // namespace platform::calendar

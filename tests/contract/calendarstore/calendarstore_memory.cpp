#include "platform/calendar/failing/failingstore.h"
#include "platform/calendar/memory/memorystore.h"
#include "tests/contract/calendarstore/calendarstore.h"

using namespace platform::calendar;

namespace contract {

namespace {

/// The data live as long as the store does, so that a new start finds the same store.
class MemoryMaker : public StoreMaker {
 public:
  std::shared_ptr<Store> make(const QList<DescribedFolder>& folders) override {
    for (const DescribedFolder& described : folders) {
      FolderInfo info;
      info.name = described.name;
      info.readOnly = described.readOnly;
      info.holdsAppointments = described.holdsAppointments;
      const QString id = store_->addFolder(info);
      for (const Described& item : described.items) add(id, item);
    }
    return outer();
  }
  std::shared_ptr<Store> reopened() override { return outer(); }
  void changeSubjectByAnother(int folder, const QString& uid, const QString& subject) override {
    Change change;
    change.subject = subject;
    store_->changeByAnother(store_->folders().at(folder).id, {{}, uid, {}}, change);
  }
  void removeByAnother(int folder, const QString& uid) override {
    store_->removeByAnother(store_->folders().at(folder).id, {{}, uid, {}});
  }

 protected:
  virtual std::shared_ptr<Store> outer() { return store_; }
  std::shared_ptr<MemoryStore> store_ = std::make_shared<MemoryStore>();

 private:
  void add(const QString& folder, const Described& described) {
    const ItemKey& key = described.item.key;
    if (!key.recurrenceId.isEmpty())
      store_->addException(folder, {key.place, key.uid, {}}, key.recurrenceId, described.item);
    else if (described.rule)
      store_->addSeries(folder, described.item, *described.rule);
    else
      store_->add(folder, described.item);
  }
};

/// A failing store that is told of no failure is as good as the one inside.
class FailingMaker : public MemoryMaker {
 protected:
  std::shared_ptr<Store> outer() override { return std::make_shared<FailingStore>(store_); }
};

}  // namespace

INSTANTIATE_TEST_SUITE_P(Memory, CalendarStoreContract,
                         testing::Values(NamedMaker{"Memory", [] { return std::make_unique<MemoryMaker>(); }},
                                         NamedMaker{"Failing",
                                                    [] { return std::make_unique<FailingMaker>(); }}),
                         [](const auto& info) { return info.param.name; });

}  // namespace contract

#include "platform/calendar/failing/failingstore.h"

#include "platform/calendar/memory/memorystore.h"
#include "tests/support/testworld.h"

using namespace Qt::StringLiterals;
using namespace platform;
using namespace platform::calendar;

namespace {

using Operation = FailingStore::Operation;

class FailingStoreTest : public testing::Test {
 protected:
  FailingStoreTest() {
    folder = inner->addFolder({});
    for (const QString& subject : {u"A"_s, u"B"_s}) {
      Item item;
      item.subject = subject;
      item.start = QDateTime(QDate(2024, 5, 15), QTime(9, 0), Qt::UTC);
      item.end = item.start.addSecs(3600);
      inner->add(folder, item);
    }
  }
  Item named(const QString& subject) {
    Query query;
    query.subject = subject;
    return inner->items(folder, query).value(0);
  }
  void save(const QString& subject) {
    Change change;
    change.billingInformation = u"paid"_s;
    const Item item = named(subject);
    store.save(folder, item.key, item.tag, change);
  }

  tests::TestWorld world;
  std::shared_ptr<MemoryStore> inner = std::make_shared<MemoryStore>();
  FailingStore store{inner};
  QString folder;
  const Failure broken{errStoreBroken, u"The network is away."_s};
};

}  // namespace

TEST_F(FailingStoreTest, OnlyTheToldCallFails) {
  store.failCall(Operation::Items, 2, broken);
  EXPECT_NO_THROW(store.items(folder, {}));
  EXPECT_THROW(store.items(folder, {}), Failure);
  EXPECT_NO_THROW(store.items(folder, {}));
}

TEST_F(FailingStoreTest, CallsAreCountedFromTheMomentOfTelling) {
  store.items(folder, {});
  store.failCall(Operation::Items, 1, broken);
  EXPECT_THROW(store.items(folder, {}), Failure);
  EXPECT_EQ(store.calls(Operation::Items), 2);
  EXPECT_EQ(store.calls(Operation::Save), 0);
}

TEST_F(FailingStoreTest, EveryOperationCanFailWithTheToldFailureUntilItHeals) {
  const QList<std::pair<Operation, std::function<void()>>> operations{
      {Operation::Folders, [&] { store.folders(); }},
      {Operation::Items, [&] { store.items(folder, {}); }},
      {Operation::Save, [&] { save(u"A"_s); }},
      {Operation::Remove, [&] { store.remove(folder, named(u"B"_s).key, named(u"B"_s).tag); }},
      {Operation::ChangeTag, [&] { store.changeTag(folder); }},
      {Operation::OthersTag, [&] { store.othersTag(folder, Look::Glance); }},
      {Operation::Problems, [&] { store.problems(folder); }}};
  for (const auto& [operation, call] : operations) {
    store.failAlways(operation, broken);
    for (int n = 0; n < 2; ++n) {
      try {
        call();
        ADD_FAILURE();
      } catch (const Failure& failure) {
        EXPECT_EQ(failure.number(), errStoreBroken);
        EXPECT_EQ(failure.description(), u"The network is away."_s);
      }
    }
    store.heal();
    EXPECT_NO_THROW(call());
  }
}

TEST_F(FailingStoreTest, AFailedSaveLeavesTheStoreInsideAsItWas) {
  store.failCall(Operation::Save, 1, broken);
  EXPECT_THROW(save(u"A"_s), Failure);
  EXPECT_TRUE(named(u"A"_s).billingInformation.isEmpty());
}

TEST_F(FailingStoreTest, ItemsOfASubjectFailAndTheOthersDoNot) {
  store.failSubject(u"A"_s, broken);
  EXPECT_THROW(save(u"A"_s), Failure);
  EXPECT_THROW(store.remove(folder, named(u"A"_s).key, named(u"A"_s).tag), Failure);
  EXPECT_NO_THROW(save(u"B"_s));
  Query query;
  query.subject = u"A"_s;
  EXPECT_THROW(store.items(folder, query), Failure);
  EXPECT_EQ(store.items(folder, {}).size(), 2);
}

TEST_F(FailingStoreTest, ANewItemOfTheSubjectFailsToo) {
  store.failSubject(u"New"_s, broken);
  Change change;
  change.subject = u"New"_s;
  change.start = QDateTime(QDate(2024, 5, 15), QTime(9, 0), Qt::UTC);
  EXPECT_THROW(store.save(folder, {}, {}, change), Failure);
  change.subject = u"Other"_s;
  EXPECT_NO_THROW(store.save(folder, {}, {}, change));
}

TEST_F(FailingStoreTest, AStoreMayBeUnableToLookUpByName) {
  store.failLookups(broken);
  Query query;
  query.subject = u"B"_s;
  EXPECT_THROW(store.items(folder, query), Failure);
  EXPECT_NO_THROW(store.items(folder, {}));
}

TEST_F(FailingStoreTest, AnotherProgramCanStepInAtTheStartOfACall) {
  const Item read = named(u"A"_s);
  store.onCall = [&](Operation operation) {
    if (operation != Operation::Save) return;
    Change theirs;
    theirs.subject = u"Theirs"_s;
    inner->changeByAnother(folder, read.key, theirs);
  };
  Change change;
  change.subject = u"Mine"_s;
  try {
    store.save(folder, read.key, read.tag, change);
    FAIL();
  } catch (const Failure& failure) {
    EXPECT_EQ(failure.number(), errChangedMeanwhile);
  }
  EXPECT_EQ(named(u"Theirs"_s).key, read.key);
}

#include "platform/sql/failing/failing.h"

#include "platform/sql/memory/memory.h"
#include "platform/sql/sqlite/engine.h"

#include <gtest/gtest.h>

using namespace platform::sql;
using platform::Failure;

namespace {

class FailingDriverTest : public testing::Test {
 protected:
  FailingDriverTest() {
    session = driver.connect(ConnectionString(u"Provider=Memory;Data Source=x"_qs));
    session->execute(u"create table t (a integer)"_qs);
  }
  int rows() { return static_cast<int>(session->execute(u"select * from t"_qs).rows.size()); }
  void insert() { session->execute(u"insert into t (a) values (1)"_qs); }

  std::shared_ptr<FaultPlan> plan = std::make_shared<FaultPlan>();
  FailingDriver driver{std::make_shared<sqlite::MemoryDriver>(), plan};
  std::unique_ptr<Session> session;
  const Failure full{3026, u"Not enough space on disk."_qs};
};

}  // namespace

TEST_F(FailingDriverTest, TheNthStatementFailsWithTheGivenFailureAndTheOthersPass) {
  plan->failStatement(2, full);
  insert();
  try {
    insert();
    FAIL();
  } catch (const Failure& failure) {
    EXPECT_EQ(failure.number(), 3026);
    EXPECT_EQ(failure.description(), u"Not enough space on disk."_qs);
  }
  insert();
  EXPECT_EQ(rows(), 2);
}

TEST_F(FailingDriverTest, StatementsThatContainATextFail) {
  plan->failContaining(u"INSERT into t"_qs, full);
  EXPECT_EQ(rows(), 0);
  EXPECT_THROW(insert(), Failure);
  EXPECT_THROW(insert(), Failure);
  plan->clear();
  insert();
  EXPECT_EQ(rows(), 1);
}

TEST_F(FailingDriverTest, AfterSoManyRowsTheDiskIsFull) {
  plan->failAfterRows(2, full);
  insert();
  insert();
  EXPECT_THROW(insert(), Failure);
  EXPECT_THROW(insert(), Failure);
  EXPECT_EQ(rows(), 2) << "reading goes on";
}

TEST_F(FailingDriverTest, AnAnswerCanBeLostAfterTheStatementWasCarriedOut) {
  plan->rules.append({u"insert"_qs, 0, 1, true, full, {}});
  EXPECT_THROW(insert(), Failure);
  EXPECT_EQ(rows(), 1);
}

TEST_F(FailingDriverTest, ACallbackRunsWithoutAFailure) {
  int calls = 0;
  plan->rules.append({u"insert"_qs, 1, -1, false, std::nullopt, [&] { ++calls; }});
  insert();
  insert();
  insert();
  EXPECT_EQ(calls, 2);
  EXPECT_EQ(rows(), 3);
}

TEST_F(FailingDriverTest, ConnectingAndLookingUpTablesCanFailToo) {
  plan->onConnect = full;
  EXPECT_THROW(driver.connect(ConnectionString(u"Provider=Memory;Data Source=x"_qs)), Failure);
  plan->failContaining(u"columns t"_qs, full);
  EXPECT_THROW(session->columns(u"t"_qs), Failure);
  EXPECT_EQ(session->tables(), QStringList{u"t"_qs});
  plan->failContaining(u"tables"_qs, full);
  EXPECT_THROW(session->tables(), Failure);
}

TEST_F(FailingDriverTest, AnEnginesOperationsFailByTheirNames) {
  FailingEngine engine(std::make_shared<sqlite::SqliteEngine>(), plan);
  Column id;
  id.name = u"id"_qs;
  id.autoIncrement = id.primaryKey = true;
  plan->failContaining(u"createTable u"_qs, full);
  plan->failContaining(u"addRelation"_qs, full);
  EXPECT_THROW(engine.createTable(*session, u"u"_qs, {id}), Failure);
  EXPECT_THROW(engine.addRelation(*session, {u"R"_qs, u"t"_qs, u"t"_qs, u"a"_qs}), Failure);
  engine.createTable(*session, u"v"_qs, {id});
  EXPECT_EQ(session->tables(), QStringList({u"t"_qs, u"v"_qs}));
}

TEST_F(FailingDriverTest, AHalfMadeTableIsTakenBack) {
  FailingEngine engine(std::make_shared<sqlite::SqliteEngine>(), plan);
  Column id;
  id.name = u"id"_qs;
  plan->failContaining(u"INSERT OR REPLACE INTO [MSysColumns]"_qs, full);
  EXPECT_THROW(engine.createTable(*session, u"u"_qs, {id}), Failure);
  plan->clear();
  EXPECT_EQ(session->tables(), QStringList{u"t"_qs});
}

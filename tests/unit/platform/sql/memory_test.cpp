#include "platform/sql/memory/memory.h"

#include "platform/basic/failure.h"

#include <gtest/gtest.h>

using namespace platform::sql;
using namespace platform::sql::sqlite;

namespace {
ConnectionString named(const QString& name) {
  return ConnectionString(u"Provider=Memory;Data Source="_qs + name);
}
}  // namespace

TEST(MemoryDriver, ADatabaseLivesAsLongAsTheDriver) {
  auto driver = std::make_unique<MemoryDriver>();
  driver->connect(named(u"a"_qs))->execute(u"create table t (x integer)"_qs);
  EXPECT_EQ(driver->connect(named(u"A"_qs))->tables(), QStringList{u"t"_qs});
  EXPECT_TRUE(driver->connect(named(u"b"_qs))->tables().isEmpty()) << "each name is a database of its own";
  driver = std::make_unique<MemoryDriver>();
  EXPECT_TRUE(driver->connect(named(u"a"_qs))->tables().isEmpty());
}

TEST(MemoryDriver, TwoDriversShareNothing) {
  MemoryDriver one, two;
  one.connect(named(u"a"_qs))->execute(u"create table t (x integer)"_qs);
  EXPECT_TRUE(two.connect(named(u"a"_qs))->tables().isEmpty());
}

TEST(MemoryDriver, ASessionOutlivesItsDriver) {
  auto driver = std::make_unique<MemoryDriver>();
  const auto session = driver->connect(named(u"a"_qs));
  driver.reset();
  session->execute(u"create table t (x integer)"_qs);
  EXPECT_EQ(session->tables().size(), 1);
}

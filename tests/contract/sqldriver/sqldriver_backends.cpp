#include "platform/sql/failing/failing.h"
#include "platform/sql/memory/memory.h"
#include "platform/sql/sqlite/engine.h"
#include "sqldriver_context.h"

namespace contract {

namespace {

using namespace platform::sql;

class SqliteContext : public SqlDriverContext {
 public:
  SqliteContext() { engine_.createDatabase(path()); }
  Driver& driver() override { return driver_; }
  ConnectionString connection() override {
    ConnectionString connection;
    connection.set(QStringLiteral("Provider"), QStringLiteral("Microsoft.Jet.OLEDB.4.0"));
    connection.set(QStringLiteral("Data Source"), path());
    return connection;
  }
  FileEngine& engine() override { return engine_; }
  QString path() const override { return folder_.filePath(QStringLiteral("contract.mdb")); }

 private:
  QTemporaryDir folder_;
  sqlite::SqliteDriver driver_{0, sqlite::Durability::ProcessEnd};
  sqlite::SqliteEngine engine_{0, sqlite::Durability::ProcessEnd};
};

class MemoryContext : public SqlDriverContext {
 public:
  Driver& driver() override { return driver_; }
  ConnectionString connection() override {
    return ConnectionString(QStringLiteral("Provider=Memory;Data Source=contract"));
  }
  FileEngine& engine() override { return engine_; }
  bool has_files() const override { return false; }

 private:
  sqlite::MemoryDriver driver_;
  sqlite::SqliteEngine engine_;
};

/// The failing version without a fault behaves as what it wraps.
class FailingContext : public SqliteContext {
 public:
  Driver& driver() override { return failing_; }
  FileEngine& engine() override { return failingEngine_; }

 private:
  std::shared_ptr<FaultPlan> plan_ = std::make_shared<FaultPlan>();
  FailingDriver failing_{std::make_shared<sqlite::SqliteDriver>(0, sqlite::Durability::ProcessEnd), plan_};
  FailingEngine failingEngine_{std::make_shared<sqlite::SqliteEngine>(0, sqlite::Durability::ProcessEnd),
                               plan_};
};

}  // namespace

INSTANTIATE_TEST_SUITE_P(
    , SqlDriver,
    testing::Values(Backend{"SqliteFile", [] { return std::make_unique<SqliteContext>(); }},
                    Backend{"Memory", [] { return std::make_unique<MemoryContext>(); }},
                    Backend{"FailingWithoutFault", [] { return std::make_unique<FailingContext>(); }}),
    [](const testing::TestParamInfo<Backend>& info) { return std::string(info.param.name); });

}  // namespace contract

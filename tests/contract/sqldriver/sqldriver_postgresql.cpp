// The suite on a PostgreSQL server, which runs as long as the test program.
#include "sqldriver_postgresql.h"

#include "platform/sql/postgresql/engine.h"
#include "platform/sql/postgresql/session.h"
#include "postgresqlserver.h"

namespace contract {

using namespace platform::sql;

namespace {

std::unique_ptr<PostgresqlServer> server;

class ServerOfTheRun : public testing::Environment {
 public:
  void SetUp() override {
    server = std::make_unique<PostgresqlServer>();
    ASSERT_TRUE(server->problem().isEmpty()) << qPrintable(server->problem());
  }
  void TearDown() override { server.reset(); }
};

[[maybe_unused]] const testing::Environment* const environment =
    testing::AddGlobalTestEnvironment(new ServerOfTheRun);

}  // namespace

ConnectionString toServer(const QString& database) {
  ConnectionString connection;
  connection.set(u"Provider"_qs, u"PostgreSQL"_qs);
  connection.set(u"Data Source"_qs, server->dataSource());
  connection.set(u"User ID"_qs, server->user());
  connection.set(u"Initial Catalog"_qs, database);
  return connection;
}

PostgresqlDatabase::PostgresqlDatabase() {
  static int counter = 0;
  name_ = u"contract%1"_qs.arg(++counter);
  postgresql::PostgresqlDriver().connect(toServer({}))->execute(u"CREATE DATABASE "_qs + name_);
}

PostgresqlDatabase::~PostgresqlDatabase() {
  try {
    postgresql::PostgresqlDriver()
        .connect(toServer({}))
        ->execute(u"DROP DATABASE IF EXISTS "_qs + name_ + u" WITH (FORCE)"_qs);
  } catch (const platform::Failure& failure) {
    ADD_FAILURE() << failure.what();
  }
}

namespace {

class PostgresqlContext : public SqlDriverContext {
 public:
  Driver& driver() override { return driver_; }
  ConnectionString connection() override { return toServer(database_.name()); }
  FileEngine& engine() override { return engine_; }
  bool has_files() const override { return false; }
  bool folds_only_ascii() const override { return false; }
  bool keeps_foreign_values() const override { return false; }

 private:
  PostgresqlDatabase database_;
  postgresql::PostgresqlDriver driver_;
  postgresql::PostgresqlEngine engine_;
};

}  // namespace

INSTANTIATE_TEST_SUITE_P(
    , SqlDriver, testing::Values(Backend{"Postgresql", [] { return std::make_unique<PostgresqlContext>(); }}),
    [](const testing::TestParamInfo<Backend>& info) { return std::string(info.param.name); });

}  // namespace contract

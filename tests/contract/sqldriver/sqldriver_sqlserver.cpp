// The suite on an SQL Server, where HOURBOOK_SQLSERVER holds a connection string for one.
#include "sqldriver_sqlserver.h"

#include "platform/sql/odbc/engine.h"
#include "platform/sql/odbc/session.h"

#include <unistd.h>

namespace contract {

using namespace platform::sql;

QString realSqlServer() {
  return qEnvironmentVariable("HOURBOOK_SQLSERVER");
}

namespace {

ConnectionString toServer(const QString& database) {
  ConnectionString connection(realSqlServer());
  connection.set(u"Initial Catalog"_qs, database);
  return connection;
}

void onServer(const QString& statement) {
  odbc::OdbcDriver().connect(toServer(u"master"_qs))->execute(statement);
}

}  // namespace

SqlServerDatabase::SqlServerDatabase() {
  static int counter = 0;
  name_ = u"contract_%1_%2"_qs.arg(::getpid()).arg(++counter);
  onServer(u"CREATE DATABASE [%1] COLLATE Latin1_General_CI_AS"_qs.arg(name_));
}

SqlServerDatabase::~SqlServerDatabase() {
  try {
    onServer(u"ALTER DATABASE [%1] SET SINGLE_USER WITH ROLLBACK IMMEDIATE"_qs.arg(name_));
    onServer(u"DROP DATABASE [%1]"_qs.arg(name_));
  } catch (const platform::Failure& failure) {
    ADD_FAILURE() << failure.what();
  }
}

ConnectionString SqlServerDatabase::connection() const {
  return toServer(name_);
}

namespace {

class SqlServerContext : public SqlDriverContext {
 public:
  Driver& driver() override { return driver_; }
  ConnectionString connection() override { return database_.connection(); }
  FileEngine& engine() override { return engine_; }
  bool has_files() const override { return false; }
  bool folds_only_ascii() const override { return false; }
  bool keeps_foreign_values() const override { return false; }

 private:
  SqlServerDatabase database_;
  odbc::OdbcDriver driver_;
  odbc::OdbcEngine engine_;
};

std::vector<Backend> servers() {
  if (realSqlServer().isEmpty()) return {};
  return {Backend{"SqlServer", [] { return std::make_unique<SqlServerContext>(); }}};
}

}  // namespace

GTEST_ALLOW_UNINSTANTIATED_PARAMETERIZED_TEST(SqlDriver);
INSTANTIATE_TEST_SUITE_P(, SqlDriver, testing::ValuesIn(servers()),
                         [](const testing::TestParamInfo<Backend>& info) {
                           return std::string(info.param.name);
                         });

}  // namespace contract

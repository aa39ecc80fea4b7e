// What holds on an SQL Server beyond the suite of all drivers; only where HOURBOOK_SQLSERVER names one.
#include "platform/sql/odbc/engine.h"
#include "platform/sql/odbc/session.h"
#include "sqldriver_sqlserver.h"

namespace contract {

namespace {

using namespace platform;
using namespace platform::sql;
using basic::Currency;
using basic::Null;
using basic::Value;

class SqlServer : public testing::Test {
 protected:
  void SetUp() override {
    if (realSqlServer().isEmpty())
      GTEST_SKIP() << "HOURBOOK_SQLSERVER names no server; see docs/databases.md";
    base = std::make_unique<SqlServerDatabase>();
    session = connect();
  }
  std::unique_ptr<Session> connect() { return odbc::OdbcDriver().connect(base->connection()); }
  Value single(const QString& sql, const QList<Value>& parameters = {}) {
    const Result result = session->execute(sql, parameters);
    return result.rows.isEmpty() ? Value() : result.rows.first().first();
  }

  std::unique_ptr<SqlServerDatabase> base;
  std::unique_ptr<Session> session;
};

}  // namespace

TEST_F(SqlServer, AnOlderDatabaseTakesTheColumnsThatHaveComeSince) {
  session->execute(
      u"CREATE TABLE [tblMeta1] ([intMeta1ID] [int] IDENTITY (1, 1) NOT NULL PRIMARY KEY, [strName] nvarchar(255))"_qs);
  session->execute(u"insert into tblMeta1 (strName) values ('Ann')"_qs);
  session->execute(
      u"CREATE TABLE [tblOtherSettings] ([intSettingID] [int] IDENTITY (1, 1) NOT NULL ,[strPropName] "
      u"[varchar] (255) "
      u"NULL ,[strPropValue] [text] NULL)"_qs);
  session->execute(u"ALTER TABLE tblMeta1 ADD blnEnabled bit Null"_qs);
  EXPECT_TRUE(basic::IsNull(single(u"select blnEnabled from tblMeta1"_qs)));
  session->execute(u"Update tblMeta1 set blnEnabled =-1"_qs);
  EXPECT_TRUE(single(u"select blnEnabled from tblMeta1 where blnEnabled = -1"_qs) == Value(true));
  EXPECT_TRUE(session->columns(u"tblOtherSettings"_qs)[0].primaryKey);
  session->execute(u"insert into tblOtherSettings (strPropName, strPropValue) values (?, ?)"_qs,
                   {u"a"_qs, QString(9000, u'x')});
  EXPECT_TRUE(single(u"select strPropValue from tblOtherSettings"_qs) == Value(QString(9000, u'x')));
  EXPECT_EQ(failureNumber([&] { single(u"select top 1 strBody from tblMeta1"_qs); }), errors::noSuchColumn);
}

TEST_F(SqlServer, NullGoesIntoEveryTypeOfColumn) {
  session->execute(
      u"CREATE TABLE t (cur money, dte datetime, num real, txt text, memo nvarchar(max), bln bit)"_qs);
  session->execute(u"insert into t (cur, dte, num, txt, memo, bln) values (?, ?, ?, ?, ?, ?)"_qs,
                   {Null{}, Null{}, Null{}, Null{}, Null{}, Null{}});
  for (const Value& value : session->execute(u"select * from t"_qs).rows.first())
    EXPECT_TRUE(basic::IsNull(value));
}

TEST_F(SqlServer, ACounterIsTheTablesOwnWhateverATriggerInserts) {
  session->execute(u"CREATE TABLE t (id int IDENTITY (1, 1) PRIMARY KEY, a int)"_qs);
  session->execute(u"CREATE TABLE journal (id int IDENTITY (1000, 1), a int)"_qs);
  session->execute(
      u"CREATE TRIGGER kept ON t AFTER INSERT AS INSERT INTO journal (a) SELECT a FROM inserted"_qs);
  const Result result = session->execute(u"insert into t (a) values (?)"_qs, {qint32{5}});
  EXPECT_EQ(result.lastId, 1);
  EXPECT_EQ(result.affected, 1);
}

TEST_F(SqlServer, ATransactionThatTheServerGivesUpStoresNoHalf) {
  session->execute(u"CREATE TABLE t (a int)"_qs);
  {
    Transaction transaction(*session);
    session->execute(u"insert into t (a) values (1)"_qs);
    EXPECT_EQ(failureNumber([&] { session->execute(u"insert into t (a) values ('x')"_qs); }),
              errors::unreadableValue);
    EXPECT_NE(failureNumber([&] { session->execute(u"insert into t (a) values (2)"_qs); }), 0);
    EXPECT_NE(failureNumber([&] { transaction.commit(); }), 0);
  }
  EXPECT_EQ(session->execute(u"select * from t"_qs).rows.size(), 0);
}

TEST_F(SqlServer, AHeldRowIsNotWaitedForWithoutEnd) {
  session->execute(u"CREATE TABLE t (a int)"_qs);
  session->execute(u"insert into t (a) values (1)"_qs);
  const auto other = connect();
  Transaction transaction(*other);
  other->execute(u"update t set a = 2"_qs);
  EXPECT_EQ(failureNumber([&] { session->execute(u"update t set a = 3"_qs); }), errors::locked);
}

TEST_F(SqlServer, AnAmountIsExactUpToTheLargest) {
  session->execute(u"CREATE TABLE t (cur money)"_qs);
  const Currency largest = Currency::fromTenThousandths(std::numeric_limits<qint64>::max());
  session->execute(u"insert into t (cur) values (?)"_qs, {largest});
  EXPECT_TRUE(single(u"select cur from t"_qs) == Value(largest));
}

TEST_F(SqlServer, ASessionThatIsStillThereCannotBeSettled) {
  auto other = connect();
  const QString token = other->token();
  EXPECT_FALSE(token.isEmpty());
  EXPECT_EQ(failureNumber([&] { session->settle(token); }), errors::timeout);
  other.reset();
  session->settle(token);
  connect()->settle(token);
}

}  // namespace contract

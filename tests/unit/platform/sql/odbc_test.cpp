// Failures of SQL Server, and servers that cannot be reached.
#include "platform/basic/failure.h"
#include "platform/sql/errors.h"
#include "platform/sql/odbc/driver.h"
#include "platform/sql/odbc/engine.h"
#include "platform/sql/odbc/failures.h"
#include "platform/sql/odbc/session.h"

#include <functional>
#include <gtest/gtest.h>

namespace {

using platform::Failure;
using namespace platform::sql;
using namespace platform::sql::odbc;

Failure failureOf(const std::function<void()>& statements) {
  try {
    statements();
  } catch (const Failure& failure) {
    return failure;
  }
  return {0, {}};
}

Failure failureOf(const QString& connection, const odbc::Options& options = {}) {
  return failureOf([&] { OdbcDriver(options).connect(ConnectionString(connection)); });
}

}  // namespace

namespace {

Failure told(int number, const QString& text = u"text of the server"_qs, const QString& statement = {}) {
  return odbc::failureOf({u"42000"_qs, number, text, true}, statement, u"base on host"_qs);
}

}  // namespace

TEST(OdbcFailure, CarriesTheServersNumberAndText) {
  EXPECT_EQ(told(50000).description(), u"text of the server [50000] (base on host)"_qs);
  EXPECT_EQ(told(50000).number(), errors::statementFailed);
  EXPECT_EQ(
      told(208).description(),
      u"The database engine cannot find the input table or query: text of the server [208] (base on host)"_qs);
  const QList<std::pair<int, qint32>> known{
      {208, errors::tableNotFound},    {207, errors::noSuchColumn},      {2627, errors::duplicateKey},
      {2601, errors::duplicateKey},    {515, errors::valueRequired},     {8152, errors::fieldTooSmall},
      {2628, errors::fieldTooSmall},   {1222, errors::locked},           {1205, errors::locked},
      {18456, errors::loginFailed},    {4060, errors::connectionFailed}, {257, errors::unreadableValue},
      {8114, errors::unreadableValue}, {2714, errors::tableExists},      {8115, platform::failure::overflow}};
  for (const auto& [number, ours] : known) EXPECT_EQ(told(number).number(), ours) << number;
}

TEST(OdbcFailure, TellsTheSidesOfARelationApartInAllLanguages) {
  const auto number = [](const QString& text, const QString& statement) {
    return told(547, text, statement).number();
  };
  EXPECT_EQ(
      number(u"The DELETE statement conflicted with the REFERENCE constraint \"PersonReports\"."_qs, u"x"_qs),
      errors::relatedRecords);
  EXPECT_EQ(
      number(u"Die UPDATE-Anweisung steht in Konflikt mit der FOREIGN KEY-Einschränkung 'R'."_qs, u"x"_qs),
      errors::relatedRecordRequired);
  EXPECT_EQ(number(u"The INSERT statement conflicted with the CHECK constraint \"own\"."_qs, u"x"_qs),
            errors::statementFailed);
  EXPECT_EQ(number(u"?"_qs, u"Delete from t"_qs), errors::relatedRecords);
  EXPECT_EQ(number(u"?"_qs, u"insert into t"_qs), errors::relatedRecordRequired);
}

TEST(OdbcFailure, NamesTheFieldThatTakesNoEmptyText) {
  const Failure failure = told(
      547,
      u"The INSERT statement conflicted with the CHECK constraint \"tblStrict.strCode zero-length\"."_qs);
  EXPECT_EQ(failure.number(), errors::zeroLength);
  EXPECT_EQ(failure.description(),
            u"Field 'tblStrict.strCode' cannot be a zero-length string. (base on host)"_qs);
}

TEST(OdbcFailure, ALostConnectionIsToldFromAStatementThatFails) {
  const auto diagnosis = [](const QString& state, int number, bool server) {
    return odbc::Diagnosis{state, number, u"x"_qs, server};
  };
  EXPECT_TRUE(odbc::isLost(diagnosis(u"08S01"_qs, 0, false)));
  EXPECT_TRUE(odbc::isLost(diagnosis(u"HY000"_qs, 20004, false)));
  EXPECT_FALSE(odbc::isLost(diagnosis(u"08S01"_qs, 4060, true)));
  EXPECT_FALSE(odbc::isLost(diagnosis(u"42000"_qs, 208, true)));
  EXPECT_TRUE(odbc::isTimeout(diagnosis(u"HYT00"_qs, 0, false)));
  EXPECT_TRUE(odbc::isTimeout(diagnosis(u"S1000"_qs, 20003, false)));
}

TEST(OdbcEngine, MakesNoFilesAndSaysSo) {
  OdbcEngine engine;
  for (const auto& [refused, text] :
       {std::pair{failureOf([&] { engine.createDatabase(u"/x.mdb"_qs); }), u"/x.mdb"_qs},
        std::pair{failureOf([&] { engine.compact(u"a.mdb"_qs, u"b"_qs); }), u"a.mdb"_qs}}) {
    EXPECT_EQ(refused.number(), errors::statementFailed);
    EXPECT_TRUE(refused.description().contains(text)) << qPrintable(refused.description());
  }
}

TEST(OdbcDriverNames, AreThoseOfAllProvidersForTheServer) {
  for (const QString& name :
       {u"SQLOLEDB.1"_qs, u"SQLOLEDB"_qs, u"SQLNCLI11"_qs, u"MSOLEDBSQL"_qs, u"MSOLEDBSQL19"_qs})
    EXPECT_TRUE(odbc::providers().contains(name));
  EXPECT_TRUE(odbc::makeDriver());
  EXPECT_TRUE(odbc::makeEngine());
}

TEST(OdbcConnection, WithoutAServerIsRefused) {
  EXPECT_EQ(failureOf(u"Provider=SQLOLEDB.1"_qs).number(), errors::connectionFailed);
}

TEST(OdbcConnection, ToAServerThatIsNotThereFailsWithItsNameAndWithoutThePassword) {
  for (const QString& server : {u"127.0.0.1,1"_qs, u"no host"_qs}) {
    const Failure failure = failureOf(
        u"Provider=SQLOLEDB.1;Data Source=%1;Initial Catalog=Hours;User ID=u;Password=secret1;Connect "
        u"Timeout=2"_qs.arg(server));
    EXPECT_EQ(failure.number(), errors::connectionFailed) << qPrintable(failure.description());
    for (const QString& part : {u"Hours on "_qs + server, u"Unable to connect"_qs})
      EXPECT_TRUE(failure.description().contains(part)) << qPrintable(failure.description());
    EXPECT_FALSE(failure.description().contains(u"secret1"));
  }
}

TEST(OdbcConnection, WithoutTheDriverNamesIt) {
  for (const QString& driver : {u"No Such Driver"_qs, u"/nowhere/driver.so"_qs}) {
    const Failure failure = failureOf(u"Data Source=127.0.0.1,1"_qs, odbc::Options{driver});
    EXPECT_EQ(failure.number(), errors::providerNotFound) << qPrintable(failure.description());
    EXPECT_TRUE(failure.description().contains(driver)) << qPrintable(failure.description());
  }
}

// Connection strings for ODBC, statements, and servers that cannot be reached.
#include "platform/basic/failure.h"
#include "platform/sql/errors.h"
#include "platform/sql/odbc/connectstring.h"
#include "platform/sql/odbc/handles.h"
#include "platform/sql/odbc/session.h"

#include <gtest/gtest.h>

namespace {

using platform::Failure;
using namespace platform::sql;
using namespace platform::sql::odbc;

/// Without what stands in all of them.
QString turned(const QString& connection) {
  QString text = connectString(ConnectionString(connection), u"FreeTDS"_qs);
  EXPECT_TRUE(text.startsWith(u"DRIVER=FreeTDS;"_qs)) << qPrintable(text);
  const QString end = u";TDS_Version=7.4;ClientCharset=UTF-8"_qs;
  EXPECT_TRUE(text.endsWith(end)) << qPrintable(text);
  return text.mid(15).chopped(end.size());
}

Failure failureOf(const QString& connection, const QString& driver = u"FreeTDS"_qs) {
  try {
    OdbcDriver(driver).connect(ConnectionString(connection));
  } catch (const Failure& failure) {
    return failure;
  }
  return {0, {}};
}

}  // namespace

TEST(OdbcConnectString, TurnsTheFormsOfTheProduct) {
  EXPECT_EQ(turned(u"Provider=SQLOLEDB.1;Persist Security Info=True;Integrated Security=SSPI;Data Source=srv;"
                   u"Initial Catalog=Hourbook3SQL"_qs),
            u"SERVER=srv;PORT=1433;DATABASE=Hourbook3SQL;Trusted_Connection=Yes"_qs);
  EXPECT_EQ(turned(u"Provider=SQLOLEDB.1;Persist Security Info=True;User ID=u;Password=p;Data Source=srv"_qs),
            u"SERVER=srv;PORT=1433;UID=u;PWD=p"_qs);
}

TEST(OdbcConnectString, KnowsAllNamesOfAKey) {
  EXPECT_EQ(turned(u"Server=s;Database=d;UID=u;PWD=p"_qs), u"SERVER=s;PORT=1433;DATABASE=d;UID=u;PWD=p"_qs);
  EXPECT_EQ(turned(u"Network Address=tcp:s,1500;Trusted_Connection=yes;UID=u"_qs),
            u"SERVER=s;PORT=1500;Trusted_Connection=Yes"_qs);
  EXPECT_EQ(turned(u"Addr=(local)"_qs), u"SERVER=localhost;PORT=1433"_qs);
  EXPECT_EQ(turned(u"Address=."_qs), u"SERVER=localhost;PORT=1433"_qs);
  EXPECT_EQ(turned(u"Data Source=s\\SQLEXPRESS"_qs), u"SERVER=s\\SQLEXPRESS"_qs)
      << "which tells its own port";
  EXPECT_EQ(
      turned(u"Data Source=s;Application Name=a;Workstation ID=w;Packet Size=4096;Current Language=Svenska;"
             u"Initial File Name=f.mdf;Encrypt=yes;Network Library=DBMSSOCN;Auto Translate=True"_qs),
      u"SERVER=s;PORT=1433;APP=a;WSID=w;Encryption=require;PacketSize=4096;Language=Svenska;"
      u"AttachDbFilename=f.mdf"_qs);
  EXPECT_EQ(turned(u"Data Source=s;Use Encryption for Data=False"_qs),
            u"SERVER=s;PORT=1433;Encryption=request"_qs);
}

TEST(OdbcConnectString, ShieldsAValueThatWouldEndEarly) {
  EXPECT_EQ(turned(u"Data Source=s;Password=\"p;w}d\""_qs), u"SERVER=s;PORT=1433;PWD={p;w}}d}"_qs);
  EXPECT_EQ(turned(u"Data Source=s;Password=\" p\""_qs), u"SERVER=s;PORT=1433;PWD={ p}"_qs);
}

TEST(OdbcConnectString, BoundsTheTimeThatIsWaitedForTheServer) {
  EXPECT_EQ(connectTimeout(ConnectionString(u"Connect Timeout=3"_qs)), 3);
  for (const QString& other : {u"0"_qs, u"601"_qs, u"x"_qs})
    EXPECT_EQ(connectTimeout(ConnectionString(u"Connection Timeout="_qs + other)), 15);
}

TEST(OdbcStatement, DatesInNumberSignsAreTheDriversOwnAndATemporaryTableStays) {
  EXPECT_EQ(fromAccess(u"select * from t where d < #2/5/2024# and e = '#1/1/2024#'"_qs),
            u"select * from t where d < {ts '2024-02-05 00:00:00'} and e = '#1/1/2024#'"_qs);
  EXPECT_EQ(fromAccess(u"select [a#1] from #temporary"_qs), u"select [a#1] from #temporary"_qs);
  EXPECT_EQ(fromAccess(u"delete * from t"_qs), u"delete from t"_qs);
  EXPECT_EQ(fromAccess(u"CREATE TABLE #x (a int)"_qs), u"CREATE TABLE #x (a int)"_qs);
}

TEST(OdbcFailure, CarriesTheServersNumberAndText) {
  const auto told = [](int number, const QString& statement = {}) {
    return odbc::failureOf({u"42000"_qs, number, u"text of the server"_qs}, statement, u"base on host"_qs);
  };
  EXPECT_EQ(told(208).description(), u"text of the server [208] (base on host)"_qs);
  EXPECT_EQ(told(208).number(), errors::tableNotFound);
  EXPECT_EQ(told(207).number(), errors::noSuchColumn);
  EXPECT_EQ(told(2627).number(), errors::duplicateKey);
  EXPECT_EQ(told(515).number(), errors::valueRequired);
  EXPECT_EQ(told(8152).number(), errors::fieldTooSmall);
  EXPECT_EQ(told(547, u"Delete from t"_qs).number(), errors::relatedRecords);
  EXPECT_EQ(told(547, u"insert into t"_qs).number(), errors::relatedRecordRequired);
  EXPECT_EQ(told(1222).number(), errors::locked);
  EXPECT_EQ(told(18456).number(), errors::loginFailed);
  EXPECT_EQ(told(4060).number(), errors::connectionFailed);
  EXPECT_EQ(told(99999).number(), errors::statementFailed);
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
    const Failure failure = failureOf(u"Data Source=127.0.0.1,1"_qs, driver);
    EXPECT_EQ(failure.number(), errors::providerNotFound) << qPrintable(failure.description());
    EXPECT_TRUE(failure.description().contains(driver)) << qPrintable(failure.description());
  }
}

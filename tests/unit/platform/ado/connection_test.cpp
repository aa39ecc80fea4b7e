#include "ado_fixture.h"
#include "platform/ado/registration.h"

using namespace platform;
using namespace platform::ado;

TEST_F(AdoTest, AConnectionOpensAndCloses) {
  EXPECT_EQ(connection->State(), adStateOpen);
  EXPECT_EQ(numberOf([&] { connection->Open(); }), adErrObjectOpen);
  connection->Close();
  EXPECT_EQ(connection->State(), adStateClosed);
  EXPECT_EQ(numberOf([&] { connection->Close(); }), adErrObjectClosed);
  connection->Open();
}

TEST_F(AdoTest, AnUnknownProviderLeavesTheConnectionClosed) {
  Connection other(drivers);
  other.setConnectionString(u"Provider=SQLOLEDB.1;Data Source=x"_qs);
  EXPECT_EQ(numberOf([&] { other.Open(); }), adErrProviderNotFound);
  EXPECT_EQ(other.State(), adStateClosed);
  EXPECT_EQ(other.ConnectionString(), u"Provider=SQLOLEDB.1;Data Source=x"_qs);
}

TEST_F(AdoTest, ATextThatIsNoConnectionStringIsRefused) {
  Connection other(drivers);
  other.setConnectionString(u"C:\\Hourbooks"_qs);
  EXPECT_EQ(numberOf([&] { other.Open(); }), sql::errors::badConnectionString);
}

TEST_F(AdoTest, ADriversFailureLeavesTheConnectionClosed) {
  plan->onConnect = Failure(sql::errors::locked, u"in use"_qs);
  Connection other(drivers);
  other.setConnectionString(u"Provider=Memory;Data Source=ado"_qs);
  EXPECT_EQ(numberOf([&] { other.Open(); }), sql::errors::locked);
  EXPECT_EQ(other.State(), adStateClosed);
}

TEST_F(AdoTest, ACommandRunsItsText) {
  fill({u"a"_qs, u"b"_qs});
  Command command;
  EXPECT_EQ(command.CommandType, adCmdText);
  EXPECT_EQ(numberOf([&] { command.Execute(); }), adErrInvalidConnection);
  command.setActiveConnection(connection);
  command.CommandText = u"Update tblMeta1 set blnEnabled = -1"_qs;
  EXPECT_EQ(command.Execute().affected, 2);
  connection->Close();
  EXPECT_EQ(numberOf([&] { command.Execute(); }), adErrInvalidConnection);
}

TEST_F(AdoTest, TheComponentsAreMadeByTheirNames) {
  automation::Components components;
  registerComponents(components, drivers);
  const automation::ScopedComponents scope(components);
  const auto made = automation::CreateObject<Connection>(u"ADODB.Connection"_qs);
  made->setConnectionString(u"Provider=Memory;Data Source=ado"_qs);
  made->Open();
  EXPECT_EQ(automation::CreateObject<Recordset>(u"adodb.recordset"_qs)->State(), adStateClosed);
  EXPECT_EQ(automation::CreateObject<Command>(u"ADODB.Command"_qs)->CommandType, adCmdText);
}

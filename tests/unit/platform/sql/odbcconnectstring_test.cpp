// What connection strings for SQL Server are in the driver manager's keys.
#include "platform/basic/failure.h"
#include "platform/sql/errors.h"
#include "platform/sql/odbc/connectstring.h"

#include <gtest/gtest.h>

namespace {

using platform::Failure;
using namespace platform::sql;
using namespace platform::sql::odbc;

struct Golden {
  const char* given;
  const char* turned;  // without what stands in all of them
};
void PrintTo(const Golden& golden, std::ostream* out) {
  *out << golden.given;
}

const Golden table[] = {
    // the three forms of the product
    {"Provider=SQLOLEDB.1;Persist Security Info=True;Integrated Security=SSPI;Data Source=srv;Initial "
     "Catalog=Hourbook3SQL",
     "SERVER=srv;PORT=1433;DATABASE=Hourbook3SQL;Trusted_Connection=Yes"},
    {"Provider=SQLOLEDB.1;Persist Security Info=True;User ID=u;Password=p;Data Source=srv;Initial Catalog=d",
     "SERVER=srv;PORT=1433;DATABASE=d;UID=u;PWD=p"},
    {"Provider=SQLOLEDB.1;Persist Security Info=True;User ID=u;Password=p;Data Source=srv",
     "SERVER=srv;PORT=1433;UID=u;PWD=p"},
    {"Provider=SQLOLEDB.1;Persist Security Info=True;Integrated Security=SSPI;Data Source=srv;Initial "
     "Catalog=",
     "SERVER=srv;PORT=1433;Trusted_Connection=Yes"},
    // names of keys
    {"Server=s;Database=d;UID=u;PWD=p", "SERVER=s;PORT=1433;DATABASE=d;UID=u;PWD=p"},
    {"address=s;initial catalog=d;user=u;pwd=p", "SERVER=s;PORT=1433;DATABASE=d;UID=u;PWD=p"},
    {"Addr=s;User Name=u;Password=p", "SERVER=s;PORT=1433;UID=u;PWD=p"},
    {"Network Address=s;Trusted_Connection=yes;UID=u", "SERVER=s;PORT=1433;Trusted_Connection=Yes"},
    {" DATA  SOURCE = s ", nullptr},  // two blanks in a key are another key
    {"Data Source = s ; User ID = u ", "SERVER=s;PORT=1433;UID=u"},
    {"Data Source=a;Data Source=b", "SERVER=b;PORT=1433"},
    {"Data Source=s;Application Name=a;Workstation ID=w;Packet Size=4096;Current Language=Svenska;Initial "
     "File "
     "Name=f.mdf;Encrypt=yes;Network Library=DBMSSOCN;Auto Translate=True;Use Procedure for Prepare=1;Tag "
     "with "
     "column collation when possible=False;OLE DB Services=-2;Extended Properties=;Locale Identifier=1033",
     "SERVER=s;PORT=1433;APP=a;WSID=w;Encryption=require;PacketSize=4096;Language=Svenska;"
     "AttachDbFilename=f.mdf"},
    {"Data Source=s;APP=a;WSID=w;PacketSize=8000;Language=de;AttachDbFilename=g",
     "SERVER=s;PORT=1433;APP=a;WSID=w;PacketSize=8000;Language=de;AttachDbFilename=g"},
    {"Server=tcp:host.example,1433;Initial Catalog=d;Persist Security Info=False;User "
     "ID=u;Password=p;MultipleActiveResultSets=False;Encrypt=True;TrustServerCertificate=False;Connection "
     "Timeout=30;",
     "SERVER=host.example;PORT=1433;DATABASE=d;UID=u;PWD=p;Encryption=require"},
    {"Provider=MSOLEDBSQL19;Data Source=s;Use Encryption for Data=Mandatory;Trust Server Certificate=True",
     "SERVER=s;PORT=1433;Encryption=require"},
    {"Data Source=s;Use Encryption for Data=False", "SERVER=s;PORT=1433;Encryption=request"},
    {"Data Source=s;Encrypt=Optional", "SERVER=s;PORT=1433;Encryption=request"},
    {"Data Source=s;Encrypt=Strict", "SERVER=s;PORT=1433;Encryption=strict"},
    {"Data Source=s;Application Intent=ReadOnly", "SERVER=s;PORT=1433;ApplicationIntent=ReadOnly"},
    {"Data Source=s;Integrated Security=SSPI;Server SPN=MSSQLSvc/s.example:1433",
     "SERVER=s;PORT=1433;Trusted_Connection=Yes;ServerSPN=MSSQLSvc/s.example:1433"},
    {"Data Source=s;Integrated Security=False;User ID=DOMAIN\\u;Password=p",
     "SERVER=s;PORT=1433;UID=DOMAIN\\u;PWD=p"},
    // servers
    {"Data Source=s,1500", "SERVER=s;PORT=1500"},
    {"Data Source=s , 1500", "SERVER=s;PORT=1500"},
    {"Data Source=tcp:s,1500", "SERVER=s;PORT=1500"},
    {"Data Source=TCP: s", "SERVER=s;PORT=1433"},
    {"Data Source=(local)", "SERVER=localhost;PORT=1433"},
    {"Data Source=(LOCAL),1500", "SERVER=localhost;PORT=1500"},
    {"Data Source=.", "SERVER=localhost;PORT=1433"},
    {"Data Source=s\\SQLEXPRESS", "SERVER=s\\SQLEXPRESS"},  // which tells its own port
    {"Data Source=.\\SQLEXPRESS", "SERVER=localhost\\SQLEXPRESS"},
    {"Data Source=(local)\\SQLEXPRESS", "SERVER=localhost\\SQLEXPRESS"},
    {"Data Source=s\\MSSQLSERVER", "SERVER=s;PORT=1433"},
    {"Data Source=s\\SQLEXPRESS,1500", "SERVER=s;PORT=1500"},
    {"Data Source=s;Port=1500", "SERVER=s;PORT=1500"},
    {"Data Source=tcp:s; port = 1500 ", "SERVER=s;PORT=1500"},
    {"Data Source=s\\SQLEXPRESS;Port=1500", "SERVER=s;PORT=1500"},
    {"Data Source=\"s,1501\";Port=1500", "SERVER=s;PORT=1501"},  // what is nearer to the name
    {"Data Source=s;Port=", "SERVER=s;PORT=1433"},
    {"Data Source=10.0.0.7,1433", "SERVER=10.0.0.7;PORT=1433"},
    {"Data Source=[::1],1500", "SERVER=::1;PORT=1500"},
    {"Data Source=\"s\"", "SERVER=s;PORT=1433"},
    // what would end a value early
    {"Data Source=s;Password=\"p;w}d\"", "SERVER=s;PORT=1433;PWD={p;w}d}"},
    {"Data Source=s;Password=' p '", "SERVER=s;PORT=1433;PWD={ p }"},
    {"Data Source=s;Password='it''s'", "SERVER=s;PORT=1433;PWD=it's"},
    {"Data Source=s;Password=\"a\"\"b\"", "SERVER=s;PORT=1433;PWD=a\"b"},
    {"Data Source=s;Password={p}", "SERVER=s;PORT=1433;PWD={{p}}"},
    {"Data Source=s;Password=p}", "SERVER=s;PORT=1433;PWD=p}"},
    {"Data Source=s;Password=';}'", "SERVER=s;PORT=1433;PWD={;}}"},
    {"Data Source=s;Password='p};w'", nullptr},  // which the driver cannot be given
    {"Data Source=s;Password=p=w", "SERVER=s;PORT=1433;PWD=p=w"},
    {"Data Source=s;Password=p==w", "SERVER=s;PORT=1433;PWD=p==w"},
};

QString turned(const QString& connection) {
  const QString text = connectString(ConnectionString(connection), u"FreeTDS"_qs);
  EXPECT_TRUE(text.startsWith(u"DRIVER=FreeTDS;"_qs)) << qPrintable(text);
  const QString end = u";TDS_Version=7.4;ClientCharset=UTF-8"_qs;
  EXPECT_TRUE(text.endsWith(end)) << qPrintable(text);
  return text.mid(15).chopped(end.size());
}

Failure failureOf(const QString& connection) {
  try {
    connectString(ConnectionString(connection), u"FreeTDS"_qs);
  } catch (const Failure& failure) {
    return failure;
  }
  return {0, {}};
}

class OdbcConnectStringTable : public testing::TestWithParam<Golden> {};

}  // namespace

TEST_P(OdbcConnectStringTable, IsTurnedAsItStandsHere) {
  const QString given = QString::fromUtf8(GetParam().given);
  if (!GetParam().turned) {
    EXPECT_EQ(failureOf(given).number(), errors::connectionFailed);
    EXPECT_FALSE(failureOf(given).description().contains(u"p}"));
    return;
  }
  EXPECT_EQ(turned(given), QString::fromUtf8(GetParam().turned));
}

INSTANTIATE_TEST_SUITE_P(, OdbcConnectStringTable, testing::ValuesIn(table));

TEST(OdbcConnectString, BoundsTheTimeThatIsWaitedForTheServer) {
  EXPECT_EQ(connectTimeout(ConnectionString(u"Connect Timeout=3"_qs)), 3);
  EXPECT_EQ(connectTimeout(ConnectionString(u"Timeout=600"_qs)), 600);
  for (const QString& other : {u"0"_qs, u"601"_qs, u"x"_qs})
    EXPECT_EQ(connectTimeout(ConnectionString(u"Connection Timeout="_qs + other)), 15);
}

TEST(OdbcConnectString, WithoutAServerIsRefused) {
  EXPECT_EQ(failureOf(u"Provider=SQLOLEDB.1"_qs).description(),
            u"The connection string names no server (Data Source)."_qs);
}

TEST(OdbcConnectString, APortThatIsNoneIsRefusedAndNotRepeated) {
  for (const QString& port : {u"0"_qs, u"65536"_qs, u"1500 Password=p"_qs}) {
    EXPECT_EQ(failureOf(u"Data Source=s;Port="_qs + port).number(), errors::connectionFailed);
    EXPECT_EQ(failureOf(u"Data Source=s;Port="_qs + port).description(),
              u"The connection string's Port is none: it is a number up to 65535."_qs);
  }
}

TEST(OdbcConnectString, AServerThatIsReachedByOtherMeansIsNamed) {
  for (const QString& server : {u"np:\\\\s\\pipe\\sql\\query"_qs, u"\\\\s\\pipe\\sql\\query"_qs, u"lpc:s"_qs,
                                u"(localdb)\\v11.0"_qs}) {
    const Failure failure = failureOf(u"Data Source="_qs + server);
    EXPECT_EQ(failure.number(), errors::connectionFailed);
    EXPECT_TRUE(failure.description().contains(server)) << qPrintable(failure.description());
    EXPECT_TRUE(failure.description().contains(u"only TCP can be used"_qs));
  }
}

TEST(OdbcConnectString, APortThatIsNoneIsNamed) {
  for (const QString& port : {u""_qs, u"0"_qs, u"65536"_qs, u"SQL"_qs}) {
    const Failure failure = failureOf(u"Data Source=s,"_qs + port);
    EXPECT_EQ(failure.number(), errors::connectionFailed);
    EXPECT_TRUE(failure.description().startsWith(u"'s,%1' is no server"_qs.arg(port)))
        << qPrintable(failure.description());
  }
}

TEST(OdbcConnectString, AMissingSemicolonIsToldAndThePasswordIsNot) {
  for (const QString& given : {u"Provider=SQLOLEDB.1;Data Source=s Password=secret1;Initial Catalog=d"_qs,
                               u"Provider=SQLOLEDB.1;Data Source=s;Initial Catalog=d Password=secret1"_qs}) {
    const Failure failure = failureOf(given);
    EXPECT_EQ(failure.number(), errors::connectionFailed);
    EXPECT_TRUE(failure.description().contains(u"the ';' before a key is missing"_qs));
    EXPECT_FALSE(failure.description().contains(u"secret1"_qs));
  }
}

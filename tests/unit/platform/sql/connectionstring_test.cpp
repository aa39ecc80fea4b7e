#include "platform/basic/failure.h"
#include "platform/sql/driver.h"
#include "platform/sql/errors.h"
#include "platform/sql/memory/memory.h"

#include <gtest/gtest.h>

namespace {

using platform::Failure;
using platform::sql::ConnectionString;

qint32 failureOf(const QString& text) {
  try {
    const ConnectionString connection(text);
  } catch (const Failure& failure) {
    return failure.number();
  }
  return 0;
}

}  // namespace

TEST(ConnectionString, TakesTheProgramsAccessStringApart) {
  const ConnectionString connection(
      u"Provider=Microsoft.Jet.OLEDB.4.0;Data Source=/home/ann/My Hourbooks\\Hourbook3.mdb"_qs);
  EXPECT_EQ(connection.provider(), u"Microsoft.Jet.OLEDB.4.0"_qs);
  EXPECT_EQ(connection.value(u"Data Source"_qs), u"/home/ann/My Hourbooks\\Hourbook3.mdb"_qs);
}

TEST(ConnectionString, TakesTheProgramsServerStringApart) {
  const ConnectionString connection(
      u"Provider=SQLOLEDB.1;Persist Security Info=True;User ID=u;Password=p;Data Source=s,1433;Initial Catalog=db"_qs);
  EXPECT_EQ(connection.value(u"user id"_qs), u"u"_qs);
  EXPECT_EQ(connection.value(u"PASSWORD"_qs), u"p"_qs);
  EXPECT_EQ(connection.value(u"Initial Catalog"_qs), u"db"_qs);
}

TEST(ConnectionString, KeysDoNotRegardCaseAndBlanksRoundTheSignAreIgnored) {
  const ConnectionString connection(u"  PROVIDER  =  x  ;  data source = a b  "_qs);
  EXPECT_EQ(connection.provider(), u"x"_qs);
  EXPECT_EQ(connection.value(u"Data Source"_qs), u"a b"_qs);
}

TEST(ConnectionString, TheLastOfTwoValuesCountsButTheFirstProvider) {
  const ConnectionString connection(u"Provider=a;Data Source=1;provider=b;DATA SOURCE=2"_qs);
  EXPECT_EQ(connection.provider(), u"a"_qs);
  EXPECT_EQ(connection.value(u"Data Source"_qs), u"2"_qs);
}

TEST(ConnectionString, QuotedValuesMayHoldSeparatorsAndDoubledQuotes) {
  const ConnectionString connection(u"Password=\"a;b\"\"c'd\" ; User ID='x\"y''z=';Data Source=e"_qs);
  EXPECT_EQ(connection.value(u"Password"_qs), u"a;b\"c'd"_qs);
  EXPECT_EQ(connection.value(u"User ID"_qs), u"x\"y'z="_qs);
  EXPECT_EQ(connection.value(u"Data Source"_qs), u"e"_qs);
}

TEST(ConnectionString, ADoubledEqualSignBelongsToTheKeyAndASingleOneToTheValue) {
  const ConnectionString connection(u"a==b=c=d"_qs);
  EXPECT_EQ(connection.value(u"a=b"_qs), u"c=d"_qs);
}

TEST(ConnectionString, EmptyPiecesAndValuesAreTaken) {
  const ConnectionString connection(u";;Provider=x;;Data Source=;"_qs);
  EXPECT_EQ(connection.provider(), u"x"_qs);
  EXPECT_TRUE(connection.has(u"data source"_qs));
  EXPECT_EQ(connection.value(u"data source"_qs), QString());
  EXPECT_FALSE(ConnectionString(QString()).has(u"Provider"_qs));
}

TEST(ConnectionString, ATextOfAnotherFormIsRefused) {
  for (const QString& text :
       {u"C:\\My Hourbooks\\Hourbook3.mdb"_qs, u"=x"_qs, u"a='b"_qs, u"a='b'c;"_qs, u"a;b=c"_qs})
    EXPECT_EQ(failureOf(text), platform::sql::errors::badConnectionString) << qPrintable(text);
}

TEST(ConnectionString, SaysWhereItIsCutOffAndNotWhatStandsThere) {
  const QList<std::pair<QString, QString>> cases{
      {u"Provider=SQLOLEDB.1;Persist Security Info=True;User ID=u;Pass"_qs,
       u"a part of it is no \"key=value\" (character 58)"_qs},
      {u"Pro"_qs, u"a part of it is no \"key=value\" (character 1)"_qs},
      {u"Password=p;secret1;Data Source=s"_qs, u"a part of it is no \"key=value\" (character 12)"_qs},
      {u"Data Source=s;Password=\"secret1"_qs, u"a quoted value is not closed (character 24)"_qs},
      {u"Password=\"p\"secret1;Data Source=s"_qs,
       u"something stands behind a quoted value (character 13)"_qs}};
  for (const auto& [text, why] : cases) {
    try {
      ConnectionString reading(text);
      ADD_FAILURE() << qPrintable(text);
    } catch (const Failure& failure) {
      EXPECT_TRUE(failure.description().contains(why)) << qPrintable(failure.description());
      EXPECT_TRUE(failure.description().contains(u"It may have been cut off."_qs));
      EXPECT_FALSE(failure.description().contains(u"secret1"_qs));
    }
  }
}

TEST(ConnectionString, TheMarkOfATextFileIsNoPartOfIt) {
  EXPECT_EQ(ConnectionString(u"\uFEFFProvider=SQLOLEDB.1;Data Source=s\r\n"_qs).provider(), u"SQLOLEDB.1"_qs);
  EXPECT_EQ(ConnectionString(u"\uFEFFProvider=SQLOLEDB.1;Data Source=s\r\n"_qs).value(u"Data Source"_qs),
            u"s"_qs);
}

TEST(Drivers, AreFoundByProviderWithoutRegardToCase) {
  platform::sql::Drivers drivers;
  const auto driver = std::make_shared<platform::sql::sqlite::MemoryDriver>();
  drivers.add(u"Microsoft.Jet.OLEDB.4.0"_qs, driver);
  EXPECT_EQ(&drivers.find(u"MICROSOFT.JET.oledb.4.0"_qs), driver.get());
}

TEST(Drivers, AnUnknownProviderIsSaidToBeMissing) {
  const platform::sql::Drivers drivers;
  try {
    drivers.find(u"SQLOLEDB.1"_qs);
    FAIL();
  } catch (const Failure& failure) {
    EXPECT_EQ(failure.number(), 3706);
    EXPECT_TRUE(
        failure.description().startsWith(u"Provider cannot be found. It may not be properly installed."_qs));
    EXPECT_EQ(failure.source(), u"SQLOLEDB.1"_qs);
  }
}

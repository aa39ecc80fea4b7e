// Connection texts for a server, taken apart and put together.
#include "companions/settings/servertext.h"

#include "companions/settings/texts.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace hourbook::tests {
namespace {

const QString trusted =
    u"Provider=SQLOLEDB.1;Persist Security Info=True;Integrated Security=SSPI;Data Source=box;Initial Catalog=Hours"_s;
const QString rich =
    u"Provider=SQLOLEDB.1;Data Source=box;Encrypt=yes;Initial Catalog=Hours;User ID=jane;Password=secret;"
    "Application Name='Hours; of all';Connect Timeout=5"_s;
const QString postgresql =
    u"Provider=PostgreSQL;Data Source=db.example.org;Initial Catalog=hours;User ID=jane;Password=secret"_s;

TEST(ServerText, OfALoginIsTheProductsOwn) {
  EXPECT_EQ(withLogin({}, {u" box "_s, u" Hours "_s, true, u"left out"_s, u"too"_s}), trusted);
  EXPECT_EQ(withLogin({}, {u"box"_s, u"Hours"_s, false, u" jane "_s, u" s "_s}),
            u"Provider=SQLOLEDB.1;Persist Security Info=True;User ID=jane;Password= s ;Data Source=box;"
            "Initial Catalog=Hours"_s);
}

TEST(ServerText, GivesItsLogin) {
  EXPECT_EQ(loginOf(trusted), (SqlServerLogin{u"box"_s, u"Hours"_s, true, {}, {}}));
  EXPECT_EQ(loginOf(rich), (SqlServerLogin{u"box"_s, u"Hours"_s, false, u"jane"_s, u"secret"_s}));
  EXPECT_EQ(loginOf(u"Provider=SQLOLEDB.1;Server=box;Database=Hours;UID=jane;PWD=\"a;b\""_s),
            (SqlServerLogin{u"box"_s, u"Hours"_s, false, u"jane"_s, u"a;b"_s}));
  EXPECT_EQ(loginOf(u"Provider=SQLOLEDB.1;Data Source=box;Trusted_Connection=Yes"_s),
            (SqlServerLogin{u"box"_s, {}, true, {}, {}}));
  EXPECT_EQ(loginOf({}), SqlServerLogin());
}

TEST(ServerText, StaysToTheLastLetterWhileItsLoginDoes) {
  for (const QString& text :
       {trusted, rich, postgresql, u"provider = SQLOLEDB.1 ; SERVER=box;;Encrypt=no;\n"_s})
    EXPECT_EQ(withLogin(text, loginOf(text)), text);
}

TEST(ServerText, KeepsItsFurtherPartsUnderAnotherLogin) {
  SqlServerLogin login = loginOf(rich);
  login.password = u"other"_s;
  EXPECT_EQ(withLogin(rich, login),
            u"Provider=SQLOLEDB.1;Persist Security Info=True;User ID=jane;Password=other;Data Source=box;"
            "Initial Catalog=Hours;Encrypt=yes;Application Name='Hours; of all';Connect Timeout=5"_s);
  login.trusted = true;
  EXPECT_EQ(withLogin(rich, login),
            trusted + u";Encrypt=yes;Application Name='Hours; of all';Connect Timeout=5"_s);
}

TEST(ServerText, NamesItsFurtherParts) {
  EXPECT_EQ(furtherParts(rich), u"Encrypt=yes;Application Name='Hours; of all';Connect Timeout=5"_s);
  EXPECT_EQ(furtherParts(u"Server=box;App=\"a\"\";b\";PWD='x;Encrypt=no';Encrypt = yes ;"_s),
            u"App=\"a\"\";b\";Encrypt = yes"_s);
  EXPECT_EQ(furtherParts(trusted), QString());
  EXPECT_EQ(furtherParts(u"Persist Security Info=False;Addr=a;no pair;"_s), u"no pair"_s);
  EXPECT_EQ(furtherParts(u"App='never closed;Encrypt=yes"_s), u"App='never closed;Encrypt=yes"_s);
  EXPECT_EQ(furtherParts({}), QString());
}

TEST(ServerText, StandsInFieldsOnlyForSqlServer) {
  EXPECT_TRUE(fieldsShow({}));
  EXPECT_TRUE(fieldsShow(trusted));
  EXPECT_TRUE(fieldsShow(u"provider=sqloledb.1;Server=box"_s));
  EXPECT_FALSE(fieldsShow(postgresql));
  EXPECT_FALSE(fieldsShow(u"Provider=MSOLEDBSQL;Data Source=box"_s));
  EXPECT_FALSE(fieldsShow(u"Data Source=box"_s));
  EXPECT_FALSE(fieldsShow(u"no connection text"_s));
}

TEST(ServerText, TellsOfAPassword) {
  EXPECT_TRUE(holdsPassword(rich));
  EXPECT_TRUE(holdsPassword(u"Provider=PostgreSQL;pwd=x"_s));
  EXPECT_FALSE(holdsPassword(trusted));
  EXPECT_FALSE(holdsPassword(u"Provider=PostgreSQL;Password="_s));
}

TEST(ServerText, TypedAsAWholeIsChecked) {
  EXPECT_EQ(connectionTextProblem(u"  "_s), texts::connectionTextMissing);
  EXPECT_EQ(connectionTextProblem(u"Data Source=box;Provider=PostgreSQL"_s), texts::connectionTextBeginning);
  EXPECT_EQ(connectionTextProblem(u"provider=PostgreSQL;Data Source=box"_s), texts::connectionTextBeginning);
  EXPECT_EQ(connectionTextProblem(u"Provider=PostgreSQL;Data Source"_s), texts::connectionTextForm);
  EXPECT_EQ(connectionTextProblem(u"Provider=PostgreSQL;Password='x"_s), texts::connectionTextForm);
  EXPECT_EQ(connectionTextProblem(u"Provider=PostgreSQL;Initial Catalog=hours"_s),
            texts::connectionTextServer);
  EXPECT_EQ(connectionTextProblem(u"Provider=PostgreSQL;Data\nSource=box"_s), texts::controlSign);
  EXPECT_EQ(connectionTextProblem(u"Provider=Microsoft.Jet.OLEDB.4.0;Data Source=/x/Hourbook3.mdb"_s),
            texts::connectionTextIsAccess);
  for (const QString& text : {u' ' + postgresql + u'\n', trusted, rich})
    EXPECT_EQ(connectionTextProblem(text), QString());
}

}  // namespace
}  // namespace hourbook::tests

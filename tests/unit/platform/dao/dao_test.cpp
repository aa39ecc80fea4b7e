#include "platform/dao/dao.h"

#include "platform/basic/failure.h"
#include "platform/dao/registration.h"
#include "platform/sql/errors.h"
#include "platform/sql/failing/failing.h"
#include "platform/sql/sqlite/engine.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace platform;
using namespace platform::dao;

namespace {

class Dao : public testing::Test {
 protected:
  Dao() : db(engine.CreateDatabase(path, u";LANGID=0x0409;CP=1252;COUNTRY=0"_qs, dbVersion40)) {}

  std::shared_ptr<TableDef> persons() {
    auto table = db->CreateTableDef(u"tblPersons"_qs);
    Field id = table->CreateField(u"intPersonID"_qs, dbLong);
    id.Attributes = dbAutoIncrField;
    table->AppendField(id);
    db->AppendTableDef(table);
    table->setCaption(u"intPersonID"_qs, u"Name ID"_qs);
    Index index = table->CreateIndex(u"PrimaryKey"_qs);
    index.Primary = true;
    index.Fields.append(u"intPersonID"_qs);
    table->AppendIndex(index);
    return table;
  }
  static qint32 numberOf(const std::function<void()>& statements) {
    try {
      statements();
    } catch (const Failure& failure) {
      return failure.number();
    }
    return 0;
  }

  QTemporaryDir folder;
  QString path = folder.filePath(u"new.mdb"_qs);
  DBEngine engine{std::make_shared<sql::sqlite::SqliteDriver>(0, sql::sqlite::Durability::ProcessEnd),
                  std::make_shared<sql::sqlite::SqliteEngine>(0, sql::sqlite::Durability::ProcessEnd)};
  std::shared_ptr<Database> db;
};

}  // namespace

TEST_F(Dao, ATableIsMadeStepByStep) {
  const auto table = persons();
  Field name = table->CreateField(u"strPersonName"_qs, dbText, 255);
  name.AllowZeroLength = true;
  table->AppendField(name);
  table->setCaption(u"strPersonName"_qs, u"Name"_qs);
  EXPECT_EQ(db->TableDefNames(), QStringList{u"tblPersons"_qs});

  db->Close();
  db = engine.OpenDatabase(path);
  const auto read = db->TableDefs(u"TBLPERSONS"_qs);
  EXPECT_EQ(read->Name(), u"tblPersons"_qs);
  ASSERT_EQ(read->Fields().size(), 2);
  EXPECT_EQ(read->Fields()[0].Type, dbLong);
  EXPECT_EQ(read->Fields()[0].Attributes, dbAutoIncrField);
  EXPECT_EQ(read->Fields()[0].Caption, u"Name ID"_qs);
  EXPECT_EQ(read->Fields()[1].Type, dbText);
  EXPECT_EQ(read->Fields()[1].Size, 255);
  EXPECT_TRUE(read->Fields()[1].AllowZeroLength);
  EXPECT_EQ(read->Fields()[1].Caption, u"Name"_qs);
  ASSERT_EQ(read->Indexes().size(), 1);
  EXPECT_EQ(read->Indexes()[0].Name, u"PrimaryKey"_qs);
  EXPECT_TRUE(read->Indexes()[0].Primary);
  EXPECT_EQ(read->Indexes()[0].Fields, QStringList{u"intPersonID"_qs});
}

TEST_F(Dao, EveryTypeOfFieldComesBack) {
  const auto table = persons();
  const QList<int> types{dbBoolean, dbInteger, dbLong, dbCurrency, dbSingle,
                         dbDouble,  dbDate,    dbText, dbMemo};
  for (const int type : types) table->AppendField(table->CreateField(u"f%1"_qs.arg(type), type));
  const auto read = db->TableDefs(u"tblPersons"_qs);
  ASSERT_EQ(read->Fields().size(), types.size() + 1);
  for (int i = 0; i < types.size(); ++i) EXPECT_EQ(read->Fields()[i + 1].Type, types[i]);
  EXPECT_EQ(numberOf([&] { table->AppendField(table->CreateField(u"guid"_qs, 15)); }), 3259);
}

TEST_F(Dao, ATextFieldRefusesTheEmptyTextUntilItIsAllowed) {
  const auto table = persons();
  table->AppendField(table->CreateField(u"strStrict"_qs, dbText, 10));
  EXPECT_EQ(numberOf([&] { db->Execute(u"insert into tblPersons (strStrict) values ('')"_qs); }),
            sql::errors::zeroLength);
}

TEST_F(Dao, ATableNeedsAFieldAndANameOfItsOwn) {
  EXPECT_EQ(numberOf([&] { db->AppendTableDef(db->CreateTableDef(u"tblEmpty"_qs)); }), 3264);
  persons();
  EXPECT_EQ(numberOf([&] { persons(); }), sql::errors::tableExists);
  EXPECT_EQ(numberOf([&] { db->TableDefs(u"tblNone"_qs); }), 3265);
}

TEST_F(Dao, AKeyThatIsNoCounterIsGivenWithTheTable) {
  const auto table = db->CreateTableDef(u"tblCodes"_qs);
  table->AppendField(table->CreateField(u"strCode"_qs, dbText, 10));
  Index index = table->CreateIndex(u"PrimaryKey"_qs);
  index.Primary = true;
  index.Fields.append(u"strCode"_qs);
  table->AppendIndex(index);
  EXPECT_EQ(numberOf([&] { table->AppendIndex(index); }), sql::errors::primaryKeyExists);
  db->AppendTableDef(table);
  db->Execute(u"insert into tblCodes (strCode) values ('a')"_qs);
  EXPECT_EQ(numberOf([&] { db->Execute(u"insert into tblCodes (strCode) values ('a')"_qs); }),
            sql::errors::duplicateKey);
}

TEST_F(Dao, AnIndexThatTheEngineCannotMakeIsRefusedAndNotPretended) {
  const auto table = persons();
  table->AppendField(table->CreateField(u"strPersonName"_qs, dbText));
  Index index = table->CreateIndex(u"ixName"_qs);
  index.Fields.append(u"strPersonName"_qs);
  EXPECT_EQ(numberOf([&] { table->AppendIndex(index); }), 3251);
  index.Primary = true;
  index.Fields = {u"intPersonID"_qs};
  EXPECT_EQ(numberOf([&] { db->CreateTableDef(u"tblNew"_qs)->AppendIndex(index); }), 3251)
      << "a primary key has its name";
  index.Name = u"PrimaryKey"_qs;
  index.Fields = {u"strNone"_qs};
  EXPECT_EQ(numberOf([&] { db->CreateTableDef(u"tblNew"_qs)->AppendIndex(index); }), 3265);
}

TEST_F(Dao, ATransactionThatEndsWithoutItsCommitLeavesNothing) {
  persons();
  {
    Transaction transaction(*db);
    db->TableDefs(u"tblPersons"_qs)->AppendField(db->CreateTableDef({})->CreateField(u"intAge"_qs, dbLong));
    db->Execute(u"insert into tblPersons (intAge) values (1)"_qs);
  }
  EXPECT_EQ(db->TableDefs(u"tblPersons"_qs)->Fields().size(), 1);
  Transaction transaction(*db);
  db->Execute(u"insert into tblPersons default values"_qs);
  transaction.CommitTrans();
  db->Close();
  EXPECT_EQ(engine.OpenDatabase(path)->TableDefs(u"tblPersons"_qs)->Fields().size(), 1);
}

TEST_F(Dao, ATableMadeOverASessionBelongsToItsTransaction) {
  sql::ConnectionString connection;
  connection.set(u"Data Source"_qs, path);
  auto session = sql::sqlite::SqliteDriver(0, sql::sqlite::Durability::ProcessEnd).connect(connection);
  session->begin();
  auto over = engine.DatabaseOver(std::move(session));
  auto table = over->CreateTableDef(u"tblOver"_qs);
  table->AppendField(table->CreateField(u"strName"_qs, dbText, 20));
  over->AppendTableDef(table);
  EXPECT_EQ(over->TableDefNames(), QStringList{u"tblOver"_qs});
  over.reset();  // without a commit
  EXPECT_TRUE(db->TableDefNames().isEmpty());
}

TEST_F(Dao, ATableIsAppendedWithAllItsFieldsAtOnce) {
  const auto table = db->CreateTableDef(u"tblOther"_qs);
  Field id = table->CreateField(u"intID"_qs, dbLong);
  id.Attributes = dbAutoIncrField;
  id.Caption = u"The ID"_qs;
  table->AppendField(id);
  table->AppendField(table->CreateField(u"strValue"_qs, dbMemo));
  db->AppendTableDef(table);
  const auto read = db->TableDefs(u"tblOther"_qs);
  ASSERT_EQ(read->Fields().size(), 2);
  EXPECT_EQ(read->Fields()[0].Caption, u"The ID"_qs);
}

TEST_F(Dao, RelationsAreKept) {
  persons();
  const auto reports = db->CreateTableDef(u"tblReports"_qs);
  reports->AppendField(reports->CreateField(u"intPersonID"_qs, dbLong));
  db->AppendTableDef(reports);
  db->AppendRelation({u"PersonReports"_qs, u"tblPersons"_qs, u"tblReports"_qs, u"intPersonID"_qs});
  ASSERT_EQ(db->Relations().size(), 1);
  EXPECT_EQ(db->Relations()[0].name, u"PersonReports"_qs);
}

TEST_F(Dao, ADatabaseIsNotMadeOverAFile) {
  EXPECT_EQ(numberOf([&] { engine.CreateDatabase(path, {}, dbVersion40); }), 3204);
}

TEST_F(Dao, AClosedDatabaseIsRefused) {
  db->Close();
  EXPECT_EQ(numberOf([&] { db->Execute(u"delete from t"_qs); }), sql::errors::objectInvalid);
  EXPECT_EQ(numberOf([&] { db->TableDefNames(); }), sql::errors::objectInvalid);
  EXPECT_EQ(numberOf([&] { db->Close(); }), sql::errors::objectInvalid);
}

TEST_F(Dao, APathWithASemicolonIsOpened) {
  const QString odd = folder.filePath(u"a;b='c'.mdb"_qs);
  engine.CreateDatabase(odd, {}, dbVersion40)->Close();
  EXPECT_TRUE(engine.OpenDatabase(odd)->TableDefNames().isEmpty());
}

TEST_F(Dao, ACompactedDatabaseOpens) {
  persons();
  db->Close();
  engine.CompactDatabase(path, path + u".new"_qs);
  EXPECT_EQ(engine.OpenDatabase(path + u".new"_qs)->TableDefNames(), QStringList{u"tblPersons"_qs});
}

TEST_F(Dao, TheComponentIsMadeByItsName) {
  automation::Components components;
  registerComponents(components, std::make_shared<sql::sqlite::SqliteDriver>(),
                     std::make_shared<sql::sqlite::SqliteEngine>());
  const automation::ScopedComponents scope(components);
  EXPECT_TRUE(automation::CreateObject<DBEngine>(u"DAO.DBEngine"_qs)->OpenDatabase(path));
}

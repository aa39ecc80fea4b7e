// How tables are asked for and made on an SQL Server, and what a recordset sends.
#include "platform/ado/recordset.h"
#include "platform/sql/odbc/driver.h"
#include "platform/sql/odbc/engine.h"
#include "sqlserverwire.h"

namespace contract {

using namespace platform;
using namespace platform::sql;
using basic::Currency;
using basic::Date;
using basic::Null;
using basic::Value;

namespace {

/// One column as the server's catalogue has it.
struct Catalogued {
  QString name = {}, type = {};
  int bytes = 0, precision = 0, scale = 0;
  bool counter = false, takesNull = true, key = false, strict = false;
  QString caption = {};
};

TdsAnswer catalogue(const QList<Catalogued>& columns) {
  TdsAnswer answer;
  QList<TdsColumn> described{{u"name"_qs, TdsType::NVarChar}, {{}, TdsType::NVarChar}};
  for (int i = 0; i < 7; ++i) described.append({{}, TdsType::Int});
  described.append({{}, TdsType::NVarCharMax});
  answer.columns(described);
  for (const Catalogued& each : columns)
    answer.row({each.name, each.type, qint32{each.bytes}, qint32{each.precision}, qint32{each.scale},
                qint32{each.counter}, qint32{each.takesNull}, qint32{each.key}, qint32{each.strict},
                each.caption.isEmpty() ? Value(Null{}) : Value(each.caption)});
  return answer.done();
}

TdsAnswer names(const QStringList& tables) {
  TdsAnswer answer;
  answer.columns({{u"name"_qs, TdsType::NVarChar}});
  for (const QString& table : tables) answer.row({table});
  return answer.done();
}

const Catalogued key{u"intMeta1ID"_qs, u"int"_qs, 4, 10, 0, true, false, true, false, {}};

/// A database of "tblMeta1" and "tblOtherSettings", which has no key.
TdsAnswer smallDatabase(const TdsRequest& request) {
  const QString& sql = request.statement;
  if (sql.contains(u"sys.tables")) return names({u"tblOtherSettings"_qs, u"tblMeta1"_qs});
  if (sql.contains(u"sys.columns") && sql.contains(u"N'tblMeta1'", Qt::CaseInsensitive))
    return catalogue({key,
                      {u"strName"_qs, u"nvarchar"_qs, 510, 0, 0, false, true, false, false, u"Namn ärade"_qs},
                      {u"curRate"_qs, u"money"_qs, 8, 19, 4},
                      {u"dteWhen"_qs, u"datetime"_qs, 8, 23, 3},
                      {u"blnEnabled"_qs, u"bit"_qs, 1, 1, 0, false, false}});
  if (sql.contains(u"sys.columns") && sql.contains(u"tblOtherSettings"))
    return catalogue({{u"intSettingID"_qs, u"int"_qs, 4, 10, 0, true, false},
                      {u"strPropName"_qs, u"varchar"_qs, 255},
                      {u"strPropValue"_qs, u"text"_qs, 16}});
  if (sql.contains(u"sys.columns")) return catalogue({});
  if (sql.contains(u"sys.foreign_keys"))
    return TdsAnswer()
        .columns({{{}, TdsType::NVarChar},
                  {{}, TdsType::NVarChar},
                  {{}, TdsType::NVarChar},
                  {{}, TdsType::NVarChar}})
        .done();
  if (sql.startsWith(u"insert") || sql.startsWith(u"update"))
    return TdsAnswer()
        .columns({{{}, TdsType::Int}, {{}, TdsType::BigInt}})
        .row({qint32{1}, qint64{41}})
        .done();
  if (sql.startsWith(u"select * from [tblMeta1]") || sql.startsWith(u"Select* from tblMeta1"))
    return TdsAnswer()
        .columns({{u"intMeta1ID"_qs, TdsType::Int},
                  {u"strName"_qs, TdsType::NVarChar},
                  {u"curRate"_qs, TdsType::Money},
                  {u"dteWhen"_qs, TdsType::DateTime},
                  {u"blnEnabled"_qs, TdsType::Bit}})
        .done();
  return {};
}

Column column(const QString& name, Type type) {
  Column made;
  made.name = name;
  made.type = type;
  return made;
}

/// What was sent to change something, without what was asked before.
QStringList changes(const TdsPeer& peer) {
  QStringList all = peer.statements();
  all.removeIf([](const QString& sql) {
    return sql.contains(u"sys.tables") || sql.contains(u"sys.columns") || sql.startsWith(u"WITH ") ||
           sql.contains(u"TRANSACTION");
  });
  return all;
}

}  // namespace

TEST_F(SqlServerWire, TablesComeInTheOrderOfTheirNames) {
  peer.answerWith(smallDatabase);
  EXPECT_EQ(connect()->tables(), QStringList({u"tblMeta1"_qs, u"tblOtherSettings"_qs}));
}

TEST_F(SqlServerWire, AColumnIsDescribedAsTheServersCatalogueHasIt) {
  struct Case {
    Catalogued given;
    Type type;
    int size;
  };
  const QList<Case> cases{{{u"a"_qs, u"bit"_qs, 1}, Type::Boolean, 0},
                          {{u"b"_qs, u"tinyint"_qs, 1}, Type::Integer, 0},
                          {{u"c"_qs, u"smallint"_qs, 2}, Type::Integer, 0},
                          {{u"d"_qs, u"int"_qs, 4}, Type::Long, 0},
                          {{u"e"_qs, u"bigint"_qs, 8}, Type::Long, 0},
                          {{u"f"_qs, u"real"_qs, 4}, Type::Single, 0},
                          {{u"g"_qs, u"float"_qs, 8}, Type::Double, 0},
                          {{u"h"_qs, u"money"_qs, 8}, Type::Currency, 0},
                          {{u"i"_qs, u"smallmoney"_qs, 4}, Type::Currency, 0},
                          {{u"j"_qs, u"decimal"_qs, 9, 19, 4}, Type::Currency, 0},
                          {{u"k"_qs, u"numeric"_qs, 17, 38, 10}, Type::Double, 0},
                          {{u"l"_qs, u"datetime"_qs, 8}, Type::Date, 0},
                          {{u"m"_qs, u"datetime2"_qs, 8}, Type::Date, 0},
                          {{u"n"_qs, u"date"_qs, 3}, Type::Date, 0},
                          {{u"o"_qs, u"varchar"_qs, 255}, Type::Text, 255},
                          {{u"p"_qs, u"nvarchar"_qs, 510}, Type::Text, 255},
                          {{u"q"_qs, u"nchar"_qs, 20}, Type::Text, 10},
                          {{u"r"_qs, u"nvarchar"_qs, -1}, Type::Memo, 0},
                          {{u"s"_qs, u"varchar"_qs, -1}, Type::Memo, 0},
                          {{u"t"_qs, u"text"_qs, 16}, Type::Memo, 0},
                          {{u"u"_qs, u"ntext"_qs, 16}, Type::Memo, 0},
                          {{u"v"_qs, u"uniqueidentifier"_qs, 16}, Type::Text, 0},
                          {{u"w"_qs, u"varbinary"_qs, 40}, Type::Text, 0}};
  peer.answerWith([&](const TdsRequest&) {
    QList<Catalogued> all;
    for (const Case& each : cases) all.append(each.given);
    return catalogue(all);
  });
  const QList<Column> read = connect()->columns(u"t"_qs);
  ASSERT_EQ(read.size(), cases.size());
  for (int i = 0; i < cases.size(); ++i) {
    EXPECT_EQ(read[i].type, cases[i].type) << qPrintable(cases[i].given.type);
    EXPECT_EQ(read[i].size, cases[i].size) << qPrintable(cases[i].given.type);
  }
}

TEST_F(SqlServerWire, KeysCountersCaptionsAndRulesForEmptyTextsAreRead) {
  peer.answerWith([](const TdsRequest&) {
    return catalogue(
        {key, {u"strCode"_qs, u"nvarchar"_qs, 24, 0, 0, false, true, false, true, u"Körkort"_qs}});
  });
  const QList<Column> columns = connect()->columns(u"tblMeta1"_qs);
  ASSERT_EQ(columns.size(), 2);
  EXPECT_TRUE(columns[0].primaryKey);
  EXPECT_TRUE(columns[0].autoIncrement);
  EXPECT_FALSE(columns[1].primaryKey);
  EXPECT_FALSE(columns[1].allowZeroLength);
  EXPECT_EQ(columns[1].caption, u"Körkort"_qs);
}

TEST_F(SqlServerWire, ACounterLeadsToItsRowWhereATableHasNoKey) {
  peer.answerWith(smallDatabase);
  const QList<Column> columns = connect()->columns(u"tblOtherSettings"_qs);
  ASSERT_EQ(columns.size(), 3);
  EXPECT_TRUE(columns[0].primaryKey);
  EXPECT_FALSE(columns[1].primaryKey);
}

TEST_F(SqlServerWire, ARecordsetAddsAndChangesRowsAndKnowsTheirCounters) {
  peer.answerWith(smallDatabase);
  auto drivers = std::make_shared<Drivers>();
  for (const QString& provider : odbc::providers()) drivers->add(provider, odbc::makeDriver());
  const auto connection = std::make_shared<ado::Connection>(drivers);
  connection->setConnectionString(
      u"Provider=SQLOLEDB.1;Persist Security Info=True;User ID=ann;Password=p;Data Source=%1;Initial Catalog=d"_qs
          .arg(server()));
  connection->Open();
  ado::Recordset rows;
  rows.setActiveConnection(connection);
  rows.setSource(u"Select* from tblMeta1 where intMeta1ID = 0"_qs);
  rows.LockType = ado::adLockOptimistic;
  rows.Open();
  rows.AddNew();
  rows[u"strName"_qs].setValue(u"Åsa"_qs);
  rows[u"curRate"_qs].setValue(450.5);
  rows[u"dteWhen"_qs].setValue(Null{});
  rows[u"blnEnabled"_qs].setValue(Null{});
  rows.Update();
  EXPECT_TRUE(rows[u"intMeta1ID"_qs].Value() == Value(qint32{41}));
  rows[u"blnEnabled"_qs].setValue(-1);
  rows.Update();
  const QList<TdsRequest> requests = peer.requests();
  QList<TdsRequest> written;
  for (const TdsRequest& request : requests)
    if (request.isCall) written.append(request);
  ASSERT_EQ(written.size(), 2);
  EXPECT_TRUE(
      written[0].statement.startsWith(u"insert into [tblMeta1] ([strName], [curRate], [dteWhen], "
                                      u"[blnEnabled]) values (@P1, @P2, NULL, DEFAULT)\n"))
      << qPrintable(written[0].statement);
  EXPECT_EQ(written[0].parameters[1].value, u"450.5000"_qs);
  EXPECT_TRUE(
      written[1].statement.startsWith(u"update [tblMeta1] set [blnEnabled] = @P1 where [intMeta1ID] = @P2\n"))
      << qPrintable(written[1].statement);
  EXPECT_EQ(written[1].parameters[0].type, u"bit"_qs);
  EXPECT_EQ(written[1].parameters[0].value, u"1"_qs);
  EXPECT_EQ(written[1].parameters[1].value, u"41"_qs);
}

TEST_F(SqlServerWire, ATableIsMadeInTheServersOwnTerms) {
  peer.answerWith(smallDatabase);
  Column id = column(u"intID"_qs, Type::Long), code = column(u"strCode"_qs, Type::Text),
         memo = column(u"strBody"_qs, Type::Memo), longer = column(u"strLong"_qs, Type::Text);
  id.autoIncrement = id.primaryKey = true;
  id.caption = u"ID på Åsa's"_qs;
  code.size = 12;
  code.allowZeroLength = false;
  longer.size = 5000;
  const auto session = connect();
  odbc::OdbcEngine().createTable(
      *session, u"tblAll"_qs,
      {id, code, column(u"bln"_qs, Type::Boolean), column(u"int"_qs, Type::Integer),
       column(u"lng"_qs, Type::Long), column(u"num"_qs, Type::Single), column(u"dbl"_qs, Type::Double),
       column(u"cur"_qs, Type::Currency), column(u"dte"_qs, Type::Date), column(u"str"_qs, Type::Text),
       longer, memo});
  const QStringList sent = changes(peer);
  ASSERT_EQ(sent.size(), 2);
  EXPECT_EQ(
      sent[0],
      u"CREATE TABLE [tblAll] ([intID] int IDENTITY (1, 1) NOT NULL PRIMARY KEY, [strCode] nvarchar(12) NULL "
      u"CONSTRAINT [tblAll.strCode zero-length] CHECK (DATALENGTH([strCode]) > 0), [bln] bit NOT NULL "
      u"DEFAULT 0, "
      u"[int] smallint NULL, [lng] int NULL, [num] real NULL, [dbl] float NULL, [cur] money NULL, [dte] "
      u"datetime "
      u"NULL, [str] nvarchar(255) NULL, [strLong] nvarchar(max) NULL, [strBody] nvarchar(max) NULL)"_qs);
  EXPECT_TRUE(
      sent[1].contains(u"EXEC sys.sp_addextendedproperty N'MS_Description', N'ID på Åsa''s', N'SCHEMA', "
                       u"@schema, N'TABLE', N'tblAll', N'COLUMN', N'intID'"))
      << qPrintable(sent[1]);
  EXPECT_EQ(peer.statements().filter(u"TRANSACTION"_qs),
            QStringList({u"BEGIN TRANSACTION"_qs, u"COMMIT TRANSACTION"_qs}));
}

TEST_F(SqlServerWire, ColumnsCaptionsAndRelationsAreAddedUnderTheTablesOwnNames) {
  peer.answerWith(smallDatabase);
  const auto session = connect();
  odbc::OdbcEngine engine;
  engine.addColumn(*session, u"TBLMETA1"_qs, column(u"blnNew"_qs, Type::Boolean));
  engine.setCaption(*session, u"TBLMETA1"_qs, u"STRNAME"_qs, {});
  const QStringList sent = changes(peer);
  ASSERT_EQ(sent.size(), 2);
  EXPECT_EQ(sent[0], u"ALTER TABLE [tblMeta1] ADD [blnNew] bit NOT NULL DEFAULT 0"_qs);
  EXPECT_TRUE(
      sent[1].endsWith(u"EXEC sys.sp_dropextendedproperty N'MS_Description', N'SCHEMA', @schema, N'TABLE', "
                       u"N'tblMeta1', N'COLUMN', N'strName'"))
      << qPrintable(sent[1]);
  EXPECT_EQ(
      failureNumber([&] {
        engine.addRelation(*session, {u"R"_qs, u"tblMeta1"_qs, u"tblOtherSettings"_qs, u"intMeta1ID"_qs});
      }),
      errors::itemNotFound);
}

TEST_F(SqlServerWire, ARelationIsAForeignKeyOfItsName) {
  peer.answerWith([](const TdsRequest& request) {
    const QString& sql = request.statement;
    if (sql.contains(u"sys.tables")) return names({u"tblMeta1"_qs, u"tblReports"_qs});
    if (sql.contains(u"sys.columns") && sql.contains(u"tblReports"))
      return catalogue({{u"INTMeta1ID"_qs, u"int"_qs, 4}});
    if (sql.contains(u"sys.columns")) return catalogue({key});
    if (sql.contains(u"sys.foreign_keys"))
      return TdsAnswer()
          .columns({{u"name"_qs, TdsType::NVarChar},
                    {u"one"_qs, TdsType::NVarChar},
                    {u"many"_qs, TdsType::NVarChar},
                    {u"field"_qs, TdsType::NVarChar}})
          .row({u"PersonReports"_qs, u"tblPersons"_qs, u"tblReports"_qs, u"intPersonID"_qs})
          .done();
    return TdsAnswer();
  });
  const auto session = connect();
  odbc::OdbcEngine engine;
  engine.addRelation(*session, {u"Meta1Reports"_qs, u"tblMeta1"_qs, u"tblReports"_qs, u"intMeta1ID"_qs});
  EXPECT_EQ(changes(peer).last(),
            u"ALTER TABLE [tblReports] WITH CHECK ADD CONSTRAINT [Meta1Reports] FOREIGN KEY ([INTMeta1ID]) "
            u"REFERENCES "
            u"[tblMeta1] ([intMeta1ID])"_qs);
  const QList<Relation> relations = engine.relations(*session);
  ASSERT_EQ(relations.size(), 1);
  EXPECT_EQ(relations[0].name, u"PersonReports"_qs);
  EXPECT_EQ(relations[0].foreignTable, u"tblReports"_qs);
  EXPECT_EQ(failureNumber([&] {
              engine.addRelation(*session,
                                 {u"PERSONREPORTS"_qs, u"tblMeta1"_qs, u"tblReports"_qs, u"intMeta1ID"_qs});
            }),
            errors::objectExists);
}

TEST_F(SqlServerWire, LongNamesKeepTheirRuleForEmptyTexts) {
  peer.answerWith(smallDatabase);
  Column strict = column(QString(64, u'n'), Type::Text);
  strict.allowZeroLength = false;
  const auto session = connect();
  odbc::OdbcEngine().createTable(*session, QString(64, u't'), {strict});
  const QString sent = changes(peer).last();
  const qsizetype start = sent.indexOf(u"CONSTRAINT [") + 12, end = sent.indexOf(u" zero-length]");
  ASSERT_GT(end, start);
  EXPECT_EQ(end - start + 12, 128) << qPrintable(sent);
}

}  // namespace contract

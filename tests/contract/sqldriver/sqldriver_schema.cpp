// Tables, columns, captions and relations.
#include "sqldriver_context.h"

namespace contract {

using namespace platform;
using namespace platform::sql;
using basic::Value;

TEST_P(SqlDriver, ANewDatabaseHasNoTables) {
  EXPECT_TRUE(connect()->tables().isEmpty());
}

TEST_P(SqlDriver, TablesAreNamedAsTheyWereMadeAndTheEnginesOwnAreHidden) {
  const auto session = connect();
  createTables(*session);
  EXPECT_EQ(session->tables(), QStringList({u"tblPersons"_qs, u"tblReports"_qs}));
}

TEST_P(SqlDriver, ColumnsComeInTheirOrderWithTypeSizeKeyAndCaption) {
  const auto session = connect();
  Column memo = column(u"strBody"_qs, Type::Memo);
  memo.caption = u"Body ärade"_qs;
  Column strict = text(u"strCode"_qs, 12);
  strict.allowZeroLength = false;
  context->engine().createTable(*session, u"tblAll"_qs,
                                {key(u"intID"_qs, u"All ID"_qs), strict, column(u"bln"_qs, Type::Boolean),
                                 column(u"int"_qs, Type::Integer), column(u"lng"_qs, Type::Long),
                                 column(u"num"_qs, Type::Single), column(u"dbl"_qs, Type::Double),
                                 column(u"cur"_qs, Type::Currency), column(u"dte"_qs, Type::Date), memo});
  const QList<Column> columns = session->columns(u"TBLALL"_qs);
  ASSERT_EQ(columns.size(), 10);
  EXPECT_EQ(columns[0].caption, u"All ID"_qs);
  EXPECT_TRUE(columns[0].primaryKey);
  EXPECT_TRUE(columns[0].autoIncrement);
  EXPECT_EQ(columns[1].size, 12);
  EXPECT_FALSE(columns[1].allowZeroLength);
  EXPECT_FALSE(columns[1].primaryKey);
  const QList<Type> types{Type::Long,   Type::Text,   Type::Boolean,  Type::Integer, Type::Long,
                          Type::Single, Type::Double, Type::Currency, Type::Date,    Type::Memo};
  for (int i = 0; i < types.size(); ++i) EXPECT_EQ(columns[i].type, types[i]) << qPrintable(columns[i].name);
  EXPECT_EQ(columns[9].caption, u"Body ärade"_qs);
  EXPECT_TRUE(columns[9].allowZeroLength);
}

TEST_P(SqlDriver, ATableThatIsNotThereHasNoColumns) {
  EXPECT_TRUE(connect()->columns(u"tblNone"_qs).isEmpty());
}

TEST_P(SqlDriver, AnEmptyTextIsRefusedWhereItIsNotAllowed) {
  const auto session = connect();
  Column strict = text(u"strCode"_qs, 12);
  strict.allowZeroLength = false;
  context->engine().createTable(*session, u"tblStrict"_qs, {key(u"intID"_qs), strict});
  EXPECT_EQ(failureNumber([&] { session->execute(u"insert into tblStrict (strCode) values ('')"_qs); }),
            errors::zeroLength);
  session->execute(u"insert into tblStrict (strCode) values (' ')"_qs);
  session->execute(u"insert into tblStrict (strCode) values (null)"_qs);
}

TEST_P(SqlDriver, ATableIsNotMadeTwiceAndNotWithoutColumns) {
  const auto session = connect();
  createTables(*session);
  EXPECT_EQ(
      failureNumber([&] { context->engine().createTable(*session, u"TBLPERSONS"_qs, {key(u"id"_qs)}); }),
      errors::tableExists);
  EXPECT_EQ(failureNumber([&] { context->engine().createTable(*session, u"tblEmpty"_qs, {}); }),
            errors::noFieldDefined);
}

TEST_P(SqlDriver, ANameThatCanBeNoneIsRefused) {
  const auto session = connect();
  for (const QString& name : {u""_qs, u"a]b"_qs, QString(65, u'n'), u"a\nb"_qs})
    EXPECT_EQ(failureNumber([&] { context->engine().createTable(*session, name, {key(u"id"_qs)}); }),
              errors::invalidName)
        << qPrintable(name);
  EXPECT_TRUE(session->tables().isEmpty());
}

TEST_P(SqlDriver, ATableWithoutACounterCanHaveAKey) {
  const auto session = connect();
  Column code = text(u"strCode"_qs, 10);
  code.primaryKey = true;
  context->engine().createTable(*session, u"tblCodes"_qs, {code, column(u"num"_qs, Type::Double)});
  session->execute(u"insert into tblCodes (strCode) values ('A')"_qs);
  EXPECT_EQ(failureNumber([&] { session->execute(u"insert into tblCodes (strCode) values ('a')"_qs); }),
            errors::duplicateKey);
  EXPECT_TRUE(session->columns(u"tblCodes"_qs)[0].primaryKey);
  EXPECT_FALSE(session->columns(u"tblCodes"_qs)[0].autoIncrement);
}

TEST_P(SqlDriver, AColumnIsAddedBehindTheOthersAndOldRowsKeepTheirValues) {
  const auto session = connect();
  createTables(*session);
  session->execute(u"insert into tblPersons (strPersonName) values ('Ann')"_qs);
  Column enabled = column(u"blnEnabled"_qs, Type::Boolean);
  enabled.caption = u"Enabled"_qs;
  context->engine().addColumn(*session, u"tblPersons"_qs, enabled);
  context->engine().addColumn(*session, u"tblPersons"_qs, text(u"strPersonCategory"_qs));
  const Result result = session->execute(u"select * from tblPersons"_qs);
  ASSERT_EQ(result.rows.first().size(), 4);
  EXPECT_TRUE(result.rows[0][1] == Value(u"Ann"_qs));
  EXPECT_TRUE(result.rows[0][2] == Value(false));
  EXPECT_TRUE(basic::IsNull(result.rows[0][3]));
  EXPECT_EQ(session->columns(u"tblPersons"_qs)[2].caption, u"Enabled"_qs);
}

TEST_P(SqlDriver, AColumnThatIsTakenBackIsGoneFromTheAnswersAsWell) {
  const auto session = connect();
  createTables(*session);
  session->execute(u"insert into tblPersons (strPersonName) values ('Ann')"_qs);
  const auto columns = [&] { return session->execute(u"select * from tblPersons"_qs).columns; };
  ASSERT_EQ(columns().size(), 2);
  {
    const Transaction takenBack(*session);
    context->engine().addColumn(*session, u"tblPersons"_qs, column(u"dtmSince"_qs, Type::Date));
    ASSERT_EQ(columns().size(), 3);
    EXPECT_EQ(columns().last().type, Type::Date);
  }
  EXPECT_EQ(columns().size(), 2);
  context->engine().addColumn(*session, u"tblPersons"_qs, column(u"dtmSince"_qs, Type::Boolean));
  EXPECT_EQ(columns().last().type, Type::Boolean);
}

TEST_P(SqlDriver, AColumnIsNotAddedTwiceAndNotToAMissingTable) {
  const auto session = connect();
  createTables(*session);
  EXPECT_EQ(failureNumber(
                [&] { context->engine().addColumn(*session, u"tblPersons"_qs, text(u"STRPERSONNAME"_qs)); }),
            errors::duplicateField);
  EXPECT_EQ(failureNumber([&] { context->engine().addColumn(*session, u"tblNone"_qs, text(u"x"_qs)); }),
            errors::tableNotFound);
  EXPECT_EQ(
      failureNumber([&] { context->engine().addColumn(*session, u"tblPersons"_qs, key(u"intSecond"_qs)); }),
      errors::primaryKeyExists);
}

TEST_P(SqlDriver, ACaptionCanBeChanged) {
  const auto session = connect();
  createTables(*session);
  context->engine().setCaption(*session, u"tblPersons"_qs, u"strPersonName"_qs, u"Name"_qs);
  EXPECT_EQ(session->columns(u"tblPersons"_qs)[1].caption, u"Name"_qs);
  EXPECT_EQ(
      failureNumber([&] { context->engine().setCaption(*session, u"tblPersons"_qs, u"x"_qs, u"y"_qs); }),
      errors::itemNotFound);
}

TEST_P(SqlDriver, RelationsKeepTheirNamesInTheirOrder) {
  const auto session = connect();
  createTables(*session);
  context->engine().createTable(*session, u"tblMeta1"_qs, {key(u"intMeta1ID"_qs), text(u"strName"_qs)});
  context->engine().addColumn(*session, u"tblReports"_qs, column(u"intMeta1ID"_qs, Type::Long));
  context->engine().addRelation(*session,
                                {u"Meta1Reports"_qs, u"tblMeta1"_qs, u"tblReports"_qs, u"intMeta1ID"_qs});
  const QList<Relation> relations = context->engine().relations(*session);
  ASSERT_EQ(relations.size(), 2);
  EXPECT_EQ(relations[0].name, u"PersonReports"_qs);
  EXPECT_EQ(relations[1].name, u"Meta1Reports"_qs);
  EXPECT_EQ(relations[1].table, u"tblMeta1"_qs);
  EXPECT_EQ(relations[1].foreignTable, u"tblReports"_qs);
  EXPECT_EQ(relations[1].field, u"intMeta1ID"_qs);
  // both hold
  EXPECT_EQ(failureNumber([&] { session->execute(u"insert into tblReports (intPersonID) values (1)"_qs); }),
            errors::relatedRecordRequired);
  EXPECT_EQ(failureNumber([&] { session->execute(u"insert into tblReports (intMeta1ID) values (1)"_qs); }),
            errors::relatedRecordRequired);
}

TEST_P(SqlDriver, ARelationKeepsRowsColumnsCaptionsAndTheCounter) {
  const auto session = connect();
  context->engine().createTable(*session, u"tblPersons"_qs,
                                {key(u"intPersonID"_qs), text(u"strPersonName"_qs)});
  context->engine().createTable(*session, u"tblReports"_qs,
                                {key(u"intReportID"_qs, u"Report ID"_qs), text(u"strSubject"_qs, 40),
                                 column(u"intPersonID"_qs, Type::Long)});
  session->execute(u"insert into tblPersons (strPersonName) values ('Ann')"_qs);
  for (int i = 0; i < 3; ++i)
    session->execute(u"insert into tblReports (strSubject, intPersonID) values ('s', 1)"_qs);
  session->execute(u"delete from tblReports where intReportID = 3"_qs);
  context->engine().addRelation(*session,
                                {u"PersonReports"_qs, u"tblPersons"_qs, u"tblReports"_qs, u"intPersonID"_qs});
  EXPECT_EQ(session->execute(u"select * from tblReports"_qs).rows.size(), 2);
  const QList<Column> columns = session->columns(u"tblReports"_qs);
  ASSERT_EQ(columns.size(), 3);
  EXPECT_EQ(columns[0].caption, u"Report ID"_qs);
  EXPECT_TRUE(columns[0].autoIncrement);
  EXPECT_EQ(columns[1].size, 40);
  EXPECT_EQ(session->execute(u"insert into tblReports (strSubject) values ('t')"_qs).lastId, 4);
  EXPECT_EQ(session->tables(), QStringList({u"tblPersons"_qs, u"tblReports"_qs}));
}

TEST_P(SqlDriver, ATableMayHaveRoundBracketsInItsName) {
  const auto session = connect();
  context->engine().createTable(*session, u"tblPersons"_qs, {key(u"intPersonID"_qs)});
  context->engine().createTable(*session, u"old (copy) reports"_qs,
                                {key(u"intReportID"_qs), column(u"intPersonID"_qs, Type::Long)});
  context->engine().addRelation(*session,
                                {u"R"_qs, u"tblPersons"_qs, u"old (copy) reports"_qs, u"intPersonID"_qs});
  EXPECT_EQ(session->columns(u"old (copy) reports"_qs).size(), 2);
  EXPECT_EQ(failureNumber(
                [&] { session->execute(u"insert into [old (copy) reports] (intPersonID) values (1)"_qs); }),
            errors::relatedRecordRequired);
}

TEST_P(SqlDriver, ARelationThatTheRowsBreakIsNotMade) {
  const auto session = connect();
  context->engine().createTable(*session, u"tblPersons"_qs, {key(u"intPersonID"_qs)});
  context->engine().createTable(*session, u"tblReports"_qs,
                                {key(u"intReportID"_qs), column(u"intPersonID"_qs, Type::Long)});
  session->execute(u"insert into tblReports (intPersonID) values (5)"_qs);
  EXPECT_EQ(failureNumber([&] {
              context->engine().addRelation(*session,
                                            {u"R"_qs, u"tblPersons"_qs, u"tblReports"_qs, u"intPersonID"_qs});
            }),
            errors::relatedRecordRequired);
  EXPECT_TRUE(context->engine().relations(*session).isEmpty());
  EXPECT_EQ(session->execute(u"select * from tblReports"_qs).rows.size(), 1);
  session->execute(u"insert into tblReports (intPersonID) values (6)"_qs);  // as free as before
}

TEST_P(SqlDriver, ARelationNeedsItsTablesItsKeyAndANameOfItsOwn) {
  const auto session = connect();
  createTables(*session);
  const auto add = [&](const Relation& relation) {
    return failureNumber([&] { context->engine().addRelation(*session, relation); });
  };
  EXPECT_EQ(add({u"personreports"_qs, u"tblPersons"_qs, u"tblReports"_qs, u"intPersonID"_qs}),
            errors::objectExists);
  EXPECT_EQ(add({u"R"_qs, u"tblNone"_qs, u"tblReports"_qs, u"intPersonID"_qs}), errors::tableNotFound);
  EXPECT_EQ(add({u"R"_qs, u"tblPersons"_qs, u"tblReports"_qs, u"intNone"_qs}), errors::itemNotFound);
  context->engine().addColumn(*session, u"tblPersons"_qs, text(u"strSubject"_qs));
  EXPECT_EQ(add({u"R"_qs, u"tblPersons"_qs, u"tblReports"_qs, u"strSubject"_qs}), errors::noUniqueIndex);
}

}  // namespace contract

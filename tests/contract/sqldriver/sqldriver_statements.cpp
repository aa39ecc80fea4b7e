// Reading and writing rows.
#include "sqldriver_context.h"

namespace contract {

using namespace platform;
using namespace platform::sql;
using basic::Currency;
using basic::Date;
using basic::Null;
using basic::Value;

namespace {

Value single(Session& session, const QString& sql, const QList<Value>& parameters = {}) {
  const Result result = session.execute(sql, parameters);
  return result.rows.isEmpty() ? Value() : result.rows.first().first();
}

}  // namespace

TEST_P(SqlDriver, EveryTypeOfValueComesBackAsItWasWritten) {
  const auto session = connect();
  createTables(*session);
  session->execute(u"insert into tblPersons (strPersonName) values (?)"_qs, {u"Ann"_qs});
  const Date start = Date::of(QDate(2024, 2, 5), QTime(9, 30, 15));
  session->execute(
      u"insert into tblReports (numHours, strSubject, dtmDate, curCost, intPersonID, intKind, dblShare, "
      u"blnBilled, "
      "strBody) values (?, ?, ?, ?, ?, ?, ?, ?, ?)"_qs,
      {7.1F, u"Ärende \"x\" 'y' 漢"_qs, start, Currency::fromTenThousandths(4505001), qint32{1}, qint16{-3},
       0.1, true, u"line 1\r\nline 2"_qs});
  const Result result = session->execute(u"select * from tblReports"_qs);
  ASSERT_EQ(result.rows.size(), 1);
  const QList<Value> expected{qint32{1},
                              7.1F,
                              u"Ärende \"x\" 'y' 漢"_qs,
                              start,
                              Currency::fromTenThousandths(4505001),
                              qint32{1},
                              qint16{-3},
                              0.1,
                              true,
                              u"line 1\r\nline 2"_qs};
  ASSERT_EQ(result.rows.first().size(), expected.size());
  for (int i = 0; i < expected.size(); ++i)
    EXPECT_TRUE(result.rows.first()[i] == expected[i]) << qPrintable(result.columns[i].name);
}

TEST_P(SqlDriver, AnEarlierSessionThatHasEndedIsSettled) {
  QString token;
  {
    const auto earlier = connect();
    createTables(*earlier);
    token = earlier->token();
    EXPECT_EQ(earlier->token(), token);
    earlier->execute(u"insert into tblPersons (strPersonName) values ('Ann')"_qs);
  }
  const auto session = connect();
  EXPECT_TRUE(token.isEmpty() || session->token() != token);
  session->settle(token);
  session->settle(session->token());
  session->settle({});
  EXPECT_EQ(session->execute(u"select * from tblPersons"_qs).rows.size(), 1);
}

TEST_P(SqlDriver, NullStaysNullAndIsNotAnEmptyText) {
  const auto session = connect();
  createTables(*session);
  session->execute(u"insert into tblPersons (strPersonName) values (?)"_qs, {Null{}});
  session->execute(u"insert into tblPersons (strPersonName) values (?)"_qs, {u""_qs});
  const Result result = session->execute(u"select strPersonName from tblPersons order by intPersonID"_qs);
  EXPECT_TRUE(basic::IsNull(result.rows[0][0]));
  EXPECT_TRUE(result.rows[1][0] == Value(u""_qs));
}

TEST_P(SqlDriver, AYesNoColumnKnowsNoNull) {
  const auto session = connect();
  createTables(*session);
  session->execute(u"insert into tblReports (strSubject, blnBilled) values (?, ?)"_qs, {u"a"_qs, Null{}});
  session->execute(u"insert into tblReports (strSubject) values (?)"_qs, {u"b"_qs});
  const Result result = session->execute(u"select blnBilled from tblReports"_qs);
  EXPECT_TRUE(result.rows[0][0] == Value(false));
  EXPECT_TRUE(result.rows[1][0] == Value(false));
}

TEST_P(SqlDriver, TrueAndFalseInAStatementMeanWhatIsStored) {
  const auto session = connect();
  createTables(*session);
  session->execute(u"insert into tblReports (strSubject, blnBilled) values (?, ?)"_qs, {u"yes"_qs, true});
  session->execute(u"insert into tblReports (strSubject, blnBilled) values (?, ?)"_qs, {u"no"_qs, false});
  EXPECT_TRUE(single(*session, u"select strSubject from tblReports where blnBilled = TRUE"_qs) ==
              Value(u"yes"_qs));
  EXPECT_TRUE(single(*session, u"select strSubject from tblReports where blnBilled = false"_qs) ==
              Value(u"no"_qs));
  EXPECT_TRUE(single(*session, u"select strSubject from tblReports where blnBilled = -1"_qs) ==
              Value(u"yes"_qs));
  session->execute(u"Update tblReports set blnBilled = -1"_qs);
  EXPECT_EQ(session->execute(u"select * from tblReports where blnBilled = True"_qs).rows.size(), 2);
}

TEST_P(SqlDriver, ASelectWithoutABlankBehindItIsRead) {
  const auto session = connect();
  createTables(*session);
  const Result result = session->execute(u"Select* from tblReports where intReportID = 0"_qs);
  EXPECT_EQ(result.rows.size(), 0);
  EXPECT_EQ(result.columns.size(), 10);
}

TEST_P(SqlDriver, TopGivesSoManyRows) {
  const auto session = connect();
  createTables(*session);
  for (const QString& name : {u"c"_qs, u"a"_qs, u"b"_qs})
    session->execute(u"insert into tblPersons (strPersonName) values (?)"_qs, {name});
  EXPECT_EQ(session->execute(u"select top 1 strPersonName from tblPersons"_qs).rows.size(), 1);
  const Result two =
      session->execute(u"SELECT TOP 2 strPersonName FROM tblPersons ORDER BY strPersonName;"_qs);
  ASSERT_EQ(two.rows.size(), 2);
  EXPECT_TRUE(two.rows[1][0] == Value(u"b"_qs));
  session->execute(u"insert into tblPersons (strPersonName) values ('a')"_qs);
  EXPECT_EQ(
      session->execute(u"select top 1 strPersonName from tblPersons order by strPersonName"_qs).rows.size(),
      context->has_top_without_ties() ? 1 : 2);
}

TEST_P(SqlDriver, NamesInBracketsAreRead) {
  const auto session = connect();
  context->engine().createTable(*session, u"my table"_qs, {key(u"the id"_qs), text(u"select"_qs)});
  session->execute(u"insert into [my table] ([select]) values ('x')"_qs);
  EXPECT_TRUE(single(*session, u"select [select] from [my table] where [the id] = 1"_qs) == Value(u"x"_qs));
}

TEST_P(SqlDriver, TextsCompareWithoutRegardToCase) {
  const auto session = connect();
  createTables(*session);
  session->execute(u"insert into tblPersons (strPersonName) values ('Åsa Ek')"_qs);
  EXPECT_EQ(session->execute(u"select * from tblPersons where strPersonName = 'ÅSA EK'"_qs).rows.size(), 1);
  EXPECT_EQ(session->execute(u"select * from tblPersons where strPersonName = 'åsa ek'"_qs).rows.size(),
            context->folds_only_ascii() ? 0 : 1);
}

TEST_P(SqlDriver, TextsSortWithoutRegardToCase) {
  const auto session = connect();
  createTables(*session);
  for (const QString& name : {u"beta"_qs, u"Alpha"_qs, u"Gamma"_qs, u"alpine"_qs})
    session->execute(u"insert into tblPersons (strPersonName) values (?)"_qs, {name});
  QStringList names;
  for (const auto& row : session->execute(u"select * from tblPersons order by strPersonName"_qs).rows)
    names.append(std::get<QString>(row[1]));
  EXPECT_EQ(names, QStringList({u"Alpha"_qs, u"alpine"_qs, u"beta"_qs, u"Gamma"_qs}));
}

TEST_P(SqlDriver, DatesInAStatementAreMonthFirstWhateverTheLanguage) {
  const auto session = connect();
  createTables(*session);
  session->execute(u"insert into tblReports (strSubject, dtmDate) values (?, ?)"_qs,
                   {u"February"_qs, Date::of(QDate(2024, 2, 5), QTime(9, 0))});
  session->execute(u"insert into tblReports (strSubject, dtmDate) values (?, ?)"_qs,
                   {u"May"_qs, Date::of(QDate(2024, 5, 2))});
  EXPECT_TRUE(single(*session, u"select strSubject from tblReports where dtmDate < #3/1/2024#"_qs) ==
              Value(u"February"_qs));
  EXPECT_TRUE(single(*session, u"select strSubject from tblReports where dtmDate = #2024-05-02#"_qs) ==
              Value(u"May"_qs));
}

TEST_P(SqlDriver, ACounterGoesOnAndTellsItsLastValue) {
  const auto session = connect();
  createTables(*session);
  EXPECT_EQ(session->execute(u"insert into tblPersons (strPersonName) values ('a')"_qs).lastId, 1);
  EXPECT_EQ(session->execute(u"insert into tblPersons (strPersonName) values ('b')"_qs).lastId, 2);
  session->execute(u"delete from tblPersons where intPersonID = 2"_qs);
  EXPECT_EQ(session->execute(u"insert into tblPersons (strPersonName) values ('c')"_qs).lastId, 3)
      << "a number that was given out once is not given out again";
}

TEST_P(SqlDriver, AStatementTellsHowManyRowsItTouched) {
  const auto session = connect();
  createTables(*session);
  for (int i = 0; i < 3; ++i) session->execute(u"insert into tblPersons (strPersonName) values ('x')"_qs);
  EXPECT_EQ(session->execute(u"update tblPersons set strPersonName = 'y' where intPersonID > 1"_qs).affected,
            2);
  EXPECT_EQ(session->execute(u"Delete from tblPersons where intPersonID = 99"_qs).affected, 0);
  EXPECT_EQ(session->execute(u"delete * from tblPersons"_qs).affected, 3);
}

TEST_P(SqlDriver, AComputedColumnHasTheTypeOfItsValues) {
  const auto session = connect();
  createTables(*session);
  session->execute(u"insert into tblPersons (strPersonName) values ('x')"_qs);
  EXPECT_TRUE(single(*session, u"select count(*) from tblPersons"_qs) == Value(qint32{1}));
}

TEST_P(SqlDriver, AParameterIsAValueAndNeverPartOfTheStatement) {
  const auto session = connect();
  createTables(*session);
  const QStringList nasty{u"'; drop table tblPersons; --"_qs, u"%_\\"_qs, u"a\"b]c[d#e"_qs, u"  blanks  "_qs,
                          u"?"_qs};
  for (const QString& name : nasty)
    session->execute(u"insert into tblPersons (strPersonName) values (?)"_qs, {name});
  QStringList names;
  for (const auto& row :
       session->execute(u"select strPersonName from tblPersons order by intPersonID"_qs).rows)
    names.append(std::get<QString>(row[0]));
  EXPECT_EQ(names, nasty);
}

TEST_P(SqlDriver, ATextOverItsColumnsSizeIsRefused) {
  const auto session = connect();
  createTables(*session);
  const QString sql = u"insert into tblPersons (strPersonName) values (?)"_qs;
  session->execute(sql, {QString(255, u'x')});
  const auto tooLong = [&] { session->execute(sql, {QString(256, u'x')}); };
  EXPECT_EQ(failureNumber(tooLong), errors::fieldTooSmall);
  EXPECT_TRUE(failureText(tooLong).startsWith(
      u"The field is too small to accept the amount of data you attempted to add."));
  EXPECT_EQ(session->execute(u"select * from tblPersons"_qs).rows.size(), 1);
}

TEST_P(SqlDriver, ARowWithoutItsRelatedRowIsRefused) {
  const auto session = connect();
  createTables(*session);
  EXPECT_EQ(failureNumber([&] { session->execute(u"insert into tblReports (intPersonID) values (7)"_qs); }),
            errors::relatedRecordRequired);
  session->execute(u"insert into tblReports (intPersonID) values (null)"_qs);
  session->execute(u"insert into tblPersons (strPersonName) values ('x')"_qs);
  session->execute(u"insert into tblReports (intPersonID) values (1)"_qs);
  EXPECT_EQ(failureNumber([&] { session->execute(u"delete from tblPersons"_qs); }), errors::relatedRecords);
}

TEST_P(SqlDriver, AnAmountOfFourDecimalsIsExact) {
  const auto session = connect();
  createTables(*session);
  const QList<qint64> amounts{1, -1, 9999, 10000, 123456789, 99999999999999, -4505001};
  for (const qint64 amount : amounts)
    session->execute(u"insert into tblReports (curCost) values (?)"_qs,
                     {Currency::fromTenThousandths(amount)});
  const Result result = session->execute(u"select curCost from tblReports order by intReportID"_qs);
  for (int i = 0; i < amounts.size(); ++i)
    EXPECT_TRUE(result.rows[i][0] == Value(Currency::fromTenThousandths(amounts[i]))) << amounts[i];
}

TEST_P(SqlDriver, AStatementThatCannotBeReadNamesTheDatabase) {
  const auto session = connect();
  const auto bad = [&] { session->execute(u"select strPersonName from tblNowhere"_qs); };
  EXPECT_EQ(failureNumber(bad), errors::tableNotFound) << qPrintable(failureText(bad));
  EXPECT_TRUE(failureText(bad).contains(u"contract")) << qPrintable(failureText(bad));
  EXPECT_NE(failureNumber([&] { session->execute(u"selct"_qs); }), 0);
}

TEST_P(SqlDriver, WhatOneConnectionWroteTheNextReads) {
  {
    const auto session = connect();
    createTables(*session);
    session->execute(u"insert into tblPersons (strPersonName) values ('kept')"_qs);
  }
  const auto session = connect();
  EXPECT_TRUE(single(*session, u"select strPersonName from tblPersons"_qs) == Value(u"kept"_qs));
}

TEST_P(SqlDriver, AStatementThatWasSentBeforeHoldsForTheTableAsItIsNow) {
  const auto session = connect();
  createTables(*session);
  const QString insert = u"insert into tblPersons (strPersonName) values (?)"_qs;
  for (const QString& name : {u"Ann"_qs, u"Bo"_qs}) session->execute(insert, {Value(name)});
  const auto other = connect();
  other->execute(u"drop table \"tblReports\""_qs);
  other->execute(u"drop table \"tblPersons\""_qs);
  // another place for the column, and another type
  context->engine().createTable(
      *other, u"tblPersons"_qs,
      {column(u"numFirst"_qs, Type::Long), column(u"strPersonName"_qs, Type::Memo)});
  session->execute(insert, {Value(u"Cid"_qs)});
  other->execute(u"drop table \"tblPersons\""_qs);
  context->engine().createTable(*other, u"tblPersons"_qs, {column(u"strPersonName"_qs, Type::Long)});
  session->execute(insert, {Value(qint32{7})});
  session->execute(insert, {Value(qint32{8})});
  const Result found = connect()->execute(u"select strPersonName from tblPersons order by strPersonName"_qs);
  ASSERT_EQ(found.rows.size(), 2);
  EXPECT_EQ(found.rows[0][0], Value(qint32{7}));
  EXPECT_EQ(found.rows[1][0], Value(qint32{8}));
}

TEST_P(SqlDriver, AQuestionThatWasAskedBeforeShowsAColumnThatAnotherProgramHasAdded) {
  const auto session = connect();
  createTables(*session);
  session->execute(u"insert into tblPersons (strPersonName) values ('Ann')"_qs);
  const auto other = connect();
  const QString all = u"select * from tblPersons"_qs, hers = all + u" where strPersonName = ?"_qs;
  const QList<Value> none, ann{Value(u"Ann"_qs)};
  int columns = 2;
  for (const bool isOfOne : {true, false, true}) {
    SCOPED_TRACE(columns);
    const auto ask = [&] { return session->execute(isOfOne ? hers : all, isOfOne ? ann : none); };
    for (int asked = 0; asked < 2; ++asked) ASSERT_EQ(ask().rows.value(0).size(), columns);
    const QString added = u"strAdded%1"_qs.arg(columns);
    context->engine().addColumn(*other, u"tblPersons"_qs, text(added));
    other->execute(u"update tblPersons set %1 = 'Ulm'"_qs.arg(added));
    const Result found = ask();
    ASSERT_EQ(found.columns.size(), ++columns);
    EXPECT_EQ(found.columns.last().name, added);
    ASSERT_EQ(found.rows.value(0).size(), columns);
    EXPECT_EQ(found.rows[0].last(), Value(u"Ulm"_qs));
  }
}

TEST_P(SqlDriver, AStatementThatIsSentAgainWithTooFewValuesIsRefused) {
  const auto session = connect();
  createTables(*session);
  const QString change = u"update tblPersons set strPersonName = ? where strPersonName = ?"_qs;
  session->execute(u"insert into tblPersons (strPersonName) values ('Ann')"_qs);
  EXPECT_EQ(session->execute(change, {Value(u"Bo"_qs), Value(u"Ann"_qs)}).affected, 1);
  EXPECT_EQ(session->execute(change, {Value(u"Ann"_qs), Value(u"Bo"_qs)}).affected, 1);
  EXPECT_NE(failureNumber([&] { session->execute(change, {Value(u"Cid"_qs)}); }), 0);
  EXPECT_NE(failureNumber([&] { session->execute(change); }), 0);
  EXPECT_EQ(single(*session, u"select strPersonName from tblPersons"_qs), Value(u"Ann"_qs));
  EXPECT_EQ(session->execute(change, {Value(u"Bo"_qs), Value(u"Ann"_qs)}).affected, 1);
}

TEST_P(SqlDriver, AFailedStatementCanBeSentAgainWithOtherValues) {
  const auto session = connect();
  createTables(*session);
  const QString insert = u"insert into tblPersons (strPersonName) values (?)"_qs;
  session->execute(insert, {Value(u"Ann"_qs)});
  EXPECT_NE(failureNumber([&] { session->execute(insert, {Value(QString(300, u'x'))}); }), 0);
  EXPECT_EQ(session->execute(insert, {Value(u"Bo"_qs)}).affected, 1);
  EXPECT_EQ(session->execute(u"select strPersonName from tblPersons"_qs).rows.size(), 2);
}

TEST_P(SqlDriver, AMissingColumnIsToldFromAnyOtherFailure) {
  const auto session = connect();
  createTables(*session);
  const auto asking = [&] { session->execute(u"select top 1 strNone from tblReports"_qs); };
  EXPECT_EQ(failureNumber(asking), errors::noSuchColumn);
  EXPECT_TRUE(failureText(asking).contains(u"strNone")) << qPrintable(failureText(asking));
}

TEST_P(SqlDriver, AValueThatIsNoneOfItsColumnsTypeIsNamedAndNotTakenForZero) {
  const auto session = connect();
  createTables(*session);
  const QList<std::pair<QString, QString>> values{{u"curCost"_qs, u"450,5"_qs},
                                                  {u"blnBilled"_qs, u"True"_qs},
                                                  {u"numHours"_qs, u"many"_qs},
                                                  {u"intKind"_qs, u"x"_qs},
                                                  {u"dblShare"_qs, u"?"_qs}};
  for (const auto& [column, value] : values) {
    session->execute(u"delete from tblReports"_qs);
    const auto writing = [&, name = column, text = value] {
      session->execute(u"insert into tblReports (%1) values (?)"_qs.arg(name), {text});
    };
    if (!context->keeps_foreign_values()) {
      if (value == u"True") continue;  // which such an engine can read
      EXPECT_EQ(failureNumber(writing), errors::unreadableValue) << qPrintable(column);
      for (const QString& part : {value, u"contract"_qs})
        EXPECT_TRUE(failureText(writing).contains(part)) << qPrintable(failureText(writing));
      continue;
    }
    writing();
    const auto reading = [&] { session->execute(u"select * from tblReports"_qs); };
    EXPECT_EQ(failureNumber(reading), errors::unreadableValue) << qPrintable(column);
    const QString text = failureText(reading);
    for (const QString& part : {value, column, u"tblReports"_qs, u"contract"_qs})
      EXPECT_TRUE(text.contains(part)) << qPrintable(text);
  }
}

TEST_P(SqlDriver, AComputedColumnOfNumbersAndTextsHoldsTexts) {
  const auto session = connect();
  const QString statement = u"select 1 as a union all select 'b' order by a"_qs;
  if (!context->keeps_foreign_values()) {
    EXPECT_EQ(failureNumber([&] { session->execute(statement); }), errors::unreadableValue);
    return;
  }
  const Result result = session->execute(statement);
  ASSERT_EQ(result.rows.size(), 2);
  EXPECT_TRUE(result.rows[0][0] == Value(u"1"_qs));
  EXPECT_TRUE(result.rows[1][0] == Value(u"b"_qs));
}

TEST_P(SqlDriver, TextsAreJoinedWithAnAmpersand) {
  const auto session = connect();
  EXPECT_TRUE(single(*session, u"select 'a' & ' & ' & 'b'"_qs) == Value(u"a & b"_qs));
}

}  // namespace contract

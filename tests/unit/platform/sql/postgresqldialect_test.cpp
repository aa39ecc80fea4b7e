#include "platform/basic/failure.h"
#include "platform/sql/errors.h"
#include "platform/sql/postgresql/dialect.h"
#include "platform/sql/postgresql/failures.h"

#include <gtest/gtest.h>

namespace {

using platform::Failure;
using namespace platform::sql;
using namespace platform::sql::postgresql;

CatalogueTable table(unsigned id, const QString& name, const QList<std::pair<QString, Type>>& columns) {
  CatalogueTable made{id, name, false, {}};
  for (const auto& [column, type] : columns) {
    CatalogueTable::Entry entry;
    entry.number = static_cast<int>(made.entries.size()) + 1;
    entry.column.name = column;
    entry.column.type = type;
    entry.column.autoIncrement = column.endsWith(u"ID") && made.entries.isEmpty();
    made.entries.append(entry);
  }
  return made;
}

Catalogue catalogue() {
  Catalogue made;
  made.add(table(1, u"tblPersons"_qs,
                 {{u"intPersonID"_qs, Type::Long},
                  {u"strPersonName"_qs, Type::Text},
                  {u"blnEnabled"_qs, Type::Boolean}}));
  made.add(table(2, u"plain"_qs, {{u"count"_qs, Type::Long}, {u"STRPERSONNAME"_qs, Type::Text}}));
  return made;
}

QString turned(const QString& sql) {
  return fromAccess(sql, catalogue(), 41).sql;
}

qint32 failureNumberOf(const QString& sql) {
  try {
    turned(sql);
  } catch (const Failure& failure) {
    return failure.number();
  }
  return 0;
}

}  // namespace

TEST(PostgresqlDialect, NamesAreFoundWithoutRegardToCaseAndQuotedAsTheDatabaseSpellsThem) {
  EXPECT_EQ(turned(u"select STRPERSONNAME from TBLpersons where intpersonid = 1"_qs),
            u"select \"strPersonName\" from \"tblPersons\" where \"intPersonID\" = 1"_qs);
  EXPECT_EQ(turned(u"select [strpersonname] from [tblpersons]"_qs),
            u"select \"strPersonName\" from \"tblPersons\""_qs);
  EXPECT_EQ(turned(u"select p.INTPERSONID from tblPersons p"_qs),
            u"select p.\"intPersonID\" from \"tblPersons\" p"_qs);
}

TEST(PostgresqlDialect, AColumnIsLookedForInTheTablesOfTheStatement) {
  EXPECT_EQ(turned(u"select strPersonName from plain"_qs), u"select \"STRPERSONNAME\" from \"plain\""_qs);
  EXPECT_EQ(turned(u"select plain.strPersonName, tblPersons.strPersonName from tblPersons, plain"_qs),
            u"select \"plain\".\"STRPERSONNAME\", \"tblPersons\".\"strPersonName\" from \"tblPersons\", "
            u"\"plain\""_qs);
}

TEST(PostgresqlDialect, AFunctionIsNoColumnAndAnUnknownNameStaysAsItIs) {
  EXPECT_EQ(turned(u"select count(*), [count], Elsewhere from plain"_qs),
            u"select count(*), \"count\", Elsewhere from \"plain\""_qs);
  EXPECT_EQ(turned(u"select [No Such] from tblNone"_qs), u"select \"No Such\" from tblNone"_qs);
}

TEST(PostgresqlDialect, TopBecomesALimit) {
  EXPECT_EQ(turned(u"select top 1 Body from t ; "_qs), u"select Body from t LIMIT 1"_qs);
  EXPECT_EQ(turned(u"Select  DISTINCT TOP 12 * FROM t"_qs), u"Select  DISTINCT * FROM t LIMIT 12"_qs);
  EXPECT_EQ(failureNumberOf(u"select top 5 percent * from t"_qs), errors::syntax);
}

TEST(PostgresqlDialect, DatesAreMonthFirstTimestamps) {
  EXPECT_EQ(turned(u"select #2/5/2024#, #2024-02-05 09:30#"_qs),
            u"select timestamp '2024-02-05T00:00:00', timestamp '2024-02-05T09:30:00'"_qs);
  EXPECT_EQ(failureNumberOf(u"select #31/31/2024#"_qs), errors::syntax);
}

TEST(PostgresqlDialect, TextsInBothQuotesStayWhatTheySay) {
  EXPECT_EQ(turned(u"select \"it's \"\"so\"\"\", 'a''b', 'tblpersons ? [x] #1#'"_qs),
            u"select 'it''s \"so\"', 'a''b', 'tblpersons ? [x] #1#'"_qs);
  EXPECT_EQ(failureNumberOf(u"select 'open"_qs), errors::syntax);
  EXPECT_EQ(failureNumberOf(u"select [open"_qs), errors::syntax);
}

TEST(PostgresqlDialect, ParametersAreNumbered) {
  EXPECT_EQ(turned(u"select ?, '?', ?"_qs), u"select $1, '?', $2"_qs);
  EXPECT_EQ(withNumberedParameters(u"WITH a AS (SELECT ?, 'it''s ?') TABLE a"_qs),
            u"WITH a AS (SELECT $1, 'it''s ?') TABLE a"_qs);
}

TEST(PostgresqlDialect, YesAndNoAreComparedAndSetAsNumbersToo) {
  EXPECT_EQ(turned(u"Update tblPersons set blnEnabled = -1"_qs),
            u"Update \"tblPersons\" set \"blnEnabled\" = TRUE"_qs);
  EXPECT_EQ(turned(u"select * from tblPersons where blnenabled<>0 and intPersonID = -1"_qs),
            u"select * from \"tblPersons\" where \"blnEnabled\" <> TRUE and \"intPersonID\" = -1"_qs.replace(
                u"<> TRUE"_qs, u"<> FALSE"_qs));
  EXPECT_EQ(turned(u"select * from tblPersons where [blnEnabled] = ?"_qs),
            u"select * from \"tblPersons\" where \"blnEnabled\" = $1"_qs);
}

TEST(PostgresqlDialect, YesAndNoMayStandAsNumbersOrNullInAnInsertsList) {
  EXPECT_EQ(turned(u"insert into tblPersons (blnEnabled, intPersonID) values (-1, -1), (null, 0)"_qs),
            u"insert into \"tblPersons\" (\"blnEnabled\", \"intPersonID\") values (TRUE, -1), (FALSE, 0) "
            u"RETURNING \"intPersonID\""_qs);
  EXPECT_EQ(turned(u"insert into tblPersons values (7, 'f(1, 0)', 0)"_qs),
            u"insert into \"tblPersons\" values (7, 'f(1, 0)', FALSE) RETURNING \"intPersonID\""_qs);
}

TEST(PostgresqlDialect, AnInsertGivesBackTheCountersValue) {
  const Catalogue known = catalogue();
  Translation translation = fromAccess(u"insert into tblPersons (strPersonName) values (?);"_qs, known);
  EXPECT_EQ(translation.sql,
            u"insert into \"tblPersons\" (\"strPersonName\") values ($1) RETURNING \"intPersonID\""_qs);
  ASSERT_NE(translation.counted, nullptr);
  EXPECT_FALSE(translation.givesCounter);
  EXPECT_TRUE(translation.writes);
  EXPECT_TRUE(fromAccess(u"insert into tblPersons (intPersonID) values (7)"_qs, known).givesCounter);
  EXPECT_EQ(fromAccess(u"insert into [tblPersons] default values"_qs, known).sql,
            u"insert into \"tblPersons\" default values RETURNING \"intPersonID\""_qs);
  EXPECT_EQ(fromAccess(u"insert into plain (count) values (1)"_qs, known).counted, nullptr);
  EXPECT_EQ(fromAccess(u"insert into tblPersons (strPersonName) values ('a') returning 1"_qs, known).counted,
            nullptr);
}

TEST(PostgresqlDialect, TheLastCounterValueIsAsked) {
  EXPECT_EQ(turned(u"select @@IDENTITY"_qs), u"select 41"_qs);
}

TEST(PostgresqlDialect, LikeRegardsNoCase) {
  EXPECT_EQ(
      turned(u"select 1 from plain where a like 'b%' or a not  like ?"_qs),
      u"select 1 from \"plain\" where a COLLATE \"und-x-icu\" ILIKE 'b%' or a COLLATE \"und-x-icu\" NOT "
      u"ILIKE $1"_qs);
}

TEST(PostgresqlDialect, ADeleteLosesItsStar) {
  EXPECT_EQ(turned(u"delete * from tblPersons"_qs), u"delete from \"tblPersons\""_qs);
}

TEST(PostgresqlDialect, ANameIsMeasuredInBytes) {
  EXPECT_EQ(quotedName(QString(63, u'n')).size(), 65);
  for (const QString& name : {QString(64, u'n'), QString(32, u'å'), u""_qs, u"a]b"_qs, u"a\"b"_qs})
    EXPECT_THROW(quotedName(name), Failure) << qPrintable(name);
}

TEST(PostgresqlFailure, TellsTheWordOfTheStatementThatTheServerStoppedAt) {
  EXPECT_EQ(wordAt(u"select '漢𝄞', strNone from t"_qs, 14), u"strNone"_qs);
  EXPECT_EQ(wordAt(u"select p.\"No Such\" from t"_qs, 8), u"p.No Such"_qs);
  EXPECT_EQ(wordAt(u"select 1"_qs, 0), u""_qs);
  EXPECT_EQ(wordAt(u"select 1"_qs, 99), u""_qs);
}

TEST(PostgresqlFailure, NumbersFollowTheServersCodes) {
  const auto number = [](const QString& state, const QString& statement = {},
                         const QString& constraint = {}) {
    ServerError error;
    error.state = state;
    error.text = u"text of the server"_qs;
    error.table = u"tblReports"_qs;
    error.constraint = constraint;
    const Failure failure = failureOf(error, statement, u"base on host"_qs);
    EXPECT_TRUE(failure.description().contains(u"base on host")) << qPrintable(state);
    return failure.number();
  };
  EXPECT_EQ(number(u"42P01"_qs), errors::tableNotFound);
  EXPECT_EQ(number(u"42703"_qs), errors::noSuchColumn);
  EXPECT_EQ(number(u"23505"_qs), errors::duplicateKey);
  EXPECT_EQ(number(u"23502"_qs), errors::valueRequired);
  EXPECT_EQ(number(u"23514"_qs, {}, u"strCode zero-length"_qs), errors::zeroLength);
  EXPECT_EQ(number(u"23514"_qs, {}, u"other"_qs), errors::statementFailed);
  EXPECT_EQ(number(u"22001"_qs), errors::fieldTooSmall);
  EXPECT_EQ(number(u"22003"_qs), platform::failure::overflow);
  EXPECT_EQ(number(u"55P03"_qs), errors::locked);
  EXPECT_EQ(number(u"25006"_qs), errors::readOnly);
  EXPECT_EQ(number(u"53100"_qs), errors::diskFull);
  EXPECT_EQ(number(u"42501"_qs), errors::noPermission);
  EXPECT_EQ(number(u"57P01"_qs), errors::connectionFailed);
  EXPECT_EQ(number(u"08006"_qs), errors::connectionFailed);
  EXPECT_EQ(number(u"42601"_qs), errors::statementFailed);
  EXPECT_EQ(number(u"23503"_qs, u"insert into \"tblReports\" ..."_qs), errors::relatedRecordRequired);
  EXPECT_EQ(number(u"23503"_qs, u"update \"tblReports\" set ..."_qs), errors::relatedRecordRequired);
  EXPECT_EQ(number(u"23503"_qs, u"update tblReports set ..."_qs), errors::relatedRecordRequired);
  EXPECT_EQ(number(u"23503"_qs, u"Update \"tblReports old\" set ..."_qs), errors::relatedRecords);
  EXPECT_EQ(number(u"08P01"_qs), errors::statementFailed);
  EXPECT_EQ(number(u"23503"_qs, u"Update \"tblPersons\" set ..."_qs), errors::relatedRecords);
  EXPECT_EQ(number(u"23503"_qs, u"delete from \"tblPersons\""_qs), errors::relatedRecords);
}

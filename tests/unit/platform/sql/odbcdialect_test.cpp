// Statements of the Access kind for SQL Server.
#include "platform/basic/failure.h"
#include "platform/sql/errors.h"
#include "platform/sql/odbc/dialect.h"

#include <gtest/gtest.h>

namespace {

using platform::Failure;
using platform::basic::Null;
using platform::basic::Value;
using namespace platform::sql;
using namespace platform::sql::odbc;

/// "tblMeta1" has a Yes/No column that takes no Null, "tblMeta2" one that does.
struct World {
  QStringList asked;
  Translation turn(const QString& sql, const QList<Value>& parameters = {}) {
    return odbc::fromAccess(sql, parameters, [this](const QString& table) {
      asked.append(table);
      if (table.compare(u"tblMeta1", Qt::CaseInsensitive) == 0)
        return QList<YesNoColumn>{{u"blnEnabled"_qs, false}};
      if (table.compare(u"tblMeta2", Qt::CaseInsensitive) == 0)
        return QList<YesNoColumn>{{u"blnEnabled"_qs, true}};
      return QList<YesNoColumn>();
    });
  }
  /// Without the counting that goes behind what writes.
  QString text(const QString& sql, const QList<Value>& parameters = {}) {
    const Translation translation = turn(sql, parameters);
    const QString counts = u"\nSELECT @@ROWCOUNT, CAST(SCOPE_IDENTITY() AS bigint)"_qs;
    EXPECT_EQ(translation.sql.endsWith(counts), translation.writes);
    return translation.writes ? translation.sql.chopped(counts.size()) : translation.sql;
  }
};

}  // namespace

TEST(OdbcDialect, WhatTheServerKnowsByItselfStaysAsItStands) {
  World world;
  for (const QString& sql :
       {u"Select* from tblReports where intReportID = 0"_qs, u"select top 1 strBody from tblReports"_qs,
        u"SELECT TOP 2 strName FROM tblMeta1 ORDER BY strName"_qs, u"Update tblMeta1 set blnEnabled =0"_qs,
        u"select [the top] from [true table] where [a#1] = 1"_qs, u"insert into [t] default values"_qs,
        u"select * from tblMeta1 where strName = 'it''s'"_qs,
        u"select a.b, c.[d e] from a join c on a.x = c.x"_qs})
    EXPECT_EQ(world.text(sql), sql);
  EXPECT_TRUE(world.asked.isEmpty()) << "the catalogue is not asked without need";
}

TEST(OdbcDialect, WhatWritesIsFollowedByItsCounts) {
  World world;
  EXPECT_FALSE(world.turn(u"select * from t"_qs).writes);
  for (const QString& sql :
       {u"insert into t (a) values (1)"_qs, u"Update t set a = 1"_qs, u"Delete from t"_qs})
    EXPECT_EQ(world.turn(sql + u" ; "_qs).sql,
              sql + u"\nSELECT @@ROWCOUNT, CAST(SCOPE_IDENTITY() AS bigint)"_qs);
}

TEST(OdbcDialect, ADateInNumberSignsIsReadTheSameInAllLanguages) {
  World world;
  EXPECT_EQ(
      world.text(u"select * from t where d < #2/5/2024# and e = '#1/1/2024#'"_qs),
      u"select * from t where d < CONVERT(datetime, '2024-02-05T00:00:00', 126) and e = '#1/1/2024#'"_qs);
  EXPECT_EQ(world.text(u"select #2024-02-05 09:30#"_qs),
            u"select CONVERT(datetime, '2024-02-05T09:30:00', 126)"_qs);
  EXPECT_THROW(world.text(u"select #5/32/2024#"_qs), Failure);
}

TEST(OdbcDialect, ATemporaryTableIsNoDate) {
  World world;
  EXPECT_EQ(world.text(u"select * from #temporary join ##all on 1 = 1"_qs),
            u"select * from #temporary join ##all on 1 = 1"_qs);
}

TEST(OdbcDialect, TextsWithOtherLettersAreUnicode) {
  World world;
  EXPECT_EQ(world.text(u"select * from t where a = 'Åsa''s' and b = 'Asa' and c = \"漢\""_qs),
            u"select * from t where a = N'Åsa''s' and b = 'Asa' and c = N'漢'"_qs);
  EXPECT_EQ(world.text(u"select \"it's\""_qs), u"select 'it''s'"_qs);
}

TEST(OdbcDialect, YesAndNoAreBits) {
  World world;
  EXPECT_EQ(world.text(u"select * from t where a = True and b = false"_qs),
            u"select * from t where a = CAST(1 AS bit) and b = CAST(0 AS bit)"_qs);
  EXPECT_EQ(world.text(u"Update tblMeta1 set blnEnabled =-1"_qs),
            u"Update tblMeta1 set blnEnabled = CAST(-1 AS bit)"_qs);
  EXPECT_EQ(world.text(u"select * from tblMeta1 where [BLNENABLED] <> -1 and intMeta1ID = -1"_qs),
            u"select * from tblMeta1 where [BLNENABLED] <> CAST(-1 AS bit) and intMeta1ID = -1"_qs);
  EXPECT_EQ(world.text(u"select * from tblMeta1 where blnEnabled = 1 or blnEnabled = 0"_qs),
            u"select * from tblMeta1 where blnEnabled = 1 or blnEnabled = 0"_qs);
}

TEST(OdbcDialect, AParameterThatIsMinusOneIsAYesToo) {
  World world;
  const QString sql = u"select * from tblMeta1 where blnEnabled = ?"_qs;
  EXPECT_EQ(world.text(sql, {qint32{-1}}), u"select * from tblMeta1 where blnEnabled = CAST(? AS bit)"_qs);
  EXPECT_EQ(world.text(sql, {qint32{1}}), sql);
  EXPECT_EQ(world.text(sql, {true}), sql);
}

TEST(OdbcDialect, NullStandsInTheStatementAndIsNoParameter) {
  World world;
  const Translation turned =
      world.turn(u"Update t set a = ?, b = '?', c = ? where d = ?"_qs, {Null{}, qint32{2}, u"x"_qs});
  EXPECT_TRUE(turned.sql.startsWith(u"Update t set a = NULL, b = '?', c = ? where d = ?\n"_qs))
      << qPrintable(turned.sql);
  EXPECT_EQ(turned.parameters, (QList<Value>{qint32{2}, u"x"_qs}));
}

TEST(OdbcDialect, AYesNoColumnThatTakesNoNullGetsItsDefault) {
  World world;
  const QList<Value> values{u"a"_qs, Null{}};
  EXPECT_EQ(world.text(u"insert into [tblMeta1] ([strName], [blnEnabled]) values (?, ?)"_qs, values),
            u"insert into [tblMeta1] ([strName], [blnEnabled]) values (?, DEFAULT)"_qs);
  EXPECT_EQ(world.text(u"insert into tblMeta1 (strName, blnEnabled) values ('a', (1)), (null, null)"_qs),
            u"insert into tblMeta1 (strName, blnEnabled) values ('a', (1)), (null, DEFAULT)"_qs);
  EXPECT_EQ(world.text(u"insert into [tblMeta2] ([strName], [blnEnabled]) values (?, ?)"_qs, values),
            u"insert into [tblMeta2] ([strName], [blnEnabled]) values (?, NULL)"_qs);
}

TEST(OdbcDialect, ParametersTooManyOrTooFewAreLeftToTheServer) {
  World world;
  EXPECT_EQ(world.turn(u"select ?"_qs, {u"a"_qs, u"b"_qs}).parameters.size(), 2);
  EXPECT_EQ(world.text(u"select ?, ?"_qs, {u"a"_qs}), u"select ?, ?"_qs);
}

TEST(OdbcDialect, TextsAreJoinedAndTheStarOfADeleteGoes) {
  World world;
  EXPECT_EQ(world.text(u"select 'a' & ' & ' & b from t"_qs), u"select 'a' + ' & ' + b from t"_qs);
  EXPECT_EQ(world.text(u"delete * from t"_qs), u"delete from t"_qs);
}

TEST(OdbcDialect, CommentsMayHoldQuotes) {
  World world;
  EXPECT_EQ(world.text(u"select 1 /* it's */ -- isn't"_qs), u"select 1 /* it's */ -- isn't"_qs);
  EXPECT_THROW(world.text(u"select 'open"_qs), Failure);
  EXPECT_THROW(world.text(u"select [open"_qs), Failure);
  EXPECT_THROW(world.text(u"select /* open"_qs), Failure);
}

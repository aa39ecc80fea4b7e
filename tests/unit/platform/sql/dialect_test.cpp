#include "platform/sql/sqlite/dialect.h"

#include "platform/basic/failure.h"
#include "platform/sql/errors.h"
#include "scopedtimezone.h"

#include <gtest/gtest.h>

namespace {

using platform::Failure;
using platform::sql::sqlite::fromAccess;

qint32 failureOf(const QString& sql) {
  try {
    fromAccess(sql);
  } catch (const Failure& failure) {
    return failure.number();
  }
  return 0;
}

}  // namespace

TEST(Dialect, WhatNeedsNoChangeStaysAsItStands) {
  for (const QString& sql :
       {u"Select* from tblReports where intReportID = 0"_qs, u"select * from tblMeta1 order by strName"_qs,
        u"Update tblMeta1 set blnEnabled = -1"_qs, u"Delete from tblReports where intMeta1ID = 7"_qs,
        u"select [the top] from [true table]"_qs, u"insert into t (a) values (?)"_qs})
    EXPECT_EQ(fromAccess(sql), sql);
}

TEST(Dialect, TopBecomesALimit) {
  EXPECT_EQ(fromAccess(u"select top 1 strBody from tblReports"_qs),
            u"select strBody from tblReports LIMIT 1"_qs);
  EXPECT_EQ(fromAccess(u"SELECT  DISTINCT TOP 12 * FROM t ; "_qs), u"SELECT  DISTINCT * FROM t LIMIT 12"_qs);
  EXPECT_EQ(fromAccess(u"select top 3* from t"_qs), u"select* from t LIMIT 3"_qs);
  EXPECT_EQ(fromAccess(u"select topic from t"_qs), u"select topic from t"_qs);
  EXPECT_EQ(failureOf(u"select top 5 percent * from t"_qs), platform::sql::errors::syntax);
}

TEST(Dialect, TrueAndFalseAreWordsOutsideOfTexts) {
  EXPECT_EQ(
      fromAccess(u"select * from t where a=TRUE and b=False and c='true' and [true]=1 and trueish=2"_qs),
      u"select * from t where a=-1 and b=0 and c='true' and [true]=1 and trueish=2"_qs);
}

TEST(Dialect, DoubleQuotesHoldATextToo) {
  EXPECT_EQ(fromAccess(u"select * from t where a = \"it's \"\"so\"\"\" and b = 'it''s'"_qs),
            u"select * from t where a = 'it''s \"so\"' and b = 'it''s'"_qs);
}

TEST(Dialect, DateLiteralsAreMonthFirst) {
  EXPECT_EQ(fromAccess(u"select #2/5/2024#"_qs), u"select '2024-02-05T00:00:00'"_qs);
  EXPECT_EQ(fromAccess(u"select #02/05/2024 14:30#"_qs), u"select '2024-02-05T14:30:00'"_qs);
  EXPECT_EQ(fromAccess(u"select #2/5/2024 2:30:15 PM#"_qs), u"select '2024-02-05T14:30:15'"_qs);
  EXPECT_EQ(fromAccess(u"select #2024-02-05 09:00:01#"_qs), u"select '2024-02-05T09:00:01'"_qs);
  EXPECT_EQ(fromAccess(u"select '#2/5/2024#'"_qs), u"select '#2/5/2024#'"_qs);
  EXPECT_EQ(failureOf(u"select #13/32/2024#"_qs), platform::sql::errors::syntax);
}

TEST(Dialect, OpenLiteralsAreRefused) {
  EXPECT_EQ(failureOf(u"select 'a"_qs), platform::sql::errors::syntax);
  EXPECT_EQ(failureOf(u"select \"a"_qs), platform::sql::errors::syntax);
  EXPECT_EQ(failureOf(u"select [a"_qs), platform::sql::errors::syntax);
  EXPECT_EQ(failureOf(u"select #2/5/2024"_qs), platform::sql::errors::syntax);
}

TEST(Dialect, TheLastCounterCanBeAskedFor) {
  EXPECT_EQ(fromAccess(u"select @@IDENTITY"_qs), u"select last_insert_rowid()"_qs);
}

TEST(Dialect, ADeleteLosesItsStar) {
  EXPECT_EQ(fromAccess(u"DELETE * FROM t"_qs), u"delete from t"_qs);
}

TEST(Dialect, StatementsOfTheEnginesOwnPassAsTheyStand) {
  const QString sql = u"CREATE TABLE \"t\" (a CHECK(a <> TRUE))"_qs;
  EXPECT_EQ(fromAccess(sql), sql);
}

TEST(Dialect, ADateIsReadEvenWhereTheMachinesClockLeavesThatHourOut) {
  const tests::ScopedTimeZone zone(tests::noMidnightOnFebruary5);
  EXPECT_EQ(fromAccess(u"select #2/5/2024#"_qs), u"select '2024-02-05T00:00:00'"_qs);
  EXPECT_EQ(fromAccess(u"select #2024-02-05 00:30#"_qs), u"select '2024-02-05T00:30:00'"_qs);
}

TEST(Dialect, AnAmpersandJoinsTexts) {
  EXPECT_EQ(fromAccess(u"select a & ' & ' & [b&c] from t"_qs), u"select a || ' & ' || [b&c] from t"_qs);
}

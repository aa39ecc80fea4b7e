#include "platform/ado/constants.h"
#include "platform/ado/fieldtype.h"
#include "platform/basic/failure.h"

#include <gtest/gtest.h>

using namespace platform::ado;
using platform::basic::Value;

TEST(Criterion, IsAFieldAnEqualSignAndATextOrANumber) {
  const Criterion text = parseCriterion(u"strPropName = 'AD Department'"_qs);
  EXPECT_EQ(text.field, u"strPropName"_qs);
  EXPECT_TRUE(text.matches(u"ad department"_qs));
  EXPECT_FALSE(text.matches(u"ad department "_qs));
  EXPECT_FALSE(text.matches(platform::basic::Null{}));
  const Criterion number = parseCriterion(u"[the id]=-2.5"_qs);
  EXPECT_EQ(number.field, u"the id"_qs);
  EXPECT_TRUE(number.matches(-2.5));
  EXPECT_FALSE(number.matches(qint32{2}));
  EXPECT_TRUE(parseCriterion(u"a = ''"_qs).matches(u""_qs));
}

TEST(Criterion, OfAnotherFormIsRefused) {
  for (const QString& criteria : {u""_qs, u"a"_qs, u"a = "_qs, u"a = 'b"_qs, u"a = 'b'c'"_qs, u"a = b"_qs,
                                  u"a = 1.2.3"_qs, u"a <> 'b'"_qs, u"a = 'b' and c = 'd'"_qs, u"= 'b'"_qs}) {
    try {
      parseCriterion(criteria);
      ADD_FAILURE() << qPrintable(criteria);
    } catch (const platform::Failure& failure) {
      EXPECT_EQ(failure.number(), adErrInvalidArgument);
    }
  }
}

TEST(Source, TheTableOfASelectStandsInItsFrom) {
  EXPECT_EQ(tableOfSelect(u"Select* from tblReports where intReportID = 0"_qs), u"tblReports"_qs);
  EXPECT_EQ(tableOfSelect(u"select top 1 strBody from tblReports"_qs), u"tblReports"_qs);
  EXPECT_EQ(tableOfSelect(u"SELECT a FROM [my table];"_qs), u"my table"_qs);
  EXPECT_EQ(tableOfSelect(u"select ' from x ' from tblY"_qs), u"tblY"_qs);
  EXPECT_EQ(tableOfSelect(u"select * from a, b"_qs), QString());
  EXPECT_EQ(tableOfSelect(u"select * from a inner join b on a.x = b.x"_qs), QString());
  EXPECT_EQ(tableOfSelect(u"select 1"_qs), QString());
  EXPECT_TRUE(isSelect(u" Select* from t"_qs));
  EXPECT_FALSE(isSelect(u"selected"_qs));
}

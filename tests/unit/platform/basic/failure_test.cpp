#include "platform/basic/failure.h"

#include "platform/basic/value.h"

#include <gtest/gtest.h>

using platform::Failure;
using namespace platform::basic;

namespace {

TEST(Failure, CarriesNumberDescriptionAndSource) {
  const Failure failure(-2147467259, u"Kein Zugriff auf »Größe«"_qs, u"ADODB.Connection"_qs);

  EXPECT_EQ(failure.number(), -2147467259);
  EXPECT_EQ(failure.description(), u"Kein Zugriff auf »Größe«");
  EXPECT_EQ(failure.source(), u"ADODB.Connection");
  EXPECT_STREQ(failure.what(), "-2147467259: Kein Zugriff auf »Größe«");
}

TEST(Failure, IsCaughtAsAStandardException) {
  EXPECT_THROW(throw Failure(13, u"Type mismatch"_qs), std::exception);
}

TEST(Value, TellsItsTypeByTheLanguagesName) {
  EXPECT_EQ(TypeName(Value()), u"Empty");
  EXPECT_EQ(TypeName(Null()), u"Null");
  EXPECT_EQ(TypeName(true), u"Boolean");
  EXPECT_EQ(TypeName(qint16(1)), u"Integer");
  EXPECT_EQ(TypeName(qint32(1)), u"Long");
  EXPECT_EQ(TypeName(qint64(1)), u"LongLong");
  EXPECT_EQ(TypeName(1.0F), u"Single");
  EXPECT_EQ(TypeName(1.0), u"Double");
  EXPECT_EQ(TypeName(Currency()), u"Currency");
  EXPECT_EQ(TypeName(Date()), u"Date");
  EXPECT_EQ(TypeName(QString()), u"String");
}

TEST(Value, TellsEmptyFromNull) {
  EXPECT_TRUE(IsEmpty(Value()));
  EXPECT_FALSE(IsNull(Value()));
  EXPECT_TRUE(IsNull(Null()));
  EXPECT_FALSE(IsEmpty(Null()));
  EXPECT_FALSE(IsEmpty(QString())) << "an empty text is a value";
}

}  // namespace

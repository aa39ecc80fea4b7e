// Recordsets made by hand, with typed columns.
#include "ado_fixture.h"
#include "platform/basic/clock.h"
#include "platform/locale/locale.h"

using namespace platform;
using namespace platform::ado;
using basic::Currency;
using basic::Date;
using basic::Value;

namespace {

class DisconnectedRecordset : public AdoTest {
 protected:
  DisconnectedRecordset() {
    auto fields = rs.Fields();
    fields.Append(u"big"_qs, adBigInt, 0, adFldUnspecified);
    fields.Append(u"day"_qs, adDBDate);
    fields.Append(u"text"_qs, adVarWChar, 5);
    fields.Append(u"single"_qs, adSingle);
    fields.Append(u"money"_qs, adCurrency);
    fields.Append(u"body"_qs, adBSTR);
    fields.Append(u"date"_qs, adDate);
    fields.Append(u"small"_qs, adSmallInt);
    fields.Append(u"flag"_qs, adBoolean);
    fields.Append(u"dbl"_qs, adDouble);
    rs.Open();
    rs.AddNew();
  }
  Value through(const QString& field, const Value& value) {
    rs[field].setValue(value);
    return rs[field].Value();
  }
  Recordset rs;
};

}  // namespace

TEST_F(DisconnectedRecordset, ANewRowHoldsNulls) {
  rs.Update();
  EXPECT_EQ(rs.RecordCount(), 1);
  for (int i = 0; i < rs.Fields().Count(); ++i) EXPECT_TRUE(basic::IsNull(rs.Fields().Item(i).Value())) << i;
}

TEST_F(DisconnectedRecordset, ValuesBecomeTheTypeOfTheirColumn) {
  EXPECT_TRUE(through(u"big"_qs, qint16{7}) == Value(qint64{7}));
  EXPECT_TRUE(through(u"big"_qs, u"12"_qs) == Value(qint64{12}));
  EXPECT_TRUE(through(u"small"_qs, 2.5) == Value(qint16{2})) << "halves to even";
  EXPECT_TRUE(through(u"single"_qs, 0.1) == Value(0.1F));
  EXPECT_TRUE(through(u"money"_qs, 1.00005) == Value(Currency::fromDouble(1.00005)));
  EXPECT_TRUE(through(u"money"_qs, Currency::fromTenThousandths(9223372036854775807)) ==
              Value(Currency::fromTenThousandths(9223372036854775807)));
  EXPECT_TRUE(through(u"text"_qs, qint32{42}) == Value(u"42"_qs));
  EXPECT_TRUE(through(u"flag"_qs, qint32{-1}) == Value(true));
  EXPECT_TRUE(through(u"dbl"_qs, u"0.25"_qs) == Value(0.25));
  EXPECT_TRUE(through(u"body"_qs, QString(3000, u'b')) == Value(QString(3000, u'b')));
}

TEST_F(DisconnectedRecordset, ADayColumnDropsTheTimeOfDay) {
  const Date start = Date::of(QDate(2024, 2, 5), QTime(9, 30));
  EXPECT_TRUE(through(u"day"_qs, start) == Value(Date::of(2024, 2, 5)));
  EXPECT_TRUE(through(u"date"_qs, start) == Value(start));
}

TEST_F(DisconnectedRecordset, NullAndEmptyAreNull) {
  rs[u"big"_qs].setValue(qint32{1});
  EXPECT_TRUE(basic::IsNull(through(u"big"_qs, basic::Null{})));
  EXPECT_TRUE(basic::IsNull(through(u"single"_qs, Value())));
}

TEST_F(DisconnectedRecordset, TheDecimalSignOfATextIsAPointInEveryLanguage) {
  const locale::ScopedLocale german(u"de_DE"_qs);
  EXPECT_TRUE(through(u"single"_qs, u"7.25"_qs) == Value(7.25F));
  EXPECT_TRUE(through(u"single"_qs, u"7,25"_qs) == Value(7.25F));
  EXPECT_TRUE(through(u"money"_qs, u"450.5"_qs) == Value(Currency::fromTenThousandths(4505000)));
}

TEST_F(DisconnectedRecordset, WhatCannotBeConvertedIsRefusedAndLeavesTheOldValue) {
  rs[u"single"_qs].setValue(1.0);
  for (const auto& [field, value] : QList<std::pair<QString, Value>>{{u"single"_qs, Value(u"x"_qs)},
                                                                     {u"single"_qs, Value(u""_qs)},
                                                                     {u"small"_qs, Value(qint32{40000})},
                                                                     {u"big"_qs, Value(1e19)},
                                                                     {u"money"_qs, Value(1e30)},
                                                                     {u"single"_qs, Value(1e300)},
                                                                     {u"date"_qs, Value(u"soon"_qs)},
                                                                     {u"flag"_qs, Value(u"perhaps"_qs)}})
    EXPECT_EQ(numberOf([&, f = field, v = value] { rs[f].setValue(v); }), adErrDataConversion)
        << qPrintable(field);
  EXPECT_TRUE(rs[u"single"_qs].Value() == Value(1.0F));
}

TEST_F(DisconnectedRecordset, ATextOverItsColumnsSizeIsRefused) {
  EXPECT_TRUE(through(u"text"_qs, u"12345"_qs) == Value(u"12345"_qs));
  EXPECT_EQ(numberOf([&] { rs[u"text"_qs].setValue(u"123456"_qs); }), adErrMultipleStep);
}

TEST_F(DisconnectedRecordset, RowsComeInTheOrderInWhichTheyWereAdded) {
  rs[u"big"_qs].setValue(qint32{1});
  rs.Update();
  rs.AddNew();
  rs[u"big"_qs].setValue(qint32{2});
  rs.Update();
  rs.MoveFirst();
  EXPECT_TRUE(rs[u"big"_qs].Value() == Value(qint64{1}));
  rs[u"text"_qs].setValue(u"one"_qs);
  rs.Update();
  rs.MoveNext();
  EXPECT_TRUE(basic::IsNull(rs[u"text"_qs].Value()));
  rs.MoveFirst();
  EXPECT_TRUE(rs[u"text"_qs].Value() == Value(u"one"_qs));
  rs.Delete();
  EXPECT_EQ(rs.RecordCount(), 1);
}

TEST_F(DisconnectedRecordset, FieldsAreAddedOnlyWhileItIsClosed) {
  EXPECT_EQ(numberOf([&] { rs.Fields().Append(u"late"_qs, adInteger); }), adErrObjectOpen);
  Recordset fresh;
  fresh.Fields().Append(u"a"_qs, adInteger);
  EXPECT_NE(numberOf([&] { fresh.Fields().Append(u"A"_qs, adInteger); }), 0);
  Recordset connected;
  connected.setActiveConnection(connection);
  EXPECT_EQ(numberOf([&] { connected.Fields().Append(u"a"_qs, adInteger); }), adErrIllegalOperation);
}

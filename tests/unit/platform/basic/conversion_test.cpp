#include "failures.h"
#include "platform/basic/convert.h"
#include "platform/locale/locale.h"

#include <limits>

using platform::locale::ScopedLocale;
using namespace platform::basic;

namespace {

TEST(CStr, WritesNumbersWithTheSystemsDecimalSign) {
  const ScopedLocale german(u"de_DE"_qs);
  EXPECT_EQ(CStr(7.25), u"7,25");
  EXPECT_EQ(CStr(7.1F), u"7,1");
  EXPECT_EQ(CStr(Currency::fromTenThousandths(4505000)), u"450,5");
  EXPECT_EQ(CStr(1.5e300), u"1,5E+300");
  EXPECT_EQ(CStr(qint32(-12345)), u"-12345");
  EXPECT_EQ(CStr(qint16(7)), u"7");
  EXPECT_EQ(CStr(std::numeric_limits<qint64>::min()), u"-9223372036854775808");
  const ScopedLocale swiss(u"de_CH"_qs);
  EXPECT_EQ(CStr(7.25), u"7.25");
}

TEST(CStr, WritesBooleansInEnglishEverywhere) {
  const ScopedLocale swedish(u"sv_SE"_qs);
  EXPECT_EQ(CStr(true), u"True");
  EXPECT_EQ(CStr(false), u"False");
}

TEST(CStr, WritesDatesAsShortDateAndLongTime) {
  const ScopedLocale slovene(u"sl_SI"_qs);
  EXPECT_EQ(CStr(Date::of(2024, 3, 5)), u"5. 03. 2024");
  EXPECT_EQ(CStr(Date::of(QDate(2024, 3, 5), QTime(9, 5))), u"5. 03. 2024 9:05:00");
  const ScopedLocale american(u"en_US"_qs);
  EXPECT_EQ(CStr(Date::of(QDate(2024, 3, 5), QTime(21, 5))), u"3/5/2024 9:05:00 PM");
  EXPECT_EQ(CStr(Date(0.5)), u"12:00:00 PM") << "on the day 0 only the time shows";
  EXPECT_EQ(CStr(Date()), u"12:00:00 AM");
}

TEST(CStr, GivesTextsAsTheyStandAndNothingForEmpty) {
  EXPECT_EQ(CStr(u" a "_qs), u" a ");
  EXPECT_EQ(CStr(Value()), QString());
}

TEST(EveryConversion, RefusesNullWith94) {
  EXPECT_EQ(failureNumber([] { CStr(Null()); }), 94);
  EXPECT_EQ(failureNumber([] { CBool(Null()); }), 94);
  EXPECT_EQ(failureNumber([] { CInt(Null()); }), 94);
  EXPECT_EQ(failureNumber([] { CLng(Null()); }), 94);
  EXPECT_EQ(failureNumber([] { CSng(Null()); }), 94);
  EXPECT_EQ(failureNumber([] { CDbl(Null()); }), 94);
  EXPECT_EQ(failureNumber([] { CDate(Null()); }), 94);
}

TEST(EveryConversion, TakesEmptyForNothing) {
  EXPECT_EQ(CBool(Value()), false);
  EXPECT_EQ(CInt(Value()), 0);
  EXPECT_EQ(CLng(Value()), 0);
  EXPECT_EQ(CSng(Value()), 0.0F);
  EXPECT_EQ(CDbl(Value()), 0.0);
  EXPECT_EQ(CDate(Value()), Date());
}

TEST(CBool, ReadsItsOwnWordsInAnyCaseAndNumbers) {
  EXPECT_TRUE(CBool(u"true"_qs));
  EXPECT_FALSE(CBool(u"FALSE"_qs));
  EXPECT_TRUE(CBool(u"-1"_qs));
  EXPECT_FALSE(CBool(u"0"_qs));
  EXPECT_TRUE(CBool(0.1));
  EXPECT_FALSE(CBool(Currency()));
  EXPECT_TRUE(CBool(Date(1)));
  EXPECT_EQ(failureNumber([] { CBool(u"yes"_qs); }), 13);
  EXPECT_EQ(failureNumber([] { CBool(QString()); }), 13);
}

TEST(CInt, RoundsHalvesToEven) {
  EXPECT_EQ(CInt(0.5), 0);
  EXPECT_EQ(CInt(1.5), 2);
  EXPECT_EQ(CInt(2.5), 2);
  EXPECT_EQ(CInt(-2.5), -2);
  EXPECT_EQ(CInt(-3.5), -4);
  EXPECT_EQ(CInt(2.51), 3);
  EXPECT_EQ(CInt(Currency::fromTenThousandths(25000)), 2);
}

TEST(CInt, TakesTrueForMinusOne) {
  EXPECT_EQ(CInt(true), -1);
}

TEST(CInt, FailsWith6OutsideOfSixteenBits) {
  EXPECT_EQ(CInt(32767.4), 32767);
  EXPECT_EQ(CInt(-32768.5), -32768);
  EXPECT_EQ(failureNumber([] { CInt(32767.5); }), 6);
  EXPECT_EQ(failureNumber([] { CInt(u"-32769"_qs); }), 6);
}

TEST(CLng, FailsWith6OutsideOfThirtyTwoBits) {
  EXPECT_EQ(CLng(2147483647.4), 2147483647);
  EXPECT_EQ(failureNumber([] { CLng(2147483647.5); }), 6);
  EXPECT_EQ(failureNumber([] { CLng(std::numeric_limits<double>::quiet_NaN()); }), 6);
}

TEST(CSng, FailsWith6ForWhatASingleDoesNotHold) {
  EXPECT_EQ(CSng(7.25), 7.25F);
  EXPECT_EQ(failureNumber([] { CSng(1e39); }), 6);
}

TEST(RoundHalfEven, HoldsForLargeAndNegativeNumbers) {
  EXPECT_EQ(roundHalfEven(4503599627370497.5), 4503599627370498.0);
  EXPECT_EQ(roundHalfEven(-0.5), 0);
  EXPECT_EQ(roundHalfEven(-1.5), -2);
  EXPECT_EQ(roundHalfEven(0.49999999999999994), 0);
  EXPECT_EQ(roundHalfEven(1e300), 1e300);
}

struct Reading {
  const char* locale;
  QString text;
  double value;
};

class CDblReads : public testing::TestWithParam<Reading> {};

TEST_P(CDblReads, ANumberOfTheSystemsFormat) {
  const ScopedLocale scope(QString::fromLatin1(GetParam().locale));
  EXPECT_TRUE(IsNumeric(GetParam().text)) << GetParam().text.toStdString();
  EXPECT_DOUBLE_EQ(CDbl(GetParam().text), GetParam().value) << GetParam().text.toStdString();
}

INSTANTIATE_TEST_SUITE_P(
    Formats, CDblReads,
    testing::Values(Reading{"en_US", u"7.25"_qs, 7.25}, Reading{"en_US", u" 7.25 "_qs, 7.25},
                    Reading{"en_US", u"1,234.5"_qs, 1234.5}, Reading{"en_US", u"7,25"_qs, 725},
                    Reading{"en_US", u"8."_qs, 8}, Reading{"en_US", u".5"_qs, 0.5},
                    Reading{"en_US", u"-3"_qs, -3}, Reading{"en_US", u"- 3"_qs, -3},
                    Reading{"en_US", u"+3"_qs, 3}, Reading{"en_US", u"3-"_qs, -3},
                    Reading{"en_US", u"(3)"_qs, -3}, Reading{"en_US", u"1e3"_qs, 1000},
                    Reading{"en_US", u"1D-2"_qs, 0.01}, Reading{"en_US", u"1.5E+2"_qs, 150},
                    Reading{"de_DE", u"7,25"_qs, 7.25}, Reading{"de_DE", u"8,"_qs, 8},
                    Reading{"de_DE", u"1.234,5"_qs, 1234.5},
                    // kept: the group sign may stand anywhere among the digits, so this is no fraction
                    Reading{"de_DE", u"1.5"_qs, 15}, Reading{"de_CH", u"7.25"_qs, 7.25},
                    Reading{"de_CH", u"1’234.5"_qs, 1234.5}, Reading{"de_CH", u"1'234.5"_qs, 1234.5},
                    Reading{"sv_SE", u"1\u00a0234,5"_qs, 1234.5}, Reading{"sv_SE", u"1 234,5"_qs, 1234.5},
                    Reading{"fr_FR", u"1\u202f234,5"_qs, 1234.5}, Reading{"fr_FR", u"1 234,5"_qs, 1234.5},
                    Reading{"tr_TR", u"7,25"_qs, 7.25}, Reading{"el_GR", u"1.234,5"_qs, 1234.5},
                    Reading{"sl_SI", u"7,25"_qs, 7.25}, Reading{"fr_BE", u"7,25"_qs, 7.25}));

struct Refusal {
  const char* locale;
  QString text;
};

class CDblRefuses : public testing::TestWithParam<Refusal> {};

TEST_P(CDblRefuses, WhatIsNoNumberOfTheSystemsFormat) {
  const ScopedLocale scope(QString::fromLatin1(GetParam().locale));
  EXPECT_FALSE(IsNumeric(GetParam().text)) << GetParam().text.toStdString();
  EXPECT_EQ(failureNumber([] { CDbl(GetParam().text); }), 13) << GetParam().text.toStdString();
}

INSTANTIATE_TEST_SUITE_P(
    Formats, CDblRefuses,
    testing::Values(Refusal{"en_US", QString()}, Refusal{"en_US", u" "_qs}, Refusal{"en_US", u"."_qs},
                    Refusal{"en_US", u","_qs}, Refusal{"en_US", u"-"_qs}, Refusal{"en_US", u"()"_qs},
                    Refusal{"en_US", u"8h"_qs}, Refusal{"en_US", u"8 h"_qs}, Refusal{"en_US", u"1.2.3"_qs},
                    Refusal{"en_US", u"1.2,3"_qs}, Refusal{"en_US", u"--3"_qs}, Refusal{"en_US", u"1e"_qs},
                    Refusal{"en_US", u"e3"_qs}, Refusal{"en_US", u"1 234"_qs}, Refusal{"en_US", u"inf"_qs},
                    Refusal{"en_US", u"nan"_qs}, Refusal{"en_US", u"True"_qs}, Refusal{"en_US", u"٣"_qs},
                    Refusal{"sv_SE", u"7.25"_qs}, Refusal{"fr_FR", u"7.25"_qs}, Refusal{"de_DE", u"7,2,5"_qs},
                    Refusal{"de_CH", u"7,25"_qs}, Refusal{"en_US", u"3/5/2024"_qs}));

TEST(CDbl, FailsWith6ForANumberThatIsTooLargeWhichIsNotNumericEither) {
  const ScopedLocale american(u"en_US"_qs);
  EXPECT_EQ(failureNumber([] { CDbl(u"1e400"_qs); }), 6);
  EXPECT_FALSE(IsNumeric(u"1e400"_qs));
  EXPECT_EQ(failureNumber([] { CDbl(QString(u"-9"_qs + QString(400, u'9'))); }), 6);
  EXPECT_EQ(failureNumber([] { CDbl(u"1e99999999999"_qs); }), 6);
}

TEST(CDbl, TakesANumberThatIsTooSmallForNothing) {
  const ScopedLocale american(u"en_US"_qs);
  EXPECT_EQ(CDbl(u"1e-400"_qs), 0);
  EXPECT_EQ(CDbl(u"-1e-99999999999"_qs), 0);
  EXPECT_EQ(CDbl(QString(u"0."_qs + QString(400, u'0') + u'1')), 0);
  EXPECT_EQ(CDbl(u"0e400"_qs), 0);
}

TEST(CDbl, UndoesCStrInEveryFormat) {
  for (const QString& name : {u"en_US"_qs, u"de_DE"_qs, u"de_CH"_qs, u"sv_SE"_qs, u"fr_FR"_qs, u"tr_TR"_qs}) {
    const ScopedLocale scope(name);
    for (int minutes = 1; minutes < 3000; minutes += 7)
      ASSERT_NEAR(CDbl(CStr(minutes / 60.0)), minutes / 60.0, 1e-12) << name.toStdString();
  }
}

TEST(IsNumeric, HoldsForEveryNumberAndForEmptyButNotForDates) {
  EXPECT_TRUE(IsNumeric(Value()));
  EXPECT_TRUE(IsNumeric(true));
  EXPECT_TRUE(IsNumeric(qint16(1)));
  EXPECT_TRUE(IsNumeric(1.5));
  EXPECT_TRUE(IsNumeric(Currency()));
  EXPECT_FALSE(IsNumeric(Date(5)));
  EXPECT_FALSE(IsNumeric(Null()));
}

TEST(CDate, ReadsTheSystemsShortDateAndTheYearInFront) {
  const ScopedLocale french(u"fr_BE"_qs);
  EXPECT_EQ(CDate(u"05-03-24"_qs), Date::of(2024, 3, 5));
  EXPECT_EQ(CDate(u"2024-03-05"_qs), Date::of(2024, 3, 5));
  EXPECT_EQ(CDate(u"2024-03-05 14:30"_qs), Date::of(QDate(2024, 3, 5), QTime(14, 30)));
}

TEST(CDate, ReadsATimeAloneOnTheDayZero) {
  EXPECT_EQ(CDate(u"18:00"_qs), Date(0.75));
}

TEST(CDate, ReadsMonthFirstTextsByTheSystemsOrderWhereThatGivesADate) {
  const ScopedLocale german(u"de_DE"_qs);
  EXPECT_EQ(CDate(u"03-05-2024"_qs), Date::of(2024, 5, 3));
  EXPECT_EQ(CDate(u"02-25-2024"_qs), Date::of(2024, 2, 25));
}

TEST(CDate, UndoesCStrInEveryFormat) {
  for (const QString& name :
       {u"en_US"_qs, u"de_DE"_qs, u"de_CH"_qs, u"sv_SE"_qs, u"sl_SI"_qs, u"fr_BE"_qs, u"el_GR"_qs}) {
    const ScopedLocale scope(name);
    for (const QTime& time : {QTime(0, 0), QTime(0, 30), QTime(9, 5, 59), QTime(12, 0), QTime(23, 59, 59)}) {
      const Date date = Date::of(QDate(2024, 2, 29), time);
      EXPECT_EQ(CDate(CStr(date)), date) << CStr(date).toStdString();
    }
  }
}

TEST(CDate, TakesNumbersAsDays) {
  EXPECT_EQ(CDate(45356.25), Date(45356.25));
  EXPECT_EQ(CDate(Date(7)), Date(7));
  EXPECT_EQ(failureNumber([] { CDate(2958466.0); }), 6);
  EXPECT_EQ(failureNumber([] { CDate(-657435.0); }), 6);
  EXPECT_EQ(CDate(2958465.0).date(), QDate(9999, 12, 31));
}

TEST(CDate, FailsWith13ForATextThatIsNone) {
  const ScopedLocale american(u"en_US"_qs);
  for (const QString& text :
       {QString(), u"Not Posted"_qs, u"45356"_qs, u"2024-02-30"_qs, u"Tue 3/5/2024"_qs}) {
    EXPECT_EQ(failureNumber([&] { CDate(text); }), 13) << text.toStdString();
    EXPECT_FALSE(IsDate(text)) << text.toStdString();
  }
}

TEST(IsDate, HoldsForDatesAndTheirTextsOnly) {
  const ScopedLocale german(u"de_DE"_qs);
  EXPECT_TRUE(IsDate(Date()));
  EXPECT_TRUE(IsDate(u"5.3.2024"_qs));
  EXPECT_TRUE(IsDate(u"14:30"_qs));
  EXPECT_TRUE(IsDate(u"2024-03-05"_qs));
  EXPECT_FALSE(IsDate(45356.0));
  EXPECT_FALSE(IsDate(Value()));
  EXPECT_FALSE(IsDate(Null()));
  EXPECT_FALSE(IsDate(u"7.25"_qs));
}

TEST(DecimalNumber, ReadsThePointInEveryFormat) {
  for (const QString& name : {u"en_US"_qs, u"de_DE"_qs, u"sv_SE"_qs, u"fr_FR"_qs, u"tr_TR"_qs}) {
    const ScopedLocale scope(name);
    EXPECT_EQ(decimalNumber(u"7.25"_qs), 7.25) << name.toStdString();
    EXPECT_EQ(decimalNumber(u"8"_qs), 8);
    EXPECT_EQ(decimalNumber(u" -0.5 "_qs), -0.5);
    EXPECT_EQ(decimalNumber(u"8."_qs), 8);
    EXPECT_EQ(decimalNumber(u".5"_qs), 0.5);
  }
}

TEST(DecimalNumber, ReadsTheSystemsOwnSignToo) {
  const ScopedLocale german(u"de_DE"_qs);
  EXPECT_EQ(decimalNumber(u"7,25"_qs), 7.25);
  EXPECT_EQ(failureNumber([] { decimalNumber(u"1.234,5"_qs); }), 13) << "no group signs";
}

TEST(DecimalNumber, FailsWith13ForTheRest) {
  const ScopedLocale american(u"en_US"_qs);
  for (const QString& text : {QString(), u"7,25"_qs, u"8h"_qs, u"."_qs, u"inf"_qs, u"nan"_qs, u"0x10"_qs,
                              u"1.2.3"_qs, u"1 2"_qs, u"Hours"_qs, u"1e999"_qs})
    EXPECT_EQ(failureNumber([&] { decimalNumber(text); }), 13) << text.toStdString();
}

}  // namespace

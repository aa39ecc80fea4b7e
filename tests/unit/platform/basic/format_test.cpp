#include "failures.h"
#include "platform/basic/convert.h"
#include "platform/basic/text.h"
#include "platform/locale/locale.h"

using platform::locale::ScopedLocale;
using namespace platform::basic;

namespace {

const Date kTuesday = Date::of(QDate(2024, 3, 5), QTime(9, 7, 3));

TEST(FormatOfHours, KeepsTheDecimalSignWithNothingBehindIt) {
  const ScopedLocale american(u"en_US"_qs);
  EXPECT_EQ(Format(8.0, u"0.##"_qs), u"8.");
  EXPECT_EQ(Format(7.25, u"0.##"_qs), u"7.25");
  EXPECT_EQ(Format(7.5, u"0.##"_qs), u"7.5");
  EXPECT_EQ(Format(4.0 / 3.0, u"0.##"_qs), u"1.33");
  EXPECT_EQ(Format(0.0, u"0.##"_qs), u"0.");
  EXPECT_EQ(Format(0.25, u"0.##"_qs), u"0.25");
  EXPECT_EQ(Format(0.05, u"0.##"_qs), u"0.05");
  EXPECT_EQ(Format(-0.25, u"0.##"_qs), u"-0.25");
  EXPECT_EQ(Format(1200.0, u"0.##"_qs), u"1200.");
  const ScopedLocale german(u"de_DE"_qs);
  EXPECT_EQ(Format(8.0, u"0.##"_qs), u"8,");
  EXPECT_EQ(Format(7.25, u"0.##"_qs), u"7,25");
}

TEST(FormatOfHours, LosesTheSignOnTheWayBack) {
  for (const QString& name : {u"en_US"_qs, u"de_DE"_qs, u"de_CH"_qs, u"sv_SE"_qs, u"fr_FR"_qs, u"el_GR"_qs}) {
    const ScopedLocale scope(name);
    EXPECT_EQ(CStr(CDbl(Format(8.0, u"0.##"_qs))), u"8") << name.toStdString();
    EXPECT_EQ(CDbl(Format(435 / 60.0, u"0.##"_qs)), 7.25) << name.toStdString();
  }
}

TEST(FormatOfNumbers, RoundsHalvesAwayFromZeroByTheDigitsThatAreShown) {
  const ScopedLocale american(u"en_US"_qs);
  EXPECT_EQ(Format(7.125, u"0.##"_qs), u"7.13");
  EXPECT_EQ(Format(0.125, u"0.##"_qs), u"0.13");
  EXPECT_EQ(Format(0.375, u"0.##"_qs), u"0.38");
  EXPECT_EQ(Format(-7.125, u"0.##"_qs), u"-7.13");
  EXPECT_EQ(Format(1.005, u"0.##"_qs), u"1.01") << "the double is a little less";
  EXPECT_EQ(Format(2.5, u"0"_qs), u"3");
  EXPECT_EQ(Format(3.5, u"0"_qs), u"4");
  EXPECT_EQ(Format(0.5, u"0"_qs), u"1");
  EXPECT_EQ(Format(9.996, u"0.##"_qs), u"10.");
  EXPECT_EQ(Format(-0.001, u"0.##"_qs), u"0.") << "no sign before nothing";
}

TEST(FormatOfNumbers, FillsUpWithZeros) {
  const ScopedLocale american(u"en_US"_qs);
  EXPECT_EQ(Format(qint32(3), u"00"_qs), u"03");
  EXPECT_EQ(Format(qint16(12), u"00"_qs), u"12");
  EXPECT_EQ(Format(qint32(123), u"00"_qs), u"123");
  EXPECT_EQ(Format(qint32(0), u"00"_qs), u"00");
  EXPECT_EQ(Format(7.5, u"0.00"_qs), u"7.50");
  EXPECT_EQ(Format(0.5, u"#.##"_qs), u".5");
  EXPECT_EQ(Format(qint32(0), u"#"_qs), QString());
  EXPECT_EQ(Format(true, u"0"_qs), u"-1");
  EXPECT_EQ(Format(Currency::fromTenThousandths(4505000), u"0.00"_qs), u"450.50");
}

TEST(FormatOfNumbers, PutsGroupSignsPercentAndTextWhereTheFormatHasThem) {
  const ScopedLocale american(u"en_US"_qs);
  EXPECT_EQ(Format(1234567.5, u"#,##0.00"_qs), u"1,234,567.50");
  EXPECT_EQ(Format(12.0, u"#,##0"_qs), u"12");
  EXPECT_EQ(Format(0.256, u"0%"_qs), u"26%");
  EXPECT_EQ(Format(7.0, u"0 \"hours\""_qs), u"7 hours");
  EXPECT_EQ(Format(7.0, u"\\#0"_qs), u"#7");
  const ScopedLocale german(u"de_DE"_qs);
  EXPECT_EQ(Format(1234.5, u"#,##0.00"_qs), u"1.234,50");
}

TEST(FormatOfNumbers, ReadsTextsThatAreNumbersAndLeavesOthers) {
  const ScopedLocale german(u"de_DE"_qs);
  EXPECT_EQ(Format(u"7,256"_qs, u"0.##"_qs), u"7,26");
  EXPECT_EQ(Format(u"n/a"_qs, u"0.##"_qs), u"n/a");
}

TEST(FormatOfNumbers, ByNameGivesThePlainNumber) {
  const ScopedLocale german(u"de_DE"_qs);
  EXPECT_EQ(Format(1234.5, u"General Number"_qs), u"1234,5");
  EXPECT_EQ(Format(qint32(8), u"general number"_qs), u"8");
  EXPECT_EQ(Format(u"n/a"_qs, u"General Number"_qs), u"n/a");
}

TEST(FormatOfDates, WritesTheWeekdayInTheSystemsLanguage) {
  const ScopedLocale swedish(u"sv_SE"_qs);
  EXPECT_EQ(Format(kTuesday, u"ddd"_qs), u"tis");
  EXPECT_EQ(Format(kTuesday, u"dddd"_qs), u"tisdag");
  const ScopedLocale slovene(u"sl_SI"_qs);
  EXPECT_EQ(Format(kTuesday, u"ddd"_qs), u"tor.");
  EXPECT_EQ(Format(kTuesday, u"mmmm"_qs), u"marec");
  const ScopedLocale greek(u"el_GR"_qs);
  EXPECT_EQ(Format(kTuesday, u"ddd"_qs), u"Τρι");
}

TEST(FormatOfDates, TakesTheLettersInAnyCase) {
  const ScopedLocale german(u"de_DE"_qs);
  EXPECT_EQ(Format(kTuesday, u"yyyy-mm-dd"_qs), u"2024-03-05");
  EXPECT_EQ(Format(kTuesday, u"YYYY-MM-DD"_qs), u"2024-03-05");
  EXPECT_EQ(Format(kTuesday, u"MM-DD-YYYY"_qs), u"03-05-2024");
  EXPECT_EQ(Format(kTuesday, u"d.m.yy"_qs), u"5.3.24");
  EXPECT_EQ(Format(kTuesday, u"y"_qs), u"65") << "the day of the year";
}

TEST(FormatOfDates, TellsMinutesFromMonths) {
  EXPECT_EQ(Format(kTuesday, u"hh:mm:ss"_qs), u"09:07:03");
  EXPECT_EQ(Format(kTuesday, u"h:nn"_qs), u"9:07");
  EXPECT_EQ(Format(kTuesday, u"mm:ss"_qs), u"07:03");
  EXPECT_EQ(Format(kTuesday, u"yyyymmddhhmm"_qs), u"202403050907");
}

TEST(FormatOfDates, PutsTheSystemsSeparatorForTheSlash) {
  const ScopedLocale german(u"de_DE"_qs);
  EXPECT_EQ(Format(kTuesday, u"dd/mm/yyyy"_qs), u"05.03.2024");
  const ScopedLocale british(u"en_GB"_qs);
  EXPECT_EQ(Format(kTuesday, u"dd/mm/yyyy"_qs), u"05/03/2024");
}

TEST(FormatOfDates, KeepsTextInQuotes) {
  EXPECT_EQ(Format(kTuesday, u"\"day \"d"_qs), u"day 5");
  EXPECT_EQ(Format(kTuesday, u"d \"days"_qs), u"5 days");
}

TEST(FormatOfDates, ByNameGivesWhatTheSystemShows) {
  const ScopedLocale belgian(u"fr_BE"_qs);
  EXPECT_EQ(Format(kTuesday, u"Short Date"_qs), u"05-03-2024");
  EXPECT_EQ(Format(kTuesday, u"General Date"_qs), u"05-03-2024 9:07:03");
  EXPECT_EQ(Format(kTuesday, u"long time"_qs), u"9:07:03");
}

TEST(FormatOfDates, ReadsTextsThatAreDatesAndLeavesOthers) {
  const ScopedLocale german(u"de_DE"_qs);
  EXPECT_EQ(Format(u"5.3.2024"_qs, u"YYYY-MM-DD"_qs), u"2024-03-05");
  EXPECT_EQ(Format(u"paid in cash"_qs, u"YYYY-MM-DD"_qs), u"paid in cash");
  EXPECT_EQ(Format(u"paid in cash"_qs, u"Short Date"_qs), u"paid in cash");
  EXPECT_EQ(Format(QString(), u"YYYY-MM-DD"_qs), QString());
  EXPECT_EQ(Format(45356.0, u"yyyy-mm-dd"_qs), u"2024-03-05");
}

TEST(FormatOfDates, IsANumberUnderANumberFormat) {
  const ScopedLocale american(u"en_US"_qs);
  EXPECT_EQ(Format(Date(45356), u"0"_qs), u"45356");
  EXPECT_EQ(Format(u"3/5/2024"_qs, u"0"_qs), u"45356");
}

TEST(Format, GivesNothingForEmptyAndNull) {
  EXPECT_EQ(Format(Value(), u"0"_qs), QString());
  EXPECT_EQ(Format(Value(), u"yyyy-mm-dd"_qs), QString());
  EXPECT_EQ(Format(Null(), u"0"_qs), QString());
}

TEST(Format, FailsWith5OnSignsThatItDoesNotKnow) {
  for (const QString& format : {u"0;(0)"_qs, u"0.00E+00"_qs, u"@@"_qs, u">"_qs})
    EXPECT_EQ(failureNumber([&] { Format(7.5, format); }), 5) << format.toStdString();
  for (const QString& format : {u"ww yyyy"_qs, u"h:nn AM/PM"_qs})
    EXPECT_EQ(failureNumber([&] { Format(kTuesday, format); }), 5) << format.toStdString();
}

TEST(Format, WithoutAFormatIsCStr) {
  const ScopedLocale german(u"de_DE"_qs);
  EXPECT_EQ(Format(7.5, QString()), u"7,5");
}

}  // namespace

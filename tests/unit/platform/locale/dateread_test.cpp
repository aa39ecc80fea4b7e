#include "platform/locale/locale.h"
#include "platform/locale/table.h"

#include <QLocale>
#include <QSet>

#include <gtest/gtest.h>

using platform::locale::Locale;
using platform::locale::localeFor;
using platform::locale::rowNames;

namespace {

QDate dateRead(const char* locale, const QString& text) {
  return localeFor(QString::fromLatin1(locale))->parseDate(text).date();
}

QDateTime wall(int year, int month, int day, int hour, int minute, int second = 0) {
  return QDateTime(QDate(year, month, day), QTime(hour, minute, second), Qt::UTC);
}

bool hasTwoDigitYears(const Locale& locale) {
  return !locale.shortDatePattern().contains(u"yyy");
}

TEST(ReadingADate, UndoesWritingItForEveryRowOfTheTable) {
  for (const char* name : rowNames()) {
    const auto locale = localeFor(QString::fromLatin1(name));
    const bool window = hasTwoDigitYears(*locale);
    const QDate first = window ? QDate(1930, 1, 1) : QDate(1753, 1, 1);
    const QDate last = window ? QDate(2029, 12, 31) : QDate(2300, 12, 31);
    for (QDate day = first; day <= last; day = day.addDays(window ? 17 : 97))
      ASSERT_EQ(locale->parseDate(locale->shortDate(day)).date(), day) << name;
    for (QDate day(2023, 12, 1); day < QDate(2025, 3, 1); day = day.addDays(1))
      ASSERT_EQ(locale->parseDate(locale->shortDate(day)).date(), day) << name;
  }
}

TEST(ReadingADate, UndoesWritingItForEveryOtherCountryThatQtKnows) {
  QSet<QString> names;
  for (const QLocale& locale :
       QLocale::matchingLocales(QLocale::AnyLanguage, QLocale::AnyScript, QLocale::AnyCountry))
    names.insert(locale.name());
  for (const QString& name : std::as_const(names)) {
    const auto locale = localeFor(name);
    const int lastYear = hasTwoDigitYears(*locale) ? 2029 : 2050;
    for (const QDate& day :
         {QDate(1999, 12, 31), QDate(2024, 2, 29), QDate(2024, 9, 1), QDate(lastYear, 1, 1)})
      EXPECT_EQ(locale->parseDate(locale->shortDate(day)).date(), day)
          << name.toStdString() << " " << locale->shortDate(day).toStdString();
  }
}

TEST(ReadingADate, WithItsTimeUndoesWritingBothForEveryRowOfTheTable) {
  for (const char* name : rowNames()) {
    const auto locale = localeFor(QString::fromLatin1(name));
    for (int minute = 0; minute < 24 * 60; minute += 37) {
      const QTime time = QTime(0, 0, 13).addSecs(60 * minute);
      const QString text = locale->shortDate(QDate(2024, 3, 5)) + u' ' + locale->longTime(time);
      EXPECT_EQ(locale->parseDate(text), QDateTime(QDate(2024, 3, 5), time, Qt::UTC)) << text.toStdString();
    }
  }
}

TEST(ReadingADate, TakesTheOrderOfTheSystemsPattern) {
  EXPECT_EQ(dateRead("en_US", u"3/5/2024"_qs), QDate(2024, 3, 5));
  EXPECT_EQ(dateRead("en_GB", u"3/5/2024"_qs), QDate(2024, 5, 3));
  EXPECT_EQ(dateRead("sv_SE", u"24-03-05"_qs), QDate(2024, 3, 5));
}

TEST(ReadingADate, TakesOtherSeparatorsAndLeadingZeros) {
  for (const QString& text : {u"5.3.2024"_qs, u"05.03.2024"_qs, u"5/3/2024"_qs, u"5-3-2024"_qs,
                              u"5 3 2024"_qs, u"5. 3. 2024"_qs, u"  05.03.2024 "_qs, u"5,3,2024"_qs})
    EXPECT_EQ(dateRead("de_DE", text), QDate(2024, 3, 5)) << text.toStdString();
  EXPECT_EQ(dateRead("sl_SI", u"5. 03. 2024"_qs), QDate(2024, 3, 5));
  EXPECT_EQ(dateRead("sl_SI", u"5.3.2024"_qs), QDate(2024, 3, 5));
  EXPECT_EQ(dateRead("sl_SI", u"5.\u00a003.\u00a02024"_qs), QDate(2024, 3, 5));
}

TEST(ReadingADate, TakesAYearInFrontInEveryCountry) {
  for (const char* name : rowNames()) {
    EXPECT_EQ(dateRead(name, u"2024-03-05"_qs), QDate(2024, 3, 5)) << name;
    EXPECT_EQ(dateRead(name, u"2024-3-5"_qs), QDate(2024, 3, 5)) << name;
    EXPECT_EQ(dateRead(name, u"2024/03/05"_qs), QDate(2024, 3, 5)) << name;
  }
}

TEST(ReadingADate, PutsTwoDigitYearsBetween1930And2029) {
  EXPECT_EQ(dateRead("fr_BE", u"05-03-24"_qs), QDate(2024, 3, 5));
  EXPECT_EQ(dateRead("fr_BE", u"05-03-29"_qs), QDate(2029, 3, 5));
  EXPECT_EQ(dateRead("fr_BE", u"05-03-30"_qs), QDate(1930, 3, 5));
  EXPECT_EQ(dateRead("fr_BE", u"05-03-99"_qs), QDate(1999, 3, 5));
  EXPECT_EQ(dateRead("fr_BE", u"05-03-00"_qs), QDate(2000, 3, 5));
  EXPECT_EQ(dateRead("fr_BE", u"01-01-2050"_qs), QDate(2050, 1, 1));
}

TEST(ReadingADate, SwapsDayAndMonthWhereTheMonthWouldBeAbove12) {
  EXPECT_EQ(dateRead("en_US", u"25/2/2024"_qs), QDate(2024, 2, 25));
  EXPECT_EQ(dateRead("de_DE", u"02-25-2024"_qs), QDate(2024, 2, 25));
  EXPECT_FALSE(dateRead("sv_SE", u"2024-25-02"_qs).isValid()) << "a year in front leaves no doubt";
  EXPECT_FALSE(dateRead("en_US", u"25/25/2024"_qs).isValid());
}

TEST(ReadingADate, TakesMonthsByName) {
  EXPECT_EQ(dateRead("en_US", u"March 5, 2024"_qs), QDate(2024, 3, 5));
  EXPECT_EQ(dateRead("en_US", u"5 mar 2024"_qs), QDate(2024, 3, 5));
  EXPECT_EQ(dateRead("en_US", u"2024 March 5"_qs), QDate(2024, 3, 5));
  EXPECT_EQ(dateRead("en_US", u"05-Mar-24"_qs), QDate(2024, 3, 5));
  EXPECT_EQ(dateRead("de_DE", u"5. März 2024"_qs), QDate(2024, 3, 5));
  EXPECT_EQ(dateRead("sv_SE", u"5 maj 2024"_qs), QDate(2024, 5, 5));
  EXPECT_FALSE(dateRead("en_US", u"March April 2024"_qs).isValid());
  EXPECT_FALSE(dateRead("en_US", u"March 2024 2025"_qs).isValid());
}

TEST(ReadingADate, TakesATimeBehindIt) {
  const auto german = localeFor(u"de_DE"_qs);
  EXPECT_EQ(german->parseDate(u"5.3.2024 14:30"_qs), wall(2024, 3, 5, 14, 30));
  EXPECT_EQ(german->parseDate(u"2024-03-05 7:05:09"_qs), wall(2024, 3, 5, 7, 5, 9));
  const auto american = localeFor(u"en_US"_qs);
  EXPECT_EQ(american->parseDate(u"3/5/2024 2:30 PM"_qs), wall(2024, 3, 5, 14, 30));
  EXPECT_EQ(american->parseDate(u"3/5/2024 12:00:00 am"_qs), wall(2024, 3, 5, 0, 0));
  EXPECT_EQ(american->parseDate(u"3/5/2024 12:15p.m."_qs), wall(2024, 3, 5, 12, 15));
}

TEST(ReadingADate, TakesAnHourThatSummerTimeLeavesOut) {
  // 31 March 2024, 02:30 does not exist in Stockholm, but a wall clock's text may say so
  EXPECT_EQ(localeFor(u"sv_SE"_qs)->parseDate(u"2024-03-31 02:30"_qs), wall(2024, 3, 31, 2, 30));
}

TEST(ReadingADate, RefusesWhatIsNone) {
  for (const QString& text : {u""_qs,
                              u" "_qs,
                              u"Not Posted"_qs,
                              u"5"_qs,
                              u"5.3"_qs,
                              u"1.5"_qs,
                              u"38000"_qs,
                              u"30.2.2024"_qs,
                              u"29.2.2023"_qs,
                              u"5.3.2024x"_qs,
                              u"5..3.2024"_qs,
                              u"5.3.024"_qs,
                              u"5.3.20244"_qs,
                              u"5.3.0099"_qs,
                              u"Di 5.3.2024"_qs,
                              u"5.3.2024 25:00"_qs,
                              u"5.3.2024 14:60"_qs,
                              u"5.3.2024 14"_qs,
                              u"5.3.2024 14:30 xx"_qs,
                              u"5.3.202414:30"_qs,
                              u"0.3.2024"_qs,
                              u"5.0.2024"_qs,
                              u"5.3.2024 13:00 PM"_qs,
                              u"-5.3.2024"_qs,
                              u"5.2024.3"_qs,
                              u"5.3.2024 14:30:"_qs,
                              u"5.3.2024 1:123"_qs})
    EXPECT_FALSE(localeFor(u"de_DE"_qs)->parseDate(text).isValid()) << text.toStdString();
}

TEST(ReadingATime, TakesHoursMinutesAndSeconds) {
  const auto locale = localeFor(u"en_US"_qs);
  EXPECT_EQ(locale->parseTime(u"14:30"_qs), QTime(14, 30));
  EXPECT_EQ(locale->parseTime(u" 7:05:09 "_qs), QTime(7, 5, 9));
  EXPECT_EQ(locale->parseTime(u"3 PM"_qs), QTime(15, 0));
  EXPECT_EQ(locale->parseTime(u"12 am"_qs), QTime(0, 0));
  EXPECT_EQ(localeFor(u"el_GR"_qs)->parseTime(u"3:15 μ.μ."_qs), QTime(15, 15));
}

TEST(ReadingATime, RefusesWhatIsNone) {
  for (const QString& text : {u""_qs, u"14"_qs, u"24:00"_qs, u"14:30 h"_qs, u":30"_qs, u"14:"_qs, u"7.25"_qs,
                              u"13 PM"_qs, u"2024-03-05"_qs})
    EXPECT_FALSE(localeFor(u"en_US"_qs)->parseTime(text).isValid()) << text.toStdString();
}

}  // namespace

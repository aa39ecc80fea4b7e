#include "platform/locale/table.h"

#include "platform/locale/locale.h"

#include <gtest/gtest.h>

using platform::locale::localeFor;
using platform::locale::rowNames;

namespace {

struct Expected {
  const char* name;
  qint32 lcid;
  QString separator;
  QString decimal;
  QString date;  // 5 March 2024, a Tuesday
  QString days;  // Sunday first
};

class Table : public testing::TestWithParam<Expected> {};

TEST_P(Table, ShowsWhatWindowsShows) {
  const Expected& expected = GetParam();
  const auto locale = localeFor(QString::fromLatin1(expected.name));

  EXPECT_EQ(locale->name(), QString::fromLatin1(expected.name));
  EXPECT_EQ(locale->lcid(), expected.lcid);
  EXPECT_EQ(locale->listSeparator(), expected.separator);
  EXPECT_EQ(locale->decimalSign(), expected.decimal);
  EXPECT_EQ(locale->shortDate(QDate(2024, 3, 5)), expected.date);
  QStringList days;
  for (const int day : {7, 1, 2, 3, 4, 5, 6}) days += locale->weekdayName(day, true);
  EXPECT_EQ(days.join(u' '), expected.days);
  EXPECT_EQ(locale->groupSign().size(), 1);
  EXPECT_NE(locale->groupSign(), locale->decimalSign());
}

INSTANTIATE_TEST_SUITE_P(
    Windows, Table,
    testing::Values(
        Expected{"cs_CZ", 1029, u";"_qs, u","_qs, u"05.03.2024"_qs, u"ne po út st čt pá so"_qs},
        Expected{"da_DK", 1030, u";"_qs, u","_qs, u"05-03-2024"_qs, u"sø ma ti on to fr lø"_qs},
        Expected{"nl_NL", 1043, u";"_qs, u","_qs, u"5-3-2024"_qs, u"zo ma di wo do vr za"_qs},
        Expected{"nl_BE", 2067, u";"_qs, u","_qs, u"5/03/2024"_qs, u"zo ma di wo do vr za"_qs},
        Expected{"en_US", 1033, u","_qs, u"."_qs, u"3/5/2024"_qs, u"Sun Mon Tue Wed Thu Fri Sat"_qs},
        Expected{"en_GB", 2057, u","_qs, u"."_qs, u"05/03/2024"_qs, u"Sun Mon Tue Wed Thu Fri Sat"_qs},
        Expected{"en_AU", 3081, u","_qs, u"."_qs, u"5/03/2024"_qs, u"Sun Mon Tue Wed Thu Fri Sat"_qs},
        Expected{"en_CA", 4105, u","_qs, u"."_qs, u"2024-03-05"_qs, u"Sun Mon Tue Wed Thu Fri Sat"_qs},
        Expected{"fi_FI", 1035, u";"_qs, u","_qs, u"5.3.2024"_qs, u"su ma ti ke to pe la"_qs},
        Expected{"fr_FR", 1036, u";"_qs, u","_qs, u"05/03/2024"_qs, u"dim. lun. mar. mer. jeu. ven. sam."_qs},
        Expected{"fr_BE", 2060, u";"_qs, u","_qs, u"05-03-2024"_qs, u"dim. lun. mar. mer. jeu. ven. sam."_qs},
        Expected{"fr_CA", 3084, u";"_qs, u","_qs, u"2024-03-05"_qs, u"dim. lun. mar. mer. jeu. ven. sam."_qs},
        Expected{"fr_CH", 4108, u";"_qs, u"."_qs, u"05.03.2024"_qs, u"dim. lun. mar. mer. jeu. ven. sam."_qs},
        Expected{"de_DE", 1031, u";"_qs, u","_qs, u"05.03.2024"_qs, u"So Mo Di Mi Do Fr Sa"_qs},
        Expected{"de_CH", 2055, u";"_qs, u"."_qs, u"05.03.2024"_qs, u"So. Mo. Di. Mi. Do. Fr. Sa."_qs},
        Expected{"de_AT", 3079, u";"_qs, u","_qs, u"05.03.2024"_qs, u"So. Mo. Di. Mi. Do. Fr. Sa."_qs},
        Expected{"el_GR", 1032, u";"_qs, u","_qs, u"5/3/2024"_qs, u"Κυρ Δευ Τρι Τετ Πεμ Παρ Σαβ"_qs},
        Expected{"it_IT", 1040, u";"_qs, u","_qs, u"05/03/2024"_qs, u"dom lun mar mer gio ven sab"_qs},
        Expected{"it_CH", 2064, u";"_qs, u"."_qs, u"05.03.2024"_qs, u"dom lun mar mer gio ven sab"_qs},
        Expected{"nb_NO", 1044, u";"_qs, u","_qs, u"05.03.2024"_qs, u"søn. man. tir. ons. tor. fre. lør."_qs},
        Expected{"pt_PT", 2070, u";"_qs, u","_qs, u"05/03/2024"_qs, u"dom seg ter qua qui sex sáb"_qs},
        Expected{"pt_BR", 1046, u";"_qs, u","_qs, u"05/03/2024"_qs, u"dom seg ter qua qui sex sáb"_qs},
        Expected{"sl_SI", 1060, u";"_qs, u","_qs, u"5. 03. 2024"_qs,
                 u"ned. pon. tor. sre. čet. pet. sob."_qs},
        Expected{"es_ES", 3082, u";"_qs, u","_qs, u"05/03/2024"_qs, u"do. lu. ma. mi. ju. vi. sá."_qs},
        Expected{"es_MX", 2058, u","_qs, u"."_qs, u"05/03/2024"_qs, u"dom. lun. mar. mié. jue. vie. sáb."_qs},
        Expected{"sv_SE", 1053, u";"_qs, u","_qs, u"2024-03-05"_qs, u"sön mån tis ons tor fre lör"_qs},
        Expected{"tr_TR", 1055, u";"_qs, u","_qs, u"5.03.2024"_qs, u"Paz Pzt Sal Çar Per Cum Cmt"_qs},
        Expected{"ru_RU", 1049, u";"_qs, u","_qs, u"05.03.2024"_qs, u"Вс Пн Вт Ср Чт Пт Сб"_qs},
        Expected{"pl_PL", 1045, u";"_qs, u","_qs, u"05.03.2024"_qs, u"niedz. pon. wt. śr. czw. pt. sob."_qs}),
    [](const auto& info) { return std::string(info.param.name); });

struct Numbered {
  const char* name;
  qint32 lcid;
};

class CountryWithoutRow : public testing::TestWithParam<Numbered> {};

TEST_P(CountryWithoutRow, HasTheNumberThatChoosesItsLanguage) {
  EXPECT_EQ(localeFor(QString::fromLatin1(GetParam().name))->lcid(), GetParam().lcid);
}

INSTANTIATE_TEST_SUITE_P(
    Numbers, CountryWithoutRow,
    testing::Values(Numbered{"es_AR", 11274}, Numbered{"es_BO", 16394}, Numbered{"es_CL", 13322},
                    Numbered{"es_CO", 9226}, Numbered{"es_CR", 5130}, Numbered{"es_DO", 7178},
                    Numbered{"es_EC", 12298}, Numbered{"es_GT", 4106}, Numbered{"es_HN", 18442},
                    Numbered{"es_NI", 19466}, Numbered{"es_PA", 6154}, Numbered{"es_PE", 10250},
                    Numbered{"es_PR", 20490}, Numbered{"es_PY", 15370}, Numbered{"es_SV", 17418},
                    Numbered{"es_US", 21514}, Numbered{"es_UY", 14346}, Numbered{"es_VE", 8202},
                    Numbered{"fr_LU", 5132}, Numbered{"fr_MC", 6156}, Numbered{"de_LU", 4103},
                    Numbered{"de_LI", 5127}, Numbered{"nn_NO", 2068}, Numbered{"sv_FI", 2077},
                    Numbered{"en_IE", 6153},
                    // no number of their own: that of the language
                    Numbered{"fr_SN", 1036}, Numbered{"de_BE", 1031}, Numbered{"el_CY", 1032},
                    Numbered{"pt_AO", 2070}, Numbered{"tr_CY", 1055},
                    // no row for the language at all
                    Numbered{"hu_HU", 1033}, Numbered{"ja_JP", 1033}),
    [](const auto& info) { return std::string(info.param.name); });

TEST(Locale, OfALanguageAloneIsThatOfItsMainCountry) {
  EXPECT_EQ(localeFor(u"sv"_qs)->name(), u"sv_SE");
  EXPECT_EQ(localeFor(u"de"_qs)->lcid(), 1031);
}

TEST(Locale, NamesMayCarryACodeSetOrAModifier) {
  EXPECT_EQ(localeFor(u"de_AT.UTF-8"_qs)->lcid(), 3079);
  EXPECT_EQ(localeFor(u"fr_BE@euro"_qs)->lcid(), 2060);
  EXPECT_EQ(localeFor(u"no_NO"_qs)->lcid(), 1044);
}

TEST(Locale, OfNoLanguageIsEnglishOfAmerica) {
  for (const QString& name : {u"C"_qs, u"POSIX"_qs, u"C.UTF-8"_qs, u""_qs, u"not a locale"_qs}) {
    const auto locale = localeFor(name);
    EXPECT_EQ(locale->name(), u"en_US") << name.toStdString();
    EXPECT_EQ(locale->shortDate(QDate(2024, 3, 5)), u"3/5/2024");
  }
}

TEST(Locale, WithoutARowPutsTheSeparatorThatSuitsItsDecimalSign) {
  EXPECT_EQ(localeFor(u"es_AR"_qs)->decimalSign(), u",");
  EXPECT_EQ(localeFor(u"es_AR"_qs)->listSeparator(), u";");
  EXPECT_EQ(localeFor(u"es_GT"_qs)->decimalSign(), u".");
  EXPECT_EQ(localeFor(u"es_GT"_qs)->listSeparator(), u",");
}

TEST(Locale, WithoutARowWritesYearsInFourDigits) {
  EXPECT_EQ(localeFor(u"de_LU"_qs)->shortDate(QDate(2050, 1, 1)), u"01.01.2050");
  EXPECT_EQ(localeFor(u"hu_HU"_qs)->shortDate(QDate(2024, 3, 5)), u"2024. 03. 05.");
}

TEST(Locale, GivesFullNamesOfDaysAndMonthsAsTheyStandAlone) {
  EXPECT_EQ(localeFor(u"sv_SE"_qs)->weekdayName(3, false), u"onsdag");
  EXPECT_EQ(localeFor(u"sv_SE"_qs)->monthName(5, false), u"maj");
  EXPECT_EQ(localeFor(u"ru_RU"_qs)->monthName(3, false), u"март") << "not the genitive";
  EXPECT_EQ(localeFor(u"cs_CZ"_qs)->monthName(5, false), u"květen");
  EXPECT_EQ(localeFor(u"el_GR"_qs)->monthName(1, false), u"Ιανουάριος");
  EXPECT_EQ(localeFor(u"pt_PT"_qs)->weekdayName(1, false), u"segunda-feira");
  EXPECT_EQ(localeFor(u"en_US"_qs)->weekdayName(7, false), u"Sunday");
}

TEST(Locale, ShowsYearsThatCanBeReadBackInEveryRow) {
  for (const char* name : rowNames()) {
    const auto locale = localeFor(QString::fromLatin1(name));
    for (const QDate& day : {QDate(1929, 12, 31), QDate(2024, 2, 29), QDate(2030, 1, 1), QDate(2099, 6, 15)})
      EXPECT_EQ(locale->parseDate(locale->shortDate(day)).date(), day) << name;
  }
}

TEST(Locale, HasEveryNameOfDaysAndMonthsInEveryRow) {
  for (const char* name : rowNames()) {
    const auto locale = localeFor(QString::fromLatin1(name));
    for (int month = 1; month <= 12; ++month) {
      EXPECT_FALSE(locale->monthName(month, false).isEmpty()) << name;
      EXPECT_FALSE(locale->monthName(month, true).isEmpty()) << name;
    }
    for (int day = 1; day <= 7; ++day) EXPECT_FALSE(locale->weekdayName(day, false).isEmpty()) << name;
  }
}

TEST(Locale, HasNoNameForADayOrMonthThatDoesNotExist) {
  const auto locale = localeFor(u"de_DE"_qs);
  EXPECT_EQ(locale->weekdayName(0, true), QString());
  EXPECT_EQ(locale->weekdayName(8, true), QString());
  EXPECT_EQ(locale->monthName(13, false), QString());
}

TEST(Locale, WritesTimesOfTheDayInTwentyFourHoursButInAmerica) {
  EXPECT_EQ(localeFor(u"de_DE"_qs)->longTime(QTime(9, 5, 7)), u"9:05:07");
  EXPECT_EQ(localeFor(u"sv_SE"_qs)->longTime(QTime(15, 30)), u"15:30:00");
  const auto american = localeFor(u"en_US"_qs);
  EXPECT_EQ(american->longTime(QTime(0, 5)), u"12:05:00 AM");
  EXPECT_EQ(american->longTime(QTime(9, 5)), u"9:05:00 AM");
  EXPECT_EQ(american->longTime(QTime(12, 0)), u"12:00:00 PM");
  EXPECT_EQ(american->longTime(QTime(23, 59, 59)), u"11:59:59 PM");
}

TEST(Locale, WritesNothingForADateOrTimeThatIsNone) {
  EXPECT_EQ(localeFor(u"de_DE"_qs)->shortDate(QDate()), QString());
  EXPECT_EQ(localeFor(u"de_DE"_qs)->longTime(QTime()), QString());
}

}  // namespace

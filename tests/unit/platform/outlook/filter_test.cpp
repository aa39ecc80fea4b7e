#include "platform/outlook/filter.h"

#include "tests/unit/platform/outlook/calendarfixture.h"

using namespace Qt::StringLiterals;
using namespace platform;
using namespace platform::outlook;

namespace {

class FilterTest : public tests::CalendarTest {
 protected:
  static QString utc(const QDateTime& moment) {
    return moment.isValid() ? moment.toUTC().toString(u"yyyy-MM-dd HH:mm:ss.zzz"_s) : u"open"_s;
  }
  static QString from(const QString& filter) { return utc(readFilter(filter).from); }
  static QString to(const QString& filter) { return utc(readFilter(filter).to); }
  /// The filter of a fetch, for a period from the first to the last day.
  static QString fetch(const QDate& first, const QDate& last) {
    const locale::Locale& locale = locale::current();
    return u"[Start] >=\"#"_s + locale.shortDate(first) + u" 00:00#\" and [Start]<= \""_s +
           locale.shortDate(last.addDays(1)) + u" 23:59#\""_s;
  }
};

}  // namespace

TEST_F(FilterTest, ThePeriodOfAFetchIsReadThoughASignIsMissing) {
  const QString filter = u"[Start] >=\"#1/2/2024 00:00#\" and [Start]<= \"1/3/2024 23:59#\""_s;
  EXPECT_EQ(fetch(QDate(2024, 1, 2), QDate(2024, 1, 2)), filter);
  EXPECT_EQ(from(filter), u"2024-01-01 23:00:00.000"_s);
  EXPECT_EQ(to(filter), u"2024-01-03 22:59:59.999"_s);
}

TEST_F(FilterTest, EveryLocalesShortDatesAreRead) {
  for (const char* name :
       {"cs_CZ", "da_DK", "nl_NL", "nl_BE", "en_US", "en_GB", "en_AU", "en_CA", "fi_FI", "fr_FR",
        "fr_BE", "fr_CA", "fr_CH", "de_DE", "de_CH", "de_AT", "el_GR", "it_IT", "it_CH", "nb_NO",
        "pt_PT", "pt_BR", "sl_SI", "es_ES", "es_MX", "sv_SE", "tr_TR", "ru_RU", "pl_PL"}) {
    world.setLocale(QString::fromLatin1(name));
    for (const QDate& day : {QDate(2024, 1, 2), QDate(2024, 12, 31), QDate(2024, 2, 29)}) {
      const QString filter = fetch(day, day);
      const QDateTime first = local(day.toString(u"yyyy-MM-dd"_s) + u" 00:00"_s);
      const QDateTime last = local(day.addDays(1).toString(u"yyyy-MM-dd"_s) + u" 23:59"_s).addMSecs(59999);
      EXPECT_EQ(readFilter(filter).from, first) << qPrintable(filter);
      EXPECT_EQ(readFilter(filter).to, last) << qPrintable(filter);
    }
  }
}

TEST_F(FilterTest, ShortDatesWithBlanksAreRead) {
  world.setLocale(u"sl_SI"_s);
  EXPECT_EQ(from(u"[Start] >=\"#2. 01. 2024 00:00#\""_s), u"2024-01-01 23:00:00.000"_s);
}

TEST_F(FilterTest, EitherSignOfABoundMayBeMissing) {
  for (const QString& bound : {u"#5/15/2024 08:00#"_s, u"5/15/2024 08:00#"_s, u"#5/15/2024 08:00"_s,
                               u"5/15/2024 08:00"_s, u" # 5/15/2024 08:00 # "_s.trimmed()})
    EXPECT_EQ(from(u"[Start] >= \"%1\""_s.arg(bound)), u"2024-05-15 06:00:00.000"_s) << qPrintable(bound);
  EXPECT_EQ(from(u"[Start] >= '5/15/2024 08:00'"_s), u"2024-05-15 06:00:00.000"_s);
}

TEST_F(FilterTest, EachComparisonSetsItsEndByTheMinute) {
  const auto range = [](const QString& operation) {
    const QString filter = u"[Start] %1 \"5/15/2024 08:00\""_s.arg(operation);
    return from(filter).mid(11) + u" to "_s + to(filter).mid(11);
  };
  EXPECT_EQ(range(u">="_s), u"06:00:00.000 to "_s);
  EXPECT_EQ(range(u">"_s), u"06:01:00.000 to "_s);
  EXPECT_EQ(range(u"<="_s), u" to 06:00:59.999"_s);
  EXPECT_EQ(range(u"<"_s), u" to 05:59:59.999"_s);
  EXPECT_EQ(range(u"="_s), u"06:00:00.000 to 06:00:59.999"_s);
}

TEST_F(FilterTest, SeveralConditionsNarrowEachOther) {
  const QString filter =
      u"[Start] >= \"5/1/2024\" AND [start]>\"5/10/2024\" And [START]<\"5/20/2024\" and [Start] <= \"5/31/2024\""_s;
  EXPECT_EQ(from(filter), u"2024-05-09 22:01:00.000"_s);
  EXPECT_EQ(to(filter), u"2024-05-19 21:59:59.999"_s);
}

TEST_F(FilterTest, AnAppointmentWithinTheLastMinuteIsFound) {
  calendar::Item item = appointment(u"A"_s, u"2024-05-15 23:59"_s);
  item.start = item.start.addSecs(30);
  memory->add(folder, item);
  Items all = items();
  EXPECT_TRUE(all.Find(u"[Start] <= \"5/15/2024 23:59\""_s));
  EXPECT_FALSE(all.Find(u"[Start] > \"5/15/2024 23:59\""_s));
}

TEST_F(FilterTest, BoundsAreTimesOfTheUsersClock) {
  world.setTime(QDateTime(QDate(2024, 5, 15), QTime(10, 0)), "America/New_York");
  EXPECT_EQ(from(u"[Start] >= \"5/15/2024 00:00\""_s), u"2024-05-15 04:00:00.000"_s);
}

TEST_F(FilterTest, AroundAChangeOfTheClocksARangeMissesNothing) {
  // midnight of 4 November 2018 does not exist in São Paulo, half past two of 27 October 2024 comes twice in
  // Stockholm
  world.setTime(QDateTime(QDate(2018, 11, 4), QTime(10, 0)), "America/Sao_Paulo");
  EXPECT_EQ(from(u"[Start] >= \"11/4/2018 00:00\""_s), u"2018-11-04 03:00:00.000"_s);
  world.setTime(QDateTime(QDate(2024, 10, 27), QTime(10, 0)), "Europe/Stockholm");
  EXPECT_EQ(from(u"[Start] >= \"10/27/2024 02:30\""_s), u"2024-10-27 00:30:00.000"_s);
  EXPECT_EQ(to(u"[Start] <= \"10/27/2024 02:30\""_s), u"2024-10-27 01:30:59.999"_s);
}

TEST_F(FilterTest, AnUnreadableFilterFailsAndIsQuoted) {
  for (const QString& filter :
       {u"nonsense"_s, u""_s, u"[Start]"_s, u"[Start] >= 5/15/2024"_s, u"[Start] >= \"15/15/2024\""_s,
        u"[Start] >= \"\""_s, u"[Start] <> \"5/15/2024\""_s, u"[Subject] = \"A\""_s,
        u"[Start] >= \"5/15/2024\" or [Start] <= \"5/16/2024\""_s, u"[Start] >= \"5/15/2024\" and"_s,
        u"[Start] >= \"5/15/2024\" and nonsense"_s, u"[Start] >= \"5/15/2024 25:00\""_s,
        u"[Start] >= \"5/15/2024\" [Start] <= \"5/16/2024\""_s}) {
    try {
      readFilter(filter);
      ADD_FAILURE() << qPrintable(filter);
    } catch (const Failure& failure) {
      EXPECT_TRUE(failure.description().endsWith(filter)) << qPrintable(failure.description());
    }
  }
}

#include "platform/basic/value.h"
#include "platform/locale/table.h"
#include "workspace/modGetData.h"
#include "workspace/modStatistics.h"
#include "workspaceworld.h"

namespace tests {
namespace {

using testing::ElementsAre;
using HoursByGroup = platform::scripting::Dictionary<double>;

class NotedChart : public ChartView {
 public:
  void LoadChartWithLiteral(const HoursByGroup& hours) override {
    ++draws;
    keys = hours.Keys();
    values = hours.Items();
  }
  int draws = 0;
  QStringList keys;
  QList<double> values;
};

class Statistics : public testing::Test {
 protected:
  Statistics() {
    w.world.setLocale(QStringLiteral("sv_SE"));
    w.workspace->gChartView = &chart;
    w.withDatePickers();
    w.loadForm();
    w.setPeriod(QDate(2024, 5, 13), QDate(2024, 5, 17));
    w.form->cmbFilterCalendar.setText(QStringLiteral("All appointments"));
  }
  void fillList() {
    w.add(QStringLiteral("a"), at(15, 8), 90, QStringLiteral(";Beta;Website;Design"));
    w.add(QStringLiteral("b"), at(13, 8), 60, QStringLiteral(";Acme;Intranet;Design"));
    w.add(QStringLiteral("c"), at(15, 12), 30, QStringLiteral(";Acme"));
    subGetData();
  }
  NotedChart chart;
  WorkspaceWorld w;
};

TEST_F(Statistics, OfAnEmptyListAreNothing) {
  subGetData();
  EXPECT_EQ(w.form->lblHours.Caption(), QStringLiteral("0"));
  EXPECT_TRUE(chart.keys.isEmpty());
  EXPECT_GE(chart.draws, 1);
}

TEST_F(Statistics, AddUpTheHoursOfTheList) {
  fillList();
  EXPECT_EQ(w.form->lblHours.Caption(), QStringLiteral("3"));
}

TEST_F(Statistics, ShowTheTotalWithTheSystemsDecimalSign) {
  w.add(QStringLiteral("a"), at(15, 8), 20);
  w.add(QStringLiteral("b"), at(15, 9), 20);
  subGetData();
  EXPECT_EQ(w.form->lblHours.Caption(), QStringLiteral("0,66"));
}

TEST_F(Statistics, GroupByWeekdayInOrderOfTheDates) {
  fillList();
  EXPECT_THAT(chart.values, ElementsAre(1, 2));
  ASSERT_EQ(chart.keys.size(), 2);
  EXPECT_TRUE(chart.keys[0].endsWith(QStringLiteral(" 2024-05-13")));
  EXPECT_TRUE(chart.keys[1].endsWith(QStringLiteral(" 2024-05-15")));
}

TEST_F(Statistics, GroupByTheMetaListOfTheTab) {
  fillList();
  w.form->tbsViews.setIndex(1);
  EXPECT_THAT(chart.keys, ElementsAre(QStringLiteral("Acme"), QStringLiteral("Beta")));
  EXPECT_THAT(chart.values, ElementsAre(1.5, 1.5));
  w.form->tbsViews.setIndex(2);
  EXPECT_THAT(chart.keys, ElementsAre(QString(), QStringLiteral("Intranet"), QStringLiteral("Website")));
  w.form->tbsViews.setIndex(3);
  EXPECT_THAT(chart.keys, ElementsAre(QString(), QStringLiteral("Design")));
  EXPECT_THAT(chart.values, ElementsAre(0.5, 2.5));
}

TEST_F(Statistics, PutValuesThatDifferInCaseTogether) {
  fillList();
  w.form->exsThisWeek.Range(QStringLiteral("B2")).setValue(QStringLiteral("ACME"));
  w.form->exsThisWeek.Range(QStringLiteral("B4")).setValue(QStringLiteral("acme"));
  w.form->tbsViews.setIndex(1);
  EXPECT_EQ(chart.keys.size(), 2);
}

TEST_F(Statistics, DoNotCountRow200) {
  for (int n = 0; n < 199; ++n) w.add(QString::number(n + 1), at(15, 1).addSecs(n * 60));
  w.world.dialogs.expect(QStringLiteral("more than 99"), 1);
  subGetData();
  EXPECT_EQ(w.form->lblHours.Caption(), QStringLiteral("198"));
}

TEST_F(Statistics, EndTheProgramWhenHoursAreNoNumber) {
  fillList();
  w.form->exsThisWeek.Range(QStringLiteral("F2")).setValue(QStringLiteral("abc"));
  w.world.dialogs.expect(QStringLiteral("Sub routine : subCountSpreadSheet"), 7);
  EXPECT_ENDS_PROCESS(subCountSpreadSheet());
}

TEST(SortingADictionary, LeavesASingleEntryAsItIs) {
  WorkspaceWorld w;
  HoursByGroup one;
  one.Add(QStringLiteral("no date at all"), 1);
  EXPECT_THAT(fncSortDictionary(one, SortField::Key, true).Keys(),
              ElementsAre(QStringLiteral("no date at all")));
}

TEST(SortingADictionary, ReturnsTheSameObject) {
  WorkspaceWorld w;
  HoursByGroup dictionary;
  dictionary.Add(QStringLiteral("b"), 1);
  dictionary.Add(QStringLiteral("A"), 2);
  EXPECT_EQ(&fncSortDictionary(dictionary, SortField::Key, false), &dictionary);
  EXPECT_THAT(dictionary.Keys(), ElementsAre(QStringLiteral("A"), QStringLiteral("b")));
  EXPECT_THAT(dictionary.Items(), ElementsAre(2, 1));
}

TEST(SortingADictionary, ComparesItemsAsTexts) {
  WorkspaceWorld w;
  HoursByGroup dictionary;
  dictionary.Add(QStringLiteral("nine"), 9);
  dictionary.Add(QStringLiteral("ten"), 10);
  fncSortDictionary(dictionary, SortField::Item, false);
  EXPECT_THAT(dictionary.Keys(), ElementsAre(QStringLiteral("ten"), QStringLiteral("nine")));
}

TEST(SortingADictionary, ComparesDatesAsTheirTexts) {
  WorkspaceWorld w;  // the month first, so October comes before September
  HoursByGroup dictionary;
  dictionary.Add(QStringLiteral("Mon 9/30/2024"), 1);
  dictionary.Add(QStringLiteral("Tue 10/1/2024"), 2);
  fncSortDictionary(dictionary, SortField::Key, true);
  EXPECT_THAT(dictionary.Keys(),
              ElementsAre(QStringLiteral("Tue 10/1/2024"), QStringLiteral("Mon 9/30/2024")));
}

TEST(SortingADictionary, TakesShortenedWeekdaysWithAPoint) {
  WorkspaceWorld w;
  w.world.setLocale(QStringLiteral("fr_FR"));
  EXPECT_EQ(fncDateOfWeekdayText(QStringLiteral("mer. 15/05/2024")), Date::of(2024, 5, 15));
}

TEST(SortingADictionary, DropsThreeLettersAndAPointOfWeekdaysThatTheSystemDoesNotHave) {
  WorkspaceWorld w;
  w.world.setLocale(QStringLiteral("sv_SE"));
  EXPECT_EQ(fncDateOfWeekdayText(QStringLiteral("Wed 2024-05-15")), Date::of(2024, 5, 15));
  EXPECT_EQ(fncDateOfWeekdayText(QStringLiteral("mer. 2024-05-15")), Date::of(2024, 5, 15));
  EXPECT_THROW(fncDateOfWeekdayText(QStringLiteral("niedz. 2024-05-15")), platform::Failure);
}

TEST(SortingADictionary, TakesTheWeekdaysOfEveryLanguageOfThePhrases) {
  WorkspaceWorld w;
  QStringList locales{QStringLiteral("hu_HU"), QStringLiteral("et_EE"), QStringLiteral("ja_JP"),
                      QStringLiteral("vi_VN"), QStringLiteral("bg_BG"), QStringLiteral("fa_IR")};
  for (const char* name : platform::locale::rowNames()) locales.append(QString::fromLatin1(name));
  for (const QString& locale : locales) {
    w.world.setLocale(locale);
    for (int day = 13; day <= 19; ++day) {
      const auto& names = platform::locale::current();
      const QDate date(2024, 5, day);
      const QString text = names.weekdayName(date.dayOfWeek(), true) + u' ' + names.shortDate(date);
      EXPECT_EQ(fncDateOfWeekdayText(text), Date::of(2024, 5, day))
          << locale.toStdString() << ": " << text.toStdString();
    }
  }
}

}  // namespace
}  // namespace tests

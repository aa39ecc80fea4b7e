#include "platform/basic/value.h"
#include "platform/locale/table.h"
#include "workspace/modGetData.h"
#include "workspace/modStatistics.h"
#include "workspaceworld.h"

namespace tests {
namespace {

using testing::ElementsAre;
using HoursByGroup = platform::scripting::Dictionary<double>;

class Statistics : public testing::Test {
 protected:
  explicit Statistics(const QString& locale = QStringLiteral("sv_SE")) {
    w.world.setLocale(locale);
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
  /// Nothing reacts to it: what an edit brings about is told elsewhere.
  void write(const char* address, const QString& text) {
    platform::owc::Spreadsheet& list = w.form->exsThisWeek;
    list.ActiveSheet.Protection.Enabled = false;
    list.EnableEvents = false;
    list.Range(QString::fromLatin1(address)).setValue(platform::basic::Value(text));
    list.EnableEvents = true;
  }
  platform::owc::Chart& chart() { return w.form->excThisWeek.Charts()[0]; }
  QStringList groups() { return chart().categories(); }
  QList<double> hours() { return chart().values(0); }
  QString total() const { return w.form->lblHours.Caption(); }
  WorkspaceWorld w;
};

class StatisticsInEnglish : public Statistics {
 protected:
  StatisticsInEnglish() : Statistics(QStringLiteral("en_US")) {}
};

TEST_F(Statistics, OfAnEmptyListAreAnEmptyChartAndATotalOf0) {
  fillList();
  w.setPeriod(QDate(2024, 6, 3), QDate(2024, 6, 7));
  subGetData();
  EXPECT_EQ(total(), QStringLiteral("0"));
  ASSERT_EQ(w.form->excThisWeek.Charts().Count(), 1);
  EXPECT_TRUE(groups().isEmpty());
  EXPECT_TRUE(hours().isEmpty());
}

TEST_F(Statistics, AddUpTheHoursOfTheList) {
  fillList();
  EXPECT_EQ(total(), QStringLiteral("3"));
}

TEST_F(Statistics, ShowTheTotalWithTheSystemsDecimalSign) {
  w.add(QStringLiteral("a"), at(15, 8), 20);
  w.add(QStringLiteral("b"), at(15, 9), 20);
  subGetData();
  EXPECT_EQ(total(), QStringLiteral("0,66"));
}

TEST_F(Statistics, GroupByWeekdayInOrderOfTheDates) {
  fillList();
  EXPECT_THAT(hours(), ElementsAre(1, 2));
  EXPECT_THAT(groups(), ElementsAre(QStringLiteral("m\u00e5n 2024-05-13"), QStringLiteral("ons 2024-05-15")));
}

TEST_F(Statistics, GroupByTheMetaListOfTheTab) {
  fillList();
  w.form->tbsViews.setIndex(1);
  EXPECT_THAT(groups(), ElementsAre(QStringLiteral("Acme"), QStringLiteral("Beta")));
  EXPECT_THAT(hours(), ElementsAre(1.5, 1.5));
  w.form->tbsViews.setIndex(2);
  EXPECT_THAT(groups(), ElementsAre(QString(), QStringLiteral("Intranet"), QStringLiteral("Website")));
  w.form->tbsViews.setIndex(3);
  EXPECT_THAT(groups(), ElementsAre(QString(), QStringLiteral("Design")));
  EXPECT_THAT(hours(), ElementsAre(0.5, 2.5));
  w.form->tbsViews.setIndex(0);
  EXPECT_THAT(hours(), ElementsAre(1, 2));
  EXPECT_EQ(total(), QStringLiteral("3"));
}

TEST_F(Statistics, PutValuesThatDifferInCaseTogetherUnderTheOneThatStandsLowest) {
  fillList();
  write("B2", QStringLiteral("ACME"));
  write("B4", QStringLiteral("acme"));
  w.form->tbsViews.setIndex(1);
  EXPECT_THAT(groups(), ElementsAre(QStringLiteral("acme"), QStringLiteral("Beta")));
  EXPECT_THAT(hours(), ElementsAre(1.5, 1.5));
}

TEST_F(Statistics, CountARowOnlyWhileItHasAWeekday) {
  fillList();
  write("E2", QString());
  subCountSpreadSheet();
  EXPECT_EQ(total(), QStringLiteral("2"));
  EXPECT_THAT(groups(), ElementsAre(QStringLiteral("ons 2024-05-15")));
}

TEST_F(Statistics, TakeTheWeekdayOfASingleDayAsItStands) {
  w.add(QStringLiteral("a"), at(15, 8), 90);
  subGetData();
  write("E2", QStringLiteral("some day"));
  subCountSpreadSheet();
  EXPECT_THAT(groups(), ElementsAre(QStringLiteral("some day")));
}

TEST_F(Statistics, CountHoursThatTheUserTyped) {
  fillList();
  write("F2", QStringLiteral("7,5"));
  write("F3", QStringLiteral(" 1.25 "));
  write("F4", QStringLiteral("1 000"));
  subCountSpreadSheet();
  EXPECT_EQ(total(), QStringLiteral("1008,75"));
}

TEST_F(StatisticsInEnglish, CountHoursThatTheUserTypedWithGroupSigns) {
  fillList();
  write("F2", QStringLiteral("1,000"));
  write("F3", QStringLiteral("1,000.5"));
  subCountSpreadSheet();
  EXPECT_EQ(total(), QStringLiteral("2001"));
}

TEST_F(Statistics, CountAnEmptiedCellAsNoHours) {
  fillList();
  write("F2", QString());
  subCountSpreadSheet();
  EXPECT_EQ(total(), QStringLiteral("2"));
  EXPECT_THAT(hours(), ElementsAre(0, 2));
}

TEST_F(Statistics, LogEachStepOfTheCount) {
  fillList();
  w.startLog();
  subCountSpreadSheet();
  EXPECT_THAT(w.logged(), ElementsAre(testing::_, QStringLiteral("Looping through values to build graph"),
                                      QStringLiteral("Sorting a Dictionary object"),
                                      QStringLiteral("Fixing graph with 2 items"), QString()));
}

TEST_F(Statistics, AreNotSortedWhereThereIsOneGroup) {
  w.add(QStringLiteral("a"), at(15, 8), 90);
  subGetData();
  w.startLog();
  subCountSpreadSheet();
  EXPECT_FALSE(w.logged().contains(QStringLiteral("Sorting a Dictionary object")));
}

TEST_F(Statistics, AreCountedAgainWithEachTabThatIsChosen) {
  fillList();
  w.startLog();
  w.form->tbsViews.setIndex(2);
  EXPECT_EQ(w.logged().filter(QStringLiteral("Looping through values to build graph")).size(), 1);
}

TEST_F(Statistics, DoNotCountRow200) {
  for (int n = 0; n < 199; ++n) w.add(QString::number(n + 1), at(15, 1).addSecs(n * 60));
  w.world.dialogs.expect(QStringLiteral("more than 99"), 1);
  subGetData();
  EXPECT_EQ(total(), QStringLiteral("198"));
}

TEST_F(Statistics, CountRow199) {
  for (int n = 0; n < 198; ++n) w.add(QString::number(n + 1), at(15, 1).addSecs(n * 60));
  subGetData();
  EXPECT_EQ(w.cell(QStringLiteral("A199")), QStringLiteral("198"));
  EXPECT_EQ(total(), QStringLiteral("198"));
}

TEST_F(Statistics, EndTheProgramWhenHoursAreNoNumber) {
  fillList();
  write("F2", QStringLiteral("abc"));
  w.world.dialogs.expect(QStringLiteral("Sub routine : subCountSpreadSheet"), 7);
  EXPECT_ENDS_PROCESS(subCountSpreadSheet());
}

TEST_F(Statistics, EndTheProgramWhenAWeekdayIsNoDate) {
  fillList();
  write("E2", QStringLiteral("some day"));
  w.world.dialogs.expect(QStringLiteral("Sub routine : fncSortDictionary"), 7);
  EXPECT_ENDS_PROCESS(subCountSpreadSheet());
}

TEST(CountingTheList, BeforeThereIsAFormEndsTheProgram) {
  WorkspaceWorld w;
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

TEST(SortingADictionary, GivesTheDatesTheSystemsOwnWeekdaysAgain) {
  WorkspaceWorld w;
  HoursByGroup dictionary;
  dictionary.Add(QStringLiteral("xyz. 5/15/2024"), 2);
  dictionary.Add(QStringLiteral("xyz 5/13/2024"), 1);
  fncSortDictionary(dictionary, SortField::Key, true);
  EXPECT_THAT(dictionary.Keys(),
              ElementsAre(QStringLiteral("Mon 5/13/2024"), QStringLiteral("Wed 5/15/2024")));
  EXPECT_THAT(dictionary.Items(), ElementsAre(1, 2));
}

TEST(SortingADictionary, SortsWithoutRegardToCase) {
  WorkspaceWorld w;
  HoursByGroup dictionary;
  for (const char* key : {"b", "C", "A", "d"}) dictionary.Add(QString::fromLatin1(key), 1);
  fncSortDictionary(dictionary, SortField::Key, false);
  EXPECT_THAT(dictionary.Keys(), ElementsAre(QStringLiteral("A"), QStringLiteral("b"), QStringLiteral("C"),
                                             QStringLiteral("d")));
}

TEST(SortingADictionary, SaysSoInTheLogEvenWhereThereIsNothingToSort) {
  WorkspaceWorld w;
  w.startLog();
  HoursByGroup none;
  fncSortDictionary(none, SortField::Key, false);
  EXPECT_TRUE(w.logged().contains(QStringLiteral("Sorting a Dictionary object")));
}

TEST(SortingADictionary, EndsTheProgramWhenAKeyIsNoDate) {
  WorkspaceWorld w;
  HoursByGroup dictionary;
  dictionary.Add(QStringLiteral("Mon 5/13/2024"), 1);
  dictionary.Add(QStringLiteral("Tue soon"), 2);
  w.world.dialogs.expect(QStringLiteral("Sub routine : fncSortDictionary"), 7);
  EXPECT_ENDS_PROCESS(fncSortDictionary(dictionary, SortField::Key, true));
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

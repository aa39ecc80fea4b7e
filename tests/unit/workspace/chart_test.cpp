#include "workspace/modChart.h"
#include "workspace/modGetData.h"
#include "workspace/modStatistics.h"
#include "workspaceworld.h"

namespace tests {
namespace {

using namespace Qt::StringLiterals;
using namespace platform::owc;
using testing::ElementsAre;
using HoursByGroup = platform::scripting::Dictionary<double>;

class LoadedChart : public testing::Test {
 protected:
  void open(qint16 generation) { w.loadForm(generation); }
  Chart& chart() { return w.form->excThisWeek.Charts()[0]; }
  platform::forms::ComboBox& types() { return *w.form->cmbChartType; }
  void load() { LoadChartWithLiteral(w.form->excThisWeek, hours); }
  static HoursByGroup someHours() {
    HoursByGroup hours;
    hours.Add(u"second"_s, 2.5);
    hours.Add(u"first"_s, 1);
    return hours;
  }
  HoursByGroup hours = someHours();
  WorkspaceWorld w;
};

TEST_F(LoadedChart, HasTheHoursOfEachGroupInTheOrderOfTheDictionary) {
  open(11);
  load();
  EXPECT_THAT(chart().seriesNames(), ElementsAre(u"Hours"_s));
  EXPECT_THAT(chart().categories(), ElementsAre(u"second"_s, u"first"_s));
  EXPECT_THAT(chart().values(0), ElementsAre(2.5, 1));
}

TEST_F(LoadedChart, IsWhiteWithALegendAndWithoutABorder) {
  open(11);
  load();
  EXPECT_TRUE(chart().HasLegend());
  EXPECT_EQ(w.form->excThisWeek.Interior().Color(), 0xFFFFFF);
  EXPECT_EQ(chart().Interior().Color(), 0xFFFFFF);
  EXPECT_EQ(chart().border().Color(), 0xFFFFFF);
  EXPECT_EQ(chart().border().Weight(), 0);
}

TEST_F(LoadedChart, IsTheOnlyOneHoweverOftenItIsLoaded) {
  open(11);
  w.form->excThisWeek.Interior().setColor(0x0000FF);
  load();
  load();
  EXPECT_EQ(w.form->excThisWeek.Charts().Count(), 1);
  EXPECT_EQ(chart().SeriesCollection().size(), 1);
  EXPECT_EQ(w.form->excThisWeek.Interior().Color(), 0xFFFFFF);
}

TEST_F(LoadedChart, HasNoCategoriesForAnEmptyDictionary) {
  open(11);
  HoursByGroup none;
  LoadChartWithLiteral(w.form->excThisWeek, none);
  EXPECT_TRUE(chart().categories().isEmpty());
  EXPECT_TRUE(chart().values(0).isEmpty());
}

TEST_F(LoadedChart, NamesItsSeriesInTheUsersLanguage) {
  open(11);
  w.shell->LNGHOURS = u"Stunden"_s;
  load();
  EXPECT_THAT(chart().seriesNames(), ElementsAre(u"Stunden"_s));
}

TEST_F(LoadedChart, LogsHowManyItemsItHas) {
  open(11);
  w.startLog();
  load();
  EXPECT_TRUE(w.logged().contains(u"Fixing graph with 2 items"_s));
}

TEST_F(LoadedChart, IsOfClusteredColumnsInTheNewerForms) {
  for (const qint16 generation : {10, 11}) {
    open(generation);
    load();
    EXPECT_EQ(chart().Type(), 0) << generation;
    EXPECT_EQ(w.form->cmbChartType, nullptr) << generation;
  }
}

TEST_F(LoadedChart, ChoosesClusteredColumnsAtTheFirstCountOfTheOldestForm) {
  w.makeForm(9);
  EXPECT_EQ(types().Text(), QString());
  w.form->Load();
  EXPECT_EQ(types().Text(), u"ColumnClustered"_s);
  EXPECT_EQ(types().ListIndex(), 2);
  EXPECT_EQ(chart().Type(), 0);
}

TEST_F(LoadedChart, KeepsTheChosenTypeThroughLaterCounts) {
  open(9);
  types().setListIndex(8);
  subCountSpreadSheet();
  EXPECT_EQ(chart().Type(), chChartTypePie);
  EXPECT_EQ(types().Text(), u"Pie"_s);
}

TEST_F(LoadedChart, TakesATypeThatIsNotOfferedButNamed) {
  open(9);
  types().setText(u"Radar Line Filled"_s);
  load();
  EXPECT_EQ(chart().Type(), 36);
  types().setText(u"AreaStacked100%"_s);
  load();
  EXPECT_EQ(chart().Type(), 31);
}

TEST_F(LoadedChart, IsOfClusteredColumnsForANameThatIsNone) {
  open(9);
  types().setText(u"pie"_s);
  load();
  EXPECT_EQ(chart().Type(), 0);
  EXPECT_EQ(types().Text(), u"pie"_s);
}

TEST_F(LoadedChart, EndsTheProgramForATypeThatCannotBeDrawn) {
  open(9);
  types().setText(u"Bubble"_s);
  w.world.dialogs.expect(u"Sub routine : LoadChartWithLiteral"_s, 7);
  EXPECT_ENDS_PROCESS(load());
}

TEST_F(LoadedChart, EndsTheProgramWhereTheOldestFormHasNoChoiceOfTypes) {
  open(11);
  w.workspace->gOWCVersion = 9;
  w.world.dialogs.expect(u"Sub routine : LoadChartWithLiteral"_s, 7);
  EXPECT_ENDS_PROCESS(load());
}

TEST_F(LoadedChart, DrawsEveryTypeOfferedWhenItIsChosen) {
  open(9);
  QList<int> drawn;
  for (int i = 0; i < types().ListCount(); ++i) {
    types().setListIndex(i);
    drawn.append(chart().Type());
  }
  EXPECT_THAT(drawn, ElementsAre(29, 3, 0, 32, 33, 6, 7, 9, 18, 19, 34, 36, 35, 37, 38, 12, 13));
}

TEST_F(LoadedChart, KeepsItsDataWhenAnotherTypeIsChosen) {
  open(9);
  load();
  types().setListIndex(8);
  EXPECT_EQ(chart().Type(), chChartTypePie);
  EXPECT_THAT(chart().values(0), ElementsAre(2.5, 1));
}

TEST_F(LoadedChart, SaysThatAChosenTypeCannotBeDrawnAndStaysAsItIs) {
  open(9);
  types().setListIndex(8);
  w.world.dialogs.expect(u"Unable to set that chart type"_s, 1);
  types().AddItem(u"Bubble"_s);
  types().setListIndex(17);
  ASSERT_EQ(w.world.dialogs.shown.size(), 1);
  // The phrase has its line break in writing, as it stands in the table.
  EXPECT_EQ(w.world.dialogs.shown[0].text,
            u"Unable to set that chart type for this chart!\" & vbCrLf & \"Please select another type."_s);
  EXPECT_EQ(w.world.dialogs.shown[0].options, platform::dialogs::vbCritical);
  EXPECT_EQ(w.world.dialogs.shown[0].title, u"Hourbook for Outlook Reporting"_s);
  EXPECT_EQ(chart().Type(), chChartTypePie);
  types().setListIndex(0);
  EXPECT_EQ(chart().Type(), chChartTypeArea);
}

TEST_F(LoadedChart, SaysThatTheTypeCannotBeSetWhereThereIsNoChart) {
  open(9);
  w.form->excThisWeek.Clear();
  w.world.dialogs.expect(u"Unable to set that chart type"_s, 1);
  types().setListIndex(8);
}

TEST_F(LoadedChart, StaysAsItIsWhenNoTypeIsChosen) {
  open(9);
  types().setListIndex(8);
  w.form->excThisWeek.Charts()[0].setType(chChartTypePie);
  types().setListIndex(-1);
  EXPECT_EQ(chart().Type(), chChartTypePie);
}

TEST(ChartTypes, HaveTheValuesOfTheirNames) {
  const QList<std::pair<const char*, int>> table{{"ColumnClustered", 0},
                                                 {"ColumnStacked", 1},
                                                 {"ColumnStacked100%", 2},
                                                 {"BarClustered", 3},
                                                 {"BarStacked", 4},
                                                 {"BarStacked100%", 5},
                                                 {"Line", 6},
                                                 {"Line Markers", 7},
                                                 {"Line Stacked", 8},
                                                 {"Line Stacked Markers", 9},
                                                 {"Line Stacked 100%", 10},
                                                 {"Line Stacked 100% Markers", 11},
                                                 {"Smoothline", 12},
                                                 {"Smoothline Markers", 13},
                                                 {"Smoothline Stacked", 14},
                                                 {"Smoothline Stacked 100% Markers", 15},
                                                 {"Smoothline Stacked 100%", 16},
                                                 {"Pie", 18},
                                                 {"Pie Exploded", 19},
                                                 {"Pie Stacked", 20},
                                                 {"Scatter Markers", 21},
                                                 {"Scatter Smoothline Markers", 22},
                                                 {"Scatter Smoothline", 23},
                                                 {"Scatter Line Markers", 24},
                                                 {"Scatter Line", 25},
                                                 {"Scatter Line Filled", 26},
                                                 {"Bubble", 27},
                                                 {"BubbleLine", 28},
                                                 {"Area", 29},
                                                 {"AreaStacked", 30},
                                                 {"AreaStacked100%", 31},
                                                 {"Doughnut", 32},
                                                 {"Doughnut Exploded", 33},
                                                 {"Radar Line", 34},
                                                 {"Radar Line Markers", 35},
                                                 {"Radar Line Filled", 36},
                                                 {"Radar Smoothline", 37},
                                                 {"Radar Smoothline Markers", 38},
                                                 {"Polar Markers", 41},
                                                 {"Polar Line", 42},
                                                 {"Polar Line Markers", 43},
                                                 {"Polar Smooth Line", 44},
                                                 {"Polar Smooth Line Markers", 45}};
  for (const auto& [name, value] : table) EXPECT_EQ(fncChartType(QString::fromLatin1(name)), value) << name;
}

TEST(ChartTypes, OfNamesThatAreNotListedAreClusteredColumns) {
  for (const QString& name : {QString(), u"pie"_s, u" Pie"_s, u"Pie "_s, u"LINE"_s, u"Bub"_s,
                              u"Smoothline Stacked Markers"_s, u"Stock HLC"_s, u"Stock OHLC"_s, u"Torte"_s})
    EXPECT_EQ(fncChartType(name), 0) << name.toStdString();
}

}  // namespace
}  // namespace tests

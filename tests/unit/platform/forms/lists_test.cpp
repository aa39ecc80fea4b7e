#include "platform/basic/failure.h"
#include "platform/forms/controls.h"
#include "tests/unit/platform/forms/eventlog.h"

#include <QSignalSpy>

using namespace platform::forms;
using platform::Failure;
using tests::EventLog;
using namespace Qt::StringLiterals;

namespace {

template <class Work>
qint32 failureNumber(Work work) {
  try {
    work();
  } catch (const Failure& failure) {
    return failure.number();
  }
  return 0;
}

class ComboBoxes : public testing::Test {
 protected:
  ComboBoxes() {
    for (ComboBox* box : {&list, &combo}) {
      for (const QString& text : {u"Marked"_s, u"Not marked"_s, u"All"_s, u"Marked"_s}) box->AddItem(text);
      log.watch(*box, &ComboBox::Click, u"Click"_s, [box] { return reading(*box); });
      log.watch(*box, &ComboBox::Change, u"Change"_s, [box] { return reading(*box); });
    }
  }
  static QString reading(const ComboBox& box) { return QString::number(box.ListIndex()) + u' ' + box.Text(); }

  ComboBox list{u"cmbFilterCalendar"_s};
  ComboBox combo{u"cmbMeta1"_s, ComboBox::Style::DropdownCombo};
  EventLog log;
};

}  // namespace

TEST_F(ComboBoxes, FillingChoosesNothingAndRaisesNothing) {
  EXPECT_EQ(list.ListCount(), 4);
  EXPECT_EQ(list.ListIndex(), -1);
  EXPECT_EQ(list.Text(), QString());
  EXPECT_TRUE(log.entries.isEmpty());
}

TEST_F(ComboBoxes, ChoosingAnEntryClicksWithTheNewText) {
  list.setListIndex(1);
  EXPECT_EQ(log.entries, QStringList{u"Click 1 Not marked"_s});
  EXPECT_EQ(list.Text(), u"Not marked"_s);
}

TEST_F(ComboBoxes, ChoosingTheSameEntryAgainClicksAgain) {
  list.setListIndex(0);
  list.setListIndex(0);
  EXPECT_EQ(log.entries, QStringList({u"Click 0 Marked"_s, u"Click 0 Marked"_s}));
}

TEST_F(ComboBoxes, ChoosingNoEntryEmptiesTheTextAndClicks) {
  combo.setText(u"own words"_s);
  log.entries.clear();
  combo.setListIndex(-1);
  EXPECT_EQ(log.entries, QStringList{u"Click -1 "_s});
}

TEST_F(ComboBoxes, AnIndexOutsideOfTheListIsRefusedAndChangesNothing) {
  list.setListIndex(2);
  log.entries.clear();
  EXPECT_EQ(failureNumber([&] { list.setListIndex(4); }), 380);
  EXPECT_EQ(failureNumber([&] { list.setListIndex(-2); }), 380);
  EXPECT_EQ(list.ListIndex(), 2);
  EXPECT_TRUE(log.entries.isEmpty());
}

TEST_F(ComboBoxes, ATextOfTheListIsChosenWithoutAClick) {
  list.setText(u"All"_s);
  EXPECT_EQ(list.ListIndex(), 2);
  EXPECT_EQ(log.entries, QStringList{u"Change 2 All"_s});
}

TEST_F(ComboBoxes, TheSameTextAgainIsNoChange) {
  list.setText(u"All"_s);
  list.setText(u"All"_s);
  EXPECT_EQ(log.entries.size(), 1);
}

TEST_F(ComboBoxes, AmongEqualEntriesTheChosenOneStaysChosen) {
  combo.setListIndex(3);
  combo.setText(u"Marked"_s);
  EXPECT_EQ(combo.ListIndex(), 3);
  combo.setText(u"x"_s);
  combo.setText(u"Marked"_s);
  EXPECT_EQ(combo.ListIndex(), 0);
}

TEST_F(ComboBoxes, ADropdownListRefusesATextThatIsNotInIt) {
  list.setListIndex(1);
  log.entries.clear();
  EXPECT_EQ(failureNumber([&] { list.setText(u"elsewhere"_s); }), 383);
  EXPECT_EQ(failureNumber([&] { list.setText(u"all"_s); }), 383);
  EXPECT_EQ(failureNumber([&] { list.setText(QString()); }), 383);
  EXPECT_EQ(list.Text(), u"Not marked"_s);
  EXPECT_EQ(list.ListIndex(), 1);
  EXPECT_TRUE(log.entries.isEmpty());
}

TEST_F(ComboBoxes, ADropdownComboTakesAnyText) {
  combo.setListIndex(1);
  log.entries.clear();
  combo.setText(u"own words"_s);
  EXPECT_EQ(combo.ListIndex(), -1);
  EXPECT_EQ(log.entries, QStringList{u"Change -1 own words"_s});
}

TEST_F(ComboBoxes, ClearingTakesEntriesTextAndChoiceWithoutAnEvent) {
  combo.setListIndex(1);
  log.entries.clear();
  combo.Clear();
  EXPECT_EQ(combo.ListCount(), 0);
  EXPECT_EQ(combo.ListIndex(), -1);
  EXPECT_EQ(combo.Text(), QString());
  EXPECT_TRUE(log.entries.isEmpty());
}

TEST_F(ComboBoxes, OutsideOfTheListStandsTheEmptyText) {
  EXPECT_EQ(list.List(0), u"Marked"_s);
  EXPECT_EQ(list.List(4), QString());
  EXPECT_EQ(list.List(-1), QString());
}

TEST_F(ComboBoxes, AHandlerMayChooseAnotherEntry) {
  QObject::connect(&list, &ComboBox::Click, &log, [&] {
    if (list.ListIndex() == 1) list.setListIndex(0);
  });
  list.setListIndex(1);
  EXPECT_EQ(list.ListIndex(), 0);
  EXPECT_EQ(list.Text(), u"Marked"_s);
}

TEST(OptionButton, ClicksWhenItBecomesTrueOnly) {
  OptionButton button(u"optKeep"_s);
  QSignalSpy clicks(&button, &OptionButton::Click);
  button.setValue(true);
  button.setValue(true);
  button.setValue(false);
  EXPECT_EQ(clicks.count(), 1);
}

TEST(OptionButton, OfOneFrameOnlyOneIsTrueAlreadyWhenItClicks) {
  Frame frame(u"fraChoice"_s), other(u"fraOther"_s);
  OptionButton first(u"optFirst"_s, &frame), second(u"optSecond"_s, &frame),
      elsewhere(u"optElsewhere"_s, &other);
  first.setValue(true);
  elsewhere.setValue(true);
  EventLog log;
  log.watch(second, &OptionButton::Click, u"Click"_s, [&] { return first.Value() ? u"both"_s : u"alone"_s; });
  second.setValue(true);
  EXPECT_EQ(log.entries, QStringList{u"Click alone"_s});
  EXPECT_TRUE(elsewhere.Value());
}

TEST(TabStrip, TheFirstTabIsChosenAsSoonAsThereIsOne) {
  TabStrip tabs(u"tbsViews"_s);
  EXPECT_EQ(tabs.Index(), -1);
  QSignalSpy clicks(&tabs, &TabStrip::Click);
  tabs.Add(u"By weekday"_s);
  tabs.Add(u"By customer"_s);
  EXPECT_EQ(tabs.Count(), 2);
  EXPECT_EQ(tabs.Index(), 0);
  EXPECT_EQ(tabs.TabCaption(1), u"By customer"_s);
  EXPECT_EQ(clicks.count(), 0);
  tabs.Clear();
  EXPECT_EQ(tabs.Index(), -1);
  EXPECT_EQ(tabs.Count(), 0);
}

TEST(TabStrip, ClicksWhenAnotherTabIsChosen) {
  TabStrip tabs(u"tbsViews"_s);
  tabs.Add(u"By weekday"_s);
  tabs.Add(u"By customer"_s);
  EventLog log;
  log.watch(tabs, &TabStrip::Click, u"Click"_s, [&] { return QString::number(tabs.Index()); });
  tabs.setIndex(1);
  tabs.setIndex(1);
  tabs.setIndex(0);
  EXPECT_EQ(log.entries, QStringList({u"Click 1"_s, u"Click 0"_s}));
}

TEST(TabStrip, RefusesWhatIsNoTab) {
  TabStrip tabs(u"tbsViews"_s);
  EXPECT_EQ(failureNumber([&] { tabs.setIndex(0); }), 380);
  tabs.Add(u"By weekday"_s);
  EXPECT_EQ(failureNumber([&] { tabs.setIndex(1); }), 380);
  EXPECT_EQ(failureNumber([&] { tabs.setIndex(-1); }), 380);
  EXPECT_EQ(tabs.Index(), 0);
}

#include "platform/forms/widgets/bind.h"
#include "platform/locale/locale.h"
#include "tests/unit/platform/forms/eventlog.h"

#include <QCalendarWidget>
#include <QComboBox>
#include <QDateEdit>
#include <QFocusEvent>
#include <QLineEdit>
#include <QRadioButton>
#include <QScrollBar>
#include <QSignalSpy>
#include <QSpinBox>
#include <QTabBar>
#include <QTest>
#include <QVBoxLayout>
#include <QWheelEvent>

#include <functional>

using namespace platform::forms;
using platform::basic::Date;
using tests::EventLog;
using namespace Qt::StringLiterals;

namespace {

QString reading(const ComboBox& box) {
  return QString::number(box.ListIndex()) + u' ' + box.Text();
}

void turnWheel(QWidget& widget) {
  QWheelEvent event(QPointF(5, 5), widget.mapToGlobal(QPointF(5, 5)), QPoint(), QPoint(0, -120), Qt::NoButton,
                    Qt::NoModifier, Qt::NoScrollPhase, false);
  QCoreApplication::sendEvent(&widget, &event);
}

class ComboBinding : public testing::Test {
 protected:
  ComboBinding() {
    for (const QString& text : {u"Alpha"_s, u"Beta"_s, u"R&D"_s}) {
      list.AddItem(text);
      combo.AddItem(text);
    }
    bind(list, &listWidget);
    bind(combo, &comboWidget);
    for (ComboBox* box : {&list, &combo}) {
      log.watch(*box, &ComboBox::Click, u"Click"_s, [box] { return reading(*box); });
      log.watch(*box, &ComboBox::Change, u"Change"_s, [box] { return reading(*box); });
    }
  }
  ComboBox list{u"cmbFilterCalendar"_s};
  ComboBox combo{u"cmbMeta1"_s, ComboBox::Style::DropdownCombo};
  QComboBox listWidget, comboWidget;
  EventLog log;
};

/// By the mouse, as far as the calendar is there.
void dropCalendarDown(QDateEdit& edit) {
  edit.show();
  QTest::mouseClick(&edit, Qt::LeftButton, {}, QPoint(edit.width() - 6, edit.height() / 2));
  ASSERT_TRUE(edit.calendarWidget()->isVisible());
}

}  // namespace

TEST_F(ComboBinding, TheWidgetShowsTheEntriesAndNoChoice) {
  EXPECT_FALSE(listWidget.isEditable());
  EXPECT_TRUE(comboWidget.isEditable());
  EXPECT_EQ(listWidget.count(), 3);
  EXPECT_EQ(listWidget.itemText(2), u"R&D"_s);
  EXPECT_EQ(listWidget.currentIndex(), -1);
  EXPECT_TRUE(log.entries.isEmpty());
}

TEST_F(ComboBinding, FillingAgainIsFollowed) {
  list.setListIndex(2);
  list.Clear();
  EXPECT_EQ(listWidget.count(), 0);
  list.AddItem(u"Gamma"_s);
  list.AddItem(u"Delta"_s);
  EXPECT_EQ(listWidget.count(), 2);
  EXPECT_EQ(listWidget.itemText(0), u"Gamma"_s);
  EXPECT_EQ(listWidget.currentIndex(), -1);
  combo.setText(u"own"_s);
  combo.Clear();
  EXPECT_EQ(comboWidget.currentText(), QString());
}

TEST_F(ComboBinding, CodesChoiceIsShownAndRaisesOneClick) {
  list.setListIndex(1);
  EXPECT_EQ(listWidget.currentIndex(), 1);
  combo.setListIndex(0);
  EXPECT_EQ(comboWidget.currentText(), u"Alpha"_s);
  EXPECT_EQ(log.entries, QStringList({u"Click 1 Beta"_s, u"Click 0 Alpha"_s}));
}

TEST_F(ComboBinding, TheUsersChoiceClicksOnceAlsoInAnEditableBox) {
  QTest::keyClick(&listWidget, Qt::Key_Down);
  EXPECT_EQ(log.entries, QStringList{u"Click 0 Alpha"_s});
  log.entries.clear();
  QTest::keyClick(&comboWidget, Qt::Key_Down);
  EXPECT_EQ(log.entries, QStringList{u"Click 0 Alpha"_s});
  EXPECT_EQ(comboWidget.currentText(), u"Alpha"_s);
}

TEST_F(ComboBinding, PickingTheSameEntryAgainClicksAgain) {
  list.setListIndex(1);
  log.entries.clear();
  Q_EMIT listWidget.activated(1);
  EXPECT_EQ(log.entries, QStringList{u"Click 1 Beta"_s});
}

TEST_F(ComboBinding, TypingChangesLetterByLetterAndChoosesAnEqualEntryWithoutAClick) {
  QTest::keyClicks(comboWidget.lineEdit(), u"Bet"_s);
  EXPECT_EQ(comboWidget.currentText(), u"Bet"_s) << "nothing is completed";
  QTest::keyClicks(comboWidget.lineEdit(), u"a"_s);
  EXPECT_EQ(log.entries,
            QStringList({u"Change -1 B"_s, u"Change -1 Be"_s, u"Change -1 Bet"_s, u"Change 1 Beta"_s}));
  QTest::keyClick(comboWidget.lineEdit(), Qt::Key_Return);
  EXPECT_EQ(log.entries.size(), 4) << "Enter neither chooses nor adds an entry";
  EXPECT_EQ(comboWidget.count(), 3);
}

TEST_F(ComboBinding, TypingInTheMiddleKeepsTheCursorThere) {
  combo.setText(u"Bta"_s);
  comboWidget.lineEdit()->setCursorPosition(1);
  QTest::keyClicks(comboWidget.lineEdit(), u"e"_s);
  EXPECT_EQ(combo.ListIndex(), 1);
  EXPECT_EQ(comboWidget.currentText(), u"Beta"_s);
  EXPECT_EQ(comboWidget.lineEdit()->cursorPosition(), 2);
}

TEST_F(ComboBinding, ATextThatCodeSetsAgainLeavesWhatIsSelectedInIt) {
  combo.setText(u"Beta"_s);
  comboWidget.lineEdit()->setSelection(1, 2);
  combo.setText(u"Beta"_s);
  EXPECT_EQ(comboWidget.lineEdit()->selectedText(), u"et"_s);
}

TEST_F(ComboBinding, FreeTextByCodeIsShown) {
  combo.setListIndex(1);
  combo.setText(u"own words"_s);
  EXPECT_EQ(comboWidget.currentText(), u"own words"_s);
  EXPECT_EQ(comboWidget.currentIndex(), -1);
}

TEST_F(ComboBinding, AnotherChoiceMadeByTheHandlerIsShown) {
  QObject::connect(&list, &ComboBox::Click, &log, [&] {
    if (list.ListIndex() == 0) list.setListIndex(2);
  });
  QTest::keyClick(&listWidget, Qt::Key_Down);
  EXPECT_EQ(listWidget.currentIndex(), 2);
}

TEST_F(ComboBinding, TheWheelTurnsNothingWithoutTheFocus) {
  list.setListIndex(0);
  log.entries.clear();
  turnWheel(listWidget);
  EXPECT_EQ(list.ListIndex(), 0);
  EXPECT_TRUE(log.entries.isEmpty());
}

TEST_F(ComboBinding, TheWheelTurnsTheChoiceOfTheBoxInUse) {
  listWidget.show();
  listWidget.activateWindow();
  ASSERT_TRUE(QTest::qWaitForWindowActive(&listWidget));
  listWidget.setFocus();
  list.setListIndex(0);
  turnWheel(listWidget);
  EXPECT_EQ(list.ListIndex(), 1);
}

TEST(OptionBinding, ChoosingOneByKeyLetsTheOthersGo) {
  QWidget form;
  auto* layout = new QVBoxLayout(&form);
  auto* one = new QRadioButton;
  auto* two = new QRadioButton;
  layout->addWidget(one);
  layout->addWidget(two);
  OptionButton first(u"optDelete"_s), second(u"optKeep"_s);
  first.setCaption(u"&Delete"_s);
  bind(first, one);
  bind(second, two);
  EventLog log;
  log.watch(first, &OptionButton::Click, u"first"_s);
  log.watch(second, &OptionButton::Click, u"second"_s);
  first.setValue(true);
  EXPECT_TRUE(one->isChecked());
  QTest::keyClick(two, Qt::Key_Space);
  EXPECT_TRUE(second.Value());
  EXPECT_FALSE(first.Value());
  EXPECT_EQ(log.entries, QStringList({u"first"_s, u"second"_s}));
  second.setValue(false);
  EXPECT_FALSE(two->isChecked());
  EXPECT_EQ(one->text(), u"&Delete"_s);
}

TEST(ScrollBinding, AScrollBarAndItsControlFollowEachOther) {
  ScrollBar control(u"vDaysBefore"_s);
  control.Min = -60;
  control.Max = -1;
  control.setValue(-7);
  QScrollBar bar(Qt::Vertical);
  bind(control, &bar);
  EXPECT_EQ(bar.minimum(), -60);
  EXPECT_EQ(bar.maximum(), -1);
  EXPECT_EQ(bar.value(), -7);
  QSignalSpy changes(&control, &ScrollBar::Change);
  QTest::keyClick(&bar, Qt::Key_Up);
  EXPECT_EQ(control.Value(), -8);
  control.setValue(-20);
  EXPECT_EQ(bar.value(), -20);
  EXPECT_EQ(changes.count(), 2);
}

TEST(ScrollBinding, EndsTheOtherWayRoundTurnTheBar) {
  ScrollBar control(u"vDaysBefore"_s);
  control.Min = 60;
  control.Max = 1;
  QScrollBar bar(Qt::Vertical);
  bind(control, &bar);
  EXPECT_EQ(bar.minimum(), 1);
  EXPECT_EQ(bar.maximum(), 60);
  EXPECT_TRUE(bar.invertedAppearance());
}

TEST(ScrollBinding, ASpinBoxServesAsWell) {
  ScrollBar control(u"vDaysBefore"_s);
  control.Max = 60;
  QSpinBox spin;
  bind(control, &spin);
  QSignalSpy changes(&control, &ScrollBar::Change);
  QTest::keyClick(&spin, Qt::Key_Up);
  EXPECT_EQ(control.Value(), 1);
  EXPECT_EQ(changes.count(), 1);
  control.setValue(12);
  EXPECT_EQ(spin.value(), 12);
}

TEST(TabBinding, TabsAreShownWithTheirAmpersandsAndFollowTheChoice) {
  TabStrip control(u"tbsViews"_s);
  QTabBar bar;
  bind(control, &bar);
  QSignalSpy clicks(&control, &TabStrip::Click);
  control.Add(u"By weekday"_s);
  control.Add(u"By R&D"_s);
  ASSERT_EQ(bar.count(), 2);
  EXPECT_EQ(bar.tabText(1), u"By R&&D"_s);
  EXPECT_EQ(bar.currentIndex(), 0);
  EXPECT_EQ(clicks.count(), 0);
  control.setIndex(1);
  EXPECT_EQ(bar.currentIndex(), 1);
  EXPECT_EQ(clicks.count(), 1);
  control.Clear();
  EXPECT_EQ(bar.count(), 0);
  control.Add(u"Again"_s);
  EXPECT_EQ(bar.tabText(0), u"Again"_s);
  EXPECT_EQ(clicks.count(), 1);
}

TEST(TabBinding, TheUsersClickOnATabArrivesOnce) {
  TabStrip control(u"tbsViews"_s);
  control.Add(u"By weekday"_s);
  control.Add(u"By customer"_s);
  QTabBar bar;
  bind(control, &bar);
  bar.show();
  QSignalSpy clicks(&control, &TabStrip::Click);
  QTest::mouseClick(&bar, Qt::LeftButton, {}, bar.tabRect(1).center());
  QTest::mouseClick(&bar, Qt::LeftButton, {}, bar.tabRect(1).center());
  EXPECT_EQ(control.Index(), 1);
  EXPECT_EQ(clicks.count(), 1);
}

TEST(DateBinding, ADateStandsInTheSystemsShortPatternWithWeekNumbersInTheCalendar) {
  const platform::locale::ScopedLocale swedish(u"sv_SE"_s);
  DTPicker control(u"dtpStartDate"_s);
  control.setValue(Date::of(2024, 5, 15));
  QDateEdit edit;
  bind(control, &edit);
  EXPECT_EQ(edit.text(), u"2024-05-15"_s);
  EXPECT_TRUE(edit.calendarPopup());
  dropCalendarDown(edit);
  EXPECT_FALSE(edit.calendarWidget()->isGridVisible());
  EXPECT_EQ(edit.calendarWidget()->verticalHeaderFormat(), QCalendarWidget::ISOWeekNumbers);
  EXPECT_EQ(edit.calendarWidget()->firstDayOfWeek(), Qt::Monday);
}

TEST(DateBinding, AnotherSystemShowsItsOwnPattern) {
  const platform::locale::ScopedLocale german(u"de_DE"_s);
  DTPicker control(u"dtpStartDate"_s);
  control.setValue(Date::of(2024, 5, 15));
  QDateEdit edit;
  bind(control, &edit);
  EXPECT_EQ(edit.text(), u"15.05.2024"_s);
}

TEST(DateBinding, TheUsersDayArrivesAndTheTimeOfDayStays) {
  const platform::locale::ScopedLocale swedish(u"sv_SE"_s);
  DTPicker control(u"dtpStartDate"_s);
  control.setValue(Date::of(QDate(2024, 5, 31), QTime(18, 30)));
  QDateEdit edit;
  bind(control, &edit);
  edit.setCurrentSection(QDateTimeEdit::DaySection);
  QTest::keyClick(&edit, Qt::Key_Down);
  EXPECT_EQ(control.Value(), Date::of(QDate(2024, 5, 30), QTime(18, 30)));
  control.setValue(Date::of(2023, 1, 2));
  EXPECT_EQ(edit.date(), QDate(2023, 1, 2));
}

TEST(DateBinding, TheFirstDayOfTheCalendarsWeekIsTheSystems) {
  const platform::locale::ScopedLocale american(u"en_US"_s);
  DTPicker control(u"dtpStartDate"_s);
  QDateEdit edit;
  bind(control, &edit);
  dropCalendarDown(edit);
  EXPECT_EQ(edit.calendarWidget()->firstDayOfWeek(), Qt::Sunday);
}

TEST(DateBinding, ADateMayBeTypedWithItsSignsOrWithout) {
  struct Typed {
    const char* locale;
    QDateTimeEdit::Section first;
    const char* keys;
  };
  for (const Typed& typed : {Typed{"en_US", QDateTimeEdit::MonthSection, "6/3/2023"},
                             {"en_US", QDateTimeEdit::MonthSection, "06/03/2023"},
                             {"de_DE", QDateTimeEdit::DaySection, "03.06.2023"},
                             {"de_DE", QDateTimeEdit::DaySection, "03062023"},
                             {"sv_SE", QDateTimeEdit::YearSection, "2023-06-03"},
                             {"fi_FI", QDateTimeEdit::DaySection, "3.6.2023"}}) {
    const platform::locale::ScopedLocale system(QString::fromLatin1(typed.locale));
    DTPicker control(u"dtpStartDate"_s);
    control.setValue(Date::of(2024, 5, 15));
    QDateEdit edit;
    bind(control, &edit);
    edit.setSelectedSection(typed.first);  // as the Tab key does on the way in
    QTest::keyClicks(&edit, QString::fromLatin1(typed.keys));
    EXPECT_EQ(control.Value(), Date::of(2023, 6, 3)) << typed.locale << ' ' << typed.keys;
  }
}

TEST(DateBinding, ADateMayBeTypedOverTheWholeDateThatIsSelected) {
  for (const auto& [locale, keys] :
       {std::pair("en_US", "06/03/2023"), {"de_DE", "3.6.2023"}, {"hu_HU", "20230603"}}) {
    const platform::locale::ScopedLocale system(QString::fromLatin1(locale));
    DTPicker control(u"dtpStartDate"_s);
    control.setValue(Date::of(2024, 11, 15));
    QDateEdit edit;
    bind(control, &edit);
    edit.findChild<QLineEdit*>()->selectAll();
    QTest::keyClicks(&edit, QString::fromLatin1(keys));
    EXPECT_EQ(control.Value(), Date::of(2023, 6, 3)) << locale;
  }
}

TEST(DateBinding, ADigitTypedIntoAFullPartBeginsItAnew) {
  const platform::locale::ScopedLocale american(u"en_US"_s);
  DTPicker control(u"dtpStartDate"_s);
  control.setValue(Date::of(2024, 11, 15));
  QDateEdit edit;
  bind(control, &edit);
  edit.show();
  auto* line = edit.findChild<QLineEdit*>();
  const auto clickInto = [&](int position) {
    QTest::mouseClick(line, Qt::LeftButton);
    line->deselect();
    line->setCursorPosition(position);
  };
  clickInto(1);
  QTest::keyClicks(&edit, u"10"_s);
  EXPECT_EQ(control.Value(), Date::of(2024, 10, 15));
  clickInto(1);
  QTest::keyClicks(&edit, u"1"_s);
  clickInto(1);
  QTest::keyClicks(&edit, u"2"_s);
  EXPECT_EQ(control.Value(), Date::of(2024, 2, 15)) << "not 12: a click begins anew";
}

TEST(DateBinding, ADigitOfAPartMayBeCorrected) {
  const platform::locale::ScopedLocale american(u"en_US"_s);
  DTPicker control(u"dtpStartDate"_s);
  control.setValue(Date::of(2024, 11, 15));
  QDateEdit edit;
  bind(control, &edit);
  auto* line = edit.findChild<QLineEdit*>();
  line->setCursorPosition(5);
  QTest::keyClick(&edit, Qt::Key_Backspace);
  QTest::keyClicks(&edit, u"7"_s);
  EXPECT_EQ(control.Value(), Date::of(2024, 11, 17));
  line->setSelection(3, 1);
  QTest::keyClicks(&edit, u"2"_s);
  EXPECT_EQ(control.Value(), Date::of(2024, 11, 27));
}

TEST(DateBinding, ADayMayBeTypedThatTheMonthOrYearBeforeLacks) {
  struct Typed {
    const char* locale;
    Date shown;
    const char* keys;
    Date meant;
  };
  for (const Typed& typed : {Typed{"de_DE", Date::of(2026, 2, 15), "31.12.2026", Date::of(2026, 12, 31)},
                             {"de_DE", Date::of(2026, 2, 15), "29.02.2024", Date::of(2024, 2, 29)},
                             {"de_DE", Date::of(2026, 3, 15), "29.02.2024", Date::of(2024, 2, 29)},
                             {"de_DE", Date::of(2026, 4, 15), "31.5.2026", Date::of(2026, 5, 31)},
                             {"de_DE", Date::of(2026, 2, 15), "3.5.2026", Date::of(2026, 5, 3)},
                             {"de_DE", Date::of(2026, 2, 15), "31122026", Date::of(2026, 12, 31)},
                             {"en_US", Date::of(2026, 11, 21), "2/29/2024", Date::of(2024, 2, 29)},
                             {"en_US", Date::of(2026, 11, 30), "2/3/2026", Date::of(2026, 2, 3)},
                             {"en_US", Date::of(2026, 2, 28), "12/31/2025", Date::of(2025, 12, 31)},
                             {"sv_SE", Date::of(2024, 2, 29), "2023-12-31", Date::of(2023, 12, 31)}}) {
    const platform::locale::ScopedLocale system(QString::fromLatin1(typed.locale));
    DTPicker control(u"dtpStartDate"_s);
    control.setValue(typed.shown);
    QDateEdit edit;
    bind(control, &edit);
    edit.setSelectedSection(edit.sectionAt(0));
    QTest::keyClicks(&edit, QString::fromLatin1(typed.keys));
    EXPECT_EQ(control.Value(), typed.meant)
        << typed.locale << ' ' << typed.keys << ' ' << edit.text().toStdString();
  }
}

TEST(DateBinding, ADayThatIsTypedCountsWithTheMonthHoweverTheFieldIsLeft) {
  const platform::locale::ScopedLocale german(u"de_DE"_s);
  const QList<std::function<void(QDateEdit&)>> ways{
      [](QDateEdit& edit) { QTest::keyClick(&edit, Qt::Key_Return); },
      [](QDateEdit& edit) { QTest::keyClick(&edit, Qt::Key_F5); },
      [](QDateEdit& edit) {
        QFocusEvent out(QEvent::FocusOut);
        QCoreApplication::sendEvent(&edit, &out);
      }};
  for (const auto& leave : ways) {
    DTPicker control(u"dtpStartDate"_s);
    control.setValue(Date::of(2026, 2, 15));
    QDateEdit edit;
    bind(control, &edit);
    edit.setSelectedSection(QDateTimeEdit::DaySection);
    QTest::keyClicks(&edit, u"31.1"_s);
    leave(edit);
    EXPECT_EQ(control.Value(), Date::of(2026, 1, 31));
    control.setValue(Date::of(2026, 3, 5));
    EXPECT_EQ(edit.date(), QDate(2026, 3, 5));
  }
}

TEST(DateBinding, TheCalendarDropsDownByTheKeysOfAnyDropDown) {
  const platform::locale::ScopedLocale swedish(u"sv_SE"_s);
  DTPicker control(u"dtpStartDate"_s);
  control.setValue(Date::of(2024, 5, 15));
  QDateEdit edit;
  bind(control, &edit);
  edit.show();
  for (const auto& [key, modifier] :
       {std::pair(Qt::Key_F4, Qt::NoModifier), {Qt::Key_Down, Qt::AltModifier}}) {
    QTest::keyClick(&edit, key, modifier);
    ASSERT_TRUE(edit.calendarWidget()->isVisible()) << key;
    EXPECT_EQ(control.Value(), Date::of(2024, 5, 15)) << "the same key alone would count days";
    edit.calendarWidget()->window()->close();
  }
}

TEST(DateBinding, ADateReadsFromLeftToRightInEveryLayout) {
  const platform::locale::ScopedLocale american(u"en_US"_s);
  QWidget window;
  window.setLayoutDirection(Qt::RightToLeft);
  DTPicker control(u"dtpStartDate"_s);
  control.setValue(Date::of(2024, 5, 15));
  auto* edit = new QDateEdit(&window);
  bind(control, edit);
  EXPECT_EQ(edit->text(), u"5/15/2024"_s);
}

TEST(DateBinding, ADateThatIsNotSetDoesNotComeBackAsAnother) {
  const platform::locale::ScopedLocale swedish(u"sv_SE"_s);
  DTPicker control(u"dtpEndDate"_s);
  QDateEdit edit;
  bind(control, &edit);
  EXPECT_EQ(control.Value(), Date());
  EXPECT_EQ(edit.date(), QDate(1899, 12, 30));
}

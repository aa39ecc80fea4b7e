#include "platform/forms/controls.h"

#include "platform/basic/failure.h"
#include "platform/forms/twips.h"
#include "tests/unit/platform/forms/eventlog.h"

#include <QSignalSpy>

using namespace platform::forms;
using platform::Failure;
using platform::basic::Date;
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

}  // namespace

TEST(Controls, AControlIsFoundByItsName) {
  CommandButton button(u"cmdOK"_s);
  EXPECT_EQ(button.Name(), u"cmdOK"_s);
  EXPECT_EQ(button.objectName(), u"cmdOK"_s);
}

TEST(Controls, AFreshControlIsVisibleEnabledAndPlain) {
  Label label(u"lblHours"_s);
  EXPECT_TRUE(label.Visible());
  EXPECT_TRUE(label.Enabled());
  EXPECT_EQ(label.Caption(), QString());
  EXPECT_EQ(label.ToolTipText(), QString());
  EXPECT_EQ(label.BackColor(), -1);
}

TEST(Controls, EachPropertyTellsTheFollowerOnceWhenItChanges) {
  Label label(u"lblHours"_s);
  QSignalSpy told(&label, &Control::propertyChanged);
  for (int twice = 0; twice < 2; ++twice) {
    label.setVisible(false);
    label.setEnabled(false);
    label.setToolTipText(u"tip"_s);
    label.setCaption(u"37.5"_s);
    label.setBackColor(0xD8E9EC);
  }
  EXPECT_EQ(told.count(), 5);
  EXPECT_EQ(label.Caption(), u"37.5"_s);
  EXPECT_EQ(label.BackColor(), 0xD8E9EC);
}

TEST(Controls, PlacingAControlWritesItsFourMeasuresAndTellsOnce) {
  ComboBox combo(u"cmbMeta1"_s);
  QSignalSpy placed(&combo, &Control::placed);
  combo.place(120, 240, 1700, 300);
  combo.setTop(555);
  EXPECT_EQ(combo.Left, 120);
  EXPECT_EQ(combo.Top, 555);
  EXPECT_EQ(combo.Width, 1700);
  EXPECT_EQ(combo.Height, 300);
  EXPECT_EQ(placed.count(), 2);
}

TEST(Twips, FifteenTwipsAreAPixel) {
  EXPECT_EQ(twipsToPixels(300), 20);
  EXPECT_EQ(twipsToPixels(307), 20);
  EXPECT_EQ(twipsToPixels(308), 21);
  EXPECT_EQ(twipsToPixels(0), 0);
  EXPECT_EQ(twipsToPixels(-300), -20);
  EXPECT_EQ(twipsToPixels(-308), -21);
  EXPECT_EQ(pixelsToTwips(20), 300);
}

TEST(CommandButton, CodeClicksAsTheUserDoes) {
  CommandButton button(u"cmdGetValues"_s);
  QSignalSpy clicks(&button, &CommandButton::Click);
  button.click();
  button.click();
  EXPECT_EQ(clicks.count(), 2);
}

TEST(CheckBox, ClicksWhenItsValueChangesAndTheHandlerReadsTheNewValue) {
  CheckBox box(u"chkGrid"_s);
  EventLog log;
  log.watch(box, &CheckBox::Click, u"Click"_s, [&] { return QString::number(box.Value()); });
  box.setValue(1);
  box.setValue(1);
  box.setValue(0);
  EXPECT_EQ(log.entries, QStringList({u"Click 1"_s, u"Click 0"_s}));
}

TEST(CheckBox, TheFollowerIsToldBeforeTheHandlerRuns) {
  CheckBox box(u"chkGrid"_s);
  EventLog log;
  log.watch(box, &CheckBox::Click, u"Click"_s);
  log.watch(box, &Control::propertyChanged, u"told"_s);
  box.setValue(1);
  EXPECT_EQ(log.entries, QStringList({u"told"_s, u"Click"_s}));
}

TEST(CheckBox, RefusesWhatIsNeitherSetNorClear) {
  CheckBox box(u"chkGrid"_s);
  EXPECT_EQ(failureNumber([&] { box.setValue(2); }), 380);
  EXPECT_EQ(box.Value(), 0);
}

TEST(CheckBox, AHandlerMaySetItBack) {
  CheckBox box(u"chkGrid"_s);
  EventLog log;
  QObject::connect(&box, &CheckBox::Click, &log, [&] {
    if (box.Value() == 1) box.setValue(0);
  });
  log.watch(box, &CheckBox::Click, u"Click"_s, [&] { return QString::number(box.Value()); });
  box.setValue(1);
  EXPECT_EQ(box.Value(), 0);
  EXPECT_EQ(log.entries, QStringList({u"Click 0"_s, u"Click 0"_s}));
}

TEST(CheckBox, AHandlerMayDestroyIt) {
  auto box = std::make_unique<CheckBox>(u"chkGrid"_s);
  QObject context;
  QObject::connect(box.get(), &CheckBox::Click, &context, [&] { box.reset(); });
  box->setValue(1);
  EXPECT_FALSE(box);
}

TEST(TextBox, ChangesWhenTheTextDiffers) {
  TextBox text(u"txtDays"_s);
  EventLog log;
  log.watch(text, &TextBox::Change, u"Change"_s, [&] { return text.Text(); });
  text.setText(u"7"_s);
  text.setText(u"7"_s);
  text.setText(u""_s);
  EXPECT_EQ(log.entries, QStringList({u"Change 7"_s, u"Change "_s}));
}

TEST(TextBox, AFreshOneTakesTheEmptyTextWithoutAChange) {
  TextBox text(u"txtDays"_s);
  QSignalSpy changes(&text, &TextBox::Change);
  text.setText(u""_s);
  EXPECT_EQ(changes.count(), 0);
}

TEST(ScrollBar, KeepsItsValueWithinItsEnds) {
  ScrollBar bar(u"vDaysBefore"_s);
  bar.Min = -60;
  bar.Max = -1;
  EventLog log;
  log.watch(bar, &ScrollBar::Change, u"Change"_s, [&] { return QString::number(bar.Value()); });
  bar.setValue(-7);
  bar.setValue(-7);
  bar.setValue(-99);
  bar.setValue(12);
  EXPECT_EQ(log.entries, QStringList({u"Change -7"_s, u"Change -60"_s, u"Change -1"_s}));
}

TEST(ScrollBar, ItsEndsMayStandTheOtherWayRound) {
  ScrollBar bar(u"vDaysBefore"_s);
  bar.Min = 10;
  bar.Max = 1;
  bar.setValue(5);
  EXPECT_EQ(bar.Value(), 5);
  bar.setValue(50);
  EXPECT_EQ(bar.Value(), 10);
}

TEST(ScrollBar, ATextBoxAndABarThatFollowEachOtherComeToRest) {
  TextBox text(u"txtDays"_s);
  ScrollBar bar(u"vDaysBefore"_s);
  bar.Min = -60;
  EventLog log;
  QObject::connect(&text, &TextBox::Change, &log, [&] { bar.setValue(-text.Text().toInt()); });
  QObject::connect(&bar, &ScrollBar::Change, &log, [&] { text.setText(QString::number(-bar.Value())); });
  log.watch(text, &TextBox::Change, u"text"_s);
  log.watch(bar, &ScrollBar::Change, u"bar"_s);
  text.setText(u"14"_s);
  EXPECT_EQ(bar.Value(), -14);
  EXPECT_EQ(text.Text(), u"14"_s);
  EXPECT_EQ(log.entries, QStringList({u"bar"_s, u"text"_s}));
}

TEST(DTPicker, HoldsADateAndTellsItsFollowerOnly) {
  DTPicker picker(u"dtpStartDate"_s);
  QSignalSpy told(&picker, &Control::propertyChanged);
  EXPECT_EQ(picker.Value(), Date());
  picker.setValue(Date::of(2024, 5, 15));
  picker.setValue(Date::of(2024, 5, 15));
  EXPECT_EQ(picker.Value(), Date::of(2024, 5, 15));
  EXPECT_EQ(told.count(), 1);
}

TEST(DTPicker, RefusesWhatIsNoDate) {
  DTPicker picker(u"dtpStartDate"_s);
  EXPECT_EQ(failureNumber([&] { picker.setValue(Date(qQNaN())); }), 380);
  EXPECT_EQ(picker.Value(), Date());
}

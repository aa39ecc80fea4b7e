#include "platform/forms/widgets/bind.h"
#include "platform/process/process.h"
#include "tests/support/testworld.h"
#include "tests/unit/platform/forms/eventlog.h"

#include <QCheckBox>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QPointer>
#include <QPushButton>
#include <QRadioButton>
#include <QScrollBar>
#include <QSignalSpy>
#include <QTest>
#include <QVBoxLayout>

using namespace platform::forms;
using tests::EventLog;
using namespace Qt::StringLiterals;

TEST(Binding, AWidgetBearsTheControlsNameTooltipAndStates) {
  QWidget form;
  CommandButton control(u"cmdPrint"_s);
  control.setCaption(u"&Print"_s);
  control.setToolTipText(u"Prints the list"_s);
  control.setEnabled(false);
  auto* button = new QPushButton(&form);
  bind(control, button);
  EXPECT_EQ(form.findChild<QPushButton*>(u"cmdPrint"_s), button);
  EXPECT_EQ(button->text(), u"&Print"_s);
  EXPECT_EQ(button->toolTip(), u"Prints the list"_s);
  EXPECT_FALSE(button->isEnabled());
  control.setEnabled(true);
  control.setCaption(u"P&rint all"_s);
  control.setToolTipText(u"Prints all"_s);
  EXPECT_TRUE(button->isEnabled());
  EXPECT_EQ(button->text(), u"P&rint all"_s);
  EXPECT_EQ(button->toolTip(), u"Prints all"_s);
}

TEST(Binding, TheAccessibleNameIsTheExplicitTextOrTheCaptionOrTheTooltip) {
  CommandButton button(u"cmdSave"_s), tipped(u"cmdTip"_s), told(u"cmdTold"_s), bare(u"cmdBare"_s);
  button.setCaption(u"R&&D &save"_s);
  button.setToolTipText(u"tip"_s);
  tipped.setToolTipText(u"Saves the week"_s);
  told.setCaption(u"..."_s);
  QPushButton one, two, three, four;
  bind(button, &one);
  bind(tipped, &two);
  bind(told, &three, u"Choose a file"_s);
  bind(bare, &four);
  EXPECT_EQ(one.accessibleName(), u"R&D save"_s);
  EXPECT_EQ(two.accessibleName(), u"Saves the week"_s);
  EXPECT_EQ(three.accessibleName(), u"Choose a file"_s);
  EXPECT_EQ(four.accessibleName(), QString());
}

TEST(Binding, AControlsOwnAccessibleNameStandsBeforeItsCaption) {
  ScrollBar bar(u"vDaysBefore"_s);
  CommandButton told(u"cmdTold"_s);
  QScrollBar one;
  QPushButton two;
  bind(bar, &one);
  bind(told, &two, u"Choose a file"_s);
  bar.setCaption(u"caption"_s);
  bar.setAccessibleName(u"Days before"_s);
  told.setAccessibleName(u"another"_s);
  EXPECT_EQ(one.accessibleName(), u"Days before"_s);
  EXPECT_EQ(two.accessibleName(), u"Choose a file"_s);
}

TEST(Binding, AUseLeavesTheMnemonicThatTheFormHasGiven) {
  CommandButton get(u"cmdGetValues"_s);
  CheckBox grid(u"chkGrid"_s);
  OptionButton option(u"optWeek"_s);
  QPushButton button;
  QCheckBox box;
  QRadioButton radio;
  get.setCaption(u"Get values"_s);
  grid.setCaption(u"Grid"_s);
  option.setCaption(u"Week"_s);
  bind(get, &button);
  bind(grid, &box);
  bind(option, &radio);
  button.setText(u"Get &values"_s);
  box.setText(u"&Grid"_s);
  radio.setText(u"&Week"_s);
  button.click();
  box.click();
  radio.click();
  get.setEnabled(false);
  EXPECT_EQ(button.text(), u"Get &values"_s);
  EXPECT_EQ(box.text(), u"&Grid"_s);
  EXPECT_EQ(radio.text(), u"&Week"_s);
  get.setCaption(u"Fetch"_s);
  EXPECT_EQ(button.text(), u"Fetch"_s);
}

TEST(Binding, ATooltipIsPlainTextWhateverItLooksLike) {
  Label control(u"lblYear"_s);
  control.setToolTipText(u"<b>1 & 2</b>"_s);
  QLabel label;
  bind(control, &label);
  EXPECT_EQ(label.toolTip(), u"<span>&lt;b&gt;1 &amp; 2&lt;/b&gt;</span>"_s);
}

TEST(Binding, AWidgetHidesAndShowsWithItsControl) {
  QWidget form;
  auto* layout = new QVBoxLayout(&form);
  CheckBox hidden(u"chkHidden"_s), seen(u"chkSeen"_s);
  hidden.setVisible(false);
  auto* one = new QCheckBox;
  auto* two = new QCheckBox;
  bind(hidden, one);
  bind(seen, two);
  EXPECT_FALSE(two->isVisible()) << "a widget without a parent must not become a window";
  layout->addWidget(one);
  layout->addWidget(two);
  form.show();
  EXPECT_FALSE(one->isVisible());
  EXPECT_TRUE(two->isVisible());
  hidden.setVisible(true);
  seen.setVisible(false);
  EXPECT_TRUE(one->isVisible());
  EXPECT_FALSE(two->isVisible());
}

TEST(Binding, ABackgroundColourIsShownWithReadableTextAndGoesAgain) {
  QWidget form;
  CheckBox control(u"chkGrid"_s);
  auto* box = new QCheckBox(&form);
  bind(control, box);
  EXPECT_FALSE(box->autoFillBackground());
  control.setBackColor(0x800000);
  EXPECT_TRUE(box->autoFillBackground());
  EXPECT_EQ(box->palette().color(QPalette::Window), QColor(0, 0, 0x80));
  EXPECT_EQ(box->palette().color(QPalette::WindowText), QColor(Qt::white));
  control.setBackColor(-1);
  EXPECT_FALSE(box->autoFillBackground());
  EXPECT_EQ(box->palette().color(QPalette::Window), form.palette().color(QPalette::Window));
}

TEST(Binding, APlaceInTwipsMovesAWidgetThatNoLayoutOwns) {
  QWidget form;
  CommandButton control(u"cmdFree"_s);
  control.Width = 1500;
  control.Height = 300;
  control.Left = 150;
  auto* button = new QPushButton(&form);
  bind(control, button);
  EXPECT_EQ(button->geometry(), QRect(10, 0, 100, 20));
  control.setTop(457);
  EXPECT_EQ(button->geometry(), QRect(10, 30, 100, 20));
  EXPECT_EQ(control.Top, 457) << "the place that was set stays, whatever a pixel makes of it";
}

TEST(Binding, ALayoutTellsTheControlItsPlaceAndIsNotOverruled) {
  QWidget form;
  auto* outer = new QVBoxLayout(&form);
  auto* inner = new QVBoxLayout;
  outer->addLayout(inner);
  outer->setContentsMargins(8, 4, 8, 4);
  TextBox control(u"txtDays"_s);
  auto* edit = new QLineEdit;
  inner->addWidget(edit);
  bind(control, edit);
  form.resize(200, 100);
  form.show();
  ASSERT_EQ(edit->x(), 8);
  EXPECT_EQ(control.Left, 8 * 15);
  EXPECT_EQ(control.Top, edit->y() * 15);
  EXPECT_EQ(control.Width, edit->width() * 15);
  EXPECT_EQ(control.Height, edit->height() * 15);
  const QRect before = edit->geometry();
  control.place(0, 0, 15, 15);
  EXPECT_EQ(edit->geometry(), before);
}

TEST(Binding, ALabelShowsItsCaptionAsPlainTextAndItsMnemonicOnlyForABuddy) {
  Label total(u"lblHours"_s), year(u"lblYear"_s);
  total.setCaption(u"<b>37.5</b> R&&D"_s);
  year.setCaption(u"&Year"_s);
  QWidget form;
  auto* alone = new QLabel(&form);
  auto* guiding = new QLabel(&form);
  auto* edit = new QLineEdit(&form);
  guiding->setBuddy(edit);
  bind(total, alone);
  bind(year, guiding);
  EXPECT_EQ(alone->textFormat(), Qt::PlainText);
  EXPECT_EQ(alone->text(), u"<b>37.5</b> R&D"_s);
  EXPECT_EQ(guiding->text(), u"&Year"_s);
  total.setCaption(u"40"_s);
  EXPECT_EQ(alone->text(), u"40"_s);
  EXPECT_EQ(alone->accessibleName(), u"40"_s);
}

TEST(Binding, AFrameShowsItsCaptionAndHidesItsContents) {
  QWidget form;
  auto* box = new QGroupBox(&form);
  auto* inside = new QLineEdit(box);
  Frame control(u"fraPeriod"_s);
  control.setCaption(u"Period"_s);
  bind(control, box);
  form.show();
  EXPECT_EQ(box->title(), u"Period"_s);
  EXPECT_TRUE(inside->isVisible());
  control.setVisible(false);
  EXPECT_FALSE(inside->isVisible());
}

TEST(Binding, TheMouseTheKeyboardAndTheMnemonicClickAButton) {
  QWidget form;
  auto* layout = new QVBoxLayout(&form);
  auto* button = new QPushButton;
  auto* other = new QLineEdit;
  layout->addWidget(other);
  layout->addWidget(button);
  CommandButton control(u"cmdGetValues"_s);
  control.setCaption(u"&Get values"_s);
  bind(control, button);
  QSignalSpy clicks(&control, &CommandButton::Click);
  form.show();
  QTest::mouseClick(button, Qt::LeftButton);
  EXPECT_EQ(clicks.count(), 1);
  QTest::keyClick(button, Qt::Key_Space);
  EXPECT_EQ(clicks.count(), 2);
  form.activateWindow();
  ASSERT_TRUE(QTest::qWaitForWindowActive(&form));
  QTest::keyClick(other, Qt::Key_G, Qt::AltModifier);
  ASSERT_TRUE(clicks.count() == 3 || clicks.wait());
  EXPECT_EQ(clicks.count(), 3);
  control.setEnabled(false);
  QTest::mouseClick(button, Qt::LeftButton);
  EXPECT_EQ(clicks.count(), 3);
}

TEST(Binding, CodeThatSetsACheckBoxClicksOnceAndSoDoesTheUser) {
  CheckBox control(u"chkGrid"_s);
  QCheckBox box;
  bind(control, &box);
  EventLog log;
  log.watch(control, &CheckBox::Click, u"Click"_s, [&] { return box.isChecked() ? u"on"_s : u"off"_s; });
  control.setValue(1);
  EXPECT_EQ(log.entries, QStringList{u"Click on"_s});
  box.resize(box.sizeHint());
  QTest::keyClick(&box, Qt::Key_Space);
  EXPECT_EQ(log.entries, QStringList({u"Click on"_s, u"Click off"_s}));
  EXPECT_EQ(control.Value(), 0);
}

TEST(Binding, AHandlerThatTakesTheUsersTickBackIsSeenInTheWidget) {
  CheckBox control(u"chkGrid"_s);
  QCheckBox box;
  bind(control, &box);
  QObject context;
  QObject::connect(&control, &CheckBox::Click, &context, [&] {
    if (control.Value() == 1) control.setValue(0);
  });
  box.resize(box.sizeHint());
  QTest::keyClick(&box, Qt::Key_Space);
  EXPECT_EQ(control.Value(), 0);
  EXPECT_FALSE(box.isChecked());
}

TEST(Binding, TypingChangesATextBoxLetterByLetterAndCodeOnce) {
  TextBox control(u"txtDays"_s);
  QLineEdit edit;
  bind(control, &edit);
  EventLog log;
  log.watch(control, &TextBox::Change, u"Change"_s, [&] { return control.Text(); });
  QTest::keyClicks(&edit, u"14"_s);
  EXPECT_EQ(log.entries, QStringList({u"Change 1"_s, u"Change 14"_s}));
  log.entries.clear();
  control.setText(u"7"_s);
  EXPECT_EQ(edit.text(), u"7"_s);
  EXPECT_EQ(log.entries, QStringList{u"Change 7"_s});
}

TEST(Binding, TypingInTheMiddleOfATextKeepsTheCursorThere) {
  TextBox control(u"txtSubject"_s);
  control.setText(u"ad"_s);
  QLineEdit edit;
  bind(control, &edit);
  edit.setCursorPosition(1);
  QTest::keyClicks(&edit, u"bc"_s);
  EXPECT_EQ(control.Text(), u"abcd"_s);
  EXPECT_EQ(edit.cursorPosition(), 3);
}

TEST(Binding, AControlMayGoBeforeItsWidget) {
  QCheckBox box;
  QPushButton button;
  {
    CheckBox control(u"chkGrid"_s);
    CommandButton command(u"cmdOK"_s);
    bind(control, &box);
    bind(command, &button);
  }
  QTest::keyClick(&box, Qt::Key_Space);
  QTest::keyClick(&button, Qt::Key_Space);
  box.resize(70, 30);
  EXPECT_TRUE(box.isChecked());
}

TEST(Binding, AWidgetMayGoBeforeItsControl) {
  CheckBox control(u"chkGrid"_s);
  QSignalSpy clicks(&control, &CheckBox::Click);
  {
    QCheckBox box;
    bind(control, &box);
  }
  control.setValue(1);
  control.setCaption(u"Grid"_s);
  control.place(1, 2, 3, 4);
  EXPECT_EQ(clicks.count(), 1);
}

TEST(Binding, AClickMayDestroyTheWholeForm) {
  QPointer<QWidget> form = new QWidget;
  auto* button = new QPushButton(form);
  auto control = std::make_unique<CommandButton>(u"cmdCancel"_s);
  bind(*control, button);
  QObject context;
  QObject::connect(control.get(), &CommandButton::Click, &context, [&] {
    control.reset();
    delete form;
  });
  QTest::mouseClick(button, Qt::LeftButton);
  EXPECT_FALSE(form);
}

TEST(Binding, AnEndOfTheProcessInAHandlerStopsAtTheWidget) {
  tests::TestWorld world;
  world.expectEnds(1);
  CommandButton control(u"cmdCancel"_s);
  QPushButton button;
  bind(control, &button);
  QObject context;
  QObject::connect(&control, &CommandButton::Click, &context,
                   [] { platform::process::Process::current().end(); });
  QTest::mouseClick(&button, Qt::LeftButton);
  EXPECT_EQ(world.process.ends, 1);
}

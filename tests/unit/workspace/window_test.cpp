#include "workspace/FlowLayout.h"
#include "workspace/FormMnemonics.h"
#include "workspace/frm2003Report.h"
#include "workspaceworld.h"

#include <QAbstractItemView>
#include <QAccessible>
#include <QApplication>
#include <QComboBox>
#include <QDateEdit>
#include <QLabel>
#include <QPushButton>
#include <QTest>

namespace tests {
namespace {

class Window : public testing::Test {
 protected:
  ReportForm& open(bool pickers = true) {
    if (pickers) w.withDatePickers();
    w.workspace->gOWCVersion = 11;
    w.workspace->gReportForm = w.form = frm2003Report();
    w.form->Load();
    w.form->Show();
    for (QWidget* top : QApplication::topLevelWidgets())
      if (top->objectName() == u"frm2003Report") window = top;
    return *w.form;
  }
  template <class Widget = QWidget>
  Widget* control(const char* name) const {
    return window->findChild<Widget*>(QString::fromLatin1(name));
  }
  bool seen(const char* name) const {
    auto* widget = control(name);
    return widget && widget->isVisibleTo(window);
  }
  WorkspaceWorld w;
  QWidget* window = nullptr;
};

TEST_F(Window, HoldsEveryControlUnderItsName) {
  open();
  for (const char* name :
       {"exsThisWeek",       "excThisWeek",  "tbsViews",     "chkGrid",   "cmbFilterCalendar",
        "lblFilterCalendar", "fraPeriod",    "cmbYear",      "cmbMonth",  "cmbDay",
        "lblYear",           "lblMonth",     "lblDay",       "txtDays",   "lblDaysBefore",
        "vDaysBefore",       "dtpStartDate", "dtpEndDate",   "lblStart",  "lblEnd",
        "cmbWeek",           "lblWeek",      "cmbMeta1",     "cmbMeta2",  "cmbMeta3",
        "cmdGetValues",      "cmdOK",        "cmdCancel",    "cmdAddNew", "cmdSaveChanges",
        "cmdPrint",          "lblHours",     "lblTotalHours"})
    EXPECT_NE(control(name), nullptr) << name;
}

TEST_F(Window, BearsTheTitleAndSaysHowManyRowsThereAre) {
  w.add(QStringLiteral("Work"), at(15, 9), 60, QStringLiteral(";Acme;Website;Design"));
  open();
  EXPECT_EQ(window->windowTitle(), QStringLiteral("Hourbook for Outlook Reporting Report"));
  EXPECT_EQ(control<QLabel>("status")->text(), QStringLiteral("Appointments: 1"));
}

TEST_F(Window, ShowsTheDatePickersInPlaceOfTheDropDowns) {
  open();
  EXPECT_TRUE(seen("dtpStartDate") && seen("dtpEndDate") && seen("lblStart") && seen("lblEnd"));
  EXPECT_FALSE(seen("fraPeriod"));
}

TEST_F(Window, ShowsTheDropDownsWithoutDatePickers) {
  open(false);
  EXPECT_TRUE(seen("fraPeriod") && seen("cmbYear") && seen("txtDays") && seen("vDaysBefore"));
  EXPECT_EQ(control("dtpStartDate"), nullptr);
}

TEST_F(Window, HidesWhatBelongsToTheGrid) {
  open();
  for (const char* name :
       {"cmbWeek", "lblWeek", "cmdAddNew", "cmdSaveChanges", "cmbMeta1", "cmbMeta2", "cmbMeta3"})
    EXPECT_FALSE(seen(name)) << name;
}

TEST_F(Window, FetchesForDatesPickedByTheUser) {
  w.add(QStringLiteral("On Monday"), at(13, 9), 60, QStringLiteral(";Acme;Website;Design"));
  open();
  control<QDateEdit>("dtpStartDate")->setDate(QDate(2024, 5, 13));
  QTest::mouseClick(control("cmdGetValues"), Qt::LeftButton);
  EXPECT_EQ(w.subjects(), QStringList{QStringLiteral("On Monday")});
  EXPECT_EQ(control<QAbstractItemView>("exsThisWeek")->model()->rowCount(), 1);
}

TEST_F(Window, ShowsAnotherFilterWhenTheUserChoosesIt) {
  w.add(QStringLiteral("Unmarked"), at(15, 9));
  open();
  control<QComboBox>("cmbFilterCalendar")->setFocus();
  QTest::keyClick(control("cmbFilterCalendar"), Qt::Key_End);
  EXPECT_EQ(w.form->cmbFilterCalendar.ListIndex(), 2);
  EXPECT_EQ(w.subjects(), QStringList{QStringLiteral("Unmarked")});
}

TEST_F(Window, GivesEachButtonAKeyOfItsOwn) {
  open();
  QSet<QKeySequence> keys;
  for (const char* name : {"cmdGetValues", "cmdPrint", "cmdOK", "cmdCancel"}) {
    const QKeySequence key = control<QPushButton>(name)->shortcut();
    EXPECT_FALSE(key.isEmpty()) << name;
    EXPECT_FALSE(keys.contains(key)) << name;
    keys.insert(key);
  }
}

TEST_F(Window, PressesOKOnEnter) {
  open();
  EXPECT_TRUE(control<QPushButton>("cmdOK")->isDefault());
}

TEST_F(Window, StaysOpenOnEscape) {
  open();
  QTest::keyClick(window, Qt::Key_Escape);
  EXPECT_TRUE(window->isVisible());
}

TEST_F(Window, EndsTheProgramWhenItIsClosed) {
  open();
  EXPECT_ENDS_PROCESS(window->close());
}

TEST_F(Window, EndsTheProgramOnCancel) {
  open();
  EXPECT_ENDS_PROCESS(QTest::mouseClick(control("cmdCancel"), Qt::LeftButton));
  EXPECT_FALSE(window->isVisible());
}

TEST_F(Window, LeadsTheKeyboardThroughItsControlsInReadingOrder) {
  open();
  QStringList order;
  const QStringList wanted{QStringLiteral("dtpStartDate"), QStringLiteral("dtpEndDate"),
                           QStringLiteral("cmdGetValues"), QStringLiteral("cmbFilterCalendar"),
                           QStringLiteral("exsThisWeek"),  QStringLiteral("tbsViews"),
                           QStringLiteral("cmdOK"),        QStringLiteral("cmdCancel")};
  QWidget* const first = control("dtpStartDate");
  QWidget* widget = first;
  do {
    if (wanted.contains(widget->objectName())) order.append(widget->objectName());
    widget = widget->nextInFocusChain();
  } while (widget != first);
  EXPECT_EQ(order, wanted);
}

TEST_F(Window, HasANameForEveryControlThatTakesTheKeyboard) {
  open(false);
  for (QWidget* widget : window->findChildren<QWidget*>()) {
    if (widget->objectName().isEmpty() || widget->objectName().startsWith(u"qt_")) continue;
    if (widget->focusPolicy() == Qt::NoFocus || !widget->isVisibleTo(window)) continue;
    QAccessibleInterface* accessible = QAccessible::queryAccessibleInterface(widget);
    ASSERT_NE(accessible, nullptr);
    EXPECT_FALSE(accessible->text(QAccessible::Name).isEmpty()) << widget->objectName().toStdString();
  }
}

TEST_F(Window, ShowsTheTabsOfTheStatistics) {
  open();
  QCoreApplication::processEvents();
  EXPECT_GE(control("tbsViews")->height(), window->fontMetrics().height());
}

TEST_F(Window, BreaksItsPeriodRowWhereItIsNarrow) {
  open();
  window->resize(900, 600);
  QCoreApplication::processEvents();
  const int wide = control("exsThisWeek")->mapTo(window, QPoint()).y();
  window->resize(360, 600);
  QCoreApplication::processEvents();
  EXPECT_GT(control("exsThisWeek")->mapTo(window, QPoint()).y(), wide);
  const QWidget* filter = control("cmbFilterCalendar");
  EXPECT_LE(filter->mapTo(window, QPoint(filter->width(), 0)).x(), window->width());
}

TEST_F(Window, ShowsTheHourglassWhileItFetches) {
  ReportForm& form = open();
  form.setMousePointer(vbHourglass);
  ASSERT_NE(QApplication::overrideCursor(), nullptr);
  EXPECT_EQ(QApplication::overrideCursor()->shape(), Qt::WaitCursor);
  form.setMousePointer(vbHourglass);
  form.setMousePointer(vbDefault);
  EXPECT_EQ(QApplication::overrideCursor(), nullptr);
}

TEST(Mnemonics, TakeTheFirstFreeInitialAndThenAnyFreeLetter) {
  EXPECT_EQ(
      FormMnemonics::assigned({QStringLiteral("Print"), QStringLiteral("Get Posted"), QStringLiteral("Go"),
                               QStringLiteral("Gp"), QString(), QStringLiteral("R&D")}),
      (QStringList{QStringLiteral("&Print"), QStringLiteral("&Get Posted"), QStringLiteral("G&o"),
                   QStringLiteral("Gp"), QString(), QStringLiteral("&R&&D")}));
}

TEST(FlowingRow, TakesNoRoomForHiddenItems) {
  QWidget page;
  auto* flow = new FlowLayout(&page);
  auto* shown = new QLabel(QStringLiteral("shown"));
  auto* hidden = new QLabel(QStringLiteral("hidden"));
  flow->addWidget(shown);
  const QSize alone = flow->sizeHint();
  flow->addWidget(hidden);
  EXPECT_GT(flow->sizeHint().width(), alone.width());
  hidden->hide();
  EXPECT_EQ(flow->sizeHint(), alone);
}

TEST(FlowingRow, BeginsANewRowWhereTheWidthEnds) {
  QWidget page;
  auto* flow = new FlowLayout(&page);
  for (int i = 0; i < 3; ++i) {
    auto* box = new QWidget;
    box->setFixedSize(100, 20);
    flow->addWidget(box);
  }
  flow->setContentsMargins({});
  flow->setSpacing(10);
  EXPECT_EQ(flow->heightForWidth(320), 20);
  EXPECT_EQ(flow->heightForWidth(319), 50);
  EXPECT_EQ(flow->heightForWidth(100), 80);
}

}  // namespace
}  // namespace tests

#include "reportwindow.h"
#include "workspace/FlowLayout.h"

#include <QAbstractItemView>
#include <QComboBox>
#include <QDateEdit>
#include <QPushButton>

namespace tests {
namespace {

/// Lets the box be ticked, and does nothing.
struct IdleGrid : GridView {
  void subAddGrid(ReportForm&) override {}
  void subDisplayNonGridItems(bool, ReportForm&) override {}
  void subStartWeek() override {}
  void subAddAppToGrid(platform::outlook::AppointmentItem&, cMarking&) override {}
  void subFillGrid() override {}
  void subBuildMetaGrid() override {}
  void subSumRowToGrid(bool) override {}
  void subSaveGridChanges() override {}
  bool fncHasUnsavedHours() const override { return false; }
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

TEST_F(Window, BearsTheTitle) {
  open();
  EXPECT_EQ(window->windowTitle(), QStringLiteral("Hourbook for Outlook Reporting Report"));
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

TEST_F(Window, KeepsTheKeyOfEachButtonThroughItsUse) {
  w.workspace->newGridView = [] { return std::make_shared<IdleGrid>(); };
  open();
  w.form->cmdAddNew.setVisible(true);
  w.form->cmdSaveChanges.setVisible(true);
  w.form->cmdPrint.setEnabled(true);
  const QHash<QString, QString> before = altKeys();
  for (const char* name : {"cmdGetValues", "chkGrid", "cmdAddNew", "cmdSaveChanges", "cmdPrint", "cmdOK"}) {
    EXPECT_FALSE(before.value(QString::fromLatin1(name)).isEmpty()) << name;
    control<QAbstractButton>(name)->click();
    EXPECT_EQ(altKeys(), before) << name;
  }
  EXPECT_ENDS_PROCESS(control<QAbstractButton>("cmdCancel")->click());
  EXPECT_EQ(control<QAbstractButton>("cmdCancel")->shortcut().toString(),
            before.value(QStringLiteral("cmdCancel")));
}

TEST_F(Window, GivesEachVisibleCaptionAKeyOfItsOwn) {
  open();
  expectAKeyForEach({QStringLiteral("lblStart"), QStringLiteral("lblEnd"), QStringLiteral("cmdGetValues"),
                     QStringLiteral("chkGrid"), QStringLiteral("lblFilterCalendar"),
                     QStringLiteral("cmdPrint"), QStringLiteral("cmdOK"), QStringLiteral("cmdCancel")});
}

TEST_F(Window, GivesEachVisibleCaptionAKeyOfItsOwnWithoutDatePickersToo) {
  open(false);
  expectAKeyForEach({QStringLiteral("lblYear"), QStringLiteral("lblMonth"), QStringLiteral("lblDay"),
                     QStringLiteral("lblDaysBefore"), QStringLiteral("cmdGetValues"),
                     QStringLiteral("chkGrid"), QStringLiteral("lblFilterCalendar"),
                     QStringLiteral("cmdPrint"), QStringLiteral("cmdOK"), QStringLiteral("cmdCancel")});
}

TEST_F(Window, GivesEachVisibleCaptionAKeyOfItsOwnInAnotherLanguage) {
  w.shell->LNGFROM = QStringLiteral("Från");
  w.shell->LNGTO = QStringLiteral("Till");
  w.shell->LNGGETVALUES = QStringLiteral("Hämta");
  w.shell->LNGGRID = QStringLiteral("Tabell");
  w.shell->LNGSHOW = QStringLiteral("Visa");
  w.shell->LNGPRINT = QStringLiteral("Skriv ut");
  w.shell->LNGCANCEL = QStringLiteral("Avbryt");
  open();
  expectAKeyForEach({QStringLiteral("lblStart"), QStringLiteral("lblEnd"), QStringLiteral("cmdGetValues"),
                     QStringLiteral("chkGrid"), QStringLiteral("lblFilterCalendar"),
                     QStringLiteral("cmdPrint"), QStringLiteral("cmdOK"), QStringLiteral("cmdCancel")});
  EXPECT_EQ(altKeys().value(QStringLiteral("cmdGetValues")), QStringLiteral("Alt+H"));
}

TEST_F(Window, TakesNoLetterForWhatIsHidden) {
  open();
  // The labels of the hidden drop-downs come before the buttons and would have taken them.
  w.form->lblYear.setCaption(QStringLiteral("P"));
  w.form->lblWeek.setCaption(QStringLiteral("O"));
  EXPECT_EQ(altKeys().value(QStringLiteral("cmdPrint")), QStringLiteral("Alt+P"));
  EXPECT_EQ(altKeys().value(QStringLiteral("cmdOK")), QStringLiteral("Alt+O"));
  w.form->fraPeriod.setVisible(true);
  EXPECT_EQ(altKeys().value(QStringLiteral("lblYear")), QStringLiteral("Alt+P"));
  EXPECT_NE(altKeys().value(QStringLiteral("cmdPrint")), QStringLiteral("Alt+P"));
  w.form->fraPeriod.setVisible(false);
  EXPECT_EQ(altKeys().value(QStringLiteral("cmdPrint")), QStringLiteral("Alt+P"));
}

TEST_F(Window, TakesBackTheKeysOfPickersThatAreRemoved) {
  open();
  w.form->lblStart.setCaption(QStringLiteral("Z"));
  w.form->lblEnd.setCaption(QStringLiteral("Z"));
  EXPECT_EQ(altKeys().value(QStringLiteral("lblEnd")), QString());
  w.form->removePicker(w.form->dtpStartDate);
  EXPECT_EQ(altKeys().value(QStringLiteral("lblEnd")), QStringLiteral("Alt+Z"));
}

TEST_F(Window, ShowsNothingOfThePickersWhenTheSecondCannotBeMade) {
  int made = 0;
  w.world.components.add<platform::forms::DTPicker>(QStringLiteral("MSComCtl2.DTPicker"), [&made] {
    if (++made == 2) throw platform::Failure(429, QStringLiteral("no more"));
    return std::make_shared<platform::forms::DTPicker>(QString());
  });
  openWithWhatThereIs();
  EXPECT_EQ(made, 2);
  EXPECT_TRUE(window->findChildren<QDateEdit*>().isEmpty());
  for (const char* name : {"dtpStartDate", "dtpEndDate", "lblStart", "lblEnd", "lnTo"})
    EXPECT_FALSE(seen(name)) << name;
  EXPECT_TRUE(seen("fraPeriod"));
}

TEST_F(Window, PressesOKOnEnter) {
  w.add(QStringLiteral("Work"), at(15, 9), 60, complete);
  open();
  for (const Qt::Key key : {Qt::Key_Return, Qt::Key_Enter}) {
    w.world.dialogs.expect(QStringLiteral("Are you sure you want to do this?"), 7);
    QTest::keyClick(window, key);
  }
  EXPECT_EQ(w.world.dialogs.shown.size(), 2);
}

TEST_F(Window, PressesOKOnEnterInAField) {
  w.add(QStringLiteral("Work"), at(15, 9), 60, complete);
  open(false);
  w.world.dialogs.expect(QStringLiteral("Are you sure you want to do this?"), 7);
  press("txtDays", Qt::Key_Return);
  EXPECT_EQ(w.world.dialogs.shown.size(), 1);
}

TEST_F(Window, PressesTheFocusedButtonOnEnterAndNotOK) {
  w.add(QStringLiteral("Work"), at(15, 9), 60, complete);
  open();
  w.add(QStringLiteral("New"), at(15, 10), 60, complete);
  press("cmdGetValues", Qt::Key_Return);
  EXPECT_EQ(w.subjects().size(), 2);
  EXPECT_TRUE(w.world.dialogs.shown.isEmpty());
  EXPECT_ENDS_PROCESS(press("cmdCancel", Qt::Key_Return));
  EXPECT_TRUE(w.world.dialogs.shown.isEmpty());
}

TEST_F(Window, FollowsALargerFont) {
  open(false);
  const auto heights = [&] {
    return QList<int>{control("vDaysBefore")->height(),
                      control("chkGrid")->minimumHeight(),
                      control("status")->parentWidget()->minimumHeight(),
                      control("exsThisWeek")->minimumHeight(),
                      control("excThisWeek")->minimumHeight(),
                      control("txtDays")->maximumWidth(),
                      control("lblHours")->fontMetrics().height()};
  };
  const QList<int> before = heights();
  QFont larger = window->font();
  larger.setPointSizeF(larger.pointSizeF() * 2);
  window->setFont(larger);
  QCoreApplication::processEvents();
  const QList<int> after = heights();
  for (qsizetype i = 0; i < before.size(); ++i) EXPECT_GT(after[i], before[i]) << i;
  EXPECT_EQ(control("vDaysBefore")->height(), control("txtDays")->sizeHint().height());
  EXPECT_TRUE(control("lblHours")->font().bold());
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

TEST_F(Window, HasANameForEveryControl) {
  open();
  for (auto* dropDown : {&w.form->cmbMeta1, &w.form->cmbMeta2, &w.form->cmbMeta3}) dropDown->setVisible(true);
  expectANameForEachControl();
  EXPECT_EQ(control("cmbMeta2")->accessibleName(), QStringLiteral("Project"));
  EXPECT_EQ(control("tbsViews")->accessibleName(), QStringLiteral("Statistics"));
  const auto nameOf = [&](const char* name) {
    return QAccessible::queryAccessibleInterface(control(name))->text(QAccessible::Name);
  };
  EXPECT_EQ(nameOf("dtpStartDate"), QStringLiteral("From"));
  EXPECT_EQ(nameOf("dtpEndDate"), QStringLiteral("To"));
}

TEST_F(Window, HasANameForEveryControlWithoutDatePickersToo) {
  open(false);
  expectANameForEachControl();
  EXPECT_EQ(control("vDaysBefore")->accessibleName(), QStringLiteral("Days before"));
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
  form.setMousePointer(11);
  ASSERT_NE(QApplication::overrideCursor(), nullptr);
  EXPECT_EQ(QApplication::overrideCursor()->shape(), Qt::WaitCursor);
  form.setMousePointer(11);
  form.setMousePointer(0);
  EXPECT_EQ(QApplication::overrideCursor(), nullptr);
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

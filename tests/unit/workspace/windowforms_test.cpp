#include "reportwindow.h"

namespace tests {
namespace {

/// What holds of the window of each generation, with and without date pickers.
class EachWindow : public Window, public testing::WithParamInterface<std::tuple<int, bool>> {
 protected:
  EachWindow() { generation = static_cast<qint16>(std::get<0>(GetParam())); }
  bool hasPickers() const { return std::get<1>(GetParam()); }
  bool hasChartType() const { return generation == 9; }
  ReportForm& openIt() { return open(hasPickers()); }
};

INSTANTIATE_TEST_SUITE_P(Generations, EachWindow,
                         testing::Combine(testing::Values(9, 10, 11), testing::Bool()));

TEST_P(EachWindow, BearsTheNameOfItsForm) {
  openIt();
  const QHash<int, QString> names{{9, QStringLiteral("frm2KReport")},
                                  {10, QStringLiteral("frmXPReport")},
                                  {11, QStringLiteral("frm2003Report")}};
  EXPECT_EQ(w.form->Name(), names[generation]);
  ASSERT_NE(window, nullptr);
  EXPECT_TRUE(window->isVisible());
}

TEST_P(EachWindow, HoldsTheSameControls) {
  openIt();
  QStringList names{"exsThisWeek", "excThisWeek", "tbsViews",       "chkGrid",      "cmbFilterCalendar",
                    "lblYear",     "lblMonth",    "lblDay",         "fraPeriod",    "lblFilterCalendar",
                    "cmbYear",     "cmbMonth",    "cmbDay",         "txtDays",      "lblDaysBefore",
                    "vDaysBefore", "lblWeek",     "cmbWeek",        "cmbMeta1",     "cmbMeta2",
                    "cmbMeta3",    "cmdOK",       "cmdGetValues",   "cmdCancel",    "cmdAddNew",
                    "cmdPrint",    "lblHours",    "cmdSaveChanges", "lblTotalHours"};
  if (hasPickers())
    names << "dtpStartDate"
          << "dtpEndDate"
          << "lblStart"
          << "lblEnd";
  for (const QString& name : names)
    EXPECT_EQ(window->findChildren<QWidget*>(name).size(), 1) << name.toStdString();
}

TEST_P(EachWindow, HasANameForEveryControl) {
  openIt();
  for (auto* dropDown : {&w.form->cmbMeta1, &w.form->cmbMeta2, &w.form->cmbMeta3}) dropDown->setVisible(true);
  for (auto* gridOnly : std::initializer_list<platform::forms::Control*>{
           &w.form->lblWeek, &w.form->cmbWeek, &w.form->cmdAddNew, &w.form->cmdSaveChanges})
    gridOnly->setVisible(true);
  expectANameForEachControl();
}

TEST_P(EachWindow, GivesEachVisibleCaptionAKeyOfItsOwn) {
  openIt();
  QStringList captions{"cmdGetValues", "chkGrid", "lblFilterCalendar", "cmdPrint", "cmdOK", "cmdCancel"};
  if (hasPickers())
    captions << "lblStart"
             << "lblEnd";
  else
    captions << "lblYear"
             << "lblMonth"
             << "lblDay"
             << "lblDaysBefore";
  const QHash<QString, QString> keys = altKeys();
  QSet<QString> taken;
  for (const QString& name : captions) {
    const QString key = keys.value(name);
    EXPECT_FALSE(key.isEmpty()) << name.toStdString();
    EXPECT_FALSE(taken.contains(key)) << name.toStdString() << ' ' << key.toStdString();
    taken.insert(key);
  }
}

TEST_P(EachWindow, LeadsTheKeyboardAlongTheRowsAsOneReads) {
  openIt();
  window->resize(1200, 700);
  QCoreApplication::processEvents();
  // Of one row to the next: nothing that the Tab key reaches stands above what it reached before.
  int bottom = 0, rows = 0;
  QWidget* widget = control(hasPickers() ? "dtpStartDate" : "cmbYear");
  QWidget* const first = widget;
  do {
    const bool reached = widget->isVisibleTo(window) && widget->isEnabled() &&
                         (widget->focusPolicy() & Qt::TabFocus) && widget != window &&
                         widget->objectName() != u"tbsViews";
    if (reached) {
      const QRect place(widget->mapTo(window, QPoint()), widget->size());
      EXPECT_GE(place.bottom(), bottom) << widget->objectName().toStdString();
      rows += place.top() > bottom;
      bottom = std::max(bottom, place.top());
    }
    widget = widget->nextInFocusChain();
  } while (widget != first);
  EXPECT_GE(rows, 3);
}

TEST_P(EachWindow, FetchesWhenAskedTo) {
  openIt();
  w.add(QStringLiteral("New"), at(15, 9), 60, complete);
  QTest::mouseClick(control("cmdGetValues"), Qt::LeftButton);
  // Without pickers the period ends today and begins seven days before.
  EXPECT_EQ(w.subjects(), QStringList{QStringLiteral("New")});
}

TEST_P(EachWindow, ShowsEverySettingOfTheList) {
  openIt();
  EXPECT_EQ(w.form->exsThisWeek.generation(), w.form->variant().generation);
  EXPECT_EQ(control("cmbChartType") != nullptr, hasChartType());
}

TEST_P(EachWindow, EndsTheProgramWhenItIsClosed) {
  openIt();
  EXPECT_ENDS_PROCESS(window->close());
}

}  // namespace
}  // namespace tests

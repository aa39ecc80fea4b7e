#include "platform/owc/view/sheetview.h"
#include "reportwindow.h"
#include "workspace/modGetData.h"

#include <QAbstractItemView>
#include <QComboBox>
#include <QDialog>
#include <QHeaderView>
#include <QLineEdit>
#include <QProgressBar>
#include <QWindow>

namespace tests {
namespace {

using platform::owc::SheetView;

/// The real window, while another program changes the calendar.
class FollowingWindow : public Window, public testing::WithParamInterface<int> {
 protected:
  void SetUp() override {
    generation = qint16(GetParam());
    first = w.add(QStringLiteral("First"), at(15, 7), 60, complete);
    w.add(QStringLiteral("Second"), at(15, 8), 60, QStringLiteral(";Beta;Intranet;Support"));
    open();
    w.form->timFollowCalendar.setTimerEnabled(false);  // `tick` is the only one
    ASSERT_TRUE(QTest::qWaitForWindowExposed(window));
    window->activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(window));
    window->resize(900, 600);
    QCoreApplication::processEvents();
  }
  void TearDown() override { letGo(); }
  void tick() { Q_EMIT w.form->timFollowCalendar.Tick(); }
  void theyAdd(const char* subject, int hour = 6) {
    w.add(QString::fromLatin1(subject), at(15, hour), 60, complete);
  }
  SheetView& list() { return *control<SheetView>("exsThisWeek"); }
  QComboBox& box(int n) {
    return *control<QComboBox>(n == 1 ? "cmbMeta1" : n == 2 ? "cmbMeta2" : "cmbMeta3");
  }
  void select(const char* address) {
    list().setFocus();
    w.form->exsThisWeek.Range(QString::fromLatin1(address)).Select();
  }
  void expectOverRow(int row) {
    for (int n = 1; n <= 3; ++n) {
      ASSERT_TRUE(box(n).isVisible()) << n;
      const QRect cell = list().cellGeometry(row, n + 1);
      EXPECT_EQ(box(n).x(), cell.x()) << n;
      EXPECT_LE(qAbs(box(n).y() - cell.y()), 1) << n;
    }
  }
  void fill(int rows) {
    for (int i = 0; i < rows; ++i) w.add(QStringLiteral("no %1").arg(i), at(15, 9), 30, complete);
    subGetData();
    QCoreApplication::processEvents();
  }
  QString uppermost() { return list().model()->index(list().rowAt(0), 0).data().toString(); }
  bool shows(const char* subject) { return w.subjects().contains(QString::fromLatin1(subject)); }
  platform::calendar::ItemKey first;
};
INSTANTIATE_TEST_SUITE_P(Generations, FollowingWindow, testing::Values(9, 10, 11));

TEST_P(FollowingWindow, KeepsTheDropDownsOverTheAppointment) {
  select("A3");
  expectOverRow(3);
  theyAdd("Before");
  tick();
  expectOverRow(4);
  EXPECT_EQ(box(1).currentText(), QStringLiteral("Beta"));
  EXPECT_TRUE(list().hasFocus());
}

TEST_P(FollowingWindow, LeavesTheFocusInADropDownThatNothingIsTypedIn) {
  select("A3");
  box(2).setFocus();
  box(2).lineEdit()->setSelection(2, 3);
  theyAdd("Before");
  tick();
  expectOverRow(4);
  EXPECT_TRUE(box(2).hasFocus());
  EXPECT_EQ(box(2).lineEdit()->selectedText(), QStringLiteral("tra"));
  w.calendar->removeByAnother(w.folder, first);
  tick();
  expectOverRow(3);
  EXPECT_TRUE(box(2).hasFocus());
}

TEST_P(FollowingWindow, LeavesTheFocusInADropDownOfTheLastRowWhenTheListGetsShorter) {
  select("A3");
  box(2).setFocus();
  w.calendar->removeByAnother(w.folder, first);
  tick();
  EXPECT_EQ(w.subjects(), QStringList{QStringLiteral("Second")});
  expectOverRow(2);
  EXPECT_TRUE(box(2).hasFocus());
}

TEST_P(FollowingWindow, GivesTheFocusToTheListWhereTheAppointmentIsGone) {
  select("A2");
  box(2).setFocus();
  w.calendar->removeByAnother(w.folder, first);
  tick();
  EXPECT_FALSE(box(2).isVisible());
  EXPECT_TRUE(list().hasFocus());
}

TEST_P(FollowingWindow, TearsNoOpenDropDownAway) {
  select("A3");
  box(1).setFocus();
  box(1).showPopup();
  theyAdd("Before");
  tick();
  EXPECT_TRUE(box(1).view()->isVisible());
  EXPECT_FALSE(shows("Before"));
  QTest::keyClick(box(1).view(), Qt::Key_Escape);
  tick();
  EXPECT_TRUE(shows("Before"));
  expectOverRow(4);
}

TEST_P(FollowingWindow, TakesNothingAwayThatIsBeingTypedInADropDown) {
  select("A3");
  box(1).setFocus();
  box(1).lineEdit()->selectAll();
  QTest::keyClicks(&box(1), QStringLiteral("Ac"));
  theyAdd("Before");
  tick();
  EXPECT_EQ(box(1).currentText(), QStringLiteral("Ac"));
  EXPECT_FALSE(shows("Before"));
  QTest::keyClick(&box(1), Qt::Key_Escape);
  tick();
  EXPECT_TRUE(shows("Before"));
}

TEST_P(FollowingWindow, TakesNothingAwayThatIsBeingTypedInACell) {
  select("F3");
  QTest::keyClicks(&list(), QStringLiteral("2"));
  auto* editor = qobject_cast<QLineEdit*>(QApplication::focusWidget());
  ASSERT_NE(editor, nullptr);
  theyAdd("Before");
  tick();
  EXPECT_TRUE(editor->isVisible());
  EXPECT_FALSE(shows("Before"));
  QTest::keyClick(editor, Qt::Key_Return);
  EXPECT_EQ(w.calendar->items(w.folder, {}).value(2).durationMinutes(), 120);
  tick();
  EXPECT_TRUE(shows("Before"));
}

TEST_P(FollowingWindow, WaitsWhileAMouseButtonIsHeld) {
  theyAdd("Before");
  const QPoint place(5, 5);
  QTest::mousePress(window->windowHandle(), Qt::LeftButton, {}, place);
  tick();
  EXPECT_FALSE(shows("Before"));
  QTest::mouseRelease(window->windowHandle(), Qt::LeftButton, {}, place);
  tick();
  EXPECT_TRUE(shows("Before"));
}

TEST_P(FollowingWindow, WaitsWhileAnotherWindowWaitsForTheUser) {
  theyAdd("Before");
  {
    QDialog box(window);
    box.setModal(true);
    box.show();
    tick();
    EXPECT_FALSE(shows("Before"));
  }
  tick();
  EXPECT_TRUE(shows("Before"));
}

TEST_P(FollowingWindow, KeepsWhatIsInSight) {
  fill(60);
  list().verticalScrollBar()->setValue(20);
  const QString seen = uppermost();
  theyAdd("Before");
  tick();
  QCoreApplication::processEvents();
  EXPECT_EQ(uppermost(), seen);
  EXPECT_EQ(list().verticalScrollBar()->value(), 21);
}

TEST_P(FollowingWindow, ShowsWhatComesBeforeTheFirstRowWhereThatIsInSight) {
  fill(60);
  theyAdd("Before");
  tick();
  QCoreApplication::processEvents();
  EXPECT_EQ(uppermost(), QStringLiteral("Before"));
}

TEST_P(FollowingWindow, KeepsTheSelectedRowAtItsPlaceOfTheScreen) {
  fill(60);
  list().verticalScrollBar()->setValue(20);
  select("A26");
  QCoreApplication::processEvents();  // the scroll bar has taken its room
  const QRect place = list().cellGeometry(26, 2);
  ASSERT_FALSE(place.isEmpty());
  theyAdd("Before");
  tick();
  QCoreApplication::processEvents();
  EXPECT_EQ(list().cellGeometry(27, 2), place);
  expectOverRow(27);
}

TEST_P(FollowingWindow, KeepsTheSelectedRowAtItsPlaceAtTheBeginningOfTheListToo) {
  fill(60);
  select("A6");
  const int before = list().cellGeometry(6, 2).y();
  theyAdd("Before");
  tick();
  QCoreApplication::processEvents();
  EXPECT_EQ(list().cellGeometry(7, 2).y(), before);
  expectOverRow(7);
}

TEST_P(FollowingWindow, DoesNotScrollToASelectionThatIsOutOfSight) {
  fill(60);
  select("A3");
  list().verticalScrollBar()->setValue(30);
  const QString seen = uppermost();
  theyAdd("Before");
  tick();
  QCoreApplication::processEvents();
  EXPECT_EQ(uppermost(), seen);
  EXPECT_FALSE(box(1).isVisible());
  list().verticalScrollBar()->setValue(0);
  QCoreApplication::processEvents();
  expectOverRow(4);
}

TEST_P(FollowingWindow, ShowsTheUserNothingButTheNewRows) {
  struct Watch : QObject {
    int paints = 0;
    bool eventFilter(QObject*, QEvent* event) override {
      paints += event->type() == QEvent::Paint;
      return false;
    }
  } watch;
  QCoreApplication::processEvents();
  for (QWidget* part : window->findChildren<QWidget*>()) part->installEventFilter(&watch);
  bool busy = false;
  QObject::connect(&w.form->exsThisWeek, &platform::owc::Spreadsheet::cellsChanged, &watch, [&] {
    busy = busy || QApplication::overrideCursor() || control("progress")->isVisible() ||
           control<QLabel>("status")->text().contains(QStringLiteral("Fetching"));
  });
  theyAdd("Before");
  tick();
  EXPECT_EQ(watch.paints, 0) << "nothing is painted before all of it stands";
  EXPECT_FALSE(busy);
  EXPECT_TRUE(control<QLabel>("status")->text().startsWith(QStringLiteral("Appointments: 3")));
  QCoreApplication::processEvents();
  EXPECT_GT(watch.paints, 0);
}

TEST_P(FollowingWindow, KeepsWidthsThatTheUserHasGivenTheColumns) {
  list().horizontalHeader()->resizeSection(1, 77);
  theyAdd("Before");
  tick();
  QCoreApplication::processEvents();
  EXPECT_EQ(list().columnWidth(1), 77);
}

}  // namespace
}  // namespace tests

#include "platform/forms/twips.h"
#include "platform/owc/view/sheetview.h"
#include "reportwindow.h"
#include "workspace/modGetData.h"

#include <QClipboard>
#include <QComboBox>
#include <QHeaderView>
#include <QLineEdit>

namespace tests {
namespace {

using platform::owc::SheetView;

class EditingWindow : public Window, public testing::WithParamInterface<int> {
 protected:
  void SetUp() override {
    generation = qint16(GetParam());
    w.add(QStringLiteral("First"), at(15, 7), 60, complete);
    w.add(QStringLiteral("Second"), at(15, 8), 60, QStringLiteral(";Beta;Intranet;Support"));
    open();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(window));
    window->activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(window));
    window->resize(900, 600);
    QCoreApplication::processEvents();
  }
  void TearDown() override { letGo(); }
  SheetView& list() { return *control<SheetView>("exsThisWeek"); }
  QComboBox& box(int n) {
    return *control<QComboBox>(n == 1 ? "cmbMeta1" : n == 2 ? "cmbMeta2" : "cmbMeta3");
  }
  void select(const char* address) {
    list().setFocus();
    w.form->exsThisWeek.Range(QString::fromLatin1(address)).Select();
  }
  void type(const QString& text) {
    QTest::keyClicks(&list(), text.left(1));
    QTest::keyClicks(QApplication::focusWidget(), text.mid(1));
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
  }
  platform::calendar::Item stored(int position) { return w.calendar->items(w.folder, {}).value(position); }
  QRect cell(int row, int column) { return list().cellGeometry(row, column); }
  void expectOverRow(int row) {
    for (int n = 1; n <= 3; ++n) {
      ASSERT_TRUE(box(n).isVisible()) << n;
      EXPECT_EQ(box(n).x(), cell(row, n + 1).x()) << n;
      EXPECT_EQ(box(n).width(), cell(row, n + 1).width()) << n;
      EXPECT_LE(qAbs(box(n).y() - cell(row, n + 1).y()), 1) << n;
    }
  }
  void fill(int rows) {
    for (int i = 0; i < rows; ++i) w.add(QStringLiteral("no %1").arg(i), at(15, 9), 30, complete);
    subGetData();
    QCoreApplication::processEvents();
  }
};
class EditingWindowOfTheNewerForms : public EditingWindow {};
INSTANTIATE_TEST_SUITE_P(Generations, EditingWindow, testing::Values(9, 10, 11));
INSTANTIATE_TEST_SUITE_P(Generations, EditingWindowOfTheNewerForms, testing::Values(10, 11));

TEST_P(EditingWindow, SavesHoursThatAreTyped) {
  select("F2");
  type(QStringLiteral("1.5"));
  EXPECT_EQ(stored(0).durationMinutes(), 90);
}

TEST_P(EditingWindow, LaysTheDropDownsOverTheSelectedRow) {
  select("A3");
  expectOverRow(3);
  EXPECT_EQ(box(1).currentText(), QStringLiteral("Beta"));
  EXPECT_TRUE(list().hasFocus()) << "the keyboard stays with the list";
}

TEST_P(EditingWindow, KeepsTheDropDownsOverTheirColumnsAtAnySizeAndWidth) {
  select("A3");
  for (const QSize& size : {QSize(500, 500), QSize(1200, 800), QSize(700, 450)}) {
    window->resize(size);
    QCoreApplication::processEvents();
    expectOverRow(3);
  }
  list().horizontalHeader()->resizeSection(0, 160);
  list().horizontalHeader()->resizeSection(1, 90);
  QCoreApplication::processEvents();
  expectOverRow(3);
}

TEST_P(EditingWindow, KeepsThemOverTheRowWithAnotherFont) {
  select("A3");
  QFont large = window->font();
  large.setPointSize(large.pointSize() * 2);
  window->setFont(large);
  QCoreApplication::processEvents();
  expectOverRow(3);
}

TEST_P(EditingWindow, KeepsThemOverTheirColumnsFromRightToLeft) {
  window->setLayoutDirection(Qt::RightToLeft);
  QCoreApplication::processEvents();
  select("A3");
  expectOverRow(3);
  EXPECT_GT(box(1).x(), box(3).x());
}

TEST_P(EditingWindow, MovesTheDropDownsWithTheRowAndHidesThemOutOfSight) {
  fill(60);
  select("A10");
  expectOverRow(10);
  list().verticalScrollBar()->setValue(3);
  expectOverRow(10);
  list().verticalScrollBar()->setValue(list().verticalScrollBar()->maximum());
  for (int n = 1; n <= 3; ++n) EXPECT_FALSE(box(n).isVisible());
  list().verticalScrollBar()->setValue(2);
  expectOverRow(10);
}

TEST_P(EditingWindow, ShowsTheDropDownsOverARowThatTheKeyboardBringsIntoSight) {
  fill(60);
  select("A2");
  QTest::keyClick(&list(), Qt::Key_Down, Qt::ControlModifier);
  ASSERT_EQ(w.workspace->gCurrentRow, 63);
  QCoreApplication::processEvents();
  expectOverRow(63);
}

TEST_P(EditingWindow, LeavesOutTheDropDownOfAColumnOutOfSight) {
  window->resize(400, 500);
  for (int section = 0; section < 4; ++section) list().horizontalHeader()->resizeSection(section, 200);
  QCoreApplication::processEvents();
  select("A2");
  EXPECT_TRUE(cell(2, 4).isEmpty());
  EXPECT_FALSE(box(3).isVisible());
  list().horizontalScrollBar()->setValue(list().horizontalScrollBar()->maximum());
  EXPECT_EQ(box(3).isVisible(), !cell(2, 4).isEmpty());
}

TEST_P(EditingWindow, WritesOnlyTheChoiceThatIsMadeInTheOpenList) {
  select("B3");
  QTest::keyClick(&list(), Qt::Key_Down, Qt::AltModifier);
  ASSERT_NE(QApplication::activePopupWidget(), nullptr);
  QAbstractItemView* popup = box(1).view();
  QTest::keyClick(popup, Qt::Key_Up);
  EXPECT_EQ(stored(1).categoriesText, QStringLiteral(";Beta;Intranet;Support"));
  QTest::keyClick(popup, Qt::Key_Return);
  EXPECT_EQ(stored(1).categoriesText, QStringLiteral(";Acme;Intranet;Support"));
  EXPECT_EQ(w.cell(QStringLiteral("B3")), QStringLiteral("Acme"));
}

TEST_P(EditingWindow, WritesNothingWhenTheOpenListIsLeftByEscape) {
  select("B3");
  box(1).setFocus();
  QTest::keyClick(&box(1), Qt::Key_Down);  // drops down and chooses nothing
  ASSERT_NE(QApplication::activePopupWidget(), nullptr);
  QTest::keyClick(box(1).view(), Qt::Key_Up);
  QTest::keyClick(box(1).view(), Qt::Key_Escape);
  EXPECT_EQ(stored(1).categoriesText, QStringLiteral(";Beta;Intranet;Support"));
  EXPECT_EQ(box(1).currentText(), QStringLiteral("Beta"));
}

TEST_P(EditingWindow, TakesAListedTextTypedInADropDownWithEnterAndPressesNoButton) {
  select("A3");
  box(1).setFocus();
  box(1).lineEdit()->selectAll();
  QTest::keyClicks(&box(1), QStringLiteral("acme"));
  EXPECT_EQ(stored(1).categoriesText, QStringLiteral(";Beta;Intranet;Support")) << "not before Enter";
  QTest::keyClick(&box(1), Qt::Key_Return);
  EXPECT_EQ(stored(1).categoriesText, QStringLiteral(";Acme;Intranet;Support"));
  EXPECT_TRUE(list().hasFocus());
}

TEST_P(EditingWindow, TakesAnExactTextWhenTheDropDownIsLeft) {
  select("A3");
  box(2).setFocus();
  box(2).lineEdit()->selectAll();
  QTest::keyClicks(&box(2), QStringLiteral("Website"));
  box(3).setFocus(Qt::TabFocusReason);
  EXPECT_EQ(stored(1).categoriesText, QStringLiteral(";Beta;Website;Support"));
}

TEST_P(EditingWindow, GivesBackAnUnlistedTextTypedInADropDown) {
  select("A3");
  for (const Qt::Key end : {Qt::Key_Return, Qt::Key_Escape, Qt::Key_Tab}) {
    box(1).setFocus();
    box(1).lineEdit()->selectAll();
    QTest::keyClicks(&box(1), QStringLiteral("Nobody"));
    QTest::keyClick(&box(1), end);
    EXPECT_EQ(box(1).currentText(), QStringLiteral("Beta"));
  }
  EXPECT_EQ(stored(1).categoriesText, QStringLiteral(";Beta;Intranet;Support"));
}

TEST_P(EditingWindow, WritesNoTypedTextToAnotherRow) {
  select("A3");
  box(1).setFocus();
  box(1).lineEdit()->selectAll();
  QTest::keyClicks(&box(1), QStringLiteral("acme"));
  w.form->exsThisWeek.Range(QStringLiteral("A2")).Select();
  EXPECT_EQ(stored(0).categoriesText, complete);
}

TEST_P(EditingWindow, ReachesTheDropDownsByTabFromTheEndOfTheRow) {
  select("G2");
  QTest::keyClick(&list(), Qt::Key_Tab);
  for (int n = 1; n <= 3; ++n) {
    EXPECT_TRUE(box(n).hasFocus()) << n;
    QTest::keyClick(&box(n), Qt::Key_Tab);
  }
  EXPECT_FALSE(box(3).hasFocus());
}

TEST_P(EditingWindow, LetsTheArrowKeysWalkTheListUnderTheDropDowns) {
  select("B2");
  QTest::keyClick(&list(), Qt::Key_Down);
  EXPECT_EQ(w.workspace->gCurrentRow, 3);
  QTest::keyClick(&list(), Qt::Key_Right);
  EXPECT_EQ(w.form->exsThisWeek.ActiveCell().Address(), QStringLiteral("$C$3"));
}

TEST_P(EditingWindow, TurnsNoChoiceByTheWheel) {
  fill(60);
  select("B3");
  box(1).setFocus();
  QWheelEvent turn(QPointF(5, 5), box(1).mapToGlobal(QPointF(5, 5)), QPoint(), QPoint(0, -240), Qt::NoButton,
                   Qt::NoModifier, Qt::NoScrollPhase, false);
  QApplication::sendEvent(&box(1), &turn);
  EXPECT_EQ(stored(1).categoriesText, QStringLiteral(";Beta;Intranet;Support"));
  EXPECT_GT(list().verticalScrollBar()->value(), 0);
}

TEST_P(EditingWindow, KeepsTheDropDownOutOfTheWayOfTheCellsEditor) {
  select("B2");
  QTest::keyClick(&list(), Qt::Key_F2);
  auto* editor = window->findChild<QLineEdit*>(QStringLiteral("cellEditor"));
  ASSERT_NE(editor, nullptr);
  const QPoint middle = editor->mapTo(window, editor->rect().center());
  EXPECT_EQ(window->childAt(middle), editor);
  QTest::keyClick(editor, Qt::Key_Escape);
  EXPECT_NE(window->childAt(middle), editor);
  EXPECT_TRUE(box(1).isAncestorOf(window->childAt(middle)) || window->childAt(middle) == &box(1));
}

TEST_P(EditingWindow, SavesWhatIsBeingTypedBeforeAKeyFetchesAnew) {
  for (const bool byAlt : {false, true}) {
    const QString hours = byAlt ? QStringLiteral("2") : QStringLiteral("1.5");
    select("F2");
    QTest::keyClicks(&list(), hours.left(1));
    QTest::keyClicks(QApplication::focusWidget(), hours.mid(1));
    w.add(QStringLiteral("Earlier"), byAlt ? at(15, 5) : at(15, 6), 30, complete);
    if (byAlt)
      control<QAbstractButton>("cmdGetValues")->click();  // as Alt and its letter do
    else
      QTest::keyClick(QApplication::focusWidget(), Qt::Key_F5);
    EXPECT_EQ(w.cell(QStringLiteral("A2")), QStringLiteral("Earlier"));
    EXPECT_EQ(w.cell(QStringLiteral("F3")), hours);
  }
}

TEST_P(EditingWindow, SavesWhatIsBeingTypedInADropDownBeforeAKeyFetchesAnew) {
  select("A3");
  box(1).setFocus();
  box(1).lineEdit()->selectAll();
  QTest::keyClicks(&box(1), QStringLiteral("acme"));
  QTest::keyClick(&box(1), Qt::Key_F5);
  EXPECT_EQ(stored(1).categoriesText, QStringLiteral(";Acme;Intranet;Support"));
  EXPECT_EQ(w.cell(QStringLiteral("B3")), QStringLiteral("Acme"));
}

TEST_P(EditingWindow, PutsNothingThatIsBeingTypedIntoAnAppointmentThatTookTheRow) {
  select("F2");
  QTest::keyClicks(&list(), QStringLiteral("7"));
  w.add(QStringLiteral("Earlier"), at(15, 6), 30, complete);
  subGetData();
  QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
  EXPECT_EQ(w.cell(QStringLiteral("A2")), QStringLiteral("Earlier"));
  EXPECT_EQ(w.cell(QStringLiteral("F2")), QStringLiteral("0.5"));
  for (const platform::calendar::Item& item : w.calendar->items(w.folder, {}))
    EXPECT_NE(item.durationMinutes(), 420) << item.subject.toStdString();
}

TEST_P(EditingWindow, NamesTheDropDownsAfterTheirColumns) {
  select("A2");
  expectANameForEachControl();
  EXPECT_EQ(box(1).accessibleName(), QStringLiteral("Customer"));
  EXPECT_EQ(box(3).accessibleName(), QStringLiteral("Task"));
}

TEST_P(EditingWindow, HidesTheDropDownsForTheGridsAndTheHeadersSelections) {
  select("A2:B3");
  for (int n = 1; n <= 3; ++n) EXPECT_FALSE(box(n).isVisible());
}

TEST_P(EditingWindowOfTheNewerForms, SaveASubjectAndAMetaValueThatAreTyped) {
  select("A2");
  type(QStringLiteral("Other"));
  select("B2");
  type(QStringLiteral("Beta"));
  EXPECT_EQ(stored(0).subject, QStringLiteral("Other"));
  EXPECT_EQ(stored(0).categoriesText, QStringLiteral(";Beta;Website;Design"));
}

TEST_P(EditingWindowOfTheNewerForms, TakeBackAnUnlistedValueThatIsTyped) {
  select("B2");
  type(QStringLiteral("Nobody"));
  EXPECT_EQ(w.cell(QStringLiteral("B2")), QStringLiteral("Acme"));
  EXPECT_EQ(stored(0).categoriesText, complete);
}

TEST_P(EditingWindowOfTheNewerForms, ShowInTheDropDownWhatWasTakenBack) {
  select("B2");
  QApplication::clipboard()->setText(QStringLiteral("Nobody"));
  QTest::keySequence(&list(), QKeySequence::Paste);
  EXPECT_EQ(w.cell(QStringLiteral("B2")), QStringLiteral("Acme"));
  EXPECT_EQ(box(1).currentText(), QStringLiteral("Acme"));
  QApplication::clipboard()->setText(QStringLiteral("BETA"));
  QTest::keySequence(&list(), QKeySequence::Paste);
  EXPECT_EQ(box(1).currentText(), QStringLiteral("Beta"));
}

TEST_P(EditingWindowOfTheNewerForms, ShowInTheDropDownWhatBecomesOfItsCell) {
  select("B2");
  QApplication::clipboard()->setText(QStringLiteral("Beta"));
  QTest::keySequence(&list(), QKeySequence::Paste);
  EXPECT_EQ(box(1).currentText(), QStringLiteral("Beta"));
  EXPECT_EQ(stored(0).categoriesText, QStringLiteral(";Beta;Website;Design"));
  QTest::keySequence(&list(), QKeySequence::Undo);
  EXPECT_EQ(box(1).currentText(), QStringLiteral("Acme"));
  EXPECT_EQ(stored(0).categoriesText, complete);
}

}  // namespace
}  // namespace tests

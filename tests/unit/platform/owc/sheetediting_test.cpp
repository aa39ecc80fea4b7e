#include "platform/owc/view/celleditor.h"
#include "platform/owc/view/sheetmodel.h"
#include "platform/owc/view/sheetview.h"
#include "platform/process/process.h"
#include "tests/support/testworld.h"

#include <QApplication>
#include <QClipboard>
#include <QInputMethodEvent>
#include <QPushButton>
#include <QScrollBar>
#include <QSignalSpy>
#include <QTest>
#include <QVBoxLayout>

using namespace platform::owc;
using platform::basic::Value;
using namespace Qt::StringLiterals;

namespace {

/// A list of nine rows whose columns A to D, F and G are open, in a window with a default button.
class Editings : public testing::Test {
 protected:
  Editings() {
    const QStringList headings{u"Subject"_s, u"Customer"_s, u"Project"_s, u"Task"_s,
                               u"Weekday"_s, u"Hours"_s,    u"Posted"_s};
    for (int column = 1; column <= 7; ++column) set(1, column, headings[column - 1]);
    for (int row = 2; row <= 9; ++row)
      for (int column = 1; column <= 7; ++column) set(row, column, u"r%1c%2"_s.arg(row).arg(column));
    sheet.setViewableRange(u"A1:G9"_s);
    sheet.Range(u"A2:D200"_s).setLocked(false);
    sheet.Range(u"F2:G200"_s).setLocked(false);
    sheet.ActiveSheet.Protection.Enabled = true;
    auto* layout = new QVBoxLayout(&window);
    layout->addWidget(view);
    layout->addWidget(button);
    view->setEditable(true);
    window.resize(900, 400);
    window.show();
    view->setFocus();
    QCoreApplication::processEvents();
  }
  void set(int row, int column, const QString& text) { sheet.Cell(row, column).setValue(Value(text)); }
  QString text(const QString& address) { return sheet.Range(address).Text(); }
  QString selected() { return sheet.Selection().Address(); }
  void select(const QString& address) { sheet.Range(address).Select(); }
  QPoint centre(int row, int column) {
    return view->cellGeometry(row, column).center() - view->viewport()->pos();
  }
  CellEditor* editor() {
    for (CellEditor* one : view->findChildren<CellEditor*>())
      if (!one->isHidden()) return one;
    return nullptr;
  }
  /// To the editor while one is open, else to the view.
  void press(Qt::Key key, Qt::KeyboardModifiers modifiers = {}) {
    QTest::keyClick(editor() ? static_cast<QWidget*>(editor()) : view, key, modifiers);
  }
  void write(const QString& typed) {
    for (const QChar c : typed)
      QTest::keyClick(editor() ? static_cast<QWidget*>(editor()) : view, c.toLatin1());
  }

  tests::TestWorld world;
  Spreadsheet sheet;
  QWidget window;
  SheetView* view = new SheetView(sheet, &window);
  QPushButton* button = new QPushButton(&window);
};

}  // namespace

TEST_F(Editings, TypingReplacesTheCellAndEnterGoesDown) {
  select(u"F2"_s);
  write(u"1.5"_s);
  EXPECT_EQ(text(u"F2"_s), u"r2c6"_s) << "not before the edit ends";
  press(Qt::Key_Return);
  EXPECT_EQ(sheet.Range(u"F2"_s).Value(), Value(u"1.5"_s));
  EXPECT_EQ(selected(), u"$F$3"_s);
  EXPECT_FALSE(editor());
}

TEST_F(Editings, F2AndADoubleClickGoOnWithTheCellsText) {
  select(u"A2"_s);
  press(Qt::Key_F2);
  ASSERT_TRUE(editor());
  EXPECT_EQ(editor()->text(), u"r2c1"_s);
  write(u"x"_s);
  press(Qt::Key_Return);
  EXPECT_EQ(text(u"A2"_s), u"r2c1x"_s);
  QTest::mouseDClick(view->viewport(), Qt::LeftButton, {}, centre(4, 2));
  ASSERT_TRUE(editor());
  EXPECT_EQ(editor()->text(), u"r4c2"_s);
  EXPECT_EQ(editor()->accessibleName(), u"Customer"_s);
}

TEST_F(Editings, EscapeGivesUpTheEdit) {
  QStringList told;
  QObject::connect(&sheet, &Spreadsheet::EndEdit, view, [&](EndEditEvent& event) { told += event.EditData; });
  select(u"A2"_s);
  write(u"new"_s);
  press(Qt::Key_Escape);
  EXPECT_EQ(text(u"A2"_s), u"r2c1"_s);
  EXPECT_EQ(selected(), u"$A$2"_s);
  EXPECT_FALSE(editor());
  EXPECT_TRUE(told.isEmpty());
}

TEST_F(Editings, TabAndArrowsEndWhatWasTypedAndMove) {
  select(u"B3"_s);
  write(u"a"_s);
  press(Qt::Key_Tab);
  EXPECT_EQ(selected(), u"$C$3"_s);
  write(u"b"_s);
  press(Qt::Key_Backtab, Qt::ShiftModifier);
  EXPECT_EQ(selected(), u"$B$3"_s);
  write(u"c"_s);
  press(Qt::Key_Down);
  EXPECT_EQ(selected(), u"$B$4"_s);
  write(u"d"_s);
  press(Qt::Key_Right);
  EXPECT_EQ(selected(), u"$C$4"_s);
  write(u"e"_s);
  press(Qt::Key_Left);
  write(u"f"_s);
  press(Qt::Key_Up);
  EXPECT_EQ(text(u"B3"_s) + text(u"C3"_s) + text(u"B4"_s) + text(u"C4"_s), u"cbfe"_s);
  EXPECT_EQ(selected(), u"$B$3"_s);
}

TEST_F(Editings, ArrowsMoveInATextThatIsGoneOnWith) {
  select(u"A2"_s);
  press(Qt::Key_F2);
  press(Qt::Key_Left);
  write(u"-"_s);
  press(Qt::Key_Return);
  EXPECT_EQ(text(u"A2"_s), u"r2c-1"_s);
}

TEST_F(Editings, F2ChangesOverBetweenTheTwoWays) {
  select(u"A2"_s);
  write(u"ab"_s);
  press(Qt::Key_F2);
  press(Qt::Key_Left);
  write(u"x"_s);
  press(Qt::Key_F2);
  press(Qt::Key_Right);
  EXPECT_EQ(text(u"A2"_s), u"axb"_s);
  EXPECT_EQ(selected(), u"$B$2"_s);
}

TEST_F(Editings, NoEditorOpensOnALockedCellOfAProtectedSheet) {
  select(u"E2"_s);
  write(u"x"_s);
  press(Qt::Key_F2);
  QTest::mouseDClick(view->viewport(), Qt::LeftButton, {}, centre(2, 5));
  EXPECT_FALSE(editor());
  press(Qt::Key_Delete);
  EXPECT_EQ(text(u"E2"_s), u"r2c5"_s);
  sheet.ActiveSheet.Protection.Enabled = false;
  write(u"x"_s);
  EXPECT_TRUE(editor());
}

TEST_F(Editings, EnterMovesAsTheSheetSaysAndPressesNoButton) {
  QSignalSpy pressed(button, &QPushButton::clicked);
  button->setDefault(true);
  select(u"B3"_s);
  press(Qt::Key_Return);
  EXPECT_EQ(selected(), u"$B$4"_s);
  press(Qt::Key_Return, Qt::ShiftModifier);
  EXPECT_EQ(selected(), u"$B$3"_s);
  sheet.setMoveAfterReturnDirection(xlToRight);
  press(Qt::Key_Enter);
  EXPECT_EQ(selected(), u"$C$3"_s);
  sheet.MoveAfterReturn = false;
  press(Qt::Key_Return);
  EXPECT_EQ(selected(), u"$C$3"_s);
  EXPECT_EQ(pressed.count(), 0);
}

TEST_F(Editings, EnterStaysOnTheLastRow) {
  select(u"B9"_s);
  write(u"x"_s);
  press(Qt::Key_Return);
  EXPECT_EQ(text(u"B9"_s), u"x"_s);
  EXPECT_EQ(selected(), u"$B$9"_s);
}

TEST_F(Editings, TabMovesToTheSideAndLeavesTheListAtTheEndOfTheRow) {
  sheet.Range(u"G:G"_s).setEntireColumnHidden(true);
  select(u"E2"_s);
  press(Qt::Key_Tab);
  EXPECT_EQ(selected(), u"$F$2"_s);
  EXPECT_TRUE(view->hasFocus());
  press(Qt::Key_Tab);
  EXPECT_EQ(selected(), u"$F$2"_s);
  EXPECT_TRUE(button->hasFocus());
}

TEST_F(Editings, AClickElsewhereEndsTheEdit) {
  select(u"A2"_s);
  write(u"new"_s);
  QTest::mouseClick(view->viewport(), Qt::LeftButton, {}, centre(5, 3));
  EXPECT_EQ(text(u"A2"_s), u"new"_s);
  EXPECT_EQ(selected(), u"$C$5"_s);
}

TEST_F(Editings, LeavingTheEditorEndsTheEdit) {
  select(u"A2"_s);
  write(u"new"_s);
  button->setFocus();
  EXPECT_EQ(text(u"A2"_s), u"new"_s);
  EXPECT_FALSE(editor());
}

TEST_F(Editings, AnotherWindowInFrontLeavesTheEditOpen) {
  select(u"A2"_s);
  write(u"new"_s);
  QFocusEvent out(QEvent::FocusOut, Qt::ActiveWindowFocusReason);
  QCoreApplication::sendEvent(editor(), &out);
  EXPECT_TRUE(editor());
  EXPECT_EQ(text(u"A2"_s), u"r2c1"_s);
}

TEST_F(Editings, EventsComeAroundTheNewValueInOrder) {
  QStringList told;
  QObject::connect(&sheet, &Spreadsheet::EndEdit, view, [&](EndEditEvent& event) {
    told += u"end %1 over %2"_s.arg(event.EditData, event.Range.Text());
  });
  QObject::connect(&sheet, &Spreadsheet::SheetChange, view,
                   [&](const Range& target) { told += u"change %1"_s.arg(target.Text()); });
  QObject::connect(&sheet, &Spreadsheet::SelectionChange, view, [&] { told += u"selection"_s; });
  QObject::connect(&sheet, &Spreadsheet::Calculate, view, [&] { told += u"calculate"_s; });
  sheet.EnableEvents = false;
  select(u"F2"_s);
  sheet.EnableEvents = true;
  write(u"8"_s);
  press(Qt::Key_Return);
  EXPECT_EQ(told, QStringList({u"end 8 over r2c6"_s, u"change 8"_s, u"selection"_s, u"calculate"_s}));
}

TEST_F(Editings, ACancelledEditLeavesCellAndSelection) {
  QObject::connect(&sheet, &Spreadsheet::EndEdit, view, [](EndEditEvent& event) { event.Cancel = true; });
  select(u"F2"_s);
  write(u"8"_s);
  press(Qt::Key_Return);
  EXPECT_EQ(text(u"F2"_s), u"r2c6"_s);
  EXPECT_EQ(selected(), u"$F$2"_s);
  EXPECT_FALSE(editor());
}

TEST_F(Editings, AHandlerMayRebuildTheListWhileAnEditEnds) {
  QObject::connect(&sheet, &Spreadsheet::EndEdit, view, [&](EndEditEvent&) {
    sheet.ActiveSheet.Protection.Enabled = false;
    sheet.Range(u"a2:g199"_s).Clear();
    sheet.setViewableRange(u"A1:G2"_s);
    sheet.ActiveSheet.Protection.Enabled = true;
  });
  select(u"A9"_s);
  write(u"x"_s);
  press(Qt::Key_Return);
  EXPECT_EQ(view->model()->rowCount(), 1);
  EXPECT_FALSE(editor());
}

TEST_F(Editings, ARangeWithoutTheCellGivesUpTheEdit) {
  select(u"A9"_s);
  write(u"x"_s);
  sheet.setViewableRange(u"A1:G5"_s);
  EXPECT_FALSE(editor());
  EXPECT_EQ(text(u"A9"_s), u"r9c1"_s);
}

TEST_F(Editings, TheEditorFollowsItsCell) {
  sheet.setViewableRange(u"A1:G60"_s);
  window.resize(900, 200);
  QCoreApplication::processEvents();
  select(u"A2"_s);
  write(u"x"_s);
  const int top = editor()->geometry().top();
  view->verticalScrollBar()->setValue(1);
  EXPECT_LT(editor()->geometry().top(), top);
  press(Qt::Key_Return);
  EXPECT_EQ(text(u"A2"_s), u"x"_s);
}

TEST_F(Editings, AnEndOfTheProcessInAHandlerStopsAtTheView) {
  world.expectEnds(1);
  QObject::connect(&sheet, &Spreadsheet::SheetChange, view,
                   [] { platform::process::Process::current().end(); });
  select(u"A2"_s);
  write(u"x"_s);
  press(Qt::Key_Return);
  EXPECT_EQ(world.process.ends, 1);
}

TEST_F(Editings, AnUnchangedNumberStaysANumber) {
  sheet.Range(u"F2"_s).setValue(Value(1.5));
  select(u"F2"_s);
  press(Qt::Key_F2);
  press(Qt::Key_Return);
  EXPECT_EQ(sheet.Range(u"F2"_s).Value(), Value(1.5));
}

TEST_F(Editings, ATypedFormulaShowsItsResultAndIsEditedAsAFormula) {
  sheet.Range(u"F2:F3"_s).setValue(Value(u"2.5"_s));
  select(u"G2"_s);
  write(u"=SUM(F2:F3)"_s);
  press(Qt::Key_Return);
  EXPECT_EQ(text(u"G2"_s), u"5"_s);
  select(u"G2"_s);
  press(Qt::Key_F2);
  EXPECT_EQ(editor()->text(), u"=SUM(F2:F3)"_s);
}

TEST_F(Editings, DeleteClearsTheSelectionAndUndoBringsItBack) {
  select(u"A2:F3"_s);
  press(Qt::Key_Delete);
  EXPECT_EQ(text(u"A2"_s) + text(u"E2"_s) + text(u"F3"_s), u"r2c5"_s);
  press(Qt::Key_Z, Qt::ControlModifier);
  EXPECT_EQ(text(u"A2"_s) + text(u"E2"_s) + text(u"F3"_s), u"r2c1r2c5r3c6"_s);
}

TEST_F(Editings, UndoLeavesAloneWhatCodeHasWrittenSilently) {
  sheet.EnableEvents = false;
  sheet.Range(u"B2"_s).setValue(platform::basic::Value(u"silent"_s));
  sheet.EnableEvents = true;
  press(Qt::Key_Z, Qt::ControlModifier);
  EXPECT_EQ(text(u"B2"_s), u"silent"_s);
}

TEST_F(Editings, CutAndPasteMoveCells) {
  select(u"A2:B2"_s);
  press(Qt::Key_X, Qt::ControlModifier);
  EXPECT_EQ(text(u"A2"_s), QString());
  select(u"C3"_s);
  press(Qt::Key_V, Qt::ControlModifier);
  EXPECT_EQ(text(u"C3"_s) + text(u"D3"_s), u"r2c1r2c2"_s);
  EXPECT_EQ(selected(), u"$C$3:$D$3"_s);
  press(Qt::Key_Z, Qt::ControlModifier);
  EXPECT_EQ(text(u"C3"_s) + text(u"D3"_s), u"r3c3r3c4"_s);
}

TEST_F(Editings, PastingARowPassesOverLockedCells) {
  select(u"A2:G2"_s);
  press(Qt::Key_C, Qt::ControlModifier);
  select(u"A4"_s);
  press(Qt::Key_V, Qt::ControlModifier);
  EXPECT_EQ(text(u"D4"_s) + text(u"E4"_s) + text(u"F4"_s), u"r2c4r4c5r2c6"_s);
}

TEST_F(Editings, ControlAndAnArrowGoToTheEdgeOfTheData) {
  set(6, 3, QString());
  sheet.Range(u"C6"_s).ClearContents();
  select(u"C3"_s);
  press(Qt::Key_Down, Qt::ControlModifier);
  EXPECT_EQ(selected(), u"$C$5"_s);
  press(Qt::Key_Down, Qt::ControlModifier);
  EXPECT_EQ(selected(), u"$C$7"_s);
  press(Qt::Key_Down, Qt::ControlModifier);
  EXPECT_EQ(selected(), u"$C$9"_s);
  press(Qt::Key_Right, Qt::ControlModifier);
  EXPECT_EQ(selected(), u"$G$9"_s);
  press(Qt::Key_Up, Qt::ControlModifier | Qt::ShiftModifier);
  EXPECT_EQ(selected(), u"$G$2:$G$9"_s);
  EXPECT_EQ(sheet.ActiveCell().Address(), u"$G$9"_s);
  press(Qt::Key_Left, Qt::ControlModifier | Qt::ShiftModifier);
  EXPECT_EQ(selected(), u"$A$2:$G$9"_s);
}

TEST_F(Editings, HomeEndAndPagesMoveInTheRowAndTheList) {
  select(u"C3"_s);
  press(Qt::Key_Home);
  EXPECT_EQ(selected(), u"$A$3"_s);
  press(Qt::Key_End);
  EXPECT_EQ(selected(), u"$G$3"_s);
  press(Qt::Key_PageDown);
  EXPECT_EQ(selected(), u"$G$9"_s);
  write(u"x"_s);
  press(Qt::Key_PageUp);
  EXPECT_EQ(text(u"G9"_s), u"x"_s);
  EXPECT_EQ(selected(), u"$G$2"_s);
}

TEST_F(Editings, ShiftGoesOnFromWhereEnterWent) {
  select(u"B2"_s);
  write(u"x"_s);
  press(Qt::Key_Return);
  press(Qt::Key_Down, Qt::ShiftModifier);
  EXPECT_EQ(selected(), u"$B$3:$B$4"_s);
}

TEST_F(Editings, TypingGoesToTheCellThatTheSelectionWasWidenedFrom) {
  QTest::mouseClick(view->viewport(), Qt::LeftButton, {}, centre(5, 3));
  QTest::mouseClick(view->viewport(), Qt::LeftButton, Qt::ShiftModifier, centre(3, 2));
  EXPECT_EQ(selected(), u"$B$3:$C$5"_s);
  write(u"x"_s);
  press(Qt::Key_Return);
  EXPECT_EQ(text(u"C5"_s), u"x"_s);
  EXPECT_EQ(selected(), u"$C$6"_s);
}

TEST_F(Editings, AnInputMethodBeginsAnEdit) {
  select(u"A2"_s);
  EXPECT_TRUE(view->testAttribute(Qt::WA_InputMethodEnabled));
  QInputMethodEvent event;
  event.setCommitString(u"\u4f1a\u8b70"_s);
  QCoreApplication::sendEvent(view, &event);
  ASSERT_TRUE(editor());
  press(Qt::Key_Return);
  EXPECT_EQ(text(u"A2"_s), u"\u4f1a\u8b70"_s);
}

TEST_F(Editings, ShortcutsOfTheFormAreNoTyping) {
  select(u"A2"_s);
  press(Qt::Key_A, Qt::AltModifier);
  press(Qt::Key_B, Qt::ControlModifier);
  press(Qt::Key_Shift, Qt::ShiftModifier);
  EXPECT_FALSE(editor());
}

TEST_F(Editings, TurningEditingOffGivesUpTheEditAndReadsOnly) {
  select(u"A2"_s);
  write(u"x"_s);
  view->setEditable(false);
  EXPECT_FALSE(editor());
  QTest::keyClick(view, Qt::Key_F2);
  QTest::keyClick(view, Qt::Key_Delete);
  QTest::keyClicks(view, u"y"_s);
  EXPECT_FALSE(editor());
  EXPECT_EQ(text(u"A2"_s), u"r2c1"_s);
}

TEST(SheetEditing, TheSheetMayGoWhileAnEditIsOpen) {
  auto sheet = std::make_unique<Spreadsheet>();
  sheet->setViewableRange(u"A1:G9"_s);
  SheetView view(*sheet);
  view.setEditable(true);
  view.show();
  sheet->Range(u"B2"_s).Select();
  QTest::keyClicks(&view, u"x"_s);
  sheet.reset();
  QTest::keyClick(&view, Qt::Key_Return);
  QTest::keyClick(&view, Qt::Key_F2);
  QTest::keyClick(&view, Qt::Key_Tab);
  QCoreApplication::processEvents();
  EXPECT_EQ(view.model()->rowCount(), 0);
}

TEST(SheetEditing, TheViewMayGoWhileAnEditIsOpen) {
  Spreadsheet sheet;
  sheet.setViewableRange(u"A1:G9"_s);
  auto view = std::make_unique<SheetView>(sheet);
  view->setEditable(true);
  view->show();
  sheet.Range(u"B2"_s).Select();
  QTest::keyClicks(view.get(), u"x"_s);
  view.reset();
  EXPECT_EQ(sheet.Range(u"B2"_s).Text(), QString());
  EXPECT_EQ(sheet.Range(u"B3"_s).Top(), 2 * PlainScreen::rowHeight) << "the sheet's own places again";
}

TEST_F(Editings, SayThatTheyAreUnderWay) {
  select(u"A2"_s);
  EXPECT_FALSE(view->isBeingEdited());
  press(Qt::Key_F2);
  EXPECT_TRUE(view->isBeingEdited());
  press(Qt::Key_Escape);
  EXPECT_FALSE(view->isBeingEdited());
}

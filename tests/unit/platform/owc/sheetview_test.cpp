#include "platform/owc/view/sheetview.h"

#include "platform/owc/view/sheetdelegate.h"
#include "platform/owc/view/sheetmodel.h"
#include "platform/process/process.h"
#include "tests/support/testworld.h"

#include <QApplication>
#include <QClipboard>
#include <QHeaderView>
#include <QScrollBar>
#include <QSignalSpy>
#include <QTest>

using namespace platform::owc;
using platform::basic::Value;
using namespace Qt::StringLiterals;

namespace {

class Views : public testing::Test {
 protected:
  Views() {
    const QStringList headings{u"Subject"_s, u"Customer"_s, u"Project"_s, u"Task"_s,
                               u"Weekday"_s, u"Hours"_s,    u"Posted"_s};
    for (int column = 1; column <= 7; ++column) set(1, column, headings[column - 1]);
    for (int row = 2; row <= 60; ++row)
      for (int column = 1; column <= 7; ++column) set(row, column, u"r%1c%2"_s.arg(row).arg(column));
    sheet.setViewableRange(u"A1:G60"_s);
    view.resize(900, 400);
    view.show();
  }
  void set(int row, int column, const QString& text) { sheet.Cell(row, column).setValue(Value(text)); }
  QPoint centre(int row, int column) {
    return view.cellGeometry(row, column).center() - view.viewport()->pos();
  }
  void click(int row, int column, Qt::KeyboardModifiers modifiers = {}) {
    QTest::mouseClick(view.viewport(), Qt::LeftButton, modifiers, centre(row, column));
  }
  QString selected() { return sheet.Selection().Address(); }
  QString toolTip(int row, int column) {
    const QModelIndex index = model().indexOf(row, column);
    QStyleOptionViewItem option;
    option.initFrom(&view);
    option.rect = view.visualRect(index);
    return static_cast<SheetDelegate*>(view.itemDelegate())->toolTip(option, index);
  }
  SheetModel& model() { return *static_cast<SheetModel*>(view.model()); }
  QColor pixel(int row, int column) {
    QRect cell = view.cellGeometry(row, column).translated(-view.viewport()->pos());
    QCoreApplication::processEvents();
    return view.viewport()->grab().toImage().pixelColor(cell.right() - 2, cell.top() + 2);
  }

  Spreadsheet sheet;
  SheetView view{sheet};
};

}  // namespace

TEST_F(Views, AClickOnACellMovesTheSheetsSelection) {
  click(5, 3);
  EXPECT_EQ(selected(), u"$C$5"_s);
}

TEST_F(Views, TheKeyboardMovesAndWidensTheSelection) {
  click(5, 3);
  QTest::keyClick(&view, Qt::Key_Down);
  EXPECT_EQ(selected(), u"$C$6"_s);
  QTest::keyClick(&view, Qt::Key_Right);
  EXPECT_EQ(selected(), u"$D$6"_s);
  QTest::keyClick(&view, Qt::Key_Down, Qt::ShiftModifier);
  QTest::keyClick(&view, Qt::Key_Left, Qt::ShiftModifier);
  EXPECT_EQ(selected(), u"$C$6:$D$7"_s);
  QTest::keyClick(&view, Qt::Key_Home, Qt::ControlModifier);
  EXPECT_EQ(selected(), u"$A$2"_s);
  QTest::keyClick(&view, Qt::Key_End, Qt::ControlModifier);
  EXPECT_EQ(selected(), u"$G$60"_s);
}

TEST_F(Views, AShiftClickSelectsARectangle) {
  click(3, 2);
  click(5, 4, Qt::ShiftModifier);
  EXPECT_EQ(selected(), u"$B$3:$D$5"_s);
}

TEST_F(Views, EachMoveIsToldOnce) {
  QSignalSpy moved(&sheet, &Spreadsheet::selectionMoved);
  click(5, 3);
  click(6, 3);
  click(6, 3);
  EXPECT_EQ(moved.count(), 2);
}

TEST_F(Views, SelectingByCodeIsShownAndBroughtIntoSight) {
  QSignalSpy moved(&sheet, &Spreadsheet::selectionMoved);
  sheet.Range(u"B50:C51"_s).Select();
  EXPECT_EQ(view.selectionModel()->selectedIndexes().size(), 4);
  EXPECT_EQ(view.currentIndex(), model().indexOf(50, 2));
  EXPECT_FALSE(view.cellGeometry(50, 2).isEmpty());
  EXPECT_EQ(moved.count(), 1);
}

TEST_F(Views, ASelectionOutsideOfWhatIsShownSelectsNothing) {
  click(5, 3);
  sheet.Range(u"A1"_s).Select();
  EXPECT_TRUE(view.selectionModel()->selectedIndexes().isEmpty());
  sheet.Range(u"H3"_s).Select();
  EXPECT_TRUE(view.selectionModel()->selectedIndexes().isEmpty());
  EXPECT_EQ(selected(), u"$H$3"_s);
}

TEST_F(Views, NewContentsAndFewerRowsMoveNoSelectionOfTheSheet) {
  click(12, 3);
  QSignalSpy moved(&sheet, &Spreadsheet::selectionMoved);
  sheet.Range(u"a2:g199"_s).Clear();
  sheet.setViewableRange(u"A1:G8"_s);
  EXPECT_EQ(selected(), u"$C$12"_s);
  sheet.setViewableRange(u"A1:G40"_s);
  EXPECT_EQ(view.currentIndex(), model().indexOf(12, 3));
  EXPECT_EQ(moved.count(), 0);
}

TEST_F(Views, AnEndOfTheProcessWhenTheSelectionMovesStopsAtTheView) {
  tests::TestWorld world;
  world.expectEnds(1);
  QObject context;
  QObject::connect(&sheet, &Spreadsheet::selectionMoved, &context,
                   [] { platform::process::Process::current().end(); });
  click(5, 3);
  EXPECT_EQ(world.process.ends, 1);
}

TEST_F(Views, CopyingGivesRowsAndTabsWithoutHiddenColumns) {
  sheet.Range(u"c:c"_s).setEntireColumnHidden(true);
  sheet.Range(u"B2:D3"_s).Select();
  QTest::keyClick(&view, Qt::Key_C, Qt::ControlModifier);
  EXPECT_EQ(QApplication::clipboard()->text(), u"r2c2\tr2c4\nr3c2\tr3c4"_s);
}

TEST_F(Views, CopyingKeepsATextWholeAndQuotesWhatWouldBreakTheTable) {
  const QString subject(10000, u'x');
  set(2, 1, subject);
  set(2, 2, u"one\ntwo \"three\""_s);
  set(2, 3, u"say \"hello\""_s);
  set(2, 4, u"\"quoted\""_s);
  sheet.Range(u"A2:D2"_s).Select();
  EXPECT_EQ(view.selectedText(),
            subject + u"\t\"one\ntwo \"\"three\"\"\"\tsay \"hello\"\t\"\"\"quoted\"\"\""_s);
}

TEST_F(Views, CopyingNothingLeavesTheClipboardAlone) {
  QApplication::clipboard()->setText(u"before"_s);
  sheet.Range(u"A1"_s).Select();
  QTest::keyClick(&view, Qt::Key_C, Qt::ControlModifier);
  EXPECT_EQ(QApplication::clipboard()->text(), u"before"_s);
}

TEST_F(Views, TypingChangesAndMovesNothing) {
  click(5, 3);
  QTest::keyClicks(&view, u"r9"_s);
  QTest::keyClick(&view, Qt::Key_F2);
  EXPECT_EQ(sheet.Range(u"C5"_s).Text(), u"r5c3"_s);
  EXPECT_EQ(selected(), u"$C$5"_s);
  EXPECT_FALSE(view.isPersistentEditorOpen(view.currentIndex()));
}

TEST_F(Views, TheTabKeyLeavesTheList) {
  EXPECT_FALSE(view.tabKeyNavigation());
}

TEST_F(Views, ThePlaceOfACellIsToldWhileItIsInSight) {
  const QRect cell = view.cellGeometry(5, 3);
  EXPECT_EQ(view.cellAt(cell.center()), (CellRect{5, 3, 1, 1}));
  EXPECT_EQ(view.cellGeometry(6, 3).top(), cell.top() + view.rowHeight(0));
  EXPECT_TRUE(view.cellGeometry(55, 3).isEmpty());
  EXPECT_TRUE(view.cellGeometry(5, 8).isEmpty());
  EXPECT_TRUE(view.cellGeometry(1, 1).isEmpty());
  EXPECT_EQ(view.cellAt(QPoint(2, 2)), std::nullopt) << "the corner";
  QSignalSpy moved(&view, &SheetView::cellsMoved);
  view.verticalScrollBar()->setValue(20);
  EXPECT_GE(moved.count(), 1);
  EXPECT_TRUE(view.cellGeometry(5, 3).isEmpty());
}

TEST_F(Views, ACutTextHasATooltipWithTheWholeTextAsPlainText) {
  EXPECT_EQ(toolTip(2, 2), QString());
  set(2, 2, u"<b>"_s + QString(300, u'w'));
  EXPECT_TRUE(toolTip(2, 2).contains(u"&lt;b&gt;"_s + QString(300, u'w')));
  set(2, 2, u"a\r\nb"_s);
  EXPECT_TRUE(toolTip(2, 2).contains(u">a\nb<"_s)) << "also a short text whose line breaks do not show";
}

TEST_F(Views, ATooltipIsNeverLargerThanAScreen) {
  set(2, 2, QString(1999, u'w') + u"\U0001F600"_s + QString(8000, u'w'));
  EXPECT_TRUE(toolTip(2, 2).contains(QString(1999, u'w') + u"\u2026</p>"_s)) << "no half of a character";
  set(2, 2, u"line\r\n"_s.repeated(300));
  EXPECT_EQ(toolTip(2, 2).count(u"line"_s), 25);
  set(2, 2, u"line\r"_s.repeated(300));
  EXPECT_EQ(toolTip(2, 2).count(u"line"_s), 25);
}

TEST_F(Views, WhateverATextHoldsItsRowStaysOneLineHigh) {
  const int height = view.rowHeight(0);
  int row = 2;
  for (const QString& text : {QString(10'000, u'x'), u"one\r\ntwo\nthree\u2028four"_s,
                              u"<h1>big</h1><img src='file:///etc/passwd'>"_s,
                              u"\u05E9\u05DC\u05D5\u05DD & \u0645\u0631\u062D\u0628\u0627"_s,
                              u"\U0001F469\u200D\U0001F4BB \U0001F1F8\U0001F1EA"_s, u"a\tb"_s}) {
    set(row, 1, text);
    QCoreApplication::processEvents();
    EXPECT_EQ(view.rowHeight(row - 2), height) << row;
    const QString shown = model().data(model().indexOf(row, 1), Qt::DisplayRole).toString();
    for (const QChar c : {u'\n', u'\r', u'\t', u'\u2028'}) EXPECT_FALSE(shown.contains(c)) << row;
    EXPECT_FALSE(view.viewport()->grab().isNull());
    ++row;
  }
}

TEST_F(Views, TheLinesBetweenCellsAreSeenOnADarkGroundToo) {
  for (const QColor& ground : {QColor(255, 255, 255), QColor(30, 30, 30), QColor(0, 0, 0)}) {
    const bool dark = ground.lightness() < 128;
    QPalette palette(ground, dark ? QColor(45, 45, 48) : QColor(239, 239, 239));
    palette.setColor(QPalette::Base, ground);
    palette.setColor(QPalette::Text, dark ? Qt::white : Qt::black);
    view.setPalette(palette);
    QCoreApplication::processEvents();
    const QRect cell = view.visualRect(model().indexOf(3, 2));
    const QImage picture = view.viewport()->grab().toImage();
    const QColor below = picture.pixelColor(cell.left() + 20, cell.bottom() + 1);
    const QColor beside = picture.pixelColor(cell.right() + 1, cell.top() + 4);
    EXPECT_GE(std::abs(below.lightness() - ground.lightness()), 25) << ground.name().toStdString();
    EXPECT_EQ(below, beside) << ground.name().toStdString();
  }
}

TEST_F(Views, NoLinesAreDrawnWhereTheSheetHasNone) {
  QPalette dark(QColor(45, 45, 48), QColor(45, 45, 48));
  dark.setColor(QPalette::Base, Qt::black);
  dark.setColor(QPalette::Text, Qt::white);
  view.setPalette(dark);
  view.setShowGrid(false);
  const QRect cell = view.visualRect(model().indexOf(3, 2));
  EXPECT_EQ(view.viewport()->grab().toImage().pixelColor(cell.left() + 60, cell.bottom()), QColor(Qt::black));
}

TEST_F(Views, AHeadingStandsOverItsColumnFromRightToLeftToo) {
  view.setLayoutDirection(Qt::RightToLeft);
  for (const int column : {1, 2}) {
    const int heading = view.model()->headerData(column - 1, Qt::Horizontal, Qt::TextAlignmentRole).toInt();
    EXPECT_TRUE(heading & Qt::AlignLeft && heading & Qt::AlignAbsolute) << column;
  }
  set(2, 2, u"\u05E9\u05DC\u05D5\u05DD"_s);
  EXPECT_TRUE(view.model()->headerData(1, Qt::Horizontal, Qt::TextAlignmentRole).toInt() & Qt::AlignRight);
}

TEST_F(Views, TheTitleIsTheAccessibleNameAndCellsReadTheirText) {
  sheet.setTitleBarCaption(u"Hours of the week"_s);
  EXPECT_EQ(view.accessibleName(), u"Hours of the week"_s);
  EXPECT_EQ(model().data(model().indexOf(2, 1), Qt::AccessibleTextRole), u"r2c1"_s);
}

TEST_F(Views, ColoursStandOnlyWhereTheyAreSetAndWhiteIsTheDesktopsOwn) {
  QPalette dark = view.palette();
  dark.setColor(QPalette::Base, QColor(30, 30, 30));
  dark.setColor(QPalette::Window, QColor(45, 45, 48));
  dark.setColor(QPalette::Text, Qt::white);
  view.setPalette(dark);
  sheet.Range(u"A3:G3"_s).setInteriorColor(0xFFFFFF);
  sheet.Range(u"A4:G4"_s).setInteriorColor(14215660);
  sheet.Range(u"A5:G5"_s).setInteriorColor(0xFFCC99);
  EXPECT_EQ(pixel(2, 2), QColor(30, 30, 30));
  EXPECT_EQ(pixel(3, 2), QColor(30, 30, 30));
  EXPECT_EQ(pixel(4, 2), QColor(45, 45, 48));
  EXPECT_EQ(pixel(5, 2), QColor(0x99, 0xCC, 0xFF));
}

TEST_F(Views, ARightToLeftTextStandsRightUnlessToldOtherwise) {
  set(2, 1, u"\u05E9\u05DC\u05D5\u05DD"_s);
  const QRect cell = view.cellGeometry(2, 1).translated(-view.viewport()->pos());
  const QImage image = view.viewport()->grab(cell.adjusted(2, 2, -2, -2)).toImage();
  const QColor ground = image.pixelColor(0, 0);
  int first = image.width();
  for (int x = 0; x < image.width() && first == image.width(); ++x)
    for (int y = 0; y < image.height(); ++y)
      if (image.pixelColor(x, y) != ground) first = x;
  EXPECT_GT(first, image.width() / 2);
}

TEST_F(Views, AllRowsHaveOneHeightAlsoWithAnotherFont) {
  EXPECT_EQ(view.verticalHeader()->sectionResizeMode(0), QHeaderView::Fixed);
  QFont large = view.font();
  large.setPointSizeF(large.pointSizeF() * 2);
  const int before = view.rowHeight(0);
  view.setFont(large);
  EXPECT_GT(view.rowHeight(0), before);
  EXPECT_EQ(view.rowHeight(0), view.rowHeight(30));
}

TEST(SheetView, OutlivesItsSheet) {
  auto sheet = std::make_unique<Spreadsheet>();
  sheet->setViewableRange(u"A1:G9"_s);
  SheetView view(*sheet);
  view.resize(500, 300);
  view.show();
  sheet->Range(u"B2"_s).Select();
  sheet.reset();
  EXPECT_EQ(view.model()->rowCount(), 0);
  QTest::keyClick(&view, Qt::Key_Down);
  QTest::keyClick(&view, Qt::Key_C, Qt::ControlModifier);
  view.resize(600, 300);
  QCoreApplication::processEvents();
  EXPECT_TRUE(view.cellGeometry(2, 1).isEmpty());
}

TEST_F(Views, ScrollsBackToWhereItWasOverOtherRows) {
  QCoreApplication::processEvents();
  view.verticalScrollBar()->setValue(20);
  const QPoint place = view.scrolledTo();
  EXPECT_EQ(place, QPoint(0, 20));
  view.verticalScrollBar()->setValue(0);
  sheet.setViewableRange(u"A1:G80"_s);
  view.scrollBackTo({0, 60});  // further than there were rows
  EXPECT_EQ(view.scrolledTo().y(), 60);
  sheet.setViewableRange(u"A1:G30"_s);
  view.scrollBackTo(place);
  EXPECT_EQ(view.scrolledTo().y(), view.verticalScrollBar()->maximum());
}

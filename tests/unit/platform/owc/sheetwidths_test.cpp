#include "platform/owc/view/sheetview.h"

#include <QHeaderView>
#include <QTest>

using namespace platform::owc;
using platform::basic::Value;
using namespace Qt::StringLiterals;

namespace {

class Widths : public testing::Test {
 protected:
  void fill(int rows, const QString& customer = u"Customer"_s) {
    for (int column = 1; column <= 7; ++column) sheet.Cell(1, column).setValue(Value(u"Heading"_s));
    for (int row = 2; row < 2 + rows; ++row) {
      sheet.Cell(row, 1).setValue(Value(u"Subject"_s));
      sheet.Cell(row, 2).setValue(Value(customer));
      sheet.Cell(row, 6).setValue(Value(u"7.25"_s));
    }
    sheet.setViewableRange(u"A1:G%1"_s.arg(rows + 1));
  }
  void show() {
    view.resize(900, 300);
    view.show();
  }
  int width(int column) const { return view.columnWidth(column - 1); }
  int allWidths() const { return view.horizontalHeader()->length(); }
  void drag(int column, int width) { view.horizontalHeader()->resizeSection(column - 1, width); }

  Spreadsheet sheet;
  SheetView view{sheet};
};

}  // namespace

TEST_F(Widths, ColumnsFitTheirContentsAndTheFirstTakesTheRest) {
  fill(5, u"A customer of middling length"_s);
  show();
  EXPECT_GT(width(2), width(6));
  EXPECT_LE(width(2), 200);
  EXPECT_EQ(allWidths(), view.viewport()->width());
  EXPECT_GT(width(1), width(2));
}

TEST_F(Widths, ALongTextMakesNoColumnWiderThanABound) {
  fill(5, QString(3000, u'w'));
  show();
  EXPECT_EQ(width(2), 200);
}

TEST_F(Widths, AWiderWindowWidensTheFirstColumnOnly) {
  fill(5);
  show();
  const int second = width(2), first = width(1);
  view.resize(1100, 300);
  QCoreApplication::processEvents();
  EXPECT_EQ(width(2), second);
  EXPECT_EQ(width(1), first + 200);
}

TEST_F(Widths, TheFirstColumnStaysReadableInANarrowWindow) {
  fill(5);
  show();
  view.resize(200, 300);
  QCoreApplication::processEvents();
  EXPECT_EQ(width(1), 120);
}

TEST_F(Widths, AListThatIsFilledLaterIsFittedThen) {
  fill(1);
  show();
  const int before = width(2);
  fill(5, u"A customer of middling length"_s);
  EXPECT_GT(width(2), before);
}

TEST_F(Widths, NewContentsLeaveTheWidthsAsTheyAre) {
  fill(5);
  show();
  const int before = width(2);
  fill(9, u"A customer of middling length"_s);
  EXPECT_EQ(width(2), before);
}

TEST_F(Widths, WhatTheUserHasSizedStaysOverNewContents) {
  fill(5);
  show();
  drag(2, 77);
  drag(1, 333);
  fill(40);
  fill(1);
  view.resize(1000, 300);
  QCoreApplication::processEvents();
  EXPECT_EQ(width(2), 77);
  EXPECT_EQ(width(1), 333);
}

TEST_F(Widths, WhatTheUserHasSizedStaysOverAnotherNumberOfColumns) {
  fill(5);
  show();
  drag(2, 77);
  sheet.setViewableRange(u"A1:J6"_s);
  EXPECT_EQ(width(2), 77);
}

TEST_F(Widths, DraggingColumnsByTheMouseCountsAsTheUsers) {
  fill(5);
  show();
  QHeaderView* header = view.horizontalHeader();
  const int edge = header->sectionViewportPosition(2) - 1, middle = header->height() / 2;
  const int before = width(2);
  QTest::mousePress(header->viewport(), Qt::LeftButton, {}, QPoint(edge, middle));
  QTest::mouseMove(header->viewport(), QPoint(edge + 15, middle));
  QTest::mouseMove(header->viewport(), QPoint(edge + 30, middle));
  QTest::mouseRelease(header->viewport(), Qt::LeftButton, {}, QPoint(edge + 30, middle));
  EXPECT_EQ(width(2), before + 30);
  fill(9);
  EXPECT_EQ(width(2), before + 30);
}

TEST_F(Widths, HiddenColumnsLeaveTheirRoomToTheFirst) {
  fill(5);
  show();
  const int first = width(1), third = width(3);
  sheet.Range(u"c:c"_s).setEntireColumnHidden(true);
  EXPECT_TRUE(view.isColumnHidden(2));
  EXPECT_EQ(width(1), first + third);
  sheet.Range(u"c:c"_s).setEntireColumnHidden(false);
  EXPECT_EQ(width(3), third);
  EXPECT_EQ(width(1), first);
}

TEST_F(Widths, TheSheetsWidthsCountCharactersAndInTheOldGenerationPixels) {
  Spreadsheet old(Generation::Office2000);
  SheetView oldView(old);
  old.setViewableRange(u"A1:J9"_s);
  old.Range(u"D:J"_s).setEntireColumnWidth(33);
  EXPECT_EQ(oldView.columnWidth(3), 33);
  sheet.setViewableRange(u"A1:J9"_s);
  sheet.Range(u"D:J"_s).setEntireColumnWidth(33 * 0.1384);
  EXPECT_EQ(width(4), 33);
}

TEST_F(Widths, AColumnThatTheSheetHasSizedIsNotFitted) {
  fill(5, u"A customer of middling length"_s);
  sheet.Range(u"B:B"_s).setEntireColumnWidth(60 * 0.1384);
  show();
  EXPECT_EQ(width(2), 60);
  fill(9);
  EXPECT_EQ(width(2), 60);
  drag(2, 90);
  fill(5);
  EXPECT_EQ(width(2), 90);
}

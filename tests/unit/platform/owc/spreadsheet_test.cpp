#include "platform/owc/spreadsheet.h"

#include "platform/basic/failure.h"

#include <QSignalSpy>

using namespace platform::owc;
using platform::Failure;
using platform::basic::Value;
using namespace Qt::StringLiterals;

namespace {

CellRect rectOf(const QList<QVariant>& signal) {
  return signal.at(0).value<CellRect>();
}

}  // namespace

TEST(Spreadsheet, TellsItsGeneration) {
  EXPECT_EQ(Spreadsheet().generation(), Generation::Office2003);
  EXPECT_EQ(Spreadsheet(Generation::Office2000).generation(), Generation::Office2000);
}

TEST(Spreadsheet, StartsOpenWithEventsAndAutomaticCalculation) {
  const Spreadsheet sheet;
  EXPECT_FALSE(sheet.ActiveSheet.Protection.Enabled);
  EXPECT_TRUE(sheet.EnableEvents);
  EXPECT_TRUE(Spreadsheet(Generation::Office2000).EnableAutoCalculate);
  EXPECT_EQ(sheet.Calculation, -4105);
  EXPECT_EQ(xlCalculationManual, -4135);
}

TEST(Spreadsheet, ShowsTheWholeSheetUntilARangeIsSet) {
  Spreadsheet sheet;
  EXPECT_EQ(sheet.Range(sheet.ViewableRange()).rect(), (CellRect{1, 1, maxRows, maxColumns}));
  EXPECT_EQ(sheet.viewableRect(), (CellRect{1, 1, maxRows, maxColumns}));
}

TEST(Spreadsheet, TheViewableRangeIsReadBackAsItWasSet) {
  Spreadsheet sheet;
  QSignalSpy layout(&sheet, &Spreadsheet::layoutChanged);
  sheet.setViewableRange(u"A1:G2"_s);
  sheet.setViewableRange(u"A1:G2"_s);
  EXPECT_EQ(sheet.ViewableRange(), u"A1:G2"_s);
  EXPECT_EQ(sheet.viewableRect(), (CellRect{1, 1, 2, 7}));
  EXPECT_EQ(layout.count(), 1);
}

TEST(Spreadsheet, AViewableRangeThatIsNoAddressIsRefused) {
  Spreadsheet sheet;
  sheet.setViewableRange(u"A1:G2"_s);
  EXPECT_THROW(sheet.setViewableRange(u"A1:G0"_s), Failure);
  EXPECT_EQ(sheet.ViewableRange(), u"A1:G2"_s);
}

TEST(Spreadsheet, AChangeOfARangeIsOneSignal) {
  Spreadsheet sheet;
  QSignalSpy changed(&sheet, &Spreadsheet::cellsChanged);
  Range list = sheet.Range(u"a2:g199"_s);
  list.setValue(Value(u"x"_s));
  list.Clear();
  list.setFontName(u"Tahoma"_s);
  ASSERT_EQ(changed.count(), 3);
  for (const QList<QVariant>& signal : changed) EXPECT_EQ(rectOf(signal), (CellRect{2, 1, 198, 7}));
}

TEST(Spreadsheet, TheSignalsOfTheViewComeAlsoWhileEventsAreOff) {
  Spreadsheet sheet;
  sheet.EnableEvents = false;
  QSignalSpy changed(&sheet, &Spreadsheet::cellsChanged), moved(&sheet, &Spreadsheet::selectionMoved);
  sheet.Range(u"B2"_s).setValue(Value(1.0));
  sheet.Range(u"B2"_s).Select();
  EXPECT_EQ(changed.count(), 1);
  EXPECT_EQ(moved.count(), 1);
}

TEST(Spreadsheet, SelectionRestsOnA1AndMovesBySelect) {
  Spreadsheet sheet;
  QSignalSpy moved(&sheet, &Spreadsheet::selectionMoved);
  EXPECT_EQ(sheet.Selection().Address(), u"$A$1"_s);
  sheet.Range(u"c5:d6"_s).Select();
  sheet.Range(u"c5:d6"_s).Select();
  EXPECT_EQ(sheet.Selection().Address(), u"$C$5:$D$6"_s);
  EXPECT_EQ(sheet.selectionRect(), (CellRect{5, 3, 2, 2}));
  EXPECT_EQ(moved.count(), 1);
}

TEST(Spreadsheet, HidingColumnsIsOneChangeOfTheLayout) {
  Spreadsheet sheet;
  QSignalSpy layout(&sheet, &Spreadsheet::layoutChanged);
  sheet.Range(u"c:d"_s).setEntireColumnHidden(true);
  EXPECT_TRUE(sheet.columnHidden(3));
  EXPECT_TRUE(sheet.columnHidden(4));
  EXPECT_TRUE(sheet.Range(u"C1"_s).EntireColumnHidden());
  EXPECT_FALSE(sheet.Range(u"C1:E1"_s).EntireColumnHidden());
  EXPECT_EQ(layout.count(), 1);
  sheet.Range(u"c:c"_s).setEntireColumnHidden(false);
  EXPECT_FALSE(sheet.columnHidden(3));
  EXPECT_TRUE(sheet.columnHidden(4));
}

TEST(Spreadsheet, AColumnsWidthIsItsOwnUntilSetAndNothingHidesIt) {
  Spreadsheet sheet;
  QSignalSpy layout(&sheet, &Spreadsheet::layoutChanged);
  EXPECT_EQ(sheet.columnWidth(1), 0);
  sheet.Range(u"A:B"_s).setEntireColumnWidth(29.06);
  EXPECT_EQ(sheet.columnWidth(2), 29.06);
  sheet.Range(u"B:B"_s).setEntireColumnWidth(0);
  EXPECT_TRUE(sheet.columnHidden(2));
  sheet.Range(u"B:B"_s).setEntireColumnWidth(5);
  EXPECT_FALSE(sheet.columnHidden(2));
  EXPECT_EQ(layout.count(), 3);
  EXPECT_THROW(sheet.Range(u"B:B"_s).setEntireColumnWidth(-1), Failure);
}

TEST(Spreadsheet, TheTitleIsToldOnceWhenItChanges) {
  Spreadsheet sheet;
  QSignalSpy layout(&sheet, &Spreadsheet::layoutChanged);
  sheet.setTitleBarCaption(u"Hours"_s);
  sheet.setTitleBarCaption(u"Hours"_s);
  EXPECT_EQ(sheet.TitleBarCaption(), u"Hours"_s);
  EXPECT_EQ(layout.count(), 1);
}

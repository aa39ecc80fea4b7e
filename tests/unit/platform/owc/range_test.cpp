#include "platform/basic/failure.h"
#include "platform/locale/locale.h"
#include "platform/owc/spreadsheet.h"

#include <QSignalSpy>

using namespace platform::owc;
using namespace platform::basic;
using platform::Failure;
using namespace Qt::StringLiterals;

namespace {

class Ranges : public testing::Test {
 protected:
  static Failure failureOf(const std::function<void()>& work) {
    try {
      work();
    } catch (const Failure& failure) {
      return failure;
    }
    return {0, {}};
  }
  void set(const QString& address, const Value& value) { sheet.Range(address).setValue(value); }
  QString text(const QString& address) { return sheet.Range(address).Text(); }

  platform::locale::ScopedLocale swedish{u"sv_SE"_s};
  Spreadsheet sheet;
};

}  // namespace

TEST_F(Ranges, AnEmptyCellYieldsEmptyAndNotTheEmptyText) {
  EXPECT_TRUE(IsEmpty(sheet.Range(u"A1"_s).Value()));
  EXPECT_EQ(text(u"A1"_s), QString());
}

TEST_F(Ranges, AValueComesBackAsItWasSet) {
  set(u"b3"_s, Value(u"7.25"_s));
  EXPECT_EQ(sheet.Range(u"$B$3"_s).Value(), Value(u"7.25"_s));
  set(u"b3"_s, Value(qint16(5)));
  EXPECT_EQ(sheet.Range(u"B3"_s).Value(), Value(qint16(5)));
}

TEST_F(Ranges, ATextStaysTheTextThatItIs) {
  for (const QString& subject :
       {u"=1+1"_s, u"-5"_s, u"'quoted"_s, u"2024-05-15"_s, u"7,25"_s, u"  blanks  "_s}) {
    set(u"A2"_s, Value(subject));
    EXPECT_EQ(sheet.Range(u"A2"_s).Value(), Value(subject));
    EXPECT_EQ(text(u"A2"_s), subject);
  }
}

TEST_F(Ranges, AValueGoesToEveryCellOfARangeAndTheFirstIsRead) {
  set(u"B2:C3"_s, Value(u"x"_s));
  EXPECT_EQ(text(u"B2"_s) + text(u"C2"_s) + text(u"B3"_s) + text(u"C3"_s), u"xxxx"_s);
  EXPECT_EQ(text(u"A2"_s) + text(u"D2"_s) + text(u"B1"_s) + text(u"B4"_s), QString());
  set(u"B2"_s, Value(u"first"_s));
  EXPECT_EQ(text(u"B2:C3"_s), u"first"_s);
}

TEST_F(Ranges, EmptyAndNullClearTheCell) {
  set(u"A1:A2"_s, Value(u"x"_s));
  set(u"A1"_s, Value());
  set(u"A2"_s, Value(Null{}));
  EXPECT_TRUE(IsEmpty(sheet.Range(u"A1"_s).Value()));
  EXPECT_TRUE(IsEmpty(sheet.Range(u"A2"_s).Value()));
}

TEST_F(Ranges, TheEmptyTextIsAValue) {
  set(u"A1"_s, Value(QString(u""_s)));
  EXPECT_FALSE(IsEmpty(sheet.Range(u"A1"_s).Value()));
}

TEST_F(Ranges, TextIsWhatTheSystemShows) {
  set(u"A1"_s, Value(7.25));
  EXPECT_EQ(text(u"A1"_s), u"7,25"_s);
  set(u"A1"_s, Value(true));
  EXPECT_EQ(text(u"A1"_s), u"TRUE"_s);
  set(u"A1"_s, Value(Date::of(2024, 5, 15)));
  EXPECT_EQ(text(u"A1"_s), u"2024-05-15"_s);
  set(u"A1"_s, Value(Currency::fromDouble(450.5)));
  EXPECT_EQ(text(u"A1"_s), u"450,5"_s);
}

TEST_F(Ranges, ANumberFormatAppliesToNumbersAndDatesAndNotToTexts) {
  set(u"A1:A3"_s, Value(3.0));
  sheet.Range(u"A1:A4"_s).setNumberFormat(u"00"_s);
  EXPECT_EQ(text(u"A1"_s), u"03"_s);
  set(u"A4"_s, Value(u"3"_s));
  EXPECT_EQ(text(u"A4"_s), u"3"_s);
  sheet.Range(u"A2"_s).setNumberFormat(u"Text"_s);
  EXPECT_EQ(text(u"A2"_s), u"3"_s);
  EXPECT_EQ(sheet.Range(u"A2"_s).format().numberFormat, u"Text"_s);
  set(u"A3"_s, Value(Date::of(2024, 5, 15)));
  sheet.Range(u"A3"_s).setNumberFormat(u"yyyy-mm-dd"_s);
  EXPECT_EQ(text(u"A3"_s), u"2024-05-15"_s);
}

TEST_F(Ranges, WhatIsNoAddressIsRefusedByName) {
  const Failure failure = failureOf([&] { (void)sheet.Range(u"A0"_s); });
  EXPECT_EQ(failure.number(), 1004);
  EXPECT_EQ(failure.description(), u"'A0' is no address of a range"_s);
}

TEST_F(Ranges, CellsCountFromOneRelativeToTheRangeAndMayLeaveIt) {
  const Range row = sheet.Range(u"a7:f7"_s);
  EXPECT_EQ(row.Cells(1, 1).Address(), u"$A$7"_s);
  EXPECT_EQ(row.Cells(1, 8).Address(), u"$H$7"_s);
  EXPECT_EQ(row.Cells(3, 2).Address(), u"$B$9"_s);
  EXPECT_EQ(sheet.Range(u"B7"_s).Cells(0, 0).Address(), u"$A$6"_s);
}

TEST_F(Ranges, CellsOutsideOfTheSheetAreRefused) {
  EXPECT_EQ(failureOf([&] { (void)sheet.Range(u"A1"_s).Cells(0, 1); }).number(), 1004);
  EXPECT_EQ(failureOf([&] { (void)sheet.Range(u"A1"_s).Cells(1, 0); }).number(), 1004);
  EXPECT_EQ(failureOf([&] { (void)sheet.Range(u"A2"_s).Cells(65536, 1); }).number(), 1004);
  EXPECT_EQ(failureOf([&] { (void)sheet.Range(u"B1"_s).Cells(1, 256); }).number(), 1004);
  EXPECT_EQ(
      failureOf([&] { (void)sheet.Range(u"B1"_s).Cells(std::numeric_limits<int>::max(), 1); }).description(),
      u"The cell (2147483647, 1) of $B$1 lies outside of the sheet"_s);
}

TEST_F(Ranges, ARangeTellsItsPlaceAndSize) {
  const Range range = sheet.Range(u"b3:d7"_s);
  EXPECT_EQ(range.Address(), u"$B$3:$D$7"_s);
  EXPECT_EQ(range.Row(), 3);
  EXPECT_EQ(range.Column(), 2);
  EXPECT_EQ(range.RowsCount(), 5);
  EXPECT_EQ(range.ColumnsCount(), 3);
  EXPECT_EQ(range.Count(), 15);
}

TEST_F(Ranges, ClearTakesContentsAndFormatsAndLeavesTheLock) {
  Range range = sheet.Range(u"A2:B3"_s);
  range.setValue(Value(u"x"_s));
  range.setFontName(u"Wingdings"_s);
  range.setFontSize(12);
  range.setFontBold(true);
  range.setInteriorColor(0xFFCC99);
  range.setHorizontalAlignment(xlCenter);
  range.setNumberFormat(u"Text"_s);
  range.setLocked(false);
  range.Clear();
  CellFormat unlocked;
  unlocked.locked = false;
  EXPECT_TRUE(IsEmpty(range.Value()));
  EXPECT_EQ(range.format(), unlocked);
  EXPECT_EQ(sheet.Range(u"B3"_s).format(), unlocked);
}

TEST_F(Ranges, ClearContentsLeavesTheFormats) {
  Range range = sheet.Range(u"A2"_s);
  range.setValue(Value(u"x"_s));
  range.setFontBold(true);
  range.ClearContents();
  EXPECT_TRUE(IsEmpty(range.Value()));
  EXPECT_TRUE(range.format().bold);
}

TEST_F(Ranges, ClearingTheListLeavesRow200AndColumnH) {
  set(u"A1:H200"_s, Value(u"x"_s));
  sheet.Range(u"a2:g199"_s).Clear();
  EXPECT_EQ(text(u"A1"_s) + text(u"A200"_s) + text(u"H2"_s), u"xxx"_s);
  EXPECT_EQ(text(u"A2"_s) + text(u"G199"_s), QString());
}

TEST_F(Ranges, AFreshCellIsTahomaOfEightPointsAndLocked) {
  const CellFormat format = sheet.Range(u"A1"_s).format();
  EXPECT_EQ(format.fontName, u"Tahoma"_s);
  EXPECT_EQ(format.fontSize, 8);
  EXPECT_FALSE(format.bold);
  EXPECT_EQ(format.color, -1);
  EXPECT_TRUE(format.locked);
  EXPECT_EQ(format.numberFormat, u"General"_s);
}

TEST_F(Ranges, AFontSizeThatNoFontHasIsRefused) {
  EXPECT_EQ(failureOf([&] { sheet.Range(u"A1"_s).setFontSize(0); }).number(), 1004);
  EXPECT_EQ(failureOf([&] { sheet.Range(u"A1"_s).setFontSize(410); }).number(), 1004);
  EXPECT_EQ(sheet.Range(u"A1"_s).format().fontSize, 8);
}

class ProtectedRanges : public Ranges {
 protected:
  ProtectedRanges() {
    set(u"A2:G3"_s, Value(u"old"_s));
    sheet.Range(u"A2:D200"_s).setLocked(false);
    sheet.Range(u"f2:g200"_s).setLocked(false);
    sheet.ActiveSheet.Protection.Enabled = true;
  }
};

TEST_F(ProtectedRanges, ALockedCellRefusesEveryChangeAndIsNamed) {
  Range cell = sheet.Range(u"e2"_s);
  const QList<std::function<void()>> changes{[&] { cell.setValue(Value(u"new"_s)); },
                                             [&] { cell.setValue({}); },
                                             [&] { cell.Clear(); },
                                             [&] { cell.ClearContents(); },
                                             [&] { cell.setFontName(u"Wingdings"_s); },
                                             [&] { cell.setFontSize(9); },
                                             [&] { cell.setFontBold(true); },
                                             [&] { cell.setInteriorColor(1); },
                                             [&] { cell.setHorizontalAlignment(xlRight); },
                                             [&] { cell.setLocked(false); },
                                             [&] { cell.setNumberFormat(u"Text"_s); }};
  QSignalSpy changed(&sheet, &Spreadsheet::cellsChanged);
  for (const auto& change : changes) {
    const Failure failure = failureOf(change);
    EXPECT_EQ(failure.number(), 1004);
    EXPECT_EQ(failure.description(), u"The cell $E$2 is locked and the sheet is protected"_s);
  }
  EXPECT_EQ(cell.Text(), u"old"_s);
  EXPECT_EQ(cell.format(), CellFormat());
  EXPECT_EQ(changed.count(), 0);
}

TEST_F(ProtectedRanges, OneLockedCellKeepsTheWholeRangeAsItIs) {
  const Failure failure = failureOf([&] { sheet.Range(u"A2:G3"_s).ClearContents(); });
  EXPECT_EQ(failure.description(), u"The cell $E$2 is locked and the sheet is protected"_s);
  EXPECT_EQ(text(u"A2"_s) + text(u"G3"_s), u"oldold"_s);
}

TEST_F(ProtectedRanges, AnUnlockedCellTakesChanges) {
  set(u"B2"_s, Value(u"new"_s));
  sheet.Range(u"B2"_s).setFontBold(true);
  EXPECT_EQ(text(u"B2"_s), u"new"_s);
}

TEST_F(ProtectedRanges, WithoutProtectionTheLockMeansNothing) {
  sheet.ActiveSheet.Protection.Enabled = false;
  set(u"E2"_s, Value(u"new"_s));
  EXPECT_EQ(text(u"E2"_s), u"new"_s);
}

TEST_F(ProtectedRanges, ColumnsMayBeHiddenAndSized) {
  sheet.Range(u"E:E"_s).setEntireColumnHidden(true);
  sheet.Range(u"F1"_s).setEntireColumnWidth(12);
  EXPECT_TRUE(sheet.columnHidden(5));
  EXPECT_EQ(sheet.columnWidth(6), 12);
}

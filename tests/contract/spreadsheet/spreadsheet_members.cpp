#include "tests/contract/spreadsheet/spreadsheet_context.h"

namespace contract {

namespace {

using Members = QList<std::pair<const char*, std::function<void()>>>;

}  // namespace

TEST_P(Sheets, RefuseTheOtherGenerationsMembersWith438) {
  const Members old{
      {"EnableAutoCalculate", [&] { sheet.EnableAutoCalculate = false; }},
      {"DisplayColHeaders", [&] { sheet.DisplayColHeaders = false; }},
      {"DisplayRowHeaders", [&] { sheet.DisplayRowHeaders = false; }},
      {"DisplayHorizontalScrollBar", [&] { sheet.DisplayHorizontalScrollBar = false; }},
      {"DisplayVerticalScrollBar", [&] { sheet.DisplayVerticalScrollBar = false; }},
      {"HAlignment", [&] { at(u"A1"_s).setHAlignment(2); }},
      {"HAlignment read", [&] { (void)at(u"A1"_s).HAlignment(); }},
      {"AutoFitColumns", [&] { at(u"A1"_s).AutoFitColumns(); }},
      {"FreezePanes", [&] { at(u"A1"_s).FreezePanes(16); }},
      {"AllowSizingAllColumns", [&] { sheet.ActiveSheet.Protection.AllowSizingAllColumns = true; }},
      {"AllowSizingAllRows", [&] { sheet.ActiveSheet.Protection.AllowSizingAllRows = true; }}};
  const Members newer{
      {"Calculation", [&] { sheet.Calculation = owc::xlCalculationManual; }},
      {"Calculation read", [&] { (void)static_cast<int>(sheet.Calculation); }},
      {"DisplayColumnHeadings", [&] { sheet.DisplayColumnHeadings = false; }},
      {"DisplayRowHeadings", [&] { sheet.DisplayRowHeadings = false; }},
      {"DisplayWorkbookTabs", [&] { sheet.DisplayWorkbookTabs = false; }},
      {"ActiveWindow", [&] { (void)sheet.ActiveWindow(); }},
      {"HorizontalAlignment", [&] { at(u"A1"_s).setHorizontalAlignment(owc::xlCenter); }},
      {"AutoFit", [&] { at(u"A1"_s).EntireColumn().AutoFit(); }},
      {"AllowFormattingColumns", [&] { sheet.ActiveSheet.Protection.AllowFormattingColumns = true; }},
      {"AllowFormattingRows", [&] { sheet.ActiveSheet.Protection.AllowFormattingRows = true; }}};
  for (const auto& [name, use] : nine ? old : newer) EXPECT_EQ(failureOf(use), 0) << name;
  for (const auto& [name, use] : nine ? newer : old) EXPECT_EQ(failureOf(use), 438) << name;
}

TEST_P(Sheets, SayWhatIsRefusedInTheComponentsWords) {
  try {
    if (nine)
      (void)sheet.ActiveWindow();
    else
      sheet.DisplayColHeaders = true;
    FAIL();
  } catch (const Failure& failure) {
    EXPECT_EQ(failure.description(), u"Object doesn't support this property or method"_s);
    EXPECT_EQ(failure.source(), nine ? u"ActiveWindow"_s : u"DisplayColHeaders"_s);
  }
}

TEST_P(Sheets, ShowHeadingsAndScrollBarsUnderTheGenerationsNames) {
  QObject::connect(&sheet, &owc::Spreadsheet::layoutChanged, &context, [this] { told.append(u"layout"_s); });
  if (nine) {
    sheet.DisplayColHeaders = false;
    sheet.DisplayRowHeaders = false;
    sheet.DisplayHorizontalScrollBar = false;
    sheet.DisplayVerticalScrollBar = false;
    EXPECT_FALSE(sheet.DisplayColHeaders);
  } else {
    sheet.DisplayColumnHeadings = false;
    sheet.DisplayRowHeadings = false;
    sheet.ActiveWindow().DisplayHorizontalScrollBar = false;
    sheet.ActiveWindow().DisplayVerticalScrollBar = false;
    EXPECT_FALSE(sheet.ActiveWindow().DisplayVerticalScrollBar);
  }
  sheet.DisplayGridlines = false;
  const owc::SheetDisplay& display = sheet.display();
  EXPECT_FALSE(display.columnHeadings || display.rowHeadings || display.horizontalScrollBar ||
               display.verticalScrollBar || display.gridlines);
  EXPECT_EQ(told.size(), 5) << "the view hears of each";
}

TEST_P(Sheets, KeepWhatTheyHaveNothingToShowFor) {
  sheet.AllowPropertyToolbox = false;
  sheet.DisplayTitleBar = false;
  sheet.DisplayToolbar = false;
  EXPECT_FALSE(sheet.AllowPropertyToolbox || sheet.DisplayTitleBar || sheet.DisplayToolbar);
  if (nine) return;
  sheet.DisplayWorkbookTabs = false;
  sheet.ActiveWindow().EnableResize = false;
  EXPECT_FALSE(sheet.DisplayWorkbookTabs);
  EXPECT_FALSE(sheet.ActiveWindow().EnableResize);
}

TEST_P(Sheets, AlignByTheGenerationsNumbers) {
  const auto own = [&] { return at(u"A1"_s).format().horizontalAlignment; };
  const QList<std::pair<int, int>> numbers =
      nine ? QList<std::pair<int, int>>{{0, 1}, {2, 2}, {1, 3}}
           : QList<std::pair<int, int>>{{-4131, 1}, {-4108, 2}, {-4152, 3}, {1, 0}};
  for (const auto& [number, aligned] : numbers) {
    if (nine)
      at(u"A1"_s).setHAlignment(number);
    else
      at(u"A1"_s).setHorizontalAlignment(number);
    EXPECT_EQ(own(), aligned) << number;
    EXPECT_EQ(nine ? at(u"A1"_s).HAlignment() : at(u"A1"_s).HorizontalAlignment(), number);
  }
  EXPECT_EQ(failureOf([&] { nine ? at(u"A1"_s).setHAlignment(7) : at(u"A1"_s).setHorizontalAlignment(7); }),
            1004);
}

TEST_P(Sheets, MoveAfterEnterDownUnlessTold) {
  EXPECT_TRUE(sheet.MoveAfterReturn);
  EXPECT_EQ(sheet.returnStep(), std::pair(1, 0));
  sheet.setMoveAfterReturnDirection(nine ? 2 : -4161);
  EXPECT_EQ(sheet.returnStep(), std::pair(0, 1));
  EXPECT_EQ(sheet.MoveAfterReturnDirection(), nine ? 2 : -4161);
  EXPECT_EQ(failureOf([&] { sheet.setMoveAfterReturnDirection(nine ? -4161 : 2); }), 1004);
}

TEST_P(Sheets, FreezePanesInTheGenerationsWay) {
  if (nine) {
    at(u"A2"_s).FreezePanes(4);
    EXPECT_EQ(sheet.frozenAt(), (owc::FrozenAt{2, 1}));
    sheet.ActiveSheet.Columns().FreezePanes(16);
    EXPECT_EQ(failureOf([&] { at(u"A2"_s).FreezePanes(5); }), 1004);
  } else {
    sheet.ActiveWindow().FreezePanes = false;
    at(u"A2"_s).Select();
    sheet.ActiveWindow().FreezePanes = true;
    EXPECT_EQ(sheet.frozenAt(), (owc::FrozenAt{2, 1}));
    at(u"C5"_s).Select();
    EXPECT_EQ(sheet.frozenAt(), (owc::FrozenAt{2, 1})) << "the panes do not follow the selection";
    sheet.ActiveWindow().FreezePanes = false;
  }
  EXPECT_EQ(sheet.frozenAt(), owc::FrozenAt());
}

TEST_P(Sheets, MeasureColumnsInTheGenerationsUnit) {
  at(u"D:D"_s).setEntireColumnWidth(nine ? 33 : 33 * 0.1384);
  EXPECT_EQ(sheet.widthInPixels(sheet.columnWidth(4)), 33);
  EXPECT_EQ(at(u"D2"_s).EntireColumn().ColumnWidth(), nine ? 33 : 33 * 0.1384);
  at(u"D:D"_s).setEntireColumnWidth(0);
  EXPECT_EQ(at(u"D2"_s).ColumnWidth(), 0);
}

TEST_P(Sheets, FitColumnsToTheirLongestText) {
  set(u"A2"_s, u"a long subject of an appointment"_s);
  set(u"B2"_s, u"x"_s);
  if (nine)
    at(u"A1:B1"_s).AutoFitColumns();
  else
    at(u"A1:B1"_s).EntireColumn().AutoFit();
  EXPECT_GT(sheet.columnWidth(1), 4 * sheet.columnWidth(2));
  EXPECT_GT(sheet.columnWidth(2), 0);
  if (nine) return;
  EXPECT_EQ(failureOf([&] { at(u"A1:B1"_s).AutoFit(); }), 1004);
}

TEST_P(Sheets, GiveTheRangeAtAPlaceOfTheControl) {
  sheet.setViewableRange(u"A1:G9"_s);
  constexpr int row = owc::PlainScreen::rowHeight;
  EXPECT_EQ(at(u"A1"_s).Top(), 0);
  EXPECT_EQ(at(u"F4"_s).Top(), 3 * row);
  if (nine) return;
  const owc::Window& window = sheet.ActiveWindow();
  ASSERT_TRUE(window.RangeFromPoint(150, 3 * row));
  EXPECT_EQ(window.RangeFromPoint(150, 3 * row)->Row(), 4);
  EXPECT_EQ(window.RangeFromPoint(150, 3 * row - 1)->Row(), 3);
  EXPECT_FALSE(window.RangeFromPoint(150, 9 * row)) << "below the last row";
  EXPECT_FALSE(window.RangeFromPoint(-1, row));
  EXPECT_FALSE(window.RangeFromPoint(2, row)) << "on the row headings";
  EXPECT_FALSE(window.RangeFromPoint(5000, row));
}

TEST_P(Sheets, KeepTheAllowancesOfProtection) {
  owc::Protection& protection = sheet.ActiveSheet.Protection;
  protection.AllowDeletingColumns = protection.AllowInsertingColumns = protection.AllowInsertingRows = false;
  protection.AllowFiltering = protection.AllowSorting = true;
  if (nine)
    protection.AllowSizingAllColumns = false;
  else
    protection.AllowFormattingColumns = false;
  EXPECT_TRUE(protection.userMaySizeColumns()) << "not protected yet";
  protection.Enabled = true;
  EXPECT_FALSE(protection.userMaySizeColumns());
}

TEST_P(Sheets, SwitchTheFilterOnAndOffWhileItIsEnabled) {
  sheet.ActiveSheet.EnableAutoFilter = true;
  sheet.ActiveSheet.UsedRange().AutoFilter();
  EXPECT_TRUE(sheet.ActiveSheet.AutoFilterMode);
  sheet.ActiveSheet.UsedRange().AutoFilter();
  EXPECT_FALSE(sheet.ActiveSheet.AutoFilterMode);
  sheet.ActiveSheet.EnableAutoFilter = false;
  sheet.ActiveSheet.UsedRange().AutoFilter();
  EXPECT_FALSE(sheet.ActiveSheet.AutoFilterMode);
}

TEST_P(Sheets, ReachWholeColumnsAndRows) {
  EXPECT_EQ(at(u"B3:C4"_s).EntireColumn().Address(), u"$B:$C"_s);
  EXPECT_EQ(at(u"B3:C4"_s).EntireRow().Address(), u"$3:$4"_s);
  EXPECT_EQ(sheet.ActiveSheet.Rows().Count(), owc::maxRows * owc::maxColumns);
  EXPECT_EQ(at(u"B3:C4"_s).Cells().Count(), 4);
}

}  // namespace contract

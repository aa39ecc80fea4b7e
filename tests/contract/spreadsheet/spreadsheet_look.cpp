#include "tests/contract/spreadsheet/spreadsheet_context.h"

namespace contract {

namespace {

const owc::BorderLine& line(owc::Spreadsheet& sheet, const QString& address, owc::Edge edge) {
  static owc::BorderLine held;
  held = sheet.Range(address).format().border(edge);
  return held;
}

}  // namespace

TEST_P(Sheets, DrawAllBordersOfARangeThinAndGrey) {
  at(u"B2:C3"_s).Borders().setColor(0xC0C0C0);
  at(u"B2:C3"_s).Borders().setWeight(sheet.Constants.owcLineWeightThin);
  for (const owc::Edge edge : {owc::Edge::Left, owc::Edge::Top, owc::Edge::Right, owc::Edge::Bottom})
    EXPECT_EQ(line(sheet, u"C3"_s, edge), (owc::BorderLine{owc::LineStyle::Solid, 2, 0xC0C0C0}));
  EXPECT_EQ(line(sheet, u"D3"_s, owc::Edge::Left).style, owc::LineStyle::None);
  EXPECT_EQ(at(u"B2"_s).Borders().Color(), 0xC0C0C0);
  EXPECT_EQ(at(u"B2"_s).Borders().Weight(), 2);
}

TEST_P(Sheets, DashTheRightEdgeOfAColumn) {
  owc::Borders right = at(u"C1"_s).EntireColumn().Borders().Item(nine ? 3 : 10);
  right.setLineStyle(nine ? 3 : -4118);
  right.setColor(0);
  if (!nine) right.setWeight(-4138);
  const owc::BorderLine& drawn = line(sheet, u"C500"_s, owc::Edge::Right);
  EXPECT_EQ(drawn.style, nine ? owc::LineStyle::Dash : owc::LineStyle::Dot);
  EXPECT_EQ(drawn.weight, nine ? 2 : 3);
  EXPECT_EQ(line(sheet, u"C500"_s, owc::Edge::Left).style, owc::LineStyle::None);
  EXPECT_EQ(right.LineStyle(), nine ? 3 : -4118);
  EXPECT_EQ(right.Weight(), nine ? 2 : -4138);
}

TEST_P(Sheets, DashTheTopEdgeOfARow) {
  at(u"A9"_s).EntireRow().Borders().Item(nine ? 4 : 8).setLineStyle(nine ? 3 : -4118);
  EXPECT_NE(line(sheet, u"J9"_s, owc::Edge::Top).style, owc::LineStyle::None);
  EXPECT_EQ(line(sheet, u"J9"_s, owc::Edge::Right).style, owc::LineStyle::None);
  EXPECT_EQ(line(sheet, u"J8"_s, owc::Edge::Top).style, owc::LineStyle::None);
}

TEST_P(Sheets, DrawAnEdgeOnlyAtTheEndOfTheRange) {
  at(u"B2:D4"_s).Borders().Item(nine ? 3 : 10).setColor(1);
  EXPECT_EQ(line(sheet, u"D3"_s, owc::Edge::Right).style, owc::LineStyle::Solid);
  EXPECT_EQ(line(sheet, u"C3"_s, owc::Edge::Right).style, owc::LineStyle::None);
  at(u"B2:D4"_s).Borders().Item(nine ? 4 : 8).setColor(1);
  EXPECT_EQ(line(sheet, u"C2"_s, owc::Edge::Top).style, owc::LineStyle::Solid);
  EXPECT_EQ(line(sheet, u"C3"_s, owc::Edge::Top).style, owc::LineStyle::None);
}

TEST_P(Sheets, RefuseBordersOfTheOtherGenerationsNumbers) {
  EXPECT_EQ(failureOf([&] { (void)at(u"A1"_s).Borders().Item(nine ? 10 : 3); }), 1004);
  EXPECT_EQ(failureOf([&] { at(u"A1"_s).Borders().setLineStyle(nine ? -4118 : 3); }), 1004);
  EXPECT_EQ(failureOf([&] { at(u"A1"_s).Borders().setWeight(9); }), 1004);
}

TEST_P(Sheets, ClearBordersWithTheFormats) {
  at(u"A1"_s).Borders().setColor(1);
  at(u"A1"_s).ClearFormats();
  EXPECT_EQ(at(u"A1"_s).format(), owc::CellFormat());
}

TEST_P(Sheets, RefuseBordersOnLockedCellsOfAProtectedSheet) {
  sheet.ActiveSheet.Protection.Enabled = true;
  EXPECT_EQ(failureOf([&] { at(u"A1"_s).Borders().setColor(1); }), 1004);
}

TEST_P(Sheets, ReadAnInteriorColourAsWhiteUntilOneIsSet) {
  EXPECT_EQ(at(u"A1"_s).InteriorColor(), 0xFFFFFF);
  at(u"A1"_s).setInteriorColor(16764057);
  EXPECT_EQ(at(u"A1"_s).InteriorColor(), 16764057);
}

}  // namespace contract

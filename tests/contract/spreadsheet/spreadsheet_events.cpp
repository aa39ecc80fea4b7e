#include "tests/contract/spreadsheet/spreadsheet_context.h"

namespace contract {

TEST_P(Sheets, TellAnEditInTheGenerationsOwnOrder) {
  set(u"F2"_s, u"7"_s);
  at(u"F2"_s).Select();
  toldSince();
  EXPECT_TRUE(type(u"F2"_s, u"8"_s));
  if (nine)
    EXPECT_EQ(toldSince(),
              QStringList({u"EndEdit $F$2 '8' over '7'"_s, u"SelectionChanging $F$3 from $F$2"_s}));
  else
    EXPECT_EQ(toldSince(), QStringList({u"EndEdit $F$2 '8' over '7'"_s, u"SheetChange $F$2 '8'"_s,
                                        u"SelectionChange $F$3"_s, u"Calculate"_s}));
  EXPECT_EQ(text(u"F2"_s), u"8"_s);
}

TEST_P(Sheets, LeaveTheCellWhenAHandlerCancelsTheEdit) {
  set(u"F2"_s, u"7"_s);
  at(u"F2"_s).Select();
  toldSince();
  cancels = true;
  EXPECT_FALSE(type(u"F2"_s, u"8"_s));
  EXPECT_EQ(toldSince(), QStringList({u"EndEdit $F$2 '8' over '7'"_s}));
  EXPECT_EQ(text(u"F2"_s), u"7"_s);
  EXPECT_EQ(sheet.Selection().Address(), u"$F$2"_s);
}

TEST_P(Sheets, ChangeNothingWhenTheUserLeavesTheTextAsItWas) {
  set(u"D2"_s, Value(1.5));
  toldSince();
  EXPECT_TRUE(editing.end({2, 4, 1, 1}, {}, {}));
  EXPECT_EQ(toldSince(), QStringList({u"EndEdit $D$2 '1.5' over '1.5'"_s}));
  EXPECT_EQ(at(u"D2"_s).Value(), Value(1.5));
}

TEST_P(Sheets, TellNothingWhileEventsAreOff) {
  sheet.EnableEvents = false;
  type(u"F2"_s, u"8"_s);
  at(u"A5"_s).Select();
  set(u"A1"_s, u"x"_s);
  sheet.Undo();
  sheet.ActiveSheet.Calculate();
  EXPECT_EQ(told, QStringList());
}

TEST_P(Sheets, TellChangesByCodeInTheNewerGenerationsOnly) {
  set(u"B2"_s, u"Acme"_s);
  at(u"A2:G9"_s).ClearContents();
  const QStringList expected{u"SheetChange $B$2 'Acme'"_s, u"Calculate"_s, u"SheetChange $A$2:$G$9 ''"_s,
                             u"Calculate"_s};
  EXPECT_EQ(toldSince(), nine ? QStringList() : expected);
}

TEST_P(Sheets, TellNothingOfFormats) {
  at(u"A1:B9"_s).setFontBold(true);
  at(u"A1:B9"_s).Borders().setColor(0);
  at(u"A1:B9"_s).ClearFormats();
  EXPECT_EQ(told, QStringList());
}

TEST_P(Sheets, TellEachMoveOfTheSelectionOnce) {
  at(u"B5"_s).Select();
  at(u"b5"_s).Select();
  EXPECT_EQ(toldSince(),
            QStringList(nine ? u"SelectionChanging $B$5 from $A$1"_s : u"SelectionChange $B$5"_s));
}

TEST_P(Sheets, HoldTheCalculationEventBackWhileCalculationIsManual) {
  if (nine)
    sheet.EnableAutoCalculate = false;
  else
    sheet.Calculation = owc::xlCalculationManual;
  type(u"A2"_s, u"x"_s);
  EXPECT_FALSE(told.contains(u"Calculate"_s));
  toldSince();
  sheet.ActiveSheet.Calculate();
  EXPECT_EQ(toldSince(), nine ? QStringList() : QStringList(u"Calculate"_s));
}

TEST_P(Sheets, UndoTheLastEditOnceAndTellIt) {
  set(u"B2"_s, u"Acme"_s);
  type(u"B2"_s, u"Unknown"_s);
  toldSince();
  sheet.Undo();
  EXPECT_EQ(text(u"B2"_s), u"Acme"_s);
  EXPECT_EQ(toldSince(), nine ? QStringList() : QStringList({u"SheetChange $B$2 'Acme'"_s, u"Calculate"_s}));
  sheet.Undo();
  EXPECT_EQ(text(u"B2"_s), u"Acme"_s) << "one step, and nothing does it again";
  EXPECT_EQ(toldSince(), QStringList());
}

TEST_P(Sheets, UndoWithinTheHandlerOfTheChange) {
  if (nine) return;  // it has no such event
  set(u"B2"_s, u"Acme"_s);
  bool undone = false;
  onChange = [&] {
    if (!std::exchange(undone, true)) sheet.Undo();
  };
  type(u"B2"_s, u"Unknown"_s);
  EXPECT_EQ(text(u"B2"_s), u"Acme"_s);
}

TEST_P(Sheets, UndoAChangeOfOneCellByCode) {
  set(u"C3"_s, u"old"_s);
  set(u"C3"_s, u"new"_s);
  sheet.Undo();
  EXPECT_EQ(text(u"C3"_s), u"old"_s);
  set(u"C3"_s, u"new"_s);
  at(u"C3"_s).Clear();
  sheet.Undo();
  EXPECT_EQ(text(u"C3"_s), u"new"_s);
}

TEST_P(Sheets, UndoNothingAfterAChangeOfSeveralCellsByCode) {
  type(u"B2"_s, u"Acme"_s);
  at(u"D2:E9"_s).setValue(Value(1.0));
  sheet.Undo();
  EXPECT_EQ(text(u"B2"_s) + text(u"E9"_s), u"Acme1"_s);
}

TEST_P(Sheets, UndoBringsBackAFormulaAndWhatItCameTo) {
  set(u"A1"_s, Value(2.0));
  formula(u"B1"_s, u"=A1*3"_s);
  type(u"B1"_s, u"x"_s);
  sheet.Undo();
  EXPECT_EQ(at(u"B1"_s).Formula(), u"=A1*3"_s);
  EXPECT_EQ(text(u"B1"_s), u"6"_s);
}

TEST_P(Sheets, UndoRefusesACellThatIsLockedByNow) {
  set(u"B2"_s, u"old"_s);
  type(u"B2"_s, u"new"_s);
  sheet.ActiveSheet.Protection.Enabled = true;
  EXPECT_EQ(failureOf([&] { sheet.Undo(); }), 1004);
  editing.undo();  // the user's own
  EXPECT_EQ(text(u"B2"_s), u"new"_s);
  sheet.ActiveSheet.Protection.Enabled = false;
  sheet.Undo();
  EXPECT_EQ(text(u"B2"_s), u"old"_s);
}

TEST_P(Sheets, DropAnEditWhoseCellTheHandlerHasLocked) {
  set(u"B2"_s, u"old"_s);
  QObject::connect(&sheet, &owc::Spreadsheet::EndEdit, &context,
                   [this] { sheet.ActiveSheet.Protection.Enabled = true; });
  type(u"B2"_s, u"new"_s);
  EXPECT_EQ(text(u"B2"_s), u"old"_s);
}

TEST_P(Sheets, PasteATableAsOneChangeAndOneStep) {
  sheet.setViewableRange(u"A1:G9"_s);
  set(u"B3"_s, u"old"_s);
  toldSince();
  editing.paste({2, 1, 1, 1}, {{u"a"_s, u"b"_s}, {u"=1+1"_s, u"d"_s}});
  EXPECT_EQ(text(u"A2"_s) + text(u"B2"_s) + text(u"A3"_s) + text(u"B3"_s), u"ab=1+1d"_s)
      << "what is pasted calculates nothing";
  EXPECT_EQ(sheet.Selection().Address(), u"$A$2:$B$3"_s);
  if (!nine) {
    EXPECT_EQ(toldSince(),
              QStringList({u"SheetChange $A$2:$B$3 'a'"_s, u"SelectionChange $A$2:$B$3"_s, u"Calculate"_s}));
  }
  sheet.Undo();
  EXPECT_EQ(text(u"A2"_s) + text(u"B3"_s), u"old"_s);
}

TEST_P(Sheets, PasteOnlyIntoOpenShownCells) {
  sheet.setViewableRange(u"A1:D3"_s);
  at(u"B2"_s).setValue(Value(u"locked"_s));
  at(u"A1:D9"_s).setLocked(false);
  at(u"B2"_s).setLocked(true);
  at(u"C:C"_s).setEntireColumnHidden(true);
  sheet.ActiveSheet.Protection.Enabled = true;
  const QStringList row{u"1"_s, u"2"_s, u"3"_s, u"4"_s};
  editing.paste({2, 1, 1, 1}, {row, row, row});
  EXPECT_EQ(text(u"A2"_s) + text(u"B2"_s) + text(u"C2"_s) + text(u"D2"_s), u"1locked3"_s);
  EXPECT_EQ(text(u"A4"_s) + text(u"E2"_s), QString()) << "outside of what is shown";
}

TEST_P(Sheets, FillTheWholeSelectionWithOnePastedText) {
  sheet.setViewableRange(u"A1:G9"_s);
  editing.paste({2, 2, 3, 2}, {{u"8"_s}});
  EXPECT_EQ(text(u"B2"_s) + text(u"C4"_s) + text(u"D2"_s) + text(u"B5"_s), u"88"_s);
}

TEST_P(Sheets, ClearOnlyOpenCellsAsOneStep) {
  at(u"A2:C2"_s).setValue(Value(u"x"_s));
  at(u"A2:C2"_s).setLocked(false);
  at(u"B2"_s).setLocked(true);
  sheet.ActiveSheet.Protection.Enabled = true;
  toldSince();
  editing.clear({1, 1, owc::maxRows, 3});
  EXPECT_EQ(text(u"A2"_s) + text(u"B2"_s) + text(u"C2"_s), u"x"_s);
  EXPECT_EQ(toldSince(), nine ? QStringList() : QStringList({u"SheetChange $A$2:$C$2 ''"_s, u"Calculate"_s}));
  sheet.Undo();
  EXPECT_EQ(text(u"A2"_s) + text(u"B2"_s) + text(u"C2"_s), u"xxx"_s);
}

TEST_P(Sheets, TellNothingWhenThereIsNothingToClear) {
  editing.clear({1, 1, 9, 9});
  editing.paste({1, 1, 1, 1}, {});
  EXPECT_EQ(told, QStringList());
}

}  // namespace contract

#include "tests/contract/spreadsheet/spreadsheet_context.h"

namespace contract {

TEST_P(Sheets, KeepTypedTextsAsTheyAreInEveryLocale) {
  for (const QString& name : {u"en_US"_s, u"de_DE"_s, u"sv_SE"_s}) {
    const platform::locale::ScopedLocale other(name);
    for (const QString& typed : {u"1.5"_s, u"007"_s, u"2024-05-15"_s, u"true"_s, u" x "_s, u"-3"_s}) {
      type(u"F2"_s, typed);
      EXPECT_EQ(at(u"F2"_s).Value(), Value(typed)) << qUtf8Printable(name);
    }
  }
}

TEST_P(Sheets, ReadATypedEqualsSignAsAFormulaAndAnApostropheAsAText) {
  type(u"A1"_s, u"=1+2"_s);
  EXPECT_EQ(text(u"A1"_s), u"3"_s);
  EXPECT_EQ(editing.textToEdit(1, 1), u"=1+2"_s);
  type(u"A1"_s, u"'=1+2"_s);
  EXPECT_EQ(at(u"A1"_s).Value(), Value(u"=1+2"_s));
  EXPECT_EQ(editing.textToEdit(1, 1), u"'=1+2"_s) << "so that ending the edit gives the same again";
  type(u"A1"_s, u"="_s);
  EXPECT_EQ(at(u"A1"_s).Value(), Value(u"="_s));
  type(u"A1"_s, QString());
  EXPECT_TRUE(IsEmpty(at(u"A1"_s).Value()));
}

TEST_P(Sheets, KeepTextsSetByCodeAsTexts) {
  set(u"A1"_s, u"=1+2"_s);
  set(u"A2"_s, u"-5"_s);
  EXPECT_EQ(at(u"A1"_s).Value(), Value(u"=1+2"_s));
  EXPECT_EQ(at(u"A2"_s).Value(), Value(u"-5"_s));
}

TEST_P(Sheets, ShowNumbersInTheirFormat) {
  set(u"A1"_s, Value(3.14159));
  const auto shown = [&](const QString& numberFormat) {
    at(u"A1"_s).setNumberFormat(numberFormat);
    return text(u"A1"_s);
  };
  EXPECT_EQ(shown(u"0.00"_s), u"3.14"_s);
  EXPECT_EQ(shown(u"0"_s), u"3"_s);
  EXPECT_EQ(shown(u"General"_s), u"3.14159"_s);
  EXPECT_EQ(shown(u"Text"_s), u"3.14159"_s);
  set(u"A1"_s, Value(platform::basic::Date::of(2024, 5, 15)));
  EXPECT_EQ(shown(u"yyyy-mm-dd"_s), u"2024-05-15"_s);
  EXPECT_EQ(shown(u"General Date"_s), u"5/15/2024"_s);
  EXPECT_EQ(at(u"A1"_s).NumberFormat(), u"General Date"_s);
}

TEST_P(Sheets, RefuseANumberFormatThatTheyCannotShow) {
  EXPECT_EQ(failureOf([&] { at(u"A1"_s).setNumberFormat(u"0;-0"_s); }), 1004);
  EXPECT_EQ(at(u"A1"_s).NumberFormat(), u"General"_s);
}

TEST_P(Sheets, SortByTheFirstColumnWithBlanksLast) {
  const QList<std::pair<QString, QString>> rows{{u"Beta"_s, u"1"_s}, {QString(), u"blank"_s},
                                                {u"10"_s, u"2"_s},   {u"alpha"_s, u"3"_s},
                                                {u"9"_s, u"4"_s},    {u"beta"_s, u"5"_s}};
  for (int row = 0; row < rows.size(); ++row) {
    sheet.Cell(row + 2, 1).setValue(rows[row].first.isEmpty() ? Value() : Value(rows[row].first));
    sheet.Cell(row + 2, 2).setValue(Value(rows[row].second));
  }
  set(u"A1"_s, u"Header"_s);
  toldSince();
  at(u"A2:d1000"_s).Sort();
  QStringList order;
  for (int row = 2; row <= 7; ++row) order.append(sheet.Cell(row, 2).Text());
  EXPECT_EQ(order, QStringList({u"4"_s, u"2"_s, u"3"_s, u"1"_s, u"5"_s, u"blank"_s}));
  EXPECT_EQ(text(u"A1"_s), u"Header"_s);
  EXPECT_EQ(toldSince().size(), nine ? 0 : 2) << "one change";
}

TEST_P(Sheets, SortFormulasSoThatTheyReadTheirOwnRow) {
  for (int row = 1; row <= 3; ++row) {
    sheet.Cell(row, 1).setValue(Value(double(4 - row)));
    sheet.Cell(row, 2).setFormula(u"=A%1*10"_s.arg(row));
  }
  at(u"A1:B3"_s).Sort();
  EXPECT_EQ(at(u"B1"_s).Formula(), u"=A1*10"_s);
  EXPECT_EQ(text(u"B1"_s) + u' ' + text(u"B2"_s) + u' ' + text(u"B3"_s), u"10 20 30"_s);
}

TEST_P(Sheets, SortAProtectedSheetOnlyWhereItIsAllowedAndOpen) {
  at(u"A2:B3"_s).setLocked(false);
  set(u"A2"_s, u"b"_s);
  set(u"A3"_s, u"a"_s);
  sheet.ActiveSheet.Protection.Enabled = true;
  EXPECT_EQ(failureOf([&] { at(u"A2:B3"_s).Sort(); }), 1004);
  sheet.ActiveSheet.Protection.AllowSorting = true;
  EXPECT_EQ(failureOf([&] { at(u"A2:C3"_s).Sort(); }), 1004);
  at(u"A2:B3"_s).Sort();
  EXPECT_EQ(text(u"A2"_s), u"a"_s);
}

TEST_P(Sheets, ClearColumnsRowsContentsAndFormats) {
  set(u"B2"_s, u"x"_s);
  at(u"B2"_s).setFontBold(true);
  sheet.ActiveSheet.Columns().ClearFormats();
  EXPECT_FALSE(at(u"B2"_s).format().bold);
  EXPECT_EQ(text(u"B2"_s), u"x"_s);
  sheet.ActiveSheet.Rows().ClearContents();
  EXPECT_EQ(text(u"B2"_s), QString());
  formula(u"B2"_s, u"=1+1"_s);
  sheet.ActiveSheet.Columns().Clear();
  EXPECT_EQ(at(u"B2"_s).Formula(), QString());
}

TEST_P(Sheets, TellTheUsedRange) {
  EXPECT_EQ(sheet.ActiveSheet.UsedRange().Address(), u"$A$1"_s);
  set(u"B3"_s, u"x"_s);
  set(u"F2"_s, u"y"_s);
  at(u"Z99"_s).setFontBold(true);
  EXPECT_EQ(sheet.ActiveSheet.UsedRange().Address(), u"$B$2:$F$3"_s);
  set(u"F2"_s, Value());
  EXPECT_EQ(sheet.ActiveSheet.UsedRange().Address(), u"$B$3"_s);
}

TEST_P(Sheets, GiveARangeAsAnHtmlTable) {
  EXPECT_EQ(sheet.ActiveSheet.UsedRange().HTMLData(), QString());
  set(u"A1"_s, u"<Tom & \"Jerry\">"_s);
  set(u"B1"_s, u"hidden"_s);
  set(u"C1"_s, Value(7.5));
  set(u"C2"_s, u"one\ntwo"_s);
  at(u"C1"_s).setFontBold(true);
  at(u"C1"_s).setInteriorColor(0xFFCC99);
  at(u"B:B"_s).setEntireColumnHidden(true);
  EXPECT_EQ(sheet.ActiveSheet.UsedRange().HTMLData(),
            u"<table border='1' cellspacing='0' cellpadding='1'>\r\n"
            "<tr><td style='font-family:Tahoma;font-size:8pt'>&lt;Tom &amp; &quot;Jerry&quot;&gt;</td>"
            "<td style='font-family:Tahoma;font-size:8pt;font-weight:bold;background-color:#99ccff;"
            "text-align:right'>7.5</td></tr>\r\n"
            "<tr><td style='font-family:Tahoma;font-size:8pt'>&nbsp;</td>"
            "<td style='font-family:Tahoma;font-size:8pt'>one<br>two</td></tr>\r\n"
            "</table>"_s);
}

TEST_P(Sheets, KnowTheCellThatTypingGoesTo) {
  at(u"C3:D4"_s).Select();
  EXPECT_EQ(sheet.ActiveCell().Address(), u"$C$3"_s);
  sheet.select({2, 2, 3, 3}, {4, 4, 1, 1});
  EXPECT_EQ(sheet.ActiveCell().Row(), 4);
}

}  // namespace contract

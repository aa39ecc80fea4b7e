#include "tests/contract/spreadsheet/spreadsheet_context.h"

namespace contract {

TEST_P(Sheets, CountTheFilledCellsOfAColumnWithTheHeader) {
  at(u"f1"_s).setFormula(u"=Counta(A1:A10000)"_s);
  EXPECT_EQ(at(u"F1"_s).Value(), Value(0.0));
  set(u"A1"_s, u"Customer"_s);
  set(u"A2"_s, u"Acme"_s);
  set(u"A3"_s, Value(7.0));
  EXPECT_EQ(at(u"F1"_s).Value(), Value(3.0));
  set(u"A2"_s, Value());
  EXPECT_EQ(at(u"F1"_s).Value(), Value(2.0));
}

TEST_P(Sheets, SumHoursWhetherTheyAreNumbersOrTexts) {
  for (const QString& name : {u"en_US"_s, u"de_DE"_s}) {
    const platform::locale::ScopedLocale other(name);
    at(u"F1:F9"_s).Clear();
    set(u"F1"_s, u"Hours"_s);
    set(u"F2"_s, u"7.25"_s);
    set(u"F3"_s, Value(0.5));
    type(u"F4"_s, u"1.25"_s);
    at(u"F10"_s).setFormula(u"=SUM(F1:F9)"_s);
    EXPECT_EQ(at(u"F10"_s).Value(), Value(9.0)) << qUtf8Printable(name);
  }
}

TEST_P(Sheets, LeaveTextsOfTheFormatTextOutOfSums) {
  at(u"A1"_s).setNumberFormat(u"Text"_s);
  set(u"A1"_s, u"5"_s);
  set(u"A2"_s, u"6"_s);
  EXPECT_EQ(formula(u"B1"_s, u"=SUM(A1:A2)"_s), u"6"_s);
}

TEST_P(Sheets, AdaptAFormulaToEachCellOfTheRange) {
  for (int column = 4; column <= 10; ++column) sheet.Cell(2, column).setValue(Value(double(column)));
  at(u"D9:J9"_s).setFormula(u"=SUM(D2:D8)"_s);
  EXPECT_EQ(at(u"J9"_s).Formula(), u"=SUM(J2:J8)"_s);
  EXPECT_EQ(at(u"J9"_s).Value(), Value(10.0));
  at(u"A1:B2"_s).setFormula(u"=$D$2+E$2+$F2"_s);
  EXPECT_EQ(at(u"B2"_s).Formula(), u"=$D$2+F$2+$F3"_s);
}

TEST_P(Sheets, SpoilNoOtherCellByAnUnknownFunction) {
  set(u"A1"_s, Value(2.0));
  EXPECT_EQ(formula(u"B1"_s, u"=ROUND(A1,0)"_s), u"#NAME?"_s);
  EXPECT_EQ(formula(u"B2"_s, u"=NOSUCHTHING(A1)"_s), u"#NAME?"_s);
  EXPECT_EQ(formula(u"B3"_s, u"=A1+nothing"_s), u"#NAME?"_s);
  EXPECT_EQ(formula(u"B4"_s, u"=A1*3"_s), u"6"_s);
  EXPECT_EQ(formula(u"B5"_s, u"=B1+1"_s), u"#NAME?"_s) << "who reads it shows the same";
  EXPECT_EQ(formula(u"B6"_s, u"=SUM(B1:B4)"_s), u"#NAME?"_s);
  EXPECT_EQ(formula(u"B7"_s, u"=COUNTA(B1:B4)"_s), u"4"_s);
}

TEST_P(Sheets, ShowErrorsByTheirNames) {
  set(u"A1"_s, u"text"_s);
  EXPECT_EQ(formula(u"B1"_s, u"=1/0"_s), u"#DIV/0!"_s);
  EXPECT_EQ(formula(u"B2"_s, u"=A1+1"_s), u"#VALUE!"_s);
  EXPECT_EQ(formula(u"B3"_s, u"=A70000"_s), u"#REF!"_s);
  EXPECT_EQ(formula(u"B4"_s, u"=ZZZ1"_s), u"#REF!"_s);
  EXPECT_EQ(at(u"B1"_s).Value(), Value(u"#DIV/0!"_s));
  set(u"A1"_s, Value(4.0));
  EXPECT_EQ(text(u"B2"_s), u"5"_s) << "and calculate when they can";
}

TEST_P(Sheets, EndACircleOfFormulas) {
  formula(u"A1"_s, u"=B1+1"_s);
  formula(u"B1"_s, u"=A1+1"_s);
  EXPECT_EQ(text(u"A1"_s) + text(u"B1"_s), u"#REF!#REF!"_s);
  EXPECT_EQ(formula(u"C1"_s, u"=C1"_s), u"#REF!"_s);
  EXPECT_EQ(formula(u"A5"_s, u"=SUM(A3:A9)"_s), u"#REF!"_s);
  EXPECT_EQ(formula(u"D1"_s, u"=1+1"_s), u"2"_s);
  set(u"B1"_s, Value(1.0));
  EXPECT_EQ(text(u"A1"_s), u"2"_s) << "opened again";
}

TEST_P(Sheets, FollowAChangeThroughSeveralFormulas) {
  set(u"A1"_s, Value(1.0));
  formula(u"D1"_s, u"=C1+1"_s);
  formula(u"C1"_s, u"=B1+1"_s);
  formula(u"B1"_s, u"=A1+1"_s);
  EXPECT_EQ(text(u"D1"_s), u"4"_s);
  set(u"A1"_s, Value(10.0));
  EXPECT_EQ(text(u"D1"_s), u"13"_s);
}

TEST_P(Sheets, ReadWhatPeopleType) {
  set(u"A1"_s, Value(3.0));
  set(u"A2"_s, Value(5.0));
  set(u"A3"_s, u"Total"_s);
  const QList<std::pair<QString, QString>> formulas{{u"= sum( a1:a2 ) "_s, u"8"_s},
                                                    {u"=sum(a1:a2)"_s, u"8"_s},
                                                    {u"=A1+A2*2"_s, u"13"_s},
                                                    {u"=-A1"_s, u"-3"_s},
                                                    {u"=2^3"_s, u"8"_s},
                                                    {u"=50%*A1"_s, u"1.5"_s},
                                                    {u"=1e2+1"_s, u"101"_s},
                                                    {u"=A3&\": \"&A1"_s, u"Total: 3"_s},
                                                    {u"=\"say \"\"hi\"\"\""_s, u"say \"hi\""_s},
                                                    {u"=IF(A1>=3,\"big\",\"small\")"_s, u"big"_s},
                                                    {u"=IF(A1<>3,1,2)"_s, u"2"_s},
                                                    {u"=MAX(A1:A9)"_s, u"5"_s},
                                                    {u"=MIN(A1:A9,1)"_s, u"1"_s},
                                                    {u"=AVERAGE(A1:A9)"_s, u"4"_s},
                                                    {u"=AVERAGE(C1:C9)"_s, u"#DIV/0!"_s},
                                                    {u"=TRUE+1"_s, u"2"_s},
                                                    {u"=SUM(A:A)+SUM(1:1)"_s, u"11"_s}};
  for (const auto& [typed, shown] : formulas) {
    type(u"E20"_s, typed);
    EXPECT_EQ(text(u"E20"_s), shown) << qUtf8Printable(typed);
  }
}

TEST_P(Sheets, RefuseByCodeWhatIsNoFormulaAndShowItWhenTyped) {
  for (const QString& broken :
       {u"=SUM(A1"_s, u"=1+"_s, u"=A1)"_s, u"=1 2"_s, u"="_s, u"=\"x"_s, u"=(1,2)"_s}) {
    EXPECT_EQ(failureOf([&] { at(u"A9"_s).setFormula(broken); }), 1004) << qUtf8Printable(broken);
    if (broken.size() == 1) continue;
    type(u"A9"_s, broken);
    EXPECT_EQ(text(u"A9"_s), u"#NAME?"_s);
    EXPECT_EQ(editing.textToEdit(9, 1), broken);
    at(u"A9"_s).ClearContents();
  }
}

TEST_P(Sheets, ClearByAnEmptyFormulaAndTakeAPlainTextAsAValue) {
  formula(u"A1"_s, u"=1+1"_s);
  at(u"A1"_s).setFormula(QString());
  EXPECT_TRUE(IsEmpty(at(u"A1"_s).Value()));
  EXPECT_EQ(at(u"A1"_s).Formula(), QString());
  at(u"A1"_s).setFormula(u"plain"_s);
  EXPECT_EQ(at(u"A1"_s).Value(), Value(u"plain"_s));
}

TEST_P(Sheets, WaitWithFormulasWhileCalculationIsManual) {
  const auto automatic = [&](bool on) {
    if (nine)
      sheet.EnableAutoCalculate = on;
    else
      sheet.Calculation = on ? owc::xlCalculationAutomatic : owc::xlCalculationManual;
  };
  set(u"A1"_s, Value(1.0));
  formula(u"B1"_s, u"=A1*2"_s);
  automatic(false);
  set(u"A1"_s, Value(5.0));
  EXPECT_EQ(text(u"B1"_s), u"2"_s);
  EXPECT_EQ(formula(u"C1"_s, u"=A1+1"_s), u"6"_s) << "the one just entered";
  sheet.ActiveSheet.Calculate();
  EXPECT_EQ(text(u"B1"_s), u"10"_s);
  set(u"A1"_s, Value(6.0));
  automatic(true);
  EXPECT_EQ(text(u"B1"_s), u"12"_s) << "what waited is calculated";
}

TEST_P(Sheets, CalculateIntoLockedCells) {
  formula(u"B1"_s, u"=A1*2"_s);
  at(u"A1"_s).setLocked(false);
  sheet.ActiveSheet.Protection.Enabled = true;
  set(u"A1"_s, Value(4.0));
  EXPECT_EQ(text(u"B1"_s), u"8"_s);
  EXPECT_EQ(failureOf([&] { at(u"B1"_s).setFormula(u"=1"_s); }), 1004);
}

TEST_P(Sheets, TellTheViewOfCellsThatCameToSomethingNew) {
  formula(u"B1"_s, u"=A1*2"_s);
  QStringList shown;
  QObject::connect(&sheet, &owc::Spreadsheet::cellsChanged, &context,
                   [&](const CellRect& rect) { shown.append(owc::addressOf(rect)); });
  set(u"A1"_s, Value(4.0));
  set(u"C1"_s, Value(4.0));
  EXPECT_EQ(shown, QStringList({u"$A$1"_s, u"$B$1"_s, u"$C$1"_s}));
}

TEST_P(Sheets, TakeADateForItsDaysAndATruthValueForNoNumberInARange) {
  set(u"A1"_s, Value(platform::basic::Date(10.5)));
  set(u"A2"_s, Value(true));
  EXPECT_EQ(formula(u"B1"_s, u"=SUM(A1:A2)"_s), u"10.5"_s);
  EXPECT_EQ(formula(u"B2"_s, u"=COUNTA(A1:A2)"_s), u"2"_s);
}

}  // namespace contract

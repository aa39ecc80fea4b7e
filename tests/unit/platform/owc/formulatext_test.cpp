#include "platform/owc/formulatext.h"

#include <gtest/gtest.h>

using namespace platform::owc;
using namespace Qt::StringLiterals;

TEST(FormulaText, NamesWhatItReads) {
  const FormulaText read = FormulaText::read(u"=SUM($a$1:b9)+LOG10(C3)"_s);
  EXPECT_TRUE(read.wellFormed);
  EXPECT_EQ(read.references, (QList<CellRect>{{1, 1, 9, 2}, {3, 3, 1, 1}}));
  EXPECT_EQ(read.functions, (QSet<QString>{u"SUM"_s, u"LOG10"_s}));
  EXPECT_EQ(read.expression, "SUM(A1:B9)+LOG10(C3)");
}

TEST(FormulaText, WritesWholeColumnsAndRowsAsCells) {
  EXPECT_EQ(FormulaText::read(u"=COUNTA(B:B)"_s).expression, "COUNTA(B1:B65536)");
  EXPECT_EQ(FormulaText::read(u"=COUNTA(2:3)"_s).expression, "COUNTA(A2:IV3)");
}

TEST(FormulaText, ReadsNoReferencesWithinTexts) {
  const FormulaText read = FormulaText::read(u"=\"A1 \"\"B2\"\"\""_s);
  EXPECT_TRUE(read.wellFormed);
  EXPECT_TRUE(read.references.isEmpty());
  EXPECT_EQ(read.literals, QList<QByteArray>{"A1 \"B2\""});
}

TEST(FormulaText, KnowsNamesAndLostReferencesBeforeCalculating) {
  EXPECT_EQ(FormulaText::read(u"=hours*2"_s).error, errorName);
  EXPECT_EQ(FormulaText::read(u"=Sheet2!A1"_s).error, errorName);
  EXPECT_EQ(FormulaText::read(u"=IW1"_s).error, errorReference);
  EXPECT_EQ(FormulaText::read(u"=SUM(A0:A9)"_s).error, errorReference);
  EXPECT_EQ(FormulaText::read(u"=#REF!+1"_s).error, errorReference);
  EXPECT_EQ(FormulaText::read(u"=WAIT()"_s).error, errorName) << "it would hold up the program";
}

TEST(FormulaText, MovesReferencesThatAreNotFixed) {
  EXPECT_EQ(shiftedFormula(u"=SUM(D2:D9)*$A$1+B$2+$C3"_s, 1, 2), u"=SUM(F3:F10)*$A$1+D$2+$C4"_s);
  EXPECT_EQ(shiftedFormula(u"=SUM(A:B)+SUM(1:2)+SUM($A:$B)"_s, 3, 1), u"=SUM(B:C)+SUM(4:5)+SUM($A:$B)"_s);
  EXPECT_EQ(shiftedFormula(u"=\"A1\"&LOG10(A1)"_s, 1, 0), u"=\"A1\"&LOG10(A2)"_s);
}

TEST(FormulaText, ShowsAReferenceThatLeavesTheSheetAsLost) {
  EXPECT_EQ(shiftedFormula(u"=A1+1"_s, -1, 0), u"=#REF!+1"_s);
  EXPECT_EQ(shiftedFormula(u"=IV1"_s, 0, 1), u"=#REF!"_s);
}

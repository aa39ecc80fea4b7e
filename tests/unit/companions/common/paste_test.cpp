#include "companions/settings/common/commonpaste.h"
#include "tests/unit/companions/common/commonworld.h"

namespace hourbook::tests {

using platform::basic::Currency;

class Pasting : public CommonWorld {
 protected:
  Pasting() { buffer.edited.lists[0].values.append({u"Acme"_s, {}, {}, {}}); }
  QString problem(const QString& text) { return pasteValues(buffer, 0, text).problem; }
  QStringList names() const {
    QStringList all;
    for (const CommonValue& value : buffer.edited.lists[0].values) all.append(value.name);
    return all;
  }

  CommonBuffer buffer;
};

TEST_F(Pasting, TakesTheColumnsOfASpreadsheet) {
  const Pasted pasted = pasteValues(buffer, 0, u"Beta\tMetal\tNorth\t1,450.5\tNo\r\nGamma\r\n"_s);
  EXPECT_EQ(pasted.problem, QString());
  EXPECT_EQ(pasted.added, 2);
  const CommonValue& beta = buffer.edited.lists[0].values[1];
  EXPECT_EQ(beta, (CommonValue{u"Beta"_s, u"Metal"_s, u"North"_s, Currency::fromDouble(1450.5), false}));
  EXPECT_EQ(buffer.edited.lists[0].values[2], (CommonValue{u"Gamma"_s, {}, {}, {}, true}));
}

TEST_F(Pasting, ReadsRatesInTheFormatOfTheSystem) {
  db.world.setLocale(u"sv_SE"_s);
  EXPECT_EQ(problem(u"Beta\t\t\t450,5"_s), QString());
  EXPECT_EQ(buffer.edited.lists[0].values[1].rate, Currency::fromDouble(450.5));
  EXPECT_EQ(problem(u"Gamma\t\t\t450.5"_s),
            u"Nothing was pasted. Line 1: A rate is a number such as 450,50."_s);
}

TEST_F(Pasting, TakesNoLineWhenOneCannotBeTaken) {
  EXPECT_EQ(problem(u"Beta\nGa;mma\nDelta\t\t\tx"_s),
            u"Nothing was pasted. Line 2: A name must not hold \";\", which separates values where they are "
            u"stored. "
            "Line 3: A rate is a number such as 450.50."_s);
  EXPECT_EQ(names(), QStringList{u"Acme"_s});
}

TEST_F(Pasting, RefusesNamesThatAreThereAlreadyOrComeTwice) {
  EXPECT_EQ(problem(u"acme"_s), u"Nothing was pasted. Line 1: \"acme\": The list has this value already."_s);
  EXPECT_EQ(problem(u"Beta\nBETA"_s),
            u"Nothing was pasted. Line 2: \"BETA\": The list has this value already."_s);
}

TEST_F(Pasting, TellsTheFirstFiveLinesAndCountsTheOthers) {
  const QString text = problem(u";\n;\n;\n;\n;\n;\n;"_s);
  EXPECT_TRUE(text.contains(u"Line 5: "_s));
  EXPECT_FALSE(text.contains(u"Line 6: "_s));
  EXPECT_TRUE(text.endsWith(u"2 more lines cannot be taken either."_s)) << qPrintable(text);
}

TEST_F(Pasting, RefusesMoreColumnsAndUnknownFlags) {
  EXPECT_EQ(problem(u"Beta\t\t\t\t\tmore"_s),
            u"Nothing was pasted. Line 1: A line has at most five columns."_s);
  EXPECT_EQ(problem(u"Beta\t\t\t\tperhaps"_s),
            u"Nothing was pasted. Line 1: Enabled is \"Yes\" or \"No\"."_s);
  EXPECT_EQ(problem(u"Beta\t\t\t\tyes\t\t"_s), QString());
}

TEST_F(Pasting, UnderstandsTheFlagsOfSpreadsheets) {
  EXPECT_EQ(problem(u"a\t\t\t\tTRUE\nb\t\t\t\tFALSE\nc\t\t\t\t1\nd\t\t\t\t0\ne\t\t\t\tx"_s), QString());
  QList<bool> flags;
  for (const CommonValue& value : buffer.edited.lists[0].values.mid(1)) flags.append(value.enabled);
  EXPECT_EQ(flags, (QList<bool>{true, false, true, false, true}));
}

TEST_F(Pasting, OfNothingSaysSo) {
  EXPECT_EQ(problem(QString()), u"The clipboard holds no text to paste."_s);
  EXPECT_EQ(problem(u"\n \n"_s), u"The clipboard holds no text to paste."_s);
}

TEST_F(Pasting, RefusesCategoriesThatDoNotFit) {
  EXPECT_EQ(problem(u"Beta\t"_s + QString(256, u'x')),
            u"Nothing was pasted. Line 1: This must not be longer than 255 characters."_s);
}

TEST_F(Pasting, UnderstandsCellsInQuotes) {
  EXPECT_EQ(spreadsheetLines(u"\"a\"\"b\"\t\"c\nd\"\ne"_s),
            (QList<QStringList>{{u"a\"b"_s, u"c\nd"_s}, {u"e"_s}}));
  EXPECT_EQ(problem(u"\"Be\nta\""_s),
            u"Nothing was pasted. Line 1: A name must not hold line breaks, tabs or other signs without a "
            "picture."_s);
}

TEST_F(Pasting, OfFiveThousandLinesIsOneStep) {
  QString text;
  for (int i = 0; i < 5000; ++i) text += u"Value %1\tMetal\tNorth\t%2.25\tYes\n"_s.arg(i).arg(i);
  EXPECT_EQ(pasteValues(buffer, 0, text).added, 5000);
  EXPECT_EQ(buffer.edited.lists[0].values.last().rate, Currency::fromDouble(4999.25));
}

}  // namespace hourbook::tests

#include "platform/owc/clipboard.h"

#include <gtest/gtest.h>

using namespace platform::owc;
using namespace Qt::StringLiterals;

namespace {

using Table = QList<QStringList>;

}  // namespace

TEST(SheetClipboard, RowsAndTabsMakeATable) {
  EXPECT_EQ(tableOfText(u"a\tb\nc\td"_s), (Table{{u"a"_s, u"b"_s}, {u"c"_s, u"d"_s}}));
  EXPECT_EQ(tableOfText(u"a\r\nb\rc"_s), (Table{{u"a"_s}, {u"b"_s}, {u"c"_s}}));
}

TEST(SheetClipboard, ALineBreakAtTheEndOpensNoRow) {
  EXPECT_EQ(tableOfText(u"a\tb\r\n"_s), (Table{{u"a"_s, u"b"_s}}));
  EXPECT_EQ(tableOfText(u"a\n\n"_s), (Table{{u"a"_s}, {QString()}}));
}

TEST(SheetClipboard, EmptyCellsStay) {
  EXPECT_EQ(tableOfText(u"\ta\t"_s), (Table{{QString(), u"a"_s, QString()}}));
  EXPECT_EQ(tableOfText(QString()), (Table{{QString()}}));
}

TEST(SheetClipboard, QuotesHoldBreaksTogether) {
  EXPECT_EQ(tableOfText(u"\"one\ntwo \"\"three\"\"\"\tx"_s), (Table{{u"one\ntwo \"three\""_s, u"x"_s}}));
}

TEST(SheetClipboard, AQuoteThatIsNeverClosedOrStandsWithinIsASignLikeOthers) {
  EXPECT_EQ(tableOfText(u"\"open\tx"_s), (Table{{u"\"open"_s, u"x"_s}}));
  EXPECT_EQ(tableOfText(u"say \"hi\""_s), (Table{{u"say \"hi\""_s}}));
}

TEST(SheetClipboard, WhatIsWrittenIsReadBack) {
  const Table table{{u"a\tb"_s, u"\"q\""_s, QString()}, {u"line\r\nbreak"_s, u"=1+1"_s, u"\u00e4"_s}};
  EXPECT_EQ(tableOfText(textOfTable(table)), table);
}

#include "platform/owc/spreadsheet.h"

using namespace platform::owc;
using namespace Qt::StringLiterals;

TEST(Address, ACellARangeColumnsAndRowsAreRead) {
  EXPECT_EQ(parseAddress(u"A1"_s), (CellRect{1, 1, 1, 1}));
  EXPECT_EQ(parseAddress(u"C12"_s), (CellRect{12, 3, 1, 1}));
  EXPECT_EQ(parseAddress(u"A2:G199"_s), (CellRect{2, 1, 198, 7}));
  EXPECT_EQ(parseAddress(u"C:C"_s), (CellRect{1, 3, maxRows, 1}));
  EXPECT_EQ(parseAddress(u"B:D"_s), (CellRect{1, 2, maxRows, 3}));
  EXPECT_EQ(parseAddress(u"1:1"_s), (CellRect{1, 1, 1, maxColumns}));
  EXPECT_EQ(parseAddress(u"1:1999"_s), (CellRect{1, 1, 1999, maxColumns}));
}

TEST(Address, CaseDollarSignsAndOuterBlanksDoNotMatter) {
  EXPECT_EQ(parseAddress(u"a2:g199"_s), parseAddress(u"A2:G199"_s));
  EXPECT_EQ(parseAddress(u"$B$3"_s), (CellRect{3, 2, 1, 1}));
  EXPECT_EQ(parseAddress(u"b$3:$c4"_s), (CellRect{3, 2, 2, 2}));
  EXPECT_EQ(parseAddress(u"$c:$c"_s), parseAddress(u"C:C"_s));
  EXPECT_EQ(parseAddress(u"$1:$2"_s), parseAddress(u"1:2"_s));
  EXPECT_EQ(parseAddress(u" A1 "_s), parseAddress(u"A1"_s));
}

TEST(Address, TheCornersMayStandInAnyOrder) {
  EXPECT_EQ(parseAddress(u"G199:A2"_s), parseAddress(u"A2:G199"_s));
  EXPECT_EQ(parseAddress(u"A199:G2"_s), parseAddress(u"A2:G199"_s));
  EXPECT_EQ(parseAddress(u"D:B"_s), parseAddress(u"B:D"_s));
}

TEST(Address, TheLastCellOfTheSheetIsTheLastAddress) {
  EXPECT_EQ(parseAddress(u"IV65536"_s), (CellRect{maxRows, maxColumns, 1, 1}));
  EXPECT_EQ(parseAddress(u"IW1"_s), std::nullopt);
  EXPECT_EQ(parseAddress(u"A65537"_s), std::nullopt);
  EXPECT_EQ(parseAddress(u"AAAAAAAAAA1"_s), std::nullopt);
  EXPECT_EQ(parseAddress(u"A99999999999999999999"_s), std::nullopt);
}

TEST(Address, OtherTextsAreNoAddresses) {
  for (const QString& text : {QString(),
                              u"A"_s,
                              u"1"_s,
                              u"A0"_s,
                              u"0:0"_s,
                              u"A:3"_s,
                              u"A1:B"_s,
                              u"A1:"_s,
                              u":A1"_s,
                              u":"_s,
                              u"A1:B2:C3"_s,
                              u"A 1"_s,
                              u"A1,B2"_s,
                              u"1A"_s,
                              u"$"_s,
                              u"$$A1"_s,
                              u"A$"_s,
                              u"A1$"_s,
                              u"\u00C51"_s,
                              u"A-1"_s,
                              u"A1.5"_s,
                              u"a"
                              u"\u0661"_s})
    EXPECT_EQ(parseAddress(text), std::nullopt) << qPrintable(text);
}

TEST(Address, IsWrittenWithDollarSigns) {
  EXPECT_EQ(addressOf({1, 1, 1, 1}), u"$A$1"_s);
  EXPECT_EQ(addressOf({2, 1, 1, 6}), u"$A$2:$F$2"_s);
  EXPECT_EQ(addressOf({1, 3, maxRows, 1}), u"$C:$C"_s);
  EXPECT_EQ(addressOf({1, 1, 1, maxColumns}), u"$1:$1"_s);
  EXPECT_EQ(addressOf({1, 1, maxRows, maxColumns}), u"$1:$65536"_s);
}

TEST(Address, WhatIsWrittenIsReadBack) {
  for (const QString& text :
       {u"$A$1"_s, u"$Z$9:$AA$10"_s, u"$AZ$1"_s, u"$C:$IV"_s, u"$7:$9"_s, u"$1:$65536"_s})
    EXPECT_EQ(addressOf(*parseAddress(text)), text);
}

TEST(Address, ColumnLettersCountOnPastZ) {
  EXPECT_EQ(columnLetters(1), u"A"_s);
  EXPECT_EQ(columnLetters(26), u"Z"_s);
  EXPECT_EQ(columnLetters(27), u"AA"_s);
  EXPECT_EQ(columnLetters(52), u"AZ"_s);
  EXPECT_EQ(columnLetters(53), u"BA"_s);
  EXPECT_EQ(columnLetters(256), u"IV"_s);
}

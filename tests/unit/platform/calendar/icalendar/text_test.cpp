#include "platform/calendar/icalendar/text.h"

#include <gtest/gtest.h>

using namespace platform::calendar::icalendar;

TEST(Texts, EscapesAreRemoved) {
  EXPECT_EQ(fromText("a\\, b\\; c\\\\n d\\ne\\Nf\\x"), u"a, b; c\\n d\ne\nfx"_qs);
}

TEST(Texts, ATextComesBackFromItsEscapedForm) {
  const QString text = u"a\\n, b; \"c\" \\ d:\nåäö 🙂\n\n"_qs;
  EXPECT_EQ(fromText(toText(text)), text);
  EXPECT_EQ(toText(u"one\r\ntwo\rthree"_qs), "one\\ntwo\\nthree");
}

TEST(Texts, ControlCharactersAreNotWritten) {
  EXPECT_EQ(toText(QString(u"a\u0000b\u0007c\td"_qs)), "abc\td");
}

TEST(Texts, BytesThatAreNotUtf8AreReadAsWindowsTextValueByValue) {
  EXPECT_EQ(decoded("M\xF6te \x80 \x96"), u"Möte € –"_qs);
  EXPECT_EQ(decoded("M\xC3\xB6te"), u"Möte"_qs);
}

TEST(Texts, AListIsSplitAtItsCommasTrimmedAndWithoutEmptyNames) {
  EXPECT_EQ(fromTextList("cat1  ,  cat2,   cat3"), (QStringList{u"cat1"_qs, u"cat2"_qs, u"cat3"_qs}));
  EXPECT_EQ(fromTextList("Smith\\, Jones,B\\;C,,"), (QStringList{u"Smith, Jones"_qs, u"B;C"_qs}));
  EXPECT_EQ(fromTextList(""), QStringList());
  EXPECT_EQ(fromTextList("a\\"), QStringList{u"a\\"_qs});
  EXPECT_EQ(fromTextList(toTextList({u"a, b"_qs, u"c\\"_qs})), (QStringList{u"a, b"_qs, u"c\\"_qs}));
}

TEST(Texts, AParametersSignsAreWrittenAsCircumflexes) {
  const QString name = u"a \"b\" ^c\nd;e:f,g"_qs;
  EXPECT_EQ(toParameter(name), "\"a ^'b^' ^^c^nd;e:f,g\"");
  EXPECT_EQ(fromParameter("a ^'b^' ^^c^nd;e:f,g"), name);
  EXPECT_EQ(fromParameter("^x^"), u"^x^"_qs);
}

TEST(Folding, NoLineIsLongerThan75Bytes) {
  const QByteArray line = "SUMMARY:" + QByteArray(300, 'x');
  for (const QByteArray& part : folded(line, "\r\n").split('\n')) EXPECT_LE(part.size(), 76);
  EXPECT_EQ(folded("SUMMARY:" + QByteArray(67, 'x'), "\n"), "SUMMARY:" + QByteArray(67, 'x') + "\n");
  EXPECT_EQ(folded("SUMMARY:" + QByteArray(68, 'x'), "\n"), "SUMMARY:" + QByteArray(67, 'x') + "\n x\n");
}

TEST(Folding, NoLetterIsCutInTwo) {
  const QByteArray text = QString(u"åß会🙂"_qs).repeated(40).toUtf8();
  for (int shift = 0; shift < 8; ++shift)
    for (const QByteArray& part : folded(QByteArray(shift, 'x') + text, "\n").split('\n'))
      EXPECT_EQ(decoded(part).toUtf8(), part);
}

TEST(CategoryTexts, AreSplitByAnyListSeparatorAndTheSignTheyBeginWith) {
  EXPECT_EQ(categoryPieces(u"; A; B ,C;;"_qs, {}), (QStringList{u"A"_qs, u"B"_qs, u"C"_qs}));
  EXPECT_EQ(leadingSeparator(u"|A|B"_qs), QChar(u'|'));
  EXPECT_EQ(categoryPieces(u"|A|B"_qs, u'|'), (QStringList{u"A"_qs, u"B"_qs}));
  EXPECT_TRUE(leadingSeparator(u"A;B"_qs).isNull());
  EXPECT_TRUE(leadingSeparator(QString()).isNull());
}

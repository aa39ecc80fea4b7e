#include "platform/basic/text.h"

#include "platform/locale/locale.h"

#include <algorithm>
#include <gtest/gtest.h>

using platform::locale::ScopedLocale;
using namespace platform::basic;

namespace {

TEST(Split, GivesThePiecesBetweenTheSeparators) {
  EXPECT_EQ(Split(u"a; b;;c;"_qs, u";"_qs), (QStringList{u"a"_qs, u" b"_qs, QString(), u"c"_qs, QString()}));
  EXPECT_EQ(Split(u"a\r\nb"_qs, vbCrLf), (QStringList{u"a"_qs, u"b"_qs}));
}

TEST(Split, GivesNoPieceOfAnEmptyText) {
  EXPECT_TRUE(Split(QString(), u";"_qs).isEmpty());
}

TEST(Split, GivesTheWholeTextWithoutASeparator) {
  EXPECT_EQ(Split(u"abc"_qs, QString()), QStringList{u"abc"_qs});
  EXPECT_EQ(Split(u"abc"_qs, u";"_qs), QStringList{u"abc"_qs});
}

TEST(Split, RegardsCase) {
  EXPECT_EQ(Split(u"aXbxc"_qs, u"x"_qs), (QStringList{u"aXb"_qs, u"c"_qs}));
}

TEST(Trim, TakesBlanksAndNothingElse) {
  EXPECT_EQ(Trim(u"  a b  "_qs), u"a b");
  EXPECT_EQ(Trim(u"\t a\u00a0 "_qs), u"\t a\u00a0");
  EXPECT_EQ(Trim(u"   "_qs), QString());
  EXPECT_EQ(Trim(QString()), QString());
}

class CompareTextIn : public testing::TestWithParam<const char*> {
  ScopedLocale scope_{QString::fromLatin1(GetParam())};
};

TEST_P(CompareTextIn, DisregardsCaseInEveryLanguage) {
  EXPECT_EQ(compareText(u"Title ÅÄÖ"_qs, u"TITLE åäö"_qs), 0);
  EXPECT_EQ(compareText(u"a"_qs, u"B"_qs), -1);
  EXPECT_EQ(compareText(u"B"_qs, u"a"_qs), 1);
  EXPECT_EQ(compareText(u"a"_qs, u"ab"_qs), -1);
  EXPECT_EQ(compareText(QString(), u"a"_qs), -1);
  EXPECT_EQ(compareText(QString(), QString()), 0);
  EXPECT_NE(compareText(u"a"_qs, u"ä"_qs), 0);
}

INSTANTIATE_TEST_SUITE_P(Languages, CompareTextIn,
                         testing::Values("en_US", "de_DE", "de_CH", "sv_SE", "fr_FR", "sl_SI", "tr_TR",
                                         "el_GR"),
                         [](const auto& info) { return std::string(info.param); });

TEST(CompareText, OrdersLettersAsTheLanguageDoes) {
  {
    const ScopedLocale swedish(u"sv_SE"_qs);
    EXPECT_EQ(compareText(u"Ärla"_qs, u"Zebra"_qs), 1);
    EXPECT_EQ(compareText(u"å"_qs, u"ä"_qs), -1);
  }
  const ScopedLocale german(u"de_DE"_qs);
  EXPECT_EQ(compareText(u"Ärla"_qs, u"Zebra"_qs), -1);
}

TEST(CompareText, KeepsTheTwoTurkishLettersIApart) {
  const ScopedLocale turkish(u"tr_TR"_qs);
  EXPECT_EQ(compareText(u"I"_qs, u"i"_qs), 0) << "as keys of a dictionary are";
  EXPECT_EQ(compareText(u"ı"_qs, u"i"_qs), -1);
  EXPECT_EQ(compareText(u"ı"_qs, u"I"_qs), -1);
}

TEST(CompareText, SortsAlikeFromEveryStart) {
  const ScopedLocale turkish(u"tr_TR"_qs);
  const QStringList sorted{u"a"_qs, u"ı"_qs, u"I"_qs, u"ö"_qs, u"z"_qs};
  QList<int> order{0, 1, 2, 3, 4};
  do {
    QStringList texts;
    for (const int i : order) texts += sorted[i];
    std::sort(texts.begin(), texts.end(),
              [](const QString& a, const QString& b) { return compareText(a, b) < 0; });
    ASSERT_EQ(texts, sorted);
  } while (std::next_permutation(order.begin(), order.end()));
}

TEST(FoldedKey, IsTheSameForEveryCaseInEveryLanguage) {
  for (const QString& language : {u"en_US"_qs, u"tr_TR"_qs, u"el_GR"_qs}) {
    const ScopedLocale scope(language);
    EXPECT_EQ(foldedKey(u"TITLE Äß ΣΑΣ"_qs), foldedKey(u"title äß σας"_qs));
    EXPECT_NE(foldedKey(u"title"_qs), foldedKey(u"tıtle"_qs));
  }
}

}  // namespace

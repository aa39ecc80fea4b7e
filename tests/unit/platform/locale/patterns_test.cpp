#include "platform/locale/patterns.h"

#include <gtest/gtest.h>

using platform::locale::cutPattern;
using platform::locale::fromQtPattern;
using platform::locale::orderOfParts;

namespace {

TEST(Pattern, IsCutIntoRunsOfLettersAndWhatStandsBetween) {
  const auto pieces = cutPattern(u"d. MM. yyyy"_qs);

  ASSERT_EQ(pieces.size(), 5);
  EXPECT_EQ(pieces[0].letter, u'd');
  EXPECT_EQ(pieces[0].length, 1);
  EXPECT_EQ(pieces[1].literal, u". ");
  EXPECT_EQ(pieces[4].length, 4);
}

TEST(Pattern, KeepsTextInQuotesAsItStands) {
  const auto pieces = cutPattern(u"d 'de' MMMM ''yy"_qs);

  ASSERT_EQ(pieces.size(), 5);
  EXPECT_EQ(pieces[1].literal, u" de ");
  EXPECT_EQ(pieces[3].literal, u" '");
}

TEST(Pattern, TellsTheOrderOfItsParts) {
  EXPECT_EQ(orderOfParts(u"M/d/yyyy"_qs), u"Mdy");
  EXPECT_EQ(orderOfParts(u"dddd, yyyy-MM-dd"_qs), u"yMd") << "the weekday is no part of the date";
}

TEST(Pattern, OfQtLosesItsMarksAndTwoDigitYears) {
  EXPECT_EQ(fromQtPattern(u"d\u200f/M\u200f/yy"_qs), u"d/M/yyyy");
  EXPECT_EQ(fromQtPattern(u"d.MM.yy 'г'."_qs), u"d.MM.yyyy' г.'");
  EXPECT_EQ(cutPattern(fromQtPattern(u"d '''de' M y"_qs))[1].literal, u" 'de ");
}

}  // namespace

#include "platform/scripting/dictionary.h"

#include <gtest/gtest.h>

using platform::Failure;
using platform::scripting::CompareMethod;
using platform::scripting::Dictionary;

namespace {

QString q(const char* text) {
  return QString::fromUtf8(text);
}

int failureOf(const std::function<void()>& work) {
  try {
    work();
  } catch (const Failure& failure) {
    return failure.number();
  }
  return 0;
}

}  // namespace

TEST(Dictionary, KeepsTheOrderOfAdding) {
  Dictionary<int> dictionary;
  dictionary.Add(q("b"), 1);
  dictionary.Add(q("a"), 2);
  dictionary.setItem(q("b"), 3);
  dictionary.setItem(q("c"), 4);
  EXPECT_EQ(dictionary.Keys(), (QStringList{q("b"), q("a"), q("c")}));
  EXPECT_EQ(dictionary.Items(), (QList<int>{3, 2, 4}));
  EXPECT_EQ(dictionary.Count(), 3);
}

TEST(Dictionary, ComparesKeysAsItIsTold) {
  Dictionary<int> binary;
  binary.Add(q("A"), 1);
  EXPECT_FALSE(binary.Exists(q("a")));
  Dictionary<int> text;
  text.setCompareMode(CompareMethod::Text);
  text.Add(q("Åse"), 1);
  EXPECT_TRUE(text.Exists(q("åSE")));
  EXPECT_EQ(text.Item(q("ÅSE")), 1);
  EXPECT_EQ(text.Keys(), QStringList{q("Åse")}) << "the key as it was added";
}

TEST(Dictionary, RefusesAKeyTwiceAndAMissingOne) {
  Dictionary<int> dictionary;
  dictionary.setCompareMode(CompareMethod::Text);
  dictionary.Add(q("a"), 1);
  EXPECT_EQ(failureOf([&] { dictionary.Add(q("A"), 2); }), 457);
  EXPECT_EQ(failureOf([&] { dictionary.Item(q("b")); }), 5);
  EXPECT_EQ(dictionary.Count(), 1) << "asking adds nothing";
}

TEST(Dictionary, TakesAnotherComparisonOnlyWhileItIsEmpty) {
  Dictionary<int> dictionary;
  dictionary.Add(q("a"), 1);
  EXPECT_EQ(failureOf([&] { dictionary.setCompareMode(CompareMethod::Text); }), 5);
  dictionary.RemoveAll();
  EXPECT_EQ(dictionary.Count(), 0);
  dictionary.setCompareMode(CompareMethod::Text);
  EXPECT_EQ(dictionary.compareMode(), CompareMethod::Text);
}

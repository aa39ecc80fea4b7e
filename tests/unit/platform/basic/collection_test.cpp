#include "platform/basic/collection.h"

#include "failures.h"

using platform::basic::Collection;

namespace {

TEST(Collection, CountsFromOne) {
  Collection<QString> collection;
  collection.Add(u"first"_qs);
  collection.Add(u"second"_qs);

  EXPECT_EQ(collection.Count(), 2);
  EXPECT_EQ(collection.Item(1), u"first");
  EXPECT_EQ(collection.Item(2), u"second");
}

TEST(Collection, FindsKeysWithoutRegardToCase) {
  Collection<int> collection;
  collection.Add(7, u"Kunde Ä"_qs);

  EXPECT_EQ(collection.Item(u"KUNDE ä"_qs), 7);
  EXPECT_TRUE(collection.contains(u"kunde ä"_qs));
  EXPECT_FALSE(collection.contains(u"kunde a"_qs));
}

TEST(Collection, LetsItemsBeChangedInPlace) {
  Collection<int> collection;
  collection.Add(7, u"a"_qs);
  collection.Item(u"A"_qs) = 8;
  collection.Item(1) += 1;

  EXPECT_EQ(collection.Item(1), 9);
}

TEST(Collection, KeepsTheOrderInWhichItWasFilled) {
  Collection<int> collection;
  for (const int n : {3, 1, 2}) collection.Add(n);

  EXPECT_THAT(QList<int>(collection.begin(), collection.end()), testing::ElementsAre(3, 1, 2));
}

TEST(Collection, FailsWith9OutsideOfItsPositions) {
  Collection<int> collection;
  collection.Add(1);

  EXPECT_EQ(failureNumber([&] { collection.Item(0); }), 9);
  EXPECT_EQ(failureNumber([&] { collection.Item(2); }), 9);
}

TEST(Collection, FailsWith5ForAKeyThatIsNotThere) {
  Collection<int> collection;
  EXPECT_EQ(failureNumber([&] { collection.Item(u"a"_qs); }), 5);
}

TEST(Collection, FailsWith457ForAKeyThatIsThereAlreadyAndStaysAsItWas) {
  Collection<int> collection;
  collection.Add(1, u"a"_qs);

  EXPECT_EQ(failureNumber([&] { collection.Add(2, u"A"_qs); }), 457);
  EXPECT_EQ(collection.Count(), 1);
}

}  // namespace
